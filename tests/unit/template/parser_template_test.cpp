#include "input/CTNParsedFileBlock.h"
#include "template/CTNParserTemplate.h"
#include "tests/support/Application.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/OutputTexts.h"
#include "tests/support/TemplateBuilder.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {
namespace {

using namespace test;
using Texts = std::vector<std::string>;

/// The records as their descriptions, "E: one two A: three".
std::string ListsOf(const CTNParserTemplate& document) {
  std::string text = "E:";
  for (const auto& record : document.GetEntityRecords())
    text += ' ' + record->GetDescription();
  text += " A:";
  for (const auto& record : document.GetAuxiliaryRecords())
    text += ' ' + record->GetDescription();
  return text;
}

void ExpectNew(CTNParserTemplate& document) {
  EXPECT_EQ(ListsOf(document), "E: A:");
  EXPECT_EQ(document.GetFilePath(), "unsaved");
  EXPECT_EQ(document.GetTitle(), "untitled");
  EXPECT_EQ(document.GetUnits(), 0);
  EXPECT_EQ(document.GetUnitsName(), "Inch");
  EXPECT_EQ(document.GetScaleFactor(), 1.0);
  EXPECT_EQ(document.GetBeginRow(), 1);
  EXPECT_EQ(document.GetEndAfterRow(), 0);
  EXPECT_FALSE(document.IsModified());
  EXPECT_TRUE(document.IsEmptyTemplate());
  EXPECT_EQ(document.GetErrorLog().GetLogName(), "templerrs.log");
  EXPECT_EQ(document.GetErrorLog().GetAllLines(), Texts{});
}

class ParserTemplateTest : public testing::Test {
 protected:
  /// Gives the document whatever a new one does not have.
  void FillAndChange() {
    AddRecord(document, RecordKind::Part, "part", {Alnum(), Newline()});
    AddRecord(document, RecordKind::SingleMatch, "title", {Alnum(), Newline()});
    document.SetTitle("title");
    document.SetFilePath("/path");
    document.SetUnits(2);
    document.SetScaleFactor(2.5);
    document.SetBeginRow(3);
    document.SetEndAfterRow(-4);
    document.SetModified(ChangeKind::Modified);
    document.GetErrorLog().AddMessage("error");
  }

  FakeContext context;
  CTNParserTemplate document{&context};
};

TEST_F(ParserTemplateTest, ANewTemplateIsEmptyUntitledAndUnsaved) { ExpectNew(document); }

TEST_F(ParserTemplateTest, InitBringsANewTemplateBack) {
  FillAndChange();
  EXPECT_NE(document.Init(), 0);
  ExpectNew(document);
}

TEST_F(ParserTemplateTest,
       AnAuxiliaryRecordThatIsInitialisedInItsListLeavesNoReferenceToItsFields) {
  CTNTemplateRecord& once =
      AddRecord(document, RecordKind::SingleMatch, "once", {Alpha(), Newline()});
  CTNTemplateRecord& other = AddRecord(document, RecordKind::Part, "other", {Alpha(), Newline()},
                                       {{OutputTag::Text, "A1.F1"}});
  Relink(document);
  once.Init();
  EXPECT_EQ(other.GetOutputFields()[0]->GetExpression(), "??.??");
  EXPECT_EQ(other.GetOutputFields()[0]->GetExpressionText(), "??.??");
}

TEST_F(ParserTemplateTest, BothBuiltInRecordsTakeTheRestOfALineAndTheSecondIsOfType11) {
  const auto pattern = [](const CTNTemplateRecord& record) {
    std::string text;
    for (const auto& field : record.GetInputFields()) {
      text += std::string(field->GetTypeName()) + (field->IsRequired() ? "! " : " ");
    }
    return text;
  };
  EXPECT_EQ(document.GetCatchAllRecord().GetType(), RecordKind::UnmatchedLines);
  EXPECT_EQ(document.GetCatchAllRecord().GetTypeName(), "Undefined");
  EXPECT_EQ(pattern(document.GetCatchAllRecord()), "SCAN_TO_NEXT! NEWLINE! ");
  EXPECT_EQ(document.GetIgnoredLinesRecord().GetType(), RecordKind::IgnoredLines);
  EXPECT_EQ(document.GetIgnoredLinesRecord().GetTypeName(), "");
  EXPECT_EQ(pattern(document.GetIgnoredLinesRecord()), "SCAN_TO_NEXT! NEWLINE! ");
  for (const auto* record : {&document.GetCatchAllRecord(), &document.GetIgnoredLinesRecord()}) {
    EXPECT_EQ(record->IsValid(), 1);
    EXPECT_EQ(document.GetRecordID(record), "??");
    EXPECT_FALSE(document.Holds(record));
  }
}

// ------------------------------------------------------------------------------- records

TEST_F(ParserTemplateTest, TheTypeSelectsTheListOfARecord) {
  for (int code = -1; code <= 15; ++code) {
    CTNParserTemplate one(nullptr);
    const CTNTemplateRecord* record = one.AddRecord(static_cast<RecordKind>(code), "record");
    EXPECT_EQ(one.GetRecordID(record), code <= 4 ? "E1" : "A1") << code;
  }
}

TEST_F(ParserTemplateTest, RecordsAreAddedBehindTheOthersOrBeforeOneOfTheirList) {
  const CTNTemplateRecord* one = document.AddRecord(RecordKind::Part, "one");
  const CTNTemplateRecord* two = document.AddRecord(RecordKind::Drill, "two");
  const CTNTemplateRecord* three = document.AddRecord(RecordKind::SubRecord, "three");
  document.AddRecord(RecordKind::Part, "four", two);
  document.AddRecord(RecordKind::SingleMatch, "five", three);
  document.AddRecord(RecordKind::Aperture, "six", one);
  EXPECT_EQ(ListsOf(document), "E: six one four two A: five three");
}

TEST_F(ParserTemplateTest, BeforeARecordOfTheOtherListOrOfNoneMeansAtTheEnd) {
  const CTNTemplateRecord* one = document.AddRecord(RecordKind::Part, "one");
  const CTNTemplateRecord alone(&document);
  document.AddRecord(RecordKind::SingleMatch, "two", one);
  document.AddRecord(RecordKind::SingleMatch, "three", one);
  document.AddRecord(RecordKind::Part, "four", &alone);
  document.AddRecord(RecordKind::Part, "five", &document.GetCatchAllRecord());
  EXPECT_EQ(ListsOf(document), "E: one four five A: two three");
}

TEST_F(ParserTemplateTest, NoDescriptionIsRefused) {
  for (const std::string_view description : {"", " ", "\x01", "no shape at all"}) {
    const CTNTemplateRecord* record = document.AddRecord(RecordKind::Aperture, description);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->GetDescription(), description);
  }
}

TEST_F(ParserTemplateTest, ANewRecordIsInvalidUntilItIsValidated) {
  CTNTemplateRecord* record = document.AddRecord(RecordKind::MultipleMatch, "new");
  EXPECT_EQ(record->IsValid(), 0);
  EXPECT_EQ(record->Validate(), 1);
}

TEST_F(ParserTemplateTest, ACopyGoesBehindTheRecordsOfItsListWithAllItsFields) {
  AddRecord(document, RecordKind::SingleMatch, "title",
            {String("T="), CaseSensitive(Optional(Alnum("a|b"))), Newline()},
            {{OutputTag::Text, "F2"}});
  document.AddRecord(RecordKind::SubRecord, "last");
  const CTNTemplateRecord* copy = document.AddRecordCopy(RecordOf(document, "A1"));
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(document.GetRecordID(copy), "A3");
  EXPECT_EQ(copy->GetType(), RecordKind::SingleMatch);
  EXPECT_EQ(copy->GetDescription(), "title");
  ASSERT_EQ(copy->GetInputFields().size(), 3u);
  EXPECT_EQ(FieldOf(*copy, 2).GetMatchValueText(), "a|b");
  EXPECT_FALSE(FieldOf(*copy, 2).IsRequired());
  EXPECT_TRUE(FieldOf(*copy, 2).IsCaseSensitive());
  EXPECT_EQ(FieldOf(*copy, 2).GetParentRecord(), copy);
  EXPECT_EQ(ElementOf(*copy, 1).GetExpression(), "F2");
  EXPECT_EQ(ElementOf(*copy, 1).GetTag(), OutputTag::Text);
  EXPECT_EQ(copy->IsValid(), 1);
}

TEST_F(ParserTemplateTest, AnotherTemplatesRecordCanBeCopied) {
  CTNParserTemplate other(nullptr);
  AddRecord(other, RecordKind::Part, "part", {Alnum(), Newline()},
            {Designator("F1"), PartNumber()});
  const CTNTemplateRecord* copy = document.AddRecordCopy(RecordOf(other, "E1"));
  EXPECT_EQ(ListsOf(document), "E: part A:");
  EXPECT_EQ(copy->GetTemplate(), &document);
  EXPECT_EQ(ListsOf(other), "E: part A:");
}

TEST_F(ParserTemplateTest, ACopyFromAnotherTemplateNamesTheSubRecordsOfThisOne) {
  const CTNTemplateRecord* mine = document.AddRecord(RecordKind::SubRecord, "mine");
  const CTNTemplateRecord* copy = nullptr;
  {
    CTNParserTemplate other(nullptr);
    AddRecord(other, RecordKind::SubRecord, "first", {WholeNum()});
    AddRecord(other, RecordKind::SubRecord, "second", {WholeNum()});
    AddRecord(other, RecordKind::Part, "part",
              {SubRecord("a1"), SubRecord("A2"), SubRecord("A3"), Newline()});
    copy = document.AddRecordCopy(RecordOf(other, "E1"));
    EXPECT_EQ(FieldOf(RecordOf(other, "E1"), 1).GetSubRecord(), &RecordOf(other, "A1"));
  }
  EXPECT_EQ(FieldOf(*copy, 1).GetSubRecord(), mine);
  EXPECT_EQ(FieldOf(*copy, 1).GetMatchValueText(), "A1");
  EXPECT_EQ(FieldOf(*copy, 2).GetSubRecord(), nullptr);
  EXPECT_EQ(FieldOf(*copy, 2).GetMatchValueText(), "A2");
  EXPECT_EQ(FieldOf(*copy, 3).GetSubRecord(), nullptr);
  EXPECT_EQ(FieldOf(*copy, 3).GetMatchValueText(), "A3");
}

TEST_F(ParserTemplateTest, ACopyWithinATemplateNamesTheSameSubRecords) {
  CTNTemplateRecord& sub = AddRecord(document, RecordKind::SubRecord, "sub", {WholeNum()});
  CTNTemplateRecord& user =
      AddRecord(document, RecordKind::MultipleMatch, "user", {SubRecord("A1"), Newline()});
  EXPECT_EQ(FieldOf(*document.AddRecordCopy(user), 1).GetSubRecord(), &sub);
}

TEST_F(ParserTemplateTest, DeletingE1MakesTheFormerE2TheNewE1) {
  const CTNTemplateRecord* one = document.AddRecord(RecordKind::Part, "one");
  const CTNTemplateRecord* two = document.AddRecord(RecordKind::Part, "two");
  document.DeleteRecord(one);
  EXPECT_EQ(document.GetRecordID(two), "E1");
  EXPECT_EQ(ListsOf(document), "E: two A:");
}

TEST_F(ParserTemplateTest, DeletingAnUnknownRecordDoesNothing) {
  document.AddRecord(RecordKind::Part, "one");
  CTNParserTemplate other(nullptr);
  const CTNTemplateRecord alone(&document);
  document.DeleteRecord(nullptr);
  document.DeleteRecord(&alone);
  document.DeleteRecord(other.AddRecord(RecordKind::Part, "other"));
  document.DeleteRecord(&document.GetCatchAllRecord());
  EXPECT_EQ(ListsOf(document), "E: one A:");
  EXPECT_EQ(ListsOf(other), "E: other A:");
}

TEST_F(ParserTemplateTest, ARecordThatWasGivenATypeOfTheOtherListIsInNeither) {
  CTNTemplateRecord* one = document.AddRecord(RecordKind::Part, "one");
  document.AddRecord(RecordKind::Part, "two");
  CTNTemplateRecord* three = document.AddRecord(RecordKind::SubRecord, "three");
  one->SetType(RecordKind::SubRecord);
  EXPECT_EQ(document.GetRecordID(one), "??");
  document.DeleteRecord(one);
  EXPECT_FALSE(document.MoveRecord(one, three));
  EXPECT_EQ(ListsOf(document), "E: one two A: three");
  one->SetType(RecordKind::Drill);
  EXPECT_EQ(document.GetRecordID(one), "E1");
}

TEST_F(ParserTemplateTest, ARecordThatWasGivenATypeOfTheOtherListIsNotFoundByItsOldIdentifier) {
  CTNTemplateRecord* one = document.AddRecord(RecordKind::Part, "one");
  const CTNTemplateRecord* two = document.AddRecord(RecordKind::Part, "two");
  one->SetType(RecordKind::SubRecord);
  EXPECT_EQ(document.FindRecordByID("E1"), nullptr);
  EXPECT_EQ(document.FindRecordByID("A1"), nullptr);
  EXPECT_EQ(document.FindRecordByID("E2"), two);
  one->SetType(RecordKind::Drill);
  EXPECT_EQ(document.FindRecordByID("E1"), one);
}

TEST_F(ParserTemplateTest, DeleteAllRecordsEmptiesBothLists) {
  document.AddRecord(RecordKind::Part, "one");
  document.AddRecord(RecordKind::SubRecord, "two");
  document.DeleteAllRecords();
  EXPECT_EQ(ListsOf(document), "E: A:");
}

TEST_F(ParserTemplateTest, RecordsMoveWithinTheirList) {
  for (const char* name : {"one", "two", "three"})
    document.AddRecord(RecordKind::Part, name);
  document.AddRecord(RecordKind::SubRecord, "sub");
  const auto at = [this](const char* id) { return document.FindRecordByID(id); };
  EXPECT_TRUE(document.MoveRecord(at("E3"), at("E1")));
  EXPECT_EQ(ListsOf(document), "E: three one two A: sub");
  EXPECT_TRUE(document.MoveRecord(at("E1"), nullptr));
  EXPECT_EQ(ListsOf(document), "E: one two three A: sub");
  EXPECT_TRUE(document.MoveRecord(at("E1"), at("A1")));
  EXPECT_EQ(ListsOf(document), "E: two three one A: sub");
  EXPECT_TRUE(document.MoveRecord(at("E2"), at("E2")));
  EXPECT_FALSE(document.MoveRecord(&document.GetCatchAllRecord(), at("E1")));
  EXPECT_FALSE(document.MoveRecord(nullptr, at("E1")));
  EXPECT_EQ(ListsOf(document), "E: two three one A: sub");
}

class SeveralRecordsTest : public ParserTemplateTest {
 protected:
  using Records = std::vector<const CTNTemplateRecord*>;

  SeveralRecordsTest() {
    for (const char* name : {"one", "two", "three", "four", "five"})
      document.AddRecord(RecordKind::Part, name);
    document.AddRecord(RecordKind::SubRecord, "sub");
  }
  CTNTemplateRecord* At(const std::string& id) { return document.FindRecordByID(id); }
  Records At(const Texts& ids) {
    Records records;
    for (const std::string& id : ids)
      records.push_back(At(id));
    return records;
  }
};

TEST_F(SeveralRecordsTest, MoveTogetherAndKeepTheOrderThatTheyHaveInTheList) {
  EXPECT_TRUE(document.MoveRecords(At(Texts{"E5", "E2"}), At("E1")));
  EXPECT_EQ(ListsOf(document), "E: two five one three four A: sub");
  EXPECT_TRUE(document.MoveRecords(At(Texts{"E1", "E3"}), At("E5")));
  EXPECT_EQ(ListsOf(document), "E: five three two one four A: sub");
  EXPECT_TRUE(document.MoveRecords(At(Texts{"E1", "E2"}), nullptr));
  EXPECT_EQ(ListsOf(document), "E: two one four five three A: sub");
  EXPECT_TRUE(document.MoveRecords(At(Texts{"E1", "E3"}), At("A1"))) << "to the end as well";
  EXPECT_EQ(ListsOf(document), "E: one five three two four A: sub");
  EXPECT_EQ(document.GetRecordID(document.GetEntityRecords()[1].get()), "E2");
}

TEST_F(SeveralRecordsTest, GoBeforeTheOneAmongThemThatTheyAreToGoBefore) {
  EXPECT_TRUE(document.MoveRecords(At(Texts{"E1", "E3", "E5"}), At("E3")));
  EXPECT_EQ(ListsOf(document), "E: two one five three four A: sub");
}

TEST_F(SeveralRecordsTest, AreDeletedTogether) {
  EXPECT_TRUE(document.DeleteRecords(At(Texts{"E5", "E1", "E3", "E1"})));
  EXPECT_EQ(ListsOf(document), "E: two four A: sub");
  EXPECT_EQ(At("E2")->GetDescription(), "four");
}

TEST_F(SeveralRecordsTest, AreOnlyEditedWhenAllAreInOneList) {
  CTNParserTemplate other(nullptr);
  const std::string before = ListsOf(document);
  for (const Records& records :
       {Records(), Records{nullptr}, Records{At("E1"), nullptr}, Records{At("E1"), At("A1")},
        Records{At("E1"), other.AddRecord(RecordKind::Part, "other")},
        Records{At("E1"), &document.GetCatchAllRecord()}}) {
    EXPECT_FALSE(document.DeleteRecords(records));
    EXPECT_FALSE(document.MoveRecords(records, nullptr));
    EXPECT_FALSE(document.MoveRecords(records, At("E5")));
  }
  EXPECT_EQ(ListsOf(document), before);
  EXPECT_EQ(document.GetErrorLog().GetAllLines(), Texts());
}

TEST_F(ParserTemplateTest, SubRecordFieldsOfADeletedRecordReadAsUnresolved) {
  AddRecord(document, RecordKind::SubRecord, "sub", {WholeNum()});
  AddRecord(document, RecordKind::SubRecord, "next", {Alpha()});
  CTNTemplateRecord& part =
      AddRecord(document, RecordKind::Part, "part", {SubRecord("A1"), SubRecord("A2"), Newline()});
  document.DeleteRecord(document.FindRecordByID("A1"));
  EXPECT_EQ(FieldOf(part, 1).GetSubRecord(), nullptr);
  EXPECT_EQ(FieldOf(part, 1).GetMatchValueText(), "??");
  EXPECT_EQ(FieldOf(part, 2).GetMatchValueText(), "A1");
  Relink(document);
  EXPECT_EQ(FieldOf(part, 1).GetSubRecord(), nullptr) << "the new A1 is another record";
}

// ------------------------------------------------------------------------------- identifiers

TEST_F(ParserTemplateTest, FindRecordByIDWithE2InLowerCaseFindsTheSecondEntityRecord) {
  document.AddRecord(RecordKind::Part, "one");
  const CTNTemplateRecord* two = document.AddRecord(RecordKind::Part, "two");
  const CTNTemplateRecord* aux = document.AddRecord(RecordKind::SubRecord, "aux");
  EXPECT_EQ(document.FindRecordByID("e2"), two);
  EXPECT_EQ(document.FindRecordByID("E2"), two);
  EXPECT_EQ(document.FindRecordByID("a1"), aux);
}

TEST_F(ParserTemplateTest, TextsThatAreNoIdentifierFindNothing) {
  document.AddRecord(RecordKind::Part, "one");
  for (const std::string_view id :
       {"", "E", "1", "E0", "E2", "A1", "E01", " E1", "E1 ", "E+1", "E-1", "EE1", "F1", "??",
        "E4294967297", "E18446744073709551617", "E1.", "unknown"}) {
    EXPECT_EQ(document.FindRecordByID(id), nullptr) << id;
  }
}

TEST_F(ParserTemplateTest, IdentifiersOfManyRecordsAreWrittenInDecimal) {
  const CTNTemplateRecord* last = nullptr;
  for (int i = 0; i < 123; ++i)
    last = document.AddRecord(RecordKind::MultipleMatch, "record");
  EXPECT_EQ(document.GetRecordID(last), "A123");
  EXPECT_EQ(document.FindRecordByID("a123"), last);
}

// ------------------------------------------------------------------------------- references

TEST_F(ParserTemplateTest, AFieldIsReferencedByExpressionsOfItsOwnRecordUnlessThatIsSkipped) {
  CTNTemplateRecord& part = AddRecord(document, RecordKind::Part, "part",
                                      {Alnum(), Alnum(), Newline()}, {Designator("F1")});
  EXPECT_TRUE(document.IsFieldReferenced(&FieldOf(part, 1), false));
  EXPECT_FALSE(document.IsFieldReferenced(&FieldOf(part, 1), true));
  EXPECT_FALSE(document.IsFieldReferenced(&FieldOf(part, 2), false));
  EXPECT_FALSE(document.IsFieldReferenced(nullptr, false));
  EXPECT_FALSE(document.IsFieldReferenced(nullptr, true));
}

TEST_F(ParserTemplateTest, AFieldIsReferencedByOtherRecordsThroughDotsAndSubRecords) {
  AddRecord(document, RecordKind::SingleMatch, "title", {Alnum(), Alnum(), Newline()});
  AddRecord(document, RecordKind::SubRecord, "inner", {WholeNum(), Alpha()},
            {{OutputTag::Size, "F1"}});
  AddRecord(document, RecordKind::SubRecord, "outer", {SubRecord("A2")});
  AddRecord(document, RecordKind::Part, "part", {SubRecord("A3"), Newline()},
            {Designator("A1.F2")});
  Relink(document);
  EXPECT_TRUE(document.IsFieldReferenced(&FieldOf(RecordOf(document, "A1"), 2), true));
  EXPECT_FALSE(document.IsFieldReferenced(&FieldOf(RecordOf(document, "A1"), 1), true));
  EXPECT_TRUE(document.IsFieldReferenced(&FieldOf(RecordOf(document, "A2"), 1), true));
  EXPECT_FALSE(document.IsFieldReferenced(&FieldOf(RecordOf(document, "A2"), 2), true));
}

// ------------------------------------------------------------------------------- parameters

TEST_F(ParserTemplateTest, OnlyTwoNamesAreTemplateAttributes) {
  for (const std::string_view name : {"TEMPL_UNITS", "templ_units", "TEMPL_SCALE", "Templ_Scale"}) {
    EXPECT_TRUE(CTNParserTemplate::IsTemplateAttributeName(name)) << name;
  }
  for (const std::string_view name :
       {"", "UNITS", "SCALE", "TEMPL_UNIT", "TEMPL_UNITSX", " TEMPL_UNITS", "TITLE"}) {
    EXPECT_FALSE(CTNParserTemplate::IsTemplateAttributeName(name)) << name;
    std::string text = "before";
    EXPECT_FALSE(document.GetTemplateAttribute(name, text)) << name;
    EXPECT_EQ(text, "before");
  }
}

TEST_F(ParserTemplateTest, AttributesAreTheUnitsNameAndTheScaleWithSixDecimals) {
  std::string text;
  EXPECT_TRUE(document.GetTemplateAttribute("TEMPL_UNITS", text));
  EXPECT_EQ(text, "Inch");
  EXPECT_TRUE(document.GetTemplateAttribute("templ_scale", text));
  EXPECT_EQ(text, "1.000000");
  const std::vector<std::pair<double, std::string>> scales = {
      {0.0, "0.000000"},
      {-2.5, "-2.500000"},
      {0.0000004, "0.000000"},
      {0.0000006, "0.000001"},
      {1234567.5, "1234567.500000"},
      {1e20, "100000000000000000000.000000"}};
  for (const auto& [scale, expected] : scales) {
    document.SetScaleFactor(scale);
    document.GetTemplateAttribute("TEMPL_SCALE", text);
    EXPECT_EQ(text, expected);
  }
}

TEST_F(ParserTemplateTest, UnitsHaveTheirNamesAndAnyOtherIndexTheEmptyOne) {
  const Texts names = {"Inch", "MM", "Mil"};
  for (std::int32_t units = 2; units >= 0; --units) {
    document.SetUnits(units);
    EXPECT_EQ(document.GetUnitsName(), names[static_cast<std::size_t>(units)]);
    EXPECT_EQ(document.GetUnits(), units);
  }
  for (const std::int32_t units : {3, -1, 1000000}) {
    document.SetUnits(units);
    EXPECT_EQ(document.GetUnitsName(), "");
    EXPECT_EQ(document.GetUnits(), units);
  }
}

TEST_F(ParserTemplateTest, AModificationIsToldAndEndsTheEmptyTemplate) {
  document.SetModified(ChangeKind::None);
  EXPECT_FALSE(context.stale);
  EXPECT_TRUE(document.IsEmptyTemplate());
  document.SetModified(ChangeKind::Modified);
  EXPECT_TRUE(document.IsModified());
  EXPECT_FALSE(document.IsEmptyTemplate());
  EXPECT_TRUE(context.stale);
  context.stale = false;
  document.SetModified(ChangeKind::None);
  EXPECT_FALSE(document.IsModified());
  EXPECT_FALSE(document.IsEmptyTemplate()) << "it was not emptied";
  EXPECT_FALSE(context.stale);
}

TEST_F(ParserTemplateTest, ClearingTheModifiedFlagTellsNobody) {
  document.SetModified(ChangeKind::Modified);
  context.stale = false;
  document.ClearModified();
  EXPECT_FALSE(document.IsModified());
  EXPECT_FALSE(context.stale);
}

TEST_F(ParserTemplateTest, ErrorsGoToTheEngineOrWithoutOneToTheOwnLog) {
  EXPECT_TRUE(document.ReportError("one", ErrorShown::Later));
  EXPECT_EQ(context.errors, Texts{"one"});
  EXPECT_EQ(document.GetErrorLog().GetAllLines(), Texts{});
  CTNParserTemplate alone(nullptr);
  EXPECT_TRUE(alone.ReportError("two", ErrorShown::AtOnce));
  EXPECT_EQ(alone.GetErrorLog().GetAllLines(), Texts{"two"});
}

TEST_F(ParserTemplateTest, AResetGivesTheErrorLogItsNameBack) {
  EXPECT_EQ(document.GetErrorLog().GetLogName(), "templerrs.log");
  document.GetErrorLog().AddMessage("error");
  document.GetErrorLog().ClearLog();
  EXPECT_EQ(document.GetErrorLog().GetLogName(), "");
  document.Init();
  EXPECT_EQ(document.GetErrorLog().GetLogName(), "templerrs.log");
}

TEST_F(ParserTemplateTest, WhoDropsTheContentKeepsTheErrorLog) {
  FillAndChange();
  document.DropContent();
  EXPECT_EQ(document.GetErrorLog().GetAllLines(), Texts{"error"});
  document.GetErrorLog().GetErrors().clear();
  ExpectNew(document);
}

TEST_F(ParserTemplateTest, TheFileNameIsThatOfThePath) {
  EXPECT_EQ(document.GetTemplateFileName(), "unsaved");
  document.SetFilePath("/some/where/a.b.xml");
  EXPECT_EQ(document.GetTemplateFileName(), "a.b.xml");
}

// ------------------------------------------------------------------------------- validation

TEST_F(ParserTemplateTest, AllRecordsAreValidatedEvenAfterAFailure) {
  CTNTemplateRecord* bad = document.AddRecord(RecordKind::UndefinedAuxiliary, "bad");
  CTNTemplateRecord* good = document.AddRecord(RecordKind::MultipleMatch, "good");
  CTNTemplateRecord* part = document.AddRecord(RecordKind::Part, "part");
  EXPECT_EQ(document.Validate(), 0);
  EXPECT_EQ(bad->GetStatusText(), "Invalid Record Type");
  EXPECT_EQ(good->IsValid(), 1);
  EXPECT_EQ(part->GetStatusText(),
            "Error: Record type Part requires output element with tag REF_DESIGNATOR\n"
            "Error: Record type Part requires output element with tag PART_NUMBER");
  EXPECT_EQ(document.IsValid(), 0);
  document.DeleteRecord(bad);
  document.DeleteRecord(part);
  EXPECT_EQ(document.Validate(), 1);
  EXPECT_EQ(document.IsValid(), 1);
}

TEST_F(ParserTemplateTest, AuxiliaryRecordsAreValidatedBeforeEntityRecords) {
  // The part is found valid at once although the record that it names was invalid before.
  CTNTemplateRecord& title =
      AddRecord(document, RecordKind::SingleMatch, "title", {Alnum(), Newline()});
  AddRecord(document, RecordKind::Part, "part", {Alnum(), Newline()},
            {Designator("A1"), PartNumber()});
  title.SetValid(0);
  EXPECT_EQ(document.Validate(), 1);
}

TEST_F(ParserTemplateTest, AnEmptyTemplateIsValid) { EXPECT_EQ(document.Validate(), 1); }

// ------------------------------------------------------------------------------- out of memory

/// Identifiers, descriptions, patterns and expressions of all records.
Texts ContentOf(const CTNParserTemplate& document) {
  Texts content;
  for (const auto* list : {&document.GetEntityRecords(), &document.GetAuxiliaryRecords()}) {
    for (const auto& record : *list) {
      content.push_back(record->GetRecordId() + ' ' + record->GetDescription());
      for (const auto& field : record->GetInputFields()) {
        content.push_back(std::string(field->GetTypeName()) + ' ' + field->GetMatchValueText());
      }
      for (const auto& element : record->GetOutputFields()) {
        content.push_back(std::string(element->GetTagText()) + " := " + element->GetExpression());
      }
    }
  }
  return content;
}

/// Nine single-match records, and two records whose expressions need more room when A9 becomes A10.
struct NineRecords {
  CTNParserTemplate document{nullptr};

  NineRecords() {
    for (int i = 1; i <= 9; ++i) {
      AddRecord(document, RecordKind::SingleMatch, "title " + std::to_string(i),
                {Alpha("a value that is long"), Newline()}, {{OutputTag::Text, "F1"}});
    }
    for (const char* name : {"a part", "another part"}) {
      AddRecord(document, RecordKind::Part, name, {Alnum(), SubRecord("E1"), Newline()},
                {Designator("A9 A9 A9 A9 A9"), PartNumber("A9.F1+A9.F1+A1"), None("A1 E2.F1")});
    }
  }
};

/// Lets every allocation of the edit fail in turn. An edit that tells a failure must have left
/// everything as it was and have reported it, one that does not must have done all of it.
template <class Edit>
void ExpectEditSurvivesFailures(Edit edit) {
  NineRecords undisturbed;
  const Texts before = ContentOf(undisturbed.document);
  ASSERT_TRUE(edit(undisturbed.document));
  const Texts after = ContentOf(undisturbed.document);
  ASSERT_NE(before, after);
  int told = 0;
  ForEveryAllocation([&](std::int64_t granted) {
    NineRecords records;
    bool done = false;
    const bool failed = FailsAfter(granted, [&] { done = edit(records.document); });
    EXPECT_EQ(ContentOf(records.document), done ? after : before) << granted;
    const Texts log = records.document.GetErrorLog().GetAllLines();
    for (const std::string& line : log)
      EXPECT_EQ(line, XmlStatusText(kXmlOutOfMemory));
    if (!done) {
      ++told;
      EXPECT_NE(log, Texts());
    }
    EXPECT_TRUE(done || failed);
    return failed;
  });
  EXPECT_GT(told, 0);
}

TEST(ParserTemplateWithoutMemory, AddingARecordIsReportedAndChangesNothing) {
  constexpr std::string_view kDescription = "a description that needs memory";
  ExpectEditSurvivesFailures([kDescription](CTNParserTemplate& document) {
    return document.AddRecord(RecordKind::SubRecord, kDescription) != nullptr;
  });
  ExpectEditSurvivesFailures([kDescription](CTNParserTemplate& document) {
    return document.AddRecord(RecordKind::SubRecord, kDescription, document.FindRecordByID("A1")) !=
           nullptr;
  });
}

TEST(ParserTemplateWithoutMemory, CopyingARecordIsReportedAndChangesNothing) {
  ExpectEditSurvivesFailures([](CTNParserTemplate& document) {
    return document.AddRecordCopy(*document.FindRecordByID("E1")) != nullptr;
  });
  NineRecords other;
  ExpectEditSurvivesFailures([&other](CTNParserTemplate& document) {
    return document.AddRecordCopy(*other.document.FindRecordByID("E1")) != nullptr;
  });
}

TEST(ParserTemplateWithoutMemory, DeletingARecordIsReportedAndChangesNothing) {
  for (const char* id : {"A1", "A9", "E1"}) {
    ExpectEditSurvivesFailures([id](CTNParserTemplate& document) {
      return document.DeleteRecord(document.FindRecordByID(id));
    });
  }
}

TEST(ParserTemplateWithoutMemory, MovingARecordIsReportedAndChangesNothing) {
  ExpectEditSurvivesFailures([](CTNParserTemplate& document) {
    return document.MoveRecord(document.FindRecordByID("A9"), document.FindRecordByID("A1"));
  });
  ExpectEditSurvivesFailures([](CTNParserTemplate& document) {
    return document.MoveRecord(document.FindRecordByID("A1"), nullptr);
  });
}

class ParserTemplateLocaleTest : public CommaLocaleTest {};

TEST_F(ParserTemplateLocaleTest, TheScaleAttributeHasAPointUnderAnyLocale) {
  CTNParserTemplate document(nullptr);
  document.SetScaleFactor(25.4);
  std::string text;
  ASSERT_TRUE(document.GetTemplateAttribute("TEMPL_SCALE", text));
  EXPECT_EQ(text, "25.400000");
}

}  // namespace
}  // namespace bomparser
