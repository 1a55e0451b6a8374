#include "tnbase/TextEncoding.h"

#include <gtest/gtest.h>
#include <string>

namespace bomparser {
namespace {

TEST(IsUtf8, TakesWellFormedText) {
  EXPECT_TRUE(IsUtf8(""));
  EXPECT_TRUE(IsUtf8(std::string_view("a\0\x7F", 3)));
  EXPECT_TRUE(IsUtf8("\xC2\x80 \xDF\xBF"));
  EXPECT_TRUE(IsUtf8("\xE0\xA0\x80 \xED\x9F\xBF \xEE\x80\x80 \xEF\xBF\xBF"));
  EXPECT_TRUE(IsUtf8("\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF"));
}

TEST(IsUtf8, RefusesOverlongForms) {
  for (const char* text : {"\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF",
                           "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF"}) {
    EXPECT_FALSE(IsUtf8(text));
  }
}

TEST(IsUtf8, RefusesSurrogatesAndWhatLiesBeyondTheLastCharacter) {
  for (const char* text :
       {"\xED\xA0\x80", "\xED\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"}) {
    EXPECT_FALSE(IsUtf8(text));
  }
}

TEST(IsUtf8, RefusesStrayAndMissingBytes) {
  for (const char* text : {"\x80", "a\xBF", "\xC2",
                           "\xC2"
                           "a",
                           "\xE1\x80",
                           "\xE1\x80"
                           "a",
                           "\xF1\x80\x80", "\xF1\x80\x80\xC0"}) {
    EXPECT_FALSE(IsUtf8(text));
  }
}

TEST(Windows1252ToUtf8, KeepsAscii) {
  EXPECT_EQ(Windows1252ToUtf8(std::string_view("a\0\x7F", 3)), std::string("a\0\x7F", 3));
}

TEST(Windows1252ToUtf8, MapsTheSecondHalf) {
  EXPECT_EQ(Windows1252ToUtf8("\xA0\xB5\xFF"), "\xC2\xA0\xC2\xB5\xC3\xBF");
  EXPECT_EQ(Windows1252ToUtf8("\x80\x8A\x99\x9F"), "\xE2\x82\xAC\xC5\xA0\xE2\x84\xA2\xC5\xB8");
}

TEST(Windows1252ToUtf8, BytesWithoutAMeaningBecomeControlCharacters) {
  EXPECT_EQ(Windows1252ToUtf8("\x81\x8D\x8F\x90\x9D"), "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D");
}

TEST(Windows1252ToUtf8, GivesWellFormedTextForAnyBytes) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    bytes += static_cast<char>(byte);
  }
  EXPECT_TRUE(IsUtf8(Windows1252ToUtf8(bytes)));
}

}  // namespace
}  // namespace bomparser
