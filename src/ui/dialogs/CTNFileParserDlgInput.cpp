#include "ui/dialogs/CTNFileParserDlg.h"

#include "tnbase/TNPath.h"
#include "ui/controls/CTNOpenSaveDialogs.h"
#include "ui/controls/DisplayText.h"
#include "ui/controls/LateProgress.h"
#include "ui/controls/WaitCursor.h"
#include "ui/views/CTNInFilePropPage.h"
#include "ui/views/CTNTemplRecFieldListCtrl.h"
#include "ui/views/CTNTemplRecOutFieldListCtrl.h"
#include "ui/views/CTNTemplRecPropSheet.h"
#include "ui/views/TextEditorLauncher.h"

#include <QPointer>
#include <utility>

namespace bomparser {
namespace {

/// Views that take no input while they live under it. The focus comes back to where it was.
class DisabledViews {
 public:
  DisabledViews(const QWidget& window, std::vector<QWidget*> views)
      : m_views(std::move(views)), m_focus(window.focusWidget()) {
    Enable(false);
  }
  ~DisabledViews() {
    Enable(true);
    if (!m_focus.isNull() && m_focus->isEnabled()) m_focus->setFocus(Qt::OtherFocusReason);
  }
  DisabledViews(const DisabledViews&) = delete;
  DisabledViews& operator=(const DisabledViews&) = delete;

 private:
  void Enable(bool enable) {
    for (QWidget* view : m_views)
      view->setEnabled(enable);
  }

  std::vector<QWidget*> m_views;
  QPointer<QWidget> m_focus;
};

}  // namespace

// What the buttons of the group "Input File Actions" do.

void CTNFileParserDlg::OnOpen() {
  if (!AskOutputFirst()) return;
  CTNInFileOpenSaveDialog dialog(FileDialogUse::Open, m_inputFolder, this);
  if (UserDialogs().Run(dialog)) OpenInput(dialog.GetPathName());
}

/// A list that nobody has written yet would be lost.
bool CTNFileParserDlg::AskOutputFirst() {
  const CTNParserInFile& file = *m_engine->GetInputFile();
  if (!file.IsApplied() || file.IsOutputDone()) return true;
  return MayGoOn(Msg::AskOutputEntityList, &CTNFileParserDlg::OutputEntityList);
}

void CTNFileParserDlg::OpenInput(const std::string& path) {
  m_engine->ForgetResults();
  std::string error;
  bool opened = false;
  {
    const DisabledViews disabled(*this, {&m_inputPage->GetList()});
    bool cancelled = false;
    opened = m_engine->OpenInputFile(path, error) &&
             m_engine->ApplyTemplate(error, cancelled, ShowProgress::Yes);
  }
  if (opened) {
    m_inputFolder = TNGetPathFromPathNFName(path);
    m_recentInputs.Add(path);
    EnableInputButtons(true);
  } else {
    CloseInput();
  }
  ShowEverything();
  if (!opened) {
    ShowFailure(error.empty() ? MessageText(Msg::UnspecifiedOpenOrApplyError)
                              : ToDisplayText(error));
  }
}

void CTNFileParserDlg::OnClose() {
  if (!MayLeaveInput()) return;
  CloseInput();
  ShowEverything();
}

/// Asks more often than opening does: a list that was written is asked for again once it is no
/// longer the template's, and an empty template has no list that is worth a question.
bool CTNFileParserDlg::MayLeaveInput() {
  const CTNParserInFile& file = *m_engine->GetInputFile();
  if (m_engine->GetTemplate()->IsEmptyTemplate() || !file.IsApplied()) return true;
  if (file.IsOutputDone() && !file.IsStale()) return true;
  return MayGoOn(Msg::AskOutputEntityList, &CTNFileParserDlg::OutputEntityList);
}

void CTNFileParserDlg::CloseInput() {
  m_engine->ForgetResults();
  m_engine->GetInputFile()->SetFilePath({});
  EnableInputButtons(false);
}

void CTNFileParserDlg::OnFindTemplate() {
  if (m_engine->IsTemplateModified() &&
      !MayGoOn(Msg::AskSaveTemplate, &CTNFileParserDlg::SaveTemplate)) {
    return;
  }
  std::string error;
  bool cancelled = false;
  bool found = false;
  {
    const DisabledViews disabled(*this,
                                 {&m_inputPage->GetList(), m_recordSheet, m_fields, m_elements});
    found = m_engine->FindTemplate(error, cancelled, ShowProgress::Yes);
  }
  ShowEverything();
  if (found) {
    SelectFirstRecord();
    ShowFound(error);
  } else {
    ShowFailure(error.empty() ? MessageText(Msg::UnspecifiedFindError) : ToDisplayText(error));
  }
}

void CTNFileParserDlg::ShowFound(const std::string& error) {
  const CTNParserTemplate& document = *m_engine->GetTemplate();
  const ApplicationStats stats = m_engine->GetStats();
  const std::string percent = FormatMessageText(Msg::MatchPercentFormat, stats.MatchPercent());
  const std::string text = FormatNumberedMessage(
      Msg::TemplateFound, {document.GetTemplateFileName(), document.GetTitle(),
                           stats.MatchedBlocks(), stats.ParseableBlocks(), percent});
  Ask(BoxIcon::Information, ToDisplayText(text), BoxButtons::Ok, ToDisplayText(error));
}

void CTNFileParserDlg::OnApplyTemplate() { ApplyTemplate(); }

bool CTNFileParserDlg::ApplyTemplate() {
  std::string error;
  std::string whyNotOpened;
  bool cancelled = false;
  bool applied = false;
  {
    const DisabledViews disabled(*this, {&m_inputPage->GetList()});
    // From the disk again: the file may have been changed, or be another one by now.
    const std::string path = m_engine->GetInputFile()->GetFilePath();
    m_engine->OpenInputFile(path, whyNotOpened);
    applied = m_engine->ApplyTemplate(error, cancelled, ShowProgress::Yes);
  }
  if (!applied) ShowFailure(ToDisplayText(error), ToDisplayText(whyNotOpened));
  ShowEverything();
  EnableInputButtons(true);
  return applied;
}

// Output.

bool CTNFileParserDlg::OutputEntityList() {
  if (!MayOutput()) return false;
  CTNInFileOpenSaveDialog dialog(FileDialogUse::Save, m_inputFolder, this);
  dialog.SetInitialName(m_engine->GetInputFile()->GetTitleNoExtension());
  return UserDialogs().Run(dialog) && WriteEntityList(dialog.GetPathName());
}

/// A list is that of the template as it is now, or none is written.
bool CTNFileParserDlg::MayOutput() {
  const CTNParserInFile& file = *m_engine->GetInputFile();
  if (file.IsApplied() && !file.IsStale()) return true;
  switch (AskQuestion(file.IsApplied() ? Msg::AskReapplyTemplate : Msg::AskApplyTemplate)) {
    case BoxAnswer::Yes:
      return ApplyTemplate();
    case BoxAnswer::No:
      ShowFailure(MessageText(Msg::ApplyBeforeOutput));
      return false;
    default:
      return false;
  }
}

bool CTNFileParserDlg::WriteEntityList(const std::string& path) {
  std::string error;
  bool written = false;
  {
    const WaitCursor wait;
    LateProgress progress(Host(), *this,
                          FormatMessageText(Msg::WritingCaption, TNGetFNameFromPath(path)));
    written = m_engine->OutputEntityList(path, error, [&progress] { return progress.MayGoOn(); });
  }
  if (!written) {
    ShowFailure(MessageText(Msg::ErrorOutputtingFile), ToDisplayText(error));
    return false;
  }
  m_outputPath = path;
  m_inputFolder = TNGetPathFromPathNFName(path);
  return true;
}

void CTNFileParserDlg::OnEditFile() {
  const CTNParserInFile& file = *m_engine->GetInputFile();
  std::string error;
  if (file.IsApplied() && !OpenInTextEditor(file.GetFilePath(), error)) {
    ShowFailure(ToDisplayText(error));
  }
}

}  // namespace bomparser
