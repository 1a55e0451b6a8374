#include "entry/CTNFileParserEngine.h"
#include "tests/support/EngineTest.h"
#include "tests/support/FileSizeLimit.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <vector>

namespace bomparser {
namespace {

using namespace test;
using Texts = std::vector<std::string>;

class EngineFilesTest : public EngineTestIn<TestFolder> {
 protected:
  /// The entry that a failed save must leave, shown at once, with everything else as it was.
  void ExpectSaveFails(const std::string& path, const std::string& reason) {
    Document().SetModified(ChangeKind::Modified);
    const std::string before = Document().GetFilePath();
    EXPECT_FALSE(engine.SaveTemplate(path));
    EXPECT_EQ(Log(), Texts{reason});
    EXPECT_EQ(frontEnd.errors, Texts{reason});
    EXPECT_TRUE(engine.IsTemplateModified());
    EXPECT_EQ(Document().GetFilePath(), before);
  }
};

// ------------------------------------------------------------------------------- mapped inputs

/// Cuts the file at the path short at the first step that it is told.
class CuttingFrontEnd final : public CTNFrontEnd {
 public:
  std::unique_ptr<CTNProgress> BeginProgress(const std::string&) override {
    return std::make_unique<Progress>(*this);
  }
  void ShowError(std::string_view) override {}

  std::string path;

 private:
  class Progress final : public CTNProgress {
   public:
    explicit Progress(CuttingFrontEnd& frontEnd) : m_frontEnd(frontEnd) {}
    void SetText(std::string_view) override {}
    bool ShowsPosition() const override { return false; }
    void SetRange(std::int32_t, std::int32_t, std::int32_t) override {}
    bool StepAndPoll(std::uint32_t) override {
      if (!m_frontEnd.path.empty()) std::filesystem::resize_file(m_frontEnd.path, 10);
      m_frontEnd.path.clear();
      return false;
    }
    bool IsCancelled() const override { return false; }

   private:
    CuttingFrontEnd& m_frontEnd;
  };
};

class MappedInputTest : public TestFolder {
 protected:
  void SetUp() override {
    TestFolder::SetUp();
    std::string text;
    while (text.size() < std::size_t{2} << 20)
      text += "some words\n";
    WriteFile("in", text);
    WriteFile("template.xml", TemplateFor("some words"));
    ASSERT_TRUE(engine.LoadTemplate(PathOf("template.xml")));
    engine.GetInputFile()->SetMapping(true);
    std::string error;
    ASSERT_TRUE(engine.OpenInputFile(PathOf("in"), error)) << error;
  }
  std::string Apply() {
    std::string error;
    bool cancelled = false;
    return engine.ApplyTemplate(error, cancelled, ShowProgress::Yes) ? "ok" : error;
  }
  std::string CutShortText() const {
    return "cannot read " + PathOf("in") + ": it was cut short meanwhile";
  }

  CuttingFrontEnd frontEnd;
  CTNFileParserEngine engine{&frontEnd};
};

TEST_F(MappedInputTest, AnInputThatIsCutShortWhileItIsAppliedFails) {
  for (const unsigned threads : {1U, 3U}) {
    SetUp();
    engine.SetThreads(threads);
    frontEnd.path = PathOf("in");
    EXPECT_EQ(Apply(), CutShortText());
    EXPECT_FALSE(engine.GetInputFile()->IsApplied());
  }
}

TEST_F(MappedInputTest, AnInputThatIsCutShortWhileItsListIsWrittenFails) {
  ASSERT_EQ(Apply(), "ok");
  std::string error;
  const auto cut = [this](std::string_view) {
    std::filesystem::resize_file(PathOf("in"), 10);
    return true;
  };
  EXPECT_FALSE(engine.WriteEntityList(cut, error));
  EXPECT_EQ(error, CutShortText());
  EXPECT_FALSE(engine.OutputEntityList(PathOf("out.xml"), error));
  EXPECT_EQ(BytesOf("out.xml"), "(none)");
}

TEST_F(MappedInputTest, NoSideCopyIsMadeOfWhatIsCutShort) {
  ASSERT_EQ(Apply(), "ok");
  std::filesystem::resize_file(PathOf("in"), 10);
  std::string path;
  std::string error;
  ASSERT_TRUE(engine.GetSideCopyPath(path, error));
  EXPECT_EQ(BytesAt(path), "(none)");
}

TEST_F(MappedInputTest, AFailureToReadIsToldAsWhatItIs) {
  ASSERT_EQ(Apply(), "ok");
  std::filesystem::resize_file(PathOf("in"), 10);
  std::string error;
  ASSERT_TRUE(engine.OpenInputFile("/proc/self/mem", error)) << error;
  EXPECT_EQ(Apply(), "cannot read /proc/self/mem: Input/output error");
}

// ------------------------------------------------------------------------------- loading

TEST_F(EngineFilesTest, LoadingStoresThePathAndMakesResultsStale) {
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  Document().SetModified(ChangeKind::Modified);
  Load(TemplateFor("b"), "other.xml");
  EXPECT_EQ(Document().GetFilePath(), PathOf("other.xml"));
  EXPECT_FALSE(engine.IsTemplateModified());
  EXPECT_FALSE(Document().IsEmptyTemplate());
  EXPECT_EQ(Flags(), "applied stale");
  EXPECT_EQ(Log(), Texts{});
}

TEST_F(EngineFilesTest, AFileThatIsNotWellFormedLeavesThreeEntriesShownLater) {
  WriteFile("bad.xml", "<PARSER_TEMPLATE>\n<TITLE>x</TITEL> \t \n</PARSER_TEMPLATE>\n");
  Document().GetErrorLog().AddMessage("old");
  EXPECT_FALSE(engine.LoadTemplate(PathOf("bad.xml")));
  ASSERT_EQ(Document().GetErrorLog().GetErrors().size(), 3u);
  EXPECT_EQ(Log()[0], "Error detected at line 2 while loading " + PathOf("bad.xml"));
  EXPECT_EQ(Log()[1], "Line Text: <TITLE>x</TITEL>") << "trailing blanks are left out";
  EXPECT_EQ(Log()[2], Document().LastParseFailure().reason);
  EXPECT_NE(Log()[2], "");
  EXPECT_EQ(frontEnd.errors, Texts{}) << "not at once";
}

TEST_F(EngineFilesTest, AFailedLoadLeavesTheTemplateReset) {
  Load(TemplateFor("a"));
  WriteFile("bad.xml", "<PARSER_TEMPLATE><TITLE>x</TITLE>");
  EXPECT_FALSE(engine.LoadTemplate(PathOf("bad.xml")));
  EXPECT_EQ(Document().GetFilePath(), "unsaved");
  EXPECT_EQ(Document().GetTitle(), "untitled");
  EXPECT_TRUE(Document().GetEntityRecords().empty());
  EXPECT_TRUE(Document().IsEmptyTemplate());
  EXPECT_TRUE(InFile().IsStale());
}

TEST_F(EngineFilesTest, AFileThatCannotBeReadHasNoLineText) {
  EXPECT_FALSE(engine.LoadTemplate(PathOf("missing.xml")));
  ASSERT_EQ(Log().size(), 2u);
  EXPECT_EQ(Log()[0], "Error detected at line 0 while loading " + PathOf("missing.xml"));
  EXPECT_NE(Log()[1].find("No such file or directory"), std::string::npos) << Log()[1];
}

TEST_F(EngineFilesTest, AnEmptyFileAndABlankFaultyLineHaveNoLineText) {
  WriteFile("empty.xml", "");
  EXPECT_FALSE(engine.LoadTemplate(PathOf("empty.xml")));
  ASSERT_EQ(Log().size(), 2u);
  EXPECT_EQ(Log()[0].find("Error detected at line "), 0u);
  WriteFile("blank.xml", "<a>\n   ");
  EXPECT_FALSE(engine.LoadTemplate(PathOf("blank.xml")));
  EXPECT_EQ(Log().size(), 2u) << LogText();
}

TEST_F(EngineFilesTest, ADocumentThatIsNoTemplateIsToldLater) {
  WriteFile("page.xml", "<html><body/></html>");
  EXPECT_FALSE(engine.LoadTemplate(PathOf("page.xml")));
  EXPECT_EQ(Log(), Texts{PathOf("page.xml") +
                         " is not a parser template: no element of a template was found in it"});
  EXPECT_EQ(frontEnd.errors, Texts{});
  EXPECT_EQ(Document().GetFilePath(), "unsaved");
}

TEST_F(EngineFilesTest, TemplatesInOtherEncodingsAreRead) {
  WriteFile("latin.xml",
            "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
            "<PARSER_TEMPLATE><TITLE>\xE9</TITLE></PARSER_TEMPLATE>");
  ASSERT_TRUE(engine.LoadTemplate(PathOf("latin.xml"))) << LogText();
  EXPECT_EQ(Document().GetTitle(), "\xC3\xA9");
}

// ------------------------------------------------------------------------------- saving

TEST_F(EngineFilesTest, SavingWritesTheTemplateStoresThePathAndClearsModified) {
  Load(TemplateFor("a"));
  Document().SetTitle("new title");
  Document().SetModified(ChangeKind::Modified);
  EXPECT_TRUE(engine.SaveTemplate(PathOf("saved.xml")));
  EXPECT_EQ(BytesOf("saved.xml"), XmlText(Document()));
  EXPECT_EQ(Document().GetFilePath(), PathOf("saved.xml"));
  EXPECT_FALSE(engine.IsTemplateModified());
  EXPECT_EQ(Log(), Texts{});
  EXPECT_EQ(Names(), (Texts{"saved.xml", "template.xml"}));
}

TEST_F(EngineFilesTest, ASavedTemplateLoadsAndGivesTheSameList) {
  Load(TemplateFor("a|b"));
  Open("a\nb\n");
  ASSERT_EQ(Apply(), "ok");
  const std::string list = List();
  ASSERT_TRUE(engine.SaveTemplate(PathOf("saved.xml")));
  ASSERT_TRUE(engine.LoadTemplate(PathOf("saved.xml")));
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(List(), list);
}

TEST_F(EngineFilesTest, SavingReplacesAnOldFile) {
  WriteFile("saved.xml", std::string(100000, 'x'));
  EXPECT_TRUE(engine.SaveTemplate(PathOf("saved.xml")));
  EXPECT_EQ(BytesOf("saved.xml"), XmlText(Document()));
}

TEST_F(EngineFilesTest, ControlCharactersAreRefusedAndTheOldFileStays) {
  WriteFile("saved.xml", "old");
  Document().SetTitle("a\x07z");
  ExpectSaveFails(PathOf("saved.xml"),
                  "Text of element TITLE cannot be stored in XML: it holds the character U+0007 at "
                  "position 2");
  EXPECT_EQ(BytesOf("saved.xml"), "old");
  EXPECT_EQ(Names(), Texts{"saved.xml"});
}

TEST_F(EngineFilesTest, AFullDiskLeavesTheOldFileAndNothingBesideIt) {
  WriteFile("saved.xml", "old");
  Document().SetTitle(std::string(100000, 't'));
  {
    const FileSizeLimit limit(5000);
    ExpectSaveFails(PathOf("saved.xml"),
                    "cannot write " + PathOf("saved.xml") + ": File too large");
  }
  EXPECT_EQ(BytesOf("saved.xml"), "old");
  EXPECT_EQ(Names(), Texts{"saved.xml"});
}

TEST_F(EngineFilesTest, AFolderThatIsGoneIsTold) {
  MakeFolder("gone");
  std::filesystem::remove(PathOf("gone"));
  ExpectSaveFails(PathOf("gone/saved.xml"),
                  "cannot write " + PathOf("gone/saved.xml") + ": No such file or directory");
}

TEST_F(EngineFilesTest, AFileThatMustNotBeWrittenStays) {
  WriteFile("saved.xml", "old");
  std::filesystem::permissions(PathOf("saved.xml"), std::filesystem::perms::owner_read);
  ExpectSaveFails(PathOf("saved.xml"),
                  "cannot write " + PathOf("saved.xml") + ": Permission denied");
  EXPECT_EQ(BytesOf("saved.xml"), "old");
}

TEST_F(EngineFilesTest, AFolderCannotBeSavedOver) {
  MakeFolder("folder");
  ExpectSaveFails(PathOf("folder"), "cannot write " + PathOf("folder") + ": Is a directory");
}

// ------------------------------------------------------------------------------- entity lists

TEST_F(EngineFilesTest, OutputWritesTheListStoresThePathAndSetsOutputDone) {
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  WriteFile("list.xml", std::string(100000, 'x'));
  std::string error;
  EXPECT_TRUE(engine.OutputEntityList(PathOf("list.xml"), error)) << error;
  EXPECT_EQ(BytesOf("list.xml"), ListOfWords({"a"}));
  EXPECT_EQ(InFile().GetOutputPath(), PathOf("list.xml"));
  EXPECT_EQ(Flags(), "applied done");
}

TEST_F(EngineFilesTest, AnOutputThatIsCancelledWritesNothingAndIsNoEntryOfTheLog) {
  WriteFile("list.xml", "before");
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  std::string error;
  EXPECT_FALSE(engine.OutputEntityList(PathOf("list.xml"), error, [] { return false; }));
  EXPECT_EQ(error, "Operation cancelled");
  EXPECT_EQ(BytesOf("list.xml"), "before");
  EXPECT_EQ(Flags(), "applied");
  EXPECT_TRUE(Log().empty());
}

TEST_F(EngineFilesTest, AListThatCannotBeCreatedIsToldTheCallerOnly) {
  std::string error;
  EXPECT_FALSE(engine.OutputEntityList(PathOf("gone/list.xml"), error));
  EXPECT_EQ(error, "cannot write " + PathOf("gone/list.xml") + ": No such file or directory");
  EXPECT_EQ(Log(), Texts{});
  EXPECT_EQ(Flags(), "stale");
  EXPECT_EQ(InFile().GetOutputPath(), "");
}

TEST_F(EngineFilesTest, AListThatFailsUnderWayIsReportedAndTheOldOneStays) {
  Load(TemplateFor("a"));
  std::string text;
  for (int i = 0; i < 1000; ++i)
    text += "a\n";
  Open(text);
  ASSERT_EQ(Apply(), "ok");
  WriteFile("list.xml", "old");
  const std::string reason = "cannot write " + PathOf("list.xml") + ": File too large";
  std::string error;
  {
    const FileSizeLimit limit(5000);
    EXPECT_FALSE(engine.OutputEntityList(PathOf("list.xml"), error));
  }
  EXPECT_EQ(error, reason);
  EXPECT_EQ(Log(), Texts{reason});
  EXPECT_EQ(frontEnd.errors, Texts{}) << "not at once: the caller tells it";
  EXPECT_EQ(BytesOf("list.xml"), "old");
  EXPECT_EQ(Flags(), "applied");
  EXPECT_EQ(InFile().GetOutputPath(), "");
}

}  // namespace
}  // namespace bomparser
