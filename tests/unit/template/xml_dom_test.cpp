#include "input/MessageTexts.h"
#include "template/XmlDom.h"
#include "tests/support/Repeat.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bomparser {
namespace {

using test::Repeat;

/// Every second byte is 0, as plain text looks in UTF-16 with the low byte first.
std::string Utf16(std::string_view ascii) {
  std::string bytes = "\xFF\xFE";
  for (const char c : ascii) {
    bytes += c;
    bytes += '\0';
  }
  return bytes;
}

/// Names in document order: "A @B #text C".
std::string Names(XmlNode node) {
  std::string names = node.Name();
  for (XmlNode a = node.FirstAttribute(); !a.IsNull(); a = a.NextSibling()) {
    names += " @" + a.Name();
  }
  for (XmlNode child = node.FirstChild(); !child.IsNull(); child = child.NextSibling()) {
    names += " " + Names(child);
  }
  return names;
}

class XmlDomTest : public testing::Test {
 protected:
  bool Parses(std::string_view text) { return m_document.ParseText(text, m_failure); }

  /// The reason and line of the failure: "3: reason".
  std::string FailureOf(std::string_view text) {
    if (Parses(text)) {
      return "parsed";
    }
    EXPECT_TRUE(m_document.Root().IsNull());
    return std::to_string(m_failure.line) + ": " + m_failure.reason;
  }

  /// What an element's text is after it was written and read again.
  std::string TextReadBack(std::string_view text) {
    XmlDocument written;
    const XmlNode root = AppendElement(written.AsNode(), "X");
    AppendText(root, text);
    EXPECT_EQ(written.Refusal(), "");
    EXPECT_TRUE(Parses(SerializeNode(root))) << m_failure.reason;
    return m_document.Root().Value();
  }

  std::string AttributeReadBack(std::string_view value) {
    XmlDocument written;
    const XmlNode root = AppendElement(written.AsNode(), "X");
    SetAttribute(root, "A", value);
    EXPECT_EQ(written.Refusal(), "");
    EXPECT_TRUE(Parses(SerializeNode(root))) << m_failure.reason;
    return m_document.Root().FirstAttribute().Value();
  }

  /// Why the text cannot be stored; empty when it can.
  std::string TextRefusal(std::string_view text) {
    m_document.Clear();
    const XmlNode written = AppendText(AppendElement(m_document.AsNode(), "DESC"), text);
    EXPECT_EQ(written.IsNull(), !m_document.Refusal().empty());
    return m_document.Refusal();
  }

  XmlDocument m_document;
  XmlParseFailure m_failure;
};

// --- Nodes

TEST_F(XmlDomTest, NullNodeReadsAsEmpty) {
  const XmlNode null;
  EXPECT_TRUE(null.IsNull());
  EXPECT_FALSE(null.IsDocument() || null.IsElement() || null.IsAttribute());
  EXPECT_EQ(null.Name() + null.Value() + SerializeNode(null), "");
  EXPECT_TRUE(null.Parent().IsNull() && null.FirstChild().IsNull());
  EXPECT_TRUE(null.NextSibling().IsNull() && null.FirstAttribute().IsNull());
  EXPECT_EQ(null.Line(), 0);
  EXPECT_TRUE(AppendElement(null, "X").IsNull());
  EXPECT_TRUE(AppendText(null, "x").IsNull());
  EXPECT_TRUE(SetAttribute(null, "A", "x").IsNull());
}

TEST_F(XmlDomTest, NodesAreWalkedInDocumentOrder) {
  ASSERT_TRUE(Parses("<A B='1' C='2'>x<D/><!--c--><![CDATA[y]]><?target z?><E F='3'/></A>"));
  EXPECT_EQ(Names(m_document.AsNode()),
            "#document A @B @C #text D #comment #cdata-section target E @F");
}

TEST_F(XmlDomTest, ValueJoinsTheTextsOfAllDescendants) {
  ASSERT_TRUE(Parses("<A B='&lt;1&gt;'>a<C>b<D>c</D></C><!--no--><![CDATA[<d>&]]><?no no?>e</A>"));
  EXPECT_EQ(m_document.Root().Value(), "abc<d>&e");
  EXPECT_EQ(m_document.AsNode().Value(), "abc<d>&e");
  EXPECT_EQ(m_document.Root().FirstAttribute().Value(), "<1>");
}

TEST_F(XmlDomTest, TextsCommentsAndInstructionsHaveTheirOwnValue) {
  ASSERT_TRUE(Parses("<A>t<!--c--><?p i?><?q?></A>"));
  const XmlNode text = m_document.Root().FirstChild();
  EXPECT_EQ(text.Value(), "t");
  EXPECT_EQ(text.NextSibling().Value(), "c");
  EXPECT_EQ(text.NextSibling().NextSibling().Value(), "i");
  EXPECT_EQ(text.NextSibling().NextSibling().NextSibling().Value(), "");
}

TEST_F(XmlDomTest, NamesCarryTheirPrefix) {
  ASSERT_TRUE(Parses("<p:A xmlns:p='urn:x' p:B='1'><C xmlns='urn:y'/></p:A>"));
  EXPECT_EQ(Names(m_document.Root()), "p:A @p:B C");
}

TEST_F(XmlDomTest, ANameIsKnownByAllOfIt) {
  ASSERT_TRUE(Parses("<p:A xmlns:p='u' p:B='1'>t</p:A>"));
  const XmlNode root = m_document.Root();
  const auto known = [](XmlNode node) {
    std::string names;
    for (const char* name : {"A", "p:A", "B", "p:B", "#text", "p", ":A", ""}) {
      if (node.HasName(name)) names += std::string(name) + ' ';
    }
    return names;
  };
  EXPECT_EQ(known(root), "p:A ");
  EXPECT_EQ(known(root.FirstAttribute()), "p:B ");
  EXPECT_EQ(known(root.FirstChild()), "#text ");
  EXPECT_EQ(known(XmlNode()), " ");
  ASSERT_TRUE(Parses("<A/>"));
  EXPECT_EQ(known(m_document.Root()), "A ");
}

TEST_F(XmlDomTest, ParentLeadsToTheDocument) {
  ASSERT_TRUE(Parses("<A B='1'><C/></A>"));
  const XmlNode root = m_document.Root();
  EXPECT_EQ(root.FirstChild().Parent(), root);
  EXPECT_EQ(root.FirstAttribute().Parent(), root);
  EXPECT_EQ(root.Parent(), m_document.AsNode());
  EXPECT_TRUE(root.Parent().Parent().IsNull());
}

TEST_F(XmlDomTest, WhiteSpaceIsPreserved) {
  ASSERT_TRUE(Parses("<A>\n  <B> x </B>\n</A>"));
  EXPECT_EQ(m_document.Root().Value(), "\n   x \n");
  EXPECT_EQ(Names(m_document.Root()), "A #text B #text #text");
}

TEST_F(XmlDomTest, LinesCountFromOne) {
  ASSERT_TRUE(Parses("<A>\n<B/>\n\n<C/></A>"));
  const XmlNode b = m_document.Root().FirstChild().NextSibling();
  EXPECT_EQ(m_document.Root().Line(), 1);
  EXPECT_EQ(b.Line(), 2);
  EXPECT_EQ(b.NextSibling().NextSibling().Line(), 4);
}

// --- Failures

TEST_F(XmlDomTest, FirstErrorIsReportedWithItsLine) {
  EXPECT_FALSE(Parses("<A>\n<B>\n  <C></B>  \r\n</A>\n<D>"));
  EXPECT_EQ(m_failure,
            (XmlParseFailure{3, "  <C></B>  ", "Opening and ending tag mismatch: C line 3 and B"}));
}

TEST_F(XmlDomTest, EmptyTextIsNoDocument) {
  EXPECT_FALSE(Parses(""));
  EXPECT_NE(m_failure.reason, "");
  EXPECT_EQ(m_failure.lineText, "");
  EXPECT_FALSE(Parses(std::string_view()));
  EXPECT_FALSE(Parses(" \n "));
}

TEST_F(XmlDomTest, ElementLeftOpenFailsAtTheEnd) {
  EXPECT_FALSE(Parses("<A>\n<B></B>"));
  EXPECT_EQ(m_failure.line, 2);
  EXPECT_EQ(m_failure.lineText, "<B></B>");
}

TEST_F(XmlDomTest, FailureEmptiesTheDocument) {
  ASSERT_TRUE(Parses("<A/>"));
  EXPECT_FALSE(Parses("<A>"));
  EXPECT_TRUE(m_document.Root().IsNull());
  EXPECT_TRUE(m_document.AsNode().FirstChild().IsNull());
}

TEST_F(XmlDomTest, SuccessClearsTheFailure) {
  EXPECT_FALSE(Parses("<A>"));
  ASSERT_TRUE(Parses("<A/>"));
  EXPECT_EQ(m_failure, XmlParseFailure());
}

TEST_F(XmlDomTest, LineBeyondSixteenBitsIsReported) {
  EXPECT_FALSE(Parses("<A>" + Repeat("\n", 70'000) + "here </B>"));
  EXPECT_EQ(m_failure.line, 70'001);
  EXPECT_EQ(m_failure.lineText, "here </B>");
}

TEST_F(XmlDomTest, LineTextIsGivenInUtf8) {
  EXPECT_FALSE(Parses("<?xml version='1.0' encoding='windows-1252'?>\n<A>5 \x80</B>"));
  EXPECT_EQ(m_failure.lineText, "<A>5 \xE2\x82\xAC</B>");
}

TEST_F(XmlDomTest, ByteOrderMarkIsNoPartOfTheLineText) {
  EXPECT_FALSE(Parses("\xEF\xBB\xBF<A></B>"));
  EXPECT_EQ(m_failure.lineText, "<A></B>");
}

TEST_F(XmlDomTest, WrongEncodingIsReportedWithItsLine) {
  EXPECT_FALSE(Parses("<A>\n\x80</A>"));
  EXPECT_EQ(m_failure.line, 2);
  EXPECT_NE(m_failure.reason.find("not proper UTF-8"), std::string::npos) << m_failure.reason;
  EXPECT_EQ(m_failure.lineText, "\xE2\x82\xAC</A>");
}

TEST_F(XmlDomTest, UnknownEncodingFails) {
  EXPECT_FALSE(Parses("<?xml version='1.0' encoding='no-such'?><A/>"));
  EXPECT_NE(m_failure.reason.find("no-such"), std::string::npos) << m_failure.reason;
}

TEST_F(XmlDomTest, ControlCharactersInTheSourceFail) {
  EXPECT_FALSE(Parses("<A>\x01</A>"));
  EXPECT_FALSE(Parses("<A>&#1;</A>"));
  EXPECT_FALSE(Parses(std::string_view("<A>\0</A>", 8)));
}

TEST_F(XmlDomTest, WhatFollowsTheRootBehindANulIsNotDropped) {
  using namespace std::string_view_literals;
  for (const std::string_view text :
       {"<A/>\n\0<junk>"sv, "<A/>\0"sv, "<?xml version='1.0' encoding='windows-1252'?><A/>\0x"sv,
        "\xFF\xFE<\0A\0/\0>\0\0\0x\0"sv}) {
    EXPECT_FALSE(Parses(text));
    EXPECT_EQ(m_failure.reason, GetMessageText(Msg::XmlNulCharacter));
  }
  EXPECT_TRUE(Parses("\xFF\xFE<\0A\0/\0>\0"sv));
}

TEST_F(XmlDomTest, LongLineIsCutBetweenTwoCharacters) {
  const std::string start(kXmlMaxLineText - 4, 'x');
  EXPECT_FALSE(Parses("<A>" + start + "\xE2\x82\xAC</B>"));
  EXPECT_EQ(m_failure.lineText, "<A>" + start + " ...");
  const std::string whole = "<A>" + std::string(kXmlMaxLineText - 7, 'x') + "</B>";
  EXPECT_FALSE(Parses(whole));
  EXPECT_EQ(m_failure.lineText, whole);
}

TEST_F(XmlDomTest, LongReasonIsCut) {
  EXPECT_FALSE(Parses("<A>\n<" + std::string(2 * kXmlMaxLineText, 'x') + "></A>"));
  EXPECT_EQ(m_failure.line, 2);
  EXPECT_EQ(m_failure.reason.size(), kXmlMaxLineText + 4);
  EXPECT_TRUE(m_failure.reason.starts_with("Opening and ending tag mismatch: xxx"));
  EXPECT_TRUE(m_failure.reason.ends_with("xxx ..."));
}

TEST_F(XmlDomTest, NestingDeeperThanTheLimitGivesAClearError) {
  constexpr int kFarTooDeep = 100'000;
  EXPECT_FALSE(Parses(Repeat("<A>", kFarTooDeep) + Repeat("</A>", kFarTooDeep)));
  EXPECT_EQ(m_failure.reason, FormatMessageText(Msg::XmlDocumentTooDeep, kXmlMaxDepth));
  EXPECT_EQ(m_failure.line, 1);
}

TEST_F(XmlDomTest, NothingIsPrinted) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  Parses("<A></B>");
  Parses("<p:A/>");
  Parses("<!DOCTYPE A SYSTEM 'http://localhost/none.dtd'><A>&b;</A>");
  Parses("<?xml version='1.0' encoding='no-such'?><A/>");
  Parses(Utf16("<A>") + "\x01\xD8");
  m_document.ParseFile("no/such/file.xml", m_failure);
  TextRefusal("\x01");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// --- Document types

TEST_F(XmlDomTest, DocumentTypeInTheDocumentIsKeptTo) {
  const std::string type = "<!DOCTYPE A [<!ELEMENT A (B*)><!ELEMENT B EMPTY>]>\n";
  EXPECT_EQ(FailureOf(type + "<A>\n<B>x</B></A>"),
            "3: Element B was declared EMPTY this one has content");
  EXPECT_EQ(m_failure.lineText, "<B>x</B></A>");
  EXPECT_EQ(FailureOf(type + "<A><C/></A>"),
            "2: Element A content does not follow the DTD, expecting (B)*, got (C)");
  EXPECT_EQ(FailureOf(type + "<A B='1'/>"), "2: No declaration for attribute B of element A");
  EXPECT_EQ(FailureOf(type + "<B/>"), "2: root and DTD name do not match 'B' and 'A'");
  ASSERT_TRUE(Parses(type + "<A><B/><B/></A>")) << m_failure.reason;
  EXPECT_EQ(Names(m_document.Root()), "A B B");
}

TEST_F(XmlDomTest, DocumentTypeThatStandsElsewhereIsNotKeptTo) {
  for (const std::string where : {"SYSTEM 'none.dtd'", "PUBLIC 'none' 'none.dtd'"}) {
    ASSERT_TRUE(Parses("<!DOCTYPE A " + where + "><A>x</A>")) << m_failure.reason;
    ASSERT_TRUE(Parses("<!DOCTYPE A " + where + " [<!ELEMENT A EMPTY>]><A>x</A>"))
        << m_failure.reason;
    EXPECT_EQ(Names(m_document.Root()), "A #text");
  }
}

TEST_F(XmlDomTest, DocumentTypeWithoutElementsSaysNothing) {
  ASSERT_TRUE(Parses("<!DOCTYPE B><A>x</A>")) << m_failure.reason;
  ASSERT_TRUE(Parses("<!DOCTYPE B []><A>x</A>")) << m_failure.reason;
}

// --- Entities

TEST_F(XmlDomTest, OwnEntitiesOfXmlAreRead) {
  ASSERT_TRUE(Parses("<A B='&quot;&apos;'>&lt;&amp;&gt;&#65;&#x20AC;</A>"));
  EXPECT_EQ(m_document.Root().Value(), "<&>A\xE2\x82\xAC");
  EXPECT_EQ(m_document.Root().FirstAttribute().Value(), "\"'");
}

TEST_F(XmlDomTest, EntityReferenceIsRefusedWithItsLine) {
  EXPECT_EQ(FailureOf("<!DOCTYPE A [<!ENTITY e 'text'>]>\n<A>\n<B/>x&e;y</A>"),
            "3: Entity references are not accepted: &e;");
  EXPECT_EQ(m_failure.lineText, "<B/>x&e;y</A>");
}

TEST_F(XmlDomTest, EntityReferenceInAnAttributeIsRefusedWithItsLine) {
  EXPECT_EQ(FailureOf("<!DOCTYPE A [<!ENTITY e 'text'>]>\n<A>\n<B C='x&e;y'/></A>"),
            "3: Entity references are not accepted: &e;");
}

TEST_F(XmlDomTest, EntityReferenceInADefaultAttributeIsRefused) {
  EXPECT_EQ(FailureOf("<!DOCTYPE A [<!ENTITY e 'text'>\n<!ATTLIST A B CDATA 'x&e;y'>]><A/>"),
            "2: Entity references are not accepted: &e;");
}

TEST_F(XmlDomTest, UndeclaredEntityIsRefused) {
  const std::string refusal = "2: Entity references are not accepted: &e;";
  EXPECT_EQ(FailureOf("<A>\n&e;</A>"), refusal);
  EXPECT_EQ(FailureOf("<A\nB='&e;'/>"), refusal);
  EXPECT_EQ(FailureOf("<!DOCTYPE A SYSTEM 'none.dtd'>\n<A>&e;</A>"), refusal);
  EXPECT_EQ(FailureOf("<!DOCTYPE A SYSTEM 'none.dtd'>\n<A B='1&e;2'/>"), refusal);
}

TEST_F(XmlDomTest, ErrorBeforeAnEntityReferenceIsTheFirstOne) {
  EXPECT_EQ(FailureOf("<A>\n<B></C>\n&e;</A>"),
            "2: Opening and ending tag mismatch: B line 2 and C");
}

TEST_F(XmlDomTest, EntitiesThatAreOnlyDeclaredDoNoHarm) {
  ASSERT_TRUE(
      Parses("<!DOCTYPE A [<!ENTITY e 'text'><!ENTITY lt '&#38;#60;'><!ENTITY % p 'x'>"
             "<!ENTITY f SYSTEM 'file'><!NOTATION n SYSTEM 'n'>"
             "<!ENTITY g SYSTEM 'file' NDATA n>]><A>x&lt;</A>"))
      << m_failure.reason;
  EXPECT_EQ(Names(m_document.AsNode()), "#document A #text");
  EXPECT_EQ(SerializeNode(m_document.AsNode()), "<A>x&lt;</A>");
}

TEST_F(XmlDomTest, ExpansionAttackIsRefused) {
  std::string text = "<!DOCTYPE A [<!ENTITY e0 'ha'>";
  for (int i = 1; i <= 30; ++i) {
    const std::string before = "&e" + std::to_string(i - 1) + ";";
    text += "<!ENTITY e" + std::to_string(i) + " '" + Repeat(before, 10) + "'>";
  }
  EXPECT_NE(FailureOf(text + "]><A>&e30;</A>"), "parsed");
  EXPECT_NE(FailureOf(text + "]><A B='&e30;'/>"), "parsed");
}

TEST_F(XmlDomTest, EntityThatHoldsItselfIsRefused) {
  EXPECT_EQ(FailureOf("<!DOCTYPE A [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><A>&a;</A>"),
            "1: Entity references are not accepted: &a;");
}

TEST_F(XmlDomTest, ExpansionThroughParameterEntitiesIsRefused) {
  std::string text = "<!DOCTYPE A [<!ENTITY % p0 '<!ENTITY e \"x\">'>";
  for (int i = 1; i <= 30; ++i) {
    const std::string before = "&#37;p" + std::to_string(i - 1) + ";";
    text += "<!ENTITY % p" + std::to_string(i) + " '" + Repeat(before, 10) + "'>";
  }
  EXPECT_EQ(FailureOf(text + "\n%p30;]><A/>"), "2: Entity references are not accepted: %p30;");
}

class XmlFileTest : public XmlDomTest {
 protected:
  XmlFileTest() {
    m_folder = std::filesystem::temp_directory_path() /
               ("bomparser_xml_" + std::to_string(std::random_device()()));
    std::filesystem::create_directories(m_folder);
  }
  ~XmlFileTest() override { std::filesystem::remove_all(m_folder); }

  std::string Write(const std::string& name, std::string_view bytes) {
    std::string path = (m_folder / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  std::filesystem::path m_folder;
};

TEST_F(XmlFileTest, ExternalEntityFileIsNeverRead) {
  const std::string secret = Write("secret.txt", "the secret");
  EXPECT_EQ(FailureOf("<!DOCTYPE A [<!ENTITY e SYSTEM 'file://" + secret + "'>]><A>&e;</A>"),
            "1: Entity references are not accepted: &e;");
}

TEST_F(XmlFileTest, ExternalDocumentTypeIsNeverRead) {
  const std::string type = Write("type.dtd", "<!ATTLIST A B CDATA 'from the type'>");
  ASSERT_TRUE(Parses("<!DOCTYPE A SYSTEM 'file://" + type + "'><A/>"));
  EXPECT_EQ(Names(m_document.Root()), "A");
  EXPECT_EQ(FailureOf("<!DOCTYPE A [<!ENTITY % p SYSTEM 'file://" + type + "'> %p;]><A/>"),
            "1: Entity references are not accepted: %p;");
}

TEST_F(XmlFileTest, FileIsParsedLikeItsText) {
  ASSERT_TRUE(m_document.ParseFile(Write("a.xml", "<A>\r\n x</A>\r\n"), m_failure));
  EXPECT_EQ(m_document.Root().Value(), "\n x");
  EXPECT_FALSE(m_document.ParseFile(Write("b.xml", "<A>\n</B>"), m_failure));
  EXPECT_EQ(m_failure.line, 2);
  EXPECT_EQ(m_failure.lineText, "</B>");
}

TEST_F(XmlFileTest, FileThatCannotBeReadFailsAtLineZero) {
  const std::string missing = (m_folder / "missing.xml").string();
  ASSERT_TRUE(Parses("<A/>"));
  EXPECT_FALSE(m_document.ParseFile(missing, m_failure));
  EXPECT_EQ(m_failure.line, 0);
  EXPECT_EQ(m_failure.lineText, "");
  EXPECT_NE(m_failure.reason.find("No such file"), std::string::npos) << m_failure.reason;
  EXPECT_TRUE(m_document.Root().IsNull());
}

TEST_F(XmlFileTest, FolderFailsAtLineZero) {
  EXPECT_FALSE(m_document.ParseFile(m_folder.string(), m_failure));
  EXPECT_EQ(m_failure.line, 0);
  EXPECT_NE(m_failure.reason, "");
}

// --- Encodings

TEST_F(XmlDomTest, DeclaredWindows1252IsRead) {
  ASSERT_TRUE(Parses("<?xml version='1.0' encoding='windows-1252'?><A B='\xB5'>\x80\xE9</A>"));
  EXPECT_EQ(m_document.Root().Value(), "\xE2\x82\xAC\xC3\xA9");
  EXPECT_EQ(m_document.Root().FirstAttribute().Value(), "\xC2\xB5");
}

TEST_F(XmlDomTest, Utf16IsRead) {
  ASSERT_TRUE(Parses(Utf16("<?xml version=\"1.0\" encoding=\"UTF-16\"?><A>x</A>")));
  EXPECT_EQ(m_document.Root().Value(), "x");
}

TEST_F(XmlDomTest, Utf16FailureHasALineButNoLineText) {
  EXPECT_FALSE(Parses(Utf16("<A>\n</B>")));
  EXPECT_EQ(m_failure.line, 2);
  EXPECT_EQ(m_failure.lineText, "");
}

TEST_F(XmlDomTest, WhateverTheSourceWasUtf8IsWritten) {
  ASSERT_TRUE(Parses("<?xml version='1.0' encoding='windows-1252'?><A B='\xB5'>\x80</A>"));
  EXPECT_EQ(SerializeNode(m_document.AsNode()), "<A B=\"\xC2\xB5\">\xE2\x82\xAC</A>");
}

// --- Writing

TEST_F(XmlDomTest, NothingIsAddedToWhatIsWritten) {
  const XmlNode root = AppendElement(m_document.AsNode(), "A");
  SetAttribute(root, "B", "1");
  AppendText(AppendElement(root, "C"), " x ");
  AppendElement(root, "D");
  EXPECT_EQ(SerializeNode(m_document.AsNode()), "<A B=\"1\"><C> x </C><D/></A>");
  EXPECT_EQ(SerializeNode(root), SerializeNode(m_document.AsNode()));
  EXPECT_EQ(SerializeNode(root.FirstChild()), "<C> x </C>");
}

TEST_F(XmlDomTest, WhatWasParsedCanBeAddedTo) {
  for (const char* text : {"a", "a text of more than fifteen bytes"}) {
    ASSERT_TRUE(Parses(std::string("<X>") + text + "</X>"));
    AppendText(m_document.Root(), " and more");
    AppendText(m_document.Root(), " of it");
    EXPECT_EQ(SerializeNode(m_document.Root()), std::string("<X>") + text + " and more of it</X>");
  }
}

TEST_F(XmlDomTest, SettingAnAttributeAgainReplacesItsValue) {
  const XmlNode root = AppendElement(m_document.AsNode(), "A");
  SetAttribute(root, "B", "1");
  SetAttribute(root, "C", "2");
  SetAttribute(root, "B", "3");
  EXPECT_EQ(SerializeNode(root), "<A B=\"3\" C=\"2\"/>");
}

TEST_F(XmlDomTest, TextsAreReadBackExactly) {
  const std::vector<std::string> texts = {"",
                                          " ",
                                          "  leading and trailing  ",
                                          "\n",
                                          "\r",
                                          "\r\n",
                                          "\t",
                                          "a\rb\nc\r\nd\te",
                                          "<a b=\"c\">",
                                          "&amp; & &#10;",
                                          "]]>",
                                          "<![CDATA[x]]>",
                                          "'\"",
                                          "\xC2\xB5\xE2\x82\xAC\xF0\x9F\x98\x80",
                                          "\x7F\xC2\x85\xE2\x80\xA8",
                                          "\xEF\xBF\xBD",
                                          "%s%d%%",
                                          "<!--x-->",
                                          "\xEF\xBB\xBFmark"};
  for (const std::string& text : texts) {
    EXPECT_EQ(TextReadBack(text), text);
    EXPECT_EQ(AttributeReadBack(text), text);
  }
}

TEST_F(XmlDomTest, EveryCharacterThatXmlCanHoldIsReadBackExactly) {
  std::string all = "\t\n\r";
  for (char c = ' '; c < '\x7F'; ++c) {
    all += c;
  }
  EXPECT_EQ(TextReadBack(all), all);
  EXPECT_EQ(AttributeReadBack(all), all);
}

TEST_F(XmlDomTest, LongTextIsReadBackExactly) {
  const std::string text = Repeat("\xE2\x82\xAC<&\r\n\xC2\xB5", 100'000);
  EXPECT_EQ(TextReadBack(text), text);
  EXPECT_EQ(AttributeReadBack(text), text);
}

TEST_F(XmlDomTest, DeepestNestingThatIsWrittenIsReadBack) {
  XmlNode node = m_document.AsNode();
  for (int i = 0; i < kXmlMaxDepth; ++i) {
    node = AppendElement(node, "A");
  }
  EXPECT_EQ(m_document.Refusal(), "");
  AppendText(node, "deep");
  const std::string text = SerializeNode(m_document.AsNode());
  EXPECT_TRUE(AppendElement(node, "B").IsNull());
  EXPECT_EQ(m_document.Refusal(), FormatMessageText(Msg::XmlNestingTooDeep, "B", kXmlMaxDepth));
  ASSERT_TRUE(Parses(text)) << m_failure.reason;
  EXPECT_EQ(m_document.Root().Value(), "deep");
}

TEST_F(XmlDomTest, ControlCharactersAreRefused) {
  EXPECT_EQ(TextRefusal("ab\x01"),
            "Text of element DESC cannot be stored in XML: it holds the character U+0001 at "
            "position 3");
  EXPECT_EQ(TextRefusal(std::string_view("\0", 1)),
            "Text of element DESC cannot be stored in XML: it holds the character U+0000 at "
            "position 1");
  for (char c = '\0'; c < ' '; ++c) {
    const bool storable = c == '\t' || c == '\n' || c == '\r';
    EXPECT_EQ(TextRefusal(std::string(1, c)).empty(), storable) << int{c};
  }
}

TEST_F(XmlDomTest, NoncharactersAreRefused) {
  EXPECT_EQ(TextRefusal("\xE2\x82\xAC\xEF\xBF\xBE"),
            "Text of element DESC cannot be stored in XML: it holds the character U+FFFE at "
            "position 2");
  EXPECT_EQ(TextRefusal("\xEF\xBF\xBF"),
            "Text of element DESC cannot be stored in XML: it holds the character U+FFFF at "
            "position 1");
}

TEST_F(XmlDomTest, BytesThatAreNoUtf8AreRefused) {
  EXPECT_EQ(TextRefusal("\xC2\xB5 \x80"),
            "Text of element DESC cannot be stored in XML: it holds the character 0x80 at "
            "position 3");
  EXPECT_NE(TextRefusal("\xC2"), "");
  EXPECT_NE(TextRefusal("\xED\xA0\x80"), "");
  EXPECT_NE(TextRefusal("\xC0\x80"), "");
  EXPECT_NE(TextRefusal("\xF4\x90\x80\x80"), "");
  EXPECT_NE(TextRefusal("\xFF"), "");
}

TEST_F(XmlDomTest, RefusalNamesTheAttribute) {
  const XmlNode root = AppendElement(m_document.AsNode(), "A");
  EXPECT_TRUE(SetAttribute(root, "B", "\x1B[0m").IsNull());
  EXPECT_EQ(m_document.Refusal(),
            "Attribute B of element A cannot be stored in XML: it holds the character U+001B at "
            "position 1");
}

TEST_F(XmlDomTest, TextBeyondWhatCanBeReadBackIsRefused) {
  EXPECT_EQ(TextRefusal(std::string(kXmlMaxTextBytes, 'x')), "");
  EXPECT_EQ(TextRefusal(std::string(kXmlMaxTextBytes + 1, 'x')),
            "Text of element DESC cannot be stored in XML: it is longer than 10000000 bytes");
}

TEST_F(XmlDomTest, AttributeBeyondWhatCanBeReadBackIsRefused) {
  const XmlNode root = AppendElement(m_document.AsNode(), "A");
  EXPECT_TRUE(SetAttribute(root, "B", std::string(kXmlMaxAttributeBytes + 1, 'x')).IsNull());
  EXPECT_EQ(m_document.Refusal(),
            "Attribute B of element A cannot be stored in XML: it is longer than 1000000 bytes");
}

TEST_F(XmlDomTest, LongestTextAndAttributeAreReadBackExactly) {
  const std::string text(kXmlMaxTextBytes, '&');
  EXPECT_TRUE(TextReadBack(text) == text);
  const std::string value(kXmlMaxAttributeBytes, '"');
  EXPECT_TRUE(AttributeReadBack(value) == value);
}

TEST_F(XmlDomTest, NamesThatAreNoneAreRefused) {
  for (const std::string_view name : {"", "1", "a b", "<", "a:b:c", ":", "\x80", "a>"}) {
    m_document.Clear();
    EXPECT_TRUE(AppendElement(m_document.AsNode(), name).IsNull()) << name;
    EXPECT_EQ(m_document.Refusal(), FormatMessageText(Msg::XmlInvalidName, name));
    const XmlNode root = AppendElement(m_document.AsNode(), "A");
    EXPECT_TRUE(SetAttribute(root, name, "1").IsNull()) << name;
  }
  EXPECT_TRUE(SetAttribute(m_document.Root(), "xmlns", "urn:x").IsNull());
  EXPECT_TRUE(SetAttribute(m_document.Root(), "xmlns:p", "urn:x").IsNull());
}

TEST_F(XmlDomTest, NamesWithAPrefixAreReadBack) {
  const XmlNode root = AppendElement(m_document.AsNode(), "p:A");
  SetAttribute(root, "q:B", "1");
  const std::string text = SerializeNode(root);
  ASSERT_TRUE(Parses(text));
  EXPECT_EQ(Names(m_document.Root()), "p:A @q:B");
}

TEST_F(XmlDomTest, NodesAreRefusedWhereTheyCannotStand) {
  const XmlNode root = AppendElement(m_document.AsNode(), "A");
  const XmlNode text = AppendText(root, "x");
  EXPECT_TRUE(AppendElement(m_document.AsNode(), "B").IsNull());
  EXPECT_EQ(m_document.Refusal(), FormatMessageText(Msg::XmlSecondRoot, "B"));
  EXPECT_TRUE(AppendText(m_document.AsNode(), "x").IsNull());
  EXPECT_TRUE(SetAttribute(m_document.AsNode(), "B", "x").IsNull());
  EXPECT_TRUE(AppendElement(text, "B").IsNull());
  EXPECT_TRUE(AppendText(text, "x").IsNull());
  EXPECT_EQ(SerializeNode(m_document.AsNode()), "<A>x</A>");
}

TEST_F(XmlDomTest, FirstRefusalStaysUntilTheDocumentIsCleared) {
  AppendElement(m_document.AsNode(), "1");
  AppendElement(m_document.AsNode(), "2");
  EXPECT_EQ(m_document.Refusal(), FormatMessageText(Msg::XmlInvalidName, "1"));
  m_document.Clear();
  EXPECT_EQ(m_document.Refusal(), "");
}

TEST_F(XmlDomTest, ClearKeepsTheDocumentsHandle) {
  const XmlNode document = m_document.AsNode();
  AppendElement(document, "A");
  m_document.Clear();
  EXPECT_EQ(m_document.AsNode(), document);
  EXPECT_TRUE(document.FirstChild().IsNull());
  AppendElement(document, "B");
  EXPECT_EQ(SerializeNode(document), "<B/>");
}

TEST_F(XmlDomTest, ClearRemovesEveryTopLevelNode) {
  ASSERT_TRUE(Parses("<!--a--><!DOCTYPE A [<!ENTITY e 'x'>]><?b c?><A/><!--d-->"));
  m_document.Clear();
  EXPECT_EQ(Names(m_document.AsNode()), "#document");
  AppendElement(m_document.AsNode(), "B");
  EXPECT_EQ(SerializeNode(m_document.AsNode()), "<B/>");
}

TEST_F(XmlDomTest, ParsedDocumentCanBeAppendedTo) {
  ASSERT_TRUE(Parses("<A B='1'>x</A>"));
  AppendText(m_document.Root(), "y");
  SetAttribute(m_document.Root(), "B", "2");
  AppendElement(m_document.Root(), "C");
  EXPECT_EQ(SerializeNode(m_document.AsNode()), "<A B=\"2\">xy<C/></A>");
}

TEST_F(XmlDomTest, MovedDocumentKeepsItsContent) {
  ASSERT_TRUE(Parses("<A/>"));
  XmlDocument other = std::move(m_document);
  EXPECT_EQ(SerializeNode(other.AsNode()), "<A/>");
  AppendElement(other.AsNode(), "B");
  EXPECT_EQ(other.Refusal(), FormatMessageText(Msg::XmlSecondRoot, "B"));
}

}  // namespace
}  // namespace bomparser
