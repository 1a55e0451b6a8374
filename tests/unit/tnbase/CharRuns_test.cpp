#include "tnbase/CharRuns.h"

#include <gtest/gtest.h>
#include <string>

namespace bomparser {
namespace {

using EndOfRun = const char* (*)(const char*);

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsInWord(char c) { return !IsBlank(c) && c != '\n'; }

struct RunOfChars {
  const char* name;
  EndOfRun end;
  bool (*belongs)(char);
  char member;
};

const RunOfChars kRuns[] = {{"digits", EndOfDigits, IsDigit, '7'},
                            {"letters", EndOfLetters, IsAlpha, 'q'},
                            {"alphanumerics", EndOfAlphanumerics, IsAlnum, 'Z'},
                            {"blanks", EndOfBlanks, IsBlank, '\t'},
                            {"word", EndOfWord, IsInWord, '\0'}};

std::size_t LengthOf(const RunOfChars& run, const std::string& text) {
  const std::string padded = text + std::string(kRunSlack, '\n');
  return static_cast<std::size_t>(run.end(padded.data()) - padded.data());
}

TEST(CharRuns, EveryByteBelongsAsItsClassSays) {
  for (const RunOfChars& run : kRuns) {
    for (int byte = 0; byte < 256; ++byte) {
      const char c = static_cast<char>(byte);
      EXPECT_EQ(LengthOf(run, std::string(1, c)), run.belongs(c) ? 1u : 0u)
          << run.name << ", byte " << byte;
    }
  }
}

TEST(CharRuns, ARunOfAnyLengthEndsWhereAnotherCharacterStands) {
  for (const RunOfChars& run : kRuns) {
    for (std::size_t length = 0; length < 70; ++length) {
      const std::string text = std::string(length, run.member) + "\n" + std::string(9, run.member);
      EXPECT_EQ(LengthOf(run, text), length) << run.name;
    }
  }
}

TEST(CharRuns, FindCharGivesTheFirstOrTheEnd) {
  for (std::size_t size = 0; size < 50; ++size) {
    for (std::size_t at = 0; at < 70; ++at) {
      std::string text(120, 'x');
      text[at] = text[at + 1] = ',';
      const char* const end = text.data() + size;
      const auto found = static_cast<std::size_t>(FindChar(text.data(), end, ',') - text.data());
      EXPECT_EQ(found, at < size ? at : size);
    }
  }
}

}  // namespace
}  // namespace bomparser
