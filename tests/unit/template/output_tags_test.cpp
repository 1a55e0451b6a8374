#include "template/OutputTags.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace bomparser {
namespace {

constexpr std::int32_t kLowest = -1;
constexpr std::int32_t kHighest = 79;

/// The tags as hosts know them. A code that is not here carries no tag.
const std::map<int, std::string>& KnownNames() {
  static const std::map<int, std::string> s_names = {
      {-1, "UNDEFINED"},
      {0, "DCODE"},
      {1, "SHAPE"},
      {2, "INNER_DIAMETER"},
      {3, "OUTER_DIAMETER"},
      {4, "WIDTH"},
      {5, "HEIGHT"},
      {6, "NUM_GAPS"},
      {7, "FIRST_GAP_ANGLE"},
      {8, "GAP_WIDTH"},
      {9, "CORNER_RADIUS"},
      {10, "STROKE"},
      {11, "SIZE"},
      {12, "MAGNITUDE"},
      {13, "END_GEOMETRY"},
      {14, "RIGHT_TOP_CORNER"},
      {15, "RIGHT_BOTTOM_CORNER"},
      {16, "LEFT_TOP_CORNER"},
      {17, "LEFT_BOTTOM_CORNER"},
      {18, "CHAMFER"},
      {19, "DIRECTION"},
      {20, "TEXT"},
      {21, "FONT"},
      {22, "LINE_HEIGHT"},
      {23, "LINE_WIDTH"},
      {24, "STROKE_WIDTH"},
      {25, "MIRROR"},
      {26, "DRILL"},
      {27, "LENGTH"},
      {30, "TCODE"},
      {31, "PLATED"},
      {32, "DRILL_SPEED"},
      {33, "FEED_RATE"},
      {36, "DIAMETER"},
      {37, "RADIUS"},
      {40, "REF_DESIGNATOR"},
      {41, "PACKAGE"},
      {42, "DESCRIPTION"},
      {43, "PART_TYPE"},
      {44, "PART_ID"},
      {45, "PART_NUMBER"},
      {46, "ALT_PART_1"},
      {47, "ALT_PART_2"},
      {48, "FEEDER"},
      {49, "POS_TOLERANCE"},
      {50, "NEG_TOLERANCE"},
      {51, "VALUE"},
      {52, "VALUE_M_MEGA"},
      {53, "VALUE_K_KILO"},
      {54, "VALUE_M_MILLI"},
      {55, "VALUE_u_MICRO"},
      {56, "VALUE_n_NANO"},
      {57, "VALUE_p_PICO"},
      {58, "VALUE_OHMS"},
      {59, "VALUE_FARRADS"},
      {60, "VALUE_HENRIES"},
      {61, "VALUE_VOLTS"},
      {62, "VALUE_AMPS"},
      {63, "VALUE_WATTS"},
      {64, "VALUE_HERTZ"},
      {65, "PIN_SIDES"},
      {66, "LEAD_TYPE"},
      {67, "LEAD_PITCH"},
      {68, "LEAD_HEIGHT"},
      {69, "SIDEDNESS"},
      {70, "X_LOCATION"},
      {71, "Y_LOCATION"},
      {74, "ROTATION"},
      {75, "SCALE"},
      {76, "UNITS"},
      {77, "DIM_X"},
      {78, "DIM_Y"},
      {79, "NONE"},
  };
  return s_names;
}

std::string InOtherCase(std::string text) {
  for (char& c : text) {
    const auto byte = static_cast<unsigned char>(c);
    c = static_cast<char>(std::isupper(byte) != 0 ? std::tolower(byte) : std::toupper(byte));
  }
  return text;
}

TEST(OutputTags, EveryCodeHasItsNameAndTheOthersTheEmptyOne) {
  for (int code = -300; code <= 300; ++code) {
    const auto known = KnownNames().find(code);
    const std::string expected = known == KnownNames().end() ? "" : known->second;
    EXPECT_EQ(GetTagName(static_cast<OutputTag>(code)), expected) << code;
  }
}

TEST(OutputTags, ExactlyEightCodesOfTheRangeCarryNoTag) {
  std::set<int> unnamed;
  for (int code = kLowest; code <= kHighest; ++code) {
    if (GetTagName(static_cast<OutputTag>(code)).empty()) unnamed.insert(code);
  }
  EXPECT_EQ(unnamed, (std::set<int>{28, 29, 34, 35, 38, 39, 72, 73}));
}

TEST(OutputTags, NumericTagsAreThoseOfMeasuresAndAmounts) {
  const std::set<int> single = {0,  22, 23, 24, 27, 30, 32, 33, 36,
                                37, 67, 68, 70, 71, 74, 75, 77, 78};
  for (int code = -300; code <= 300; ++code) {
    const bool expected = single.count(code) > 0 || (code >= 2 && code <= 12) ||
                          (code >= 14 && code <= 18) || (code >= 49 && code <= 65);
    EXPECT_EQ(IsNumericTag(static_cast<OutputTag>(code)), expected) << code;
  }
}

TEST(OutputTags, EveryNameIsFoundInAnyCase) {
  for (const auto& [code, name] : KnownNames()) {
    if (code < 0) continue;
    for (const std::string& text : {name, InOtherCase(name)}) {
      OutputTag found = OutputTag::Undefined;
      ASSERT_TRUE(FindTag(text, found)) << text;
      EXPECT_EQ(static_cast<int>(found), code) << text;
    }
  }
}

TEST(OutputTags, AnEmptyNameFindsTheFirstCodeWithoutOne) {
  OutputTag found = OutputTag::Undefined;
  ASSERT_TRUE(FindTag("", found));
  EXPECT_EQ(static_cast<int>(found), 28);
}

TEST(OutputTags, UnknownNamesAndUndefinedAreNotFoundAndChangeNothing) {
  for (const std::string_view name :
       {"UNDEFINED", "undefined", "X_LOCATIO", "X_LOCATIONS", " X_LOCATION", "VALUE_FARADS", "0"}) {
    OutputTag found = OutputTag::Radius;
    EXPECT_FALSE(FindTag(name, found)) << name;
    EXPECT_EQ(found, OutputTag::Radius) << name;
  }
}

}  // namespace
}  // namespace bomparser
