#include "template/CTNTemplRecField.h"

#include "template/CTNTemplateRecord.h"

namespace bomparser {

CTNTemplRecField::CTNTemplRecField(CTNTemplateRecord* parent)
    : CTNTemplateArrayElement(parent != nullptr ? parent->GetContext() : nullptr),
      m_parent(parent) {}

CTNParserTemplate* CTNTemplRecField::GetTemplate() const {
  return m_parent != nullptr ? m_parent->GetTemplate() : nullptr;
}

}  // namespace bomparser
