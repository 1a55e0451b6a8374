#include "tnbase/RunFinder.h"

#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace bomparser {
namespace {

template <RunKind kind>
const char* EndOf(const char* at) {
  return RunFinder().EndOf<kind>(at);
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsInWord(char c) { return !IsBlank(c) && c != '\n'; }
bool IsInLine(char c) { return c != '\n'; }

struct RunOfChars {
  const char* name;
  const char* (*end)(const char*);
  bool (*belongs)(char);
  char member;
};

const RunOfChars kRuns[] = {{"letters", EndOf<RunKind::Letters>, IsAlpha, 'q'},
                            {"digits", EndOf<RunKind::Digits>, IsDigit, '7'},
                            {"alphanumerics", EndOf<RunKind::Alphanumerics>, IsAlnum, 'Z'},
                            {"blanks", EndOf<RunKind::Blanks>, IsBlank, '\t'},
                            {"word", EndOf<RunKind::Word>, IsInWord, '\0'},
                            {"line", EndOf<RunKind::Line>, IsInLine, ' '}};
static_assert(std::size(kRuns) == kRunKindCount);

std::size_t LengthOf(const RunOfChars& run, const std::string& text) {
  const std::string padded = text + std::string(kCharsAtOnce, '\n');
  return static_cast<std::size_t>(run.end(padded.data()) - padded.data());
}

TEST(RunFinder, EveryByteBelongsAsItsClassSays) {
  for (const RunOfChars& run : kRuns) {
    for (int byte = 0; byte < 256; ++byte) {
      const char c = static_cast<char>(byte);
      EXPECT_EQ(LengthOf(run, std::string(1, c)), run.belongs(c) ? 1u : 0u)
          << run.name << ", byte " << byte;
    }
  }
}

TEST(RunFinder, ARunOfAnyLengthEndsWhereAnotherCharacterStands) {
  for (const RunOfChars& run : kRuns) {
    for (std::size_t length = 0; length < 70; ++length) {
      const std::string text = std::string(length, run.member) + "\n" + std::string(9, run.member);
      EXPECT_EQ(LengthOf(run, text), length) << run.name;
    }
  }
}

TEST(RunFinder, TheSameFinderIsRightAtEveryPlaceOfLongAndShortRuns) {
  std::string text;
  for (std::size_t length = 1; length < 100; length += 7)
    text += std::string(length, 'x') + ' ' + std::string(length, '1') + '\n';
  const std::size_t size = text.size();
  text += std::string(kCharsAtOnce, '\n');
  RunFinder finder;
  for (const bool backwards : {false, true}) {
    for (std::size_t i = 0; i < size; ++i) {
      const std::size_t at = backwards ? size - 1 - i : i;
      const char* const from = text.data() + at;
      EXPECT_EQ(finder.EndOf<RunKind::Letters>(from), EndOf<RunKind::Letters>(from));
      EXPECT_EQ(finder.EndOf<RunKind::Word>(from), EndOf<RunKind::Word>(from));
      EXPECT_EQ(finder.EndOf<RunKind::Line>(from), EndOf<RunKind::Line>(from));
    }
  }
}

TEST(RunFinder, FindCharGivesTheFirstOrTheEnd) {
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
