#pragma once

#include "input/CTNParsedFileBlockElement.h"
#include "input/CTNParsedLayout.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace bomparser {

/// The path that stands for standard input, output or error.
constexpr std::string_view kStandardStreamPath = "-";

/// Far beyond what anybody can look at; a line of nothing but tabs grows that many times.
constexpr std::int32_t kLargestTabStop = 1000;

/// Lines of a file from 1, both ends included.
struct LineRange {
  std::uint64_t first = 1;
  std::uint64_t last = UINT64_MAX;
  bool operator==(const LineRange&) const = default;
};

/// Whether shown rows are coloured: as it suits the terminal, or as the user says.
enum class ColourUse { Auto, Always, Never };

/// Which kinds of block are shown, in the order of BlockKind.
using ShownKinds = std::array<bool, kBlockKindCount>;

/// What the command line says, of all commands together: each fills what it has.
struct Options {
  std::optional<std::string> dialogTemplate;
  std::optional<std::string> dialogInput;
  std::optional<std::string> templateFile;
  std::optional<std::string> output;
  std::optional<std::string> statsFile;
  std::string searchFolder;
  std::vector<std::string> inputs;  // Input files, or the templates to check.
  bool keepGoing = false;
  bool sideCopy = false;
  std::int32_t threads = 0;  // 0: as many as there are cores.
  Markup markup = Markup::Off;
  Newlines newlines = Newlines::Hidden;
  std::int32_t tabStop = 8;
  ShownKinds kinds = {true, true, true, true};
  ColourUse colour = ColourUse::Auto;
  LineRange lines;
  bool auxiliary = false;
};

// The options of each command.
void AddDialogOptions(CLI::App& app, Options& options);
void AddApplyOptions(CLI::App& app, Options& options);
void AddFindOptions(CLI::App& app, Options& options);
void AddShowOptions(CLI::App& app, Options& options);
void AddCheckOptions(CLI::App& app, Options& options);
void AddLearnOptions(CLI::App& app, Options& options);

/// The parser of the command line takes some arguments for what a file's name is not: "[a]" for a
/// list, "++" for the end of a command. These, and all arguments behind "--", are marked as names;
/// every other one is as it was. The "--" is left out.
std::vector<std::string> GuardArguments(const std::vector<std::string>& arguments);
std::string UnguardArgument(const std::string& argument);

// What single options do not show by themselves. The text says what is wrong; empty: nothing.
std::string FindApplyFault(const Options& options);
std::string FindFindFault(const Options& options);

// The forms of option values. False leaves the value as it was.

/// A whole number of 1 or more, digits only. One that is too large for the type is the largest.
bool ReadCount(std::string_view text, std::int32_t& count);
/// The same up to kLargestTabStop.
bool ReadTabStop(std::string_view text, std::int32_t& tabStop);
/// "A-B", or "N" for one line.
bool ReadLineRange(std::string_view text, LineRange& lines);
/// Names of kinds, comma between them.
bool ReadKinds(std::string_view text, ShownKinds& kinds);
/// "auto", "always" or "never".
bool ReadColourUse(std::string_view text, ColourUse& colour);

}  // namespace bomparser
