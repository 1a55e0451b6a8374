#include "template/CTNParserTemplate.h"

#include "input/MessageTexts.h"
#include "template/ArrayEdit.h"
#include "template/BlockScan.h"
#include "template/CTNIdentifierKeeper.h"
#include "template/GuardedEdit.h"
#include "template/Identifiers.h"
#include "template/LineEnds.h"
#include "tnbase/CharClass.h"
#include "tnbase/NumberText.h"
#include "tnbase/TNPath.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace bomparser {

namespace {

constexpr Msg kUnitsNames[] = {Msg::UnitsInch, Msg::UnitsMm, Msg::UnitsMil};
constexpr int kScaleDecimals = 6;

std::string UnitsName(std::int32_t units) {
  if (units < 0 || units >= static_cast<std::int32_t>(std::size(kUnitsNames))) return {};
  return GetMessageText(kUnitsNames[units]);
}

}  // namespace

CTNParserTemplate::CTNParserTemplate(CTNParserContext* context)
    : CTNTemplateArrayElement(context), m_catchAll(this), m_ignoredLines(this) {
  m_catchAll.InitCatchAll();
  m_ignoredLines.InitCatchAll();
  m_ignoredLines.SetType(RecordKind::IgnoredLines);
  CTNParserTemplate::Init();
}

CTNParserTemplate::~CTNParserTemplate() = default;

std::int32_t CTNParserTemplate::Init() {
  if (CTNTemplateArrayElement::Init() == 0) return 0;
  DropContent();
  m_errorLog.ClearLog();
  m_errorLog.SetLogName(GetMessageText(Msg::TemplateErrorLogName));
  return 1;
}

void CTNParserTemplate::DropContent() {
  // Nothing here takes memory, so that there is always a way back to an empty template. The
  // built-in records stay as they were made.
  DeleteAllRecords();
  m_catchAll.ClearValues();
  m_ignoredLines.ClearValues();
  m_filePath = GetMessageText(Msg::UnsavedPath);
  m_title = GetMessageText(Msg::UntitledTemplate);
  m_units = 0;
  m_unitsName = UnitsName(0);
  m_scaleFactor = 1.0;
  m_beginRow = 1;
  m_endAfterRow = 0;
  m_modified = false;
  m_empty = true;
}

// ------------------------------------------------------------------------------- records

CTNParserTemplate::RecordList& CTNParserTemplate::ListOf(RecordKind kind) {
  return IsEntityKind(kind) ? m_entityRecords : m_auxiliaryRecords;
}

const CTNParserTemplate::RecordList& CTNParserTemplate::ListOf(RecordKind kind) const {
  return IsEntityKind(kind) ? m_entityRecords : m_auxiliaryRecords;
}

void CTNParserTemplate::Renumber(RecordList& list, std::size_t from) {
  for (std::size_t i = from; i < list.size(); ++i)
    list[i]->m_position = i;
}

CTNTemplateRecord* CTNParserTemplate::Append(std::unique_ptr<CTNTemplateRecord> record) {
  RecordList& list = ListOf(record->GetType());
  list.push_back(std::move(record));
  list.back()->m_position = list.size() - 1;
  try {
    if (list.back()->MayMeanMore()) NoteMayMeanMore(*list.back());
  } catch (const std::bad_alloc&) {
    list.pop_back();
    throw;
  }
  return list.back().get();
}

CTNTemplateRecord* CTNParserTemplate::Insert(std::unique_ptr<CTNTemplateRecord> record,
                                             const CTNTemplateRecord* before) {
  RecordList& list = ListOf(record->GetType());
  const bool inList = before != nullptr && Holds(before) && &ListOf(before->GetType()) == &list;
  if (!inList) {
    CTNTemplateRecord* const added = Append(std::move(record));
    // Texts that named nobody so far may name this one.
    ReparseWhatMayMeanMore();
    return added;
  }
  CTNIdentifierKeeper keeper(*this);
  const std::size_t place = before->m_position;
  PutAt(list, place, std::move(record));
  try {
    keeper.Apply();
  } catch (const std::bad_alloc&) {
    m_mayMeanMore.erase(list[place].get());
    TakeFrom(list, place);
    throw;
  }
  return list[place].get();
}

void CTNParserTemplate::PutAt(RecordList& list, std::size_t place,
                              std::unique_ptr<CTNTemplateRecord> record) {
  list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), std::move(record));
  Renumber(list, place);
}

std::unique_ptr<CTNTemplateRecord> CTNParserTemplate::TakeFrom(RecordList& list,
                                                               std::size_t place) {
  std::unique_ptr<CTNTemplateRecord> taken = std::move(list[place]);
  list.erase(list.begin() + static_cast<std::ptrdiff_t>(place));
  Renumber(list, place);
  return taken;
}

CTNTemplateRecord* CTNParserTemplate::AddRecord(RecordKind kind, std::string_view description,
                                                const CTNTemplateRecord* before) {
  return GuardEdit(this, [&] {
    auto record = std::make_unique<CTNTemplateRecord>(this);
    record->SetType(kind);
    record->SetDescription(description);
    return Insert(std::move(record), before);
  });
}

CTNTemplateRecord* CTNParserTemplate::AddRecordCopy(const CTNTemplateRecord& record) {
  return GuardEdit(this, [&] {
    auto copy = std::make_unique<CTNTemplateRecord>(this);
    copy->Copy(record);
    const bool whole = copy->GetInputFields().size() == record.GetInputFields().size() &&
                       copy->GetOutputFields().size() == record.GetOutputFields().size();
    if (!whole) throw std::bad_alloc();
    if (record.GetTemplate() != this) copy->NameSubRecordsAs(record);
    CTNTemplateRecord* const added = Insert(std::move(copy), nullptr);
    // While it was being filled, elements could not name those behind them.
    added->ReparseOutputExpressions();
    return added;
  });
}

void CTNParserTemplate::NoteMayMeanMore(CTNTemplateRecord& record) {
  if (Lists(&record)) m_mayMeanMore.insert(&record);
}

void CTNParserTemplate::ReparseWhatMayMeanMore() {
  for (auto at = m_mayMeanMore.begin(); at != m_mayMeanMore.end();) {
    CTNTemplateRecord& record = **at;
    // Parsing notes the record again, which changes nothing as long as it is in the set.
    record.ReparseWhatMayMeanMore();
    at = record.MayMeanMore() ? std::next(at) : m_mayMeanMore.erase(at);
  }
}

bool CTNParserTemplate::Holds(const CTNTemplateRecord* record) const {
  // The type says where to look: a record that was given one of the other list is in neither.
  return record != nullptr && IsAt(ListOf(record->GetType()), record);
}

bool CTNParserTemplate::Lists(const CTNTemplateRecord* record) const {
  return IsAt(m_entityRecords, record) || IsAt(m_auxiliaryRecords, record);
}

bool CTNParserTemplate::IsAt(const RecordList& list, const CTNTemplateRecord* record) const {
  return record->GetTemplate() == this && record->m_position < list.size() &&
         list[record->m_position].get() == record;
}

void CTNParserTemplate::ForgetSingleMatches() {
  for (const RecordList* list : {&m_entityRecords, &m_auxiliaryRecords}) {
    for (const auto& record : *list)
      record->SetSingleMatchBlock(nullptr);
  }
}

void CTNParserTemplate::UnlinkRecords(const std::unordered_set<const CTNTemplateRecord*>& gone) {
  ForgetSingleMatches();
  for (RecordList* list : {&m_entityRecords, &m_auxiliaryRecords}) {
    for (const auto& record : *list) {
      for (const auto& field : record->GetInputFields()) {
        if (gone.contains(field->GetSubRecord())) field->ForgetSubRecord();
      }
    }
  }
}

bool CTNParserTemplate::AreInOneList(const std::vector<const CTNTemplateRecord*>& records) const {
  return !records.empty() &&
         std::all_of(records.begin(), records.end(), [&](const CTNTemplateRecord* record) {
           return Holds(record) && record->IsAuxiliary() == records.front()->IsAuxiliary();
         });
}

void CTNParserTemplate::ApplyOrUndo(CTNIdentifierKeeper& keeper, ArrayEdit<CTNTemplateRecord>& edit,
                                    RecordList& list) {
  Renumber(list, 0);
  try {
    keeper.Apply();
  } catch (const std::bad_alloc&) {
    edit.Undo();
    Renumber(list, 0);
    throw;
  }
}

bool CTNParserTemplate::DeleteRecord(const CTNTemplateRecord* record) {
  return GuardEdit(this, [=, this] { return DeleteRecords({record}); });
}

bool CTNParserTemplate::DeleteRecords(const std::vector<const CTNTemplateRecord*>& records) {
  if (!AreInOneList(records)) return false;
  return GuardEdit(this, [&] {
    RecordList& list = ListOf(records.front()->GetType());
    ArrayEdit<CTNTemplateRecord> edit(list, records);
    CTNIdentifierKeeper keeper(*this);
    // Until nothing names them any more, they are only set aside.
    edit.TakeOut();
    ApplyOrUndo(keeper, edit, list);
    UnlinkRecords(edit.GetChosen());
    for (const auto& record : edit.GetTaken())
      m_mayMeanMore.erase(record.get());
    return true;
  });
}

void CTNParserTemplate::DeleteAllRecords() {
  m_scan = nullptr;
  m_mayMeanMore.clear();
  m_entityRecords.clear();
  m_auxiliaryRecords.clear();
}

bool CTNParserTemplate::MoveRecord(const CTNTemplateRecord* record,
                                   const CTNTemplateRecord* before) {
  return GuardEdit(this, [=, this] { return MoveRecords({record}, before); });
}

bool CTNParserTemplate::MoveRecords(const std::vector<const CTNTemplateRecord*>& records,
                                    const CTNTemplateRecord* before) {
  if (!AreInOneList(records)) return false;
  return GuardEdit(this, [&] {
    RecordList& list = ListOf(records.front()->GetType());
    ArrayEdit<CTNTemplateRecord> edit(list, records);
    CTNIdentifierKeeper keeper(*this);
    edit.MoveBefore(before);
    ApplyOrUndo(keeper, edit, list);
    return true;
  });
}

std::string CTNParserTemplate::GetRecordID(const CTNTemplateRecord* record) const {
  if (!Holds(record)) return GetMessageText(Msg::UnknownId);
  return MakeIdentifier(record->IsAuxiliary() ? Msg::AuxiliaryIdPrefix : Msg::EntityIdPrefix,
                        record->m_position);
}

CTNTemplateRecord* CTNParserTemplate::FindRecordByID(std::string_view id) const {
  std::size_t index = 0;
  const RecordList* list = nullptr;
  if (ReadIdentifier(id, Msg::EntityIdPrefix, index)) {
    list = &m_entityRecords;
  } else if (ReadIdentifier(id, Msg::AuxiliaryIdPrefix, index)) {
    list = &m_auxiliaryRecords;
  }
  if (list == nullptr || index >= list->size()) return nullptr;
  CTNTemplateRecord* const found = (*list)[index].get();
  return Holds(found) ? found : nullptr;
}

bool CTNParserTemplate::IsFieldReferenced(const CTNTemplRecField* field, bool skipOwnRecord) const {
  if (field == nullptr) return false;
  for (const RecordList* list : {&m_entityRecords, &m_auxiliaryRecords}) {
    for (const auto& record : *list) {
      if (skipOwnRecord && record.get() == field->GetParentRecord()) continue;
      if (record->IsFieldReferenced(field)) return true;
    }
  }
  return false;
}

// ------------------------------------------------------------------------------- parameters

bool CTNParserTemplate::IsTemplateAttributeName(std::string_view name) {
  return EqualsNoCase(name, GetMessageText(Msg::TemplateUnitsAttribute)) ||
         EqualsNoCase(name, GetMessageText(Msg::TemplateScaleAttribute));
}

bool CTNParserTemplate::GetTemplateAttribute(std::string_view name, std::string& text) const {
  if (!IsTemplateAttributeName(name)) return false;
  const bool units = EqualsNoCase(name, GetMessageText(Msg::TemplateUnitsAttribute));
  text = units ? m_unitsName : FormatFixed(m_scaleFactor, kScaleDecimals);
  return true;
}

void CTNParserTemplate::SetUnits(std::int32_t units) {
  if (units == m_units) return;
  m_units = units;
  m_unitsName = UnitsName(units);
}

void CTNParserTemplate::SetModified(ChangeKind change) {
  m_modified = change != ChangeKind::None;
  if (!m_modified) return;
  m_empty = false;
  if (GetContext() != nullptr) GetContext()->OnTemplateModified();
}

bool CTNParserTemplate::ReportError(std::string_view text, ErrorShown shown) {
  return GetContext() != nullptr ? GetContext()->ReportError(text, shown)
                                 : m_errorLog.AddMessage(text);
}

std::int32_t CTNParserTemplate::Validate() {
  LineEnds lineEnds;
  bool valid = true;
  for (const RecordList* list : {&m_auxiliaryRecords, &m_entityRecords}) {
    for (const auto& record : *list)
      valid = record->Validate(lineEnds) != 0 && valid;
  }
  SetValid(valid ? 1 : 0);
  return IsValid();
}

std::string CTNParserTemplate::GetTemplateFileName() const {
  return TNGetFNameFromPath(m_filePath);
}

// ------------------------------------------------------------------------------- file

void CTNParserTemplate::RegisterBindings(XmlBindingTable& bindings) {
  bindings.Add("DEFAULT_UNITS", &m_unitsName);
  bindings.Add("SCALE_FACTOR", &m_scaleFactor);
  bindings.Add("BEGIN_TRANSLATION_AT_ROW", &m_beginRow);
  bindings.Add("END_TRANSLATION_AFTER_ROW", &m_endAfterRow);
  bindings.Add("TITLE", &m_title);
}

int CTNParserTemplate::OnBeginNode(XmlNode node, bool& handled) {
  handled = false;
  if (!node.IsElement()) return kXmlOk;
  handled = node.HasName("TEMPLATE_RECORD");
  m_recognised = m_recognised || handled || node.HasName("PARSER_TEMPLATE");
  if (!handled) return kXmlOk;
  auto record = std::make_unique<CTNTemplateRecord>(this);
  const int status = record->Walk(node);
  if (status < 0) return status;
  record->FixUpAfterLoad();
  return GuardEdit(this, [&] { return Append(std::move(record)); }) != nullptr ? kXmlOk
                                                                               : kXmlOutOfMemory;
}

bool CTNParserTemplate::OnNode(XmlNode node, const XmlBindingTable& bindings) {
  const bool consumed = CXMLArchive::OnNode(node, bindings);
  m_recognised = m_recognised || consumed;
  return consumed;
}

int CTNParserTemplate::LoadFromXml(std::string_view xmlText) {
  m_recognised = false;
  const int status = FinishLoad(Load(xmlText));
  return status == kXmlNotWellFormed ? kXmlGeneralFailure : status;
}

int CTNParserTemplate::LoadFromFile(const std::string& path) {
  m_recognised = false;
  return FinishLoad(LoadFile(path));
}

int CTNParserTemplate::FinishLoad(int status) {
  ClearDocument();
  try {
    if (status == kXmlOk) status = Resolve();
  } catch (const std::bad_alloc&) {
    status = kXmlOutOfMemory;
  }
  // Half a template would pass for a whole one, and be saved as one.
  if (status < 0) DropContent();
  return status;
}

void CTNParserTemplate::ResolveAndValidate(RecordList& list, LineEnds& lineEnds) {
  // Last to first, and all of them once more: a record can only be found valid after the ones that
  // it names, and those usually stand in front of or behind it.
  for (auto at = list.rbegin(); at != list.rend(); ++at)
    (*at)->ResolveAfterLoad(lineEnds);
  for (auto at = list.rbegin(); at != list.rend(); ++at)
    (*at)->Validate(lineEnds);
}

int CTNParserTemplate::Resolve() {
  if (!m_recognised) return kXmlGeneralFailure;
  LineEnds lineEnds;
  ResolveAndValidate(m_auxiliaryRecords, lineEnds);
  ResolveAndValidate(m_entityRecords, lineEnds);
  const std::string loaded = m_unitsName;
  m_unitsName = UnitsName(m_units);
  for (std::int32_t units = 0; units < static_cast<std::int32_t>(std::size(kUnitsNames)); ++units) {
    if (EqualsNoCase(loaded, UnitsName(units))) SetUnits(units);
  }
  m_empty = false;
  return kXmlOk;
}

int CTNParserTemplate::Serialize(XmlNode parent) {
  ClearDocument();
  XmlNode node = WriteNode({XmlNodeKind::BeginElement, "PARSER_TEMPLATE"}, parent);
  const auto element = [this, &node](std::string_view name, XmlValue value) {
    node = WriteNode({XmlNodeKind::BeginElement, name}, node);
    node = WriteNode({XmlNodeKind::Text, {}, std::move(value)}, node);
    node = WriteNode({XmlNodeKind::EndElement}, node);
  };
  element("DEFAULT_UNITS", m_unitsName);
  element("SCALE_FACTOR", m_scaleFactor);
  element("BEGIN_TRANSLATION_AT_ROW", m_beginRow);
  element("END_TRANSLATION_AFTER_ROW", m_endAfterRow);
  element("TITLE", m_title);
  if (WriteStatus() != kXmlOk) return WriteStatus();
  for (const RecordList* list : {&m_auxiliaryRecords, &m_entityRecords}) {
    for (const auto& record : *list) {
      if (const int status = record->Serialize(node); status != kXmlOk) return status;
    }
  }
  node = WriteNode({XmlNodeKind::EndElement}, node);
  WriteNode({XmlNodeKind::Done}, node);
  return WriteStatus();
}

}  // namespace bomparser
