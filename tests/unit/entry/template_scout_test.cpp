#include "entry/TemplateScout.h"
#include "tests/support/EngineTest.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/Repeat.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace bomparser {
namespace {

using namespace test;

class TemplateScoutTest : public TestFolder {
 protected:
  void Put(const std::vector<std::string>& contents) {
    for (std::size_t i = 0; i < contents.size(); ++i) {
      const std::string name = "t" + std::to_string(i) + ".xml";
      WriteFile(name, contents[i]);
      m_paths.push_back(PathOf(name));
    }
  }
  /// The places at which a template is handed out: "0 2".
  std::string Kept() {
    std::string places;
    for (std::size_t place = 0; place < m_paths.size(); ++place) {
      if (m_scout.Take(place)) places += (places.empty() ? "" : " ") + std::to_string(place);
    }
    return places;
  }
  static std::string LongText(const std::string& lines = "a\na\na\nb\n") {
    return Repeat(lines, 300'000 / lines.size());
  }

  std::vector<std::string> m_paths;
  TemplateScout m_scout{m_paths};
};

TEST_F(TemplateScoutTest, BeforeItLooksItPromisesNothingAndHasNothing) {
  Put({TemplateFor("a")});
  EXPECT_EQ(m_scout.GetPromiseBehind(0), 0.0);
  EXPECT_EQ(Kept(), "");
}

TEST_F(TemplateScoutTest, ItKeepsWhatItLoadsUpToTheFirstTemplateThatPromisesAGoodScore) {
  Put({TemplateFor("x"), TemplateFor("a"), TemplateFor("a|b"), TemplateFor("a|b")});
  m_scout.LookAhead(0, LongText());
  EXPECT_GT(m_scout.GetPromiseBehind(0), 95.0);
  EXPECT_GT(m_scout.GetPromiseBehind(1), 95.0);
  EXPECT_EQ(m_scout.GetPromiseBehind(2), 0.0) << "there is nothing to wait for any more";
  EXPECT_EQ(Kept(), "0 1 2");
  EXPECT_EQ(Kept(), "") << "each is handed out once";
}

TEST_F(TemplateScoutTest, WithoutAGoodOneTheBestOfAllPromisesLessThanItsScoreOnTheSample) {
  Put({TemplateFor("b"), TemplateFor("a"), TemplateFor("x")});
  m_scout.LookAhead(0, LongText());
  EXPECT_GT(m_scout.GetPromiseBehind(0), 50.0);
  EXPECT_LT(m_scout.GetPromiseBehind(0), 75.0);
  EXPECT_EQ(m_scout.GetPromiseBehind(1), 0.0);
  EXPECT_EQ(Kept(), "0 1 2");
}

TEST_F(TemplateScoutTest, FewBlocksPromiseLessThanMany) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::MultipleMatch, "line", {String("a"), Scan(), Newline()});
  Put({TemplateFor("x"), XmlText(document)});
  TemplateScout other(m_paths);
  m_scout.LookAhead(0, Repeat("a\n", 150'000));
  other.LookAhead(0, Repeat('a' + std::string(298, '.') + '\n', 1000));
  EXPECT_GT(other.GetPromiseBehind(0), 0.0);
  EXPECT_LT(other.GetPromiseBehind(0), m_scout.GetPromiseBehind(0));
}

TEST_F(TemplateScoutTest, ItLooksAtEachPlaceOnceAndGoesOnWhereItIsAskedTo) {
  Put({TemplateFor("a|b"), TemplateFor("a"), TemplateFor("x")});
  m_scout.LookAhead(0, LongText());
  EXPECT_EQ(Kept(), "0");
  m_scout.LookAhead(0, LongText());
  EXPECT_EQ(Kept(), "");
  m_scout.LookAhead(2, LongText());
  EXPECT_EQ(Kept(), "2");
  EXPECT_EQ(m_scout.GetPromiseBehind(0), 0.0) << "what was promised before is over";
}

TEST_F(TemplateScoutTest, ItIsNotWorthLookingOnAShortTextOrOneWithoutALineEndAtItsEnd) {
  for (const std::string& text :
       {std::string("a\nb\n"), LongText() + "a", std::string(300'000, 'a')}) {
    std::vector<std::string> paths;
    WriteFile("one.xml", TemplateFor("a|b"));
    paths.push_back(PathOf("one.xml"));
    paths.push_back(PathOf("one.xml"));
    TemplateScout scout(paths);
    scout.LookAhead(0, text);
    EXPECT_EQ(scout.GetPromiseBehind(0), 0.0);
    EXPECT_EQ(scout.Take(0), nullptr);
    EXPECT_EQ(scout.Take(1), nullptr);
  }
}

TEST_F(TemplateScoutTest, HeadAndEndOfTheTextDoNotCount) {
  Put({TemplateFor("x"), TemplateFor("a")});
  m_scout.LookAhead(0, Repeat("b\n", 5000) + Repeat("a\n", 150'000) + Repeat("b\n", 5000));
  EXPECT_GT(m_scout.GetPromiseBehind(0), 95.0);
}

TEST_F(TemplateScoutTest, ATextOfOneLongLineHasNoSample) {
  Put({TemplateFor("a")});
  m_scout.LookAhead(0, std::string(300'000, 'a') + '\n');
  EXPECT_EQ(Kept(), "");
}

TEST_F(TemplateScoutTest, ATemplateThatDoesNotLoadIsNotKept) {
  Put({"no template", TemplateFor("x")});
  m_scout.LookAhead(0, LongText());
  EXPECT_EQ(Kept(), "1");
  EXPECT_EQ(m_scout.Load(0), nullptr);
}

TEST_F(TemplateScoutTest, ATemplateThatIsLoadedIsAsTheEngineLoadsIt) {
  Put({TemplateFor("a")});
  const auto document = m_scout.Load(0);
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->GetFilePath(), m_paths[0]);
  EXPECT_FALSE(document->IsModified());
  EXPECT_FALSE(document->IsEmptyTemplate());
}

TEST_F(TemplateScoutTest, WhatMayFailOrTranslatesOnlyAPartPromisesNothing) {
  CTNParserTemplate failing(nullptr);
  AddRecord(failing, RecordKind::MultipleMatch, "line", {String("a|b"), Newline()});
  AddRecord(failing, RecordKind::SingleMatch, "takes nothing", {});
  CTNParserTemplate part(nullptr);
  part.SetEndAfterRow(10);
  AddRecord(part, RecordKind::MultipleMatch, "line", {String("a|b"), Newline()});
  Put({TemplateFor("x"), XmlText(failing), XmlText(part)});
  m_scout.LookAhead(0, LongText());
  EXPECT_EQ(m_scout.GetPromiseBehind(0), 0.0);
  EXPECT_EQ(Kept(), "0 1 2");
}

TEST_F(TemplateScoutTest, ItLooksNoFurtherThanMemoryMayBeSpent) {
  const std::string large = TemplateFor("x") + "<!--" + std::string(3 << 20, 'x') + "-->";
  Put({large, large, large, TemplateFor("a|b")});
  m_scout.LookAhead(0, LongText());
  EXPECT_EQ(Kept(), "0 1");
  m_scout.LookAhead(2, LongText());
  EXPECT_GT(m_scout.GetPromiseBehind(2), 95.0);
  EXPECT_EQ(Kept(), "2 3");
}

TEST_F(TemplateScoutTest, WithoutMemoryItKeepsLessAndPromisesNothingThatItDoesNotKeep) {
  Put({TemplateFor("x"), TemplateFor("a|b")});
  const std::string text = LongText();
  std::size_t incomplete = 0;
  ForEveryAllocation([&](std::int64_t granted) {
    SCOPED_TRACE(granted);
    TemplateScout scout(m_paths);
    const bool failed = FailsAfter(
        granted, [&] { EXPECT_NO_THROW(scout.LookAhead(0, text)); }, MemoryFails::FromThenOn);
    const double promise = scout.GetPromiseBehind(0);
    const auto first = scout.Take(0);
    const auto second = scout.Take(1);
    EXPECT_EQ(promise > 95.0, second != nullptr);
    EXPECT_TRUE(second || promise == 0.0) << promise;
    for (const auto* kept : {&first, &second}) {
      EXPECT_TRUE(!*kept || (*kept)->GetEntityRecords().size() == 1) << "half a template";
    }
    if (!first || !second) ++incomplete;
    return failed;
  });
  EXPECT_GT(incomplete, 0u);
}

}  // namespace
}  // namespace bomparser
