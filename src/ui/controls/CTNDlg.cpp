#include "ui/controls/CTNDlg.h"

#include "input/MessageTexts.h"

#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QWhatsThis>
#include <algorithm>
#include <array>

namespace bomparser {
namespace {

// Controls of every dialog that the help engine has no topic of ours for, and the pairs that hosts
// expect behind each list.
constexpr std::array kFixedPairs = {HelpPair(12323, 77859), HelpPair(12324, 77860),
                                    HelpPair(12325, 77861)};

bool HasStandardHelp(int control) {
  const auto isControl = [control](const HelpPair& pair) { return pair.first == control; };
  return control == static_cast<int>(Ctrl::Ok) || control == static_cast<int>(Ctrl::Cancel) ||
         control == static_cast<int>(Ctrl::Help) || std::ranges::any_of(kFixedPairs, isControl);
}

bool HasNumber(const QWidget& control) {
  constexpr auto kNoNumber = static_cast<Ctrl>(65535);
  const Ctrl number = GetControlId(control);
  return number != Ctrl::None && number != kNoNumber;
}

bool IsPartOfControl(const QWidget& part) {
  const QWidget* const whole = part.parentWidget();
  return qobject_cast<const QAbstractScrollArea*>(whole) != nullptr ||
         qobject_cast<const QComboBox*>(whole) != nullptr ||
         qobject_cast<const QAbstractSpinBox*>(whole) != nullptr;
}

/// What holds the controls of a layout together is none itself.
bool IsOnlyContainer(const QWidget& widget) {
  const QMetaObject* const type = widget.metaObject();
  return !HasNumber(widget) &&
         (type == &QWidget::staticMetaObject || type == &QDialogButtonBox::staticMetaObject);
}

bool IsTabStop(const QWidget& control) {
  return (control.focusPolicy() & Qt::TabFocus) != 0 && control.isVisible() &&
         control.isEnabled() && HasNumber(control);
}

}  // namespace

CTNDlg::CTNDlg(CTNHostApp& host, DialogId number, QWidget* parent) : QDialog(parent), m_host(host) {
  SetDialogId(*this, number);
  setWindowFlag(Qt::WindowContextHelpButtonHint);
}

QWidget* CTNDlg::ControlAt(const QPoint& point) {
  const auto controlAt = [this, &point]() -> QWidget* {
    QWidget* const child = childAt(point);
    return child != nullptr && IsOnlyContainer(*child) ? nullptr : child;
  };
  if (QWidget* control = controlAt()) return control;
  // A control may be about to appear: one look more once everything that waits is done.
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  return controlAt();
}

QWidget* CTNDlg::OrNextWithNumber(QWidget* control) {
  // What lies under the point may be a part of a control only.
  while (!HasNumber(*control) && IsPartOfControl(*control))
    control = control->parentWidget();
  if (HasNumber(*control)) return control;
  for (QWidget* next = control->nextInFocusChain(); next != control;
       next = next->nextInFocusChain()) {
    if (IsTabStop(*next)) return next;
  }
  return control;
}

void CTNDlg::ShowPopUp(HelpRequest request) {
  request.topicFile = m_host.GetHelpFilePath() + GetMessageText(Msg::ContextHelpTopicSuffix);
  m_host.ShowHelp(request);
}

void CTNDlg::ShowMenuHelp(QWidget* control, const QPoint& screenPoint) {
  if (control == nullptr) return;
  control = OrNextWithNumber(control);
  const int help = GetHelpId(*control);
  if (help == 0) return;
  ShowPopUp({.command = HelpCommand::ContextMenu,
             .topicFile = {},
             .pairs = {{static_cast<int>(GetControlId(*control)), help}},
             .control = control,
             .screenPoint = screenPoint});
}

void CTNDlg::ShowKeyHelp(QWidget* control, const QPoint& screenPoint, AskedBy askedBy) {
  if (control == nullptr) return;
  control = OrNextWithNumber(control);
  const int number = static_cast<int>(GetControlId(*control));
  std::vector<HelpPair> pairs;
  // The help engine's own texts serve for buttons that every dialog has.
  pairs.push_back(HasStandardHelp(number) ? HelpPair(-2, -2)
                                          : HelpPair(number, GetHelpId(*control)));
  pairs.insert(pairs.end(), kFixedPairs.begin(), kFixedPairs.end());
  pairs.emplace_back(0, 0);
  ShowPopUp({.command = HelpCommand::HelpKey,
             .topicFile = {},
             .pairs = std::move(pairs),
             .control = control,
             .screenPoint = screenPoint,
             .byKey = askedBy == AskedBy::Key});
}

bool CTNDlg::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::QueryWhatsThis:
      // Every place of the dialog has help, or leads to a control that has.
      event->accept();
      return true;
    case QEvent::WhatsThis: {
      // Qt leaves this mode only for texts that it shows itself.
      QWhatsThis::leaveWhatsThisMode();
      const auto* help = static_cast<QHelpEvent*>(event);
      ShowKeyHelp(ControlAt(mapFromGlobal(help->globalPos())), help->globalPos(),
                  AskedBy::Pointing);
      return true;
    }
    default:
      return QDialog::event(event);
  }
}

void CTNDlg::contextMenuEvent(QContextMenuEvent* event) {
  const QPoint point = mapFromGlobal(event->globalPos());
  ShowMenuHelp(event->reason() == QContextMenuEvent::Keyboard ? focusWidget() : ControlAt(point),
               event->globalPos());
  event->accept();
}

void CTNDlg::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_F1) {
    QDialog::keyPressEvent(event);
    return;
  }
  if (event->modifiers().testFlag(Qt::ShiftModifier)) {
    QWhatsThis::enterWhatsThisMode();
  } else if (QWidget* control = focusWidget()) {
    ShowKeyHelp(control, control->mapToGlobal(control->rect().center()), AskedBy::Key);
  }
}

}  // namespace bomparser
