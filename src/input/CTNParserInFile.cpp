#include "input/CTNParserInFile.h"

#include "input/MessageTexts.h"

#include <algorithm>
#include <new>
#include <optional>

namespace bomparser {

namespace {

// Text is read in pieces through a buffer of 255 characters, one of them for the end mark.
constexpr std::uint32_t kPieceLength = 254;
// Pieces are gathered in strings of this many; only what is gathered last is looked at for a line
// feed to add.
constexpr std::uint32_t kPiecesGathered = 256;

std::uint32_t PiecesOfLine(std::uint32_t length) {
  return (length + kPieceLength - 1) / kPieceLength;
}

/// The position behind the line that starts at `start`.
std::size_t EndOfLine(std::string_view text, std::size_t start) {
  const std::size_t lineFeed = text.find('\n', start);
  return lineFeed == std::string_view::npos ? text.size() : lineFeed + 1;
}

/// Calls `visit(end, pieces)` for every line with the position behind it and the number of pieces
/// up to there; stops when it answers false.
template <class Visit>
void ForEachLine(std::string_view text, Visit visit) {
  std::uint32_t pieces = 0;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = EndOfLine(text, start);
    pieces += PiecesOfLine(static_cast<std::uint32_t>(end - start));
    if (!visit(static_cast<std::uint32_t>(end), pieces)) return;
    start = end;
  }
}

std::uint32_t PiecesOf(std::string_view text) {
  std::uint32_t count = 0;
  ForEachLine(text, [&count](std::uint32_t, std::uint32_t pieces) {
    count = pieces;
    return true;
  });
  return count;
}

/// Where the first `wanted` pieces end; the whole length when there are fewer.
std::uint32_t EndOfPieces(std::string_view text, std::uint32_t wanted) {
  auto found = static_cast<std::uint32_t>(text.size());
  std::uint32_t lineStart = 0;
  std::uint32_t before = 0;
  ForEachLine(text, [&](std::uint32_t end, std::uint32_t pieces) {
    if (pieces >= wanted) {
      found = pieces == wanted ? end : lineStart + (wanted - before) * kPieceLength;
      return false;
    }
    lineStart = end;
    before = pieces;
    return true;
  });
  return found;
}

/// Where the first `wanted` lines end; the whole length when there are fewer.
std::uint32_t EndOfLines(std::string_view text, std::uint32_t wanted) {
  auto found = static_cast<std::uint32_t>(text.size());
  std::uint32_t lines = 0;
  ForEachLine(text, [&](std::uint32_t end, std::uint32_t) {
    if (++lines < wanted) return true;
    found = end;
    return false;
  });
  return found;
}

}  // namespace

/// What one application works with.
struct CTNParserInFile::Application {
  CTNTemplateToApply& toApply;
  std::string& error;
  bool& cancelled;
  const ApplicationPurpose& purpose;
  CTNProgress* progress = nullptr;
  bool begun = false;  // The template has begun, so it is to be ended.
};

/// What a cancelled application brings back.
struct CTNParserInFile::Before {
  bool applied;
  bool stale;
  std::uint32_t lengthRead;
  CTNStringCharBuffIter text;
  CTNParsedBlockPtrArray blocks;
};

bool CTNParserInFile::Open(const std::string& path, std::string& error) {
  if (!CTNTextFile::Open(path, error)) return false;
  const std::uint64_t length = GetLength();
  // Against the old text on purpose: the new one is read by the next application only.
  if (length <= m_text.GetText()->Size()) m_text.SetEnd(static_cast<std::uint32_t>(length));
  return true;
}

bool CTNParserInFile::ReadText(std::int32_t ignoreAfter, std::string& error) {
  std::shared_ptr<const CTNInputText> text = ReadAll(error);
  if (!text) return false;
  const std::string_view view = text->View();
  const bool open = !view.empty() && view.back() != '\n';
  const std::uint32_t pieces = open || ignoreAfter != 0 ? PiecesOf(view) : 0;
  // A multiple of kPiecesGathered has nothing gathered behind the last string: no line feed is
  // added then, and none has to be.
  if (open && pieces % kPiecesGathered != 0) {
    if (text->Size() == CTNInputText::kMaxSize) {
      error = TooLongText();
      return false;
    }
    m_text.SetText(CTNInputText::WithLineFeed(text));
  } else {
    m_text.SetText(text);
  }
  m_lengthRead = text->Size();
  const auto translated = static_cast<std::uint32_t>(std::max(ignoreAfter, 0));
  // The limit stands behind what was read: in front of the line feed that was added to it.
  if (translated > 0 && translated <= pieces) m_text.SetEnd(EndOfPieces(view, translated));
  if (ignoreAfter < 0) {
    const std::int64_t kept = std::int64_t{pieces} + ignoreAfter;
    // Lines are walked where pieces were counted: a long line counts as more than one.
    if (kept > 0) {
      m_text.SetEnd(EndOfLines(m_text.GetText()->View(), static_cast<std::uint32_t>(kept)));
    }
  }
  return true;
}

std::uint32_t CTNParserInFile::CountLines() const {
  const std::string_view text = m_text.GetText()->View();
  return static_cast<std::uint32_t>(std::count(text.begin(), text.end(), '\n'));
}

std::uint32_t CTNParserInFile::CountPieces() const {
  return PiecesOf(m_text.GetText()->View().substr(0, m_lengthRead));
}

std::unique_ptr<CTNProgress> CTNParserInFile::ShowWindow(CTNFrontEnd* frontEnd) const {
  if (frontEnd == nullptr) return nullptr;
  auto progress = frontEnd->BeginProgress(FormatMessageText(Msg::ScanningCaption, GetFileTitle()));
  if (progress) progress->SetText(GetMessageText(Msg::PreparingApplication));
  return progress;
}

void CTNParserInFile::DescribeWork(const CTNTemplateToApply& toApply, CTNProgress& progress) const {
  if (!progress.ShowsPosition()) return;
  std::string text = GetMessageText(Msg::ReadingFile);
  if (!toApply.IsEmptyTemplate()) {
    text = GetMessageText(Msg::ApplyingTemplateFile) + " " + toApply.GetTemplateFileName();
  }
  progress.SetText(text + GetMessageText(Msg::UnderWaySuffix));
  progress.SetRange(0, static_cast<std::int32_t>(CountPieces()), 1);
}

bool CTNParserInFile::ApplyTemplate(CTNTemplateToApply* toApply, std::string& error,
                                    bool& cancelled, ShowProgress show, CTNFrontEnd* frontEnd,
                                    const ApplicationPurpose& purpose) {
  error.clear();
  cancelled = false;
  if (toApply == nullptr) {
    error = GetMessageText(Msg::NoTemplateSupplied);
    return false;
  }
  if (!IsOpen() || GetFilePath().empty()) {
    error = GetMessageText(Msg::InputFileNotOpened);
    m_applied = false;
    m_stale = true;
    return false;
  }
  Application run{*toApply, error, cancelled, purpose};
  bool done = false;
  try {
    std::unique_ptr<CTNProgress> progress;
    if (show == ShowProgress::Yes) progress = ShowWindow(frontEnd);
    run.progress = progress.get();
    if (ScanOrBringBack(run, done)) return false;
    if (run.begun) toApply->EndApplication(m_blocks);
  } catch (const std::bad_alloc&) {
    error = GetMessageText(Msg::NoMemoryForBlock);
    done = false;
  }
  m_applied = done;
  m_stale = !done;
  return done;
}

/// Scans; true when the user has cancelled, and then everything is as it was.
bool CTNParserInFile::ScanOrBringBack(Application& run, bool& done) {
  // Nobody can cancel without a progress: then the old results are not held any longer.
  std::optional<Before> before;
  if (run.progress != nullptr) before = {m_applied, m_stale, m_lengthRead, m_text, m_blocks};
  m_applied = false;
  try {
    done = Scan(run);
  } catch (const std::bad_alloc&) {
    run.error = GetMessageText(Msg::NoMemoryForBlock);
  }
  m_blocks.SetProgress(nullptr);
  if (!before || !run.progress->IsCancelled()) return false;
  run.error = GetMessageText(Msg::OperationCancelled);
  run.cancelled = true;
  m_applied = before->applied;
  m_stale = before->stale;
  m_lengthRead = before->lengthRead;
  m_text = before->text;
  m_blocks = before->blocks;
  return true;
}

bool CTNParserInFile::Scan(Application& run) {
  const LineLimits limits = run.toApply.GetLineLimits();
  if (run.progress == nullptr) m_blocks.RemoveAll();
  if (!ReadText(limits.ignoreAfter, run.error)) {
    m_blocks.RemoveAll();
    return false;
  }
  const bool done = Translate(run, limits);
  return IsTextIntact(run.error) && done;
}

/// Gives the text that was read to the template.
bool CTNParserInFile::Translate(Application& run, const LineLimits& limits) {
  if (run.progress != nullptr) {
    if (run.progress->IsCancelled()) return false;
    DescribeWork(run.toApply, *run.progress);
  }
  run.toApply.BeginApplication(m_text.GetText(), m_blocks, run.purpose);
  run.begun = true;
  m_blocks.SetProgress(run.progress);
  if (limits.ignoreBefore > 1) {
    const auto leading = static_cast<std::uint32_t>(limits.ignoreBefore - 1);
    if (!TakeIgnoredLines(run, leading)) return !run.cancelled && run.error.empty();
  }
  if (!run.toApply.ParseFile(m_text, m_blocks, run.error, run.cancelled)) {
    if (run.error.empty()) run.error = GetMessageText(Msg::UnspecifiedOpenOrApplyError);
    return false;
  }
  return m_blocks.IsGivenUp() || TakeTrailingLines(run);
}

bool CTNParserInFile::IsTextIntact(std::string& error) const {
  if (m_text.GetText()->IsIntact()) return true;
  error = FormatMessageText(Msg::InputFileCutShort, GetFilePath());
  return false;
}

/// Sets up to `count` lines from the cursor on aside. False when the application ends here:
/// because the text has no more lines, or because of a cancel.
bool CTNParserInFile::TakeIgnoredLines(Application& run, std::uint32_t count) {
  const std::string_view text = m_text.GetText()->View();
  for (; count > 0; --count) {
    const std::uint32_t start = m_text.GetPosition();
    if (start >= text.size()) return false;
    const auto end = static_cast<std::uint32_t>(EndOfLine(text, start));
    m_text.SetPosition(end);
    if (run.toApply.TakeIgnoredLine(start, end, m_blocks) < 0) {
      run.cancelled = true;
      return false;
    }
  }
  return true;
}

bool CTNParserInFile::TakeTrailingLines(Application& run) {
  m_text.SetEnd(m_text.GetText()->Size());
  bool done = true;
  for (bool more = true; more;) {
    try {
      more = TakeIgnoredLines(run, 1);
    } catch (const std::bad_alloc&) {
      // The line stays without a block and the others are tried: they may need less.
      run.error = GetMessageText(Msg::NoMemoryWhileApplying);
      done = false;
    }
  }
  return done && !run.cancelled;
}

std::string CTNParserInFile::GetTitleNoExtension() const {
  const std::string title = GetFileTitle();
  return title.substr(0, title.find('.'));
}

void CTNParserInFile::CloseAndReset() {
  m_applied = false;
  m_outputDone = false;
  m_stale = true;
  m_outputPath.clear();
  Close();
  m_blocks.DeleteAll();
  m_text = CTNStringCharBuffIter();
  m_lengthRead = 0;
}

}  // namespace bomparser
