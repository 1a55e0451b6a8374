#include "cli/CheckCommand.h"
#include "cli/LearnCommand.h"
#include "cli/Messages.h"
#include "cli/TargetNames.h"
#include "cli/Terminal.h"
#include "cli/TerminalFrontEnd.h"

#include <gtest/gtest.h>
#include <string>

namespace bomparser {
namespace {

using namespace std::string_literals;

TEST(TargetName, IsTheTitleUpToItsFirstDot) {
  EXPECT_EQ(TargetName("a/b.c/list.old.txt"), "list.xml");
  EXPECT_EQ(TargetName("list"), "list.xml");
  EXPECT_EQ(TargetName(".hidden"), ".xml");
  EXPECT_EQ(TargetName("a b.txt"), "a b.xml");
}

/// "first second" of the places that clash, or "none".
std::string Clash(const std::vector<std::string>& inputs) {
  const TargetClash clash = FindTargetClash(inputs);
  return clash ? std::to_string(clash.first) + ' ' + std::to_string(clash.second) : "none";
}

TEST(TargetClash, IsTheFirstInputWhoseNameIsTaken) {
  EXPECT_EQ(Clash({"a.txt", "b.txt", "x/a", "x/b"}), "0 2");
  EXPECT_EQ(Clash({"a", "b", "b.c"}), "1 2");
  EXPECT_EQ(Clash({"a.txt", "A.txt", "ab"}), "none");
  EXPECT_EQ(Clash({}), "none");
}

TEST(StatusText, IsOneLine) {
  EXPECT_EQ(EscapeStatusText("a\nb\tc\\d"), "a\\nb\\tc\\\\d");
  EXPECT_EQ(EscapeStatusText("plain \r \xFF"), "plain \r \xFF");
  EXPECT_EQ(EscapeStatusText(""), "");
}

TEST(InputFailure, NamesTheInputOnce) {
  EXPECT_EQ(InputFailureText("a.txt", "Operation cancelled"), "a.txt: Operation cancelled");
  EXPECT_EQ(InputFailureText("a.txt", "cannot read a.txt: gone"), "cannot read a.txt: gone");
  EXPECT_EQ(InputFailureText("a", "a is too large"), "a is too large");
  EXPECT_EQ(InputFailureText("a", "cannot do that"), "a: cannot do that");
  EXPECT_EQ(InputFailureText("", "No input file specified"), "No input file specified");
}

/// The sample, and behind a bar how many lines were looked at.
std::string Sample(const std::string& text, const LineRange& lines) {
  const SampleLines sample = TakeSampleLines(text, lines);
  return sample.text + '|' + std::to_string(sample.available);
}

TEST(SampleLines, EachEndsWithALineEnd) {
  EXPECT_EQ(Sample("one\ntwo\nthree", {}), "one\ntwo\nthree\n|3");
  EXPECT_EQ(Sample("one\n\n", {}), "one\n\n|2");
  EXPECT_EQ(Sample("", {}), "|0");
}

TEST(SampleLines, AreThoseOfTheRange) {
  EXPECT_EQ(Sample("1\n2\n3\n4\n", {2, 3}), "2\n3\n|3");
  EXPECT_EQ(Sample("1\n2\n3\n4\n", {4, 9}), "4\n|4");
  EXPECT_EQ(Sample("1\n2\n", {3, 3}), "|2");
}

TEST(SampleLines, TabsAreExpandedAtEightColumnsAsTheViewDoes) {
  EXPECT_EQ(Sample("ab\tc\n\td\n12345678\tx\n", {}), "ab      c\n        d\n12345678x\n|3");
}

TEST(SampleLines, OtherBytesStay) { EXPECT_EQ(Sample("a\0b\r\xFF\n"s, {}), "a\0b\r\xFF\n|1"s); }

TEST(Colours, WhiteAndBlackAreTheTerminalsOwn) {
  EXPECT_EQ(ColourSequence(0xFFFFFF, 0x000000), "");
  EXPECT_EQ(ColourSequence(0xFFFFFF, 0xC0C0C0), "\x1B[38;2;192;192;192m");
  EXPECT_EQ(ColourSequence(0xFFFFB0, 0x000000), "\x1B[48;2;176;255;255m\x1B[38;2;0;0;0m");
}

TEST(Colours, AreNotForFilesUnlessAskedFor) {
  EXPECT_TRUE(UsesColour(ColourUse::Always));
  EXPECT_FALSE(UsesColour(ColourUse::Never));
}

TEST(ProgressBar, FillsUp) {
  const std::string places(40, ' ');
  const std::string half = std::string(20, '#') + std::string(20, ' ');
  EXPECT_EQ(ProgressBarText("Work: ", 0, 10, 80), "Work:   0% [" + places + "]");
  EXPECT_EQ(ProgressBarText("Work: ", 5, 10, 80), "Work:  50% [" + half + "]");
  EXPECT_EQ(ProgressBarText("Work: ", 10, 10, 80), "Work: 100% [" + std::string(40, '#') + "]");
  EXPECT_EQ(ProgressBarText("Work: ", 0, 0, 80), "Work: 100% [" + std::string(40, '#') + "]");
}

TEST(ProgressBar, StaysOnOneRowOfTheTerminal) {
  const std::string caption = "Scanning a_rather_long_name.txt -- Progress: ";
  const std::string bar = ProgressBarText(caption, 1, 2, 80);
  EXPECT_EQ(bar, caption + " 50% [#############              ]");
  EXPECT_EQ(bar.size(), 79U);
  EXPECT_EQ(ProgressBarText(caption, 1, 2, 60), caption + " 50%");
  EXPECT_EQ(ProgressBarText(caption, 1, 2, 20), caption.substr(0, 15) + " 50%");
  EXPECT_EQ(ProgressBarText(caption, 1, 2, 5), " 50%");
  EXPECT_EQ(ProgressBarText(caption, 1, 2, 0), " 50%");
}

}  // namespace
}  // namespace bomparser
