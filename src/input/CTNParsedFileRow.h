#pragma once

#include "input/CTNParsedFileBlockElement.h"

#include <string>
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

/// Expands the tabs of a shown text. A tab at column p gives blanks up to
/// the next multiple of `tabStop` that is not 0 and not below p: a tab that stands exactly on such
/// a column disappears, and all tabs before the first stop reach it. A tab stop below 1 leaves
/// tabs as they are.
void ExpandTabs(std::string& text, int tabStop);

}  // namespace bomparser
