#include "cli/Options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <fmt/format.h>
#include <functional>
#include <limits>
#include <system_error>
#include <utility>

namespace bomparser {

namespace {

struct NamedKind {
  std::string_view name;
  BlockKind kind;
};

constexpr NamedKind kKinds[] = {{"entity", BlockKind::Entity},
                                {"auxiliary", BlockKind::Auxiliary},
                                {"unmatched", BlockKind::Unmatched},
                                {"ignored", BlockKind::Ignored}};

struct NamedColourUse {
  std::string_view name;
  ColourUse use;
};

constexpr NamedColourUse kColourUses[] = {
    {"auto", ColourUse::Auto}, {"always", ColourUse::Always}, {"never", ColourUse::Never}};

/// Marks an argument that can only be a name or a value. No name that people give begins with it.
constexpr char kGuard = '\x01';
/// What the parser takes for brackets around a list, for an empty one, or for the end of a command.
constexpr std::string_view kGuardedStarts = "[{%+\x01";

/// A number that is too large for its type is the largest one.
template <class Number>
bool ReadNumber(std::string_view text, Number& number) {
  Number read = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, failure] = std::from_chars(text.data(), end, read);
  if (text.starts_with('-') || stop != end) return false;
  if (failure == std::errc::result_out_of_range) read = std::numeric_limits<Number>::max();
  if (read < 1) return false;
  number = read;
  return true;
}

bool ReadKind(std::string_view name, ShownKinds& kinds) {
  for (const NamedKind& kind : kKinds) {
    if (kind.name != name) continue;
    kinds[static_cast<std::size_t>(kind.kind)] = true;
    return true;
  }
  return false;
}

/// How an option is written: its name, what its value is called, and what it is for.
struct OptionText {
  const char* name;
  const char* value;
  const char* help;
};

CLI::Option* AddText(CLI::App& app, const OptionText& text,
                     std::function<void(const std::string&)> store) {
  const auto unguard = [store = std::move(store)](const std::string& argument) {
    store(UnguardArgument(argument));
  };
  return app.add_option_function<std::string>(text.name, unguard, text.help)->type_name(text.value);
}

/// An option whose value has a form of its own; `read` stores it, or answers false.
template <class Value>
void AddFormed(CLI::App& app, const OptionText& text, Value& value,
               bool (*read)(std::string_view, Value&), const std::string& form) {
  const std::string name = text.name;
  AddText(app, text, [name, form, &value, read](const std::string& argument) {
    if (read(argument, value)) return;
    throw CLI::ValidationError(name, "'" + argument + "' is not " + form);
  });
}

CLI::Option* AddPath(CLI::App& app, const OptionText& text, std::optional<std::string>& path) {
  return AddText(app, text, [&path](const std::string& argument) { path = argument; });
}

void AddFlag(CLI::App& app, const std::string& name, const std::string& help,
             std::function<void()> set) {
  app.add_flag_function(
         name, [set = std::move(set)](std::int64_t) { set(); }, help)
      ->disable_flag_override();
}

void AddInput(CLI::App& app, Options& options) {
  AddText(app, {"INPUT", "", "the file to read; - reads standard input"},
          [&options](const std::string& argument) { options.inputs = {argument}; })
      ->required();
}

void AddPaths(CLI::App& app, const OptionText& text, Options& options) {
  const auto store = [&options](const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments)
      options.inputs.push_back(UnguardArgument(argument));
  };
  app.add_option_function<std::vector<std::string>>(text.name, store, text.help)
      ->required()
      ->type_name(text.value);
}

/// What apply and find have in common.
void AddRunOptions(CLI::App& app, Options& options) {
  AddPath(app,
          {"--stats", "FILE", "write the counts as JSON, a line an input; - is standard error"},
          options.statsFile);
  AddFlag(app, "--side-copy", "also make the copy of the list that the results page shows",
          [&options] { options.sideCopy = true; });
  AddFormed(app, {"--threads", "N", "how many threads may work (default: the cores there are)"},
            options.threads, ReadCount, "a number of 1 or more");
}

}  // namespace

bool ReadCount(std::string_view text, std::int32_t& count) { return ReadNumber(text, count); }

bool ReadTabStop(std::string_view text, std::int32_t& tabStop) {
  std::int32_t read = 0;
  if (!ReadCount(text, read) || read > kLargestTabStop) return false;
  tabStop = read;
  return true;
}

bool ReadLineRange(std::string_view text, LineRange& lines) {
  const std::size_t dash = text.find('-');
  const bool single = dash == std::string_view::npos;
  LineRange read;
  if (!ReadNumber(text.substr(0, dash), read.first)) return false;
  read.last = read.first;
  if (!single && !ReadNumber(text.substr(dash + 1), read.last)) return false;
  if (read.first > read.last) return false;
  lines = read;
  return true;
}

bool ReadKinds(std::string_view text, ShownKinds& kinds) {
  ShownKinds read = {};
  for (std::size_t start = 0; start != std::string_view::npos;) {
    const std::size_t comma = text.find(',', start);
    const bool last = comma == std::string_view::npos;
    if (!ReadKind(text.substr(start, last ? comma : comma - start), read)) return false;
    start = last ? comma : comma + 1;
  }
  kinds = read;
  return true;
}

bool ReadColourUse(std::string_view text, ColourUse& colour) {
  for (const NamedColourUse& use : kColourUses) {
    if (use.name != text) continue;
    colour = use.use;
    return true;
  }
  return false;
}

std::vector<std::string> GuardArguments(const std::vector<std::string>& arguments) {
  std::vector<std::string> guarded;
  bool optionsOver = false;
  for (const std::string& argument : arguments) {
    if (!optionsOver && argument == "--") {
      optionsOver = true;
      continue;
    }
    const bool needed = !argument.empty() && kGuardedStarts.find(argument[0]) != std::string::npos;
    guarded.push_back(optionsOver || needed ? kGuard + argument : argument);
    // The parser would take the next argument for the value that was left out.
    const bool emptyValue = argument.starts_with("--") && argument.ends_with('=');
    if (!optionsOver && emptyValue) guarded.back() += kGuard;
  }
  return guarded;
}

std::string UnguardArgument(const std::string& argument) {
  return argument.starts_with(kGuard) ? argument.substr(1) : argument;
}

void AddDialogOptions(CLI::App& app, Options& options) {
  AddPath(app, {"--template", "FILE", "load this template into the dialog"},
          options.dialogTemplate);
  AddPath(app, {"--input", "FILE", "open this input file in the dialog"}, options.dialogInput);
}

void AddApplyOptions(CLI::App& app, Options& options) {
  AddPath(app, {"-t", "TEMPLATE", "the parser template"}, options.templateFile)->required();
  AddPath(app,
          {"-o", "OUT", "where the list goes, - is standard output; for several inputs the folder"},
          options.output);
  AddRunOptions(app, options);
  AddFlag(app, "--keep-going", "go on with the next input when one fails",
          [&options] { options.keepGoing = true; });
  AddPaths(app, {"INPUT", "", "the files to read; - reads standard input"}, options);
}

void AddFindOptions(CLI::App& app, Options& options) {
  AddText(app, {"-s", "FOLDER", "the folder whose templates are tried"},
          [&options](const std::string& argument) { options.searchFolder = argument; })
      ->required();
  AddPath(app, {"-o", "OUT", "write the entity list of the best template here"}, options.output);
  AddRunOptions(app, options);
  AddInput(app, options);
}

void AddShowOptions(CLI::App& app, Options& options) {
  AddPath(app, {"-t", "TEMPLATE", "the parser template"}, options.templateFile)->required();
  AddFlag(app, "--markup", "name record and field of every piece of text",
          [&options] { options.markup = Markup::On; });
  AddFlag(app, "--newlines", "mark where a line end was matched",
          [&options] { options.newlines = Newlines::Shown; });
  AddFormed(app, {"--tab-stop", "N", "columns from tab stop to tab stop (default: 8)"},
            options.tabStop, ReadTabStop, fmt::format("a number from 1 to {}", kLargestTabStop));
  AddFormed(app,
            {"--only", "KINDS",
             "show these alone: a comma list of entity, auxiliary, unmatched, ignored"},
            options.kinds, ReadKinds, "a comma list of entity, auxiliary, unmatched and ignored");
  AddFormed(app,
            {"--color", "WHEN", "colour by kind: auto, always or never (default: on a terminal)"},
            options.colour, ReadColourUse, "auto, always or never");
  AddInput(app, options);
}

void AddCheckOptions(CLI::App& app, Options& options) {
  AddPaths(app, {"TEMPLATE", "", "the templates to check"}, options);
}

void AddLearnOptions(CLI::App& app, Options& options) {
  AddPath(app, {"-t", "TEMPLATE", "the template to add to (default: an empty one)"},
          options.templateFile);
  AddFormed(app, {"--lines", "A-B", "learn from these lines, both included (default: all)"},
            options.lines, ReadLineRange, "a range of lines such as 3-5");
  AddFlag(app, "--auxiliary", "add an auxiliary record, not an entity record",
          [&options] { options.auxiliary = true; });
  AddPath(app, {"-o", "OUT", "save the template here; - is standard output"}, options.output)
      ->required();
  AddInput(app, options);
}

std::string FindApplyFault(const Options& options) {
  if (options.inputs.size() < 2) return {};
  if (!options.output) return "several inputs need -o FOLDER";
  if (*options.output == kStandardStreamPath) {
    return "several inputs go to a folder, not to standard output";
  }
  for (const std::string& input : options.inputs) {
    if (input == kStandardStreamPath) return "standard input cannot be one of several inputs";
  }
  return {};
}

std::string FindFindFault(const Options& options) {
  if (options.output != kStandardStreamPath) return {};
  return "the list needs a file: standard output carries the path of the template";
}

}  // namespace bomparser
