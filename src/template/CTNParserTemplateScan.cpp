// Applying a template: the block loop, and what the records show afterwards.

#include "template/CTNParserTemplate.h"

#include "input/CTNStringCharBuffIter.h"
#include "input/MessageTexts.h"
#include "template/BlockScan.h"
#include "template/NestingLimits.h"

#include <new>

namespace bomparser {

namespace {
constexpr std::size_t kLongestLineTold = 1020;
/// What scans may read while last attempts are repeated. Repeating is for the eye; on a text that
/// was made to be slow the fields then show less.
constexpr std::uint64_t kMaxReplayedCharacters = 20'000'000;
}  // namespace

void CTNParserTemplate::BeginApplication(const std::shared_ptr<const CTNInputText>& text,
                                         CTNParsedBlockPtrArray& blocks,
                                         const ApplicationPurpose& purpose) {
  m_scan = std::make_unique<BlockScan>(*this, text, blocks, purpose);
}

std::ptrdiff_t CTNParserTemplate::TakeIgnoredLine(std::uint32_t line, std::uint32_t lineEnd,
                                                  CTNParsedBlockPtrArray&) {
  return m_scan->TakeIgnoredLine(line, lineEnd);
}

bool CTNParserTemplate::ParseFile(CTNStringCharBuffIter& text, CTNParsedBlockPtrArray&,
                                  std::string& error, bool& cancelled) {
  std::uint32_t position = text.GetPosition();
  std::int64_t previous = 0;
  BlockScan::Outcome outcome = BlockScan::Outcome::Done;
  try {
    outcome = m_scan->Run(position, previous, text.GetEnd());
  } catch (const std::bad_alloc&) {
    ReportError(XmlStatusText(kXmlOutOfMemory), ErrorShown::Later);
    return false;
  }
  text.SetPosition(position);
  switch (outcome) {
    case BlockScan::Outcome::Done:
      return true;
    case BlockScan::Outcome::Cancelled:
      cancelled = true;
      return false;
    case BlockScan::Outcome::NotAdvanced:
      error = FormatMessageText(Msg::PositionNotAdvanced, previous, position);
      return false;
    case BlockScan::Outcome::Unreadable:
      break;
  }
  std::string line;
  text.ReadLine(line);
  text.SetPosition(position);
  // A message is read by people: the rest of a very long line would tell them nothing more.
  if (line.size() > kLongestLineTold) line.resize(kLongestLineTold);
  error = FormatMessageText(Msg::UnreadableLine, position, line);
  return false;
}

bool CTNParserTemplate::HasRecordThatTakesNothing() const {
  for (const RecordList* list : {&m_auxiliaryRecords, &m_entityRecords}) {
    for (const auto& record : *list) {
      if (record->IsValid() != 0 && record->GetInputFields().empty()) return true;
    }
  }
  return false;
}

void CTNParserTemplate::EndApplication(const CTNParsedBlockPtrArray& blocks) {
  for (const RecordList* list : {&m_auxiliaryRecords, &m_entityRecords}) {
    for (const auto& record : *list) {
      record->ClearValues();
      record->SetSingleMatchBlock(nullptr);
    }
  }
  // What a cancelled application left behind is not about these blocks.
  if (m_scan && !m_scan->IsScanOf(blocks)) m_scan = nullptr;
  if (!m_scan) return;
  if (m_keepCurrentValues) ReplayLastAttempts(blocks);
  for (const auto& record : m_auxiliaryRecords) {
    const std::ptrdiff_t block = m_scan->GetSingleMatchBlock(*record);
    if (block < 0 || static_cast<std::size_t>(block) >= blocks.GetSize()) continue;
    record->SetSingleMatchBlock(
        std::make_shared<CTNParsedFileBlock>(blocks.GetAt(static_cast<std::size_t>(block))));
  }
  m_scan = nullptr;
}

void CTNParserTemplate::ReplayLastAttempts(const CTNParsedBlockPtrArray& blocks) {
  // Matching at speed stores no values. Trying every record once more where it was tried last, in
  // the same order, leaves the fields with the values that they would have.
  CTNStringCharBuffIter text(blocks.GetResult()->GetText());
  std::uint64_t characters = kMaxReplayedCharacters;
  for (const BlockScan::Attempt& attempt : m_scan->GetLastAttempts()) {
    auto* record = const_cast<CTNTemplateRecord*>(attempt.record);
    text.SetPosition(attempt.position);
    CTNParsedFileBlock block(GetContext());
    std::string ignored;
    NestingState nesting(record);
    nesting.LimitScans(characters);
    const bool matched = record->Match(text, &block, ignored, KeepValues::No, nesting);
    if (!matched || !record->IsSingleMatch()) continue;
    record->SetSingleMatchBlock(std::make_shared<CTNParsedFileBlock>(block));
  }
}

}  // namespace bomparser
