#include "cli/CheckCommand.h"

#include "cli/Messages.h"
#include "cli/OutputFile.h"
#include "cli/Session.h"

namespace bomparser {

namespace {

bool AppendState(std::string& out, std::string_view id, std::string_view name,
                 const CTNTemplateArrayElement& element) {
  const bool valid = element.IsValid() != 0;
  out.append(id).append(1, '\t').append(name).append(1, '\t');
  out.append(valid ? "valid" : "invalid").append(1, '\t');
  out.append(EscapeStatusText(element.GetStatusText())).append(1, '\n');
  return valid;
}

std::string FieldId(const CTNTemplateRecord& record, const CTNTemplRecField& field) {
  std::string id;
  record.GetFieldID(&field, id);
  return record.GetRecordId() + '.' + id;
}

bool AppendRecordStates(std::string& out, const CTNTemplateRecord& record) {
  bool valid = AppendState(out, record.GetRecordId(), record.GetTypeName(), record);
  for (const auto& field : record.GetInputFields())
    valid = AppendState(out, FieldId(record, *field), field->GetTypeName(), *field) && valid;
  for (const auto& field : record.GetOutputFields())
    valid = AppendState(out, FieldId(record, *field), field->GetTagText(), *field) && valid;
  return valid;
}

}  // namespace

std::string EscapeStatusText(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '\\':
        escaped += "\\\\";
        break;
      case '\n':
        escaped += "\\n";
        break;
      case '\t':
        escaped += "\\t";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

bool AppendElementStates(std::string& out, const CTNParserTemplate& document) {
  bool valid = true;
  for (const auto* list : {&document.GetAuxiliaryRecords(), &document.GetEntityRecords()}) {
    for (const auto& record : *list)
      valid = AppendRecordStates(out, *record) && valid;
  }
  return valid;
}

ExitStatus RunCheck(const Options& options) {
  Session session;
  OutputFile out;
  std::string error;
  bool good = true;
  bool written = out.Open(std::string(kStandardStreamPath), error);
  for (const std::string& path : options.inputs) {
    std::string text;
    if (options.inputs.size() > 1) text = path + ":\n";
    const bool loaded = session.GetEngine().LoadTemplate(path);
    good = loaded && AppendElementStates(text, *session.GetEngine().GetTemplate()) && good;
    written = written && out.Write(text, error);
    if (!written) return TellFailure({}, error);
    if (!loaded) PrintErrorLog(session.GetEngine());
  }
  if (!out.Commit(error)) return TellFailure({}, error);
  return good ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace bomparser
