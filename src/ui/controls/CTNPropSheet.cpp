#include "ui/controls/CTNPropSheet.h"

#include "ui/controls/DisplayText.h"
#include "ui/controls/Ids.h"
#include "ui/controls/Mnemonic.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <utility>

namespace bomparser {
namespace {

constexpr std::size_t kButtonKinds = 5;

std::size_t PlaceOf(SheetButton button) { return static_cast<std::size_t>(button); }

Ctrl NumberOf(SheetButton button) {
  switch (button) {
    case SheetButton::Ok:
      return Ctrl::Ok;
    case SheetButton::Cancel:
      return Ctrl::Cancel;
    case SheetButton::Help:
      return Ctrl::Help;
    case SheetButton::Apply:
      return Ctrl::Apply;
    case SheetButton::Extra:
      break;
  }
  return Ctrl::SheetExtra;
}

}  // namespace

CTNPropSheet::CTNPropSheet(const SheetOptions& options, QWidget* parent)
    : QWidget(parent),
      m_options(options),
      m_tabs(new QTabWidget),
      m_buttonRow(new QHBoxLayout),
      m_buttons(kButtonKinds) {
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(m_tabs);
  layout->addLayout(m_buttonRow);
  if (m_options.embedded) {
    layout->setContentsMargins({});
  } else {
    setWindowFlag(Qt::WindowContextHelpButtonHint);
    AddButtons();
  }
  connect(m_tabs, &QTabWidget::currentChanged, this, &CTNPropSheet::OnCurrentChanged);
}

// The tabs are deleted after this part of the sheet, and tell of it.
CTNPropSheet::~CTNPropSheet() { m_tabs->disconnect(this); }

void CTNPropSheet::AddPage(CTNPropPage* page, const QString& text) {
  m_tabs->addTab(page, text);
  page->setAccessibleName(text);
}

int CTNPropSheet::GetPageCount() const { return m_tabs->count(); }

CTNPropPage* CTNPropSheet::GetPage(int index) const {
  return qobject_cast<CTNPropPage*>(m_tabs->widget(index));
}

int CTNPropSheet::GetActiveIndex() const { return m_active ? m_tabs->indexOf(m_active) : -1; }

void CTNPropSheet::SetActivePage(int index) { m_tabs->setCurrentIndex(index); }

QPushButton* CTNPropSheet::GetButton(SheetButton button) const {
  return m_buttons[PlaceOf(button)];
}

void CTNPropSheet::Initialise() {
  if (std::exchange(m_initialised, true)) return;
  OnCurrentChanged();
  if (m_options.activateAllPages) ActivateAllPages();
  LayOutButtons();
  OnInitDialog();
}

void CTNPropSheet::ActivateAllPages() {
  for (int page = 1; page < GetPageCount(); ++page)
    SetActivePage(page);
  SetActivePage(0);
}

void CTNPropSheet::showEvent(QShowEvent* event) {
  Initialise();
  QWidget::showEvent(event);
}

void CTNPropSheet::OnCurrentChanged() {
  CTNPropPage* const page = GetPage(m_tabs->currentIndex());
  if (!m_initialised || page == m_active) return;
  if (m_active) m_active->KillActive();
  m_active = page;
  if (page != nullptr) page->SetActive();
}

void CTNPropSheet::AddButtons() {
  AddButton(SheetButton::Ok, WithMnemonic(Msg::SheetOk, 'O'));
  AddButton(SheetButton::Cancel, WithMnemonic(Msg::SheetCancel, 'C'));
  AddButton(SheetButton::Help, WithMnemonic(Msg::Help, 'H'));
  if (!m_options.hideApply) AddButton(SheetButton::Apply, WithMnemonic(Msg::SheetApply, 'A'));
  if (!m_options.extraButton.isEmpty()) AddButton(SheetButton::Extra, m_options.extraButton);
  m_buttonRow->insertStretch(0);
}

void CTNPropSheet::AddButton(SheetButton button, const QString& text) {
  auto* const added = new QPushButton(text);
  SetControlId(*added, NumberOf(button));
  connect(added, &QPushButton::clicked, this, [this, button] { emit ButtonClicked(button); });
  m_buttonRow->addWidget(added);
  m_buttons[PlaceOf(button)] = added;
}

/// The standard row stands at the right. One that has more or fewer buttons takes the whole width,
/// with the same space around every button.
void CTNPropSheet::LayOutButtons() {
  const bool standard = !m_options.hideApply && m_options.extraButton.isEmpty();
  if (m_options.embedded || standard) return;
  for (int place = m_buttonRow->count(); place > 1; --place)
    m_buttonRow->insertStretch(place);
}

}  // namespace bomparser
