#include "ui/views/CTNTemplateListCtrl.h"

#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/DisplayText.h"

#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <algorithm>
#include <unordered_set>
#include <utility>

namespace bomparser {
namespace {

bool AreNeighbours(const std::vector<int>& rows) {
  return rows.back() - rows.front() + 1 == static_cast<int>(rows.size());
}

}  // namespace

/// What a refill leaves as it was.
struct CTNTemplateListCtrl::Kept {
  std::unordered_set<const void*> selected;
  const void* current = nullptr;
  int column = 0;
  int down = 0;
  int right = 0;
};

CTNTemplateListCtrl::CTNTemplateListCtrl(CTNFileParserEngine& engine, QString caption,
                                         const Kind& kind, QWidget* parent)
    : CTNParserListCtrl(std::move(caption), parent),
      m_engine(engine),
      m_model(new CTNTemplateListModel(kind.titles, this)),
      m_typeColumn(kind.typeColumn),
      m_widthsKey(kind.widthsKey) {
  setModel(m_model);

  SetControlId(*this, kind.control);
  setAccessibleName(MessageText(kind.description));
  setShowGrid(true);
  SetKeepsSelectionOnClick(true);
  AddShortcut(Cmd::DeleteSelected, QKeySequence(Qt::Key_Delete));
  AddShortcut(Cmd::InsertNewAbove, QKeySequence(Qt::Key_Insert));
  AddShortcut(Cmd::MoveUp, QKeySequence(Qt::ALT | Qt::Key_Up));
  AddShortcut(Cmd::MoveDown, QKeySequence(Qt::ALT | Qt::Key_Down));
}

// Widths.

void CTNTemplateListCtrl::RestoreWidths(const CTNHostApp& host) {
  m_growing = RestoreColumnWidths(host, GetMessageText(m_widthsKey));
  for (const int column : m_growing)
    setColumnWidth(column, horizontalHeader()->sectionSizeHint(column));
  const QString fixed = MessageText(Msg::ColumnCurrentValue);
  std::erase_if(m_growing, [&](int column) {
    return m_model->headerData(column, Qt::Horizontal, Qt::DisplayRole) == fixed;
  });
}

void CTNTemplateListCtrl::GrowToContents() {
  constexpr int kWidest = 300;
  if (m_growing.empty() || m_model->rowCount() == 0) return;
  for (const int column : m_growing) {
    const int contents = std::min(sizeHintForColumn(column), kWidest);
    setColumnWidth(column, std::max(columnWidth(column), contents));
  }
  m_growing.clear();
}

bool CTNTemplateListCtrl::StoreWidths(CTNHostApp& host) const {
  return StoreColumnWidths(host, GetMessageText(m_widthsKey));
}

// Rows.

int CTNTemplateListCtrl::FindRow(const CTNTemplateArrayElement* element) const {
  const auto& nodes = m_model->GetNodes();
  const auto found = std::find_if(nodes.begin(), nodes.end(), [element](const auto& node) {
    return node->GetElement() == element;
  });
  return element != nullptr && found != nodes.end() ? static_cast<int>(found - nodes.begin()) : -1;
}

bool CTNTemplateListCtrl::SelectElementAlone(const CTNTemplateArrayElement* element) {
  const int row = FindRow(element);
  if (row < 0) return false;
  SelectRowAlone(row);
  scrollTo(m_model->index(row, 0));
  return true;
}

std::shared_ptr<CTNParserListNode> CTNTemplateListCtrl::MakeNode(int row) const {
  return m_model->GetNode(row);
}

CTNTemplateListCtrl::Kept CTNTemplateListCtrl::KeepSelection() const {
  Kept kept;
  for (const auto& node : SelectedNodes<CTNTemplateListNode>())
    kept.selected.insert(node->GetKey());
  if (const auto node = m_model->GetNode(currentIndex().row())) kept.current = node->GetKey();
  kept.column = std::max(0, currentIndex().column());
  kept.down = verticalScrollBar()->value();
  kept.right = horizontalScrollBar()->value();
  return kept;
}

void CTNTemplateListCtrl::BringBack(const Kept& kept) {
  std::vector<int> selected;
  int current = -1;
  for (int row = 0; row < m_model->rowCount(); ++row) {
    const void* const key = m_model->GetNodes()[static_cast<std::size_t>(row)]->GetKey();
    if (kept.selected.contains(key)) selected.push_back(row);
    if (key != nullptr && key == kept.current) current = row;
  }
  if (current >= 0) {
    selectionModel()->setCurrentIndex(m_model->index(current, kept.column),
                                      QItemSelectionModel::NoUpdate);
  }
  SetSelectedRows(selected);
  executeDelayedItemsLayout();
  verticalScrollBar()->setValue(kept.down);
  horizontalScrollBar()->setValue(kept.right);
}

void CTNTemplateListCtrl::ShowNodes(CTNTemplateListModel::Nodes nodes) {
  if (m_model->ShowsSame(nodes)) {
    m_model->TellChanged();
    return;
  }
  DropEdit();
  const Kept kept = KeepSelection();
  m_refilling = true;
  m_model->Replace(std::move(nodes));
  GrowToContents();
  BringBack(kept);
  m_refilling = false;
}

bool CTNTemplateListCtrl::HasEditor(const QModelIndex& cell) const {
  return m_model->flags(cell).testFlag(Qt::ItemIsEditable);
}

std::vector<int> CTNTemplateListCtrl::RowsToEdit(const QModelIndex& cell) const {
  std::vector<int> rows =
      IsRowSelected(cell.row()) ? GetSelectedRows() : std::vector<int>{cell.row()};
  std::erase_if(rows, [&](int row) { return !HasEditor(m_model->index(row, cell.column())); });
  return rows;
}

void CTNTemplateListCtrl::TellEdited(std::uint32_t editKinds) {
  if (CTNParserTemplate* const document = m_engine.GetTemplate()) {
    document->SetModified(ChangeKind::Modified);
  }
  m_model->TellChanged();
  emit TemplateEdited(editKinds);
}

// Status.

void CTNTemplateListCtrl::ShowStatus(int row) {
  const auto node = m_model->GetNode(row);
  if (!node) return;
  const QString text = ToDisplayText(node->GetStatusText());
  if (text.isEmpty()) return;
  const bool valid = node->IsValid() != 0;
  UserDialogs().Ask(this, {GetCaption(), text, valid ? BoxIcon::Information : BoxIcon::Error});
}

void CTNTemplateListCtrl::OnClickCell(const QModelIndex& cell) {
  if (cell.column() == kStateColumn) ShowStatus(cell.row());
}

void CTNTemplateListCtrl::OnDoubleClickCell(const QModelIndex& cell, bool edited) {
  // The first of the two clicks has shown it there.
  if (!edited && cell.column() != kStateColumn) ShowStatus(cell.row());
}

// Commands.

QAction* CTNTemplateListCtrl::FindItem(const QMenu& menu, Cmd command) {
  for (QAction* item : menu.actions()) {
    if (GetCommandId(*item) == command) return item;
    if (item->menu() == nullptr) continue;
    if (QAction* found = FindItem(*item->menu(), command)) return found;
  }
  return nullptr;
}

void CTNTemplateListCtrl::RemoveItem(QMenu& menu, Cmd command) { delete FindItem(menu, command); }

QMenu* CTNTemplateListCtrl::MakeContextMenu(int row) {
  QMenu* const menu = MakeMenu(MenuId::TemplateElements);
  AdaptMenu(*menu);
  if (row >= 0) return menu;
  for (QAction* item : menu->actions())
    item->setEnabled(GetCommandId(*item) == Cmd::AppendNew);
  return menu;
}

void CTNTemplateListCtrl::OnCommand(Cmd command) {
  // All but one are about selected rows; keys are there without any.
  if (command != Cmd::AppendNew && GetSelectedRows().empty()) return;
  switch (command) {
    case Cmd::ChangeType:
      ChangeType();
      break;
    case Cmd::MoveUp:
      MoveUp();
      break;
    case Cmd::MoveDown:
      MoveDown();
      break;
    default:
      CTNParserListCtrl::OnCommand(command);
  }
}

void CTNTemplateListCtrl::ChangeType() {
  BeginEdit(m_model->index(GetSelectedRows().front(), m_typeColumn));
}

// Moving.

bool CTNTemplateListCtrl::CanDropOn(const QWidget* target) const { return target == this; }

void CTNTemplateListCtrl::OnDrop(QWidget* target, const QPoint& screenPoint) {
  if (target != this) return;
  const int row = RowAt(screenPoint);
  MoveBefore(row >= 0 ? row : m_model->rowCount());
}

void CTNTemplateListCtrl::MoveUp() {
  const int first = GetSelectedRows().front();
  if (first > 0) MoveBefore(first - 1);
}

void CTNTemplateListCtrl::MoveDown() {
  const int last = GetSelectedRows().back();
  if (last + 1 < m_model->rowCount()) MoveBefore(last + 2);
}

void CTNTemplateListCtrl::MoveBefore(int row) {
  const std::vector<int> rows = GetSelectedRows();
  if (rows.empty() || std::binary_search(rows.begin(), rows.end(), row)) return;
  if (AreNeighbours(rows) && row == rows.back() + 1) return;  // That is where they are.
  const auto before = m_model->GetNode(row);
  if (before && before->GetElement() == nullptr) return;
  AskToMoveBefore(before.get());
}

}  // namespace bomparser
