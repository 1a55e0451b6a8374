#include "template/CTNIdentifierKeeper.h"

#include "input/MessageTexts.h"
#include "template/CTNParserTemplate.h"
#include "template/CTNTemplateRecord.h"
#include "template/Identifiers.h"
#include "template/ValueTokens.h"
#include "tnbase/CharClass.h"

#include <string_view>
#include <utility>

namespace bomparser {

namespace {

/// True for every identifier and attribute, whether or not there is one of that name.
bool CanMeanSomething(const std::string& token) {
  std::size_t index = 0;
  for (const Msg prefix : {Msg::InputFieldIdPrefix, Msg::OutputElementIdPrefix, Msg::EntityIdPrefix,
                           Msg::AuxiliaryIdPrefix}) {
    if (ReadIdentifier(token, prefix, index)) return true;
  }
  return CTNTemplateRecord::IsAttributeName(token) ||
         CTNParserTemplate::IsTemplateAttributeName(token);
}

}  // namespace

CTNIdentifierKeeper::CTNIdentifierKeeper(CTNTemplateRecord& record)
    : m_template(record.GetTemplate()) {
  if (m_template != nullptr && m_template->Lists(&record)) {
    Remember(*m_template);
  } else {
    m_template = nullptr;
    m_alone = &record;
    Remember(record);
  }
}

CTNIdentifierKeeper::CTNIdentifierKeeper(CTNParserTemplate& document) : m_template(&document) {
  Remember(document);
}

void CTNIdentifierKeeper::Remember(CTNTemplateRecord& record) {
  Fields& fields = m_fields[&record];
  for (const auto& field : record.GetInputFields())
    fields.inputs.push_back(field.get());
  for (const auto& field : record.GetOutputFields())
    fields.outputs.push_back(field.get());
}

void CTNIdentifierKeeper::Remember(CTNParserTemplate& document) {
  for (const auto& record : document.GetEntityRecords())
    m_entities.push_back(record.get());
  for (const auto& record : document.GetAuxiliaryRecords())
    m_auxiliaries.push_back(record.get());
  for (CTNTemplateRecord* record : m_entities)
    Remember(*record);
  for (CTNTemplateRecord* record : m_auxiliaries)
    Remember(*record);
}

std::vector<CTNTemplateRecord*> CTNIdentifierKeeper::RecordsNow() const {
  std::vector<CTNTemplateRecord*> records;
  if (m_template == nullptr) return {m_alone};
  for (const auto& record : m_template->GetAuxiliaryRecords())
    records.push_back(record.get());
  for (const auto& record : m_template->GetEntityRecords())
    records.push_back(record.get());
  return records;
}

CTNIdentifierKeeper::Ids CTNIdentifierKeeper::IdsNow() const {
  Ids ids;
  for (const CTNTemplateRecord* record : RecordsNow()) {
    ids[record] = record->GetRecordId();
    std::size_t index = 0;
    for (const auto& field : record->GetInputFields()) {
      const CTNTemplRecField* base = field.get();
      ids[base] = MakeIdentifier(Msg::InputFieldIdPrefix, index++);
    }
    index = 0;
    for (const auto& field : record->GetOutputFields()) {
      const CTNTemplRecField* base = field.get();
      ids[base] = MakeIdentifier(Msg::OutputElementIdPrefix, index++);
    }
  }
  return ids;
}

bool CTNIdentifierKeeper::MeansSomething(const Fields& fields, const std::string& token,
                                         const void*& meaning) const {
  std::size_t index = 0;
  if (ReadIdentifier(token, Msg::InputFieldIdPrefix, index) && index < fields.inputs.size()) {
    meaning = fields.inputs[index];
    return true;
  }
  if (ReadIdentifier(token, Msg::OutputElementIdPrefix, index) && index < fields.outputs.size()) {
    meaning = fields.outputs[index];
    return true;
  }
  return false;
}

const CTNTemplateRecord* CTNIdentifierKeeper::RecordMeant(const std::string& token) const {
  std::size_t index = 0;
  if (ReadIdentifier(token, Msg::EntityIdPrefix, index) && index < m_entities.size()) {
    return m_entities[index];
  }
  if (ReadIdentifier(token, Msg::AuxiliaryIdPrefix, index) && index < m_auxiliaries.size()) {
    return m_auxiliaries[index];
  }
  return nullptr;
}

std::string CTNIdentifierKeeper::Renamed(const CTNTemplateRecord& record,
                                         const std::string& expression, const Ids& ids) const {
  const std::string& gone = GetMessageText(Msg::UnknownId);
  const auto idOf = [&ids, &gone](const void* meaning, std::string_view written) {
    const auto found = ids.find(meaning);
    const std::string_view id = found == ids.end() ? gone : found->second;
    // It keeps the case it was typed in as long as it is the same.
    return EqualsNoCase(id, written) ? written : id;
  };
  const auto own = m_fields.find(&record);
  std::string renamed;
  std::size_t position = 0;
  // The record whose fields the token behind a dot means; a dot must follow its record at once.
  const CTNTemplateRecord* dotted = nullptr;
  const CTNTemplateRecord* before = nullptr;
  for (const std::string& token : CutIntoTokens(expression)) {
    const std::string_view written = std::string_view(expression).substr(position, token.size());
    position += written.size();
    const void* meaning = nullptr;
    const auto scope = dotted != nullptr ? m_fields.find(dotted) : own;
    const CTNTemplateRecord* meant = dotted != nullptr ? nullptr : RecordMeant(token);
    const CTNTemplateRecord* const goneScope =
        dotted != nullptr && idOf(dotted, {}) == gone ? dotted : nullptr;
    dotted = token == "." ? (goneScope != nullptr ? goneScope : before) : nullptr;
    before = nullptr;
    if (goneScope != nullptr && CanMeanSomething(token)) {
      // Alone it would mean something of the expression's own record, or of the template.
      renamed += gone;
    } else if (scope != m_fields.end() && MeansSomething(scope->second, token, meaning)) {
      renamed += idOf(meaning, written);
    } else if (meant != nullptr) {
      before = meant;
      renamed += idOf(meant, written);
    } else {
      renamed += written;
    }
  }
  return renamed;
}

void CTNIdentifierKeeper::Apply() {
  const Ids ids = IdsNow();
  const std::vector<CTNTemplateRecord*> records = RecordsNow();
  // First all texts, then the changes: memory that runs out leaves everything as it was.
  std::vector<std::pair<CTNTemplRecOutField*, std::string>> changes;
  for (const CTNTemplateRecord* record : records) {
    for (const auto& element : record->GetOutputFields()) {
      std::string renamed = Renamed(*record, element->GetExpression(), ids);
      if (renamed != element->GetExpression()) {
        changes.emplace_back(element.get(), std::move(renamed));
      }
    }
  }
  for (auto& [element, text] : changes)
    element->SetExpression(std::move(text));
  for (CTNTemplateRecord* record : records)
    record->ReparseOutputExpressions();
}

}  // namespace bomparser
