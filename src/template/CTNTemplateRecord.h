#pragma once

#include "input/roles/CTNMatchedRecord.h"
#include "template/CTNTemplRecInField.h"
#include "template/CTNTemplRecOutField.h"
#include "template/CTNTemplateArrayElement.h"
#include "template/CXMLArchive.h"
#include "template/NestingLimits.h"
#include "template/RecordTypes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

class LineEnds;

/// Describes one kind of block of input text: an ordered pattern of input fields that a block must
/// match, and an ordered list of output elements whose values are computed from what matched.
/// Owns both. Only the record and its template change them.
class CTNTemplateRecord final : public CTNTemplateArrayElement,
                                public CXMLArchive,
                                public CTNMatchedRecord {
 public:
  /// An empty record of type "Undefined" (4). `owner` is the template that it is part of or made
  /// for; it may be null.
  explicit CTNTemplateRecord(CTNParserTemplate* owner);
  ~CTNTemplateRecord() override;
  CTNTemplateRecord(const CTNTemplateRecord&) = delete;
  CTNTemplateRecord& operator=(const CTNTemplateRecord&) = delete;

  std::int32_t Init() override;
  /// The pattern of the built-in records: the rest of a line and its line end; type 13. Throws
  /// std::bad_alloc.
  void InitCatchAll();

  RecordKind GetType() const { return m_kind; }
  void SetType(RecordKind kind) { m_kind = kind; }
  /// The first type with this name, compared without case; an unknown name changes nothing.
  void SetTypeByName(std::string_view name) { FindRecordType(name, m_kind); }
  std::string_view GetTypeName() const { return GetRecordTypeName(m_kind); }
  static std::string_view GetTypeName(RecordKind kind) { return GetRecordTypeName(kind); }
  static bool IsEntityType(RecordKind kind) { return IsEntityKind(kind); }
  static bool IsSingleMatchType(RecordKind kind) { return kind == RecordKind::SingleMatch; }
  bool IsAuxiliary() const { return !IsEntityKind(m_kind); }
  bool IsSingleMatch() const { return IsSingleMatchType(m_kind); }

  const std::string& GetDescription() const { return m_description; }
  void SetDescription(std::string_view description) { m_description = description; }
  CTNParserTemplate* GetTemplate() const { return m_template; }
  /// Something that lives as long as the record: what refers to it watches this.
  std::weak_ptr<const void> GetLife() const { return m_life; }

  const std::vector<std::unique_ptr<CTNTemplRecInField>>& GetInputFields() const {
    return m_inputFields;
  }
  const std::vector<std::unique_ptr<CTNTemplRecOutField>>& GetOutputFields() const {
    return m_outputFields;
  }
  /// The field of line ends inside a scan. Never part of the pattern.
  const CTNTemplRecInField& GetLineFeedField() const { return m_lineFeedField; }

  // Editing. A field is inserted before `before`, or at the end when that is null or not in this
  // record. When fields are inserted, removed or moved, identifiers in the expressions that mean
  // fields of this record change with them, in the whole template. Where memory runs out, the
  // template's error log says so, null or false is returned, and the record has the fields that it
  // had.

  /// Makes and inserts an input field of the type.
  CTNTemplRecInField* AddInputField(FieldKind kind, bool required,
                                    const CTNTemplRecInField* before = nullptr);
  CTNTemplRecInField* InsertField(std::unique_ptr<CTNTemplRecInField> field,
                                  const CTNTemplRecInField* before = nullptr);
  CTNTemplRecOutField* InsertField(std::unique_ptr<CTNTemplRecOutField> field,
                                   const CTNTemplRecOutField* before = nullptr);
  /// Takes the field out of its array and hands it to the caller, without a parent record; null if
  /// it is not in the record.
  std::unique_ptr<CTNTemplRecInField> RemoveField(const CTNTemplRecInField* field);
  std::unique_ptr<CTNTemplRecOutField> RemoveField(const CTNTemplRecOutField* field);
  /// False if the field is not in the record.
  bool MoveField(const CTNTemplRecInField* field, const CTNTemplRecInField* before);
  bool MoveField(const CTNTemplRecOutField* field, const CTNTemplRecOutField* before);
  /// Several at once, which costs hardly more than one: every edit looks at all expressions of the
  /// template. They keep the order that they have in the record. All or none: false if none is
  /// given, or one is not in the record. The input fields that are removed are deleted.
  bool RemoveFields(const std::vector<const CTNTemplRecInField*>& fields);
  /// If `before` is among those that move, the others are put before it.
  bool MoveFields(const std::vector<const CTNTemplRecInField*>& fields,
                  const CTNTemplRecInField* before);
  bool MoveFields(const std::vector<const CTNTemplRecOutField*>& elements,
                  const CTNTemplRecOutField* before);
  /// Appends a copy with all attributes, sub-record link and current value included.
  CTNTemplRecInField* AppendCopyOfField(const CTNTemplRecInField& field);
  CTNTemplRecOutField* AppendCopyOfField(const CTNTemplRecOutField& field);
  /// Deletes all fields and output elements.
  void ClearFields();
  /// Makes this record a deep copy of the other one. Its template stays.
  void Copy(const CTNTemplateRecord& other);

  bool FindFieldIndex(const CTNTemplRecField* field, std::size_t& index) const;
  /// "F3" or "V1"; false with "??" for a field that is not in the record.
  bool GetFieldID(const CTNTemplRecField* field, std::string& id) const;
  /// The input field or output element that has the identifier, compared without case; at most one
  /// of the two is not null.
  struct FoundField {
    CTNTemplRecInField* input = nullptr;
    CTNTemplRecOutField* output = nullptr;
  };
  bool FindFieldByID(std::string_view id, FoundField& found) const;
  /// True when an expression item or a chain of sub-records of this record refers to the field.
  bool IsFieldReferenced(const CTNTemplRecField* field) const;

  /// True when an output element has the tag. Otherwise the answer is that of the last element
  /// tagged NONE, whatever earlier ones say.
  bool HasOutputTag(OutputTag tag) const;
  /// The elements that have the tag, plus those whose expression reaches one that has it.
  std::size_t CountOutputTag(OutputTag tag) const;
  /// What its type, and as an aperture its shape, requires.
  TagSet GetRequiredTags() const;
  bool IsRequiredTag(OutputTag tag) const { return GetRequiredTags().Has(tag); }
  /// Every tag is allowed for every type: hosts take what they know.
  static bool IsAllowedTag(OutputTag) { return true; }
  /// Adds an element with its default expression for every required tag that is missing.
  bool CreateRequiredOutputSet();
  /// The shape that the description names, or kNoShape.
  int GetApertureShape() const { return FindApertureShape(m_description); }

  /// Parses all expressions again: identifiers in them may mean other fields now.
  void ReparseOutputExpressions();
  /// Links sub-record fields to the records that they name, validating those, then this record.
  /// `lineEnds` is that of the whole template.
  void ResolveAfterLoad(LineEnds& lineEnds);
  /// True when an expression holds a word that names nothing, or did not parse.
  bool MayMeanMore() const;
  /// Parses those expressions again: something was appended that they may mean.
  void ReparseWhatMayMeanMore();
  /// For a copy of another template's record: its SUBRECORD fields name the records of this
  /// template that have the identifiers which the other one's fields show.
  void NameSubRecordsAs(const CTNTemplateRecord& other);
  /// Joins all messages with line feeds; errors make the record invalid.
  std::int32_t Validate() override;
  /// The same, as one of many records: what is known of their line ends is not found out again.
  std::int32_t Validate(LineEnds& lineEnds);
  /// True when the pattern ends in a line end that must be there.
  bool EndsWithRequiredNewline() const;

  /// The attributes that expressions may read: "DESCRIPTION" and "TYPE", in any case.
  bool GetAttribute(std::string_view name, std::string& text) const;
  static bool IsAttributeName(std::string_view name);

  /// Matches the whole pattern at the cursor. `block` may be null: nothing is recorded then. On
  /// failure `error` says why and the cursor is not set back.
  bool Match(CTNParserCharBuffIter& text, CTNParsedFileBlock* block, std::string& error,
             KeepValues keep);
  bool Match(CTNParserCharBuffIter& text, CTNParsedFileBlock* block, std::string& error,
             KeepValues keep, NestingState& nesting);
  /// Gives the fields and output elements the values that they have in a block of this record.
  /// False for another record's block.
  bool SetValuesFromBlock(const CTNParsedFileBlock& block);
  /// Empties the values of all input fields and of the first output element; the other elements
  /// keep theirs.
  void ClearValues();
  /// Makes a pattern out of sample text: appends a field for every run of blanks, line end and word
  /// from the cursor to its end limit.
  bool CreateFieldsFromText(CTNParserCharBuffIter& text);

  /// The block that a Single Match record matched in the current application; null when none. While
  /// its own values are being set for a block, that block stands for it.
  const CTNParsedFileBlock* GetSingleMatchBlock() const { return m_singleMatchBlock.get(); }
  void SetSingleMatchBlock(std::shared_ptr<const CTNParsedFileBlock> block) {
    m_singleMatchBlock = std::move(block);
  }

  bool BuildEntityText(std::string& text, const CTNParsedFileBlock& block,
                       Tags tags) const override;
  RecordKind GetRecordKind() const override { return m_kind; }
  std::string GetRecordId() const override;
  std::string GetRecordName() const override { return m_description; }
  std::size_t GetFieldCount() const override { return m_inputFields.size(); }
  const CTNMatchedField* GetMatchedFieldAt(std::size_t index) const override {
    return m_inputFields[index].get();
  }

  int Serialize(XmlNode parent) override;
  int OnBeginNode(XmlNode node, bool& handled) override;
  void FixUpAfterLoad();

 private:
  void ForgetSingleMatches();
  friend class CTNParserTemplate;  // Keeps m_position in step with its lists.

  void RegisterBindings(XmlBindingTable& bindings) override;
  int SaveFields(XmlNode node);
  bool ValidateInputFields(std::string& error);
  bool ValidateOutputElements(std::string& error);
  bool ValidateRequiredTags(std::string& error) const;
  bool ValidateLineEnd(std::string& error, LineEnds& lineEnds) const;
  bool ValidateType(std::string& error) const;
  bool FinishMatch(CTNParsedFileBlock* block);

  CTNParserTemplate* m_template;  // Not owned.
  CTNTemplRecInField m_lineFeedField;
  std::shared_ptr<const CTNParsedFileBlock> m_singleMatchBlock;
  RecordKind m_kind = RecordKind::FreshEntity;
  std::string m_loadedType;  // Only while reading.
  std::string m_description;
  std::vector<std::unique_ptr<CTNTemplRecInField>> m_inputFields;
  std::vector<std::unique_ptr<CTNTemplRecOutField>> m_outputFields;
  std::size_t m_position = kNotInTemplate;  // Place in its list of the template.
  std::shared_ptr<const void> m_life = std::make_shared<char>();

 public:
  static constexpr std::size_t kNotInTemplate = SIZE_MAX;
};

}  // namespace bomparser
