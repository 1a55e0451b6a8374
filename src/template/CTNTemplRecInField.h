#pragma once

#include "input/roles/CTNMatchedField.h"
#include "template/CTNTemplRecField.h"
#include "template/CXMLArchive.h"
#include "template/FieldTypes.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

class CTNParsedFileBlock;
class CTNParserCharBuffIter;
class NestingState;

/// Whether a failed match leaves the fields the values of the attempt: a user who tests a record on
/// a selection wants to see them, an application does not.
enum class KeepValues { No, Yes };

/// A link to a record that somebody else owns. When that record goes, wherever it is, the link
/// reads as null, and it never means another record that happens to stand at the same address.
class RecordLink {
 public:
  RecordLink& operator=(CTNTemplateRecord* record);
  operator CTNTemplateRecord*() const { return m_alive.expired() ? nullptr : m_record; }
  CTNTemplateRecord* operator->() const { return *this; }
  /// True when the record that was linked is gone.
  bool IsLost() const { return m_record != nullptr && m_alive.expired(); }

 private:
  CTNTemplateRecord* m_record = nullptr;
  std::weak_ptr<const void> m_alive;
};

/// One typed token of a record's pattern: a number, a literal, a line end, a nested record ...
class CTNTemplRecInField final : public CTNTemplRecField,
                                 public CXMLArchive,
                                 public CTNMatchedField {
 public:
  explicit CTNTemplRecInField(CTNTemplateRecord* parent);
  ~CTNTemplRecInField() override;
  CTNTemplRecInField(const CTNTemplRecInField&) = delete;
  CTNTemplRecInField& operator=(const CTNTemplRecInField&) = delete;

  /// Required, not case-sensitive, type UNDEFINED, match length -1, no match values.
  std::int32_t Init() override;

  FieldKind GetType() const { return m_kind; }
  std::string_view GetTypeName() const { return GetFieldType(m_kind).name; }
  static std::string_view GetTypeName(FieldKind kind) { return GetFieldType(kind).name; }
  /// Stores the type and applies its rules: what the type does not allow is cleared, a match length
  /// that it needs becomes 0, and a STRING without match values takes the current value as its one.
  void SetType(FieldKind kind);

  static bool AllowsCaseSensitivity(FieldKind kind) { return GetFieldType(kind).caseSensitive; }
  static bool AllowsMatchValues(FieldKind kind) { return GetFieldType(kind).matchValues; }
  static bool AllowsMatchLength(FieldKind kind) { return GetFieldType(kind).matchLength; }
  static bool IsSubRecordType(FieldKind kind) { return kind == FieldKind::SubRecord; }

  /// The match values joined by "|". Of a SUBRECORD field that is linked to a record, that record's
  /// identifier as it is now. Empty for types that do not allow match values.
  std::string GetMatchValueText() const;
  /// Stores the text. A SUBRECORD field is linked to the record that the text names; a text that
  /// names none leaves the link as it was.
  void SetMatchValueText(std::string_view text);
  /// Appends one more value, and sets whether values are compared with case.
  void AddMatchValue(std::string_view text, bool caseSensitive);
  /// The pieces of the stored match value text; empty pieces are dropped.
  std::vector<std::string> GetMatchValues() const;
  bool HasMatchValues() const { return !GetMatchValues().empty(); }
  /// True when the text equals a match value, with or without case as the field says.
  bool IsMatchValue(std::string_view text) const;
  /// True when a value may stand in this field's match value text: it must read as the type itself.
  /// For a SUBRECORD field: when its one value names a record of the template.
  bool IsValidMatchValue(std::string_view text) const;

  // These store, and do not validate.
  bool IsRequired() const { return m_required; }
  void SetRequired(bool required) { m_required = required; }
  bool IsCaseSensitive() const { return m_caseSensitive; }
  void SetCaseSensitive(bool caseSensitive) { m_caseSensitive = caseSensitive; }
  bool IsRepeatable() const { return m_repeatable; }
  void SetRepeatable(bool repeatable) { m_repeatable = repeatable; }
  std::int32_t GetMatchLength() const { return m_matchLength; }
  void SetMatchLength(std::int32_t length) { m_matchLength = length; }
  /// "TRUE" or "FALSE", the form in which flags are stored and shown.
  static const std::string& FlagText(bool flag);

  /// The record that a SUBRECORD field is linked to; null while unresolved, and from when that
  /// record is deleted. Not owned.
  CTNTemplateRecord* GetSubRecord() const { return m_subRecord; }
  /// Looks the match value up as a record identifier and links the field to that record. Returns
  /// it, or null when no record has the identifier; the link stays as it was then.
  CTNTemplateRecord* ResolveSubRecord();
  /// Unlinks the field for good: its match value becomes "??", so that it never means a newcomer.
  void ForgetSubRecord();

  /// Takes over everything from another field, its parent record included.
  void CopyFrom(const CTNTemplRecInField& other);

  /// Turns the texts that were read into flags and type. A flag text other than "FALSE" reads as
  /// true, a misspelt one included; the rules of the type then have the last word.
  void FixUpAfterLoad() override;
  /// First failing check wins; its message is the status text.
  std::int32_t Validate() override;

  /// Matches this field at the cursor. On success `value` holds the text consumed (empty for a line
  /// end and for a sub-record), it becomes the current value, and `block` gets an element if it is
  /// not null. On failure the cursor is where it was. `next` is the field that follows; it serves
  /// SCAN_TO_NEXT only and may be null.
  bool Match(CTNParserCharBuffIter& text, CTNParsedFileBlock* block, std::string& value,
             CTNTemplRecInField* next, KeepValues keep);
  /// The same inside the match of a record, whose nesting goes on.
  bool Match(CTNParserCharBuffIter& text, CTNParsedFileBlock* block, std::string& value,
             CTNTemplRecInField* next, KeepValues keep, NestingState& nesting);

  int Serialize(XmlNode parent) override;

  FieldKind GetFieldKind() const override { return m_kind; }
  std::string_view GetFieldTypeName() const override { return GetTypeName(); }
  const CTNMatchedRecord* GetMatchedRecord() const override;
  const CTNMatchedRecord* GetMatchedSubRecord() const override;

 private:
  struct LoadedTexts;

  CTNTemplateRecord* LinkTo(std::string_view id);
  void RegisterBindings(XmlBindingTable& bindings) override;
  std::string FindError() const;
  std::string FindSubRecordError() const;
  std::string FindMatchValueError() const;
  std::string FindMatchLengthError() const;

  // One function a type; `value` receives the text. Where they leave the cursor after a failure
  // does not matter.
  bool MatchByType(CTNParserCharBuffIter& text, CTNParsedFileBlock* block, std::string& value,
                   CTNTemplRecInField* next, KeepValues keep, NestingState& nesting);
  bool MatchString(CTNParserCharBuffIter& text, std::string& value) const;
  bool MatchColumn(CTNParserCharBuffIter& text, std::string& value) const;
  bool MatchWholeNumber(CTNParserCharBuffIter& text, std::string& value) const;
  bool MatchDecimalNumber(CTNParserCharBuffIter& text, std::string& value) const;
  bool MatchScan(CTNParserCharBuffIter& text, std::string& value, CTNTemplRecInField* next,
                 KeepValues keep, NestingState& nesting);
  bool MatchSubRecord(CTNParserCharBuffIter& text, CTNParsedFileBlock* block, KeepValues keep,
                      NestingState& nesting);
  bool IsNumberMatchValue(std::string_view text) const;

  RecordLink m_subRecord;
  std::string m_matchValueText;
  FieldKind m_kind = FieldKind::Undefined;
  std::int32_t m_matchLength = -1;
  bool m_required = true;
  bool m_caseSensitive = false;
  bool m_repeatable = false;
  std::unique_ptr<LoadedTexts> m_loaded;  // Only between reading and FixUpAfterLoad.
};

}  // namespace bomparser
