#pragma once

#include "template/CTNTemplateArrayElement.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace bomparser {

class CTNParserTemplate;
class CTNTemplateRecord;

/// Base of input fields and output elements: a part of a record that takes a value.
class CTNTemplRecField : public CTNTemplateArrayElement {
 public:
  /// What an element has to do once it was read from a file.
  virtual void FixUpAfterLoad() {}
  /// Stores the value that the field took in the latest match or evaluation; returns 1.
  virtual std::int32_t SetCurrentValue(std::string_view value) {
    m_currentValue = value;
    return 1;
  }
  virtual std::string GetCurrentValue() const { return m_currentValue; }

  std::int32_t Init() override {
    m_currentValue.clear();
    return CTNTemplateArrayElement::Init();
  }

  /// The record that the field is part of; null for a field on its own. Not owned.
  CTNTemplateRecord* GetParentRecord() const { return m_parent; }
  void SetParentRecord(CTNTemplateRecord* parent) { m_parent = parent; }
  /// The template that the parent record belongs to; null where there is none.
  CTNParserTemplate* GetTemplate() const;

 protected:
  explicit CTNTemplRecField(CTNTemplateRecord* parent);
  CTNTemplRecField(const CTNTemplRecField&) = default;
  CTNTemplRecField& operator=(const CTNTemplRecField&) = default;

 private:
  CTNTemplateRecord* m_parent;
  std::string m_currentValue;
};

}  // namespace bomparser
