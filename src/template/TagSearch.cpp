#include "template/TagSearch.h"

#include "template/CTNTemplateRecord.h"

namespace bomparser {

bool TagSearch::IsReachedFrom(const CTNTemplRecOutField& element) {
  Add(&element);
  return LookIntoPending();
}

bool TagSearch::IsIn(const CTNTemplateRecord& record) {
  return LookInto(record) || LookIntoPending();
}

void TagSearch::Add(const CTNTemplRecOutField* element) {
  if (m_known.insert(element).second) m_pending.push_back(element);
}

bool TagSearch::LookIntoPending() {
  while (!m_pending.empty()) {
    const CTNTemplRecOutField& element = *m_pending.back();
    m_pending.pop_back();
    for (const CTNOutFieldValueElement& item : element.GetItems()) {
      if (Follow(item.GetTarget())) return true;
    }
  }
  return false;
}

/// True when what the item names has the tag; what that reaches in turn becomes pending.
bool TagSearch::Follow(const CTNOutFieldValueElement& item) {
  switch (item.kind) {
    case ValueItemKind::InputField: {
      const CTNTemplateRecord* sub = item.inputField->GetSubRecord();
      return sub != nullptr && LookInto(*sub);
    }
    case ValueItemKind::OutputSymbol:
      Add(item.outputElement);
      return item.outputElement->GetTag() == m_tag;
    case ValueItemKind::Record:
      return LookInto(*item.record);
    default:
      return false;
  }
}

bool TagSearch::LookInto(const CTNTemplateRecord& record) {
  const CTNTemplRecOutField* lastNone = nullptr;
  for (const auto& element : record.GetOutputFields()) {
    if (element->GetTag() == m_tag) return true;
    if (element->GetTag() == OutputTag::None) lastNone = element.get();
  }
  // Only the last NONE element counts, whatever earlier ones reach. Templates rely on it.
  if (lastNone != nullptr) Add(lastNone);
  return false;
}

}  // namespace bomparser
