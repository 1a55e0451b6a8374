// Find Template: the template of a folder that matches the input file best.

#include "entry/CTNFileParserEngine.h"

#include "input/MessageTexts.h"
#include "tnbase/CharClass.h"
#include "tnbase/FolderListing.h"
#include "tnbase/TNPath.h"

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

}  // namespace

struct CTNFileParserEngine::Search {
  std::string& error;
  bool& cancelled;
  ShowProgress show;
  bool failed = false;
  double bestScore = 0.0;
  std::string bestPath = {};
  std::string lastApplied = {};  // The template that was tried last without failing.
};

bool CTNFileParserEngine::FindTemplate(std::string& error, bool& cancelled, ShowProgress show) {
  error.clear();
  cancelled = false;
  if (!m_valid) return false;
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
    m_inputFile->HoldText(true);
    TryFolder(names, search);
    m_inputFile->HoldText(false);
  }
  if (search.bestPath.empty() || cancelled) {
    GiveUpSearch(search, startPath);
    return false;
  }
  KeepBest(search);
  return true;
}

void CTNFileParserEngine::TryFolder(const std::vector<std::string>& names, Search& search) {
  for (const std::string& name : names) {
    if (!IsTemplateName(name)) continue;
    if (!TryTemplate(JoinPath(m_searchPath, name), search)) return;
  }
}

/// False when the search is over.
bool CTNFileParserEngine::TryTemplate(const std::string& path, Search& search) {
  if (!LoadTemplate(path)) return true;  // Its messages stay in the error log.
  // Only the counts are asked for; the best template is applied for good in the end.
  if (!Apply(search.error, search.cancelled, search.show, ResultUse::Counted)) {
    if (search.error.empty()) {
      search.error = FormatMessageText(Msg::UnspecifiedApplyErrorOfFile, path);
    }
    search.failed = true;
    return false;
  }
  search.lastApplied = path;
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

void CTNFileParserEngine::KeepBest(const Search& search) { ApplyInFull(search.bestPath); }

void CTNFileParserEngine::GiveUpSearch(const Search& search, const std::string& startPath) {
  if (search.error.empty()) search.error = GetMessageText(Msg::NoUseableTemplate);
  if (!startPath.empty() && startPath != GetMessageText(Msg::UnsavedPath)) {
    // Whoever looks at the results sees those of the last trial until a template is applied again.
    if (m_sideCopy == SideCopy::Yes && !search.lastApplied.empty()) {
      ApplyInFull(search.lastApplied);
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
