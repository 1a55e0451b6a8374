#include "template/TagSearch.h"

#include "template/CTNTemplateRecord.h"

namespace bomparser {

bool TagSearch::IsReachedFrom(const CTNTemplRecOutField& element) {
  const Elements::Place& asked = m_elements.At(element);
  while (Elements::Place* const place = m_elements.Next()) {
    for (const CTNOutFieldValueElement& item : place->thing->GetItems())
      Follow(item.GetTarget(), *place);
  }
  return asked.reachesGoal;
}

bool TagSearch::IsIn(const CTNTemplateRecord& record) {
  const RecordContent& content = ContentOf(record);
  return content.hasTag || (content.lastNone != nullptr && IsReachedFrom(*content.lastNone));
}

void TagSearch::Follow(const CTNOutFieldValueElement& item, Elements::Place& from) {
  switch (item.kind) {
    case ValueItemKind::InputField:
      if (const CTNTemplateRecord* sub = item.inputField->GetSubRecord()) FollowRecord(*sub, from);
      return;
    case ValueItemKind::OutputSymbol:
      FollowElement(*item.outputElement, from);
      return;
    case ValueItemKind::Record:
      FollowRecord(*item.record, from);
      return;
    default:
      return;
  }
}

void TagSearch::FollowElement(const CTNTemplRecOutField& element, Elements::Place& from) {
  if (element.GetTag() == m_tag) {
    m_elements.ReachGoal(from);
  } else {
    m_elements.Lead(from, m_elements.At(element));
  }
}

void TagSearch::FollowRecord(const CTNTemplateRecord& record, Elements::Place& from) {
  const RecordContent& content = ContentOf(record);
  if (content.hasTag) {
    m_elements.ReachGoal(from);
  } else if (content.lastNone != nullptr) {
    m_elements.Lead(from, m_elements.At(*content.lastNone));
  }
}

const TagSearch::RecordContent& TagSearch::ContentOf(const CTNTemplateRecord& record) {
  const auto [at, isNew] = m_contents.try_emplace(&record);
  if (!isNew) return at->second;
  // Only the last NONE element counts, whatever earlier ones reach. Templates rely on it.
  for (const auto& element : record.GetOutputFields()) {
    if (element->GetTag() == m_tag) at->second.hasTag = true;
    if (element->GetTag() == OutputTag::None) at->second.lastNone = element.get();
  }
  return at->second;
}

}  // namespace bomparser
