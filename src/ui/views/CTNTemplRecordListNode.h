#pragma once

#include "template/CTNTemplateRecord.h"
#include "ui/views/CTNTemplateListNode.h"

#include <cstdint>
#include <vector>

namespace bomparser {

enum class Msg : std::uint32_t;

/// The columns of a record list.
enum class RecordColumn : int { Id, Type, Description, MatchCount };

/// A record as a row of a record list. The row of a record that is gone is empty.
class CTNTemplRecordListNode final : public CTNTemplateListNode {
 public:
  CTNTemplRecordListNode(const CTNFileParserEngine& engine, CTNTemplateRecord& record);

  /// The titles of the columns.
  static std::vector<Msg> GetTitles();
  /// Null once the record is gone.
  CTNTemplateRecord* GetRecord() const { return m_record; }

  CTNTemplateArrayElement* GetElement() const override { return GetRecord(); }
  const void* GetKey() const override { return GetRecord(); }
  QString GetText(int column) const override;
  CellColours GetColours(int column) const override;
  bool IsEditable(int column) const override;

 private:
  RecordLink m_record;
};

}  // namespace bomparser
