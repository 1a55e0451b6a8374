#include "input/CTNParsedLayout.h"

#include "input/roles/CTNMatchedField.h"
#include "input/roles/CTNMatchedRecord.h"

#include <algorithm>

namespace bomparser {

std::uint32_t CTNParsedLayout::IndexOf(const CTNMatchedRecord* record) const {
  const auto found = m_byRecord.find(record);
  return found != m_byRecord.end() ? found->second : kNoRecord;
}

std::uint32_t CTNParsedLayout::Describe(const CTNMatchedRecord& record) {
  const std::uint32_t known = IndexOf(&record);
  if (known != kNoRecord) return known;
  const auto add = [this](const CTNMatchedRecord& added) {
    const auto index = static_cast<std::uint32_t>(m_records.size());
    m_records.push_back(
        {&added, added.GetRecordKind(), added.GetRecordId(), added.GetRecordName(), {}, false});
    m_byRecord.emplace(&added, index);
    return index;
  };
  const std::uint32_t index = add(record);
  // Records found on the way are appended, so the loop reaches them as well.
  for (std::size_t at = index; at < m_records.size(); ++at) {
    const CTNMatchedRecord& described = *m_records[at].record;
    for (std::size_t i = 0; i < described.GetFieldCount(); ++i) {
      const CTNMatchedField* field = described.GetMatchedFieldAt(i);
      std::uint32_t sub = kNoRecord;
      if (const CTNMatchedRecord* named = field->GetMatchedSubRecord()) {
        sub = IndexOf(named);
        if (sub == kNoRecord) sub = add(*named);
      }
      m_records[at].fields.push_back(
          {field, field->GetFieldKind(), field->GetFieldTypeName(), sub});
    }
  }
  return index;
}

std::uint32_t CTNParsedLayout::FieldIndexOf(std::uint32_t index,
                                            const CTNMatchedField* field) const {
  const auto& fields = m_records[index].fields;
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [field](const auto& entry) { return entry.field == field; });
  return found == fields.end() ? kNoRecord : static_cast<std::uint32_t>(found - fields.begin());
}

}  // namespace bomparser
