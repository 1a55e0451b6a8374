#include "template/ProgramMatcher.h"

#include "tnbase/CharClass.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>

namespace bomparser {

namespace {

constexpr std::uint8_t kLetter = 1;
constexpr std::uint8_t kFigure = 2;
constexpr std::uint8_t kBlank = 4;
constexpr std::uint8_t kLineEnd = 8;
constexpr std::uint8_t kSeparator = 16;
constexpr std::uint8_t kSign = 32;

constexpr std::array<std::uint8_t, 256> MakeClasses() {
  std::array<std::uint8_t, 256> classes{};
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const char c = static_cast<char>(i);
    if (IsAlpha(c)) classes[i] = kLetter;
    if (IsDigit(c)) classes[i] = kFigure;
    if (c == ' ' || c == '\t') classes[i] = kBlank;
    if (c == '\n') classes[i] = kLineEnd;
    if (c == '.' || c == ',') classes[i] = kSeparator;
    if (c == '-' || c == '+') classes[i] = kSign;
  }
  return classes;
}

constexpr std::array<std::uint8_t, 256> kClasses = MakeClasses();

bool Is(char c, std::uint8_t classes) {
  return (kClasses[static_cast<unsigned char>(c)] & classes) != 0;
}

// Runs need no end test: behind the text stands a line feed, which ends every run.
const char* SkipRun(const char* at, std::uint8_t classes) {
  while (Is(*at, classes))
    ++at;
  return at;
}

const char* SkipWord(const char* at) {
  while (!Is(*at, kBlank | kLineEnd))
    ++at;
  return at;
}

bool Equal(const char* text, std::string_view value, bool caseSensitive) {
  if (caseSensitive) return std::memcmp(text, value.data(), value.size()) == 0;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (ToLower(text[i]) != value[i]) return false;
  }
  return true;
}

const char* Find(const char* from, const char* end, char wanted) {
  const void* found = std::memchr(from, wanted, static_cast<std::size_t>(end - from));
  return found != nullptr ? static_cast<const char*>(found) : end;
}

}  // namespace

ProgramMatcher::ProgramMatcher(const MatchProgram& program, CTNParsedResult& result)
    : m_program(program),
      m_result(result),
      m_begin(result.GetText()->Data()),
      m_end(m_begin + result.GetText()->Size()),
      m_scans(program.GetScanCount()),
      m_failures(program.GetRecordCount()),
      m_attempts(program.GetRecordCount()) {}

std::uint8_t* ProgramMatcher::Room(std::size_t count) {
  return m_result.MakeElementRoom(m_pending + count) + m_pending;
}

void ProgramMatcher::TakePending() {
  m_result.AdvanceElements(m_pending);
  m_pending = 0;
}

std::uint32_t ProgramMatcher::Match(std::uint32_t record, std::uint32_t position) {
  m_pending = 0;
  m_block = position;
  m_parent = record;
  m_exact = m_program.GetRecord(record).entangled;
  m_nesting = NestingState(m_exact ? NestingState::Kind::Entangled : NestingState::Kind::Plain);
  const char* end = MatchRecord(record, m_begin + position);
  if (end != nullptr) return PositionOf(end);
  m_pending = 0;
  return kFailed;
}

std::uint32_t ProgramMatcher::MatchRestOfLine(std::uint32_t position) {
  m_pending = 0;
  const char* const at = m_begin + position;
  const char* const lineEnd = Find(at, m_end, '\n');
  if (lineEnd == m_end) return kFailed;
  std::uint8_t* const room = Room(element_code::kMaxBytes + 1);
  std::uint8_t* end = element_code::PutLength(room, static_cast<std::uint32_t>(lineEnd - at));
  *end++ = 1;
  m_pending = static_cast<std::size_t>(end - room);
  return PositionOf(lineEnd) + 1;
}

const char* ProgramMatcher::MatchRecord(std::uint32_t index, const char* at) {
  assert(at != nullptr);
  const RecordOp& record = m_program.GetRecord(index);
  if (!record.valid) return nullptr;
  const FieldOp* const last = m_program.Ops() + record.lastOp;
  for (const FieldOp* op = m_program.Ops() + record.firstOp; op < last; ++op) {
    if (op->kind == FieldKind::SubRecord) {
      const char* end = MatchInstances(*op, at);
      if (end == nullptr && op->required) return nullptr;
      if (end != nullptr) at = end;
      continue;
    }
    const char* end = op->kind == FieldKind::ScanToNext ? MatchScan(*op, at) : MatchField(*op, at);
    std::uint8_t* const room = Room(element_code::kMaxBytes);
    if (end != nullptr) {
      const auto length = static_cast<std::uint32_t>(end - at);
      m_pending += static_cast<std::size_t>(element_code::PutLength(room, length) - room);
      at = end;
    } else {
      if (op->required) return nullptr;
      *room = element_code::kAbsent;
      ++m_pending;
    }
  }
  return at;
}

/// Matches a field that is neither a scan nor a sub-record; the place behind it, or null.
inline const char* ProgramMatcher::MatchField(const FieldOp& op, const char* at) const {
  assert(at != nullptr);
  switch (op.kind) {
    case FieldKind::String:
      return MatchString(op, at);
    case FieldKind::Column:
      if (op.length < 0 || m_end - at < op.length ||
          Find(at, at + op.length, '\n') != at + op.length) {
        return nullptr;
      }
      return at + op.length;
    case FieldKind::Alphanumeric:
      return CheckValues(op, at, SkipRun(at, kLetter | kFigure));
    case FieldKind::Alpha:
      return CheckValues(op, at, SkipRun(at, kLetter));
    case FieldKind::WholeNum:
    case FieldKind::DecimalNum:
      return MatchNumber(op, at);
    case FieldKind::Space:
      return at < m_end && *at == ' ' ? at + 1 : nullptr;
    case FieldKind::Tab:
      return at < m_end && *at == '\t' ? at + 1 : nullptr;
    case FieldKind::WhtSpace: {
      const char* end = SkipRun(at, kBlank);
      return end > at ? end : nullptr;
    }
    case FieldKind::NotWhtSpace:
      return CheckValues(op, at, SkipWord(at));
    case FieldKind::Newline:
      return at < m_end && *at == '\n' ? at + 1 : nullptr;
    default:
      return nullptr;
  }
}

const char* ProgramMatcher::MatchString(const FieldOp& op, const char* at) const {
  const auto left = static_cast<std::size_t>(m_end - at);
  for (std::uint32_t i = op.firstValue; i < op.lastValue; ++i) {
    const std::string_view value = m_program.Values()[i];
    if (value.size() <= left && Equal(at, value, op.caseSensitive)) return at + value.size();
  }
  return nullptr;
}

/// `end` when [at, end) is not empty and, where there are match values, one of them; else null.
inline const char* ProgramMatcher::CheckValues(const FieldOp& op, const char* at,
                                               const char* end) const {
  if (end == at) return nullptr;
  if (!op.hasValues) return end;
  const auto length = static_cast<std::size_t>(end - at);
  for (std::uint32_t i = op.firstValue; i < op.lastValue; ++i) {
    const std::string_view value = m_program.Values()[i];
    if (value.size() == length && Equal(at, value, op.caseSensitive)) return end;
  }
  return nullptr;
}

inline const char* ProgramMatcher::MatchNumber(const FieldOp& op, const char* at) const {
  const bool sign = Is(*at, kSign);
  const char* const digits = at + (sign ? 1 : 0);
  const char* end = SkipRun(digits, kFigure);
  if (op.kind == FieldKind::DecimalNum) {
    if (!Is(*end, kSeparator)) return nullptr;
    end = SkipRun(end + 1, kFigure);
    if (end - digits < 2) return nullptr;
  } else if (end == digits) {
    return nullptr;
  }
  if (!op.hasValues || CheckValues(op, at, end) != nullptr) return end;
  return *at == '+' && CheckValues(op, digits, end) != nullptr ? end : nullptr;
}

// ------------------------------------------------------------------------------- scans

/// True when the field matches; what it writes is dropped. A scan is never tried: it has no next.
bool ProgramMatcher::MatchesHere(const FieldOp& next, const char* at) {
  if (next.kind != FieldKind::SubRecord) return MatchField(next, at) != nullptr;
  const std::size_t pending = m_pending;
  const bool matched = MatchNested(next, at) != nullptr;
  m_pending = pending;
  return matched;
}

/// The first place from `from` to `last` where the field behind the scan matches; null if none.
const char* ProgramMatcher::Search(const FieldOp& scan, const char* from, const char* last) {
  const FieldOp& next = *(&scan + 1);
  if (scan.search == ScanSearch::FromSet) {
    const ByteSet& bytes = m_program.FirstBytesBehind(scan);
    for (; from <= last; ++from) {
      // Where a field may match nothing its set holds every byte, so the end of the text, with its
      // line feed behind, is tried as well.
      if (bytes[static_cast<unsigned char>(*from)] && MatchesHere(next, from)) return from;
    }
    return nullptr;
  }
  while (from <= last) {
    from = Find(from, std::min(last + 1, m_end), scan.searchByte);
    if (from > last || from == m_end) return nullptr;
    if (scan.search == ScanSearch::OneByte || MatchesHere(next, from)) return from;
    ++from;
  }
  return nullptr;
}

/// Makes the zone that holds the position the current one, if there is one.
void ProgramMatcher::TurnTo(ScanMemory& memory, std::uint32_t position) const {
  const ScanZone left = std::exchange(memory.current, {});
  auto found = std::upper_bound(
      memory.others.begin(), memory.others.end(), position,
      [](std::uint32_t wanted, const ScanZone& zone) { return wanted < zone.from; });
  if (found != memory.others.begin() && (--found)->Holds(position)) {
    memory.current = *found;
    memory.others.erase(found);
  }
  if (left.clear >= m_block && left.from <= left.clear) Keep(memory, left);
}

void ProgramMatcher::Keep(ScanMemory& memory, const ScanZone& zone) const {
  auto& others = memory.others;
  const auto place =
      std::upper_bound(others.begin(), others.end(), zone,
                       [](const ScanZone& a, const ScanZone& b) { return a.from < b.from; });
  others.insert(place, zone);
  if (others.size() < memory.pruneAt) return;
  // What lies before the block under way is not asked for again.
  others.erase(std::remove_if(others.begin(), others.end(),
                              [this](const ScanZone& old) { return old.clear < m_block; }),
               others.end());
  if (others.size() > kManyZones) others.clear();
  memory.pruneAt = std::max(kFewZones, 2 * others.size());
}

/// As Search, for entangled records: whether a sub-record matches depends on how many were tried
/// before, so none may be left out.
const char* ProgramMatcher::SearchEverywhere(const FieldOp& scan, const char* from,
                                             const char* last) {
  for (; from <= last; ++from) {
    if (MatchesHere(*(&scan + 1), from)) return from;
  }
  return nullptr;
}

const char* ProgramMatcher::MatchScan(const FieldOp& scan, const char* at) {
  if (scan.search == ScanSearch::Never) return nullptr;
  // One character more than the limit can be skipped: it is tested before each read.
  const char* last = m_end;
  if (scan.length >= 1 && m_end - at > std::ptrdiff_t{scan.length} + 1) last = at + scan.length + 1;
  if (m_exact && (&scan + 1)->kind == FieldKind::SubRecord) return SearchEverywhere(scan, at, last);
  const std::uint32_t position = PositionOf(at);
  ScanMemory& memory = m_scans[scan.scanSlot];
  if (!memory.current.Holds(position)) TurnTo(memory, position);
  ScanZone& known = memory.current;
  const bool inside = known.Holds(position);
  if (!inside || !known.found) {
    const char* const start = inside ? m_begin + known.clear : at;
    const std::uint32_t from = inside ? known.from : position;
    if (start <= last) {
      const char* const found = Search(scan, start, last);
      known = {from, PositionOf(found != nullptr ? found : last + 1), found != nullptr};
    }
  }
  const char* const end = m_begin + known.clear;
  if (known.found && end <= last) return end;
  NoteFailedTrial(*(&scan + 1), last);
  return nullptr;
}

/// The search passes over places where the field behind a scan cannot begin; a sub-record was tried
/// there all the same, at last at the end of the search.
void ProgramMatcher::NoteFailedTrial(const FieldOp& next, const char* last) {
  if (next.kind != FieldKind::SubRecord || next.subRecord == CTNParsedLayout::kNoRecord) return;
  m_attempts[next.subRecord] = {m_block, m_parent, PositionOf(last), ++m_sequence};
}

// ------------------------------------------------------------------------------- sub-records

/// Matches one instance of a sub-record and writes its elements; the place behind it, or null.
const char* ProgramMatcher::MatchNested(const FieldOp& op, const char* at) {
  if (op.subRecord == CTNParsedLayout::kNoRecord || !m_nesting.Enter()) return nullptr;
  const std::uint32_t position = PositionOf(at);
  Failure& failure = m_failures[op.subRecord];
  // What failed here fails again. Of a record with sub-records that is known only while nothing
  // else was tried: its sub-records' last attempts are then still those inside it.
  const bool nests = m_program.GetRecord(op.subRecord).nests;
  const bool known =
      failure.position == position && (!nests || failure.sequence == m_sequence) && !m_exact;
  m_attempts[op.subRecord] = {m_block, m_parent, position, ++m_sequence};
  const std::size_t pending = m_pending;
  const char* const end = known ? nullptr : MatchRecord(op.subRecord, at);
  if (end == nullptr) {
    m_pending = pending;
    failure = {m_exact ? kFailed : position, m_sequence};
  }
  m_nesting.Leave();
  return end;
}

const char* ProgramMatcher::MatchInstances(const FieldOp& op, const char* at) {
  const char* matched = nullptr;
  for (const char* before = at;;) {
    *Room(1) = element_code::kInstance;
    ++m_pending;
    const char* const end = MatchNested(op, before);
    if (end == nullptr) {
      --m_pending;
      break;
    }
    matched = end;
    if (!op.repeatable || EndsRepetition(PositionOf(before), PositionOf(end))) break;
    before = end;
  }
  *Room(1) = element_code::kNoMore;
  ++m_pending;
  return matched;
}

}  // namespace bomparser
