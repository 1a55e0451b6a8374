#pragma once

#include "input/CTNParsedBlockPtrArray.h"
#include "template/BlockTaker.h"
#include "tnbase/WorkAhead.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace bomparser {

/// Cuts pieces of a text into blocks ahead of the one who cuts the whole, in threads of its own.
///
/// A piece begins at a line start, as if a block began there. Which record takes a block depends on
/// nothing but the text from there on and on the single-match records that are still to match. So
/// where the whole does come to the start of a block of the piece, with the same records matched,
/// all that follows in the piece is what the whole would find.
class PiecesAhead {
 public:
  /// Whether there is enough text for sharing it.
  static bool IsWorthwhile(std::uint32_t size, std::uint32_t pieceSize) {
    return size / pieceSize >= 8;
  }
  /// Of the text from `begin` to `end`. The program, the text and the progress, which may be null,
  /// outlive it. A cancel ends the work on all pieces at once.
  PiecesAhead(const MatchProgram& program, std::shared_ptr<const CTNInputText> text,
              std::uint32_t begin, std::uint32_t end, const ApplicationPurpose& purpose,
              const CTNProgress* progress);
  ~PiecesAhead() { m_ended = true; }
  PiecesAhead(const PiecesAhead&) = delete;
  PiecesAhead& operator=(const PiecesAhead&) = delete;

  /// Blocks of a piece, from one on, that may be taken over.
  class Blocks {
   public:
    struct Block {
      std::uint32_t text;
      std::uint32_t textEnd;
      std::uint32_t record;
      std::uint32_t rows;
      const std::uint8_t* elements;
      const std::uint8_t* elementsEnd;
    };
    /// The next block; false behind the last.
    bool Next(Block& block);

   private:
    friend class PiecesAhead;
    const CTNParsedResult* m_result = nullptr;
    const std::vector<std::uint32_t>* m_rows = nullptr;
    std::size_t m_next = 0;
  };
  /// Finds the blocks from this position on, which is behind that of the call before. `singles` are
  /// the single-match records that have matched. False where there are none: then the next block
  /// is to be cut in the usual way.
  bool FindBlocks(std::uint32_t position, const std::vector<bool>& singles, Blocks& blocks);
  /// The last attempts at sub-records in the blocks that were found last.
  using Attempts = std::vector<std::pair<std::uint32_t, NestedAttempt>>;  // By record.
  const Attempts& GetAttempts() const { return m_piece->attempts; }
  /// Tells that another single-match record has matched.
  void NoteSingles(const std::vector<bool>& singles);

 private:
  struct Piece {
    std::vector<bool> singles;  // When it was begun.
    std::unique_ptr<CTNParsedResult> result;
    std::vector<std::uint32_t> rows;  // By block.
    Attempts attempts;
  };

  static std::vector<std::uint32_t> StartsOfPieces(const CTNInputText& text, std::uint32_t begin,
                                                   std::uint32_t end, std::uint32_t size);
  bool Cut(std::size_t worker, std::size_t index, Piece& piece);
  void CutBlocks(std::size_t worker, std::uint32_t position, std::uint32_t end, Piece& piece);
  bool IsEnded(std::size_t worker);
  std::size_t CountWorkers(const ApplicationPurpose& purpose) const;
  void TurnTo(std::uint32_t position);

  const MatchProgram& m_program;
  const std::shared_ptr<const CTNInputText> m_text;
  const CTNProgress* const m_progress;  // Not owned; only the consumer's thread asks it.
  std::atomic<bool> m_ended{false};
  const std::vector<std::uint32_t> m_starts;  // Of the pieces, and the end.
  std::mutex m_mutex;
  std::vector<bool> m_singles;       // That have matched by now; under the mutex.
  std::vector<BlockTaker> m_takers;  // By worker, and the consumer's.
  Piece* m_piece = nullptr;          // The one at hand, if it is of any use,
  std::uint32_t m_pieceEnd = 0;      // where the next one starts,
  std::size_t m_nextBlock = 0;       // and its first block that is not passed.
  WorkAhead<Piece> m_work;           // The last: its threads use the others.
};

}  // namespace bomparser
