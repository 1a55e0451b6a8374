#include "ui/views/CTNParserInFileModel.h"

#include "ui/controls/DisplayText.h"

#include <QBrush>
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <chrono>

namespace bomparser {
namespace {

constexpr int kFixedColumns = 3;

/// The lines of the blocks of these kinds, as many as are shown at most.
LineSet LinesOfKinds(const CTNParsedResult& result, std::uint32_t kinds) {
  LineSet lines;
  if (kinds == 0) return lines;
  for (CTNRowCursor rows(result);
       !rows.IsAtEnd() && lines.GetCount() < CTNParserInFileModel::kMostRows;) {
    if (IsShown(rows.GetKind(), kinds)) {
      lines.Add(rows.GetLine());
      rows.MoveBy(1);
    } else {
      rows.MoveToNextBlock();
    }
  }
  return lines;
}

}  // namespace

CTNParserInFileModel::CTNParserInFileModel(QObject* parent) : QAbstractTableModel(parent) {
  connect(&m_scanner, &RowScanner::Found, this, &CTNParserInFileModel::OnFound);
}

// Filling.

void CTNParserInFileModel::Clear() {
  m_scanner.Cancel();
  beginResetModel();
  m_blocks = CTNParsedBlockPtrArray(nullptr);
  m_options = Options();
  m_rows.reset();
  m_lines.reset();
  m_textLine.reset();
  endResetModel();
  SetWidest({});
  emit ScanEnded();
}

void CTNParserInFileModel::Fill(const CTNParsedBlockPtrArray& blocks, const Options& options) {
  const std::shared_ptr<const CTNParsedResult> result = blocks.GetResult();
  if (!result) {
    Clear();
    return;
  }
  constexpr int kUsualTabStop = 8;
  const CTNParserContext* const engine = blocks.GetContext();
  const bool wasEmpty = rowCount() == 0;
  m_scanner.Cancel();
  beginResetModel();
  m_blocks = blocks;
  m_options = options;
  m_form = {options.markup, options.newlines,
            engine != nullptr ? engine->GetTabStop() : kUsualTabStop, kBytesToShow};
  m_rows = std::make_unique<CTNRowIndex>(result);
  m_lines.reset();
  if (options.filter.IsActive()) {
    m_lines.emplace();
  } else if (options.kinds != kShowAllKinds) {
    m_lines = LinesOfKinds(*result, options.kinds);
  }
  m_rowLimit = wasEmpty && !options.filter.IsActive() ? kRowsAtOnce : kMostRows;
  m_textLine.reset();
  endResetModel();
  if (HasLateRows()) {
    constexpr std::chrono::milliseconds kUntilPainted{50};
    QTimer::singleShot(kUntilPainted, this, &CTNParserInFileModel::AddLateRows);
  }
  StartScan();
}

/// A table takes a while to make room for a million rows: longer than to paint the first ones.
void CTNParserInFileModel::AddLateRows() {
  if (!HasLateRows()) return;
  beginInsertRows({}, rowCount(), static_cast<int>(std::min(CountShown(), kMostRows)) - 1);
  m_rowLimit = kMostRows;
  endInsertRows();
}

/// Looks at the first rows at once: small files are done with that, and of large ones the user
/// sees a first screen as it will stay.
void CTNParserInFileModel::StartScan() {
  constexpr std::uint32_t kLinesAtOnce = 4096;
  constexpr qint64 kMilliseconds = 15;
  RowScan scan({m_blocks.GetResult(), m_options.kinds, m_form, m_options.filter});
  QElapsedTimer timer;
  timer.start();
  // An expression may take its time for a single line.
  scan.Step(kLinesAtOnce, [&timer, filters = m_options.filter.IsActive()] {
    return !filters || !timer.hasExpired(kMilliseconds);
  });
  AppendLines(scan.TakeLines());
  if (scan.IsDone()) {
    SetWidest(scan.GetWidest());
    emit ScanEnded();
    return;
  }
  WidestTexts widest = scan.GetWidest();
  if (!m_options.filter.IsActive()) {
    // Until all is known columns stay as they were: mostly the same file is shown once more.
    for (std::size_t i = 0; i < widest.size(); ++i) {
      if (m_widest[i].width > widest[i].width) widest[i] = m_widest[i];
    }
  }
  SetWidest(widest);
  m_scanner.Start(std::move(scan));
  emit ScanBegun();
}

void CTNParserInFileModel::OnFound(const std::vector<std::uint32_t>& lines,
                                   const WidestTexts& widest) {
  AppendLines(lines);
  SetWidest(widest);
  if (!m_scanner.IsRunning()) emit ScanEnded();
}

void CTNParserInFileModel::AppendLines(const std::vector<std::uint32_t>& lines) {
  if (!m_lines || lines.empty()) return;
  const std::size_t count = std::min<std::size_t>(kMostRows - m_lines->GetCount(), lines.size());
  if (count == 0) return;
  const int first = rowCount();
  beginInsertRows({}, first, first + static_cast<int>(count) - 1);
  for (std::size_t i = 0; i < count; ++i)
    m_lines->Add(lines[i]);
  endInsertRows();
}

void CTNParserInFileModel::SetWidest(const WidestTexts& widest) {
  m_widest = widest;
  int wanted = 0;
  for (int column = 1; column < kTextColumns; ++column) {
    if (widest[static_cast<std::size_t>(column)].width > 0) wanted = column;
  }
  if (wanted > m_extraColumns) {
    beginInsertColumns({}, kFixedColumns + m_extraColumns, kFixedColumns + wanted - 1);
    m_extraColumns = wanted;
    endInsertColumns();
  } else if (wanted < m_extraColumns) {
    beginRemoveColumns({}, kFixedColumns + wanted, kFixedColumns + m_extraColumns - 1);
    m_extraColumns = wanted;
    endRemoveColumns();
  }
  emit WidestTextsChanged();
}

void CTNParserInFileModel::SetTextFont(const QFont& font) {
  m_textFont = font;
  if (rowCount() == 0) return;
  emit dataChanged(index(0, kFirstText), index(rowCount() - 1, columnCount() - 1), {Qt::FontRole});
}

// Rows and lines.

int CTNParserInFileModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  return static_cast<int>(std::min(CountShown(), m_rowLimit));
}

std::uint32_t CTNParserInFileModel::CountShown() const {
  return m_lines ? m_lines->GetCount() : GetLineCount();
}

int CTNParserInFileModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kFixedColumns + m_extraColumns;
}

std::uint32_t CTNParserInFileModel::GetLineCount() const {
  return m_rows ? m_rows->GetLineCount() : 0;
}

std::uint32_t CTNParserInFileModel::GetLine(int row) const {
  const auto place = static_cast<std::uint32_t>(row);
  return m_lines ? m_lines->GetLine(place) : place;
}

int CTNParserInFileModel::FindRow(std::uint32_t line) const {
  const std::uint32_t place = m_lines ? m_lines->CountBelow(line) : line;
  return static_cast<int>(std::min(place, static_cast<std::uint32_t>(rowCount())));
}

const CTNRowCursor& CTNParserInFileModel::CursorAt(int row) const {
  return m_rows->Find(GetLine(row));
}

CTNParsedFileBlock CTNParserInFileModel::BlockAt(const CTNRowCursor& place) const {
  return m_blocks.GetAt(place.GetBlock());
}

CTNParsedFileBlock CTNParserInFileModel::GetBlock(int row) const { return BlockAt(CursorAt(row)); }

std::uint32_t CTNParserInFileModel::GetRowInBlock(int row) const { return CursorAt(row).GetRow(); }

/// Calls `visit` with every row of an unmatched block in [first, end) until it answers false.
template <class Visit>
void CTNParserInFileModel::ForEachUnmatched(std::uint32_t first, std::uint32_t end,
                                            Visit visit) const {
  CTNRowCursor place = m_rows->Find(first);
  while (!place.IsAtEnd() && place.GetLine() < end) {
    if (place.GetKind() != BlockKind::Unmatched) {
      place.MoveToNextBlock();
      continue;
    }
    const std::uint32_t line = place.GetLine();
    const int row = FindRow(line);
    if (row < rowCount() && GetLine(row) == line && !visit(row)) return;
    place.MoveBy(1);
  }
}

int CTNParserInFileModel::FindUnmatched(std::uint32_t first, std::uint32_t end) const {
  int found = -1;
  if (!m_rows || !IsShown(BlockKind::Unmatched, m_options.kinds)) return found;
  ForEachUnmatched(first, end, [&found](int row) {
    found = row;
    return false;
  });
  return found;
}

int CTNParserInFileModel::FindLastUnmatched(std::uint32_t first, std::uint32_t end) const {
  constexpr std::uint32_t kPiece = 4096;  // Blocks are walked forward only.
  int found = -1;
  if (!m_rows || !IsShown(BlockKind::Unmatched, m_options.kinds)) return found;
  for (end = std::min(end, GetLineCount()); found < 0 && end > first;) {
    const std::uint32_t start = end - std::min(kPiece, end - first);
    ForEachUnmatched(start, end, [&found](int row) {
      found = row;
      return true;
    });
    end = start;
  }
  return found;
}

// Cells.

QString CTNParserInFileModel::GetShownText(std::uint32_t line) const {
  if (m_textLine != line) {
    std::string bytes;
    CTNRowCursor place = m_rows->Find(line);
    place.TakeText(bytes, m_form);
    m_text = ToShownRowText(std::move(bytes));
    m_textLine = line;
  }
  return m_text;
}

QVariant CTNParserInFileModel::GetCellText(int row, int column) const {
  switch (column) {
    case kLineNumber:
      return QString::number(qint64{GetLine(row)} + 1);
    case kMatchingRecord: {
      const CTNRowCursor& place = CursorAt(row);
      if (place.GetRow() > 0) return MessageText(Msg::SameBlockMark);
      return ToDisplayText(BlockAt(place).GetMatchText());
    }
    default:
      return TextOfColumn(GetShownText(GetLine(row)), column - kFirstText);
  }
}

QString CTNParserInFileModel::GetState(const CTNParsedFileBlock& block) const {
  QString kind = BlockKindText(block.GetKind());
  const CTNParserContext* const engine = block.GetContext();
  if (engine == nullptr || !engine->AreResultsStale()) return kind;
  return ToDisplayText(FormatMessageText(Msg::StaleState, kind.toStdString()));
}

QVariant CTNParserInFileModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const bool isText = index.column() >= kFirstText;
  switch (role) {
    case Qt::DisplayRole:
      return GetCellText(index.row(), index.column());
    case Qt::BackgroundRole:
      // The text colour comes with it: a dark theme would write white on light green.
      if (!isText || !m_options.colourRows) return {};
      return QBrush(ToQColor(GetBlock(index.row()).GetBackColour()));
    case Qt::ForegroundRole:
      if (!isText || !m_options.colourRows) return {};
      return QBrush(ToQColor(GetBlock(index.row()).GetTextColour()));
    case Qt::FontRole:
      return isText ? QVariant(m_textFont) : QVariant();
    case Qt::ToolTipRole:
      return ToDisplayText(FormatMessageText(Msg::LineState, GetLine(index.row()) + 1,
                                             GetState(GetBlock(index.row())).toStdString()));
    case Qt::AccessibleDescriptionRole:
      return GetState(GetBlock(index.row()));
    default:
      return {};
  }
}

QVariant CTNParserInFileModel::headerData(int section, Qt::Orientation orientation,
                                          int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) {
    return section >= 0 && section < rowCount() ? GetCellText(section, kLineNumber) : QVariant();
  }
  constexpr Msg kTitles[kFixedColumns] = {Msg::ColumnLineNumber, Msg::ColumnMatchingRecord,
                                          Msg::ColumnFileText};
  if (section < 0 || section >= columnCount()) return {};
  return section < kFixedColumns ? MessageText(kTitles[section]).toUpper() : QString();
}

Qt::ItemFlags CTNParserInFileModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  return index.isValid() ? flags | Qt::ItemIsDragEnabled : flags;
}

}  // namespace bomparser
