#include "ui/views/CTNTemplRecordListNode.h"

#include "input/MessageTexts.h"
#include "ui/controls/DisplayText.h"

#include <array>
#include <cstddef>

namespace bomparser {
namespace {

using Engine = CTNFileParserEngine;

QString TypeText(const CTNTemplateRecord& record, const Engine&) {
  const QString name = ToDisplayText(record.GetTypeName());
  return record.IsSingleMatch() ? name + MessageText(Msg::SingleMatchMark) : name;
}

QString MatchCountText(const CTNTemplateRecord& record, const Engine& engine) {
  if (!HasCurrentResults(engine)) return {};
  const std::uint32_t count = engine.GetInputFile()->GetBlocks().GetBlockCount(&record);
  return ToDisplayText(FormatMessageText(Msg::MatchCountFormat, count));
}

/// A column of the list, by its number.
struct Column {
  Msg title;
  QString (*text)(const CTNTemplateRecord& record, const Engine& engine);
  bool editable;
  bool grey;
};

constexpr std::array<Column, 4> kColumns = {{
    {Msg::ColumnId,
     [](const CTNTemplateRecord& record, const Engine&) {
       return ToDisplayText(record.GetRecordId());
     },
     false, false},
    {Msg::ColumnType, TypeText, true, false},
    {Msg::ColumnDescription,
     [](const CTNTemplateRecord& record, const Engine&) {
       return ToDisplayText(record.GetDescription());
     },
     true, false},
    {Msg::ColumnMatchCount, MatchCountText, false, true},
}};

const Column& ColumnAt(int column) { return kColumns.at(static_cast<std::size_t>(column)); }

}  // namespace

CTNTemplRecordListNode::CTNTemplRecordListNode(const CTNFileParserEngine& engine,
                                               CTNTemplateRecord& record)
    : CTNTemplateListNode(engine) {
  m_record = &record;
}

std::vector<Msg> CTNTemplRecordListNode::GetTitles() {
  std::vector<Msg> titles;
  titles.reserve(kColumns.size());
  for (const Column& column : kColumns)
    titles.push_back(column.title);
  return titles;
}

QString CTNTemplRecordListNode::GetText(int column) const {
  const CTNTemplateRecord* const record = GetRecord();
  return record != nullptr ? ColumnAt(column).text(*record, Engine()) : QString();
}

CellColours CTNTemplRecordListNode::GetColours(int column) const {
  return ColumnAt(column).grey ? GreyOnOrdinary() : CellColours();
}

bool CTNTemplRecordListNode::IsEditable(int column) const {
  return GetRecord() != nullptr && ColumnAt(column).editable;
}

}  // namespace bomparser
