// Writes the inputs of the benchmarks to files, for the table.

#include "bench/Inputs.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

namespace {

using namespace bomparser::bench;

constexpr char kUsage[] =
    "usage: bench_inputs KIND SIZE FILE TEMPLATE\n"
    "       bench_inputs folder COUNT FOLDER\n"
    "\n"
    "Writes an input file of at least SIZE bytes and the template that reads it, or COUNT "
    "templates\n"
    "to choose from for a placement list. Prints the path of the one to be chosen.\n"
    "KIND: placement bom hostile long-line swallow; of SIZE lines: empty-lines repetition\n"
    "endless-repetition.\n";

struct Kind {
  const char* name;
  std::string (*makeInput)(std::size_t);
  std::string (*makeTemplate)();
};

constexpr Kind kKinds[] = {{"placement", MakePlacementList, PlacementTemplate},
                           {"bom", MakeBillOfMaterials, BillOfMaterialsTemplate},
                           {"hostile", MakePlacementList, HostileTemplate},
                           {"long-line", MakeLongLine, PlacementTemplate},
                           {"empty-lines", MakeEmptyLines, PlacementTemplate},
                           {"swallow", MakeMarkedList, SwallowTemplate},
                           {"repetition", MakeWordLines, RepetitionTemplate},
                           {"endless-repetition", MakeWordLines, EndlessRepetitionTemplate}};

bool Write(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  file.close();
  if (!file) fmt::print(stderr, "bench_inputs: cannot write {}\n", path);
  return static_cast<bool>(file);
}

int WriteFolder(std::size_t count, const std::string& folder) {
  std::error_code failure;
  std::filesystem::create_directories(folder, failure);
  const auto pathOf = [&folder](std::size_t number) {
    return fmt::format("{}/{:03}.xml", folder, number);
  };
  std::size_t number = 0;
  for (const std::string& text : TemplatesToChooseFrom(count)) {
    if (!Write(pathOf(number++), text)) return 1;
  }
  fmt::print("{}\n", pathOf(ChoiceOf(count)));
  return 0;
}

int WriteKind(const Kind& kind, const std::vector<std::string>& arguments, std::size_t size) {
  const bool done =
      Write(arguments[2], kind.makeInput(size)) && Write(arguments[3], kind.makeTemplate());
  return done ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const std::size_t size =
      arguments.size() > 1 ? std::strtoull(arguments[1].c_str(), nullptr, 10) : 0;
  if (arguments.size() == 3 && arguments[0] == "folder") return WriteFolder(size, arguments[2]);
  for (const Kind& kind : kKinds) {
    if (arguments.size() == 4 && arguments[0] == kind.name) return WriteKind(kind, arguments, size);
  }
  std::fputs(kUsage, stderr);
  return 2;
}
