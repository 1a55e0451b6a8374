// Loading template files, beside what nobody can do without: reading their bytes and parsing their
// XML.

#include "bench/Inputs.h"
#include "bench/TemporaryFiles.h"
#include "template/CTNParserTemplate.h"
#include "tnbase/FileBytes.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <fmt/format.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <malloc.h>
#include <string>
#include <vector>

namespace bomparser::bench {
namespace {

/// Template files, and the three ways to read all of them, each of which includes the one before.
class Library {
 public:
  explicit Library(const std::vector<std::string>& templates) {
    for (const std::string& text : templates) {
      m_paths.push_back(m_files.Write(fmt::format("{:05}.xml", m_paths.size()), text));
      m_size += static_cast<std::int64_t>(text.size());
    }
  }

  std::int64_t GetSize() const { return m_size; }
  std::int64_t GetFileCount() const { return static_cast<std::int64_t>(m_paths.size()); }

  bool ReadBytes() {
    return ForEach([this](const std::string& path) { return Read(path); });
  }

  bool ParseXml() {
    return ForEach([this](const std::string& path) {
      if (!Read(path)) return false;
      xmlDoc* const doc =
          xmlReadMemory(m_bytes.data(), static_cast<int>(m_bytes.size()), nullptr, nullptr, 0);
      xmlFreeDoc(doc);
      return doc != nullptr;
    });
  }

  bool Load() {
    return ForEach([this](const std::string& path) {
      return m_template.Init() != 0 && m_template.LoadFromFile(path) == kXmlOk;
    });
  }

  /// Gives back what the last way took: else the next one would pay for putting it in order.
  void Forget() {
    m_template.Init();
    m_bytes = std::string();
    malloc_trim(0);
  }

 private:
  template <class Work>
  bool ForEach(Work work) const {
    bool done = !m_paths.empty();
    for (const std::string& path : m_paths)
      done = done && work(path);
    return done;
  }

  bool Read(const std::string& path) {
    std::string error;
    return ReadFileBytes(path, m_bytes, error, INT32_MAX);
  }

  TemporaryFiles m_files;
  std::vector<std::string> m_paths;
  std::int64_t m_size = 0;
  std::string m_bytes;
  CTNParserTemplate m_template{nullptr};
};

/// Seconds that one way takes; adds to `done` whether it could be done.
double Time(Library& library, bool (Library::*way)(), bool& done) {
  library.Forget();
  const auto start = std::chrono::steady_clock::now();
  done = (library.*way)() && done;
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The three ways take turns, so that a busy machine is busy for all of them. The time is that of
/// loading.
void Load(benchmark::State& state, Library& library) {
  double bytes = 0;
  double xml = 0;
  double load = 0;
  bool done = true;
  for (auto _ : state) {
    bytes += Time(library, &Library::ReadBytes, done);
    xml += Time(library, &Library::ParseXml, done);
    const double loaded = Time(library, &Library::Load, done);
    load += loaded;
    state.SetIterationTime(loaded);
  }
  if (!done) {
    state.SkipWithError("a template cannot be loaded");
    return;
  }
  state.SetBytesProcessed(state.iterations() * library.GetSize());
  state.SetItemsProcessed(state.iterations() * library.GetFileCount());
  state.counters["over_bytes"] = load / bytes;
  state.counters["over_xml"] = load / xml;
}

void LoadLargeTemplate(benchmark::State& state) {
  Library library({TemplateOfRecords(static_cast<std::size_t>(state.range(0)))});
  Load(state, library);
}
BENCHMARK(LoadLargeTemplate)
    ->Arg(1'000)
    ->Arg(10'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void LoadFolder(benchmark::State& state) {
  Library library(TemplatesToChooseFrom(static_cast<std::size_t>(state.range(0))));
  Load(state, library);
}
BENCHMARK(LoadFolder)->Arg(1'000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace bomparser::bench
