#pragma once

#include <unordered_set>
#include <vector>

namespace bomparser {

class CTNTemplateRecord;

/// The records that a question has still to be asked of. Each comes once: records may contain each
/// other, in circles or by several ways.
class RecordsToAsk {
 public:
  void Add(const CTNTemplateRecord* record) {
    if (record != nullptr && m_known.insert(record).second) m_pending.push_back(record);
  }
  const CTNTemplateRecord* Next() {
    if (m_pending.empty()) return nullptr;
    const CTNTemplateRecord* const record = m_pending.back();
    m_pending.pop_back();
    return record;
  }

 private:
  std::vector<const CTNTemplateRecord*> m_pending;
  std::unordered_set<const CTNTemplateRecord*> m_known;
};

}  // namespace bomparser
