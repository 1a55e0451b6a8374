#include "input/CTNParserErrorLog.h"

#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

namespace bomparser {
namespace {

using Lines = std::vector<std::string>;

CTNParserError ErrorOf(const Lines& lines) {
  CTNParserError error;
  for (const std::string& line : lines)
    error.AddLine(line);
  return error;
}

TEST(CTNParserError, KeepsItsLinesInOrderUntilItIsCleared) {
  CTNParserError error;
  EXPECT_EQ(error.GetContext(), nullptr);
  EXPECT_TRUE(error.AddLine("first"));
  EXPECT_TRUE(error.AddLine(""));
  EXPECT_TRUE(error.AddLine("third"));
  EXPECT_EQ(error.GetLines(), (Lines{"first", "", "third"}));
  EXPECT_TRUE(error.Clear());
  EXPECT_EQ(error.GetLines(), Lines());
}

TEST(CTNParserErrorLog, AnEmptyLogHasNoLinesAndNoName) {
  const CTNTemplateErrorLog log;
  EXPECT_EQ(log.GetAllLines(), Lines());
  EXPECT_EQ(log.GetErrors().size(), 0u);
  EXPECT_EQ(log.GetLogName(), "");
}

TEST(CTNParserErrorLog, AddErrorAppendsACopyAndReturnsItsIndex) {
  CTNInFileErrorLog log;
  CTNParserError error = ErrorOf({"one"});
  EXPECT_EQ(log.AddError(error), 0);
  error.AddLine("added later");
  EXPECT_EQ(log.AddError(ErrorOf({"two"})), 1);
  EXPECT_EQ(log.GetAllLines(), (Lines{"one", "two"}));
}

TEST(CTNParserErrorLog, AnErrorWithTwoLinesGivesTwoConsecutiveRows) {
  CTNTemplateErrorLog log;
  log.AddError(ErrorOf({"a1", "a2"}));
  log.AddError(ErrorOf({}));
  log.AddError(ErrorOf({"b"}));
  EXPECT_EQ(log.GetErrors().size(), 3u);
  EXPECT_EQ(log.GetAllLines(), (Lines{"a1", "a2", "b"}));
}

TEST(CTNParserErrorLog, AMessageThatHoldsALineFeedIsOneRow) {
  CTNTemplateErrorLog log;
  EXPECT_TRUE(log.AddMessage("first part\nsecond part"));
  EXPECT_EQ(log.GetAllLines(), (Lines{"first part\nsecond part"}));
}

TEST(CTNParserErrorLog, EveryMessageIsAnErrorOfOneLine) {
  CTNTemplateErrorLog log;
  log.AddMessage("one");
  log.AddMessage("two");
  ASSERT_EQ(log.GetErrors().size(), 2u);
  EXPECT_EQ(log.GetErrors()[0].GetLines(), Lines{"one"});
  EXPECT_EQ(log.GetErrors()[1].GetLines(), Lines{"two"});
}

TEST(CTNParserErrorLog, ClearingALogAlsoEmptiesItsName) {
  CTNTemplateErrorLog log;
  log.SetLogName("templerrs.log");
  log.AddMessage("one");
  EXPECT_EQ(log.GetLogName(), "templerrs.log");
  log.ClearLog();
  EXPECT_EQ(log.GetLogName(), "");
  EXPECT_EQ(log.GetAllLines(), Lines());
}

TEST(CTNParserErrorLog, EachOwnerHasALogClassOfItsOwn) {
  EXPECT_TRUE((std::is_base_of_v<CTNParserErrorLog, CTNInFileErrorLog>));
  EXPECT_TRUE((std::is_base_of_v<CTNParserErrorLog, CTNTemplateErrorLog>));
  EXPECT_FALSE((std::is_convertible_v<CTNInFileErrorLog*, CTNTemplateErrorLog*>));
}

}  // namespace
}  // namespace bomparser
