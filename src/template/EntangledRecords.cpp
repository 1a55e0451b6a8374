#include "template/EntangledRecords.h"

#include "template/CTNTemplateRecord.h"
#include "template/NestingLimits.h"

#include <algorithm>

namespace bomparser {

namespace {

constexpr std::uint32_t kTooManyInstances = kMaxEmptyInstances + 1;
constexpr std::uint32_t kTooManyLevels = kMaxNestedRecords + 1;

}  // namespace

bool NestingState::IsEntangled() {
  if (m_kind == Kind::Unknown) {
    const bool entangled = m_start == nullptr || EntangledRecords().Contains(*m_start);
    m_kind = entangled ? Kind::Entangled : Kind::Plain;
  }
  return m_kind == Kind::Entangled;
}

bool EntangledRecords::Contains(const CTNTemplateRecord& record) {
  if (m_known.find(&record) == m_known.end()) Explore(record);
  const Known& known = m_known[&record];
  return known.instances >= kTooManyInstances || known.levels >= kTooManyLevels;
}

void EntangledRecords::AddSubRecord(Known& known, const Known& sub) {
  // A record that is not finished contains the one that asks: a circle.
  const std::uint32_t instances = sub.finished ? sub.instances + 1 : kTooManyInstances;
  known.instances = std::min(known.instances + instances, kTooManyInstances);
  known.levels = std::max(known.levels, std::min(sub.levels + 1, kTooManyLevels));
}

/// Goes through the sub-records depth first. Its own stack takes chains of any length.
void EntangledRecords::Explore(const CTNTemplateRecord& first) {
  m_known.emplace(&first, Known{});
  m_path.push_back({&first, 0});
  while (!m_path.empty()) {
    const CTNTemplateRecord& record = *m_path.back().record;
    const auto& fields = record.GetInputFields();
    // An invalid record matches nothing, so nothing inside it is tried.
    const std::size_t count = record.IsValid() != 0 ? fields.size() : 0;
    if (m_path.back().field == count) {
      m_known[&record].finished = true;
      m_path.pop_back();
      continue;
    }
    const CTNTemplRecInField& field = *fields[m_path.back().field];
    const CTNTemplateRecord* sub =
        field.GetType() == FieldKind::SubRecord ? field.GetSubRecord() : nullptr;
    if (sub != nullptr && m_known.emplace(sub, Known{}).second) {
      m_path.push_back({sub, 0});
      continue;  // This field's turn comes again, with the sub-record known.
    }
    if (sub != nullptr) AddSubRecord(m_known[&record], m_known[sub]);
    ++m_path.back().field;
  }
}

}  // namespace bomparser
