#include "template/CTNParserTemplate.h"
#include "tests/support/Application.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/OutputTexts.h"
#include "tests/support/TemplateBuilder.h"
#include "tests/support/TestFolder.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {
namespace {

using namespace test;
using Texts = std::vector<std::string>;

std::string Parameters(const std::string& units = "Inch", const std::string& scale = "1",
                       const std::string& begin = "1", const std::string& end = "0",
                       const std::string& title = "<TITLE>untitled</TITLE>") {
  return "<DEFAULT_UNITS>" + units + "</DEFAULT_UNITS><SCALE_FACTOR>" + scale +
         "</SCALE_FACTOR><BEGIN_TRANSLATION_AT_ROW>" + begin +
         "</BEGIN_TRANSLATION_AT_ROW><END_TRANSLATION_AFTER_ROW>" + end +
         "</END_TRANSLATION_AFTER_ROW>" + title;
}

std::string Document(const std::string& inside) {
  return "<PARSER_TEMPLATE>" + inside + "</PARSER_TEMPLATE>";
}

std::string XmlOf(CTNParserTemplate& document) {
  std::string text;
  EXPECT_EQ(document.GetXml(text), kXmlOk) << document.LastError();
  return text;
}

/// A record as a file has it: fields and elements are written by the functions below.
std::string Record(const std::string& type, const std::string& description,
                   const std::string& inside = {}) {
  return "<TEMPLATE_RECORD TYPE=\"" + type + "\"><DESC>" + description + "</DESC>" + inside +
         "</TEMPLATE_RECORD>";
}
/// The length as it is written when none was given: some types have the length 0 then.
std::string DefaultLength(const std::string& type) {
  const bool counted = type != "STRING" && type != "SPACE" && type != "TAB" && type != "NEWLINE" &&
                       type != "SUBRECORD" && type != "UNDEFINED";
  return counted ? "0" : "-1";
}
std::string InputField(const std::string& type, const std::string& value = {},
                       const std::string& length = {}, const std::string& flags = {}) {
  return "<INPUT_FIELD TYPE=\"" + type + "\" " +
         (flags.empty() ? "REQUIRED=\"TRUE\" CASE_SENSITIVE=\"FALSE\" REPEATABLE=\"FALSE\""
                        : flags) +
         "><MATCH_LENGTH>" + (length.empty() ? DefaultLength(type) : length) +
         "</MATCH_LENGTH><MATCH_VALUE_STR>" + value + "</MATCH_VALUE_STR></INPUT_FIELD>";
}
std::string OutputField(const std::string& key, const std::string& value) {
  return "<OUTPUT_FIELD KEY=\"" + key + "\"><VALUE>" + value + "</VALUE></OUTPUT_FIELD>";
}
const char* const kRepeatable = "REQUIRED=\"TRUE\" CASE_SENSITIVE=\"FALSE\" REPEATABLE=\"TRUE\"";

/// Identifiers, types, descriptions and validity: "A1 Sub-Record 'x' ok".
Texts RecordsOf(const CTNParserTemplate& document) {
  Texts texts;
  for (const auto* list : {&document.GetAuxiliaryRecords(), &document.GetEntityRecords()}) {
    for (const auto& record : *list) {
      texts.push_back(record->GetRecordId() + " " + std::string(record->GetTypeName()) + " '" +
                      record->GetDescription() + "' " +
                      (record->IsValid() != 0 ? "ok" : "invalid"));
    }
  }
  return texts;
}

class TemplateFileTest : public testing::Test {
 protected:
  void Load(const std::string& xml) {
    ASSERT_EQ(document.Init(), 1);
    ASSERT_EQ(document.LoadFromXml(xml), kXmlOk);
  }

  FakeContext context;
  CTNParserTemplate document{&context};
};

// ------------------------------------------------------------------------------- writing

TEST_F(TemplateFileTest, ATemplateWithoutRecordsWritesItsFiveValuesAndNoRecord) {
  EXPECT_EQ(XmlOf(document), Document(Parameters()));
}

TEST_F(TemplateFileTest, TheWholeFileIsWrittenToTheLetter) {
  document.SetTitle("Title & <more>");
  document.SetUnits(1);
  document.SetScaleFactor(0.0254);
  document.SetBeginRow(4);
  document.SetEndAfterRow(-2);
  AddRecord(document, RecordKind::Part, "a \"part\"",
            {Alnum(), Space(), SubRecord("A2"), Optional(CaseSensitive(String("A|b"))), Column(7),
             Newline()},
            {Designator("f1 + \"<\""), PartNumber("E1.DESCRIPTION"), None("F3")});
  AddRecord(document, RecordKind::SingleMatch, "title", {String("T="), Scan(3), Newline()},
            {{OutputTag::Text, "F2"}});
  AddRecord(document, RecordKind::SubRecord, "sub", {WholeNum("1|2")}, {});
  Relink(document);
  EXPECT_EQ(
      XmlOf(document),
      Document(Parameters("MM", "0.0254", "4", "-2", "<TITLE>Title &amp; &lt;more&gt;</TITLE>") +
               Record("Single Match", "title",
                      InputField("STRING", "T=") + InputField("SCAN_TO_NEXT", "", "3") +
                          InputField("NEWLINE") + OutputField("TEXT", "F2")) +
               Record("Sub-Record", "sub", InputField("WHOLE_NUM", "1|2")) +
               Record("Part", "a \"part\"",
                      InputField("ALPHANUMERIC") + InputField("SPACE") +
                          InputField("SUBRECORD", "A2", "-1", kRepeatable) +
                          InputField("STRING", "A|b", "-1",
                                     "REQUIRED=\"FALSE\" CASE_SENSITIVE=\"TRUE\" "
                                     "REPEATABLE=\"FALSE\"") +
                          InputField("COLUMN", "", "7") + InputField("NEWLINE") +
                          OutputField("REF_DESIGNATOR", "f1 + \"&lt;\"") +
                          OutputField("PART_NUMBER", "E1.DESCRIPTION") +
                          OutputField("NONE", "F3"))));
}

TEST_F(TemplateFileTest, EveryRecordTypeIsWrittenWithItsName) {
  const Texts names = {"Undefined",  "Aperture",  "Drill",        "Part",
                       "Undefined",  "Undefined", "Single Match", "Multiple Match",
                       "Sub-Record", "Undefined", "Undefined",    "",
                       "Undefined",  "Undefined", "Undefined",    "Undefined"};
  for (std::size_t code = 0; code < names.size(); ++code) {
    CTNParserTemplate one(nullptr);
    one.AddRecord(static_cast<RecordKind>(code), "r");
    EXPECT_EQ(XmlOf(one), Document(Parameters() + Record(names[code], "r"))) << code;
  }
}

TEST_F(TemplateFileTest, EveryTagIsWrittenWithItsNameAndReadBack) {
  for (int code = 0; code <= 79; ++code) {
    CTNParserTemplate one(nullptr);
    AddRecord(one, RecordKind::MultipleMatch, "r", {}, {{static_cast<OutputTag>(code), "\"x\""}});
    const std::string xml = XmlOf(one);
    const std::string name(GetTagName(static_cast<OutputTag>(code)));
    EXPECT_EQ(xml,
              Document(Parameters() + Record("Multiple Match", "r", OutputField(name, "\"x\""))));
    Load(xml);
    const OutputTag read = ElementOf(RecordOf(document, "A1"), 1).GetTag();
    EXPECT_EQ(static_cast<int>(read), name.empty() ? 28 : code);
  }
}

TEST_F(TemplateFileTest, ANewElementIsWrittenAsUndefinedAndEmpty) {
  CTNTemplateRecord* record = document.AddRecord(RecordKind::MultipleMatch, "r");
  record->InsertField(std::make_unique<CTNTemplRecOutField>(record));
  EXPECT_EQ(XmlOf(document),
            Document(Parameters() +
                     Record("Multiple Match", "r",
                            "<OUTPUT_FIELD KEY=\"UNDEFINED\"><VALUE></VALUE></OUTPUT_FIELD>")));
}

TEST_F(TemplateFileTest, FieldsWithoutMatchValuesWriteAnEmptyOne) {
  for (const int code : {1, 6, 7, 8, 9, 10, 11}) {
    CTNParserTemplate one(nullptr);
    CTNTemplateRecord* record = one.AddRecord(RecordKind::SubRecord, "r");
    CTNTemplRecInField* field = record->AddInputField(static_cast<FieldKind>(code), true);
    field->SetMatchValueText("value");
    EXPECT_NE(XmlOf(one).find("<MATCH_VALUE_STR></MATCH_VALUE_STR>"), std::string::npos) << code;
  }
}

TEST_F(TemplateFileTest, ALinkedSubRecordFieldWritesTheRecordsPresentIdentifier) {
  AddRecord(document, RecordKind::SubRecord, "sub", {WholeNum()});
  AddRecord(document, RecordKind::MultipleMatch, "user", {SubRecord("a1"), Newline()});
  document.AddRecord(RecordKind::SubRecord, "in front", document.FindRecordByID("A1"));
  EXPECT_EQ(XmlOf(document), Document(Parameters() + Record("Sub-Record", "in front") +
                                      Record("Sub-Record", "sub", InputField("WHOLE_NUM")) +
                                      Record("Multiple Match", "user",
                                             InputField("SUBRECORD", "A2", "-1", kRepeatable) +
                                                 InputField("NEWLINE"))));
}

TEST_F(TemplateFileTest, AnUnlinkedSubRecordFieldWritesItsOwnText) {
  AddRecord(document, RecordKind::MultipleMatch, "user", {SubRecord("A9"), Newline()});
  EXPECT_NE(XmlOf(document).find("<MATCH_VALUE_STR>A9</MATCH_VALUE_STR>"), std::string::npos);
}

TEST_F(TemplateFileTest, ScalesAreWrittenShortAndWithoutLoss) {
  const std::vector<std::pair<double, std::string>> scales = {
      {1.0, "1"}, {0.1, "0.1"}, {25.4, "25.4"}, {-2.0, "-2"}, {0.0, "0"}};
  for (const auto& [scale, expected] : scales) {
    document.SetScaleFactor(scale);
    EXPECT_EQ(XmlOf(document), Document(Parameters("Inch", expected)));
  }
}

TEST_F(TemplateFileTest, EveryFiniteScaleIsReadBackExactly) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 2000; ++round) {
    double scale =
        std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 2000) - 1060);
    if (round % 2 == 0) scale = -scale;
    if (!std::isfinite(scale)) continue;
    document.SetScaleFactor(scale);
    const std::string xml = XmlOf(document);
    CTNParserTemplate read(nullptr);
    ASSERT_EQ(read.LoadFromXml(xml), kXmlOk);
    EXPECT_EQ(read.GetScaleFactor(), scale) << xml;
  }
}

TEST_F(TemplateFileTest, AScaleThatIsNoNumberCannotBeWritten) {
  document.SetScaleFactor(std::numeric_limits<double>::infinity());
  std::string text = "before";
  EXPECT_EQ(document.GetXml(text), kXmlGeneralFailure);
  EXPECT_EQ(text, "before");
  EXPECT_EQ(document.LastError(), "Unspecified error");
}

TEST_F(TemplateFileTest, WritingStopsAtTheFirstRecordThatCannotBeWritten) {
  AddRecord(document, RecordKind::SubRecord, "fine", {WholeNum()});
  AddRecord(document, RecordKind::Part, "bad\x01name", {Alnum(), Newline()});
  AddRecord(document, RecordKind::Part, "worse\x02", {Alnum(), Newline()});
  std::string text = "before";
  EXPECT_EQ(document.GetXml(text), kXmlGeneralFailure);
  EXPECT_EQ(text, "before");
  EXPECT_EQ(document.LastError(),
            "Text of element DESC cannot be stored in XML: it holds the character U+0001 at "
            "position 4");
}

TEST_F(TemplateFileTest, AFieldThatCannotBeWrittenIsReportedWithItsIndexAndRecord) {
  AddRecord(document, RecordKind::SubRecord, "sub", {WholeNum(), String("a\x01")},
            {{OutputTag::Text, "F1"}, {OutputTag::Size, "\"\x02\""}});
  std::string text;
  EXPECT_NE(document.GetXml(text), kXmlOk);
  EXPECT_EQ(context.errors, (Texts{"Error saving input field 1 of record sub",
                                   "Error saving output field 1 of record sub"}));
}

TEST_F(TemplateFileTest, WritingTwiceGivesTheSameText) {
  AddRecord(document, RecordKind::SubRecord, "sub", {WholeNum()}, {{OutputTag::Text, "F1"}});
  const std::string first = XmlOf(document);
  EXPECT_EQ(XmlOf(document), first);
}

// ------------------------------------------------------------------------------- reading

TEST_F(TemplateFileTest, AllThatIsWrittenIsReadBack) {
  const std::string xml =
      Document(Parameters("Mil", "2.5", "3", "-7", "<TITLE>a title</TITLE>") +
               Record("Single Match", "title",
                      InputField("STRING", "T=") + InputField("SCAN_TO_NEXT", "", "3") +
                          InputField("NEWLINE") + OutputField("TEXT", "F2")) +
               Record("Sub-Record", "sub",
                      InputField("WHOLE_NUM", "1|2", "3",
                                 "REQUIRED=\"FALSE\" CASE_SENSITIVE=\"FALSE\" "
                                 "REPEATABLE=\"FALSE\"") +
                          OutputField("VALUE_u_MICRO", "F1")) +
               Record("Part", "part",
                      InputField("ALPHANUMERIC") + InputField("COLUMN", "", "7") +
                          InputField("SUBRECORD", "A2", "-1", kRepeatable) + InputField("NEWLINE") +
                          OutputField("REF_DESIGNATOR", "F1") +
                          OutputField("PART_NUMBER", "A1.F2") + OutputField("NONE", "F3")));
  Load(xml);
  EXPECT_EQ(XmlOf(document), xml);
  EXPECT_EQ(document.GetUnits(), 2);
  EXPECT_EQ(document.GetUnitsName(), "Mil");
  EXPECT_EQ(document.GetScaleFactor(), 2.5);
  EXPECT_EQ(document.GetBeginRow(), 3);
  EXPECT_EQ(document.GetEndAfterRow(), -7);
  EXPECT_EQ(document.GetTitle(), "a title");
  EXPECT_EQ(RecordsOf(document),
            (Texts{"A1 Single Match 'title' ok", "A2 Sub-Record 'sub' ok", "E1 Part 'part' ok"}));
  EXPECT_EQ(FieldOf(RecordOf(document, "E1"), 3).GetSubRecord(), &RecordOf(document, "A2"));
}

TEST_F(TemplateFileTest, LoadingEndsTheEmptyTemplateAndLeavesItUnmodified) {
  Load(Document(""));
  EXPECT_FALSE(document.IsEmptyTemplate());
  EXPECT_FALSE(document.IsModified());
  EXPECT_EQ(document.GetFilePath(), "unsaved") << "the path is the engine's affair";
  EXPECT_FALSE(context.stale);
}

TEST_F(TemplateFileTest, WhatIsMissingKeepsItsDefault) {
  Load(Document("<TEMPLATE_RECORD><INPUT_FIELD/><OUTPUT_FIELD/></TEMPLATE_RECORD>"));
  EXPECT_EQ(
      XmlOf(document),
      Document(Parameters() + "<TEMPLATE_RECORD TYPE=\"Undefined\"><DESC></DESC>" +
               InputField("UNDEFINED") +
               "<OUTPUT_FIELD KEY=\"UNDEFINED\"><VALUE></VALUE></OUTPUT_FIELD></TEMPLATE_RECORD>"));
}

TEST_F(TemplateFileTest, AuxiliaryRecordsBehindEntityRecordsGetTheSameIDsAndAreWrittenFirst) {
  const std::string part = Record("Part", "one");
  const std::string sub = Record("Sub-Record", "two");
  const std::string drill = Record("Drill", "three");
  const std::string multiple = Record("Multiple Match", "four");
  Load(Document(part + sub + drill + multiple + Parameters()));
  EXPECT_EQ(RecordsOf(document), (Texts{"A1 Sub-Record 'two' ok", "A2 Multiple Match 'four' ok",
                                        "E1 Part 'one' invalid", "E2 Drill 'three' invalid"}));
  EXPECT_EQ(XmlOf(document), Document(Parameters() + sub + multiple + part + drill));
}

TEST_F(TemplateFileTest, MmInDefaultUnitsLoadsAsIndex1AndIsWrittenBackAsMM) {
  Load(Document("<DEFAULT_UNITS>mm</DEFAULT_UNITS>"));
  EXPECT_EQ(document.GetUnits(), 1);
  EXPECT_EQ(document.GetUnitsName(), "MM");
  EXPECT_EQ(XmlOf(document), Document(Parameters("MM")));
}

TEST_F(TemplateFileTest, UnitsAreReadInAnyCaseAndCmLeavesThemAsTheyWere) {
  const std::vector<std::pair<std::string, std::int32_t>> texts = {
      {"INCH", 0}, {"inch", 0}, {"Mm", 1}, {"mIL", 2}, {"cm", 0}, {"", 0}, {" MM", 0}, {"1", 0}};
  for (const auto& [text, units] : texts) {
    Load(Document("<DEFAULT_UNITS>" + text + "</DEFAULT_UNITS>"));
    EXPECT_EQ(document.GetUnits(), units) << text;
    EXPECT_EQ(document.GetUnitsName(),
              (Texts{"Inch", "MM", "Mil"})[static_cast<std::size_t>(units)]);
  }
  document.Init();
  document.SetUnits(2);
  ASSERT_EQ(document.LoadFromXml(Document("<DEFAULT_UNITS>cm</DEFAULT_UNITS>")), kXmlOk);
  EXPECT_EQ(document.GetUnits(), 2);
  EXPECT_EQ(document.GetUnitsName(), "Mil");
}

TEST_F(TemplateFileTest, NumbersThatAreNoneLeaveTheDefaults) {
  Load(
      Document("<SCALE_FACTOR>two</SCALE_FACTOR>"
               "<BEGIN_TRANSLATION_AT_ROW>1.x</BEGIN_TRANSLATION_AT_ROW>"
               "<END_TRANSLATION_AFTER_ROW>99999999999</END_TRANSLATION_AFTER_ROW>"));
  EXPECT_EQ(document.GetScaleFactor(), 1.0);
  EXPECT_EQ(document.GetBeginRow(), 1);
  EXPECT_EQ(document.GetEndAfterRow(), 0);
}

TEST_F(TemplateFileTest, AnElementsValueIsTheTextOfAllItsDescendantsCDataIncluded) {
  Load(
      Document("<TITLE>a<b>b<!-- no --></b><![CDATA[<c>]]></TITLE>"
               "<TEMPLATE_RECORD TYPE=\"Part\"><DESC><x>de</x>sc</DESC></TEMPLATE_RECORD>"));
  EXPECT_EQ(document.GetTitle(), "ab<c>");
  EXPECT_EQ(RecordsOf(document), Texts{"E1 Part 'desc' invalid"});
}

TEST_F(TemplateFileTest, RecordTypesAreReadInAnyCaseAndUnknownOnesLeaveThatOfANewRecord) {
  Load(Document(Record("PART", "1") + Record("sub-record", "2") + Record("Subrecord", "3") +
                Record("undefined", "4") + Record("", "5")));
  EXPECT_EQ(RecordsOf(document), (Texts{"A1 Sub-Record '2' ok", "A2  '5' ok", "E1 Part '1' invalid",
                                        "E2 Undefined '3' invalid", "E3 Undefined '4' invalid"}));
  EXPECT_EQ(RecordOf(document, "E2").GetType(), RecordKind::FreshEntity);
  EXPECT_EQ(RecordOf(document, "E3").GetType(), RecordKind::Undefined);
  EXPECT_EQ(RecordOf(document, "A2").GetType(), RecordKind::IgnoredLines);
}

TEST_F(TemplateFileTest, AnUnknownTypeOrKeyTextDoesNotSurvive) {
  Load(Document(Record("Resistor", "r",
                       InputField("LETTERS", "", "-1") + OutputField("SOMETHING", "\"x\""))));
  EXPECT_EQ(
      XmlOf(document),
      Document(Parameters() + Record("Undefined", "r",
                                     InputField("UNDEFINED") + OutputField("UNDEFINED", "\"x\""))));
}

TEST_F(TemplateFileTest, ALowerCaseKeyIsItsTagAndAnUnknownOneLeavesTheElementUndefined) {
  Load(Document(Record("Multiple Match", "r",
                       OutputField("x_location", "1") + OutputField("UNDEFINED", "1") +
                           OutputField("unknown", "1") + OutputField("", "1"))));
  const CTNTemplateRecord& record = RecordOf(document, "A1");
  EXPECT_EQ(ElementOf(record, 1).GetTag(), OutputTag::XLocation);
  EXPECT_EQ(ElementOf(record, 1).GetTagText(), "X_LOCATION");
  for (const std::size_t number : {2u, 3u}) {
    EXPECT_EQ(ElementOf(record, number).GetTag(), OutputTag::Undefined);
    EXPECT_EQ(ElementOf(record, number).GetStatusText(), "Error: Undefined output element tag");
  }
  EXPECT_EQ(static_cast<int>(ElementOf(record, 4).GetTag()), 28) << "an empty key";
  EXPECT_EQ(ElementOf(record, 4).IsValid(), 1);
}

TEST_F(TemplateFileTest, TheTagIsSetAfterTheValueWasRead) {
  Load(Document(Record(
      "Multiple Match", "r",
      OutputField("SCALE", "\"2\"") + OutputField("SCALE", "") + "<OUTPUT_FIELD KEY=\"UNITS\"/>")));
  const CTNTemplateRecord& record = RecordOf(document, "A1");
  EXPECT_EQ(ElementOf(record, 1).GetExpression(), "\"2\"");
  EXPECT_EQ(ElementOf(record, 2).GetExpression(), "TEMPL_SCALE");
  EXPECT_EQ(ElementOf(record, 3).GetExpression(), "TEMPL_UNITS");
  EXPECT_EQ(ElementOf(record, 3).GetStatusText(), "") << "no note: nothing was set by hand";
}

TEST_F(TemplateFileTest, FlagsOtherThanFalseReadAsTrue) {
  Load(Document(Record(
      "Sub-Record", "r",
      InputField("ALPHA", "", "-1", "REQUIRED=\"false\" CASE_SENSITIVE=\"yes\" REPEATABLE=\"\"") +
          InputField("ALPHA", "", "-1",
                     "REQUIRED=\"no\" CASE_SENSITIVE=\"False\" REPEATABLE=\"FALSE\""))));
  const CTNTemplateRecord& record = RecordOf(document, "A1");
  EXPECT_FALSE(FieldOf(record, 1).IsRequired());
  EXPECT_TRUE(FieldOf(record, 1).IsCaseSensitive());
  EXPECT_TRUE(FieldOf(record, 2).IsRequired());
  EXPECT_FALSE(FieldOf(record, 2).IsCaseSensitive());
}

TEST_F(TemplateFileTest, UnknownElementsAndAttributesAreIgnoredAndWhatTheyHoldIsRead) {
  Load(
      "<?xml version=\"1.0\"?><!-- hello --><PARSER_TEMPLATE VERSION=\"2\"><NEW a=\"b\">"
      "<TITLE>inside</TITLE></NEW>text<title>lower</title>" +
      Record("Part", "part", "<COLOUR>red</COLOUR>" + InputField("NEWLINE")) +
      "</PARSER_TEMPLATE>");
  EXPECT_EQ(document.GetTitle(), "inside");
  EXPECT_EQ(XmlOf(document), Document(Parameters("Inch", "1", "1", "0", "<TITLE>inside</TITLE>") +
                                      Record("Part", "part", InputField("NEWLINE"))));
}

TEST_F(TemplateFileTest, ProcessingInstructionsAreNoRecordsAndNoFields) {
  const std::string record = Record("Sub-Record", "sub", InputField("WHOLE_NUM"));
  Load(Document("<?TEMPLATE_RECORD TYPE=\"Part\"?>" + Parameters() +
                Record("Sub-Record", "sub",
                       "<?INPUT_FIELD TYPE=\"ALPHA\"?>" + InputField("WHOLE_NUM") +
                           "<?OUTPUT_FIELD KEY=\"TEXT\"?>")));
  EXPECT_EQ(XmlOf(document), Document(Parameters() + record));
  document.Init();
  EXPECT_EQ(document.LoadFromXml("<?PARSER_TEMPLATE?><x><?TEMPLATE_RECORD?></x>"),
            kXmlGeneralFailure);
}

TEST_F(TemplateFileTest, NamesAreUpperCase) {
  Load(
      Document("<template_record TYPE=\"Part\"/><Title>x</Title>"
               "<TEMPLATE_RECORD type=\"Part\"><desc>x</desc></TEMPLATE_RECORD>"));
  EXPECT_EQ(document.GetTitle(), "untitled");
  EXPECT_EQ(RecordsOf(document), Texts{"E1 Undefined '' invalid"});
}

TEST_F(TemplateFileTest, WhiteSpaceBetweenElementsIsNothing) {
  Load(
      "<PARSER_TEMPLATE>\n  <TITLE> a b </TITLE>\n  <TEMPLATE_RECORD TYPE=\"Part\">\n"
      "    <DESC> d </DESC>\n  </TEMPLATE_RECORD>\n</PARSER_TEMPLATE>\n");
  EXPECT_EQ(document.GetTitle(), " a b ");
  EXPECT_EQ(RecordsOf(document), Texts{"E1 Part ' d ' invalid"});
}

TEST_F(TemplateFileTest, ARootOfAnotherNameIsReadWhenItHoldsSomethingOfATemplate) {
  Load("<OTHER><TITLE>x</TITLE></OTHER>");
  EXPECT_EQ(document.GetTitle(), "x");
  Load(Record("Part", "alone"));
  EXPECT_EQ(RecordsOf(document), Texts{"E1 Part 'alone' invalid"});
}

TEST_F(TemplateFileTest, ADocumentThatHoldsNothingOfATemplateIsNone) {
  for (const char* xml : {"<html><body/></html>", "<parser_template/>", "<TITLES/>"}) {
    document.Init();
    EXPECT_EQ(document.LoadFromXml(xml), kXmlGeneralFailure) << xml;
    EXPECT_TRUE(document.IsEmptyTemplate());
  }
}

TEST_F(TemplateFileTest, TextThatIsNotWellFormedIsAGeneralFailureAndChangesNothing) {
  for (const char* xml : {"", "text", "<PARSER_TEMPLATE><TITLE>x</TITLE>",
                          "<PARSER_TEMPLATE><TITLE>x</TITLE></PARSER_TEMPLATE><MORE/>",
                          "<PARSER_TEMPLATE><TITLE>&x;</TITLE></PARSER_TEMPLATE>"}) {
    document.Init();
    EXPECT_EQ(document.LoadFromXml(xml), kXmlGeneralFailure) << xml;
    EXPECT_EQ(static_cast<std::uint32_t>(kXmlGeneralFailure), 0x80004005u);
    EXPECT_EQ(document.GetTitle(), "untitled");
    EXPECT_TRUE(document.IsEmptyTemplate());
    EXPECT_NE(document.LastParseFailure().reason, "");
  }
}

TEST_F(TemplateFileTest, AFileThatCannotBeReadIsNotWellFormedAtLine0) {
  EXPECT_EQ(document.LoadFromFile("/nowhere/at/all.xml"), kXmlNotWellFormed);
  EXPECT_EQ(document.LastParseFailure().line, 0);
}

TEST_F(TemplateFileTest, RecordsInsideRecordsAreNoRecords) {
  Load(Document("<TEMPLATE_RECORD TYPE=\"Part\"><DESC>outer</DESC>" +
                Record("Drill", "inner", InputField("NEWLINE")) + "</TEMPLATE_RECORD>"));
  EXPECT_EQ(RecordsOf(document), Texts{"E1 Drill 'inner' invalid"})
      << "what the inner one says is read for the outer one";
  EXPECT_EQ(RecordOf(document, "E1").GetInputFields().size(), 1u);
}

TEST_F(TemplateFileTest, DeepNestingIsReadUpToTheLimitAndRefusedBehindIt) {
  const auto nested = [](std::size_t depth, const std::string& inside) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i)
      text += "<x>";
    text += inside;
    for (std::size_t i = 0; i < depth; ++i)
      text += "</x>";
    return text;
  };
  Load(Document(nested(250, "<TITLE>deep</TITLE>")));
  EXPECT_EQ(document.GetTitle(), "deep");
  document.Init();
  EXPECT_EQ(document.LoadFromXml(Document(nested(100000, "<TITLE>deep</TITLE>"))),
            kXmlGeneralFailure);
  EXPECT_EQ(document.GetTitle(), "untitled");
}

// ------------------------------------------------------------------------------- load order

/// Three records of which each names the next one: A1 names A2, A2 names A3.
std::string ChainForwards(const std::string& end) {
  return Record("Sub-Record", "first", InputField("SUBRECORD", "A2", "-1", kRepeatable)) +
         Record("Sub-Record", "second", InputField("SUBRECORD", "A3", "-1", kRepeatable)) +
         Record("Sub-Record", "third", end);
}
/// And the other way round: A3 names A2, A2 names A1.
std::string ChainBackwards(const std::string& end) {
  return Record("Sub-Record", "third", end) +
         Record("Sub-Record", "second", InputField("SUBRECORD", "A1", "-1", kRepeatable)) +
         Record("Sub-Record", "first", InputField("SUBRECORD", "A2", "-1", kRepeatable));
}

TEST_F(TemplateFileTest, AChainOfRecordsThatNameTheNextIsValid) {
  Load(Document(ChainForwards(InputField("WHOLE_NUM"))));
  EXPECT_EQ(RecordsOf(document), (Texts{"A1 Sub-Record 'first' ok", "A2 Sub-Record 'second' ok",
                                        "A3 Sub-Record 'third' ok"}));
}

TEST_F(TemplateFileTest, AChainOfThreeThatNamesThePreviousOnesIsValid) {
  Load(Document(ChainBackwards(InputField("WHOLE_NUM"))));
  EXPECT_EQ(RecordsOf(document), (Texts{"A1 Sub-Record 'third' ok", "A2 Sub-Record 'second' ok",
                                        "A3 Sub-Record 'first' ok"}));
}

TEST_F(TemplateFileTest, ALongerChainThatNamesThePreviousOnesStaysInvalidFromItsFourthRecordOn) {
  // From the last to the first, each record is looked at before the one that it names has been; a
  // second round carries validity one record further, and there is no third one.
  std::string records = Record("Sub-Record", "r1", InputField("WHOLE_NUM"));
  for (int i = 2; i <= 6; ++i) {
    records += Record("Sub-Record", "r" + std::to_string(i),
                      InputField("SUBRECORD", "A" + std::to_string(i - 1), "-1", kRepeatable));
  }
  Load(Document(records));
  EXPECT_EQ(RecordsOf(document),
            (Texts{"A1 Sub-Record 'r1' ok", "A2 Sub-Record 'r2' ok", "A3 Sub-Record 'r3' ok",
                   "A4 Sub-Record 'r4' invalid", "A5 Sub-Record 'r5' invalid",
                   "A6 Sub-Record 'r6' invalid"}));
  document.Validate();
  EXPECT_EQ(RecordOf(document, "A6").IsValid(), 1) << "nothing is wrong with it";
}

TEST_F(TemplateFileTest, EntityRecordsAreLookedAtAfterAllAuxiliaryRecords) {
  Load(Document(Record("Part", "part",
                       InputField("SUBRECORD", "A2", "-1", kRepeatable) + InputField("NEWLINE") +
                           OutputField("REF_DESIGNATOR", "F1") + OutputField("PART_NUMBER", "1")) +
                ChainForwards(InputField("WHOLE_NUM"))));
  EXPECT_EQ(RecordsOf(document).back(), "E1 Part 'part' ok");
}

TEST_F(TemplateFileTest, EntityRecordsThatNameEachOtherGoThroughTheSameTwoRounds) {
  const std::string outputs = OutputField("REF_DESIGNATOR", "1") + OutputField("PART_NUMBER", "1");
  std::string records = Record("Part", "p1", InputField("NEWLINE") + outputs);
  for (int i = 2; i <= 4; ++i) {
    records += Record("Part", "p" + std::to_string(i),
                      InputField("SUBRECORD", "E" + std::to_string(i - 1), "-1", kRepeatable) +
                          InputField("NEWLINE") + outputs);
  }
  Load(Document(records));
  EXPECT_EQ(RecordsOf(document), (Texts{"E1 Part 'p1' ok", "E2 Part 'p2' ok", "E3 Part 'p3' ok",
                                        "E4 Part 'p4' invalid"}));
}

TEST_F(TemplateFileTest, ADefectInAChainReachesAllWhoNameIt) {
  Load(Document(ChainForwards(InputField("STRING"))));
  EXPECT_EQ(RecordsOf(document),
            (Texts{"A1 Sub-Record 'first' invalid", "A2 Sub-Record 'second' invalid",
                   "A3 Sub-Record 'third' invalid"}));
  EXPECT_EQ(FieldOf(RecordOf(document, "A1"), 1).GetStatusText(),
            "Error: Template record A2 specified in match value column\nis in an invalid state");
}

TEST_F(TemplateFileTest, FieldsMayNameRecordsThatComeLaterInTheFile) {
  Load(Document(Record("Part", "part",
                       InputField("SUBRECORD", "a1", "-1", kRepeatable) + InputField("NEWLINE") +
                           OutputField("REF_DESIGNATOR", "F1") +
                           OutputField("PART_NUMBER", "A2.F1")) +
                Record("Sub-Record", "sub", InputField("ALPHA") + OutputField("TEXT", "F1")) +
                Record("Single Match", "title", InputField("ALPHA") + InputField("NEWLINE"))));
  EXPECT_EQ(RecordsOf(document),
            (Texts{"A1 Sub-Record 'sub' ok", "A2 Single Match 'title' ok", "E1 Part 'part' ok"}));
}

TEST_F(TemplateFileTest, ARecordThatNamesNothingKnownIsInvalid) {
  Load(Document(Record("Multiple Match", "r",
                       InputField("SUBRECORD", "A7", "-1", kRepeatable) + InputField("NEWLINE"))));
  EXPECT_EQ(RecordsOf(document), Texts{"A1 Multiple Match 'r' invalid"});
  EXPECT_EQ(FieldOf(RecordOf(document, "A1"), 1).GetMatchValueText(), "A7");
}

// ------------------------------------------------------------------------------- size

TEST_F(TemplateFileTest, AHundredThousandRecordsAreReadAndWrittenBack) {
  std::string xml = "<PARSER_TEMPLATE>" + Parameters();
  for (int i = 1; i <= 50000; ++i) {
    xml += Record("Sub-Record", "s" + std::to_string(i), InputField("WHOLE_NUM"));
  }
  for (int i = 1; i <= 50000; ++i) {
    xml += Record("Part", "p" + std::to_string(i),
                  InputField("SUBRECORD", "A" + std::to_string(i), "-1", kRepeatable) +
                      InputField("NEWLINE") + OutputField("REF_DESIGNATOR", "F1") +
                      OutputField("PART_NUMBER", "\"P\""));
  }
  xml += "</PARSER_TEMPLATE>";
  Load(xml);
  ASSERT_EQ(document.GetEntityRecords().size(), 50000u);
  ASSERT_EQ(document.GetAuxiliaryRecords().size(), 50000u);
  EXPECT_EQ(document.GetRecordID(document.GetEntityRecords().back().get()), "E50000");
  EXPECT_EQ(RecordOf(document, "E50000").IsValid(), 1);
  EXPECT_TRUE(XmlOf(document) == xml) << "what is written differs from what was read";
}

// ------------------------------------------------------------------------------- out of memory

/// Names, values and descriptions that need memory.
std::string NeedyTemplate() {
  return Document(
      Parameters("MM", "0.5", "2", "-3", "<TITLE>a title that is too long to be kept</TITLE>") +
      Record("Sub-Record", "a sub-record of a number",
             InputField("WHOLE_NUM", "1000000000000000|2000000000000000") +
                 InputField("STRING", "something quite long") +
                 OutputField("TEXT", "F1 + \"something longer\" + F2") +
                 OutputField("VALUE_u_MICRO", "\"something longer\"")) +
      Record("Part", "a part with a sub-record",
             InputField("ALPHANUMERIC") + InputField("SUBRECORD", "A1", "-1", kRepeatable) +
                 InputField("NEWLINE") + OutputField("REF_DESIGNATOR", "F1 A1.DESCRIPTION") +
                 OutputField("PART_NUMBER", "V1 \"something longer\"") +
                 OutputField("NONE", "F2")));
}

/// How many fields all records have: "5 in, 5 out".
std::string CountFields(const CTNParserTemplate& document) {
  std::size_t inputs = 0;
  std::size_t outputs = 0;
  for (const auto* list : {&document.GetAuxiliaryRecords(), &document.GetEntityRecords()}) {
    for (const auto& record : *list) {
      inputs += record->GetInputFields().size();
      outputs += record->GetOutputFields().size();
    }
  }
  return std::to_string(inputs) + " in, " + std::to_string(outputs) + " out";
}

class LoadWithoutMemoryTest : public TestFolder {
 protected:
  /// Lets every allocation of the load fail in turn. A load that fails leaves a new template and
  /// the error log; one that does not has loaded all, or tells what it left out.
  template <class Load>
  void ExpectLoadSurvivesFailures(Load load, MemoryFails fails = MemoryFails::Once) {
    const std::int64_t failures = ForEveryAllocation([&](std::int64_t granted) {
      CTNParserTemplate document(nullptr);
      document.GetErrorLog().AddMessage("before");
      int status = kXmlOk;
      const bool failed = FailsAfter(
          granted, [&] { status = load(document); }, fails);
      Texts log = document.GetErrorLog().GetAllLines();
      const bool kept = !log.empty() && log[0] == "before";
      EXPECT_TRUE(kept) << granted;
      if (kept) log.erase(log.begin());
      if (status < 0) {
        ExpectReset(document);
      } else if (log.empty()) {
        EXPECT_EQ(XmlOf(document), xml) << granted;
      } else {
        leftOut.insert(CountFields(document) + ": " + log[0]);
      }
      return failed;
    });
    EXPECT_GT(failures, 0);
  }

  static void ExpectReset(CTNParserTemplate& document) {
    EXPECT_EQ(XmlOf(document), Document(Parameters()));
    EXPECT_TRUE(document.IsEmptyTemplate());
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(document.GetFilePath(), "unsaved");
    EXPECT_EQ(document.GetErrorLog().GetLogName(), "templerrs.log");
    EXPECT_EQ(ApplyToText(document, "a\n").Readable(), Texts{"??{F1=a|F2=}"});
  }

  const std::string xml = NeedyTemplate();
  std::set<std::string> leftOut;
};

TEST_F(LoadWithoutMemoryTest, ATextIsLoadedWithWhatItTellsOrNotAtAll) {
  ExpectLoadSurvivesFailures(
      [this](CTNParserTemplate& document) { return document.LoadFromXml(xml); });
  for (const std::string record : {"a sub-record of a number", "a part with a sub-record"}) {
    EXPECT_EQ(leftOut.count("4 in, 5 out: Error loading input field for record " + record +
                            ". Possible low memory condition."),
              1u);
    EXPECT_EQ(leftOut.count("5 in, 4 out: Error loading output field for record " + record +
                            ". Possible low memory condition."),
              1u);
  }
}

TEST_F(LoadWithoutMemoryTest, AFileIsLoadedWithWhatItTellsOrNotAtAll) {
  WriteFile("template.xml", xml);
  const std::string path = PathOf("template.xml");
  ExpectLoadSurvivesFailures(
      [&path](CTNParserTemplate& document) { return document.LoadFromFile(path); });
  EXPECT_NE(leftOut, std::set<std::string>());
}

TEST_F(LoadWithoutMemoryTest, WhatIsNoTemplateIsNotLoaded) {
  const std::string missing = PathOf("missing.xml");
  for (const char* text : {"<PARSER_TEMPLATE><TITLE>open", "<OTHER>text</OTHER>"}) {
    ExpectLoadSurvivesFailures(
        [text](CTNParserTemplate& document) { return document.LoadFromXml(text); });
  }
  ExpectLoadSurvivesFailures(
      [&missing](CTNParserTemplate& document) { return document.LoadFromFile(missing); });
  EXPECT_EQ(leftOut, std::set<std::string>());
}

TEST_F(LoadWithoutMemoryTest, WhereTheMemoryEndsForGoodItIsTheSame) {
  ExpectLoadSurvivesFailures(
      [this](CTNParserTemplate& document) { return document.LoadFromXml(xml); },
      MemoryFails::FromThenOn);
}

class TemplateFileLocaleTest : public CommaLocaleTest {};

TEST_F(TemplateFileLocaleTest, TheSameFileIsWrittenAndReadUnderAnyLocale) {
  CTNParserTemplate document(nullptr);
  document.SetScaleFactor(1234.5);
  document.SetEndAfterRow(-12345);
  EXPECT_EQ(XmlOf(document), Document(Parameters("Inch", "1234.5", "1", "-12345")));
  CTNParserTemplate read(nullptr);
  ASSERT_EQ(read.LoadFromXml(XmlOf(document)), kXmlOk);
  EXPECT_EQ(read.GetScaleFactor(), 1234.5);
  EXPECT_EQ(read.GetEndAfterRow(), -12345);
}

}  // namespace
}  // namespace bomparser
