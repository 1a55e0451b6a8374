#include "tnbase/CharClass.h"

#include <gtest/gtest.h>
#include <string>

namespace bomparser {
namespace {

static_assert(IsAlpha('z') && ToLower('Q') == 'q' && EqualsNoCase("a", "A"),
              "for tables of constants");

/// All bytes of a class, in order.
std::string Members(bool (*isMember)(char)) {
  std::string members;
  for (int byte = 0; byte < 256; ++byte) {
    if (isMember(static_cast<char>(byte))) {
      members += static_cast<char>(byte);
    }
  }
  return members;
}

const std::string kUpper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
const std::string kLower = "abcdefghijklmnopqrstuvwxyz";
const std::string kDigits = "0123456789";

TEST(CharClass, HoldsTheMembersThatTheCLocaleHas) {
  EXPECT_EQ(Members(IsAlpha), kUpper + kLower);
  EXPECT_EQ(Members(IsDigit), kDigits);
  EXPECT_EQ(Members(IsAlnum), kDigits + kUpper + kLower);
}

TEST(CharClass, OnlyAsciiCapitalsHaveAnotherLowerCase) {
  std::string changed;
  std::string into;
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    if (ToLower(c) != c) {
      changed += c;
      into += ToLower(c);
    }
  }
  EXPECT_EQ(changed, kUpper);
  EXPECT_EQ(into, kLower);
}

TEST(CharClass, EqualsNoCaseIgnoresAsciiCaseOnly) {
  EXPECT_TRUE(EqualsNoCase("Round Thermal", "rOUND tHERMAL"));
  EXPECT_TRUE(EqualsNoCase("", ""));
  EXPECT_FALSE(EqualsNoCase("Round", "Roun"));
  EXPECT_FALSE(EqualsNoCase("Round", "Bound"));
  EXPECT_FALSE(EqualsNoCase("[", "{"));
  EXPECT_FALSE(EqualsNoCase("\xC4", "\xE4"));
}

}  // namespace
}  // namespace bomparser
