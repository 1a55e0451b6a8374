// The entity list put together by the compiled program and by the records themselves.

#include "template/OutputProgram.h"
#include "tests/support/Application.h"
#include "tests/support/TemplateBuilder.h"

#include <gtest/gtest.h>
#include <string>

namespace bomparser::test {
namespace {

class OutputProgramTest : public testing::Test {
 protected:
  CTNTemplateRecord& Add(RecordKind kind, const std::vector<FieldSpec>& fields,
                         const std::vector<OutputSpec>& outputs = {}) {
    CTNTemplateRecord& record = AddRecord(document, kind, "record", fields, outputs);
    EXPECT_EQ(record.IsValid(), 1) << record.GetStatusText();
    return record;
  }
  CTNTemplateRecord& AddPart(const std::vector<FieldSpec>& fields,
                             std::vector<OutputSpec> outputs) {
    outputs.insert(outputs.begin(), {OutputTag::PartNumber, "\"P\""});
    outputs.insert(outputs.begin(), {OutputTag::RefDesignator, "F1"});
    return Add(RecordKind::Part, fields, outputs);
  }
  /// What stands behind the two elements that every part has, of a text of one block.
  std::string Rest(std::string_view text) {
    std::string list = List(text);
    const std::string mark = "<PART_NUMBER>P</PART_NUMBER>";
    const std::size_t at = list.find(mark);
    if (at == std::string::npos) return list;
    return list.substr(at + mark.size(), list.rfind("</ENTITY>") - at - mark.size());
  }
  std::string List(std::string_view text) {
    const Application application = ApplyToText(document, text);
    EXPECT_TRUE(application.done) << application.error;
    std::string list = EntityListOf(application);
    EXPECT_EQ(list, EntityListPlainly(application));
    return list;
  }
  CTNParserTemplate document{nullptr};
};

TEST_F(OutputProgramTest, EveryEntityBlockGivesOneEntity) {
  Add(RecordKind::MultipleMatch, {WholeNum(), Newline()}, {{OutputTag::Text, "F1"}});
  AddPart({Alpha(), Newline()}, {});
  EXPECT_EQ(List("a\n1\nb\n-\n"),
            "<ENTITY>Part<REF_DESIGNATOR>a</REF_DESIGNATOR><PART_NUMBER>P</PART_NUMBER></ENTITY>"
            "<ENTITY>Part<REF_DESIGNATOR>b</REF_DESIGNATOR><PART_NUMBER>P</PART_NUMBER></ENTITY>");
}

TEST_F(OutputProgramTest, ConstantsAndFieldsAreJoined) {
  AddPart({Alpha(), Optional(WholeNum()), Newline()},
          {{OutputTag::Text, "F1 + F2 \" x\" TYPE DESCRIPTION 12 TEMPL_UNITS F3"}});
  EXPECT_EQ(Rest("a7\n"), "<TEXT>a7 xPartrecord12Inch</TEXT>");
  EXPECT_EQ(Rest("a\n"), "<TEXT>a xPartrecord12Inch</TEXT>");
}

TEST_F(OutputProgramTest, ASubRecordUnderNoneWritesItsElementsWithTheirTags) {
  Add(RecordKind::SubRecord, {WholeNum(), Optional(Space())},
      {{OutputTag::Text, "F1"}, {OutputTag::XLocation, "F1"}});
  AddPart({Alpha(), SubRecord("A1"), Newline()}, {{OutputTag::None, "F2"}});
  EXPECT_EQ(Rest("a1 2\n"),
            "<TEXT>1</TEXT><X_LOCATION>1</X_LOCATION><TEXT>2</TEXT><X_LOCATION>2</X_LOCATION>");
}

TEST_F(OutputProgramTest, ASubRecordUnderATagWritesItsElementsBareWithBlanksBehind) {
  Add(RecordKind::SubRecord, {WholeNum(), Optional(Space())},
      {{OutputTag::Text, "F1"}, {OutputTag::XLocation, "F1 F2"}});
  AddPart({Alpha(), SubRecord("A1"), Newline()}, {{OutputTag::Text, "F2"}});
  EXPECT_EQ(Rest("a1 2\n"), "<TEXT>1 1 2 2 </TEXT>");
}

TEST_F(OutputProgramTest, AnEmptyBareValueGetsNoBlank) {
  Add(RecordKind::SubRecord, {Optional(WholeNum()), Optional(Space())},
      {{OutputTag::Text, "F1"}, {OutputTag::Text, "F2"}});
  AddPart({Alpha(), SubRecord("A1"), Newline()}, {{OutputTag::Text, "F2"}});
  EXPECT_EQ(Rest("a\n"), "<TEXT></TEXT>");
  EXPECT_EQ(Rest("a7\n"), "<TEXT>7 </TEXT>");
}

TEST_F(OutputProgramTest, AnEntityAsSubRecordHasItsWrapperOnlyWhereTagsAreOn) {
  Add(RecordKind::Drill, {WholeNum(), Newline()},
      {{OutputTag::TCode, "F1"},
       {OutputTag::Diameter, "2"},
       {OutputTag::Scale, "3"},
       {OutputTag::Units, "\"mm\""}});
  AddPart({Alpha(), SubRecord("E1")}, {{OutputTag::None, "F2"}, {OutputTag::Text, "F2"}});
  EXPECT_EQ(Rest("a1\n"),
            "<ENTITY>Drill<TCODE>1</TCODE><DIAMETER>2</DIAMETER><SCALE>3</SCALE><UNITS>mm</UNITS>"
            "</ENTITY><TEXT>1 2 3 mm </TEXT>");
}

TEST_F(OutputProgramTest, AnOutputSymbolIsBareAlsoInsideNone) {
  AddPart({Alpha(), Newline()}, {{OutputTag::None, "V1"}, {OutputTag::Text, "V1 V1"}});
  EXPECT_EQ(Rest("a\n"), "a <TEXT>a a </TEXT>");
}

TEST_F(OutputProgramTest, SingleMatchValuesAreThoseOfTheEndOfTheFile) {
  Add(RecordKind::SingleMatch, {Alpha("mm|in"), Newline()},
      {{OutputTag::Units, "F1"}, {OutputTag::Text, "\"u\""}});
  AddPart({Alpha(), Newline()}, {{OutputTag::None, "A1"},
                                 {OutputTag::Text, "A1"},
                                 {OutputTag::Text, "A1.F1 A1.V1 A1.DESCRIPTION"}});
  EXPECT_EQ(Rest("a\nmm\n"),
            "<UNITS>mm</UNITS><TEXT>u</TEXT><TEXT>mm u </TEXT><TEXT>mmmm record</TEXT>");
  EXPECT_EQ(Rest("a\n"), "<TEXT></TEXT><TEXT>record</TEXT>");
}

TEST_F(OutputProgramTest, AScanOverLinesGivesItsLinesJoined) {
  AddPart({Alpha(), Scan(), String("END"), Newline()}, {{OutputTag::Text, "F2"}});
  EXPECT_EQ(Rest("a 1\n2\n33END\n"), "<TEXT> 1233</TEXT>");
  // One character behind the last line end is dropped.
  EXPECT_EQ(Rest("a 1\n2END\n"), "<TEXT> 1</TEXT>");
  EXPECT_EQ(Rest("a12END\n"), "<TEXT>12</TEXT>");
}

TEST_F(OutputProgramTest, LongTextsAreWrittenWhole) {
  AddPart({Alpha(), Space(), NotWhtSpace(), Newline()}, {{OutputTag::Text, "F3"}});
  for (const std::size_t size : {31U, 32U, 33U, 253U, 254U, 255U, 256U, 70'000U, 600'000U}) {
    const std::string word(size, '7');
    EXPECT_EQ(Rest("a " + word + '\n'), "<TEXT>" + word + "</TEXT>") << size;
  }
}

TEST_F(OutputProgramTest, WhatIsWrittenComesInPiecesBetweenBeforeAndBehind) {
  AddPart({Alpha(), Newline()}, {});
  std::string text;
  for (int i = 0; i < 20'000; ++i)
    text += "abc\n";
  const Application application = ApplyToText(document, text);
  std::string list;
  int pieces = 0;
  const bool done =
      OutputProgram(*application.blocks.GetResult()).Write("<<", ">>", [&](std::string_view piece) {
        list += piece;
        ++pieces;
        return true;
      });
  EXPECT_TRUE(done);
  EXPECT_GT(pieces, 1);
  EXPECT_EQ(list, "<<" + EntityListPlainly(application) + ">>");
}

TEST_F(OutputProgramTest, ASinkThatRefusesStopsTheWriting) {
  AddPart({Alpha(), Newline()}, {});
  std::string text;
  for (int i = 0; i < 20'000; ++i)
    text += "abc\n";
  const Application application = ApplyToText(document, text);
  int pieces = 0;
  EXPECT_FALSE(
      OutputProgram(*application.blocks.GetResult()).Write("<<", ">>", [&pieces](std::string_view) {
        return ++pieces < 2;
      }));
  EXPECT_EQ(pieces, 2);
}

TEST_F(OutputProgramTest, AResultWithoutEntitiesIsWhatStandsAround) {
  const Application application = ApplyToText(document, "a\n");
  std::string list;
  EXPECT_TRUE(OutputProgram(*application.blocks.GetResult())
                  .Write("<<", ">>", [&list](std::string_view piece) {
                    list += piece;
                    return true;
                  }));
  EXPECT_EQ(list, "<<>>");
}

TEST_F(OutputProgramTest, ElementsThatNameEachOtherEnd) {
  CTNTemplateRecord& record =
      AddPart({Alpha(), Newline()}, {{OutputTag::Text, "F1"}, {OutputTag::Text, "V3"}});
  record.GetOutputFields()[2]->SetExpression("F1 V4");
  record.Validate();
  ASSERT_EQ(record.IsValid(), 1) << record.GetStatusText();
  EXPECT_EQ(Rest("a\n"), "<TEXT>a</TEXT><TEXT>a </TEXT>");
}

}  // namespace
}  // namespace bomparser::test
