#pragma once

#include "input/CTNParsedLayout.h"
#include "input/FieldKind.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

class CTNParserTemplate;
class CTNTemplRecInField;
class CTNTemplateRecord;

/// Which bytes a match can begin with.
using ByteSet = std::array<bool, 256>;

/// How a scan finds where its next field matches.
enum class ScanSearch : std::uint8_t {
  Never,     // There is no next field, or it is a scan itself.
  OneByte,   // Where this byte stands the next field matches.
  FromByte,  // Where this byte stands the next field may match.
  FromSet,   // Where a byte of its set stands it may match.
};

/// A text that a field matches, ready to be compared.
struct MatchValue {
  /// Eight characters are compared in one go: those of the text under the mask, letters in lower
  /// case where case does not count.
  std::uint64_t head;
  std::uint64_t mask;
  std::uint64_t fold;  // The bit that tells the cases apart, at the letters.
  std::string_view text;
  bool caseSensitive;
};

/// One field of a pattern, ready to be matched.
struct FieldOp {
  FieldKind kind;
  bool required;
  bool repeatable;
  ScanSearch search;         // Of SCAN_TO_NEXT,
  char searchByte;           // and the byte of OneByte and FromByte.
  std::uint32_t memory;      // Place in the matcher's memory of scans or of rows of sub-records.
  std::int32_t length;       // Of COLUMN and SCAN_TO_NEXT: the match length.
  std::uint32_t subRecord;   // Of SUBRECORD: the record's place in the program.
  std::uint32_t firstValue;  // Match values.
  std::uint32_t lastValue;
  bool HasValues() const { return lastValue > firstValue; }
};

/// One record, ready to be matched.
struct RecordOp {
  bool valid;
  bool singleMatch;
  bool entangled;  // See EntangledRecords.
  bool nests;      // It has SUBRECORD fields.
  bool oneLine;    // What it matches is one line, whose line feed its last field takes.
  std::uint32_t firstOp;
  std::uint32_t lastOp;
  std::size_t mostBytes;  // Of elements, apart from the instances of sub-records.
};

/// A template compiled for matching: the same rules as the match functions of records and fields,
/// in flat tables. Never changes once it is made; several threads may use one.
class MatchProgram {
 public:
  explicit MatchProgram(const CTNParserTemplate& document);

  std::shared_ptr<const CTNParsedLayout> GetLayout() const { return m_layout; }
  const RecordOp& GetRecord(std::uint32_t record) const { return m_records[record]; }
  const FieldOp* Ops() const { return m_ops.data(); }
  const MatchValue* Values() const { return m_values.data(); }
  std::uint32_t GetCatchAll() const { return m_catchAll; }
  std::uint32_t GetIgnoredLines() const { return m_ignoredLines; }
  std::size_t GetScanCount() const { return m_scanSets.size(); }
  std::size_t GetSubRecordFieldCount() const { return m_subRecordFields; }
  std::uint32_t GetRecordCount() const { return static_cast<std::uint32_t>(m_records.size()); }
  /// The bytes at which the field behind a scan can begin.
  const ByteSet& FirstBytesBehind(const FieldOp& scan) const { return m_scanSets[scan.memory]; }

  /// The records that are tried on their own where this byte stands, in the order of trying: those
  /// of the auxiliary list, then those of the entity list, without sub-records, invalid records and
  /// records that cannot begin with the byte.
  struct Candidates {
    const std::uint32_t* begin_;
    const std::uint32_t* end_;
    const std::uint32_t* begin() const { return begin_; }
    const std::uint32_t* end() const { return end_; }
  };
  Candidates CandidatesAt(char byte) const;
  /// All records that are tried on their own, invalid ones included, in the order of trying.
  const std::vector<std::uint32_t>& GetTryOrder() const { return m_tryOrder; }

 private:
  class FirstBytes;

  void CompileRecord(const CTNTemplateRecord& record);
  FieldOp CompileField(const CTNTemplRecInField& field);
  void CompileValues(const CTNTemplRecInField& field, FieldOp& op);
  bool MayTakeLineFeed(const FieldOp& op, bool beforeNewline) const;
  bool TakesOneLine(const RecordOp& record) const;
  void PrepareScans(FirstBytes& first);
  void ListCandidates(FirstBytes& first);

  std::shared_ptr<CTNParsedLayout> m_layout;
  std::vector<RecordOp> m_records;  // By place in the layout.
  std::vector<FieldOp> m_ops;
  std::vector<ByteSet> m_scanSets;
  std::uint32_t m_subRecordFields = 0;
  std::vector<MatchValue> m_values;
  std::vector<std::unique_ptr<std::string>> m_valueTexts;
  std::vector<std::uint32_t> m_tryOrder;
  std::vector<std::uint32_t> m_candidates;
  std::array<std::uint32_t, 257> m_candidatesOf{};
  std::uint32_t m_catchAll = 0;
  std::uint32_t m_ignoredLines = 0;
};

}  // namespace bomparser
