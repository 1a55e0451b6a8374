#include "input/CTNParserInFile.h"

#include "input/MessageTexts.h"

#include <cstring>
#include <new>

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

/// Calls `visit(end, pieces)` for every line with the position behind it and the number of pieces
/// up to there; stops when it answers false.
template <class Visit>
void ForEachLine(std::string_view text, Visit visit) {
  std::uint32_t pieces = 0;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t lineFeed = text.find('\n', start);
    const std::size_t end = lineFeed == std::string_view::npos ? text.size() : lineFeed + 1;
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

/// What one application works with, and what a cancelled one brings back.
struct CTNParserInFile::Application {
  CTNTemplateToApply& toApply;
  std::string& error;
  bool& cancelled;
  ResultUse use;
  CTNProgress* progress;
  CTNStringCharBuffIter oldText;
  CTNParsedBlockPtrArray oldBlocks;
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
  std::string_view view = text->View();
  const bool open = !view.empty() && view.back() != '\n';
  const std::uint32_t pieces = open || ignoreAfter != 0 ? PiecesOf(view) : 0;
  // A multiple of kPiecesGathered has nothing gathered behind the last string: no line feed is
  // added then, and none has to be.
  if (open && pieces % kPiecesGathered != 0) {
    text = CTNInputText::WithLineFeed(text);
    view = text->View();
  }
  m_text.SetText(text);
  if (ignoreAfter > 0) m_text.SetEnd(EndOfPieces(view, static_cast<std::uint32_t>(ignoreAfter)));
  if (ignoreAfter < 0) {
    const std::int64_t kept = std::int64_t{pieces} + ignoreAfter;
    // Lines are walked where pieces were counted: a long line counts as more than one.
    if (kept > 0) m_text.SetEnd(EndOfLines(view, static_cast<std::uint32_t>(kept)));
  }
  return true;
}

std::uint32_t CTNParserInFile::CountPieces() const { return PiecesOf(m_text.GetText()->View()); }

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
                                    ResultUse use) {
  error.clear();
  cancelled = false;
  if (toApply == nullptr) {
    error = GetMessageText(Msg::NoTemplateSupplied);
    return false;
  }
  const bool oldApplied = m_applied;
  const bool oldStale = m_stale;
  Application run{*toApply, error, cancelled, use, nullptr, m_text, m_blocks};
  m_applied = false;
  std::unique_ptr<CTNProgress> progress;
  bool done = false;
  if (!IsOpen() || GetFilePath().empty()) {
    error = GetMessageText(Msg::InputFileNotOpened);
  } else {
    if (show == ShowProgress::Yes) progress = ShowWindow(frontEnd);
    run.progress = progress.get();
    try {
      done = Scan(run);
    } catch (const std::bad_alloc&) {
      error = GetMessageText(Msg::NoMemoryForBlock);
    }
    m_blocks.SetProgress(nullptr);
  }
  if (run.progress != nullptr && run.progress->IsCancelled()) {
    error = GetMessageText(Msg::OperationCancelled);
    cancelled = true;
    m_text = run.oldText;
    m_blocks = run.oldBlocks;
    m_applied = oldApplied;
    m_stale = oldStale;
    return false;
  }
  m_applied = done;
  m_stale = !done;
  toApply->EndApplication(m_blocks);
  return done;
}

bool CTNParserInFile::Scan(Application& run) {
  const LineLimits limits = run.toApply.GetLineLimits();
  if (run.progress == nullptr) m_blocks.RemoveAll();
  if (!ReadText(limits.ignoreAfter, run.error)) {
    m_blocks.RemoveAll();
    return false;
  }
  if (run.progress != nullptr) {
    if (run.progress->IsCancelled()) return false;
    DescribeWork(run.toApply, *run.progress);
  }
  run.toApply.BeginApplication(m_text.GetText(), m_blocks, run.use);
  m_blocks.SetProgress(run.progress);
  if (limits.ignoreBefore > 1) {
    const auto leading = static_cast<std::uint32_t>(limits.ignoreBefore - 1);
    if (!TakeIgnoredLines(run, leading)) return !run.cancelled && run.error.empty();
  }
  if (!run.toApply.ParseFile(m_text, m_blocks, run.error, run.cancelled)) {
    if (run.error.empty()) run.error = GetMessageText(Msg::UnspecifiedOpenOrApplyError);
    return false;
  }
  return TakeTrailingLines(run);
}

/// Sets up to `count` lines from the cursor on aside. False when the application ends here:
/// because the text has no more lines, or because of a cancel.
bool CTNParserInFile::TakeIgnoredLines(Application& run, std::uint32_t count) {
  std::string line;
  for (; count > 0; --count) {
    const std::uint32_t start = m_text.GetPosition();
    if (!m_text.ReadLine(line)) return false;
    const auto end = start + static_cast<std::uint32_t>(line.size());
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
}

}  // namespace bomparser
