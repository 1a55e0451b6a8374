#pragma once

#include "input/CTNParserInFile.h"
#include "ui/controls/CTNParserListCtrl.h"
#include "ui/controls/SearchDirection.h"
#include "ui/views/CTNParserInFileModel.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bomparser {

/// Whether tabs of gathered rows come as blanks or as they stand in the file.
enum class Tabs { AsInFile, Expanded };

/// How a search for an unmatched line ended.
enum class UnmatchedFound { None, Ahead, WentRound };

/// The input file view: the rows of the file's blocks as the latest application left them.
class CTNParserInFileListCtrl final : public CTNParserListCtrl {
  Q_OBJECT

 public:
  explicit CTNParserInFileListCtrl(QWidget* parent = nullptr);

  // What is shown; all of it from the next Fill on.

  /// The file is not owned and lives longer than the view, or until another one, or null, is set.
  void SetInputFile(const CTNParserInFile* file);
  /// The kinds of block that are listed, bits of ShownKinds.
  void SetShowFlags(std::uint32_t kinds) { m_options.kinds = kinds; }
  std::uint32_t GetShowFlags() const { return m_options.kinds; }
  void SetShowMarkup(bool show) { m_options.markup = show ? Markup::On : Markup::Off; }
  bool ShowsMarkup() const { return m_options.markup == Markup::On; }
  void SetShowNewlines(bool show) {
    m_options.newlines = show ? Newlines::Shown : Newlines::Hidden;
  }
  bool ShowsNewlines() const { return m_options.newlines == Newlines::Shown; }
  void SetColourRows(bool colour) { m_options.colourRows = colour; }
  void SetFilter(const RowFilter& filter) { m_options.filter = filter; }

  /// Lists the file's rows anew; none unless its latest application succeeded. Lines that were
  /// selected stay selected and the place in the file stays in sight; nothing of it is reported.
  void Fill();
  /// Shows what has become of the results: they are stale now, or are no longer.
  void ShowState();

  /// What is said in the middle of the list while it has no rows.
  void SetHint(const QString& hint);

  const CTNParserInFileModel& GetModel() const { return *m_model; }
  /// The block of the row that was selected last, if that still is selected.
  std::optional<CTNParsedFileBlock> GetSelectedBlock() const;
  /// Selects the next unmatched line, going on at the other end of the list.
  UnmatchedFound GoToUnmatched(SearchDirection direction);
  /// The text of the rows gathered last, without markup and marks, a line feed behind each.
  std::string GetGatheredText(Tabs tabs) const;

  bool CanDropOn(const QWidget* target) const override;
  void OnDrop(QWidget* target, const QPoint& screenPoint) override;
  void keyboardSearch(const QString& search) override;
  void selectAll() override;

 signals:
  /// The current row was selected, and the results are not stale: the block it belongs to. Once
  /// for a change of the selection, as soon as events are handled again.
  void MatchedBlockSelected(const bomparser::CTNParsedFileBlock& block);
  /// A record is to be made from the gathered rows.
  void CreateRecordRequested();
  /// The gathered rows are to be matched with the current record.
  void TestSelectionRequested();
  void EditFileRequested();
  void UnmatchedSought(bomparser::UnmatchedFound found, bomparser::SearchDirection direction);

 protected:
  QMenu* MakeContextMenu(int row) override;
  void OnCommand(Cmd command) override;
  void OnDoubleClickCell(const QModelIndex& cell, bool edited) override;
  std::shared_ptr<CTNParserListNode> MakeNode(int row) const override;
  QString GetSelectedText() const override;
  int sizeHintForColumn(int column) const override;
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

 private:
  using LineRange = std::pair<std::uint32_t, std::uint32_t>;  // First and last.
  /// What a refill keeps.
  struct Place {
    std::vector<LineRange> selected;
    std::optional<std::uint32_t> current;
    std::optional<std::uint32_t> top;  // None where the first row was in sight.
    int column = 0;
    int left = 0;
  };

  bool IsApplied() const { return m_file != nullptr && m_file->IsApplied(); }
  void Empty();
  Place GetPlace() const;
  void ForgetPlace();
  void BringBack(int first, int last);
  void BringBackSelection(int first, int last);
  void BringBackView(int last);
  void WidenSelection();
  void ReportSelection();
  void RequestWithSelection(void (CTNParserInFileListCtrl::*request)());
  void FitTextColumns();
  void FitFixedColumns();
  void FitFont();
  int WidthOfTexts(const QFont& font, const QStringList& texts) const;

  CTNParserInFileModel* m_model;
  const CTNParserInFile* m_file = nullptr;  // Not owned.
  CTNParserInFileModel::Options m_options;
  QString m_hint;
  std::optional<Place> m_place;  // Not brought back yet, wholly or in part.
  bool m_bringingBack = false;
  std::vector<std::pair<int, int>> m_newlySelected;  // Rows, to be reported.
};

}  // namespace bomparser
