#include "input/MessageTexts.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <locale>
#include <string>
#include <thread>
#include <vector>

namespace bomparser {
namespace {

constexpr std::uint32_t kNoMessage = 4'000'000'000;
constexpr Msg kNoMsg = static_cast<Msg>(kNoMessage);

// Fetched while static objects are made, in whatever order that happens.
const std::string g_fetchedBeforeMain = GetMessageText(Msg::DataMismatch);

struct CommaSeparator : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

/// Numbers have a decimal comma and grouped digits while it lives.
class CommaLocale {
 public:
  CommaLocale()
      : m_before(std::locale::global(std::locale(std::locale::classic(), new CommaSeparator))) {}
  ~CommaLocale() { std::locale::global(m_before); }

 private:
  std::locale m_before;
};

TEST(MessageTexts, NumberAndNameGiveTheSameText) {
  EXPECT_EQ(GetMessageText(651), "Data mismatch encountered at field %s");
  EXPECT_EQ(&GetMessageText(651), &GetMessageText(Msg::DataMismatch));
}

TEST(MessageTexts, FirstAndLastNumberAreFound) {
  EXPECT_EQ(GetMessageText(502), "TRUE");
  EXPECT_EQ(GetMessageText(Msg::OutputGroup), "Output");
}

TEST(MessageTexts, OddSpacingIsKept) {
  EXPECT_EQ(GetMessageText(559), "    ID");
  EXPECT_EQ(GetMessageText(665), " Cancel ");
  EXPECT_EQ(GetMessageText(545),
            "Unspecified error while opening or applying template to  input file");
  EXPECT_EQ(GetMessageText(575), "Attempt failed with the following error: ");
  EXPECT_EQ(GetMessageText(Msg::SameBlockMark), "   ^");
}

TEST(MessageTexts, ApplyQuestionEndsWithAQuotationMark) {
  EXPECT_EQ(GetMessageText(547),
            "Current template has not been applied to input file.\n\n"
            " Want to apply current template now?\"");
}

TEST(MessageTexts, TwoIdsOfTheSameBucketAreBothFound) {
  // 17 apart: in a table of 17 buckets they would share one.
  EXPECT_EQ(GetMessageText(502), "TRUE");
  EXPECT_EQ(GetMessageText(519), "BOM Parser");
  EXPECT_EQ(GetMessageText(536), "E");
  EXPECT_EQ(GetMessageText(502), "TRUE");
}

TEST(MessageTexts, UnknownIdGivesTheSameEmptyTextOnEveryCall) {
  const std::string& first = GetMessageText(kNoMessage);
  EXPECT_EQ(first, "");
  EXPECT_EQ(&GetMessageText(kNoMessage), &first);
  EXPECT_EQ(GetMessageText(0), "");
  EXPECT_EQ(GetMessageText(504), "");
}

TEST(MessageTexts, ReferenceStaysTheSameObjectOnEveryCall) {
  const std::string& text = GetMessageText(Msg::Settings);
  for (std::uint32_t id = 0; id < 12'000; ++id) {
    GetMessageText(id);
  }
  EXPECT_EQ(&GetMessageText(Msg::Settings), &text);
  EXPECT_EQ(text, "Settings");
}

TEST(MessageTexts, TextCanBeFetchedBeforeMain) {
  EXPECT_EQ(g_fetchedBeforeMain, "Data mismatch encountered at field %s");
}

TEST(MessageTexts, ThreadsGetTheSameObject) {
  constexpr std::uint32_t kNumbers = 12'000;
  std::array<std::vector<const std::string*>, 2> seen;
  const auto fetchAll = [](std::vector<const std::string*>& texts) {
    for (std::uint32_t id = 0; id < kNumbers; ++id) {
      texts.push_back(&GetMessageText(id));
    }
  };
  std::thread other(fetchAll, std::ref(seen[0]));
  fetchAll(seen[1]);
  other.join();
  EXPECT_EQ(seen[0], seen[1]);
}

TEST(FormatMessageText, FillsPlaceholdersInOrder) {
  const std::string field = "F3";
  EXPECT_EQ(FormatMessageText(Msg::DataMismatch, field), "Data mismatch encountered at field F3");
  EXPECT_EQ(FormatMessageText(Msg::InvalidMatchLength, -1, "COLUMN"),
            "Error: Invalid match length (-1) specified for field type COLUMN");
  EXPECT_EQ(FormatMessageText(Msg::IdFormat, std::string_view("F"), std::size_t{12}), "F12");
  EXPECT_EQ(FormatMessageText(Msg::InvalidMatchValue, "12a", "WHOLE_NUM"),
            "Error: \"12a\" is not a valid match value for field type WHOLE_NUM");
  EXPECT_EQ(FormatMessageText(Msg::ProgressTitleFormat, "Scanning", 40), "Scanning [40%]");
}

TEST(FormatMessageText, TakesArgumentsAsAList) {
  EXPECT_EQ(FormatMessageText(Msg::TemplateLoadErrorAtLine, {7, "a.xml"}),
            "Error detected at line 7 while loading a.xml");
}

TEST(FormatMessageText, TextWithoutPlaceholdersComesBackAsItIs) {
  EXPECT_EQ(FormatMessageText(Msg::OperationCancelled), "Operation cancelled");
}

TEST(FormatMessageText, WritesNumbersAsPrintfDoes) {
  EXPECT_EQ(FormatMessageText(Msg::ScaleFactorFormat, 1.0), "1.000000");
  EXPECT_EQ(FormatMessageText(Msg::ScaleFactorFormat, 1e20), "100000000000000000000.000000");
  EXPECT_EQ(FormatMessageText(Msg::MatchPercentFormat, 66.666), "66.67");
  EXPECT_EQ(FormatMessageText(Msg::IntegerFormat, INT64_MIN), "-9223372036854775808");
}

TEST(FormatMessageText, WritesNumbersTheSameUnderACommaLocale) {
  const CommaLocale locale;
  EXPECT_EQ(FormatMessageText(Msg::ScaleFactorFormat, 12345.5), "12345.500000");
  EXPECT_EQ(FormatMessageText(Msg::IntegerFormat, 1234567), "1234567");
}

TEST(FormatMessageText, ArgumentTextIsNotReadAsAFormat) {
  EXPECT_EQ(FormatMessageText(Msg::DataMismatch, "%s%d%%"),
            "Data mismatch encountered at field %s%d%%");
}

TEST(FormatMessageText, ArgumentMayHoldAnyByte) {
  const std::string bytes("\x80\0\xFF", 3);
  EXPECT_EQ(FormatMessageText(Msg::TemplateLoadLineText, bytes), "Line Text: " + bytes);
}

TEST(FormatMessageText, UnknownIdGivesAnEmptyText) {
  EXPECT_EQ(FormatMessageText(kNoMsg, "x", 1), "");
  EXPECT_EQ(FormatMessageText(kNoMsg), "");
  EXPECT_EQ(GetMessageText(kNoMsg), "");
}

TEST(FormatMessageText, WrongArgumentsLeaveTheTextAsItStands) {
  EXPECT_EQ(FormatMessageText(Msg::DataMismatch), "Data mismatch encountered at field %s");
  EXPECT_EQ(FormatMessageText(Msg::IdFormat, "F", "three"), "%s%d");
}

TEST(FormatNumberedMessage, FillsPlaceholdersByNumber) {
  EXPECT_EQ(FormatNumberedMessage(Msg::TemplateFound, {"a.xml", "Title", 3, 4, "75.00"}),
            "Template file a.xml (Title) matched 3 of 4 parseable blocks in file (75.00%).");
  EXPECT_EQ(FormatNumberedMessage(Msg::ErrorSavingInputField, {0, "Parts"}),
            "Error saving input field 0 of record Parts");
}

TEST(FormatNumberedMessage, UnknownIdGivesAnEmptyText) {
  EXPECT_EQ(FormatNumberedMessage(kNoMsg, {"x"}), "");
}

TEST(FormatNumberedText, PlaceholdersMayStandInAnyOrderAndMoreThanOnce) {
  EXPECT_EQ(FormatNumberedText("%2!d!-%1!s!-%2!d!", {"a", 7}), "7-a-7");
}

TEST(FormatNumberedText, NumberWithoutAFormatTakesTextsAndNumbers) {
  EXPECT_EQ(FormatNumberedText("%1 of %2", {3, "ten"}), "3 of ten");
  EXPECT_EQ(FormatNumberedText("%1!s!", {3}), "3");
}

TEST(FormatNumberedText, FormatMayHoldFlagsAndWidth) {
  EXPECT_EQ(FormatNumberedText("[%1!5d!|%2!-4s!|%1!04x!]", {26, "ab"}), "[   26|ab  |001a]");
}

TEST(FormatNumberedText, HasTwoDigitNumbers) {
  EXPECT_EQ(FormatNumberedText("%10!s!%1", {"a", 2, 3, 4, 5, 6, 7, 8, 9, "j"}), "ja");
}

TEST(FormatNumberedText, PercentSignEscapes) {
  EXPECT_EQ(FormatNumberedText("100%% %. %! a%nb%rc", {}), "100% . ! a\nb\rc");
  EXPECT_EQ(FormatNumberedText("kept%0lost", {}), "kept");
  EXPECT_EQ(FormatNumberedText("at the end %", {}), "at the end %");
}

TEST(FormatNumberedText, PlaceholderThatCannotBeFilledStays) {
  EXPECT_EQ(FormatNumberedText("%1!s! %2!d! %3", {"a"}), "a %2!d! %3");
  EXPECT_EQ(FormatNumberedText("%1!d!", {"text"}), "%1!d!");
  EXPECT_EQ(FormatNumberedText("%1!open", {"a"}), "a!open");
}

}  // namespace
}  // namespace bomparser
