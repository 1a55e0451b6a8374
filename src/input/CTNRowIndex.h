#pragma once

#include "input/CTNRowCursor.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace bomparser {

/// Finds the rows of a result by their line, the place among the rows of all blocks, from 0. It
/// remembers a place every 256 lines, as far as anybody has asked, and nothing per row: what lies
/// between is walked. For one thread.
class CTNRowIndex {
 public:
  /// The result is complete.
  explicit CTNRowIndex(std::shared_ptr<const CTNParsedResult> result);

  const std::shared_ptr<const CTNParsedResult>& GetResult() const { return m_result; }
  std::uint32_t GetLineCount() const {
    return static_cast<std::uint32_t>(m_result->GetStats().totalLines);
  }
  /// The cursor at a line; at the end when there is no such line. It stands there until the next
  /// question. Asking for a line soon behind the one before is quick.
  const CTNRowCursor& Find(std::uint32_t line);
  /// The line of a block's first row; of a block without rows, that of the next row. One that is
  /// not there gives the number of lines.
  std::uint32_t GetFirstLine(std::uint32_t block);

 private:
  static constexpr std::uint32_t kStep = 256;

  bool Extend();

  std::shared_ptr<const CTNParsedResult> m_result;
  std::vector<CTNRowCursor> m_places;  // At every line that kStep divides, up to the last asked.
  CTNRowCursor m_last;
};

}  // namespace bomparser
