#include "template/CTNParserTemplate.h"
#include "template/CTNTemplRecInField.h"
#include "template/CTNTemplateRecord.h"
#include "tests/support/TemplateBuilder.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {
namespace {

using namespace test;

using Texts = std::vector<std::string>;

std::string Flag(bool flag) { return CTNTemplRecInField::FlagText(flag); }

/// "STRING required=TRUE case=FALSE repeat=FALSE length=-1 values=[A|B]"
std::string Shown(const CTNTemplRecInField& field) {
  return std::string(field.GetTypeName()) + " required=" + Flag(field.IsRequired()) +
         " case=" + Flag(field.IsCaseSensitive()) + " repeat=" + Flag(field.IsRepeatable()) +
         " length=" + std::to_string(field.GetMatchLength()) + " values=[" +
         field.GetMatchValueText() + "]";
}

/// What validation says of a field: its message, or "valid".
std::string Verdict(CTNTemplRecInField& field) {
  const std::int32_t valid = field.Validate();
  EXPECT_EQ(valid, field.IsValid());
  EXPECT_EQ(valid == 1, field.GetStatusText().empty());
  return valid != 0 ? "valid" : field.GetStatusText();
}

/// Reads a field from the text of its element.
std::unique_ptr<CTNTemplRecInField> Loaded(CTNTemplateRecord* parent, const std::string& xml) {
  auto field = std::make_unique<CTNTemplRecInField>(parent);
  EXPECT_EQ(field->Load(xml), kXmlOk) << xml;
  field->FixUpAfterLoad();
  return field;
}

class InFieldTest : public testing::Test {
 protected:
  CTNTemplRecInField& Add(const FieldSpec& spec) { return AddField(*record, spec); }
  std::string VerdictOf(const FieldSpec& spec) { return Verdict(Add(spec)); }
  static CTNTemplateRecord& Sub(CTNParserTemplate& document,
                                RecordKind kind = RecordKind::SubRecord) {
    return AddRecord(document, kind, "sub", {Alpha(), Newline()});
  }

  CTNParserTemplate document{nullptr};
  CTNTemplateRecord* record = document.AddRecord(RecordKind::MultipleMatch, "own");  // A1
};

// ------------------------------------------------------------------------------- defaults

TEST_F(InFieldTest, ANewFieldIsRequiredUndefinedAndWithoutLength) {
  const CTNTemplRecInField field(record);
  EXPECT_EQ(Shown(field), "UNDEFINED required=TRUE case=FALSE repeat=FALSE length=-1 values=[]");
  EXPECT_EQ(field.GetType(), FieldKind::Undefined);
  EXPECT_EQ(field.GetSubRecord(), nullptr);
  EXPECT_EQ(field.GetParentRecord(), record);
  EXPECT_EQ(field.GetCurrentValue(), "");
  EXPECT_EQ(field.GetStatusText(), "");
  EXPECT_EQ(field.IsValid(), 1);
}

TEST_F(InFieldTest, InitResetsEverythingButTheParent) {
  Sub(document);
  CTNTemplRecInField& field = Add(Optional(SubRecord("A2")));
  field.SetCurrentValue("x");
  field.SetCaseSensitive(true);
  field.SetMatchLength(7);
  field.Validate();
  EXPECT_EQ(field.Init(), 1);
  EXPECT_EQ(Shown(field), "UNDEFINED required=TRUE case=FALSE repeat=FALSE length=-1 values=[]");
  EXPECT_EQ(field.GetSubRecord(), nullptr);
  EXPECT_EQ(field.GetCurrentValue(), "");
  EXPECT_EQ(field.GetStatusText(), "");
  EXPECT_EQ(field.GetParentRecord(), record);
}

TEST_F(InFieldTest, SettersStoreAndDoNotValidate) {
  CTNTemplRecInField& field = Add(Field(FieldKind::Space));
  field.SetRequired(false);
  field.SetCaseSensitive(true);
  field.SetRepeatable(true);
  field.SetMatchLength(9);
  field.SetMatchValueText("A");
  EXPECT_EQ(Shown(field), "SPACE required=FALSE case=TRUE repeat=TRUE length=9 values=[]");
  EXPECT_EQ(field.IsValid(), 1);
  EXPECT_EQ(field.GetStatusText(), "");
}

TEST_F(InFieldTest, TheCurrentValueIsStoredAsItIs) {
  CTNTemplRecInField field(record);
  EXPECT_EQ(field.SetCurrentValue(" R1 "), 1);
  EXPECT_EQ(field.GetCurrentValue(), " R1 ");
}

TEST_F(InFieldTest, FlagsReadTrueAndFalse) {
  EXPECT_EQ(Flag(true), "TRUE");
  EXPECT_EQ(Flag(false), "FALSE");
}

// ------------------------------------------------------------------------------- SetType

TEST_F(InFieldTest, SetTypeClearsWhatTheTypeDoesNotAllow) {
  struct Row {
    FieldKind kind;
    std::string_view shown;
  };
  const Row rows[] = {
      {FieldKind::String, "STRING required=FALSE case=TRUE repeat=FALSE length=-1 values=[A|B]"},
      {FieldKind::Column, "COLUMN required=FALSE case=FALSE repeat=FALSE length=5 values=[]"},
      {FieldKind::Alphanumeric,
       "ALPHANUMERIC required=FALSE case=TRUE repeat=FALSE length=5 values=[A|B]"},
      {FieldKind::Alpha, "ALPHA required=FALSE case=TRUE repeat=FALSE length=5 values=[A|B]"},
      {FieldKind::WholeNum,
       "WHOLE_NUM required=FALSE case=FALSE repeat=FALSE length=5 values=[A|B]"},
      {FieldKind::DecimalNum,
       "DECIMAL_NUM required=FALSE case=FALSE repeat=FALSE length=5 values=[A|B]"},
      {FieldKind::Space, "SPACE required=FALSE case=FALSE repeat=FALSE length=-1 values=[]"},
      {FieldKind::Tab, "TAB required=FALSE case=FALSE repeat=FALSE length=-1 values=[]"},
      {FieldKind::WhtSpace, "WHTSPACE required=FALSE case=FALSE repeat=FALSE length=5 values=[]"},
      {FieldKind::NotWhtSpace,
       "NOT_WHTSPACE required=FALSE case=FALSE repeat=FALSE length=5 values=[]"},
      {FieldKind::Newline, "NEWLINE required=FALSE case=FALSE repeat=FALSE length=-1 values=[]"},
      {FieldKind::ScanToNext,
       "SCAN_TO_NEXT required=FALSE case=FALSE repeat=FALSE length=5 values=[]"},
      {FieldKind::SubRecord,
       "SUBRECORD required=FALSE case=FALSE repeat=TRUE length=-1 values=[A|B]"},
      {FieldKind::Undefined,
       "UNDEFINED required=FALSE case=FALSE repeat=FALSE length=-1 values=[A|B]"},
  };
  for (const Row& row : rows) {
    CTNTemplRecInField field(record);
    field.SetMatchValueText("A|B");
    field.SetRequired(false);
    field.SetCaseSensitive(true);
    field.SetRepeatable(true);
    field.SetMatchLength(5);
    field.SetType(row.kind);
    EXPECT_EQ(field.GetType(), row.kind);
    EXPECT_EQ(Shown(field), row.shown);
  }
}

TEST_F(InFieldTest, SetTypeTurnsANegativeLengthIntoZeroWhereALengthIsAllowed) {
  for (int code = -1; code <= 12; ++code) {
    CTNTemplRecInField field(record);
    field.SetMatchLength(-4);
    field.SetType(static_cast<FieldKind>(code));
    const bool allowed = CTNTemplRecInField::AllowsMatchLength(static_cast<FieldKind>(code));
    EXPECT_EQ(field.GetMatchLength(), allowed ? 0 : -1) << code;
  }
}

TEST_F(InFieldTest, FromStringToWholeNumKeepsTheMatchValuesAndClearsCaseSensitivity) {
  CTNTemplRecInField& field = Add(CaseSensitive(String("12|13")));
  field.SetType(FieldKind::WholeNum);
  EXPECT_EQ(Shown(field),
            "WHOLE_NUM required=TRUE case=FALSE repeat=FALSE length=0 values=[12|13]");
}

TEST_F(InFieldTest, FromStringToSpaceClearsTheMatchValuesAndTheMatchLength) {
  CTNTemplRecInField& field = Add(String("12|13"));
  field.SetMatchLength(3);
  field.SetType(FieldKind::Space);
  EXPECT_EQ(Shown(field), "SPACE required=TRUE case=FALSE repeat=FALSE length=-1 values=[]");
  field.SetType(FieldKind::String);
  EXPECT_EQ(field.GetMatchValueText(), "") << "they are gone, not hidden";
}

TEST_F(InFieldTest, FromSubRecordToAnyOtherTypeClearsRepeatableAndBackSetsIt) {
  for (int code = -1; code <= 11; ++code) {
    CTNTemplRecInField field(record);
    field.SetType(FieldKind::SubRecord);
    EXPECT_TRUE(field.IsRepeatable());
    field.SetType(static_cast<FieldKind>(code));
    EXPECT_FALSE(field.IsRepeatable()) << code;
    field.SetType(FieldKind::SubRecord);
    EXPECT_TRUE(field.IsRepeatable()) << code;
  }
}

TEST_F(InFieldTest, AStringWithoutMatchValuesTakesItsCurrentValue) {
  CTNTemplRecInField field(record);
  field.SetCurrentValue("RefDes");
  field.SetType(FieldKind::String);
  EXPECT_EQ(field.GetMatchValueText(), "RefDes");
}

TEST_F(InFieldTest, AStringWithMatchValuesKeepsThemWhateverItsCurrentValue) {
  CTNTemplRecInField field(record);
  field.SetMatchValueText("A");
  field.SetCurrentValue("RefDes");
  field.SetType(FieldKind::String);
  EXPECT_EQ(field.GetMatchValueText(), "A");
}

TEST_F(InFieldTest, OnlyAStringTakesItsCurrentValue) {
  for (int code = -1; code <= 12; ++code) {
    CTNTemplRecInField field(record);
    field.SetCurrentValue("7");
    field.SetType(static_cast<FieldKind>(code));
    EXPECT_EQ(field.GetMatchValueText(), code == 0 ? "7" : "") << code;
  }
}

TEST_F(InFieldTest, BecomingASubRecordLinksTheRecordThatTheTextNames) {
  CTNTemplateRecord& sub = Sub(document);
  CTNTemplRecInField& field = Add(String("a2"));
  field.SetType(FieldKind::SubRecord);
  EXPECT_EQ(field.GetSubRecord(), &sub);
  EXPECT_EQ(field.GetMatchValueText(), "A2");
  field.SetType(FieldKind::Alpha);
  EXPECT_EQ(field.GetSubRecord(), nullptr);
}

// ------------------------------------------------------------------------------- match values

TEST_F(InFieldTest, MatchValuesAreSplitAtBarsAndEmptyPiecesAreDropped) {
  const std::pair<std::string_view, Texts> rows[] = {
      {"", {}},
      {"|", {}},
      {"|||", {}},
      {"A", {"A"}},
      {"A|B", {"A", "B"}},
      {"|A||B|", {"A", "B"}},
      {" | ", {" ", " "}},
      {"\\|A", {"\\", "A"}},
  };
  for (const auto& [text, values] : rows) {
    CTNTemplRecInField& field = Add(String(text));
    EXPECT_EQ(field.GetMatchValues(), values) << text;
    EXPECT_EQ(field.HasMatchValues(), !values.empty()) << text;
    EXPECT_EQ(field.GetMatchValueText(), text) << "as it was entered";
  }
}

TEST_F(InFieldTest, AMatchValueIsComparedWithCaseOnlyWhenTheFieldSaysSo) {
  CTNTemplRecInField& field = Add(String("Ab|cD"));
  EXPECT_TRUE(field.IsMatchValue("AB"));
  EXPECT_TRUE(field.IsMatchValue("cd"));
  EXPECT_FALSE(field.IsMatchValue("Ab|cD"));
  EXPECT_FALSE(field.IsMatchValue("A"));
  EXPECT_FALSE(field.IsMatchValue(""));
  field.SetCaseSensitive(true);
  EXPECT_TRUE(field.IsMatchValue("Ab"));
  EXPECT_FALSE(field.IsMatchValue("AB"));
}

TEST_F(InFieldTest, TheMatchValueTextOfTypesWithoutMatchValuesIsEmpty) {
  for (const int code : {1, 6, 7, 8, 9, 10, 11}) {
    CTNTemplRecInField& field = Add(Field(static_cast<FieldKind>(code), "A"));
    EXPECT_EQ(field.GetMatchValueText(), "") << code;
    EXPECT_EQ(field.GetMatchValues(), Texts{"A"}) << "there to be complained about";
  }
}

TEST_F(InFieldTest, AddMatchValueAppendsWithABarAndSetsTheCaseFlag) {
  CTNTemplRecInField& field = Add(String(""));
  field.AddMatchValue("A", true);
  EXPECT_EQ(Shown(field), "STRING required=TRUE case=TRUE repeat=FALSE length=-1 values=[A]");
  field.AddMatchValue("B", false);
  EXPECT_EQ(Shown(field), "STRING required=TRUE case=FALSE repeat=FALSE length=-1 values=[A|B]");
  field.AddMatchValue("", true);
  EXPECT_EQ(Shown(field), "STRING required=TRUE case=TRUE repeat=FALSE length=-1 values=[A|B|]");
}

TEST_F(InFieldTest, AddMatchValuePutsNoBarWhereTheTypeShowsNoValues) {
  CTNTemplRecInField& field = Add(Field(FieldKind::Tab, "A"));
  field.AddMatchValue("B", false);
  EXPECT_EQ(field.GetMatchValues(), Texts{"AB"});
}

TEST_F(InFieldTest, AddMatchValueLinksASubRecord) {
  CTNTemplateRecord& sub = Sub(document);
  CTNTemplRecInField& field = Add(SubRecord(""));
  field.AddMatchValue("a2", false);
  EXPECT_EQ(field.GetSubRecord(), &sub);
  field.AddMatchValue("A1", false);
  EXPECT_EQ(field.GetSubRecord(), &sub) << "two identifiers name no record";
  EXPECT_EQ(field.GetMatchValueText(), "A2");
}

TEST_F(InFieldTest, ATextThatNamesNoRecordLeavesTheLinkInPlace) {
  CTNTemplateRecord& sub = Sub(document);
  CTNTemplRecInField& field = Add(SubRecord("A2"));
  for (const std::string_view text : {"A9", "", "??", "A02", "A2 ", "F1"}) {
    field.SetMatchValueText(text);
    EXPECT_EQ(field.GetSubRecord(), &sub) << text;
    EXPECT_EQ(field.GetMatchValueText(), "A2") << text;
  }
}

TEST_F(InFieldTest, AnUnlinkedSubRecordShowsItsTextAsEntered) {
  CTNTemplRecInField& field = Add(SubRecord("a9"));
  EXPECT_EQ(field.GetMatchValueText(), "a9");
  EXPECT_EQ(field.GetSubRecord(), nullptr);
}

TEST_F(InFieldTest, TheMatchValueOfASubRecordFollowsItsRecord) {
  CTNTemplateRecord& sub = Sub(document);
  CTNTemplRecInField& field = Add(SubRecord("A2"));
  ASSERT_TRUE(document.MoveRecord(&sub, record));
  EXPECT_EQ(field.GetMatchValueText(), "A1");
  EXPECT_EQ(field.GetMatchValues(), Texts{"A1"});
  EXPECT_TRUE(field.IsMatchValue("a1"));
  EXPECT_FALSE(field.IsMatchValue("A2"));
  EXPECT_EQ(field.ResolveSubRecord(), &sub) << "looked up by what it is called now";
  field.SetType(FieldKind::SubRecord);
  EXPECT_EQ(field.GetSubRecord(), &sub);
}

TEST_F(InFieldTest, WithoutATemplateNoSubRecordIsFound) {
  CTNTemplRecInField field(nullptr);
  field.SetType(FieldKind::SubRecord);
  field.SetMatchValueText("A1");
  EXPECT_EQ(field.GetSubRecord(), nullptr);
  EXPECT_EQ(field.ResolveSubRecord(), nullptr);
  EXPECT_FALSE(field.IsValidMatchValue("A1"));
}

// ------------------------------------------------------------------------------- valid values

TEST_F(InFieldTest, AMatchValueMustReadAsTheFieldsType) {
  struct Row {
    FieldKind kind;
    std::string_view value;
    bool valid;
  };
  const Row rows[] = {
      {FieldKind::WholeNum, "12", true},      {FieldKind::WholeNum, "12a", false},
      {FieldKind::WholeNum, "-12", true},     {FieldKind::WholeNum, "+12", true},
      {FieldKind::WholeNum, "+", false},      {FieldKind::WholeNum, "a", false},
      {FieldKind::DecimalNum, "3.5", true},   {FieldKind::DecimalNum, "3,5", true},
      {FieldKind::DecimalNum, "3", false},    {FieldKind::DecimalNum, "3.5.1", false},
      {FieldKind::Alpha, "abc", true},        {FieldKind::Alpha, "ab1", false},
      {FieldKind::Alphanumeric, "ab1", true}, {FieldKind::Alphanumeric, "ab-1", false},
      {FieldKind::String, "ab-1 \t", true},   {FieldKind::String, "\n", true},
  };
  for (const Row& row : rows) {
    CTNTemplRecInField& field = Add(Field(row.kind));
    EXPECT_EQ(field.IsValidMatchValue(row.value), row.valid)
        << field.GetTypeName() << ' ' << row.value;
    EXPECT_EQ(field.GetMatchValueText(), "") << "asking changes nothing";
    EXPECT_EQ(field.GetCurrentValue(), "");
  }
}

TEST_F(InFieldTest, EveryPieceOfAMatchValueMustReadAsTheType) {
  CTNTemplRecInField& field = Add(WholeNum());
  EXPECT_TRUE(field.IsValidMatchValue("12|13"));
  EXPECT_TRUE(field.IsValidMatchValue("|12||"));
  EXPECT_FALSE(field.IsValidMatchValue("12|x"));
}

TEST_F(InFieldTest, ACaseSensitiveFieldReadsItsOwnValues) {
  EXPECT_TRUE(Add(CaseSensitive(Alpha())).IsValidMatchValue("aB"));
}

TEST_F(InFieldTest, TypesWithoutMatchValuesHaveNoValidOne) {
  for (const int code : {1, 6, 7, 8, 9, 10, 11}) {
    CTNTemplRecInField& field = Add(Field(static_cast<FieldKind>(code)));
    EXPECT_FALSE(field.IsValidMatchValue(" ")) << code;
    EXPECT_FALSE(field.IsValidMatchValue("")) << code;
  }
}

TEST_F(InFieldTest, OfASubRecordItsOwnValueIsExaminedWhateverIsAsked) {
  Sub(document);
  EXPECT_TRUE(Add(SubRecord("A2")).IsValidMatchValue("nonsense"));
  EXPECT_FALSE(Add(SubRecord("A9")).IsValidMatchValue("A2"));
  EXPECT_FALSE(Add(SubRecord("")).IsValidMatchValue("A2"));
  EXPECT_FALSE(Add(SubRecord("A1|A2")).IsValidMatchValue("A2"));
}

// ------------------------------------------------------------------------------- validation

constexpr char kNoParent[] =
    "Internal Error: No parent record specified. \n"
    "Please report error to your Tandrel support representative.";

TEST_F(InFieldTest, AFieldWithoutAKnownTypeIsInvalid) {
  CTNTemplRecInField field(nullptr);
  EXPECT_EQ(Verdict(field), "Error: Invalid field type") << "told before the missing parent";
  field.SetType(static_cast<FieldKind>(13));
  EXPECT_EQ(Verdict(field), "Error: Invalid field type");
}

TEST_F(InFieldTest, AFieldWithoutAParentRecordIsInvalid) {
  CTNTemplRecInField field(nullptr);
  field.SetType(FieldKind::SubRecord);
  EXPECT_EQ(Verdict(field), kNoParent) << "told before the missing sub-record";
}

TEST_F(InFieldTest, ASubRecordFieldNeedsARecord) {
  const std::string text =
      "Error: Field type SUBRECORD requires valid record number in match value column";
  EXPECT_EQ(VerdictOf(SubRecord("")), text);
  EXPECT_EQ(VerdictOf(SubRecord("A9")), text);
  EXPECT_EQ(VerdictOf(SubRecord("A1|A1")), text);
}

TEST_F(InFieldTest, ASubRecordFieldCannotNameASingleMatchRecord) {
  Sub(document, RecordKind::SingleMatch);
  EXPECT_EQ(VerdictOf(SubRecord("A2")),
            "Error: Cannot use a single-match type record as sub-record");
}

TEST_F(InFieldTest, ASubRecordFieldThatNamesItsOwnSingleMatchRecordIsToldOfTheType) {
  record->SetType(RecordKind::SingleMatch);
  EXPECT_EQ(VerdictOf(SubRecord("A1")),
            "Error: Cannot use a single-match type record as sub-record");
}

TEST_F(InFieldTest, ASubRecordFieldCannotNameItsOwnRecord) {
  record->SetValid(0);
  EXPECT_EQ(VerdictOf(SubRecord("A1")),
            "Error: Sub-record type input field cannot specify\n"
            "its own record ID in match value column")
      << "told before the record's state";
}

TEST_F(InFieldTest, ASubRecordFieldCannotNameAnInvalidRecord) {
  Sub(document).SetValid(0);
  EXPECT_EQ(VerdictOf(SubRecord("a2")),
            "Error: Template record A2 specified in match value column\nis in an invalid state");
}

TEST_F(InFieldTest, ASubRecordFieldMayNameAnyOtherValidRecord) {
  Sub(document);
  Sub(document, RecordKind::MultipleMatch);
  AddRecord(document, RecordKind::Drill, "", {Newline()},
            {{OutputTag::TCode, "1"},
             {OutputTag::Diameter, "1"},
             {OutputTag::Scale, "1"},
             {OutputTag::Units, "MM"}});
  for (const std::string_view id : {"A2", "A3", "E1"})
    EXPECT_EQ(VerdictOf(SubRecord(id)), "valid") << id;
}

TEST_F(InFieldTest, TheFirstValueThatDoesNotReadAsTheTypeIsTold) {
  EXPECT_EQ(VerdictOf(WholeNum("12|12a|x")),
            "Error: \"12a\" is not a valid match value for field type WHOLE_NUM");
  EXPECT_EQ(VerdictOf(DecimalNum("3")),
            "Error: \"3\" is not a valid match value for field type DECIMAL_NUM");
  EXPECT_EQ(VerdictOf(Alpha("a1")),
            "Error: \"a1\" is not a valid match value for field type ALPHA");
  EXPECT_EQ(VerdictOf(Alnum("a-")),
            "Error: \"a-\" is not a valid match value for field type ALPHANUMERIC");
}

TEST_F(InFieldTest, AStringNeedsAMatchValue) {
  const std::string text = "Error: Field type STRING requires at least one match value";
  EXPECT_EQ(VerdictOf(String("")), text);
  EXPECT_EQ(VerdictOf(String("|")), text) << "a lonely bar is no match value";
}

TEST_F(InFieldTest, OtherTypesNeedNoMatchValue) {
  for (const auto& spec : {Alnum(), Alpha(), WholeNum(), DecimalNum(), Alnum("|")})
    EXPECT_EQ(VerdictOf(spec), "valid");
}

TEST_F(InFieldTest, AColumnOfLengthZeroIsInvalid) {
  EXPECT_EQ(VerdictOf(Column(0)),
            "Error: Invalid match length (0) specified for field type COLUMN");
}

TEST_F(InFieldTest, AColumnOfLengthMinusOneIsInvalid) {
  CTNTemplRecInField& field = Add(Column(3));
  EXPECT_EQ(Verdict(field), "valid");
  field.SetMatchLength(-1);
  EXPECT_EQ(Verdict(field), "Error: Invalid match length (-1) specified for field type COLUMN");
}

TEST_F(InFieldTest, ANegativeLengthIsInvalidWhereALengthIsAllowed) {
  for (const int code : {2, 3, 4, 5, 8, 9, 11}) {
    CTNTemplRecInField& field = Add(Field(static_cast<FieldKind>(code)));
    EXPECT_EQ(Verdict(field), "valid") << "length 0";
    field.SetMatchLength(25);
    EXPECT_EQ(Verdict(field), "valid") << "a length that is not used";
    field.SetMatchLength(-7);
    EXPECT_EQ(Verdict(field), "Error: Invalid match length (-7) specified for field type " +
                                  std::string(field.GetTypeName()));
  }
}

TEST_F(InFieldTest, MatchValuesAreAnErrorWhereTheTypeAllowsNone) {
  for (const int code : {6, 7, 8, 9, 10, 11}) {
    CTNTemplRecInField& field = Add(Field(static_cast<FieldKind>(code), "A"));
    EXPECT_EQ(Verdict(field), "Error: Field type " + std::string(field.GetTypeName()) +
                                  " does not allow match values");
  }
}

TEST_F(InFieldTest, AColumnIsToldOfItsLengthBeforeItsMatchValues) {
  CTNTemplRecInField& field = Add(Field(FieldKind::Column, "A"));
  EXPECT_EQ(Verdict(field), "Error: Invalid match length (0) specified for field type COLUMN");
  field.SetMatchLength(2);
  EXPECT_EQ(Verdict(field), "Error: Field type COLUMN does not allow match values");
}

TEST_F(InFieldTest, AMatchLengthIsAnErrorWhereTheTypeAllowsNone) {
  Sub(document);
  for (const auto& spec : {String("A"), Space(), Tab(), Newline(), SubRecord("A2")}) {
    CTNTemplRecInField& field = Add(spec);
    EXPECT_EQ(Verdict(field), "valid");
    field.SetMatchLength(0);
    EXPECT_EQ(Verdict(field),
              "Error: Match length not valid for field type " + std::string(field.GetTypeName()));
  }
}

TEST_F(InFieldTest, MatchValuesAreToldBeforeAForbiddenLength) {
  CTNTemplRecInField& field = Add(Field(FieldKind::Space, "A"));
  field.SetMatchLength(1);
  EXPECT_EQ(Verdict(field), "Error: Field type SPACE does not allow match values");
}

TEST_F(InFieldTest, AMendedFieldLosesItsMessage) {
  CTNTemplRecInField& field = Add(String(""));
  EXPECT_NE(Verdict(field), "valid");
  field.SetMatchValueText("A");
  EXPECT_EQ(Verdict(field), "valid");
}

// ------------------------------------------------------------------------------- copying

TEST_F(InFieldTest, CopyFromTakesOverEverything) {
  CTNTemplateRecord& sub = Sub(document);
  CTNTemplRecInField& source = Add(Optional(SubRecord("A2")));
  source.SetRepeatable(false);
  source.SetCurrentValue("value");
  source.SetStatusText("status");
  source.SetValid(0);
  CTNTemplRecInField copy(nullptr);
  copy.CopyFrom(source);
  EXPECT_EQ(Shown(copy), "SUBRECORD required=FALSE case=FALSE repeat=FALSE length=-1 values=[A2]");
  EXPECT_EQ(copy.GetSubRecord(), &sub);
  EXPECT_EQ(copy.GetParentRecord(), record);
  EXPECT_EQ(copy.GetCurrentValue(), "value");
  EXPECT_EQ(copy.GetStatusText(), "status");
  EXPECT_EQ(copy.IsValid(), 0);
}

TEST_F(InFieldTest, CopyFromKeepsWhatTheTypeWouldHaveCleared) {
  CTNTemplRecInField& source = Add(WholeNum("1|2"));
  source.SetCaseSensitive(true);
  source.SetRepeatable(true);
  source.SetMatchLength(-5);
  CTNTemplRecInField copy(nullptr);
  copy.CopyFrom(source);
  EXPECT_EQ(Shown(copy), "WHOLE_NUM required=TRUE case=TRUE repeat=TRUE length=-5 values=[1|2]");
}

TEST_F(InFieldTest, ACopyIsIndependentOfItsSource) {
  CTNTemplRecInField& source = Add(String("A"));
  CTNTemplRecInField copy(nullptr);
  copy.CopyFrom(source);
  copy.SetMatchValueText("B");
  copy.SetRequired(false);
  EXPECT_EQ(Shown(source), "STRING required=TRUE case=FALSE repeat=FALSE length=-1 values=[A]");
}

TEST_F(InFieldTest, ALinkOfTheTargetHasNoSayInACopy) {
  Sub(document);
  CTNTemplRecInField copy(record);
  copy.SetType(FieldKind::SubRecord);
  copy.SetMatchValueText("A2");
  copy.CopyFrom(Add(String("text")));
  EXPECT_EQ(Shown(copy), "STRING required=TRUE case=FALSE repeat=FALSE length=-1 values=[text]");
  copy.SetType(FieldKind::SubRecord);
  copy.SetMatchValueText("A2");
  copy.CopyFrom(Add(SubRecord("A9")));
  EXPECT_EQ(copy.GetMatchValueText(), "A9");
  EXPECT_EQ(copy.GetSubRecord(), nullptr);
}

TEST_F(InFieldTest, AFieldCanBeCopiedFromItself) {
  CTNTemplateRecord& sub = Sub(document);
  CTNTemplRecInField& field = Add(SubRecord("A2"));
  field.CopyFrom(field);
  EXPECT_EQ(field.GetSubRecord(), &sub);
}

// ------------------------------------------------------------------------------- deleted records

constexpr char kUnresolved[] =
    "Error: Field type SUBRECORD requires valid record number in match value column";

TEST_F(InFieldTest, ASubRecordThatIsDeletedReadsAsUnresolvedAndNeverMeansANewcomer) {
  CTNTemplateRecord& sub = Sub(document);
  CTNTemplRecInField& field = Add(SubRecord("A2"));
  document.DeleteRecord(&sub);
  EXPECT_EQ(field.GetSubRecord(), nullptr);
  EXPECT_EQ(field.GetMatchValueText(), "??");
  EXPECT_EQ(Verdict(field), kUnresolved);
  Sub(document);
  EXPECT_EQ(field.ResolveSubRecord(), nullptr);
  field.SetType(FieldKind::SubRecord);
  EXPECT_EQ(field.GetMatchValueText(), "??");
  EXPECT_EQ(Verdict(field), kUnresolved);
}

TEST_F(InFieldTest, ASubRecordThatIsDeletedStaysUnresolvedAfterSavingAndLoading) {
  document.DeleteRecord(record);
  CTNTemplateRecord& sub = Sub(document);  // A1
  AddRecord(document, RecordKind::MultipleMatch, "user", {SubRecord("A1"), Newline()});
  document.DeleteRecord(&sub);
  std::string xml;
  ASSERT_EQ(document.GetXml(xml), kXmlOk);
  CTNParserTemplate loaded(nullptr);
  ASSERT_EQ(loaded.LoadFromXml(xml), kXmlOk);
  ASSERT_EQ(loaded.GetAuxiliaryRecords().size(), 1u);
  const CTNTemplRecInField& field = *loaded.GetAuxiliaryRecords()[0]->GetInputFields()[0];
  EXPECT_EQ(field.GetSubRecord(), nullptr);
  EXPECT_EQ(field.GetMatchValueText(), "??");
  EXPECT_EQ(field.GetStatusText(), kUnresolved);
}

TEST_F(InFieldTest, AFieldTakenOutOfItsRecordForgetsASubRecordThatIsDeletedMeanwhile) {
  CTNTemplateRecord& sub = Sub(document);
  auto field = record->RemoveField(&Add(SubRecord("A2")));
  document.DeleteRecord(&sub);
  Sub(document);
  EXPECT_EQ(field->GetSubRecord(), nullptr);
  EXPECT_EQ(field->GetMatchValueText(), "??");
  CTNTemplRecInField* back = record->InsertField(std::move(field));
  EXPECT_EQ(back->ResolveSubRecord(), nullptr);
  EXPECT_EQ(Verdict(*back), kUnresolved);
  CTNTemplRecInField copy(record);
  copy.CopyFrom(*back);
  EXPECT_EQ(copy.GetMatchValueText(), "??");
}

TEST_F(InFieldTest, ALinkFollowsARecordWhoseForerunnerIsDeleted) {
  Sub(document);
  CTNTemplateRecord& linked = Sub(document);
  CTNTemplRecInField& field = Add(SubRecord("A3"));
  document.DeleteRecord(document.GetAuxiliaryRecords()[1].get());
  EXPECT_EQ(field.GetSubRecord(), &linked);
  EXPECT_EQ(field.GetMatchValueText(), "A2");
  EXPECT_EQ(Verdict(field), "valid");
}

// ------------------------------------------------------------------------------- persistence

TEST_F(InFieldTest, AFieldIsWrittenWithItsAttributesInOrder) {
  std::string xml;
  ASSERT_EQ(Add(Optional(CaseSensitive(Alpha("A|b<")))).GetXml(xml), kXmlOk);
  EXPECT_NE(xml.find("<INPUT_FIELD TYPE=\"ALPHA\" REQUIRED=\"FALSE\" CASE_SENSITIVE=\"TRUE\""
                     " REPEATABLE=\"FALSE\">"),
            std::string::npos)
      << xml;
  EXPECT_NE(xml.find("<MATCH_LENGTH>0</MATCH_LENGTH>"), std::string::npos) << xml;
  EXPECT_NE(xml.find("<MATCH_VALUE_STR>A|b&lt;</MATCH_VALUE_STR>"), std::string::npos) << xml;
  EXPECT_LT(xml.find("MATCH_LENGTH"), xml.find("MATCH_VALUE_STR"));
}

TEST_F(InFieldTest, AnUndefinedFieldIsWrittenUnderThatName) {
  CTNTemplRecInField field(record);
  std::string xml;
  ASSERT_EQ(field.GetXml(xml), kXmlOk);
  EXPECT_NE(xml.find("TYPE=\"UNDEFINED\""), std::string::npos) << xml;
  EXPECT_NE(xml.find("<MATCH_LENGTH>-1</MATCH_LENGTH>"), std::string::npos) << xml;
}

TEST_F(InFieldTest, ASubRecordIsWrittenByTheIdentifierThatItsRecordHasNow) {
  CTNTemplateRecord& sub = Sub(document);
  CTNTemplRecInField& field = Add(SubRecord("a2"));
  document.MoveRecord(&sub, record);
  std::string xml;
  ASSERT_EQ(field.GetXml(xml), kXmlOk);
  EXPECT_NE(xml.find("<MATCH_VALUE_STR>A1</MATCH_VALUE_STR>"), std::string::npos) << xml;
  EXPECT_NE(xml.find("REPEATABLE=\"TRUE\""), std::string::npos) << xml;
}

TEST_F(InFieldTest, EveryTypeIsReadAsItWasWritten) {
  Sub(document);
  const FieldSpec specs[] = {CaseSensitive(String("A|B ")),
                             Optional(Column(12)),
                             Alnum("R1|r2"),
                             CaseSensitive(Alpha()),
                             WholeNum("-1"),
                             DecimalNum("3.5"),
                             Optional(Space()),
                             Tab(),
                             WhtSpace(),
                             NotWhtSpace(),
                             Newline(),
                             Scan(40),
                             Optional(SubRecord("A2"))};
  for (const FieldSpec& spec : specs) {
    CTNTemplRecInField& field = Add(spec);
    std::string xml;
    ASSERT_EQ(field.GetXml(xml), kXmlOk);
    const auto loaded = Loaded(record, xml);
    EXPECT_EQ(Shown(*loaded), Shown(field));
    EXPECT_EQ(loaded->GetSubRecord(), field.GetSubRecord());
  }
}

TEST_F(InFieldTest, AFieldLoadedWithTheRequiredTextYesIsRequired) {
  for (const std::string text : {"yes", "", "no", "0", "TRUE", "FALS"}) {
    EXPECT_TRUE(Loaded(record, "<F TYPE='TAB' REQUIRED='" + text + "'/>")->IsRequired()) << text;
  }
  for (const std::string text : {"FALSE", "false", "False"})
    EXPECT_FALSE(Loaded(record, "<F TYPE='TAB' REQUIRED='" + text + "'/>")->IsRequired()) << text;
}

TEST_F(InFieldTest, TheTypeOverridesLoadedFlagsThatItDoesNotAllow) {
  EXPECT_EQ(Shown(*Loaded(record, "<F TYPE='whole_num' CASE_SENSITIVE='TRUE' REPEATABLE='TRUE'/>")),
            "WHOLE_NUM required=TRUE case=FALSE repeat=FALSE length=0 values=[]");
  EXPECT_EQ(Shown(*Loaded(record, "<F TYPE='Alpha' CASE_SENSITIVE='maybe' REPEATABLE='TRUE'/>")),
            "ALPHA required=TRUE case=TRUE repeat=FALSE length=0 values=[]");
  EXPECT_EQ(Shown(*Loaded(record, "<F TYPE='SUBRECORD' REPEATABLE='FALSE'/>")),
            "SUBRECORD required=TRUE case=FALSE repeat=TRUE length=-1 values=[]");
}

TEST_F(InFieldTest, TheTypeOverridesLoadedValuesAndLengthsThatItDoesNotAllow) {
  EXPECT_EQ(Shown(*Loaded(record,
                          "<F TYPE='NEWLINE'><MATCH_LENGTH>4</MATCH_LENGTH>"
                          "<MATCH_VALUE_STR>A</MATCH_VALUE_STR></F>")),
            "NEWLINE required=TRUE case=FALSE repeat=FALSE length=-1 values=[]");
  EXPECT_EQ(Shown(*Loaded(record, "<F TYPE='COLUMN'><MATCH_LENGTH>-4</MATCH_LENGTH></F>")),
            "COLUMN required=TRUE case=FALSE repeat=FALSE length=0 values=[]");
}

TEST_F(InFieldTest, AnUnknownTypeStaysUndefinedAndKeepsTheLoadedFlags) {
  const auto field = Loaded(record,
                            "<F TYPE='FLOAT' REQUIRED='FALSE' CASE_SENSITIVE='TRUE'"
                            " REPEATABLE='TRUE' MATCH_LENGTH='3' MATCH_VALUE_STR='A'/>");
  EXPECT_EQ(Shown(*field), "UNDEFINED required=FALSE case=TRUE repeat=TRUE length=3 values=[A]");
  EXPECT_EQ(Verdict(*field), "Error: Invalid field type");
  std::string xml;
  ASSERT_EQ(field->GetXml(xml), kXmlOk);
  EXPECT_NE(xml.find("TYPE=\"UNDEFINED\""), std::string::npos) << "no trace of the name: " << xml;
}

TEST_F(InFieldTest, MissingAttributesLeaveTheDefaults) {
  EXPECT_EQ(Shown(*Loaded(record, "<F/>")),
            "UNDEFINED required=TRUE case=FALSE repeat=FALSE length=-1 values=[]");
  EXPECT_EQ(Shown(*Loaded(record, "<F TYPE='ALPHA'/>")),
            "ALPHA required=TRUE case=FALSE repeat=FALSE length=0 values=[]");
}

TEST_F(InFieldTest, ALengthThatIsNoNumberLeavesTheDefault) {
  EXPECT_EQ(Loaded(record, "<F TYPE='COLUMN' MATCH_LENGTH='x'/>")->GetMatchLength(), 0);
}

TEST_F(InFieldTest, UnknownAndMisspeltNamesAreIgnored) {
  EXPECT_EQ(Shown(*Loaded(record, "<F type='TAB' TYPE='SPACE' COLOUR='red'><WIDTH>4</WIDTH></F>")),
            "SPACE required=TRUE case=FALSE repeat=FALSE length=-1 values=[]");
}

TEST_F(InFieldTest, FixingUpAFieldThatWasNotReadChangesNothing) {
  CTNTemplRecInField& field = Add(Optional(CaseSensitive(String("A"))));
  field.FixUpAfterLoad();
  EXPECT_EQ(Shown(field), "STRING required=FALSE case=TRUE repeat=FALSE length=-1 values=[A]");
}

TEST_F(InFieldTest, WhatThePartsOfAResultAskIsAnswered) {
  CTNTemplateRecord& sub = Sub(document);
  CTNTemplRecInField& field = Add(SubRecord("A2"));
  const CTNMatchedField& role = field;
  EXPECT_EQ(role.GetFieldKind(), FieldKind::SubRecord);
  EXPECT_EQ(role.GetFieldTypeName(), "SUBRECORD");
  EXPECT_EQ(role.GetMatchedRecord(), record);
  EXPECT_EQ(role.GetMatchedSubRecord(), &sub);
  field.SetType(FieldKind::Alpha);
  EXPECT_EQ(role.GetMatchedSubRecord(), nullptr);
}

}  // namespace
}  // namespace bomparser
