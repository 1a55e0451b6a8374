#include "input/CTNParsedBlockPtrArray.h"

#include <stdexcept>

namespace bomparser {

CTNParsedResult& CTNParsedBlockPtrArray::Begin(std::shared_ptr<const CTNInputText> text,
                                               std::shared_ptr<const CTNParsedLayout> layout,
                                               const ApplicationPurpose& purpose) {
  m_purpose = purpose;
  m_building = std::make_shared<CTNParsedResult>(std::move(text), std::move(layout));
  m_result = m_building;
  return *m_building;
}

std::ptrdiff_t CTNParsedBlockPtrArray::Add(std::uint32_t text, std::uint32_t textEnd,
                                           std::uint32_t elements, std::uint32_t record,
                                           std::uint32_t rows) {
  if (m_progress != nullptr && m_progress->StepAndPoll(rows)) {
    m_building->CutElements(elements);
    return -1;
  }
  if (m_purpose.use == ResultUse::Counted) {
    m_building->CountBlock(elements, record, rows);
    return 0;
  }
  m_building->AppendBlock(text, textEnd, elements, record, rows);
  return static_cast<std::ptrdiff_t>(m_building->GetBlockCount()) - 1;
}

CTNParsedFileBlock CTNParsedBlockPtrArray::GetAt(std::size_t index) const {
  if (index >= GetSize()) throw std::invalid_argument("no block has this index");
  return CTNParsedFileBlock(m_context, m_result, m_result->GetPlace(index));
}

std::uint32_t CTNParsedBlockPtrArray::GetBlockCount(const CTNMatchedRecord* record) const {
  if (!m_result) return 0;
  return m_result->CountBlocksOf(m_result->GetLayout().IndexOf(record));
}

std::ptrdiff_t CTNParsedBlockPtrArray::FindLastBlock(const CTNMatchedRecord* record) const {
  if (!m_result) return -1;
  const std::uint32_t index = m_result->GetLayout().IndexOf(record);
  return index == CTNParsedLayout::kNoRecord ? -1 : m_result->LastBlockOf(index);
}

void CTNParsedBlockPtrArray::DeleteAll() {
  m_progress = nullptr;
  RemoveAll();
}

void CTNParsedBlockPtrArray::RemoveAll() {
  m_building = nullptr;
  m_result = nullptr;
}

}  // namespace bomparser
