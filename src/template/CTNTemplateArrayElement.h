#pragma once

#include "input/CTNParserArrayElement.h"

#include <cstdint>
#include <string>

namespace bomparser {

/// Base of every template element: validation leaves its outcome here.
class CTNTemplateArrayElement : public CTNParserArrayElement {
 public:
  virtual ~CTNTemplateArrayElement() = default;

  /// Checks the element, stores the outcome (valid flag, status text) and returns the valid flag.
  /// The base version changes nothing and returns 0.
  virtual std::int32_t Validate() { return 0; }
  virtual std::int32_t IsValid() const { return m_valid; }
  virtual void SetValid(std::int32_t valid) { m_valid = valid; }
  /// The last validation message: an error, a note, or empty.
  virtual std::string GetStatusText() const { return m_statusText; }
  virtual void SetStatusText(std::string text) { m_statusText = std::move(text); }
  /// Resets the element to its defaults. Every override calls its base first and stops if that
  /// fails.
  virtual std::int32_t Init() {
    m_statusText.clear();
    return 1;
  }

 protected:
  explicit CTNTemplateArrayElement(CTNParserContext* context) : CTNParserArrayElement(context) {}
  CTNTemplateArrayElement(const CTNTemplateArrayElement&) = default;
  CTNTemplateArrayElement& operator=(const CTNTemplateArrayElement&) = default;

 private:
  std::string m_statusText;
  std::int32_t m_valid = 1;  // An element counts as valid until it is first validated.
};

}  // namespace bomparser
