// Loading templates and matching their records, without files.

#include "bench/Inputs.h"
#include "input/CTNParsedBlockPtrArray.h"
#include "input/CTNStringCharBuffIter.h"
#include "template/CTNParserTemplate.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bomparser::bench {
namespace {

using Maker = std::string (*)(std::size_t);
using TemplateMaker = std::string (*)();

constexpr std::int64_t kSmall = 1'000'000;
constexpr std::int64_t kLarge = 10'000'000;

/// Null unless every record is valid: an invalid one would be skipped at no cost.
std::unique_ptr<CTNParserTemplate> Load(const std::string& xml) {
  auto document = std::make_unique<CTNParserTemplate>(nullptr);
  document->SetKeepCurrentValues(false);
  if (document->LoadFromXml(xml) != kXmlOk || document->Validate() == 0) return nullptr;
  return document;
}

bool Apply(CTNParserTemplate& document, const std::shared_ptr<const CTNInputText>& text,
           CTNParsedBlockPtrArray& blocks) {
  CTNStringCharBuffIter cursor(text);
  std::string error;
  bool cancelled = false;
  document.BeginApplication(text, blocks, ResultUse::Kept);
  const bool done = document.ParseFile(cursor, blocks, error, cancelled);
  document.EndApplication(blocks);
  return done;
}

/// How much memory the result takes beside the text itself.
void CountMemory(benchmark::State& state, const CTNParsedResult& result) {
  const std::size_t blocks = result.GetBlockCount();
  const std::size_t bytes = blocks * sizeof(ParsedBlockEntry) + result.ElementEnd();
  const auto ratio = [bytes](std::size_t whole) {
    return whole == 0 ? 0.0 : static_cast<double>(bytes) / static_cast<double>(whole);
  };
  state.counters["blocks"] = static_cast<double>(blocks);
  state.counters["bytes_per_block"] = ratio(blocks);
  state.counters["model_over_text"] = ratio(result.GetText()->Size());
}

void Match(benchmark::State& state, TemplateMaker makeTemplate, Maker makeInput) {
  const auto document = Load(makeTemplate());
  if (!document) {
    state.SkipWithError("the template is invalid");
    return;
  }
  const auto text = CTNInputText::Copy(makeInput(static_cast<std::size_t>(state.range(0))));
  CTNParsedBlockPtrArray blocks(nullptr);
  for (auto _ : state) {
    if (!Apply(*document, text, blocks)) {
      state.SkipWithError("the template cannot be applied");
      return;
    }
  }
  state.SetBytesProcessed(state.iterations() * std::int64_t{text->Size()});
  CountMemory(state, *blocks.GetResult());
}
BENCHMARK_CAPTURE(Match, placement, PlacementTemplate, MakePlacementList)
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Match, bom, BillOfMaterialsTemplate, MakeBillOfMaterials)
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Match, hostile, HostileTemplate, MakePlacementList)
    ->Arg(100'000)
    ->Arg(400'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Match, longLine, PlacementTemplate, MakeLongLine)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Match, emptyLines, PlacementTemplate, MakeEmptyLines)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Match, swallow, SwallowTemplate, MakeMarkedList)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Match, repetition, RepetitionTemplate, MakeWordLines)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Match, endlessRepetition, EndlessRepetitionTemplate, MakeWordLines)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

// ------------------------------------------------------------------------------- plain matcher

/// Cuts a text into blocks with the match functions of the records themselves: what matching costs
/// when nothing is compiled.
class PlainScan {
 public:
  explicit PlainScan(const CTNParserTemplate& document) {
    for (const auto* list : {&document.GetAuxiliaryRecords(), &document.GetEntityRecords()}) {
      for (const auto& record : *list)
        if (record->GetType() != RecordKind::SubRecord) m_order.push_back(record.get());
    }
  }

  /// The number of blocks.
  std::size_t Run(CTNStringCharBuffIter& text) {
    for (CTNTemplateRecord* record : m_order)
      record->SetSingleMatchBlock(nullptr);
    std::size_t blocks = 0;
    for (; text.GetPosition() < text.GetEnd(); ++blocks) {
      if (!TakeBlock(text)) text.ReadLine(m_line);
    }
    return blocks;
  }

 private:
  bool TakeBlock(CTNStringCharBuffIter& text) {
    const std::uint32_t start = text.GetPosition();
    const auto block = std::make_shared<CTNParsedFileBlock>(nullptr);
    for (CTNTemplateRecord* record : m_order) {
      if (record->GetSingleMatchBlock() != nullptr) continue;
      block->Reset();
      if (record->Match(text, block.get(), m_error, KeepValues::No)) {
        if (record->IsSingleMatch()) record->SetSingleMatchBlock(block);
        return true;
      }
      text.SetPosition(start);
    }
    return false;
  }

  std::vector<CTNTemplateRecord*> m_order;
  std::string m_error;
  std::string m_line;
};

void MatchPlainly(benchmark::State& state, TemplateMaker makeTemplate, Maker makeInput) {
  const auto document = Load(makeTemplate());
  if (!document) {
    state.SkipWithError("the template is invalid");
    return;
  }
  const auto text = CTNInputText::Copy(makeInput(static_cast<std::size_t>(state.range(0))));
  CTNParsedBlockPtrArray compiled(nullptr);
  if (!Apply(*document, text, compiled)) {
    state.SkipWithError("the template cannot be applied");
    return;
  }
  PlainScan scan(*document);
  for (auto _ : state) {
    CTNStringCharBuffIter cursor(text);
    if (scan.Run(cursor) != compiled.GetSize()) {
      state.SkipWithError("the compiled template makes other blocks");
      return;
    }
  }
  state.SetBytesProcessed(state.iterations() * std::int64_t{text->Size()});
}
BENCHMARK_CAPTURE(MatchPlainly, placement, PlacementTemplate, MakePlacementList)
    ->Arg(kSmall)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MatchPlainly, bom, BillOfMaterialsTemplate, MakeBillOfMaterials)
    ->Arg(kSmall)
    ->Unit(benchmark::kMillisecond);

// ------------------------------------------------------------------------------------- loading

void LoadTemplate(benchmark::State& state) {
  const std::string xml = TemplateOfRecords(static_cast<std::size_t>(state.range(0)));
  if (!Load(xml)) {
    state.SkipWithError("the template is invalid");
    return;
  }
  CTNParserTemplate document(nullptr);
  for (auto _ : state) {
    document.Init();
    benchmark::DoNotOptimize(document.LoadFromXml(xml));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(xml.size()));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(LoadTemplate)->Arg(10)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bomparser::bench
