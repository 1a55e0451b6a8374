#pragma once

#include "template/CTNParserTemplate.h"

#include <new>

namespace bomparser {

/// Runs an edit of the document, which is null for an element on its own. Where memory runs out the
/// document's error log says so, and the answer is null or false.
template <class Edit>
auto GuardEdit(CTNParserTemplate* document, Edit edit) -> decltype(edit()) {
  try {
    return edit();
  } catch (const std::bad_alloc&) {
    if (document != nullptr) {
      document->ReportError(XmlStatusText(kXmlOutOfMemory), ErrorShown::Later);
    }
    return {};
  }
}

}  // namespace bomparser
