// Several threads find what one finds: in results, failures, cancels and steps.

#include "input/CTNStringCharBuffIter.h"
#include "template/OutputProgram.h"
#include "tests/support/Application.h"
#include "tests/support/TemplateBuilder.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser::test {
namespace {

class Threads : public ::testing::Test {
 protected:
  CTNTemplateRecord& Add(RecordKind kind, const std::vector<FieldSpec>& fields) {
    return AddRecord(document, kind, "record", fields);
  }
  void AddPart() {
    AddRecord(document, RecordKind::Part, "part", {Alpha(), Newline()},
              {{OutputTag::RefDesignator, "F1"}, {OutputTag::PartNumber, "F1 F1"}});
  }
  /// Where the application ends when it is watched: blocks, steps told, and how it ended.
  std::string Watched(std::string_view text, const ApplicationPurpose& purpose,
                      std::int64_t cancelAtStep) {
    Application application;
    FakeProgress::Log log;
    log.cancelAtStep = cancelAtStep;
    FakeProgress progress(log);
    CTNStringCharBuffIter cursor(text);
    document.BeginApplication(cursor.GetText(), application.blocks, purpose);
    application.blocks.SetProgress(&progress);
    application.done =
        document.ParseFile(cursor, application.blocks, application.error, application.cancelled);
    application.blocks.SetProgress(nullptr);
    const ApplicationStats stats = application.blocks.GetStats();
    std::string told = std::to_string(application.done) + std::to_string(application.cancelled);
    const auto tell = [&told](auto number) { told += ' ' + std::to_string(number); };
    tell(stats.totalBlocks);
    tell(stats.totalLines);
    tell(stats.unmatchedBlocks);
    tell(log.steps);
    if (const auto result = application.blocks.GetResult()) tell(result->ElementEnd());
    for (const std::string& block : application.Readable())
      told += ' ' + block;
    return told + ' ' + application.error;
  }

  CTNParserTemplate document{nullptr};
};

std::string Repeated(std::string_view lines, int count) {
  std::string text;
  for (; count > 0; --count)
    text += lines;
  return text;
}

TEST_F(Threads, ACancelEndsAtTheSameBlock) {
  Add(RecordKind::MultipleMatch, {Alpha(), Newline()});
  Add(RecordKind::MultipleMatch, {WholeNum(), Newline(), Alpha(), Newline()});
  const std::string text = Repeated("ab\n12\ncd\n?\n", 20);
  for (std::int64_t step = 0; step < 82; ++step)
    EXPECT_EQ(Watched(text, WithThreads(), step), Watched(text, {}, step)) << step;
}

TEST_F(Threads, EveryStepIsTold) {
  Add(RecordKind::MultipleMatch, {WholeNum(), Newline(), Alpha(), Newline()});
  const std::string text = Repeated("12\ncd\n?\n", 20);
  EXPECT_EQ(Watched(text, WithThreads(), -1), Watched(text, {}, -1));
  EXPECT_EQ(Watched(text, WithThreads(ResultUse::Counted), -1),
            Watched(text, ResultUse::Counted, -1));
}

TEST_F(Threads, GivingUpHappensAtTheSameBlock) {
  Add(RecordKind::MultipleMatch, {Alpha(), Newline()});
  const std::string text = Repeated("ab\n?\ncd\n", 20);
  for (std::uint32_t most = 0; most < 22; ++most) {
    for (const ResultUse use : {ResultUse::Kept, ResultUse::Counted}) {
      ApplicationPurpose shared = WithThreads(use);
      shared.mostUnmatched = most;
      EXPECT_EQ(Watched(text, shared, -1), Watched(text, {use, most}, -1)) << most;
    }
  }
}

TEST_F(Threads, ALateSingleMatchChangesWhatComesBehindIt) {
  Add(RecordKind::SingleMatch, {Alpha("x"), Newline()});
  Add(RecordKind::SingleMatch, {Alpha("x"), Newline()});
  Add(RecordKind::MultipleMatch, {Alpha(), Newline()});
  for (int before = 0; before < 30; ++before) {
    const std::string text = Repeated("ab\n", before) + Repeated("x\ncd\nx\n", 10);
    EXPECT_EQ(Watched(text, WithThreads(), -1), Watched(text, {}, -1)) << before;
  }
}

TEST_F(Threads, BlocksOverManyPiecesAreOne) {
  Add(RecordKind::MultipleMatch, {String("<"), Scan(), String(">"), Newline()});
  const std::string text = Repeated('<' + Repeated("a\n", 50) + ">\nb\n", 5);
  EXPECT_EQ(Watched(text, WithThreads(), -1), Watched(text, {}, -1));
}

TEST_F(Threads, ARecordThatTakesNothingIsToldTheSame) {
  Add(RecordKind::MultipleMatch, {Alpha(), Newline()});
  Add(RecordKind::MultipleMatch, {});
  // At the start of a piece, and behind another block of it.
  for (const int before : {30, 31}) {
    const std::string text = Repeated("a\n", before) + "?\n" + Repeated("a\n", 30);
    const std::string told = Watched(text, {}, -1);
    EXPECT_EQ(told.front(), '0') << told;
    EXPECT_EQ(Watched(text, WithThreads(), -1), told) << before;
  }
}

TEST_F(Threads, ALastLineThatNothingTakesIsToldTheSame) {
  Add(RecordKind::MultipleMatch, {Alpha(), Newline()});
  const std::string text = Repeated("ab\n", 30) + "no line end";
  EXPECT_EQ(Watched(text, WithThreads(), -1), Watched(text, {}, -1));
}

/// The list, which must come in pieces that are not too long to be held by every thread.
std::string ListOf(const Application& application, unsigned threads) {
  std::string list;
  const OutputProgram::Sink gather = [&list](std::string_view piece) {
    EXPECT_LE(piece.size(), std::size_t{4} << 20);
    list += piece;
    return true;
  };
  const OutputProgram program(*application.blocks.GetResult());
  EXPECT_TRUE(program.Write("<", ">", gather, threads));
  return list;
}

TEST_F(Threads, AListOfManyPartsIsTheSame) {
  AddPart();
  const Application application =
      ApplyToText(document, Repeated("abc\nd\n?\n", 50'000) + std::string(2'000'000, 'x') + '\n' +
                                Repeated("abc\nd\n", 50'000));
  const std::string list = ListOf(application, 1);
  EXPECT_GT(list.size(), 5'000'000U);
  EXPECT_TRUE(ListOf(application, 2) == list);
  EXPECT_TRUE(ListOf(application, 5) == list);
}

TEST_F(Threads, AListOfWhichAPartIsVeryLongIsTheSame) {
  AddPart();
  AddRecord(document, RecordKind::Part, "long", {String("1"), Newline()},
            {{OutputTag::PartNumber, '"' + std::string(1'000, 'x') + '"'}});
  const Application application = ApplyToText(
      document, Repeated("abc\n", 300'000) + Repeated("1\n", 6'000) + Repeated("abc\n", 300'000));
  const std::string list = ListOf(application, 1);
  EXPECT_GT(list.size(), 6'000'000U + 600'000U * 20);
  EXPECT_TRUE(ListOf(application, 2) == list);
  EXPECT_TRUE(ListOf(application, 5) == list);
}

TEST_F(Threads, AListThatIsStoppedEnds) {
  AddPart();
  const Application application = ApplyToText(document, Repeated("abc\n", 600'000));
  const OutputProgram program(*application.blocks.GetResult());
  int pieces = 0;
  EXPECT_FALSE(program.Write(
      "<", ">", [&pieces](std::string_view) { return ++pieces < 3; }, 3));
  EXPECT_EQ(pieces, 3);
}

}  // namespace
}  // namespace bomparser::test
