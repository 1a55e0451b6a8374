#include "tnbase/CTNFormulaCustom.h"
#include "tnbase/CTNTool.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace bomparser {
namespace {

constexpr bool kLongName = true;
constexpr bool kShortName = false;

/// The names of the indices -1 to 23, "-" for none.
template <class NameOf>
std::vector<std::string> AllNames(NameOf nameOf, bool longName) {
  std::vector<std::string> names;
  for (int index = -1; index <= 23; ++index) {
    const std::string name(nameOf(index, longName));
    names.push_back(name.empty() ? "-" : name);
  }
  return names;
}

TEST(ShapeNames, TheStandardShapesAre0To13) {
  const std::vector<std::string> expected = {
      "-",       "Round", "Octagon", "Square",  "Hexagon",   "Rectangle", "Oblong",
      "Thermal", "Donut", "Cross",   "Complex", "Magnified", "None",      "Diamond",
      "Polygon", "-",     "-",       "-",       "-",         "-",         "-",
      "-",       "-",     "-",       "-"};
  EXPECT_EQ(AllNames(CTNTool::GetStrFromShape, kLongName), expected);
  EXPECT_EQ(AllNames(CTNTool::GetStrFromShape, kShortName), expected);
}

TEST(ShapeNames, TheCustomShapesAre15To21) {
  std::vector<std::string> expected(16, "-");
  expected.insert(expected.end(), {"Oval", "Round Thermal", "Square Thermal", "Chamfered Rectangle",
                                   "Rounded Rectangle", "Bullet", "Text", "-", "-"});
  EXPECT_EQ(AllNames(CTNFormulaCustom::GetShapeName, kLongName), expected);
  EXPECT_EQ(AllNames(CTNFormulaCustom::GetShapeName, kShortName), expected);
}

TEST(ShapeNames, TheEndsOfTheIntegersHaveNoName) {
  for (const int index : {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_EQ(CTNTool::GetStrFromShape(index, kLongName), "");
    EXPECT_EQ(CTNFormulaCustom::GetShapeName(index, kLongName), "");
  }
}

}  // namespace
}  // namespace bomparser
