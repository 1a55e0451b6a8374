#include "template/LineEnds.h"

#include "template/CTNTemplateRecord.h"

namespace bomparser {

bool LineEnds::AreRequiredBy(const CTNTemplateRecord& record) {
  const Place& asked = m_records.At(record);
  while (Place* const place = m_records.Next())
    LookInto(*place);
  return asked.reachesGoal;
}

void LineEnds::LookInto(Place& place) {
  // A required sub-record that does not end so is passed over. One way to a required line end is
  // therefore enough, through whatever sub-records it leads.
  const auto& fields = place.thing->GetInputFields();
  for (auto at = fields.rbegin(); at != fields.rend(); ++at) {
    const CTNTemplRecInField& field = **at;
    if (field.GetType() == FieldKind::Newline) {
      if (!field.IsRequired()) continue;
      m_records.ReachGoal(place);
      return;
    }
    if (field.GetType() != FieldKind::SubRecord || field.GetSubRecord() == nullptr) return;
    if (field.IsRequired()) m_records.Lead(place, m_records.At(*field.GetSubRecord()));
  }
}

}  // namespace bomparser
