#include "template/TagSearch.h"
#include "tests/support/Application.h"
#include "tests/support/RandomMatch.h"
#include "tests/support/TemplateBuilder.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace bomparser::test {
namespace {

class TagSearchTest : public testing::Test {
 protected:
  /// A Part whose elements 1 to `count` are tagged NONE and say what `expression(i)` gives.
  template <class Expression>
  CTNTemplateRecord& PartOf(int count, Expression expression) {
    CTNTemplateRecord& part = AddRecord(document, RecordKind::Part, "Part", {Alnum(), Newline()});
    for (int i = 1; i <= count; ++i)
      AddOutput(part, {OutputTag::None, expression(i)});
    return part;
  }

  CTNParserTemplate document{nullptr};
};

TEST_F(TagSearchTest, ElementsThatAllNameEachOtherAreLookedIntoOnceEach) {
  constexpr int kCount = 40;
  CTNTemplateRecord& part = PartOf(kCount, [](int own) {
    std::string all;
    for (int i = 1; i <= kCount; ++i) {
      if (i != own) all += "V" + std::to_string(i) + " ";
    }
    return all;
  });
  part.Validate();
  EXPECT_FALSE(part.HasOutputTag(OutputTag::RefDesignator));
  EXPECT_EQ(part.CountOutputTag(OutputTag::RefDesignator), 0U);
  AddOutput(part, {OutputTag::RefDesignator, "F1"});
  part.GetOutputFields()[0]->SetExpression("V41");
  part.Validate();
  EXPECT_TRUE(part.HasOutputTag(OutputTag::RefDesignator));
  // The element itself, and every one that reaches it.
  EXPECT_EQ(part.CountOutputTag(OutputTag::RefDesignator), 41U);
}

TEST_F(TagSearchTest, ALongChainOfElementsNeedsNoStack) {
  constexpr int kCount = 100'000;
  CTNTemplateRecord& part = AddRecord(document, RecordKind::Part, "Part", {Alnum(), Newline()});
  for (int i = 1; i <= kCount; ++i)
    AddOutput(part, {OutputTag::None, "F1"});
  AddOutput(part, {OutputTag::RefDesignator, "F1"});
  for (int i = 1; i <= kCount; ++i) {
    part.GetOutputFields()[static_cast<std::size_t>(i - 1)]->SetExpression("V" +
                                                                           std::to_string(i + 1));
  }
  part.ReparseOutputExpressions();
  EXPECT_TRUE(TagSearch(OutputTag::RefDesignator).IsReachedFrom(*part.GetOutputFields()[0]));
  EXPECT_FALSE(TagSearch(OutputTag::PartNumber).IsReachedFrom(*part.GetOutputFields()[0]));
}

TEST_F(TagSearchTest, ALongChainOfElementsIsFollowedOnceForAllOfThem) {
  // One walk for each element would take minutes.
  constexpr int kCount = 100'000;
  CTNTemplateRecord& part = PartOf(kCount, [](int) { return "F1"; });
  AddOutput(part, {OutputTag::PartNumber, "F1"});
  const auto nameNext = [&part](int i) {
    const std::string next = "V" + std::to_string(i + 1);
    part.GetOutputFields()[static_cast<std::size_t>(i - 1)]->SetExpression(next);
  };
  for (int i = 1; i <= kCount; ++i)
    nameNext(i);
  part.ReparseOutputExpressions();
  EXPECT_EQ(part.CountOutputTag(OutputTag::PartNumber), kCount + 1U);
  EXPECT_EQ(part.CountOutputTag(OutputTag::Width), 0U);
}

TEST_F(TagSearchTest, ARecordOfManyElementsIsReadOnceForAllThatNameIt) {
  constexpr int kCount = 100'000;
  CTNTemplateRecord& units = AddRecord(document, RecordKind::SingleMatch, "Units", {Newline()});
  for (int i = 1; i <= kCount; ++i)
    AddOutput(units, {OutputTag::Height, "F1"});
  CTNTemplateRecord& part = PartOf(kCount, [](int) { return "A1"; });
  part.ReparseOutputExpressions();
  EXPECT_EQ(part.CountOutputTag(OutputTag::Width), 0U);
  EXPECT_EQ(part.CountOutputTag(OutputTag::Height), std::size_t{kCount});
}

TEST_F(TagSearchTest, AllElementsOfARecordTogetherAreCountedLikeEachAlone) {
  constexpr int kCount = 8;
  bool reached = false;
  bool missed = false;
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    SeededChooser choose(seed);
    document.Init();
    AddRecord(document, RecordKind::SingleMatch, "Units", {Alpha(), Newline()},
              {{OutputTag::None, choose.OneIn(2) ? "E1" : "F1"}, {OutputTag::None, "F1"}});
    CTNTemplateRecord& part = PartOf(kCount, [&choose](int) {
      std::string expression = choose.OneIn(6) ? "A1" : "F1";
      for (std::uint32_t left = choose.Below(3); left > 0; --left)
        expression += " V" + std::to_string(1 + choose.Below(kCount + 1));
      return expression;
    });
    AddOutput(part, {OutputTag::Width, "V" + std::to_string(1 + choose.Below(kCount))});
    part.ReparseOutputExpressions();
    std::size_t alone = 1;
    for (const auto& element : part.GetOutputFields())
      alone += element->ReferencesTag(OutputTag::Width) ? 1U : 0U;
    ASSERT_EQ(part.CountOutputTag(OutputTag::Width), alone) << "seed " << seed;
    reached = reached || alone > kCount / 2;
    missed = missed || alone == 1;
  }
  EXPECT_TRUE(reached && missed);
}

TEST_F(TagSearchTest, ValuesThatDoubleAtEachReferenceEndAndBothWaysAgree) {
  constexpr int kCount = 60;
  CTNTemplateRecord& part = PartOf(kCount, [](int i) {
    const std::string next = "V" + std::to_string(i + 1);
    return next + " " + next;
  });
  AddOutput(part, {OutputTag::RefDesignator, "F1"});
  AddOutput(part, {OutputTag::PartNumber, "\"x\""});
  part.Validate();
  part.Validate();
  ASSERT_EQ(part.IsValid(), 1) << part.GetStatusText();
  const Application application = ApplyToText(document, "R1\n");
  const std::string list = EntityListOf(application);
  EXPECT_EQ(list, EntityListPlainly(application));
  EXPECT_TRUE(list.starts_with("<ENTITY>Part"));
  EXPECT_TRUE(
      list.ends_with("<REF_DESIGNATOR>R1</REF_DESIGNATOR><PART_NUMBER>x</PART_NUMBER></ENTITY>"));
}

TEST_F(TagSearchTest, AReferenceBehindTwoHundredOthersAddsNothing) {
  CTNTemplateRecord& part = AddRecord(document, RecordKind::Part, "Part", {Alnum(), Newline()});
  for (int i = 1; i <= 202; ++i)
    AddOutput(part, {OutputTag::Text, "V" + std::to_string(i + 1)});
  AddOutput(part, {OutputTag::RefDesignator, "F1"});
  AddOutput(part, {OutputTag::PartNumber, "\"x\""});
  part.Validate();
  part.Validate();
  const Application application = ApplyToText(document, "R1\n");
  const std::string list = EntityListOf(application);
  EXPECT_EQ(list, EntityListPlainly(application));
  // V203 is the value: two elements are too far away from it.
  EXPECT_TRUE(list.starts_with("<ENTITY>Part<TEXT></TEXT><TEXT></TEXT><TEXT>R1 </TEXT>")) << list;
}

}  // namespace
}  // namespace bomparser::test
