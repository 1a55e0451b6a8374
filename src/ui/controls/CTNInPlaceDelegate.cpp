#include "ui/controls/CTNInPlaceDelegate.h"

#include "ui/controls/CTNParserComboBox.h"
#include "ui/controls/CTNParserListCtrl.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <array>

namespace bomparser {
namespace {

bool IsTab(int key) { return key == Qt::Key_Tab || key == Qt::Key_Backtab; }

/// Keys that mean nothing to a closed box: help is the dialog's, a modifier alone is nothing yet.
bool IsForOthers(int key) {
  constexpr std::array kKeys = {Qt::Key_F1,   Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt,
                                Qt::Key_Meta, Qt::Key_AltGr, Qt::Key_Menu,    Qt::Key_CapsLock};
  return std::ranges::find(kKeys, key) != kKeys.end();
}

constexpr int kMostRows = 22;  // The box and its entries.

// Every entry is as high as the cell, so that the list looks like a part of it.
void FitEntries(CTNParserComboBox& box, int height) {
  for (int entry = 0; entry < box.count(); ++entry)
    box.setItemData(entry, QSize(0, height), Qt::SizeHintRole);
}

int DropDownWidth(CTNParserComboBox& box, int cellWidth) {
  constexpr int kBorder = 8;
  const int width = box.GetLongestEntryWidth() + kBorder;
  if (cellWidth >= width) return width;
  // A drop-down wider than its cell is measured once more with an entry that is there for the
  // sizing alone: boxes that measure their entries keep a decent width when all are short.
  box.addItem(QStringLiteral("ZZZZZZZZZZZZZZZ"));
  const int probed = box.GetLongestEntryWidth() + kBorder;
  box.removeItem(box.count() - 1);
  return probed;
}

}  // namespace

CTNInPlaceDelegate::CTNInPlaceDelegate(CTNParserListCtrl& list)
    : QStyledItemDelegate(&list), m_list(list) {}

QWidget* CTNInPlaceDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                          const QModelIndex& index) const {
  return m_list.OpenedEditor(index, parent);
}

void CTNInPlaceDelegate::OnOpened(QWidget* editor, const QRect& cell) {
  m_escaped = false;
  auto* box = qobject_cast<CTNParserComboBox*>(editor);
  if (box == nullptr) return;
  // Behind the signal: whoever is told of the edit may close the window, and the box with it.
  connect(box, &QComboBox::activated, this,
          [this, box] { QTimer::singleShot(0, box, [this, box] { End(box); }); });
  box->view()->installEventFilter(this);
  box->view()->parentWidget()->installEventFilter(this);

  const int width = DropDownWidth(*box, cell.width());
  FitEntries(*box, cell.height());
  // A list that scrolls, also where the style would show all entries as a menu.
  box->setStyleSheet(QStringLiteral("QComboBox { combobox-popup: 0; }"));
  box->setMaxVisibleItems(std::min(box->count(), kMostRows - 1));
  const bool scrolls = box->count() > box->maxVisibleItems();
  const int bar = scrolls ? box->style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0;
  box->view()->setMinimumWidth(width + bar);
  QTimer::singleShot(0, box, &QComboBox::showPopup);
}

void CTNInPlaceDelegate::destroyEditor(QWidget* editor, const QModelIndex& index) const {
  if (!m_list.KeepsForReport(editor)) QStyledItemDelegate::destroyEditor(editor, index);
}

void CTNInPlaceDelegate::setEditorData(QWidget*, const QModelIndex&) const {}

void CTNInPlaceDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                              const QModelIndex&) const {
  editor->setGeometry(m_list.EditorRect(option.rect));
}

bool CTNInPlaceDelegate::eventFilter(QObject* watched, QEvent* event) {
  QWidget* const editor = m_list.GetEditor();
  if (editor == nullptr) return false;
  auto* const box = qobject_cast<CTNParserComboBox*>(editor);
  if (watched != editor) {  // The drop-down or its list.
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride) {
      const int key = static_cast<QKeyEvent*>(event)->key();
      m_escaped = key == Qt::Key_Escape;
      if (event->type() == QEvent::KeyPress && box != nullptr && IsTab(key)) {
        LeaveDropDown(box);
        return true;
      }
    } else if (event->type() == QEvent::Hide && watched->isWidgetType() && box != nullptr &&
               watched == box->view()->parentWidget()) {
      OnDropDownClosed(box);
    }
    return false;
  }

  switch (event->type()) {
    case QEvent::ShortcutOverride:
      if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape) return false;
      event->accept();
      return true;
    case QEvent::KeyPress:
      return OnKey(editor, static_cast<QKeyEvent*>(event)->key());
    case QEvent::Wheel:
      return box != nullptr;  // It would choose by accident.
    case QEvent::MouseButtonPress:
      m_escaped = false;  // The list is opened anew.
      return false;
    case QEvent::FocusOut:
      OnFocusLost(editor);
      return false;
    default:
      return false;
  }
}

/// Tab chooses the entry that the user went to; who went to none leaves the box as it is.
void CTNInPlaceDelegate::LeaveDropDown(CTNParserComboBox* box) {
  const int entry = box->view()->currentIndex().row();
  const bool chosen = entry != box->currentIndex();
  if (chosen) box->setCurrentIndex(entry);
  box->hidePopup();
  if (chosen) {
    emit box->activated(entry);
  } else {
    QTimer::singleShot(0, box, [this, box] { End(box); });
  }
}

bool CTNInPlaceDelegate::OnKey(QWidget* editor, int key) {
  auto* const box = qobject_cast<CTNParserComboBox*>(editor);
  switch (key) {
    case Qt::Key_Escape:
      Drop(editor);
      return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (box != nullptr) {
        emit box->activated(box->currentIndex());
      } else {
        End(editor);
      }
      return true;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      if (m_escaped) {
        Drop(editor);
      } else {
        End(editor);
      }
      return true;
    default:
      if (box == nullptr || IsForOthers(key)) return false;
      // Keys choose in the open list only, where they can be taken back.
      m_escaped = false;
      box->showPopup();
      return true;
  }
}

void CTNInPlaceDelegate::OnFocusLost(QWidget* editor) {
  if (QApplication::activePopupWidget() != nullptr) return;  // Its own list or menu.
  if (m_escaped || QApplication::focusWidget() == m_list.window()) {
    Drop(editor);
  } else {
    End(editor);
  }
}

void CTNInPlaceDelegate::OnDropDownClosed(CTNParserComboBox* box) {
  if (m_escaped) return;
  // A chosen entry is told behind this. What is left then was closed without a choice.
  QTimer::singleShot(0, box, [this, box] {
    if (m_list.GetEditor() == box && !box->view()->isVisible()) End(box);
  });
}

void CTNInPlaceDelegate::End(QWidget* editor) {
  const QPointer<CTNInPlaceDelegate> alive(this);
  emit commitData(editor);
  if (!alive.isNull()) emit closeEditor(editor, NoHint);
}

void CTNInPlaceDelegate::Drop(QWidget* editor) { emit closeEditor(editor, RevertModelCache); }

}  // namespace bomparser
