#pragma once

#include "template/OutputTags.h"
#include "template/Reachability.h"

#include <unordered_map>

namespace bomparser {

class CTNOutFieldValueElement;
class CTNTemplRecOutField;
class CTNTemplateRecord;

/// Answers whether output elements, or records, reach an element with a tag through expressions.
/// Elements and records may name each other in circles and by many ways: each is looked into once,
/// however many are asked about. The template must not change meanwhile.
class TagSearch {
 public:
  explicit TagSearch(OutputTag tag) : m_tag(tag) {}

  /// See CTNTemplRecOutField::ReferencesTag.
  bool IsReachedFrom(const CTNTemplRecOutField& element);
  /// See CTNTemplateRecord::HasOutputTag.
  bool IsIn(const CTNTemplateRecord& record);

 private:
  using Elements = Reachability<CTNTemplRecOutField>;
  /// What naming a record leads to.
  struct RecordContent {
    bool hasTag = false;
    const CTNTemplRecOutField* lastNone = nullptr;
  };

  void Follow(const CTNOutFieldValueElement& item, Elements::Place& from);
  void FollowElement(const CTNTemplRecOutField& element, Elements::Place& from);
  void FollowRecord(const CTNTemplateRecord& record, Elements::Place& from);
  const RecordContent& ContentOf(const CTNTemplateRecord& record);

  OutputTag m_tag;
  Elements m_elements;
  std::unordered_map<const CTNTemplateRecord*, RecordContent> m_contents;
};

}  // namespace bomparser
