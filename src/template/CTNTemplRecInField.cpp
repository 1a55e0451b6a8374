#include "template/CTNTemplRecInField.h"

#include "input/CTNStringCharBuffIter.h"
#include "input/MessageTexts.h"
#include "template/CTNParserTemplate.h"
#include "template/CTNTemplateRecord.h"
#include "tnbase/CharClass.h"

#include <algorithm>

namespace bomparser {

namespace {

constexpr char kValueSeparator = '|';

/// Calls `visit(piece)` for every piece that is not empty; stops when it answers true, and tells
/// so.
template <class Visit>
bool AnyPiece(std::string_view text, Visit visit) {
  while (!text.empty()) {
    const std::size_t bar = text.find(kValueSeparator);
    const std::string_view piece = text.substr(0, bar);
    if (!piece.empty() && visit(piece)) return true;
    if (bar == std::string_view::npos) break;
    text.remove_prefix(bar + 1);
  }
  return false;
}

bool ReadFlag(std::string_view text) {
  return !EqualsNoCase(text, CTNTemplRecInField::FlagText(false));
}

}  // namespace

RecordLink& RecordLink::operator=(CTNTemplateRecord* record) {
  m_record = record;
  m_alive = record != nullptr ? record->GetLife() : std::weak_ptr<const void>();
  return *this;
}

/// Texts as they stand in a file, until FixUpAfterLoad makes flags and a type of them.
struct CTNTemplRecInField::LoadedTexts {
  std::string type;
  std::string required;
  std::string caseSensitive;
  std::string repeatable;
};

CTNTemplRecInField::CTNTemplRecInField(CTNTemplateRecord* parent) : CTNTemplRecField(parent) {
  CTNTemplRecInField::Init();
}

CTNTemplRecInField::~CTNTemplRecInField() = default;

std::int32_t CTNTemplRecInField::Init() {
  if (CTNTemplRecField::Init() == 0) return 0;
  m_required = true;
  m_caseSensitive = false;
  m_repeatable = false;
  SetType(FieldKind::Undefined);
  m_matchLength = -1;
  m_matchValueText.clear();
  m_subRecord = nullptr;
  return 1;
}

const std::string& CTNTemplRecInField::FlagText(bool flag) {
  // Asked for six times a field while a template is loaded.
  static const std::string& s_true = GetMessageText(Msg::WordTrue);
  static const std::string& s_false = GetMessageText(Msg::WordFalse);
  return flag ? s_true : s_false;
}

void CTNTemplRecInField::SetType(FieldKind kind) {
  if (IsSubRecordType(m_kind)) m_matchValueText = GetMatchValueText();
  m_kind = kind;
  const FieldType& type = GetFieldType(kind);
  if (!type.caseSensitive) m_caseSensitive = false;
  if (!type.matchValues) m_matchValueText.clear();
  m_matchLength = type.matchLength ? std::max(m_matchLength, 0) : -1;
  m_repeatable = IsSubRecordType(kind);
  if (IsSubRecordType(kind)) {
    LinkTo(m_matchValueText);
  } else {
    m_subRecord = nullptr;
  }
  // A field that was made from sample text keeps the sample as the literal to match.
  if (kind == FieldKind::String && m_matchValueText.empty()) m_matchValueText = GetCurrentValue();
}

std::string CTNTemplRecInField::GetMatchValueText() const {
  if (!AllowsMatchValues(m_kind)) return {};
  if (m_subRecord.IsLost()) return GetMessageText(Msg::UnknownId);
  return m_subRecord != nullptr ? m_subRecord->GetRecordId() : m_matchValueText;
}

void CTNTemplRecInField::SetMatchValueText(std::string_view text) {
  m_matchValueText = text;
  if (IsSubRecordType(m_kind)) LinkTo(m_matchValueText);
}

void CTNTemplRecInField::AddMatchValue(std::string_view text, bool caseSensitive) {
  if (!GetMatchValueText().empty()) m_matchValueText += kValueSeparator;
  m_matchValueText += text;
  if (IsSubRecordType(m_kind)) LinkTo(m_matchValueText);
  m_caseSensitive = caseSensitive;
}

CTNTemplateRecord* CTNTemplRecInField::ResolveSubRecord() { return LinkTo(GetMatchValueText()); }

CTNTemplateRecord* CTNTemplRecInField::LinkTo(std::string_view id) {
  CTNParserTemplate* document = GetTemplate();
  if (document == nullptr) return nullptr;
  CTNTemplateRecord* named = document->FindRecordByID(id);
  if (named != nullptr) m_subRecord = named;
  return named;
}

void CTNTemplRecInField::ForgetSubRecord() {
  m_subRecord = nullptr;
  m_matchValueText = GetMessageText(Msg::UnknownId);
}

std::vector<std::string> CTNTemplRecInField::GetMatchValues() const {
  std::vector<std::string> values;
  // Not GetMatchValueText: values that the type does not allow are there to be complained about.
  const std::string text = IsSubRecordType(m_kind) ? GetMatchValueText() : m_matchValueText;
  AnyPiece(text, [&values](std::string_view piece) {
    values.emplace_back(piece);
    return false;
  });
  return values;
}

bool CTNTemplRecInField::IsMatchValue(std::string_view text) const {
  const auto equals = [this, text](std::string_view piece) {
    return m_caseSensitive ? piece == text : EqualsNoCase(piece, text);
  };
  return IsSubRecordType(m_kind) ? AnyPiece(GetMatchValueText(), equals)
                                 : AnyPiece(m_matchValueText, equals);
}

bool CTNTemplRecInField::IsValidMatchValue(std::string_view text) const {
  if (IsSubRecordType(m_kind)) {
    const std::vector<std::string> values = GetMatchValues();
    const CTNParserTemplate* document = GetTemplate();
    return values.size() == 1 && document != nullptr &&
           document->FindRecordByID(values[0]) != nullptr;
  }
  if (!AllowsMatchValues(m_kind)) return false;
  CTNTemplRecInField probe(GetParentRecord());
  probe.CopyFrom(*this);
  probe.m_matchValueText = text;
  return !AnyPiece(text, [&probe](std::string_view piece) {
    CTNStringCharBuffIter cursor(piece);
    std::string value;
    return !probe.Match(cursor, nullptr, value, nullptr, KeepValues::No);
  });
}

void CTNTemplRecInField::CopyFrom(const CTNTemplRecInField& other) {
  if (&other == this) return;
  CTNTemplRecField::operator=(other);
  m_subRecord = nullptr;  // Else the old link would have its say in SetType.
  m_matchValueText = other.m_matchValueText;
  SetType(other.m_kind);
  m_required = other.m_required;
  m_caseSensitive = other.m_caseSensitive;
  m_matchLength = other.m_matchLength;
  m_repeatable = other.m_repeatable;
  m_subRecord = other.m_subRecord;
}

const CTNMatchedRecord* CTNTemplRecInField::GetMatchedRecord() const { return GetParentRecord(); }

const CTNMatchedRecord* CTNTemplRecInField::GetMatchedSubRecord() const {
  return IsSubRecordType(m_kind) ? GetSubRecord() : nullptr;
}

// ------------------------------------------------------------------------------- validation

std::int32_t CTNTemplRecInField::Validate() {
  std::string error = FindError();
  SetValid(error.empty() ? 1 : 0);
  SetStatusText(std::move(error));
  return IsValid();
}

std::string CTNTemplRecInField::FindError() const {
  if (FindFieldType(GetTypeName()) == nullptr) {
    return GetMessageText(Msg::InvalidFieldType);
  }
  if (GetParentRecord() == nullptr) return GetMessageText(Msg::FieldWithoutParent);
  for (const auto check :
       {&CTNTemplRecInField::FindSubRecordError, &CTNTemplRecInField::FindMatchValueError,
        &CTNTemplRecInField::FindMatchLengthError}) {
    std::string error = (this->*check)();
    if (!error.empty()) return error;
  }
  return {};
}

std::string CTNTemplRecInField::FindSubRecordError() const {
  if (!IsSubRecordType(m_kind)) return {};
  if (m_subRecord == nullptr) return FormatMessageText(Msg::SubRecordNumberRequired, GetTypeName());
  if (m_subRecord->IsSingleMatch()) return GetMessageText(Msg::SubRecordIsSingleMatch);
  if (m_subRecord == GetParentRecord()) return GetMessageText(Msg::SubRecordIsOwnRecord);
  if (m_subRecord->IsValid() == 0) {
    return FormatMessageText(Msg::SubRecordInvalid, GetMatchValueText());
  }
  return {};
}

std::string CTNTemplRecInField::FindMatchValueError() const {
  if (!AllowsMatchValues(m_kind)) return {};
  const std::vector<std::string> values = GetMatchValues();
  for (const std::string& value : values) {
    if (!IsValidMatchValue(value)) {
      return FormatMessageText(Msg::InvalidMatchValue, value, GetTypeName());
    }
  }
  if (values.empty() && m_kind == FieldKind::String) {
    return FormatMessageText(Msg::MatchValueRequired, GetTypeName());
  }
  return {};
}

std::string CTNTemplRecInField::FindMatchLengthError() const {
  const bool allowed = AllowsMatchLength(m_kind);
  const std::int32_t lowest = m_kind == FieldKind::Column ? 1 : 0;
  if (allowed && m_matchLength < lowest) {
    return FormatMessageText(Msg::InvalidMatchLength, m_matchLength, GetTypeName());
  }
  if (!AllowsMatchValues(m_kind) && HasMatchValues()) {
    return FormatMessageText(Msg::MatchValuesNotAllowed, GetTypeName());
  }
  if (!allowed && m_matchLength >= 0) {
    return FormatMessageText(Msg::MatchLengthNotAllowed, GetTypeName());
  }
  return {};
}

// ------------------------------------------------------------------------------- persistence

void CTNTemplRecInField::RegisterBindings(XmlBindingTable& bindings) {
  // What the file does not say stays as it is.
  m_loaded =
      std::make_unique<LoadedTexts>(LoadedTexts{std::string(GetTypeName()), FlagText(m_required),
                                                FlagText(m_caseSensitive), FlagText(m_repeatable)});
  bindings.Add("TYPE", &m_loaded->type);
  bindings.Add("REQUIRED", &m_loaded->required);
  bindings.Add("CASE_SENSITIVE", &m_loaded->caseSensitive);
  bindings.Add("REPEATABLE", &m_loaded->repeatable);
  bindings.Add("MATCH_VALUE_STR", &m_matchValueText);
  bindings.Add("MATCH_LENGTH", &m_matchLength);
}

void CTNTemplRecInField::FixUpAfterLoad() {
  if (!m_loaded) return;
  m_caseSensitive = ReadFlag(m_loaded->caseSensitive);
  m_repeatable = ReadFlag(m_loaded->repeatable);
  m_required = ReadFlag(m_loaded->required);
  if (const FieldType* type = FindFieldType(m_loaded->type)) SetType(type->kind);
  m_loaded = nullptr;
}

int CTNTemplRecInField::Serialize(XmlNode parent) {
  ClearDocument();
  XmlNode node = WriteNode({XmlNodeKind::BeginElement, "INPUT_FIELD"}, parent);
  const auto attribute = [this, &node](std::string_view name, std::string value) {
    node = WriteNode({XmlNodeKind::Attribute, name, std::move(value)}, node);
  };
  attribute("TYPE", std::string(GetTypeName()));
  attribute("REQUIRED", FlagText(m_required));
  attribute("CASE_SENSITIVE", FlagText(m_caseSensitive));
  attribute("REPEATABLE", FlagText(m_repeatable));
  node = WriteNode({XmlNodeKind::BeginElement, "MATCH_LENGTH"}, node);
  node = WriteNode({XmlNodeKind::Text, {}, m_matchLength}, node);
  node = WriteNode({XmlNodeKind::EndElement}, node);
  node = WriteNode({XmlNodeKind::BeginElement, "MATCH_VALUE_STR"}, node);
  node = WriteNode({XmlNodeKind::Text, {}, GetMatchValueText()}, node);
  node = WriteNode({XmlNodeKind::EndElement}, node);
  node = WriteNode({XmlNodeKind::EndElement}, node);
  WriteNode({XmlNodeKind::Done}, node);
  return WriteStatus();
}

}  // namespace bomparser
