#pragma once

#include "entry/CTNFileParserEngine.h"
#include "ui/controls/CTNParserListCtrl.h"
#include "ui/views/CTNTemplateListModel.h"

#include <QItemSelectionModel>
#include <cstdint>
#include <memory>
#include <vector>

namespace bomparser {

/// Base of the lists that show parts of the template: the menu and keys of editing, the state of
/// every row and its message, edits that go to all selected rows, rows that are moved by mouse and
/// keys. What an edit changes is done at once; what follows from it is told by signals.
class CTNTemplateListCtrl : public CTNParserListCtrl {
  Q_OBJECT

 public:
  /// Gives the columns the widths that the host has stored, and the others those of their titles.
  /// The latter, but for CURRENT VALUE, grow once: for what the list shows when it has rows first.
  void RestoreWidths(const CTNHostApp& host);
  /// False when the host could not store them.
  bool StoreWidths(CTNHostApp& host) const;

  /// The row that shows the element, or -1.
  int FindRow(const CTNTemplateArrayElement* element) const;
  /// False for an element that the list does not show.
  bool SelectElementAlone(const CTNTemplateArrayElement* element);

  bool CanDropOn(const QWidget* target) const override;
  void OnDrop(QWidget* target, const QPoint& screenPoint) override;

 signals:
  /// The template was changed and is marked as modified; the bits are those of EditKind.
  void TemplateEdited(std::uint32_t editKinds);
  /// Lists may show something that is no longer so.
  void RepaintWanted();

 protected:
  /// What tells one list from the others.
  struct Kind {
    std::vector<Msg> titles;
    int typeColumn;   // The one whose editor "Change Type" opens.
    Msg widthsKey;    // The name under which the host stores the widths.
    Ctrl control;     // The list's number,
    Msg description;  // and its name for assistive tools.
  };

  /// The engine is not owned and lives longer. `caption` is the title of the message boxes.
  CTNTemplateListCtrl(CTNFileParserEngine& engine, QString caption, const Kind& kind,
                      QWidget* parent);

  CTNFileParserEngine& Engine() const { return m_engine; }

  /// Shows these rows. Selection, current cell and scroll position stay with the elements, and
  /// nobody is told of a selection. An open editor survives where the elements stay the same.
  void ShowNodes(CTNTemplateListModel::Nodes nodes);
  /// True while rows are being replaced: changes of the selection mean nothing then.
  bool IsRefilling() const { return m_refilling; }

  /// The nodes that an edit of the cell applies to, in list order: those of all selected rows if
  /// the cell's is one, else that alone. Rows whose column opens no editor are left out.
  template <class Node>
  std::vector<std::shared_ptr<Node>> NodesToEdit(const QModelIndex& cell) const {
    return NodesOf<Node>(RowsToEdit(cell));
  }
  /// The nodes of all selected rows in list order.
  template <class Node>
  std::vector<std::shared_ptr<Node>> SelectedNodes() const {
    return NodesOf<Node>(GetSelectedRows());
  }
  template <class Node>
  std::shared_ptr<Node> NodeAt(int row) const {
    return std::static_pointer_cast<Node>(m_model->GetNode(row));
  }
  /// After an edit: shows it, marks the template as modified and tells of it.
  void TellEdited(std::uint32_t editKinds);

  /// Asks whoever listens to put the selected elements before this row's element; null is the end.
  virtual void AskToMoveBefore(const CTNTemplateListNode* before) = 0;
  /// Renames and removes what the menu does not offer in this list.
  virtual void AdaptMenu(QMenu& menu) = 0;

  /// The item of a menu, submenus included, that has the command; null when there is none.
  static QAction* FindItem(const QMenu& menu, Cmd command);
  static void RemoveItem(QMenu& menu, Cmd command);

  QMenu* MakeContextMenu(int row) override;
  void OnCommand(Cmd command) override;
  bool HasEditor(const QModelIndex& cell) const override;
  void OnClickCell(const QModelIndex& cell) override;
  void OnDoubleClickCell(const QModelIndex& cell, bool edited) override;
  std::shared_ptr<CTNParserListNode> MakeNode(int row) const override;

 private:
  struct Kept;

  template <class Node>
  std::vector<std::shared_ptr<Node>> NodesOf(const std::vector<int>& rows) const {
    std::vector<std::shared_ptr<Node>> nodes;
    nodes.reserve(rows.size());
    for (const int row : rows) {
      if (auto node = NodeAt<Node>(row)) nodes.push_back(std::move(node));
    }
    return nodes;
  }
  std::vector<int> RowsToEdit(const QModelIndex& cell) const;
  Kept KeepSelection() const;
  void BringBack(const Kept& kept);
  void GrowToContents();
  void ShowStatus(int row);
  void ChangeType();
  void MoveUp();
  void MoveDown();
  void MoveBefore(int row);

  CTNFileParserEngine& m_engine;
  CTNTemplateListModel* m_model;
  int m_typeColumn;
  Msg m_widthsKey;
  std::vector<int> m_growing;  // Columns that are still to grow to what they show.
  bool m_refilling = false;
};

}  // namespace bomparser
