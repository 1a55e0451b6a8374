// What it costs to have the text of a file.

#include "bench/Inputs.h"
#include "bench/TemporaryFiles.h"
#include "input/CTNParserInFile.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <string>

namespace bomparser::bench {
namespace {

constexpr std::int64_t kSmall = 1'000'000;
constexpr std::int64_t kLarge = 10'000'000;

std::string WithCarriageReturns(const std::string& text) {
  std::string out;
  out.reserve(text.size() * 21 / 20);
  for (const char c : text) {
    if (c == '\n') out += '\r';
    out += c;
  }
  return out;
}

/// "Ignore After" other than 0 makes the reader count the lines as well.
void Read(benchmark::State& state, const std::string& text, std::int32_t ignoreAfter) {
  TemporaryFiles files;
  CTNParserInFile input(nullptr);
  std::string error;
  if (!input.Open(files.Write("input.txt", text), error)) {
    state.SkipWithError("the input file cannot be opened");
    return;
  }
  for (auto _ : state) {
    if (!input.ReadText(ignoreAfter, error)) {
      state.SkipWithError("the input file cannot be read");
      return;
    }
    benchmark::DoNotOptimize(input.GetText().GetText()->Data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void ReadFile(benchmark::State& state) {
  Read(state, MakePlacementList(static_cast<std::size_t>(state.range(0))), 0);
}
BENCHMARK(ReadFile)->Arg(kSmall)->Arg(kLarge)->Unit(benchmark::kMillisecond);

void ReadFileOfCrLfLines(benchmark::State& state) {
  const std::string text = MakePlacementList(static_cast<std::size_t>(state.range(0)));
  Read(state, WithCarriageReturns(text), 0);
}
BENCHMARK(ReadFileOfCrLfLines)->Arg(kSmall)->Arg(kLarge)->Unit(benchmark::kMillisecond);

void ReadFileWithoutLastLines(benchmark::State& state) {
  Read(state, MakePlacementList(static_cast<std::size_t>(state.range(0))), -2);
}
BENCHMARK(ReadFileWithoutLastLines)->Arg(kSmall)->Arg(kLarge)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bomparser::bench
