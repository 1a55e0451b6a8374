#pragma once

#include "input/CTNParsedFileRow.h"
#include "input/CTNParsedResult.h"

#include <cstdint>
#include <optional>
#include <string>

namespace bomparser {

/// Walks the rows of all blocks of a result in file order. A row's line is its place among them,
/// from 0. Blocks without rows are passed over. A copy of the cursor goes on from the same row.
class CTNRowCursor {
 public:
  /// At the first row. The result is complete and lives longer than the cursor.
  explicit CTNRowCursor(const CTNParsedResult& result);

  bool IsAtEnd() const { return m_block == m_result->GetBlockCount(); }
  std::uint32_t GetLine() const { return m_line; }

  // Not to be asked at the end:

  std::uint32_t GetBlock() const { return m_block; }
  /// The row's place in its block, from 0.
  std::uint32_t GetRow() const { return m_row; }
  /// True when the block is known to have no other row.
  bool IsOnlyRow() const { return !m_rows; }
  BlockKind GetKind() const { return m_result->KindOf(m_result->GetEntry(m_block).record); }

  /// Goes this many rows on, or to the end.
  void MoveBy(std::uint32_t rows);
  /// Goes to the first row of the next block that has one.
  void MoveToNextBlock();
  /// Appends the row's text and goes to the next row. Nothing happens at the end.
  void TakeText(std::string& out, const RowTextForm& form);

 private:
  void FindRow();
  void EnterNextBlock();
  void PassRow();

  const CTNParsedResult* m_result;
  std::uint32_t m_block = 0;
  std::uint32_t m_row = 0;
  std::uint32_t m_line = 0;
  std::optional<CTNRowElements> m_rows;  // At this row; none where the block has just one.
};

}  // namespace bomparser
