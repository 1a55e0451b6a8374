#pragma once

#include "input/CTNElementCursor.h"
#include "input/roles/CTNMatchedRecord.h"

#include <memory>
#include <string>
#include <string_view>

namespace bomparser {

class CTNParsedFileBlock;

/// Whether shown text names the record and field of every element.
enum class Markup { Off, On };
/// Whether shown text marks where a line end was matched.
enum class Newlines { Hidden, Shown };

/// One matched input field as it is shown: a light view into the result that it keeps alive.
class CTNParsedFileBlockElement {
 public:
  CTNParsedFileBlockElement(std::shared_ptr<const CTNParsedResult> result, ShownElement element)
      : m_result(std::move(result)), m_element(element) {}

  FieldKind GetFieldType() const { return m_element.kind; }
  /// "F3", or "??" for a line end inside a scan, which is no field of the pattern.
  std::string GetFieldId() const;
  /// The characters that the field consumed, as they are shown.
  std::string_view GetValue() const { return m_element.text; }
  /// Appends the text for display, with record and field named and line ends marked as asked.
  void GetText(std::string& out, Markup markup, Newlines newlines) const;

  /// The same for an element that nobody keeps.
  static void AppendText(std::string& out, const ShownElement& element, Markup markup,
                         Newlines newlines);

 private:
  std::shared_ptr<const CTNParsedResult> m_result;
  ShownElement m_element;
};

/// One instance that a SUBRECORD field matched.
class CTNParsedFileBlockSubRecElement {
 public:
  explicit CTNParsedFileBlockSubRecElement(std::shared_ptr<const CTNParsedFileBlock> block)
      : m_block(std::move(block)) {}

  FieldKind GetFieldType() const { return FieldKind::SubRecord; }
  const CTNParsedFileBlock& GetBlock() const { return *m_block; }
  /// Appends the first row of the nested block, tabs expanded.
  void GetText(std::string& out, Markup markup, Newlines newlines) const;
  /// Appends the nested block's entity text as its record writes it; nothing without a record.
  void GetValue(std::string& out, Tags tags) const;

 private:
  std::shared_ptr<const CTNParsedFileBlock> m_block;
};

}  // namespace bomparser
