// The loop that cuts a text into blocks.

#include "input/CTNStringCharBuffIter.h"
#include "tests/support/Application.h"
#include "tests/support/TemplateBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace bomparser::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BlockLoop : public testing::Test {
 protected:
  CTNTemplateRecord& Add(RecordKind kind, const std::vector<FieldSpec>& fields) {
    return AddRecord(document, kind, "record", fields);
  }
  CTNTemplateRecord& AddPart(const std::vector<FieldSpec>& fields) {
    return AddRecord(document, RecordKind::Part, "part", fields,
                     {{OutputTag::RefDesignator, "F1"}, {OutputTag::PartNumber, "\"P\""}});
  }
  std::vector<std::string> Blocks(std::string_view text) {
    const Application application = ApplyToText(document, text);
    EXPECT_TRUE(application.done) << application.error;
    EXPECT_EQ(application.error, "");
    EXPECT_FALSE(application.cancelled);
    return application.Readable();
  }

  CTNParserTemplate document{nullptr};
};

TEST_F(BlockLoop, AnEmptyTextHasNoBlocks) { EXPECT_THAT(Blocks(""), IsEmpty()); }

TEST_F(BlockLoop, WhatNoRecordMatchesIsTakenByTheCatchAllLineByLine) {
  Add(RecordKind::MultipleMatch, {WholeNum(), Newline()});
  EXPECT_THAT(Blocks("a b\n\nc\n"),
              ElementsAre("\?\?{F1=a b|F2=}", "\?\?{F1=|F2=}", "\?\?{F1=c|F2=}"));
}

TEST_F(BlockLoop, AuxiliaryRecordsAreTriedBeforeEntitiesAndTheFirstMatchWins) {
  AddPart({Alnum(), Newline()});
  AddPart({Alnum(), Newline()});
  Add(RecordKind::MultipleMatch, {WholeNum(), Newline()});
  Add(RecordKind::MultipleMatch, {WholeNum(), Newline()});
  EXPECT_THAT(Blocks("a\n1\n"), ElementsAre("E1{F1=a|F2=}", "A1{F1=1|F2=}"));
}

TEST_F(BlockLoop, AScanForALiteralGoesOnWhereOnlyItsFirstCharacterStands) {
  AddPart({Scan(), String("--"), Newline()});
  AddPart({String("#"), Scan(), CaseSensitive(String("ab")), Scan(), String("\",\""), Newline()});
  EXPECT_THAT(Blocks("a-b--\n#aBa,ab\",\"\"x\n#aBab\"\",\"\n"),
              ElementsAre("E1{F1=a-b|F2=--|F3=}", "\?\?{F1=#aBa,ab\",\"\"x|F2=}",
                          "E2{F1=#|F2=aB|F3=ab|F4=\"|F5=\",\"|F6=}"));
}

TEST_F(BlockLoop, SubRecordsAreNotTriedOnTheirOwn) {
  Add(RecordKind::SubRecord, {Alpha(), Newline()});
  EXPECT_THAT(Blocks("a\n"), ElementsAre("\?\?{F1=a|F2=}"));
}

TEST_F(BlockLoop, InvalidRecordsNeverMatch) {
  CTNTemplateRecord& record = Add(RecordKind::MultipleMatch, {Alpha()});
  ASSERT_EQ(record.IsValid(), 0);
  EXPECT_THAT(Blocks("a\n"), ElementsAre("\?\?{F1=a|F2=}"));
}

TEST_F(BlockLoop, ASingleMatchRecordTakesOneBlockAndLaterOnesGoToOthers) {
  CTNTemplateRecord& single = Add(RecordKind::SingleMatch, {Alpha(), Newline()});
  Add(RecordKind::MultipleMatch, {Alpha("b"), Newline()});
  EXPECT_THAT(Blocks("a\nb\nc\n"), ElementsAre("A1{F1=a|F2=}", "A2{F1=b|F2=}", "\?\?{F1=c|F2=}"));
  ASSERT_NE(single.GetSingleMatchBlock(), nullptr);
  EXPECT_EQ(single.GetSingleMatchBlock()->ToReadableText(), "A1{F1=a|F2=}");
}

TEST_F(BlockLoop, ANewApplicationForgetsSingleMatches) {
  CTNTemplateRecord& single = Add(RecordKind::SingleMatch, {Alpha(), Newline()});
  Blocks("a\n");
  EXPECT_THAT(Blocks("1\nb\n"), ElementsAre("\?\?{F1=1|F2=}", "A1{F1=b|F2=}"));
  Blocks("1\n");
  EXPECT_EQ(single.GetSingleMatchBlock(), nullptr);
}

TEST_F(BlockLoop, ARecordThatFailsLeavesNothingInTheBlockAndTheNextBeginsWhereItBegan) {
  Add(RecordKind::MultipleMatch, {Alpha(), Space(), WholeNum(), Newline()});
  Add(RecordKind::MultipleMatch, {Alpha(), Space(), Alpha(), Newline()});
  EXPECT_THAT(Blocks("a b\n"), ElementsAre("A2{F1=a|F2= |F3=b|F4=}"));
}

TEST_F(BlockLoop, ABlockMayBeSeveralLines) {
  Add(RecordKind::MultipleMatch, {String("BEGIN"), Scan(), String("END"), Newline()});
  EXPECT_THAT(Blocks("BEGIN\na\nEND\nx\n"),
              ElementsAre("A1{F1=BEGIN|F2=\na\n|F3=END|F4=}", "\?\?{F1=x|F2=}"));
}

TEST_F(BlockLoop, ARecordThatTakesNothingIsToldWithBothPositions) {
  Add(RecordKind::MultipleMatch, {Alpha(), Newline()});
  Add(RecordKind::MultipleMatch, {});
  const Application application = ApplyToText(document, "a\n1\n");
  EXPECT_FALSE(application.done);
  EXPECT_EQ(application.error,
            "Internal error while parsing input file. File pointer was\n"
            "set backward or not advanced after read operation: Prev position = 2, current "
            "position = 2");
  EXPECT_THAT(application.Readable(), ElementsAre("A1{F1=a|F2=}", "A2{}"));
}

TEST_F(BlockLoop, ALineThatNothingTakesIsToldWithItsPositionAndText) {
  const Application application = ApplyToText(document, "a\nlast line");
  EXPECT_FALSE(application.done);
  EXPECT_FALSE(application.cancelled);
  EXPECT_EQ(application.error,
            "Internal error reading data at file position 2: \nText of line: last line");
  EXPECT_THAT(application.Readable(), ElementsAre("\?\?{F1=a|F2=}"));
}

TEST_F(BlockLoop, OfAVeryLongUnreadableLineTheBeginningIsTold) {
  const Application application = ApplyToText(document, std::string(5000, 'x'));
  EXPECT_EQ(application.error, "Internal error reading data at file position 0: \nText of line: " +
                                   std::string(1020, 'x'));
}

TEST_F(BlockLoop, AfterAnUnreadableLineTheCursorStandsBeforeIt) {
  CTNStringCharBuffIter cursor("a\nlast");
  CTNParsedBlockPtrArray blocks(nullptr);
  std::string error;
  bool cancelled = false;
  document.BeginApplication(cursor.GetText(), blocks, ResultUse::Kept);
  EXPECT_FALSE(document.ParseFile(cursor, blocks, error, cancelled));
  EXPECT_EQ(cursor.GetPosition(), 2U);
  document.EndApplication(blocks);
}

TEST_F(BlockLoop, BeginsAtTheCursorAndEndsWithTheBlockThatReachesTheEndLimit) {
  Add(RecordKind::MultipleMatch, {Alpha(), Newline(), Alpha(), Newline()});
  CTNStringCharBuffIter cursor("1\na\nb\nc\nd\n");
  cursor.SetPosition(2);
  cursor.SetEnd(4);
  CTNParsedBlockPtrArray blocks(nullptr);
  std::string error;
  bool cancelled = false;
  document.BeginApplication(cursor.GetText(), blocks, ResultUse::Kept);
  EXPECT_TRUE(document.ParseFile(cursor, blocks, error, cancelled)) << error;
  document.EndApplication(blocks);
  ASSERT_EQ(blocks.GetSize(), 1U);
  EXPECT_EQ(blocks.GetAt(0).ToReadableText(), "A1{F1=a|F2=|F3=b|F4=}");
  EXPECT_EQ(cursor.GetPosition(), 6U);
}

/// An application that is watched.
struct Watched {
  explicit Watched(CTNParserTemplate& document, std::string_view text, std::int64_t cancelAt) {
    FakeProgress::Log log;
    log.cancelAtStep = cancelAt;
    FakeProgress progress(log);
    CTNStringCharBuffIter cursor(text);
    document.BeginApplication(cursor.GetText(), blocks, ResultUse::Kept);
    blocks.SetProgress(&progress);
    done = document.ParseFile(cursor, blocks, error, cancelled);
    blocks.SetProgress(nullptr);
    steps = log.steps;
  }
  CTNParsedBlockPtrArray blocks{nullptr};
  std::string error;
  bool cancelled = false;
  bool done = false;
  std::uint32_t steps = 0;
};

TEST_F(BlockLoop, TellsTheProgressOfEveryLine) {
  const Watched watched(document, "a\nb\nc\n", -1);
  EXPECT_TRUE(watched.done);
  EXPECT_EQ(watched.steps, 3U);
}

TEST_F(BlockLoop, ACancelDropsTheBlockUnderWayAndIsNoError) {
  const Watched watched(document, "a\nb\nc\n", 2);
  EXPECT_FALSE(watched.done);
  EXPECT_TRUE(watched.cancelled);
  EXPECT_EQ(watched.error, "");
  ASSERT_EQ(watched.blocks.GetSize(), 1U);
  EXPECT_EQ(watched.blocks.GetAt(0).ToReadableText(), "\?\?{F1=a|F2=}");
}

TEST_F(BlockLoop, WhatACancelledApplicationLeftDoesNotReachLaterResults) {
  CTNTemplateRecord& single = Add(RecordKind::SingleMatch, {Alpha(), Newline()});
  const Application before = ApplyToText(document, "old\n");
  { const Watched watched(document, "a\nb\nc\n", 2); }
  document.EndApplication(before.blocks);
  EXPECT_EQ(single.GetInputFields()[0]->GetCurrentValue(), "");
  EXPECT_EQ(single.GetSingleMatchBlock(), nullptr);
}

TEST_F(BlockLoop, AnIgnoredLineIsTakenByItsOwnRecord) {
  CTNStringCharBuffIter cursor("a\nb");
  CTNParsedBlockPtrArray blocks(nullptr);
  document.BeginApplication(cursor.GetText(), blocks, ResultUse::Kept);
  EXPECT_EQ(document.TakeIgnoredLine(0, 2, blocks), 0);
  EXPECT_EQ(document.TakeIgnoredLine(2, 3, blocks), 1);
  document.EndApplication(blocks);
  EXPECT_EQ(blocks.GetAt(0).GetKind(), BlockKind::Ignored);
  EXPECT_EQ(blocks.GetAt(0).ToReadableText(), "\?\?{F1=a|F2=}");
  // A line without a line end is none of that record's: a block without a record.
  EXPECT_EQ(blocks.GetAt(1).ToReadableText(), "{}");
}

// ------------------------------------------------------------------------------- hostile texts

constexpr std::size_t kLines = 200'000;

std::string Lines(std::string_view line, std::size_t count = kLines) {
  std::string text;
  for (; count > 0; --count)
    text += line;
  return text;
}

/// With work that grew with the square of the text these would run for hours.
class HostileText : public BlockLoop {
 protected:
  std::size_t Count(const std::string& text) {
    const Application application = ApplyToText(document, text);
    EXPECT_TRUE(application.done) << application.error;
    return application.blocks.GetSize();
  }
};

TEST_F(HostileText, AScanForWhatNeverComesReadsTheTextOnce) {
  Add(RecordKind::MultipleMatch, {Alpha(), Scan(), WholeNum(), Newline()});
  EXPECT_EQ(Count(Lines("abcd efgh\n")), kLines);
}

TEST_F(HostileText, SoDoManyOfThem) {
  for (int i = 0; i < 20; ++i)
    Add(RecordKind::MultipleMatch, {Alpha(), Scan(), String("zz" + std::to_string(i)), Newline()});
  EXPECT_EQ(Count(Lines("abcz zzz\n")), kLines);
}

TEST_F(HostileText, AScanInsideAScanReadsTheTextOnce) {
  Add(RecordKind::SubRecord, {Alpha(), Scan(), WholeNum()});
  Add(RecordKind::MultipleMatch, {Scan(), SubRecord("A1"), Newline()});
  EXPECT_EQ(Count(Lines("abcd efgh\n")), kLines);
}

TEST_F(HostileText, InOneLongLineToo) {
  Add(RecordKind::SubRecord, {Alpha(), Scan(), WholeNum()});
  Add(RecordKind::MultipleMatch, {Scan(), SubRecord("A1"), Newline()});
  EXPECT_EQ(Count(Lines("ab ") + '\n'), 1U);
}

TEST_F(HostileText, AScanWhoseFollowerComesAndTheRestDoesNotReadsTheTextOnce) {
  Add(RecordKind::MultipleMatch, {Scan(), WholeNum(), String("never"), Newline()});
  EXPECT_EQ(Count(Lines("abcd efgh\n") + "12\n"), kLines + 1);
}

TEST_F(HostileText, AScanBetweenPlacesFarApartReadsTheTextOnce) {
  Add(RecordKind::SubRecord, {Scan(), WholeNum()});
  Add(RecordKind::MultipleMatch, {SubRecord("A1"), String("never"), Newline()});
  EXPECT_EQ(Count(Lines("abcd efgh\n") + "12\n" + Lines("abcd efgh\n") + "12\n"), 2 * kLines + 2);
}

TEST_F(HostileText, ARowOfSubRecordsWhoseFollowerNeverComesIsWalkedOnce) {
  Add(RecordKind::SubRecord, {Alpha(), Newline()});
  Add(RecordKind::MultipleMatch, {SubRecord("A1"), String("never"), Newline()});
  Add(RecordKind::MultipleMatch, {SubRecord("A1"), WholeNum(), Newline()});
  EXPECT_EQ(Count(Lines("abc\n")), kLines);
}

TEST_F(HostileText, SoAreRowsInsideEachOther) {
  Add(RecordKind::SubRecord, {WholeNum(), WhtSpace()});
  Add(RecordKind::SubRecord, {Alpha(), SubRecord("A1"), Newline()});
  Add(RecordKind::MultipleMatch, {SubRecord("A2"), String("never"), Newline()});
  EXPECT_EQ(Count(Lines("abc1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 \n", kLines / 4)),
            kLines / 4);
}

TEST_F(HostileText, ALongRunIsReadOnceWhateverIsLookedForInIt) {
  Add(RecordKind::SubRecord, {Alnum(), String("!")});
  Add(RecordKind::MultipleMatch, {Scan(), Alpha("foo"), String("!"), Newline()});
  Add(RecordKind::MultipleMatch, {Scan(), SubRecord("A1"), Newline()});
  Add(RecordKind::MultipleMatch,
      {Scan(), Field(FieldKind::NotWhtSpace, "foo"), String("!"), Newline()});
  EXPECT_EQ(Count(Lines("abcdefgh") + '\n'), 1U);
}

TEST_F(HostileText, SoIsALongNumber) {
  Add(RecordKind::MultipleMatch, {Scan(), DecimalNum(), Newline()});
  Add(RecordKind::MultipleMatch, {Scan(), WholeNum("7"), Newline()});
  EXPECT_EQ(Count(Lines("12345678") + '\n'), 1U);
}

TEST_F(HostileText, SoIsALineThatIsTooShortForAColumn) {
  Add(RecordKind::MultipleMatch, {Scan(), Column(10'000'000), Newline()});
  EXPECT_EQ(Count(Lines("12345678") + '\n'), 1U);
}

TEST_F(HostileText, SubRecordsThatMultiplyEnd) {
  Add(RecordKind::SubRecord, {Optional(WholeNum())});
  for (int i = 1; i < 30; ++i) {
    const FieldSpec sub = Optional(SubRecord("A" + std::to_string(i)));
    Add(RecordKind::SubRecord, {sub, sub, sub});
  }
  CTNTemplateRecord& record =
      Add(RecordKind::MultipleMatch, {Optional(SubRecord("A30")), Alpha(), Newline()});
  ASSERT_EQ(record.IsValid(), 1);
  EXPECT_EQ(Count(Lines("a\n", 20)), 20U);
}

TEST_F(HostileText, SubRecordsThatFailInManyWaysEnd) {
  Add(RecordKind::SubRecord, {WholeNum()});
  for (int i = 1; i < 60; ++i) {
    const FieldSpec sub = Optional(SubRecord("A" + std::to_string(i)));
    Add(RecordKind::SubRecord, {sub, Optional(sub), String("never")});
  }
  Add(RecordKind::MultipleMatch, {Optional(SubRecord("A60")), Alpha(), Newline()});
  EXPECT_EQ(Count(Lines("a\n", 20)), 20U);
}

TEST_F(HostileText, AVeryLongChainOfRecordsIsCompiled) {
  Add(RecordKind::SubRecord, {Alpha()});
  constexpr int kLinks = 20'000;
  for (int i = 1; i < kLinks; ++i)
    Add(RecordKind::SubRecord, {SubRecord("A" + std::to_string(i))});
  Add(RecordKind::MultipleMatch, {SubRecord("A200"), Newline()});
  Add(RecordKind::MultipleMatch, {SubRecord("A" + std::to_string(kLinks)), Newline()});
  CTNTemplateRecord& shallow = *document.GetAuxiliaryRecords()[kLinks];
  ASSERT_EQ(shallow.IsValid(), 1) << shallow.GetStatusText();
  const Application application = ApplyToText(document, "a\n");
  ASSERT_EQ(application.blocks.GetSize(), 1U);
  EXPECT_EQ(application.blocks.GetAt(0).GetMatchedRecord(), &shallow);
}

}  // namespace
}  // namespace bomparser::test
