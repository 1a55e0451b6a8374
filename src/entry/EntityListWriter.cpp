#include "entry/EntityListWriter.h"

#include "input/MessageTexts.h"

#include <utility>

namespace bomparser {

namespace {
constexpr std::string_view kOpeningTag = "<TN_FILEPARSER_ENTITIES>";
constexpr std::string_view kClosingTag = "</TN_FILEPARSER_ENTITIES>";
}  // namespace

EntityListWriter::EntityListWriter(std::shared_ptr<const CTNParsedResult> result, bool stale)
    : m_result(std::move(result)) {
  if (m_result && !stale) m_program.emplace(*m_result);
}

bool EntityListWriter::Write(const Sink& sink, unsigned threads) const {
  if (!m_result) return sink(std::string(kOpeningTag).append(kClosingTag));
  if (!m_program) return WriteStale(sink);
  return m_program->Write(kOpeningTag, kClosingTag, sink, threads) &&
         m_result->GetText()->IsIntact();
}

bool EntityListWriter::WriteStale(const Sink& sink) const {
  std::string text(kOpeningTag);
  for (std::size_t i = 0; i < m_result->GetBlockCount(); ++i) {
    text += GetMessageText(Msg::UnknownId);
  }
  return sink(text.append(kClosingTag));
}

std::string GetEntityText(const CTNParsedFileBlock& block) {
  if (block.GetContext() != nullptr && block.GetContext()->AreResultsStale()) {
    return GetMessageText(Msg::UnknownId);
  }
  std::string text;
  const CTNMatchedRecord* record = nullptr;
  if (block.GetRecord(record) && IsEntityKind(record->GetRecordKind())) {
    record->BuildEntityText(text, block, Tags::On);
  }
  return text;
}

}  // namespace bomparser
