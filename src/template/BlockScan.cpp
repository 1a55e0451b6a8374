#include "template/BlockScan.h"

#include "template/CTNParserTemplate.h"

#include <algorithm>
#include <optional>
#include <tuple>

namespace bomparser {

namespace {
constexpr std::uint32_t kPiecesOfTrial = 4;
}  // namespace

BlockScan::BlockScan(const CTNParserTemplate& document,
                     const std::shared_ptr<const CTNInputText>& text,
                     CTNParsedBlockPtrArray& blocks, const ApplicationPurpose& purpose)
    : m_program(document),
      m_blocks(blocks),
      m_result(blocks.Begin(text, m_program.GetLayout(), purpose)),
      m_purpose(purpose),
      m_taker(m_program, *text),
      m_singleBlocks(m_program.GetRecordCount(), -1),
      m_orderOf(m_program.GetRecordCount(), 0) {
  m_taker.SetResult(m_result);
  const auto& order = m_program.GetTryOrder();
  for (std::uint32_t i = 0; i < order.size(); ++i)
    m_orderOf[order[i]] = i;
  m_orderOf[m_program.GetCatchAll()] = static_cast<std::uint32_t>(order.size());
}

std::ptrdiff_t BlockScan::TakeIgnoredLine(std::uint32_t line, std::uint32_t lineEnd) {
  const std::uint32_t elements = m_result.ElementEnd();
  std::uint32_t record = m_program.GetIgnoredLines();
  // The record sees this line alone: it does not match one that has no line end.
  const std::uint32_t end = m_taker.GetMatcher().Match(record, line);
  if (end == lineEnd) {
    m_taker.GetMatcher().TakePending();
  } else {
    record = CTNParsedLayout::kNoRecord;
  }
  const std::uint32_t rows = m_result.CountRows(line, lineEnd, elements, record);
  return m_blocks.Add(line, lineEnd, elements, record, rows);
}

BlockScan::Outcome BlockScan::Run(std::uint32_t& position, std::int64_t& previous,
                                  std::uint32_t end) {
  m_firstBlock = m_result.GetBlockCount();
  m_lastBlock = m_firstBlock;
  previous = std::int64_t{position} - 1;
  const std::uint32_t sharedFrom = StartOfSharing(position, end);
  Outcome outcome = Outcome::Done;
  while (position < end && outcome == Outcome::Done && !m_givenUp) {
    if (position >= sharedFrom && !m_ahead) {
      m_ahead.emplace(m_program, m_result.GetText(), position, end, m_purpose,
                      m_blocks.GetProgress());
      m_ahead->NoteSingles(m_taker.GetSingles());
    }
    PiecesAhead::Blocks blocks;
    if (previous >= position) {
      outcome = Outcome::NotAdvanced;
    } else if (m_ahead && m_ahead->FindBlocks(position, m_taker.GetSingles(), blocks)) {
      outcome = AddBlocks(blocks, position, previous);
    } else {
      outcome = CutBlock(position, previous);
    }
  }
  m_ahead.reset();
  return outcome;
}

/// From where on threads share the text; its end if they do not.
std::uint32_t BlockScan::StartOfSharing(std::uint32_t begin, std::uint32_t end) const {
  if (m_purpose.threads <= 1 || begin >= end) return end;
  const std::uint32_t piece = m_purpose.pieceSize;
  // An application that may be given up mostly is, and early: nothing is made ahead for it.
  const bool trial = m_purpose.mostUnmatched != ApplicationPurpose::kNoLimit;
  const std::uint32_t alone = trial ? std::min(end - begin, kPiecesOfTrial * piece) : 0;
  return PiecesAhead::IsWorthwhile(end - begin - alone, piece) ? begin + alone : end;
}

/// Cuts the block at the position and adds it.
BlockScan::Outcome BlockScan::CutBlock(std::uint32_t& position, std::int64_t& previous) {
  previous = position;
  const auto block = m_taker.Cut(position);
  if (!block) {
    m_failedAt = position;
    return Outcome::Unreadable;
  }
  const std::ptrdiff_t added =
      m_blocks.Add(position, block->textEnd, block->elements, block->record, block->rows);
  if (added < 0) return Outcome::Cancelled;
  NoteAdded(block->record, added);
  position = block->textEnd;
  return Outcome::Done;
}

/// Adds blocks that were cut ahead.
BlockScan::Outcome BlockScan::AddBlocks(PiecesAhead::Blocks& blocks, std::uint32_t& position,
                                        std::int64_t& previous) {
  const std::uint32_t first = position;
  PiecesAhead::Blocks::Block block{};
  while (!m_givenUp && blocks.Next(block)) {
    previous = position;
    const std::uint32_t elements = m_result.ElementEnd();
    const auto bytes = static_cast<std::size_t>(block.elementsEnd - block.elements);
    std::copy(block.elements, block.elementsEnd, m_result.MakeElementRoom(bytes));
    m_result.AdvanceElements(bytes);
    const std::ptrdiff_t added =
        m_blocks.Add(block.text, block.textEnd, elements, block.record, block.rows);
    if (added < 0) return Outcome::Cancelled;
    NoteAdded(block.record, added);
    position = block.textEnd;
  }
  for (const auto& [record, attempt] : m_ahead->GetAttempts()) {
    if (attempt.block >= first) m_taker.GetMatcher().NoteAttempt(record, attempt);
  }
  return Outcome::Done;
}

void BlockScan::NoteAdded(std::uint32_t record, std::ptrdiff_t block) {
  m_lastBlock = m_result.GetBlockCount();
  if (m_program.GetRecord(record).singleMatch) {
    m_singleBlocks[record] = block;
    m_taker.NoteSingle(record);
    if (m_ahead) m_ahead->NoteSingles(m_taker.GetSingles());
  }
  m_givenUp = record == m_program.GetCatchAll() && m_blocks.IsGivenUp();
}

std::ptrdiff_t BlockScan::GetSingleMatchBlock(const CTNTemplateRecord& record) const {
  const std::uint32_t index = m_program.GetLayout()->IndexOf(&record);
  return index == CTNParsedLayout::kNoRecord ? -1 : m_singleBlocks[index];
}

// ------------------------------------------------------------------------------- last attempts

bool BlockScan::Attempt::operator<(const Attempt& other) const {
  return std::tie(block, order, sequence) < std::tie(other.block, other.order, other.sequence);
}

BlockScan::Attempt BlockScan::AttemptOf(std::uint32_t record, std::uint32_t block) const {
  const CTNMatchedRecord* matched = m_program.GetLayout()->Records()[record].record;
  return {static_cast<const CTNTemplateRecord*>(matched), block, m_orderOf[record], 0, block};
}

/// A record was tried at every block that it, or one behind it in the order of trying, took.
void BlockScan::AddTopLevelAttempts(std::vector<Attempt>& attempts) const {
  const auto& order = m_program.GetTryOrder();
  std::size_t covered = 0;  // Records from here on are still to be found an attempt for.
  const auto cover = [&](std::size_t upTo, std::uint32_t block) {
    for (; covered < std::min(upTo, order.size()); ++covered) {
      const std::ptrdiff_t single = m_singleBlocks[order[covered]];
      // A single-match record is not tried again once it has matched.
      const auto last =
          single < 0 ? block : m_result.GetEntry(static_cast<std::size_t>(single)).text;
      attempts.push_back(AttemptOf(order[covered], last));
    }
  };
  if (m_failedAt != ProgramMatcher::kFailed) cover(order.size(), m_failedAt);
  for (std::size_t i = m_lastBlock; i > m_firstBlock && covered < order.size(); --i) {
    const ParsedBlockEntry& entry = m_result.GetEntry(i - 1);
    cover(std::size_t{m_orderOf[entry.record]} + 1, entry.text);
  }
}

void BlockScan::AddNestedAttempts(std::vector<Attempt>& attempts) const {
  const auto& nested = m_taker.GetMatcher().GetNestedAttempts();
  for (std::uint32_t record = 0; record < nested.size(); ++record) {
    const NestedAttempt& last = nested[record];
    if (last.sequence == 0) continue;
    if (m_program.GetRecord(last.parent).entangled) {
      // On its own it would go deeper than it did there: the whole is repeated.
      attempts.push_back(AttemptOf(last.parent, last.block));
      continue;
    }
    Attempt attempt = AttemptOf(record, last.block);
    attempt.order = m_orderOf[last.parent];
    attempt.sequence = last.sequence;
    attempt.position = last.position;
    attempts.push_back(attempt);
  }
}

std::vector<BlockScan::Attempt> BlockScan::GetLastAttempts() const {
  std::vector<Attempt> attempts;
  if (m_purpose.use == ResultUse::Counted) return attempts;
  AddTopLevelAttempts(attempts);
  AddNestedAttempts(attempts);
  std::sort(attempts.begin(), attempts.end());
  const auto same = [](const Attempt& a, const Attempt& b) { return !(a < b) && !(b < a); };
  attempts.erase(std::unique(attempts.begin(), attempts.end(), same), attempts.end());
  return attempts;
}

}  // namespace bomparser
