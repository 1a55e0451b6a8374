#include "template/ProgramMatcher.h"

#include "tnbase/RunFinder.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>

namespace bomparser {

namespace {

bool IsSign(char c) { return c == '-' || c == '+'; }
bool IsSeparator(char c) { return c == '.' || c == ','; }

/// True when the value stands at `at`, where as many characters as it has are left.
inline bool Stands(const MatchValue& value, const char* at) {
  std::uint64_t head = 0;
  std::memcpy(&head, at, sizeof(head));
  if (((head | value.fold) & value.mask) != value.head) return false;
  for (std::size_t i = sizeof(head); i < value.text.size(); ++i) {
    if ((value.caseSensitive ? at[i] : ToLower(at[i])) != value.text[i]) return false;
  }
  return true;
}

}  // namespace

ProgramMatcher::ProgramMatcher(const MatchProgram& program, const CTNInputText& text)
    : m_program(program),
      m_begin(text.Data()),
      m_end(m_begin + text.Size()),
      m_scans(program.GetScanCount()),
      m_rows(program.GetSubRecordFieldCount()),
      m_failures(program.GetRecordCount()),
      m_attempts(program.GetRecordCount()) {}

/// Makes room for this many element bytes behind those that are pending.
inline void ProgramMatcher::MakeRoom(std::size_t count) {
  if (static_cast<std::size_t>(m_roomEnd - m_out) < count) GrowRoom(count);
}

[[gnu::noinline]] void ProgramMatcher::GrowRoom(std::size_t count) {
  const std::size_t pending = CountPending();
  m_firstPending = m_result->MakeElementRoom(pending + count);
  m_roomEnd = m_firstPending + m_result->GetElementRoom();
  CutPending(pending);
}

inline void ProgramMatcher::Begin(std::uint32_t record, std::uint32_t position) {
  m_block = position;
  m_parent = record;
  m_firstPending = m_result->MakeElementRoom(0);
  m_roomEnd = m_firstPending + m_result->GetElementRoom();
  CutPending(0);
  m_mayPassOver = true;
  m_passedOver = false;
}

void ProgramMatcher::TakePending() {
  m_result->AdvanceElements(CountPending());
  m_firstPending = m_out;
}

std::uint32_t ProgramMatcher::Match(std::uint32_t record, std::uint32_t position) {
  Begin(record, position);
  m_exact = m_program.GetRecord(record).entangled;
  m_nesting = NestingState(m_exact ? NestingState::Kind::Entangled : NestingState::Kind::Plain);
  const char* end = MatchRecord(m_program.GetRecord(record), m_begin + position);
  if (end != nullptr && m_passedOver) {
    // It matches: now for the elements as well.
    CutPending(0);
    m_mayPassOver = false;
    end = MatchRecord(m_program.GetRecord(record), m_begin + position);
  }
  if (end != nullptr) return PositionOf(end);
  CutPending(0);
  return kFailed;
}

std::uint32_t ProgramMatcher::MatchRestOfLine(std::uint32_t position) {
  Begin(m_program.GetCatchAll(), position);
  const char* const at = m_begin + position;
  const char* const lineEnd = FindChar(at, m_end, '\n');
  if (lineEnd == m_end) return kFailed;
  MakeRoom(element_code::kMaxBytes + 1);
  m_out = element_code::PutLength(m_out, static_cast<std::uint32_t>(lineEnd - at));
  *m_out++ = 1;
  return PositionOf(lineEnd) + 1;
}

const char* ProgramMatcher::MatchRecord(const RecordOp& record, const char* at) {
  assert(at != nullptr);
  if (!record.valid) return nullptr;
  MakeRoom(record.mostBytes);
  const FieldOp* const last = m_program.Ops() + record.lastOp;
  for (const FieldOp* op = m_program.Ops() + record.firstOp; op < last; ++op) {
    if (op->kind == FieldKind::SubRecord) {
      const char* const end = MatchInstances(*op, at);
      if (end == nullptr && op->required) return nullptr;
      if (end != nullptr) at = end;
      MakeRoom(record.mostBytes);
      continue;
    }
    const char* const end = MatchField(*op, at);
    if (end != nullptr) {
      m_out = element_code::PutLength(m_out, static_cast<std::uint32_t>(end - at));
      at = end;
      if (op->search == ScanSearch::OneByte) {
        // What the scan searched for is all that the field behind it matches.
        *m_out++ = 1;
        ++at;
        ++op;
      }
    } else {
      if (op->required) return nullptr;
      *m_out++ = element_code::kAbsent;
    }
  }
  return at;
}

/// Matches a field that is no sub-record; the place behind it, or null. Always inline, and what is
/// called rarely never: a call for every field takes as long as matching it.
[[gnu::always_inline]] inline const char* ProgramMatcher::MatchField(const FieldOp& op,
                                                                     const char* at) {
  assert(at != nullptr);
  switch (op.kind) {
    case FieldKind::String:
      return MatchString(op, at);
    case FieldKind::Column:
      return op.length >= 0 && std::min(m_runs.EndOf<RunKind::Line>(at), m_end) - at >= op.length
                 ? at + op.length
                 : nullptr;
    case FieldKind::Alphanumeric:
      return CheckValues(op, at, m_runs.EndOf<RunKind::Alphanumerics>(at));
    case FieldKind::Alpha:
      return CheckValues(op, at, m_runs.EndOf<RunKind::Letters>(at));
    case FieldKind::WholeNum:
    case FieldKind::DecimalNum:
      return MatchNumber(op, at);
    case FieldKind::Space:
      return at < m_end && *at == ' ' ? at + 1 : nullptr;
    case FieldKind::Tab:
      return at < m_end && *at == '\t' ? at + 1 : nullptr;
    case FieldKind::WhtSpace: {
      const char* const end = m_runs.EndOf<RunKind::Blanks>(at);
      return end > at ? end : nullptr;
    }
    case FieldKind::NotWhtSpace:
      return CheckValues(op, at, m_runs.EndOf<RunKind::Word>(at));
    case FieldKind::Newline:
      return at < m_end && *at == '\n' ? at + 1 : nullptr;
    case FieldKind::ScanToNext:
      return MatchScan(op, at);
    case FieldKind::SubRecord:
    case FieldKind::Undefined:
      break;
  }
  return nullptr;
}

inline const char* ProgramMatcher::MatchString(const FieldOp& op, const char* at) const {
  const auto left = static_cast<std::size_t>(m_end - at);
  for (std::uint32_t i = op.firstValue; i < op.lastValue; ++i) {
    const MatchValue& value = m_program.Values()[i];
    if (value.text.size() <= left && Stands(value, at)) return at + value.text.size();
  }
  return nullptr;
}

/// `end` when [at, end) is not empty and, where there are match values, one of them; else null.
inline const char* ProgramMatcher::CheckValues(const FieldOp& op, const char* at,
                                               const char* end) const {
  if (end == at) return nullptr;
  if (!op.HasValues()) return end;
  const auto length = static_cast<std::size_t>(end - at);
  for (std::uint32_t i = op.firstValue; i < op.lastValue; ++i) {
    const MatchValue& value = m_program.Values()[i];
    if (value.text.size() == length && Stands(value, at)) return end;
  }
  return nullptr;
}

inline const char* ProgramMatcher::MatchNumber(const FieldOp& op, const char* at) {
  const char* const digits = at + (IsSign(*at) ? 1 : 0);
  const char* end = m_runs.EndOf<RunKind::Digits>(digits);
  if (op.kind == FieldKind::DecimalNum) {
    if (!IsSeparator(*end)) return nullptr;
    end = m_runs.EndOf<RunKind::Digits>(end + 1);
    if (end - digits < 2) return nullptr;
  } else if (end == digits) {
    return nullptr;
  }
  if (!op.HasValues() || CheckValues(op, at, end) != nullptr) return end;
  return *at == '+' && CheckValues(op, digits, end) != nullptr ? end : nullptr;
}

// ------------------------------------------------------------------------------- scans

/// True when the field matches; what it writes is dropped. A scan is never tried: it has no next.
bool ProgramMatcher::MatchesHere(const FieldOp& next, const char* at) {
  if (next.kind != FieldKind::SubRecord) return MatchField(next, at) != nullptr;
  const std::size_t pending = CountPending();
  const bool matched = MatchNested(next, at) != nullptr;
  CutPending(pending);
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
    from = FindChar(from, std::min(last + 1, m_end), scan.searchByte);
    if (from > last || from == m_end) return nullptr;
    if (scan.search == ScanSearch::OneByte || MatchesHere(next, from)) return from;
    ++from;
  }
  return nullptr;
}

/// Makes the zone that holds the position the current one, if there is one.
inline void ProgramMatcher::TurnTo(ScanMemory& memory, std::uint32_t position) const {
  if (memory.current.clear < m_block && memory.others.empty()) {
    memory.current = {};
  } else {
    TurnAmongMany(memory, position);
  }
}

void ProgramMatcher::TurnAmongMany(ScanMemory& memory, std::uint32_t position) const {
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

/// A character that stands near is found without remembering anything.
inline const char* ProgramMatcher::MatchScan(const FieldOp& scan, const char* at) {
  // One character more than the limit can be skipped: it is tested before each read.
  const char* last = m_end;
  if (scan.length >= 1 && m_end - at > std::ptrdiff_t{scan.length} + 1) last = at + scan.length + 1;
  if (scan.search == ScanSearch::OneByte) {
    const char* const found = FindNear(at, scan.searchByte);
    if (found != nullptr && found <= last && found < m_end) return found;
  }
  return MatchFarScan(scan, at, last);
}

[[gnu::noinline]] const char* ProgramMatcher::MatchFarScan(const FieldOp& scan, const char* at,
                                                           const char* last) {
  if (scan.search == ScanSearch::Never) return nullptr;
  if (m_exact && (&scan + 1)->kind == FieldKind::SubRecord) return SearchEverywhere(scan, at, last);
  const std::uint32_t position = PositionOf(at);
  ScanMemory& memory = m_scans[scan.memory];
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
  const RecordOp& sub = m_program.GetRecord(op.subRecord);
  const bool known = failure.position == position && (!sub.nests || failure.sequence == m_sequence);
  m_attempts[op.subRecord] = {m_block, m_parent, position, ++m_sequence};
  const std::size_t pending = CountPending();
  const char* const end = known ? nullptr : MatchRecord(sub, at);
  if (end == nullptr) {
    CutPending(pending);
    failure = {m_exact ? kFailed : position, m_sequence};
  }
  m_nesting.Leave();
  return end;
}

[[gnu::noinline]] const char* ProgramMatcher::MatchInstances(const FieldOp& op, const char* at) {
  const char* matched = nullptr;
  std::size_t count = 0;
  for (const char* before = at;;) {
    if (++count > kShortRow) {
      const char* const on = GoOnInRow(m_rows[op.memory], before, count == kShortRow + 1);
      if (on != before) matched = on;  // There an instance ended.
      before = on;
    }
    MakeRoom(2);  // For both marks.
    *m_out++ = element_code::kInstance;
    const char* const end = MatchNested(op, before);
    if (end == nullptr) {
      --m_out;
      break;
    }
    matched = end;
    if (!op.repeatable || EndsRepetition(PositionOf(before), PositionOf(end))) break;
    before = end;
  }
  if (count > kShortRow) EndRow(m_rows[op.memory]);
  MakeRoom(1);
  *m_out++ = element_code::kNoMore;
  return matched;
}

/// Remembers that an instance of a long row starts here. Where a row is known to pass here, it goes
/// on at the last instance: the record that is tried at each of them in turn, and each time fails
/// behind the last, would otherwise walk them all.
const char* ProgramMatcher::GoOnInRow(Row& row, const char* at, bool begins) {
  const std::uint32_t position = PositionOf(at);
  auto& starts = row.starts;
  if (row.complete && std::binary_search(starts.begin(), starts.end(), position)) {
    if (m_exact || !m_mayPassOver || position == starts.back()) return at;
    PassOver(row, position, starts.back());
    return m_begin + starts.back();
  }
  if (begins) {
    starts.clear();
    row.before = m_sequence;
  }
  row.complete = false;
  starts.push_back(position);
  return at;
}

/// Passes over the instances in [from, to): what was tried in them last is told as tried again.
void ProgramMatcher::PassOver(const Row& row, std::uint32_t from, std::uint32_t to) {
  m_passedOver = true;
  for (const auto& [record, position] : row.attempts) {
    if (position < from || position >= to) continue;
    m_attempts[record] = {m_block, m_parent, position, ++m_sequence};
  }
}

void ProgramMatcher::EndRow(Row& row) const {
  if (row.complete) return;
  std::vector<std::pair<std::uint64_t, std::uint32_t>> tried;  // Count of attempts and record.
  for (std::uint32_t record = 0; record < m_attempts.size(); ++record) {
    if (m_attempts[record].sequence > row.before) {
      tried.emplace_back(m_attempts[record].sequence, record);
    }
  }
  std::sort(tried.begin(), tried.end());
  row.attempts.clear();
  for (const auto& [sequence, record] : tried)
    row.attempts.emplace_back(record, m_attempts[record].position);
  row.complete = true;
}

}  // namespace bomparser
