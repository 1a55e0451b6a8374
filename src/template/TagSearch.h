#pragma once

#include "template/OutputTags.h"

#include <unordered_set>
#include <vector>

namespace bomparser {

class CTNOutFieldValueElement;
class CTNTemplRecOutField;
class CTNTemplateRecord;

/// Answers whether an output element, or a record, reaches an element with a tag through
/// expressions. Elements and records may name each other in circles and by many ways: each element
/// is looked into once.
class TagSearch {
 public:
  explicit TagSearch(OutputTag tag) : m_tag(tag) {}

  /// See CTNTemplRecOutField::ReferencesTag.
  bool IsReachedFrom(const CTNTemplRecOutField& element);
  /// See CTNTemplateRecord::HasOutputTag.
  bool IsIn(const CTNTemplateRecord& record);

 private:
  bool LookIntoPending();
  bool Follow(const CTNOutFieldValueElement& item);
  bool LookInto(const CTNTemplateRecord& record);
  void Add(const CTNTemplRecOutField* element);

  OutputTag m_tag;
  std::unordered_set<const CTNTemplRecOutField*> m_known;
  std::vector<const CTNTemplRecOutField*> m_pending;
};

}  // namespace bomparser
