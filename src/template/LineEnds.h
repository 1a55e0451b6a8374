#pragma once

#include "template/Reachability.h"

namespace bomparser {

class CTNTemplateRecord;

/// Answers which records end in a required line end, for as many records of a template as there are
/// to ask about: each is looked into once, through whatever sub-records they lead to each other.
/// Nothing but links to sub-records may change meanwhile.
class LineEnds {
 public:
  /// See CTNTemplateRecord::EndsWithRequiredNewline.
  bool AreRequiredBy(const CTNTemplateRecord& record);
  /// To be called when a sub-record field of the record that had no sub-record was linked to one.
  void OnLinked(const CTNTemplateRecord& record) { m_records.LookAgain(record); }

 private:
  using Place = Reachability<CTNTemplateRecord>::Place;
  void LookInto(Place& place);

  Reachability<CTNTemplateRecord> m_records;
};

}  // namespace bomparser
