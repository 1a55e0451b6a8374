#pragma once

#include "input/CTNParsedResult.h"
#include "template/MatchProgram.h"
#include "template/NestingLimits.h"
#include "tnbase/RunFinder.h"

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace bomparser {

/// Where a record was tried last inside another record, for the values that its fields then show.
struct NestedAttempt {
  std::uint32_t block = 0;     // Text position at which the block under way starts.
  std::uint32_t parent = 0;    // The record of the list that was being tried there.
  std::uint32_t position = 0;  // Where the record was tried.
  std::uint64_t sequence = 0;  // Counts all such attempts; 0 for never.
};

/// Matches records of a program against a text and writes the elements of what matched behind a
/// result's element bytes. The outcome is that of CTNTemplateRecord::Match in every case.
class ProgramMatcher {
 public:
  /// The text is that of the result, which is set before anything is matched.
  ProgramMatcher(const MatchProgram& program, const CTNInputText& text);
  /// Where elements go from now on.
  void SetResult(CTNParsedResult& result) { m_result = &result; }

  /// Matches a record at a position of the text. On success the result is the position behind it,
  /// and its elements are pending; on failure the result is kFailed and nothing is.
  std::uint32_t Match(std::uint32_t record, std::uint32_t position);
  static constexpr std::uint32_t kFailed = 0xFFFFFFFF;
  /// The same for a record with the built-in records' pattern: a scan to the line end, and that.
  std::uint32_t MatchRestOfLine(std::uint32_t position);
  /// Makes the pending elements part of the result's element bytes.
  void TakePending();

  const std::vector<NestedAttempt>& GetNestedAttempts() const { return m_attempts; }
  /// Takes over an attempt that another matcher made at this or a later block.
  void NoteAttempt(std::uint32_t record, const NestedAttempt& attempt) {
    m_attempts[record] = attempt;
  }

 private:
  /// What is known of a scan: behind `from` nothing matches before `clear`, where it was found that
  /// the next field does match (`found`) or up to where the text was searched.
  struct ScanZone {
    std::uint32_t from = 1;
    std::uint32_t clear = 0;
    bool found = false;
    bool Holds(std::uint32_t position) const { return position >= from && position <= clear; }
  };
  /// A record that is tried here and far ahead in turns must not search the way in between each
  /// time, so zones that lie ahead are kept.
  struct ScanMemory {
    ScanZone current;
    std::vector<ScanZone> others;  // By `from`.
    std::size_t pruneAt = kFewZones;
  };
  static constexpr std::size_t kFewZones = 64;
  static constexpr std::size_t kManyZones = 4096;

  /// A row of instances of one sub-record field, if it was long.
  struct Row {
    std::vector<std::uint32_t> starts;  // Of the instances.
    bool complete = false;
    std::uint64_t before = 0;  // The count of attempts when it began.
    /// Where the records inside the instances were tried last, in the order of the attempts.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> attempts;  // Record and position.
  };
  static constexpr std::size_t kShortRow = 16;  // Instances in front that are not remembered.

  /// Where a record last failed inside another one, and the count of attempts then.
  struct Failure {
    std::uint32_t position = kFailed;
    std::uint64_t sequence = 0;
  };

  void Begin(std::uint32_t record, std::uint32_t position);
  const char* MatchRecord(const RecordOp& record, const char* at);
  const char* MatchField(const FieldOp& op, const char* at);
  const char* MatchString(const FieldOp& op, const char* at) const;
  const char* MatchNumber(const FieldOp& op, const char* at);
  const char* CheckValues(const FieldOp& op, const char* at, const char* end) const;
  const char* MatchScan(const FieldOp& scan, const char* at);
  const char* MatchFarScan(const FieldOp& scan, const char* at, const char* last);
  const char* Search(const FieldOp& scan, const char* from, const char* last);
  const char* SearchEverywhere(const FieldOp& scan, const char* from, const char* last);
  void TurnTo(ScanMemory& memory, std::uint32_t position) const;
  void TurnAmongMany(ScanMemory& memory, std::uint32_t position) const;
  void Keep(ScanMemory& memory, const ScanZone& zone) const;
  void NoteFailedTrial(const FieldOp& next, const char* last);
  bool MatchesHere(const FieldOp& next, const char* at);
  const char* MatchNested(const FieldOp& op, const char* at);
  const char* MatchInstances(const FieldOp& op, const char* at);
  const char* GoOnInRow(Row& row, const char* at, bool begins);
  void PassOver(const Row& row, std::uint32_t from, std::uint32_t to);
  void EndRow(Row& row) const;
  void MakeRoom(std::size_t count);
  void GrowRoom(std::size_t count);
  /// Element bytes written and not taken.
  std::size_t CountPending() const { return static_cast<std::size_t>(m_out - m_firstPending); }
  void CutPending(std::size_t pending) { m_out = m_firstPending + pending; }
  std::uint32_t PositionOf(const char* at) const {
    return static_cast<std::uint32_t>(at - m_begin);
  }

  const MatchProgram& m_program;
  CTNParsedResult* m_result = nullptr;  // Not owned.
  const char* m_begin;
  const char* m_end;
  std::uint8_t* m_firstPending = nullptr;  // Where the result's next elements go,
  std::uint8_t* m_out = nullptr;           // how far they are written,
  std::uint8_t* m_roomEnd = nullptr;       // and up to where there is room for more.
  std::uint32_t m_block = 0;               // Where the block under way starts,
  std::uint32_t m_parent = 0;              // and the record that is tried there.
  bool m_exact = false;                    // Every attempt counts: see MatchScan.
  NestingState m_nesting{NestingState::Kind::Plain};
  RunFinder m_runs;
  std::vector<ScanMemory> m_scans;
  std::vector<Row> m_rows;
  bool m_mayPassOver = true;
  bool m_passedOver = false;        // The elements of the match under way have a gap.
  std::vector<Failure> m_failures;  // By record.
  std::vector<NestedAttempt> m_attempts;
  std::uint64_t m_sequence = 0;
};

}  // namespace bomparser
