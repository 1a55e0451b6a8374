#pragma once

#include "input/CTNParserErrorLog.h"
#include "input/roles/CTNFrontEnd.h"
#include "input/roles/CTNTemplateToApply.h"
#include "template/CTNTemplateArrayElement.h"
#include "template/CTNTemplateRecord.h"
#include "template/CXMLArchive.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace bomparser {

class BlockScan;
class CTNIdentifierKeeper;
class LineEnds;
class MatchProgram;
template <class Element>
class ArrayEdit;

/// What edits of a template are told as; any other value than None marks the template as modified.
enum class ChangeKind : std::int32_t { None = 0, Modified = 1 };

/// The template document: a parser template in memory. Owns its records in two ordered lists,
/// entity and auxiliary records, reads and writes the template file, and cuts input files into
/// blocks. The engine owns one and refills it.
class CTNParserTemplate final : public CTNTemplateArrayElement,
                                public CXMLArchive,
                                public CTNTemplateToApply {
 public:
  using RecordList = std::vector<std::unique_ptr<CTNTemplateRecord>>;

  /// An empty template. The engine may be null.
  explicit CTNParserTemplate(CTNParserContext* context);
  ~CTNParserTemplate() override;
  CTNParserTemplate(const CTNParserTemplate&) = delete;
  CTNParserTemplate& operator=(const CTNParserTemplate&) = delete;

  /// Empty, "untitled", "unsaved", Inch, scale 1, all lines, nothing in the error log.
  std::int32_t Init() override;

  // Records. A record goes to the list that its type selects, before `before` or at the end when
  // that is null or not in that list. Expressions follow the records that they name. Where memory
  // runs out everything stays as it was, the error log says so, and the answer is null or false.

  CTNTemplateRecord* AddRecord(RecordKind kind, std::string_view description,
                               const CTNTemplateRecord* before = nullptr);
  /// Appends a copy of a record, fields included.
  CTNTemplateRecord* AddRecordCopy(const CTNTemplateRecord& record);
  /// Deletes the record. Fields and expressions that name it read as unresolved from then on. False
  /// for a record that is in no list.
  bool DeleteRecord(const CTNTemplateRecord* record);
  /// The same with several records of one list at once, which costs hardly more than one: every
  /// edit looks at all expressions. All or none: false if none is given, or one is not in the list.
  bool DeleteRecords(const std::vector<const CTNTemplateRecord*>& records);
  void DeleteAllRecords();
  /// Back to an empty, untitled, unsaved template; the error log stays.
  void DropContent();
  /// Gives up the blocks of single-match records, and with them their share of the results.
  void ForgetSingleMatches();
  /// Parses again the expressions that may mean more since something was appended,
  void ReparseWhatMayMeanMore();
  /// which are in the records that were noted here. Records outside the lists are ignored.
  void NoteMayMeanMore(CTNTemplateRecord& record);
  /// Moves a record within its list. False if it is in none.
  bool MoveRecord(const CTNTemplateRecord* record, const CTNTemplateRecord* before);
  /// The same with several records of one list at once, all or none as above. They keep the order
  /// that they have in the list. If `before` is one of them, the others are put before it.
  bool MoveRecords(const std::vector<const CTNTemplateRecord*>& records,
                   const CTNTemplateRecord* before);
  /// True for a record of the list that its type selects.
  bool Holds(const CTNTemplateRecord* record) const;
  /// True for a record of either list, whatever its type.
  bool Lists(const CTNTemplateRecord* record) const;
  const RecordList& GetEntityRecords() const { return m_entityRecords; }
  const RecordList& GetAuxiliaryRecords() const { return m_auxiliaryRecords; }
  const CTNTemplateRecord& GetCatchAllRecord() const { return m_catchAll; }
  const CTNTemplateRecord& GetIgnoredLinesRecord() const { return m_ignoredLines; }

  /// "E1", "A2"; "??" for a record of neither list.
  std::string GetRecordID(const CTNTemplateRecord* record) const;
  /// The record with this identifier, compared without case; null when there is none.
  CTNTemplateRecord* FindRecordByID(std::string_view id) const;
  /// True if any record refers to the field; the field's own record may be left out.
  bool IsFieldReferenced(const CTNTemplRecField* field, bool skipOwnRecord) const;

  // Attributes and parameters.

  static bool IsTemplateAttributeName(std::string_view name);
  /// "TEMPL_UNITS" gives the units' name, "TEMPL_SCALE" the scale factor with six decimals.
  bool GetTemplateAttribute(std::string_view name, std::string& text) const;
  const std::string& GetTitle() const { return m_title; }
  void SetTitle(std::string_view title) { m_title = title; }
  std::int32_t GetBeginRow() const { return m_beginRow; }
  void SetBeginRow(std::int32_t row) { m_beginRow = row; }
  /// 1 and more counts from the top of the file, 0 and less is the negated count from its end.
  std::int32_t GetEndAfterRow() const { return m_endAfterRow; }
  void SetEndAfterRow(std::int32_t row) { m_endAfterRow = row; }
  /// 0 Inch, 1 MM, 2 Mil; any other index has the empty name.
  std::int32_t GetUnits() const { return m_units; }
  void SetUnits(std::int32_t units);
  const std::string& GetUnitsName() const { return m_unitsName; }
  double GetScaleFactor() const { return m_scaleFactor; }
  void SetScaleFactor(double factor) { m_scaleFactor = factor; }

  const std::string& GetFilePath() const { return m_filePath; }
  void SetFilePath(std::string path) { m_filePath = std::move(path); }
  bool IsModified() const { return m_modified; }
  /// Stores the flag; when it is set the template is no longer empty, and the engine is told.
  void SetModified(ChangeKind change);
  /// The flag alone: after saving and loading.
  void ClearModified() { m_modified = false; }

  CTNTemplateErrorLog& GetErrorLog() { return m_errorLog; }
  /// Adds one entry to the error log, through the engine when there is one.
  bool ReportError(std::string_view text, ErrorShown shown);

  /// Validates every record, auxiliary ones first; true if all are valid.
  std::int32_t Validate() override;

  // The template file.

  /// Rebuilds the template, which was reset before, from XML text. A negative status leaves it
  /// reset: kXmlGeneralFailure for a text that is not well-formed, with the details in
  /// LastParseFailure, and for a document that holds nothing of a template; kXmlOutOfMemory.
  int LoadFromXml(std::string_view xmlText);
  /// The same from a file. One that is not well-formed or cannot be read gives kXmlNotWellFormed.
  int LoadFromFile(const std::string& path);
  int Serialize(XmlNode parent) override;
  int OnBeginNode(XmlNode node, bool& handled) override;
  bool OnNode(XmlNode node, const XmlBindingTable& bindings) override;

  // Applying; see CTNTemplateToApply.

  LineLimits GetLineLimits() const override { return {m_beginRow, m_endAfterRow}; }
  bool IsEmptyTemplate() const override { return m_empty; }
  std::string GetTemplateFileName() const override;
  void BeginApplication(const std::shared_ptr<const CTNInputText>& text,
                        CTNParsedBlockPtrArray& blocks, const ApplicationPurpose& purpose) override;
  std::ptrdiff_t TakeIgnoredLine(std::uint32_t line, std::uint32_t lineEnd,
                                 CTNParsedBlockPtrArray& blocks) override;
  bool ParseFile(CTNStringCharBuffIter& text, CTNParsedBlockPtrArray& blocks, std::string& error,
                 bool& cancelled) override;
  void EndApplication(const CTNParsedBlockPtrArray& blocks) override;

  /// True when an application to a text that ends in a line end can fail: a record without fields
  /// matches without taking anything.
  bool HasRecordThatTakesNothing() const;

  /// Whether fields show, after an application, the values of the last attempt at their record.
  /// Finding them takes a little time, which a program without a window need not spend.
  void SetKeepCurrentValues(bool keep) { m_keepCurrentValues = keep; }

 private:
  RecordList& ListOf(RecordKind kind);
  const RecordList& ListOf(RecordKind kind) const;
  bool IsAt(const RecordList& list, const CTNTemplateRecord* record) const;
  CTNTemplateRecord* Append(std::unique_ptr<CTNTemplateRecord> record);
  CTNTemplateRecord* Insert(std::unique_ptr<CTNTemplateRecord> record,
                            const CTNTemplateRecord* before);
  static void PutAt(RecordList& list, std::size_t place, std::unique_ptr<CTNTemplateRecord> record);
  static std::unique_ptr<CTNTemplateRecord> TakeFrom(RecordList& list, std::size_t place);
  static void Renumber(RecordList& list, std::size_t from);
  bool AreInOneList(const std::vector<const CTNTemplateRecord*>& records) const;
  static void ApplyOrUndo(CTNIdentifierKeeper& keeper, ArrayEdit<CTNTemplateRecord>& edit,
                          RecordList& list);
  void UnlinkRecords(const std::unordered_set<const CTNTemplateRecord*>& gone);
  void RegisterBindings(XmlBindingTable& bindings) override;
  int FinishLoad(int status);
  int Resolve();
  void ResolveAndValidate(RecordList& list, LineEnds& lineEnds);
  void ReplayLastAttempts(const CTNParsedBlockPtrArray& blocks);

  CTNTemplateRecord m_catchAll;
  CTNTemplateRecord m_ignoredLines;  // Never written to a file.
  CTNTemplateErrorLog m_errorLog;
  bool m_modified = false;
  bool m_empty = true;
  std::string m_filePath;
  std::string m_title;
  std::int32_t m_beginRow = 1;
  std::int32_t m_endAfterRow = 0;
  std::int32_t m_units = 0;
  std::string m_unitsName;
  double m_scaleFactor = 1.0;
  std::unordered_set<CTNTemplateRecord*> m_mayMeanMore;
  RecordList m_entityRecords;
  RecordList m_auxiliaryRecords;
  bool m_recognised = false;  // While loading: the document holds something of a template.
  bool m_keepCurrentValues = true;
  std::unique_ptr<BlockScan> m_scan;  // From BeginApplication to EndApplication.
};

}  // namespace bomparser
