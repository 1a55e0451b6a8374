#include "input/CTNParsedFileBlock.h"
#include "input/MessageTexts.h"
#include "template/CTNTemplRecOutField.h"
#include "tests/support/Application.h"
#include "tests/support/OutputTexts.h"
#include "tests/support/TemplateBuilder.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {
namespace {

using namespace test;

/// E1 is a part of two words, E2 another one; A1 is a single-match record, A2 a multiple-match one,
/// A3 a sub-record.
class ValueExpressionTest : public testing::Test {
 protected:
  ValueExpressionTest() {
    AddRecord(document, RecordKind::Part, "resistor",
              {Alnum(), Space(), Alnum(), Space(), SubRecord("A3"), Newline()},
              {Designator("F1"), PartNumber("F3"), {OutputTag::Text, "F3"}});
    AddRecord(document, RecordKind::Part, "other", {String("other"), Newline()},
              {Designator("F1"), PartNumber()});
    AddRecord(document, RecordKind::SingleMatch, "title", {String("T="), Alnum(), Newline()},
              {{OutputTag::Text, "F2"}});
    AddRecord(document, RecordKind::MultipleMatch, "comment", {String("#"), Scan(), Newline()},
              {{OutputTag::Text, "F2"}});
    AddRecord(document, RecordKind::SubRecord, "number", {WholeNum()}, {{OutputTag::Size, "F1"}});
    Relink(document);
  }

  CTNTemplRecOutField& Element() { return ElementOf(*document.GetEntityRecords()[0], 1); }

  /// The items of the expression in E1, or the error.
  std::string Parse(std::string_view expression) {
    CTNTemplRecOutField& element = Element();
    element.SetExpression(std::string(expression));
    std::string error;
    if (!element.ParseExpression(error)) return error;
    EXPECT_EQ(error, "");
    return ReadableItems(element);
  }

  /// The canonical text of the expression in E1.
  std::string Canonical(std::string_view expression) {
    Parse(expression);
    return Element().GetExpressionText();
  }

  /// The value of the expression, in E1, for the last block of the text; the compiled program must
  /// say the same.
  std::string Value(std::string_view expression, std::string_view input = "T=board\nR1 10K 5\n") {
    CTNTemplRecOutField& element = Element();
    element.SetExpression(std::string(expression));
    EXPECT_EQ(element.Validate(), 1) << element.GetStatusText();
    document.Validate();
    const Application application = ApplyToText(document, input);
    EXPECT_TRUE(application.done) << application.error;
    EXPECT_EQ(EntityListOf(application), EntityListPlainly(application));
    std::string value;
    if (application.blocks.GetSize() == 0) return value;
    element.AppendValue(value, application.blocks.GetAt(application.blocks.GetSize() - 1),
                        Tags::Off);
    return value;
  }

  CTNParserTemplate document{nullptr};
};

// ------------------------------------------------------------------------------- parsing

TEST_F(ValueExpressionTest, AnEmptyExpressionIsAnError) {
  EXPECT_EQ(Parse(""), "No value expression to evaluate");
  EXPECT_EQ(ReadableItems(Element()), "");
}

TEST_F(ValueExpressionTest, QuotedTextsLoseTheirQuotes) {
  EXPECT_EQ(Parse("\"mm\""), "[\"mm\"]");
  EXPECT_EQ(Element().GetItems()[0].text, "mm");
  EXPECT_TRUE(Element().GetItems()[0].quoted);
  EXPECT_EQ(Parse("\"F1 + A1\"\"\""), "[\"F1 + A1\"][\"\"]");
}

TEST_F(ValueExpressionTest, AMissingClosingQuoteIsCompletedInTheCanonicalText) {
  EXPECT_EQ(Canonical("\"mm"), "\"mm\"");
  EXPECT_EQ(Element().GetExpression(), "\"mm");
  EXPECT_EQ(Canonical("\""), "\"\"");
}

TEST_F(ValueExpressionTest, TheOperatorsAreKeptAndDotCaretAndBarAreWords) {
  EXPECT_EQ(Parse("*/+-()><!"), "[op *][op /][op +][op -][op (][op )][op >][op <][op !]");
  EXPECT_EQ(Parse(".^|"), "[text .][text ^][text |]");
}

TEST_F(ValueExpressionTest, BlanksAreItems) {
  EXPECT_EQ(Parse(" F1  F3"), "[blank][field F1][blank][blank][field F3]");
}

TEST_F(ValueExpressionTest, AttributesOfTheOwnRecordInAnyCase) {
  EXPECT_EQ(Parse("description"), "[attribute description]");
  EXPECT_EQ(Parse("Type"), "[attribute Type]");
  EXPECT_EQ(Element().GetItems()[0].record, document.GetEntityRecords()[0].get());
}

TEST_F(ValueExpressionTest, FieldsAndElementsOfTheOwnRecordInAnyCase) {
  EXPECT_EQ(Parse("f3"), "[field F3]");
  EXPECT_EQ(Parse("v2"), "[symbol V2]");
}

TEST_F(ValueExpressionTest, TemplateAttributesInAnyCase) {
  EXPECT_EQ(Parse("templ_units"), "[template templ_units]");
  EXPECT_EQ(Parse("TEMPL_SCALE"), "[template TEMPL_SCALE]");
}

TEST_F(ValueExpressionTest, RecordsInAnyCase) { EXPECT_EQ(Parse("a1"), "[record A1]"); }

TEST_F(ValueExpressionTest, ADotChainsAFieldAnElementOrAnAttributeToARecord) {
  EXPECT_EQ(Parse("a1.f2"), "[record A1[dot][field F2]]");
  EXPECT_EQ(Parse("A1.v1"), "[record A1[dot][symbol V1]]");
  EXPECT_EQ(Parse("A1.type"), "[record A1[dot][attribute type]]");
  EXPECT_EQ(Canonical("a1.f2 + a1.V1"), "A1.F2 + A1.V1");
}

TEST_F(ValueExpressionTest, AttributesOfAnyRecordMayFollowADot) {
  EXPECT_EQ(Parse("A2.DESCRIPTION"), "[record A2[dot][attribute DESCRIPTION]]");
  EXPECT_EQ(Parse("E2.TYPE"), "[record E2[dot][attribute TYPE]]");
  EXPECT_EQ(Value("A2.DESCRIPTION E2.TYPE A3.TYPE"), "commentPartSub-Record");
}

TEST_F(ValueExpressionTest, TheOwnRecordMayStandBeforeADot) {
  EXPECT_EQ(Parse("E1.F1"), "[record E1[dot][field F1]]");
  EXPECT_EQ(Parse("E1.V2"), "[record E1[dot][symbol V2]]");
}

TEST_F(ValueExpressionTest, TheToken12IsAWholeNumberLiteral) {
  EXPECT_EQ(Parse("12"), "[whole 12]");
}

TEST_F(ValueExpressionTest, AWordThatIsNothingElseIsAStringLiteralYieldingItself) {
  for (const char* word : {"mm", "F", "F0", "F01", "F7", "V4", "A9", "E0", "A4", "12a", "X1", "??",
                           "TEMPL_UNIT", "DESC", "F1x", "f", "a"}) {
    EXPECT_EQ(Parse(word), "[text " + std::string(word) + "]");
    EXPECT_EQ(Value(word), word);
  }
}

TEST_F(ValueExpressionTest, OneAndAHalfYieldsTheDecimalNumberAlthoughTheDotIsAToken) {
  // The dot is cut off as a token before numbers are looked at; a comma is not.
  EXPECT_EQ(Parse("1.5"), "[whole 1][text .][whole 5]");
  EXPECT_EQ(Canonical("1.5"), "1.5");
  EXPECT_EQ(Value("1.5"), "1.5");
  EXPECT_EQ(Parse("1,5"), "[decimal 1,5]");
  EXPECT_EQ(Value("1,5"), "1,5");
}

TEST_F(ValueExpressionTest, AMinusBeforeANumberIsAnOperatorAndAddsNothing) {
  EXPECT_EQ(Parse("-12"), "[op -][whole 12]");
  EXPECT_EQ(Value("-12"), "12");
}

TEST_F(ValueExpressionTest, AttributesComeBeforeFieldsFieldsBeforeRecords) {
  // An element of the record is found before the record of the same number.
  EXPECT_EQ(Parse("F1V2A1E2TYPE"), "[text F1V2A1E2TYPE]");
  EXPECT_EQ(Parse("DESCRIPTION F1 TEMPL_UNITS A1 mm"),
            "[attribute DESCRIPTION][blank][field F1][blank][template TEMPL_UNITS][blank]"
            "[record A1][blank][text mm]");
}

TEST_F(ValueExpressionTest, ABlankBeforeTheDotMakesItNoDotChain) {
  EXPECT_EQ(Parse("A1 .F3"), "[record A1][blank][text .][field F3]");
}

TEST_F(ValueExpressionTest, QuotedIdentifiersAreTexts) {
  EXPECT_EQ(Parse("\"F1\"\"A1\".F1"), "[\"F1\"][\"A1\"][text .][field F1]");
  EXPECT_EQ(Parse("A1.\"F2\""), GetMessageText(Msg::DotOperandInvalid));
}

TEST_F(ValueExpressionTest, TheFirstErrorEndsTheParseAndTheItemsSoFarStay) {
  EXPECT_EQ(Parse("F1 + E2 + A2.F1"),
            "Only single-match record type can be used as output value expression");
  EXPECT_EQ(ReadableItems(Element()), "[field F1][blank][op +][blank]");
  EXPECT_EQ(Element().GetExpressionText(), "F1 + ");
}

TEST_F(ValueExpressionTest, AnInvalidInputFieldIsAnError) {
  FieldOf(*document.GetEntityRecords()[0], 3).SetValid(0);
  EXPECT_EQ(Parse("f3"), "Error: Input field F3 is in an invalid state");
}

TEST_F(ValueExpressionTest, AnElementWhoseExpressionIsItsOwnIdentifierFails) {
  EXPECT_EQ(Parse("v1"), "Output element cannot use its own ID as value expression");
  EXPECT_EQ(Parse("E1.V1"), "Output element cannot use its own ID as value expression");
  ElementOf(*document.GetEntityRecords()[0], 1).SetValid(0);
  EXPECT_EQ(Parse("V1"), "Output element cannot use its own ID as value expression");
}

TEST_F(ValueExpressionTest, AnInvalidOutputElementIsAnError) {
  ElementOf(*document.GetEntityRecords()[0], 2).SetValid(0);
  EXPECT_EQ(Parse("v2"), "Output symbol element V2 is in an invalid state");
}

TEST_F(ValueExpressionTest, BehindADotOnlyAnAttributeOrAFieldMayStand) {
  const std::string error =
      "Dot operator after record ID must be followed by valid record attribute,\n"
      "input field ID, or output symbol element ID";
  for (const char* expression : {"A1.", "A1. F2", "A1.F9", "A1.V9", "A1.A2", "A1..F2", "A1.mm",
                                 "A2.F9", "A1.TEMPL_UNITS", "A1.12", "A1.+"}) {
    EXPECT_EQ(Parse(expression), error) << expression;
  }
}

TEST_F(ValueExpressionTest, WithA1AMultipleMatchRecordTheDottedFieldFails) {
  const std::string error =
      "Input field ID or output symbol element ID only valid for\n"
      "single match record types or for current record";
  document.GetAuxiliaryRecords()[0]->SetType(RecordKind::MultipleMatch);
  EXPECT_EQ(Parse("A1.F2"), error);
  for (const char* expression : {"A2.F1", "A2.V1", "A3.F1", "E2.F1", "E2.V1"}) {
    EXPECT_EQ(Parse(expression), error) << expression;
  }
}

TEST_F(ValueExpressionTest, AnInvalidFieldOfAnotherRecordIsToldWithItsRecord) {
  FieldOf(RecordOf(document, "A1"), 2).SetValid(0);
  EXPECT_EQ(Parse("a1.f2"), "Input field F2 of record A1 is in an invalid state");
  FieldOf(RecordOf(document, "E1"), 3).SetValid(0);
  EXPECT_EQ(Parse("e1.f3"), "Input field F3 of record E1 is in an invalid state");
}

TEST_F(ValueExpressionTest, AnInvalidElementOfAnotherRecordIsToldWithItsRecord) {
  ElementOf(RecordOf(document, "A1"), 1).SetValid(0);
  EXPECT_EQ(Parse("a1.v1"), "Output symbol element V1 of record A1 is in an invalid state");
}

TEST_F(ValueExpressionTest, TheTokenE1AloneFails) {
  for (const char* expression : {"E1", "e2", "A2", "A3"}) {
    EXPECT_EQ(Parse(expression),
              "Only single-match record type can be used as output value expression")
        << expression;
  }
}

TEST_F(ValueExpressionTest, ASingleMatchRecordCannotUseItself) {
  CTNTemplRecOutField& element = ElementOf(RecordOf(document, "A1"), 1);
  element.SetExpression("A1");
  std::string error;
  EXPECT_FALSE(element.ParseExpression(error));
  EXPECT_EQ(error, "Output element cannot use its parent record ID as value expression");
}

TEST_F(ValueExpressionTest, AnInvalidRecordIsAnErrorUnlessADotFollows) {
  RecordOf(document, "A1").SetValid(0);
  EXPECT_EQ(Parse("a1"), "Record A1 is in an invalid state");
  EXPECT_EQ(Parse("A1.F2"), "[record A1[dot][field F2]]");
}

TEST_F(ValueExpressionTest, WithoutAParentRecordNothingIsParsedAndNobodyKnowsWhy) {
  CTNTemplRecOutField element(nullptr);
  element.SetExpression("12");
  std::string error = "before";
  EXPECT_FALSE(element.ParseExpression(error));
  EXPECT_EQ(error, "");
}

TEST(ValueExpression, TextsOfMemoryFailures) {
  EXPECT_EQ(GetMessageText(Msg::NoMemoryForValueText),
            "Memory allocation error while parsing value text");
  EXPECT_EQ(GetMessageText(Msg::NoMemoryForValueString),
            "Internal error: Memory allocation error while parsing value string");
}

TEST(ValueExpression, ARecordOfNoTemplateKnowsItsFieldsAndNoRecords) {
  CTNTemplateRecord record(nullptr);
  record.SetType(RecordKind::Part);
  record.SetDescription("alone");
  AddField(record, Alnum());
  CTNTemplRecOutField& element = AddOutput(record, Designator("F1 A1 DESCRIPTION TEMPL_UNITS"));
  std::string error;
  ASSERT_TRUE(element.ParseExpression(error)) << error;
  EXPECT_EQ(ReadableItems(element),
            "[field F1][blank][text A1][blank][attribute DESCRIPTION][blank]"
            "[template TEMPL_UNITS]");
  std::string value;
  element.AppendValue(value, CTNParsedFileBlock(nullptr), Tags::Off);
  EXPECT_EQ(value, "A1alone??") << "no template, no attribute of one";
}

// ------------------------------------------------------------------------------- evaluating

TEST_F(ValueExpressionTest, QuotedMmYieldsMmAndSoItDoesWithoutTheClosingQuote) {
  EXPECT_EQ(Value("\"mm\""), "mm");
  EXPECT_EQ(Value("\"mm"), "mm");
}

TEST_F(ValueExpressionTest, F1BlankF2YieldTheTwoTextsJoinedWithNothingBetweenThem) {
  EXPECT_EQ(Value("F1 F3"), "R110K");
  EXPECT_EQ(Value("F1 + F3"), "R110K");
  EXPECT_EQ(Value("(F1*F3)/F1-F3!<>"), "R110KR110K");
}

TEST_F(ValueExpressionTest, ABlankInTheValueComesFromAQuotedLiteral) {
  EXPECT_EQ(Value("F1 \" \" F3"), "R1 10K");
}

TEST_F(ValueExpressionTest, TemplScaleWithANewTemplateYieldsSixDecimals) {
  EXPECT_EQ(Value("TEMPL_SCALE"), "1.000000");
  document.SetScaleFactor(25.4);
  EXPECT_EQ(Value("templ_scale"), "25.400000");
}

TEST_F(ValueExpressionTest, TemplUnitsYieldsTheNameOfTheUnits) {
  EXPECT_EQ(Value("TEMPL_UNITS"), "Inch");
  document.SetUnits(2);
  EXPECT_EQ(Value("TEMPL_UNITS"), "Mil");
}

TEST_F(ValueExpressionTest, AttributesYieldThoseOfTheirRecord) {
  EXPECT_EQ(Value("DESCRIPTION"), "resistor");
  EXPECT_EQ(Value("TYPE"), "Part");
  EXPECT_EQ(Value("A1.DESCRIPTION"), "title");
  EXPECT_EQ(Value("a1.type"), "Single Match");
}

TEST_F(ValueExpressionTest, ADottedFieldOfASingleMatchRecordYieldsWhatItMatchedThere) {
  EXPECT_EQ(Value("A1.F2"), "board");
  EXPECT_EQ(Value("A1.F1 A1.F2"), "T=board");
  EXPECT_EQ(Value("A1.F2", "R1 10K 5\nT=late\nR2 1K 7\n"), "late") << "wherever it matched";
  EXPECT_EQ(Value("A1.F2", "R1 10K 5\n"), "") << "it matched nothing";
}

TEST_F(ValueExpressionTest, ADottedFieldOfTheOwnRecordYieldsThatOfTheBlock) {
  EXPECT_EQ(Value("E1.F1 E1.F3"), "R110K");
  EXPECT_EQ(Value("E1.V3"), "10K ");
}

TEST_F(ValueExpressionTest, ASingleMatchRecordYieldsItsOutputTextForItsBlock) {
  EXPECT_EQ(Value("A1"), "board ");
  EXPECT_EQ(Value("A1", "R1 10K 5\n"), "");
}

TEST_F(ValueExpressionTest, AnOutputSymbolYieldsThatElementsValueWithoutTagAndWithASpace) {
  EXPECT_EQ(Value("V3"), "10K ");
  EXPECT_EQ(Value("V3 V3"), "10K 10K ");
  EXPECT_EQ(Value("A1.V1"), "board ");
  EXPECT_EQ(Value("A1.V1", "R1 10K 5\n"), "");
}

TEST_F(ValueExpressionTest, ASubRecordFieldYieldsTheValuesOfItsInstances) {
  EXPECT_EQ(Value("F5"), "5 ");
}

TEST_F(ValueExpressionTest, ARepeatableFieldContributesAllItsValues) {
  CTNTemplateRecord& part = *document.GetEntityRecords()[0];
  AddRecord(document, RecordKind::SubRecord, "pair", {Alpha(), WholeNum()},
            {{OutputTag::Size, "F2"}});
  FieldOf(part, 5).SetMatchValueText("A4");
  FieldOf(part, 5).SetRepeatable(true);
  Relink(document);
  EXPECT_EQ(Value("F5", "R1 10K a1b2c3\n"), "1 2 3 ");
}

TEST_F(ValueExpressionTest, CirclesAmongElementsEnd) {
  CTNTemplateRecord& part = *document.GetEntityRecords()[0];
  ElementOf(part, 3).SetExpression("\"b\" V1");
  EXPECT_EQ(Value("\"a\" V3"), "ab ");
  const Application application = ApplyToText(document, "R1 10K 5\n");
  EXPECT_EQ(EntityListOf(application),
            "<ENTITY>Part<REF_DESIGNATOR>ab </REF_DESIGNATOR><PART_NUMBER>10K</PART_NUMBER>"
            "<TEXT>ba </TEXT></ENTITY>");
}

TEST_F(ValueExpressionTest, ACircleOfThreeEndsWhereItCameIn) {
  CTNTemplateRecord& part = *document.GetEntityRecords()[0];
  AddOutput(part, {OutputTag::Size, "\"c\" V1"});
  ElementOf(part, 3).SetExpression("\"b\" V4");
  Relink(document);
  EXPECT_EQ(Value("\"a\" V3"), "abc ");
  EXPECT_EQ(Value("V3 V4"), "bc c ");
}

TEST_F(ValueExpressionTest, SingleMatchRecordsThatNameEachOtherComeToAnEnd) {
  AddRecord(document, RecordKind::SingleMatch, "second", {String("S="), Alnum(), Newline()},
            {{OutputTag::Text, "F2 A1"}});
  ElementOf(RecordOf(document, "A1"), 1).SetExpression("F2 A4");
  Relink(document);
  EXPECT_EQ(Value("A1", "T=t\nS=s\nR1 10K 5\n"), "ts ");
}

TEST_F(ValueExpressionTest, TheSameExpressionInACopyOfTheRecordMeansTheCopysFields) {
  CTNTemplateRecord& part = *document.GetEntityRecords()[0];
  ElementOf(part, 1).SetExpression("F1 V2");
  document.Validate();
  const CTNTemplateRecord* copy = document.AddRecordCopy(part);
  EXPECT_EQ(ReadableItems(ElementOf(*copy, 1)), "[field F1][blank][symbol V2]");
  EXPECT_EQ(ElementOf(*copy, 1).GetItems()[0].inputField, &FieldOf(*copy, 1));
  EXPECT_EQ(ElementOf(*copy, 1).GetItems()[2].outputElement, &ElementOf(*copy, 2));
}

TEST_F(ValueExpressionTest, ItemsCanBeCopiedWithTheirChains) {
  Parse("A1.F2");
  const CTNOutFieldValueElement& item = Element().GetItems()[0];
  CTNOutFieldValueElement copy(item);
  EXPECT_EQ(ReadableItem(copy), "[record A1[dot][field F2]]");
  EXPECT_NE(copy.next.get(), item.next.get());
  copy.next->next->inputField = nullptr;
  EXPECT_EQ(copy.GetText(), "A1.??");
  EXPECT_EQ(item.GetText(), "A1.F2");
  copy = item;
  EXPECT_EQ(copy.GetText(), "A1.F2");
  EXPECT_EQ(&copy.GetTarget(), copy.next->next.get());
}

TEST_F(ValueExpressionTest, ItemsWithoutWhatTheyReferToSayQuestionMarksAndAddNothing) {
  CTNOutFieldValueElement item(Element());
  const CTNParsedFileBlock block(nullptr);
  const auto value = [&item, &block] {
    std::string text;
    item.AppendValue(text, block, Tags::On);
    return text;
  };
  for (const ValueItemKind kind :
       {ValueItemKind::InputField, ValueItemKind::OutputSymbol, ValueItemKind::Record}) {
    item.kind = kind;
    EXPECT_EQ(item.GetText(), "??");
    EXPECT_EQ(value(), "");
  }
  item.text = "word";
  item.kind = ValueItemKind::TemplateAttribute;
  EXPECT_EQ(value(), "??");
  item.kind = ValueItemKind::RecordAttribute;
  EXPECT_EQ(value(), "??");
  item.record = document.GetEntityRecords()[0].get();
  EXPECT_EQ(value(), "??");
  item.text = "type";
  EXPECT_EQ(value(), "Part");
}

TEST_F(ValueExpressionTest, TheKindThatNoExpressionMakesIsALiteral) {
  CTNOutFieldValueElement item(Element());
  item.kind = ValueItemKind::OtherLiteral;
  item.text = "12";
  std::string value;
  item.AppendValue(value, CTNParsedFileBlock(nullptr), Tags::Off);
  EXPECT_EQ(value, "12");
}

// ------------------------------------------------------------------------------- following

TEST_F(ValueExpressionTest, ExpressionsFollowTheirRecords) {
  CTNTemplateRecord& first = RecordOf(document, "A1");
  Parse("a1.F2 + \"A1\" A9 A1");
  document.AddRecord(RecordKind::MultipleMatch, "in front", &first);
  EXPECT_EQ(Element().GetExpression(), "A2.F2 + \"A1\" A9 A2");
  EXPECT_EQ(Element().GetExpressionText(), "A2.F2 + \"A1\" A9 A2");
}

TEST_F(ValueExpressionTest, ADeletedRecordBecomesQuestionMarksAndNeverMeansANewOne) {
  Parse("A1.F2");
  document.DeleteRecord(document.FindRecordByID("A1"));
  EXPECT_EQ(Element().GetExpression(), "??.??");
  document.AddRecord(RecordKind::SingleMatch, "new", document.FindRecordByID("A1"));
  EXPECT_EQ(Element().GetExpression(), "??.??");
  EXPECT_EQ(ReadableItems(Element()), "[text ??][text .][text ??]");
}

TEST_F(ValueExpressionTest, TextsThatDoNotParseFollowAsWell) {
  Parse("A2 + A3.F1 + E2");
  document.DeleteRecord(document.FindRecordByID("A1"));
  EXPECT_EQ(Element().GetExpression(), "A1 + A2.F1 + E2");
  document.MoveRecord(document.FindRecordByID("E2"), document.FindRecordByID("E1"));
  EXPECT_EQ(ElementOf(RecordOf(document, "E2"), 1).GetExpression(), "A1 + A2.F1 + E1");
}

TEST(ValueExpression, WhatIsAppendedIsMeantByExpressionsThatNamedItBefore) {
  CTNParserTemplate document(nullptr);
  const auto items = [&document](std::size_t number) {
    return ReadableItems(ElementOf(RecordOf(document, "E1"), number));
  };
  CTNTemplateRecord& part =
      AddRecord(document, RecordKind::Part, "part", {Alnum(), Newline()},
                {Designator("F3"), PartNumber("v4"), {OutputTag::Text, "A1.F1"}});
  EXPECT_EQ(items(1), "[text F3]");
  EXPECT_EQ(items(2), "[text v4]");
  EXPECT_EQ(items(3), "[text A1][text .][field F1]");
  AddField(part, Alnum());
  EXPECT_EQ(items(1), "[field F3]");
  AddOutput(part, {OutputTag::Width, "\"-\""});
  EXPECT_EQ(items(2), "[symbol V4]");
  CTNTemplateRecord* title = document.AddRecord(RecordKind::SingleMatch, "title");
  EXPECT_EQ(items(3), "") << "a record without fields";
  AddField(*title, Alnum());
  EXPECT_EQ(items(3), "[record A1[dot][field F1]]");
}

TEST(ValueExpression, ACopyThatIsAppendedIsMeantByExpressionsThatNamedItBefore) {
  CTNParserTemplate document(nullptr);
  const auto items = [&document](std::size_t number) {
    return ReadableItems(ElementOf(RecordOf(document, "E1"), number));
  };
  CTNTemplateRecord& title =
      AddRecord(document, RecordKind::SingleMatch, "title", {Alnum(), Newline()});
  CTNTemplateRecord& part = AddRecord(document, RecordKind::Part, "part", {Alnum(), Newline()},
                                      {Designator("F3 V3"), PartNumber("A2.F1")});
  part.AppendCopyOfField(FieldOf(part, 1));
  EXPECT_EQ(items(1), "[field F3][blank][text V3]");
  part.AppendCopyOfField(ElementOf(part, 2));
  EXPECT_EQ(items(1), "[field F3][blank][symbol V3]");
  EXPECT_EQ(items(2), "[text A2][text .][field F1]");
  document.AddRecordCopy(title);
  EXPECT_EQ(items(2), "[record A2[dot][field F1]]");
  EXPECT_EQ(items(3), "[record A2[dot][field F1]]");
}

TEST(ValueExpression, WhatIsAppendedToARecordOutsideAnyTemplateIsMeantToo) {
  CTNTemplateRecord record(nullptr);
  AddField(record, Alnum());
  CTNTemplRecOutField& element = AddOutput(record, Designator("F2 V2"));
  record.Validate();
  EXPECT_EQ(ReadableItems(element), "[text F2][blank][text V2]");
  AddField(record, Alnum());
  AddOutput(record, PartNumber());
  EXPECT_EQ(ReadableItems(element), "[field F2][blank][symbol V2]");
}

}  // namespace
}  // namespace bomparser
