#include "entry/CTNFileParserEngine.h"
#include "input/MessageTexts.h"
#include "tests/support/EngineTest.h"
#include "tnbase/FolderListing.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace bomparser {
namespace {

using namespace test;
using Texts = std::vector<std::string>;

const char* const kFourLines = "a\nb\nc\nd\n";
const char* const kNothingFound = "No useable template found in current search path";

class EngineFindTest : public EngineTestIn<TestFolder> {
 protected:
  EngineFindTest() {
    MakeFolder("search");
    engine.SetTemplateSearchPath(PathOf("search"));
  }

  /// Puts files with these contents into the search folder, so that the folder lists them in this
  /// order. Their paths, in that order.
  Texts Put(const Texts& contents) {
    for (std::size_t i = 0; i < contents.size(); ++i) {
      WriteFile("search/t" + std::to_string(i) + ".xml", "");
    }
    Texts names;
    std::string error;
    EXPECT_TRUE(ListFolder(PathOf("search"), names, error)) << error;
    EXPECT_EQ(names.size(), contents.size());
    Texts paths;
    for (std::size_t i = 0; i < contents.size(); ++i) {
      WriteFile("search/" + names[i], contents[i]);
      paths.push_back(PathOf("search/" + names[i]));
    }
    return paths;
  }

  /// "found" or "not found", with the error behind it.
  std::string Find(ShowProgress show = ShowProgress::No) {
    std::string error = "before";
    m_cancelled = true;
    const bool found = engine.FindTemplate(error, m_cancelled, show);
    return (found ? "found" : "not found") + (error.empty() ? "" : ": " + error);
  }

  /// A template whose record takes no character: applying it fails.
  static std::string FailingTemplate() {
    CTNParserTemplate document(nullptr);
    AddRecord(document, RecordKind::MultipleMatch, "takes nothing", {});
    return XmlText(document);
  }
  static std::string NotAdvanced(int at = 0) {
    const std::string position = std::to_string(at);
    return "Internal error while parsing input file. File pointer was\nset backward or not "
           "advanced after read operation: Prev position = " +
           position + ", current position = " + position;
  }
  /// A template that takes lines with one of the words, and fails at the first other one.
  static std::string FailingBehind(std::string_view words) {
    CTNParserTemplate document(nullptr);
    AddRecord(document, RecordKind::MultipleMatch, "line", {String(words), Newline()});
    AddRecord(document, RecordKind::MultipleMatch, "takes nothing", {});
    return XmlText(document);
  }
  Texts Blocks() {
    Texts texts;
    for (std::size_t i = 0; i < InFile().GetBlocks().GetSize(); ++i)
      texts.push_back(InFile().GetBlocks().GetAt(i).ToReadableText());
    return texts;
  }

  bool m_cancelled = false;
};

TEST_F(EngineFindTest, WithoutASearchPathNothingIsTried) {
  Open(kFourLines);
  engine.SetTemplateSearchPath("");
  EXPECT_EQ(Find(), "not found: No template search path currently specified");
  EXPECT_FALSE(m_cancelled);
}

TEST_F(EngineFindTest, ASearchPathThatIsNoFolderIsNotValid) {
  Open(kFourLines);
  Load(TemplateFor("a"));
  for (const std::string& path : {PathOf("missing"), PathOf("input.txt")}) {
    engine.SetTemplateSearchPath(path);
    EXPECT_EQ(Find(), "not found: Template search path " + path + " is not valid");
  }
  EXPECT_EQ(Document().GetFilePath(), PathOf("template.xml")) << "nothing was changed";
}

TEST_F(EngineFindTest, TheBestTemplateIsLoadedAndApplied) {
  Open(kFourLines);
  const Texts paths = Put({TemplateFor("a"), TemplateFor("a|b|c"), TemplateFor("a|b")});
  EXPECT_EQ(Find(), "found");
  EXPECT_FALSE(m_cancelled);
  EXPECT_EQ(Document().GetFilePath(), paths[1]);
  EXPECT_EQ(Flags(), "applied");
  EXPECT_EQ(engine.GetStats().MatchPercent(), 75.0);
  EXPECT_EQ(List(), ListOfWords({"a", "b", "c"}));
  EXPECT_EQ(SideCopy(), List());
}

TEST_F(EngineFindTest, TheBestTemplateMayBeTheLastOne) {
  Open(kFourLines);
  const Texts paths = Put({TemplateFor("a"), TemplateFor("a|b|c")});
  EXPECT_EQ(Find(), "found");
  EXPECT_EQ(Document().GetFilePath(), paths[1]);
  EXPECT_EQ(List(), ListOfWords({"a", "b", "c"}));
}

TEST_F(EngineFindTest, WithTwoTemplatesOfTheSameScoreTheOneMetFirstWins) {
  Open(kFourLines);
  const Texts paths = Put({TemplateFor("x"), TemplateFor("c|d"), TemplateFor("a|b")});
  EXPECT_EQ(Find(), "found");
  EXPECT_EQ(Document().GetFilePath(), paths[1]);
  EXPECT_EQ(List(), ListOfWords({"c", "d"}));
}

TEST_F(EngineFindTest, AScoreOfExactly100StopsTheSearch) {
  Open(kFourLines);
  const Texts paths = Put({TemplateFor("a"), TemplateFor("a|b|c|d"), FailingTemplate()});
  EXPECT_EQ(Find(), "found") << "the template that fails was not tried";
  EXPECT_EQ(Document().GetFilePath(), paths[1]);
}

TEST_F(EngineFindTest, AScoreOver100DoesNotStopTheSearchAndIsBetterThan100) {
  Open(kFourLines);
  const Texts paths = Put({TemplateFor("c|d", RecordKind::Part, 3), TemplateFor("a"),
                           TemplateFor("a|b|c|d"), FailingTemplate()});
  EXPECT_EQ(Find(), "found");
  EXPECT_EQ(Document().GetFilePath(), paths[0]);
  EXPECT_EQ(engine.GetStats().MatchPercent(), 200.0);
}

TEST_F(EngineFindTest, ABetterScoreOver100IsStillFoundBehindOneOver100) {
  Open(kFourLines);
  const Texts paths =
      Put({TemplateFor("c|d", RecordKind::Part, 3), TemplateFor("d", RecordKind::Part, 4)});
  EXPECT_EQ(Find(), "found");
  EXPECT_EQ(Document().GetFilePath(), paths[1]);
  EXPECT_EQ(engine.GetStats().MatchPercent(), 400.0);
}

TEST_F(EngineFindTest, AuxiliaryRecordsCountAsMatched) {
  Open(kFourLines);
  const Texts paths =
      Put({TemplateFor("a"), TemplateFor("a|b|c", RecordKind::MultipleMatch), TemplateFor("x")});
  EXPECT_EQ(Find(), "found");
  EXPECT_EQ(Document().GetFilePath(), paths[1]);
}

TEST_F(EngineFindTest, AFailingTrialStopsTheSearchAndTheBestSoFarStands) {
  Open(kFourLines);
  const Texts paths =
      Put({TemplateFor("a"), TemplateFor("a|b"), FailingTemplate(), TemplateFor("a|b|c|d")});
  EXPECT_EQ(Find(), "found: " + NotAdvanced());
  EXPECT_FALSE(m_cancelled);
  EXPECT_EQ(Document().GetFilePath(), paths[1]);
  EXPECT_EQ(Flags(), "applied");
  EXPECT_EQ(List(), ListOfWords({"a", "b"}));
}

TEST_F(EngineFindTest, AFailingFirstTrialEndsTheSearchWithItsError) {
  Open(kFourLines);
  Load(TemplateFor("a"));
  Put({FailingTemplate(), TemplateFor("a|b|c|d")});
  EXPECT_EQ(Find(), "not found: " + NotAdvanced());
  EXPECT_EQ(Document().GetFilePath(), PathOf("template.xml"));
  EXPECT_TRUE(InFile().IsStale());
}

TEST_F(EngineFindTest, AFailingTrialBehindOneThatScoresNothingLeavesTheBlocksThatItMade) {
  Open(kFourLines);
  Load(TemplateFor("d"));
  Put({TemplateFor("x"), FailingBehind("a|b"), TemplateFor("a|b|c|d")});
  EXPECT_EQ(Find(), "not found: " + NotAdvanced(4));
  EXPECT_EQ(Document().GetFilePath(), PathOf("template.xml"));
  EXPECT_EQ(Flags(), "stale");
  EXPECT_EQ(Blocks(), (Texts{"A1{F1=a|F2=}", "A1{F1=b|F2=}", "A2{}"}));
}

TEST_F(EngineFindTest, AFailingFirstTrialLeavesTheBlocksThatItMade) {
  Open(kFourLines);
  Load(TemplateFor("d"));
  ASSERT_EQ(Apply(), "ok");
  const std::string copy = SideCopy();
  Put({FailingBehind("a|b"), TemplateFor("a|b|c|d")});
  EXPECT_EQ(Find(), "not found: " + NotAdvanced(4));
  EXPECT_EQ(Document().GetFilePath(), PathOf("template.xml"));
  EXPECT_EQ(Flags(), "stale");
  EXPECT_EQ(Blocks(), (Texts{"A1{F1=a|F2=}", "A1{F1=b|F2=}", "A2{}"}));
  EXPECT_EQ(SideCopy(), copy) << "only an application that succeeds writes one";
}

TEST_F(EngineFindTest, WithoutAnInputFileTheFirstTrialFails) {
  Put({TemplateFor("a")});
  EXPECT_EQ(Find(), "not found: Input file not opened for read");
  EXPECT_EQ(Document().GetFilePath(), "unsaved");
}

TEST(EngineFind, TextOfAFailureWithoutOne) {
  EXPECT_EQ(FormatMessageText(Msg::UnspecifiedApplyErrorOfFile, "/a/b.xml"),
            "Unspecified error while applying template file /a/b.xml");
}

TEST_F(EngineFindTest, ACancelledSearchFindsNothingAndRestoresTheStartingTemplate) {
  Open(kFourLines);
  Load(TemplateFor("d"));
  Put({TemplateFor("a"), TemplateFor("a|b")});
  frontEnd.progress.cancelAtStep = 6;  // In the second trial.
  EXPECT_EQ(Find(ShowProgress::Yes), "not found: Operation cancelled");
  EXPECT_TRUE(m_cancelled);
  EXPECT_EQ(frontEnd.captions, Texts(2, "Scanning input.txt -- Progress: "));
  EXPECT_EQ(Document().GetFilePath(), PathOf("template.xml"));
  EXPECT_TRUE(InFile().IsStale());
}

TEST_F(EngineFindTest, WithoutProgressNoWindowIsShown) {
  Open(kFourLines);
  Put({TemplateFor("a"), TemplateFor("b")});
  EXPECT_EQ(Find(ShowProgress::No), "found");
  EXPECT_EQ(frontEnd.captions, Texts{});
}

TEST_F(EngineFindTest, TheBestTemplateIsAppliedForGoodWithoutAProgressWindow) {
  Open(kFourLines);
  Put({TemplateFor("a|b"), TemplateFor("a"), TemplateFor("b")});
  EXPECT_EQ(Find(ShowProgress::Yes), "found");
  EXPECT_EQ(frontEnd.captions.size(), 3u) << "one for each trial";
}

TEST_F(EngineFindTest, AnEmptySearchFolderLeavesTheStartingTemplateLoadedNotApplied) {
  Open(kFourLines);
  Load(TemplateFor("a"));
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(Find(), std::string("not found: ") + kNothingFound);
  EXPECT_EQ(Document().GetFilePath(), PathOf("template.xml"));
  EXPECT_EQ(Document().GetEntityRecords().size(), 1u);
  EXPECT_EQ(Flags(), "applied stale");
}

TEST_F(EngineFindTest, TemplatesThatAllScoreNothingLeaveTheStartingTemplateLoadedNotApplied) {
  Open(kFourLines);
  Load(TemplateFor("a"));
  Put({TemplateFor("x"), TemplateFor("y")});
  EXPECT_EQ(Find(), std::string("not found: ") + kNothingFound);
  EXPECT_EQ(Document().GetFilePath(), PathOf("template.xml"));
  EXPECT_TRUE(InFile().IsStale());
}

TEST_F(EngineFindTest, WithoutAStartingTemplateAnEmptyOneIsApplied) {
  Open(kFourLines);
  Put({TemplateFor("x")});
  EXPECT_EQ(Find(), std::string("not found: ") + kNothingFound);
  EXPECT_EQ(Document().GetFilePath(), "unsaved");
  EXPECT_TRUE(Document().IsEmptyTemplate());
  EXPECT_EQ(Flags(), "applied");
  EXPECT_EQ(engine.GetStats().unmatchedBlocks, 4u);
  EXPECT_EQ(List(), "<TN_FILEPARSER_ENTITIES></TN_FILEPARSER_ENTITIES>");
  EXPECT_EQ(SideCopy(), List());
}

TEST_F(EngineFindTest, AnInputFileWhoseBlocksAreAllIgnoredScores0ForEveryTemplate) {
  Open(kFourLines);
  Put({TemplateFor("a|b|c|d", RecordKind::Part, 5), TemplateFor("a", RecordKind::Part, 100)});
  EXPECT_EQ(Find(), std::string("not found: ") + kNothingFound);
}

TEST_F(EngineFindTest, AnEmptyInputFileScores0ForEveryTemplate) {
  Open("");
  Put({TemplateFor("a")});
  EXPECT_EQ(Find(), std::string("not found: ") + kNothingFound);
}

TEST_F(EngineFindTest, TemplatesThatDoNotLoadAreSkipped) {
  Open(kFourLines);
  const Texts paths = Put({"not XML", TemplateFor("a"), "<html/>", TemplateFor("a|b"), "<x>"});
  EXPECT_EQ(Find(), "found");
  EXPECT_EQ(Document().GetFilePath(), paths[3]);
  EXPECT_EQ(List(), ListOfWords({"a", "b"}));
  EXPECT_EQ(frontEnd.errors, Texts{}) << "nothing is shown";
}

TEST_F(EngineFindTest, OnlyXmlFilesAreTriedInAnyCaseOfTheirExtension) {
  Open(kFourLines);
  WriteFile("search/best.xml.bak", TemplateFor("a|b|c|d"));
  WriteFile("search/best.txt", TemplateFor("a|b|c|d"));
  WriteFile("search/bestxml", TemplateFor("a|b|c|d"));
  MakeFolder("search/folder.xml");
  WriteFile("search/folder.xml/best.xml", TemplateFor("a|b|c|d"));
  WriteFile("search/UPPER.XML", TemplateFor("a"));
  EXPECT_EQ(Find(), "found");
  EXPECT_EQ(Document().GetFilePath(), PathOf("search/UPPER.XML"));
}

TEST_F(EngineFindTest, ASlashBehindTheSearchPathMakesNoDifference) {
  Open(kFourLines);
  const Texts paths = Put({TemplateFor("a")});
  engine.SetTemplateSearchPath(PathOf("search/"));
  EXPECT_EQ(Find(), "found");
  EXPECT_EQ(Document().GetFilePath(), paths[0]);
}

TEST_F(EngineFindTest, OutputDoneIsWhatItWasBefore) {
  Open(kFourLines);
  InFile().SetOutputDone(true);
  Put({TemplateFor("a"), TemplateFor("a|b")});
  EXPECT_EQ(Find(), "found");
  EXPECT_EQ(Flags(), "applied done");
}

TEST_F(EngineFindTest, TheInputIsReadOnceDuringTheSearchAndAfreshAfterwards) {
  Open(kFourLines);
  Put({TemplateFor("a|b"), TemplateFor("a")});
  EXPECT_EQ(Find(), "found");
  WriteFile("input.txt", "b\n");
  EXPECT_EQ(Apply(), "ok");
  EXPECT_EQ(List(), ListOfWords({"b"}));
}

class EngineFindLocaleTest : public EngineTestIn<CommaLocaleTest> {};

TEST_F(EngineFindLocaleTest, TheSameTemplateIsFoundUnderAnyLocale) {
  MakeFolder("search");
  engine.SetTemplateSearchPath(PathOf("search"));
  Open("a\nb\nc\n");
  WriteFile("search/one.xml", TemplateFor("a"));
  WriteFile("search/two.xml", TemplateFor("a|b"));
  std::string error;
  bool cancelled = false;
  EXPECT_TRUE(engine.FindTemplate(error, cancelled, ShowProgress::No)) << error;
  EXPECT_EQ(Document().GetFilePath(), PathOf("search/two.xml"));
  EXPECT_EQ(List(), ListOfWords({"a", "b"}));
}

TEST_F(EngineFindTest, ATemplateThatCannotBecomeTheBestAnyMoreIsGivenUp) {
  std::string text = "x\n";
  for (int i = 0; i < 999; ++i)
    text += "a\n";
  Open(text);
  const Texts paths = Put({TemplateFor("a"), TemplateFor("b"), TemplateFor("x|b")});
  EXPECT_EQ(Find(ShowProgress::Yes), "found");
  EXPECT_EQ(Document().GetFilePath(), paths[0]);
  // A thousand blocks of the first; the others may have no unmatched block, or one after "x".
  EXPECT_EQ(frontEnd.progress.steps, 1000U + 1U + 2U);
}

TEST_F(EngineFindTest, ATemplateThatFailsIsNotGivenUpBeforeItFails) {
  CTNParserTemplate failing(nullptr);
  AddRecord(failing, RecordKind::MultipleMatch, "ends", {String("d"), Newline()});
  AddRecord(failing, RecordKind::SingleMatch, "takes nothing", {});
  Open(kFourLines);
  Put({TemplateFor("a|b|c"), XmlText(failing)});
  EXPECT_EQ(Find(), "found: " + NotAdvanced());
  EXPECT_EQ(engine.GetStats().MatchPercent(), 75.0);
}

TEST_F(EngineFindTest, GivingUpNeverChangesWhichTemplateIsFound) {
  std::minstd_rand random(7);
  const auto below = [&random](unsigned n) { return static_cast<int>(random() % n); };
  for (int round = 0; round < 150; ++round) {
    std::string text;
    for (int line = below(12) + 1; line > 0; --line)
      text += std::string(1, static_cast<char>('a' + below(5))) + "\n";
    Open(text);
    Texts templates;
    for (int i = 0; i < 5; ++i) {
      const std::string first(1, static_cast<char>('a' + below(5)));
      const std::string second(1, static_cast<char>('a' + below(5)));
      templates.push_back(TemplateFor(first + "|" + second, RecordKind::Part, 1 + below(4)));
    }
    const Texts paths = Put(templates);
    double best = 0.0;
    std::string bestPath;
    for (const std::string& path : paths) {
      ASSERT_TRUE(engine.LoadTemplate(path));
      ASSERT_EQ(Apply(), "ok");
      const double score = engine.GetStats().MatchPercent();
      if (score > best) bestPath = path;
      best = std::max(best, score);
      if (score == 100.0) break;
    }
    Find();
    if (!bestPath.empty()) {
      EXPECT_EQ(Document().GetFilePath(), bestPath) << text;
      EXPECT_EQ(engine.GetStats().MatchPercent(), best) << text;
    }
  }
}

}  // namespace
}  // namespace bomparser
