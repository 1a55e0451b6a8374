#include "tnbase/NumberText.h"

#include "tests/support/CommaLocale.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace bomparser {
namespace {

constexpr std::int32_t kUntouched = 77;

std::string Int32Of(std::string_view text) {
  std::int32_t value = kUntouched;
  const bool parsed = ParseInt32(text, value);
  EXPECT_TRUE(parsed || value == kUntouched) << "a failure changed the value";
  return parsed ? std::to_string(value) : "no";
}

std::string DoubleOf(std::string_view text) {
  double value = kUntouched;
  const bool parsed = ParseDouble(text, value);
  EXPECT_TRUE(parsed || value == kUntouched) << "a failure changed the value";
  return parsed ? FormatShortest(value) : "no";
}

TEST(NumberText, ShortestTextReadsBackAsTheSameNumber) {
  EXPECT_EQ(FormatShortest(1.0), "1");
  EXPECT_EQ(FormatShortest(0.1), "0.1");
  EXPECT_EQ(FormatShortest(-2.5), "-2.5");
  EXPECT_EQ(FormatShortest(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(FormatShortest(1e30), "1e+30");
  EXPECT_EQ(FormatShortest(-std::numeric_limits<double>::denorm_min()), "-5e-324");
  EXPECT_EQ(FormatShortest(std::numeric_limits<double>::infinity()), "inf");
}

TEST(NumberText, FixedTextHasTheDecimalsAskedFor) {
  EXPECT_EQ(FormatFixed(1.0, 6), "1.000000");
  EXPECT_EQ(FormatFixed(99.996, 2), "100.00");
  EXPECT_EQ(FormatFixed(0.125, 2), "0.12");
  EXPECT_EQ(FormatFixed(0.375, 2), "0.38");
  EXPECT_EQ(FormatFixed(-3.7, 0), "-4");
  EXPECT_EQ(FormatFixed(3.7, -1), "4");
}

TEST(NumberText, FixedTextHoldsTheLargestNumber) {
  const std::string text = FormatFixed(-std::numeric_limits<double>::max(), 3);
  EXPECT_EQ(text.size(), 1U + 309U + 1U + 3U);
  EXPECT_EQ(text.substr(0, 10), "-179769313");
  EXPECT_EQ(text.substr(text.size() - 4), ".000");
}

TEST(NumberText, IntegersHaveNoGrouping) {
  EXPECT_EQ(FormatInt(0), "0");
  EXPECT_EQ(FormatInt(1234567), "1234567");
  EXPECT_EQ(FormatInt(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(NumberText, ParseInt32TakesAWholeTextWithSignAndBlanksAround) {
  EXPECT_EQ(Int32Of("12"), "12");
  EXPECT_EQ(Int32Of(" \t\r\n-12\n"), "-12");
  EXPECT_EQ(Int32Of("+12"), "12");
  EXPECT_EQ(Int32Of("007"), "7");
  EXPECT_EQ(Int32Of("2147483647"), "2147483647");
  EXPECT_EQ(Int32Of("-2147483648"), "-2147483648");
}

TEST(NumberText, ParseInt32RefusesEverythingElse) {
  for (const char* text : {"", " ", "+", "-", "+-1", "++1", "- 1", "1 2", "12a", "1.0", "0x10",
                           "\v1", "2147483648", "-2147483649", "99999999999999999999"}) {
    EXPECT_EQ(Int32Of(text), "no") << text;
  }
  EXPECT_EQ(Int32Of(std::string_view("1\0", 2)), "no");
}

TEST(NumberText, ParseDoubleTakesAWholeTextWithSignAndBlanksAround) {
  EXPECT_EQ(DoubleOf("12"), "12");
  EXPECT_EQ(DoubleOf(" -0.25\t"), "-0.25");
  EXPECT_EQ(DoubleOf("+2.5e-1"), "0.25");
  EXPECT_EQ(DoubleOf(".5"), "0.5");
  EXPECT_EQ(DoubleOf("5."), "5");
}

TEST(NumberText, ParseDoubleRefusesEverythingElse) {
  for (const char* text : {"", " ", ".", "+", "+-1", "1,5", "1.5mm", "1 5", "0x10", "inf", "nan",
                           "-infinity", "1e999", "1e-999", "\f1"}) {
    EXPECT_EQ(DoubleOf(text), "no") << text;
  }
}

TEST(NumberText, AtoiReadsTheNumberThatTheTextStartsWith) {
  EXPECT_EQ(Atoi("12"), 12);
  EXPECT_EQ(Atoi(" \t\n\v\f\r-12abc"), -12);
  EXPECT_EQ(Atoi("+7.9"), 7);
  EXPECT_EQ(Atoi("0x10"), 0);
  EXPECT_EQ(Atoi("1 2"), 1);
}

TEST(NumberText, AtoiOfATextWithoutDigitsIsZero) {
  for (const char* text : {"", " ", "-", "+", "abc", "+-3", "- 3", "\xA0 3"}) {
    EXPECT_EQ(Atoi(text), 0) << text;
  }
}

TEST(NumberText, AtoiStopsAtTheEndsOfInt) {
  EXPECT_EQ(Atoi("2147483647"), 2147483647);
  EXPECT_EQ(Atoi("2147483648"), 2147483647);
  EXPECT_EQ(Atoi("-2147483648"), std::numeric_limits<int>::min());
  EXPECT_EQ(Atoi("-2147483649"), std::numeric_limits<int>::min());
  EXPECT_EQ(Atoi(std::string(1000, '9')), 2147483647);
}

using NumberTextUnderACommaLocale = CommaLocaleTest;

TEST_F(NumberTextUnderACommaLocale, WritesAndReadsThePointAllTheSame) {
  EXPECT_EQ(FormatShortest(1.5), "1.5");
  EXPECT_EQ(FormatFixed(1234567.5, 2), "1234567.50");
  EXPECT_EQ(FormatInt(1234567), "1234567");
  EXPECT_EQ(DoubleOf("1.5"), "1.5");
  EXPECT_EQ(DoubleOf("1,5"), "no");
  EXPECT_EQ(Int32Of("1.234"), "no");
}

}  // namespace
}  // namespace bomparser
