#include "entry/CTNFileParserEngine.h"

#include "entry/EntityListWriter.h"
#include "input/MessageTexts.h"
#include "tnbase/AtomicFile.h"
#include "tnbase/SystemReason.h"

#include <filesystem>
#include <new>
#include <system_error>
#include <utility>

namespace bomparser {

/// A side copy that is still to be written. It holds the results that it is about.
struct CTNFileParserEngine::OwedCopy {
  std::string name;
  EntityListWriter list;
};

CTNFileParserEngine::CTNFileParserEngine(CTNFrontEnd* frontEnd) : m_frontEnd(frontEnd) {
  try {
    m_template = std::make_unique<CTNParserTemplate>(this);
    m_inputFile = std::make_unique<CTNParserInFile>(this);
    m_valid = true;
  } catch (const std::bad_alloc&) {
    m_valid = false;
  }
}

CTNFileParserEngine::~CTNFileParserEngine() {
  m_valid = false;
  m_template = nullptr;
  m_inputFile = nullptr;
}

bool CTNFileParserEngine::AreResultsStale() const { return m_valid && m_inputFile->IsStale(); }

void CTNFileParserEngine::OnTemplateModified() {
  if (m_valid) m_inputFile->SetStale(true);
}

bool CTNFileParserEngine::ReportError(std::string_view text, ErrorShown shown) {
  if (!m_valid) return false;
  const bool added = m_template->GetErrorLog().AddMessage(text);
  if (!added && m_frontEnd != nullptr) m_frontEnd->ShowError(XmlStatusText(kXmlOutOfMemory));
  if (shown == ErrorShown::AtOnce && m_frontEnd != nullptr) m_frontEnd->ShowError(text);
  return added;
}

// ------------------------------------------------------------------------------- input file

bool CTNFileParserEngine::OpenInputFile(const std::string& path, std::string& error) {
  return m_valid && Guard(error, [&] {
           if (path.empty()) {
             error = GetMessageText(Msg::NoInputFileSpecified);
             ReportError(error, ErrorShown::AtOnce);
             return false;
           }
           if (m_inputFile->IsOpen() && !CloseInputFile()) return false;
           return m_inputFile->Open(path, error);
         });
}

bool CTNFileParserEngine::CloseInputFile() {
  if (!m_valid) return false;
  m_inputFile->Close();
  return !m_inputFile->IsOpen();
}

void CTNFileParserEngine::ForgetResults() {
  if (!m_valid) return;
  WriteOwedSideCopy();
  m_template->ForgetSingleMatches();
  m_inputFile->CloseAndReset();
}

// ------------------------------------------------------------------------------- template

void CTNFileParserEngine::NewTemplate() {
  if (!m_valid) return;
  m_inputFile->SetStale(true);
  m_template->Init();
  m_templateStamp.reset();
}

bool CTNFileParserEngine::LoadTemplate(const std::string& path) {
  if (!m_valid) return false;
  std::string outOfMemory;
  const bool loaded = Guard(outOfMemory, [&] { return ReadTemplate(path); });
  if (!outOfMemory.empty()) ReportError(outOfMemory, ErrorShown::AtOnce);
  // Half a template would pass for a whole one, and be saved as one.
  if (!loaded) Guard(outOfMemory, [this] { return m_template->DropContent(), true; });
  return loaded;
}

bool CTNFileParserEngine::ReadTemplate(const std::string& path) {
  NewTemplate();
  const std::optional<FileStamp> stamp = StampOf(path);  // Before: it may change while it is read.
  const int status = m_template->LoadFromFile(path);
  if (status != kXmlOk) {
    ReportLoadFailure(path, status);
    return false;
  }
  m_template->SetFilePath(path);
  m_template->ClearModified();
  m_templateStamp = stamp;
  return true;
}

void CTNFileParserEngine::ReportLoadFailure(const std::string& path, int status) {
  if (status == kXmlGeneralFailure) {
    ReportError(FormatMessageText(Msg::NotATemplate, path), ErrorShown::Later);
  } else if (status == kXmlNotWellFormed) {
    const XmlParseFailure& failure = m_template->LastParseFailure();
    ReportError(FormatMessageText(Msg::TemplateLoadErrorAtLine, failure.line, path),
                ErrorShown::Later);
    const std::size_t lineEnd = failure.lineText.find_last_not_of(" \t\r\n");
    if (lineEnd != std::string::npos) {
      ReportError(
          FormatMessageText(Msg::TemplateLoadLineText, failure.lineText.substr(0, lineEnd + 1)),
          ErrorShown::Later);
    }
    ReportError(failure.reason, ErrorShown::Later);
  } else {
    ReportError(XmlStatusText(status), ErrorShown::AtOnce);
  }
}

bool CTNFileParserEngine::SaveTemplate(const std::string& path) {
  if (!m_valid) return false;
  std::string error;
  const bool saved = Guard(error, [&] { return WriteTemplate(path, error); });
  if (!saved) ReportError(error, ErrorShown::AtOnce);
  return saved;
}

bool CTNFileParserEngine::WriteTemplate(const std::string& path, std::string& error) {
  std::string text;
  std::string saved = path;
  if (m_template->GetXml(text) != kXmlOk) {
    error = m_template->LastError();
    return false;
  }
  AtomicFile file;
  if (!file.Open(path, AtomicFile::Durability::FlushedToDisk, error) || !file.Write(text, error) ||
      !file.Commit(error)) {
    return false;
  }
  m_template->SetFilePath(std::move(saved));
  m_template->ClearModified();
  m_templateStamp = StampOf(path);
  return true;
}

bool CTNFileParserEngine::IsTemplateFileChanged(const std::string& path) const {
  if (!m_valid || !m_templateStamp) return false;
  const std::optional<FileStamp> now = StampOf(path);
  return now && now != m_templateStamp && AreSameFile(path, m_template->GetFilePath());
}

bool CTNFileParserEngine::IsTemplateModified() const { return m_valid && m_template->IsModified(); }

// ------------------------------------------------------------------------------- applying

bool CTNFileParserEngine::Apply(std::string& error, bool& cancelled, ShowProgress show,
                                const ApplicationPurpose& purpose) {
  return m_inputFile->ApplyTemplate(m_template.get(), error, cancelled, show, m_frontEnd, purpose);
}

bool CTNFileParserEngine::ApplyTemplate(std::string& error, bool& cancelled, ShowProgress show) {
  const ApplicationPurpose purpose(ResultUse::Kept, ApplicationPurpose::kNoLimit, m_threads);
  const auto apply = [&] { return Apply(error, cancelled, show, purpose); };
  if (!m_valid || !Guard(error, apply)) return false;
  if (m_sideCopy == SideCopy::Yes) OweSideCopy();
  return true;
}

std::string CTNFileParserEngine::SideCopyName() const {
  return m_inputFile->GetTitleNoExtension() + GetMessageText(Msg::XmlExtensionWithDot);
}

void CTNFileParserEngine::OweSideCopy() {
  std::string nobodyToTell;
  const bool noted = Guard(nobodyToTell, [this] {
    OwedCopy owed{SideCopyName(), EntityListWriter(m_inputFile->GetBlocks().GetResult(), false)};
    // The new copy takes the place of an older one of the same name only.
    if (m_owedCopy && m_owedCopy->name != owed.name) WriteOwedSideCopy();
    m_owedCopy = std::make_unique<OwedCopy>(std::move(owed));
    return true;
  });
  // No copy at all rather than that of an earlier application.
  if (!noted) DeleteSideCopy(nobodyToTell);
}

void CTNFileParserEngine::WriteOwedSideCopy(const std::function<bool()>& mayGoOn) {
  if (!m_owedCopy) return;
  bool putOff = false;
  std::string nobodyToTell;
  std::string folder;
  const bool written = Guard(nobodyToTell, [&] {
    AtomicFile file;
    const auto write = [&](std::string_view piece) {
      putOff = mayGoOn && !mayGoOn();
      return !putOff && file.Write(piece, nobodyToTell);
    };
    return m_sideFolder.GetPath(folder, nobodyToTell) &&
           file.Open(folder + '/' + m_owedCopy->name, AtomicFile::Durability::Renamed,
                     nobodyToTell) &&
           m_owedCopy->list.Write(write) && file.Commit(nobodyToTell);
  });
  if (putOff) return;
  if (!written) {
    // The page that shows it says that there is none; one of an earlier application would pass for
    // it.
    Guard(nobodyToTell, [&] {
      std::error_code ignored;
      return folder.empty() || std::filesystem::remove(folder + '/' + m_owedCopy->name, ignored);
    });
  }
  m_owedCopy = nullptr;
}

bool CTNFileParserEngine::GetSideCopyPath(std::string& path, std::string& error) {
  WriteOwedSideCopy();
  return m_valid && Guard(error, [&] {
           std::string folder;
           if (!m_sideFolder.GetPath(folder, error)) return false;
           path = folder + '/' + SideCopyName();
           return true;
         });
}

bool CTNFileParserEngine::DeleteSideCopy(std::string& error) {
  return !m_valid || Guard(error, [&] {
    if (m_owedCopy && m_owedCopy->name == SideCopyName()) m_owedCopy = nullptr;
    std::string path;
    if (!GetSideCopyPath(path, error)) return false;
    std::error_code failure;
    std::filesystem::remove(path, failure);
    if (failure) error = SystemReason("cannot delete", path, failure.value());
    return !failure;
  });
}

void CTNFileParserEngine::OnTemplateChanged(ChangeKind change, std::uint32_t editKinds) {
  if (!m_valid) return;
  m_template->SetModified(change);
  if (change == ChangeKind::None || (m_autoFlags & editKinds) == 0) return;
  if (!m_inputFile->IsApplied() || !m_inputFile->IsStale()) return;
  std::string ignored;
  bool cancelled = false;
  ApplyTemplate(ignored, cancelled, ShowProgress::No);
}

ApplicationStats CTNFileParserEngine::GetStats() const {
  return m_valid ? m_inputFile->GetBlocks().GetStats() : ApplicationStats();
}

bool CTNFileParserEngine::WriteEntityList(const std::function<bool(std::string_view)>& sink,
                                          std::string& error) const {
  return m_valid && Guard(error, [&] {
           const auto result = m_inputFile->GetBlocks().GetResult();
           if (EntityListWriter(result, m_inputFile->IsStale()).Write(sink, m_threads)) return true;
           // The sink knows why, if it was the sink.
           if (result && !result->GetText()->IsIntact()) m_inputFile->IsTextIntact(error);
           return false;
         });
}

bool CTNFileParserEngine::OutputEntityList(const std::string& path, std::string& error,
                                           const std::function<bool()>& mayGoOn) {
  error.clear();
  return m_valid && Guard(error, [&] { return WriteEntityListFile(path, error, mayGoOn); });
}

bool CTNFileParserEngine::WriteEntityListFile(const std::string& path, std::string& error,
                                              const std::function<bool()>& mayGoOn) {
  std::string written = path;
  AtomicFile file;
  if (!file.Open(path, AtomicFile::Durability::Renamed, error)) return false;
  bool cancelled = false;
  const auto write = [&](std::string_view piece) {
    cancelled = mayGoOn && !mayGoOn();
    return !cancelled && file.Write(piece, error);
  };
  if (!WriteEntityList(write, error) || !file.Commit(error)) {
    if (cancelled) {
      error = GetMessageText(Msg::OperationCancelled);
    } else {
      ReportError(error, ErrorShown::Later);
    }
    return false;
  }
  m_inputFile->SetOutputPath(std::move(written));
  m_inputFile->SetOutputDone(true);
  return true;
}

}  // namespace bomparser
