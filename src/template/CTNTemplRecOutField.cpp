#include "template/CTNTemplRecOutField.h"

#include "input/CTNParsedFileBlock.h"
#include "input/MessageTexts.h"
#include "template/CTNTemplateRecord.h"
#include "template/NestingLimits.h"
#include "template/TagSearch.h"

#include <algorithm>

namespace bomparser {

CTNTemplRecOutField::CTNTemplRecOutField(CTNTemplateRecord* parent) : CTNTemplRecField(parent) {
  CTNTemplRecOutField::Init();
}

std::int32_t CTNTemplRecOutField::Init() {
  if (CTNTemplRecField::Init() == 0) return 0;
  m_expression.clear();
  m_items.clear();
  m_defaultUsed = false;
  SetTag(OutputTag::Undefined);
  return 1;
}

void CTNTemplRecOutField::CopyFrom(const CTNTemplRecOutField& other) {
  CTNTemplateRecord* parent = GetParentRecord();
  CTNTemplRecField::operator=(other);
  SetParentRecord(parent);
  m_tag = other.m_tag;
  m_expression = other.m_expression;
  m_defaultUsed = other.m_defaultUsed;
  std::string ignored;
  ParseExpression(ignored);
}

void CTNTemplRecOutField::SetTag(OutputTag tag) {
  m_tag = tag;
  if ((tag != OutputTag::Scale && tag != OutputTag::Units) || !m_expression.empty()) return;
  m_expression = GetMessageText(tag == OutputTag::Scale ? Msg::TemplateScaleAttribute
                                                        : Msg::TemplateUnitsAttribute);
  Validate();
  NoteDefaultUsed();
}

void CTNTemplRecOutField::SetTagByName() {
  OutputTag tag = m_tag;
  FindTag(m_loadedTag ? std::string_view(*m_loadedTag) : GetTagText(), tag);
  m_loadedTag = nullptr;
  SetTag(tag);
}

void CTNTemplRecOutField::NoteDefaultUsed() {
  if (IsValid() != 0 && GetCurrentValue().empty()) {
    SetStatusText(GetMessageText(Msg::NoteDefaultUsed));
  }
}

void CTNTemplRecOutField::SetDefaultExpression() {
  const auto defaultOf = [](OutputTag tag) {
    if (tag == OutputTag::Units) return Msg::TemplateUnitsAttribute;
    if (tag == OutputTag::Scale) return Msg::TemplateScaleAttribute;
    if (tag == OutputTag::Shape) return Msg::RecordDescriptionAttribute;
    return IsNumericTag(tag) ? Msg::DefaultNumberExpression : Msg::DefaultTextExpression;
  };
  m_expression = GetMessageText(defaultOf(m_tag));
  Validate();
  NoteDefaultUsed();
  m_defaultUsed = true;
}

void CTNTemplRecOutField::SetDefaultUsed(bool used) {
  if (used) NoteDefaultUsed();
  m_defaultUsed = used;
}

std::string CTNTemplRecOutField::GetExpressionText() const {
  std::string text;
  for (const CTNOutFieldValueElement& item : m_items)
    text += item.GetText();
  return text.empty() ? m_expression : text;
}

std::int32_t CTNTemplRecOutField::Validate() {
  const bool wasValid = IsValid() != 0;
  std::string error = FindError();
  SetValid(error.empty() ? 1 : 0);
  if (!error.empty() || !m_defaultUsed) {
    SetStatusText(std::move(error));
  } else if (!wasValid) {
    SetStatusText(GetMessageText(Msg::NoteDefaultUsed));
  }
  return IsValid();
}

std::string CTNTemplRecOutField::FindError() {
  if (m_tag == OutputTag::Undefined) return GetMessageText(Msg::UndefinedOutputTag);
  if (GetParentRecord() == nullptr) return GetMessageText(Msg::InvalidParentRecord);
  std::string error;
  if (!ParseExpression(error)) {
    return error.empty() ? GetMessageText(Msg::UnspecifiedValueError) : error;
  }
  if (m_tag == OutputTag::None) {
    return IsNoneExpression() ? std::string() : GetMessageText(Msg::InvalidNoneExpression);
  }
  if (!CTNTemplateRecord::IsAllowedTag(m_tag)) {
    return FormatMessageText(Msg::InvalidOutputTag, GetParentRecord()->GetTypeName());
  }
  return {};
}

bool CTNTemplRecOutField::IsNoneExpression() const {
  return std::all_of(m_items.begin(), m_items.end(), [](const CTNOutFieldValueElement& item) {
    switch (item.kind) {
      case ValueItemKind::InputField:
        return item.inputField->GetType() == FieldKind::SubRecord;
      case ValueItemKind::OutputSymbol:
      case ValueItemKind::Operator:
      case ValueItemKind::Blank:
        return true;
      case ValueItemKind::Record:
        return item.record->IsSingleMatch();
      default:
        return false;
    }
  });
}

/// An evaluation under way.
class CTNTemplRecOutField::Evaluation {
 public:
  Evaluation(std::vector<EvaluatedBlock>& all, const EvaluatedBlock& block) : m_all(all) {
    m_all.push_back(block);
  }
  ~Evaluation() { m_all.pop_back(); }
  Evaluation(const Evaluation&) = delete;
  Evaluation& operator=(const Evaluation&) = delete;

 private:
  std::vector<EvaluatedBlock>& m_all;
};

void CTNTemplRecOutField::AppendValue(std::string& out, const CTNParsedFileBlock& block,
                                      Tags tags) const {
  // Elements can name each other. An element that is asked for its value for a block while that
  // very value is being put together adds nothing.
  const ParsedBlockPlace place = block.GetPlace();
  const EvaluatedBlock asked{block.GetResult().get(), place.elements, place.record};
  if (std::find(m_evaluating.begin(), m_evaluating.end(), asked) != m_evaluating.end()) return;
  const Evaluation evaluation(m_evaluating, asked);
  const ReferenceBudget::Value value(ReferenceBudget::OfThisThread());
  for (const CTNOutFieldValueElement& item : m_items)
    item.AppendValue(out, block, tags);
}

void CTNTemplRecOutField::BuildValueText(std::string& text, const CTNParsedFileBlock& block,
                                         Tags tags) const {
  const bool wrapped = tags == Tags::On && m_tag != OutputTag::None;
  const bool bare = tags == Tags::On && m_tag == OutputTag::None;
  if (wrapped) text.append("<").append(GetTagText()).append(">");
  const std::size_t start = text.size();
  AppendValue(text, block, bare ? Tags::On : Tags::Off);
  if (wrapped) text.append("</").append(GetTagText()).append(">");
  if (tags == Tags::Off && text.size() > start && text.back() != ' ') text += ' ';
}

bool CTNTemplRecOutField::ReferencesTag(OutputTag tag) const {
  return TagSearch(tag).IsReachedFrom(*this);
}

bool CTNTemplRecOutField::RefersTo(const CTNTemplRecField* field) const {
  return std::any_of(m_items.begin(), m_items.end(),
                     [field](const auto& item) { return item.RefersTo(field); });
}

void CTNTemplRecOutField::RegisterBindings(XmlBindingTable& bindings) {
  m_loadedTag = std::make_unique<std::string>(GetTagText());
  bindings.Add("KEY", m_loadedTag.get());
  bindings.Add("VALUE", &m_expression);
}

int CTNTemplRecOutField::Serialize(XmlNode parent) {
  ClearDocument();
  XmlNode node = WriteNode({XmlNodeKind::BeginElement, "OUTPUT_FIELD"}, parent);
  node = WriteNode({XmlNodeKind::Attribute, "KEY", std::string(GetTagText())}, node);
  node = WriteNode({XmlNodeKind::BeginElement, "VALUE"}, node);
  node = WriteNode({XmlNodeKind::Text, {}, m_expression}, node);
  node = WriteNode({XmlNodeKind::EndElement}, node);
  node = WriteNode({XmlNodeKind::EndElement}, node);
  WriteNode({XmlNodeKind::Done}, node);
  return WriteStatus();
}

}  // namespace bomparser
