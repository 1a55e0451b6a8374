#pragma once

#include "input/CTNParsedFileBlock.h"
#include "ui/controls/CTNParserListNode.h"

#include <cstdint>
#include <utility>

namespace bomparser {

/// A row of the input file view: a block and one of its rows. The block is a view that keeps its
/// result alive.
class CTNParserInFileListNode final : public CTNParserListNode {
 public:
  CTNParserInFileListNode(CTNParsedFileBlock block, std::uint32_t row, std::uint32_t line)
      : m_block(std::move(block)), m_row(row), m_line(line) {}

  const CTNParsedFileBlock& GetBlock() const { return m_block; }
  /// The row's place in the block, from 0.
  std::uint32_t GetRow() const { return m_row; }
  /// Its place among the rows of all blocks, from 0.
  std::uint32_t GetLine() const { return m_line; }

 private:
  CTNParsedFileBlock m_block;
  std::uint32_t m_row;
  std::uint32_t m_line;
};

}  // namespace bomparser
