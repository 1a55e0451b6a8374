#include "ui/controls/CTNWebBrowser2.h"

#include "ui/controls/DisplayText.h"
#include "ui/controls/FindLine.h"
#include "ui/controls/Ids.h"
#include "ui/controls/MarkupHighlighter.h"

#include <QAction>
#include <QClipboard>
#include <QEvent>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStackedLayout>
#include <QStringList>
#include <QTableView>
#include <QTextCursor>
#include <QTextDocument>
#include <QVBoxLayout>
#include <algorithm>
#include <new>
#include <utility>

namespace bomparser {

CTNWebBrowser2::CTNWebBrowser2(QWidget* parent)
    : QWidget(parent),
      m_views(new QStackedLayout),
      m_text(new QPlainTextEdit),
      m_highlighter(new MarkupHighlighter(m_text->document())),
      m_rows(new QTableView),
      m_model(new EntityListModel(this)),
      m_findLine(new FindLine) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  // A stack shows its first widget at once: by then it has to be part of this window.
  layout->addLayout(m_views, 1);
  m_views->addWidget(m_text);
  m_views->addWidget(m_rows);
  layout->addWidget(m_findLine);
  SetUpTextView();
  SetUpRowView();
  AddKeys();
  m_findLine->hide();
  connect(m_findLine, &FindLine::Searched, this, &CTNWebBrowser2::Find);
  connect(m_findLine, &FindLine::Closed, this, [this] { m_views->currentWidget()->setFocus(); });
}

CTNWebBrowser2::~CTNWebBrowser2() = default;

void CTNWebBrowser2::SetUpTextView() {
  m_text->setReadOnly(true);
  m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
  m_text->setTabChangesFocus(true);
  m_text->setUndoRedoEnabled(false);
  m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  m_text->setAccessibleName(MessageText(Msg::EntityList));
  SetControlId(*m_text, Ctrl::ViewerText);
  m_highlighter->SetColours(m_text->palette());
}

void CTNWebBrowser2::SetUpRowView() {
  m_rows->setModel(m_model);
  m_rows->setSelectionBehavior(QAbstractItemView::SelectRows);
  m_rows->setEditTriggers(QAbstractItemView::NoEditTriggers);
  m_rows->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  m_rows->setTabKeyNavigation(false);
  m_rows->setWordWrap(false);
  m_rows->setShowGrid(false);
  m_rows->setFont(m_text->font());
  m_rows->setAccessibleName(MessageText(Msg::EntityList));
  m_rows->horizontalHeader()->hide();
  m_rows->horizontalHeader()->setStretchLastSection(true);
  QHeaderView& lines = *m_rows->verticalHeader();
  lines.hide();
  lines.setSectionResizeMode(QHeaderView::Fixed);
  lines.setMinimumSectionSize(1);
  lines.setDefaultSectionSize(m_rows->fontMetrics().lineSpacing() + 2);
  SetControlId(*m_rows, Ctrl::ViewerRows);
}

void CTNWebBrowser2::AddKeys() {
  const auto add = [](QWidget* widget, Msg text, QKeySequence::StandardKey key, auto command) {
    auto* const action = new QAction(LabelText(text), widget);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    QObject::connect(action, &QAction::triggered, widget, command);
    widget->addAction(action);
    return action;
  };
  const QList<QAction*> finding = {
      add(this, Msg::FindCommand, QKeySequence::Find, [this] { OpenFindLine(); }),
      add(this, Msg::FindNextCommand, QKeySequence::FindNext,
          [this] { Find(SearchDirection::Down); }),
      add(this, Msg::FindPreviousCommand, QKeySequence::FindPrevious,
          [this] { Find(SearchDirection::Up); })};
  add(m_rows, Msg::CopyCommand, QKeySequence::Copy, [this] { CopyRows(); });
  m_rows->addActions(finding);
  m_rows->setContextMenuPolicy(Qt::ActionsContextMenu);
  m_text->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(m_text, &QWidget::customContextMenuRequested, this, [this, finding](const QPoint& point) {
    QMenu* const menu = m_text->createStandardContextMenu(point);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(finding);
    menu->popup(m_text->mapToGlobal(point));
  });
}

void CTNWebBrowser2::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) m_highlighter->SetColours(palette());
  QWidget::changeEvent(event);
}

// What is shown.

bool CTNWebBrowser2::Navigate(const std::string& path) {
  const bool shownBefore = path == m_path;
  const int line = m_text->verticalScrollBar()->value();
  const int left = m_text->horizontalScrollBar()->value();
  const int leftOfRows = m_rows->horizontalScrollBar()->value();
  const int row = m_rows->rowAt(0);
  ViewedFile file;
  std::string error;
  if (!file.Open(path, error)) {
    ShowFailure(ToDisplayText(error));
    return false;
  }
  try {
    Show(std::move(file));
  } catch (const std::bad_alloc&) {
    ShowFailure(MessageText(Msg::XmlOutOfMemory));
    return false;
  }
  m_path = path;
  if (shownBefore) {
    m_text->verticalScrollBar()->setValue(line);
    m_text->horizontalScrollBar()->setValue(left);
    m_rows->scrollTo(m_model->index(row), QAbstractItemView::PositionAtTop);
    m_rows->horizontalScrollBar()->setValue(leftOfRows);
  }
  return true;
}

void CTNWebBrowser2::Clear() { ShowFailure({}); }

void CTNWebBrowser2::ShowFailure(const QString& reason) {
  m_model->Clear();
  m_text->setPlaceholderText(reason);
  m_text->setAccessibleDescription(reason);
  ShowText({});
  m_path.clear();
}

void CTNWebBrowser2::Show(ViewedFile file) {
  if (file.GetBytes().size() <= kLargestText) {
    EntityListText text = LayOutEntityList(file.GetBytes());
    if (text.longestLine <= kLongestLine) {
      Clear();
      ShowText(std::move(text));
      return;
    }
  }
  Clear();
  ShowRows(std::move(file));
}

void CTNWebBrowser2::ShowText(EntityListText text) {
  m_highlighter->SetMarkup(std::move(text.markup));
  m_text->setPlainText(text.text);
  m_views->setCurrentWidget(m_text);
}

void CTNWebBrowser2::ShowRows(ViewedFile file) {
  m_views->setCurrentWidget(m_rows);
  m_model->SetFile(std::move(file));
  const int longest = m_model->GetLongestRow();
  if (longest >= 0) {
    // As wide as the view, or as the widest row if that is more.
    constexpr int kMargin = 12;
    const QString text = m_model->GetRowText(longest);
    m_rows->horizontalHeader()->setMinimumSectionSize(
        m_rows->fontMetrics().horizontalAdvance(text) + kMargin);
  }
  m_rows->doItemsLayout();
  SelectRow(0);
}

// Find and copy.

void CTNWebBrowser2::OpenFindLine() { m_findLine->Open(); }

void CTNWebBrowser2::Find(SearchDirection direction) {
  const QString text = m_findLine->GetText();
  if (text.isEmpty()) {
    OpenFindLine();
    return;
  }
  const bool found = m_views->currentWidget() == m_text ? FindInText(text, direction)
                                                        : FindInRows(text, direction);
  m_findLine->ShowOutcome(found);
}

bool CTNWebBrowser2::FindInText(const QString& text, SearchDirection direction) {
  const bool up = direction == SearchDirection::Up;
  const QTextDocument::FindFlags flags =
      up ? QTextDocument::FindBackward : QTextDocument::FindFlags();
  if (m_text->find(text, flags)) return true;
  // From the other end of the text.
  const QTextCursor before = m_text->textCursor();
  m_text->moveCursor(up ? QTextCursor::End : QTextCursor::Start);
  if (m_text->find(text, flags)) return true;
  m_text->setTextCursor(before);
  return false;
}

bool CTNWebBrowser2::FindInRows(const QString& text, SearchDirection direction) {
  const int row = m_model->Find(m_rows->currentIndex().row(), text, direction);
  if (row < 0) return false;
  SelectRow(row);
  return true;
}

void CTNWebBrowser2::SelectRow(int row) {
  // Whatever keys are held: Shift+F3 selects no range.
  m_rows->selectionModel()->setCurrentIndex(
      m_model->index(row), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void CTNWebBrowser2::CopyRows() {
  QItemSelection selection = m_rows->selectionModel()->selection();
  std::ranges::sort(selection, {}, &QItemSelectionRange::top);
  QStringList rows;
  for (const QItemSelectionRange& range : selection) {
    for (int row = range.top(); row <= range.bottom(); ++row)
      rows += m_model->GetRowText(row);
  }
  if (!rows.isEmpty()) QGuiApplication::clipboard()->setText(rows.join(u'\n'));
}

}  // namespace bomparser
