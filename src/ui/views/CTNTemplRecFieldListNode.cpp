#include "ui/views/CTNTemplRecFieldListNode.h"

#include "input/MessageTexts.h"
#include "template/Identifiers.h"
#include "ui/controls/DisplayText.h"
#include "ui/views/ListedElement.h"

#include <array>

namespace bomparser {
namespace {

using Field = CTNTemplRecInField;

QString FlagText(bool flag) { return ToDisplayText(Field::FlagText(flag)); }

QString MatchLengthText(const Field& field) {
  return ToDisplayText(FormatMessageText(Msg::IntegerFormat, field.GetMatchLength()));
}

bool Always(FieldKind) { return true; }
bool Never(FieldKind) { return false; }

/// A column of the list, by its number. Of a field that the column does not apply to nothing is
/// shown but that; CURRENT VALUE and ID are not of the field alone, and made elsewhere.
struct Column {
  Msg title;
  QString (*text)(const Field& field);
  bool (*applies)(FieldKind kind);
  bool (*editable)(FieldKind kind);
};

constexpr std::array<Column, 8> kColumns = {{
    {Msg::ColumnId, nullptr, Always, Never},
    {Msg::ColumnType, [](const Field& field) { return ToDisplayText(field.GetTypeName()); }, Always,
     Always},
    {Msg::ColumnRequired, [](const Field& field) { return FlagText(field.IsRequired()); }, Always,
     Always},
    {Msg::ColumnCurrentValue,
     [](const Field& field) { return ToDisplayText(field.GetCurrentValue()); }, Always, Never},
    {Msg::ColumnMatchValue,
     [](const Field& field) { return ToDisplayText(field.GetMatchValueText()); }, Always,
     Field::AllowsMatchValues},
    {Msg::ColumnMatchCase, [](const Field& field) { return FlagText(field.IsCaseSensitive()); },
     Field::AllowsCaseSensitivity, Field::AllowsCaseSensitivity},
    {Msg::ColumnRepeatable, [](const Field& field) { return FlagText(field.IsRepeatable()); },
     Field::IsSubRecordType, Field::IsSubRecordType},
    {Msg::ColumnMatchLength, MatchLengthText, Field::AllowsMatchLength, Field::AllowsMatchLength},
}};

const Column& ColumnAt(int column) { return kColumns.at(static_cast<std::size_t>(column)); }

}  // namespace

CTNTemplRecFieldListNode::CTNTemplRecFieldListNode(const CTNFileParserEngine& engine,
                                                   CTNTemplateRecord& record, std::size_t position)
    : CTNTemplateListNode(engine),
      m_field(record.GetInputFields()[position].get()),
      m_position(position) {
  m_record = &record;
}

std::vector<Msg> CTNTemplRecFieldListNode::GetTitles() {
  std::vector<Msg> titles;
  titles.reserve(kColumns.size());
  for (const Column& column : kColumns)
    titles.push_back(column.title);
  return titles;
}

CTNTemplRecInField* CTNTemplRecFieldListNode::GetField() const {
  return m_record != nullptr ? FindListed(m_record->GetInputFields(), m_field, m_position)
                             : nullptr;
}

std::string CTNTemplRecFieldListNode::FindFault() const {
  const Field* const field = GetField();
  if (field == nullptr) return GetMessageText(Msg::FieldMissingInList);
  if (field->GetParentRecord() == nullptr) return GetMessageText(Msg::FieldParentMissingInList);
  return {};
}

QString CTNTemplRecFieldListNode::GetText(int column) const {
  const std::string fault = FindFault();
  if (!fault.empty()) return ToDisplayText(fault);
  const Field& field = *GetField();
  switch (static_cast<FieldColumn>(column)) {
    case FieldColumn::Id:
      return ToDisplayText(MakeIdentifier(Msg::InputFieldIdPrefix, m_position));
    case FieldColumn::CurrentValue:
      if (!HasCurrentResults(Engine())) return {};
      break;
    default:
      break;
  }
  if (!ColumnAt(column).applies(field.GetType())) return MessageText(Msg::NotApplicable);
  return ColumnAt(column).text(field);
}

CellColours CTNTemplRecFieldListNode::GetColours(int column) const {
  const Field* const field = GetField();
  if (field == nullptr) return {};
  const auto which = static_cast<FieldColumn>(column);
  const bool noLength = which == FieldColumn::MatchLength && field->GetMatchLength() < 0;
  const bool grey =
      which == FieldColumn::CurrentValue || noLength || !ColumnAt(column).applies(field->GetType());
  return grey ? GreyOnOrdinary() : CellColours();
}

bool CTNTemplRecFieldListNode::IsEditable(int column) const {
  const Field* const field = GetField();
  return field != nullptr && ColumnAt(column).editable(field->GetType());
}

std::int32_t CTNTemplRecFieldListNode::IsValid() const {
  return FindFault().empty() ? CTNTemplateListNode::IsValid() : 0;
}

std::string CTNTemplRecFieldListNode::GetStatusText() const {
  std::string fault = FindFault();
  return fault.empty() ? CTNTemplateListNode::GetStatusText() : fault;
}

}  // namespace bomparser
