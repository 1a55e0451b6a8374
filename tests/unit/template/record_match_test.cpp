// A record's whole pattern against a text, by the plain matcher.

#include "input/CTNParsedFileBlock.h"
#include "input/CTNStringCharBuffIter.h"
#include "tests/support/TemplateBuilder.h"

#include <gtest/gtest.h>
#include <string>

namespace bomparser::test {
namespace {

class RecordMatch : public testing::Test {
 protected:
  CTNTemplateRecord& Add(const std::vector<FieldSpec>& fields,
                         RecordKind kind = RecordKind::SubRecord) {
    return AddRecord(document, kind, "record", fields);
  }

  /// The block's readable form, or the error text; the position behind it stays in m_position.
  std::string Match(CTNTemplateRecord& record, std::string_view text,
                    KeepValues keep = KeepValues::No) {
    CTNStringCharBuffIter cursor(text);
    CTNParsedFileBlock block(nullptr);
    std::string error;
    const bool matched = record.Match(cursor, &block, error, keep);
    m_position = cursor.GetPosition();
    if (!matched) return error;
    EXPECT_EQ(block.GetMatchedRecord(), &record);
    return block.ToReadableText();
  }

  static std::string Values(const CTNTemplateRecord& record) {
    std::string values;
    for (const auto& field : record.GetInputFields())
      values += field->GetCurrentValue() + '|';
    for (const auto& element : record.GetOutputFields())
      values += element->GetCurrentValue() + '|';
    return values;
  }

  CTNParserTemplate document{nullptr};
  std::uint32_t m_position = 0;
};

TEST_F(RecordMatch, ARequiredNewlineAloneMatchesAnEmptyLineAndNothingElse) {
  CTNTemplateRecord& record = Add({Newline()}, RecordKind::MultipleMatch);
  EXPECT_EQ(Match(record, "\nx"), "A1{F1=}");
  EXPECT_EQ(m_position, 1U);
  EXPECT_EQ(Match(record, "x\n"), "Data mismatch encountered at field F1");
  EXPECT_EQ(Match(record, ""), "Data mismatch encountered at field F1");
}

TEST_F(RecordMatch, AnOptionalNumberBeforeLettersFailsSilently) {
  CTNTemplateRecord& record = Add({Optional(WholeNum()), Alpha()});
  EXPECT_EQ(Match(record, "abc"), "A1{F2=abc}");
  EXPECT_EQ(Match(record, "12abc"), "A1{F1=12|F2=abc}");
  EXPECT_EQ(Match(record, "+abc"), "Data mismatch encountered at field F2");
}

TEST_F(RecordMatch, ARepeatedSubRecordConsumesThreeNumbers) {
  Add({WholeNum(), Optional(WhtSpace())});
  CTNTemplateRecord& record = Add({SubRecord("A1")});
  EXPECT_EQ(Match(record, "1 2 3"), "A2{F1=A1{F1=1|F2= }|F1=A1{F1=2|F2= }|F1=A1{F1=3}}");
  EXPECT_EQ(m_position, 5U);
}

TEST_F(RecordMatch, AFieldThatIsNotRepeatableIsTriedOnce) {
  Add({WholeNum(), Optional(WhtSpace())});
  CTNTemplateRecord& record = Add({SubRecord("A1")});
  record.GetInputFields()[0]->SetRepeatable(false);
  EXPECT_EQ(Match(record, "1 2 3"), "A2{F1=A1{F1=1|F2= }}");
  EXPECT_EQ(m_position, 2U);
}

TEST_F(RecordMatch, ARepetitionThatTakesNothingIsCountedOnceAndIsTheLast) {
  Add({Optional(WholeNum()), Optional(Space())});
  CTNTemplateRecord& record = Add({SubRecord("A1"), Alpha()});
  EXPECT_EQ(Match(record, "a"), "A2{F1=A1{}|F2=a}");
  EXPECT_EQ(Match(record, "1 a"), "A2{F1=A1{F1=1|F2= }|F1=A1{}|F2=a}");
}

TEST_F(RecordMatch, ThereIsNoBacktracking) {
  EXPECT_EQ(Match(Add({Alnum(), WholeNum()}), "R12"), "Data mismatch encountered at field F2");
  Add({Alpha(), Optional(Space())});
  CTNTemplateRecord& greedy = Add({SubRecord("A2"), String("END")});
  EXPECT_EQ(Match(greedy, "a b END"), "Data mismatch encountered at field F2");
}

TEST_F(RecordMatch, TheFirstRequiredFieldThatFailsIsNamed) {
  CTNTemplateRecord& record = Add({Alpha(), Optional(Tab()), WholeNum(), Alpha()});
  EXPECT_EQ(Match(record, "ab-"), "Data mismatch encountered at field F3");
}

TEST_F(RecordMatch, AfterAFailureTheCursorStaysBehindWhatMatched) {
  CTNTemplateRecord& record = Add({Alpha(), Space(), WholeNum()});
  Match(record, "ab x");
  EXPECT_EQ(m_position, 3U);
}

TEST_F(RecordMatch, ARecordWithoutFieldsMatchesAndTakesNothing) {
  CTNTemplateRecord& record = Add({}, RecordKind::MultipleMatch);
  EXPECT_EQ(Match(record, "x"), "A1{}");
  EXPECT_EQ(m_position, 0U);
}

TEST_F(RecordMatch, AnInvalidRecordFailsWithItsOwnStatusText) {
  CTNTemplateRecord& record = Add({Alpha()}, RecordKind::MultipleMatch);
  record.GetInputFields()[0]->SetCurrentValue("kept");
  EXPECT_EQ(Match(record, "abc"),
            "Error: A record must end with a required newline input field\n"
            " unless designated as a sub-record.");
  EXPECT_EQ(m_position, 0U);
  EXPECT_EQ(Values(record), "kept|");
}

TEST_F(RecordMatch, ScanToNextSkipsOneCharacterMoreThanItsLimit) {
  CTNTemplateRecord& record = Add({Scan(2), String("X")});
  EXPECT_EQ(Match(record, "abX"), "A1{F1=ab|F2=X}");
  EXPECT_EQ(Match(record, "abcX"), "A1{F1=abc|F2=X}");
  EXPECT_EQ(Match(record, "abcdX"), "Data mismatch encountered at field F1");
}

TEST_F(RecordMatch, AScanAtTheEndOfARecordNeverMatches) {
  EXPECT_EQ(Match(Add({Alpha(), Scan()}), "a b"), "Data mismatch encountered at field F2");
}

TEST_F(RecordMatch, ARequiredScanTakesNothingBeforeAnOptionalFieldThatIsThere) {
  CTNTemplateRecord& record = Add({Scan(), Optional(String("X")), String("Y")});
  EXPECT_EQ(Match(record, "aXY"), "A1{F1=a|F2=X|F3=Y}");
  // The optional follower is what the scan looks for: without it nothing is found.
  EXPECT_EQ(Match(record, "aY"), "Data mismatch encountered at field F1");
}

TEST_F(RecordMatch, AScanFindsASubRecord) {
  Add({String("R"), WholeNum()});
  CTNTemplateRecord& record = Add({Scan(), SubRecord("A1"), Optional(Newline())});
  EXPECT_EQ(Match(record, "a R b R12R3\n"), "A2{F1=a R b |F2=A1{F1=R|F2=12}|F2=A1{F1=R|F2=3}|F3=}");
}

TEST_F(RecordMatch, AFailedMatchEmptiesTheValuesOfAnApplication) {
  CTNTemplateRecord& record = Add({Alpha(), Space(), WholeNum()});
  EXPECT_EQ(Match(record, "ab x"), "Data mismatch encountered at field F3");
  EXPECT_EQ(Values(record), "|||");
}

TEST_F(RecordMatch, AFailedTestOfASelectionKeepsTheValues) {
  CTNTemplateRecord& record = Add({Alpha(), Space(), WholeNum()});
  EXPECT_EQ(Match(record, "ab x", KeepValues::Yes), "Data mismatch encountered at field F3");
  EXPECT_EQ(Values(record), "ab| ||");
}

TEST_F(RecordMatch, AFailedTestOfASelectionKeepsTheValuesOfSubRecordsToo) {
  CTNTemplateRecord& sub = Add({Alpha(), WholeNum()});
  CTNTemplateRecord& record = Add({SubRecord("A1"), Newline()});
  Match(record, "ab x");
  EXPECT_EQ(Values(sub), "||");
  Match(record, "ab x", KeepValues::Yes);
  EXPECT_EQ(Values(sub), "ab||");
}

TEST_F(RecordMatch, AMatchBeginsByEmptyingTheValues) {
  CTNTemplateRecord& record = Add({Optional(WholeNum()), Alpha()});
  EXPECT_EQ(Match(record, "1a"), "A1{F1=1|F2=a}");
  EXPECT_EQ(Values(record), "1|a|");
  EXPECT_EQ(Match(record, "b"), "A1{F2=b}");
  EXPECT_EQ(Values(record), "|b|");
}

TEST_F(RecordMatch, OfARepeatedSubRecordTheLastAttemptStays) {
  CTNTemplateRecord& sub = Add({WholeNum(), Optional(WhtSpace())});
  CTNTemplateRecord& record = Add({SubRecord("A1"), Optional(Alpha())});
  Match(record, "1 2 3");
  EXPECT_EQ(Values(sub), "||");
  EXPECT_EQ(Values(record), "||");
  CTNTemplateRecord& line = Add({SubRecord("A1"), Alpha()});
  EXPECT_EQ(Match(line, "1 2 3", KeepValues::Yes), "Data mismatch encountered at field F2");
  EXPECT_EQ(Values(sub), "||") << "a failed attempt begins by emptying";
}

TEST_F(RecordMatch, WithoutABlockNothingIsRecorded) {
  CTNTemplateRecord& record = Add({Alpha()});
  CTNStringCharBuffIter cursor("ab");
  std::string error;
  EXPECT_TRUE(record.Match(cursor, nullptr, error, KeepValues::No));
  EXPECT_EQ(Values(record), "ab|");
  EXPECT_EQ(error, "");
}

// ------------------------------------------------------------------------------- single match

constexpr const char* kLogicFlaw = "Internal error: Single-match record logic flaw";

class SingleMatch : public RecordMatch {
 protected:
  void SetUp() override {
    record = &AddRecord(document, RecordKind::SingleMatch, "units", {Alpha(), Newline()},
                        {{OutputTag::Text, "F1 \"!\""}, {OutputTag::Units, "V1 F1"}});
    ASSERT_EQ(record->IsValid(), 1) << record->GetStatusText();
  }
  void MarkAsMatched() {
    record->SetSingleMatchBlock(std::make_shared<CTNParsedFileBlock>(nullptr));
  }
  CTNTemplateRecord* record = nullptr;
};

TEST_F(SingleMatch, AMatchPublishesTheValues) {
  EXPECT_EQ(Match(*record, "mm\n"), "A1{F1=mm|F2=}");
  EXPECT_EQ(Values(*record), "mm||mm!|mm! mm|");
  EXPECT_EQ(record->GetSingleMatchBlock(), nullptr) << "the application sets it, not the match";
}

TEST_F(SingleMatch, ASecondMatchIsALogicFlaw) {
  MarkAsMatched();
  EXPECT_EQ(Match(*record, "mm\n"), kLogicFlaw);
  EXPECT_EQ(Match(*record, "mm\n", KeepValues::Yes), kLogicFlaw);
  CTNStringCharBuffIter cursor("mm\n");
  std::string error;
  EXPECT_FALSE(record->Match(cursor, nullptr, error, KeepValues::No));
  EXPECT_EQ(error, kLogicFlaw);
}

TEST_F(SingleMatch, ATestOfASelectionMayMatchAgainWithoutABlock) {
  MarkAsMatched();
  CTNStringCharBuffIter cursor("mm\n");
  std::string error;
  EXPECT_TRUE(record->Match(cursor, nullptr, error, KeepValues::Yes));
  EXPECT_EQ(error, "");
}

TEST_F(SingleMatch, ALogicFlawLeavesTheValues) {
  Match(*record, "mm\n");
  MarkAsMatched();
  Match(*record, "in\n");
  EXPECT_EQ(Values(*record), "mm||mm!|mm! mm|");
}

TEST_F(SingleMatch, AnInvalidRecordIsToldBeforeALogicFlaw) {
  MarkAsMatched();
  record->AddInputField(FieldKind::Alpha, true);
  record->Validate();
  EXPECT_EQ(Match(*record, "mm\n"),
            "Error: A record must end with a required newline input field\n"
            " unless designated as a sub-record.");
}

TEST_F(SingleMatch, ARecordWithoutFieldsPublishesItsValuesToo) {
  CTNTemplateRecord& empty =
      AddRecord(document, RecordKind::SingleMatch, "const", {}, {{OutputTag::Text, "\"mm\""}});
  EXPECT_EQ(Match(empty, "x"), "A2{}");
  EXPECT_EQ(Values(empty), "mm|");
}

// ------------------------------------------------------------------------------- nesting

TEST_F(RecordMatch, RecordsThatContainEachOtherEnd) {
  CTNTemplateRecord& first = Add({String("(")});
  CTNTemplateRecord& second = Add({SubRecord("A1"), Optional(String(")"))});
  first.AddInputField(FieldKind::SubRecord, false)->SetMatchValueText("A2");
  ASSERT_EQ(first.Validate(), 1) << first.GetStatusText();
  ASSERT_EQ(second.Validate(), 1) << second.GetStatusText();
  EXPECT_EQ(Match(second, "(()"), "A2{F1=A1{F1=(|F2=A2{F1=A1{F1=(}|F2=)}}}");
}

TEST_F(RecordMatch, ARecordThatBeginsWithItselfFails) {
  CTNTemplateRecord& first = Add({String("a")});
  CTNTemplateRecord& second = Add({SubRecord("A1")});
  first.AddInputField(FieldKind::SubRecord, true, first.GetInputFields()[0].get())
      ->SetMatchValueText("A2");
  first.Validate();
  second.Validate();
  ASSERT_EQ(second.IsValid(), 1);
  EXPECT_EQ(Match(second, "a"), "Data mismatch encountered at field F1");
}

/// A chain of sub-records A1 ... An; the last one takes a word.
CTNTemplateRecord& AddChain(CTNParserTemplate& document, int count) {
  AddRecord(document, RecordKind::SubRecord, "last", {Alpha()});
  for (int i = 1; i < count; ++i) {
    AddRecord(document, RecordKind::SubRecord, "link", {SubRecord("A" + std::to_string(i))});
  }
  return *document.GetAuxiliaryRecords().back();
}

TEST_F(RecordMatch, TwoHundredNestedRecordsMatch) {
  CTNTemplateRecord& outermost = AddChain(document, 201);
  ASSERT_EQ(outermost.IsValid(), 1);
  const std::string block = Match(outermost, "ab");
  EXPECT_EQ(block.substr(0, 14), "A201{F1=A200{F");
  EXPECT_NE(block.find("A1{F1=ab}"), std::string::npos);
}

TEST_F(RecordMatch, MoreThanTwoHundredNestedRecordsMakeTheFieldFail) {
  EXPECT_EQ(Match(AddChain(document, 202), "ab"), "Data mismatch encountered at field F1");
}

TEST_F(RecordMatch, AScanThroughACircleEnds) {
  CTNTemplateRecord& first = Add({Alpha(), Scan()});
  CTNTemplateRecord& second = Add({Alpha(), Scan(), SubRecord("A1"), String("never")});
  first.AddInputField(FieldKind::SubRecord, true)->SetMatchValueText("A2");
  first.AddInputField(FieldKind::Newline, true);
  first.Validate();
  second.Validate();
  ASSERT_EQ(second.IsValid(), 1);
  // Each level tries every place of the text anew: without a limit this would never end.
  EXPECT_EQ(Match(second, std::string(60, 'a')), "Data mismatch encountered at field F2");
}

TEST_F(RecordMatch, SubRecordsThatMultiplyEnd) {
  AddRecord(document, RecordKind::SubRecord, "leaf", {Optional(WholeNum())});
  for (int i = 1; i < 30; ++i) {
    const FieldSpec sub = Optional(SubRecord("A" + std::to_string(i)));
    AddRecord(document, RecordKind::SubRecord, "three", {sub, sub, sub});
  }
  // Three to the power of 29 empty instances.
  CTNTemplateRecord& record = *document.GetAuxiliaryRecords().back();
  ASSERT_EQ(record.IsValid(), 1);
  CTNStringCharBuffIter cursor("x");
  std::string error;
  EXPECT_TRUE(record.Match(cursor, nullptr, error, KeepValues::No));
  EXPECT_EQ(cursor.GetPosition(), 0U);
}

TEST_F(RecordMatch, ManyInstancesThatTakeTextAreNoTrap) {
  Add({String("a")});
  CTNTemplateRecord& record = Add({SubRecord("A1")});
  CTNStringCharBuffIter cursor(std::string(200'000, 'a'));
  std::string error;
  EXPECT_TRUE(record.Match(cursor, nullptr, error, KeepValues::No));
  EXPECT_EQ(cursor.GetPosition(), 200'000U);
}

}  // namespace
}  // namespace bomparser::test
