#pragma once

#include "input/FieldKind.h"
#include "input/RecordKind.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace bomparser {

class CTNMatchedField;
class CTNMatchedRecord;

/// How a block is counted, coloured and filtered.
enum class BlockKind { Entity, Auxiliary, Unmatched, Ignored };
constexpr int kBlockKindCount = 4;

constexpr BlockKind BlockKindOf(RecordKind kind) {
  if (IsEntityKind(kind)) return BlockKind::Entity;
  if (kind == RecordKind::UnmatchedLines) return BlockKind::Unmatched;
  if (kind == RecordKind::IgnoredLines) return BlockKind::Ignored;
  return BlockKind::Auxiliary;
}

struct ParsedFieldLayout {
  const CTNMatchedField* field;  // For comparison only: the field may be gone.
  FieldKind kind;
  std::string_view typeName;
  std::uint32_t subRecord;  // Place of the named record in the layout, or kNoRecord.
};

struct ParsedRecordLayout {
  const CTNMatchedRecord* record;  // For comparison; usable only while results are not stale.
  RecordKind kind;
  std::string id;
  std::string name;
  std::vector<ParsedFieldLayout> fields;
  bool oneRow = false;  // Every block of it is known to have exactly one row.
};

/// The template as it was when a result was made, as far as showing the result needs it. Results
/// outlive the template that they were made with, so nothing here points into it for reading.
class CTNParsedLayout {
 public:
  static constexpr std::uint32_t kNoRecord = 0xFFFFFFFF;

  /// Describes the record and, behind it, every record that its SUBRECORD fields reach. Returns
  /// its place; a record that is known already is not described twice.
  std::uint32_t Describe(const CTNMatchedRecord& record);
  /// Notes that every block of the record at `index` has exactly one row.
  void SetOneRow(std::uint32_t index) { m_records[index].oneRow = true; }
  /// Place of the record, or kNoRecord.
  std::uint32_t IndexOf(const CTNMatchedRecord* record) const;
  /// Place of the field in the record at `index`, or kNoRecord.
  std::uint32_t FieldIndexOf(std::uint32_t index, const CTNMatchedField* field) const;
  const std::vector<ParsedRecordLayout>& Records() const { return m_records; }

 private:
  std::vector<ParsedRecordLayout> m_records;
  std::unordered_map<const CTNMatchedRecord*, std::uint32_t> m_byRecord;
};

}  // namespace bomparser
