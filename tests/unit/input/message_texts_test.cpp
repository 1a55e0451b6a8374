#include "input/MessageTexts.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <locale>
#include <string>
#include <string_view>
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

struct PublishedText {
  std::uint32_t number;
  std::string_view text;
};

/// What help pages and translations rely on: a copy, so that no text changes unnoticed.
constexpr PublishedText kPublished[] = {
    {502, "TRUE"},
    {503, "FALSE"},
    {505, "INPUT_FIELD_LIST"},
    {506, "OUTPUT_FIELD_LIST"},
    {507, "ENTITY_RECORD_LIST"},
    {508, "OTHER_RECORD_LIST"},
    {510, "TEMPLATE_SEARCH_PATH"},
    {511, "INPUT_FILE_PATH"},
    {512, "TEMPLATE_FILE_PATH"},
    {513, "TAB_STOP"},
    {514, "unsaved"},
    {515, "untitled"},
    {517, "Auto-Created From Text Block"},
    {518, "Select New Template Search Path:"},
    {519, "BOM Parser"},
    {520, "BOM Parser"},
    {525, "??"},
    {531, "N/A"},
    {532, "Entity Records"},
    {533, "Auxiliary Records"},
    {534, "TEMPL_UNITS"},
    {535, "TEMPL_SCALE"},
    {536, "E"},
    {537, "A"},
    {538, "F"},
    {539, "V"},
    {540, "TYPE"},
    {541, "DESCRIPTION"},
    {542, ".,"},
    {543, "AUTO_TRANS_FLAGS"},
    {544,
     "Entity list from most recent template application has not been output.\n\nWant to output "
     "now?"},
    {545, "Unspecified error while opening or applying template to  input file"},
    {546, "Template file %1!s! (%2!s!) matched %3!d! of %4!d! parseable blocks in file (%5!s!%%)."},
    {547,
     "Current template has not been applied to input file.\n\n Want to apply current template "
     "now?\""},
    {548, "Current template must be applied before outputting entity list"},
    {549,
     "Current template has been modified since it was last applied to input file.\n\nWant to "
     "re-apply template before outputting?"},
    {550,
     "'Ignore After' value must be greater than 'Ignore Before' value when 'From Top' is "
     "specified"},
    {558,
     "The currently loaded template has been modified since it was last saved to disk.\n\nWant to "
     "save current template before continuing?"},
    {559, "    ID"},
    {560, "REQUIRED?"},
    {561, "MATCH VALUE"},
    {562, "MATCH LENGTH"},
    {563, "CURRENT VALUE"},
    {564, "TYPE"},
    {565, "DESCRIPTION"},
    {566, "REPEATABLE?"},
    {567, "ELEMENT TAG"},
    {568, "VALUE EXPRESSION"},
    {569, "MATCH COUNT"},
    {570, "MATCH CASE?"},
    {572, "Error"},
    {573, "Invalid path. Choose again or press Cancel"},
    {574,
     "Fatal error: Failed to initialize parser engine.\nContact your Tandrel support "
     "representative."},
    {575, "Attempt failed with the following error: "},
    {576, "Selected block matched successfully to selected record"},
    {577, "Please select one record to apply to selected text."},
    {578, "New Record"},
    {579, "Error adding record"},
    {580, "Please select one template record to which the new field should be added"},
    {581, "Error deleting field #%d in selection"},
    {582,
     "Output element with tag %s is required for this record.\nAre you sure you want to delete "
     "this element?"},
    {583, "Error deleting Outfield #%d in selection"},
    {585, "Settings"},
    {586, "Would you like to save currently loaded template?"},
    {587, "Unspecified error while searching for matching template"},
    {588, "Error outputting file"},
    {589, "No input file specified"},
    {590, "Error detected at line %d while loading %s"},
    {591, "Line Text: %s"},
    {592, "No template search path currently specified"},
    {593, "Template search path %s is not valid"},
    {594, "Unspecified error while applying template file %s"},
    {595, "No useable template found in current search path"},
    {608, "Inch"},
    {609, "MM"},
    {610, "Mil"},
    {611, "Error: Input field ptr not available to list control"},
    {612, "Error: Input field parent record not available"},
    {613, "Error: Invalid field type"},
    {614,
     "Internal Error: No parent record specified. \nPlease report error to your Tandrel support "
     "representative."},
    {615, "Error: Field type %s requires valid record number in match value column"},
    {616, "Error: Cannot use a single-match type record as sub-record"},
    {617,
     "Error: Sub-record type input field cannot specify\nits own record ID in match value column"},
    {618, "Error: Template record %s specified in match value column\nis in an invalid state"},
    {619, "Error: \"%s\" is not a valid match value for field type %s"},
    {620, "Error: Field type %s requires at least one match value"},
    {621, "Error: Invalid match length (%i) specified for field type %s"},
    {622, "Error: Field type %s does not allow match values"},
    {623, "Error: Match length not valid for field type %s"},
    {625, "Error: Input field %s is in an invalid state"},
    {626, "Output element cannot use its own ID as value expression"},
    {633, "Error: %s aperture record requires output element with tag %s"},
    {635, "Note: Output element %s is not required for record type %s"},
    {639, "Error: Undefined output element tag"},
    {640, "Internal error: Parent record is invalid"},
    {641, "Unspecified error while parsing value"},
    {642,
     "Error: Attribute tag NONE valid only when value expression\n consists of subrecord-type "
     "input field ID(s), output symbol\n element ID(s), and/or single-match record ID(s)"},
    {643, "Error: Invalid output tag for record type %s"},
    {644, "Note: Default used for value expression"},
    {645, "Change Tag"},
    {646, "This Template"},
    {650, "Internal error: Single-match record logic flaw"},
    {651, "Data mismatch encountered at field %s"},
    {652, "Error saving input field %1!d! of record %2!s!"},
    {653, "Error saving output field %1!d! of record %2!s!"},
    {656, "Error: Output element %s is in an invalid state"},
    {658, "Error: Record type %s requires output element with tag %s"},
    {659, "Error: Record must have only one output element with required tag %s"},
    {660,
     "Error: A record must end with a required newline input field\n unless designated as a "
     "sub-record."},
    {661, "Invalid Record Type"},
    {662, "Error: Invalid Description For Aperture Record"},
    {663, "Internal error: Unable to create browser control!"},
    {664, "Progress"},
    {665, " Cancel "},
    {666, "No Auxiliary records currently defined"},
    {701, "TN File Parser"},
};

TEST(MessageTexts, EveryPublishedNumberHasItsText) {
  const PublishedText* next = std::begin(kPublished);
  for (std::uint32_t number = 500; number < 800; ++number) {
    const bool published = next != std::end(kPublished) && next->number == number;
    EXPECT_EQ(GetMessageText(number), published ? (next++)->text : "") << number;
  }
  EXPECT_EQ(next, std::end(kPublished));
}

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

TEST(MessageTexts, WhatWasEmptiedIsMadeAnew) {
  const std::string before = GetMessageText(Msg::Settings);
  EmptyMessageTexts();
  const std::string& anew = GetMessageText(Msg::Settings);
  EXPECT_EQ(anew, before);
  EXPECT_EQ(&GetMessageText(Msg::Settings), &anew);
  EmptyMessageTexts();
  EmptyMessageTexts();
  EXPECT_EQ(GetMessageText(Msg::Settings), before);
  EXPECT_EQ(GetMessageText(kNoMessage), "");
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
