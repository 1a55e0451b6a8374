// What stays in memory while one engine works for a long time.

#include "entry/CTNFileParserEngine.h"
#include "tests/support/EngineTest.h"
#include "tests/support/LiveMemory.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace bomparser {
namespace {

using namespace test;

class EngineLiveMemoryTest : public EngineTestIn<TestFolder> {
 protected:
  EngineLiveMemoryTest() {
    MakeFolder("search");
    WriteFile("search/none.xml", TemplateFor("zzz"));
    WriteFile("search/best.xml", TemplateFor("a|b|c"));
    WriteFile("search/some.xml", TemplateFor("a"));
    WriteFile("search/broken.xml", "<PARSER_TEMPLATE>");
    WriteFile("best.xml", TemplateWithSubRecords());
    WriteFile("first.txt", "S1\na,x,y\nzzz\nb,y\n");
    std::string words;
    for (const char* word : {"a\n", "b\n", "c\n", "d\n"}) {
      for (std::size_t i = 0; i < kLinesOfAWord; ++i)
        words += word;
    }
    WriteFile("second.txt", words);
    engine.SetTemplateSearchPath(PathOf("search"));
  }

  static std::string TemplateWithSubRecords() {
    CTNParserTemplate document(nullptr);
    AddRecord(document, RecordKind::SubRecord, "a part of a line", {String(","), Alpha()});
    AddRecord(document, RecordKind::SingleMatch, "once", {String("S"), WholeNum(), Newline()});
    AddRecord(document, RecordKind::Part, "a line", {String("a|b"), SubRecord("A1"), Newline()},
              {Designator("F1 F2"), PartNumber("A2.F2")});
    Relink(document);
    return XmlText(document);
  }

  /// A bit of everything that people do with the dialog in a working day.
  void Work() {
    LoadAndApply();
    Edit();
    ApplyInVain();
    Look();
    FindAndOutput();
    frontEnd = {};
  }

  void OpenFile(const std::string& name) {
    std::string error;
    ASSERT_TRUE(engine.OpenInputFile(PathOf(name), error)) << error;
  }
  void ApplyOnceMore(const std::string& expected = "ok", ShowProgress show = ShowProgress::No) {
    ++m_applications;
    ASSERT_EQ(Apply(show), expected);
  }
  void Change() {
    ++m_applications;
    engine.OnTemplateChanged(ChangeKind::Modified, kRecordsModified);
    ASSERT_FALSE(InFile().IsStale());
  }

  void LoadAndApply() {
    ASSERT_TRUE(engine.LoadTemplate(PathOf("best.xml")));
    OpenFile("first.txt");
    ApplyOnceMore("ok", ShowProgress::Yes);
    ASSERT_EQ(engine.GetStats().entityBlocks, 2u);
  }

  void Edit() {
    CTNTemplRecInField& words = FieldOf(RecordOf(Document(), "E1"), 1);
    for (const char* text : {"a", "a|b"}) {
      words.SetMatchValueText(text);
      Change();
    }
    AddRecord(Document(), RecordKind::MultipleMatch, "new", {Alpha(), Newline()}, {});
    Change();
    engine.WriteOwedSideCopy();
    ASSERT_TRUE(Document().DeleteRecord(Document().FindRecordByID("A3")));
    Change();
  }

  void ApplyInVain() {
    frontEnd.progress.cancelAtStep = 2;
    ApplyOnceMore("Operation cancelled (cancelled)", ShowProgress::Yes);
    frontEnd = {};
    Document().AddRecord(RecordKind::MultipleMatch, "takes nothing")->Validate();
    std::string error;
    bool cancelled = false;
    ++m_applications;
    ASSERT_FALSE(engine.ApplyTemplate(error, cancelled, ShowProgress::No));
    ASSERT_TRUE(Document().DeleteRecord(Document().FindRecordByID("A3")));
    ApplyOnceMore();
  }

  void Look() {
    const CTNParsedBlockPtrArray& blocks = InFile().GetBlocks();
    std::string text;
    for (std::size_t i = 0; i < blocks.GetSize(); ++i) {
      const CTNParsedFileBlock block = blocks.GetAt(i);
      for (std::size_t row = 0; row < block.GetRowCount(); ++row)
        block.GetRowText(text, row, Markup::On, Newlines::Shown);
    }
    ASSERT_EQ(blocks.GetBlockCount(Document().FindRecordByID("A1")), 3u);
  }

  void FindAndOutput() {
    OpenFile("second.txt");
    std::string error;
    bool cancelled = false;
    m_applications += 3;
    ASSERT_TRUE(engine.FindTemplate(error, cancelled, ShowProgress::Yes)) << error;
    ASSERT_EQ(Document().GetFilePath(), PathOf("search/best.xml"));
    ASSERT_EQ(engine.GetStats().entityBlocks, 3 * kLinesOfAWord);
    ASSERT_TRUE(engine.OutputEntityList(PathOf("list.xml"), error)) << error;
    ASSERT_TRUE(engine.SaveTemplate(PathOf("saved.xml")));
    ASSERT_EQ(SideCopy(), BytesOf("list.xml"));
  }

  static constexpr std::size_t kLinesOfAWord = 50;
  int m_applications = 0;
};

TEST_F(EngineLiveMemoryTest, AThousandApplicationsLeaveNoMoreInMemoryThanTheFirstFew) {
  const LiveMemory memory;
  // What is made once is there, and every list has reached its size.
  for (int i = 0; i < 4; ++i) {
    ASSERT_NO_FATAL_FAILURE(Work());
  }
  const LiveMemory::Count before = memory.GetCount();
  EXPECT_GT(before.pieces, 0u);
  m_applications = 0;
  while (m_applications < 1000) {
    ASSERT_NO_FATAL_FAILURE(Work());
  }
  const LiveMemory::Count after = memory.GetCount();
  EXPECT_EQ(after.pieces, before.pieces);
  EXPECT_EQ(after.bytes, before.bytes);
}

}  // namespace
}  // namespace bomparser
