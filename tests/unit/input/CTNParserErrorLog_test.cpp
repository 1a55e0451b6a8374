#include "input/CTNParserErrorLog.h"

#include "tests/support/FailingMemory.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

namespace bomparser {
namespace {

using test::FailsAfter;
using test::ForEveryAllocation;
using Lines = std::vector<std::string>;

constexpr char kLong[] = "a line that is too long to be kept without memory";

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

// ------------------------------------------------------------------------------- out of memory

TEST(CTNParserError, ALineForWhichThereIsNoMemoryIsRefusedAndTheOthersStay) {
  const std::int64_t failures = ForEveryAllocation([](std::int64_t granted) {
    CTNParserError error = ErrorOf({"before"});
    bool added = false;
    const bool failed = FailsAfter(granted, [&] { added = error.AddLine(kLong); });
    EXPECT_EQ(added, !failed);
    EXPECT_EQ(error.GetLines(), failed ? Lines{"before"} : (Lines{"before", kLong}));
    return failed;
  });
  EXPECT_GT(failures, 0);
}

TEST(CTNParserErrorLog, AnErrorForWhichThereIsNoMemoryIsRefusedAndTheOthersStay) {
  const CTNParserError error = ErrorOf({kLong, kLong});
  const std::int64_t failures = ForEveryAllocation([&error](std::int64_t granted) {
    CTNTemplateErrorLog log;
    log.AddMessage("before");
    std::int32_t index = 0;
    const bool failed = FailsAfter(granted, [&] { index = log.AddError(error); });
    EXPECT_EQ(index, failed ? -1 : 1);
    EXPECT_EQ(log.GetAllLines(), failed ? Lines{"before"} : (Lines{"before", kLong, kLong}));
    return failed;
  });
  EXPECT_GT(failures, 0);
}

TEST(CTNParserErrorLog, AMessageForWhichThereIsNoMemoryIsRefusedAndTheOthersStay) {
  const std::int64_t failures = ForEveryAllocation([](std::int64_t granted) {
    CTNTemplateErrorLog log;
    log.AddMessage("before");
    bool added = false;
    const bool failed = FailsAfter(granted, [&] { added = log.AddMessage(kLong); });
    EXPECT_EQ(added, !failed);
    EXPECT_EQ(log.GetAllLines(), failed ? Lines{"before"} : (Lines{"before", kLong}));
    return failed;
  });
  EXPECT_GT(failures, 0);
}

TEST(CTNParserErrorLog, WithoutMemoryForAllLinesThereAreNone) {
  CTNTemplateErrorLog log;
  log.AddError(ErrorOf({kLong, "short"}));
  log.AddMessage(kLong);
  const std::int64_t failures = ForEveryAllocation([&log](std::int64_t granted) {
    Lines lines;
    const bool failed = FailsAfter(granted, [&] { lines = log.GetAllLines(); });
    EXPECT_EQ(lines, failed ? Lines() : (Lines{kLong, "short", kLong}));
    return failed;
  });
  EXPECT_GT(failures, 0);
  EXPECT_EQ(log.GetAllLines(), (Lines{kLong, "short", kLong}));
}

}  // namespace
}  // namespace bomparser
