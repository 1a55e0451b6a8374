#include "template/CTNOutFieldValueElement.h"

#include "input/CTNParsedFileBlock.h"
#include "input/MessageTexts.h"
#include "template/CTNParserTemplate.h"
#include "template/CTNTemplateRecord.h"
#include "template/NestingLimits.h"

namespace bomparser {

namespace {

/// Runs `follow` unless the value has followed too many references already.
template <class Follow>
void FollowReference(Follow follow) {
  const ReferenceBudget::Reference reference(ReferenceBudget::OfThisThread());
  if (reference.MayBeFollowed()) follow();
}

}  // namespace

CTNOutFieldValueElement::CTNOutFieldValueElement(const CTNTemplRecOutField& owner)
    : CTNTemplateArrayElement(owner.GetContext()), m_owner(&owner) {}

CTNOutFieldValueElement::CTNOutFieldValueElement(const CTNOutFieldValueElement& other)
    : CTNTemplateArrayElement(other),
      kind(other.kind),
      inputField(other.inputField),
      outputElement(other.outputElement),
      record(other.record),
      text(other.text),
      quoted(other.quoted),
      next(other.next ? std::make_unique<CTNOutFieldValueElement>(*other.next) : nullptr),
      m_owner(other.m_owner) {}

CTNOutFieldValueElement& CTNOutFieldValueElement::operator=(const CTNOutFieldValueElement& other) {
  if (this != &other) *this = CTNOutFieldValueElement(other);
  return *this;
}

const CTNTemplateRecord* CTNOutFieldValueElement::OwnRecord() const {
  return m_owner->GetParentRecord();
}

const CTNOutFieldValueElement& CTNOutFieldValueElement::GetTarget() const {
  return next ? next->GetTarget() : *this;
}

bool CTNOutFieldValueElement::RefersTo(const CTNTemplRecField* field) const {
  if (field == nullptr) return false;
  return field == inputField || field == outputElement || (next && next->RefersTo(field));
}

std::string CTNOutFieldValueElement::GetText() const {
  std::string own;
  switch (kind) {
    case ValueItemKind::InputField:
      own = GetMessageText(Msg::UnknownId);
      if (inputField != nullptr && inputField->GetParentRecord() != nullptr) {
        inputField->GetParentRecord()->GetFieldID(inputField, own);
      }
      break;
    case ValueItemKind::OutputSymbol:
      own = GetMessageText(Msg::UnknownId);
      if (outputElement != nullptr && outputElement->GetParentRecord() != nullptr) {
        outputElement->GetParentRecord()->GetFieldID(outputElement, own);
      }
      break;
    case ValueItemKind::Record:
      own = record != nullptr ? record->GetRecordId() : GetMessageText(Msg::UnknownId);
      break;
    default:
      own = quoted ? FormatMessageText(Msg::QuotedLiteralFormat, text) : text;
      break;
  }
  return next ? own + next->GetText() : own;
}

void CTNOutFieldValueElement::AppendValue(std::string& out, const CTNParsedFileBlock& block,
                                          Tags tags) const {
  switch (kind) {
    case ValueItemKind::InputField:
      AppendInputField(out, block, tags);
      break;
    case ValueItemKind::OutputSymbol:
      AppendOutputSymbol(out, block);
      break;
    case ValueItemKind::TemplateAttribute:
      AppendTemplateAttribute(out);
      break;
    case ValueItemKind::StringLiteral:
    case ValueItemKind::WholeNumber:
    case ValueItemKind::DecimalNumber:
    case ValueItemKind::OtherLiteral:
      out += text;
      break;
    case ValueItemKind::RecordAttribute:
      AppendRecordAttribute(out);
      break;
    case ValueItemKind::Record:
      if (next) {
        GetTarget().AppendValue(out, block, tags);
      } else if (record != nullptr && record->IsSingleMatch() &&
                 record->GetSingleMatchBlock() != nullptr) {
        FollowReference(
            [&] { record->BuildEntityText(out, *record->GetSingleMatchBlock(), tags); });
      }
      break;
    case ValueItemKind::Dot:
    case ValueItemKind::Operator:
    case ValueItemKind::Blank:
      break;
  }
}

void CTNOutFieldValueElement::AppendInputField(std::string& out, const CTNParsedFileBlock& block,
                                               Tags tags) const {
  const CTNTemplateRecord* parent = inputField != nullptr ? inputField->GetParentRecord() : nullptr;
  if (parent == nullptr) return;
  const CTNParsedFileBlock* source =
      parent->IsSingleMatch() ? parent->GetSingleMatchBlock() : &block;
  if (source != nullptr) source->AppendFieldValue(out, *inputField, tags);
}

void CTNOutFieldValueElement::AppendOutputSymbol(std::string& out,
                                                 const CTNParsedFileBlock& block) const {
  const CTNTemplateRecord* parent =
      outputElement != nullptr ? outputElement->GetParentRecord() : nullptr;
  if (parent == nullptr) return;
  if (parent->IsSingleMatch() && parent->GetSingleMatchBlock() != nullptr) {
    FollowReference(
        [&] { outputElement->BuildValueText(out, *parent->GetSingleMatchBlock(), Tags::Off); });
  } else if (parent == OwnRecord()) {
    FollowReference([&] { outputElement->BuildValueText(out, block, Tags::Off); });
  }
}

void CTNOutFieldValueElement::AppendTemplateAttribute(std::string& out) const {
  std::string value;
  const CTNParserTemplate* document = m_owner->GetTemplate();
  if (document == nullptr || !document->GetTemplateAttribute(text, value)) {
    value = GetMessageText(Msg::UnknownId);
  }
  out += value;
}

void CTNOutFieldValueElement::AppendRecordAttribute(std::string& out) const {
  std::string value;
  if (record == nullptr || !record->GetAttribute(text, value)) {
    value = GetMessageText(Msg::UnknownId);
  }
  out += value;
}

}  // namespace bomparser
