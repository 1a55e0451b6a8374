// Input files with real templates: what reaches the blocks, and what happens when it goes wrong.

#include "entry/CTNFileParserEngine.h"
#include "tests/support/Application.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/ParsedFakes.h"
#include "tests/support/RandomMatch.h"
#include "tests/support/TemplateBuilder.h"
#include "tests/support/TestFolder.h"

#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace bomparser {
namespace {

using namespace test;
using Strings = std::vector<std::string>;

std::string Lines(std::size_t count, const std::string& line = "ab 12\n") {
  std::string text;
  for (std::size_t i = 0; i < count; ++i)
    text += line;
  return text;
}

class InFileApplication : public TestFolder {
 protected:
  InFileApplication() {
    engine.SetSideCopy(SideCopy::No);
    part =
        &AddRecord(Document(), RecordKind::Part, "Line", {Alpha(), Space(), WholeNum(), Newline()},
                   {{OutputTag::RefDesignator, "F1"}, {OutputTag::PartNumber, "F3"}});
  }

  CTNParserTemplate& Document() { return *engine.GetTemplate(); }
  CTNParserInFile& File() { return *engine.GetInputFile(); }
  void OpenFile(const std::string& bytes) {
    WriteFile("in.txt", bytes);
    std::string reason;
    ASSERT_TRUE(engine.OpenInputFile(PathOf("in.txt"), reason)) << reason;
  }
  /// The blocks, or the error in angle brackets and the blocks that were made.
  Strings Apply(ShowProgress show = ShowProgress::No) {
    done = engine.ApplyTemplate(error, cancelled, show);
    EXPECT_EQ(done, error.empty());
    Strings texts;
    if (!done) texts.push_back("<" + error + ">");
    for (std::size_t i = 0; i < File().GetBlocks().GetSize(); ++i)
      texts.push_back(File().GetBlocks().GetAt(i).ToReadableText());
    return texts;
  }
  Strings Apply(const std::string& bytes) {
    OpenFile(bytes);
    return Apply();
  }
  std::string EntityList() const {
    std::string list;
    std::string failure;
    const auto add = [&list](std::string_view piece) {
      list += piece;
      return true;
    };
    EXPECT_TRUE(engine.WriteEntityList(add, failure)) << failure;
    return list;
  }

  FakeFrontEnd frontEnd;
  CTNFileParserEngine engine{&frontEnd};
  CTNTemplateRecord* part = nullptr;
  std::string error;
  bool cancelled = false;
  bool done = false;
};

const std::string kPart = "E1{F1=ab|F2= |F3=12|F4=}";

// ------------------------------------------------------------------------------- line limits

TEST_F(InFileApplication, IgnoreBeforeAndAfterMakeIgnoredBlocksOfOneLineEach) {
  Document().SetBeginRow(3);
  Document().SetEndAfterRow(4);
  EXPECT_EQ(Apply("head\n\nab 12\nab 12\ntail\nab 12"),
            (Strings{"\?\?{F1=head|F2=}", "\?\?{F1=|F2=}", kPart, kPart, "\?\?{F1=tail|F2=}",
                     "\?\?{F1=ab 12|F2=}"}));
  const ApplicationStats stats = engine.GetStats();
  EXPECT_EQ(stats.ignoredBlocks, 4u);
  EXPECT_EQ(stats.entityBlocks, 2u);
  EXPECT_EQ(stats.unmatchedBlocks, 0u);
  EXPECT_EQ(File().GetBlocks().GetAt(4).GetMatchText(), "Ignored");
}

TEST_F(InFileApplication, IgnoreAfterMinus2LeavesTheLastTwoLines) {
  Document().SetEndAfterRow(-2);
  EXPECT_EQ(Apply("ab 12\nab 12\nab 12\n"),
            (Strings{kPart, "\?\?{F1=ab 12|F2=}", "\?\?{F1=ab 12|F2=}"}));
}

TEST_F(InFileApplication, IgnoreAfterAtTheLastPieceStillTakesTheAddedLineFeedWithIt) {
  Document().SetEndAfterRow(2);
  EXPECT_EQ(Apply("ab 12\nab 12"), (Strings{kPart, kPart}));
}

TEST_F(InFileApplication, ABlockThatReachesBehindTheEndLimitIsTakenWhole) {
  AddRecord(Document(), RecordKind::MultipleMatch, "Section",
            {String("BEGIN"), Scan(), String("END"), Newline()});
  Document().SetEndAfterRow(1);
  EXPECT_EQ(Apply("BEGIN\nx\nEND\nab 12\n"),
            (Strings{"A1{F1=BEGIN|F2=\nx\n|F3=END|F4=}", "\?\?{F1=ab 12|F2=}"}));
}

TEST_F(InFileApplication, MoreLeadingLinesThanTheFileHasAreAllIgnored) {
  Document().SetBeginRow(100);
  EXPECT_EQ(Apply("ab 12\nab 12"), (Strings{"\?\?{F1=ab 12|F2=}", "\?\?{F1=ab 12|F2=}"}));
}

// ------------------------------------------------------------------------------- bytes

TEST_F(InFileApplication, CrLfFilesMatchAsLfFilesDo) {
  EXPECT_EQ(Apply("ab 12\r\nab 12\r\n"), (Strings{kPart, kPart}));
}

TEST_F(InFileApplication, ACrAloneIsAnOrdinaryCharacter) {
  EXPECT_EQ(Apply("ab 12\rab 12\n"), Strings{"\?\?{F1=ab 12\rab 12|F2=}"});
  EXPECT_EQ(Apply("\r\r\n"), Strings{"\?\?{F1=\r|F2=}"});
}

TEST_F(InFileApplication, NulIsAnOrdinaryCharacter) {
  const std::string nul(1, '\0');
  EXPECT_EQ(Apply(nul + "ab 12\n" + nul),
            (Strings{"\?\?{F1=" + nul + "ab 12|F2=}", "\?\?{F1=" + nul + "|F2=}"}));
}

TEST_F(InFileApplication, AnEmptyFileHasNoBlocksAndAnEmptyLineOne) {
  EXPECT_EQ(Apply(""), Strings());
  EXPECT_TRUE(done);
  EXPECT_EQ(Apply("\n"), Strings{"\?\?{F1=|F2=}"});
  EXPECT_EQ(File().GetBlocks().GetAt(0).GetMatchText(), "");
}

TEST_F(InFileApplication, AnOpenLastLineIsMatchedLikeAnyOther) {
  for (const std::size_t lines : {1u, 254u, 255u, 257u}) {
    const std::string text = Lines(lines);
    const Strings blocks = Apply(text.substr(0, text.size() - 1));
    EXPECT_EQ(blocks, Strings(lines, kPart)) << lines;
  }
}

TEST_F(InFileApplication, AnOpenLastLineAfterAMultipleOf256PiecesCannotBeRead) {
  for (const std::size_t lines : {256u, 512u}) {
    const std::string text = Lines(lines);
    const Strings blocks = Apply(text.substr(0, text.size() - 1));
    ASSERT_EQ(blocks.size(), lines) << "one error and all blocks but the last";
    EXPECT_EQ(blocks[0], "<Internal error reading data at file position " +
                             std::to_string((lines - 1) * 6) + ": \nText of line: ab 12>");
    EXPECT_EQ(Apply(text), Strings(lines, kPart)) << "with its line end it can";
  }
}

TEST_F(InFileApplication, LongLinesCountInPiecesFor256) {
  // 253 short lines and one of 600 characters without line end: 256 pieces.
  Apply(Lines(253) + std::string(600, 'x'));
  EXPECT_FALSE(done);
  Apply(Lines(252) + std::string(600, 'x'));
  EXPECT_TRUE(done);
}

TEST_F(InFileApplication, TheAddedLineFeedIsNoPieceOfTheProgressRange) {
  OpenFile(Lines(2) + std::string(254, 'x'));
  Apply(ShowProgress::Yes);
  EXPECT_EQ(frontEnd.progress.upper, 3);
  OpenFile(Lines(2) + std::string(256, 'x'));
  Apply(ShowProgress::Yes);
  EXPECT_EQ(frontEnd.progress.upper, 4);
}

// ------------------------------------------------------------------------------- failures

TEST_F(InFileApplication, ARecordThatTakesNothingEndsTheApplication) {
  AddRecord(Document(), RecordKind::MultipleMatch, "Nothing", {});
  EXPECT_EQ(Apply("ab 12\n"),
            (Strings{"<Internal error while parsing input file. File pointer was\nset backward or "
                     "not advanced after read operation: Prev position = 0, current position = 0>",
                     "A1{}"}));
  EXPECT_FALSE(File().IsApplied());
  EXPECT_TRUE(File().IsStale());
  EXPECT_EQ(File().GetBlocks().GetAt(0).GetMatchText(), "\?\?");
}

TEST_F(InFileApplication, WithoutAnOpenFileThereIsAnError) {
  EXPECT_EQ(Apply(), Strings{"<Input file not opened for read>"});
}

TEST_F(InFileApplication, AnEmptyFileNameIsReported) {
  std::string reason;
  EXPECT_FALSE(engine.OpenInputFile("", reason));
  EXPECT_EQ(reason, "No input file specified");
  EXPECT_EQ(Document().GetErrorLog().GetAllLines(), Strings{"No input file specified"});
}

TEST_F(InFileApplication, AFileOf2GiBIsRefused) {
  WriteFile("large", "");
  std::filesystem::resize_file(PathOf("large"), std::uint64_t{1} << 31);
  std::string reason;
  EXPECT_FALSE(engine.OpenInputFile(PathOf("large"), reason));
  EXPECT_EQ(reason, PathOf("large") + " is too large: files of 2 GiB and more cannot be read");
  EXPECT_EQ(Apply(), Strings{"<Input file not opened for read>"});
}

TEST_F(InFileApplication, AFileThatGrewTo2GiBIsRefusedAndItsOldBlocksAreGone) {
  Apply("ab 12\n");
  std::filesystem::resize_file(PathOf("in.txt"), std::uint64_t{1} << 31);
  EXPECT_EQ(Apply(), Strings{"<" + PathOf("in.txt") +
                             " is too large: files of 2 GiB and more cannot be read>"});
}

// ------------------------------------------------------------------------------- the file changes

TEST_F(InFileApplication, AFileThatIsReplacedIsSeenByTheNextApplication) {
  Apply("ab 12\n");
  WriteFile("other", "xyz\n");
  std::filesystem::rename(PathOf("other"), PathOf("in.txt"));
  EXPECT_EQ(Apply(), Strings{"\?\?{F1=xyz|F2=}"});
}

TEST_F(InFileApplication, AFileThatIsCutIsSeenByTheNextApplication) {
  Apply(Lines(3));
  std::filesystem::resize_file(PathOf("in.txt"), 8);
  EXPECT_EQ(Apply(), (Strings{kPart, "\?\?{F1=ab|F2=}"}));
  std::filesystem::resize_file(PathOf("in.txt"), 0);
  EXPECT_EQ(Apply(), Strings());
}

TEST_F(InFileApplication, APipesTextIsKeptForFurtherApplications) {
  ASSERT_EQ(::mkfifo(PathOf("pipe").c_str(), 0600), 0);
  std::thread writer([&] { WriteFile("pipe", "ab 12\r\nab 12"); });
  std::string reason;
  EXPECT_TRUE(engine.OpenInputFile(PathOf("pipe"), reason));
  EXPECT_EQ(Apply(), (Strings{kPart, kPart}));
  writer.join();
  EXPECT_EQ(Apply(), (Strings{kPart, kPart}));
}

TEST_F(InFileApplication, StandardInputIsReadOnceAndKept) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], "ab 12\n", 6), 6);
  ::close(ends[1]);
  const int before = ::dup(STDIN_FILENO);
  ::dup2(ends[0], STDIN_FILENO);
  ::close(ends[0]);
  std::string reason;
  EXPECT_TRUE(engine.OpenInputFile("-", reason));
  EXPECT_EQ(Apply(), Strings{kPart});
  EXPECT_EQ(Apply(), Strings{kPart});
  ::dup2(before, STDIN_FILENO);
  ::close(before);
}

// ------------------------------------------------------------------------------- progress

TEST_F(InFileApplication, ProgressStepsOncePerRowAndTellsTheTemplate) {
  Document().SetFilePath("/templates/lines.xml");
  Document().SetModified(ChangeKind::Modified);
  OpenFile(Lines(5));
  EXPECT_EQ(Apply(ShowProgress::Yes), Strings(5, kPart));
  EXPECT_EQ(frontEnd.captions, Strings{"Scanning in.txt -- Progress: "});
  EXPECT_EQ(frontEnd.progress.texts, (Strings{"Preparing for Template Application ...",
                                              "Applying Template File lines.xml..."}));
  EXPECT_EQ(frontEnd.progress.upper, 5);
  EXPECT_EQ(frontEnd.progress.steps, 5u);
}

TEST_F(InFileApplication, AnEmptyTemplateOnlyReadsTheFile) {
  engine.NewTemplate();
  OpenFile(Lines(1));
  EXPECT_EQ(Apply(ShowProgress::Yes), Strings{"\?\?{F1=ab 12|F2=}"});
  EXPECT_EQ(frontEnd.progress.texts,
            (Strings{"Preparing for Template Application ...", "Reading File..."}));
}

TEST_F(InFileApplication, ACancelBringsBackBlocksTextEndLimitFlagsAndSingleMatches) {
  CTNTemplateRecord& single =
      AddRecord(Document(), RecordKind::SingleMatch, "Once", {String("S"), Alpha(), Newline()});
  Document().SetEndAfterRow(3);
  const Strings before = Apply("Sold\nab 12\nab 12\nab 12\n");
  const std::string list = EntityList();
  WriteFile("in.txt", "Snew\nab 34\nab 34\nab 34\nab 34\n");
  for (const std::int64_t step : {0, 1, 2, 4, 5}) {
    SCOPED_TRACE(step);
    frontEnd.progress = {};
    frontEnd.progress.cancelAtStep = step;
    Strings expected = before;
    expected.insert(expected.begin(), "<Operation cancelled>");
    EXPECT_EQ(Apply(ShowProgress::Yes), expected);
    EXPECT_TRUE(cancelled);
    EXPECT_TRUE(File().IsApplied());
    EXPECT_FALSE(File().IsStale());
    EXPECT_EQ(File().GetText().GetText()->View(), "Sold\nab 12\nab 12\nab 12\n");
    EXPECT_EQ(File().GetText().GetEnd(), 23u);
    EXPECT_EQ(single.GetSingleMatchBlock()->ToReadableText(), "A1{F1=S|F2=old|F3=}");
    EXPECT_EQ(EntityList(), list);
  }
}

TEST_F(InFileApplication, AFailureAfterACancelledRunFindsNothingOfIt) {
  AddRecord(Document(), RecordKind::SingleMatch, "Once", {String("S"), Alpha(), Newline()});
  const Strings before = Apply("Sold\nab 12\n");
  frontEnd.progress.cancelAtStep = 2;
  Apply(ShowProgress::Yes);
  engine.CloseInputFile();
  Strings expected = before;
  expected.insert(expected.begin(), "<Input file not opened for read>");
  EXPECT_EQ(Apply(), expected);
}

// ------------------------------------------------------------------------------- results

TEST_F(InFileApplication, ViewsOfBlocksAndRowsSurviveTheNextApplicationAndTheEngine) {
  auto own = std::make_unique<CTNFileParserEngine>();
  own->SetSideCopy(SideCopy::No);
  AddRecord(*own->GetTemplate(), RecordKind::MultipleMatch, "Line", {Alpha(), Newline()});
  WriteFile("in.txt", "old\n");
  ASSERT_TRUE(own->OpenInputFile(PathOf("in.txt"), error));
  ASSERT_TRUE(own->ApplyTemplate(error, cancelled, ShowProgress::No));
  const CTNParsedFileBlock inside = own->GetInputFile()->GetBlocks().GetAt(0);
  const auto rows = inside.GetRows();
  const auto result = own->GetInputFile()->GetBlocks().GetResult();
  WriteFile("in.txt", "new\n");
  ASSERT_TRUE(own->ApplyTemplate(error, cancelled, ShowProgress::No));
  EXPECT_EQ(inside.ToReadableText(), "A1{F1=old|F2=}");
  own = nullptr;
  EXPECT_EQ(inside.ToReadableText(), "A1{F1=old|F2=}");
  std::string text;
  rows.at(0).GetText(text, Markup::On, Newlines::Hidden);
  EXPECT_EQ(text, "<A1.F1,ALPHA>old</A1.F1><A1.F2,NEWLINE>");
  EXPECT_EQ(result->GetStats().AuxiliaryBlocks(), 1u);
}

/// What the rows of the blocks show, with line ends for line ends.
std::string ShownText(const CTNParsedBlockPtrArray& blocks) {
  std::string text;
  for (std::size_t i = 0; i < blocks.GetSize(); ++i) {
    for (const CTNParsedFileRow& row : blocks.GetAt(i).GetRows()) {
      row.GetText(text, Markup::Off, Newlines::Hidden);
      if (row.IsComplete()) text += '\n';
    }
  }
  return text;
}

/// The text with the single characters removed that scans drop behind their last line feed.
std::string TextWithoutDropped(const CTNParsedBlockPtrArray& blocks) {
  std::string text;
  for (std::size_t i = 0; i < blocks.GetSize(); ++i) {
    const CTNParsedFileBlock block = blocks.GetAt(i);
    CTNElementCursor cursor(*block.GetResult(), block.GetPlace());
    const char* const bytes = block.GetResult()->GetText()->Data();
    const std::uint32_t end = block.GetResult()->GetTextEnd(i);
    std::uint32_t at = block.GetPlace().text;
    for (ShownElement element; cursor.Next(element);) {
      const bool lineEnd = element.EndsRow();
      const auto size = lineEnd ? 1u : static_cast<std::uint32_t>(element.text.size());
      // An element stands where the one before ended, or one dropped character behind.
      if (!lineEnd && !element.text.empty() && element.text.data() == bytes + at + 1) ++at;
      if (lineEnd && bytes[at] != '\n') ++at;
      text.append(bytes + at, size);
      at += size;
    }
    EXPECT_LE(end - at, 1u);
  }
  return text;
}

TEST_F(InFileApplication, RowsShowTheTextOfRandomFilesUnderRandomTemplates) {
  for (std::uint32_t seed = 1; seed <= 400; ++seed) {
    SeededChooser choose(seed);
    CTNParserTemplate document(nullptr);
    MakeRandomTemplate(choose, document, Circles::Some);
    const Application application = ApplyToText(document, MakeRandomText(choose, document, 300));
    std::uint64_t rows = 0;
    for (std::size_t i = 0; i < application.blocks.GetSize(); ++i) {
      const CTNParsedFileBlock block = application.blocks.GetAt(i);
      EXPECT_EQ(block.GetRows().size(), block.GetRowCount());
      rows += block.GetRowCount();
    }
    EXPECT_EQ(application.blocks.GetStats().totalLines, rows);
    EXPECT_EQ(Escaped(ShownText(application.blocks)),
              Escaped(TextWithoutDropped(application.blocks)));
    if (HasFailure()) {
      FAIL() << "seed " << seed << "\n" << Describe(document);
    }
  }
}

// ------------------------------------------------------------------------------- memory

// Room for the first 16 blocks is 192 bytes; for more of them it is 288.
constexpr std::size_t kMoreBlocks = 288;
const std::string kNoMemory = "<Memory allocation error occurred while applying template>";

TEST_F(InFileApplication, NoMemoryForLeadingLinesEndsTheApplication) {
  Document().SetBeginRow(31);
  OpenFile(Lines(30, "x\n"));
  const MemoryRunsOut memory(kMoreBlocks);
  Strings expected(16, "\?\?{F1=x|F2=}");
  expected.insert(expected.begin(), kNoMemory);
  EXPECT_EQ(Apply(), expected);
  EXPECT_FALSE(File().IsApplied());
  EXPECT_TRUE(File().IsStale());
}

TEST_F(InFileApplication, NoMemoryForOneTrailingLineLosesThatLineOnly) {
  Document().SetEndAfterRow(1);
  OpenFile(Lines(30, "x\n"));
  const MemoryRunsOut memory(kMoreBlocks, 0, 1);
  Strings expected(29, "\?\?{F1=x|F2=}");
  expected.insert(expected.begin(), "<Out of memory while applying template>");
  EXPECT_EQ(Apply(), expected);
  EXPECT_TRUE(File().IsStale());
}

TEST_F(InFileApplication, NoMemoryForTrailingLinesKeepsWhatThereWasRoomFor) {
  Document().SetEndAfterRow(1);
  OpenFile(Lines(30, "x\n"));
  const MemoryRunsOut memory(kMoreBlocks);
  Strings expected(16, "\?\?{F1=x|F2=}");
  expected.insert(expected.begin(), "<Out of memory while applying template>");
  EXPECT_EQ(Apply(), expected);
}

TEST_F(InFileApplication, NoMemoryInTheBlockLoopIsReportedToTheErrorLog) {
  OpenFile(Lines(30, "x\n"));
  {
    const MemoryRunsOut memory(kMoreBlocks);
    Strings expected(16, "\?\?{F1=x|F2=}");
    expected.insert(expected.begin(),
                    "<Unspecified error while opening or applying template to  input file>");
    EXPECT_EQ(Apply(), expected);
  }
  EXPECT_EQ(Document().GetErrorLog().GetAllLines(),
            Strings{"Not enough memory resources are available to complete this operation."});
  EXPECT_EQ(Apply(), Strings(30, "\?\?{F1=x|F2=}"));
}

TEST_F(InFileApplication, NoMemoryForTheTextIsAnErrorText) {
  OpenFile(Lines(3));
  const MemoryRunsOut memory(1);
  EXPECT_EQ(Apply(), Strings{kNoMemory});
}

TEST_F(InFileApplication, WhicheverAllocationFailsItIsToldAndTheNextApplicationSucceeds) {
  AddRecord(Document(), RecordKind::SingleMatch, "Once", {String("S"), Alpha(), Newline()});
  Document().SetBeginRow(2);
  Document().SetEndAfterRow(4);
  OpenFile("head\nSx\nab 12\nzzz\ntail\n");
  const Strings expected = Apply();
  const std::int64_t failures = ForEveryAllocation([&](std::int64_t granted) {
    SCOPED_TRACE(granted);
    bool failed = false;
    bool applied = false;
    {
      const FailingMemory memory(granted);
      applied = engine.ApplyTemplate(error, cancelled, ShowProgress::No);
      failed = memory.HasFailed();
    }
    EXPECT_EQ(applied, error.empty());
    EXPECT_EQ(applied, File().IsApplied());
    EXPECT_EQ(applied, !File().IsStale());
    EXPECT_TRUE(applied || failed);
    EXPECT_EQ(Apply(), expected);
    return failed;
  });
  EXPECT_GT(failures, 10);
}

}  // namespace
}  // namespace bomparser
