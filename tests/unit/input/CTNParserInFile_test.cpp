#include "input/CTNParserInFile.h"

#include "tests/support/ParsedFakes.h"
#include "tests/support/TestFolder.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace bomparser {
namespace {

using Strings = std::vector<std::string>;

std::string ManyLines(std::size_t count, const std::string& line = "x\n") {
  std::string text;
  for (std::size_t i = 0; i < count; ++i)
    text += line;
  return text;
}

/// A front end with one progress window after the other, all noting into it.
class Watcher final : public CTNFrontEnd {
 public:
  Strings notes;
  std::uint32_t steps = 0;
  std::int64_t cancelAt = -1;  // Cancelled once so many steps were made; -1 for never.
  bool showsPosition = true;
  bool opensWindow = true;

  std::unique_ptr<CTNProgress> BeginProgress(const std::string& caption) override {
    notes.push_back("caption " + caption);
    if (!opensWindow) return nullptr;
    return std::make_unique<Window>(*this);
  }
  void ShowError(std::string_view text) override { notes.push_back("error " + std::string(text)); }
  bool IsCancelled() const { return cancelAt >= 0 && steps >= cancelAt; }

 private:
  class Window final : public CTNProgress {
   public:
    explicit Window(Watcher& watcher) : m_watcher(watcher) {}
    ~Window() override { m_watcher.notes.push_back("closed"); }
    void SetText(std::string_view text) override { m_watcher.notes.push_back(std::string(text)); }
    bool ShowsPosition() const override { return m_watcher.showsPosition; }
    void SetRange(std::int32_t lower, std::int32_t upper, std::int32_t step) override {
      m_watcher.notes.push_back("range " + std::to_string(lower) + " to " + std::to_string(upper) +
                                " by " + std::to_string(step));
    }
    bool StepAndPoll(std::uint32_t more) override {
      m_watcher.steps += more;
      return IsCancelled();
    }
    bool IsCancelled() const override { return m_watcher.IsCancelled(); }

   private:
    Watcher& m_watcher;
  };
};

class CTNParserInFileTest : public TestFolder {
 protected:
  void OpenFile(const std::string& bytes, const std::string& name = "in.txt") {
    WriteFile(name, bytes);
    std::string ignored;
    ASSERT_TRUE(file.Open(PathOf(name), ignored)) << ignored;
  }
  /// The text that ReadText leaves, and its end limit.
  struct TextAndEnd {
    std::string text;
    std::uint32_t end;
  };
  void ReadText(const std::string& bytes, std::int32_t ignoreAfter = 0) {
    OpenFile(bytes);
    std::string ignored;
    ASSERT_TRUE(file.ReadText(ignoreAfter, ignored)) << ignored;
  }
  std::string Text() const { return std::string(file.GetText().GetText()->View()); }
  std::uint32_t End() const { return file.GetText().GetEnd(); }
  std::uint32_t EndOf(const std::string& bytes, std::int32_t ignoreAfter) {
    ReadText(bytes, ignoreAfter);
    return End();
  }

  bool Apply(ShowProgress show = ShowProgress::No) {
    templ.calls.clear();
    error = "old";
    cancelled = true;
    return file.ApplyTemplate(&templ, error, cancelled, show, &watcher);
  }
  /// What Apply gave: "1" or "0", the flags, the error.
  std::string Outcome(bool result) const {
    return std::string(result ? "done" : "failed") + (file.IsApplied() ? " applied" : "") +
           (file.IsStale() ? " stale" : "") + (cancelled ? " cancelled" : "") +
           (error.empty() ? "" : ": " + error);
  }
  Strings Blocks() const {
    Strings texts;
    for (std::size_t i = 0; i < file.GetBlocks().GetSize(); ++i)
      texts.push_back(file.GetBlocks().GetAt(i).ToReadableText());
    return texts;
  }

  test::FakeTemplate templ;
  Watcher watcher;
  CTNParserInFile file{nullptr};
  std::string error;
  bool cancelled = false;
};

// ------------------------------------------------------------------------------- reading

TEST_F(CTNParserInFileTest, StartsStaleAndWithoutAnything) {
  EXPECT_FALSE(file.IsApplied());
  EXPECT_TRUE(file.IsStale());
  EXPECT_FALSE(file.IsOutputDone());
  EXPECT_EQ(file.GetOutputPath(), "");
  EXPECT_EQ(file.GetBlocks().GetSize(), 0u);
  EXPECT_EQ(Text(), "");
  EXPECT_EQ(file.GetErrorLog().GetLogName(), "");
}

TEST_F(CTNParserInFileTest, AnEmptyFileIsAnEmptyTextWithEndLimit0) {
  for (const std::int32_t ignoreAfter : {0, 1, -1}) {
    EXPECT_EQ(EndOf("", ignoreAfter), 0u);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(file.CountPieces(), 0u);
  }
}

TEST_F(CTNParserInFileTest, ALastLineWithoutLineFeedGetsOne) {
  EXPECT_EQ(EndOf("a\nb", 0), 4u);
  EXPECT_EQ(Text(), "a\nb\n");
  EXPECT_EQ(EndOf("a\nb\n", 0), 4u);
  EXPECT_EQ(Text(), "a\nb\n");
}

TEST_F(CTNParserInFileTest, APieceCountThatIsAMultipleOf256GetsNoLineFeed) {
  for (const std::size_t pieces : {256u, 512u}) {
    ReadText(ManyLines(pieces - 1) + "last");
    EXPECT_EQ(Text(), ManyLines(pieces - 1) + "last");
    EXPECT_EQ(End(), Text().size());
    EXPECT_EQ(file.CountPieces(), pieces);
  }
  for (const std::size_t pieces : {254u, 255u, 257u}) {
    ReadText(ManyLines(pieces - 1) + "last");
    EXPECT_EQ(Text(), ManyLines(pieces - 1) + "last\n");
    EXPECT_EQ(file.CountPieces(), pieces);
  }
}

TEST_F(CTNParserInFileTest, TheMultipleOf256IsCountedInPiecesNotInLines) {
  // 254 lines and a line of two pieces: 256 pieces in 255 lines.
  const std::string text = ManyLines(254) + std::string(300, 'y');
  ReadText(text);
  EXPECT_EQ(Text(), text);
}

TEST_F(CTNParserInFileTest, APieceHoldsUpTo254CharactersWithTheLineFeed) {
  const auto pieces = [this](const std::string& bytes) {
    ReadText(bytes);
    return file.CountPieces();
  };
  EXPECT_EQ(pieces(std::string(253, 'x') + "\n"), 1u);
  EXPECT_EQ(pieces(std::string(254, 'x') + "\n"), 2u);
  EXPECT_EQ(pieces(std::string(254, 'x')), 1u);
  EXPECT_EQ(pieces(std::string(255, 'x')), 2u);
  EXPECT_EQ(pieces(std::string(508, 'x')), 2u);
  EXPECT_EQ(pieces(std::string(508, 'x') + "\n"), 3u);
}

TEST_F(CTNParserInFileTest, ALineOf600CharactersCountsAsThreePieces) {
  const std::string line = std::string(600, 'x') + "\n";
  ReadText(line);
  EXPECT_EQ(file.CountPieces(), 3u);
  EXPECT_EQ(EndOf(line + "a\nb\n", 1), 254u);
  EXPECT_EQ(EndOf(line + "a\nb\n", 2), 508u);
  EXPECT_EQ(EndOf(line + "a\nb\n", 3), 601u);
  EXPECT_EQ(EndOf(line + "a\nb\n", 4), 603u);
}

TEST_F(CTNParserInFileTest, IgnoreAfterNEndsBehindPieceN) {
  EXPECT_EQ(EndOf("a\nbb\nccc\nd\n", 3), 9u);
  EXPECT_EQ(EndOf("a\nbb\nccc\nd\n", 1), 2u);
}

TEST_F(CTNParserInFileTest, IgnoreAfterTheLastPieceEndsBehindWhatWasRead) {
  EXPECT_EQ(EndOf("a\nbb\n", 2), 5u);
  // The added line feed stands behind the limit.
  EXPECT_EQ(EndOf("a\nbb", 2), 4u);
  EXPECT_EQ(Text(), "a\nbb\n");
}

TEST_F(CTNParserInFileTest, IgnoreAfterMoreThanThePiecesIsNoLimit) {
  EXPECT_EQ(EndOf("a\nbb", 3), 5u);
  EXPECT_EQ(EndOf("a\nbb\n", 0x7FFFFFFF), 5u);
}

TEST_F(CTNParserInFileTest, IgnoreAfterMinusNLeavesTheLastNPieces) {
  EXPECT_EQ(EndOf("a\nbb\nccc\nd\n", -2), 5u);
  EXPECT_EQ(EndOf("a\nbb\nccc\nd", -2), 5u);
  EXPECT_EQ(EndOf("a\nbb\nccc\nd\n", -3), 2u);
}

TEST_F(CTNParserInFileTest, IgnoreAfterMinusNCountsPiecesButWalksLines) {
  // Five pieces in three lines: all but two pieces are three lines, the whole text.
  const std::string text = std::string(600, 'x') + "\na\nb\n";
  EXPECT_EQ(EndOf(text, -2), 605u);
  EXPECT_EQ(EndOf(text, -3), 603u);
  EXPECT_EQ(EndOf(text, -4), 601u);
}

TEST_F(CTNParserInFileTest, IgnoreAfterMinusThePieceCountOrMoreIgnoresNothing) {
  EXPECT_EQ(EndOf("a\nb\n", -2), 4u);
  EXPECT_EQ(EndOf("a\nb\n", -3), 4u);
  EXPECT_EQ(EndOf("a\nb", INT32_MIN), 4u);
}

TEST_F(CTNParserInFileTest, ReadTextPutsThePositionBackToTheStart) {
  for (const std::int32_t ignoreAfter : {0, 1, -1}) {
    ReadText("a\nb\nc\n", ignoreAfter);
    EXPECT_EQ(file.GetText().GetPosition(), 0u);
  }
}

TEST_F(CTNParserInFileTest, OpenSetsTheEndLimitAgainstTheOldText) {
  ReadText("abcdef\n");
  OpenFile("xy\n", "short.txt");
  EXPECT_EQ(Text(), "abcdef\n");
  EXPECT_EQ(End(), 3u);
  OpenFile("longer than that\n", "long.txt");
  EXPECT_EQ(Text(), "abcdef\n");
  EXPECT_EQ(End(), 3u);
}

TEST_F(CTNParserInFileTest, AFailedOpenLeavesTextAndEndLimit) {
  ReadText("abc\n", 0);
  EXPECT_FALSE(file.Open(PathOf("none"), error));
  EXPECT_EQ(error, "cannot read " + PathOf("none") + ": No such file or directory");
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(Text(), "abc\n");
  EXPECT_EQ(End(), 4u);
}

TEST_F(CTNParserInFileTest, TheTitleWithoutExtensionEndsBeforeTheFirstPoint) {
  OpenFile("", "board.top.txt");
  EXPECT_EQ(file.GetFileTitle(), "board.top.txt");
  EXPECT_EQ(file.GetTitleNoExtension(), "board");
  OpenFile("", "plain");
  EXPECT_EQ(file.GetTitleNoExtension(), "plain");
  OpenFile("", ".hidden");
  EXPECT_EQ(file.GetTitleNoExtension(), "");
  file.SetFilePath("");
  EXPECT_EQ(file.GetTitleNoExtension(), "");
}

// ------------------------------------------------------------------------------- applying

TEST_F(CTNParserInFileTest, WithoutATemplateNothingHappens) {
  OpenFile("a\n");
  Apply();
  error = "old";
  EXPECT_FALSE(file.ApplyTemplate(nullptr, error, cancelled, ShowProgress::Yes, &watcher));
  EXPECT_EQ(Outcome(false), "failed applied: Internal error: No template supplied for application");
  EXPECT_EQ(Blocks(), Strings{"E1{F1=a|F2=}"});
  EXPECT_EQ(watcher.notes, Strings());
}

TEST_F(CTNParserInFileTest, AFileThatIsNotOpenIsRefusedAndResultsAreStale) {
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)), "failed stale: Input file not opened for read");
  EXPECT_EQ(templ.calls, Strings());
  EXPECT_EQ(watcher.notes, Strings());
}

TEST_F(CTNParserInFileTest, AFileWithAnEmptyPathIsRefused) {
  OpenFile("a\n");
  file.SetFilePath("");
  EXPECT_EQ(Outcome(Apply()), "failed stale: Input file not opened for read");
}

TEST_F(CTNParserInFileTest, AClosedFileKeepsItsOldBlocksAndTheTemplateItsState) {
  OpenFile("a\n");
  Apply();
  file.Close();
  EXPECT_EQ(Outcome(Apply()), "failed stale: Input file not opened for read");
  EXPECT_EQ(Blocks(), Strings{"E1{F1=a|F2=}"});
  EXPECT_EQ(templ.calls, Strings());
}

TEST_F(CTNParserInFileTest, AnEmptyFileGivesSuccessWithoutBlocks) {
  OpenFile("");
  EXPECT_EQ(Outcome(Apply()), "done applied");
  EXPECT_EQ(Blocks(), Strings());
  EXPECT_EQ(templ.calls, (Strings{"begin", "parse 0 to 0", "end 0"}));
}

TEST_F(CTNParserInFileTest, IgnoreBefore0And1SkipNothing) {
  OpenFile("a\nb\n");
  for (const std::int32_t ignoreBefore : {INT32_MIN, -1, 0, 1}) {
    templ.limits.ignoreBefore = ignoreBefore;
    EXPECT_TRUE(Apply());
    EXPECT_EQ(templ.calls, (Strings{"begin", "parse 0 to 4", "end 2"}));
  }
}

TEST_F(CTNParserInFileTest, IgnoreBefore4MakesTheFirstThreeLinesIgnoredBlocks) {
  OpenFile("a\nb\nc\nd\ne\n");
  templ.limits.ignoreBefore = 4;
  EXPECT_EQ(Outcome(Apply()), "done applied");
  EXPECT_EQ(templ.calls, (Strings{"begin", "ignored a\n", "ignored b\n", "ignored c\n",
                                  "parse 6 to 10", "end 5"}));
}

TEST_F(CTNParserInFileTest, IgnoreBeforeMoreThanTheLinesEndsWithSuccessAndWithoutAScan) {
  OpenFile("a\nb\n");
  templ.limits.ignoreBefore = INT32_MAX;
  EXPECT_EQ(Outcome(Apply()), "done applied");
  EXPECT_EQ(templ.calls, (Strings{"begin", "ignored a\n", "ignored b\n", "end 2"}));
  templ.limits.ignoreBefore = 3;
  EXPECT_TRUE(Apply());
  EXPECT_EQ(templ.calls, (Strings{"begin", "ignored a\n", "ignored b\n", "parse 4 to 4", "end 2"}));
}

TEST_F(CTNParserInFileTest, LeadingLinesAreLinesNotPieces) {
  const std::string longLine = std::string(600, 'x') + "\n";
  OpenFile(longLine + "a\n");
  templ.limits.ignoreBefore = 2;
  EXPECT_TRUE(Apply());
  EXPECT_EQ(templ.calls, (Strings{"begin", "ignored " + longLine, "parse 601 to 603", "end 2"}));
}

TEST_F(CTNParserInFileTest, LinesBehindIgnoreAfterBecomeIgnoredBlocks) {
  OpenFile("a\nb\nc\nd\ne\n");
  templ.limits.ignoreAfter = 3;
  EXPECT_EQ(Outcome(Apply()), "done applied");
  EXPECT_EQ(templ.calls, (Strings{"begin", "parse 0 to 6", "ignored d\n", "ignored e\n", "end 5"}));
  EXPECT_EQ(End(), 10u);
}

TEST_F(CTNParserInFileTest, TheLastTwoLinesAreLeftByIgnoreAfterMinus2) {
  OpenFile("a\nb\nc\n");
  templ.limits.ignoreAfter = -2;
  EXPECT_TRUE(Apply());
  EXPECT_EQ(templ.calls, (Strings{"begin", "parse 0 to 2", "ignored b\n", "ignored c\n", "end 3"}));
}

TEST_F(CTNParserInFileTest, TrailingLinesStartWhereTheScanEnded) {
  const std::string longLine = std::string(600, 'x') + "\n";
  OpenFile(longLine + "a\n");
  templ.limits.ignoreAfter = 1;
  EXPECT_TRUE(Apply());
  // The scan took the whole line although its limit stands inside.
  EXPECT_EQ(templ.calls, (Strings{"begin", "parse 0 to 254", "ignored a\n", "end 2"}));
}

TEST_F(CTNParserInFileTest, LeadingLinesMayReachBehindTheEndLimit) {
  OpenFile("a\nb\nc\nd\n");
  templ.limits = {4, 2};
  EXPECT_TRUE(Apply());
  EXPECT_EQ(templ.calls, (Strings{"begin", "ignored a\n", "ignored b\n", "ignored c\n",
                                  "parse 6 to 4", "ignored d\n", "end 4"}));
}

TEST_F(CTNParserInFileTest, AnOpenLastLineThatGetsNoLineFeedIsABlockWithoutRecord) {
  OpenFile(ManyLines(255) + "last");
  templ.limits.ignoreAfter = 255;
  EXPECT_EQ(Outcome(Apply()), "done applied");
  EXPECT_EQ(Blocks().back(), "{}");
  const ApplicationStats stats = file.GetBlocks().GetStats();
  EXPECT_EQ(stats.totalBlocks, 256u);
  EXPECT_EQ(stats.totalLines, 255u);
  EXPECT_EQ(stats.ignoredBlocks, 0u);
  EXPECT_EQ(stats.AuxiliaryBlocks(), 1u);
  EXPECT_EQ(stats.MatchedBlocks(), 256u);
}

TEST_F(CTNParserInFileTest, AScanThatFailsWithoutAMessageGetsTheGeneralOne) {
  OpenFile("a\nb\n");
  templ.limits = {2, 0};
  templ.parses = false;
  EXPECT_EQ(Outcome(Apply()),
            "failed stale: Unspecified error while opening or applying template to  input file");
  EXPECT_EQ(Blocks(), Strings{"\?\?{F1=a|F2=}"}) << "what was made before the failure is kept";
  EXPECT_EQ(templ.calls, (Strings{"begin", "ignored a\n", "parse 2 to 4", "end 1"}));
}

TEST_F(CTNParserInFileTest, AScanThatFailsWithAMessageKeepsIt) {
  OpenFile("a\nb\n");
  templ.limits.ignoreAfter = 1;
  templ.parses = false;
  templ.parseError = "position not advanced";
  EXPECT_EQ(Outcome(Apply()), "failed stale: position not advanced");
  EXPECT_EQ(End(), 2u) << "trailing lines are taken after success only";
}

TEST_F(CTNParserInFileTest, SuccessAfterAFailureIsNotStale) {
  OpenFile("a\n");
  templ.parses = false;
  Apply();
  templ.parses = true;
  EXPECT_EQ(Outcome(Apply()), "done applied");
  EXPECT_EQ(Blocks(), Strings{"E1{F1=a|F2=}"});
}

TEST_F(CTNParserInFileTest, EachApplicationReadsTheFileAnew) {
  OpenFile("a\n");
  Apply();
  WriteFile("in.txt", "b\nc\n");
  Apply();
  EXPECT_EQ(Blocks(), (Strings{"E1{F1=b|F2=}", "E1{F1=c|F2=}"}));
  WriteFile("other", "d");
  std::filesystem::rename(PathOf("other"), PathOf("in.txt"));
  Apply();
  EXPECT_EQ(Blocks(), Strings{"E1{F1=d|F2=}"});
}

TEST_F(CTNParserInFileTest, AFileThatCanNoLongerBeReadLeavesNoBlocks) {
  OpenFile("a\n");
  Apply();
  std::filesystem::resize_file(PathOf("in.txt"), CTNTextFile::kTooLong);
  EXPECT_EQ(Outcome(Apply()), "failed stale: " + PathOf("in.txt") +
                                  " is too large: files of 2 GiB and more cannot be read");
  EXPECT_EQ(Blocks(), Strings());
  EXPECT_EQ(templ.calls, Strings()) << "what was not begun is not ended";
}

// ------------------------------------------------------------------------------- progress

TEST_F(CTNParserInFileTest, WithoutProgressNoWindowIsOpened) {
  OpenFile("a\n");
  EXPECT_TRUE(Apply(ShowProgress::No));
  EXPECT_EQ(watcher.notes, Strings());
  EXPECT_EQ(watcher.steps, 0u);
}

TEST_F(CTNParserInFileTest, ProgressTellsOfFileAndTemplateInPieces) {
  OpenFile("a\n" + std::string(600, 'x') + "\n", "board.top.txt");
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)), "done applied");
  EXPECT_EQ(watcher.notes,
            (Strings{"caption Scanning board.top.txt -- Progress: ",
                     "Preparing for Template Application ...",
                     "Applying Template File parts.xml...", "range 0 to 4 by 1", "closed"}));
  EXPECT_EQ(watcher.steps, 2u) << "a step a row";
}

TEST_F(CTNParserInFileTest, ProgressOfAnEmptyTemplateTellsOfReading) {
  OpenFile("a");
  templ.empty = true;
  EXPECT_TRUE(Apply(ShowProgress::Yes));
  EXPECT_EQ(
      watcher.notes,
      (Strings{"caption Scanning in.txt -- Progress: ", "Preparing for Template Application ...",
               "Reading File...", "range 0 to 1 by 1", "closed"}));
}

TEST_F(CTNParserInFileTest, AnAddedLineFeedIsNoPieceOfTheRange) {
  OpenFile(std::string(254, 'x'));
  EXPECT_TRUE(Apply(ShowProgress::Yes));
  EXPECT_EQ(watcher.notes[3], "range 0 to 1 by 1");
}

TEST_F(CTNParserInFileTest, AProgressThatShowsNoPositionIsNotToldOne) {
  OpenFile("a\n");
  watcher.showsPosition = false;
  EXPECT_TRUE(Apply(ShowProgress::Yes));
  EXPECT_EQ(watcher.notes, (Strings{"caption Scanning in.txt -- Progress: ",
                                    "Preparing for Template Application ...", "closed"}));
}

TEST_F(CTNParserInFileTest, ProgressWithoutAWindowOrAFrontEndIsAnApplicationWithoutProgress) {
  OpenFile("a\n");
  watcher.opensWindow = false;
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)), "done applied");
  EXPECT_TRUE(file.ApplyTemplate(&templ, error, cancelled, ShowProgress::Yes, nullptr));
  EXPECT_EQ(Blocks(), Strings{"E1{F1=a|F2=}"});
}

TEST_F(CTNParserInFileTest, ACancelBeforeScanningLeavesEverythingAsItWas) {
  OpenFile("a\nb\nc\n");
  templ.limits.ignoreAfter = 2;
  templ.parses = false;
  Apply();
  EXPECT_EQ(End(), 4u);
  WriteFile("in.txt", "new\n");
  watcher.cancelAt = 0;
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)), "failed stale cancelled: Operation cancelled");
  EXPECT_EQ(templ.calls, Strings());
  EXPECT_EQ(Text(), "a\nb\nc\n");
  EXPECT_EQ(End(), 4u);
  EXPECT_EQ(watcher.notes, (Strings{"caption Scanning in.txt -- Progress: ",
                                    "Preparing for Template Application ...", "closed"}));
}

TEST_F(CTNParserInFileTest, ACancelWhileScanningBringsTheOldResultsBack) {
  OpenFile("a\nb\n");
  Apply();
  WriteFile("in.txt", "1\n2\n3\n");
  watcher.cancelAt = 2;
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)), "failed applied cancelled: Operation cancelled");
  EXPECT_EQ(Blocks(), (Strings{"E1{F1=a|F2=}", "E1{F1=b|F2=}"}));
  EXPECT_EQ(Text(), "a\nb\n");
  EXPECT_EQ(file.GetBlocks().GetProgress(), nullptr);
  EXPECT_EQ(templ.calls, (Strings{"begin", "parse 0 to 6"})) << "a cancelled one is not ended";
  watcher.cancelAt = -1;
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)), "done applied");
  EXPECT_EQ(Blocks(), (Strings{"E1{F1=1|F2=}", "E1{F1=2|F2=}", "E1{F1=3|F2=}"}));
}

TEST_F(CTNParserInFileTest, ACancelOfStaleResultsLeavesThemStale) {
  OpenFile("a\n");
  Apply();
  file.SetStale(true);
  watcher.cancelAt = 1;
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)),
            "failed applied stale cancelled: Operation cancelled");
}

TEST_F(CTNParserInFileTest, ACancelInTheLeadingLinesEndsThere) {
  OpenFile("a\nb\nc\n");
  templ.limits.ignoreBefore = 3;
  watcher.cancelAt = 1;
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)), "failed stale cancelled: Operation cancelled");
  EXPECT_EQ(templ.calls, (Strings{"begin", "ignored a\n"}));
  EXPECT_EQ(Blocks(), Strings());
}

TEST_F(CTNParserInFileTest, ACancelInTheTrailingLinesEndsThere) {
  OpenFile("a\nb\nc\n");
  templ.limits.ignoreAfter = 1;
  watcher.cancelAt = 2;
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)), "failed stale cancelled: Operation cancelled");
  EXPECT_EQ(templ.calls, (Strings{"begin", "parse 0 to 2", "ignored b\n"}));
}

TEST_F(CTNParserInFileTest, ACancelThatCameWithAnErrorIsTheCancel) {
  OpenFile("a\n");
  templ.parses = false;
  templ.parseError = "some error";
  templ.onParse = [this] { watcher.cancelAt = 0; };
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)), "failed stale cancelled: Operation cancelled");
}

TEST_F(CTNParserInFileTest, OldResultsAreKeptDuringAnApplicationWithProgressOnly) {
  OpenFile("a\n");
  Apply();
  std::weak_ptr<const CTNParsedResult> old = file.GetBlocks().GetResult();
  bool held = false;
  templ.onParse = [&] { held = !old.expired(); };
  Apply(ShowProgress::Yes);
  EXPECT_TRUE(held);
  EXPECT_TRUE(old.expired());
  old = file.GetBlocks().GetResult();
  Apply(ShowProgress::No);
  EXPECT_FALSE(held);
}

// ------------------------------------------------------------------------------- memory

TEST_F(CTNParserInFileTest, NoMemoryForALeadingLineEndsTheApplication) {
  OpenFile("a\nb\nc\n");
  templ.limits.ignoreBefore = 3;
  templ.onIgnored = [this] {
    if (templ.calls.back() == "ignored b\n") throw std::bad_alloc();
  };
  EXPECT_EQ(Outcome(Apply()),
            "failed stale: Memory allocation error occurred while applying template");
  EXPECT_EQ(templ.calls, (Strings{"begin", "ignored a\n", "ignored b\n", "end 1"}));
}

TEST_F(CTNParserInFileTest, NoMemoryForATrailingLineFailsButGoesOnWithTheOthers) {
  OpenFile("a\nb\nc\nd\n");
  templ.limits.ignoreAfter = 1;
  templ.onIgnored = [this] {
    if (templ.calls.back() == "ignored b\n") throw std::bad_alloc();
  };
  EXPECT_EQ(Outcome(Apply()), "failed stale: Out of memory while applying template");
  EXPECT_EQ(templ.calls, (Strings{"begin", "parse 0 to 2", "ignored b\n", "ignored c\n",
                                  "ignored d\n", "end 3"}));
  EXPECT_EQ(Blocks(), (Strings{"E1{F1=a|F2=}", "\?\?{F1=c|F2=}", "\?\?{F1=d|F2=}"}));
}

TEST_F(CTNParserInFileTest, NoMemoryForTheTextIsAnErrorText) {
  OpenFile("a\n");
  Apply();
  {
    const test::MemoryRunsOut memory(1);
    EXPECT_EQ(Outcome(Apply()),
              "failed stale: Memory allocation error occurred while applying template");
  }
  EXPECT_EQ(Blocks(), Strings());
  EXPECT_EQ(templ.calls, Strings());
  EXPECT_EQ(Outcome(Apply()), "done applied");
}

TEST_F(CTNParserInFileTest, NoMemoryForTheTextDuringACancelBringsTheOldResultsBack) {
  OpenFile("a\n");
  Apply();
  watcher.cancelAt = 0;
  const test::MemoryRunsOut memory(1);
  EXPECT_EQ(Outcome(Apply(ShowProgress::Yes)), "failed applied cancelled: Operation cancelled");
  EXPECT_EQ(Blocks(), Strings{"E1{F1=a|F2=}"});
}

TEST_F(CTNParserInFileTest, NoMemoryWhenTheApplicationIsEndedIsAFailure) {
  OpenFile("a\n");
  templ.onEnd = [] { throw std::bad_alloc(); };
  EXPECT_EQ(Outcome(Apply()),
            "failed stale: Memory allocation error occurred while applying template");
  EXPECT_EQ(Blocks(), Strings{"E1{F1=a|F2=}"});
}

// ------------------------------------------------------------------------------- closing

TEST_F(CTNParserInFileTest, CloseAndResetIsTheStateAfterConstructionWithTheFileClosed) {
  OpenFile("a\n");
  Apply();
  file.SetOutputDone(true);
  file.SetOutputPath("/some/list.xml");
  file.CloseAndReset();
  EXPECT_FALSE(file.IsApplied());
  EXPECT_FALSE(file.IsOutputDone());
  EXPECT_TRUE(file.IsStale());
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(file.GetOutputPath(), "");
  EXPECT_EQ(Blocks(), Strings());
}

TEST_F(CTNParserInFileTest, AnApplicationLeavesTheOutputMarksAlone) {
  OpenFile("a\n");
  file.SetOutputDone(true);
  file.SetOutputPath("/some/list.xml");
  Apply();
  EXPECT_TRUE(file.IsOutputDone());
  EXPECT_EQ(file.GetOutputPath(), "/some/list.xml");
}

TEST_F(CTNParserInFileTest, ClosingTheFileKeepsTheResults) {
  OpenFile("a\n");
  Apply();
  file.Close();
  EXPECT_TRUE(file.IsApplied());
  EXPECT_EQ(Blocks(), Strings{"E1{F1=a|F2=}"});
}

TEST_F(CTNParserInFileTest, AnApplicationForCountsAloneKeepsNoBlocks) {
  OpenFile("a\nb\nc\n");
  templ.limits = {2, 2};
  EXPECT_TRUE(
      file.ApplyTemplate(&templ, error, cancelled, ShowProgress::No, nullptr, ResultUse::Counted));
  EXPECT_EQ(file.GetBlocks().GetSize(), 0u);
  const ApplicationStats stats = file.GetBlocks().GetStats();
  EXPECT_EQ(stats.totalBlocks, 3u);
  EXPECT_EQ(stats.ignoredBlocks, 2u);
  EXPECT_EQ(stats.entityBlocks, 1u);
  EXPECT_EQ(stats.totalLines, 3u);
  EXPECT_EQ(stats.ignoredLines, 2u);
}

}  // namespace
}  // namespace bomparser
