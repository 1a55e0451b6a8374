#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace bomparser {

class CTNTemplateRecord;

/// Tells which records are entangled: they contain themselves through their sub-records, nest
/// sub-records deeper than kMaxNestedRecords, or hold more than kMaxEmptyInstances of them.
/// Answers are remembered, so that asking for all records of a template takes linear time; the
/// template must not change meanwhile.
class EntangledRecords {
 public:
  bool Contains(const CTNTemplateRecord& record);

 private:
  struct Known {
    bool finished = false;
    std::uint32_t instances = 0;  // Sub-records that one instance holds at most if each field
    std::uint32_t levels = 0;     // matches once, and how deep they are nested.
  };
  struct Visit {
    const CTNTemplateRecord* record;
    std::size_t field;
  };

  void Explore(const CTNTemplateRecord& first);
  static void AddSubRecord(Known& known, const Known& sub);

  std::unordered_map<const CTNTemplateRecord*, Known> m_known;
  std::vector<Visit> m_path;
};

}  // namespace bomparser
