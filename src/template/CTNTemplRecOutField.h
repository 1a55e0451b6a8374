#pragma once

#include "input/roles/CTNMatchedRecord.h"
#include "template/CTNOutFieldValueElement.h"
#include "template/CTNTemplRecField.h"
#include "template/CXMLArchive.h"
#include "template/OutputTags.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bomparser {

class CTNParsedFileBlock;

/// One tagged value that a record produces for every block it matches: a tag, and the expression
/// that says how the value is put together.
class CTNTemplRecOutField final : public CTNTemplRecField, public CXMLArchive {
 public:
  explicit CTNTemplRecOutField(CTNTemplateRecord* parent);
  CTNTemplRecOutField(const CTNTemplRecOutField&) = delete;
  CTNTemplRecOutField& operator=(const CTNTemplRecOutField&) = delete;

  std::int32_t Init() override;
  /// Takes over tag, expression, current value and validity of another element. The parent record
  /// stays; the expression is parsed against it.
  void CopyFrom(const CTNTemplRecOutField& other);

  OutputTag GetTag() const { return m_tag; }
  std::string_view GetTagText() const { return GetTagName(m_tag); }
  /// Stores the tag. SCALE and UNITS with an empty expression get their default one.
  void SetTag(OutputTag tag);
  /// After reading: looks the name that was read up and sets that tag. An unknown name leaves the
  /// tag as it was, and no trace of the name.
  void SetTagByName();

  /// The expression as the user wrote it.
  const std::string& GetExpression() const { return m_expression; }
  /// Stores the text; parsed with the next validation.
  void SetExpression(std::string text) { m_expression = std::move(text); }
  /// The expression as its parsed items say it; the stored text where there are none.
  std::string GetExpressionText() const;
  const std::vector<CTNOutFieldValueElement>& GetItems() const { return m_items; }
  /// Sets the default expression of the tag, validates, and marks the default as used.
  void SetDefaultExpression();
  /// Marks the expression as a default or not. A default whose value is still empty gets a note.
  void SetDefaultUsed(bool used);

  /// Parses the expression into items. On failure `error` says why (empty when nobody knows) and
  /// the items before the fault stay.
  bool ParseExpression(std::string& error);
  /// True when the expression, as it was parsed last, failed or holds a word that names nothing:
  /// with more fields and records about, it may come to mean something.
  bool MayMeanMore() const { return m_mayMeanMore; }
  std::int32_t Validate() override;

  /// Appends the values of all items for a block, nothing around them.
  void AppendValue(std::string& out, const CTNParsedFileBlock& block, Tags tags) const;
  /// Appends the value for a block. With tags it is wrapped in the tag's name unless that is NONE.
  /// Without, a non-empty value that does not end in a blank gets one.
  void BuildValueText(std::string& text, const CTNParsedFileBlock& block, Tags tags) const;
  /// True when an item reaches an element with the tag: another element (and what that reaches), a
  /// single-match record, a linked sub-record.
  bool ReferencesTag(OutputTag tag) const;
  /// True when an item refers to the field or element.
  bool RefersTo(const CTNTemplRecField* field) const;

  int Serialize(XmlNode parent) override;
  void FixUpAfterLoad() override { SetTagByName(); }

 private:
  class Evaluation;
  struct EvaluatedBlock {
    const void* result;
    std::uint32_t elements;
    std::uint32_t record;
    bool operator==(const EvaluatedBlock&) const = default;
  };

  void RegisterBindings(XmlBindingTable& bindings) override;
  std::string FindError();
  bool IsNoneExpression() const;
  void NoteDefaultUsed();

  OutputTag m_tag = OutputTag::Undefined;
  std::string m_expression;
  std::unique_ptr<std::string> m_loadedTag;  // Only between reading and SetTagByName.
  std::vector<CTNOutFieldValueElement> m_items;
  bool m_defaultUsed = false;
  bool m_mayMeanMore = false;
  mutable std::vector<EvaluatedBlock> m_evaluating;  // The blocks it is being evaluated for.
};

}  // namespace bomparser
