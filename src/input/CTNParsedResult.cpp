#include "input/CTNParsedResult.h"

#include "input/CTNElementCursor.h"

#include <cstring>
#include <new>

namespace bomparser {

namespace {

/// Counts, for one block, the nested blocks of its sub-records.
class NestedCounter {
 public:
  NestedCounter(const CTNParsedLayout& layout, std::vector<std::uint32_t>& counts)
      : m_records(layout.Records()), m_counts(counts) {}

  /// Reads the elements of one block of the record; returns the place behind them.
  const std::uint8_t* Count(std::uint32_t record, const std::uint8_t* from) {
    for (const ParsedFieldLayout& field : m_records[record].fields) {
      if (field.kind != FieldKind::SubRecord) {
        element_code::TakeLength(from);
        continue;
      }
      while (*from++ == element_code::kInstance) {
        ++m_counts[field.subRecord];
        from = Count(field.subRecord, from);
      }
    }
    return from;
  }

 private:
  const std::vector<ParsedRecordLayout>& m_records;
  std::vector<std::uint32_t>& m_counts;
};

bool HasSubRecord(const ParsedRecordLayout& record) {
  for (const ParsedFieldLayout& field : record.fields) {
    if (field.kind == FieldKind::SubRecord) return true;
  }
  return false;
}

}  // namespace

ParsedBlockPlace CTNParsedResult::GetPlace(std::size_t block) const {
  const ParsedBlockEntry& entry = m_blocks[block];
  const bool last = block + 1 == m_blocks.Size();
  return {entry.record, entry.text, entry.elements,
          last ? ElementEnd() : m_blocks[block + 1].elements};
}

std::uint32_t CTNParsedResult::GetTextEnd(std::size_t block) const {
  return block + 1 == m_blocks.Size() ? m_textEnd : m_blocks[block + 1].text;
}

BlockKind CTNParsedResult::KindOf(std::uint32_t record) const {
  // A line that not even the ignored-lines record could take counts as matched and auxiliary.
  if (record == CTNParsedLayout::kNoRecord) return BlockKind::Auxiliary;
  return BlockKindOf(m_layout->Records()[record].kind);
}

void CTNParsedResult::SkipElements(std::uint32_t record, const std::uint8_t*& from,
                                   std::uint32_t& text) const {
  for (const ParsedFieldLayout& field : m_layout->Records()[record].fields) {
    if (field.kind == FieldKind::SubRecord) {
      while (*from++ == element_code::kInstance)
        SkipElements(field.subRecord, from, text);
    } else {
      text += element_code::TakeLength(from).value_or(0);
    }
  }
}

std::uint32_t CTNParsedResult::CountBlocksOf(std::uint32_t record) const {
  if (m_countByRecord.empty()) {
    const auto& records = m_layout->Records();
    m_countByRecord.assign(records.size(), 0);
    std::vector<bool> nests(records.size());
    for (std::size_t i = 0; i < records.size(); ++i)
      nests[i] = HasSubRecord(records[i]);
    NestedCounter nested(*m_layout, m_countByRecord);
    for (std::size_t i = 0; i < m_blocks.Size(); ++i) {
      const ParsedBlockEntry& entry = m_blocks[i];
      if (entry.record == CTNParsedLayout::kNoRecord) continue;
      ++m_countByRecord[entry.record];
      if (nests[entry.record]) nested.Count(entry.record, m_elements.Data() + entry.elements);
    }
  }
  return record < m_countByRecord.size() ? m_countByRecord[record] : 0;
}

std::ptrdiff_t CTNParsedResult::LastBlockOf(std::uint32_t record) const {
  auto block = static_cast<std::ptrdiff_t>(m_blocks.Size()) - 1;
  while (block >= 0 && m_blocks[static_cast<std::size_t>(block)].record != record)
    --block;
  return block;
}

/// Nearly every block is one line: its only line feed is its last character and was taken by the
/// record's last field. A block of another form may still have one row.
bool CTNParsedResult::IsOneLine(const ParsedBlockPlace& place, std::uint32_t textEnd) const {
  if (place.record == CTNParsedLayout::kNoRecord || textEnd <= place.text) return false;
  const ParsedRecordLayout& record = m_layout->Records()[place.record];
  const char* bytes = m_text->Data();
  return !record.fields.empty() && record.fields.back().kind == FieldKind::Newline &&
         std::memchr(bytes + place.text, '\n', textEnd - place.text) == bytes + textEnd - 1 &&
         *(m_elements.Data() + place.elementsEnd - 1) == 1;
}

bool CTNParsedResult::HasOneRow(std::size_t block) const {
  const std::uint32_t record = m_blocks[block].record;
  if (record == CTNParsedLayout::kNoRecord) return false;
  return m_layout->Records()[record].oneRow || IsOneLine(GetPlace(block), GetTextEnd(block));
}

std::uint32_t CTNParsedResult::CountRows(std::uint32_t text, std::uint32_t textEnd,
                                         std::uint32_t elements, std::uint32_t record) const {
  const ParsedBlockPlace place{record, text, elements, ElementEnd()};
  if (record == CTNParsedLayout::kNoRecord) return 0;
  if (IsOneLine(place, textEnd)) return 1;
  CTNElementCursor cursor(*this, place);
  std::uint32_t rows = 0;
  bool open = false;
  for (ShownElement element; cursor.Next(element);) {
    if (!open) ++rows;
    open = !element.EndsRow();
  }
  return rows;
}

void CTNParsedResult::AddToStats(std::uint32_t record, std::uint32_t rows) {
  ++m_stats.totalBlocks;
  m_stats.totalLines += rows;
  switch (KindOf(record)) {
    case BlockKind::Entity:
      ++m_stats.entityBlocks;
      break;
    case BlockKind::Unmatched:
      ++m_stats.unmatchedBlocks;
      m_stats.unmatchedLines += rows;
      break;
    case BlockKind::Ignored:
      ++m_stats.ignoredBlocks;
      m_stats.ignoredLines += rows;
      break;
    case BlockKind::Auxiliary:
      break;
  }
}

void CTNParsedResult::CountBlock(std::uint32_t elements, std::uint32_t record, std::uint32_t rows) {
  AddToStats(record, rows);
  CutElements(elements);
}

void CTNParsedResult::RemoveBlocks() {
  m_blocks.Cut(0);
  m_elements.Cut(0);
  m_textEnd = 0;
  m_stats = {};
  m_countByRecord.clear();
}

void CTNParsedResult::AppendBlock(std::uint32_t text, std::uint32_t textEnd, std::uint32_t elements,
                                  std::uint32_t record, std::uint32_t rows) {
  try {
    m_blocks.Push({text, elements, record});
  } catch (const std::bad_alloc&) {
    CutElements(elements);
    throw;
  }
  m_textEnd = textEnd;
  m_countByRecord.clear();
  AddToStats(record, rows);
}

}  // namespace bomparser
