#include "entry/CTNFileParserEngine.h"
#include "tests/support/EngineTest.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace bomparser {
namespace {

using namespace test;
using Texts = std::vector<std::string>;

class EngineTest : public EngineTestIn<TestFolder> {};

TEST_F(EngineTest, ANewEngineHasAnEmptyTemplateAndNoFile) {
  EXPECT_TRUE(engine.IsValid());
  ASSERT_NE(engine.GetTemplate(), nullptr);
  ASSERT_NE(engine.GetInputFile(), nullptr);
  EXPECT_TRUE(Document().IsEmptyTemplate());
  EXPECT_EQ(Document().GetContext(), &engine);
  EXPECT_FALSE(engine.IsTemplateModified());
  EXPECT_FALSE(InFile().IsOpen());
  EXPECT_EQ(Flags(), "stale");
  EXPECT_TRUE(engine.AreResultsStale());
  EXPECT_EQ(engine.GetTabStop(), 8);
  EXPECT_EQ(engine.GetAutoApplicationFlags(), 1023u);
  EXPECT_EQ(engine.GetTemplateSearchPath(), "");
  EXPECT_EQ(engine.GetProfileSection(), "");
  EXPECT_EQ(engine.GetStats().totalBlocks, 0u);
}

TEST_F(EngineTest, SettingsAreKept) {
  engine.SetTabStop(4);
  engine.SetTemplateSearchPath("/a");
  engine.SetProfileSection("section");
  engine.SetAutoApplicationFlags(5);
  EXPECT_EQ(engine.GetTabStop(), 4);
  EXPECT_EQ(engine.GetTemplateSearchPath(), "/a");
  EXPECT_EQ(engine.GetProfileSection(), "section");
  EXPECT_EQ(engine.GetAutoApplicationFlags(), 5u);
}

TEST_F(EngineTest, AllEditKindsTogetherAreTheDefault) {
  EXPECT_EQ(kRecordsAdded | kRecordsDeleted | kRecordsModified | kInputFieldsAdded |
                kInputFieldsDeleted | kInputFieldsModified | kOutputElementsAdded |
                kOutputElementsDeleted | kOutputElementsModified | kParametersChanged,
            kAllEdits);
}

// ------------------------------------------------------------------------------- input file

TEST_F(EngineTest, AnEmptyInputPathIsReportedAtOnce) {
  std::string error;
  EXPECT_FALSE(engine.OpenInputFile("", error));
  EXPECT_EQ(error, "No input file specified");
  EXPECT_EQ(Log(), Texts{"No input file specified"});
  EXPECT_EQ(frontEnd.errors, Texts{"No input file specified"});
}

TEST_F(EngineTest, AMissingInputFileIsToldTheCallerOnly) {
  std::string error;
  EXPECT_FALSE(engine.OpenInputFile(PathOf("missing"), error));
  EXPECT_NE(error, "");
  EXPECT_FALSE(InFile().IsOpen());
  EXPECT_EQ(Log(), Texts{});
}

TEST_F(EngineTest, OpeningAnotherFileClosesTheOneThatIsOpen) {
  Load(TemplateFor("a|b"));
  Open("a\n", "one.txt");
  Open("b\n", "two.txt");
  EXPECT_EQ(InFile().GetFilePath(), PathOf("two.txt"));
  EXPECT_EQ(Apply(), "ok");
  EXPECT_EQ(List(), ListOfWords({"b"}));
}

TEST_F(EngineTest, AFileThatCannotBeOpenedLeavesNoneOpen) {
  Open("a\n");
  std::string error;
  EXPECT_FALSE(engine.OpenInputFile(PathOf("missing"), error));
  EXPECT_FALSE(InFile().IsOpen());
}

TEST_F(EngineTest, ClosingAFileThatIsNotOpenSucceeds) {
  EXPECT_TRUE(engine.CloseInputFile());
  Open("a\n");
  EXPECT_TRUE(InFile().IsOpen());
  EXPECT_TRUE(engine.CloseInputFile());
  EXPECT_FALSE(InFile().IsOpen());
}

// ------------------------------------------------------------------------------- applying

TEST_F(EngineTest, ApplyingSetsTheFlagsAndTheCounts) {
  Load(TemplateFor("a|b"));
  Open("a\nx\nb\n");
  EXPECT_EQ(Flags(), "stale");
  EXPECT_EQ(Apply(), "ok");
  EXPECT_EQ(Flags(), "applied");
  EXPECT_FALSE(engine.AreResultsStale());
  const ApplicationStats stats = engine.GetStats();
  EXPECT_EQ(stats.totalBlocks, 3u);
  EXPECT_EQ(stats.unmatchedBlocks, 1u);
  EXPECT_EQ(stats.entityBlocks, 2u);
  EXPECT_EQ(List(), ListOfWords({"a", "b"}));
}

TEST_F(EngineTest, ApplyingWithoutAFileFails) {
  Load(TemplateFor("a"));
  EXPECT_EQ(Apply(), "Input file not opened for read");
  EXPECT_EQ(Flags(), "stale");
}

TEST_F(EngineTest, ProgressIsShownOnlyWhenAskedFor) {
  Load(TemplateFor("a"));
  Open("a\n");
  EXPECT_EQ(Apply(ShowProgress::No), "ok");
  EXPECT_EQ(frontEnd.captions, Texts{});
  EXPECT_EQ(Apply(ShowProgress::Yes), "ok");
  EXPECT_EQ(frontEnd.captions, Texts{"Scanning input.txt -- Progress: "});
  EXPECT_EQ(frontEnd.progress.texts, (Texts{"Preparing for Template Application ...",
                                            "Applying Template File template.xml..."}));
}

TEST_F(EngineTest, TheEmptyTemplateOnlyReadsTheFile) {
  Open("a\n");
  EXPECT_EQ(Apply(ShowProgress::Yes), "ok");
  EXPECT_EQ(frontEnd.progress.texts,
            (Texts{"Preparing for Template Application ...", "Reading File..."}));
}

TEST_F(EngineTest, AnEngineWithoutAFrontEndAppliesAsWell) {
  CTNFileParserEngine alone;
  WriteFile("t.xml", TemplateFor("a"));
  WriteFile("i.txt", "a\n");
  std::string error;
  bool cancelled = false;
  ASSERT_TRUE(alone.LoadTemplate(PathOf("t.xml")));
  ASSERT_TRUE(alone.OpenInputFile(PathOf("i.txt"), error)) << error;
  EXPECT_TRUE(alone.ApplyTemplate(error, cancelled, ShowProgress::Yes)) << error;
  EXPECT_EQ(alone.GetStats().entityBlocks, 1u);
  EXPECT_FALSE(alone.OpenInputFile("", error));
  EXPECT_EQ(error, "No input file specified");
}

TEST_F(EngineTest, ACancelledApplicationLeavesResultsFlagsAndSideCopyAsTheyWere) {
  Load(TemplateFor("a"));
  Open("a\nb\n");
  ASSERT_EQ(Apply(), "ok");
  const std::string copy = SideCopy();
  WriteFile("input.txt", "a\na\na\n");
  frontEnd.progress.cancelAtStep = 1;
  EXPECT_EQ(Apply(ShowProgress::Yes), "Operation cancelled (cancelled)");
  EXPECT_EQ(Flags(), "applied");
  EXPECT_EQ(List(), ListOfWords({"a"}));
  EXPECT_EQ(SideCopy(), copy);
}

TEST_F(EngineTest, ForgettingResultsLetsGoOfTheTextAndTheBlocksAndKeepsTheTemplate) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::SingleMatch, "once", {String("b"), Newline()});
  AddRecord(document, RecordKind::Part, "line", {String("a"), Newline()},
            {Designator("A1.F1"), PartNumber()});
  Load(XmlText(document));
  Open("b\na\n");
  ASSERT_EQ(Apply(), "ok");
  InFile().SetOutputDone(true);
  InFile().SetOutputPath("/before");
  ASSERT_EQ(List(), ListOfWords({"b"}));
  ASSERT_NE(RecordOf(Document(), "A1").GetSingleMatchBlock(), nullptr);
  const std::weak_ptr<const CTNInputText> text = InFile().GetText().GetText();
  const std::weak_ptr<const CTNParsedResult> result = InFile().GetBlocks().GetResult();
  ASSERT_FALSE(text.expired() || result.expired());
  engine.ForgetResults();
  EXPECT_TRUE(text.expired());
  EXPECT_TRUE(result.expired());
  EXPECT_FALSE(InFile().IsOpen());
  EXPECT_EQ(Flags(), "stale");
  EXPECT_EQ(InFile().GetOutputPath(), "");
  EXPECT_EQ(engine.GetStats().totalBlocks, 0u);
  EXPECT_EQ(Document().GetFilePath(), PathOf("template.xml"));
  Open("b\na\n");
  EXPECT_EQ(Apply(), "ok");
  EXPECT_EQ(List(), ListOfWords({"b"}));
}

// ------------------------------------------------------------------------------- side copy

TEST_F(EngineTest, EverySuccessfulApplicationWritesACopyOfTheListNamedAfterTheInputFile) {
  Load(TemplateFor("a"));
  Open("a\n", "list.of.parts.txt");
  std::string path;
  std::string error;
  ASSERT_TRUE(engine.GetSideCopyPath(path, error)) << error;
  EXPECT_EQ(std::filesystem::path(path).filename(), "list.xml") << "up to the first dot";
  EXPECT_EQ(SideCopy(), "(none)");
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(SideCopy(), ListOfWords({"a"}));
  WriteFile("list.of.parts.txt", "a\na\n");
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(SideCopy(), ListOfWords({"a", "a"}));
}

TEST_F(EngineTest, TheFolderOfTheCopyIsClosedToOthersAndGoesWithTheEngine) {
  std::string path;
  std::string error;
  {
    CTNFileParserEngine other;
    ASSERT_TRUE(other.GetSideCopyPath(path, error)) << error;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
    std::string own;
    ASSERT_TRUE(engine.GetSideCopyPath(own, error));
    EXPECT_NE(std::filesystem::path(own).parent_path(), folder) << "each engine has its own";
  }
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(path).parent_path()));
}

TEST_F(EngineTest, TheCopyNeverTouchesOutputDone) {
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(Flags(), "applied");
  EXPECT_EQ(InFile().GetOutputPath(), "");
  InFile().SetOutputDone(true);
  InFile().SetOutputPath("/before");
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(Flags(), "applied done");
  EXPECT_EQ(InFile().GetOutputPath(), "/before");
}

TEST_F(EngineTest, AFailedApplicationWritesNoCopy) {
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  const std::string copy = SideCopy();
  Document().AddRecord(RecordKind::MultipleMatch, "takes nothing")->Validate();
  EXPECT_EQ(Apply(),
            "Internal error while parsing input file. File pointer was\nset backward or not "
            "advanced after read operation: Prev position = 0, current position = 0");
  EXPECT_EQ(Flags(), "stale");
  EXPECT_EQ(SideCopy(), copy);
}

// The copy itself waits until somebody asks for it or has nothing else to do.

TEST_F(EngineTest, ApplyingLeavesTheCopyUndoneUntilThereIsTimeForIt) {
  Load(TemplateFor("a"));
  Open("a\n");
  const std::string path = SideCopyPath();
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(BytesAt(path), "(none)");
  engine.WriteOwedSideCopy();
  EXPECT_EQ(BytesAt(path), ListOfWords({"a"}));
  std::filesystem::remove(path);
  engine.WriteOwedSideCopy();
  EXPECT_EQ(BytesAt(path), "(none)") << "it is written once";
}

TEST_F(EngineTest, ACopyThatIsOwedIsThatOfItsApplicationWhateverBecomesOfTheTemplate) {
  const auto changes = std::vector<std::function<void()>>{
      [this] { FieldOf(RecordOf(Document(), "E1"), 1).SetMatchValueText("b"); },
      [this] { RecordOf(Document(), "E1").ClearFields(); },
      [this] { Document().DeleteRecord(Document().FindRecordByID("A1")); },
      [this] { Load(TemplateFor("c"), "other.xml"); },
      [this] { EXPECT_FALSE(engine.LoadTemplate(PathOf("missing.xml"))); },
      [this] { engine.NewTemplate(); },
      [this] { engine.CloseInputFile(); },
      [this] { WriteFile("input.txt", "c\nc\nc\n"); },
  };
  engine.SetAutoApplicationFlags(0);
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(i);
    CTNParserTemplate document(nullptr);
    AddRecord(document, RecordKind::SingleMatch, "once", {String("b"), Newline()});
    AddRecord(document, RecordKind::Part, "line", {String("a"), Newline()},
              {Designator("A1.F1 F1"), PartNumber()});
    Load(XmlText(document));
    Open("b\na\n");
    ASSERT_EQ(Apply(), "ok");
    changes[i]();
    engine.OnTemplateChanged(ChangeKind::Modified, kRecordsModified);
    EXPECT_EQ(SideCopy(), ListOfWords({"ba"}));
    std::filesystem::remove(SideCopyPath());
  }
}

TEST_F(EngineTest, AnApplicationThatFailsOrIsCancelledLeavesWhatIsOwed) {
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  WriteFile("input.txt", "a\na\n");
  frontEnd.progress.cancelAtStep = 1;
  EXPECT_EQ(Apply(ShowProgress::Yes), "Operation cancelled (cancelled)");
  Document().AddRecord(RecordKind::MultipleMatch, "takes nothing")->Validate();
  EXPECT_NE(Apply(), "ok");
  EXPECT_EQ(SideCopy(), ListOfWords({"a"}));
}

TEST_F(EngineTest, ANewerCopyTakesThePlaceOfAnOlderOneOfTheSameNameOnly) {
  Load(TemplateFor("a|b|c"));
  const std::string path = SideCopyPath();
  const std::string folder = path.substr(0, path.rfind('/'));
  for (const std::string name : {"first.1.txt", "first.2.txt", "second.txt"}) {
    Open(name == "first.1.txt" ? "a\n" : name == "first.2.txt" ? "b\n" : "c\n", name);
    ASSERT_EQ(Apply(), "ok");
  }
  EXPECT_EQ(BytesAt(folder + "/first.xml"), ListOfWords({"b"}));
  EXPECT_EQ(BytesAt(folder + "/second.xml"), "(none)");
  Open("", "third.txt");
  EXPECT_EQ(SideCopyPath(), folder + "/third.xml");
  EXPECT_EQ(BytesAt(folder + "/second.xml"), ListOfWords({"c"}));
  EXPECT_EQ(SideCopy(), "(none)") << "nothing was applied to it";
}

TEST_F(EngineTest, ForgettingResultsWritesTheCopyThatIsOwedOfThem) {
  Load(TemplateFor("a"));
  Open("a\n");
  const std::string path = SideCopyPath();
  ASSERT_EQ(Apply(), "ok");
  const std::weak_ptr<const CTNParsedResult> result = InFile().GetBlocks().GetResult();
  engine.ForgetResults();
  EXPECT_EQ(BytesAt(path), ListOfWords({"a"}));
  EXPECT_TRUE(result.expired());
}

TEST_F(EngineTest, DeletingTheCopyDropsWhatIsOwedOfItAndKeepsThoseOfOtherFiles) {
  std::string error;
  Load(TemplateFor("a|b"));
  Open("a\n", "first.txt");
  const std::string first = SideCopyPath();
  ASSERT_EQ(Apply(), "ok");
  Open("b\n", "second.txt");
  EXPECT_TRUE(engine.DeleteSideCopy(error)) << error;
  EXPECT_EQ(BytesAt(first), ListOfWords({"a"}));
  ASSERT_EQ(Apply(), "ok");
  EXPECT_TRUE(engine.DeleteSideCopy(error)) << error;
  engine.WriteOwedSideCopy();
  EXPECT_EQ(SideCopy(), "(none)");
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(SideCopy(), ListOfWords({"b"}));
  EXPECT_TRUE(engine.DeleteSideCopy(error)) << error;
  EXPECT_EQ(SideCopy(), "(none)");
  EXPECT_TRUE(engine.DeleteSideCopy(error)) << "there is none any longer: " << error;
}

TEST_F(EngineTest, ACopyThatCannotBeDeletedSaysWhy) {
  Load(TemplateFor("a"));
  Open("a\n");
  const std::string path = SideCopyPath();
  std::filesystem::create_directories(path + "/inside");
  std::string error;
  EXPECT_FALSE(engine.DeleteSideCopy(error));
  EXPECT_EQ(error, "cannot delete " + path + ": Directory not empty");
}

TEST_F(EngineTest, ACopyIsPutOffAsAWhole) {
  constexpr std::size_t kManyPieces = 60'000;
  Load(TemplateFor("a"));
  Open("a\n");
  const std::string path = SideCopyPath();
  const std::string folder = path.substr(0, path.rfind('/'));
  ASSERT_EQ(Apply(), "ok");
  engine.WriteOwedSideCopy();
  std::string text;
  for (std::size_t i = 0; i < kManyPieces; ++i)
    text += "a\n";
  WriteFile("input.txt", text);
  ASSERT_EQ(Apply(), "ok");
  int asked = 0;
  for (int allowed = 0; allowed < 3; ++allowed) {
    asked = 0;
    engine.WriteOwedSideCopy([&] { return asked++ < allowed; });
    EXPECT_EQ(asked, allowed + 1);
    EXPECT_EQ(BytesAt(path), ListOfWords({"a"})) << "the one before";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
  }
  asked = 0;
  engine.WriteOwedSideCopy([&] { return ++asked > 0; });
  EXPECT_GT(asked, 3);
  EXPECT_EQ(BytesAt(path), List());
}

TEST_F(EngineTest, ACopyThatCannotBeWrittenIsNotOwedAnyLonger) {
  Load(TemplateFor("a"));
  Open("a\n");
  const std::string path = SideCopyPath();
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  ASSERT_EQ(Apply(), "ok");
  std::filesystem::remove(folder);
  engine.WriteOwedSideCopy();
  std::filesystem::create_directory(folder);
  engine.WriteOwedSideCopy();
  EXPECT_EQ(SideCopy(), "(none)");
  EXPECT_EQ(Log(), Texts{});
  EXPECT_EQ(frontEnd.errors, Texts{});
}

TEST_F(EngineTest, TheCopyCanBeSwitchedOff) {
  engine.SetSideCopy(SideCopy::No);
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(EngineTestIn::SideCopy(), "(none)");
}

TEST_F(EngineTest, AnApplicationSucceedsAlthoughItsCopyCannotBeWritten) {
  Load(TemplateFor("a"));
  Open("a\n");
  std::string path;
  std::string error;
  ASSERT_TRUE(engine.GetSideCopyPath(path, error)) << error;
  std::filesystem::remove(std::filesystem::path(path).parent_path());
  EXPECT_EQ(Apply(), "ok");
  EXPECT_EQ(Log(), Texts{});
  EXPECT_EQ(frontEnd.errors, Texts{});
}

// ------------------------------------------------------------------------------- edits

TEST_F(EngineTest, AnEditMarksTheTemplateModifiedAndTheResultsStale) {
  engine.SetAutoApplicationFlags(0);
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  engine.OnTemplateChanged(ChangeKind::Modified, kRecordsModified);
  EXPECT_TRUE(engine.IsTemplateModified());
  EXPECT_EQ(Flags(), "applied stale");
}

TEST_F(EngineTest, NoChangeClearsTheModifiedFlagAndAppliesNothing) {
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  WriteFile("input.txt", "a\na\n");
  Document().SetModified(ChangeKind::Modified);
  engine.OnTemplateChanged(ChangeKind::None, kAllEdits);
  EXPECT_FALSE(engine.IsTemplateModified());
  EXPECT_EQ(Flags(), "applied stale");
  EXPECT_EQ(engine.GetStats().totalBlocks, 1u);
}

TEST_F(EngineTest, AnEditAppliesTheTemplateAtOnceWhenTheSettingsAskForIt) {
  Load(TemplateFor("a"));
  Open("a\nb\n");
  for (std::uint32_t setting = 1; setting < 1024; setting *= 2) {
    for (std::uint32_t edit = 1; edit < 1024; edit *= 2) {
      ASSERT_EQ(Apply(), "ok");
      engine.SetAutoApplicationFlags(setting);
      engine.OnTemplateChanged(ChangeKind::Modified, edit);
      EXPECT_EQ(Flags(), setting == edit ? "applied" : "applied stale") << setting << ' ' << edit;
    }
  }
  EXPECT_EQ(frontEnd.captions, Texts{}) << "no progress window";
}

TEST_F(EngineTest, TheEditShowsInTheResultsAndInTheSideCopy) {
  Load(TemplateFor("a"));
  Open("a\nb\n");
  ASSERT_EQ(Apply(), "ok");
  FieldOf(RecordOf(Document(), "E1"), 1).SetMatchValueText("a|b");
  engine.OnTemplateChanged(ChangeKind::Modified, kInputFieldsModified);
  EXPECT_EQ(List(), ListOfWords({"a", "b"}));
  EXPECT_EQ(SideCopy(), ListOfWords({"a", "b"}));
}

TEST_F(EngineTest, AnEditAppliesNothingBeforeTheFirstApplication) {
  Load(TemplateFor("a"));
  Open("a\n");
  engine.OnTemplateChanged(ChangeKind::Modified, kAllEdits);
  EXPECT_EQ(Flags(), "stale");
  EXPECT_EQ(engine.GetStats().totalBlocks, 0u);
}

TEST_F(EngineTest, DeletingARecordWhileResultsAreShownIsSafe) {
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  Document().DeleteRecord(Document().FindRecordByID("E1"));
  engine.OnTemplateChanged(ChangeKind::Modified, kRecordsDeleted);
  EXPECT_EQ(List(), "<TN_FILEPARSER_ENTITIES></TN_FILEPARSER_ENTITIES>");
  EXPECT_EQ(engine.GetStats().unmatchedBlocks, 1u);
}

TEST_F(EngineTest, ANewTemplateMakesTheResultsStaleAndKeepsThem) {
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  Document().GetErrorLog().AddMessage("old");
  engine.NewTemplate();
  EXPECT_EQ(Flags(), "applied stale");
  EXPECT_EQ(Document().GetFilePath(), "unsaved");
  EXPECT_TRUE(Document().IsEmptyTemplate());
  EXPECT_FALSE(engine.IsTemplateModified());
  EXPECT_EQ(Log(), Texts{});
  EXPECT_EQ(engine.GetStats().totalBlocks, 1u);
  EXPECT_EQ(List(), "<TN_FILEPARSER_ENTITIES>\?\?</TN_FILEPARSER_ENTITIES>");
}

// ------------------------------------------------------------------------------- errors

TEST_F(EngineTest, OnlyErrorsThatAreToBeShownAtOnceReachTheFrontEndAllReachTheLog) {
  EXPECT_TRUE(engine.ReportError("later", ErrorShown::Later));
  EXPECT_TRUE(engine.ReportError("now", ErrorShown::AtOnce));
  EXPECT_EQ(Log(), (Texts{"later", "now"}));
  EXPECT_EQ(frontEnd.errors, Texts{"now"});
}

class EngineLocaleTest : public EngineTestIn<CommaLocaleTest> {};

TEST_F(EngineLocaleTest, TheSameTemplateGivesTheSameListUnderAnyLocale) {
  CTNParserTemplate document(nullptr);
  document.SetScaleFactor(25.4);
  AddRecord(document, RecordKind::Part, "part",
            {Alnum(), Space(), DecimalNum(), Space(), WholeNum(), Newline()},
            {Designator("F1"),
             PartNumber("F5"),
             {OutputTag::XLocation, "F3 1,5 12345"},
             {OutputTag::Scale, ""}});
  Load(XmlText(document));
  EXPECT_EQ(Document().GetScaleFactor(), 25.4);
  Open("R1 -1.25 1000\nR2 0,5 2000\n");
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(List(),
            "<TN_FILEPARSER_ENTITIES><ENTITY>Part<REF_DESIGNATOR>R1</REF_DESIGNATOR>"
            "<PART_NUMBER>1000</PART_NUMBER><X_LOCATION>-1.251,512345</X_LOCATION>"
            "<SCALE>25.400000</SCALE></ENTITY><ENTITY>Part<REF_DESIGNATOR>R2</REF_DESIGNATOR>"
            "<PART_NUMBER>2000</PART_NUMBER><X_LOCATION>0,51,512345</X_LOCATION>"
            "<SCALE>25.400000</SCALE></ENTITY></TN_FILEPARSER_ENTITIES>");
  ASSERT_TRUE(engine.SaveTemplate(PathOf("saved.xml")));
  EXPECT_EQ(BytesOf("saved.xml"), BytesOf("template.xml"));
}

}  // namespace
}  // namespace bomparser
