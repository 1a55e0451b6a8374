#include "ui/views/CTNParserInFileListCtrl.h"

#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/DisplayText.h"
#include "ui/views/CTNParserInFileListNode.h"

#include <QAction>
#include <QEvent>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QStringList>
#include <QStyle>
#include <algorithm>
#include <cstdlib>
#include <new>

namespace bomparser {

CTNParserInFileListCtrl::CTNParserInFileListCtrl(QWidget* parent)
    : CTNParserListCtrl(MessageText(Msg::InputFileLabel), parent),
      m_model(new CTNParserInFileModel(this)) {
  SetControlId(*this, Ctrl::InputRows);
  setAccessibleName(MessageText(Msg::InputRows));
  setModel(m_model);
  // A header asks of every column whether all of its rows are selected, however many there are.
  for (QHeaderView* header : {horizontalHeader(), verticalHeader()})
    header->setSelectionModel(new QItemSelectionModel(m_model, header));
  connect(m_model, &CTNParserInFileModel::modelReset, this,
          [this] { BringBack(0, m_model->rowCount() - 1); });
  connect(m_model, &CTNParserInFileModel::rowsInserted, this,
          [this](const QModelIndex&, int first, int last) {
            BringBack(first, last);
            if (!m_model->HasFilter()) ForgetPlace();
          });
  connect(m_model, &CTNParserInFileModel::columnsInserted, this,
          &CTNParserInFileListCtrl::WidenSelection);
  connect(m_model, &CTNParserInFileModel::WidestTextsChanged, this,
          &CTNParserInFileListCtrl::FitTextColumns);
  connect(m_model, &CTNParserInFileModel::ScanEnded, this, &CTNParserInFileListCtrl::ForgetPlace);
  connect(verticalScrollBar(), &QAbstractSlider::actionTriggered, this, [this] {
    if (m_place) m_place->top.reset();  // The user looks elsewhere meanwhile.
  });
  FitFont();
  FitFixedColumns();
  FitTextColumns();
}

// Filling.

void CTNParserInFileListCtrl::SetInputFile(const CTNParserInFile* file) {
  if (file == m_file) return;
  m_file = file;
  Empty();
}

void CTNParserInFileListCtrl::Empty() {
  m_place.reset();
  m_newlySelected.clear();
  m_model->Clear();
  // What comes next may be another file.
  verticalScrollBar()->setValue(0);
  horizontalScrollBar()->setValue(0);
}

void CTNParserInFileListCtrl::Fill() {
  if (!IsApplied()) {
    Empty();
    return;
  }
  m_newlySelected.clear();
  const bool first = m_model->GetResult() == nullptr;
  // What is still to be brought back is not to be lost when the filter changes once more.
  if (!m_place) m_place = GetPlace();
  m_model->Fill(m_file->GetBlocks(), m_options);
  ForgetPlace();
  if (first) FitFixedColumns();
}

void CTNParserInFileListCtrl::ShowState() {
  if (m_model->rowCount() == 0) return;
  emit m_model->dataChanged(m_model->index(0, 0),
                            m_model->index(m_model->rowCount() - 1, m_model->columnCount() - 1));
}

void CTNParserInFileListCtrl::SetHint(const QString& hint) {
  if (hint == m_hint) return;
  m_hint = hint;
  setAccessibleDescription(hint);
  viewport()->update();
}

void CTNParserInFileListCtrl::paintEvent(QPaintEvent* event) {
  CTNParserListCtrl::paintEvent(event);
  if (m_hint.isEmpty() || m_model->rowCount() > 0) return;
  constexpr int kEdge = 12;
  QPainter painter(viewport());
  painter.setPen(palette().color(QPalette::PlaceholderText));
  painter.drawText(viewport()->rect().adjusted(kEdge, kEdge, -kEdge, -kEdge),
                   Qt::AlignCenter | Qt::TextWordWrap, m_hint);
}

std::optional<CTNParsedFileBlock> CTNParserInFileListCtrl::GetSelectedBlock() const {
  if (m_place && m_place->current) {
    // Its row may be still to come.
    const std::uint32_t line = *m_place->current;
    const bool selected = std::any_of(
        m_place->selected.begin(), m_place->selected.end(),
        [line](const LineRange& lines) { return lines.first <= line && line <= lines.second; });
    if (!selected || line >= m_model->GetLineCount()) return std::nullopt;
    return m_model->GetBlockOfLine(line);
  }
  const int row = currentIndex().row();
  if (row < 0 || !IsRowSelected(row)) return std::nullopt;
  return m_model->GetBlock(row);
}

CTNParserInFileListCtrl::Place CTNParserInFileListCtrl::GetPlace() const {
  Place place;
  QItemSelection selection = selectionModel()->selection();
  std::sort(selection.begin(), selection.end(),
            [](const auto& a, const auto& b) { return a.top() < b.top(); });
  for (const QItemSelectionRange& range : selection) {
    for (int row = range.top(); row <= range.bottom();) {
      // Rows of successive lines make one range; where nothing is hidden, all of them do.
      const std::uint32_t line = m_model->GetLine(row);
      int last = range.bottom();
      if (m_model->GetLine(last) - line != static_cast<std::uint32_t>(last - row)) last = row;
      const std::uint32_t lastLine = line + static_cast<std::uint32_t>(last - row);
      if (!place.selected.empty() && place.selected.back().second + 1 == line) {
        place.selected.back().second = lastLine;
      } else {
        place.selected.emplace_back(line, lastLine);
      }
      row = last + 1;
    }
  }
  if (currentIndex().isValid()) {
    place.current = m_model->GetLine(currentIndex().row());
    place.column = currentIndex().column();
  }
  const int top = rowAt(0);
  if (top > 0) place.top = m_model->GetLine(top);
  place.left = horizontalScrollBar()->value();
  return place;
}

/// Once no more rows are to come.
void CTNParserInFileListCtrl::ForgetPlace() {
  const bool searching = m_model->HasFilter() && m_model->IsScanning();
  if (!searching && !m_model->HasLateRows()) m_place.reset();
}

/// Selects what was selected before among the rows that have come.
void CTNParserInFileListCtrl::BringBack(int first, int last) {
  if (!m_place || last < first) return;
  m_bringingBack = true;
  setAutoScroll(false);  // The current row need not be in sight.
  BringBackSelection(first, last);
  BringBackView(last);
  setAutoScroll(true);
  m_bringingBack = false;
}

void CTNParserInFileListCtrl::BringBackSelection(int first, int last) {
  // The more ranges, the slower is every question whether a row is selected. So many come about
  // only when rows that stood between the selected ones are shown again.
  constexpr qsizetype kMostRanges = 20'000;
  const std::uint32_t firstLine = m_model->GetLine(first);
  const std::uint32_t lastLine = m_model->GetLine(last);
  const int lastColumn = m_model->columnCount() - 1;
  std::vector<std::pair<int, int>> rows;
  for (const auto& [from, to] : m_place->selected) {
    if (to < firstLine) continue;
    if (from > lastLine) break;
    const int top = std::max(m_model->FindRow(from), first);
    const int bottom = to >= lastLine ? last : m_model->FindRow(to + 1) - 1;
    if (bottom < top) continue;
    if (!rows.empty() && rows.back().second + 1 == top) {
      rows.back().second = bottom;
    } else {
      rows.emplace_back(top, bottom);
    }
  }
  if (static_cast<qsizetype>(rows.size()) <= kMostRanges) {
    QItemSelection selection;
    for (const auto& [top, bottom] : rows) {
      selection.append(
          QItemSelectionRange(m_model->index(top, 0), m_model->index(bottom, lastColumn)));
    }
    selectionModel()->select(selection, QItemSelectionModel::Select);
  }
  if (!m_place->current || *m_place->current < firstLine || *m_place->current > lastLine) return;
  const int row = m_model->FindRow(*m_place->current);
  if (m_model->GetLine(row) != *m_place->current) return;
  selectionModel()->setCurrentIndex(m_model->index(row, std::min(m_place->column, lastColumn)),
                                    QItemSelectionModel::NoUpdate);
}

void CTNParserInFileListCtrl::BringBackView(int last) {
  executeDelayedItemsLayout();
  updateGeometries();
  horizontalScrollBar()->setValue(m_place->left);
  if (!m_place->top || m_model->GetLine(last) < *m_place->top) return;
  verticalScrollBar()->setValue(m_model->FindRow(*m_place->top));
  m_place->top.reset();
}

/// Selected rows are selected in columns that have come later as well.
void CTNParserInFileListCtrl::WidenSelection() {
  const QItemSelection before = selectionModel()->selection();
  if (before.isEmpty()) return;
  const int lastColumn = m_model->columnCount() - 1;
  QItemSelection wide;
  for (const QItemSelectionRange& range : before) {
    wide.append(QItemSelectionRange(m_model->index(range.top(), 0),
                                    m_model->index(range.bottom(), lastColumn)));
  }
  m_bringingBack = true;
  selectionModel()->select(wide, QItemSelectionModel::ClearAndSelect);
  m_bringingBack = false;
}

// Widths and heights.

int CTNParserInFileListCtrl::WidthOfTexts(const QFont& font, const QStringList& texts) const {
  constexpr int kEdge = 2;
  const QFontMetrics metrics(font);
  int width = 0;
  for (const QString& text : texts)
    width = std::max(width, metrics.horizontalAdvance(text));
  const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
  return width + 2 * (margin + kEdge);
}

int CTNParserInFileListCtrl::sizeHintForColumn(int column) const {
  if (column == CTNParserInFileModel::kLineNumber) {
    const QString number = QString::number(m_model->GetLineCount());
    return WidthOfTexts(font(), {QString(number.size(), u'8')});
  }
  if (column == CTNParserInFileModel::kMatchingRecord) {
    QStringList texts = {BlockKindText(BlockKind::Unmatched), BlockKindText(BlockKind::Ignored)};
    if (const auto result = m_model->GetResult()) {
      for (const ParsedRecordLayout& record : result->GetLayout().Records()) {
        texts.append(
            ToDisplayText(FormatMessageText(Msg::MatchingRecordFormat, record.name, record.id)));
      }
    }
    constexpr int kMostCharacters = 30;  // Names can be sentences.
    return std::min(WidthOfTexts(font(), texts),
                    kMostCharacters * QFontMetrics(font()).averageCharWidth());
  }
  const int text = column - CTNParserInFileModel::kFirstText;
  if (text < 0 || text >= kTextColumns) return 0;
  const WidestText& widest = m_model->GetWidest()[static_cast<std::size_t>(text)];
  if (widest.width == 0) return 0;
  // Letters of other fonts may be wider than was reckoned; so the text itself is asked as well.
  return WidthOfTexts(
      m_model->GetTextFont(),
      {QString(widest.width, u'8'), TextOfColumn(m_model->GetShownText(widest.line), text)});
}

void CTNParserInFileListCtrl::FitFixedColumns() {
  resizeColumnToContents(CTNParserInFileModel::kLineNumber);
  resizeColumnToContents(CTNParserInFileModel::kMatchingRecord);
}

void CTNParserInFileListCtrl::FitTextColumns() {
  for (int column = CTNParserInFileModel::kFirstText; column < m_model->columnCount(); ++column)
    resizeColumnToContents(column);
}

void CTNParserInFileListCtrl::FitFont() {
  constexpr int kMargin = 4;
  QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  if (font().pointSizeF() > 0) {
    fixed.setPointSizeF(font().pointSizeF());
  } else {
    fixed.setPixelSize(font().pixelSize());
  }
  m_model->SetTextFont(fixed);
  const int height = QFontMetrics(fixed).height() + kMargin;
  if (verticalHeader()->defaultSectionSize() < height)
    verticalHeader()->setDefaultSectionSize(height);
}

void CTNParserInFileListCtrl::changeEvent(QEvent* event) {
  CTNParserListCtrl::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  FitFont();
  FitTextColumns();
}

// Selection.

void CTNParserInFileListCtrl::selectionChanged(const QItemSelection& selected,
                                               const QItemSelection& deselected) {
  CTNParserListCtrl::selectionChanged(selected, deselected);
  if (m_bringingBack) return;
  m_place.reset();  // The user has chosen anew meanwhile.
  if (selected.isEmpty()) return;
  // The keyboard makes the row the current one only after this.
  if (m_newlySelected.empty()) {
    QMetaObject::invokeMethod(this, &CTNParserInFileListCtrl::ReportSelection,
                              Qt::QueuedConnection);
  }
  for (const QItemSelectionRange& range : selected)
    m_newlySelected.emplace_back(range.top(), range.bottom());
}

void CTNParserInFileListCtrl::ReportSelection() {
  const std::vector<std::pair<int, int>> selected = std::exchange(m_newlySelected, {});
  const int row = currentIndex().row();
  const bool isNew = std::any_of(selected.begin(), selected.end(), [row](const auto& rows) {
    return rows.first <= row && row <= rows.second;
  });
  if (!isNew || !IsRowSelected(row) || m_file == nullptr || m_file->IsStale()) return;
  emit MatchedBlockSelected(m_model->GetBlock(row));
}

std::shared_ptr<CTNParserListNode> CTNParserInFileListCtrl::MakeNode(int row) const {
  if (row < 0 || row >= m_model->rowCount()) return nullptr;
  return std::make_shared<CTNParserInFileListNode>(
      m_model->GetBlock(row), m_model->GetRowInBlock(row), m_model->GetLine(row));
}

std::string CTNParserInFileListCtrl::GetGatheredText(Tabs tabs) const {
  std::string text;
  std::optional<CTNRowIndex> rows;  // Rows of a long block are not looked for from its start.
  for (const std::shared_ptr<CTNParserListNode>& gathered : GetGathered()) {
    const auto& node = static_cast<const CTNParserInFileListNode&>(*gathered);
    const CTNParsedFileBlock& block = node.GetBlock();
    if (!rows || rows->GetResult() != block.GetResult()) rows.emplace(block.GetResult());
    RowTextForm form;
    if (tabs == Tabs::Expanded && block.GetContext() != nullptr) {
      form.tabStop = block.GetContext()->GetTabStop();
    }
    CTNRowCursor place = rows->Find(node.GetLine());
    place.TakeText(text, form);
    text += '\n';
  }
  return text;
}

QString CTNParserInFileListCtrl::GetSelectedText() const {
  QString text;
  if (!m_model->GetResult()) return text;
  CTNRowIndex rows(m_model->GetResult());
  std::string bytes;
  for (const int row : GetSelectedRows()) {
    CTNRowCursor place = rows.Find(m_model->GetLine(row));
    bytes.clear();
    place.TakeText(bytes, RowTextForm());
    text += ToDisplayText(bytes) + u'\n';
  }
  return text;
}

// Commands.

QMenu* CTNParserInFileListCtrl::MakeContextMenu(int row) {
  QMenu* const menu = MakeMenu(MenuId::InputRows);
  for (QAction* item : menu->actions())
    item->setEnabled(GetCommandId(*item) == Cmd::EditFile ? IsApplied() : row >= 0);
  return menu;
}

void CTNParserInFileListCtrl::RequestWithSelection(void (CTNParserInFileListCtrl::*request)()) {
  if (GatherSelection(GatherOrder::AsListed) && !GetGathered().empty()) (this->*request)();
}

void CTNParserInFileListCtrl::OnCommand(Cmd command) {
  switch (command) {
    case Cmd::CreateRecordFromSelected:
      RequestWithSelection(&CTNParserInFileListCtrl::CreateRecordRequested);
      return;
    case Cmd::TestSelected:
      RequestWithSelection(&CTNParserInFileListCtrl::TestSelectionRequested);
      return;
    case Cmd::EditFile:
      if (IsApplied()) emit EditFileRequested();
      return;
    case Cmd::NextUnmatched:
      GoToUnmatched(SearchDirection::Down);
      return;
    case Cmd::PreviousUnmatched:
      GoToUnmatched(SearchDirection::Up);
      return;
    default:
      break;
  }
  try {
    CTNParserListCtrl::OnCommand(command);
  } catch (const std::bad_alloc&) {
    // A million rows were to be copied.
    UserDialogs().Ask(this, {GetCaption(), MessageText(Msg::XmlOutOfMemory), BoxIcon::Error});
  }
}

void CTNParserInFileListCtrl::OnDoubleClickCell(const QModelIndex& cell, bool) {
  // The cell itself: the current one is not brought into sight again.
  selectionModel()->setCurrentIndex(
      cell, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  OnCommand(Cmd::CreateRecordFromSelected);
}

bool CTNParserInFileListCtrl::CanDropOn(const QWidget* target) const {
  return target != nullptr && target->isVisible() && target->property(kAcceptsInputRows).toBool();
}

void CTNParserInFileListCtrl::OnDrop(QWidget*, const QPoint&) {
  OnCommand(Cmd::CreateRecordFromSelected);
}

void CTNParserInFileListCtrl::selectAll() {
  m_model->AddLateRows();
  CTNParserListCtrl::selectAll();
}

UnmatchedFound CTNParserInFileListCtrl::GoToUnmatched(SearchDirection direction) {
  m_model->AddLateRows();
  constexpr std::uint32_t kEnd = 0xFFFFFFFF;
  const bool forward = direction == SearchDirection::Down;
  const QModelIndex current = currentIndex();
  // Without a current row a search starts in front of the first or behind the last one. The list
  // makes its first row the current one by itself: only a selected one has been visited.
  const std::uint32_t line = current.isValid() ? m_model->GetLine(current.row()) : kEnd;
  const std::uint32_t next = current.isValid() ? line + (IsRowSelected(current.row()) ? 1 : 0) : 0;
  UnmatchedFound found = UnmatchedFound::Ahead;
  int row = forward ? m_model->FindUnmatched(next, kEnd) : m_model->FindLastUnmatched(0, line);
  if (row < 0) {
    found = UnmatchedFound::WentRound;
    row = forward ? m_model->FindUnmatched(0, next) : m_model->FindLastUnmatched(line, kEnd);
  }
  if (row >= 0) {
    const int left = horizontalScrollBar()->value();
    SelectRowAlone(row);
    horizontalScrollBar()->setValue(left);
  } else {
    found = UnmatchedFound::None;
  }
  emit UnmatchedSought(found, direction);
  return found;
}

void CTNParserInFileListCtrl::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_F8) {
    const bool back = event->modifiers().testFlag(Qt::ShiftModifier);
    OnCommand(back ? Cmd::PreviousUnmatched : Cmd::NextUnmatched);
    event->accept();
    return;
  }
  CTNParserListCtrl::keyPressEvent(event);
}

void CTNParserInFileListCtrl::keyboardSearch(const QString&) {
  // It would look through all rows for one that begins with the letter; there is a filter for that.
}

}  // namespace bomparser
