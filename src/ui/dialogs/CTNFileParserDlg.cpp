#include "ui/dialogs/CTNFileParserDlg.h"

#include "ui/controls/CTNHostApp.h"
#include "ui/controls/DisplayText.h"
#include "ui/controls/Icons.h"
#include "ui/controls/WaitCursor.h"
#include "ui/controls/WindowProgress.h"
#include "ui/dialogs/CTNDlgParserAppSettings.h"
#include "ui/dialogs/ParserSettings.h"
#include "ui/views/CTNInFilePropPage.h"
#include "ui/views/CTNInFilePropSheet.h"
#include "ui/views/CTNTemplRecFieldListCtrl.h"
#include "ui/views/CTNTemplRecOutFieldListCtrl.h"
#include "ui/views/CTNTemplRecPropPage.h"
#include "ui/views/CTNTemplRecPropSheet.h"
#include "ui/views/CTNTransSummaryPropPage.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QToolButton>
#include <QUrl>
#include <cstddef>

namespace bomparser {
namespace {

std::unique_ptr<CTNFileParserEngine> MakeEngine(CTNFrontEnd* frontEnd) {
  return std::make_unique<CTNFileParserEngine>(frontEnd);
}

/// The one file that is dragged; empty when it is anything else.
std::string DraggedFile(const QDropEvent& event) {
  const QList<QUrl> urls = event.mimeData()->urls();
  if (urls.size() != 1 || !urls.front().isLocalFile()) return {};
  const QString path = urls.front().toLocalFile();
  return QFileInfo(path).isFile() ? QFile::encodeName(path).toStdString() : std::string();
}

bool IsTemplateName(const std::string& path) {
  return QFileInfo(QFile::decodeName(path.c_str()))
             .suffix()
             .compare(MessageText(Msg::XmlExtension), Qt::CaseInsensitive) == 0;
}

}  // namespace

CTNFileParserDlg::CTNFileParserDlg(CTNHostApp& host, QWidget* parent)
    : CTNFileParserDlg(host, MakeEngine, parent) {}

CTNFileParserDlg::CTNFileParserDlg(CTNHostApp& host, const EngineMaker& makeEngine, QWidget* parent)
    : CTNDlg(host, DialogId::Main, parent),
      m_engine(makeEngine(this)),
      m_section(GetMessageText(Msg::ProfileSection)),
      m_recentTemplates(Msg::RecentTemplateKey),
      m_recentInputs(Msg::RecentInputKey) {
  SetTitle(GetMessageText(Msg::DialogTitle));
  setWindowTitle(MessageText(Msg::DesignTimeCaption));
  // It is the whole program to its user.
  setWindowFlag(Qt::WindowMinMaxButtonsHint);
  setAcceptDrops(true);
  m_idle.setSingleShot(true);
  connect(&m_idle, &QTimer::timeout, this, &CTNFileParserDlg::WriteOwedSideCopy);
}

CTNFileParserDlg::~CTNFileParserDlg() {
  // The views look at what the engine owns as long as they live.
  delete m_recordSheet;
  delete m_fields;
  delete m_elements;
  delete m_inputSheet;
}

void CTNFileParserDlg::SetTitle(const std::string& title) { m_title = ToDisplayText(title); }

bool CTNFileParserDlg::Initialise() {
  setWindowTitle(m_title);
  if (!m_engine->IsValid()) {
    Ask(BoxIcon::None, MessageText(Msg::FatalEngineInit), BoxButtons::Ok);
    return false;
  }
  BuildControls();
  setWindowIcon(Icon(IconId::Program));
  EnableInputButtons(m_engine->GetInputFile()->IsApplied());
  LoadSettings();
  RestoreWindow();
  ShowEverything();
  return true;
}

int CTNFileParserDlg::exec() { return Initialise() ? CTNDlg::exec() : Rejected; }

void CTNFileParserDlg::reject() {
  if (m_working) return;
  // What is being typed is given up with everything else: it is no edit any more.
  for (CTNTemplateListCtrl* list : TemplateLists())
    list->DropEdit();
  CTNDlg::reject();
}

// Events.

void CTNFileParserDlg::showEvent(QShowEvent* event) {
  CTNDlg::showEvent(event);
  if (event->spontaneous() || m_shownBefore) return;
  m_shownBefore = true;
  // Once the user sees the window: what cannot be opened is told of over it.
  QMetaObject::invokeMethod(this, &CTNFileParserDlg::OpenWhatTheHostNames, Qt::QueuedConnection);
}

void CTNFileParserDlg::OpenWhatTheHostNames() {
  const auto named = [this](Msg key) {
    return Host().GetProfileString(GetMessageText(Msg::StartSection), GetMessageText(key), {});
  };
  const std::string templatePath = named(Msg::StartTemplateKey);
  const std::string inputPath = named(Msg::StartInputKey);
  if (!templatePath.empty()) Run([&] { LoadTemplate(templatePath); });
  if (!inputPath.empty()) Run([&] { OpenInput(inputPath); });
}

void CTNFileParserDlg::keyPressEvent(QKeyEvent* event) {
  // The Escape that cancelled something may still be held down.
  if (event->key() == Qt::Key_Escape && event->isAutoRepeat()) {
    event->accept();
    return;
  }
  CTNDlg::keyPressEvent(event);
}

void CTNFileParserDlg::dragEnterEvent(QDragEnterEvent* event) {
  if (MayOpen(DraggedFile(*event))) event->acceptProposedAction();
}

void CTNFileParserDlg::dropEvent(QDropEvent* event) {
  const std::string path = DraggedFile(*event);
  if (!MayOpen(path)) return;
  event->acceptProposedAction();
  // Boxes may come, and whoever drags waits for the drop to be done with.
  QMetaObject::invokeMethod(
      this, [this, path] { OpenDropped(path); }, Qt::QueuedConnection);
}

bool CTNFileParserDlg::MayOpen(const std::string& path) const {
  return !m_working && !path.empty() && (IsTemplateName(path) || m_open->isEnabled());
}

void CTNFileParserDlg::OpenDropped(const std::string& path) {
  if (!MayOpen(path)) return;
  if (IsTemplateName(path)) {
    Run([this, &path] {
      if (MayDropTemplate()) LoadTemplate(path);
    });
  } else {
    Run([this, &path] {
      if (AskOutputFirst()) OpenInput(path);
    });
  }
}

void CTNFileParserDlg::Run(const std::function<void()>& work) {
  if (m_working) return;
  for (CTNTemplateListCtrl* list : TemplateLists())
    list->EndEdit();
  const QPointer<CTNFileParserDlg> alive(this);  // The program may end while a box is open.
  m_working = true;
  work();
  if (!alive.isNull()) m_working = false;
}

// Settings.

void CTNFileParserDlg::LoadSettings() {
  const ParserSettings settings = ReadSettings(Host(), m_section);
  m_engine->SetTabStop(settings.tabStop);
  m_engine->SetTemplateSearchPath(settings.templateSearchPath);
  m_inputFolder = settings.inputFolder;
  m_templateFolder = settings.templateFolder;
  m_engine->SetProfileSection(m_section);
  m_engine->SetAutoApplicationFlags(settings.autoApplicationFlags);
  m_recentTemplates.Read(Host(), m_section);
  m_recentInputs.Read(Host(), m_section);
}

bool CTNFileParserDlg::StoreSettings() {
  bool stored = true;
  for (const CTNTemplateListCtrl* list : TemplateLists())
    stored &= list->StoreWidths(Host());
  ParserSettings settings;
  settings.tabStop = m_engine->GetTabStop();
  settings.templateSearchPath = m_engine->GetTemplateSearchPath();
  settings.inputFolder = m_inputFolder;
  settings.outputPath = m_outputPath;
  settings.templateFolder = m_templateFolder;
  settings.autoApplicationFlags = m_engine->GetAutoApplicationFlags();
  stored &= WriteSettings(Host(), m_section, settings);
  stored &= m_recentTemplates.Write(Host(), m_section);
  stored &= m_recentInputs.Write(Host(), m_section);
  return StoreWindow() && stored;
}

// Workflows that are about neither template nor input file.

void CTNFileParserDlg::OnHelp() {
  HelpRequest request;
  request.command = HelpCommand::Contents;
  request.control = this;
  Host().ShowHelp(request);
}

void CTNFileParserDlg::OnSettings() {
  CTNDlgParserAppSettings dialog(Host(), m_engine.get(), m_title, this);
  if (!UserDialogs().Run(dialog)) return;
  m_shownResult = nullptr;  // Tabs may be wider now.
  ShowEverything();
}

void CTNFileParserDlg::OnExit() {
  if (!MayLeaveInput() || !MayDropTemplate()) return;
  CloseInput();
  ResetTemplate();
  if (!StoreSettings()) ShowFailure(MessageText(Msg::SettingsNotStored));
  accept();
}

// What is shown.

RecordPage CTNFileParserDlg::VisiblePage() const {
  return m_recordSheet->GetActiveIndex() == 1 ? RecordPage::Auxiliary : RecordPage::Entity;
}

CTNTemplRecordListCtrl& CTNFileParserDlg::RecordList(RecordPage page) const {
  return page == RecordPage::Entity ? m_recordSheet->GetEntityPage().GetList()
                                    : m_recordSheet->GetAuxiliaryPage().GetList();
}

RecordLink& CTNFileParserDlg::CurrentRecord(RecordPage page) {
  return m_current[static_cast<std::size_t>(page)];
}

void CTNFileParserDlg::ShowEverything() {
  ShowPaths();
  ShowRows();
  for (const RecordPage page : {RecordPage::Entity, RecordPage::Auxiliary})
    RecordList(page).ShowRecords();
  // Where the user has selected none, the record that was shown stays.
  if (CurrentRecord(VisiblePage()) == nullptr) SelectFirstIfNone();
  ShowRecord();
  if (m_resultsPage->IsActive()) m_resultsPage->Refresh();
  constexpr int kIdleAfter = 400;  // Milliseconds.
  m_idle.start(kIdleAfter);
}

void CTNFileParserDlg::ShowPaths() {
  const CTNParserTemplate& document = *m_engine->GetTemplate();
  m_templateFile->setText(ToDisplayText(document.GetFilePath()));
  m_templateTitle->setText(ToDisplayText(document.GetTitle()));
  m_inputFile->setText(ToDisplayText(m_engine->GetInputFile()->GetFilePath()));
  m_templateTitle->setCursorPosition(0);  // Of a path the end says more, of a title the start.
  for (QLineEdit* edit : {m_templateFile, m_templateTitle, m_inputFile})
    edit->setToolTip(AsToolTip(edit->text()));
}

void CTNFileParserDlg::ShowRows() {
  const CTNParserInFile& file = *m_engine->GetInputFile();
  auto result = file.IsApplied() ? file.GetBlocks().GetResult() : nullptr;
  ShowHint();
  if (result && result == m_shownResult) {
    m_inputPage->GetList().ShowState();
    return;
  }
  m_shownResult = std::move(result);
  m_inputPage->ApplyDisplayOptions();
}

void CTNFileParserDlg::ShowHint() {
  const CTNParserInFile& file = *m_engine->GetInputFile();
  QString hint;
  if (file.GetFilePath().empty()) {
    hint = MessageText(Msg::NoInputFileHint);
  } else if (!file.IsApplied()) {
    hint = MessageText(Msg::NotAppliedHint);
  }
  m_inputPage->GetList().SetHint(hint);
}

void CTNFileParserDlg::ShowRecord() {
  CTNTemplateRecord* const record = CurrentRecord(VisiblePage());
  if (record != nullptr) SetCurrentValues(*record);
  m_fields->ShowFields(record);
  m_elements->ShowElements(record);
}

void CTNFileParserDlg::SetCurrentValues(CTNTemplateRecord& record) {
  const CTNParserInFile& file = *m_engine->GetInputFile();
  if (!file.IsApplied() || file.IsStale()) return;
  const auto selected = m_inputPage->GetList().GetSelectedBlock();
  if (selected && record.SetValuesFromBlock(*selected)) return;
  const std::ptrdiff_t last = file.GetBlocks().FindLastBlock(&record);
  if (last >= 0) record.SetValuesFromBlock(file.GetBlocks().GetAt(static_cast<std::size_t>(last)));
}

void CTNFileParserDlg::SelectFirstRecord() {
  m_current = {};
  for (const RecordPage page : {RecordPage::Entity, RecordPage::Auxiliary}) {
    RecordList(page).clearSelection();
    if (RecordList(page).model()->rowCount() > 0) RecordList(page).SelectRowAlone(0);
  }
  ShowRecord();
}

void CTNFileParserDlg::SelectFirstIfNone() {
  CTNTemplRecordListCtrl& list = RecordList(VisiblePage());
  if (list.GetSelectedRows().empty() && list.model()->rowCount() > 0) list.SelectRowAlone(0);
}

void CTNFileParserDlg::OnRecordSelected(RecordPage page, CTNTemplateRecord* record) {
  CurrentRecord(page) = record;
  if (page == VisiblePage()) ShowRecord();
}

void CTNFileParserDlg::SelectRecordOf(const CTNParsedFileBlock& block) {
  // Told of late, it may come in the middle of an application.
  const CTNMatchedRecord* matched = nullptr;
  if (m_working || !block.GetRecord(matched)) return;
  const auto* const record = static_cast<const CTNTemplateRecord*>(matched);
  if (!m_engine->GetTemplate()->Lists(record)) return;  // One that is built in.
  const RecordPage page = record->IsAuxiliary() ? RecordPage::Auxiliary : RecordPage::Entity;
  QWidget* const focus = focusWidget();
  m_recordSheet->SetActivePage(static_cast<int>(page));
  if (focus != nullptr) focus->setFocus(Qt::OtherFocusReason);
  RecordList(page).SelectElementAlone(record);
  // It may have been selected before, and this is another block of it.
  ShowRecord();
}

void CTNFileParserDlg::EnableInputButtons(bool enable) {
  m_inputButtonsOn = enable;
  UpdateInputButtons();
}

void CTNFileParserDlg::UpdateInputButtons() {
  const bool resultsShown = m_resultsPage->IsActive();
  m_open->setEnabled(!resultsShown);
  m_recentInputsButton->setEnabled(!resultsShown);
  for (QPushButton* button : m_inputButtons)
    button->setEnabled(m_inputButtonsOn && !resultsShown);
}

// Asking and telling.

BoxAnswer CTNFileParserDlg::Ask(BoxIcon icon, const QString& text, BoxButtons buttons,
                                const QString& reason) {
  const NoWaitCursor noWait;
  return UserDialogs().Ask(this, {m_title, text, icon, buttons, reason});
}

BoxAnswer CTNFileParserDlg::AskQuestion(Msg question) {
  return Ask(BoxIcon::Question, MessageText(question), BoxButtons::YesNoCancel);
}

bool CTNFileParserDlg::MayGoOn(Msg question, bool (CTNFileParserDlg::*doFirst)()) {
  switch (AskQuestion(question)) {
    case BoxAnswer::Yes:
      return (this->*doFirst)();
    case BoxAnswer::No:
      return true;
    default:
      return false;
  }
}

void CTNFileParserDlg::ShowFailure(const QString& text, const QString& reason) {
  Ask(BoxIcon::Error, text, BoxButtons::Ok, reason);
}

std::unique_ptr<CTNProgress> CTNFileParserDlg::BeginProgress(const std::string& caption) {
  return std::make_unique<WindowProgress>(Host(), this, caption);
}

void CTNFileParserDlg::ShowError(std::string_view text) { ShowFailure(ToDisplayText(text)); }

void CTNFileParserDlg::WriteOwedSideCopy() {
  if (m_working) {
    m_idle.start();
    return;
  }
  // A long list is left until the results page asks for it: the user may go on any moment.
  constexpr qint64 kMoment = 100;  // Milliseconds.
  QElapsedTimer clock;
  clock.start();
  m_engine->WriteOwedSideCopy([&clock] { return clock.elapsed() < kMoment; });
}

}  // namespace bomparser
