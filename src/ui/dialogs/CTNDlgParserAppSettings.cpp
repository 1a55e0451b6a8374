#include "ui/dialogs/CTNDlgParserAppSettings.h"

#include "entry/CTNFileParserEngine.h"
#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/Mnemonic.h"
#include "ui/dialogs/EditCheck.h"
#include "ui/dialogs/FolderBrowser.h"
#include "ui/dialogs/ParserSettings.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>
#include <cstddef>
#include <limits>

namespace bomparser {
namespace {

constexpr NumberRange<int> kTabStops{ParserSettings::kLeastTabStop, ParserSettings::kMostTabStop};

struct TriggerTitle {
  Msg text;
  char letter;
};

constexpr std::array kRows = {
    TriggerTitle{Msg::TriggerRecords, 'R'}, TriggerTitle{Msg::TriggerInputFields, 'I'},
    TriggerTitle{Msg::TriggerOutputElements, 'E'}, TriggerTitle{Msg::TriggerParameters, 'm'}};
constexpr std::array kColumns = {Msg::TriggerAdd, Msg::TriggerDelete, Msg::TriggerModify};

/// One box: where it stands in the grid, and the kind of edit that it is for.
struct Trigger {
  Ctrl control;
  EditKind editKind;
  std::size_t row;
  std::size_t column;
};

constexpr std::array kTriggers = {
    Trigger{Ctrl::TriggerRecordAdd, kRecordsAdded, 0, 0},
    Trigger{Ctrl::TriggerRecordDelete, kRecordsDeleted, 0, 1},
    Trigger{Ctrl::TriggerRecordModify, kRecordsModified, 0, 2},
    Trigger{Ctrl::TriggerInputFieldAdd, kInputFieldsAdded, 1, 0},
    Trigger{Ctrl::TriggerInputFieldDelete, kInputFieldsDeleted, 1, 1},
    Trigger{Ctrl::TriggerInputFieldModify, kInputFieldsModified, 1, 2},
    Trigger{Ctrl::TriggerOutputElementAdd, kOutputElementsAdded, 2, 0},
    Trigger{Ctrl::TriggerOutputElementDelete, kOutputElementsDeleted, 2, 1},
    Trigger{Ctrl::TriggerOutputElementModify, kOutputElementsModified, 2, 2},
    Trigger{Ctrl::TriggerParameters, kParametersChanged, 3, 2},  // Parameters are only modified.
};

QLabel* NewRowLabel(std::size_t row, QWidget* firstBox) {
  auto* label = new QLabel(WithMnemonic(kRows[row].text, kRows[row].letter));
  label->setBuddy(firstBox);
  return label;
}

QPushButton* NewButton(Msg text, char letter, Ctrl number) {
  auto* button = new QPushButton(WithMnemonic(text, letter));
  SetControlId(*button, number);
  return button;
}

}  // namespace

CTNDlgParserAppSettings::CTNDlgParserAppSettings(CTNHostApp& host, CTNFileParserEngine* engine,
                                                 const QString& mainTitle, QWidget* parent)
    : CTNDlg(host, DialogId::AppSettings, parent), m_engine(engine), m_mainTitle(mainTitle) {
  setWindowTitle(m_mainTitle + u' ' + MessageText(Msg::Settings));
  BuildControls();
  if (m_engine != nullptr) LoadValues();
}

void CTNDlgParserAppSettings::BuildControls() {
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(BuildViewGroup());
  layout->addWidget(BuildPathGroup());
  layout->addWidget(BuildTriggerGroup());
  layout->addStretch();
  layout->addWidget(BuildButtons());
  // Only once it is in the dialog: otherwise Enter in an edit would press the first button of all.
  FindControl<QPushButton>(*this, Ctrl::Ok)->setDefault(true);
}

QWidget* CTNDlgParserAppSettings::BuildViewGroup() {
  m_tabStop = new QLineEdit;
  SetControlId(*m_tabStop, Ctrl::TabStop);
  m_tabStop->setAccessibleName(MessageText(Msg::TabStopLabel));
  constexpr int kWidthInDigits = 12;
  m_tabStop->setMaximumWidth(m_tabStop->fontMetrics().horizontalAdvance(u'0') * kWidthInDigits);
  auto* label = new QLabel(WithMnemonic(Msg::TabStopLabel, 'T'));
  label->setBuddy(m_tabStop);

  auto* group = new QGroupBox(MessageText(Msg::InputFileViewSettings));
  auto* layout = new QHBoxLayout(group);
  layout->addWidget(label);
  layout->addWidget(m_tabStop);
  layout->addWidget(new QLabel(MessageText(Msg::Spaces)));
  layout->addStretch();
  return group;
}

QWidget* CTNDlgParserAppSettings::BuildPathGroup() {
  m_searchPath = new QLineEdit;
  m_searchPath->setMaxLength(std::numeric_limits<int>::max());
  SetControlId(*m_searchPath, Ctrl::SearchPath);
  m_searchPath->setAccessibleName(MessageText(Msg::TemplateSearchPath));
  auto* browse = NewButton(Msg::Browse, 'B', Ctrl::BrowseSearchPath);
  connect(browse, &QPushButton::clicked, this, &CTNDlgParserAppSettings::OnBrowse);

  auto* group = new QGroupBox(WithMnemonic(Msg::TemplateSearchPath, 'P'));
  auto* layout = new QHBoxLayout(group);
  layout->addWidget(m_searchPath);
  layout->addWidget(browse);
  return group;
}

QWidget* CTNDlgParserAppSettings::BuildTriggerGroup() {
  auto* note = new QLabel(MessageText(Msg::TriggerNote));
  note->setWordWrap(true);
  // Wrapped labels tell no layout how high they must be.
  constexpr int kWidthInCharacters = 60;
  const int width = note->fontMetrics().averageCharWidth() * kWidthInCharacters;
  note->setMinimumSize(width, note->heightForWidth(width));
  auto* group = new QGroupBox(MessageText(Msg::ApplicationTriggers));
  auto* grid = new QGridLayout(group);
  int row = 0;
  grid->addWidget(note, row++, 0, 1, -1);
  AddTriggers(*grid, row);
  row += static_cast<int>(kRows.size()) + 1;
  grid->addWidget(BuildSelectButtons(), row, 0, 1, -1);
  grid->setColumnStretch(static_cast<int>(kColumns.size()) + 1, 1);
  return group;
}

void CTNDlgParserAppSettings::AddTriggers(QGridLayout& grid, int firstRow) {
  int column = 1;
  for (const Msg title : kColumns) {
    grid.addWidget(new QLabel(MessageText(title)), firstRow, column++, Qt::AlignCenter);
  }
  // A label comes right before the boxes of its row: help on it is about the first of them.
  std::size_t rowOfLabel = kRows.size();
  for (const Trigger& trigger : kTriggers) {
    const int row = firstRow + 1 + static_cast<int>(trigger.row);
    auto* box = new QCheckBox;
    if (trigger.row != rowOfLabel) {
      grid.addWidget(NewRowLabel(trigger.row, box), row, 0);
      rowOfLabel = trigger.row;
    }
    SetControlId(*box, trigger.control);
    box->setAccessibleName(MessageText(kRows[trigger.row].text) + u' ' +
                           MessageText(kColumns[trigger.column]));
    box->setToolTip(box->accessibleName());
    grid.addWidget(box, row, 1 + static_cast<int>(trigger.column), Qt::AlignCenter);
    m_triggers.push_back(box);
  }
}

QWidget* CTNDlgParserAppSettings::BuildSelectButtons() {
  auto* selectAll = NewButton(Msg::SelectAll, 'A', Ctrl::SelectAllTriggers);
  auto* unselectAll = NewButton(Msg::UnselectAll, 'U', Ctrl::UnselectAllTriggers);
  connect(selectAll, &QPushButton::clicked, this, [this] { CheckAll(true); });
  connect(unselectAll, &QPushButton::clicked, this, [this] { CheckAll(false); });
  auto* buttons = new QWidget;
  auto* layout = new QHBoxLayout(buttons);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(selectAll);
  layout->addWidget(unselectAll);
  layout->addStretch();
  return buttons;
}

QWidget* CTNDlgParserAppSettings::BuildButtons() {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                       QDialogButtonBox::Help);
  buttons->button(QDialogButtonBox::Ok)->setText(WithMnemonic(Msg::SheetOk, 'O'));
  buttons->button(QDialogButtonBox::Cancel)->setText(WithMnemonic(Msg::SheetCancel, 'C'));
  SetControlId(*buttons->button(QDialogButtonBox::Ok), Ctrl::Ok);
  SetControlId(*buttons->button(QDialogButtonBox::Cancel), Ctrl::Cancel);
  SetControlId(*buttons->button(QDialogButtonBox::Help), Ctrl::Help);
  buttons->button(QDialogButtonBox::Help)->setText(WithMnemonic(Msg::Help, 'H'));
  connect(buttons, &QDialogButtonBox::accepted, this, &CTNDlgParserAppSettings::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &CTNDlgParserAppSettings::reject);
  connect(buttons, &QDialogButtonBox::helpRequested, this, &CTNDlgParserAppSettings::OnHelp);
  return buttons;
}

void CTNDlgParserAppSettings::LoadValues() {
  m_searchPath->setText(ToDisplayText(m_engine->GetTemplateSearchPath()));
  m_tabStop->setText(QString::number(m_engine->GetTabStop()));
  const std::uint32_t flags = m_engine->GetAutoApplicationFlags();
  for (std::size_t i = 0; i < kTriggers.size(); ++i)
    m_triggers[i]->setChecked((flags & kTriggers[i].editKind) != 0);
}

int CTNDlgParserAppSettings::exec() { return m_engine != nullptr ? CTNDlg::exec() : Rejected; }

void CTNDlgParserAppSettings::setVisible(bool visible) {
  if (m_engine != nullptr) CTNDlg::setVisible(visible);
}

void CTNDlgParserAppSettings::accept() {
  int tabStop = 0;
  if (!EditCheck(m_mainTitle).ReadInteger(*m_tabStop, kTabStops, tabStop)) return;
  m_engine->SetTabStop(tabStop);
  StoreSearchPath();
  std::uint32_t flags = 0;
  for (std::size_t i = 0; i < kTriggers.size(); ++i) {
    if (m_triggers[i]->isChecked()) flags |= kTriggers[i].editKind;
  }
  m_engine->SetAutoApplicationFlags(flags);
  CTNDlg::accept();
}

void CTNDlgParserAppSettings::StoreSearchPath() {
  // A path whose bytes cannot be shown as they are stays what it is unless somebody edits it.
  const QString path = m_searchPath->text();
  if (path == ToDisplayText(m_engine->GetTemplateSearchPath())) return;
  m_engine->SetTemplateSearchPath(ToBytes(path));
}

void CTNDlgParserAppSettings::CheckAll(bool checked) {
  for (QCheckBox* box : m_triggers)
    box->setChecked(checked);
}

void CTNDlgParserAppSettings::OnBrowse() {
  FolderBrowser browser(MessageText(Msg::SelectSearchPathPrompt), m_searchPath->text(), this);
  if (UserDialogs().Run(browser)) m_searchPath->setText(browser.GetFolder());
}

void CTNDlgParserAppSettings::OnHelp() {
  HelpRequest request;
  request.command = HelpCommand::Contents;
  request.control = this;
  Host().ShowHelp(request);
}

}  // namespace bomparser
