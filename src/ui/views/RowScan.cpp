#include "ui/views/RowScan.h"

#include "input/CTNParsedFileBlock.h"
#include "ui/controls/DisplayText.h"

#include <algorithm>

namespace bomparser {
namespace {

// A filter looks at this much of a row: a file without line ends is one row.
constexpr std::size_t kBytesToSearch = std::size_t{1} << 20;
// A tab that is not expanded is painted at most as wide as this many characters.
constexpr int kTabWidth = 10;

bool IsContinuationByte(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

/// Leaves at most so many bytes. The cut is in front of a character, not in its middle: a text that
/// is cut short is no UTF-8.
void CutTo(std::size_t most, std::string& bytes) {
  if (bytes.size() <= most) return;
  constexpr std::size_t kLongestTail = 3;
  std::size_t end = most;
  while (end + kLongestTail > most && IsContinuationByte(bytes[end]))
    --end;
  bytes.resize(end);
}

qsizetype StartOfColumn(const QString& text, int column) {
  const qsizetype start = qsizetype{column} * kColumnLength;
  if (start >= text.size()) return text.size();
  const bool divides =
      start > 0 && text[start].isLowSurrogate() && text[start - 1].isHighSurrogate();
  return divides ? start - 1 : start;
}

bool IsWide(char32_t character) {
  // East Asian letters, and what else the usual fonts draw twice as wide.
  return (character >= 0x1100 && character <= 0x115F) || character >= 0x2E80;
}

int WidthOf(const QString& text) {
  int width = 0;
  for (const char32_t character : text.toUcs4())
    width += character == '\t' ? kTabWidth : (IsWide(character) ? 2 : 1);
  return width;
}

bool IsPlain(const std::string& bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= ' '; });
}

}  // namespace

QString TextOfColumn(const QString& text, int column) {
  const qsizetype start = StartOfColumn(text, column);
  return text.mid(start, StartOfColumn(text, column + 1) - start);
}

QString ToShownRowText(std::string bytes) {
  CutTo(kShownBytes, bytes);
  // A literal may hold a line feed; what it matched stays on its row.
  std::replace(bytes.begin(), bytes.end(), '\n', ' ');
  return ToDisplayText(bytes);
}

RowScan::RowScan(Task task) : m_task(std::move(task)), m_rows(*m_task.result) {
  // One byte more tells that there is more.
  m_task.form.most = m_task.filter.IsActive() ? kBytesToSearch + 1 : kBytesToShow;
  m_ofRecord.resize(m_task.result->GetLayout().Records().size(), Answer::NotAsked);
}

void RowScan::Step(std::uint32_t lines, const std::function<bool()>& mayGoOn) {
  for (; lines > 0 && !m_rows.IsAtEnd() && mayGoOn(); --lines) {
    if (IsShown(m_rows.GetKind(), m_task.kinds)) {
      Look();
    } else {
      m_rows.MoveToNextBlock();
    }
  }
}

void RowScan::Look() {
  const std::uint32_t line = m_rows.GetLine();
  if (!m_task.filter.IsActive() && !MayBeWider()) {
    m_rows.MoveBy(1);
    return;
  }
  const bool accepted = IsRecordAccepted();
  m_bytes.clear();
  m_rows.TakeText(m_bytes, m_task.form);
  CutTo(m_task.filter.IsActive() ? kBytesToSearch : kBytesToShow, m_bytes);
  if (!accepted && !m_task.filter.Accepts(ToDisplayText(m_bytes))) return;
  if (m_task.filter.IsActive()) m_lines.push_back(line);
  Measure(line);
}

/// Whether the row may have the widest text of a column, as far as that can be told without making
/// its text: no character is wider than it has bytes.
bool RowScan::MayBeWider() const {
  const RowTextForm& form = m_task.form;
  if (form.markup == Markup::On || form.newlines == Newlines::Shown) return true;
  if (!m_rows.IsOnlyRow()) return true;
  const CTNParsedResult& result = *m_task.result;
  const std::uint32_t start = result.GetEntry(m_rows.GetBlock()).text;
  const std::string_view text =
      result.GetText()->View().substr(start, result.GetTextEnd(m_rows.GetBlock()) - start);
  const std::ptrdiff_t ofTab = std::max(form.tabStop, kTabWidth);
  const std::ptrdiff_t most = static_cast<std::ptrdiff_t>(text.size()) +
                              (ofTab - 1) * std::count(text.begin(), text.end(), '\t');
  for (std::ptrdiff_t column = 0; column < kTextColumns; ++column) {
    const int widest = m_widest[static_cast<std::size_t>(column)].width;
    if (most - column * kColumnLength > widest) return true;
  }
  return false;
}

/// Whether the filter accepts what the view shows as the matching record of the row's block.
bool RowScan::IsRecordAccepted() {
  if (!m_task.filter.IsActive()) return true;
  const CTNParsedFileBlock block(nullptr, m_task.result,
                                 m_task.result->GetPlace(m_rows.GetBlock()));
  const auto accepts = [this, &block] {
    return m_task.filter.Accepts(ToDisplayText(block.GetMatchText()));
  };
  // Of the catch-all record a blank line has another text than others.
  if (block.GetKind() == BlockKind::Unmatched) return accepts();
  Answer& answer = m_ofRecord[block.GetPlace().record];
  if (answer == Answer::NotAsked) answer = accepts() ? Answer::Yes : Answer::No;
  return answer == Answer::Yes;
}

void RowScan::Measure(std::uint32_t line) {
  if (IsPlain(m_bytes)) {
    const int length = static_cast<int>(std::min(m_bytes.size(), kShownBytes));
    for (int column = 0; column < kTextColumns; ++column) {
      NoteWidth(column, std::clamp(length - column * kColumnLength, 0, kColumnLength), line);
    }
    return;
  }
  const QString text = ToShownRowText(m_bytes);
  for (int column = 0; column < kTextColumns; ++column)
    NoteWidth(column, WidthOf(TextOfColumn(text, column)), line);
}

void RowScan::NoteWidth(int column, int width, std::uint32_t line) {
  WidestText& widest = m_widest[static_cast<std::size_t>(column)];
  if (width > widest.width) widest = {width, line};
}

}  // namespace bomparser
