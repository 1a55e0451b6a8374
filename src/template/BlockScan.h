#pragma once

#include "input/CTNParsedBlockPtrArray.h"
#include "template/BlockTaker.h"
#include "template/MatchProgram.h"
#include "template/PiecesAhead.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace bomparser {

class CTNParserTemplate;

/// One application of a template under way: it cuts the text into blocks and gives each block to
/// the first record that matches.
class BlockScan {
 public:
  /// Starts an empty result over the text in `blocks`. Throws std::bad_alloc.
  BlockScan(const CTNParserTemplate& document, const std::shared_ptr<const CTNInputText>& text,
            CTNParsedBlockPtrArray& blocks, const ApplicationPurpose& purpose);

  /// Adds the line as a block of the ignored-lines record; -1 when the user has cancelled.
  std::ptrdiff_t TakeIgnoredLine(std::uint32_t line, std::uint32_t lineEnd);

  /// Done also when the application is given up: see ApplicationPurpose.
  enum class Outcome { Done, Cancelled, NotAdvanced, Unreadable };
  /// Cuts the text from `position` on, until a block ends at `end` or behind it. `position` and
  /// `previous` are left where the scan ended. Throws std::bad_alloc.
  Outcome Run(std::uint32_t& position, std::int64_t& previous, std::uint32_t end);

  /// The last attempt at a record, as a text position at which the plain matcher repeats it.
  struct Attempt {
    const CTNTemplateRecord* record;
    std::uint32_t block;     // Where the block under way started, then
    std::uint32_t order;     // the place in the order of trying, then
    std::uint64_t sequence;  // the count of nested attempts: in this order attempts happened.
    std::uint32_t position;
    bool operator<(const Attempt& other) const;
  };
  /// True when the blocks are those that this scan made.
  bool IsScanOf(const CTNParsedBlockPtrArray& blocks) const {
    return blocks.GetResult().get() == &m_result;
  }
  /// The last attempt at every record that was tried, in the order in which they happened. None
  /// when blocks were only counted.
  std::vector<Attempt> GetLastAttempts() const;
  /// The block that a single-match record matched, or -1.
  std::ptrdiff_t GetSingleMatchBlock(const CTNTemplateRecord& record) const;

 private:
  std::uint32_t StartOfSharing(std::uint32_t begin, std::uint32_t end) const;
  Outcome CutBlock(std::uint32_t& position, std::int64_t& previous);
  Outcome AddBlocks(PiecesAhead::Blocks& blocks, std::uint32_t& position, std::int64_t& previous);
  void NoteAdded(std::uint32_t record, std::ptrdiff_t block);
  void AddTopLevelAttempts(std::vector<Attempt>& attempts) const;
  void AddNestedAttempts(std::vector<Attempt>& attempts) const;
  Attempt AttemptOf(std::uint32_t record, std::uint32_t block) const;

  MatchProgram m_program;
  CTNParsedBlockPtrArray& m_blocks;
  CTNParsedResult& m_result;
  ApplicationPurpose m_purpose;
  BlockTaker m_taker;
  std::optional<PiecesAhead> m_ahead;          // While Run works with more threads than one.
  bool m_givenUp = false;                      // See ApplicationPurpose.
  std::vector<std::ptrdiff_t> m_singleBlocks;  // By record; -1 while it has not matched.
  std::vector<std::uint32_t> m_orderOf;        // By record: its place in the order of trying.
  std::size_t m_firstBlock = 0;                // Blocks that Run made.
  std::size_t m_lastBlock = 0;
  std::uint32_t m_failedAt = ProgramMatcher::kFailed;  // Where not even the catch-all matched.
};

}  // namespace bomparser
