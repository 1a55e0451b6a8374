#pragma once

#include "input/CTNParsedBlockPtrArray.h"
#include "input/CTNRowIndex.h"
#include "ui/views/BlockKinds.h"
#include "ui/views/LineSet.h"
#include "ui/views/RowScan.h"
#include "ui/views/RowScanner.h"

#include <QAbstractTableModel>
#include <QFont>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace bomparser {

/// The rows of an applied input file as a table: line number, matching record, text in up to four
/// columns. Texts, colours and numbers are made when somebody asks; where all rows are shown it
/// keeps nothing per row, otherwise a bit for every line. It keeps its own share of the result, so
/// that what becomes of the input file meanwhile does not matter; the engine has to outlive it.
class CTNParserInFileModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  static constexpr int kLineNumber = 0;
  static constexpr int kMatchingRecord = 1;
  static constexpr int kFirstText = 2;
  /// More rows than this are not shown: a table counts the pixels of its height in an int.
  static constexpr std::uint32_t kMostRows = 30'000'000;
  /// A table that was empty has so many rows at first; the others come a moment later, so that the
  /// first ones are painted before.
  static constexpr std::uint32_t kRowsAtOnce = 100'000;

  /// Which rows are shown and how.
  struct Options {
    std::uint32_t kinds = kShowAllKinds;
    Markup markup = Markup::Off;
    Newlines newlines = Newlines::Hidden;
    bool colourRows = true;
    RowFilter filter;
  };

  explicit CTNParserInFileModel(QObject* parent = nullptr);

  /// Shows the blocks of an application that succeeded. The model is reset; rows that a filter
  /// accepts, and columns, come behind that, most of a long file from another thread. Other rows
  /// are there at once, but see kRowsAtOnce.
  void Fill(const CTNParsedBlockPtrArray& blocks, const Options& options);
  void Clear();
  /// The font of the text columns.
  void SetTextFont(const QFont& font);
  const QFont& GetTextFont() const { return m_textFont; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  /// The rows of all blocks, shown or not.
  std::uint32_t GetLineCount() const;
  /// The line of a row, both from 0.
  std::uint32_t GetLine(int row) const;
  /// The first row that shows this line or a later one; the number of rows when there is none.
  int FindRow(std::uint32_t line) const;
  /// The block that a row belongs to, and the row's place in it.
  CTNParsedFileBlock GetBlock(int row) const;
  /// The block that a line belongs to, whether that is shown or not; the line is one of the file.
  CTNParsedFileBlock GetBlockOfLine(std::uint32_t line) const {
    return BlockAt(m_rows->Find(line));
  }
  std::uint32_t GetRowInBlock(int row) const;
  /// What the text columns show of a line.
  QString GetShownText(std::uint32_t line) const;
  /// The first row of an unmatched block with a line of at least `first` and below `end`, or the
  /// last such row; -1 when there is none.
  int FindUnmatched(std::uint32_t first, std::uint32_t end) const;
  int FindLastUnmatched(std::uint32_t first, std::uint32_t end) const;

  std::shared_ptr<const CTNParsedResult> GetResult() const { return m_blocks.GetResult(); }
  /// The widest text of each text column among the rows shown, as far as is known.
  const WidestTexts& GetWidest() const { return m_widest; }
  bool HasFilter() const { return m_options.filter.IsActive(); }
  /// True while another thread still looks for rows or widths.
  bool IsScanning() const { return m_scanner.IsRunning(); }
  /// True while rows are still to come that are known already; see kRowsAtOnce.
  bool HasLateRows() const {
    return m_rowLimit < kMostRows && static_cast<std::uint32_t>(rowCount()) < CountShown();
  }
  /// Adds these rows at once.
  void AddLateRows();

 signals:
  void WidestTextsChanged();
  /// Another thread looks for the rest of the rows or widths.
  void ScanBegun();
  /// All rows are there and all widths known.
  void ScanEnded();

 private:
  void StartScan();
  std::uint32_t CountShown() const;
  void OnFound(const std::vector<std::uint32_t>& lines, const WidestTexts& widest);
  void AppendLines(const std::vector<std::uint32_t>& lines);
  void SetWidest(const WidestTexts& widest);
  const CTNRowCursor& CursorAt(int row) const;
  CTNParsedFileBlock BlockAt(const CTNRowCursor& place) const;
  QVariant GetCellText(int row, int column) const;
  QString GetState(const CTNParsedFileBlock& block) const;
  template <class Visit>
  void ForEachUnmatched(std::uint32_t first, std::uint32_t end, Visit visit) const;

  CTNParsedBlockPtrArray m_blocks{nullptr};
  Options m_options;
  RowTextForm m_form;
  QFont m_textFont;
  std::unique_ptr<CTNRowIndex> m_rows;   // Null while there are no blocks.
  std::optional<LineSet> m_lines;        // The lines shown; none where all are.
  std::uint32_t m_rowLimit = kMostRows;  // Rows behind are still to come.
  WidestTexts m_widest;
  int m_extraColumns = 0;
  RowScanner m_scanner;

  // The text that was made last: a row's cells are asked for one after the other.
  mutable std::optional<std::uint32_t> m_textLine;
  mutable QString m_text;
};

}  // namespace bomparser
