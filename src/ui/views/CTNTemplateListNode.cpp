#include "ui/views/CTNTemplateListNode.h"

#include <QGuiApplication>
#include <QPalette>

namespace bomparser {

CellColours GreyOnOrdinary() {
  return {QGuiApplication::palette().color(QPalette::Base), kGreyText};
}

bool HasCurrentResults(const CTNFileParserEngine& engine) {
  const CTNParserInFile* const file = engine.GetInputFile();
  return file != nullptr && file->IsApplied() && !file->IsStale();
}

std::int32_t CTNTemplateListNode::IsValid() const {
  const CTNTemplateArrayElement* const element = GetElement();
  return element != nullptr ? element->IsValid() : 0;
}

std::string CTNTemplateListNode::GetStatusText() const {
  const CTNTemplateArrayElement* const element = GetElement();
  return element != nullptr ? element->GetStatusText() : std::string();
}

ElementState CTNTemplateListNode::GetState() const {
  if (IsValid() == 0) return ElementState::Invalid;
  return GetStatusText().empty() ? ElementState::Valid : ElementState::Note;
}

}  // namespace bomparser
