#include "ui/dialogs/CTNTemplateParamsDlg.h"

#include "template/CTNParserTemplate.h"
#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/Mnemonic.h"
#include "ui/dialogs/EditCheck.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <cstdint>
#include <limits>

namespace bomparser {
namespace {

constexpr int kMostTitleCharacters = 255;
constexpr NumberRange<double> kScales{0.0, 1000000.0};
constexpr NumberRange<int> kLinesBefore{1, 10000};
constexpr NumberRange<int> kLinesAfter{-10000, 10000};

QLineEdit* NewEdit(Ctrl number, const QString& accessibleName) {
  auto* edit = new QLineEdit;
  edit->setMaxLength(std::numeric_limits<int>::max());  // What is stored is shown whole.
  SetControlId(*edit, number);
  edit->setAccessibleName(accessibleName);
  return edit;
}

QLabel* NewLabel(Msg text, char letter, QWidget* buddy) {
  auto* label = new QLabel(WithMnemonic(text, letter));
  label->setBuddy(buddy);
  return label;
}

}  // namespace

/// What the controls hold, in the template's own terms.
struct CTNTemplateParamsDlg::Values {
  double scale = 0.0;
  int ignoreBefore = 1;
  int ignoreAfter = 0;  // As shown.
};

CTNTemplateParamsDlg::CTNTemplateParamsDlg(CTNHostApp& host, CTNParserTemplate& document,
                                           const QString& mainTitle, QWidget* parent)
    : CTNDlg(host, DialogId::TemplateParams, parent), m_template(document), m_mainTitle(mainTitle) {
  setWindowTitle(MessageText(Msg::TemplateParamsCaption));
  BuildControls();
  FillUnits();
  LoadValues();
}

void CTNTemplateParamsDlg::BuildControls() {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  buttons->button(QDialogButtonBox::Ok)->setText(WithMnemonic(Msg::SheetOk, 'O'));
  buttons->button(QDialogButtonBox::Cancel)->setText(WithMnemonic(Msg::SheetCancel, 'C'));
  SetControlId(*buttons->button(QDialogButtonBox::Ok), Ctrl::Ok);
  SetControlId(*buttons->button(QDialogButtonBox::Cancel), Ctrl::Cancel);
  connect(buttons, &QDialogButtonBox::accepted, this, &CTNTemplateParamsDlg::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &CTNTemplateParamsDlg::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(BuildValues());
  layout->addStretch();
  layout->addWidget(buttons);
  buttons->button(QDialogButtonBox::Ok)->setDefault(true);  // Has no effect outside a dialog.
}

QWidget* CTNTemplateParamsDlg::BuildValues() {
  m_title = NewEdit(Ctrl::ParamTitle, MessageText(Msg::TemplateTitleLabel));
  m_units = new QComboBox;
  SetControlId(*m_units, Ctrl::ParamUnits);
  m_units->setAccessibleName(MessageText(Msg::TemplateUnitsAttribute));
  m_scale = NewEdit(Ctrl::ParamScale, MessageText(Msg::TemplateScaleAttribute));
  m_ignoreBefore = NewEdit(Ctrl::ParamIgnoreBefore, MessageText(Msg::IgnoreLinesBefore));
  m_ignoreAfter = NewEdit(Ctrl::ParamIgnoreAfter, MessageText(Msg::IgnoreLinesAfter));

  enum Column { kName, kLabel, kValue, kFrom };
  auto* values = new QWidget;
  auto* grid = new QGridLayout(values);
  grid->setContentsMargins(0, 0, 0, 0);
  int row = 0;
  grid->addWidget(NewLabel(Msg::TemplateTitleLabel, 'T', m_title), row, kName, 1, 2);
  grid->addWidget(m_title, row, kValue, 1, -1);
  ++row;
  grid->addWidget(new QLabel(MessageText(Msg::TemplateUnitsAttribute)), row, kName);
  grid->addWidget(NewLabel(Msg::ValueLabel, 'V', m_units), row, kLabel);
  grid->addWidget(m_units, row, kValue);
  ++row;
  grid->addWidget(new QLabel(MessageText(Msg::TemplateScaleAttribute)), row, kName);
  grid->addWidget(NewLabel(Msg::ValueLabel, 'L', m_scale), row, kLabel);
  grid->addWidget(m_scale, row, kValue);
  ++row;
  grid->addWidget(NewLabel(Msg::IgnoreLinesBefore, 'B', m_ignoreBefore), row, kName, 1, 2);
  grid->addWidget(m_ignoreBefore, row, kValue);
  const int firstLimit = row++;
  grid->addWidget(NewLabel(Msg::IgnoreLinesAfter, 'A', m_ignoreAfter), row, kName, 1, 2);
  grid->addWidget(m_ignoreAfter, row, kValue);
  grid->addWidget(BuildFrom(), firstLimit, kFrom, 2, 1);
  grid->setColumnStretch(kValue, 1);
  return values;
}

QWidget* CTNTemplateParamsDlg::BuildFrom() {
  m_fromBottom = new QRadioButton(WithMnemonic(Msg::FromBottom, 'm'));
  SetControlId(*m_fromBottom, Ctrl::ParamFromBottom);
  m_fromTop = new QRadioButton(WithMnemonic(Msg::FromTop, 'p'));
  SetControlId(*m_fromTop, Ctrl::ParamFromTop);
  auto* group = new QGroupBox(WithMnemonic(Msg::FromLabel, 'F'));
  auto* layout = new QHBoxLayout(group);
  layout->addWidget(m_fromBottom);
  layout->addWidget(m_fromTop);
  return group;
}

void CTNTemplateParamsDlg::FillUnits() {
  int code = 0;
  for (const Msg name : {Msg::UnitsInch, Msg::UnitsMm, Msg::UnitsMil})
    m_units->addItem(MessageText(name), code++);
}

void CTNTemplateParamsDlg::LoadValues() {
  // A code that means no units selects none, and stays until somebody chooses.
  m_units->setCurrentIndex(m_units->findData(m_template.GetUnits()));
  m_scale->setText(EditText(m_template.GetScaleFactor()));
  m_title->setText(ToDisplayText(m_template.GetTitle()));
  m_ignoreBefore->setText(QString::number(m_template.GetBeginRow()));
  const std::int64_t signedAfter = m_template.GetEndAfterRow();  // The lowest has no positive.
  const bool fromBottom = signedAfter < 1;
  m_ignoreAfter->setText(QString::number(fromBottom ? -signedAfter : signedAfter));
  (fromBottom ? m_fromBottom : m_fromTop)->setChecked(true);
}

std::optional<CTNTemplateParamsDlg::Values> CTNTemplateParamsDlg::ReadValues() const {
  const EditCheck check(m_mainTitle);
  Values values;
  const bool read = check.IsShortEnough(*m_title, kMostTitleCharacters) &&
                    check.ReadNumber(*m_scale, kScales, values.scale) &&
                    check.ReadInteger(*m_ignoreBefore, kLinesBefore, values.ignoreBefore) &&
                    check.ReadInteger(*m_ignoreAfter, kLinesAfter, values.ignoreAfter);
  return read ? std::optional(values) : std::nullopt;
}

bool CTNTemplateParamsDlg::IsOrderRight(const Values& values) const {
  // Equal limits pass, although the message asks for a greater one: templates with them exist.
  if (!m_fromTop->isChecked() || values.ignoreBefore <= values.ignoreAfter) return true;
  UserDialogs().Ask(m_ignoreAfter,
                    {m_mainTitle, MessageText(Msg::IgnoreAfterBeforeIgnoreBefore), BoxIcon::Error});
  m_ignoreAfter->setFocus();
  m_ignoreAfter->selectAll();
  return false;
}

void CTNTemplateParamsDlg::StoreValues(const Values& values) {
  if (m_units->currentIndex() >= 0) m_template.SetUnits(m_units->currentData().toInt());
  m_template.SetBeginRow(values.ignoreBefore);
  m_template.SetEndAfterRow(m_fromTop->isChecked() ? values.ignoreAfter : -values.ignoreAfter);
  // A title whose bytes cannot be shown as they are stays what it is unless somebody edits it.
  const QString title = m_title->text();
  if (title != ToDisplayText(m_template.GetTitle())) m_template.SetTitle(ToBytes(title));
  m_template.SetScaleFactor(values.scale);
}

void CTNTemplateParamsDlg::accept() {
  const std::optional<Values> values = ReadValues();
  if (!values || !IsOrderRight(*values)) return;
  StoreValues(*values);
  CTNDlg::accept();
}

}  // namespace bomparser
