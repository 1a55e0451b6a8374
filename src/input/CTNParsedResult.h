#pragma once

#include "input/ApplicationStats.h"
#include "input/CTNInputText.h"
#include "input/CTNParsedLayout.h"
#include "tnbase/GrowArray.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <vector>

namespace bomparser {

/// How the elements of a block are stored: one byte an element, in the order of its record's
/// fields. Elements lie one behind the other in the text, so only their lengths are needed:
///   a field            its length, or kLong and the length in four bytes (low byte first), or
///                      kAbsent for an optional field that did not match
///   a SUBRECORD field  for each instance kInstance and the instance's own elements; then kNoMore
/// A line end counts as one character of text although what is shown of it is empty.
namespace element_code {
constexpr std::uint8_t kAbsent = 255;
constexpr std::uint8_t kLong = 254;
constexpr std::uint8_t kInstance = 1;
constexpr std::uint8_t kNoMore = 0;
constexpr std::size_t kMaxBytes = 5;

/// Writes a length at `to`, which has room for kMaxBytes; returns the place behind it.
inline std::uint8_t* PutLength(std::uint8_t* to, std::uint32_t length) {
  if (length < kLong) {
    *to = static_cast<std::uint8_t>(length);
    return to + 1;
  }
  *to++ = kLong;
  for (int shift = 0; shift < 32; shift += 8)
    *to++ = static_cast<std::uint8_t>(length >> shift);
  return to;
}

/// Reads a length and moves `from` behind it; nothing for an absent field.
inline std::optional<std::uint32_t> TakeLength(const std::uint8_t*& from) {
  const std::uint8_t code = *from++;
  if (code < kLong) return code;
  if (code == kAbsent) return std::nullopt;
  std::uint32_t length = 0;
  for (int shift = 0; shift < 32; shift += 8)
    length |= std::uint32_t{*from++} << shift;
  return length;
}
}  // namespace element_code

/// One block: where its text and its elements start, and the record that it matched as a place in
/// the layout (CTNParsedLayout::kNoRecord when none took it).
struct ParsedBlockEntry {
  std::uint32_t text;
  std::uint32_t elements;
  std::uint32_t record;
};

/// Where the elements of a block, or of a sub-record's nested block, are found.
struct ParsedBlockPlace {
  std::uint32_t record = CTNParsedLayout::kNoRecord;
  std::uint32_t text = 0;
  std::uint32_t elements = 0;
  std::uint32_t elementsEnd = 0;
};

/// What one application of a template left behind, as a value: text, blocks and elements in flat
/// arrays, and the layout that they were made with. It is filled once and then only shared.
class CTNParsedResult {
 public:
  CTNParsedResult(std::shared_ptr<const CTNInputText> text,
                  std::shared_ptr<const CTNParsedLayout> layout)
      : m_text(std::move(text)), m_layout(std::move(layout)) {}

  const std::shared_ptr<const CTNInputText>& GetText() const { return m_text; }
  const CTNParsedLayout& GetLayout() const { return *m_layout; }
  std::size_t GetBlockCount() const { return m_blocks.Size(); }
  ParsedBlockPlace GetPlace(std::size_t block) const;
  /// Where the text of a block ends: blocks follow each other without a gap.
  std::uint32_t GetTextEnd(std::size_t block) const;
  /// True when a block is known to have exactly one row. Others have none, one or more: only their
  /// elements tell.
  bool HasOneRow(std::size_t block) const;
  const ParsedBlockEntry& GetEntry(std::size_t block) const { return m_blocks[block]; }
  const std::uint8_t* ElementBytes() const { return m_elements.Data(); }
  std::uint32_t ElementEnd() const { return static_cast<std::uint32_t>(m_elements.Size()); }
  BlockKind KindOf(std::uint32_t record) const;
  const ApplicationStats& GetStats() const { return m_stats; }

  /// Moves `from` and `text` behind the elements of one block of the record.
  void SkipElements(std::uint32_t record, const std::uint8_t*& from, std::uint32_t& text) const;

  /// The number of blocks that the record at this place of the layout matched, those inside
  /// sub-record fields included. Counted once, when first asked for.
  std::uint32_t CountBlocksOf(std::uint32_t record) const;
  /// The last block that the record matched outside other records, or -1.
  std::ptrdiff_t LastBlockOf(std::uint32_t record) const;

  // Building: elements are written behind ElementEnd, then a block takes all that are new.

  /// Room for `count` more element bytes; taken up by AdvanceElements. That throws std::bad_alloc
  /// when there are more than the numbers can tell; they are not added then.
  std::uint8_t* MakeElementRoom(std::size_t count) { return m_elements.MakeRoom(count); }
  /// How many bytes there is room for.
  std::size_t GetElementRoom() const { return m_elements.Capacity() - m_elements.Size(); }
  void AdvanceElements(std::size_t count) {
    if (m_elements.Size() + count > std::numeric_limits<std::uint32_t>::max()) {
      throw std::bad_alloc();
    }
    m_elements.Advance(count);
  }
  /// Drops the elements behind `end`: what a record that failed has left.
  void CutElements(std::uint32_t end) { m_elements.Cut(end); }
  /// The rows of the block over [text, textEnd) whose elements run from `elements` to the end.
  std::uint32_t CountRows(std::uint32_t text, std::uint32_t textEnd, std::uint32_t elements,
                          std::uint32_t record) const;
  /// Appends that block with the rows counted for it. Throws std::bad_alloc when memory runs out;
  /// the block's elements are dropped then.
  void AppendBlock(std::uint32_t text, std::uint32_t textEnd, std::uint32_t elements,
                   std::uint32_t record, std::uint32_t rows);
  /// Forgets all blocks; their memory is used again.
  void RemoveBlocks();
  /// Counts that block without keeping it: its elements are dropped.
  void CountBlock(std::uint32_t elements, std::uint32_t record, std::uint32_t rows);

 private:
  bool IsOneLine(const ParsedBlockPlace& place, std::uint32_t textEnd) const;
  void AddToStats(std::uint32_t record, std::uint32_t rows);

  std::shared_ptr<const CTNInputText> m_text;
  std::shared_ptr<const CTNParsedLayout> m_layout;
  GrowArray<ParsedBlockEntry> m_blocks;
  GrowArray<std::uint8_t> m_elements;
  std::uint32_t m_textEnd = 0;
  ApplicationStats m_stats;
  mutable std::vector<std::uint32_t> m_countByRecord;
};

}  // namespace bomparser
