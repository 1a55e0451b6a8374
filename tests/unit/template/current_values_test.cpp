// The values that fields and elements show after matches and applications.

#include "input/CTNStringCharBuffIter.h"
#include "tests/support/Application.h"
#include "tests/support/TemplateBuilder.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

namespace bomparser::test {
namespace {

std::string Values(const CTNTemplateRecord& record) {
  std::string values;
  for (const auto& field : record.GetInputFields())
    values += field->GetCurrentValue() + '|';
  for (const auto& element : record.GetOutputFields())
    values += element->GetCurrentValue() + '|';
  return values;
}

class CurrentValues : public testing::Test {
 protected:
  CTNTemplateRecord& Add(RecordKind kind, const std::vector<FieldSpec>& fields,
                         const std::vector<OutputSpec>& outputs = {}) {
    return AddRecord(document, kind, "record", fields, outputs);
  }
  /// A block of the record, filled by a match with the text.
  CTNParsedFileBlock BlockOf(CTNTemplateRecord& record, std::string_view text) {
    CTNParsedFileBlock block(nullptr);
    CTNStringCharBuffIter cursor(text);
    std::string error;
    EXPECT_TRUE(record.Match(cursor, &block, error, KeepValues::No)) << error;
    return block;
  }
  CTNParserTemplate document{nullptr};
};

TEST_F(CurrentValues, ClearValuesEmptiesAllFieldsAndOnlyTheFirstElement) {
  CTNTemplateRecord& record =
      Add(RecordKind::MultipleMatch, {Alpha(), Newline()},
          {{OutputTag::Text, "F1"}, {OutputTag::Text, "F1"}, {OutputTag::Text, "F1"}});
  for (const auto& field : record.GetInputFields())
    field->SetCurrentValue("f");
  for (const auto& element : record.GetOutputFields())
    element->SetCurrentValue("v");
  record.ClearValues();
  EXPECT_EQ(Values(record), "|||v|v|");
}

TEST_F(CurrentValues, ABlockGivesItsFieldsAndElementsTheirValues) {
  Add(RecordKind::SubRecord, {WholeNum(), Optional(Space())}, {{OutputTag::Text, "F1"}});
  CTNTemplateRecord& record = Add(
      RecordKind::MultipleMatch, {Alpha(), WhtSpace(), SubRecord("A1"), Optional(Tab()), Newline()},
      {{OutputTag::Text, "F1 \"-\" F2"}, {OutputTag::None, "F3"}, {OutputTag::Text, "V1"}});
  ASSERT_EQ(record.IsValid(), 1) << record.GetStatusText();
  const CTNParsedFileBlock block = BlockOf(record, "ab  1 2\n");
  for (const auto& field : record.GetInputFields())
    field->SetCurrentValue("stale");
  EXPECT_TRUE(record.SetValuesFromBlock(block));
  // White space and line ends show nothing; repeated values run together.
  EXPECT_EQ(Values(record), "ab||1 2|||ab-  |1 2 |ab-  |");
}

TEST_F(CurrentValues, AnotherRecordsBlockIsRefusedAndChangesNothing) {
  CTNTemplateRecord& record = Add(RecordKind::MultipleMatch, {Alpha(), Newline()});
  CTNTemplateRecord& other = Add(RecordKind::MultipleMatch, {Alpha(), Newline()});
  const CTNParsedFileBlock block = BlockOf(other, "ab\n");
  record.GetInputFields()[0]->SetCurrentValue("kept");
  EXPECT_FALSE(record.SetValuesFromBlock(block));
  EXPECT_FALSE(record.SetValuesFromBlock(CTNParsedFileBlock(nullptr)));
  EXPECT_EQ(Values(record), "kept||");
}

TEST_F(CurrentValues, OnlyASingleMatchRecordPublishesElementsWhenItMatches) {
  CTNTemplateRecord& single = Add(RecordKind::SingleMatch, {String("s"), Newline()},
                                  {{OutputTag::Text, "F1"}, {OutputTag::Text, "\"x\""}});
  CTNTemplateRecord& multiple = Add(RecordKind::MultipleMatch, {String("m"), Newline()},
                                    {{OutputTag::Text, "F1"}, {OutputTag::Text, "\"x\""}});
  ApplyToText(document, "m\ns\n");
  EXPECT_EQ(Values(single), "s||s|x|");
  EXPECT_EQ(Values(multiple), "m||||");
}

TEST_F(CurrentValues, AfterAnApplicationTheLastAttemptIsShown) {
  CTNTemplateRecord& first = Add(RecordKind::MultipleMatch, {Alpha(), Newline()});
  CTNTemplateRecord& second = Add(RecordKind::MultipleMatch, {WholeNum(), Newline()});
  ApplyToText(document, "a\n1\nb\n");
  EXPECT_EQ(Values(first), "b||");
  EXPECT_EQ(Values(second), "1||");
  ApplyToText(document, "a\n1\n-\n");
  EXPECT_EQ(Values(first), "||");
  EXPECT_EQ(Values(second), "||");
}

TEST_F(CurrentValues, ASubRecordShowsItsLastAttemptInsideOthers) {
  CTNTemplateRecord& sub = Add(RecordKind::SubRecord, {Optional(Alpha()), Optional(WholeNum())});
  Add(RecordKind::MultipleMatch, {SubRecord("A1"), Newline()});
  ApplyToText(document, "a1\nb\n");
  EXPECT_EQ(Values(sub), "||") << "the repetition ended with an empty attempt";
  document.GetAuxiliaryRecords()[1]->GetInputFields()[0]->SetRepeatable(false);
  ApplyToText(document, "a1\nb\n");
  EXPECT_EQ(Values(sub), "b||");
}

TEST_F(CurrentValues, AfterATextOfWhichNothingCouldBeTakenTheAttemptIsShownToo) {
  CTNTemplateRecord& sub = Add(RecordKind::SubRecord, {Alpha()});
  Add(RecordKind::MultipleMatch, {SubRecord("A1"), Newline()});
  document.GetAuxiliaryRecords()[1]->GetInputFields()[0]->SetRepeatable(false);
  const Application application = ApplyToText(document, "ab");
  EXPECT_FALSE(application.done);
  EXPECT_EQ(Values(sub), "ab|");
}

TEST_F(CurrentValues, AnAttemptThatIsKnownToFailCountsForTheRecordsInsideToo) {
  CTNTemplateRecord& inner = Add(RecordKind::SubRecord, {Alpha()});
  CTNTemplateRecord& outer =
      Add(RecordKind::SubRecord, {String("a"), SubRecord("A1"), String("!")});
  outer.GetInputFields()[1]->SetRepeatable(false);
  Add(RecordKind::MultipleMatch, {Optional(SubRecord("A2")), Alpha(), SubRecord("A1"), Newline()});
  Add(RecordKind::MultipleMatch, {SubRecord("A2"), Newline()});
  Add(RecordKind::MultipleMatch, {Alpha(), SubRecord("A2"), Newline()});
  ApplyToText(document, "ab\n");
  EXPECT_EQ(Values(inner), "b|") << "from where A4 tried it, behind where A3 did";
  EXPECT_EQ(Values(outer), "|||");
}

TEST_F(CurrentValues, AnApplicationThatOnlyCountsShowsNothing) {
  CTNTemplateRecord& record = Add(RecordKind::SingleMatch, {Alpha(), Newline()});
  ApplyToText(document, "ab\n");
  CTNStringCharBuffIter cursor("cd\nlast");
  CTNParsedBlockPtrArray blocks(nullptr);
  std::string error;
  bool cancelled = false;
  document.BeginApplication(cursor.GetText(), blocks, ResultUse::Counted);
  EXPECT_FALSE(document.ParseFile(cursor, blocks, error, cancelled));
  document.EndApplication(blocks);
  EXPECT_EQ(Values(record), "||");
  EXPECT_EQ(record.GetSingleMatchBlock(), nullptr);
}

TEST_F(CurrentValues, WhoNeedsNoValuesGetsNone) {
  CTNTemplateRecord& record = Add(RecordKind::SingleMatch, {Alpha(), Newline()});
  document.SetKeepCurrentValues(false);
  ApplyToText(document, "ab\n");
  EXPECT_EQ(Values(record), "||");
  EXPECT_NE(record.GetSingleMatchBlock(), nullptr);
}

TEST_F(CurrentValues, LaterElementsOfASingleMatchRecordKeepWhatAnEarlierFileGaveThem) {
  CTNTemplateRecord& record = Add(RecordKind::SingleMatch, {Alpha(), Newline()},
                                  {{OutputTag::Text, "F1"}, {OutputTag::Text, "F1"}});
  ApplyToText(document, "ab\n");
  EXPECT_EQ(Values(record), "ab||ab|ab|");
  ApplyToText(document, "1\n");
  EXPECT_EQ(Values(record), "|||ab|");
}

TEST_F(CurrentValues, ARemovedFieldTakesAllSingleMatchBlocksAlong) {
  CTNTemplateRecord& first = Add(RecordKind::SingleMatch, {String("T="), Alpha(), Newline()});
  CTNTemplateRecord& second =
      Add(RecordKind::SingleMatch, {String("S="), SubRecord("A3"), Newline()});
  CTNTemplateRecord& sub = Add(RecordKind::SubRecord, {Alpha(), Optional(WholeNum())});
  CTNTemplateRecord& user =
      Add(RecordKind::MultipleMatch, {Newline()}, {{OutputTag::Text, "A1.F2"}});
  Relink(document);
  const auto shown = [&user] {
    std::string value;
    user.GetOutputFields()[0]->AppendValue(value, CTNParsedFileBlock(nullptr), Tags::Off);
    return value;
  };
  ApplyToText(document, "T=old\nS=s\n");
  EXPECT_EQ(shown(), "old");
  auto field = first.RemoveField(first.GetInputFields()[1].get());
  EXPECT_EQ(first.GetSingleMatchBlock(), nullptr);
  EXPECT_EQ(second.GetSingleMatchBlock(), nullptr);
  // Put back it is what a new field is that gets the old one's address.
  first.InsertField(std::move(field), first.GetInputFields()[1].get());
  user.GetOutputFields()[0]->SetExpression("A1.F2");
  ASSERT_EQ(user.Validate(), 1) << user.GetStatusText();
  EXPECT_EQ(shown(), "");
  ApplyToText(document, "T=new\nS=s\n");
  EXPECT_EQ(shown(), "new");
  sub.RemoveField(sub.GetInputFields()[1].get());
  EXPECT_EQ(second.GetSingleMatchBlock(), nullptr) << "it may hold a block of the sub-record";
  EXPECT_EQ(shown(), "");
}

TEST_F(CurrentValues, ClearedFieldsTakeAllSingleMatchBlocksAlong) {
  CTNTemplateRecord& once =
      AddRecord(document, RecordKind::SingleMatch, "once", {Alpha(), Newline()});
  AddRecord(document, RecordKind::SingleMatch, "other", {WholeNum(), Newline()});
  const Application application = ApplyToText(document, "a\n1\n");
  const auto& records = document.GetAuxiliaryRecords();
  ASSERT_NE(records[0]->GetSingleMatchBlock(), nullptr);
  ASSERT_NE(records[1]->GetSingleMatchBlock(), nullptr);
  once.ClearFields();
  EXPECT_EQ(records[0]->GetSingleMatchBlock(), nullptr);
  EXPECT_EQ(records[1]->GetSingleMatchBlock(), nullptr);
}

TEST_F(CurrentValues, ARecordThatIsNotInTheTemplateLosesItsBlockWithAFieldToo) {
  CTNTemplateRecord alone(nullptr);
  AddField(alone, Alpha());
  alone.SetSingleMatchBlock(std::make_shared<CTNParsedFileBlock>(nullptr));
  alone.RemoveField(alone.GetInputFields()[0].get());
  EXPECT_EQ(alone.GetSingleMatchBlock(), nullptr);
}

TEST_F(CurrentValues, SingleMatchElementsSeeTheBlockAtHand) {
  CTNTemplateRecord& units =
      Add(RecordKind::SingleMatch, {Alpha(), Newline()}, {{OutputTag::Units, "F1"}});
  CTNTemplateRecord& scale =
      Add(RecordKind::SingleMatch, {WholeNum(), Newline()}, {{OutputTag::Scale, "F1 A1.F1 A1.V1"}});
  ASSERT_EQ(scale.IsValid(), 1) << scale.GetStatusText();
  ApplyToText(document, "mm\n12\n");
  EXPECT_EQ(Values(units), "mm||mm|");
  EXPECT_EQ(Values(scale), "12||12mmmm |");
}

}  // namespace
}  // namespace bomparser::test
