#pragma once

#include "input/roles/CTNMatchedRecord.h"
#include "template/CTNTemplateArrayElement.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace bomparser {

class CTNParsedFileBlock;
class CTNTemplRecField;
class CTNTemplRecInField;
class CTNTemplRecOutField;
class CTNTemplateRecord;

/// What an item of a value expression is. Kind 8 is a literal that no expression produces.
enum class ValueItemKind : std::int32_t {
  InputField = 0,
  OutputSymbol = 1,
  Dot = 2,
  Operator = 3,
  TemplateAttribute = 4,
  StringLiteral = 5,
  WholeNumber = 6,
  DecimalNumber = 7,
  OtherLiteral = 8,
  Blank = 9,
  Record = 10,
  RecordAttribute = 11,
};

/// One item of a parsed value expression: a reference, a literal, an operator or a blank. Operators
/// and blanks are kept in the text and add nothing to a value.
class CTNOutFieldValueElement final : public CTNTemplateArrayElement {
 public:
  explicit CTNOutFieldValueElement(const CTNTemplRecOutField& owner);
  CTNOutFieldValueElement(const CTNOutFieldValueElement& other);
  CTNOutFieldValueElement& operator=(const CTNOutFieldValueElement& other);
  CTNOutFieldValueElement(CTNOutFieldValueElement&&) = default;
  CTNOutFieldValueElement& operator=(CTNOutFieldValueElement&&) = default;

  ValueItemKind kind = ValueItemKind::StringLiteral;
  const CTNTemplRecInField* inputField = nullptr;      // Kind 0.
  const CTNTemplRecOutField* outputElement = nullptr;  // Kind 1.
  const CTNTemplateRecord* record = nullptr;           // Kinds 10 and 11.
  std::string text;     // The token; of a quoted literal what stands between the quotes.
  bool quoted = false;  // The token was a double-quoted text.
  std::unique_ptr<CTNOutFieldValueElement> next;  // The dot behind a record, the item behind a dot.

  /// The canonical text: identifiers as they are now, "??" for what is gone.
  std::string GetText() const;
  /// Appends the item's value for a block. `tags` reaches sub-records and single-match records.
  void AppendValue(std::string& out, const CTNParsedFileBlock& block, Tags tags) const;
  /// The item at the end of the chain: what a dot leads to, otherwise this item.
  const CTNOutFieldValueElement& GetTarget() const;
  bool RefersTo(const CTNTemplRecField* field) const;

 private:
  const CTNTemplateRecord* OwnRecord() const;
  void AppendInputField(std::string& out, const CTNParsedFileBlock& block, Tags tags) const;
  void AppendOutputSymbol(std::string& out, const CTNParsedFileBlock& block) const;
  void AppendTemplateAttribute(std::string& out) const;
  void AppendRecordAttribute(std::string& out) const;

  const CTNTemplRecOutField* m_owner;
};

}  // namespace bomparser
