// What users wait for: a whole run, an edit, the entity list, Find Template, the rows of a view.

#include "bench/Inputs.h"
#include "bench/TemporaryFiles.h"
#include "entry/CTNFileParserEngine.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fmt/format.h>
#include <fstream>
#include <memory>
#include <ratio>
#include <string>
#include <string_view>
#include <vector>

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

/// Whether the event loop comes to rest between two edits.
enum class Between { Nothing, Idle };

/// An application again after an edit, and beside it matching alone: a text that is in memory,
/// through the compiled template, to blocks and elements.
class Reapplication {
 public:
  bool Open(TemplateMaker makeTemplate, Maker makeInput, std::int64_t inputSize) {
    if (!m_setting.Open(makeTemplate, makeInput, inputSize)) return false;
    m_engine.SetSideCopy(SideCopy::Yes);
    m_engine.GetTemplate()->SetKeepCurrentValues(true);
    m_document.SetKeepCurrentValues(false);
    if (m_document.LoadFromXml(makeTemplate()) != kXmlOk || !m_setting.Apply()) return false;
    m_text = CTNInputText::Copy(m_engine.GetInputFile()->GetText().GetText()->View());
    return true;
  }

  /// Both give seconds.
  double Edit() {
    const auto start = Clock::now();
    m_engine.OnTemplateChanged(ChangeKind::Modified, kRecordsModified);
    return Since(start);
  }
  double MatchAlone() {
    m_blocks.RemoveAll();
    CTNStringCharBuffIter cursor(m_text);
    std::string error;
    bool cancelled = false;
    const auto start = Clock::now();
    m_document.BeginApplication(m_text, m_blocks, ResultUse::Kept);
    m_document.ParseFile(cursor, m_blocks, error, cancelled);
    m_document.EndApplication(m_blocks);
    return Since(start);
  }

  bool AreBothDone() {
    const std::size_t blocks = m_setting.GetBlocks().GetSize();
    return !m_engine.AreResultsStale() && blocks > 0 && blocks == m_blocks.GetSize();
  }
  CTNFileParserEngine& GetEngine() { return m_engine; }

 private:
  using Clock = std::chrono::steady_clock;
  static double Since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
  }

  Setting m_setting;
  CTNFileParserEngine& m_engine = m_setting.GetEngine();
  CTNParserTemplate m_document{nullptr};
  std::shared_ptr<const CTNInputText> m_text;
  CTNParsedBlockPtrArray m_blocks{nullptr};
};

double MedianOf(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// What an edit makes the user wait for, and how many times that is of matching alone, in medians.
/// They are measured in turn and in changing order, so that whatever else the machine does meets
/// both.
void Reapply(benchmark::State& state, TemplateMaker makeTemplate, Maker makeInput,
             Between between) {
  Reapplication again;
  if (!again.Open(makeTemplate, makeInput, state.range(0))) {
    state.SkipWithError("the template cannot be applied");
    return;
  }
  std::vector<double> edits;
  std::vector<double> alone;
  bool editFirst = false;
  for (auto _ : state) {
    editFirst = !editFirst;
    if (!editFirst) alone.push_back(again.MatchAlone());
    edits.push_back(again.Edit());
    if (editFirst) alone.push_back(again.MatchAlone());
    state.SetIterationTime(edits.back());
    if (!again.AreBothDone()) {
      state.SkipWithError("the template is not applied again");
      return;
    }
    if (between == Between::Idle) again.GetEngine().WriteOwedSideCopy();
  }
  state.counters["lines"] = again.GetEngine().GetInputFile()->CountLines();
  state.counters["ms_alone"] = MedianOf(alone) * std::milli::den;
  state.counters["over_matching_alone"] = MedianOf(edits) / MedianOf(alone);
}
BENCHMARK_CAPTURE(Reapply, placement, PlacementTemplate, MakePlacementList, Between::Nothing)
    ->Arg(kLarge)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Reapply, placementIdle, PlacementTemplate, MakePlacementList, Between::Idle)
    ->Arg(kLarge)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Reapply, bom, BillOfMaterialsTemplate, MakeBillOfMaterials, Between::Nothing)
    ->Arg(kLarge)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Reapply, bomIdle, BillOfMaterialsTemplate, MakeBillOfMaterials, Between::Idle)
    ->Arg(kLarge)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// The most memory that this process has held since ForgetPeak, in KiB; 0 where the system does not
/// tell.
std::int64_t PeakMemory() {
  constexpr std::string_view kName = "VmHWM:";
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(kName)) return std::stoll(line.substr(kName.size()));
  }
  return 0;
}
void ForgetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }

/// An engine that works all day: 1,000 applications, mostly after edits; every tenth time another
/// input and its template. What they leave in memory: the peak of the first tenth, and how much
/// higher that of the whole is.
void ThousandApplications(benchmark::State& state) {
  constexpr int kApplications = 1'000;
  constexpr int kOfOneInput = 10;
  TemporaryFiles files;
  struct Work {
    std::string templatePath;
    std::string inputPath;
  };
  const std::vector<Work> works{
      {files.Write("placement.xml", PlacementTemplate()),
       files.Write("placement.txt", MakePlacementList(kSmall))},
      {files.Write("bom.xml", BillOfMaterialsTemplate()),
       files.Write("bom.txt", MakeBillOfMaterials(kSmall))},
  };
  for (auto _ : state) {
    CTNFileParserEngine engine;
    ForgetPeak();
    std::int64_t early = 0;
    for (int i = 0; i < kApplications; ++i) {
      if (i % kOfOneInput == 0) {
        const Work& work = works[static_cast<std::size_t>(i / kOfOneInput) % works.size()];
        std::string error;
        bool cancelled = false;
        if (!engine.LoadTemplate(work.templatePath) ||
            !engine.OpenInputFile(work.inputPath, error) ||
            !engine.ApplyTemplate(error, cancelled, ShowProgress::No)) {
          state.SkipWithError("the template cannot be applied");
          return;
        }
      } else {
        engine.OnTemplateChanged(ChangeKind::Modified, kRecordsModified);
        if (i % 2 == 0) engine.WriteOwedSideCopy();
      }
      if (i == kApplications / kOfOneInput) early = PeakMemory();
    }
    state.counters["peak_kib"] = static_cast<double>(early);
    state.counters["growth_kib"] = static_cast<double>(PeakMemory() - early);
  }
  state.SetItemsProcessed(state.iterations() * kApplications);
}
BENCHMARK(ThousandApplications)->Iterations(1)->Unit(benchmark::kMillisecond);

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

/// A folder of templates to choose from.
class TemplateFolder {
 public:
  explicit TemplateFolder(std::size_t count) {
    for (const std::string& text : TemplatesToChooseFrom(count))
      m_paths.push_back(m_files.Write(fmt::format("{:04}.xml", m_paths.size()), text));
  }
  std::string GetFolder() { return m_files.GetFolder(); }
  const std::string& GetChoice() const { return m_paths[ChoiceOf(m_paths.size())]; }

  /// The seconds that it takes to load all of them.
  double TimeLoading(CTNFileParserEngine& engine) const {
    const auto begin = std::chrono::steady_clock::now();
    for (const std::string& path : m_paths)
      engine.LoadTemplate(path);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  }

 private:
  TemporaryFiles m_files;
  std::vector<std::string> m_paths;
};

/// Items are templates; every template reads the whole input. `over_loading`: the time over that
/// of loading the templates alone.
void FindTemplate(benchmark::State& state) {
  Setting setting;
  if (!setting.Open(PlacementTemplate, MakePlacementList, state.range(0))) {
    state.SkipWithError("the files cannot be opened");
    return;
  }
  const auto count = static_cast<std::size_t>(state.range(1));
  TemplateFolder folder(count);
  CTNFileParserEngine& engine = setting.GetEngine();
  engine.SetTemplateSearchPath(folder.GetFolder());
  double loading = 0.0;
  double finding = 0.0;
  for (auto _ : state) {
    state.PauseTiming();
    loading += folder.TimeLoading(engine);
    const auto begin = std::chrono::steady_clock::now();
    state.ResumeTiming();
    std::string error;
    bool cancelled = false;
    if (!engine.FindTemplate(error, cancelled, ShowProgress::No) ||
        engine.GetTemplate()->GetFilePath() != folder.GetChoice()) {
      state.SkipWithError("the right template is not found");
      return;
    }
    finding += std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  }
  state.counters["over_loading"] = finding / loading;
  state.SetItemsProcessed(state.iterations() * state.range(1));
  state.SetBytesProcessed(state.items_processed() * setting.GetInputSize());
}
BENCHMARK(FindTemplate)
    ->Args({100'000, 50})
    ->Args({kSmall, 50})
    ->Args({kSmall, 1000})
    ->Args({kLarge, 50})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bomparser::bench
