#pragma once

#include "template/MatchProgram.h"
#include "template/ProgramMatcher.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace bomparser {

/// Gives the block at a position of a text to the first record that matches there.
class BlockTaker {
 public:
  BlockTaker(const MatchProgram& program, const CTNInputText& text)
      : m_program(program),
        m_text(text.Data()),
        m_matcher(program, text),
        m_singles(program.GetRecordCount()) {}

  /// Where elements go from now on.
  void SetResult(CTNParsedResult& result) {
    m_result = &result;
    m_matcher.SetResult(result);
  }

  /// A block, whose elements are the last of the result.
  struct Block {
    std::uint32_t record;
    std::uint32_t textEnd;
    std::uint32_t elements;  // Where they start.
    std::uint32_t rows;
  };
  /// Takes the block at the position and puts its elements into the result; the block itself is the
  /// caller's to add. Nothing where not even the catch-all matches. Throws std::bad_alloc.
  std::optional<Block> Cut(std::uint32_t position) {
    const std::uint32_t elements = m_result->ElementEnd();
    const Taken taken = Take(position);
    if (taken.end == ProgramMatcher::kFailed) return std::nullopt;
    m_matcher.TakePending();
    const std::uint32_t rows =
        m_program.GetRecord(taken.record).oneLine
            ? 1
            : m_result->CountRows(position, taken.end, elements, taken.record);
    return Block{taken.record, taken.end, elements, rows};
  }

  ProgramMatcher& GetMatcher() { return m_matcher; }
  const ProgramMatcher& GetMatcher() const { return m_matcher; }
  /// The single-match records that have matched: they are not tried again. By record.
  const std::vector<bool>& GetSingles() const { return m_singles; }
  void SetSingles(const std::vector<bool>& singles) { m_singles = singles; }
  void NoteSingle(std::uint32_t record) { m_singles[record] = true; }

 private:
  struct Taken {
    std::uint32_t record;
    std::uint32_t end;  // ProgramMatcher::kFailed where not even the catch-all matches.
  };
  /// The record that takes the block, and where it ends; its elements are pending in the matcher.
  Taken Take(std::uint32_t position) {
    for (const std::uint32_t record : m_program.CandidatesAt(m_text[position])) {
      if (m_singles[record]) continue;
      const std::uint32_t end = m_matcher.Match(record, position);
      if (end != ProgramMatcher::kFailed) return {record, end};
    }
    return {m_program.GetCatchAll(), m_matcher.MatchRestOfLine(position)};
  }

  const MatchProgram& m_program;
  const char* m_text;
  CTNParsedResult* m_result = nullptr;  // Not owned.
  ProgramMatcher m_matcher;
  std::vector<bool> m_singles;
};

}  // namespace bomparser
