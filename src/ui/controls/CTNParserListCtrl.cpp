#include "ui/controls/CTNParserListCtrl.h"

#include "ui/controls/CTNInPlaceDelegate.h"
#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/DisplayText.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDrag>
#include <QDragMoveEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QRegion>
#include <QScrollBar>
#include <algorithm>
#include <new>
#include <utility>

namespace bomparser {
namespace {

const QString kRowsFormat = QStringLiteral("application/x-bomparser-rows");

struct MenuItem {
  enum class Kind { Command, BeginSubmenu, EndSubmenu };
  MenuId menu;
  Kind kind;
  Cmd command;
  Msg text;
};

constexpr MenuItem kMenuItems[] = {
#define MENU_ITEM(menu, command, text) \
  {MenuId::menu, MenuItem::Kind::Command, Cmd::command, Msg::text},
#define MENU_SUBMENU(menu, text) {MenuId::menu, MenuItem::Kind::BeginSubmenu, Cmd::None, Msg::text},
#define MENU_END(menu) {MenuId::menu, MenuItem::Kind::EndSubmenu, Cmd::None, Msg::UnknownId},
#include "res/menus.def"
#undef MENU_ITEM
#undef MENU_SUBMENU
#undef MENU_END
};

bool IsPlainLeft(const QMouseEvent& event) {
  return event.button() == Qt::LeftButton && event.modifiers() == Qt::NoModifier;
}

bool IsButtonEvent(const QEvent* event) {
  return event != nullptr &&
         (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease);
}

}  // namespace

DraggedRows::DraggedRows(CTNParserListCtrl& list) : m_source(&list) {}

QStringList DraggedRows::formats() const { return {kRowsFormat}; }

bool DraggedRows::hasFormat(const QString& format) const { return format == kRowsFormat; }

CTNParserListCtrl::CTNParserListCtrl(QString caption, QWidget* parent)
    : QTableView(parent), m_caption(std::move(caption)) {
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setItemDelegate(new CTNInPlaceDelegate(*this));
  setDragEnabled(true);
  setAcceptDrops(true);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  setHorizontalScrollMode(ScrollPerPixel);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  FitRowHeight();
  AddShortcut(Cmd::CopyText, QKeySequence::Copy);
}

CTNParserListCtrl::~CTNParserListCtrl() {
  // An open editor goes with the widget, when this is no list any more that its end could be told.
  delete itemDelegate();
}

// Selection.

std::vector<int> CTNParserListCtrl::GetSelectedRows() const {
  std::vector<int> rows;
  if (selectionModel() == nullptr) return rows;
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row)
      rows.push_back(row);
  }
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

bool CTNParserListCtrl::IsRowSelected(int row) const {
  return selectionModel() != nullptr && row >= 0 &&
         selectionModel()->isSelected(model()->index(row, 0));
}

void CTNParserListCtrl::SelectRowAlone(int row) {
  if (model() == nullptr || row < 0 || row >= model()->rowCount()) return;
  selectionModel()->setCurrentIndex(
      model()->index(row, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void CTNParserListCtrl::SetSelectedRows(const std::vector<int>& rows) {
  if (model() == nullptr) return;
  QItemSelection selection;
  const int lastColumn = std::max(0, model()->columnCount() - 1);
  for (std::size_t from = 0, to = 0; from < rows.size(); from = to) {
    // A range for every run of neighbours.
    for (to = from + 1; to < rows.size() && rows[to] == rows[to - 1] + 1;)
      ++to;
    selection.select(model()->index(rows[from], 0), model()->index(rows[to - 1], lastColumn));
  }
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

bool CTNParserListCtrl::GatherSelection(GatherOrder order) {
  try {
    std::vector<std::shared_ptr<CTNParserListNode>> gathered;
    std::vector<int> rows = GetSelectedRows();
    const int focused = currentIndex().row();
    if (order == GatherOrder::FocusedFirst) {
      std::stable_partition(rows.begin(), rows.end(),
                            [focused](int row) { return row == focused; });
    }
    gathered.reserve(rows.size());
    for (const int row : rows) {
      if (auto node = MakeNode(row)) gathered.push_back(std::move(node));
    }
    m_gathered = std::move(gathered);
    return true;
  } catch (const std::bad_alloc&) {
    UserDialogs().Ask(this, {m_caption, MessageText(Msg::XmlOutOfMemory), BoxIcon::Error});
    return false;
  }
}

// Column widths.

std::vector<int> CTNParserListCtrl::RestoreColumnWidths(const CTNHostApp& host,
                                                        std::string_view key) {
  constexpr int kWidest = 10000;
  std::vector<int> without;
  const QString stored = QString::fromStdString(
      host.GetProfileString(GetMessageText(Msg::ProfileSection), key, std::string_view()));
  const QStringList widths = stored.split(u',');
  for (int column = 0; column < model()->columnCount(); ++column) {
    bool isNumber = false;
    const int width = column < widths.size() ? widths[column].toInt(&isNumber) : 0;
    if (isNumber && width > 0 && width <= kWidest) {
      setColumnWidth(column, width);
    } else {
      without.push_back(column);
    }
  }
  return without;
}

bool CTNParserListCtrl::StoreColumnWidths(CTNHostApp& host, std::string_view key) const {
  QStringList widths;
  for (int column = 0; column < model()->columnCount(); ++column)
    widths.append(QString::number(columnWidth(column)));
  return host.WriteProfileString(GetMessageText(Msg::ProfileSection), key,
                                 widths.join(u',').toStdString());
}

// Editing in place.

bool CTNParserListCtrl::BeginEdit(const QModelIndex& cell) {
  if (!cell.isValid() || !HasEditor(cell)) return false;
  if (isRowHidden(cell.row()) || isColumnHidden(cell.column())) return false;
  if (IsEditing()) {
    const QPersistentModelIndex kept(cell);  // Ending the other edit may fill the list anew.
    const QPointer<CTNParserListCtrl> alive(this);
    EndEdit();
    // It stays open when its value was refused, and while whoever is told of it is not done.
    return !alive.isNull() && !IsEditing() && kept.isValid() && BeginEdit(kept);
  }
  scrollTo(cell);
  if (!edit(cell, AllEditTriggers, nullptr) || m_editor.isNull()) return false;
  static_cast<CTNInPlaceDelegate*>(itemDelegate())->OnOpened(m_editor, visualRect(cell));
  return true;
}

QWidget* CTNParserListCtrl::OpenedEditor(const QModelIndex& cell, QWidget* parent) {
  QWidget* editor = MakeEditor(cell, parent);
  if (editor == nullptr) return nullptr;
  editor->setFont(font());
  editor->setAutoFillBackground(true);
  editor->setAccessibleName(model()->headerData(cell.column(), Qt::Horizontal).toString());
  m_editor = editor;
  m_edited = cell;
  m_refused = false;
  return editor;
}

QRect CTNParserListCtrl::EditorRect(const QRect& cell) const {
  constexpr int kOverlap = 2;
  QRect rect = cell;
  rect.setRight(std::min(cell.right() + kOverlap, viewport()->width() - 1));
  rect.setTop(cell.top() - kOverlap);
  rect.setLeft(std::max(cell.left(), 0));
  return rect;
}

void CTNParserListCtrl::EndEdit() {
  if (m_editor.isNull()) return;
  static_cast<CTNInPlaceDelegate*>(itemDelegate())->End(m_editor);
}

void CTNParserListCtrl::DropEdit() {
  if (m_editor.isNull()) return;
  static_cast<CTNInPlaceDelegate*>(itemDelegate())->Drop(m_editor);
}

void CTNParserListCtrl::commitData(QWidget* editor) {
  if (m_reporting || editor == nullptr || editor != m_editor) return;
  auto* const value = dynamic_cast<CTNInPlaceEditor*>(editor);
  EditedValue edited;
  m_refused = false;
  if (value == nullptr || !m_edited.isValid()) return;

  const QPointer<CTNParserListCtrl> alive(this);
  const bool hadFocus = editor->hasFocus();
  m_reporting = true;  // A box that refuses the value takes the focus: that ends nothing.
  bool accepted = true;
  if (value->GetValue(edited)) {
    accepted = OnEndEdit(m_edited, edited);
  } else {
    OnLeftWithoutValue();
  }
  if (alive.isNull()) return;
  m_reporting = false;
  // A box closes whatever is said of its value; only a text can be mended.
  m_refused = !accepted && qobject_cast<QComboBox*>(editor) == nullptr;
  if (hadFocus && !m_edited.isValid()) setFocus();  // The list was filled anew meanwhile.
  if (!m_released.isNull()) std::exchange(m_released, nullptr)->deleteLater();
}

void CTNParserListCtrl::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  if (m_reporting) return;
  if (m_refused && hint != QAbstractItemDelegate::RevertModelCache && editor == m_editor &&
      editor != nullptr) {
    m_refused = false;
    // Not at once: this may be the very loss of the focus.
    QMetaObject::invokeMethod(
        editor,
        [editor] {
          editor->setFocus();
          if (auto* const value = dynamic_cast<CTNInPlaceEditor*>(editor)) value->SelectAll();
        },
        Qt::QueuedConnection);
    return;
  }
  if (editor == nullptr || editor != m_editor) return;
  m_editor.clear();
  // With its row the editor was given up already.
  if (m_edited.isValid()) QTableView::closeEditor(editor, hint);
}

QWidget* CTNParserListCtrl::MakeEditor(const QModelIndex&, QWidget*) { return nullptr; }
bool CTNParserListCtrl::HasEditor(const QModelIndex&) const { return false; }
bool CTNParserListCtrl::OnEndEdit(const QModelIndex&, const EditedValue&) { return true; }
void CTNParserListCtrl::OnLeftWithoutValue() {}
void CTNParserListCtrl::OnClickCell(const QModelIndex&) {}
void CTNParserListCtrl::OnDoubleClickCell(const QModelIndex&, bool) {}
std::shared_ptr<CTNParserListNode> CTNParserListCtrl::MakeNode(int) const { return nullptr; }

// Mouse and keys.

QItemSelectionModel::SelectionFlags CTNParserListCtrl::selectionCommand(const QModelIndex& index,
                                                                        const QEvent* event) const {
  if (m_keepsSelection && IsButtonEvent(event) && index.isValid() && IsRowSelected(index.row()) &&
      IsPlainLeft(*static_cast<const QMouseEvent*>(event))) {
    return QItemSelectionModel::NoUpdate;
  }
  return QTableView::selectionCommand(index, event);
}

void CTNParserListCtrl::mousePressEvent(QMouseEvent* event) {
  m_pressed = IsPlainLeft(*event) ? indexAt(event->pos()) : QModelIndex();
  QTableView::mousePressEvent(event);
}

void CTNParserListCtrl::mouseReleaseEvent(QMouseEvent* event) {
  // The first pixel of a move makes it a dragging state; a drag that ran has forgotten the press.
  const bool dragged = state() == DragSelectingState;
  QTableView::mouseReleaseEvent(event);
  const QModelIndex cell = m_pressed;
  m_pressed = QModelIndex();
  if (dragged || !cell.isValid() || !IsPlainLeft(*event) || indexAt(event->pos()) != cell) return;
  if (HasEditor(cell)) {
    BeginEdit(cell);
  } else {
    OnClickCell(cell);
  }
}

void CTNParserListCtrl::mouseDoubleClickEvent(QMouseEvent* event) {
  m_pressed = QModelIndex();
  const QModelIndex cell = indexAt(event->pos());
  if (!IsPlainLeft(*event) || !cell.isValid()) return;
  // The first click has opened the editor, if there is one; taking the mouse back has ended it.
  OnDoubleClickCell(cell, BeginEdit(cell));
}

void CTNParserListCtrl::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
      if (!currentIndex().isValid()) break;
      if (!BeginEdit(currentIndex())) OnClickCell(currentIndex());
      event->accept();
      return;
    default:
      break;
  }
  QTableView::keyPressEvent(event);
}

QString CTNParserListCtrl::GetSelectedText() const {
  QString text;
  for (const int row : GetSelectedRows()) {
    QStringList cells;
    for (int column = 0; column < model()->columnCount(); ++column)
      cells.append(model()->index(row, column).data().toString());
    text += cells.join(u'\t') + u'\n';
  }
  return text;
}

void CTNParserListCtrl::OnCommand(Cmd command) {
  if (command == Cmd::CopyText) {
    QApplication::clipboard()->setText(GetSelectedText());
  } else {
    emit CommandChosen(command);
  }
}

void CTNParserListCtrl::AddShortcut(Cmd command, const QKeySequence& key) {
  auto* action = new QAction(this);
  SetCommandId(*action, command);
  action->setShortcut(key);
  action->setShortcutContext(Qt::WidgetShortcut);
  connect(action, &QAction::triggered, this, [this, command] { OnCommand(command); });
  addAction(action);
}

// Context menu.

QMenu* CTNParserListCtrl::MakeContextMenu(int) { return nullptr; }

QMenu* CTNParserListCtrl::MakeMenu(MenuId menu) {
  auto* const top = new QMenu(this);
  top->setAttribute(Qt::WA_DeleteOnClose);
  QMenu* into = top;
  for (const MenuItem& item : kMenuItems) {
    if (item.menu != menu) continue;
    switch (item.kind) {
      case MenuItem::Kind::BeginSubmenu:
        into = top->addMenu(LabelText(item.text));
        break;
      case MenuItem::Kind::EndSubmenu:
        into = top;
        break;
      case MenuItem::Kind::Command: {
        const Cmd command = item.command;
        QAction* const action = into->addAction(LabelText(item.text));
        SetCommandId(*action, command);
        connect(action, &QAction::triggered, this, [this, command] { OnCommand(command); });
        break;
      }
    }
  }
  return top;
}

void CTNParserListCtrl::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  const QPointer<CTNParserListCtrl> alive(this);
  EndEdit();  // May fill the list anew, and whoever is told of it may delete the list.
  if (alive.isNull()) return;
  QPoint place = event->globalPos();
  int row = RowAt(place);
  if (event->reason() == QContextMenuEvent::Keyboard) {
    const std::vector<int> selected = GetSelectedRows();
    row = selected.empty() || currentIndex().isValid() ? currentIndex().row() : selected.front();
    if (row >= 0) {
      const QModelIndex cell = model()->index(row, std::max(currentIndex().column(), 0));
      scrollTo(cell);
      place = viewport()->mapToGlobal(visualRect(cell).bottomLeft());
    }
  }
  if (row >= 0 && !IsRowSelected(row)) SelectRowAlone(row);
  if (QMenu* menu = MakeContextMenu(row)) menu->popup(place);
}

// Dragging.

bool CTNParserListCtrl::CanDropOn(const QWidget*) const { return false; }
void CTNParserListCtrl::OnDrop(QWidget*, const QPoint&) {}

int CTNParserListCtrl::RowAt(const QPoint& screenPoint) const {
  const QPoint point = viewport()->mapFromGlobal(screenPoint);
  return viewport()->rect().contains(point) ? rowAt(point.y()) : -1;
}

void CTNParserListCtrl::startDrag(Qt::DropActions) {
  if (!selectionModel()->hasSelection()) return;
  auto* drag = new QDrag(this);
  drag->setMimeData(new DraggedRows(*this));
  drag->setPixmap(PictureOfSelection());
  m_pressed = QModelIndex();
  drag->exec(Qt::MoveAction);
}

/// The selected rows that are in sight, and nothing between them.
QPixmap CTNParserListCtrl::PictureOfSelection() {
  QRegion rows;
  for (int row = rowAt(0); row >= 0 && row < model()->rowCount(); ++row) {
    const int top = rowViewportPosition(row);
    if (top >= viewport()->height()) break;
    if (IsRowSelected(row)) rows += QRect(0, top, viewport()->width(), rowHeight(row));
  }
  const QRect bounds = rows.boundingRect().intersected(viewport()->rect());
  if (bounds.isEmpty()) return {};
  const QPixmap all = viewport()->grab(bounds);
  QPixmap picture(all.size());
  picture.setDevicePixelRatio(all.devicePixelRatio());
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setClipRegion(rows.translated(-bounds.topLeft()));
  painter.drawPixmap(0, 0, all);
  return picture;
}

CTNParserListCtrl* CTNParserListCtrl::SourceOf(const QDropEvent& event) const {
  const auto* rows = qobject_cast<const DraggedRows*>(event.mimeData());
  CTNParserListCtrl* const source = rows != nullptr ? rows->GetSource() : nullptr;
  return source != nullptr && source->CanDropOn(this) ? source : nullptr;
}

void CTNParserListCtrl::ScrollWhileDragging(int row) {
  const int first = rowAt(0);
  const int last = rowAt(viewport()->height() - 1);
  QScrollBar* const bar = verticalScrollBar();
  if (row > 0 && row == first) bar->setValue(bar->value() - 1);
  if (row >= 0 && row == last && row + 1 < model()->rowCount()) bar->setValue(bar->value() + 1);
}

void CTNParserListCtrl::ShowDropPlace(int row) {
  if (row == m_dropRow) return;
  m_dropRow = row;
  viewport()->update();
}

void CTNParserListCtrl::dragEnterEvent(QDragEnterEvent* event) { dragMoveEvent(event); }

void CTNParserListCtrl::dragMoveEvent(QDragMoveEvent* event) {
  if (SourceOf(*event) == nullptr) {
    ShowDropPlace(kNoDrop);
    event->ignore();
    return;
  }
  const int y = event->position().toPoint().y();
  ScrollWhileDragging(rowAt(y));
  const int row = rowAt(y);  // The one that lies there now.
  ShowDropPlace(row >= 0 ? row : model()->rowCount());
  event->setDropAction(Qt::MoveAction);
  event->accept();
}

void CTNParserListCtrl::dragLeaveEvent(QDragLeaveEvent* event) {
  ShowDropPlace(kNoDrop);
  event->accept();
}

void CTNParserListCtrl::dropEvent(QDropEvent* event) {
  ShowDropPlace(kNoDrop);
  CTNParserListCtrl* const source = SourceOf(*event);
  if (source == nullptr) {
    event->ignore();
    return;
  }
  event->setDropAction(Qt::MoveAction);
  event->accept();
  const QPoint place = viewport()->mapToGlobal(event->position().toPoint());
  const QPointer<CTNParserListCtrl> target(this);
  // Behind the drag, which still holds the mouse: a drop may show a box.
  QMetaObject::invokeMethod(
      source,
      [source, target, place] {
        if (!target.isNull()) source->OnDrop(target, place);
      },
      Qt::QueuedConnection);
}

void CTNParserListCtrl::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (m_dropRow == kNoDrop || model() == nullptr) return;
  const int rows = model()->rowCount();
  const int y = m_dropRow < rows
                    ? rowViewportPosition(m_dropRow)
                    : (rows == 0 ? 0 : rowViewportPosition(rows - 1) + rowHeight(rows - 1));
  QPainter painter(viewport());
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.drawLine(0, y, viewport()->width(), y);
}

void CTNParserListCtrl::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) FitRowHeight();
}

void CTNParserListCtrl::FitRowHeight() {
  constexpr int kIcon = 16;
  constexpr int kMargin = 4;
  const int height = std::max(fontMetrics().height(), kIcon) + kMargin;
  verticalHeader()->setMinimumSectionSize(height);
  verticalHeader()->setDefaultSectionSize(height);
}

}  // namespace bomparser
