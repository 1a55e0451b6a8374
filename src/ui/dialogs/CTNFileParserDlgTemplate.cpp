#include "ui/dialogs/CTNFileParserDlg.h"

#include "tnbase/TNPath.h"
#include "ui/controls/CTNOpenSaveDialogs.h"
#include "ui/controls/DisplayText.h"
#include "ui/controls/WaitCursor.h"
#include "ui/dialogs/CTNDlgErrorLog.h"
#include "ui/dialogs/CTNTemplateParamsDlg.h"

namespace bomparser {

// What the buttons of the group "Template Actions" do.

void CTNFileParserDlg::OnLoadFromFile() {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Open, m_templateFolder, this);
  if (UserDialogs().Run(dialog) && MayDropTemplate()) LoadTemplate(dialog.GetPathName());
}

void CTNFileParserDlg::LoadTemplate(const std::string& path) {
  ResetTemplate();
  bool loaded = false;
  {
    const WaitCursor wait;
    loaded = m_engine->LoadTemplate(path);
  }
  if (loaded) {
    m_templateFolder = TNGetPathFromPathNFName(path);
    m_recentTemplates.Add(path);
  }
  ShowEverything();
  CTNParserErrorLog& log = m_engine->GetTemplate()->GetErrorLog();
  if (!log.GetAllLines().empty()) {
    CTNDlgErrorLog dialog(&log, m_title, this);
    UserDialogs().Run(dialog);
  }
  if (!loaded) return;
  SelectFirstRecord();
  if (m_engine->GetInputFile()->IsApplied()) ApplyTemplate();
}

void CTNFileParserDlg::OnCreateNew() {
  if (!MayDropTemplate()) return;
  ResetTemplate();
  ShowEverything();
  if (m_engine->GetInputFile()->IsApplied()) ApplyTemplate();
}

/// Asks whether a modified template is to be saved first.
bool CTNFileParserDlg::MayDropTemplate() {
  return !m_engine->IsTemplateModified() ||
         MayGoOn(Msg::AskSaveModifiedTemplate, &CTNFileParserDlg::SaveTemplate);
}

void CTNFileParserDlg::ResetTemplate() {
  m_engine->NewTemplate();
  m_current = {};
}

bool CTNFileParserDlg::SaveTemplate() {
  std::string path;
  if (!ChooseTemplateTarget(path)) return false;
  {
    const WaitCursor wait;
    // A failure is told of by the engine.
    if (!m_engine->SaveTemplate(path)) return false;
  }
  m_templateFolder = TNGetPathFromPathNFName(path);
  m_recentTemplates.Add(path);
  ShowPaths();
  return true;
}

bool CTNFileParserDlg::ChooseTemplateTarget(std::string& path) {
  BoxAnswer mayWrite = BoxAnswer::No;
  while (mayWrite == BoxAnswer::No) {
    CTNTemplateOpenSaveDialog dialog(FileDialogUse::Save, m_templateFolder, this);
    dialog.SetInitialName(m_engine->GetTemplate()->GetFilePath());
    if (!UserDialogs().Run(dialog)) return false;
    path = dialog.GetPathName();
    mayWrite = MayOverwrite(path);
  }
  return mayWrite == BoxAnswer::Yes;
}

/// Somebody else may have written the template's own file meanwhile: their work is not to be lost
/// unseen. No asks for another file.
BoxAnswer CTNFileParserDlg::MayOverwrite(const std::string& path) {
  if (!m_engine->IsTemplateFileChanged(path)) return BoxAnswer::Yes;
  return Ask(BoxIcon::Question,
             ToDisplayText(FormatMessageText(Msg::AskOverwriteChangedTemplate, path)),
             BoxButtons::YesNoCancel);
}

void CTNFileParserDlg::OnEditParams() {
  CTNTemplateParamsDlg dialog(Host(), *m_engine->GetTemplate(), m_title, this);
  if (UserDialogs().Run(dialog)) FinishEdit(kParametersChanged);
}

}  // namespace bomparser
