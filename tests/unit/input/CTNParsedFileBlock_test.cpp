#include "input/CTNParsedFileBlock.h"

#include "tests/support/ParsedFakes.h"

#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace bomparser {
namespace {

using test::Absent;
using test::FakeField;
using test::FakeRecord;
using test::Fill;
using test::Instances;
using test::Taken;
using test::Text;
using Strings = std::vector<std::string>;

class FakeContext final : public CTNParserContext {
 public:
  bool stale = false;
  int tabStop = 8;
  bool AreResultsStale() const override { return stale; }
  int GetTabStop() const override { return tabStop; }
  bool ReportError(std::string_view, ErrorShown) override { return true; }
  void OnTemplateModified() override {}
};

std::string RowText(const CTNParsedFileBlock& block, std::size_t row, Markup markup = Markup::Off,
                    Newlines newlines = Newlines::Hidden) {
  std::string text = "old";
  block.GetRowText(text, row, markup, newlines);
  return text;
}

/// The elements of all rows: "F1=abc", one string a row, joined by blanks.
Strings Rows(const CTNParsedFileBlock& block) {
  Strings rows;
  for (const CTNParsedFileRow& row : block.GetRows()) {
    std::string text;
    for (const CTNParsedFileBlockElement& element : row.GetElements()) {
      text += text.empty() ? "" : " ";
      text += element.GetFieldId() + "=" + std::string(element.GetValue());
      if (element.GetFieldType() == FieldKind::Newline) text += "$";
    }
    rows.push_back(text + (row.IsComplete() ? "" : " ..."));
  }
  return rows;
}

std::string ValueOf(const CTNParsedFileBlock& block, const CTNMatchedField& field,
                    Tags tags = Tags::Off) {
  std::string value;
  block.AppendFieldValue(value, field, tags);
  return value;
}

class CTNParsedFileBlockTest : public testing::Test {
 protected:
  CTNParsedFileBlockTest() {
    word = &line.Add(FieldKind::Alpha, "ALPHA");
    gap = &line.Add(FieldKind::WhtSpace, "WHTSPACE");
    scan = &line.Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
    end = &line.Add(FieldKind::Newline, "NEWLINE");
    for (FakeRecord* record : {&catchAll, &ignored}) {
      record->Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
      record->Add(FieldKind::Newline, "NEWLINE");
    }
  }
  Taken Line(const std::string& first, const std::string& second) const {
    return {&line, {Text(first), Text(" "), Text(second), Text("\n")}};
  }
  static Taken Plain(const FakeRecord& record, const std::string& text) {
    return {&record, {Text(text), Text("\n")}};
  }

  FakeContext context;
  FakeRecord line{RecordKind::Part, "E1", "Resistors"};
  FakeRecord catchAll{RecordKind::UnmatchedLines, "\?\?"};
  FakeRecord ignored{RecordKind::IgnoredLines, "\?\?"};
  const FakeField* word = nullptr;
  const FakeField* gap = nullptr;
  const FakeField* scan = nullptr;
  const FakeField* end = nullptr;
  CTNParsedFileBlock block{&context};
};

// ------------------------------------------------------------------------------- filling

TEST_F(CTNParsedFileBlockTest, AnEmptyBlockHasNoRecordNoRowsAndNoText) {
  EXPECT_EQ(block.GetRowCount(), 0u);
  EXPECT_EQ(Rows(block), Strings());
  EXPECT_EQ(RowText(block, 0), "");
  EXPECT_EQ(block.GetMatchedRecord(), nullptr);
  EXPECT_EQ(block.ToReadableText(), "{}");
  EXPECT_EQ(block.GetMatchText(), "\?\?");
  EXPECT_EQ(ValueOf(block, *word), "");
}

TEST_F(CTNParsedFileBlockTest, FieldTextsBecomeElementsInOrder) {
  EXPECT_TRUE(block.AddFieldText("abc", *word));
  EXPECT_TRUE(block.AddFieldText(" ", *gap));
  EXPECT_TRUE(block.AddFieldText("x y", *scan));
  EXPECT_TRUE(block.AddFieldText("\n", *end));
  EXPECT_EQ(Rows(block), Strings{"F1=abc F2=  F3=x y F4=$"});
  EXPECT_EQ(block.ToReadableText(), "E1{F1=abc|F2= |F3=x y|F4=}");
}

TEST_F(CTNParsedFileBlockTest, ALineEndMayComeWithAnEmptyText) {
  block.AddFieldText("", *end);
  EXPECT_EQ(Rows(block), Strings{"F4=$"});
}

TEST_F(CTNParsedFileBlockTest, FieldsThatAreLeftOutDidNotMatch) {
  EXPECT_TRUE(block.AddFieldText("text", *scan));
  EXPECT_EQ(Rows(block), Strings{"F3=text ..."});
  EXPECT_EQ(block.ToReadableText(), "E1{F3=text}");
}

TEST_F(CTNParsedFileBlockTest, FieldsOutOfOrderOrOfAnotherRecordAreRefused) {
  EXPECT_TRUE(block.AddFieldText(" ", *gap));
  EXPECT_FALSE(block.AddFieldText("abc", *word));
  EXPECT_FALSE(block.AddFieldText(" ", *gap));
  EXPECT_FALSE(block.AddFieldText("x", catchAll.At(0)));
  EXPECT_EQ(block.ToReadableText(), "E1{F2= }");
}

TEST_F(CTNParsedFileBlockTest, AFieldOfNoRecordIsRefused) {
  const FakeField alone(nullptr, FieldKind::Alpha, "ALPHA", nullptr);
  EXPECT_FALSE(block.AddFieldText("x", alone));
  EXPECT_EQ(block.GetRowCount(), 0u);
}

TEST_F(CTNParsedFileBlockTest, ASubRecordFieldNeedsABlockThatIsFilledByHand) {
  FakeRecord outer(RecordKind::Part, "E2");
  const FakeField& sub = outer.AddSubRecord(&line);
  const FakeField& unresolved = outer.AddSubRecord(nullptr);
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {Line("a", "b")});
  const CTNParsedFileBlock view = results.GetAt(0);
  const CTNParsedFileBlock own(&context);
  EXPECT_FALSE(block.AddFieldText("a", sub));
  EXPECT_FALSE(block.AddFieldText("a", sub, &view));
  EXPECT_FALSE(block.AddFieldText("a", unresolved, &own));
  EXPECT_TRUE(block.AddFieldText("", sub, &own));
  EXPECT_EQ(block.ToReadableText(), "E2{F1=E1{}}");
}

TEST_F(CTNParsedFileBlockTest, ABlockOfAnotherRecordIsNoInstanceOfTheSubRecord) {
  FakeRecord item(RecordKind::SubRecord, "A1");
  const FakeField& name = item.Add(FieldKind::Alpha, "ALPHA");
  FakeRecord holder(RecordKind::SubRecord, "A2");
  const FakeField& inside = holder.AddSubRecord(&item);
  FakeRecord outer(RecordKind::Part, "E2");
  const FakeField& sub = outer.AddSubRecord(&item);
  CTNParsedFileBlock own(&context);
  own.AddFieldText("abc", name);
  CTNParsedFileBlock other(&context);
  other.AddFieldText("abc", *word);
  CTNParsedFileBlock around(&context);
  around.AddFieldText("abc", inside, &own);
  CTNParsedFileBlock named(&context);
  named.SetRecord(&line);
  for (const CTNParsedFileBlock* nested : {&other, &around, &named}) {
    EXPECT_FALSE(block.AddFieldText("abc", sub, nested)) << nested->ToReadableText();
  }
  EXPECT_EQ(block.ToReadableText(), "E2{}");
  EXPECT_TRUE(block.AddFieldText("abc", sub, &own));
  EXPECT_EQ(block.ToReadableText(), "E2{F1=A1{F1=abc}}");
}

TEST_F(CTNParsedFileBlockTest, AViewOfAResultTakesNoFields) {
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {Line("a", "b")});
  CTNParsedFileBlock view = results.GetAt(0);
  EXPECT_FALSE(view.AddFieldText("x", *end));
  view.Reset();
  view.SetRecord(&catchAll);
  EXPECT_EQ(view.ToReadableText(), "E1{F1=a|F2= |F3=b|F4=}");
  EXPECT_EQ(view.GetMatchedRecord(), &line);
}

TEST_F(CTNParsedFileBlockTest, SubRecordElementsAreWovenIntoTheParentsRows) {
  FakeRecord item(RecordKind::SubRecord, "A1");
  const FakeField& name = item.Add(FieldKind::Alpha, "ALPHA");
  const FakeField& itemEnd = item.Add(FieldKind::Newline, "NEWLINE");
  FakeRecord outer(RecordKind::Part, "E2");
  const FakeField& head = outer.Add(FieldKind::Alpha, "ALPHA");
  const FakeField& sub = outer.AddSubRecord(&item);
  const FakeField& tail = outer.Add(FieldKind::Alpha, "ALPHA");
  block.AddFieldText("head", head);
  for (const char* text : {"one", "two"}) {
    CTNParsedFileBlock instance(&context);
    instance.AddFieldText(text, name);
    instance.AddFieldText("\n", itemEnd);
    instance.SetRecord(&item);
    EXPECT_TRUE(block.AddFieldText(std::string(text) + "\n", sub, &instance));
  }
  block.AddFieldText("tail", tail);
  EXPECT_EQ(Rows(block), (Strings{"F1=head F1=one F2=$", "F1=two F2=$", "F3=tail ..."}));
  EXPECT_EQ(block.ToReadableText(), "E2{F1=head|F2=A1{F1=one|F2=}|F2=A1{F1=two|F2=}|F3=tail}");
  EXPECT_EQ(RowText(block, 0, Markup::On),
            "<E2.F1,ALPHA>head</E2.F1><A1.F1,ALPHA>one</A1.F1>"
            "<A1.F2,NEWLINE>");
}

TEST_F(CTNParsedFileBlockTest, SetRecordIsRememberedAndNullIsIgnored) {
  block.SetRecord(&line);
  block.SetRecord(nullptr);
  const CTNMatchedRecord* record = nullptr;
  EXPECT_TRUE(block.GetRecord(record));
  EXPECT_EQ(record, &line);
  context.stale = true;
  EXPECT_FALSE(block.GetRecord(record));
  EXPECT_EQ(record, nullptr);
  EXPECT_EQ(block.GetMatchedRecord(), &line);
}

TEST_F(CTNParsedFileBlockTest, ResetEmptiesTheBlockForAnotherRecord) {
  block.AddFieldText("abc", *word);
  block.SetRecord(&line);
  block.Reset();
  EXPECT_EQ(block.GetMatchedRecord(), nullptr);
  EXPECT_EQ(block.GetRowCount(), 0u);
  EXPECT_TRUE(block.AddFieldText("x", catchAll.At(0)));
  EXPECT_EQ(block.ToReadableText(), "\?\?{F1=x}");
}

TEST_F(CTNParsedFileBlockTest, WhatIsAddedAfterReadingIsSeen) {
  block.AddFieldText("abc", *word);
  EXPECT_EQ(RowText(block, 0), "abc");
  block.AddFieldText(" ", *gap);
  EXPECT_EQ(RowText(block, 0), "abc ");
}

// ------------------------------------------------------------------------------- rows

TEST_F(CTNParsedFileBlockTest, EveryElementAfterALineEndStartsANewRow) {
  FakeRecord record(RecordKind::Part, "E1");
  for (int i = 0; i < 2; ++i) {
    record.Add(FieldKind::Alpha, "ALPHA");
    record.Add(FieldKind::WholeNum, "WHOLE_NUM");
    record.Add(FieldKind::Newline, "NEWLINE");
    record.Add(FieldKind::Newline, "NEWLINE");
  }
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {{&record,
                  {Text("a"), Text("1"), Text("\n"), Text("\n"), Text("b"), Text("2"), Text("\n"),
                   Absent()}}});
  const CTNParsedFileBlock filled = results.GetAt(0);
  EXPECT_EQ(Rows(filled), (Strings{"F1=a F2=1 F3=$", "F4=$", "F5=b F6=2 F7=$"}));
  EXPECT_EQ(filled.GetRowCount(), 3u);
  EXPECT_EQ(results.GetStats().totalLines, 3u);
}

TEST_F(CTNParsedFileBlockTest, AScanOverTwoLineFeedsGivesFiveElements) {
  block.AddFieldText("ab\ncd\nef", *scan);
  EXPECT_EQ(Rows(block), (Strings{"F3=ab \?\?=$", "F3=cd \?\?=$", "F3=ef ..."}));
  EXPECT_EQ(ValueOf(block, *scan), "abcdef");
}

TEST_F(CTNParsedFileBlockTest, ASingleCharacterBehindTheLastLineFeedOfAScanIsLost) {
  block.AddFieldText("ab\ncd\ne", *scan);
  EXPECT_EQ(Rows(block), (Strings{"F3=ab \?\?=$", "F3=cd \?\?=$"}));
  EXPECT_EQ(ValueOf(block, *scan), "abcd");
}

TEST_F(CTNParsedFileBlockTest, AScanWithoutLineFeedKeepsASingleCharacter) {
  block.AddFieldText("e", *scan);
  EXPECT_EQ(Rows(block), Strings{"F3=e ..."});
}

TEST_F(CTNParsedFileBlockTest, AScanThatEndsInALineFeedHasNoRest) {
  block.AddFieldText("\n\n", *scan);
  EXPECT_EQ(Rows(block), (Strings{"F3= \?\?=$", "F3= \?\?=$"}));
}

TEST_F(CTNParsedFileBlockTest, AnEmptyScanIsOneEmptyElement) {
  block.AddFieldText("", *scan);
  EXPECT_EQ(Rows(block), Strings{"F3= ..."});
}

TEST_F(CTNParsedFileBlockTest, LineFeedsInOtherFieldsDoNotEndRows) {
  block.AddFieldText("a\nb", *word);
  EXPECT_EQ(Rows(block), Strings{"F1=a\nb ..."});
}

TEST_F(CTNParsedFileBlockTest, RowsAreGivenFromAnyRowOnAndAsManyAsAsked) {
  block.AddFieldText("ab\ncd\nef\ngh", *scan);
  const auto texts = [this](std::size_t first, std::size_t count) {
    Strings rows;
    for (const CTNParsedFileRow& row : block.GetRows(first, count)) {
      rows.emplace_back();
      row.GetText(rows.back(), Markup::Off, Newlines::Hidden);
    }
    return rows;
  };
  EXPECT_EQ(texts(0, 2), (Strings{"ab", "cd"}));
  EXPECT_EQ(texts(2, 100), (Strings{"ef", "gh"}));
  EXPECT_EQ(texts(4, 1), Strings());
  EXPECT_EQ(texts(1, 0), Strings());
  EXPECT_EQ(block.GetRowCount(), 4u);
  EXPECT_EQ(RowText(block, 3), "gh");
  EXPECT_EQ(RowText(block, 4), "");
}

// ------------------------------------------------------------------------------- text

TEST_F(CTNParsedFileBlockTest, MarkupNamesRecordFieldAndTypeAndClosesTextsThatAreNotEmpty) {
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {Line("abc", "")});
  const CTNParsedFileBlock filled = results.GetAt(0);
  const std::string named =
      "<E1.F1,ALPHA>abc</E1.F1><E1.F2,WHTSPACE> </E1.F2><E1.F3,SCAN_TO_NEXT><E1.F4,NEWLINE>";
  EXPECT_EQ(RowText(filled, 0, Markup::On), named);
  EXPECT_EQ(RowText(filled, 0, Markup::On, Newlines::Shown), named);
  EXPECT_EQ(RowText(filled, 0, Markup::Off, Newlines::Shown), "abc <NEWLINE>");
  EXPECT_EQ(RowText(filled, 0), "abc ");
}

TEST_F(CTNParsedFileBlockTest, TheLineEndInsideAScanIsNamedWithUnknownField) {
  block.AddFieldText("ab\ncd", *scan);
  EXPECT_EQ(RowText(block, 0, Markup::On), "<E1.F3,SCAN_TO_NEXT>ab</E1.F3><E1.\?\?,NEWLINE>");
  EXPECT_EQ(RowText(block, 0, Markup::Off, Newlines::Shown), "ab<NEWLINE>");
}

TEST_F(CTNParsedFileBlockTest, BuiltInRecordsAreNeverMarkedUpButTheirLineEndsAreShown) {
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {Plain(catchAll, "un"), Plain(ignored, "ig")});
  EXPECT_EQ(RowText(results.GetAt(0), 0, Markup::On), "un");
  EXPECT_EQ(RowText(results.GetAt(1), 0, Markup::On), "ig");
  EXPECT_EQ(RowText(results.GetAt(0), 0, Markup::On, Newlines::Shown), "un<NEWLINE>");
  EXPECT_EQ(RowText(results.GetAt(1), 0, Markup::Off, Newlines::Shown), "ig<NEWLINE>");
}

std::string Expanded(std::string text, int tabStop) {
  ExpandTabs(text, tabStop);
  return text;
}

TEST(ExpandTabs, ATabBeforeTheFirstStopReachesIt) {
  EXPECT_EQ(Expanded("\t|", 8), "        |");
  EXPECT_EQ(Expanded("12345\t|", 8), "12345   |");
  EXPECT_EQ(Expanded("1234567\t|", 8), "1234567 |");
}

TEST(ExpandTabs, ATabExactlyOnAStopDisappears) {
  EXPECT_EQ(Expanded("12345678\t|", 8), "12345678|");
  EXPECT_EQ(Expanded("\t\t|", 8), "        |");
  EXPECT_EQ(Expanded("1\t|", 1), "1|");
  EXPECT_EQ(Expanded("1234567812345678\t|", 8), "1234567812345678|");
}

TEST(ExpandTabs, ATabBehindAStopReachesTheNext) {
  EXPECT_EQ(Expanded("123456789\t|", 8), "123456789       |");
  EXPECT_EQ(Expanded("a\tbc\td", 4), "a   bc  d");
  EXPECT_EQ(Expanded("\t", 1), " ");
}

TEST(ExpandTabs, ATabStopBelow1LeavesTabs) {
  EXPECT_EQ(Expanded("a\tb", 0), "a\tb");
  EXPECT_EQ(Expanded("a\tb", -3), "a\tb");
}

TEST(ExpandTabs, APieceGoesOnAtTheColumnOfTheOneBefore) {
  TabExpander tabs(4);
  std::string out;
  for (const char* piece : {"ab", "", "\tc\t", "\td"})
    tabs.Append(out, piece);
  EXPECT_EQ(out, Expanded("ab\tc\t\td", 4));
}

TEST(ExpandTabs, ATextWithoutTabsStays) {
  EXPECT_EQ(Expanded("", 8), "");
  EXPECT_EQ(Expanded("no tabs", 3), "no tabs");
}

TEST_F(CTNParsedFileBlockTest, TabsAreExpandedWithTheContextsTabStopAndMarkupCounted) {
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {{&line, {Text("ab"), Text("\t"), Text("c"), Text("\n")}}});
  context.tabStop = 4;
  EXPECT_EQ(RowText(results.GetAt(0), 0), "ab  c");
  // "<E1.F1,ALPHA>ab</E1.F1><E1.F2,WHTSPACE>" has 39 columns.
  EXPECT_EQ(RowText(results.GetAt(0), 0, Markup::On),
            "<E1.F1,ALPHA>ab</E1.F1><E1.F2,WHTSPACE> </E1.F2><E1.F3,SCAN_TO_NEXT>c</E1.F3>"
            "<E1.F4,NEWLINE>");
  CTNParsedBlockPtrArray alone(nullptr);
  Fill(alone, {{&line, {Text("ab"), Text("\t"), Text("c"), Text("\n")}}});
  EXPECT_EQ(RowText(alone.GetAt(0), 0), "ab      c");
}

// ------------------------------------------------------------------------------- matching record

TEST_F(CTNParsedFileBlockTest, TheMatchTextTellsNameAndPlaceOfTheRecord) {
  FakeRecord gone(RecordKind::MultipleMatch, "\?\?", "Header");
  gone.Add(FieldKind::Newline, "NEWLINE");
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {Line("a", "b"),
                 Plain(catchAll, "x"),
                 Plain(ignored, "y"),
                 Plain(ignored, ""),
                 {&gone, {Text("\n")}}});
  const auto text = [&](std::size_t i) { return results.GetAt(i).GetMatchText(); };
  EXPECT_EQ(text(0), "Resistors (E1)");
  EXPECT_EQ(text(1), "Unmatched");
  EXPECT_EQ(text(2), "Ignored");
  EXPECT_EQ(text(3), "Ignored");
  EXPECT_EQ(text(4), "Header (\?\?)");
  context.stale = true;
  for (std::size_t i = 0; i < results.GetSize(); ++i)
    EXPECT_EQ(text(i), "\?\?");
}

TEST_F(CTNParsedFileBlockTest, ABlankLineOfTheCatchAllRecordShowsAnEmptyMatchText) {
  FakeRecord bare(RecordKind::UnmatchedLines, "\?\?");
  bare.Add(FieldKind::Newline, "NEWLINE");
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {Plain(catchAll, ""), {&bare, {Text("\n")}}, Plain(catchAll, " ")});
  EXPECT_EQ(results.GetAt(0).GetMatchText(), "");
  EXPECT_EQ(results.GetAt(1).GetMatchText(), "");
  EXPECT_EQ(results.GetAt(2).GetMatchText(), "Unmatched");
}

TEST_F(CTNParsedFileBlockTest, ABlockWithoutRecordHasNoRowsAndAnUnknownMatchText) {
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {Taken{}});
  const CTNParsedFileBlock nothing = results.GetAt(0);
  EXPECT_EQ(nothing.GetMatchText(), "\?\?");
  EXPECT_EQ(nothing.GetRowCount(), 0u);
  EXPECT_EQ(nothing.GetMatchedRecord(), nullptr);
  EXPECT_EQ(nothing.GetKind(), BlockKind::Auxiliary);
  EXPECT_EQ(nothing.GetSubRecords(*word).size(), 0u);
  EXPECT_EQ(ValueOf(nothing, *word), "");
}

TEST_F(CTNParsedFileBlockTest, ColoursFollowTheKindOfTheRecordAndStaleness) {
  std::vector<std::unique_ptr<FakeRecord>> records;
  const auto colours = [&](RecordKind kind) {
    const auto& record = records.emplace_back(std::make_unique<FakeRecord>(kind, "X1"));
    record->Add(FieldKind::Newline, "NEWLINE");
    CTNParsedBlockPtrArray results(&context);
    Fill(results, {{record.get(), {Text("\n")}}});
    return std::vector<Colour>{results.GetAt(0).GetBackColour(), results.GetAt(0).GetTextColour()};
  };
  using Pair = std::vector<Colour>;
  const auto all = {RecordKind::Undefined,     RecordKind::Aperture,      RecordKind::Drill,
                    RecordKind::Part,          RecordKind::FreshEntity,   RecordKind::SingleMatch,
                    RecordKind::MultipleMatch, RecordKind::FreshAuxiliary};
  for (const RecordKind kind : all) {
    EXPECT_EQ(colours(kind), (IsEntityKind(kind) ? Pair{0xC8FFC8, 0} : Pair{0xFFFFB0, 0}));
  }
  EXPECT_EQ(colours(RecordKind::UnmatchedLines), (Pair{0xE4CAFF, 0}));
  EXPECT_EQ(colours(RecordKind::IgnoredLines), (Pair{0xFFFFFF, 0xC0C0C0}));
  context.stale = true;
  for (const RecordKind kind : {RecordKind::Part, RecordKind::UnmatchedLines,
                                RecordKind::IgnoredLines, RecordKind::MultipleMatch}) {
    EXPECT_EQ(colours(kind), (Pair{0xFFFFFF, 0}));
  }
}

// ------------------------------------------------------------------------------- values

TEST_F(CTNParsedFileBlockTest, TheValueOfASubRecordFieldIsItsInstancesEntityTexts) {
  FakeRecord item(RecordKind::SubRecord, "A1");
  const FakeField& name = item.Add(FieldKind::Alpha, "ALPHA");
  FakeRecord outer(RecordKind::Part, "E2");
  const FakeField& first = outer.AddSubRecord(&item);
  const FakeField& second = outer.AddSubRecord(&item);
  const auto instance = [&item](const std::string& text) { return Taken{&item, {Text(text)}}; };
  CTNParsedBlockPtrArray results(&context);
  Fill(results,
       {{&outer, {Instances({instance("a"), instance("b")}), Instances({instance("c")})}}});
  const CTNParsedFileBlock filled = results.GetAt(0);
  EXPECT_EQ(ValueOf(filled, first), "[a][b]");
  EXPECT_EQ(ValueOf(filled, second, Tags::On), "<c>");
  EXPECT_EQ(ValueOf(filled, name), "") << "nested blocks are not searched";
  const auto instances = filled.GetSubRecords(first);
  ASSERT_EQ(instances.size(), 2u);
  EXPECT_EQ(instances[1].GetFieldType(), FieldKind::SubRecord);
  EXPECT_EQ(instances[1].GetBlock().ToReadableText(), "A1{F1=b}");
  std::string text = ">";
  instances[1].GetText(text, Markup::On, Newlines::Hidden);
  EXPECT_EQ(text, "><A1.F1,ALPHA>b</A1.F1>");
}

TEST_F(CTNParsedFileBlockTest, WhileResultsAreStaleSubRecordsHaveNoValue) {
  auto item = std::make_unique<FakeRecord>(RecordKind::SubRecord, "A1");
  item->Add(FieldKind::Alpha, "ALPHA");
  FakeRecord outer(RecordKind::Part, "E2");
  const FakeField& sub = outer.AddSubRecord(item.get());
  const Taken instance{item.get(), {Text("a")}};
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {{&outer, {Instances({instance})}}});
  const CTNParsedFileBlock filled = results.GetAt(0);
  const auto instances = filled.GetSubRecords(sub);
  const auto values = [&] {
    std::string ofElement;
    instances.at(0).GetValue(ofElement, Tags::On);
    return Strings{ofElement, ValueOf(filled, sub), ValueOf(filled, sub, Tags::On)};
  };
  EXPECT_EQ(values(), (Strings{"<a>", "[a]", "<a>"}));
  context.stale = true;
  EXPECT_EQ(values(), (Strings{"", "", ""}));
  item = nullptr;
  EXPECT_EQ(values(), (Strings{"", "", ""})) << "the record that matched is gone";
}

TEST_F(CTNParsedFileBlockTest, ASubRecordElementsTextIsItsFirstRowWithTabsExpanded) {
  FakeRecord item(RecordKind::SubRecord, "A1");
  item.Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
  FakeRecord outer(RecordKind::Part, "E2");
  const FakeField& sub = outer.AddSubRecord(&item);
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {{&outer, {Instances({{&item, {Text("a\tb\nsecond")}}})}}});
  const auto instances = results.GetAt(0).GetSubRecords(sub);
  std::string text;
  instances.at(0).GetText(text, Markup::Off, Newlines::Shown);
  EXPECT_EQ(text, "a       b<NEWLINE>");
}

TEST_F(CTNParsedFileBlockTest, ARecordInsideItselfOnlyGivesItsOwnLevel) {
  FakeRecord circle(RecordKind::SubRecord, "A1");
  const FakeField& name = circle.Add(FieldKind::Alpha, "ALPHA");
  const FakeField& sub = circle.AddSubRecord(&circle);
  const Taken inner{&circle, {Text("in"), Absent()}};
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {{&circle, {Text("out"), Instances({inner})}}});
  EXPECT_EQ(ValueOf(results.GetAt(0), name), "out");
  EXPECT_EQ(ValueOf(results.GetAt(0).GetSubRecords(sub).at(0).GetBlock(), name), "in");
  EXPECT_EQ(results.GetBlockCount(&circle), 2u);
}

TEST_F(CTNParsedFileBlockTest, ElementsLongerThanOneByteTellAreKept) {
  for (const std::size_t length : {253u, 254u, 255u, 256u, 70000u}) {
    CTNParsedBlockPtrArray results(&context);
    const std::string longText(length, 'x');
    Fill(results, {Line(longText, "end")});
    EXPECT_TRUE(ValueOf(results.GetAt(0), *word) == longText) << length;
    EXPECT_EQ(ValueOf(results.GetAt(0), *scan), "end");
    CTNParsedFileBlock own(&context);
    own.AddFieldText(longText, *word);
    own.AddFieldText("end", *scan);
    EXPECT_TRUE(ValueOf(own, *word) == longText) << length;
    EXPECT_EQ(ValueOf(own, *scan), "end");
  }
}

// ------------------------------------------------------------------------------- the array

TEST_F(CTNParsedFileBlockTest, CountsAreTakenByTheKindOfTheRecord) {
  FakeRecord header(RecordKind::MultipleMatch, "A1");
  header.Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
  header.Add(FieldKind::Newline, "NEWLINE");
  const std::vector<Taken> taken = {Plain(ignored, "i"),  Plain(ignored, "i"),
                                    Line("a", "b"),       Plain(header, "h\nhh\nhhh"),
                                    Plain(catchAll, "u"), Taken{}};
  for (const ResultUse use : {ResultUse::Kept, ResultUse::Counted}) {
    CTNParsedBlockPtrArray results(&context);
    Fill(results, taken, use);
    const ApplicationStats stats = results.GetStats();
    EXPECT_EQ(stats.totalBlocks, 6u);
    EXPECT_EQ(stats.totalLines, 7u);
    EXPECT_EQ(stats.ignoredBlocks, 2u);
    EXPECT_EQ(stats.ignoredLines, 2u);
    EXPECT_EQ(stats.unmatchedBlocks, 1u);
    EXPECT_EQ(stats.unmatchedLines, 1u);
    EXPECT_EQ(stats.entityBlocks, 1u);
    EXPECT_EQ(stats.MatchedBlocks(), 5u);
    EXPECT_EQ(stats.AuxiliaryBlocks(), 4u) << "ignored blocks are among them";
    EXPECT_EQ(stats.ParseableBlocks(), 4u);
    EXPECT_EQ(stats.ParseableLines(), 5u);
    EXPECT_EQ(stats.MatchedLines(), 4u);
    EXPECT_DOUBLE_EQ(stats.MatchPercent(), 125.0);
  }
  EXPECT_DOUBLE_EQ(ApplicationStats().MatchPercent(), 0.0);
}

TEST_F(CTNParsedFileBlockTest, BlocksAreCountedByRecordInsideSubRecordsToo) {
  FakeRecord leaf(RecordKind::SubRecord, "A1");
  leaf.Add(FieldKind::Alpha, "ALPHA");
  FakeRecord middle(RecordKind::SubRecord, "A2");
  middle.AddSubRecord(&leaf);
  FakeRecord outer(RecordKind::Part, "E2");
  outer.AddSubRecord(&middle);
  outer.AddSubRecord(&leaf);
  const Taken one{&leaf, {Text("x")}};
  const Taken two{&middle, {Instances({one, one})}};
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {{&outer, {Instances({two, two}), Instances({one})}}, one, Line("a", "b")});
  EXPECT_EQ(results.GetBlockCount(&outer), 1u);
  EXPECT_EQ(results.GetBlockCount(&middle), 2u);
  EXPECT_EQ(results.GetBlockCount(&leaf), 6u);
  EXPECT_EQ(results.GetBlockCount(&line), 1u);
  EXPECT_EQ(results.GetBlockCount(&catchAll), 0u);
  EXPECT_EQ(results.GetBlockCount(nullptr), 0u);
  EXPECT_EQ(results.FindLastBlock(&leaf), 1);
  EXPECT_EQ(results.FindLastBlock(&middle), -1) << "never by itself";
  EXPECT_EQ(results.FindLastBlock(nullptr), -1);
}

TEST_F(CTNParsedFileBlockTest, AnEmptyArrayAnswersEverything) {
  CTNParsedBlockPtrArray results(&context);
  EXPECT_EQ(results.GetSize(), 0u);
  EXPECT_EQ(results.GetBlockCount(&line), 0u);
  EXPECT_EQ(results.FindLastBlock(&line), -1);
  EXPECT_EQ(results.GetStats().totalBlocks, 0u);
  EXPECT_THROW(results.GetAt(0), std::invalid_argument);
  EXPECT_EQ(results.GetResult(), nullptr);
}

TEST_F(CTNParsedFileBlockTest, ACopyOfTheArraySharesTheOldResultWhileANewOneIsMade) {
  CTNParsedBlockPtrArray results(&context);
  Fill(results, {Line("a", "b")});
  const CTNParsedBlockPtrArray old = results;
  Fill(results, {Plain(catchAll, "x"), Plain(catchAll, "y")});
  EXPECT_EQ(old.GetSize(), 1u);
  EXPECT_EQ(old.GetBlockCount(&line), 1u);
  EXPECT_EQ(old.GetAt(0).ToReadableText(), "E1{F1=a|F2= |F3=b|F4=}");
  EXPECT_EQ(results.GetSize(), 2u);
  results.DeleteAll();
  EXPECT_EQ(results.GetSize(), 0u);
  EXPECT_EQ(old.GetSize(), 1u);
}

TEST_F(CTNParsedFileBlockTest, ViewsOutliveTheArrayTheNextResultAndTheTemplate) {
  auto record = std::make_unique<FakeRecord>(RecordKind::Part, "E7", "Gone");
  record->Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
  record->Add(FieldKind::Newline, "NEWLINE");
  auto results = std::make_unique<CTNParsedBlockPtrArray>(&context);
  Fill(*results, {Plain(*record, "one\ntwo")});
  const CTNParsedFileBlock view = results->GetAt(0);
  const std::vector<CTNParsedFileRow> rows = view.GetRows();
  Fill(*results, {Line("a", "b")});
  results = nullptr;
  record = nullptr;
  EXPECT_EQ(view.ToReadableText(), "E7{F1=one\ntwo|F2=}");
  EXPECT_EQ(view.GetMatchText(), "Gone (E7)");
  EXPECT_EQ(RowText(view, 1, Markup::On), "<E7.F1,SCAN_TO_NEXT>two</E7.F1><E7.F2,NEWLINE>");
  std::string text;
  rows.at(0).GetText(text, Markup::Off, Newlines::Shown);
  EXPECT_EQ(text, "one<NEWLINE>");
}

class CountingProgress final : public CTNProgress {
 public:
  std::vector<std::uint32_t> steps;
  std::size_t cancelAfter = 0;
  void SetText(std::string_view) override {}
  bool ShowsPosition() const override { return true; }
  void SetRange(std::int32_t, std::int32_t, std::int32_t) override {}
  bool StepAndPoll(std::uint32_t count) override {
    steps.push_back(count);
    return IsCancelled();
  }
  bool IsCancelled() const override { return steps.size() > cancelAfter; }
};

TEST_F(CTNParsedFileBlockTest, ProgressStepsByTheRowsAndACancelledBlockIsNotAdded) {
  CountingProgress progress;
  progress.cancelAfter = 1;
  CTNParsedBlockPtrArray results(&context);
  results.SetProgress(&progress);
  Fill(results, {Plain(catchAll, "a\nbb\ncc"), Line("a", "b")});
  EXPECT_EQ(progress.steps, (std::vector<std::uint32_t>{3, 1}));
  EXPECT_EQ(results.GetSize(), 1u);
  EXPECT_EQ(results.GetStats().totalBlocks, 1u);
  EXPECT_EQ(results.GetAt(0).ToReadableText(), "\?\?{F1=a\nbb\ncc|F2=}");
  results.DeleteAll();
  EXPECT_EQ(results.GetProgress(), nullptr);
}

TEST_F(CTNParsedFileBlockTest, ABlockForWhichThereIsNoMemoryLeavesTheOthersAsTheyAre) {
  // Room for one block is made with the first.
  const std::string text = "a b\nc d\n";
  auto layout = std::make_shared<CTNParsedLayout>();
  layout->Describe(line);
  CTNParsedBlockPtrArray results(&context);
  CTNParsedResult& result = results.Begin(CTNInputText::Copy(text), layout);
  const std::uint32_t first = result.ElementEnd();
  Line("a", "b").Write(result);
  {
    const test::MemoryRunsOut memory(1);
    EXPECT_THROW(test::AddBlock(results, 0, 4, first, 0), std::bad_alloc);
  }
  EXPECT_EQ(result.ElementEnd(), first);
  Line("c", "d").Write(result);
  EXPECT_EQ(test::AddBlock(results, 4, 8, first, 0), 0);
  EXPECT_EQ(results.GetAt(0).ToReadableText(), "E1{F1=c|F2= |F3=d|F4=}");
  EXPECT_EQ(results.GetStats().totalBlocks, 1u);
}

}  // namespace
}  // namespace bomparser
