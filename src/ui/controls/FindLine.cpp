#include "ui/controls/FindLine.h"

#include "ui/controls/DisplayText.h"
#include "ui/controls/Ids.h"
#include "ui/controls/Mnemonic.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace bomparser {
namespace {

QPushButton* MakeButton(Msg text, char mnemonic, Ctrl number) {
  auto* const button = new QPushButton(WithMnemonic(text, mnemonic));
  // Enter belongs to the text beside it.
  button->setAutoDefault(false);
  SetControlId(*button, number);
  return button;
}

}  // namespace

FindLine::FindLine(QWidget* parent)
    : QWidget(parent), m_what(new QLineEdit), m_outcome(new QLabel) {
  auto* const label = new QLabel(WithMnemonic(Msg::FindLabel, 'F'));
  label->setBuddy(m_what);
  m_what->setAccessibleName(MessageText(Msg::FindLabel));
  SetControlId(*m_what, Ctrl::FindWhat);
  SetControlId(*m_outcome, Ctrl::FindOutcome);
  QPushButton* const next = MakeButton(Msg::FindNext, 'N', Ctrl::FindNext);
  QPushButton* const previous = MakeButton(Msg::FindPrevious, 'v', Ctrl::FindPrevious);
  QPushButton* const close = MakeButton(Msg::FindClose, 'C', Ctrl::FindClose);

  auto* const layout = new QHBoxLayout(this);
  constexpr int kMargin = 6;
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  layout->addWidget(label);
  layout->addWidget(m_what, 1);
  layout->addWidget(m_outcome);
  layout->addWidget(next);
  layout->addWidget(previous);
  layout->addWidget(close);

  connect(next, &QPushButton::clicked, this, [this] { emit Searched(SearchDirection::Down); });
  connect(previous, &QPushButton::clicked, this, [this] { emit Searched(SearchDirection::Up); });
  connect(close, &QPushButton::clicked, this, &FindLine::Close);
  connect(m_what, &QLineEdit::textChanged, m_outcome, &QLabel::clear);
}

void FindLine::Open() {
  show();
  m_what->setFocus();
  m_what->selectAll();
}

QString FindLine::GetText() const { return m_what->text(); }

void FindLine::ShowOutcome(bool found) {
  m_outcome->setText(found ? QString() : MessageText(Msg::FindNothing));
}

void FindLine::Close() {
  hide();
  emit Closed();
}

void FindLine::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      OnEnter(event->modifiers().testFlag(Qt::ShiftModifier));
      break;
    case Qt::Key_Escape:
      Close();
      break;
    default:
      QWidget::keyPressEvent(event);
  }
}

void FindLine::OnEnter(bool shift) {
  if (auto* const button = qobject_cast<QPushButton*>(focusWidget())) {
    button->click();
  } else {
    emit Searched(shift ? SearchDirection::Up : SearchDirection::Down);
  }
}

}  // namespace bomparser
