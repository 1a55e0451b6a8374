#include "input/CTNParsedFileBlock.h"
#include "input/MessageTexts.h"
#include "template/CTNTemplRecOutField.h"
#include "tests/support/Application.h"
#include "tests/support/OutputTexts.h"
#include "tests/support/TemplateBuilder.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {
namespace {

using namespace test;

constexpr const char* kDefaultNote = "Note: Default used for value expression";
constexpr const char* kNoneError =
    "Error: Attribute tag NONE valid only when value expression\n"
    " consists of subrecord-type input field ID(s), output symbol\n"
    " element ID(s), and/or single-match record ID(s)";

/// One element of a part whose fields are a word, a sub-record and a line end; A1 is a single-match
/// record, A2 the sub-record, A3 a multiple-match record.
class OutFieldTest : public testing::Test {
 protected:
  OutFieldTest() {
    AddRecord(document, RecordKind::Part, "part", {Alnum(), Space(), SubRecord("A2"), Newline()},
              {Designator("F1"), PartNumber()});
    AddRecord(document, RecordKind::SingleMatch, "title", {String("T="), Alnum(), Newline()},
              {{OutputTag::Text, "F2"}});
    AddRecord(document, RecordKind::SubRecord, "number", {WholeNum()}, {{OutputTag::Size, "F1"}});
    AddRecord(document, RecordKind::MultipleMatch, "comment", {String("#"), Newline()});
    Relink(document);
  }

  CTNTemplateRecord& Part() { return *document.GetEntityRecords()[0]; }

  CTNTemplRecOutField& NewElement() {
    return *Part().InsertField(std::make_unique<CTNTemplRecOutField>(&Part()));
  }

  /// The message of the validated element; "valid" when there is none.
  static std::string Validated(CTNTemplRecOutField& element) {
    const std::int32_t valid = element.Validate();
    EXPECT_EQ(valid, element.IsValid());
    std::string text = element.GetStatusText();
    if (valid == 0) return text;
    return text.empty() ? "valid" : "valid: " + text;
  }

  /// The entity list of "R1 5" with one more element in the part.
  std::string ListWith(const OutputSpec& output, std::string_view input = "T=t\nR1 5\n") {
    AddOutput(Part(), output);
    Relink(document);
    EXPECT_EQ(Part().IsValid(), 1) << Part().GetStatusText();
    const Application application = ApplyToText(document, input);
    EXPECT_EQ(EntityListOf(application), EntityListPlainly(application));
    return EntityListOf(application);
  }

  static std::string Entity(const std::string& added) {
    return "<ENTITY>Part<REF_DESIGNATOR>R1</REF_DESIGNATOR><PART_NUMBER>P</PART_NUMBER>" + added +
           "</ENTITY>";
  }

  CTNParserTemplate document{nullptr};
};

// ------------------------------------------------------------------------------- tags

TEST_F(OutFieldTest, ANewElementHasNoTagNoExpressionAndNoItems) {
  const CTNTemplRecOutField element(&Part());
  EXPECT_EQ(element.GetTag(), OutputTag::Undefined);
  EXPECT_EQ(element.GetTagText(), "UNDEFINED");
  EXPECT_EQ(element.GetExpression(), "");
  EXPECT_EQ(element.GetExpressionText(), "");
  EXPECT_EQ(element.GetStatusText(), "");
  EXPECT_EQ(element.GetCurrentValue(), "");
  EXPECT_EQ(ReadableItems(element), "");
}

TEST_F(OutFieldTest, InitBringsEverythingBack) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Shape);
  element.SetDefaultExpression();
  element.SetCurrentValue("value");
  EXPECT_EQ(element.Init(), 1);
  EXPECT_EQ(element.GetTag(), OutputTag::Undefined);
  EXPECT_EQ(element.GetExpression(), "");
  EXPECT_EQ(ReadableItems(element), "");
  EXPECT_EQ(element.GetStatusText(), "");
  EXPECT_EQ(element.GetCurrentValue(), "");
  element.SetTag(OutputTag::Text);
  element.SetExpression("mm");
  EXPECT_EQ(Validated(element), "valid") << "no default is in use any more";
}

TEST_F(OutFieldTest, SettingATagStoresItsName) {
  CTNTemplRecOutField& element = NewElement();
  for (int code = -1; code <= 80; ++code) {
    element.SetTag(static_cast<OutputTag>(code));
    EXPECT_EQ(static_cast<int>(element.GetTag()), code);
    EXPECT_EQ(element.GetTagText(), GetTagName(static_cast<OutputTag>(code)));
  }
}

TEST_F(OutFieldTest, OnlyScaleAndUnitsGetAnExpressionWithTheirTag) {
  for (int code = -1; code <= 80; ++code) {
    CTNTemplRecOutField element(&Part());
    element.SetTag(static_cast<OutputTag>(code));
    const std::string expected = code == 75 ? "TEMPL_SCALE" : code == 76 ? "TEMPL_UNITS" : "";
    EXPECT_EQ(element.GetExpression(), expected) << code;
    EXPECT_EQ(element.GetStatusText(), expected.empty() ? "" : kDefaultNote) << code;
  }
}

TEST_F(OutFieldTest, SettingTheTagScaleKeepsAnExpressionThatIsThere) {
  CTNTemplRecOutField& element = NewElement();
  element.SetExpression("F1");
  element.SetTag(OutputTag::Scale);
  EXPECT_EQ(element.GetExpression(), "F1");
  element.SetTag(OutputTag::Units);
  EXPECT_EQ(element.GetExpression(), "F1");
  EXPECT_EQ(element.GetStatusText(), "");
}

TEST_F(OutFieldTest, TheDefaultOfATagThatHasAValueGetsNoNote) {
  CTNTemplRecOutField& element = NewElement();
  element.SetCurrentValue("1.0");
  element.SetTag(OutputTag::Scale);
  EXPECT_EQ(element.GetExpression(), "TEMPL_SCALE");
  EXPECT_EQ(element.GetStatusText(), "");
}

TEST_F(OutFieldTest, LookingTheOwnNameUpKeepsTheTag) {
  CTNTemplRecOutField& element = NewElement();
  for (const OutputTag tag : {OutputTag::XLocation, OutputTag::None, OutputTag::Undefined}) {
    element.SetTag(tag);
    element.SetTagByName();
    EXPECT_EQ(element.GetTag(), tag);
    element.FixUpAfterLoad();
    EXPECT_EQ(element.GetTag(), tag);
  }
  element.SetTag(static_cast<OutputTag>(39));
  element.SetTagByName();
  EXPECT_EQ(static_cast<int>(element.GetTag()), 28) << "the first code without a name";
}

// ------------------------------------------------------------------------------- defaults

TEST_F(OutFieldTest, DefaultExpressionsByTag) {
  for (int code = -1; code <= 80; ++code) {
    const auto tag = static_cast<OutputTag>(code);
    CTNTemplRecOutField element(&Part());
    element.SetTag(tag);
    element.SetExpression("something else");
    element.SetDefaultExpression();
    std::string expected = IsNumericTag(tag) ? "0" : "Default";
    if (tag == OutputTag::Shape) expected = "DESCRIPTION";
    if (tag == OutputTag::Scale) expected = "TEMPL_SCALE";
    if (tag == OutputTag::Units) expected = "TEMPL_UNITS";
    EXPECT_EQ(element.GetExpression(), expected) << code;
    const bool refused = tag == OutputTag::Undefined || tag == OutputTag::None;
    EXPECT_EQ(element.IsValid(), refused ? 0 : 1) << code;
    EXPECT_EQ(element.GetStatusText() == kDefaultNote, !refused) << code;
  }
}

TEST_F(OutFieldTest, TheDefaultOfShapeIsDescriptionOfDimXZeroOfPartNumberDefault) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Shape);
  element.SetDefaultExpression();
  EXPECT_EQ(ReadableItems(element), "[attribute DESCRIPTION]");
  element.SetTag(OutputTag::DimX);
  element.SetDefaultExpression();
  EXPECT_EQ(ReadableItems(element), "[whole 0]");
  element.SetTag(OutputTag::PartNumber);
  element.SetDefaultExpression();
  EXPECT_EQ(ReadableItems(element), "[text Default]");
}

TEST_F(OutFieldTest, AnInvalidDefaultKeepsItsErrorAndGetsNoNote) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::None);
  element.SetDefaultExpression();
  EXPECT_EQ(element.GetStatusText(), kNoneError);
  element.SetDefaultUsed(true);
  EXPECT_EQ(element.GetStatusText(), kNoneError);
}

TEST_F(OutFieldTest, TheNoteOfADefaultStaysThroughValidations) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Text);
  element.SetDefaultExpression();
  EXPECT_EQ(Validated(element), std::string("valid: ") + kDefaultNote);
  element.SetCurrentValue("Default");
  EXPECT_EQ(Validated(element), std::string("valid: ") + kDefaultNote);
}

TEST_F(OutFieldTest, TheNoteGoesWithTheNextValidationWhenNoDefaultIsInUse) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Text);
  element.SetDefaultExpression();
  element.SetDefaultUsed(false);
  EXPECT_EQ(element.GetStatusText(), kDefaultNote);
  EXPECT_EQ(Validated(element), "valid");
}

TEST_F(OutFieldTest, ADefaultThatIsMarkedLaterGetsItsNoteThen) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Text);
  element.SetExpression("mm");
  EXPECT_EQ(Validated(element), "valid");
  element.SetDefaultUsed(true);
  EXPECT_EQ(element.GetStatusText(), kDefaultNote);
}

TEST_F(OutFieldTest, ADefaultThatHasAValueIsMarkedWithoutANote) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Text);
  element.SetExpression("mm");
  element.SetCurrentValue("mm");
  EXPECT_EQ(Validated(element), "valid");
  element.SetDefaultUsed(true);
  EXPECT_EQ(element.GetStatusText(), "");
}

TEST_F(OutFieldTest, AnErrorReplacesTheNoteAndTheNoteComesBackBehindIt) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Text);
  element.SetDefaultExpression();
  element.SetExpression("E1");
  EXPECT_EQ(Validated(element),
            "Only single-match record type can be used as output value expression");
  element.SetExpression("Default");
  EXPECT_EQ(Validated(element), std::string("valid: ") + kDefaultNote);
}

TEST_F(OutFieldTest, TheNoteOfATagThatNobodyRequiresStaysWithADefault) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Text);
  element.SetDefaultExpression();
  Part().Validate();
  const std::string note = "Note: Output element TEXT is not required for record type Part";
  EXPECT_EQ(element.GetStatusText(), note);
  EXPECT_EQ(Validated(element), "valid: " + note);
  element.SetDefaultUsed(false);
  EXPECT_EQ(Validated(element), "valid");
  Part().Validate();
  EXPECT_EQ(element.GetStatusText(), note);
}

// ------------------------------------------------------------------------------- validation

TEST_F(OutFieldTest, AnElementWithoutATagIsInvalid) {
  CTNTemplRecOutField& element = NewElement();
  element.SetExpression("F1");
  EXPECT_EQ(Validated(element), "Error: Undefined output element tag");
  EXPECT_EQ(ReadableItems(element), "") << "its expression was not looked at";
}

TEST_F(OutFieldTest, AnElementWithoutARecordIsInvalid) {
  CTNTemplRecOutField element(nullptr);
  element.SetTag(OutputTag::Text);
  element.SetExpression("12");
  EXPECT_EQ(Validated(element), "Internal error: Parent record is invalid");
}

TEST_F(OutFieldTest, AnExpressionThatDoesNotParseIsToldInItsOwnWords) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Text);
  EXPECT_EQ(Validated(element), "No value expression to evaluate");
  element.SetExpression("V3");
  EXPECT_EQ(Validated(element), "Output element cannot use its own ID as value expression");
  element.SetExpression("F1");
  EXPECT_EQ(Validated(element), "valid");
}

TEST(OutField, TextsOfFailuresThatDoNotHappenInPractice) {
  EXPECT_EQ(GetMessageText(Msg::UnspecifiedValueError), "Unspecified error while parsing value");
  EXPECT_EQ(FormatMessageText(Msg::InvalidOutputTag, "Drill"),
            "Error: Invalid output tag for record type Drill");
}

TEST_F(OutFieldTest, EveryTagIsAllowedForEveryRecordType) {
  for (const int kind : {0, 1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13}) {
    Part().SetType(static_cast<RecordKind>(kind));
    for (int code = 0; code <= 78; ++code) {
      CTNTemplRecOutField element(&Part());
      element.SetTag(static_cast<OutputTag>(code));
      element.SetExpression("F1");
      EXPECT_EQ(Validated(element), "valid") << kind << ' ' << code;
    }
  }
  Part().SetType(RecordKind::Part);
}

TEST_F(OutFieldTest, ANoneElementWhoseExpressionIsAPlainInputFieldIsInvalid) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::None);
  element.SetExpression("F1");
  EXPECT_EQ(Validated(element), kNoneError);
}

TEST_F(OutFieldTest, NoneAllowsSubRecordsSymbolsSingleMatchRecordsOperatorsAndBlanks) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::None);
  for (const char* expression :
       {"F3", "V1", "A1", "F3 + V1 * A1", " ", "+", "A1.F2", "A1.V1", "A1.DESCRIPTION", "( F3 )"}) {
    element.SetExpression(expression);
    EXPECT_EQ(Validated(element), "valid") << expression;
  }
}

TEST_F(OutFieldTest, NoneAllowsNothingElse) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::None);
  for (const char* expression :
       {"F2", "F4", "\"text\"", "word", "12", "1,5", "TEMPL_UNITS", "TEMPL_SCALE", "DESCRIPTION",
        "TYPE", "E1.F3", "E1.V1", "E1.TYPE", "A2.TYPE", "A3.DESCRIPTION", "F3 F1", "F3.", "|"}) {
    element.SetExpression(expression);
    EXPECT_EQ(Validated(element), kNoneError) << expression;
  }
}

TEST_F(OutFieldTest, TheErrorsOfParsingComeBeforeTheRuleOfNone) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::None);
  element.SetExpression("F1 A3");
  EXPECT_EQ(Validated(element),
            "Only single-match record type can be used as output value expression");
}

// ------------------------------------------------------------------------------- values

TEST_F(OutFieldTest, RefDesignatorWithValueR1IsWrittenBetweenItsTags) {
  const Application application = ApplyToText(document, "R1 5\n");
  std::string text = "before";
  ElementOf(Part(), 1).BuildValueText(text, application.blocks.GetAt(0), Tags::On);
  EXPECT_EQ(text, "before<REF_DESIGNATOR>R1</REF_DESIGNATOR>");
}

TEST_F(OutFieldTest, WithoutTagsANonEmptyValueGetsOneSpaceUnlessItEndsInOne) {
  const Application application = ApplyToText(document, "R1 5\n");
  const CTNParsedFileBlock block = application.blocks.GetAt(0);
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Text);
  const auto untagged = [&element, &block](const char* expression) {
    element.SetExpression(expression);
    EXPECT_EQ(element.Validate(), 1);
    std::string text;
    element.BuildValueText(text, block, Tags::Off);
    return text;
  };
  EXPECT_EQ(untagged("F1"), "R1 ");
  EXPECT_EQ(untagged("F1 F1 \"x\""), "R1R1x ") << "once for the whole value";
  EXPECT_EQ(untagged("F1 \" \""), "R1 ");
  EXPECT_EQ(untagged("\" \""), " ");
  EXPECT_EQ(untagged("\"\""), "");
  EXPECT_EQ(untagged("F1 \"\t\""), "R1\t ");
}

TEST_F(OutFieldTest, AnEmptyUntaggedValueAddsNoSpaceToWhatIsBeforeIt) {
  CTNTemplRecOutField& element = NewElement();
  element.SetTag(OutputTag::Text);
  element.SetExpression("\"\"");
  ASSERT_EQ(element.Validate(), 1);
  std::string text = "before";
  element.BuildValueText(text, CTNParsedFileBlock(nullptr), Tags::Off);
  EXPECT_EQ(text, "before");
}

TEST_F(OutFieldTest, AnEmptyValueIsWrittenAsAnEmptyPairOfTagsAndWithNoneAsNothing) {
  EXPECT_EQ(ListWith({OutputTag::Width, "\"\""}), Entity("<WIDTH></WIDTH>"));
  EXPECT_EQ(ListWith(None("+")), Entity("<WIDTH></WIDTH>"));
}

TEST_F(OutFieldTest, ATagWithoutANameIsWrittenWithEmptyTags) {
  EXPECT_EQ(ListWith({static_cast<OutputTag>(28), "F1"}), Entity("<>R1</>"));
}

TEST_F(OutFieldTest, NoneOverASubRecordWritesItsElementsWithTheirTagsAndNothingBetweenThem) {
  EXPECT_EQ(ListWith(None("F3 F3")), Entity("<SIZE>5</SIZE><SIZE>5</SIZE>"));
}

TEST_F(OutFieldTest, AnyOtherTagOverASubRecordWritesThemUntaggedEachFollowedByASpace) {
  AddOutput(RecordOf(document, "A2"), {OutputTag::Text, "F1"});
  EXPECT_EQ(ListWith({OutputTag::Text, "F3"}), Entity("<TEXT>5 5 </TEXT>"));
}

TEST_F(OutFieldTest, NoneInsideASubRecordHandsTheTagsOnOnlyWhenItHasThemItself) {
  AddRecord(document, RecordKind::SubRecord, "outer", {SubRecord("A2")}, {None("F1")});
  FieldOf(Part(), 3).SetMatchValueText("A4");
  EXPECT_EQ(ListWith(None("F3")), Entity("<SIZE>5</SIZE>"));
  EXPECT_EQ(ListWith({OutputTag::Text, "F3"}), Entity("<SIZE>5</SIZE><TEXT>5 </TEXT>"));
}

TEST_F(OutFieldTest, ASymbolGivesTheUntaggedFormInsideNoneToo) {
  EXPECT_EQ(ListWith(None("V1")), Entity("R1 "));
}

TEST_F(OutFieldTest, NoneOverASingleMatchRecordWritesItsElementsWithTheirTags) {
  EXPECT_EQ(ListWith(None("A1")), Entity("<TEXT>t</TEXT>"));
}

TEST_F(OutFieldTest, AnyOtherTagOverASingleMatchRecordWritesItUntagged) {
  EXPECT_EQ(ListWith({OutputTag::Width, "A1"}), Entity("<WIDTH>t </WIDTH>"));
  EXPECT_EQ(ListWith({OutputTag::Height, "A1"}, "R1 5\n"),
            Entity("<WIDTH></WIDTH><HEIGHT></HEIGHT>"));
}

TEST_F(OutFieldTest, AnEntityRecordAsSubRecordWritesItsWrapperOnlyWhereTagsAreOn) {
  AddRecord(document, RecordKind::Part, "inner", {Alnum(), Newline()},
            {Designator("F1"), PartNumber()});
  AddRecord(document, RecordKind::SubRecord, "untagged", {SubRecord("E2")},
            {{OutputTag::Text, "F1"}});
  AddRecord(document, RecordKind::Part, "on", {String("+"), SubRecord("E2")}, {None("F2")});
  AddRecord(document, RecordKind::Part, "off", {String("-"), SubRecord("A4")},
            {Designator("F1"), PartNumber(), None("F2")});
  Relink(document);
  const Application application = ApplyToText(document, "+R1\n-R2\n");
  EXPECT_EQ(EntityListOf(application), "<ENTITY>Part" + Entity("") + "</ENTITY>" +
                                           "<ENTITY>Part<REF_DESIGNATOR>-</REF_DESIGNATOR>"
                                           "<PART_NUMBER>P</PART_NUMBER><TEXT>R2 P </TEXT>"
                                           "</ENTITY>");
  EXPECT_EQ(EntityListPlainly(application), EntityListOf(application));
}

TEST_F(OutFieldTest, ValuesAreNotScaled) {
  document.SetScaleFactor(2.0);
  document.SetUnits(1);
  ListWith({OutputTag::Width, "F3"});
  ListWith({OutputTag::Scale, ""});
  EXPECT_EQ(ListWith({OutputTag::Units, ""}),
            Entity("<WIDTH>5 </WIDTH><SCALE>2.000000</SCALE><UNITS>MM</UNITS>"));
}

// ------------------------------------------------------------------------------- references

TEST_F(OutFieldTest, ReferencesTagThroughAnOutputSymbolAndWhatThatReaches) {
  CTNTemplRecOutField& last = AddOutput(Part(), {OutputTag::Text, "V1"});
  CTNTemplRecOutField& before = AddOutput(Part(), {OutputTag::Width, "V3"});
  Relink(document);
  EXPECT_TRUE(last.ReferencesTag(OutputTag::RefDesignator));
  EXPECT_TRUE(before.ReferencesTag(OutputTag::Text));
  EXPECT_TRUE(before.ReferencesTag(OutputTag::RefDesignator));
  EXPECT_FALSE(before.ReferencesTag(OutputTag::Width)) << "its own tag does not count";
  EXPECT_FALSE(last.ReferencesTag(OutputTag::PartNumber));
}

TEST_F(OutFieldTest, ReferencesTagThroughASingleMatchRecord) {
  CTNTemplRecOutField& element = AddOutput(Part(), None("A1"));
  Relink(document);
  EXPECT_TRUE(element.ReferencesTag(OutputTag::Text));
  EXPECT_FALSE(element.ReferencesTag(OutputTag::Size));
}

TEST_F(OutFieldTest, ReferencesTagThroughALinkedSubRecordField) {
  CTNTemplRecOutField& element = AddOutput(Part(), None("F3"));
  Relink(document);
  EXPECT_TRUE(element.ReferencesTag(OutputTag::Size));
  EXPECT_FALSE(element.ReferencesTag(OutputTag::Text));
  FieldOf(Part(), 3).ForgetSubRecord();
  EXPECT_FALSE(element.ReferencesTag(OutputTag::Size));
}

TEST_F(OutFieldTest, ADotChainReachesOnlyItsTarget) {
  AddOutput(RecordOf(document, "A1"), {OutputTag::Width, "F2"});
  CTNTemplRecOutField& element = AddOutput(Part(), None("A1.V1"));
  Relink(document);
  EXPECT_TRUE(element.ReferencesTag(OutputTag::Text));
  EXPECT_FALSE(element.ReferencesTag(OutputTag::Width)) << "another element of A1";
  element.SetExpression("A1.F2");
  element.Validate();
  EXPECT_FALSE(element.ReferencesTag(OutputTag::Text));
}

TEST_F(OutFieldTest, ReferencesTagEndsInACircle) {
  CTNTemplRecOutField& one = AddOutput(Part(), {OutputTag::Text, "V4"});
  CTNTemplRecOutField& two = AddOutput(Part(), {OutputTag::Width, "V3"});
  Relink(document);
  EXPECT_TRUE(one.ReferencesTag(OutputTag::Text)) << "through the other one";
  EXPECT_TRUE(one.ReferencesTag(OutputTag::Width));
  EXPECT_FALSE(one.ReferencesTag(OutputTag::Height));
  EXPECT_FALSE(two.ReferencesTag(OutputTag::Height)) << "asking leaves no trace";
}

TEST_F(OutFieldTest, RefersToWhatItsItemsAndTheirChainsName) {
  CTNTemplRecOutField& element = AddOutput(Part(), {OutputTag::Text, "F1 V1 A1.F2"});
  Relink(document);
  EXPECT_TRUE(element.RefersTo(&FieldOf(Part(), 1)));
  EXPECT_TRUE(element.RefersTo(&ElementOf(Part(), 1)));
  EXPECT_TRUE(element.RefersTo(&FieldOf(RecordOf(document, "A1"), 2)));
  EXPECT_FALSE(element.RefersTo(&FieldOf(Part(), 2)));
  EXPECT_FALSE(element.RefersTo(&FieldOf(RecordOf(document, "A1"), 1)));
  EXPECT_FALSE(element.RefersTo(nullptr));
}

// ------------------------------------------------------------------------------- copies

TEST_F(OutFieldTest, ACopyKeepsItsRecordAndParsesAgainstIt) {
  CTNTemplRecOutField& source = AddOutput(Part(), {OutputTag::Text, "F2"});
  source.SetCurrentValue("value");
  source.Validate();
  CTNTemplateRecord& title = RecordOf(document, "A1");
  CTNTemplRecOutField copy(&title);
  copy.CopyFrom(source);
  EXPECT_EQ(copy.GetParentRecord(), &title);
  EXPECT_EQ(copy.GetTag(), OutputTag::Text);
  EXPECT_EQ(copy.GetExpression(), "F2");
  EXPECT_EQ(copy.GetCurrentValue(), "value");
  EXPECT_EQ(copy.GetItems()[0].inputField, &FieldOf(title, 2));
}

TEST_F(OutFieldTest, TheExpressionTextIsTheStoredOneWhereNoItemsAre) {
  CTNTemplRecOutField& element = NewElement();
  element.SetExpression("f1");
  EXPECT_EQ(element.GetExpressionText(), "f1");
  element.SetTag(OutputTag::Text);
  element.Validate();
  EXPECT_EQ(element.GetExpressionText(), "F1");
  EXPECT_EQ(element.GetExpression(), "f1");
}

}  // namespace
}  // namespace bomparser
