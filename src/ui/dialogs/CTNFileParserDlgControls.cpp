#include "tnbase/TNPath.h"
#include "ui/controls/DisplayText.h"
#include "ui/controls/Mnemonic.h"
#include "ui/dialogs/CTNFileParserDlg.h"
#include "ui/views/CTNInFilePropPage.h"
#include "ui/views/CTNInFilePropSheet.h"
#include "ui/views/CTNTemplRecFieldListCtrl.h"
#include "ui/views/CTNTemplRecOutFieldListCtrl.h"
#include "ui/views/CTNTemplRecPropPage.h"
#include "ui/views/CTNTemplRecPropSheet.h"
#include "ui/views/CTNTransSummaryPropPage.h"

#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

namespace bomparser {
namespace {

QLineEdit* MakePathEdit(Ctrl number, Msg name) {
  auto* const edit = new QLineEdit;
  SetControlId(*edit, number);
  edit->setReadOnly(true);
  edit->setAccessibleName(MessageText(name));
  constexpr int kLeastWidthInLetters = 10;
  edit->setMinimumWidth(edit->fontMetrics().averageCharWidth() * kLeastWidthInLetters);
  return edit;
}

QLabel* MakeLabel(Msg text, QWidget* labelled) {
  auto* const label = new QLabel(LabelText(text));
  label->setBuddy(labelled);
  return label;
}

/// A list under its label.
QWidget* Labelled(QWidget* list, const QString& text) {
  auto* const whole = new QWidget;
  auto* const layout = new QVBoxLayout(whole);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* const label = new QLabel(text);
  label->setBuddy(list);
  layout->addWidget(label);
  layout->addWidget(list, 1);
  return whole;
}

std::string Encoded(const QSplitter& splitter) {
  return splitter.saveState().toBase64().toStdString();
}

QByteArray Decoded(const std::string& text) {
  return QByteArray::fromBase64(QByteArray::fromStdString(text));
}

}  // namespace

struct CTNFileParserDlg::Button {
  Msg text;
  char letter;
  Ctrl number;
  Workflow workflow;
};

QPushButton* CTNFileParserDlg::MakeButton(const Button& button) {
  auto* const made = new QPushButton(WithMnemonic(button.text, button.letter));
  SetControlId(*made, button.number);
  made->setAccessibleName(MessageText(button.text));
  // Enter never starts a workflow by accident.
  made->setAutoDefault(false);
  connect(made, &QPushButton::clicked, this,
          [this, workflow = button.workflow] { Run([&] { (this->*workflow)(); }); });
  return made;
}

QToolButton* CTNFileParserDlg::MakeRecentButton(Ctrl number, Msg text, const RecentFiles& files,
                                                std::function<void(const std::string&)> open) {
  auto* const button = new QToolButton;
  SetControlId(*button, number);
  button->setArrowType(Qt::DownArrow);
  button->setToolTip(MessageText(text));
  button->setAccessibleName(MessageText(text));
  button->setFocusPolicy(Qt::StrongFocus);
  auto* const menu = new QMenu(button);
  // A menu of the button itself would have it draw a second arrow.
  connect(button, &QToolButton::clicked, menu,
          [button, menu] { menu->popup(button->mapToGlobal(button->rect().bottomLeft())); });
  connect(menu, &QMenu::aboutToShow, this, [this, menu, &files, open] {
    menu->clear();
    for (const std::string& path : files.GetPaths()) {
      QAction* const item =
          menu->addAction(ToDisplayText(path).replace(u'&', QStringLiteral("&&")));
      item->setEnabled(FileExists(path));
      connect(item, &QAction::triggered, this, [this, path, open] { Run([&] { open(path); }); });
    }
    if (menu->isEmpty()) menu->addAction(MessageText(Msg::NoRecentFiles))->setEnabled(false);
  });
  return button;
}

QWidget* CTNFileParserDlg::BuildTemplateGroup() {
  m_templateFile = MakePathEdit(Ctrl::TemplateFile, Msg::TemplateFileLabel);
  m_templateTitle = MakePathEdit(Ctrl::TemplateTitle, Msg::TitleLabel);
  QToolButton* const recent = MakeRecentButton(Ctrl::RecentTemplates, Msg::RecentTemplates,
                                               m_recentTemplates, [this](const std::string& path) {
                                                 if (MayDropTemplate()) LoadTemplate(path);
                                               });

  auto* const group = new QGroupBox(MessageText(Msg::TemplateActions));
  SetControlId(*group, Ctrl::TemplateActions);
  auto* const layout = new QHBoxLayout(group);
  layout->addWidget(
      MakeButton({Msg::LoadFromFile, 'L', Ctrl::LoadFromFile, &CTNFileParserDlg::OnLoadFromFile}));
  layout->addWidget(recent);
  layout->addWidget(
      MakeButton({Msg::CreateNew, 'C', Ctrl::CreateNew, &CTNFileParserDlg::OnCreateNew}));
  layout->addWidget(
      MakeButton({Msg::SaveToFile, 'S', Ctrl::SaveToFile, &CTNFileParserDlg::OnSaveToFile}));
  layout->addWidget(
      MakeButton({Msg::EditParams, 'm', Ctrl::EditParams, &CTNFileParserDlg::OnEditParams}));
  layout->addWidget(MakeLabel(Msg::TemplateFileLabel, m_templateFile));
  layout->addWidget(m_templateFile, 2);
  layout->addWidget(MakeLabel(Msg::TitleLabel, m_templateTitle));
  layout->addWidget(m_templateTitle, 1);
  return group;
}

QWidget* CTNFileParserDlg::BuildInputGroup() {
  m_inputFile = MakePathEdit(Ctrl::InputFile, Msg::InputFileLabel);
  m_recentInputsButton = MakeRecentButton(Ctrl::RecentInputs, Msg::RecentInputs, m_recentInputs,
                                          [this](const std::string& path) {
                                            if (AskOutputFirst()) OpenInput(path);
                                          });
  m_open = MakeButton({Msg::OpenInputFile, 'O', Ctrl::OpenInput, &CTNFileParserDlg::OnOpen});
  const Button buttons[] = {
      {Msg::CloseInputFile, 'e', Ctrl::CloseInput, &CTNFileParserDlg::OnClose},
      {Msg::FindTemplate, 'T', Ctrl::FindTemplate, &CTNFileParserDlg::OnFindTemplate},
      {Msg::ApplyTemplate, 'y', Ctrl::ApplyTemplate, &CTNFileParserDlg::OnApplyTemplate},
      {Msg::OutputEntityList, 'u', Ctrl::OutputEntityList, &CTNFileParserDlg::OnOutput},
      {Msg::EditInputFile, 'd', Ctrl::EditInput, &CTNFileParserDlg::OnEditFile}};

  auto* const group = new QGroupBox(MessageText(Msg::InputFileActions));
  SetControlId(*group, Ctrl::InputFileActions);
  auto* const layout = new QHBoxLayout(group);
  layout->addWidget(m_open);
  layout->addWidget(m_recentInputsButton);
  for (const Button& button : buttons) {
    m_inputButtons.push_back(MakeButton(button));
    layout->addWidget(m_inputButtons.back());
  }
  layout->addWidget(MakeLabel(Msg::InputFileLabel, m_inputFile));
  layout->addWidget(m_inputFile, 1);
  return group;
}

void CTNFileParserDlg::BuildViews() {
  const auto records = [this](RecordPage page) {
    return new CTNTemplRecordListCtrl(*m_engine, page, m_title);
  };
  m_recordSheet =
      new CTNTemplRecPropSheet(records(RecordPage::Entity), records(RecordPage::Auxiliary));
  SetControlId(*m_recordSheet, Ctrl::RecordSheet);
  m_fields = new CTNTemplRecFieldListCtrl(*m_engine, m_title);
  m_elements = new CTNTemplRecOutFieldListCtrl(*m_engine, m_title);
  m_inputPage = new CTNInFilePropPage;
  m_inputPage->GetList().SetInputFile(m_engine->GetInputFile());
  m_resultsPage = new CTNTransSummaryPropPage(m_engine.get());
  m_inputSheet = new CTNInFilePropSheet(m_inputPage, m_resultsPage);
  SetControlId(*m_inputSheet, Ctrl::InputSheet);
}

QWidget* CTNFileParserDlg::BuildLists() {
  BuildViews();
  m_lists = new QSplitter(Qt::Vertical);
  m_lists->addWidget(m_recordSheet);
  m_lists->addWidget(Labelled(m_fields, WithMnemonic(Msg::InputFieldListLabel, 'I')));
  m_lists->addWidget(Labelled(m_elements, WithMnemonic(Msg::OutputElementListLabel, 'V')));
  m_sides = new QSplitter(Qt::Horizontal);
  m_sides->addWidget(m_lists);
  m_sides->addWidget(m_inputSheet);
  constexpr int kShareOfLists = 45;
  constexpr int kShareOfInput = 55;
  m_sides->setSizes(
      {kShareOfLists * m_sides->sizeHint().width(), kShareOfInput * m_sides->sizeHint().width()});
  m_sides->setStretchFactor(0, kShareOfLists);
  m_sides->setStretchFactor(1, kShareOfInput);
  for (QSplitter* splitter : {m_lists, m_sides})
    splitter->setChildrenCollapsible(false);
  return m_sides;
}

QWidget* CTNFileParserDlg::BuildBottomRow() {
  auto* const row = new QWidget;
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(MakeButton({Msg::Help, 'H', Ctrl::Help, &CTNFileParserDlg::OnHelp}));
  layout->addWidget(
      MakeButton({Msg::Settings, 'g', Ctrl::Settings, &CTNFileParserDlg::OnSettings}));
  layout->addStretch();
  layout->addWidget(MakeButton({Msg::Exit, 'x', Ctrl::Exit, &CTNFileParserDlg::OnExit}));
  return row;
}

void CTNFileParserDlg::BuildControls() {
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(BuildTemplateGroup());
  layout->addWidget(BuildInputGroup());
  layout->addWidget(BuildLists(), 1);
  layout->addWidget(BuildBottomRow());
  WireViews();
  m_recordSheet->Initialise();
  m_inputSheet->Initialise();
}

// Wiring.

std::array<CTNTemplateListCtrl*, 4> CTNFileParserDlg::TemplateLists() const {
  return {&RecordList(RecordPage::Entity), &RecordList(RecordPage::Auxiliary), m_fields,
          m_elements};
}

void CTNFileParserDlg::Wire(CTNTemplateListCtrl& list, void (CTNFileParserDlg::*doCommand)(Cmd)) {
  list.RestoreWidths(Host());
  connect(&list, &CTNTemplateListCtrl::TemplateEdited, this, &CTNFileParserDlg::FinishEdit);
  connect(&list, &CTNTemplateListCtrl::RepaintWanted, this, &CTNFileParserDlg::ShowRecord);
  connect(&list, &CTNParserListCtrl::CommandChosen, this,
          [this, doCommand](Cmd command) { Run([&] { (this->*doCommand)(command); }); });
}

void CTNFileParserDlg::WireRecordList(RecordPage page) {
  CTNTemplRecordListCtrl& list = RecordList(page);
  Wire(list, &CTNFileParserDlg::DoRecordCommand);
  connect(&list, &CTNTemplRecordListCtrl::CurrentRecordChanged, this,
          [this, page](CTNTemplateRecord* record) { OnRecordSelected(page, record); });
  connect(&list, &CTNTemplRecordListCtrl::ShowFieldsWanted, this,
          [this, page](CTNTemplateRecord* record) { OnRecordSelected(page, record); });
  connect(&list, &CTNTemplRecordListCtrl::MoveRequested, this,
          [this, page](CTNTemplateRecord* before) { Run([&] { MoveRecords(page, before); }); });
}

void CTNFileParserDlg::WireInputViews() {
  CTNParserInFileListCtrl& rows = m_inputPage->GetList();
  connect(m_inputPage, &CTNInFilePropPage::DisplayOptionsChanged, m_inputPage,
          &CTNInFilePropPage::ApplyDisplayOptions);
  connect(&rows, &CTNParserInFileListCtrl::MatchedBlockSelected, this,
          &CTNFileParserDlg::SelectRecordOf);
  connect(&rows, &CTNParserInFileListCtrl::CreateRecordRequested, this,
          [this] { Run([this] { CreateRecordFromSelected(); }); });
  connect(&rows, &CTNParserInFileListCtrl::TestSelectionRequested, this,
          [this] { Run([this] { TestSelected(); }); });
  connect(&rows, &CTNParserInFileListCtrl::EditFileRequested, this,
          [this] { Run([this] { OnEditFile(); }); });
  connect(m_resultsPage, &CTNPropPage::Activated, this, &CTNFileParserDlg::UpdateInputButtons);
  connect(m_resultsPage, &CTNPropPage::Deactivated, this, &CTNFileParserDlg::UpdateInputButtons);
}

void CTNFileParserDlg::WireViews() {
  for (const RecordPage page : {RecordPage::Entity, RecordPage::Auxiliary})
    WireRecordList(page);
  Wire(*m_fields, &CTNFileParserDlg::DoFieldCommand);
  Wire(*m_elements, &CTNFileParserDlg::DoElementCommand);
  connect(m_fields, &CTNTemplRecFieldListCtrl::MoveRequested, this,
          [this](CTNTemplRecInField* before) { Run([&] { MoveFields(before); }); });
  connect(m_elements, &CTNTemplRecOutFieldListCtrl::MoveRequested, this,
          [this](CTNTemplRecOutField* before) { Run([&] { MoveElements(before); }); });
  for (CTNPropPage* page : {static_cast<CTNPropPage*>(&m_recordSheet->GetEntityPage()),
                            static_cast<CTNPropPage*>(&m_recordSheet->GetAuxiliaryPage())}) {
    connect(page, &CTNPropPage::Activated, this, [this] {
      SelectFirstIfNone();
      ShowRecord();
    });
  }
  WireInputViews();
}

// Where the window is.

void CTNFileParserDlg::RestoreWindow() {
  const auto stored = [this](Msg key) {
    return Decoded(Host().GetProfileString(m_section, GetMessageText(key), {}));
  };
  constexpr QSize kUsual(1280, 800);
  constexpr QSize kFrame(20, 60);  // What stands around a window, and the desktop's own panels.
  if (!restoreGeometry(stored(Msg::WindowGeometryKey))) {
    resize(kUsual.boundedTo(screen()->availableSize() - kFrame).expandedTo(minimumSizeHint()));
  }
  m_sides->restoreState(stored(Msg::SidesKey));
  m_lists->restoreState(stored(Msg::ListsKey));
}

bool CTNFileParserDlg::StoreWindow() {
  const auto store = [this](Msg key, const std::string& text) {
    return Host().WriteProfileString(m_section, GetMessageText(key), text);
  };
  const bool stored = store(Msg::WindowGeometryKey, saveGeometry().toBase64().toStdString());
  const bool sides = store(Msg::SidesKey, Encoded(*m_sides));
  return store(Msg::ListsKey, Encoded(*m_lists)) && sides && stored;
}

}  // namespace bomparser
