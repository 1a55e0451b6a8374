#include "cli/Options.h"

#include "cli/Command.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace bomparser {
namespace {

using Arguments = std::vector<std::string>;

/// What is refused as "2 TEXT", anything else that is not run as its status, else "run NAME".
std::string Outcome(const Arguments& arguments) {
  const ParsedCommandLine parsed = ParseCommandLine(arguments);
  if (!parsed.run) return std::to_string(static_cast<int>(parsed.status)) + ' ' + parsed.message;
  return std::string("run ") + (parsed.command != nullptr ? parsed.command->name : "dialog");
}

Options Parsed(const Arguments& arguments) {
  EXPECT_EQ(Outcome(arguments).substr(0, 4), "run ") << Outcome(arguments);
  return ParseCommandLine(arguments).options;
}

/// "A-B" of the range, or "none".
std::string Range(const std::string& text) {
  LineRange lines;
  if (!ReadLineRange(text, lines)) return lines == LineRange() ? "none" : "changed";
  return std::to_string(lines.first) + '-' + std::to_string(lines.last);
}

/// A letter for every kind that is shown, or "none".
std::string Kinds(const std::string& text) {
  ShownKinds kinds = {true, true, true, true};
  if (!ReadKinds(text, kinds))
    return kinds == ShownKinds{true, true, true, true} ? "none" : "changed";
  std::string letters;
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    if (kinds[i]) letters += "eaui"[i];
  }
  return letters;
}

std::string Count(const std::string& text) {
  std::int32_t count = -7;
  return ReadCount(text, count) ? std::to_string(count) : count == -7 ? "none" : "changed";
}

TEST(LineRange, IsTwoNumbersOrOne) {
  EXPECT_EQ(Range("3-5"), "3-5");
  EXPECT_EQ(Range("7-7"), "7-7");
  EXPECT_EQ(Range("12"), "12-12");
  EXPECT_EQ(Range("1-18446744073709551615"), "1-18446744073709551615");
  EXPECT_EQ(Range("2-18446744073709551616"), "2-18446744073709551615");
}

TEST(LineRange, OtherFormsAreRefused) {
  for (const char* text : {"", "-", "0", "0-3", "3-0", "5-3", "3-", "-3", "1-2-3", "a", "1-b", " 1",
                           "1 - 2", "+1", "1,2"}) {
    EXPECT_EQ(Range(text), "none") << text;
  }
}

TEST(ShownKinds, IsAListOfNamesInAnyOrder) {
  EXPECT_EQ(Kinds("entity"), "e");
  EXPECT_EQ(Kinds("ignored,auxiliary"), "ai");
  EXPECT_EQ(Kinds("unmatched,unmatched"), "u");
  EXPECT_EQ(Kinds("ignored,unmatched,auxiliary,entity"), "eaui");
}

TEST(ShownKinds, OtherFormsAreRefused) {
  for (const char* text : {"", ",", "entity,", ",entity", "Entity", "entity unmatched", "parts"}) {
    EXPECT_EQ(Kinds(text), "none") << text;
  }
}

TEST(Count, IsAWholeNumberOfOneOrMore) {
  EXPECT_EQ(Count("1"), "1");
  EXPECT_EQ(Count("2147483647"), "2147483647");
  EXPECT_EQ(Count("2147483648"), "2147483647");
  EXPECT_EQ(Count("99999999999999999999999"), "2147483647");
  for (const char* text : {"", "0", "-1", "+1", "1.0", "1 ", "x", "-99999999999999999999999"}) {
    EXPECT_EQ(Count(text), "none") << text;
  }
}

TEST(TabStop, IsACountThatFitsOnAScreen) {
  std::int32_t tabStop = 8;
  EXPECT_TRUE(ReadTabStop("1000", tabStop));
  EXPECT_EQ(tabStop, 1000);
  EXPECT_TRUE(ReadTabStop("1", tabStop));
  for (const char* text : {"0", "1001", "99999999999999999999999", "-1", ""}) {
    EXPECT_FALSE(ReadTabStop(text, tabStop)) << text;
  }
  EXPECT_EQ(tabStop, 1);
}

TEST(CommandLine, ApplyTakesItsOptionsInAnyOrder) {
  const Options options = Parsed({"apply", "a", "--stats", "s", "b", "-t", "t", "--keep-going",
                                  "-o", "o", "--threads", "3", "--side-copy"});
  EXPECT_EQ(options.inputs, (Arguments{"a", "b"}));
  EXPECT_EQ(options.templateFile, "t");
  EXPECT_EQ(options.output, "o");
  EXPECT_EQ(options.statsFile, "s");
  EXPECT_EQ(options.threads, 3);
  EXPECT_TRUE(options.keepGoing);
  EXPECT_TRUE(options.sideCopy);
}

TEST(CommandLine, WhatIsNotGivenHasItsDefault) {
  const Options apply = Parsed({"apply", "-t", "t", "a"});
  EXPECT_EQ(apply.output, std::nullopt);
  EXPECT_EQ(apply.statsFile, std::nullopt);
  EXPECT_EQ(apply.threads, 0);
  EXPECT_FALSE(apply.keepGoing);
  EXPECT_FALSE(apply.sideCopy);
  const Options show = Parsed({"show", "-t", "t", "a"});
  EXPECT_EQ(show.markup, Markup::Off);
  EXPECT_EQ(show.newlines, Newlines::Hidden);
  EXPECT_EQ(show.tabStop, 8);
  EXPECT_EQ(show.kinds, (ShownKinds{true, true, true, true}));
  EXPECT_EQ(show.colour, ColourUse::Auto);
  const Options learn = Parsed({"learn", "-o", "o", "a"});
  EXPECT_EQ(learn.templateFile, std::nullopt);
  EXPECT_EQ(learn.lines, LineRange());
  EXPECT_FALSE(learn.auxiliary);
}

TEST(CommandLine, ShowTakesItsOptions) {
  const Options options = Parsed({"show", "-t", "t", "--markup", "--newlines", "--tab-stop", "4",
                                  "--only", "ignored", "--color", "never", "a"});
  EXPECT_EQ(options.markup, Markup::On);
  EXPECT_EQ(options.newlines, Newlines::Shown);
  EXPECT_EQ(options.tabStop, 4);
  EXPECT_EQ(options.kinds, (ShownKinds{false, false, false, true}));
  EXPECT_EQ(options.colour, ColourUse::Never);
}

TEST(CommandLine, NamesInBracketsAndBehindTwoDashesAreNames) {
  const Options options =
      Parsed({"check", "[a,b]", "{}", "%%", "++", "\x01x", "", "--", "-t", "--", "[c]", "check"});
  EXPECT_EQ(options.inputs,
            (Arguments{"[a,b]", "{}", "%%", "++", "\x01x", "", "-t", "--", "[c]", "check"}));
  EXPECT_EQ(Parsed({"apply", "-t", "[t]", "-o", "{o}", "[i]"}).templateFile, "[t]");
  EXPECT_EQ(Parsed({"find", "-s", "[s]", "i"}).searchFolder, "[s]");
  EXPECT_EQ(Parsed({"show", "-t", "t", "-"}).inputs, Arguments{"-"});
}

TEST(CommandLine, ACommandsNameIsAlsoAName) {
  EXPECT_EQ(Parsed({"find", "-s", "apply", "show"}).searchFolder, "apply");
  EXPECT_EQ(Parsed({"check", "--", "apply", "find"}).inputs, (Arguments{"apply", "find"}));
  EXPECT_EQ(Parsed({"--template", "apply"}).dialogTemplate, "apply");
}

TEST(CommandLine, WithoutACommandItIsTheDialog) {
  EXPECT_EQ(Outcome({}), "run dialog");
  const Options options = Parsed({"--template", "t", "--input", "i"});
  EXPECT_EQ(options.dialogTemplate, "t");
  EXPECT_EQ(options.dialogInput, "i");
}

TEST(CommandLine, WhatIsWrongIsSaid) {
  EXPECT_EQ(Outcome({"apply", "-t", "t", "a", "b"}),
            "2 several inputs need -o FOLDER (see bomparser apply --help)");
  EXPECT_EQ(Outcome({"apply", "-t", "t", "-o", "-", "a", "b"}),
            "2 several inputs go to a folder, not to standard output (see bomparser apply --help)");
  EXPECT_EQ(Outcome({"apply", "-t", "t", "-o", "o", "a", "-"}),
            "2 standard input cannot be one of several inputs (see bomparser apply --help)");
  EXPECT_EQ(Outcome({"find", "-s", "s", "-o", "-", "a"}),
            "2 the list needs a file: standard output carries the path of the template "
            "(see bomparser find --help)");
  EXPECT_EQ(Outcome({"show", "-t", "t", "--tab-stop", "0", "a"}),
            "2 --tab-stop: '0' is not a number from 1 to 1000 (see bomparser show --help)");
  EXPECT_EQ(Outcome({"learn", "a"}), "2 -o is required (see bomparser learn --help)");
  EXPECT_EQ(Outcome({"check"}), "2 TEMPLATE is required (see bomparser check --help)");
}

TEST(CommandLine, AnArgumentThatNobodyKnowsIsNamedBeforeOneThatIsMissing) {
  EXPECT_EQ(Outcome({"show", "--bogus", "i", "--worse"}),
            "2 The following arguments were not expected: --bogus --worse "
            "(see bomparser show --help)");
  EXPECT_EQ(Outcome({"show", "-t", "t", "[a]", "[b]"}),
            "2 The following argument was not expected: [b] (see bomparser show --help)");
}

TEST(CommandLine, AnEmptyValueIsNotTheNextArgument) {
  EXPECT_EQ(Outcome({"show", "-t", "t", "--only=", "i"}),
            "2 --only: '' is not a comma list of entity, auxiliary, unmatched and ignored "
            "(see bomparser show --help)");
  EXPECT_EQ(Parsed({"apply", "-t", "t", "--stats=", "i"}).statsFile, "");
  EXPECT_EQ(Parsed({"apply", "-t", "t", "--", "--stats="}).inputs, Arguments{"--stats="});
}

TEST(CommandLine, EveryOtherMistakeIsWrongUsage) {
  const Arguments mistakes[] = {
      {"bogus"},
      {"--bogus"},
      {"apply", "-t", "t"},
      {"apply", "a"},
      {"apply", "-t", "t", "-t", "u", "a"},
      {"apply", "-t", "t", "--keep-going=no", "a"},
      {"apply", "-t", "t", "--version", "a"},
      {"apply", "-t", "t", "a", "--stats"},
      {"find", "-s", "s", "a", "b"},
      {"show", "-t", "t", "a", "b"},
      {"learn", "-o", "o", "a", "b"},
      {"--input", "i", "apply", "-t", "t", "a"},
  };
  for (const Arguments& arguments : mistakes) {
    EXPECT_EQ(Outcome(arguments).substr(0, 2), "2 ") << testing::PrintToString(arguments);
  }
}

TEST(CommandLine, OneInputGoesAnywhere) {
  for (const char* output : {"-", "o"}) {
    EXPECT_EQ(Outcome({"apply", "-t", "t", "-o", output, "-"}), "run apply");
  }
}

TEST(CommandLine, HelpAndVersionAreAnswers) {
  for (const Command& command : GetCommands()) {
    const ParsedCommandLine parsed = ParseCommandLine({command.name, "--help"});
    EXPECT_FALSE(parsed.run);
    EXPECT_EQ(parsed.status, ExitStatus::Done);
    EXPECT_NE(parsed.output.find(std::string("Usage: bomparser ") + command.name),
              std::string::npos);
    EXPECT_EQ(parsed.message, "");
  }
  EXPECT_EQ(ParseCommandLine({"--version"}).output, "bomparser " BOMPARSER_VERSION "\n");
}

}  // namespace
}  // namespace bomparser
