#include "template/CTNTemplateRecord.h"

#include "input/CTNParsedFileBlock.h"
#include "input/MessageTexts.h"
#include "template/ArrayEdit.h"
#include "template/CTNIdentifierKeeper.h"
#include "template/CTNParserTemplate.h"
#include "template/GuardedEdit.h"
#include "template/Identifiers.h"
#include "template/LineEnds.h"
#include "template/RecordsToAsk.h"
#include "template/TagSearch.h"
#include "tnbase/CharClass.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

namespace bomparser {

ReferenceBudget& ReferenceBudget::OfThisThread() {
  thread_local ReferenceBudget budget;
  return budget;
}

namespace {

/// Place of the field in its array; the array's size when it is not there. No field stands behind
/// the last one: that is where most are put, and it is not searched for.
template <class Array, class Field>
std::size_t PlaceOf(const Array& array, const Field* field) {
  if (field == nullptr) return array.size();
  const auto found = std::find_if(array.begin(), array.end(),
                                  [field](const auto& entry) { return entry.get() == field; });
  return static_cast<std::size_t>(found - array.begin());
}

template <class Array, class Field>
auto Take(Array& array, const Field* field) {
  typename Array::value_type taken;
  const std::size_t place = PlaceOf(array, field);
  if (place == array.size()) return taken;
  taken = std::move(array[place]);
  array.erase(array.begin() + static_cast<std::ptrdiff_t>(place));
  return taken;
}

template <class Array, class Field>
auto* Put(Array& array, std::unique_ptr<Field> field, const Field* before) {
  const auto place = static_cast<std::ptrdiff_t>(PlaceOf(array, before));
  return array.insert(array.begin() + place, std::move(field))->get();
}

template <class Array, class Field>
Field* Insert(CTNTemplateRecord& record, Array& array, std::unique_ptr<Field> field,
              const Field* before) {
  if (PlaceOf(array, before) == array.size()) {
    Field* const appended = Put(array, std::move(field), before);
    // Nothing changes its place; but texts that named nobody so far may name this one.
    CTNParserTemplate* const document = record.GetTemplate();
    if (document != nullptr && document->Lists(&record)) {
      document->ReparseWhatMayMeanMore();
    } else {
      record.ReparseWhatMayMeanMore();
    }
    return appended;
  }
  CTNIdentifierKeeper keeper(record);
  Field* const inserted = Put(array, std::move(field), before);
  try {
    keeper.Apply();
  } catch (const std::bad_alloc&) {
    Take(array, inserted);
    throw;
  }
  return inserted;
}

template <class Field>
void ApplyOrUndo(CTNIdentifierKeeper& keeper, ArrayEdit<Field>& edit) {
  try {
    keeper.Apply();
  } catch (const std::bad_alloc&) {
    edit.Undo();
    throw;
  }
}

/// Hands the fields out; none of them when one is not in the array.
template <class Field>
auto Remove(CTNTemplateRecord& record, std::vector<std::unique_ptr<Field>>& array,
            const std::vector<const Field*>& fields) {
  ArrayEdit<Field> edit(array, fields);
  if (!edit.IsPossible()) return std::vector<std::unique_ptr<Field>>();
  CTNIdentifierKeeper keeper(record);
  edit.TakeOut();
  ApplyOrUndo(keeper, edit);
  for (const auto& taken : edit.GetTaken())
    taken->SetParentRecord(nullptr);
  return std::move(edit.GetTaken());
}

template <class Field>
std::unique_ptr<Field> RemoveOne(CTNTemplateRecord& record,
                                 std::vector<std::unique_ptr<Field>>& array, const Field* field) {
  auto taken = Remove(record, array, {field});
  return taken.empty() ? nullptr : std::move(taken.front());
}

template <class Field>
bool Move(CTNTemplateRecord& record, std::vector<std::unique_ptr<Field>>& array,
          const std::vector<const Field*>& fields, const Field* before) {
  ArrayEdit<Field> edit(array, fields);
  if (!edit.IsPossible()) return false;
  CTNIdentifierKeeper keeper(record);
  edit.MoveBefore(before);
  ApplyOrUndo(keeper, edit);
  return true;
}

}  // namespace

CTNTemplateRecord::CTNTemplateRecord(CTNParserTemplate* owner)
    : CTNTemplateArrayElement(owner != nullptr ? owner->GetContext() : nullptr),
      m_template(owner),
      m_lineFeedField(nullptr) {
  CTNTemplateRecord::Init();
}

CTNTemplateRecord::~CTNTemplateRecord() = default;

std::int32_t CTNTemplateRecord::Init() {
  if (CTNTemplateArrayElement::Init() == 0) return 0;
  m_kind = RecordKind::FreshEntity;
  ClearFields();
  m_lineFeedField.SetType(FieldKind::Newline);
  m_lineFeedField.SetParentRecord(this);
  m_description.clear();
  m_singleMatchBlock = nullptr;
  Validate();
  return 1;
}

void CTNTemplateRecord::InitCatchAll() {
  Init();
  const bool whole = AddInputField(FieldKind::ScanToNext, true) != nullptr &&
                     AddInputField(FieldKind::Newline, true) != nullptr;
  if (!whole) throw std::bad_alloc();
  m_kind = RecordKind::UnmatchedLines;
  Validate();
}

// ------------------------------------------------------------------------------- fields

CTNTemplRecInField* CTNTemplateRecord::AddInputField(FieldKind kind, bool required,
                                                     const CTNTemplRecInField* before) {
  return GuardEdit(m_template, [=, this] {
    auto field = std::make_unique<CTNTemplRecInField>(this);
    field->SetType(kind);
    field->SetRequired(required);
    return InsertField(std::move(field), before);
  });
}

CTNTemplRecInField* CTNTemplateRecord::InsertField(std::unique_ptr<CTNTemplRecInField> field,
                                                   const CTNTemplRecInField* before) {
  if (!field) return nullptr;
  field->SetParentRecord(this);
  return GuardEdit(m_template,
                   [&] { return Insert(*this, m_inputFields, std::move(field), before); });
}

CTNTemplRecOutField* CTNTemplateRecord::InsertField(std::unique_ptr<CTNTemplRecOutField> field,
                                                    const CTNTemplRecOutField* before) {
  if (!field) return nullptr;
  field->SetParentRecord(this);
  CTNTemplRecOutField* const inserted = GuardEdit(
      m_template, [&] { return Insert(*this, m_outputFields, std::move(field), before); });
  // Whatever its expression meant elsewhere, here it means this record's fields.
  std::string ignored;
  if (inserted != nullptr) inserted->ParseExpression(ignored);
  return inserted;
}

std::unique_ptr<CTNTemplRecInField> CTNTemplateRecord::RemoveField(
    const CTNTemplRecInField* field) {
  auto taken = GuardEdit(m_template, [=, this] { return RemoveOne(*this, m_inputFields, field); });
  if (taken) ForgetSingleMatches();
  return taken;
}

std::unique_ptr<CTNTemplRecOutField> CTNTemplateRecord::RemoveField(
    const CTNTemplRecOutField* field) {
  auto taken = GuardEdit(m_template, [=, this] { return RemoveOne(*this, m_outputFields, field); });
  // On its own it means nothing: its items must not outlive the fields that they name.
  std::string ignored;
  if (taken) taken->ParseExpression(ignored);
  return taken;
}

bool CTNTemplateRecord::RemoveFields(const std::vector<const CTNTemplRecInField*>& fields) {
  const auto taken = GuardEdit(m_template, [&] { return Remove(*this, m_inputFields, fields); });
  if (!taken.empty()) ForgetSingleMatches();
  return !taken.empty();
}

bool CTNTemplateRecord::MoveField(const CTNTemplRecInField* field,
                                  const CTNTemplRecInField* before) {
  return GuardEdit(m_template, [=, this] { return Move(*this, m_inputFields, {field}, before); });
}

bool CTNTemplateRecord::MoveField(const CTNTemplRecOutField* field,
                                  const CTNTemplRecOutField* before) {
  return GuardEdit(m_template, [=, this] { return Move(*this, m_outputFields, {field}, before); });
}

bool CTNTemplateRecord::MoveFields(const std::vector<const CTNTemplRecInField*>& fields,
                                   const CTNTemplRecInField* before) {
  return GuardEdit(m_template, [&] { return Move(*this, m_inputFields, fields, before); });
}

bool CTNTemplateRecord::MoveFields(const std::vector<const CTNTemplRecOutField*>& elements,
                                   const CTNTemplRecOutField* before) {
  return GuardEdit(m_template, [&] { return Move(*this, m_outputFields, elements, before); });
}

CTNTemplRecInField* CTNTemplateRecord::AppendCopyOfField(const CTNTemplRecInField& field) {
  return GuardEdit(m_template, [&] {
    auto copy = std::make_unique<CTNTemplRecInField>(this);
    copy->CopyFrom(field);
    return InsertField(std::move(copy));
  });
}

CTNTemplRecOutField* CTNTemplateRecord::AppendCopyOfField(const CTNTemplRecOutField& field) {
  return GuardEdit(m_template, [&] {
    auto copy = std::make_unique<CTNTemplRecOutField>(this);
    copy->CopyFrom(field);
    return InsertField(std::move(copy));
  });
}

void CTNTemplateRecord::ForgetSingleMatches() {
  // What was matched is told by the addresses of fields, and a new field may get an old one's.
  // Other records' blocks may hold blocks of this record.
  if (m_template != nullptr) m_template->ForgetSingleMatches();
  m_singleMatchBlock = nullptr;
}

void CTNTemplateRecord::ClearFields() {
  if (m_inputFields.empty() && m_outputFields.empty()) return;
  ForgetSingleMatches();
  GuardEdit(m_template, [this] {
    CTNIdentifierKeeper keeper(*this);
    // Until nothing names them any more, the fields are only set aside.
    auto inputs = std::exchange(m_inputFields, {});
    auto outputs = std::exchange(m_outputFields, {});
    try {
      keeper.Apply();
    } catch (const std::bad_alloc&) {
      m_inputFields.swap(inputs);
      m_outputFields.swap(outputs);
      throw;
    }
    return true;
  });
}

void CTNTemplateRecord::Copy(const CTNTemplateRecord& other) {
  if (&other == this) return;
  CTNTemplateArrayElement::operator=(other);
  const std::shared_ptr<const CTNParsedFileBlock> matched = other.m_singleMatchBlock;
  ClearFields();
  for (const auto& field : other.m_inputFields)
    AppendCopyOfField(*field);
  for (const auto& field : other.m_outputFields)
    AppendCopyOfField(*field);
  ReparseOutputExpressions();  // Elements may name those behind them.
  m_kind = other.m_kind;
  m_description = other.m_description;
  m_lineFeedField.CopyFrom(other.m_lineFeedField);
  m_lineFeedField.SetParentRecord(this);
  m_singleMatchBlock = matched;
}

// ------------------------------------------------------------------------------- identifiers

bool CTNTemplateRecord::FindFieldIndex(const CTNTemplRecField* field, std::size_t& index) const {
  index = PlaceOf(m_inputFields, field);
  if (index < m_inputFields.size()) return true;
  index = PlaceOf(m_outputFields, field);
  return index < m_outputFields.size();
}

bool CTNTemplateRecord::GetFieldID(const CTNTemplRecField* field, std::string& id) const {
  std::size_t index = 0;
  if (!FindFieldIndex(field, index)) {
    id = GetMessageText(Msg::UnknownId);
    return false;
  }
  const bool input = index < m_inputFields.size() && m_inputFields[index].get() == field;
  id = MakeIdentifier(input ? Msg::InputFieldIdPrefix : Msg::OutputElementIdPrefix, index);
  return true;
}

bool CTNTemplateRecord::FindFieldByID(std::string_view id, FoundField& found) const {
  found = {};
  std::size_t index = 0;
  if (ReadIdentifier(id, Msg::InputFieldIdPrefix, index) && index < m_inputFields.size()) {
    found.input = m_inputFields[index].get();
  } else if (ReadIdentifier(id, Msg::OutputElementIdPrefix, index) &&
             index < m_outputFields.size()) {
    found.output = m_outputFields[index].get();
  }
  return found.input != nullptr || found.output != nullptr;
}

bool CTNTemplateRecord::IsFieldReferenced(const CTNTemplRecField* field) const {
  RecordsToAsk records;
  records.Add(this);
  while (const CTNTemplateRecord* record = records.Next()) {
    for (const auto& element : record->m_outputFields) {
      if (element->RefersTo(field)) return true;
    }
    for (const auto& input : record->m_inputFields)
      records.Add(input->GetSubRecord());
  }
  return false;
}

std::string CTNTemplateRecord::GetRecordId() const {
  return m_template != nullptr ? m_template->GetRecordID(this) : GetMessageText(Msg::UnknownId);
}

// ------------------------------------------------------------------------------- output tags

bool CTNTemplateRecord::HasOutputTag(OutputTag tag) const { return TagSearch(tag).IsIn(*this); }

std::size_t CTNTemplateRecord::CountOutputTag(OutputTag tag) const {
  TagSearch search(tag);
  std::size_t count = 0;
  for (const auto& element : m_outputFields) {
    if (element->GetTag() == tag) ++count;
    if (search.IsReachedFrom(*element)) ++count;
  }
  return count;
}

TagSet CTNTemplateRecord::GetRequiredTags() const {
  TagSet tags = GetTagsRequiredByType(m_kind);
  if (m_kind == RecordKind::Aperture) tags.Add(GetTagsRequiredByShape(GetApertureShape()));
  return tags;
}

bool CTNTemplateRecord::CreateRequiredOutputSet() {
  const auto isPresent = [this](OutputTag tag) {
    return std::any_of(m_outputFields.begin(), m_outputFields.end(),
                       [tag](const auto& element) { return element->GetTag() == tag; });
  };
  return GuardEdit(m_template, [this, isPresent] {
    const TagSet required = GetRequiredTags();
    for (std::int32_t code = 0; code <= kLastTriedTag; ++code) {
      const auto tag = static_cast<OutputTag>(code);
      if (!required.Has(tag) || isPresent(tag)) continue;
      CTNTemplRecOutField* element = InsertField(std::make_unique<CTNTemplRecOutField>(this));
      if (element == nullptr) return false;
      element->SetTag(tag);
      element->SetDefaultExpression();
    }
    return true;
  });
}

void CTNTemplateRecord::ReparseOutputExpressions() {
  std::string ignored;
  for (const auto& element : m_outputFields)
    element->ParseExpression(ignored);
}

bool CTNTemplateRecord::MayMeanMore() const {
  return std::any_of(m_outputFields.begin(), m_outputFields.end(),
                     [](const auto& element) { return element->MayMeanMore(); });
}

void CTNTemplateRecord::ReparseWhatMayMeanMore() {
  std::string ignored;
  for (const auto& element : m_outputFields) {
    if (element->MayMeanMore()) element->ParseExpression(ignored);
  }
}

void CTNTemplateRecord::NameSubRecordsAs(const CTNTemplateRecord& other) {
  for (std::size_t i = 0; i < m_inputFields.size(); ++i) {
    CTNTemplRecInField& field = *m_inputFields[i];
    if (field.GetType() != FieldKind::SubRecord) continue;
    field.ForgetSubRecord();
    field.SetMatchValueText(other.m_inputFields[i]->GetMatchValueText());
  }
}

void CTNTemplateRecord::ResolveAfterLoad(LineEnds& lineEnds) {
  for (const auto& field : m_inputFields) {
    if (field->GetType() != FieldKind::SubRecord) continue;
    const bool wasLinked = field->GetSubRecord() != nullptr;
    CTNTemplateRecord* const named = field->ResolveSubRecord();
    if (named == nullptr) continue;
    if (!wasLinked) lineEnds.OnLinked(*this);
    named->Validate(lineEnds);
  }
  Validate(lineEnds);
}

bool CTNTemplateRecord::IsAttributeName(std::string_view name) {
  return EqualsNoCase(name, GetMessageText(Msg::RecordDescriptionAttribute)) ||
         EqualsNoCase(name, GetMessageText(Msg::RecordTypeAttribute));
}

bool CTNTemplateRecord::GetAttribute(std::string_view name, std::string& text) const {
  if (!IsAttributeName(name)) return false;
  const bool type = EqualsNoCase(name, GetMessageText(Msg::RecordTypeAttribute));
  text = type ? std::string(GetTypeName()) : m_description;
  return true;
}

bool CTNTemplateRecord::BuildEntityText(std::string& text, const CTNParsedFileBlock& block,
                                        Tags tags) const {
  if (block.GetMatchedRecord() != this) return false;
  const bool wrapped = !IsAuxiliary() && tags == Tags::On;
  // A single-match record is part of the value that refers to it; any other is an instance.
  std::optional<ReferenceBudget::Instance> instance;
  if (!IsSingleMatch()) instance.emplace(ReferenceBudget::OfThisThread());
  if (wrapped) text.append("<ENTITY>").append(GetTypeName());
  for (const auto& element : m_outputFields)
    element->BuildValueText(text, block, tags);
  if (wrapped) text += "</ENTITY>";
  return true;
}

// ------------------------------------------------------------------------------- persistence

void CTNTemplateRecord::RegisterBindings(XmlBindingTable& bindings) {
  m_loadedType = GetTypeName();
  bindings.Add("TYPE", &m_loadedType);
  bindings.Add("DESC", &m_description);
}

int CTNTemplateRecord::OnBeginNode(XmlNode node, bool& handled) {
  handled = false;
  if (!node.IsElement()) return kXmlOk;
  const auto read = [this, &node](auto field, auto& fields, Msg failure) {
    int status = kXmlOk;
    try {
      status = field->Walk(node);
      if (status >= 0) field->FixUpAfterLoad();
    } catch (const std::bad_alloc&) {
      status = kXmlOutOfMemory;
    }
    if (status < 0) {
      if (m_template != nullptr) {
        m_template->ReportError(FormatMessageText(failure, m_description), ErrorShown::Later);
      }
      return status;
    }
    fields.push_back(std::move(field));
    return kXmlOk;
  };
  if (node.HasName("INPUT_FIELD")) {
    handled = true;
    return read(std::make_unique<CTNTemplRecInField>(this), m_inputFields,
                Msg::ErrorLoadingInputField);
  }
  if (node.HasName("OUTPUT_FIELD")) {
    handled = true;
    return read(std::make_unique<CTNTemplRecOutField>(this), m_outputFields,
                Msg::ErrorLoadingOutputField);
  }
  return kXmlOk;
}

void CTNTemplateRecord::FixUpAfterLoad() {
  SetTypeByName(m_loadedType);
  m_loadedType.clear();
}

int CTNTemplateRecord::Serialize(XmlNode parent) {
  ClearDocument();
  XmlNode node = WriteNode({XmlNodeKind::BeginElement, "TEMPLATE_RECORD"}, parent);
  node = WriteNode({XmlNodeKind::Attribute, "TYPE", std::string(GetTypeName())}, node);
  node = WriteNode({XmlNodeKind::BeginElement, "DESC"}, node);
  node = WriteNode({XmlNodeKind::Text, {}, m_description}, node);
  node = WriteNode({XmlNodeKind::EndElement}, node);
  if (WriteStatus() != kXmlOk) return WriteStatus();
  if (const int status = SaveFields(node); status != kXmlOk) return status;
  node = WriteNode({XmlNodeKind::EndElement}, node);
  WriteNode({XmlNodeKind::Done}, node);
  return WriteStatus();
}

int CTNTemplateRecord::SaveFields(XmlNode node) {
  int last = kXmlOk;
  const auto save = [this, &node, &last](auto& fields, Msg failure) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      last = fields[i]->Serialize(node);
      if (last == kXmlOk) continue;
      if (m_template != nullptr) {
        m_template->ReportError(FormatNumberedMessage(failure, {i, m_description}),
                                ErrorShown::Later);
      }
      return;
    }
  };
  save(m_inputFields, Msg::ErrorSavingInputField);
  const int inputStatus = last;
  save(m_outputFields, Msg::ErrorSavingOutputField);
  // A file without the field that failed would lose it, so the first failure decides.
  return inputStatus != kXmlOk ? inputStatus : last;
}

}  // namespace bomparser
