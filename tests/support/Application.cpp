#include "tests/support/Application.h"

#include "input/CTNStringCharBuffIter.h"
#include "template/OutputProgram.h"

namespace bomparser::test {

std::vector<std::string> Application::Readable() const {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < blocks.GetSize(); ++i) {
    texts.push_back(blocks.GetAt(i).ToReadableText());
  }
  return texts;
}

ApplicationPurpose WithThreads(ResultUse use) {
  ApplicationPurpose purpose(use, ApplicationPurpose::kNoLimit, 3);
  purpose.pieceSize = 3;
  return purpose;
}

Application ApplyToText(CTNParserTemplate& document, std::string_view text,
                        const ApplicationPurpose& purpose) {
  Application application;
  CTNStringCharBuffIter cursor(text);
  document.BeginApplication(cursor.GetText(), application.blocks, purpose);
  application.done =
      document.ParseFile(cursor, application.blocks, application.error, application.cancelled);
  document.EndApplication(application.blocks);
  return application;
}

std::vector<std::string> ApplyPlainly(CTNParserTemplate& document, std::string_view text) {
  std::vector<CTNTemplateRecord*> records;
  for (const auto* list : {&document.GetAuxiliaryRecords(), &document.GetEntityRecords()}) {
    for (const auto& record : *list) {
      record->SetSingleMatchBlock(nullptr);
      if (record->GetType() != RecordKind::SubRecord) records.push_back(record.get());
    }
  }
  auto& catchAll = const_cast<CTNTemplateRecord&>(document.GetCatchAllRecord());
  CTNStringCharBuffIter cursor(text);
  std::vector<std::string> texts;
  std::int64_t previous = -1;
  while (cursor.GetPosition() < cursor.GetEnd() && previous < cursor.GetPosition()) {
    previous = cursor.GetPosition();
    CTNParsedFileBlock block(nullptr);
    std::string ignored;
    bool matched = false;
    for (CTNTemplateRecord* record : records) {
      if (record->IsSingleMatch() && record->GetSingleMatchBlock() != nullptr) continue;
      matched = record->Match(cursor, &block, ignored, KeepValues::No);
      if (matched) {
        if (record->IsSingleMatch()) {
          record->SetSingleMatchBlock(std::make_shared<CTNParsedFileBlock>(block));
        }
        break;
      }
      cursor.SetPosition(static_cast<std::uint32_t>(previous));
      block.Reset();
    }
    if (!matched && !catchAll.Match(cursor, &block, ignored, KeepValues::No)) break;
    texts.push_back(block.ToReadableText());
  }
  return texts;
}

std::string EntityListOf(const Application& application) {
  std::string list;
  if (!application.blocks.GetResult()) return list;
  OutputProgram(*application.blocks.GetResult()).Write({}, {}, [&list](std::string_view piece) {
    list += piece;
    return true;
  });
  return list;
}

std::string EntityListPlainly(const Application& application) {
  std::string list;
  for (std::size_t i = 0; i < application.blocks.GetSize(); ++i) {
    const CTNParsedFileBlock block = application.blocks.GetAt(i);
    const CTNMatchedRecord* record = nullptr;
    if (block.GetRecord(record) && IsEntityKind(record->GetRecordKind())) {
      record->BuildEntityText(list, block, Tags::On);
    }
  }
  return list;
}

}  // namespace bomparser::test
