// The entity list put together by the compiled program and by the records themselves.

#include "template/NestingLimits.h"
#include "template/OutputProgram.h"
#include "tests/support/Application.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/Repeat.h"
#include "tests/support/TemplateBuilder.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <vector>

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

/// `count` elements, V`first` and those behind it: each names the next one, the last says `end`.
std::vector<OutputSpec> Chain(int first, int count, const std::string& end) {
  std::vector<OutputSpec> elements;
  for (int i = 1; i < count; ++i)
    elements.push_back({OutputTag::Text, "V" + std::to_string(first + i)});
  elements.push_back({OutputTag::Text, end});
  return elements;
}

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
  std::vector<std::size_t> sizes;
  const bool done =
      OutputProgram(*application.blocks.GetResult()).Write("<<", ">>", [&](std::string_view piece) {
        list += piece;
        sizes.push_back(piece.size());
        return true;
      });
  EXPECT_TRUE(done);
  ASSERT_GT(sizes.size(), 2U);
  // A file takes pieces faster that start at multiples of their size.
  for (std::size_t i = 0; i + 1 < sizes.size(); ++i)
    EXPECT_EQ(sizes[i], std::size_t{256} << 10) << i;
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

TEST_F(OutputProgramTest, AVeryLongChainOfSubRecordsIsCompiledAndWritten) {
  constexpr int kCount = 30'000;
  const std::string word =
      "<TEMPLATE_RECORD TYPE='Sub-Record'>"
      "<INPUT_FIELD TYPE='STRING'><MATCH_VALUE_STR>x</MATCH_VALUE_STR></INPUT_FIELD>";
  std::string xml = "<PARSER_TEMPLATE>";
  for (int next = 2; next <= kCount; ++next) {
    xml += word + "<INPUT_FIELD TYPE='SUBRECORD' REQUIRED='FALSE'><MATCH_VALUE_STR>A" +
           std::to_string(next) +
           "</MATCH_VALUE_STR></INPUT_FIELD>"
           "<OUTPUT_FIELD KEY='TEXT'><VALUE>F1 F2</VALUE></OUTPUT_FIELD></TEMPLATE_RECORD>";
  }
  ASSERT_EQ(document.LoadFromXml(xml + word + "</TEMPLATE_RECORD></PARSER_TEMPLATE>"), kXmlOk);
  AddPart({WholeNum(), SubRecord("A1"), Newline()}, {{OutputTag::Text, "F2"}});
  EXPECT_EQ(Rest("7xxx\n"), "<TEXT>xxx </TEXT>");
}

// ------------------------------------------------------------------------------- limits

/// Items that are given whole: each follows seven references and gives four words. Behind them four
/// references are left, which lead to two words more.
constexpr std::size_t kWhole = kMaxReferences / 7;
static_assert(kMaxReferences % 7 == 4);

TEST_F(OutputProgramTest, AllItemsOfOneExpressionTogetherFollowAsManyReferencesAsAValueMay) {
  AddPart({Alpha(), Newline()}, {{OutputTag::Text, "V4 V4"},
                                 {OutputTag::Text, "V5 V5"},
                                 {OutputTag::Text, "F1"},
                                 {OutputTag::Text, Repeat("V3 ", 2000)}});
  EXPECT_EQ(Rest("a\n"), "<TEXT>a a a a </TEXT><TEXT>a a </TEXT><TEXT>a</TEXT><TEXT>" +
                             Repeat("a a a a ", kWhole) + "a a </TEXT>");
}

TEST_F(OutputProgramTest, ReferencesInsideSingleMatchRecordsCountForTheValueThatNamesThem) {
  Add(RecordKind::SingleMatch, {Alpha("mm|in"), Newline()},
      {{OutputTag::Text, "V2 V2"}, {OutputTag::Text, "V3 V3"}, {OutputTag::Text, "F1"}});
  AddPart({Alpha(), Newline()}, {{OutputTag::Text, "V4 V4"},
                                 {OutputTag::Text, "V5 V5"},
                                 {OutputTag::Text, "F1"},
                                 {OutputTag::Text, Repeat("V3 A1.V1 ", 1000)}});
  static_assert(kWhole % 2 == 0);
  EXPECT_EQ(Rest("a\nmm\n"), "<TEXT>a a a a </TEXT><TEXT>a a </TEXT><TEXT>a</TEXT><TEXT>" +
                                 Repeat("a a a a mm mm mm mm ", kWhole / 2) + "a a </TEXT>");
}

constexpr std::size_t kDeepest = kMaxReferenceDepth;

TEST_F(OutputProgramTest, AnElementOfASingleMatchRecordIsOneReferenceMore) {
  Add(RecordKind::SingleMatch, {Alpha("mm|in"), Newline()}, {{OutputTag::Text, "F1"}});
  AddPart({Alpha(), Newline()}, Chain(3, kDeepest + 10, "A1.V1"));
  EXPECT_EQ(Rest("a\nmm\n"), Repeat("<TEXT></TEXT>", 10) + Repeat("<TEXT>mm </TEXT>", kDeepest));
}

TEST_F(OutputProgramTest, AFieldOfASingleMatchRecordIsNoReference) {
  Add(RecordKind::SingleMatch, {Alpha("mm|in"), Newline()});
  AddPart({Alpha(), Newline()}, Chain(3, kDeepest + 10, "A1.F1"));
  EXPECT_EQ(Rest("a\nmm\n"),
            Repeat("<TEXT></TEXT>", 9) + Repeat("<TEXT>mm </TEXT>", kDeepest) + "<TEXT>mm</TEXT>");
}

TEST_F(OutputProgramTest, ReferencesInFrontOfASubRecordCountForWhatItMayFollowThere) {
  Add(RecordKind::SubRecord, {WholeNum()}, Chain(1, 100, "F1"));
  std::vector<OutputSpec> outputs = Chain(4, 151, "F2");
  outputs.insert(outputs.begin(), {OutputTag::Text, "F2"});
  AddPart({Alpha(), SubRecord("A1"), Newline()}, outputs);
  const auto ones = [](std::size_t count) { return "<TEXT>" + Repeat("1 ", count) + "</TEXT>"; };
  std::string expected = ones(100);
  for (std::size_t before = 151; before-- > 0;)
    expected += ones(std::min<std::size_t>(100, kDeepest - before + 1));
  EXPECT_EQ(Rest("a1\n"), expected);
}

// ------------------------------------------------------------------------------- out of memory

/// Values of a single-match record, through symbols and long enough to need memory.
class OutputWithoutMemoryTest : public OutputProgramTest {
 protected:
  OutputWithoutMemoryTest() {
    const std::string quoted = " \"" + kLong + '"';
    Add(RecordKind::SingleMatch, {String("T="), Alpha(), Newline()},
        {{OutputTag::Text, "V2 V2"}, {OutputTag::Width, "F2" + quoted}});
    AddPart({Alpha(), Newline()}, {{OutputTag::Text, "V4 A1.V1"},
                                   {OutputTag::None, "A1"},
                                   {OutputTag::Text, "F1 A1.V2" + quoted}});
    application = ApplyToText(document, "T=t\nR\n");
  }

  /// Lets every allocation of the attempt fail in turn; what is written next must be whole.
  template <class Attempt>
  void ExpectNextIsWhole(Attempt attempt) {
    const std::string title = "t" + kLong;
    const std::string whole =
        "<ENTITY>Part<REF_DESIGNATOR>R</REF_DESIGNATOR><PART_NUMBER>P</PART_NUMBER><TEXT>" +
        Repeat(title + ' ', 5) + "</TEXT><TEXT>" + Repeat(title + ' ', 2) + "</TEXT><WIDTH>" +
        title + "</WIDTH><TEXT>R" + title + ' ' + kLong + "</TEXT></ENTITY>";
    const std::int64_t failures = ForEveryAllocation([&](std::int64_t granted) {
      bool thrown = false;
      const bool failed = FailsAfter(granted, [&] {
        try {
          attempt();
        } catch (const std::bad_alloc&) {
          thrown = true;
        }
      });
      EXPECT_EQ(thrown, failed);
      EXPECT_EQ(EntityListOf(application), whole) << granted;
      EXPECT_EQ(EntityListPlainly(application), whole) << granted;
      return failed;
    });
    EXPECT_GT(failures, 0);
  }

  const std::string kLong = std::string(40, '-');
  Application application;
};

TEST_F(OutputWithoutMemoryTest, AfterAListThatFailedTheNextOneIsWhole) {
  ExpectNextIsWhole([this] { EntityListOf(application); });
}

TEST_F(OutputWithoutMemoryTest, AfterAnEntityTextThatFailedTheNextOneIsWhole) {
  ExpectNextIsWhole([this] { EntityListPlainly(application); });
}

}  // namespace
}  // namespace bomparser::test
