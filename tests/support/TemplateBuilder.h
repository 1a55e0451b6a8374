#pragma once

#include "template/CTNParserTemplate.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser::test {

/// An input field as a test writes it: Required(FieldKind::Alpha), Optional(...), String("A|B").
struct FieldSpec {
  FieldKind kind = FieldKind::Undefined;
  std::string matchValues = {};
  bool required = true;
  bool caseSensitive = false;
  std::int32_t length = -1;  // -1 leaves what the type gives.
};

inline FieldSpec Field(FieldKind kind, std::string_view matchValues = {}) {
  return {kind, std::string(matchValues)};
}
inline FieldSpec Optional(FieldSpec field) {
  field.required = false;
  return field;
}
inline FieldSpec CaseSensitive(FieldSpec field) {
  field.caseSensitive = true;
  return field;
}
inline FieldSpec String(std::string_view values) { return Field(FieldKind::String, values); }
inline FieldSpec Column(std::int32_t length) {
  return {FieldKind::Column, {}, true, false, length};
}
inline FieldSpec Alnum(std::string_view v = {}) { return Field(FieldKind::Alphanumeric, v); }
inline FieldSpec Alpha(std::string_view v = {}) { return Field(FieldKind::Alpha, v); }
inline FieldSpec WholeNum(std::string_view v = {}) { return Field(FieldKind::WholeNum, v); }
inline FieldSpec DecimalNum(std::string_view v = {}) { return Field(FieldKind::DecimalNum, v); }
inline FieldSpec Space() { return Field(FieldKind::Space); }
inline FieldSpec Tab() { return Field(FieldKind::Tab); }
inline FieldSpec WhtSpace() { return Field(FieldKind::WhtSpace); }
inline FieldSpec NotWhtSpace() { return Field(FieldKind::NotWhtSpace); }
inline FieldSpec Newline() { return Field(FieldKind::Newline); }
inline FieldSpec Scan(std::int32_t limit = 0) {
  return {FieldKind::ScanToNext, {}, true, false, limit};
}
/// Names its record by identifier; link it with Relink when that record comes later.
inline FieldSpec SubRecord(std::string_view id) { return Field(FieldKind::SubRecord, id); }

struct OutputSpec {
  OutputTag tag;
  std::string expression;
};

/// Appends one field.
CTNTemplRecInField& AddField(CTNTemplateRecord& record, const FieldSpec& spec);
CTNTemplRecOutField& AddOutput(CTNTemplateRecord& record, const OutputSpec& spec);
/// Appends a record with its fields and output elements, and validates it.
CTNTemplateRecord& AddRecord(CTNParserTemplate& document, RecordKind kind,
                             std::string_view description, const std::vector<FieldSpec>& fields,
                             const std::vector<OutputSpec>& outputs = {});
/// Links all sub-record fields and validates everything until nothing changes.
void Relink(CTNParserTemplate& document);

}  // namespace bomparser::test
