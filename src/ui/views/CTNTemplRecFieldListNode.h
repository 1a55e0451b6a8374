#pragma once

#include "template/CTNTemplRecInField.h"
#include "template/CTNTemplateRecord.h"
#include "ui/views/CTNTemplateListNode.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bomparser {

enum class Msg : std::uint32_t;

/// The columns of the input field list.
enum class FieldColumn : int {
  Id,
  Type,
  Required,
  CurrentValue,
  MatchValue,
  MatchCase,
  Repeatable,
  MatchLength,
};

/// An input field as a row of the field list. The row of a field that is gone says so.
class CTNTemplRecFieldListNode final : public CTNTemplateListNode {
 public:
  /// The field at this position of the record's fields.
  CTNTemplRecFieldListNode(const CTNFileParserEngine& engine, CTNTemplateRecord& record,
                           std::size_t position);

  /// The titles of the columns.
  static std::vector<Msg> GetTitles();
  /// Null once the field is gone.
  CTNTemplRecInField* GetField() const;

  CTNTemplateArrayElement* GetElement() const override { return GetField(); }
  const void* GetKey() const override { return m_record != nullptr ? m_field : nullptr; }
  QString GetText(int column) const override;
  CellColours GetColours(int column) const override;
  bool IsEditable(int column) const override;
  std::int32_t IsValid() const override;
  std::string GetStatusText() const override;

 private:
  /// What keeps the field from being shown; empty when nothing does.
  std::string FindFault() const;

  RecordLink m_record;
  CTNTemplRecInField* m_field;  // Not owned; gone when the record no longer has it.
  std::size_t m_position;
};

}  // namespace bomparser
