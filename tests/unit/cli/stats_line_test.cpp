#include "cli/StatsLine.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>
#include <string>

namespace bomparser {
namespace {

using namespace std::string_literals;

constexpr ApplicationStats kStats = {.totalLines = 20,
                                     .ignoredLines = 4,
                                     .unmatchedLines = 5,
                                     .totalBlocks = 12,
                                     .ignoredBlocks = 3,
                                     .unmatchedBlocks = 4,
                                     .entityBlocks = 2};

/// The input's name as the line has it.
std::string NameIn(const std::string& input) {
  const std::string line = StatsLine(input, {});
  const std::string start = "{\"input\":";
  return line.substr(start.size(), line.find(",\"total_lines\"") - start.size());
}

TEST(StatsLine, HasItsKeysInOrderAndIgnoredBlocksAmongTheMatchedOnes) {
  EXPECT_EQ(StatsLine("a.txt", kStats),
            "{\"input\":\"a.txt\",\"total_lines\":20,\"parseable_lines\":16,\"matched_lines\":11,"
            "\"unmatched_lines\":5,\"total_blocks\":12,\"ignored_blocks\":3,\"unmatched_blocks\":4,"
            "\"matched_blocks\":8,\"entity_blocks\":2,\"auxiliary_blocks\":6,"
            "\"match_percent\":88.89}\n");
}

TEST(StatsLine, ThePercentageHasTwoDecimalsAlways) {
  ApplicationStats stats;
  EXPECT_NE(StatsLine("", stats).find("\"match_percent\":0.00}\n"), std::string::npos);
  stats.totalBlocks = 8;
  EXPECT_NE(StatsLine("", stats).find("\"match_percent\":100.00}\n"), std::string::npos);
  stats.unmatchedBlocks = 7;
  EXPECT_NE(StatsLine("", stats).find("\"match_percent\":12.50}\n"), std::string::npos);
}

TEST(StatsLine, EscapesWhatJsonDoesNotTake) {
  EXPECT_EQ(NameIn("plain ~ /"), "\"plain ~ /\"");
  EXPECT_EQ(NameIn("q\"b\\"), R"("q\"b\\")");
  EXPECT_EQ(NameIn("\n\t\x1F\0z"s), R"("\u000a\u0009\u001f\u0000z")");
}

TEST(StatsLine, BytesThatAreNoUtf8BecomeTheCharactersOfTheirNumber) {
  EXPECT_EQ(NameIn("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"),
            "\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\"");
  EXPECT_EQ(NameIn("\xE9"), R"("\u00e9")");
  EXPECT_EQ(NameIn("\xC3"
                   "A\xE2\x82"),
            R"("\u00c3A\u00e2\u0082")");
  EXPECT_EQ(NameIn("\xFF\xC3\xA9"), "\"\\u00ff\xC3\xA9\"");
}

class StatsReportTest : public TestFolder {};

TEST_F(StatsReportTest, AFileGetsAllLinesInTheEnd) {
  StatsReport report(PathOf("counts"));
  report.Add("a", kStats);
  report.Add("b", {});
  EXPECT_EQ(Names(), std::vector<std::string>{});
  std::string error;
  EXPECT_TRUE(report.Finish(error)) << error;
  EXPECT_EQ(BytesOf("counts"), StatsLine("a", kStats) + StatsLine("b", {}));
}

TEST_F(StatsReportTest, WithoutALineThereIsNoFile) {
  std::string error;
  EXPECT_TRUE(StatsReport(PathOf("counts")).Finish(error)) << error;
  StatsReport nowhere(std::nullopt);
  nowhere.Add("a", kStats);
  EXPECT_TRUE(nowhere.Finish(error)) << error;
  EXPECT_EQ(Names(), std::vector<std::string>{});
}

TEST_F(StatsReportTest, SaysThatTheFileCannotBeWritten) {
  StatsReport report(PathOf("no/counts"));
  report.Add("a", kStats);
  std::string error;
  EXPECT_FALSE(report.Finish(error));
  EXPECT_EQ(error, "cannot write " + PathOf("no/counts") + ": No such file or directory");
}

}  // namespace
}  // namespace bomparser
