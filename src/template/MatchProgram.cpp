#include "template/MatchProgram.h"

#include "input/CTNParsedResult.h"
#include "template/CTNParserTemplate.h"
#include "template/EntangledRecords.h"
#include "template/NestingLimits.h"
#include "tnbase/CharClass.h"

#include <algorithm>
#include <bit>

namespace bomparser {

namespace {

std::size_t Index(char c) { return static_cast<unsigned char>(c); }

char ToUpper(char c) {
  for (char upper = 'A'; upper <= 'Z'; ++upper) {
    if (ToLower(upper) == c) return upper;
  }
  return c;
}

template <class Belongs>
void AddBytes(ByteSet& bytes, Belongs belongs) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (belongs(static_cast<char>(i))) bytes[i] = true;
  }
}

/// Puts the text into lower case where case does not count.
MatchValue PrepareValue(std::string& text, bool caseSensitive) {
  std::array<char, sizeof(std::uint64_t)> head{};
  std::array<char, sizeof(std::uint64_t)> mask{};
  std::array<char, sizeof(std::uint64_t)> fold{};
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!caseSensitive) text[i] = ToLower(text[i]);
    if (i >= head.size()) continue;
    head[i] = text[i];
    mask[i] = static_cast<char>(0xFF);
    if (!caseSensitive && IsAlpha(text[i])) fold[i] = 'a' ^ 'A';
  }
  return {std::bit_cast<std::uint64_t>(head), std::bit_cast<std::uint64_t>(mask),
          std::bit_cast<std::uint64_t>(fold), text, caseSensitive};
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsAny(char) { return true; }

}  // namespace

/// Finds out with which bytes records and fields can begin. Where that depends on more than the
/// first field that must match, the answer errs on the side of more bytes.
class MatchProgram::FirstBytes {
 public:
  explicit FirstBytes(MatchProgram& program) : m_program(program), m_of(program.m_records.size()) {}

  const ByteSet& OfRecord(std::uint32_t record) { return Find(record).bytes; }

  /// Adds the bytes that a field can begin with; true when it may match without taking any.
  bool AddField(const FieldOp& op, ByteSet& bytes) {
    switch (op.kind) {
      case FieldKind::String:
        AddLiterals(op, bytes);
        return false;
      case FieldKind::Column:
        AddBytes(bytes, [](char c) { return c != '\n'; });
        return op.length < 1;
      case FieldKind::Alphanumeric:
        AddBytes(bytes, IsAlnum);
        return false;
      case FieldKind::Alpha:
        AddBytes(bytes, IsAlpha);
        return false;
      case FieldKind::WholeNum:
        AddBytes(bytes, [](char c) { return IsDigit(c) || c == '-' || c == '+'; });
        return false;
      case FieldKind::DecimalNum:
        AddBytes(bytes,
                 [](char c) { return IsDigit(c) || c == '-' || c == '+' || c == '.' || c == ','; });
        return false;
      case FieldKind::Space:
        bytes[Index(' ')] = true;
        return false;
      case FieldKind::Tab:
        bytes[Index('\t')] = true;
        return false;
      case FieldKind::WhtSpace:
        AddBytes(bytes, IsBlank);
        return false;
      case FieldKind::NotWhtSpace:
        AddBytes(bytes, [](char c) { return !IsBlank(c) && c != '\n'; });
        return false;
      case FieldKind::Newline:
        bytes[Index('\n')] = true;
        return false;
      case FieldKind::ScanToNext:
        AddBytes(bytes, IsAny);
        return true;
      case FieldKind::SubRecord:
        return AddSubRecord(op, bytes);
      case FieldKind::Undefined:
        break;
    }
    return false;
  }

 private:
  enum class Visit : std::uint8_t { Not, Open, Done };
  struct Known {
    ByteSet bytes{};
    bool mayBeEmpty = true;
    Visit visit = Visit::Not;
  };

  void AddLiterals(const FieldOp& op, ByteSet& bytes) {
    for (std::uint32_t i = op.firstValue; i < op.lastValue; ++i) {
      const MatchValue& value = m_program.m_values[i];
      const char first = value.text.front();
      bytes[Index(first)] = true;
      if (!value.caseSensitive) bytes[Index(ToUpper(first))] = true;
    }
  }

  bool AddSubRecord(const FieldOp& op, ByteSet& bytes) {
    if (op.subRecord == CTNParsedLayout::kNoRecord) return false;
    if (!m_program.m_records[op.subRecord].valid) return false;
    // Deep chains are not followed to their end.
    const bool deep = m_depth >= kMaxNestedRecords;
    const Known* const sub = deep ? nullptr : &Find(op.subRecord);
    if (sub == nullptr || sub->visit == Visit::Open) {
      AddBytes(bytes, IsAny);
      return true;
    }
    for (std::size_t i = 0; i < bytes.size(); ++i)
      bytes[i] = bytes[i] || sub->bytes[i];
    return sub->mayBeEmpty;
  }

  const Known& Find(std::uint32_t index) {
    Known& known = m_of[index];
    if (known.visit != Visit::Not) return known;
    known.visit = Visit::Open;
    ++m_depth;
    const RecordOp& record = m_program.m_records[index];
    // Up to the first field that must take a byte.
    for (std::uint32_t i = record.firstOp; i < record.lastOp && known.mayBeEmpty; ++i) {
      const FieldOp& op = m_program.m_ops[i];
      known.mayBeEmpty = AddField(op, known.bytes) || !op.required;
    }
    if (known.mayBeEmpty) AddBytes(known.bytes, IsAny);
    --m_depth;
    known.visit = Visit::Done;
    return known;
  }

  MatchProgram& m_program;
  std::vector<Known> m_of;
  int m_depth = 0;
};

MatchProgram::MatchProgram(const CTNParserTemplate& document)
    : m_layout(std::make_shared<CTNParsedLayout>()) {
  for (const auto* list : {&document.GetAuxiliaryRecords(), &document.GetEntityRecords()}) {
    for (const auto& record : *list) {
      const std::uint32_t place = m_layout->Describe(*record);
      // Sub-records are matched from inside other records only.
      if (record->GetType() != RecordKind::SubRecord) m_tryOrder.push_back(place);
    }
  }
  m_catchAll = m_layout->Describe(document.GetCatchAllRecord());
  m_ignoredLines = m_layout->Describe(document.GetIgnoredLinesRecord());
  EntangledRecords entangled;
  for (const ParsedRecordLayout& described : m_layout->Records()) {
    const auto& record = static_cast<const CTNTemplateRecord&>(*described.record);
    CompileRecord(record);
    m_records.back().entangled = entangled.Contains(record);
  }
  FirstBytes first(*this);
  for (std::uint32_t i = 0; i < m_records.size(); ++i)
    first.OfRecord(i);
  PrepareScans(first);
  ListCandidates(first);
}

void MatchProgram::CompileRecord(const CTNTemplateRecord& record) {
  RecordOp op{};
  op.valid = record.IsValid() != 0;
  op.singleMatch = record.IsSingleMatch();
  op.firstOp = static_cast<std::uint32_t>(m_ops.size());
  for (const auto& field : record.GetInputFields()) {
    m_ops.push_back(CompileField(*field));
    if (m_ops.back().kind == FieldKind::SubRecord) op.nests = true;
  }
  op.lastOp = static_cast<std::uint32_t>(m_ops.size());
  op.mostBytes = (op.lastOp - op.firstOp) * element_code::kMaxBytes;
  op.oneLine = TakesOneLine(op);
  if (op.oneLine) m_layout->SetOneRow(static_cast<std::uint32_t>(m_records.size()));
  m_records.push_back(op);
}

bool MatchProgram::TakesOneLine(const RecordOp& record) const {
  if (record.nests || record.firstOp == record.lastOp) return false;
  const std::uint32_t last = record.lastOp - 1;
  if (m_ops[last].kind != FieldKind::Newline || !m_ops[last].required) return false;
  for (std::uint32_t i = record.firstOp; i < last; ++i) {
    if (MayTakeLineFeed(m_ops[i], m_ops[i + 1].kind == FieldKind::Newline)) return false;
  }
  return true;
}

/// Of a field that is no sub-record.
bool MatchProgram::MayTakeLineFeed(const FieldOp& op, bool beforeNewline) const {
  if (op.kind == FieldKind::Newline) return true;
  if (op.kind == FieldKind::ScanToNext) return !beforeNewline;
  if (op.kind != FieldKind::String) return false;
  const auto hasLineFeed = [](const MatchValue& value) {
    return value.text.find('\n') != std::string_view::npos;
  };
  return std::any_of(m_values.begin() + op.firstValue, m_values.begin() + op.lastValue,
                     hasLineFeed);
}

FieldOp MatchProgram::CompileField(const CTNTemplRecInField& field) {
  FieldOp op{};
  op.kind = field.GetType();
  op.required = field.IsRequired();
  op.repeatable = field.IsRepeatable();
  op.length = field.GetMatchLength();
  op.subRecord = m_layout->IndexOf(field.GetMatchedSubRecord());
  if (op.kind == FieldKind::SubRecord) {
    op.memory = m_subRecordFields++;
  } else {
    CompileValues(field, op);
  }
  return op;
}

void MatchProgram::CompileValues(const CTNTemplRecInField& field, FieldOp& op) {
  op.firstValue = static_cast<std::uint32_t>(m_values.size());
  for (const std::string& value : field.GetMatchValues()) {
    auto text = std::make_unique<std::string>(value);
    m_values.push_back(PrepareValue(*text, field.IsCaseSensitive()));
    m_valueTexts.push_back(std::move(text));
  }
  op.lastValue = static_cast<std::uint32_t>(m_values.size());
}

void MatchProgram::PrepareScans(FirstBytes& first) {
  for (const RecordOp& record : m_records) {
    for (std::uint32_t i = record.firstOp; i < record.lastOp; ++i) {
      FieldOp& scan = m_ops[i];
      if (scan.kind != FieldKind::ScanToNext) continue;
      scan.memory = static_cast<std::uint32_t>(m_scanSets.size());
      m_scanSets.emplace_back();
      ByteSet& bytes = m_scanSets.back();
      scan.search = ScanSearch::Never;
      if (i + 1 == record.lastOp || m_ops[i + 1].kind == FieldKind::ScanToNext) continue;
      const FieldOp& next = m_ops[i + 1];
      scan.search = ScanSearch::FromSet;
      if (first.AddField(next, bytes)) {
        AddBytes(bytes, IsAny);
      } else if (std::count(bytes.begin(), bytes.end(), true) == 1) {
        const auto only = std::find(bytes.begin(), bytes.end(), true) - bytes.begin();
        scan.searchByte = static_cast<char>(only);
        const bool literal = next.kind == FieldKind::String &&
                             next.lastValue - next.firstValue == 1 &&
                             m_values[next.firstValue].text.size() == 1;
        const bool enough = literal || next.kind == FieldKind::Newline ||
                            next.kind == FieldKind::Space || next.kind == FieldKind::Tab;
        scan.search = enough ? ScanSearch::OneByte : ScanSearch::FromByte;
      }
    }
  }
}

void MatchProgram::ListCandidates(FirstBytes& first) {
  for (std::size_t byte = 0; byte < 256; ++byte) {
    m_candidatesOf[byte] = static_cast<std::uint32_t>(m_candidates.size());
    for (const std::uint32_t record : m_tryOrder) {
      if (m_records[record].valid && first.OfRecord(record)[byte]) m_candidates.push_back(record);
    }
  }
  m_candidatesOf[256] = static_cast<std::uint32_t>(m_candidates.size());
}

MatchProgram::Candidates MatchProgram::CandidatesAt(char byte) const {
  const std::size_t index = Index(byte);
  return {m_candidates.data() + m_candidatesOf[index],
          m_candidates.data() + m_candidatesOf[index + 1]};
}

}  // namespace bomparser
