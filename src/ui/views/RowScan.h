#pragma once

#include "input/CTNRowCursor.h"
#include "ui/views/BlockKinds.h"
#include "ui/views/RowFilter.h"

#include <QString>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace bomparser {

/// A row's text fills up to four columns of at most 255 characters each; the rest is not shown.
constexpr int kTextColumns = 4;
constexpr int kColumnLength = 255;

/// The characters of the row that stand in a text column (from 0). A pair of surrogates is not
/// divided.
QString TextOfColumn(const QString& text, int column);
/// What is shown of a row's bytes: the first kTextColumns columns at least.
QString ToShownRowText(std::string bytes);
/// The most that ToShownRowText needs of a row's bytes.
constexpr std::size_t kShownBytes = std::size_t{4} * kTextColumns * kColumnLength;
constexpr std::size_t kBytesToShow = kShownBytes + 1;  // One more tells that there is more.

/// The widest text of each column: its width in characters of a fixed pitch, 0 where no row has a
/// text there, and the row that has it.
struct WidestText {
  int width = 0;
  std::uint32_t line = 0;
};
using WidestTexts = std::array<WidestText, kTextColumns>;

/// One pass over the rows of a result: which of them a filter accepts, and how wide their texts
/// are. It may be continued on another thread.
class RowScan {
 public:
  struct Task {
    std::shared_ptr<const CTNParsedResult> result;
    std::uint32_t kinds = kShowAllKinds;
    RowTextForm form;  // Its limit is the scan's affair.
    RowFilter filter;
  };

  explicit RowScan(Task task);

  bool IsDone() const { return m_rows.IsAtEnd(); }
  /// Looks at the next `lines` lines, or fewer when `mayGoOn`, asked at every line, says no. Throws
  /// std::bad_alloc.
  void Step(std::uint32_t lines, const std::function<bool()>& mayGoOn);
  /// The lines that were accepted since this was asked last, in order. None without a filter.
  std::vector<std::uint32_t> TakeLines() { return std::exchange(m_lines, {}); }
  const WidestTexts& GetWidest() const { return m_widest; }

 private:
  void Look();
  bool MayBeWider() const;
  bool IsRecordAccepted();
  void Measure(std::uint32_t line);
  void NoteWidth(int column, int width, std::uint32_t line);

  Task m_task;
  CTNRowCursor m_rows;
  std::vector<std::uint32_t> m_lines;
  WidestTexts m_widest;
  std::string m_bytes;
  enum class Answer : std::uint8_t { NotAsked, No, Yes };
  std::vector<Answer> m_ofRecord;  // Whether the filter accepts the matching record's text.
};

}  // namespace bomparser
