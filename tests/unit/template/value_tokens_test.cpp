#include "template/ValueTokens.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {
namespace {

using Tokens = std::vector<std::string>;

TEST(ValueTokens, AnEmptyExpressionHasNone) { EXPECT_EQ(CutIntoTokens(""), Tokens{}); }

TEST(ValueTokens, AWordIsOneToken) { EXPECT_EQ(CutIntoTokens("F12"), Tokens{"F12"}); }

TEST(ValueTokens, EveryBlankOutsideQuotesIsATokenOfItsOwn) {
  EXPECT_EQ(CutIntoTokens("a  b "), (Tokens{"a", " ", " ", "b", " "}));
  EXPECT_EQ(CutIntoTokens(" "), Tokens{" "});
}

TEST(ValueTokens, ExactlyThirteenCharactersAndTheBlankStandAlone) {
  const std::string_view alone = "!()*+-./<>^| ";
  for (int code = 0; code < 256; ++code) {
    const char c = static_cast<char>(code);
    if (c == '"') continue;
    const std::string text = std::string("a") + c + "b";
    const Tokens expected = alone.find(c) != std::string_view::npos
                                ? Tokens{"a", std::string(1, c), "b"}
                                : Tokens{text};
    EXPECT_EQ(CutIntoTokens(text), expected) << code;
  }
}

TEST(ValueTokens, InsideQuotesNoCharacterEndsTheToken) {
  for (int code = 0; code < 256; ++code) {
    const char c = static_cast<char>(code);
    if (c == '"') continue;
    const std::string text = std::string("\"a") + c + "b\"";
    EXPECT_EQ(CutIntoTokens(text), Tokens{text}) << code;
  }
}

TEST(ValueTokens, AQuoteEndsTheWordBeforeItAndTheTextBehindItIsAnother) {
  EXPECT_EQ(CutIntoTokens("ab\"c d\"ef"), (Tokens{"ab", "\"c d\"", "ef"}));
  EXPECT_EQ(CutIntoTokens("\"a\"\"b\""), (Tokens{"\"a\"", "\"b\""}));
  EXPECT_EQ(CutIntoTokens("\"\""), Tokens{"\"\""});
}

TEST(ValueTokens, AMissingClosingQuoteIsAdded) {
  EXPECT_EQ(CutIntoTokens("\"mm"), Tokens{"\"mm\""});
  EXPECT_EQ(CutIntoTokens("F1 \"a + b"), (Tokens{"F1", " ", "\"a + b\""}));
  EXPECT_EQ(CutIntoTokens("\""), Tokens{"\"\""});
}

TEST(ValueTokens, ATabIsPartOfAWord) { EXPECT_EQ(CutIntoTokens("a\tb\nc"), Tokens{"a\tb\nc"}); }

TEST(ValueTokens, JoinedTheTokensAreTheExpressionAgain) {
  std::mt19937 random(20240607);
  const std::string_view letters = "F1A \"+-./^|x\t\xE9}";
  for (int round = 0; round < 5000; ++round) {
    std::string text;
    for (auto length = random() % 12; length > 0; --length) {
      text += letters[random() % letters.size()];
    }
    std::string joined;
    std::size_t quotes = 0;
    for (const std::string& token : CutIntoTokens(text)) {
      EXPECT_FALSE(token.empty()) << text;
      joined += token;
    }
    for (const char c : text)
      quotes += c == '"' ? 1 : 0;
    EXPECT_EQ(joined, quotes % 2 == 0 ? text : text + '"');
  }
}

}  // namespace
}  // namespace bomparser
