#pragma once

#include "template/CTNParserTemplate.h"
#include "tests/support/TemplateBuilder.h"

#include <string>
#include <string_view>

namespace bomparser::test {

/// The items of a parsed expression: [field F1][blank][op +]["mm"][record A1[dot][field F2]].
inline std::string ReadableItem(const CTNOutFieldValueElement& item) {
  const std::string next = item.next ? ReadableItem(*item.next) : std::string();
  const auto own = [&item] {
    CTNOutFieldValueElement alone(item);
    alone.next = nullptr;
    return alone.GetText();
  };
  switch (item.kind) {
    case ValueItemKind::InputField:
      return "[field " + own() + next + "]";
    case ValueItemKind::OutputSymbol:
      return "[symbol " + own() + next + "]";
    case ValueItemKind::Dot:
      return "[dot]" + next;
    case ValueItemKind::Operator:
      return "[op " + own() + next + "]";
    case ValueItemKind::TemplateAttribute:
      return "[template " + own() + next + "]";
    case ValueItemKind::StringLiteral:
      return item.quoted ? "[" + own() + next + "]" : "[text " + own() + next + "]";
    case ValueItemKind::WholeNumber:
      return "[whole " + own() + next + "]";
    case ValueItemKind::DecimalNumber:
      return "[decimal " + own() + next + "]";
    case ValueItemKind::OtherLiteral:
      return "[other " + own() + next + "]";
    case ValueItemKind::Blank:
      return own() == " " ? "[blank" + next + "]" : "[blank?" + own() + next + "]";
    case ValueItemKind::Record:
      return "[record " + own() + next + "]";
    case ValueItemKind::RecordAttribute:
      return "[attribute " + own() + next + "]";
  }
  return "[?]";
}

inline std::string ReadableItems(const CTNTemplRecOutField& element) {
  std::string text;
  for (const CTNOutFieldValueElement& item : element.GetItems())
    text += ReadableItem(item);
  return text;
}

/// The record or element with the identifier; the test fails when there is none.
inline CTNTemplateRecord& RecordOf(const CTNParserTemplate& document, std::string_view id) {
  return *document.FindRecordByID(id);
}
inline CTNTemplRecInField& FieldOf(const CTNTemplateRecord& record, std::size_t number) {
  return *record.GetInputFields().at(number - 1);
}
inline CTNTemplRecOutField& ElementOf(const CTNTemplateRecord& record, std::size_t number) {
  return *record.GetOutputFields().at(number - 1);
}

/// The two elements that every part must have.
inline OutputSpec Designator(std::string_view expression) {
  return {OutputTag::RefDesignator, std::string(expression)};
}
inline OutputSpec PartNumber(std::string_view expression = "\"P\"") {
  return {OutputTag::PartNumber, std::string(expression)};
}
inline OutputSpec None(std::string_view expression) {
  return {OutputTag::None, std::string(expression)};
}

}  // namespace bomparser::test
