#pragma once

#include "template/CTNTemplRecOutField.h"
#include "template/CTNTemplateRecord.h"
#include "ui/views/CTNTemplateListNode.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bomparser {

enum class Msg : std::uint32_t;

/// The columns of the output element list.
enum class ElementColumn : int { Id, Tag, Expression, CurrentValue };

/// An output element as a row of the element list. The row of one that is gone is empty.
class CTNTemplRecOutFieldListNode final : public CTNTemplateListNode {
 public:
  /// The element at this position of the record's output elements.
  CTNTemplRecOutFieldListNode(const CTNFileParserEngine& engine, CTNTemplateRecord& record,
                              std::size_t position);

  /// The titles of the columns.
  static std::vector<Msg> GetTitles();
  /// Null once the element is gone.
  CTNTemplRecOutField* GetOutField() const;
  /// The record that the element is of; null once that is gone.
  CTNTemplateRecord* GetRecord() const { return m_record; }

  CTNTemplateArrayElement* GetElement() const override { return GetOutField(); }
  const void* GetKey() const override { return m_record != nullptr ? m_element : nullptr; }
  QString GetText(int column) const override;
  CellColours GetColours(int column) const override;
  bool IsEditable(int column) const override;
  QString GetRemark() const override;

 private:
  RecordLink m_record;
  CTNTemplRecOutField* m_element;  // Not owned; gone when the record no longer has it.
  std::size_t m_position;
};

}  // namespace bomparser
