#include "ui/views/LineSet.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace bomparser::test {
namespace {

using Lines = std::vector<std::uint32_t>;

Lines AllOf(const LineSet& set) {
  Lines lines;
  for (std::uint32_t i = 0; i < set.GetCount(); ++i)
    lines.push_back(set.GetLine(i));
  return lines;
}

LineSet SetOf(const Lines& lines) {
  LineSet set;
  for (const std::uint32_t line : lines)
    set.Add(line);
  return set;
}

TEST(LineSet, AtFirstItIsEmpty) {
  const LineSet set;
  EXPECT_EQ(set.GetCount(), 0U);
  EXPECT_EQ(set.CountBelow(0), 0U);
  EXPECT_EQ(set.CountBelow(1'000'000), 0U);
}

TEST(LineSet, GivesItsLinesInOrderAcrossWideGaps) {
  const Lines lines = {0, 1, 63, 64, 511, 512, 513, 100'000, 5'000'000};
  EXPECT_EQ(AllOf(SetOf(lines)), lines);
}

TEST(LineSet, CountsTheLinesBelowAnyOther) {
  const LineSet set = SetOf({3, 64, 600, 700});
  EXPECT_EQ(set.CountBelow(3), 0U);
  EXPECT_EQ(set.CountBelow(4), 1U);
  EXPECT_EQ(set.CountBelow(64), 1U);
  EXPECT_EQ(set.CountBelow(65), 2U);
  EXPECT_EQ(set.CountBelow(599), 2U);
  EXPECT_EQ(set.CountBelow(601), 3U);
  EXPECT_EQ(set.CountBelow(700), 3U);
  EXPECT_EQ(set.CountBelow(701), 4U);
  EXPECT_EQ(set.CountBelow(0xFFFFFFFF), 4U);
}

TEST(LineSet, RandomSetsAnswerAsAListDoes) {
  std::mt19937 random(7);
  for (const std::uint32_t most : {2U, 40U, 3000U}) {
    Lines lines;
    std::uint32_t line = 0;
    for (int i = 0; i < 2000; ++i) {
      line += 1 + static_cast<std::uint32_t>(random() % most);
      lines.push_back(line);
    }
    const LineSet set = SetOf(lines);
    ASSERT_EQ(AllOf(set), lines);
    for (std::uint32_t i = 0; i < lines.size(); ++i) {
      ASSERT_EQ(set.CountBelow(lines[i]), i);
      ASSERT_EQ(set.CountBelow(lines[i] + 1), i + 1);
    }
  }
}

}  // namespace
}  // namespace bomparser::test
