#include "input/CTNRowIndex.h"

#include "tests/support/ParsedFakes.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace bomparser {
namespace {

using test::FakeRecord;
using test::Fill;
using test::Instances;
using test::Taken;
using test::Text;
using Strings = std::vector<std::string>;

class CTNRowIndexTest : public testing::Test {
 protected:
  CTNRowIndexTest() {
    line.Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
    line.Add(FieldKind::Newline, "NEWLINE");
    catchAll.Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
    catchAll.Add(FieldKind::Newline, "NEWLINE");
    scan.Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
    list.AddSubRecord(&line);
  }
  Taken Line(const std::string& text) const { return {&line, {Text(text), Text("\n")}}; }
  /// A scan over line ends.
  Taken Scan(const std::string& text) const { return {&scan, {Text(text)}}; }
  /// A block that has no record and no row.
  static Taken Nothing() { return {}; }
  /// One block with this many lines "0", "1" ...
  Taken Lines(int count) const {
    std::vector<Taken> lines;
    lines.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
      lines.push_back(Line(std::to_string(i)));
    return {&list, {Instances(lines)}};
  }
  std::shared_ptr<const CTNParsedResult> Result(const std::vector<Taken>& taken) {
    Fill(blocks, taken);
    return blocks.GetResult();
  }
  /// "block.row text" of a line, "end" when there is none.
  static std::string At(CTNRowIndex& index, std::uint32_t wanted) {
    CTNRowCursor place = index.Find(wanted);
    if (place.IsAtEnd()) return "end";
    EXPECT_EQ(place.GetLine(), wanted);
    std::string text =
        std::to_string(place.GetBlock()) + "." + std::to_string(place.GetRow()) + " ";
    place.TakeText(text, {});
    return text;
  }
  /// What the blocks themselves say: "block.row text" of all rows.
  Strings AllRows() const {
    Strings rows;
    for (std::size_t i = 0; i < blocks.GetSize(); ++i) {
      const CTNParsedFileBlock block = blocks.GetAt(i);
      for (std::size_t row = 0; row < block.GetRowCount(); ++row) {
        std::string text;
        block.GetRowText(text, row, Markup::Off, Newlines::Hidden);
        rows.push_back(std::to_string(i) + "." + std::to_string(row) + " " + text);
      }
    }
    return rows;
  }

  FakeRecord line{RecordKind::Part, "E1"};
  FakeRecord catchAll{RecordKind::UnmatchedLines, "\?\?"};
  FakeRecord scan{RecordKind::MultipleMatch, "A1"};
  FakeRecord list{RecordKind::Part, "E2"};
  CTNParsedBlockPtrArray blocks{nullptr};
};

TEST_F(CTNRowIndexTest, OfAnEmptyResultThereIsNoLine) {
  CTNRowIndex index(Result({}));
  EXPECT_EQ(index.GetLineCount(), 0U);
  EXPECT_EQ(At(index, 0), "end");
  EXPECT_EQ(index.GetFirstLine(0), 0U);
}

TEST_F(CTNRowIndexTest, LinesAreCountedOverAllBlocksAndTheirRows) {
  CTNRowIndex index(Result({Line("a"), Scan("b\nc\ndd"), Line("e")}));
  EXPECT_EQ(index.GetLineCount(), 5U);
  Strings rows;
  for (std::uint32_t i = 0; i < 6; ++i)
    rows.push_back(At(index, i));
  EXPECT_EQ(rows, (Strings{"0.0 a", "1.0 b", "1.1 c", "1.2 dd", "2.0 e", "end"}));
}

TEST_F(CTNRowIndexTest, BlocksWithoutRowsArePassedOver) {
  CTNRowIndex index(Result({Nothing(), Line("a"), Nothing(), Nothing(), Line("b"), Nothing()}));
  EXPECT_EQ(index.GetLineCount(), 2U);
  EXPECT_EQ(At(index, 1), "4.0 b");
  EXPECT_EQ(At(index, 0), "1.0 a");
  EXPECT_EQ(At(index, 2), "end");
}

TEST_F(CTNRowIndexTest, AResultOfBlocksWithoutRowsHasNoLine) {
  CTNRowIndex index(Result({Nothing(), Nothing()}));
  EXPECT_EQ(index.GetLineCount(), 0U);
  EXPECT_EQ(At(index, 0), "end");
}

TEST_F(CTNRowIndexTest, TheFirstLineOfABlockIsFound) {
  CTNRowIndex index(Result({Line("a"), Scan("b\nc\ndd"), Nothing(), Line("e")}));
  Strings lines;
  for (std::uint32_t block = 0; block < 6; ++block)
    lines.push_back(std::to_string(index.GetFirstLine(block)));
  EXPECT_EQ(lines, (Strings{"0", "1", "4", "4", "5", "5"}));
}

TEST_F(CTNRowIndexTest, AnyOrderOfQuestionsGivesTheRowsThatTheBlocksHave) {
  std::vector<Taken> taken;
  for (int i = 0; i < 700; ++i) {
    taken.push_back(Line(std::to_string(i)));
    if (i % 3 == 0) taken.push_back(Scan("x\ny" + std::to_string(i) + "\n"));
    if (i % 7 == 0) taken.push_back(Nothing());
    if (i % 100 == 0) taken.push_back(Lines(600));
  }
  const auto result = Result(taken);
  const Strings wanted = AllRows();
  CTNRowIndex index(result);
  ASSERT_EQ(index.GetLineCount(), wanted.size());
  const auto count = static_cast<std::uint32_t>(wanted.size());
  // The steps have no divisor in common with the places that are remembered.
  for (const std::uint32_t step : {1U, 255U, 257U, count - 1, 4099U}) {
    std::uint32_t at = step;
    for (std::uint32_t i = 0; i < 500; ++i, at = (at + step) % count)
      ASSERT_EQ(At(index, at), wanted[at]) << at;
  }
}

TEST_F(CTNRowIndexTest, InTheMiddleOfAVeryLongBlockRowsAreFoundFromBothSides) {
  CTNRowIndex index(Result({Lines(5000), Line("z")}));
  EXPECT_EQ(At(index, 4999), "0.4999 4999");
  EXPECT_EQ(At(index, 3), "0.3 3");
  EXPECT_EQ(At(index, 2560), "0.2560 2560");
  EXPECT_EQ(At(index, 2559), "0.2559 2559");
  EXPECT_EQ(At(index, 5000), "1.0 z");
  EXPECT_EQ(index.GetFirstLine(1), 5000U);
}

TEST_F(CTNRowIndexTest, LinesFarBehindTheEndAreNotThere) {
  CTNRowIndex index(Result({Lines(1000)}));
  EXPECT_EQ(At(index, 0xFFFFFFFF), "end");
  EXPECT_EQ(At(index, 999), "0.999 999");
}

class CTNRowCursorTest : public CTNRowIndexTest {};

TEST_F(CTNRowCursorTest, TakesTheTextsOfAllRowsInOrder) {
  const auto result = Result({Line("a"), Scan("b\nc\ndd"), Nothing(), Lines(3), Line("e")});
  CTNRowCursor cursor(*result);
  Strings rows;
  while (!cursor.IsAtEnd()) {
    std::string text =
        std::to_string(cursor.GetBlock()) + "." + std::to_string(cursor.GetRow()) + " ";
    cursor.TakeText(text, {});
    rows.push_back(text);
  }
  EXPECT_EQ(rows, AllRows());
  EXPECT_EQ(cursor.GetLine(), 8U);
}

TEST_F(CTNRowCursorTest, AtTheEndItStays) {
  const auto result = Result({Line("a")});
  CTNRowCursor cursor(*result);
  cursor.MoveBy(7);
  cursor.MoveToNextBlock();
  std::string text = "kept";
  cursor.TakeText(text, {});
  EXPECT_TRUE(cursor.IsAtEnd());
  EXPECT_EQ(cursor.GetLine(), 1U);
  EXPECT_EQ(text, "kept");
}

TEST_F(CTNRowCursorTest, FromTheMiddleOfABlockItGoesToTheNext) {
  const auto result = Result({Lines(4), Line("z")});
  CTNRowCursor cursor(*result);
  cursor.MoveBy(2);
  EXPECT_EQ(cursor.GetRow(), 2U);
  cursor.MoveToNextBlock();
  EXPECT_EQ(cursor.GetBlock(), 1U);
  EXPECT_EQ(cursor.GetRow(), 0U);
  EXPECT_EQ(cursor.GetLine(), 4U);
}

TEST_F(CTNRowCursorTest, KnowsTheKindOfEveryBlock) {
  const auto result = Result({Line("a"), {&catchAll, {Text("u"), Text("\n")}}, Scan("s")});
  CTNRowCursor cursor(*result);
  EXPECT_EQ(cursor.GetKind(), BlockKind::Entity);
  cursor.MoveBy(1);
  EXPECT_EQ(cursor.GetKind(), BlockKind::Unmatched);
  cursor.MoveBy(1);
  EXPECT_EQ(cursor.GetKind(), BlockKind::Auxiliary);
}

TEST_F(CTNRowCursorTest, TheTextIsMadeAsTheBlockMakesIt) {
  const auto result = Result({Line("a\tb")});
  for (const Markup markup : {Markup::Off, Markup::On}) {
    for (const Newlines newlines : {Newlines::Hidden, Newlines::Shown}) {
      std::string wanted;
      blocks.GetAt(0).GetRowText(wanted, 0, markup, newlines);
      std::string text;
      CTNRowCursor(*result).TakeText(text, {markup, newlines, 8, RowTextForm::kNoLimit});
      EXPECT_EQ(text, wanted);
    }
  }
}

TEST_F(CTNRowCursorTest, ATextIsCutBehindItsLimitAndTheNextRowIsWhole) {
  const auto result = Result({Scan(std::string(100'000, 'x') + "\nnext\n")});
  CTNRowCursor cursor(*result);
  std::string text = "before ";
  cursor.TakeText(text, {Markup::Off, Newlines::Hidden, 8, 10});
  EXPECT_GE(text.size(), 17U);
  EXPECT_LT(text.size(), 10'000U);
  EXPECT_EQ(text.find_first_not_of('x', 7), std::string::npos);
  text.clear();
  cursor.TakeText(text, {Markup::Off, Newlines::Hidden, 8, 10});
  EXPECT_EQ(text, "next");
}

TEST_F(CTNRowCursorTest, TabsThatVanishDoNotCountTowardsTheLimit) {
  // Behind the first one every tab stands on a tab stop already.
  const auto result = Result({Line(std::string(50'000, '\t') + "end")});
  std::string text;
  CTNRowCursor(*result).TakeText(text, {Markup::Off, Newlines::Hidden, 8, 9});
  EXPECT_EQ(text, "        end");
}

}  // namespace
}  // namespace bomparser
