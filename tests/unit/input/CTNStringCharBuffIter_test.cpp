#include "input/CTNStringCharBuffIter.h"

#include "tests/support/ParsedFakes.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace bomparser {
namespace {

constexpr char kNoCharacter = static_cast<char>(0xFF);

/// What GetNext answers: the character, or "end" with the character that it gave out.
std::string Next(CTNStringCharBuffIter& text) {
  char c = 0;
  const bool read = text.GetNext(c);
  return read ? std::string(1, c) : "end " + std::to_string(static_cast<unsigned char>(c));
}

std::vector<std::string> AllLines(CTNStringCharBuffIter& text) {
  std::vector<std::string> lines;
  for (std::string line; text.ReadLine(line);)
    lines.push_back(line);
  return lines;
}

TEST(CTNStringCharBuffIter, StartsAtTheFirstCharacterWithItsEndLimitAtTheLength) {
  const CTNStringCharBuffIter text("abc");
  EXPECT_EQ(text.GetPosition(), 0u);
  EXPECT_EQ(text.GetEnd(), 3u);
}

TEST(CTNStringCharBuffIter, KeepsACopyOfItsText) {
  std::string source = "abc";
  CTNStringCharBuffIter text(source);
  source[0] = 'x';
  EXPECT_EQ(Next(text), "a");
}

TEST(CTNStringCharBuffIter, GetNextAtTheEndGivesTheLastByteValueAndStillMovesOn) {
  CTNStringCharBuffIter text("a");
  EXPECT_EQ(Next(text), "a");
  EXPECT_EQ(Next(text), "end 255");
  EXPECT_EQ(text.GetPosition(), 2u);
  EXPECT_EQ(Next(text), "end 255");
  EXPECT_EQ(text.GetPosition(), 3u);
}

TEST(CTNStringCharBuffIter, PutBackAfterAFailedReadReturnsToWhereTheReadBegan) {
  CTNStringCharBuffIter text("a");
  Next(text);
  Next(text);
  text.PutBack(kNoCharacter);
  EXPECT_EQ(text.GetPosition(), 1u);
  EXPECT_EQ(text.GetText()->View(), "a");
  Next(text);
  Next(text);
  text.PutBack('x');
  text.PutBack('y');
  EXPECT_EQ(text.GetPosition(), 1u);
  EXPECT_EQ(text.GetText()->View(), "a");
}

TEST(CTNStringCharBuffIter, PutBackOfADifferentCharacterChangesTheText) {
  CTNStringCharBuffIter text("ac");
  EXPECT_EQ(Next(text), "a");
  text.PutBack('b');
  EXPECT_EQ(text.GetText()->View(), "bc");
  EXPECT_EQ(Next(text), "b");
  EXPECT_EQ(Next(text), "c");
}

TEST(CTNStringCharBuffIter, ACopyDoesNotSeeWhatIsPutBackIntoTheOther) {
  CTNStringCharBuffIter text("ac");
  CTNStringCharBuffIter copy = text;
  Next(text);
  text.PutBack('b');
  EXPECT_EQ(Next(copy), "a");
}

TEST(CTNStringCharBuffIter, PutBackOfTheSameCharacterKeepsSharingTheText) {
  CTNStringCharBuffIter text("ab");
  const auto shared = text.GetText();
  Next(text);
  text.PutBack('a');
  EXPECT_EQ(text.GetText(), shared);
}

TEST(CTNStringCharBuffIter, PutBackBeforeTheFirstCharacterIsRefused) {
  CTNStringCharBuffIter text("a");
  EXPECT_THROW(text.PutBack('a'), std::invalid_argument);
  EXPECT_EQ(text.GetPosition(), 0xFFFFFFFFu);
  char c = 0;
  EXPECT_THROW(text.GetNext(c), std::invalid_argument);
  EXPECT_EQ(text.GetText()->View(), "a");
}

TEST(CTNStringCharBuffIter, SetPositionIsNotBoundedAndReadsBehindTheEndFail) {
  CTNStringCharBuffIter text("abc");
  text.SetPosition(2);
  EXPECT_EQ(Next(text), "c");
  for (const std::uint32_t far : {4u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu}) {
    text.SetPosition(far);
    EXPECT_EQ(Next(text), "end 255") << far;
    EXPECT_EQ(text.GetPosition(), far + 1);
    std::string line = "old";
    EXPECT_FALSE(text.ReadLine(line));
    EXPECT_EQ(line, "");
  }
}

TEST(CTNStringCharBuffIter, ReadLineKeepsTheLineFeedAndGivesAnOpenLastLineWithoutOne) {
  CTNStringCharBuffIter text("x\ny");
  EXPECT_EQ(AllLines(text), (std::vector<std::string>{"x\n", "y"}));
  std::string line = "old";
  EXPECT_FALSE(text.ReadLine(line));
  EXPECT_EQ(line, "");
}

TEST(CTNStringCharBuffIter, ReadLineReadsPastTheEndLimit) {
  CTNStringCharBuffIter text("abc\nd");
  text.SetEnd(1);
  EXPECT_EQ(text.GetEnd(), 1u);
  EXPECT_EQ(AllLines(text), (std::vector<std::string>{"abc\n", "d"}));
}

TEST(CTNStringCharBuffIter, ReadsNulAndBytesAbove127AsTheyAre) {
  CTNStringCharBuffIter text(std::string_view("\0\xFF\r\n\n", 5));
  EXPECT_EQ(AllLines(text), (std::vector<std::string>{std::string("\0\xFF\r\n", 4), "\n"}));
}

TEST(CTNStringCharBuffIter, AnEmptyTextHasNothingToRead) {
  CTNStringCharBuffIter text;
  EXPECT_EQ(text.GetEnd(), 0u);
  EXPECT_EQ(AllLines(text), std::vector<std::string>());
}

TEST(CTNStringCharBuffIter, TheUnusedHookDoesNothing) {
  CTNStringCharBuffIter text("ab");
  Next(text);
  text.OnTextMoved();
  EXPECT_EQ(text.GetPosition(), 1u);
  EXPECT_EQ(Next(text), "b");
}

TEST(CTNStringCharBuffIter, AnotherTextStartsOver) {
  CTNStringCharBuffIter text("abc");
  Next(text);
  text.SetEnd(1);
  text.SetText(CTNInputText::Copy("longer text"));
  EXPECT_EQ(text.GetPosition(), 0u);
  EXPECT_EQ(text.GetEnd(), 11u);
}

TEST(CTNInputText, StandsBeforeALineFeedAndReadableBytes) {
  for (const std::string& bytes : {std::string(), std::string("a"), std::string(1000, 'b')}) {
    const auto text = CTNInputText::Copy(bytes);
    EXPECT_EQ(text->View(), bytes);
    EXPECT_EQ(std::string(text->Data() + text->Size(), CTNInputText::kSlack),
              std::string(CTNInputText::kSlack, '\n'));
  }
}

TEST(CTNInputText, WithALineFeedSharesTheBytesAndIsOneLonger) {
  const auto text = CTNInputText::Copy("ab");
  const auto longer = CTNInputText::WithLineFeed(text);
  EXPECT_EQ(longer->View(), "ab\n");
  EXPECT_EQ(longer->Data(), text->Data());
  EXPECT_EQ(std::string(longer->Data() + longer->Size(), CTNInputText::kSlack),
            std::string(CTNInputText::kSlack, '\n'));
  EXPECT_EQ(text->View(), "ab");
}

TEST(CTNInputText, NoMemoryIsBadAlloc) {
  const test::MemoryRunsOut memory(1);
  EXPECT_THROW(CTNInputText::Copy("abc"), std::bad_alloc);
}

}  // namespace
}  // namespace bomparser
