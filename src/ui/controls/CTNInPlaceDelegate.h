#pragma once

#include <QStyledItemDelegate>

namespace bomparser {

class CTNParserListCtrl;
class CTNParserComboBox;

/// Places a list's in-place editors over their cells and ends them: Enter, Tab, an entry that was
/// chosen, and a loss of the focus report the value; Escape, and the focus going to the dialog
/// itself, do not. What a value means is the list's affair.
class CTNInPlaceDelegate final : public QStyledItemDelegate {
  Q_OBJECT

 public:
  explicit CTNInPlaceDelegate(CTNParserListCtrl& list);

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  /// Nothing: an editor is made with its value.
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  /// Behind the report of an edit, whose editor must not go in an event loop of whoever is told.
  void destroyEditor(QWidget* editor, const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;
  bool eventFilter(QObject* watched, QEvent* event) override;

  /// The list has opened the editor over the cell: a combo box shows its entries at once.
  void OnOpened(QWidget* editor, const QRect& cell);
  /// Reports the editor's value and closes it, unless the value is refused.
  void End(QWidget* editor);
  /// Closes the editor; its value is forgotten.
  void Drop(QWidget* editor);

 private:
  void LeaveDropDown(CTNParserComboBox* box);
  bool OnKey(QWidget* editor, int key);
  void OnFocusLost(QWidget* editor);
  void OnDropDownClosed(CTNParserComboBox* box);

  CTNParserListCtrl& m_list;
  bool m_escaped = false;  // The drop-down was left by Escape: its box stays open.
};

}  // namespace bomparser
