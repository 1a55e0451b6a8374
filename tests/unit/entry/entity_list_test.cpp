#include "entry/EntityListWriter.h"
#include "tests/support/EngineTest.h"

#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {
namespace {

using namespace test;

class EntityListTest : public EngineTestIn<TestFolder> {
 protected:
  /// The list of the text, which the file, the sink and the single blocks must agree on.
  std::string ListFor(const std::string& text) {
    Open(text);
    Document().Validate();
    EXPECT_EQ(Apply(), "ok");
    std::string error;
    EXPECT_TRUE(engine.OutputEntityList(PathOf("list.xml"), error)) << error;
    std::string blocks = "<TN_FILEPARSER_ENTITIES>";
    for (std::size_t i = 0; i < InFile().GetBlocks().GetSize(); ++i) {
      blocks += GetEntityText(InFile().GetBlocks().GetAt(i));
    }
    EXPECT_EQ(blocks + "</TN_FILEPARSER_ENTITIES>", BytesOf("list.xml"));
    EXPECT_EQ(List(), BytesOf("list.xml"));
    EXPECT_EQ(SideCopy(), BytesOf("list.xml"));
    return BytesOf("list.xml");
  }
};

TEST_F(EntityListTest, APartOfTwoElementsIsWrittenInOneLine) {
  AddRecord(Document(), RecordKind::Part, "part", {Alnum(), Space(), DecimalNum(), Newline()},
            {Designator("F1"), {OutputTag::XLocation, "F3"}, PartNumber()});
  EXPECT_EQ(ListFor("R12 1.250\n"),
            "<TN_FILEPARSER_ENTITIES><ENTITY>Part<REF_DESIGNATOR>R12</REF_DESIGNATOR>"
            "<X_LOCATION>1.250</X_LOCATION><PART_NUMBER>P</PART_NUMBER></ENTITY>"
            "</TN_FILEPARSER_ENTITIES>");
}

TEST_F(EntityListTest, AnInputFileWithoutEntityBlocksYieldsExactlyTheTwoTags) {
  EXPECT_EQ(ListFor("one\ntwo\n"), "<TN_FILEPARSER_ENTITIES></TN_FILEPARSER_ENTITIES>");
  EXPECT_EQ(ListFor(""), "<TN_FILEPARSER_ENTITIES></TN_FILEPARSER_ENTITIES>");
}

TEST_F(EntityListTest, BeforeAnyApplicationTheListIsEmpty) {
  EXPECT_EQ(List(), "<TN_FILEPARSER_ENTITIES></TN_FILEPARSER_ENTITIES>");
}

TEST_F(EntityListTest, OnlyBlocksOfEntityRecordsAreWritten) {
  Document().SetBeginRow(2);
  AddRecord(Document(), RecordKind::SingleMatch, "single", {String("s"), Newline()},
            {{OutputTag::Text, "F1"}});
  AddRecord(Document(), RecordKind::MultipleMatch, "multiple", {String("m"), Newline()},
            {{OutputTag::Text, "F1"}});
  AddRecord(Document(), RecordKind::Part, "part", {Alnum(), Newline()},
            {Designator("F1"), PartNumber()});
  EXPECT_EQ(ListFor("ignored\ns\nm\nR1\n\nm\nR2\n"), ListOfWords({"R1", "R2"}));
}

TEST_F(EntityListTest, EntitiesCarryTheNameOfTheirType) {
  const auto allF1 = [](const std::vector<OutputTag>& tags) {
    std::vector<OutputSpec> outputs;
    outputs.reserve(tags.size());
    for (const OutputTag tag : tags)
      outputs.push_back({tag, "F1"});
    return outputs;
  };
  AddRecord(Document(), RecordKind::Drill, "drill", {String("d"), Newline()},
            allF1({OutputTag::TCode, OutputTag::Diameter, OutputTag::Scale, OutputTag::Units}));
  AddRecord(Document(), RecordKind::Part, "part", {String("p"), Newline()},
            {Designator("F1"), PartNumber()});
  EXPECT_EQ(ListFor("d\np\n"),
            "<TN_FILEPARSER_ENTITIES><ENTITY>Drill<TCODE>d</TCODE><DIAMETER>d</DIAMETER>"
            "<SCALE>d</SCALE><UNITS>d</UNITS></ENTITY>" +
                EntityFor("p") + "</TN_FILEPARSER_ENTITIES>");
}

TEST_F(EntityListTest, ARecordOfType0Or4WritesUndefinedFollowedByItsElements) {
  // Such a record is invalid and matches nothing in an application; a block that it is made to
  // match is written all the same.
  for (const RecordKind kind : {RecordKind::Undefined, RecordKind::FreshEntity}) {
    CTNTemplateRecord& record = AddRecord(Document(), kind, "undefined", {String("x"), Newline()},
                                          {{OutputTag::Width, "F1"}});
    CTNParsedFileBlock block(nullptr);
    ASSERT_TRUE(block.AddFieldText("x", FieldOf(record, 1)));
    block.SetRecord(&record);
    EXPECT_EQ(GetEntityText(block), "<ENTITY>Undefined<WIDTH>x</WIDTH></ENTITY>");
  }
}

TEST_F(EntityListTest, AnElementWhoseValueIsEmptyWritesAnEmptyPairOfTags) {
  AddRecord(Document(), RecordKind::Part, "part", {Optional(String("x")), Alnum(), Newline()},
            {Designator("F2"), PartNumber(), {OutputTag::Width, "F1"}});
  EXPECT_EQ(ListFor("R1\n"),
            "<TN_FILEPARSER_ENTITIES><ENTITY>Part<REF_DESIGNATOR>R1</REF_DESIGNATOR>"
            "<PART_NUMBER>P</PART_NUMBER><WIDTH></WIDTH></ENTITY></TN_FILEPARSER_ENTITIES>");
}

TEST_F(EntityListTest, AnElementTaggedNoneWithAnEmptyValueWritesNothing) {
  AddRecord(Document(), RecordKind::SubRecord, "sub", {String("x")}, {{OutputTag::Width, "F1"}});
  AddRecord(Document(), RecordKind::Part, "part", {Optional(SubRecord("A1")), Alnum(), Newline()},
            {Designator("F2"), PartNumber(), None("F1")});
  Relink(Document());
  EXPECT_EQ(ListFor("R1\n"), ListOfWords({"R1"}));
}

TEST_F(EntityListTest, ValuesThatHoldMarkupAreWrittenUnescaped) {
  AddRecord(Document(), RecordKind::Part, "a<b>&\"'", {NotWhtSpace(), Newline()},
            {Designator("F1"), PartNumber("DESCRIPTION")});
  EXPECT_EQ(ListFor("<&>\"'\n"),
            "<TN_FILEPARSER_ENTITIES><ENTITY>Part<REF_DESIGNATOR><&>\"'</REF_DESIGNATOR>"
            "<PART_NUMBER>a<b>&\"'</PART_NUMBER></ENTITY></TN_FILEPARSER_ENTITIES>");
}

TEST_F(EntityListTest, BytesOfTheInputAreWrittenAsTheyAre) {
  AddRecord(Document(), RecordKind::Part, "part", {NotWhtSpace(), Newline()},
            {Designator("F1"), PartNumber()});
  std::string bytes;
  for (int code = 1; code < 256; ++code) {
    if (code > 32 || code < 9) bytes += static_cast<char>(code);
  }
  EXPECT_EQ(ListFor(bytes + '\n'), ListOfWords({bytes}));
}

TEST_F(EntityListTest, WhileResultsAreStaleEveryBlockStandsAsQuestionMarks) {
  Load(TemplateFor("a"));
  Open("a\nother\na\n");
  ASSERT_EQ(Apply(), "ok");
  InFile().SetStale(true);
  EXPECT_EQ(List(), "<TN_FILEPARSER_ENTITIES>\?\?\?\?\?\?</TN_FILEPARSER_ENTITIES>");
  EXPECT_EQ(GetEntityText(InFile().GetBlocks().GetAt(1)), "??") << "entity or not";
  std::string error;
  EXPECT_TRUE(engine.OutputEntityList(PathOf("list.xml"), error)) << "the writer does not refuse";
  EXPECT_EQ(BytesOf("list.xml"), List());
}

TEST_F(EntityListTest, AnIndexOutsideTheBlocksIsAnError) {
  ListFor("a\n");
  EXPECT_THROW(InFile().GetBlocks().GetAt(1), std::invalid_argument);
}

TEST_F(EntityListTest, ASinkThatStopsEndsTheWriting) {
  ListFor("a\n");
  int pieces = 0;
  std::string error;
  const auto stop = [&pieces](std::string_view) {
    ++pieces;
    return false;
  };
  EXPECT_FALSE(engine.WriteEntityList(stop, error));
  EXPECT_EQ(pieces, 1);
  EXPECT_EQ(error, "");
}

TEST_F(EntityListTest, MemoryThatRunsOutEndsTheWritingAndLeavesTheEngine) {
  ListFor("a\n");
  std::string error;
  EXPECT_FALSE(
      engine.WriteEntityList([](std::string_view) -> bool { throw std::bad_alloc(); }, error));
  EXPECT_EQ(error, XmlStatusText(kXmlOutOfMemory));
}

TEST_F(EntityListTest, ALargeListArrivesInPieces) {
  Load(TemplateFor("abcdefghijklmnopqrstuvwxyz"));
  std::string text;
  std::vector<std::string> words;
  for (int i = 0; i < 20000; ++i) {
    text += "abcdefghijklmnopqrstuvwxyz\n";
    words.push_back("abcdefghijklmnopqrstuvwxyz");
  }
  EXPECT_TRUE(ListFor(text) == ListOfWords(words));
}

}  // namespace
}  // namespace bomparser
