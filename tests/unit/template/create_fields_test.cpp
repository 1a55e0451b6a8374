// A pattern made from sample text.

#include "input/CTNStringCharBuffIter.h"
#include "tests/support/TemplateBuilder.h"
#include "tnbase/TextEncoding.h"

#include <gtest/gtest.h>
#include <string>

namespace bomparser::test {
namespace {

/// The created fields as "TYPE 'current value'", joined by blanks; values only where there are any.
std::string FieldsFrom(std::string_view text, std::uint32_t position = 0) {
  CTNTemplateRecord record(nullptr);
  CTNStringCharBuffIter cursor(text);
  cursor.SetPosition(position);
  EXPECT_TRUE(record.CreateFieldsFromText(cursor));
  EXPECT_EQ(cursor.GetPosition(), text.size());
  std::string fields;
  for (const auto& field : record.GetInputFields()) {
    EXPECT_TRUE(field->IsRequired());
    EXPECT_FALSE(field->IsCaseSensitive());
    EXPECT_EQ(field->GetMatchValueText(), "");
    EXPECT_EQ(field->GetParentRecord(), &record);
    if (!fields.empty()) fields += ' ';
    fields += field->GetTypeName();
    if (!field->GetCurrentValue().empty()) fields += "'" + field->GetCurrentValue() + "'";
  }
  return fields;
}

TEST(CreateFields, ALineOfAPartsListBecomesItsFields) {
  EXPECT_EQ(FieldsFrom("R12 10 0.5 TOP\n"),
            "ALPHANUMERIC'R12' WHTSPACE WHOLE_NUM'10' WHTSPACE DECIMAL_NUM'0.5' WHTSPACE "
            "ALPHA'TOP' NEWLINE");
}

TEST(CreateFields, WordsThatAreNoNumberAndNoNameStayWords) {
  EXPECT_EQ(FieldsFrom("-\n"), "NOT_WHTSPACE'-' NEWLINE");
  EXPECT_EQ(FieldsFrom("1.2.3\n"), "NOT_WHTSPACE'1.2.3' NEWLINE");
  EXPECT_EQ(FieldsFrom("a,b"), "NOT_WHTSPACE'a,b'");
}

TEST(CreateFields, ACommaMakesADecimalNumberToo) {
  EXPECT_EQ(FieldsFrom("1,5 -.5 +12"),
            "DECIMAL_NUM'1,5' WHTSPACE DECIMAL_NUM'-.5' WHTSPACE WHOLE_NUM'+12'");
}

TEST(CreateFields, AWordWithABarIsAWord) {
  EXPECT_EQ(FieldsFrom("a|b | 1|2"),
            "NOT_WHTSPACE'a|b' WHTSPACE NOT_WHTSPACE'|' WHTSPACE NOT_WHTSPACE'1|2'");
}

TEST(CreateFields, ARunOfBlanksAndTabsIsOneFieldAndEveryLineEndIsOne) {
  EXPECT_EQ(FieldsFrom(" \t \n\nA\n"), "WHTSPACE NEWLINE NEWLINE ALPHA'A' NEWLINE");
}

TEST(CreateFields, CarriageReturnsBelongToTheWord) {
  EXPECT_EQ(FieldsFrom("A\r\n"), "NOT_WHTSPACE'A\r' NEWLINE");
}

TEST(CreateFields, NoTextMakesNoFields) { EXPECT_EQ(FieldsFrom(""), ""); }

TEST(CreateFields, BeginsAtTheCursor) { EXPECT_EQ(FieldsFrom("A 1", 2), "WHOLE_NUM'1'"); }

TEST(CreateFields, StopsAtTheEndLimit) {
  CTNTemplateRecord record(nullptr);
  CTNStringCharBuffIter cursor("A\nB\n");
  cursor.SetEnd(2);
  EXPECT_TRUE(record.CreateFieldsFromText(cursor));
  EXPECT_EQ(record.GetInputFields().size(), 2U);
}

TEST(CreateFields, AnEndLimitBehindTheTextKeepsOneFieldThatTakesNothingAndEnds) {
  CTNTemplateRecord record(nullptr);
  CTNStringCharBuffIter cursor("A");
  cursor.SetEnd(5);
  record.CreateFieldsFromText(cursor);
  ASSERT_EQ(record.GetInputFields().size(), 2U);
  EXPECT_EQ(record.GetInputFields()[0]->GetTypeName(), "ALPHA");
  EXPECT_EQ(record.GetInputFields()[1]->GetCurrentValue(), "");
}

TEST(CreateFields, AppendsBehindTheFieldsThatAreThere) {
  CTNTemplateRecord record(nullptr);
  AddField(record, Tab());
  CTNStringCharBuffIter cursor("A");
  EXPECT_TRUE(record.CreateFieldsFromText(cursor));
  ASSERT_EQ(record.GetInputFields().size(), 2U);
  EXPECT_EQ(record.GetInputFields()[1]->GetTypeName(), "ALPHA");
}

TEST(CreateFields, EightBitWordsAreKeptAsUtf8) {
  EXPECT_EQ(FieldsFrom("10\xB5\x46\n"), "NOT_WHTSPACE'10\u00B5F' NEWLINE");
  EXPECT_EQ(FieldsFrom("\x80\x81"), "NOT_WHTSPACE'\u20AC\u0081'");
}

TEST(CreateFields, WordsThatAreUtf8AlreadyStay) {
  EXPECT_EQ(FieldsFrom("10\u00B5F"), "NOT_WHTSPACE'10\u00B5F'");
}

TEST(CreateFields, AFieldTurnedIntoAStringKeepsItsSampleAsUtf8) {
  CTNTemplateRecord record(nullptr);
  CTNStringCharBuffIter cursor("\xB5");
  EXPECT_TRUE(record.CreateFieldsFromText(cursor));
  CTNTemplRecInField& field = *record.GetInputFields()[0];
  field.SetType(FieldKind::String);
  EXPECT_EQ(field.GetMatchValueText(), "\u00B5");
  EXPECT_TRUE(IsUtf8(field.GetMatchValueText()));
}

TEST(CreateFields, TheRecordThatIsMadeMatchesItsSample) {
  CTNTemplateRecord record(nullptr);
  const std::string sample = "C1 -4.7 100nF \tx,y\n";
  CTNStringCharBuffIter cursor(sample);
  ASSERT_TRUE(record.CreateFieldsFromText(cursor));
  record.SetType(RecordKind::MultipleMatch);
  ASSERT_EQ(record.Validate(), 1) << record.GetStatusText();
  cursor.SetPosition(0);
  std::string error;
  EXPECT_TRUE(record.Match(cursor, nullptr, error, KeepValues::Yes)) << error;
  EXPECT_EQ(cursor.GetPosition(), sample.size());
}

}  // namespace
}  // namespace bomparser::test
