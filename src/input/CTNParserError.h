#pragma once

#include "input/CTNParserArrayElement.h"

#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

/// One reported problem: a list of text lines.
class CTNParserError : public CTNParserArrayElement {
 public:
  CTNParserError() : CTNParserArrayElement(nullptr) {}

  /// Appends a line. False when memory ran out; the lines so far stay.
  bool AddLine(std::string_view text);
  /// Removes all lines.
  bool Clear();
  const std::vector<std::string>& GetLines() const { return m_lines; }

 private:
  std::vector<std::string> m_lines;
};

}  // namespace bomparser
