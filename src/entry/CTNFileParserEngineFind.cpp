// Find Template: the template of a folder that matches the input file best.

#include "entry/CTNFileParserEngine.h"

#include "input/MessageTexts.h"
#include "tnbase/CharClass.h"
#include "tnbase/FolderListing.h"
#include "tnbase/TNPath.h"

#include <algorithm>
#include <bit>

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

struct CTNFileParserEngine::Search {
  std::string& error;
  bool& cancelled;
  ShowProgress show;
  std::string failedPath = {};  // The template whose application failed.
  double bestScore = 0.0;
  std::string bestPath = {};
  std::string lastApplied = {};  // The template that was tried last without failing.
  std::uint32_t lines = 0;       // Of the input; 0 until somebody asks.
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
    const TextHold hold(*m_inputFile);
    TryFolder(names, search);
  }
  if (search.bestPath.empty() || cancelled) {
    GiveUpSearch(search, startPath);
    return false;
  }
  ApplyInFull(search.bestPath);
  return true;
}

void CTNFileParserEngine::TryFolder(const std::vector<std::string>& names, Search& search) {
  for (const std::string& name : names) {
    if (!IsTemplateName(name)) continue;
    if (!TryTemplate(JoinPath(m_searchPath, name), search)) return;
  }
}

/// With how many unmatched blocks the current template can still become the best. Each block takes
/// a line end at least, so with L lines, I of them ignored, U unmatched blocks leave a score of
/// (L - U) / (L - I) at most, if U is not below I.
std::uint32_t CTNFileParserEngine::MostUnmatched(Search& search) const {
  const LineLimits limits = m_template->GetLineLimits();
  const std::string_view text = m_inputFile->GetText().GetText()->View();
  // A failing application ends the search, so one that can fail is to be carried through.
  const bool mayFail = m_template->HasRecordThatTakesNothing() || !text.ends_with('\n');
  if (search.bestScore <= 0.0 || limits.ignoreAfter != 0 || mayFail) {
    return ApplicationPurpose::kNoLimit;
  }
  if (search.lines == 0) search.lines = m_inputFile->CountLines();
  const auto ignored = static_cast<std::uint32_t>(std::max(limits.ignoreBefore, 1) - 1);
  if (ignored >= search.lines) return ApplicationPurpose::kNoLimit;
  const auto canBeBest = [&](std::uint32_t unmatched) {
    ApplicationStats bound;
    bound.totalBlocks = search.lines;
    bound.ignoredBlocks = ignored;
    bound.unmatchedBlocks = unmatched;
    return bound.MatchPercent() > search.bestScore;
  };
  std::uint32_t most = ignored;
  for (std::uint32_t step = std::bit_floor(search.lines); step > 0; step /= 2) {
    if (step <= search.lines - most && canBeBest(most + step)) most += step;
  }
  return most;
}

/// False when the search is over.
bool CTNFileParserEngine::TryTemplate(const std::string& path, Search& search) {
  if (!LoadTemplate(path)) return true;  // Its messages stay in the error log.
  // Only the counts are asked for; the best template is applied for good in the end.
  const ApplicationPurpose purpose(ResultUse::Counted, MostUnmatched(search));
  if (!Apply(search.error, search.cancelled, search.show, purpose)) {
    if (search.error.empty()) {
      search.error = FormatMessageText(Msg::UnspecifiedApplyErrorOfFile, path);
    }
    search.failedPath = path;
    return false;
  }
  search.lastApplied = path;
  if (m_inputFile->GetBlocks().IsGivenUp()) return true;
  const double score = GetStats().MatchPercent();
  if (score > search.bestScore) {
    search.bestScore = score;
    search.bestPath = path;
  }
  // Only a template that matches exactly everything cannot be bettered; a score may exceed 100.
  return score != kPerfectScore;
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
    // Whoever looks at the results sees those of the last trial until a template is applied again.
    const std::string& last = search.failedPath.empty() ? search.lastApplied : search.failedPath;
    if (m_sideCopy == SideCopy::Yes && !last.empty()) ApplyInFull(last);
    LoadTemplate(startPath);
    return;
  }
  NewTemplate();
  std::string ignored;
  bool cancelled = false;
  ApplyTemplate(ignored, cancelled, ShowProgress::No);
}

}  // namespace bomparser
