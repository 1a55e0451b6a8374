#include "tests/support/TemplateBuilder.h"

namespace bomparser::test {

CTNTemplRecInField& AddField(CTNTemplateRecord& record, const FieldSpec& spec) {
  CTNTemplRecInField* field = record.AddInputField(spec.kind, spec.required);
  field->SetMatchValueText(spec.matchValues);
  field->SetCaseSensitive(spec.caseSensitive);
  if (spec.length >= 0) field->SetMatchLength(spec.length);
  return *field;
}

CTNTemplRecOutField& AddOutput(CTNTemplateRecord& record, const OutputSpec& spec) {
  CTNTemplRecOutField* element = record.InsertField(std::make_unique<CTNTemplRecOutField>(&record));
  element->SetExpression(spec.expression);
  element->SetTag(spec.tag);
  return *element;
}

CTNTemplateRecord& AddRecord(CTNParserTemplate& document, RecordKind kind,
                             std::string_view description, const std::vector<FieldSpec>& fields,
                             const std::vector<OutputSpec>& outputs) {
  CTNTemplateRecord* record = document.AddRecord(kind, description);
  for (const FieldSpec& field : fields)
    AddField(*record, field);
  for (const OutputSpec& output : outputs)
    AddOutput(*record, output);
  record->Validate();
  return *record;
}

void Relink(CTNParserTemplate& document) {
  const std::size_t rounds =
      document.GetAuxiliaryRecords().size() + document.GetEntityRecords().size() + 1;
  for (const auto* list : {&document.GetAuxiliaryRecords(), &document.GetEntityRecords()}) {
    for (const auto& record : *list) {
      for (const auto& field : record->GetInputFields()) {
        if (field->GetType() == FieldKind::SubRecord) field->ResolveSubRecord();
      }
    }
  }
  for (std::size_t i = 0; i < rounds; ++i)
    document.Validate();
}

}  // namespace bomparser::test
