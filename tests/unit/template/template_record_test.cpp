#include "template/CTNParserTemplate.h"
#include "template/CTNTemplateRecord.h"
#include "template/LineEnds.h"
#include "tests/support/Application.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/TemplateBuilder.h"
#include "tnbase/CTNFormulaCustom.h"
#include "tnbase/CTNTool.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bomparser {
namespace {

using namespace test;

using Texts = std::vector<std::string>;

constexpr char kNoNewline[] =
    "Error: A record must end with a required newline input field\n"
    " unless designated as a sub-record.";
constexpr char kNoMemory[] =
    "Not enough memory resources are available to complete this operation.";

/// The type names of the input fields and the tags of the output elements, in order.
Texts FieldsOf(const CTNTemplateRecord& record) {
  Texts names;
  for (const auto& field : record.GetInputFields())
    names.emplace_back(field->GetTypeName());
  for (const auto& element : record.GetOutputFields())
    names.emplace_back(element->GetTagText());
  return names;
}

Texts ExpressionsOf(const CTNTemplateRecord& record) {
  Texts texts;
  for (const auto& element : record.GetOutputFields())
    texts.push_back(element->GetExpression());
  return texts;
}

std::string IdOf(const CTNTemplateRecord& record, const CTNTemplRecField* field) {
  std::string id = "untouched";
  const bool found = record.GetFieldID(field, id);
  EXPECT_EQ(found, id != "??");
  return id;
}

std::string Verdict(CTNTemplateRecord& record) {
  const std::int32_t valid = record.Validate();
  EXPECT_EQ(valid, record.IsValid());
  return valid != 0 ? "valid" + record.GetStatusText() : record.GetStatusText();
}

const std::vector<OutputSpec> kPart = {{OutputTag::RefDesignator, "R1"},
                                       {OutputTag::PartNumber, "100"}};

std::vector<OutputSpec> ApertureWith(const std::vector<OutputSpec>& more) {
  std::vector<OutputSpec> outputs = {{OutputTag::DCode, "10"},
                                     {OutputTag::Shape, "DESCRIPTION"},
                                     {OutputTag::Scale, "TEMPL_SCALE"},
                                     {OutputTag::Units, "TEMPL_UNITS"}};
  outputs.insert(outputs.end(), more.begin(), more.end());
  return outputs;
}

class TemplateRecordTest : public testing::Test {
 protected:
  CTNTemplateRecord& Record(RecordKind kind, const std::vector<FieldSpec>& fields,
                            const std::vector<OutputSpec>& outputs = {},
                            std::string_view description = "own") {
    return AddRecord(document, kind, description, fields, outputs);
  }
  CTNTemplateRecord& Auxiliary(const std::vector<FieldSpec>& fields,
                               const std::vector<OutputSpec>& outputs = {}) {
    return Record(RecordKind::MultipleMatch, fields, outputs);
  }
  std::string VerdictOf(RecordKind kind, const std::vector<FieldSpec>& fields,
                        const std::vector<OutputSpec>& outputs = {},
                        std::string_view description = "own") {
    return Verdict(Record(kind, fields, outputs, description));
  }

  CTNParserTemplate document{nullptr};
};

// ------------------------------------------------------------------------------- element bases

class PlainElement final : public CTNTemplateArrayElement {
 public:
  PlainElement() : CTNTemplateArrayElement(nullptr) {}
};

TEST(TemplateArrayElement, IsValidAndWithoutStatusUntilSomebodySaysSo) {
  PlainElement element;
  EXPECT_EQ(element.IsValid(), 1);
  EXPECT_EQ(element.GetStatusText(), "");
  EXPECT_EQ(element.GetContext(), nullptr);
}

TEST(TemplateArrayElement, TheBaseValidationReturnsZeroAndChangesNothing) {
  PlainElement element;
  element.SetStatusText("text");
  EXPECT_EQ(element.Validate(), 0);
  EXPECT_EQ(element.IsValid(), 1);
  EXPECT_EQ(element.GetStatusText(), "text");
}

TEST(TemplateArrayElement, InitEmptiesTheStatusAndLeavesTheValidFlag) {
  PlainElement element;
  element.SetStatusText("text");
  element.SetValid(0);
  EXPECT_EQ(element.Init(), 1);
  EXPECT_EQ(element.GetStatusText(), "");
  EXPECT_EQ(element.IsValid(), 0);
}

TEST(TemplateArrayElement, AssigningCopiesStatusAndValidFlag) {
  PlainElement from;
  from.SetStatusText("text");
  from.SetValid(0);
  PlainElement to;
  to = from;
  EXPECT_EQ(to.GetStatusText(), "text");
  EXPECT_EQ(to.IsValid(), 0);
}

// ------------------------------------------------------------------------------- Init

TEST_F(TemplateRecordTest, ANewRecordIsOfTypeFourEmptyAndInvalid) {
  const CTNTemplateRecord record(nullptr);
  EXPECT_EQ(record.GetType(), RecordKind::FreshEntity);
  EXPECT_EQ(record.GetTypeName(), "Undefined");
  EXPECT_EQ(record.GetDescription(), "");
  EXPECT_EQ(FieldsOf(record), Texts());
  EXPECT_EQ(record.GetSingleMatchBlock(), nullptr);
  EXPECT_EQ(record.IsValid(), 0);
  EXPECT_EQ(record.GetStatusText(), "Invalid Record Type");
}

TEST_F(TemplateRecordTest, InitEmptiesARecordAndForgetsItsSingleMatchBlock) {
  CTNTemplateRecord& record = Record(RecordKind::Part, {Newline()}, kPart);
  record.SetSingleMatchBlock(std::make_shared<CTNParsedFileBlock>(nullptr));
  EXPECT_EQ(record.Init(), 1);
  EXPECT_EQ(record.GetType(), RecordKind::FreshEntity);
  EXPECT_EQ(record.GetDescription(), "");
  EXPECT_EQ(FieldsOf(record), Texts());
  EXPECT_EQ(record.GetSingleMatchBlock(), nullptr);
  EXPECT_EQ(record.GetStatusText(), "Invalid Record Type");
}

TEST_F(TemplateRecordTest, TheLineFeedFieldIsANewlineOfTheRecordAndNotInItsPattern) {
  const CTNTemplateRecord record(nullptr);
  const CTNTemplRecInField& lineFeed = record.GetLineFeedField();
  EXPECT_EQ(lineFeed.GetType(), FieldKind::Newline);
  EXPECT_EQ(lineFeed.GetParentRecord(), &record);
  EXPECT_EQ(IdOf(record, &lineFeed), "??");
}

TEST_F(TemplateRecordTest, TheCatchAllPatternIsARequiredScanAndARequiredNewlineAndValid) {
  CTNTemplateRecord record(nullptr);
  record.InitCatchAll();
  EXPECT_EQ(record.GetType(), RecordKind::UnmatchedLines);
  EXPECT_EQ(FieldsOf(record), (Texts{"SCAN_TO_NEXT", "NEWLINE"}));
  EXPECT_TRUE(record.GetInputFields()[0]->IsRequired());
  EXPECT_TRUE(record.GetInputFields()[1]->IsRequired());
  EXPECT_EQ(Verdict(record), "valid");
  record.SetType(RecordKind::IgnoredLines);
  EXPECT_EQ(record.GetTypeName(), "");
  EXPECT_EQ(Verdict(record), "valid");
}

TEST_F(TemplateRecordTest, SetTypeByNameTakesTheNameInAnyCaseAndKeepsTheTypeOtherwise) {
  CTNTemplateRecord record(nullptr);
  record.SetTypeByName("sub-record");
  EXPECT_EQ(record.GetType(), RecordKind::SubRecord);
  record.SetTypeByName("nonsense");
  EXPECT_EQ(record.GetTypeName(), "Sub-Record");
}

// ------------------------------------------------------------------------------- fields

TEST_F(TemplateRecordTest, AddInputFieldSetsTypeRequiredAndParent) {
  CTNTemplateRecord record(nullptr);
  const CTNTemplRecInField* column = record.AddInputField(FieldKind::Column, false);
  const CTNTemplRecInField* tab = record.AddInputField(FieldKind::Tab, true, column);
  EXPECT_EQ(FieldsOf(record), (Texts{"TAB", "COLUMN"}));
  EXPECT_FALSE(column->IsRequired());
  EXPECT_TRUE(tab->IsRequired());
  EXPECT_EQ(tab->GetParentRecord(), &record);
}

TEST_F(TemplateRecordTest, AFieldInsertedBeforeAFieldOfAnotherRecordIsAppended) {
  CTNTemplateRecord& other = Auxiliary({Tab()}, {{OutputTag::None, "F1"}});
  CTNTemplateRecord& record = Auxiliary({Space()}, {{OutputTag::Scale, "1"}});
  record.InsertField(std::make_unique<CTNTemplRecInField>(nullptr),
                     other.GetInputFields()[0].get());
  record.InsertField(std::make_unique<CTNTemplRecOutField>(nullptr),
                     other.GetOutputFields()[0].get());
  EXPECT_EQ(FieldsOf(record), (Texts{"SPACE", "UNDEFINED", "SCALE", "UNDEFINED"}));
  EXPECT_EQ(record.GetInputFields()[1]->GetParentRecord(), &record);
  EXPECT_EQ(record.GetOutputFields()[1]->GetParentRecord(), &record);
}

TEST_F(TemplateRecordTest, NoFieldIsInsertedFromNothing) {
  CTNTemplateRecord record(nullptr);
  EXPECT_EQ(record.InsertField(std::unique_ptr<CTNTemplRecInField>()), nullptr);
  EXPECT_EQ(record.InsertField(std::unique_ptr<CTNTemplRecOutField>()), nullptr);
  EXPECT_EQ(FieldsOf(record), Texts());
}

TEST_F(TemplateRecordTest, ARemovedFieldIsTheCallersAndHasNoRecord) {
  CTNTemplateRecord& record = Auxiliary({Space(), Tab()}, {{OutputTag::Scale, "F1"}});
  const auto space = record.RemoveField(record.GetInputFields()[0].get());
  ASSERT_NE(space, nullptr);
  EXPECT_EQ(space->GetType(), FieldKind::Space);
  EXPECT_EQ(space->GetParentRecord(), nullptr);
  const auto scale = record.RemoveField(record.GetOutputFields()[0].get());
  ASSERT_NE(scale, nullptr);
  EXPECT_EQ(scale->GetParentRecord(), nullptr);
  EXPECT_TRUE(scale->GetItems().empty()) << "it must not name fields that may go";
  EXPECT_EQ(FieldsOf(record), Texts{"TAB"});
}

TEST_F(TemplateRecordTest, AFieldThatIsNotInTheRecordIsNeitherRemovedNorMovedNorFound) {
  CTNTemplateRecord& other = Auxiliary({Tab()}, {{OutputTag::None, "F1"}});
  CTNTemplateRecord& record = Auxiliary({Space()}, {{OutputTag::Scale, "1"}});
  const CTNTemplRecInField* field = other.GetInputFields()[0].get();
  const CTNTemplRecOutField* element = other.GetOutputFields()[0].get();
  EXPECT_EQ(record.RemoveField(field), nullptr);
  EXPECT_EQ(record.RemoveField(element), nullptr);
  EXPECT_FALSE(record.MoveField(field, nullptr));
  EXPECT_FALSE(record.MoveField(element, nullptr));
  std::size_t index = 0;
  EXPECT_FALSE(record.FindFieldIndex(field, index));
  EXPECT_FALSE(record.FindFieldIndex(element, index));
  EXPECT_FALSE(record.FindFieldIndex(nullptr, index));
  EXPECT_EQ(IdOf(record, field), "??");
  EXPECT_EQ(IdOf(record, element), "??");
  EXPECT_EQ(FieldsOf(record), (Texts{"SPACE", "SCALE"}));
  EXPECT_EQ(FieldsOf(other), (Texts{"TAB", "NONE"}));
}

TEST_F(TemplateRecordTest, FieldsMoveBeforeOthersOrToTheEnd) {
  CTNTemplateRecord& record = Auxiliary({Space(), Tab(), Newline()});
  const auto at = [&record](std::size_t i) { return record.GetInputFields()[i].get(); };
  EXPECT_TRUE(record.MoveField(at(2), at(0)));
  EXPECT_EQ(FieldsOf(record), (Texts{"NEWLINE", "SPACE", "TAB"}));
  EXPECT_TRUE(record.MoveField(at(0), at(2)));
  EXPECT_EQ(FieldsOf(record), (Texts{"SPACE", "NEWLINE", "TAB"}));
  EXPECT_TRUE(record.MoveField(at(0), nullptr));
  EXPECT_EQ(FieldsOf(record), (Texts{"NEWLINE", "TAB", "SPACE"}));
  EXPECT_TRUE(record.MoveField(at(0), at(0)));
  EXPECT_EQ(FieldsOf(record), (Texts{"NEWLINE", "TAB", "SPACE"}));
  CTNTemplateRecord& other = Auxiliary({Alpha()});
  EXPECT_TRUE(record.MoveField(at(0), other.GetInputFields()[0].get()));
  EXPECT_EQ(FieldsOf(record), (Texts{"TAB", "SPACE", "NEWLINE"}));
}

TEST_F(TemplateRecordTest, OutputElementsMoveToo) {
  CTNTemplateRecord& record = Auxiliary({}, ApertureWith({}));
  const auto at = [&record](std::size_t i) { return record.GetOutputFields()[i].get(); };
  EXPECT_TRUE(record.MoveField(at(3), at(1)));
  EXPECT_TRUE(record.MoveField(at(0), nullptr));
  EXPECT_EQ(FieldsOf(record), (Texts{"UNITS", "SHAPE", "SCALE", "DCODE"}));
}

TEST_F(TemplateRecordTest, SeveralFieldsMoveTogetherAndKeepTheOrderThatTheyHaveInTheRecord) {
  CTNTemplateRecord& record = Auxiliary({Space(), Tab(), Alpha(), Newline()});
  const auto at = [&record](std::size_t i) { return record.GetInputFields()[i].get(); };
  EXPECT_TRUE(record.MoveFields({at(3), at(1)}, at(0)));
  EXPECT_EQ(FieldsOf(record), (Texts{"TAB", "NEWLINE", "SPACE", "ALPHA"}));
  const std::vector<const CTNTemplRecInField*> scattered = {at(0), at(2)};
  EXPECT_TRUE(record.MoveFields(scattered, nullptr));
  EXPECT_EQ(FieldsOf(record), (Texts{"NEWLINE", "ALPHA", "TAB", "SPACE"}));
  EXPECT_TRUE(record.MoveFields({at(0), at(1), at(3)}, at(1)));
  EXPECT_EQ(FieldsOf(record), (Texts{"NEWLINE", "SPACE", "ALPHA", "TAB"}));
}

TEST_F(TemplateRecordTest, SeveralOutputElementsMoveTogetherToo) {
  CTNTemplateRecord& record = Auxiliary({}, ApertureWith({}));
  ASSERT_EQ(FieldsOf(record), (Texts{"DCODE", "SHAPE", "SCALE", "UNITS"}));
  const auto at = [&record](std::size_t i) { return record.GetOutputFields()[i].get(); };
  EXPECT_TRUE(record.MoveFields({at(1), at(3)}, at(0)));
  EXPECT_EQ(FieldsOf(record), (Texts{"SHAPE", "UNITS", "DCODE", "SCALE"}));
}

TEST_F(TemplateRecordTest, SeveralFieldsAreDeletedTogether) {
  CTNTemplateRecord& record =
      Auxiliary({Space(), Tab(), Alpha(), Newline()}, {{OutputTag::Width, "F1 F2 F3 F4"}});
  const auto at = [&record](std::size_t i) { return record.GetInputFields()[i].get(); };
  EXPECT_TRUE(record.RemoveFields({at(2), at(0)}));
  EXPECT_EQ(FieldsOf(record), (Texts{"TAB", "NEWLINE", "WIDTH"}));
  EXPECT_EQ(ExpressionsOf(record), Texts{"?? F1 ?? F2"});
}

TEST_F(TemplateRecordTest, SeveralFieldsAreOnlyEditedWhenAllAreInTheRecord) {
  CTNTemplateRecord& other = Auxiliary({Tab()}, {{OutputTag::None, "F1"}});
  CTNTemplateRecord& record = Auxiliary({Space(), Alpha()}, {{OutputTag::Scale, "1"}});
  using Fields = std::vector<const CTNTemplRecInField*>;
  const CTNTemplRecInField* own = record.GetInputFields()[0].get();
  const CTNTemplRecInField* alien = other.GetInputFields()[0].get();
  for (const Fields& fields :
       {Fields(), Fields{nullptr}, Fields{own, nullptr}, Fields{own, alien}}) {
    EXPECT_FALSE(record.RemoveFields(fields));
    EXPECT_FALSE(record.MoveFields(fields, nullptr));
  }
  const std::vector<const CTNTemplRecOutField*> elements = {record.GetOutputFields()[0].get(),
                                                            other.GetOutputFields()[0].get()};
  EXPECT_FALSE(record.MoveFields(elements, nullptr));
  EXPECT_EQ(FieldsOf(record), (Texts{"SPACE", "ALPHA", "SCALE"}));
}

TEST_F(TemplateRecordTest, AnAppendedCopyOfAnInputFieldHasAllItsAttributes) {
  CTNTemplateRecord& sub = Record(RecordKind::SubRecord, {Alpha()});
  CTNTemplateRecord& from = Auxiliary({Optional(SubRecord("A1"))});
  CTNTemplateRecord& to = Auxiliary({Tab()});
  from.GetInputFields()[0]->SetCurrentValue("value");
  const CTNTemplRecInField* copy = to.AppendCopyOfField(*from.GetInputFields()[0]);
  EXPECT_EQ(FieldsOf(to), (Texts{"TAB", "SUBRECORD"}));
  EXPECT_EQ(copy->GetParentRecord(), &to);
  EXPECT_EQ(copy->GetSubRecord(), &sub);
  EXPECT_EQ(copy->GetCurrentValue(), "value");
  EXPECT_FALSE(copy->IsRequired());
}

TEST_F(TemplateRecordTest, AnAppendedCopyOfAnOutputElementMeansTheFieldsOfItsNewRecord) {
  CTNTemplateRecord& from = Auxiliary({Alpha()}, {{OutputTag::Width, "F1"}});
  CTNTemplateRecord& to = Auxiliary({Tab()});
  from.GetOutputFields()[0]->SetCurrentValue("value");
  const CTNTemplRecOutField* copy = to.AppendCopyOfField(*from.GetOutputFields()[0]);
  EXPECT_EQ(FieldsOf(to), (Texts{"TAB", "WIDTH"}));
  EXPECT_EQ(copy->GetExpression(), "F1");
  EXPECT_EQ(copy->GetCurrentValue(), "value");
  EXPECT_EQ(copy->GetParentRecord(), &to);
  EXPECT_TRUE(copy->RefersTo(to.GetInputFields()[0].get()));
  EXPECT_FALSE(copy->RefersTo(from.GetInputFields()[0].get()));
}

TEST_F(TemplateRecordTest, AnElementTakenIntoAnotherRecordMeansThatRecordsFields) {
  CTNTemplateRecord& from = Auxiliary({Alpha()}, {{OutputTag::Width, "F1"}});
  CTNTemplateRecord& to = Auxiliary({Tab()});
  auto element = from.RemoveField(from.GetOutputFields()[0].get());
  const CTNTemplRecOutField* taken = to.InsertField(std::move(element));
  EXPECT_TRUE(taken->RefersTo(to.GetInputFields()[0].get()));
}

TEST_F(TemplateRecordTest, ClearFieldsLeavesNoFieldAndNoReferenceToOne) {
  CTNTemplateRecord& single =
      Record(RecordKind::SingleMatch, {Alpha(), Newline()}, {{OutputTag::Scale, "F1"}});
  CTNTemplateRecord& user = Auxiliary({Newline()}, {{OutputTag::Width, "A1.F1 F1 A1.V1"}});
  ASSERT_EQ(Verdict(user), "valid");
  single.ClearFields();
  EXPECT_EQ(FieldsOf(single), Texts());
  EXPECT_EQ(ExpressionsOf(user), Texts{"A1.?? F1 A1.??"});
}

// ------------------------------------------------------------------------------- identifiers

TEST_F(TemplateRecordTest, FieldsAreFoundByPositionAndIdentifier) {
  CTNTemplateRecord& record = Auxiliary({Space(), Tab()}, {{OutputTag::Scale, "1"}});
  std::size_t index = 7;
  EXPECT_TRUE(record.FindFieldIndex(record.GetInputFields()[1].get(), index));
  EXPECT_EQ(index, 1u);
  EXPECT_TRUE(record.FindFieldIndex(record.GetOutputFields()[0].get(), index));
  EXPECT_EQ(index, 0u);
  EXPECT_EQ(IdOf(record, record.GetInputFields()[0].get()), "F1");
  EXPECT_EQ(IdOf(record, record.GetInputFields()[1].get()), "F2");
  EXPECT_EQ(IdOf(record, record.GetOutputFields()[0].get()), "V1");
  CTNTemplateRecord::FoundField found;
  EXPECT_TRUE(record.FindFieldByID("f2", found));
  EXPECT_EQ(found.input, record.GetInputFields()[1].get());
  EXPECT_EQ(found.output, nullptr);
  EXPECT_TRUE(record.FindFieldByID("v1", found));
  EXPECT_EQ(found.input, nullptr);
  EXPECT_EQ(found.output, record.GetOutputFields()[0].get());
}

TEST_F(TemplateRecordTest, OnlyWholeIdentifiersAreFound) {
  CTNTemplateRecord& record = Auxiliary({Space(), Tab()}, {{OutputTag::Scale, "1"}});
  for (const std::string_view id :
       {"", "F", "F0", "F3", "F01", "F1 ", " F1", "F+1", "F1.0", "V", "V0", "V2", "1", "??", "E1",
        "F99999999999999999999", "F18446744073709551617"}) {
    CTNTemplateRecord::FoundField found;
    EXPECT_FALSE(record.FindFieldByID(id, found)) << id;
    EXPECT_EQ(found.input, nullptr);
    EXPECT_EQ(found.output, nullptr);
  }
}

TEST_F(TemplateRecordTest, AfterTheSecondFieldIsRemovedTheThirdAnswersToItsIdentifier) {
  CTNTemplateRecord& record = Auxiliary({Space(), Tab(), Newline()});
  const CTNTemplRecInField* third = record.GetInputFields()[2].get();
  record.RemoveField(record.GetInputFields()[1].get());
  EXPECT_EQ(IdOf(record, third), "F2");
  CTNTemplateRecord::FoundField found;
  EXPECT_TRUE(record.FindFieldByID("F2", found));
  EXPECT_EQ(found.input, third);
  record.AddInputField(FieldKind::Alpha, true, record.GetInputFields()[0].get());
  EXPECT_EQ(IdOf(record, third), "F3");
  record.MoveField(third, record.GetInputFields()[0].get());
  EXPECT_EQ(IdOf(record, third), "F1");
}

TEST_F(TemplateRecordTest, ARecordKnowsItsIdentifier) {
  EXPECT_EQ(Auxiliary({}).GetRecordId(), "A1");
  EXPECT_EQ(Auxiliary({}).GetRecordId(), "A2");
  EXPECT_EQ(Record(RecordKind::Part, {}).GetRecordId(), "E1");
  EXPECT_EQ(CTNTemplateRecord(nullptr).GetRecordId(), "??");
  EXPECT_EQ(CTNTemplateRecord(&document).GetRecordId(), "??");
}

// ------------------------------------------------------------------------------- references

TEST_F(TemplateRecordTest, AFieldIsReferencedByAnyItemOrChainOfSubRecords) {
  CTNTemplateRecord& deep =
      Record(RecordKind::SubRecord, {Alpha(), Tab()}, {{OutputTag::Size, "F2"}});
  CTNTemplateRecord& middle = Record(RecordKind::SubRecord, {SubRecord("A1")});
  CTNTemplateRecord& top = Auxiliary({SubRecord("A2"), Newline()}, {{OutputTag::Width, "F2 V2"}});
  AddOutput(top, {OutputTag::Height, "1"});
  top.ReparseOutputExpressions();
  EXPECT_TRUE(top.IsFieldReferenced(top.GetInputFields()[1].get()));
  EXPECT_TRUE(top.IsFieldReferenced(top.GetOutputFields()[1].get()));
  EXPECT_FALSE(top.IsFieldReferenced(top.GetInputFields()[0].get()));
  EXPECT_FALSE(top.IsFieldReferenced(deep.GetInputFields()[0].get()));
  EXPECT_TRUE(top.IsFieldReferenced(deep.GetInputFields()[1].get()));
  EXPECT_TRUE(middle.IsFieldReferenced(deep.GetInputFields()[1].get()));
  EXPECT_FALSE(deep.IsFieldReferenced(top.GetInputFields()[1].get()));
}

TEST_F(TemplateRecordTest, RecordsThatContainEachOtherAreAskedOnce) {
  CTNTemplateRecord& first = Record(RecordKind::SubRecord, {SubRecord("A2"), Alpha()});
  CTNTemplateRecord& second =
      Record(RecordKind::SubRecord, {SubRecord("A1"), Alpha()}, {{OutputTag::Width, "F2"}});
  Relink(document);
  EXPECT_TRUE(first.IsFieldReferenced(second.GetInputFields()[1].get()));
  EXPECT_FALSE(first.IsFieldReferenced(first.GetInputFields()[1].get()));
}

TEST_F(TemplateRecordTest, RecordAttributesAreReadInAnyCase) {
  CTNTemplateRecord& record = Record(RecordKind::SubRecord, {}, {}, "the words");
  std::string text = "untouched";
  EXPECT_TRUE(record.GetAttribute("Description", text));
  EXPECT_EQ(text, "the words");
  EXPECT_TRUE(record.GetAttribute("type", text));
  EXPECT_EQ(text, "Sub-Record");
  EXPECT_FALSE(record.GetAttribute("DESC", text));
  EXPECT_FALSE(record.GetAttribute("", text));
  EXPECT_EQ(text, "Sub-Record");
  EXPECT_TRUE(CTNTemplateRecord::IsAttributeName("DESCRIPTION"));
  EXPECT_TRUE(CTNTemplateRecord::IsAttributeName("tYPE"));
  EXPECT_FALSE(CTNTemplateRecord::IsAttributeName("TYPE "));
}

// ------------------------------------------------------------------------------- tags

TEST_F(TemplateRecordTest, AnElementWithTheTagIsEnough) {
  CTNTemplateRecord& record = Auxiliary({Newline()}, {{OutputTag::Width, "1"}});
  EXPECT_TRUE(record.HasOutputTag(OutputTag::Width));
  EXPECT_FALSE(record.HasOutputTag(OutputTag::Height));
}

TEST_F(TemplateRecordTest, OnlyTheLastElementTaggedNoneTellsWhichTagsAreReached) {
  Record(RecordKind::SingleMatch, {Newline()}, {{OutputTag::Width, "1"}});
  Record(RecordKind::SingleMatch, {Newline()}, {{OutputTag::Height, "1"}});
  CTNTemplateRecord& record =
      Auxiliary({Newline()}, {{OutputTag::None, "A1"}, {OutputTag::None, "A2"}});
  ASSERT_EQ(Verdict(record), "valid");
  EXPECT_FALSE(record.HasOutputTag(OutputTag::Width)) << "the second NONE has the last word";
  EXPECT_TRUE(record.HasOutputTag(OutputTag::Height));
  record.MoveField(record.GetOutputFields()[1].get(), record.GetOutputFields()[0].get());
  EXPECT_TRUE(record.HasOutputTag(OutputTag::Width));
  EXPECT_FALSE(record.HasOutputTag(OutputTag::Height));
}

TEST_F(TemplateRecordTest, AnElementWithTheTagWinsOverElementsTaggedNone) {
  Record(RecordKind::SingleMatch, {Newline()}, {{OutputTag::Height, "1"}});
  CTNTemplateRecord& record = Auxiliary(
      {Newline()}, {{OutputTag::None, "A1"}, {OutputTag::Width, "1"}, {OutputTag::None, "A1"}});
  EXPECT_TRUE(record.HasOutputTag(OutputTag::Width));
}

TEST_F(TemplateRecordTest, ElementsWithAnotherTagThanNoneReachNothing) {
  Record(RecordKind::SingleMatch, {Newline()}, {{OutputTag::Height, "1"}});
  CTNTemplateRecord& record = Auxiliary({Newline()}, {{OutputTag::Width, "A1"}});
  EXPECT_FALSE(record.HasOutputTag(OutputTag::Height));
}

TEST_F(TemplateRecordTest, ANoneElementReachesTheTagsOfASubRecord) {
  Record(RecordKind::SubRecord, {Alpha()}, {{OutputTag::Width, "F1"}});
  CTNTemplateRecord& record = Auxiliary({SubRecord("A1"), Newline()}, {{OutputTag::None, "F1"}});
  EXPECT_TRUE(record.HasOutputTag(OutputTag::Width));
  EXPECT_FALSE(record.HasOutputTag(OutputTag::Height));
}

TEST_F(TemplateRecordTest, TagsAreCountedForElementsAndForThoseThatReachThem) {
  Record(RecordKind::SingleMatch, {Newline()}, {{OutputTag::Width, "1"}});
  CTNTemplateRecord& record = Auxiliary({Newline()}, {{OutputTag::Width, "1"},
                                                      {OutputTag::Height, "V1"},
                                                      {OutputTag::None, "A1"},
                                                      {OutputTag::Width, "A1"},
                                                      {OutputTag::Size, "2"}});
  ASSERT_EQ(Verdict(record), "valid");
  EXPECT_EQ(record.CountOutputTag(OutputTag::Width), 5u)
      << "two of its own, and three that reach one, one of them its own";
  EXPECT_EQ(record.CountOutputTag(OutputTag::Size), 1u);
  EXPECT_EQ(record.CountOutputTag(OutputTag::Drill), 0u);
}

TEST_F(TemplateRecordTest, TheRequiredSetIsCompletedWithDefaultsInTagOrder) {
  CTNTemplateRecord& record = Record(RecordKind::Aperture, {Newline()},
                                     {{OutputTag::Units, "MM"}, {OutputTag::Radius, "2"}}, "Oval");
  EXPECT_TRUE(record.CreateRequiredOutputSet());
  EXPECT_EQ(FieldsOf(record), (Texts{"NEWLINE", "UNITS", "RADIUS", "DCODE", "SHAPE", "WIDTH",
                                     "HEIGHT", "ROTATION", "SCALE"}));
  EXPECT_EQ(ExpressionsOf(record),
            (Texts{"MM", "2", "0", "DESCRIPTION", "0", "0", "0", "TEMPL_SCALE"}));
  EXPECT_EQ(Verdict(record), "valid");
  EXPECT_TRUE(record.CreateRequiredOutputSet());
  EXPECT_EQ(record.GetOutputFields().size(), 8u) << "nothing was missing";
}

TEST_F(TemplateRecordTest, TagsThatAreOnlyReachedAreCreatedAllTheSame) {
  Record(RecordKind::SingleMatch, {Newline()}, {{OutputTag::PartNumber, "1"}});
  CTNTemplateRecord& record = Record(RecordKind::Part, {Newline()}, {{OutputTag::None, "A1"}});
  EXPECT_TRUE(record.CreateRequiredOutputSet());
  EXPECT_EQ(FieldsOf(record), (Texts{"NEWLINE", "NONE", "REF_DESIGNATOR", "PART_NUMBER"}));
}

TEST_F(TemplateRecordTest, TypesWithoutRequiredTagsGetNoElements) {
  CTNTemplateRecord& record = Auxiliary({Newline()});
  EXPECT_TRUE(record.CreateRequiredOutputSet());
  EXPECT_EQ(FieldsOf(record), Texts{"NEWLINE"});
}

TEST_F(TemplateRecordTest, TheShapeIsTheOneThatTheDescriptionNames) {
  EXPECT_EQ(Record(RecordKind::Aperture, {}, {}, "oVAL").GetApertureShape(), 15);
  EXPECT_EQ(Record(RecordKind::Aperture, {}, {}, "").GetApertureShape(), kNoShape);
  EXPECT_EQ(Record(RecordKind::Aperture, {}, {}, "own").GetApertureShape(), kNoShape);
}

// ------------------------------------------------------------------------------- validation

TEST_F(TemplateRecordTest, ARecordWithoutInputFieldsIsValidForEveryAuxiliaryType) {
  for (const auto kind :
       {RecordKind::SingleMatch, RecordKind::MultipleMatch, RecordKind::SubRecord})
    EXPECT_EQ(VerdictOf(kind, {}), "valid");
}

TEST_F(TemplateRecordTest, OfSeveralInvalidInputFieldsTheLastIsTold) {
  EXPECT_EQ(VerdictOf(RecordKind::MultipleMatch, {String(""), Alpha(), Column(0), Newline()}),
            "Error: Input field F3 is in an invalid state");
}

TEST_F(TemplateRecordTest, AFieldOfUnknownTypeMakesTheRecordInvalid) {
  EXPECT_EQ(VerdictOf(RecordKind::MultipleMatch, {Field(FieldKind::Undefined), Newline()}),
            "Error: Input field F1 is in an invalid state");
}

TEST_F(TemplateRecordTest, EveryInvalidOutputElementIsTold) {
  EXPECT_EQ(
      VerdictOf(RecordKind::MultipleMatch, {Newline()},
                {{OutputTag::Width, ""}, {OutputTag::Height, "1"}, {OutputTag::Undefined, "1"}}),
      "Error: Output element V1 is in an invalid state\n"
      "Error: Output element V3 is in an invalid state");
}

TEST_F(TemplateRecordTest, AnElementThatAnEntityDoesNotNeedGetsANoteAndIsValid) {
  std::vector<OutputSpec> outputs = kPart;
  outputs.push_back({OutputTag::Width, "1"});
  CTNTemplateRecord& record = Record(RecordKind::Part, {Newline()}, outputs);
  EXPECT_EQ(Verdict(record), "valid");
  const CTNTemplRecOutField& element = *record.GetOutputFields()[2];
  EXPECT_EQ(element.GetStatusText(),
            "Note: Output element WIDTH is not required for record type Part");
  EXPECT_EQ(element.IsValid(), 1);
  EXPECT_EQ(record.GetOutputFields()[0]->GetStatusText(), "");
}

TEST_F(TemplateRecordTest, EntityTypesThatNeedNoTagGiveEveryElementANote) {
  for (const auto kind : {RecordKind::Undefined, RecordKind::FreshEntity}) {
    CTNTemplateRecord& record = Record(kind, {Newline()}, {{OutputTag::Width, "1"}});
    EXPECT_EQ(Verdict(record), "Invalid Record Type");
    EXPECT_EQ(record.GetOutputFields()[0]->GetStatusText(),
              "Note: Output element WIDTH is not required for record type Undefined");
  }
}

TEST_F(TemplateRecordTest, NoneElementsAndElementsOfAuxiliaryRecordsGetNoNote) {
  Record(RecordKind::SingleMatch, {Newline()}, {{OutputTag::Width, "1"}});
  std::vector<OutputSpec> outputs = kPart;
  outputs.push_back({OutputTag::None, "A1"});
  CTNTemplateRecord& part = Record(RecordKind::Part, {Newline()}, outputs);
  EXPECT_EQ(part.GetOutputFields()[2]->GetStatusText(), "");
  EXPECT_EQ(Auxiliary({Newline()}, kPart).GetOutputFields()[0]->GetStatusText(), "");
}

TEST_F(TemplateRecordTest, EveryMissingTagOfTheTypeIsTold) {
  EXPECT_EQ(VerdictOf(RecordKind::Part, {Newline()}),
            "Error: Record type Part requires output element with tag REF_DESIGNATOR\n"
            "Error: Record type Part requires output element with tag PART_NUMBER");
  EXPECT_EQ(VerdictOf(RecordKind::Drill, {Newline()}, {{OutputTag::Units, "MM"}}),
            "Error: Record type Drill requires output element with tag TCODE\n"
            "Error: Record type Drill requires output element with tag DIAMETER\n"
            "Error: Record type Drill requires output element with tag SCALE");
}

TEST_F(TemplateRecordTest, MissingTagsOfAShapeAreToldAsTheShapes) {
  EXPECT_EQ(VerdictOf(RecordKind::Aperture, {Newline()}, {{OutputTag::Height, "1"}}, "rectangle"),
            "Error: Record type Aperture requires output element with tag DCODE\n"
            "Error: Record type Aperture requires output element with tag SHAPE\n"
            "Error: rectangle aperture record requires output element with tag WIDTH\n"
            "Error: Record type Aperture requires output element with tag SCALE\n"
            "Error: Record type Aperture requires output element with tag UNITS");
}

TEST_F(TemplateRecordTest, ARequiredTagMayBeReachedThroughNone) {
  Record(RecordKind::SingleMatch, {Newline()}, {{OutputTag::PartNumber, "1"}});
  EXPECT_EQ(VerdictOf(RecordKind::Part, {Newline()},
                      {{OutputTag::RefDesignator, "R"}, {OutputTag::None, "A1"}}),
            "valid");
}

TEST_F(TemplateRecordTest, APartMayHaveSeveralDesignatorsButOnePartNumber) {
  std::vector<OutputSpec> outputs = kPart;
  outputs.push_back({OutputTag::RefDesignator, "R2"});
  EXPECT_EQ(VerdictOf(RecordKind::Part, {Newline()}, outputs), "valid");
  outputs.push_back({OutputTag::PartNumber, "101"});
  EXPECT_EQ(VerdictOf(RecordKind::Part, {Newline()}, outputs),
            "Error: Record must have only one output element with required tag PART_NUMBER");
}

TEST_F(TemplateRecordTest, AnElementThatReachesARequiredTagCountsAsASecondOne) {
  std::vector<OutputSpec> outputs = kPart;
  outputs.push_back({OutputTag::Width, "V2"});
  EXPECT_EQ(VerdictOf(RecordKind::Part, {Newline()}, outputs),
            "Error: Record must have only one output element with required tag PART_NUMBER");
}

TEST_F(TemplateRecordTest, TagsThatAreNotRequiredMayStandTwice) {
  std::vector<OutputSpec> outputs = kPart;
  outputs.push_back({OutputTag::Width, "1"});
  outputs.push_back({OutputTag::Width, "2"});
  EXPECT_EQ(VerdictOf(RecordKind::Part, {Newline()}, outputs), "valid");
}

TEST_F(TemplateRecordTest, ARecordMustEndWithARequiredNewlineUnlessItIsASubRecord) {
  EXPECT_EQ(VerdictOf(RecordKind::MultipleMatch, {Alpha()}), kNoNewline);
  EXPECT_EQ(VerdictOf(RecordKind::SingleMatch, {Newline(), Alpha()}), kNoNewline);
  EXPECT_EQ(VerdictOf(RecordKind::Part, {Optional(Newline())}, kPart), kNoNewline);
  EXPECT_EQ(VerdictOf(RecordKind::SubRecord, {Alpha()}), "valid");
}

TEST_F(TemplateRecordTest, ARequiredScanAsLastFieldIsNoLineEndUnlessItIsASubRecord) {
  EXPECT_EQ(VerdictOf(RecordKind::MultipleMatch, {Newline(), Scan()}), kNoNewline);
  EXPECT_EQ(VerdictOf(RecordKind::SubRecord, {Newline(), Scan()}), "valid");
}

TEST_F(TemplateRecordTest, TypesThatMeanNothingAreInvalid) {
  for (const int code : {-1, 0, 4, 5, 9, 10, 12, 14, 15}) {
    CTNTemplateRecord record(nullptr);
    record.SetType(static_cast<RecordKind>(code));
    EXPECT_EQ(Verdict(record), "Invalid Record Type") << code;
  }
  for (const int code : {6, 7, 8, 11, 13}) {
    CTNTemplateRecord record(nullptr);
    record.SetType(static_cast<RecordKind>(code));
    EXPECT_EQ(Verdict(record), "valid") << code;
  }
}

TEST_F(TemplateRecordTest, AnApertureMustDescribeAShape) {
  const std::string text = "Error: Invalid Description For Aperture Record";
  EXPECT_EQ(VerdictOf(RecordKind::Aperture, {Newline()}, ApertureWith({}), ""), text);
  EXPECT_EQ(VerdictOf(RecordKind::Aperture, {Newline()}, ApertureWith({}), "Circle"), text);
  EXPECT_EQ(VerdictOf(RecordKind::Aperture, {Newline()}, ApertureWith({}), "POLYGON"), "valid");
  EXPECT_EQ(VerdictOf(RecordKind::Drill, {},
                      {{OutputTag::TCode, "1"},
                       {OutputTag::Diameter, "1"},
                       {OutputTag::Scale, "1"},
                       {OutputTag::Units, "MM"}},
                      "Circle"),
            "valid");
}

TEST_F(TemplateRecordTest, TheShapeWithIndexFourteenHasNoNameThatADescriptionCouldUse) {
  EXPECT_EQ(CTNTool::GetStrFromShape(14, true), "");
  EXPECT_EQ(CTNFormulaCustom::GetShapeName(14, true), "");
  EXPECT_EQ(VerdictOf(RecordKind::Aperture, {Newline()}, ApertureWith({}), ""),
            "Error: Invalid Description For Aperture Record");
}

TEST_F(TemplateRecordTest, AllErrorsStandInTheirOrderOnLinesOfTheirOwn) {
  EXPECT_EQ(VerdictOf(RecordKind::Aperture, {String(""), Alpha()},
                      {{OutputTag::DCode, ""},
                       {OutputTag::Shape, "1"},
                       {OutputTag::Scale, "1"},
                       {OutputTag::Units, "1"},
                       {OutputTag::Units, "1"}},
                      "Circle"),
            "Error: Input field F1 is in an invalid state\n"
            "Error: Output element V1 is in an invalid state\n"
            "Error: Record must have only one output element with required tag UNITS\n" +
                std::string(kNoNewline) + "\nError: Invalid Description For Aperture Record");
}

TEST_F(TemplateRecordTest, AMendedRecordLosesItsMessages) {
  CTNTemplateRecord& record = Auxiliary({Alpha()});
  EXPECT_EQ(Verdict(record), kNoNewline);
  record.AddInputField(FieldKind::Newline, true);
  EXPECT_EQ(Verdict(record), "valid");
}

// ------------------------------------------------------------------------------- line end

TEST_F(TemplateRecordTest, OptionalNewlinesAtTheEndArePassedOver) {
  EXPECT_TRUE(
      Auxiliary({Newline(), Optional(Newline()), Optional(Newline())}).EndsWithRequiredNewline());
  EXPECT_FALSE(Auxiliary({Alpha(), Optional(Newline())}).EndsWithRequiredNewline());
  EXPECT_FALSE(Auxiliary({Optional(Newline())}).EndsWithRequiredNewline());
  EXPECT_FALSE(Auxiliary({}).EndsWithRequiredNewline());
}

TEST_F(TemplateRecordTest, AnyOtherFieldAtTheEndIsNoLineEndEvenWhenItIsOptional) {
  for (int code = -1; code <= 11; ++code) {
    if (code == 10) continue;
    const FieldSpec last = Optional(Field(static_cast<FieldKind>(code)));
    EXPECT_FALSE(Auxiliary({Newline(), last}).EndsWithRequiredNewline()) << code;
  }
}

TEST_F(TemplateRecordTest, ARequiredSubRecordEndsTheLineWhenItsRecordDoes) {
  Record(RecordKind::SubRecord, {Alpha(), Newline()});  // A1
  Record(RecordKind::SubRecord, {Alpha()});             // A2
  Record(RecordKind::SubRecord, {SubRecord("A1")});     // A3
  EXPECT_TRUE(Auxiliary({SubRecord("A1")}).EndsWithRequiredNewline());
  EXPECT_TRUE(Auxiliary({SubRecord("A3"), Optional(Newline())}).EndsWithRequiredNewline());
  EXPECT_FALSE(Auxiliary({SubRecord("A2")}).EndsWithRequiredNewline());
}

TEST_F(TemplateRecordTest, SubRecordsThatAreOptionalOrDoNotEndTheLineArePassedOver) {
  Record(RecordKind::SubRecord, {Alpha(), Newline()});  // A1
  Record(RecordKind::SubRecord, {Alpha()});             // A2
  EXPECT_TRUE(Auxiliary({Newline(), SubRecord("A2")}).EndsWithRequiredNewline());
  EXPECT_TRUE(Auxiliary({Newline(), Optional(SubRecord("A2"))}).EndsWithRequiredNewline());
  EXPECT_TRUE(Auxiliary({SubRecord("A1"), SubRecord("A2")}).EndsWithRequiredNewline());
  EXPECT_FALSE(Auxiliary({Optional(SubRecord("A1"))}).EndsWithRequiredNewline());
  EXPECT_FALSE(Auxiliary({Alpha(), Optional(SubRecord("A1"))}).EndsWithRequiredNewline());
}

TEST_F(TemplateRecordTest, ASubRecordFieldWithoutARecordIsNoLineEnd) {
  EXPECT_FALSE(Auxiliary({Newline(), SubRecord("A9")}).EndsWithRequiredNewline());
  EXPECT_FALSE(Auxiliary({Newline(), Optional(SubRecord("A9"))}).EndsWithRequiredNewline());
}

TEST_F(TemplateRecordTest, SubRecordsInACircleAreNoLineEndButMayBePassedOver) {
  CTNTemplateRecord& first = Record(RecordKind::SubRecord, {SubRecord("A2")});
  CTNTemplateRecord& second = Record(RecordKind::SubRecord, {SubRecord("A1")});
  Relink(document);
  EXPECT_FALSE(first.EndsWithRequiredNewline());
  EXPECT_FALSE(second.EndsWithRequiredNewline());
  first.AddInputField(FieldKind::Newline, true, first.GetInputFields()[0].get());
  EXPECT_TRUE(first.EndsWithRequiredNewline());
  EXPECT_TRUE(second.EndsWithRequiredNewline());
}

TEST_F(TemplateRecordTest, SubRecordsThatAreReachedInManyWaysAreAskedOnce) {
  constexpr int kCount = 64;  // As many doublings as nobody could wait for.
  for (int i = 1; i <= kCount; ++i) {
    CTNTemplateRecord* record = document.AddRecord(RecordKind::SubRecord, "");
    const std::string next = "A" + std::to_string(i + 1);
    AddField(*record, SubRecord(next));
    AddField(*record, SubRecord(next));
  }
  CTNTemplateRecord* last = document.AddRecord(RecordKind::SubRecord, "");
  CTNTemplRecInField& end = AddField(*last, Alpha());
  for (const auto& record : document.GetAuxiliaryRecords()) {
    for (const auto& field : record->GetInputFields())
      field->ResolveSubRecord();
  }
  const CTNTemplateRecord& top = *document.GetAuxiliaryRecords()[0];
  EXPECT_FALSE(top.EndsWithRequiredNewline());
  EXPECT_FALSE(top.IsFieldReferenced(&end));
  end.SetType(FieldKind::Newline);
  EXPECT_TRUE(top.EndsWithRequiredNewline());
}

TEST_F(TemplateRecordTest, AVeryLongChainOfSubRecordsIsFollowedToItsEnd) {
  constexpr int kCount = 100'000;
  CTNTemplateRecord* last = document.AddRecord(RecordKind::SubRecord, "");
  const CTNTemplRecInField& end = AddField(*last, Newline());
  for (int i = 1; i < kCount; ++i) {
    CTNTemplateRecord* record = document.AddRecord(RecordKind::SubRecord, "");
    AddField(*record, SubRecord("A" + std::to_string(i)));
  }
  const CTNTemplateRecord& top = *document.GetAuxiliaryRecords().back();
  EXPECT_TRUE(top.EndsWithRequiredNewline());
  EXPECT_FALSE(top.IsFieldReferenced(&end));
}

// ------------------------------------------------------------------------------- copying

TEST_F(TemplateRecordTest, CopyIsDeepAndComplete) {
  CTNTemplateRecord& sub = Record(RecordKind::SubRecord, {Alpha()}, {}, "sub");
  CTNTemplateRecord& source =
      Record(RecordKind::SingleMatch, {Optional(SubRecord("A1")), Newline()},
             {{OutputTag::Width, "V2 F1"}, {OutputTag::Height, "1"}}, "source");
  auto block = std::make_shared<CTNParsedFileBlock>(nullptr);
  source.SetSingleMatchBlock(block);
  source.SetStatusText("status");
  source.SetValid(0);
  CTNTemplateRecord& copy = Record(RecordKind::Part, {Tab()}, kPart, "old");
  copy.Copy(source);
  EXPECT_EQ(copy.GetType(), RecordKind::SingleMatch);
  EXPECT_EQ(copy.GetTypeName(), "Single Match");
  EXPECT_EQ(copy.GetDescription(), "source");
  EXPECT_EQ(copy.GetStatusText(), "status");
  EXPECT_EQ(copy.IsValid(), 0);
  EXPECT_EQ(copy.GetSingleMatchBlock(), block.get());
  EXPECT_EQ(FieldsOf(copy), FieldsOf(source));
  EXPECT_EQ(ExpressionsOf(copy), ExpressionsOf(source));
  EXPECT_NE(copy.GetInputFields()[0], source.GetInputFields()[0]);
  EXPECT_EQ(copy.GetInputFields()[0]->GetSubRecord(), &sub);
  EXPECT_FALSE(copy.GetInputFields()[0]->IsRequired());
  EXPECT_EQ(copy.GetInputFields()[0]->GetParentRecord(), &copy);
  EXPECT_EQ(copy.GetOutputFields()[0]->GetParentRecord(), &copy);
  EXPECT_EQ(copy.GetLineFeedField().GetParentRecord(), &copy);
  EXPECT_EQ(copy.GetLineFeedField().GetType(), FieldKind::Newline);
}

TEST_F(TemplateRecordTest, TheExpressionsOfACopyMeanItsOwnFieldsThoseBehindThemIncluded) {
  CTNTemplateRecord& source =
      Auxiliary({Alpha(), Newline()}, {{OutputTag::Width, "V2 F1"}, {OutputTag::Height, "1"}});
  CTNTemplateRecord copy(&document);
  copy.Copy(source);
  const CTNTemplRecOutField& element = *copy.GetOutputFields()[0];
  EXPECT_TRUE(element.RefersTo(copy.GetOutputFields()[1].get()));
  EXPECT_TRUE(element.RefersTo(copy.GetInputFields()[0].get()));
}

TEST_F(TemplateRecordTest, ChangingACopyLeavesTheSource) {
  CTNTemplateRecord& source = Auxiliary({Alpha("A"), Newline()}, {{OutputTag::Width, "F1"}});
  CTNTemplateRecord copy(&document);
  copy.Copy(source);
  copy.GetInputFields()[0]->SetMatchValueText("B");
  copy.RemoveField(copy.GetInputFields()[0].get());
  copy.SetDescription("other");
  EXPECT_EQ(ExpressionsOf(copy), Texts{"??"});
  EXPECT_EQ(ExpressionsOf(source), Texts{"F1"});
  EXPECT_EQ(source.GetInputFields()[0]->GetMatchValueText(), "A");
  EXPECT_EQ(source.GetDescription(), "own");
}

TEST_F(TemplateRecordTest, ARecordCopiedFromItselfStaysAsItIs) {
  CTNTemplateRecord& record = Auxiliary({Alpha(), Newline()}, {{OutputTag::Width, "F1"}});
  record.Copy(record);
  EXPECT_EQ(FieldsOf(record), (Texts{"ALPHA", "NEWLINE", "WIDTH"}));
}

// ------------------------------------------------------------------------------- entity text

TEST_F(TemplateRecordTest, AnEntityIsWrappedAndNamesItsTypeWhereTagsAreOn) {
  CTNTemplateRecord& record =
      Record(RecordKind::Part, {NotWhtSpace(), Space(), NotWhtSpace(), Newline()},
             {{OutputTag::RefDesignator, "F1"}, {OutputTag::PartNumber, "F3"}});
  CTNTemplateRecord& other = Record(RecordKind::Part, {Newline()}, kPart);
  const Application application = ApplyToText(document, "R1 100\n");
  ASSERT_EQ(application.Readable(), Texts{"E1{F1=R1|F2= |F3=100|F4=}"});
  const CTNParsedFileBlock block = application.blocks.GetAt(0);
  std::string text = ">";
  EXPECT_TRUE(record.BuildEntityText(text, block, Tags::On));
  EXPECT_EQ(text,
            "><ENTITY>Part<REF_DESIGNATOR>R1</REF_DESIGNATOR><PART_NUMBER>100</PART_NUMBER>"
            "</ENTITY>");
  text.clear();
  EXPECT_TRUE(record.BuildEntityText(text, block, Tags::Off));
  EXPECT_EQ(text, "R1 100 ");
  text = ">";
  EXPECT_FALSE(other.BuildEntityText(text, block, Tags::On)) << "another record's block";
  EXPECT_FALSE(record.BuildEntityText(text, CTNParsedFileBlock(nullptr), Tags::On));
  EXPECT_EQ(text, ">");
}

TEST_F(TemplateRecordTest, TheTextOfAnAuxiliaryRecordIsNotWrapped) {
  CTNTemplateRecord& record =
      Auxiliary({NotWhtSpace(), Newline()}, {{OutputTag::RefDesignator, "F1"}});
  const Application application = ApplyToText(document, "R1\n");
  std::string text;
  EXPECT_TRUE(record.BuildEntityText(text, application.blocks.GetAt(0), Tags::On));
  EXPECT_EQ(text, "<REF_DESIGNATOR>R1</REF_DESIGNATOR>");
}

// ------------------------------------------------------------------------------- loading

TEST_F(TemplateRecordTest, ResolvingLinksSubRecordsAndValidatesThemFirst) {
  CTNTemplateRecord& user = Auxiliary({SubRecord("A2"), Newline()});  // Before A2 is there.
  CTNTemplateRecord& sub = Record(RecordKind::SubRecord, {Alpha()});
  sub.SetValid(0);
  ASSERT_EQ(user.IsValid(), 0);
  LineEnds lineEnds;
  user.ResolveAfterLoad(lineEnds);
  EXPECT_EQ(user.GetInputFields()[0]->GetSubRecord(), &sub);
  EXPECT_EQ(sub.IsValid(), 1);
  EXPECT_EQ(user.IsValid(), 1);
  EXPECT_EQ(user.GetStatusText(), "");
}

TEST_F(TemplateRecordTest, ResolvingLooksAtSubRecordFieldsOnly) {
  CTNTemplateRecord& user = Auxiliary({String("A2"), Newline()});
  CTNTemplateRecord& sub = Record(RecordKind::SubRecord, {Alpha()});
  sub.SetValid(0);
  LineEnds lineEnds;
  user.ResolveAfterLoad(lineEnds);
  EXPECT_EQ(user.GetInputFields()[0]->GetSubRecord(), nullptr);
  EXPECT_EQ(sub.IsValid(), 0);
}

TEST_F(TemplateRecordTest, ARecordIsReadWithItsFieldsInTheirOrder) {
  CTNTemplateRecord record(&document);
  ASSERT_EQ(record.Load("<TEMPLATE_RECORD TYPE='part'><OUTPUT_FIELD KEY='PART_NUMBER'>"
                        "<VALUE>F1</VALUE></OUTPUT_FIELD><INPUT_FIELD TYPE='ALPHA'/>"
                        "<DESC>  two words </DESC><INPUT_FIELD TYPE='NEWLINE'/>"
                        "<OUTPUT_FIELD KEY='width'/></TEMPLATE_RECORD>"),
            kXmlOk);
  record.FixUpAfterLoad();
  EXPECT_EQ(record.GetTypeName(), "Part");
  EXPECT_EQ(record.GetDescription(), "  two words ");
  EXPECT_EQ(FieldsOf(record), (Texts{"ALPHA", "NEWLINE", "PART_NUMBER", "WIDTH"}));
  EXPECT_EQ(ExpressionsOf(record), (Texts{"F1", ""}));
  EXPECT_EQ(record.GetInputFields()[0]->GetParentRecord(), &record);
  EXPECT_EQ(record.GetOutputFields()[0]->GetParentRecord(), &record);
}

TEST_F(TemplateRecordTest, TheDescriptionIsReadFromAnAttributeToo) {
  CTNTemplateRecord record(&document);
  ASSERT_EQ(record.Load("<TEMPLATE_RECORD TYPE='Drill' DESC='words'/>"), kXmlOk);
  record.FixUpAfterLoad();
  EXPECT_EQ(record.GetDescription(), "words");
  EXPECT_EQ(record.GetType(), RecordKind::Drill);
}

TEST_F(TemplateRecordTest, AnUnknownTypeNameLeavesTheTypeOfANewRecordAndNoTrace) {
  CTNTemplateRecord record(&document);
  ASSERT_EQ(record.Load("<TEMPLATE_RECORD TYPE='Fiducial'/>"), kXmlOk);
  record.FixUpAfterLoad();
  EXPECT_EQ(record.GetType(), RecordKind::FreshEntity);
  EXPECT_EQ(record.GetTypeName(), "Undefined");
}

TEST_F(TemplateRecordTest, AMissingTypeReadsAsUndefined) {
  CTNTemplateRecord record(&document);
  ASSERT_EQ(record.Load("<TEMPLATE_RECORD/>"), kXmlOk);
  record.FixUpAfterLoad();
  EXPECT_EQ(record.GetType(), RecordKind::Undefined);
  EXPECT_EQ(record.GetDescription(), "");
}

TEST_F(TemplateRecordTest, ARecordIsWrittenWithItsAttributesAndFieldsInOrder) {
  CTNTemplateRecord& record = Record(RecordKind::Part, {Alpha(), Newline()}, kPart, "a & b");
  std::string xml;
  ASSERT_EQ(record.GetXml(xml), kXmlOk);
  std::size_t at = 0;
  for (const std::string_view piece :
       {"<TEMPLATE_RECORD TYPE=\"Part\">", "<DESC>a &amp; b</DESC>", "<INPUT_FIELD TYPE=\"ALPHA\"",
        "<INPUT_FIELD TYPE=\"NEWLINE\"", "<OUTPUT_FIELD KEY=\"REF_DESIGNATOR\">",
        "<VALUE>R1</VALUE>", "<OUTPUT_FIELD KEY=\"PART_NUMBER\">", "<VALUE>100</VALUE>",
        "</TEMPLATE_RECORD>"}) {
    const std::size_t found = xml.find(piece, at);
    ASSERT_NE(found, std::string::npos) << piece << " in " << xml;
    at = found;
  }
}

TEST_F(TemplateRecordTest, ARecordIsReadAsItWasWritten) {
  Record(RecordKind::SubRecord, {Alpha()}, {}, "sub");
  Record(RecordKind::Part, {Optional(SubRecord("A1")), CaseSensitive(String("x|Y")), Newline()},
         {{OutputTag::RefDesignator, "F1 \"quoted\""}, {OutputTag::PartNumber, "F2"}}, "part");
  std::string written;
  ASSERT_EQ(document.GetXml(written), kXmlOk);
  CTNParserTemplate loaded(nullptr);
  ASSERT_EQ(loaded.LoadFromXml(written), kXmlOk);
  std::string again;
  ASSERT_EQ(loaded.GetXml(again), kXmlOk);
  EXPECT_EQ(again, written);
  EXPECT_EQ(loaded.GetEntityRecords()[0]->GetInputFields()[0]->GetSubRecord(),
            loaded.GetAuxiliaryRecords()[0].get());
}

// ------------------------------------------------------------------------------- saving fails

constexpr char kUnstorable[] = "\x01";  // No XML document can hold it.

TEST_F(TemplateRecordTest, TheFirstInputFieldThatCannotBeSavedIsReportedAndElementsAreTried) {
  CTNTemplateRecord& record = Record(
      RecordKind::Part, {Alpha(), String(kUnstorable), String(kUnstorable), Newline()},
      {{OutputTag::PartNumber, "1"}, {OutputTag::Width, "1"}, {OutputTag::Height, kUnstorable}},
      "widget");
  std::string xml = "untouched";
  EXPECT_EQ(record.GetXml(xml), kXmlGeneralFailure);
  EXPECT_EQ(xml, "untouched");
  EXPECT_EQ(document.GetErrorLog().GetAllLines(),
            (Texts{"Error saving input field 1 of record widget",
                   "Error saving output field 2 of record widget"}));
}

TEST_F(TemplateRecordTest, TheFirstOutputElementThatCannotBeSavedStopsThem) {
  CTNTemplateRecord& record =
      Record(RecordKind::Part, {Newline()},
             {{OutputTag::PartNumber, kUnstorable}, {OutputTag::Width, kUnstorable}}, "widget");
  std::string xml;
  EXPECT_EQ(record.GetXml(xml), kXmlGeneralFailure);
  EXPECT_EQ(document.GetErrorLog().GetAllLines(),
            Texts{"Error saving output field 0 of record widget"});
}

TEST_F(TemplateRecordTest, AnInputFieldThatCannotBeSavedFailsTheRecordThoughAllElementsCan) {
  CTNTemplateRecord& record =
      Record(RecordKind::Part, {String(kUnstorable), Newline()}, kPart, "widget");
  std::string xml;
  EXPECT_EQ(record.GetXml(xml), kXmlGeneralFailure);
  EXPECT_EQ(document.GetErrorLog().GetAllLines(),
            Texts{"Error saving input field 0 of record widget"});
}

// ------------------------------------------------------------------------------- out of memory

/// A record whose expressions follow its fields, in a template of its own.
struct Filled {
  CTNParserTemplate document{nullptr};
  CTNTemplateRecord& record =
      AddRecord(document, RecordKind::MultipleMatch, "filled", {Alpha(), Tab(), Newline()},
                {{OutputTag::Width, "F1 F2 F3"}, {OutputTag::Height, "V1"}});
  Texts before = FieldsOf(record);
  Texts texts = ExpressionsOf(record);

  void ExpectUnchangedAndReported() const {
    EXPECT_EQ(FieldsOf(record), before);
    EXPECT_EQ(ExpressionsOf(record), texts);
    EXPECT_EQ(const_cast<CTNParserTemplate&>(document).GetErrorLog().GetAllLines(),
              Texts{kNoMemory});
  }
};

/// Lets every allocation of the edit fail in turn. An edit that tells a failure must have left
/// everything as it was and have reported it. At least one must have told one.
template <class Edit>
void ExpectEditSurvivesFailures(Edit edit) {
  int told = 0;
  ForEveryAllocation([&edit, &told](std::int64_t granted) {
    Filled filled;
    bool done = false;
    bool failed = false;
    {
      const FailingMemory memory(granted);
      done = edit(filled.record);
      failed = memory.HasFailed();
    }
    if (!done) {
      ++told;
      filled.ExpectUnchangedAndReported();
    }
    EXPECT_TRUE(done || failed);
    return failed;
  });
  EXPECT_GT(told, 0);
}

TEST_F(TemplateRecordTest, InsertingAFieldWithoutMemoryIsReportedAndChangesNothing) {
  ExpectEditSurvivesFailures([](CTNTemplateRecord& record) {
    return record.AddInputField(FieldKind::Space, true, record.GetInputFields()[0].get()) !=
           nullptr;
  });
  ExpectEditSurvivesFailures([](CTNTemplateRecord& record) {
    return record.AddInputField(FieldKind::Space, true) != nullptr;
  });
}

TEST_F(TemplateRecordTest, CopyingAFieldWithoutMemoryIsReportedAndChangesNothing) {
  ExpectEditSurvivesFailures([](CTNTemplateRecord& record) {
    return record.AppendCopyOfField(*record.GetInputFields()[0]) != nullptr;
  });
  ExpectEditSurvivesFailures([](CTNTemplateRecord& record) {
    return record.AppendCopyOfField(*record.GetOutputFields()[0]) != nullptr;
  });
}

TEST_F(TemplateRecordTest, MovingAFieldWithoutMemoryIsReportedAndChangesNothing) {
  ExpectEditSurvivesFailures([](CTNTemplateRecord& record) {
    return record.MoveField(record.GetInputFields()[2].get(), record.GetInputFields()[0].get());
  });
  ExpectEditSurvivesFailures([](CTNTemplateRecord& record) {
    return record.MoveField(record.GetOutputFields()[0].get(), nullptr);
  });
}

TEST_F(TemplateRecordTest, RemovingAFieldWithoutMemoryIsReportedAndChangesNothing) {
  ExpectEditSurvivesFailures([](CTNTemplateRecord& record) {
    return record.RemoveField(record.GetInputFields()[1].get()) != nullptr;
  });
  ExpectEditSurvivesFailures([](CTNTemplateRecord& record) {
    return record.RemoveField(record.GetOutputFields()[0].get()) != nullptr;
  });
}

TEST_F(TemplateRecordTest, ClearingARecordWithoutMemoryIsReportedAndChangesNothing) {
  ExpectEditSurvivesFailures([](CTNTemplateRecord& record) {
    record.ClearFields();
    return record.GetInputFields().empty();
  });
}

TEST_F(TemplateRecordTest, CreatingTheRequiredSetWithoutMemoryIsReported) {
  int told = 0;
  ForEveryAllocation([&told](std::int64_t granted) {
    CTNParserTemplate own(nullptr);
    CTNTemplateRecord& record = AddRecord(own, RecordKind::Part, "", {Newline()});
    bool done = false;
    bool failed = false;
    {
      const FailingMemory memory(granted);
      done = record.CreateRequiredOutputSet();
      failed = memory.HasFailed();
    }
    if (!done) ++told;
    EXPECT_EQ(own.GetErrorLog().GetAllLines(), done ? Texts() : Texts{kNoMemory});
    return failed;
  });
  EXPECT_GT(told, 0);
}

}  // namespace
}  // namespace bomparser
