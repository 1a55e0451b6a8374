#include "ui/controls/CTNInPlaceEdit.h"

#include <QKeyEvent>

namespace bomparser {
namespace {

// Keys that the dialog would otherwise take for itself.
bool IsForEditor(const QKeyEvent& key) {
  if (key.modifiers().testFlag(Qt::ControlModifier)) return true;
  switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Delete:
    case Qt::Key_Escape:
    case Qt::Key_Tab:
    case Qt::Key_Up:
    case Qt::Key_Down:
      return true;
    default:
      return false;
  }
}

}  // namespace

CTNInPlaceEdit::CTNInPlaceEdit(QWidget* parent, const QModelIndex& cell, const QString& text)
    : CTNParserEdit(parent), m_cell(cell), m_initialText(text) {
  SetControlId(*this, Ctrl::InPlaceText);
  setText(text);
  selectAll();
}

bool CTNInPlaceEdit::GetValue(EditedValue& value) const {
  value = {text(), {}};
  return true;
}

void CTNInPlaceEdit::SelectAll() { selectAll(); }

bool CTNInPlaceEdit::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && IsForEditor(*static_cast<QKeyEvent*>(event))) {
    event->accept();
    return true;
  }
  return CTNParserEdit::event(event);
}

void CTNInPlaceEdit::keyPressEvent(QKeyEvent* event) {
  CTNParserEdit::keyPressEvent(event);
  // What a line of text has no use for must not move the list's current row under it.
  if (event->key() != Qt::Key_F1) event->accept();
}

}  // namespace bomparser
