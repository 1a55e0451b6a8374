#include "ui/controls/EntityListText.h"

#include "ui/controls/DisplayText.h"
#include "ui/controls/EntityListPieces.h"

#include <array>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace bomparser::test {
namespace {

std::string List(const std::string& entities) {
  return "<TN_FILEPARSER_ENTITIES>" + entities + "</TN_FILEPARSER_ENTITIES>";
}

std::string LaidOut(const std::string& list) { return LayOutEntityList(list).text.toStdString(); }

/// The pieces with a letter each: O and C of an entity, o and c of a tag, v for a value.
std::string Pieces(const std::string& part) {
  constexpr std::string_view kLetters = "OCovct";
  std::string text;
  EntityListPieces pieces(part);
  for (ListPiece piece; pieces.Next(piece);) {
    text += std::string(text.empty() ? "" : "|") + kLetters[static_cast<std::size_t>(piece.kind)] +
            ":" + std::string(piece.bytes);
  }
  return text;
}

std::string Joined(const std::string& part) {
  std::string text;
  EntityListPieces pieces(part);
  for (ListPiece piece; pieces.Next(piece);) {
    EXPECT_FALSE(piece.bytes.empty());
    text += piece.bytes;
  }
  return text;
}

/// The parts of the laid-out text that count as markup, in order.
std::string Markup(const EntityListText& text) {
  std::string parts;
  for (const MarkupRange& range : text.markup)
    parts += text.text.mid(range.start, range.length).toStdString();
  return parts;
}

TEST(EntityListTextTest, EveryValueHasALine) {
  EXPECT_EQ(LaidOut(List("<ENTITY>Part<REF_DESIGNATOR>R1</REF_DESIGNATOR><VALUE>10k</VALUE>"
                         "</ENTITY><ENTITY>Drill<SIZE>1</SIZE></ENTITY>")),
            "<TN_FILEPARSER_ENTITIES>\n"
            "  <ENTITY>Part\n"
            "    <REF_DESIGNATOR>R1</REF_DESIGNATOR>\n"
            "    <VALUE>10k</VALUE>\n"
            "  </ENTITY>\n"
            "  <ENTITY>Drill\n"
            "    <SIZE>1</SIZE>\n"
            "  </ENTITY>\n"
            "</TN_FILEPARSER_ENTITIES>");
}

TEST(EntityListTextTest, AListWithoutEntitiesIsTwoLines) {
  EXPECT_EQ(LaidOut(List("")), "<TN_FILEPARSER_ENTITIES>\n</TN_FILEPARSER_ENTITIES>");
}

TEST(EntityListTextTest, EntitiesInEntitiesAreIndentedFurther) {
  EXPECT_EQ(LaidOut(List("<ENTITY>Part<ENTITY>Part<SIZE>1</SIZE></ENTITY></ENTITY>")),
            "<TN_FILEPARSER_ENTITIES>\n"
            "  <ENTITY>Part\n"
            "    <ENTITY>Part\n"
            "      <SIZE>1</SIZE>\n"
            "    </ENTITY>\n"
            "  </ENTITY>\n"
            "</TN_FILEPARSER_ENTITIES>");
}

TEST(EntityListTextTest, MarkupInAValueIsPartOfTheValue) {
  EXPECT_EQ(Pieces("<ENTITY>Part<VALUE><&></VALUE><SIZE></ENTITY><SIZE></SIZE></ENTITY>"),
            "O:<ENTITY>|t:Part|o:<VALUE>|v:<&>|c:</VALUE>|o:<SIZE>|v:</ENTITY><SIZE>|c:</SIZE>|"
            "C:</ENTITY>");
}

TEST(EntityListTextTest, AClosingTagInAValueEndsItAndTheRestIsText) {
  EXPECT_EQ(Pieces("<SIZE>a</SIZE>b</SIZE>"), "o:<SIZE>|v:a|c:</SIZE>|t:b</SIZE>");
}

TEST(EntityListTextTest, AnEmptyValueIsNoPiece) {
  EXPECT_EQ(Pieces("<SIZE></SIZE>"), "o:<SIZE>|c:</SIZE>");
}

TEST(EntityListTextTest, UnknownAndUnclosedTagsAreText) {
  EXPECT_EQ(Pieces("<COLOUR>red</COLOUR><size>1</size><SIZE>1<>"),
            "t:<COLOUR>red</COLOUR><size>1</size><SIZE>1<>");
}

TEST(EntityListTextTest, AValueOfSeveralLinesKeepsThem) {
  EXPECT_EQ(LaidOut(List("<ENTITY>Part<VALUE>a\n b\n</VALUE></ENTITY>")),
            "<TN_FILEPARSER_ENTITIES>\n"
            "  <ENTITY>Part\n"
            "    <VALUE>a\n b\n</VALUE>\n"
            "  </ENTITY>\n"
            "</TN_FILEPARSER_ENTITIES>");
}

TEST(EntityListTextTest, CharactersThatATextViewSwallowsAreShown) {
  using namespace std::string_literals;
  EXPECT_EQ(LaidOut(List("<VALUE>a\0b\rc\x1b\x7f\td</VALUE>"s)),
            "<TN_FILEPARSER_ENTITIES>\n"
            "  <VALUE>a\u203900\u203ab\u20390D\u203ac\u20391B\u203a\u20397F\u203a\td</VALUE>\n"
            "</TN_FILEPARSER_ENTITIES>");
}

TEST(EntityListTextTest, EachValueIsReadInItsOwnEncoding) {
  EXPECT_EQ(LaidOut(List("<VALUE>\xB5\x46</VALUE><SIZE>\xC2\xB5\x46</SIZE>")),
            "<TN_FILEPARSER_ENTITIES>\n"
            "  <VALUE>\u00b5F</VALUE>\n"
            "  <SIZE>\u00b5F</SIZE>\n"
            "</TN_FILEPARSER_ENTITIES>");
}

TEST(EntityListTextTest, StaleResultsAreText) {
  EXPECT_EQ(LaidOut(List("????")), "<TN_FILEPARSER_ENTITIES>\n  ????\n</TN_FILEPARSER_ENTITIES>");
}

TEST(EntityListTextTest, WhatIsNoListStandsAsItIs) {
  for (const std::string text :
       {"", "plain\ntext", "<TN_FILEPARSER_ENTITIES><ENTITY>Part<SIZE>1</SIZE>",
        "<ENTITY>Part</ENTITY></TN_FILEPARSER_ENTITIES>", "<TN_FILEPARSER_ENTITIES>"}) {
    EXPECT_EQ(LaidOut(text), text);
    EXPECT_TRUE(LayOutEntityList(text).markup.empty());
  }
}

TEST(EntityListTextTest, ALineIsMeasuredWithItsIndent) {
  EXPECT_EQ(LayOutEntityList("ab\nabcd\nabc").longestLine, 4);
  EXPECT_EQ(LayOutEntityList(List("<ENTITY>" + std::string(50, 'x'))).longestLine, 2 + 8 + 50);
}

TEST(EntityListTextTest, TheMarkupIsThatOfTheListAndNotThatOfValues) {
  const EntityListText text =
      LayOutEntityList(List("<ENTITY>\xB5<VALUE><SIZE>1</SIZE></VALUE></ENTITY>"));
  EXPECT_EQ(Markup(text),
            "<TN_FILEPARSER_ENTITIES><ENTITY><VALUE></VALUE></ENTITY></TN_FILEPARSER_ENTITIES>");
}

TEST(EntityListTextTest, AnEntityOnOneLineShowsItsLineEndsByCode) {
  EXPECT_EQ(OnOneLine("<ENTITY>Part<VALUE>a\r\n\tb</VALUE></ENTITY>").toStdString(),
            "<ENTITY>Part<VALUE>a\u20390D\u203a\u20390A\u203a\u203909\u203ab</VALUE></ENTITY>");
}

TEST(EntityListTextTest, AListThatOpensWithoutEndIsNotIndentedWithoutEnd) {
  std::string opened;
  for (int i = 0; i < 20'000; ++i)
    opened += "<ENTITY>";
  EXPECT_LT(LayOutEntityList(List(opened)).text.size(), 20'000 * 60);
}

TEST(EntityListTextTest, TagsThatNeverCloseAreNotSearchedForOneByOne) {
  std::string opened;
  for (int i = 0; i < 200'000; ++i)
    opened += "<SIZE>";
  EXPECT_EQ(Joined(opened), opened);
}

/// Texts made of what a list is made of, put together without sense.
TEST(EntityListTextTest, WhateverComesNothingIsLostOrMoved) {
  constexpr std::array kParts = {
      "<ENTITY>", "</ENTITY>", "<SIZE>",   "</SIZE>", "<VALUE>", "</VALUE>", "Part",     "<",
      ">",        "\xB5",      "\xC3\xA9", "\n",      "</",      "<DIM_Y>",  "</DIM_Y>", "&amp;"};
  std::minstd_rand random(7);  // NOLINT(cert-msc51-cpp): the same texts every time.
  for (int round = 0; round < 2000; ++round) {
    std::string part;
    for (std::size_t count = random() % 30; count > 0; --count)
      part += kParts[random() % kParts.size()];
    EXPECT_EQ(Joined(part), part);
    // Decoded together, apart from what pieces with other encodings have of their own, and without
    // the blanks and line breaks that were added, it is the same text.
    QString laidOut = LayOutEntityList(List(part)).text.remove(u'\n').remove(u' ');
    QString pieces;
    EntityListPieces taken(part);
    for (ListPiece piece; taken.Next(piece);) {
      pieces += ToDisplayText(piece.bytes);
    }
    pieces.remove(u'\n');
    EXPECT_EQ(laidOut.toStdString(), List(pieces.toStdString()));
  }
}

}  // namespace
}  // namespace bomparser::test
