// The engine where memory ends: nothing is thrown, and what failed leaves no half of anything.

#include "entry/CTNFileParserEngine.h"
#include "tests/support/EngineTest.h"
#include "tests/support/FailingMemory.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bomparser {
namespace {

using namespace test;
using Texts = std::vector<std::string>;

class EngineMemoryTest : public EngineTestIn<TestFolder> {
 protected:
  /// Runs the operation, which answers whether it did its work, with each of its allocations
  /// failing in turn; between `prepare` and `check(done)`. Nothing may be thrown, and without a
  /// failure everything must be done. At least one attempt must have failed.
  template <class Prepare, class Operation, class Check>
  static void ForEveryFailure(Prepare prepare, Operation operation, Check check) {
    int undone = 0;
    ForEveryAllocation([&](std::int64_t granted) {
      SCOPED_TRACE(granted);
      prepare();
      bool done = false;
      bool failed = false;
      {
        const FailingMemory memory(granted);
        EXPECT_NO_THROW(done = operation());
        failed = memory.HasFailed();
      }
      EXPECT_TRUE(done || failed);
      if (!done) ++undone;
      check(done);
      return failed;
    });
    EXPECT_GT(undone, 0);
  }

  /// Runs an operation that cannot succeed with each of its allocations failing in turn. Its error
  /// must always be told: the expected one, or that memory has ended.
  template <class Operation>
  static void ExpectFails(const std::string& expected, Operation operation) {
    ForEveryAllocation([&](std::int64_t granted) {
      SCOPED_TRACE(granted);
      std::string error;
      bool failed = false;
      {
        const FailingMemory memory(granted);
        EXPECT_NO_THROW(EXPECT_FALSE(operation(error)));
        failed = memory.HasFailed();
      }
      EXPECT_EQ(error, failed && error != expected ? NoMemory() : expected);
      return failed;
    });
  }

  /// A template with records of most kinds.
  static std::string MixedTemplate() {
    CTNParserTemplate document(nullptr);
    document.SetTitle("a title that is not short");
    AddRecord(document, RecordKind::SubRecord, "a part of a line", {String(","), Alpha()});
    AddRecord(document, RecordKind::SingleMatch, "once", {String("S"), WholeNum(), Newline()});
    AddRecord(document, RecordKind::Part, "a line", {String("a|b"), SubRecord("A1"), Newline()},
              {Designator("F1"),
               PartNumber("A2.F2"),
               {OutputTag::XLocation, "\"a text that is not short\" F2"}});
    Relink(document);
    return XmlText(document);
  }
  static void ExpectNew(CTNParserTemplate& document) {
    EXPECT_TRUE(document.IsEmptyTemplate());
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(document.GetFilePath(), "unsaved");
    EXPECT_EQ(XmlText(document), XmlOfNewTemplate());
  }
  static std::string XmlOfNewTemplate() {
    CTNParserTemplate document(nullptr);
    return XmlText(document);
  }
  void ExpectNextApplicationSucceeds(const std::string& list) {
    EXPECT_EQ(Apply(), "ok");
    EXPECT_EQ(List(), list);
    EXPECT_EQ(SideCopy(), list);
  }
  /// What no record takes is kept by the template itself. To be called with a file of one such line
  /// open.
  static void ExpectKeepsAnUnmatchedLine(CTNFileParserEngine& keeping, const std::string& line) {
    std::string error;
    bool cancelled = false;
    EXPECT_TRUE(keeping.ApplyTemplate(error, cancelled, ShowProgress::No)) << error;
    ASSERT_EQ(keeping.GetStats().totalBlocks, 1u);
    EXPECT_EQ(keeping.GetInputFile()->GetBlocks().GetAt(0).ToReadableText(),
              "\?\?{F1=" + line + "|F2=}");
  }
  /// A new file in the place of the old one, which the disk need not be waited for.
  void Replace(const std::string& name, const std::string& text) const {
    std::filesystem::remove(PathOf(name));
    WriteFile(name, text);
  }
  static const std::string& NoMemory() { return XmlStatusText(kXmlOutOfMemory); }
};

// ------------------------------------------------------------------------------- template

TEST_F(EngineMemoryTest, ATemplateIsLoadedOrLeftEmptyAndWhatIsLeftOutIsTold) {
  const std::string path = PathOf("a name that is longer.xml");
  const std::string mixed = MixedTemplate();
  WriteFile("a name that is longer.xml", mixed);
  WriteFile("template.xml", TemplateFor("a"));
  engine.SetSideCopy(SideCopy::No);
  Open("zzz\n");
  const auto prepare = [this] { ASSERT_TRUE(engine.LoadTemplate(PathOf("template.xml"))); };
  const auto check = [&](bool loaded) {
    EXPECT_TRUE(InFile().IsStale());
    if (loaded) {
      EXPECT_EQ(Document().GetFilePath(), path);
      EXPECT_FALSE(Document().IsEmptyTemplate());
      EXPECT_EQ(XmlText(Document()) == mixed, Log().empty());
    } else {
      ExpectNew(Document());
      EXPECT_NE(Log(), Texts{});
    }
    ExpectKeepsAnUnmatchedLine(engine, "zzz");
  };
  ForEveryFailure(
      prepare, [&] { return engine.LoadTemplate(path); }, check);
}

TEST_F(EngineMemoryTest, ATemplateThatDoesNotLoadLeavesAnEmptyOne) {
  WriteFile("bad.xml", "<PARSER_TEMPLATE>\n<TITLE>a title that is not short</TITEL>\n");
  WriteFile("page.xml", "<html><body/></html>");
  for (const std::string name : {"bad.xml", "page.xml", "missing.xml"}) {
    SCOPED_TRACE(name);
    const std::string path = PathOf(name);
    ExpectFails("", [&](std::string&) { return engine.LoadTemplate(path); });
    ExpectNew(Document());
  }
}

TEST_F(EngineMemoryTest, ANewTemplateIsAWholeOne) {
  WriteFile("template.xml", TemplateFor("a"));
  engine.SetSideCopy(SideCopy::No);
  Open("a\n");
  ForEveryAllocation([this](std::int64_t granted) {
    SCOPED_TRACE(granted);
    EXPECT_TRUE(engine.LoadTemplate(PathOf("template.xml")));
    bool failed = false;
    {
      const FailingMemory memory(granted);
      EXPECT_NO_THROW(engine.NewTemplate());
      failed = memory.HasFailed();
    }
    ExpectNew(Document());
    ExpectKeepsAnUnmatchedLine(engine, "a");
    return failed;
  });
}

TEST_F(EngineMemoryTest, ATemplateIsSavedWholeOrNotAtAll) {
  const std::string path = PathOf("saved.xml");
  const std::string xml = TemplateFor("a");
  const auto prepare = [&] {
    WriteFile("saved.xml", "old");
    Load(xml);
    Document().SetModified(ChangeKind::Modified);
    frontEnd.errors.clear();
  };
  const auto check = [&](bool saved) {
    EXPECT_EQ(BytesOf("saved.xml"), saved ? xml : "old");
    EXPECT_EQ(Names(), (Texts{"saved.xml", "template.xml"}));
    EXPECT_EQ(Document().GetFilePath(), saved ? path : PathOf("template.xml"));
    EXPECT_EQ(engine.IsTemplateModified(), !saved);
    EXPECT_EQ(Log(), saved ? Texts() : Texts{NoMemory()});
    EXPECT_EQ(frontEnd.errors, saved ? Texts() : Texts{NoMemory()});
    EXPECT_EQ(XmlText(Document()), xml);
  };
  ForEveryFailure(
      prepare, [&] { return engine.SaveTemplate(path); }, check);
}

// ------------------------------------------------------------------------------- input file

TEST_F(EngineMemoryTest, AFileIsOpenOrTheFailureIsTold) {
  WriteFile("a name that is longer.txt", "b\n");
  const std::string path = PathOf("a name that is longer.txt");
  std::string error;
  const auto prepare = [&] {
    Open("a\n");
    error.clear();
  };
  const auto check = [&](bool opened) {
    EXPECT_EQ(InFile().IsOpen(), opened);
    EXPECT_EQ(error, opened ? "" : NoMemory());
  };
  ForEveryFailure(
      prepare, [&] { return engine.OpenInputFile(path, error); }, check);
}

TEST_F(EngineMemoryTest, AFileThatCannotBeOpenedIsTold) {
  const std::string missing = PathOf("missing.txt");
  ExpectFails("cannot read " + missing + ": No such file or directory",
              [&](std::string& error) { return engine.OpenInputFile(missing, error); });
}

TEST_F(EngineMemoryTest, AnEmptyInputPathIsTold) {
  CTNFileParserEngine alone;
  ExpectFails("No input file specified",
              [&](std::string& error) { return alone.OpenInputFile("", error); });
}

// ------------------------------------------------------------------------------- applying

TEST_F(EngineMemoryTest, AnApplicationIsDoneOrTheFailureIsToldAndTheSideCopyIsWhole) {
  std::string text = "S1\na,x\n";
  std::string other = "S1\na,x\nzzz\nb,y\n";
  Load(MixedTemplate());
  Open(text);
  ASSERT_EQ(Apply(), "ok");
  std::string list = List();
  ASSERT_EQ(engine.GetStats().entityBlocks, 1u);
  Replace("input.txt", other);
  ASSERT_EQ(Apply(), "ok");
  std::string otherList = List();
  std::string error;
  bool cancelled = false;
  const auto prepare = [&] {
    error.clear();
    Replace("input.txt", text);
  };
  const auto check = [&](bool applied) {
    EXPECT_EQ(Flags(), applied ? "applied" : "stale");
    EXPECT_EQ(applied, error.empty());
    const std::string copy = SideCopy();
    EXPECT_TRUE(applied ? copy == list || copy == "(none)" : copy == otherList) << copy;
    ExpectNextApplicationSucceeds(list);
    std::swap(text, other);
    std::swap(list, otherList);
  };
  const auto apply = [&] { return engine.ApplyTemplate(error, cancelled, ShowProgress::No); };
  ForEveryFailure(prepare, apply, check);
}

TEST_F(EngineMemoryTest, TheFirstApplicationOfAnEngineIsDoneOrTheFailureIsTold) {
  WriteFile("template.xml", TemplateFor("a"));
  WriteFile("input.txt", "a\n");
  std::unique_ptr<CTNFileParserEngine> fresh;
  std::string error;
  bool cancelled = false;
  const auto prepare = [&] {
    fresh = std::make_unique<CTNFileParserEngine>();
    ASSERT_TRUE(fresh->LoadTemplate(PathOf("template.xml")));
    ASSERT_TRUE(fresh->OpenInputFile(PathOf("input.txt"), error));
  };
  const auto check = [&](bool applied) {
    EXPECT_EQ(applied, error.empty());
    EXPECT_TRUE(fresh->ApplyTemplate(error, cancelled, ShowProgress::No)) << error;
  };
  const auto apply = [&] { return fresh->ApplyTemplate(error, cancelled, ShowProgress::No); };
  ForEveryFailure(prepare, apply, check);
}

TEST_F(EngineMemoryTest, WithoutAFileTheFailureOfAnApplicationIsTold) {
  bool cancelled = false;
  ExpectFails("Input file not opened for read", [&](std::string& error) {
    return engine.ApplyTemplate(error, cancelled, ShowProgress::No);
  });
}

TEST_F(EngineMemoryTest, AnEditIsAppliedAtOnceOrTheResultsAreStale) {
  Load(TemplateFor("a"));
  Open("a\nb\n");
  const std::string before = ListOfWords({"a"});
  const std::string after = ListOfWords({"a", "b"});
  const auto edit = [this](const char* words) {
    FieldOf(RecordOf(Document(), "E1"), 1).SetMatchValueText(words);
  };
  const auto prepare = [&] {
    edit("a");
    ASSERT_EQ(Apply(), "ok");
    edit("a|b");
  };
  const auto change = [this] {
    engine.OnTemplateChanged(ChangeKind::Modified, kInputFieldsModified);
    return !InFile().IsStale();
  };
  const auto check = [&](bool applied) {
    EXPECT_TRUE(engine.IsTemplateModified());
    EXPECT_EQ(Flags(), applied ? "applied" : "stale");
    const std::string copy = SideCopy();
    EXPECT_TRUE(applied ? copy == after || copy == "(none)" : copy == before) << copy;
    ExpectNextApplicationSucceeds(after);
  };
  ForEveryFailure(prepare, change, check);
}

TEST_F(EngineMemoryTest, AnEntityListIsWrittenWholeOrNotAtAll) {
  Load(TemplateFor("a"));
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  const std::string path = PathOf("list.xml");
  std::string error;
  const auto prepare = [&] {
    WriteFile("list.xml", "old");
    InFile().SetOutputDone(false);
    InFile().SetOutputPath("/before");
  };
  const auto check = [&](bool written) {
    EXPECT_EQ(error, written ? "" : NoMemory());
    EXPECT_EQ(BytesOf("list.xml"), written ? ListOfWords({"a"}) : "old");
    EXPECT_EQ(Names(), (Texts{"input.txt", "list.xml", "template.xml"}));
    EXPECT_EQ(InFile().GetOutputPath(), written ? path : "/before");
    EXPECT_EQ(Flags(), written ? "applied done" : "applied");
  };
  ForEveryFailure(
      prepare, [&] { return engine.OutputEntityList(path, error); }, check);
}

TEST_F(EngineMemoryTest, AnEntityListWithoutAFolderIsTold) {
  const std::string path = PathOf("missing/list.xml");
  ExpectFails("cannot write " + path + ": No such file or directory",
              [&](std::string& error) { return engine.OutputEntityList(path, error); });
}

TEST_F(EngineMemoryTest, TheSideCopyHasAPathOrTheFailureIsTold) {
  std::unique_ptr<CTNFileParserEngine> fresh;
  std::string path;
  std::string error;
  const auto prepare = [&] {
    fresh = std::make_unique<CTNFileParserEngine>();
    path.clear();
    error.clear();
  };
  ForEveryFailure(
      prepare, [&] { return fresh->GetSideCopyPath(path, error); },
      [&](bool given) { EXPECT_EQ(error.empty(), given); });
}

// ------------------------------------------------------------------------------- find

/// Lets memory end so many allocations after the first trial begins: the folder has been listed
/// then. The system's own listing ends the program where there is no memory for it.
class MemoryEndsInTrials final : public CTNFrontEnd {
 public:
  std::unique_ptr<CTNProgress> BeginProgress(const std::string&) override {
    if (!m_memory) m_memory.emplace(granted);
    return nullptr;
  }
  void ShowError(std::string_view) override {}
  /// True when it has ended; from now on there is enough.
  bool Restore() {
    const bool failed = m_memory->HasFailed();
    m_memory.reset();
    return failed;
  }

  std::int64_t granted = 0;

 private:
  std::optional<FailingMemory> m_memory;
};

TEST_F(EngineMemoryTest, ASearchNeverThrowsAndTheNextApplicationReadsTheFileAnew) {
  MakeFolder("search");
  WriteFile("search/one.xml", TemplateFor("a"));
  WriteFile("search/two.xml", TemplateFor("b"));
  WriteFile("template.xml", TemplateFor("c"));
  MemoryEndsInTrials trials;
  CTNFileParserEngine searching(&trials);
  searching.SetSideCopy(SideCopy::No);
  searching.SetTemplateSearchPath(PathOf("search"));
  int unfinished = 0;
  ForEveryAllocation([&](std::int64_t granted) {
    SCOPED_TRACE(granted);
    Replace("input.txt", "a\nb\nc\n");
    std::string error;
    bool cancelled = false;
    bool found = false;
    trials.granted = granted;
    EXPECT_TRUE(searching.LoadTemplate(PathOf("template.xml")));
    EXPECT_TRUE(searching.OpenInputFile(PathOf("input.txt"), error)) << error;
    EXPECT_NO_THROW(found = searching.FindTemplate(error, cancelled, ShowProgress::Yes));
    const bool failed = trials.Restore();
    EXPECT_TRUE(found || !error.empty());
    EXPECT_FALSE(cancelled);
    if (!found) ++unfinished;
    Replace("input.txt", "c\n");
    EXPECT_TRUE(searching.LoadTemplate(PathOf("template.xml")));
    EXPECT_TRUE(searching.ApplyTemplate(error, cancelled, ShowProgress::No)) << error;
    EXPECT_EQ(searching.GetStats().totalBlocks, 1u);
    EXPECT_EQ(searching.GetStats().entityBlocks, 1u);
    return failed;
  });
  EXPECT_GT(unfinished, 0);
}

// ------------------------------------------------------------------------------- the engine

TEST_F(EngineMemoryTest, AnEngineIsMadeWholeOrNotAtAll) {
  WriteFile("input.txt", "zzz\n");
  const std::string path = PathOf("input.txt");
  ForEveryAllocation([&](std::int64_t granted) {
    SCOPED_TRACE(granted);
    std::optional<CTNFileParserEngine> made;
    bool failed = false;
    {
      const FailingMemory memory(granted);
      EXPECT_NO_THROW(made.emplace(&frontEnd));
      failed = memory.HasFailed();
    }
    EXPECT_TRUE(made->IsValid() || failed);
    if (!made->IsValid()) return failed;
    std::string error;
    made->SetSideCopy(SideCopy::No);
    EXPECT_TRUE(made->OpenInputFile(path, error)) << error;
    ExpectKeepsAnUnmatchedLine(*made, "zzz");
    return failed;
  });
}

TEST_F(EngineMemoryTest, AnEngineThatCouldNotBeMadeHasNothingAndDoesNothing) {
  WriteFile("template.xml", TemplateFor("a"));
  WriteFile("input.txt", "a\n");
  const std::string templatePath = PathOf("template.xml");
  const std::string inputPath = PathOf("input.txt");
  const std::string outputPath = PathOf("output.xml");
  int absent = 0;
  ForEveryAllocation([&](std::int64_t granted) {
    SCOPED_TRACE(granted);
    std::optional<CTNFileParserEngine> made;
    bool failed = false;
    {
      const FailingMemory memory(granted);
      EXPECT_NO_THROW(made.emplace(&frontEnd));
      failed = memory.HasFailed();
    }
    if (made->IsValid()) return failed;
    ++absent;
    EXPECT_EQ(made->GetTemplate(), nullptr);
    EXPECT_EQ(made->GetInputFile(), nullptr);
    std::string text = "as before";
    std::string error;
    bool cancelled = false;
    EXPECT_FALSE(made->OpenInputFile(inputPath, error));
    EXPECT_FALSE(made->CloseInputFile());
    EXPECT_FALSE(made->LoadTemplate(templatePath));
    EXPECT_FALSE(made->SaveTemplate(outputPath));
    EXPECT_FALSE(made->IsTemplateModified());
    EXPECT_FALSE(made->ApplyTemplate(error, cancelled, ShowProgress::Yes));
    made->SetTemplateSearchPath(Folder());
    EXPECT_FALSE(made->FindTemplate(error, cancelled, ShowProgress::Yes));
    EXPECT_FALSE(made->OutputEntityList(outputPath, error));
    EXPECT_FALSE(made->WriteEntityList([](std::string_view) { return true; }, error));
    EXPECT_FALSE(made->GetSideCopyPath(text, error));
    EXPECT_FALSE(made->AreResultsStale());
    EXPECT_FALSE(made->ReportError("error", ErrorShown::AtOnce));
    made->ForgetResults();
    made->NewTemplate();
    made->OnTemplateModified();
    made->OnTemplateChanged(ChangeKind::Modified, kAllEdits);
    EXPECT_EQ(made->GetStats().totalBlocks, 0u);
    EXPECT_EQ(text, "as before");
    EXPECT_FALSE(cancelled);
    return true;
  });
  EXPECT_GT(absent, 1);
  EXPECT_EQ(frontEnd.errors, Texts{});
  EXPECT_EQ(frontEnd.captions, Texts{});
  EXPECT_EQ(Names(), (Texts{"input.txt", "template.xml"}));
}

TEST_F(EngineMemoryTest, WithoutMemoryForItsEntryAnErrorIsToldToTheFrontEnd) {
  ForEveryFailure(
      [this] { frontEnd.errors.clear(); },
      [this] { return engine.ReportError("an error that is not short", ErrorShown::Later); },
      [this](bool added) { EXPECT_EQ(frontEnd.errors, added ? Texts() : Texts{NoMemory()}); });
}

}  // namespace
}  // namespace bomparser
