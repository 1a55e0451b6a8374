// What users wait for: a whole run, the entity list, Find Template, the rows of a view.

#include "bench/Inputs.h"
#include "bench/TemporaryFiles.h"
#include "entry/CTNFileParserEngine.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <fmt/format.h>
#include <string>
#include <string_view>

namespace bomparser::bench {
namespace {

using Maker = std::string (*)(std::size_t);
using TemplateMaker = std::string (*)();

constexpr std::int64_t kSmall = 1'000'000;
constexpr std::int64_t kLarge = 10'000'000;

/// An engine with a template and an input file.
class Setting {
 public:
  /// `inputSize` as the maker takes it.
  bool Open(TemplateMaker makeTemplate, Maker makeInput, std::int64_t inputSize) {
    const std::string input = makeInput(static_cast<std::size_t>(inputSize));
    m_inputSize = static_cast<std::int64_t>(input.size());
    m_inputPath = m_files.Write("input.txt", input);
    m_engine.SetSideCopy(SideCopy::No);
    m_engine.GetTemplate()->SetKeepCurrentValues(false);
    return m_engine.LoadTemplate(m_files.Write("template.xml", makeTemplate())) && OpenInput();
  }

  bool OpenInput() { return m_engine.OpenInputFile(m_inputPath, m_error); }
  bool Apply() {
    bool cancelled = false;
    return m_engine.ApplyTemplate(m_error, cancelled, ShowProgress::No);
  }
  /// Writes the list to nowhere; its length.
  std::int64_t WriteList() const {
    std::int64_t length = 0;
    std::string error;
    const auto count = [&length](std::string_view piece) {
      benchmark::DoNotOptimize(piece.data());
      length += static_cast<std::int64_t>(piece.size());
      return true;
    };
    m_engine.WriteEntityList(count, error);
    return length;
  }

  CTNFileParserEngine& GetEngine() { return m_engine; }
  const CTNParsedBlockPtrArray& GetBlocks() { return m_engine.GetInputFile()->GetBlocks(); }
  std::int64_t GetInputSize() const { return m_inputSize; }

 private:
  TemporaryFiles m_files;
  CTNFileParserEngine m_engine;
  std::string m_inputPath;
  std::int64_t m_inputSize = 0;
  std::string m_error;
};

/// Open, apply and write, in bytes of input.
void Run(benchmark::State& state, TemplateMaker makeTemplate, Maker makeInput) {
  Setting setting;
  if (!setting.Open(makeTemplate, makeInput, state.range(0))) {
    state.SkipWithError("the files cannot be opened");
    return;
  }
  for (auto _ : state) {
    if (!setting.OpenInput() || !setting.Apply()) {
      state.SkipWithError("the template cannot be applied");
      return;
    }
    benchmark::DoNotOptimize(setting.WriteList());
  }
  state.SetBytesProcessed(state.iterations() * setting.GetInputSize());
}
BENCHMARK_CAPTURE(Run, placement, PlacementTemplate, MakePlacementList)
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Run, bom, BillOfMaterialsTemplate, MakeBillOfMaterials)
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Run, longLine, PlacementTemplate, MakeLongLine)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Run, emptyLines, PlacementTemplate, MakeEmptyLines)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

/// In bytes of the list, which is several times as long as the input.
void WriteEntityList(benchmark::State& state, TemplateMaker makeTemplate, Maker makeInput) {
  Setting setting;
  if (!setting.Open(makeTemplate, makeInput, state.range(0)) || !setting.Apply()) {
    state.SkipWithError("the template cannot be applied");
    return;
  }
  std::int64_t length = 0;
  for (auto _ : state)
    length = setting.WriteList();
  state.SetBytesProcessed(state.iterations() * length);
  state.counters["list_over_input"] =
      static_cast<double>(length) / static_cast<double>(setting.GetInputSize());
}
BENCHMARK_CAPTURE(WriteEntityList, placement, PlacementTemplate, MakePlacementList)
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WriteEntityList, bom, BillOfMaterialsTemplate, MakeBillOfMaterials)
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->Unit(benchmark::kMillisecond);

/// As a list control asks: row by row, all of the file.
void ShowRows(benchmark::State& state, Markup markup, Newlines newlines) {
  Setting setting;
  if (!setting.Open(PlacementTemplate, MakePlacementList, kSmall) || !setting.Apply()) {
    state.SkipWithError("the template cannot be applied");
    return;
  }
  const CTNParsedBlockPtrArray& blocks = setting.GetBlocks();
  std::string text;
  std::int64_t rows = 0;
  for (auto _ : state) {
    for (std::size_t i = 0; i < blocks.GetSize(); ++i) {
      const CTNParsedFileBlock block = blocks.GetAt(i);
      const std::size_t count = block.GetRowCount();
      for (std::size_t row = 0; row < count; ++row) {
        block.GetRowText(text, row, markup, newlines);
        benchmark::DoNotOptimize(text.data());
      }
      rows += static_cast<std::int64_t>(count);
    }
  }
  state.SetBytesProcessed(state.iterations() * setting.GetInputSize());
  state.SetItemsProcessed(rows);
}
BENCHMARK_CAPTURE(ShowRows, text, Markup::Off, Newlines::Hidden)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ShowRows, markup, Markup::On, Newlines::Shown)->Unit(benchmark::kMillisecond);

/// Items are templates; every template reads the whole input.
void FindTemplate(benchmark::State& state) {
  constexpr std::size_t kTemplates = 50;
  Setting setting;
  if (!setting.Open(PlacementTemplate, MakePlacementList, state.range(0))) {
    state.SkipWithError("the files cannot be opened");
    return;
  }
  TemporaryFiles folder;
  std::size_t number = 0;
  for (const std::string& text : TemplatesToChooseFrom(kTemplates))
    folder.Write(fmt::format("{:03}.xml", number++), text);
  CTNFileParserEngine& engine = setting.GetEngine();
  engine.SetTemplateSearchPath(folder.GetFolder());
  const std::string wanted = fmt::format("{}/{:03}.xml", folder.GetFolder(), ChoiceOf(kTemplates));
  for (auto _ : state) {
    std::string error;
    bool cancelled = false;
    if (!engine.FindTemplate(error, cancelled, ShowProgress::No) ||
        engine.GetTemplate()->GetFilePath() != wanted) {
      state.SkipWithError("the right template is not found");
      return;
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTemplates));
  state.SetBytesProcessed(state.items_processed() * setting.GetInputSize());
}
BENCHMARK(FindTemplate)->Arg(100'000)->Arg(kSmall)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bomparser::bench
