#pragma once

#include "input/CTNParsedFileBlockElement.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

/// One line of a block: elements up to and including the one that matched the line end.
class CTNParsedFileRow {
 public:
  void AddElement(CTNParsedFileBlockElement element) { m_elements.push_back(std::move(element)); }
  const std::vector<CTNParsedFileBlockElement>& GetElements() const { return m_elements; }
  /// True when the last element matched a line end: the next element starts a new row.
  bool IsComplete() const {
    return !m_elements.empty() && m_elements.back().GetFieldType() == FieldKind::Newline;
  }
  /// Appends the elements' texts. Tabs are as they stand in the file.
  void GetText(std::string& out, Markup markup, Newlines newlines) const {
    for (const CTNParsedFileBlockElement& element : m_elements) {
      element.GetText(out, markup, newlines);
    }
  }

 private:
  std::vector<CTNParsedFileBlockElement> m_elements;
};

/// Expands the tabs of one shown row, which may come in pieces. A tab at column p gives blanks up
/// to the next multiple of the tab stop that is not 0 and not below p: a tab that stands exactly on
/// such a column disappears, and all tabs before the first stop reach it. A tab stop below 1 leaves
/// tabs as they are.
class TabExpander {
 public:
  explicit TabExpander(int tabStop) : m_stop(tabStop < 1 ? 0 : static_cast<std::size_t>(tabStop)) {}

  /// Appends the next piece of the row to `out`.
  void Append(std::string& out, std::string_view piece);

 private:
  std::size_t m_stop;
  std::size_t m_column = 0;
};

/// Expands the tabs of a whole row.
void ExpandTabs(std::string& text, int tabStop);

/// How the text of a row is made.
struct RowTextForm {
  static constexpr std::size_t kNoLimit = SIZE_MAX;

  Markup markup = Markup::Off;
  Newlines newlines = Newlines::Hidden;
  int tabStop = 0;  // See TabExpander.
  /// What stands behind this many bytes of the text may be left out: rows can be as long as a file.
  std::size_t most = kNoLimit;
};

/// Walks the rows of one block. A copy goes on from the same row.
class CTNRowElements {
 public:
  /// At the first row. The result lives longer.
  CTNRowElements(const CTNParsedResult& result, const ParsedBlockPlace& place)
      : m_elements(result, place), m_hasRow(m_elements.Next(m_first)) {}

  /// False behind the last row; then nothing can be skipped or taken.
  bool HasRow() const { return m_hasRow; }
  /// Goes to the next row.
  void SkipRow();
  /// Appends the row's text and goes to the next row.
  void TakeRow(std::string& out, const RowTextForm& form);

 private:
  template <class Visit>
  void ForEachElement(Visit visit);

  ShownElement m_first;  // Of the row.
  CTNElementCursor m_elements;
  bool m_hasRow;
};

}  // namespace bomparser
