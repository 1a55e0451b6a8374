#include "template/PiecesAhead.h"

#include "tnbase/RunFinder.h"

#include <algorithm>

namespace bomparser {

namespace {
constexpr std::size_t kPiecesPerWorker = 4;
}  // namespace

PiecesAhead::PiecesAhead(const MatchProgram& program, std::shared_ptr<const CTNInputText> text,
                         std::uint32_t begin, std::uint32_t end, const ApplicationPurpose& purpose,
                         const CTNProgress* progress)
    : m_program(program),
      m_text(std::move(text)),
      m_progress(progress),
      m_starts(StartsOfPieces(*m_text, begin, end, purpose.pieceSize)),
      m_singles(program.GetRecordCount()),
      m_takers(CountWorkers(purpose) + 1, BlockTaker(program, *m_text)),
      m_work(
          CountWorkers(purpose), m_starts.size() - 1,
          kPiecesPerWorker * (CountWorkers(purpose) + 1),
          [this](std::size_t worker, std::size_t index, Piece& piece) {
            return Cut(worker, index, piece);
          },
          [this] { return IsEnded(m_takers.size() - 1); }) {}

/// Threads beside the consumer's; no more than there are pieces.
std::size_t PiecesAhead::CountWorkers(const ApplicationPurpose& purpose) const {
  return std::min<std::size_t>(purpose.threads, m_starts.size() - 1) - 1;
}

/// True when nobody needs the pieces any more.
bool PiecesAhead::IsEnded(std::size_t worker) {
  const bool isConsumer = worker + 1 == m_takers.size();
  if (isConsumer && m_progress != nullptr && m_progress->IsCancelled()) m_ended = true;
  return m_ended;
}

/// Where the pieces start, at line starts, and where the last one ends.
std::vector<std::uint32_t> PiecesAhead::StartsOfPieces(const CTNInputText& text,
                                                       std::uint32_t begin, std::uint32_t end,
                                                       std::uint32_t size) {
  std::vector<std::uint32_t> starts{begin};
  const char* const data = text.Data();
  while (end - starts.back() > size) {
    const char* const lineFeed = FindChar(data + starts.back() + size, data + end, '\n');
    const auto next = static_cast<std::uint32_t>(lineFeed - data) + 1;
    if (next >= end) break;
    starts.push_back(next);
  }
  starts.push_back(end);
  return starts;
}

void PiecesAhead::NoteSingles(const std::vector<bool>& singles) {
  const std::lock_guard lock(m_mutex);
  m_singles = singles;
}

bool PiecesAhead::Cut(std::size_t worker, std::size_t index, Piece& piece) {
  {
    const std::lock_guard lock(m_mutex);
    piece.singles = m_singles;
  }
  // A piece that was there before leaves its memory.
  if (piece.result == nullptr) {
    piece.result = std::make_unique<CTNParsedResult>(m_text, m_program.GetLayout());
  }
  piece.result->RemoveBlocks();
  piece.rows.clear();
  piece.attempts.clear();
  BlockTaker& taker = m_takers[worker];
  taker.SetSingles(piece.singles);
  taker.SetResult(*piece.result);
  CutBlocks(worker, m_starts[index], m_starts[index + 1], piece);
  const auto& attempts = taker.GetMatcher().GetNestedAttempts();
  for (std::uint32_t record = 0; record < attempts.size(); ++record) {
    const NestedAttempt& last = attempts[record];
    if (last.sequence > 0 && last.block >= m_starts[index]) {
      piece.attempts.emplace_back(record, last);
    }
  }
  return true;
}

void PiecesAhead::CutBlocks(std::size_t worker, std::uint32_t position, std::uint32_t end,
                            Piece& piece) {
  BlockTaker& taker = m_takers[worker];
  CTNParsedResult& result = *piece.result;
  while (position < end && !IsEnded(worker)) {
    const auto block = taker.Cut(position);
    // What cannot go on is left to who cuts the whole, and tells of it. A block that takes nothing
    // leaves no elements: its record has no fields.
    if (!block || block->textEnd <= position) return;
    piece.rows.push_back(block->rows);
    result.AppendBlock(position, block->textEnd, block->elements, block->record, block->rows);
    if (m_program.GetRecord(block->record).singleMatch) taker.NoteSingle(block->record);
    position = block->textEnd;
  }
}

/// Makes the piece that holds the position the one at hand.
void PiecesAhead::TurnTo(std::uint32_t position) {
  const auto next = std::upper_bound(m_starts.begin(), m_starts.end() - 1, position);
  m_pieceEnd = *next;
  m_nextBlock = 0;
  m_piece = m_work.Take(static_cast<std::size_t>(next - m_starts.begin()) - 1);
}

bool PiecesAhead::FindBlocks(std::uint32_t position, const std::vector<bool>& singles,
                             Blocks& blocks) {
  if (position >= m_pieceEnd) TurnTo(position);
  if (m_piece == nullptr) return false;
  const CTNParsedResult& result = *m_piece->result;
  for (; m_nextBlock < result.GetBlockCount(); ++m_nextBlock) {
    const ParsedBlockEntry& block = result.GetEntry(m_nextBlock);
    if (block.text == position && m_piece->singles == singles) {
      blocks.m_result = &result;
      blocks.m_rows = &m_piece->rows;
      blocks.m_next = m_nextBlock;
      return true;
    }
    if (block.text >= position) return false;
    // Behind such a block, which is none of the whole's, the piece left its record out.
    if (m_program.GetRecord(block.record).singleMatch) break;
  }
  m_piece = nullptr;
  return false;
}

bool PiecesAhead::Blocks::Next(Block& block) {
  if (m_next >= m_result->GetBlockCount()) return false;
  const ParsedBlockPlace place = m_result->GetPlace(m_next);
  block = {place.text,
           m_result->GetTextEnd(m_next),
           place.record,
           (*m_rows)[m_next],
           m_result->ElementBytes() + place.elements,
           m_result->ElementBytes() + place.elementsEnd};
  ++m_next;
  return true;
}

}  // namespace bomparser
