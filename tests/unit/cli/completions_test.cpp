#include "cli/Command.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace bomparser {
namespace {

using Names = std::set<std::string>;

constexpr const char* kDialog = "";

std::string Source(const std::string& name) {
  const std::string path = std::string(BOMPARSER_SOURCE_DIR) + "/src/cli/" + name;
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// The options that the program takes, by their long names where they have one.
Names OptionsOf(const std::string& command) {
  CLI::App app;
  Options options;
  DescribeCommandLine(app, options);
  const CLI::App* described = command.empty() ? &app : app.get_subcommand(command);
  Names names;
  for (const CLI::Option* option : described->get_options()) {
    if (option->get_positional()) continue;
    const std::string name = option->get_name();
    const std::size_t comma = name.find(',');
    names.insert(comma == std::string::npos ? name : name.substr(comma + 1));
  }
  return names;
}

/// All that the first group of the pattern finds.
Names Found(const std::string& text, const std::string& pattern) {
  const std::regex regex(pattern);
  Names names;
  for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at)
    names.insert((*at)[1].str());
  return names;
}

/// The text from behind `start` to `end`.
std::string Between(const std::string& text, const std::string& start, const std::string& end) {
  const std::size_t from = text.find(start);
  EXPECT_NE(from, std::string::npos) << start;
  if (from == std::string::npos) return {};
  return text.substr(from + start.size(), text.find(end, from) - from - start.size());
}

class CompletionsTest : public testing::TestWithParam<std::string> {};

TEST_P(CompletionsTest, BashNamesEveryOption) {
  const std::string command = GetParam().empty() ? "*" : GetParam();
  const std::string line =
      Between(Source("completions/bomparser.bash"), "    " + command + ")", "\n");
  EXPECT_EQ(Found(line, "(--?[a-z-]+)"), OptionsOf(GetParam()));
}

TEST_P(CompletionsTest, ZshNamesEveryOption) {
  const std::string command = GetParam().empty() ? "*" : GetParam();
  const std::string part =
      Between(Source("completions/_bomparser"), "    " + command + ")\n", ";;");
  EXPECT_EQ(Found(part, "'(--?[a-z-]+)\\["), OptionsOf(GetParam()));
}

TEST_P(CompletionsTest, FishNamesEveryOption) {
  const std::string condition = GetParam().empty()
                                    ? "__fish_use_subcommand"
                                    : "'__fish_seen_subcommand_from " + GetParam() + "'";
  const std::string text = Source("completions/bomparser.fish");
  Names names;
  for (const std::string& name : Found(text, "-n " + condition + " -l ([a-z-]+)"))
    names.insert("--" + name);
  for (const std::string& name : Found(text, "-n " + condition + " -s ([a-z])"))
    names.insert("-" + name);
  EXPECT_EQ(names, OptionsOf(GetParam()));
}

TEST_P(CompletionsTest, TheManualNamesEveryOption) {
  std::string manual = std::regex_replace(Source("bomparser.1"), std::regex("\\\\-"), "-");
  const std::string synopsis = Between(manual, ".SH SYNOPSIS", ".SH DESCRIPTION");
  const std::string start =
      GetParam().empty() ? "\n.B bomparser\n" : "\n.B bomparser " + GetParam();
  Names options = OptionsOf(GetParam());
  options.erase("--help");
  options.erase("--version");
  EXPECT_EQ(Found(Between(synopsis, start, "\n.br"), "(--?[a-z]+[a-z-]*)"), options);
}

std::string CaseName(const testing::TestParamInfo<std::string>& info) {
  return info.param == kDialog ? "dialog" : info.param;
}

INSTANTIATE_TEST_SUITE_P(Commands, CompletionsTest,
                         testing::Values(kDialog, "apply", "find", "show", "check", "learn"),
                         CaseName);

}  // namespace
}  // namespace bomparser
