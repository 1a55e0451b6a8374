// What makes a record valid.

#include "template/CTNTemplateRecord.h"

#include "input/MessageTexts.h"
#include "template/LineEnds.h"

namespace bomparser {

namespace {

void AddLine(std::string& text, const std::string& line) {
  if (!text.empty()) text += '\n';
  text += line;
}

}  // namespace

std::int32_t CTNTemplateRecord::Validate() {
  LineEnds lineEnds;
  return Validate(lineEnds);
}

std::int32_t CTNTemplateRecord::Validate(LineEnds& lineEnds) {
  std::string error;
  bool valid = true;
  for (const bool passed :
       {ValidateInputFields(error), ValidateOutputElements(error), ValidateRequiredTags(error),
        ValidateLineEnd(error, lineEnds), ValidateType(error)}) {
    valid = valid && passed;
  }
  SetValid(valid ? 1 : 0);
  SetStatusText(std::move(error));
  return IsValid();
}

bool CTNTemplateRecord::ValidateInputFields(std::string& error) {
  bool valid = true;
  for (const auto& field : m_inputFields) {
    if (field->Validate() != 0) continue;
    std::string id;
    GetFieldID(field.get(), id);
    error = FormatMessageText(Msg::InputFieldInvalid, id);  // The last one is told.
    valid = false;
  }
  return valid;
}

bool CTNTemplateRecord::ValidateOutputElements(std::string& error) {
  bool valid = true;
  const TagSet required = GetRequiredTags();
  for (const auto& element : m_outputFields) {
    if (element->Validate() == 0) {
      std::string id;
      GetFieldID(element.get(), id);
      AddLine(error, FormatMessageText(Msg::OutputElementInvalid, id));
      valid = false;
    } else if (element->GetTag() != OutputTag::None && !IsAuxiliary() &&
               !required.Has(element->GetTag())) {
      element->SetStatusText(
          FormatMessageText(Msg::NoteElementNotRequired, element->GetTagText(), GetTypeName()));
    }
  }
  return valid;
}

bool CTNTemplateRecord::ValidateRequiredTags(std::string& error) const {
  bool valid = true;
  const TagSet required = GetRequiredTags();
  for (std::int32_t code = 0; code <= kLastTriedTag; ++code) {
    const auto tag = static_cast<OutputTag>(code);
    if (!required.Has(tag)) continue;
    if (!HasOutputTag(tag)) {
      // Tags that the type itself requires are told as the type's.
      AddLine(error,
              GetTagsRequiredByType(m_kind).Has(tag)
                  ? FormatMessageText(Msg::RecordTypeRequiresTag, GetTypeName(), GetTagName(tag))
                  : FormatMessageText(Msg::ApertureRequiresTag, m_description, GetTagName(tag)));
      valid = false;
    } else if (tag != OutputTag::RefDesignator && CountOutputTag(tag) >= 2) {
      // A part may have several designators, but one of everything else.
      AddLine(error, FormatMessageText(Msg::OnlyOneRequiredTag, GetTagName(tag)));
      valid = false;
    }
  }
  return valid;
}

bool CTNTemplateRecord::ValidateLineEnd(std::string& error, LineEnds& lineEnds) const {
  if (m_inputFields.empty() || m_kind == RecordKind::SubRecord || lineEnds.AreRequiredBy(*this)) {
    return true;
  }
  AddLine(error, GetMessageText(Msg::NewlineRequiredAtEnd));
  return false;
}

bool CTNTemplateRecord::ValidateType(std::string& error) const {
  if (!IsAllowedRecordType(m_kind)) {
    AddLine(error, GetMessageText(Msg::InvalidRecordType));
    return false;
  }
  if (m_kind == RecordKind::Aperture && GetApertureShape() == kNoShape) {
    AddLine(error, GetMessageText(Msg::InvalidApertureDescription));
    return false;
  }
  return true;
}

bool CTNTemplateRecord::EndsWithRequiredNewline() const { return LineEnds().AreRequiredBy(*this); }

}  // namespace bomparser
