#pragma once

#include "ui/controls/CTNHostApp.h"
#include "ui/controls/CTNInPlaceEditor.h"
#include "ui/controls/CTNParserListNode.h"
#include "ui/controls/Ids.h"

#include <QMimeData>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QString>
#include <QTableView>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

class QMenu;

namespace bomparser {

class CTNParserListCtrl;

/// The dynamic property of a list that rows of the input file may be dropped on.
constexpr const char* kAcceptsInputRows = "acceptsInputRows";

/// Which of the selected rows comes first when a selection is gathered.
enum class GatherOrder { AsListed, FocusedFirst };

/// The rows that are being dragged, as the lists of this program hand them to each other.
class DraggedRows final : public QMimeData {
  Q_OBJECT

 public:
  explicit DraggedRows(CTNParserListCtrl& list);
  QStringList formats() const override;
  bool hasFormat(const QString& format) const override;
  /// The list that the rows are of; null once it is gone.
  CTNParserListCtrl* GetSource() const { return m_source; }

 private:
  QPointer<CTNParserListCtrl> m_source;
};

/// Base of every list of the main dialog: whole rows are selected, cells are edited in place,
/// selected rows are dragged to other lists, commands come through a context menu and its keys.
/// What a list shows is its model's affair; what an edit, a drop or a command does is said by
/// overriding and told by signals.
class CTNParserListCtrl : public QTableView {
  Q_OBJECT

 public:
  /// `caption` is the title of the list's message boxes.
  explicit CTNParserListCtrl(QString caption, QWidget* parent = nullptr);
  ~CTNParserListCtrl() override;

  const QString& GetCaption() const { return m_caption; }

  // Selection.

  /// The selected rows in list order.
  std::vector<int> GetSelectedRows() const;
  bool IsRowSelected(int row) const;
  void SelectRowAlone(int row);
  void SetSelectedRows(const std::vector<int>& rows);
  /// Collects the nodes of the selected rows for a command. Where memory runs out a box says so and
  /// the answer is false.
  bool GatherSelection(GatherOrder order);
  /// What was gathered last. Nodes are alive as long as somebody holds them.
  const std::vector<std::shared_ptr<CTNParserListNode>>& GetGathered() const { return m_gathered; }

  // Column widths: one text of numbers separated by commas for each list.

  /// Gives every column its stored width. Returns the columns that have none.
  std::vector<int> RestoreColumnWidths(const CTNHostApp& host, std::string_view key);
  /// False when the host could not store them.
  bool StoreColumnWidths(CTNHostApp& host, std::string_view key) const;

  // Editing in place.

  /// Opens the cell's editor; false when the column does not apply to the row.
  virtual bool BeginEdit(const QModelIndex& cell);
  bool IsEditing() const { return !m_editor.isNull(); }
  /// The editor that is open now, or null.
  QWidget* GetEditor() const { return m_editor; }
  /// Ends an open editor as a loss of the focus does: its value is applied.
  void EndEdit();
  /// Ends an open editor without applying its value.
  void DropEdit();

  // Dragging.

  /// Whether rows of this list may be dropped on the widget.
  virtual bool CanDropOn(const QWidget* target) const;
  /// What a drop of this list's rows on the target does, the point being one of the screen.
  virtual void OnDrop(QWidget* target, const QPoint& screenPoint);
  /// The row at a point of the screen; -1 below the last row and outside.
  int RowAt(const QPoint& screenPoint) const;

 signals:
  /// A command of the context menu, or its key; the list has it done by whoever listens.
  void CommandChosen(bomparser::Cmd command);

 protected:
  // For lists to override.

  /// The menu for a row, or with -1 for the area without rows. The list owns it; null shows none.
  virtual QMenu* MakeContextMenu(int row);
  /// A new editor for the cell as a child of `parent`, or null. It plays CTNInPlaceEditor.
  virtual QWidget* MakeEditor(const QModelIndex& cell, QWidget* parent);
  /// Whether a click on the cell, F2 or Enter opens an editor.
  virtual bool HasEditor(const QModelIndex& cell) const;
  /// The end of an edit: applies the value. False refuses it: the editor stays open.
  virtual bool OnEndEdit(const QModelIndex& cell, const EditedValue& value);
  /// An editor without a value was left: there is nothing to apply.
  virtual void OnLeftWithoutValue();
  /// A click on a cell that opens no editor.
  virtual void OnClickCell(const QModelIndex& cell);
  /// A double click on a cell; `edited` tells that its editor is open.
  virtual void OnDoubleClickCell(const QModelIndex& cell, bool edited);
  /// A row of the list as its node; null when the row is gone. May throw std::bad_alloc.
  virtual std::shared_ptr<CTNParserListNode> MakeNode(int row) const;
  /// The selected rows as text for the clipboard: cells separated by tabs, rows by line feeds.
  virtual QString GetSelectedText() const;
  /// Does the command; the base tells the listeners.
  virtual void OnCommand(Cmd command);
  /// Whether an unmodified click on a row of several selected ones keeps them selected.
  void SetKeepsSelectionOnClick(bool keeps) { m_keepsSelection = keeps; }

  /// A menu of the table, its commands connected to OnCommand.
  QMenu* MakeMenu(MenuId menu);
  /// A key that stands for a command while the list has the focus.
  void AddShortcut(Cmd command, const QKeySequence& key);

  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void startDrag(Qt::DropActions actions) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;
  void commitData(QWidget* editor) override;
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

 private:
  friend class CTNInPlaceDelegate;

  /// True while the editor's value is being reported; the list deletes it afterwards.
  bool KeepsForReport(QWidget* editor) {
    if (!m_reporting || editor != m_editor) return false;
    m_released = editor;
    return true;
  }
  QWidget* OpenedEditor(const QModelIndex& cell, QWidget* parent);
  QRect EditorRect(const QRect& cell) const;
  CTNParserListCtrl* SourceOf(const QDropEvent& event) const;
  void ScrollWhileDragging(int row);
  QPixmap PictureOfSelection();
  void ShowDropPlace(int row);
  void FitRowHeight();

  QString m_caption;
  std::vector<std::shared_ptr<CTNParserListNode>> m_gathered;
  QPointer<QWidget> m_editor;
  QPointer<QWidget> m_released;  // An editor that was given up while it was reported.
  QPersistentModelIndex m_edited;
  QPersistentModelIndex m_pressed;  // The cell of a click that may open an editor.
  bool m_keepsSelection = false;
  bool m_reporting = false;  // An edit is being applied; boxes may be open meanwhile.
  bool m_refused = false;
  int m_dropRow = kNoDrop;

  static constexpr int kNoDrop = -1;
};

}  // namespace bomparser
