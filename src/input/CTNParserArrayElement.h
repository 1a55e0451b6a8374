#pragma once

#include "input/roles/CTNParserContext.h"

namespace bomparser {

/// Base of every parse result and template element: it knows the engine that it belongs to.
class CTNParserArrayElement {
 public:
  /// The engine, or null for an element on its own. Not owned.
  CTNParserContext* GetContext() const { return m_context; }

 protected:
  explicit CTNParserArrayElement(CTNParserContext* context) : m_context(context) {}
  ~CTNParserArrayElement() = default;
  CTNParserArrayElement(const CTNParserArrayElement&) = default;
  CTNParserArrayElement& operator=(const CTNParserArrayElement&) = default;

 private:
  CTNParserContext* m_context;
};

}  // namespace bomparser
