// The matcher at speed and the plain one, which defines what matching means, give the same.

#include "template/NestingLimits.h"
#include "tests/support/Application.h"
#include "tests/support/RandomMatch.h"
#include "tests/support/TemplateBuilder.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <gtest/gtest.h>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

namespace bomparser::test {
namespace {

/// How many templates a test makes; more for a long run by hand.
std::uint32_t TemplateCount(std::uint32_t usual) {
  const char* const wanted = std::getenv("BOMPARSER_MATCH_TEMPLATES");
  return wanted != nullptr ? static_cast<std::uint32_t>(std::atol(wanted)) : usual;
}

/// Compares `count` random templates, each on some random texts; stops at the first that differs.
void CompareMatchers(std::uint32_t firstSeed, std::uint32_t count, Circles circles,
                     std::uint32_t textSize) {
  constexpr std::uint32_t kTexts = 6;
  for (std::uint32_t seed = firstSeed; seed < firstSeed + count; ++seed) {
    SeededChooser choose(seed);
    CTNParserTemplate document(nullptr);
    MakeRandomTemplate(choose, document, circles);
    for (std::uint32_t i = 0; i < kTexts; ++i) {
      const std::string text = MakeRandomText(choose, document, textSize);
      if (FindDifference(document, text).empty()) continue;
      FAIL() << "seed " << seed << '\n' << ExplainDifference(document, text);
    }
  }
}

TEST(MatchDifferential, RandomTemplatesGiveTheSameOnShortTexts) {
  CompareMatchers(1, TemplateCount(2000), Circles::No, 24);
}

TEST(MatchDifferential, RandomTemplatesGiveTheSameOnLongerTexts) {
  CompareMatchers(1'000'001, TemplateCount(400), Circles::No, 160);
}

/// Of lines "a" or "ab" or "1" so many each; what the records make of them differs from line to
/// line.
std::string TextOfRows(std::initializer_list<int> lengths) {
  std::string text;
  int kind = 0;
  for (const int length : lengths) {
    for (int i = 0; i < length; ++i)
      text += kind % 2 == 0 ? "a\n" : "ab, cd, ef\n";
    text += kind % 3 == 0 ? "1\n" : "-\n";
    ++kind;
  }
  return text;
}

TEST(MatchDifferential, LongRowsOfSubRecordsGiveTheSame) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::SubRecord, "word", {Alpha(), Optional(String(", "))});
  AddRecord(document, RecordKind::SubRecord, "line", {SubRecord("A1"), Newline()});
  AddRecord(document, RecordKind::MultipleMatch, "never",
            {SubRecord("A2"), String("never"), Newline()});
  AddRecord(
      document, RecordKind::MultipleMatch, "rows",
      {SubRecord("A2"), String("-"), Newline(), Optional(SubRecord("A2")), WholeNum(), Newline()});
  AddRecord(document, RecordKind::MultipleMatch, "row", {SubRecord("A2"), WholeNum(), Newline()});
  for (int length = 13; length < 24; ++length) {
    for (const std::string& text :
         {TextOfRows({length}), TextOfRows({length, length + 2, length}),
          TextOfRows({5, length, 40, length, 3}), std::string(2, '-') + TextOfRows({0, length})}) {
      EXPECT_EQ(FindDifference(document, text), "") << ExplainDifference(document, text);
    }
  }
}

TEST(MatchDifferential, WhatOnlySomeInstancesOfALongRowTryShowsTheSame) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::SubRecord, "number", {WholeNum()});
  AddRecord(document, RecordKind::SubRecord, "key", {String("k"), SubRecord("A1")});
  AddRecord(document, RecordKind::SubRecord, "line",
            {Optional(SubRecord("A2")), Alpha(), Newline()});
  AddRecord(document, RecordKind::MultipleMatch, "never",
            {SubRecord("A3"), String("never"), Newline()});
  for (int first = 0; first < 40; first += 3) {
    for (int second = first; second < 40; second += 5) {
      std::string text;
      for (int line = 0; line < 40; ++line)
        text += (line == first || line == second ? "k" + std::to_string(line) : "") + "a\n";
      EXPECT_EQ(FindDifference(document, text), "") << first << ' ' << second;
    }
  }
}

TEST(MatchDifferential, LongRowsThatEndWithAnEmptyInstanceGiveTheSame) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::SubRecord, "maybe",
            {Optional(Alpha()), Optional(String(", ")), Optional(WholeNum("1"))});
  AddRecord(document, RecordKind::MultipleMatch, "never",
            {SubRecord("A1"), String("never"), Newline()});
  AddRecord(document, RecordKind::MultipleMatch, "line", {SubRecord("A1"), Newline()});
  for (int length = 13; length < 24; ++length) {
    std::string row;
    for (int i = 0; i < length; ++i)
      row += i % 3 == 0 ? "1" : "a, ";
    for (const std::string& text : {row + '\n', row + "!\n" + row + '\n', row + row + "2\n"})
      EXPECT_EQ(FindDifference(document, text), "") << ExplainDifference(document, text);
  }
}

std::size_t DeepestBrace(std::string_view text) {
  std::size_t open = 0;
  std::size_t deepest = 0;
  for (const char c : text) {
    if (c == '{') deepest = std::max(deepest, ++open);
    if (c == '}') --open;
  }
  return deepest;
}

TEST(MatchDifferential, RecordsThatContainEachOtherStopAtTheSameDepth) {
  CTNParserTemplate document(nullptr);
  // Circles come about by edits: each record was valid before it was led back to itself.
  CTNTemplateRecord& odd = AddRecord(document, RecordKind::SubRecord, "odd", {String("(")});
  CTNTemplateRecord& even = AddRecord(document, RecordKind::SubRecord, "even", {String("(")});
  AddField(odd, Optional(SubRecord("A2")));
  AddField(even, Optional(SubRecord("A1")));
  AddRecord(document, RecordKind::MultipleMatch, "line", {SubRecord("A1"), Newline()});
  ASSERT_EQ(document.GetAuxiliaryRecords()[2]->IsValid(), 1);
  for (std::size_t depth = 190; depth < 210; ++depth) {
    const std::string text = std::string(depth, '(') + '\n';
    EXPECT_EQ(FindDifference(document, text), "") << depth;
    const std::string block = ApplyToText(document, text).Readable()[0];
    // One brace is the block's own. What would lie too deep lies beside the deepest instance.
    EXPECT_EQ(DeepestBrace(block), std::min<std::size_t>(depth, kMaxNestedRecords) + 1) << depth;
  }
}

TEST(MatchDifferential, RecordsThatContainEachOtherStopAtTheSameAttempt) {
  CTNParserTemplate document(nullptr);
  CTNTemplateRecord& one = AddRecord(document, RecordKind::SubRecord, "one", {String("a")});
  CTNTemplateRecord& two = AddRecord(document, RecordKind::SubRecord, "two", {String("a")});
  for (int i = 0; i < 2; ++i) {
    AddField(one, Optional(SubRecord("A2")));
    AddField(two, Optional(SubRecord("A1")));
  }
  AddField(one, String("!"));
  AddField(two, String("!"));
  AddRecord(document, RecordKind::MultipleMatch, "line",
            {Optional(SubRecord("A1")), Scan(), SubRecord("A1"), Newline()});
  ASSERT_EQ(document.GetAuxiliaryRecords()[2]->IsValid(), 1);
  const auto isTaken = [&document](const std::string& text) {
    EXPECT_EQ(FindDifference(document, text), "") << text.size();
    return ApplyToText(document, text).blocks.GetAt(0).GetKind() == BlockKind::Auxiliary;
  };
  // Two ways at each step: a few steps more and nothing is left for what would match behind.
  EXPECT_TRUE(isTaken("aaaa-a!\n"));
  EXPECT_FALSE(isTaken(std::string(20, 'a') + "-a!\n"));
  // An attempt at each place that the scan passes over, also where the sub-record cannot begin.
  const std::size_t most = kMaxEntangledAttempts;
  EXPECT_TRUE(isTaken(std::string(most - 100, '-') + "a!\n"));
  EXPECT_FALSE(isTaken(std::string(most + 100, '-') + "a!\n"));
}

/// True for a block with a sub-record that begins with a sub-record.
bool HasThreeLevels(const std::string& block) {
  for (std::size_t at = block.find("=A"); at != std::string::npos; at = block.find("=A", at + 1)) {
    if (block.compare(at + 3, 2, "{F") == 0 && block.compare(at + 6, 2, "=A") == 0) return true;
  }
  return false;
}

/// What the blocks of random applications show of interesting things.
std::map<std::string, int> CountFindings(std::uint32_t templates) {
  std::map<std::string, int> found;
  for (std::uint32_t seed = 1; seed <= templates; ++seed) {
    SeededChooser choose(seed);
    CTNParserTemplate document(nullptr);
    MakeRandomTemplate(choose, document, Circles::No);
    const Application application = ApplyToText(document, MakeRandomText(choose, document, 24));
    for (const std::string& block : application.Readable()) {
      if (block.starts_with("E")) ++found["entity"];
      if (block.starts_with("A")) ++found["auxiliary"];
      if (block.starts_with("?")) ++found["unmatched"];
      if (block.find("=A") != std::string::npos) ++found["sub-record"];
      if (block.find("=E") != std::string::npos) ++found["entity as sub-record"];
      if (block.find("=A", block.find("=A") + 1) != std::string::npos) ++found["two sub-records"];
      if (HasThreeLevels(block)) ++found["three levels"];
    }
    for (const auto& record : document.GetAuxiliaryRecords()) {
      if (record->GetSingleMatchBlock() != nullptr) ++found["single match"];
    }
    if (!application.done) ++found["given up"];
    if (EntityListOf(application).find('x') != std::string::npos) ++found["entity with literal"];
  }
  return found;
}

TEST(MatchDifferential, RecordsThatContainEachOtherGiveTheSame) {
  CompareMatchers(2'000'001, TemplateCount(200), Circles::Some, 12);
}

TEST(MatchDifferential, RandomTemplatesAreNotBlunt) {
  const std::map<std::string, int> found = CountFindings(3000);
  for (const char* what :
       {"entity", "auxiliary", "unmatched", "sub-record", "entity as sub-record", "two sub-records",
        "three levels", "single match", "given up", "entity with literal"}) {
    const auto count = found.find(what);
    EXPECT_GE(count == found.end() ? 0 : count->second, 20) << what;
  }
}

}  // namespace
}  // namespace bomparser::test
