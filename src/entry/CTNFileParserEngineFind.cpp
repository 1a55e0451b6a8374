// Find Template: the template of a folder that matches the input file best.

#include "entry/CTNFileParserEngine.h"

#include "entry/TemplateScout.h"
#include "input/MessageTexts.h"
#include "tnbase/CharClass.h"
#include "tnbase/FolderListing.h"
#include "tnbase/TNPath.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bomparser {

namespace {

constexpr double kPerfectScore = 100.0;

bool IsTemplateName(std::string_view name) {
  const std::string& extension = GetMessageText(Msg::XmlExtensionWithDot);
  return name.size() >= extension.size() &&
         EqualsNoCase(name.substr(name.size() - extension.size()), extension);
}

std::string JoinPath(const std::string& folder, const std::string& name) {
  return folder.back() == '/' ? folder + name : folder + '/' + name;
}

/// The input is read once for all templates.
class TextHold {
 public:
  explicit TextHold(CTNParserInFile& file) : m_file(file) { m_file.HoldText(true); }
  ~TextHold() { m_file.HoldText(false); }
  TextHold(const TextHold&) = delete;
  TextHold& operator=(const TextHold&) = delete;

 private:
  CTNParserInFile& m_file;
};

}  // namespace

/// The highest score that a template can have. Each block takes a line end at least, so with L
/// lines, I of them ignored, U unmatched blocks leave (L - U) / (L - I) at most, if U is not below
/// I.
struct CTNFileParserEngine::ScoreBound {
  std::uint32_t lines;
  std::uint32_t ignored;  // Below `lines`.

  double Score(std::uint32_t unmatched) const {
    ApplicationStats bound;
    bound.totalBlocks = lines;
    bound.ignoredBlocks = ignored;
    bound.unmatchedBlocks = unmatched;
    return bound.MatchPercent();
  }

  /// With how many unmatched blocks the score can still be worthwhile; scores of 100 and more
  /// always are.
  template <class Worthwhile>
  std::uint32_t MostUnmatched(Worthwhile worthwhile) const {
    std::uint32_t most = ignored;
    for (std::uint32_t step = std::bit_floor(lines); step > 0; step /= 2) {
      if (step <= lines - most && worthwhile(Score(most + step))) most += step;
    }
    return most;
  }
};

struct CTNFileParserEngine::Search {
  /// A template that was given up because of a score that was only promised.
  struct Doubt {
    std::size_t place;
    double mostPossible;
  };

  std::string& error;
  bool& cancelled;
  ShowProgress show;
  std::vector<std::string> paths = {};  // Of the templates, in the folder's own order.
  TemplateScout scout{paths};
  std::vector<Doubt> doubts = {};
  std::string failedPath = {};  // The template whose application failed.
  double bestScore = 0.0;
  std::size_t bestPlace = 0;
  std::string lastApplied = {};  // The template whose turn came last and that did not fail.
  std::uint32_t lines = 0;       // Of the input; 0 until somebody asks.

  bool IsFound() const { return bestScore > 0.0; }
  /// Of templates with the same score the first one wins, whenever it is tried.
  bool WouldWin(double score, std::size_t place) const {
    return score > bestScore || (score == bestScore && place < bestPlace);
  }
};

bool CTNFileParserEngine::FindTemplate(std::string& error, bool& cancelled, ShowProgress show) {
  error.clear();
  cancelled = false;
  return m_valid && Guard(error, [&] { return SearchFolder(error, cancelled, show); });
}

bool CTNFileParserEngine::SearchFolder(std::string& error, bool& cancelled, ShowProgress show) {
  const std::string startPath = m_template->GetFilePath();
  if (m_searchPath.empty()) {
    error = GetMessageText(Msg::NoSearchPath);
    return false;
  }
  if (!IsDirectory(m_searchPath)) {
    error = FormatMessageText(Msg::InvalidSearchPath, m_searchPath);
    return false;
  }
  Search search{error, cancelled, show};
  std::vector<std::string> names;
  if (ListFolder(m_searchPath, names, error)) {
    for (const std::string& name : names) {
      if (IsTemplateName(name)) search.paths.push_back(JoinPath(m_searchPath, name));
    }
    const TextHold hold(*m_inputFile);
    TryFolder(search);
  }
  if (!search.IsFound() || cancelled) {
    GiveUpSearch(search, startPath);
    return false;
  }
  ApplyInFull(search.paths[search.bestPlace]);
  return true;
}

void CTNFileParserEngine::TryFolder(Search& search) {
  for (std::size_t place = 0; place < search.paths.size(); ++place) {
    // The first trial reads the text.
    if (!search.lastApplied.empty() && search.bestScore < TemplateScout::kGoodScore) {
      search.scout.LookAhead(place, m_inputFile->GetText().GetText()->View());
    }
    if (!TryTemplate(place, search)) break;
  }
  if (!search.cancelled) AskAgain(search);
}

/// False when the search is over.
bool CTNFileParserEngine::TryTemplate(std::size_t place, Search& search) {
  const std::unique_ptr<CTNParserTemplate> ahead = search.scout.Take(place);
  if (!ahead && !LoadTemplate(search.paths[place])) return true;  // The error log keeps why.
  const double promise = ahead ? search.scout.GetPromiseBehind(place) : 0.0;
  if (!Try(ahead ? *ahead : *m_template, place, promise, search)) return false;
  search.lastApplied = search.paths[place];
  // Only a template that matches exactly everything cannot be bettered; a score may exceed 100.
  return m_inputFile->GetBlocks().IsGivenUp() || GetStats().MatchPercent() != kPerfectScore;
}

/// Tries those once more that were given up for a promise that was not kept.
void CTNFileParserEngine::AskAgain(Search& search) {
  for (const Search::Doubt& doubt : search.doubts) {
    if (!search.WouldWin(doubt.mostPossible, doubt.place)) continue;
    const std::unique_ptr<CTNParserTemplate> document = search.scout.Load(doubt.place);
    if (!document) continue;
    if (!Try(*document, doubt.place, 0.0, search)) return;
  }
}

/// What is known of the template's score before its trial; nothing for one that is not to be given
/// up.
auto CTNFileParserEngine::BoundFor(const CTNParserTemplate& document, Search& search) const
    -> std::optional<ScoreBound> {
  const LineLimits limits = document.GetLineLimits();
  const std::string_view text = m_inputFile->GetText().GetText()->View();
  // A failing application ends the search, so one that can fail is to be carried through.
  const bool mayFail = document.HasRecordThatTakesNothing() || !text.ends_with('\n');
  if (limits.ignoreAfter != 0 || mayFail) return std::nullopt;
  if (search.lines == 0) search.lines = m_inputFile->CountLines();
  const auto ignored = static_cast<std::uint32_t>(std::max(limits.ignoreBefore, 1) - 1);
  if (ignored >= search.lines) return std::nullopt;
  return ScoreBound{search.lines, ignored};
}

/// One trial, given up once the template can neither win any more nor reach what is promised. False
/// when the application fails.
bool CTNFileParserEngine::Try(CTNParserTemplate& document, std::size_t place, double promise,
                              Search& search) {
  // Only the counts are asked for; the best template is applied for good in the end.
  ApplicationPurpose purpose(ResultUse::Counted, ApplicationPurpose::kNoLimit, m_threads);
  std::optional<ScoreBound> bound;
  if (search.IsFound() || promise > 0.0) bound = BoundFor(document, search);
  if (bound) {
    purpose.mostUnmatched = bound->MostUnmatched(
        [&](double score) { return search.WouldWin(score, place) && score >= promise; });
  }
  std::string error;
  if (!m_inputFile->ApplyTemplate(&document, error, search.cancelled, search.show, m_frontEnd,
                                  purpose)) {
    NoteFailure(place, std::move(error), search);
    return false;
  }
  const ApplicationStats stats = GetStats();
  if (m_inputFile->GetBlocks().IsGivenUp()) {
    const double mostPossible = bound->Score(stats.unmatchedBlocks);
    if (search.WouldWin(mostPossible, place)) search.doubts.push_back({place, mostPossible});
  } else if (search.WouldWin(stats.MatchPercent(), place)) {
    search.bestScore = stats.MatchPercent();
    search.bestPlace = place;
  }
  return true;
}

void CTNFileParserEngine::NoteFailure(std::size_t place, std::string error, Search& search) {
  const std::string& path = search.paths[place];
  if (error.empty()) error = FormatMessageText(Msg::UnspecifiedApplyErrorOfFile, path);
  search.error = std::move(error);
  // A cancelled application has brought back the results of the one before.
  if (!search.cancelled) search.failedPath = path;
}

/// Leaves the results that applying the template for good gives.
void CTNFileParserEngine::ApplyInFull(const std::string& path) {
  if (m_template->GetFilePath() != path) LoadTemplate(path);
  std::string ignored;
  bool cancelled = false;
  ApplyTemplate(ignored, cancelled, ShowProgress::No);
}

void CTNFileParserEngine::GiveUpSearch(const Search& search, const std::string& startPath) {
  if (search.error.empty()) search.error = GetMessageText(Msg::NoUseableTemplate);
  if (!startPath.empty() && startPath != GetMessageText(Msg::UnsavedPath)) {
    // Whoever looks sees the results of the last trial until a template is applied again, and the
    // side copy of the last one that did not fail.
    for (const std::string& path : {search.lastApplied, search.failedPath}) {
      if (m_sideCopy == SideCopy::Yes && !path.empty()) ApplyInFull(path);
    }
    LoadTemplate(startPath);
    return;
  }
  NewTemplate();
  std::string ignored;
  bool cancelled = false;
  ApplyTemplate(ignored, cancelled, ShowProgress::No);
}

}  // namespace bomparser
