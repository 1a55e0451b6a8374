#include "input/MessageTexts.h"
#include "template/CXMLArchive.h"
#include "tests/support/FailingMemory.h"
#include "tnbase/SystemReason.h"

#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bomparser {
namespace {

using test::FailsAfter;
using test::ForEveryAllocation;
using test::MemoryFails;

/// An owned object of a Shelf: one attribute, one element.
class Item : public CXMLArchive {
 public:
  std::string kind;
  std::string text;
  int walkStatus = kXmlOk;

  int OnBeginNode(XmlNode, bool& handled) override {
    handled = walkStatus != kXmlOk;
    return walkStatus;
  }

  int Serialize(XmlNode parent) override {
    ClearDocument();
    XmlNode current = WriteNode({XmlNodeKind::BeginElement, "ITEM"}, parent);
    current = WriteNode({XmlNodeKind::Attribute, "KIND", kind}, current);
    current = WriteNode({XmlNodeKind::BeginElement, "TEXT"}, current);
    current = WriteNode({XmlNodeKind::Text, {}, text}, current);
    current = WriteNode({XmlNodeKind::EndElement}, current);
    current = WriteNode({XmlNodeKind::EndElement}, current);
    WriteNode({XmlNodeKind::Done}, current);
    return WriteStatus();
  }

 protected:
  void RegisterBindings(XmlBindingTable& bindings) override {
    bindings.Add("KIND", &kind);
    bindings.Add("TEXT", &text);
  }
};

/// A document of three values and owned items. Items of the kind "broken" refuse to be read.
class Shelf : public CXMLArchive {
 public:
  std::string title = "before";
  std::int32_t count = -7;
  double scale = -0.5;
  std::vector<std::unique_ptr<Item>> items;
  std::vector<std::string> offered;
  int badItemStatus = kXmlOk;

  int OnBeginNode(XmlNode node, bool& handled) override {
    offered.push_back(node.Name());
    handled = node.Name() == "ITEM";
    if (!handled) {
      return kXmlOk;
    }
    auto item = std::make_unique<Item>();
    const bool broken = node.FirstAttribute().Value() == "broken";
    item->walkStatus = broken ? kXmlGeneralFailure : kXmlOk;
    const int status = item->Walk(node);
    if (status == kXmlOk) {
      items.push_back(std::move(item));
    }
    return status;
  }

  int Serialize(XmlNode parent) override {
    ClearDocument();
    XmlNode current = WriteNode({XmlNodeKind::BeginElement, "SHELF"}, parent);
    current = WriteElement("TITLE", title, current);
    current = WriteElement("COUNT", count, current);
    current = WriteElement("SCALE", scale, current);
    for (const auto& item : items) {
      badItemStatus = item->Serialize(current);
    }
    current = WriteNode({XmlNodeKind::EndElement}, current);
    WriteNode({XmlNodeKind::Done}, current);
    return WriteStatus();
  }

  void Add(std::string_view kind, std::string_view text) {
    items.push_back(std::make_unique<Item>());
    items.back()->kind = kind;
    items.back()->text = text;
  }

 protected:
  void RegisterBindings(XmlBindingTable& bindings) override {
    bindings.Add("TITLE", &title);
    bindings.Add("COUNT", &count);
    bindings.Add("SCALE", &scale);
  }

 private:
  XmlNode WriteElement(std::string_view name, XmlValue value, XmlNode current) {
    current = WriteNode({XmlNodeKind::BeginElement, name}, current);
    current = WriteNode({XmlNodeKind::Text, {}, std::move(value)}, current);
    return WriteNode({XmlNodeKind::EndElement}, current);
  }
};

/// Notes what it is offered, in order: "begin A", "node @B", "node A".
class Recorder : public CXMLArchive {
 public:
  std::vector<std::string> calls;
  std::string handledName;
  std::string consumedName;
  int handledStatus = kXmlOk;
  int registrations = 0;

  int OnBeginNode(XmlNode node, bool& handled) override {
    calls.push_back("begin " + node.Name());
    handled = node.Name() == handledName;
    return handledStatus;
  }
  bool OnNode(XmlNode node, const XmlBindingTable&) override {
    calls.push_back((node.IsAttribute() ? "node @" : "node ") + node.Name());
    return node.Name() == consumedName;
  }
  int Serialize(XmlNode) override { return kXmlOk; }

 protected:
  void RegisterBindings(XmlBindingTable&) override { ++registrations; }
};

/// Reads one name into two strings, and a second name.
class TwiceBound : public CXMLArchive {
 public:
  std::string first;
  std::string second;

  int Serialize(XmlNode) override { return kXmlOk; }

 protected:
  void RegisterBindings(XmlBindingTable& bindings) override {
    bindings.Add("NAME", &first);
    bindings.Add("NAME", &second);
  }
};

/// Writes what it is told, for sequences that no proper object issues.
class Writer : public CXMLArchive {
 public:
  std::vector<XmlNodeOp> ops;

  int Serialize(XmlNode parent) override {
    ClearDocument();
    XmlNode current = parent;
    for (const XmlNodeOp& op : ops) {
      current = WriteNode(op, current);
    }
    return WriteStatus();
  }
  XmlNode Write(const XmlNodeOp& op, XmlNode current) { return WriteNode(op, current); }
  int Status() const { return WriteStatus(); }

 protected:
  void RegisterBindings(XmlBindingTable&) override {}
};

using Calls = std::vector<std::string>;

std::string XmlOf(CXMLArchive& archive) {
  std::string text = "unchanged";
  EXPECT_EQ(archive.GetXml(text), kXmlOk) << archive.LastError();
  return text;
}

/// Title, count and scale: "T|1|0.5".
std::string ValuesOf(const Shelf& shelf) {
  return shelf.title + "|" + std::to_string(shelf.count) + "|" + std::to_string(shelf.scale);
}

const char* const kUntouched = "before|-7|-0.500000";

struct CommaSeparator : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
  char do_thousands_sep() const override { return '.'; }
};

// --- Reading

TEST(CXMLArchive, TextThatIsNotWellFormedReturnsMinusOneAndChangesNoMember) {
  Shelf shelf;
  EXPECT_EQ(shelf.Load("<SHELF>\n<TITLE>abc</TITLE>\n<COUNT>3</SHELF>"), -1);
  EXPECT_EQ(ValuesOf(shelf), kUntouched);
  EXPECT_EQ(shelf.offered, Calls());
  EXPECT_EQ(shelf.LastParseFailure().line, 3);
  EXPECT_EQ(shelf.LastParseFailure().lineText, "<COUNT>3</SHELF>");
  EXPECT_EQ(shelf.LastError(), shelf.LastParseFailure().reason);
}

TEST(CXMLArchive, TextThatIsNotWellFormedLeavesTheDocumentEmpty) {
  Shelf shelf;
  ASSERT_EQ(shelf.Load("<SHELF/>"), kXmlOk);
  EXPECT_EQ(shelf.Load("<SHELF>"), kXmlNotWellFormed);
  shelf.offered.clear();
  EXPECT_EQ(shelf.WalkDocument(), kXmlOk);
  EXPECT_EQ(shelf.offered, Calls());
}

TEST(CXMLArchive, BoundChildIsConsumedAndUnboundRootIsDescended) {
  Shelf shelf;
  EXPECT_EQ(shelf.Load("<X><TITLE>abc</TITLE></X>"), kXmlOk);
  EXPECT_EQ(shelf.title, "abc");
  EXPECT_EQ(shelf.offered, (Calls{"X", "TITLE"}));  // Not the text of TITLE.
}

TEST(CXMLArchive, OfTwoBindingsWithTheSameNameOnlyTheFirstReceivesValues) {
  TwiceBound archive;
  EXPECT_EQ(archive.Load("<X NAME='1'><NAME>2</NAME></X>"), kXmlOk);
  EXPECT_EQ(archive.first, "2");
  EXPECT_EQ(archive.second, "");
}

TEST(CXMLArchive, OfAnAttributeAndAChildWithTheSameNameTheChildWins) {
  Shelf shelf;
  EXPECT_EQ(shelf.Load("<X TITLE='attribute'><Y/><TITLE>child</TITLE></X>"), kXmlOk);
  EXPECT_EQ(shelf.title, "child");
}

TEST(CXMLArchive, AttributeIsReadBeforeItsOwnNode) {
  Shelf shelf;
  EXPECT_EQ(shelf.Load("<TITLE TITLE='attribute'>node</TITLE>"), kXmlOk);
  EXPECT_EQ(shelf.title, "node");
}

TEST(CXMLArchive, NamesAreMatchedCaseSensitively) {
  Shelf shelf;
  EXPECT_EQ(shelf.Load("<X><title>abc</title><Count>3</Count></X>"), kXmlOk);
  EXPECT_EQ(ValuesOf(shelf), kUntouched);
}

TEST(CXMLArchive, OwnedObjectThatFailsToLoadIsDroppedAndItsSiblingsAreRead) {
  Shelf shelf;
  EXPECT_EQ(shelf.Load("<SHELF><ITEM KIND='a'/><ITEM KIND='broken'/><ITEM KIND='c'/>"
                       "<TITLE>t</TITLE></SHELF>"),
            kXmlOk);
  ASSERT_EQ(shelf.items.size(), 2u);
  EXPECT_EQ(shelf.items[0]->kind + shelf.items[1]->kind, "ac");
  EXPECT_EQ(shelf.title, "t");
}

TEST(CXMLArchive, WalkOffersNodesInOrder) {
  Recorder archive;
  ASSERT_EQ(archive.Load("<A B='1' C='2'>t<D E='3'><F/></D><G/></A>"), kXmlOk);
  EXPECT_EQ(archive.calls,
            (Calls{"begin A", "node @B", "node @C", "node A", "begin #text", "node #text",
                   "begin D", "node @E", "node D", "begin F", "node F", "begin G", "node G"}));
  EXPECT_EQ(archive.registrations, 1);
}

TEST(CXMLArchive, SubtreeThatIsTakenOverIsNotWalked) {
  Recorder archive;
  archive.handledName = "D";
  archive.handledStatus = kXmlGeneralFailure;
  ASSERT_EQ(archive.Load("<A><D E='3'><F/></D><G/></A>"), kXmlOk);
  EXPECT_EQ(archive.calls, (Calls{"begin A", "node A", "begin D", "begin G", "node G"}));
}

TEST(CXMLArchive, ChildrenOfAConsumedNodeAreNotWalked) {
  Recorder archive;
  archive.consumedName = "D";
  ASSERT_EQ(archive.Load("<A><D E='3'><F/></D><G/></A>"), kXmlOk);
  EXPECT_EQ(archive.calls,
            (Calls{"begin A", "node A", "begin D", "node @E", "node D", "begin G", "node G"}));
}

TEST(CXMLArchive, ConsumedAttributeDoesNotStopTheWalkOfItsNode) {
  Recorder archive;
  archive.consumedName = "B";
  ASSERT_EQ(archive.Load("<A B='1' C='2'><D/></A>"), kXmlOk);
  EXPECT_EQ(archive.calls, (Calls{"begin A", "node @B", "node @C", "node A", "begin D", "node D"}));
}

TEST(CXMLArchive, WalkEndsAtTheNodeThatItBeganWith) {
  XmlDocument document;
  XmlParseFailure failure;
  ASSERT_TRUE(document.ParseText("<A><B/><C><D/></C><E/></A>", failure));
  Recorder archive;
  EXPECT_EQ(archive.Walk(document.Root().FirstChild()), kXmlOk);
  EXPECT_EQ(archive.calls, (Calls{"begin B", "node B"}));
  archive.calls.clear();
  EXPECT_EQ(archive.Walk(document.Root().FirstChild().NextSibling()), kXmlOk);
  EXPECT_EQ(archive.calls, (Calls{"begin C", "node C", "begin D", "node D"}));
  archive.calls.clear();
  EXPECT_EQ(archive.Walk(XmlNode()), kXmlOk);
  EXPECT_EQ(archive.calls, Calls());
}

TEST(CXMLArchive, StatusOfATakenOverTopLevelNodeIsTheResult) {
  Recorder archive;
  archive.handledName = "A";
  archive.handledStatus = kXmlOutOfMemory;
  EXPECT_EQ(archive.Load("<!--c--><A/><?later?>"), kXmlOutOfMemory);
  EXPECT_EQ(archive.calls, (Calls{"begin #comment", "node #comment", "begin A"}));
  EXPECT_EQ(archive.LastError(), GetMessageText(Msg::XmlOutOfMemory));
}

TEST(CXMLArchive, WhiteSpaceBetweenElementsMatchesNoBinding) {
  Shelf shelf;
  EXPECT_EQ(shelf.Load("<X>\n  <text>no</text>\n  <TITLE>\n t </TITLE>\n</X>"), kXmlOk);
  EXPECT_EQ(shelf.title, "\n t ");
}

TEST(CXMLArchive, ValuesAreConverted) {
  Shelf shelf;
  ASSERT_EQ(shelf.Load("<X><COUNT> -12 </COUNT><SCALE>2.5e1</SCALE><TITLE> 5 </TITLE></X>"),
            kXmlOk);
  EXPECT_EQ(ValuesOf(shelf), " 5 |-12|25.000000");
}

TEST(CXMLArchive, ValueThatDoesNotConvertLeavesTheMemberAsItWas) {
  for (const std::string text : {"", "x", "12x", "99999999999", "1,5"}) {
    Shelf shelf;
    ASSERT_EQ(shelf.Load("<X><COUNT>" + text + "</COUNT></X>"), kXmlOk);
    EXPECT_EQ(ValuesOf(shelf), kUntouched) << text;
  }
  for (const std::string text : {"", "x", "1.5x", "1e999", "1,5", "nan"}) {
    Shelf shelf;
    ASSERT_EQ(shelf.Load("<X><SCALE>" + text + "</SCALE></X>"), kXmlOk);
    EXPECT_EQ(ValuesOf(shelf), kUntouched) << text;
  }
}

TEST(CXMLArchive, EntityReferencesAreNotWellFormed) {
  Shelf shelf;
  EXPECT_EQ(shelf.Load("<!DOCTYPE X [<!ENTITY e 'abc'>]>\n<X><TITLE>&e;</TITLE></X>"),
            kXmlNotWellFormed);
  EXPECT_EQ(shelf.LastParseFailure(), (XmlParseFailure{2, "<X><TITLE>&e;</TITLE></X>",
                                                       "Entity references are not accepted: &e;"}));
  EXPECT_EQ(ValuesOf(shelf), kUntouched);
}

TEST(CXMLArchive, SuccessForgetsTheLastFailure) {
  Shelf shelf;
  EXPECT_EQ(shelf.Load("<X>"), kXmlNotWellFormed);
  EXPECT_EQ(shelf.Load("<X/>"), kXmlOk);
  EXPECT_EQ(shelf.LastParseFailure(), XmlParseFailure());
  EXPECT_EQ(shelf.LastError(), "");
}

TEST(CXMLArchive, FileIsReadLikeItsText) {
  const auto path = std::filesystem::temp_directory_path() /
                    ("bomparser_archive_" + std::to_string(std::random_device()()) + ".xml");
  std::ofstream(path, std::ios::binary) << "<X>\r\n<TITLE>from a file</TITLE></X>";
  Shelf shelf;
  EXPECT_EQ(shelf.LoadFile(path.string()), kXmlOk);
  EXPECT_EQ(shelf.title, "from a file");
  std::filesystem::remove(path);
  EXPECT_EQ(shelf.LoadFile(path.string()), kXmlNotWellFormed);
  EXPECT_EQ(shelf.LastParseFailure().line, 0);
  EXPECT_EQ(shelf.LastError(), shelf.LastParseFailure().reason);
  EXPECT_NE(shelf.LastError(), "");
}

TEST(CXMLArchive, ManyElementsAreWalked) {
  constexpr int kItems = 100'000;
  Shelf shelf;
  for (int i = 0; i < kItems; ++i) {
    shelf.Add("k", std::to_string(i));
  }
  Shelf read;
  ASSERT_EQ(read.Load(XmlOf(shelf)), kXmlOk);
  ASSERT_EQ(read.items.size(), std::size_t{kItems});
  for (int i = 0; i < kItems; ++i) {
    ASSERT_EQ(read.items[static_cast<std::size_t>(i)]->text, std::to_string(i));
  }
}

TEST(CXMLArchive, DeepNestingGivesAClearError) {
  std::string text;
  for (int i = 0; i < 100'000; ++i) {
    text += "<X>";
  }
  Shelf shelf;
  EXPECT_EQ(shelf.Load(text), kXmlNotWellFormed);
  EXPECT_EQ(shelf.LastError(), FormatMessageText(Msg::XmlDocumentTooDeep, kXmlMaxDepth));
}

TEST(CXMLArchive, NothingIsPrinted) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  Shelf shelf;
  shelf.Load("<X>");
  shelf.LoadFile("no/such/file.xml");
  shelf.title = "\x01";
  std::string text;
  shelf.GetXml(text);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// --- Bindings

TEST(XmlBindingTable, FindsTheFirstOfAName) {
  std::int32_t a = 0;
  double b = 0;
  XmlBindingTable table;
  table.Add("A", &a);
  table.Add("B", &b);
  table.Add("A", &b);
  EXPECT_EQ(table.Count(), 3u);
  ASSERT_NE(table.Find("A"), nullptr);
  EXPECT_EQ(std::get<std::int32_t*>(table.Find("A")->destination), &a);
  EXPECT_EQ(std::get<double*>(table.Find("B")->destination), &b);
  EXPECT_EQ(table.Find("a"), nullptr);
}

TEST(XmlBindingTableDeathTest, MoreThanItsCapacityIsAMistake) {
  std::string text;
  XmlBindingTable table;
  for (std::size_t i = 0; i < XmlBindingTable::kCapacity; ++i) {
    table.Add("A", &text);
  }
#ifndef NDEBUG
  EXPECT_DEATH(table.Add("B", &text), "kCapacity");
#else
  table.Add("B", &text);
  EXPECT_EQ(table.Count(), XmlBindingTable::kCapacity);
  EXPECT_EQ(table.Find("B"), nullptr);
#endif
}

// --- Writing

TEST(CXMLArchive, OperationsBuildTheTree) {
  Shelf shelf;
  shelf.title = "a < b";
  shelf.count = 3;
  shelf.scale = 0.1;
  shelf.Add("k", "");
  EXPECT_EQ(XmlOf(shelf),
            "<SHELF><TITLE>a &lt; b</TITLE><COUNT>3</COUNT><SCALE>0.1</SCALE>"
            "<ITEM KIND=\"k\"><TEXT></TEXT></ITEM></SHELF>");
}

TEST(CXMLArchive, SerializingAgainReplacesTheDocument) {
  Shelf shelf;
  const std::string first = XmlOf(shelf);
  EXPECT_EQ(XmlOf(shelf), first);
  ASSERT_EQ(shelf.Load("<!--c--><SHELF/>"), kXmlOk);
  EXPECT_EQ(XmlOf(shelf), first);
}

TEST(CXMLArchive, AttributeOfTheSameNameIsReplaced) {
  Writer writer;
  writer.ops = {{XmlNodeKind::BeginElement, "A"},
                {XmlNodeKind::Attribute, "B", 1},
                {XmlNodeKind::Attribute, "C", 2.5},
                {XmlNodeKind::Attribute, "B", std::string("x")},
                {XmlNodeKind::Attribute, "D"}};
  EXPECT_EQ(XmlOf(writer), "<A B=\"x\" C=\"2.5\" D=\"\"/>");
}

TEST(CXMLArchive, WithoutACurrentNodeTheOwnDocumentIsWritten) {
  Writer writer;
  const XmlNode element = writer.Write({XmlNodeKind::BeginElement, "A"}, XmlNode());
  EXPECT_EQ(element.Name(), "A");
  EXPECT_TRUE(element.Parent().IsDocument());
  EXPECT_EQ(writer.Write({XmlNodeKind::Text, {}, 5}, element), element);
  EXPECT_EQ(writer.Write({XmlNodeKind::Done}, element), element);
  EXPECT_EQ(writer.Write({XmlNodeKind::EndElement}, element), element.Parent());
  EXPECT_EQ(SerializeNode(element), "<A>5</A>");
  writer.ClearDocument();
  EXPECT_TRUE(writer.Write({XmlNodeKind::Done}, XmlNode()).FirstChild().IsNull());
}

TEST(CXMLArchive, OwnedObjectIsWrittenIntoTheDocumentOfItsParent) {
  XmlDocument document;
  Item item;
  item.kind = "k";
  EXPECT_EQ(item.Serialize(AppendElement(document.AsNode(), "A")), kXmlOk);
  EXPECT_EQ(SerializeNode(document.AsNode()), "<A><ITEM KIND=\"k\"><TEXT></TEXT></ITEM></A>");
}

TEST(CXMLArchive, TextThatXmlCannotHoldFailsAndNamesItsElement) {
  Shelf shelf;
  shelf.title = "a\x02";
  std::string text = "unchanged";
  EXPECT_EQ(shelf.GetXml(text), kXmlGeneralFailure);
  EXPECT_EQ(text, "unchanged");
  EXPECT_EQ(shelf.LastError(),
            "Text of element TITLE cannot be stored in XML: it holds the character U+0002 at "
            "position 2");
  shelf.title = "a";
  EXPECT_EQ(shelf.GetXml(text), kXmlOk);
  EXPECT_EQ(shelf.LastError(), "");
}

TEST(CXMLArchive, OwnedObjectThatCannotBeWrittenSaysSoItself) {
  Shelf shelf;
  shelf.Add("k", "\xFF");
  std::string text;
  EXPECT_EQ(shelf.GetXml(text), kXmlGeneralFailure);
  EXPECT_EQ(shelf.badItemStatus, kXmlGeneralFailure);
}

TEST(CXMLArchive, OwnerThatGoesOnAfterAFailureStillFails) {
  Shelf shelf;
  shelf.Add("\xFF", "");
  shelf.Add("good", "");
  std::string text = "unchanged";
  EXPECT_EQ(shelf.GetXml(text), kXmlGeneralFailure);
  EXPECT_EQ(shelf.badItemStatus, kXmlOk);  // Of the last item.
  EXPECT_EQ(text, "unchanged");
  EXPECT_EQ(shelf.LastError(),
            "Attribute KIND of element ITEM cannot be stored in XML: it holds the character 0xFF "
            "at position 1");
}

TEST(CXMLArchive, AfterAFailedOperationTheRestOfTheSequenceDoesNothing) {
  Writer writer;
  const XmlNode root = writer.Write({XmlNodeKind::BeginElement, "A"}, XmlNode());
  EXPECT_EQ(writer.Write({XmlNodeKind::BeginElement, "not a name"}, root), root);
  EXPECT_EQ(writer.Status(), kXmlGeneralFailure);
  EXPECT_EQ(writer.Write({XmlNodeKind::Text, {}, 5}, root), root);
  EXPECT_EQ(writer.Write({XmlNodeKind::EndElement}, root), root);
  EXPECT_EQ(SerializeNode(root), "<A/>");
  writer.ClearDocument();
  EXPECT_EQ(writer.Status(), kXmlOk);
}

TEST(CXMLArchive, EndingMoreElementsThanWereBegunIsAnInvalidPointer) {
  Writer writer;
  writer.ops = {
      {XmlNodeKind::BeginElement, "A"}, {XmlNodeKind::EndElement}, {XmlNodeKind::EndElement}};
  std::string text;
  EXPECT_EQ(writer.GetXml(text), kXmlInvalidPointer);
  EXPECT_EQ(writer.LastError(), "Invalid pointer");
}

TEST(CXMLArchive, TextOutsideTheRootFails) {
  Writer writer;
  writer.ops = {{XmlNodeKind::Text, {}, std::string("x")}};
  std::string text;
  EXPECT_EQ(writer.GetXml(text), kXmlGeneralFailure);
  EXPECT_EQ(writer.LastError(), GetMessageText(Msg::XmlNoPlaceForNode));
}

TEST(CXMLArchive, NumberWithoutDigitsFails) {
  for (const double value : {std::numeric_limits<double>::infinity(), std::nan("")}) {
    Shelf shelf;
    shelf.scale = value;
    std::string text;
    EXPECT_EQ(shelf.GetXml(text), kXmlGeneralFailure);
    EXPECT_EQ(shelf.LastError(), "Unspecified error");
  }
}

// --- Both ways

/// The values after they were written and read by another object.
std::unique_ptr<Shelf> ReadBack(Shelf& shelf) {
  auto read = std::make_unique<Shelf>();
  EXPECT_EQ(read->Load(XmlOf(shelf)), kXmlOk) << read->LastError();
  return read;
}

TEST(CXMLArchive, EveryKindOfDoubleIsReadBackExactly) {
  using Limits = std::numeric_limits<double>;
  for (const double value :
       {0.0, -0.0, 0.1, 1.0 / 3, 1e23, 123456789.123456789, Limits::max(), Limits::lowest(),
        Limits::min(), Limits::denorm_min(), Limits::epsilon(), 9007199254740993.0}) {
    Shelf shelf;
    shelf.scale = value;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(ReadBack(shelf)->scale),
              std::bit_cast<std::uint64_t>(value))
        << value;
  }
}

TEST(CXMLArchive, RandomDoublesAreReadBackExactly) {
  std::mt19937_64 random(20'240'607);
  for (int i = 0; i < 20'000; ++i) {
    Shelf shelf;
    shelf.scale = std::bit_cast<double>(random());
    if (std::isfinite(shelf.scale)) {
      ASSERT_EQ(std::bit_cast<std::uint64_t>(ReadBack(shelf)->scale),
                std::bit_cast<std::uint64_t>(shelf.scale));
    }
  }
}

TEST(CXMLArchive, IntegersAreReadBackExactly) {
  for (const std::int32_t value : {0, 1, -1, INT32_MAX, INT32_MIN}) {
    Shelf shelf;
    shelf.count = value;
    EXPECT_EQ(ReadBack(shelf)->count, value);
  }
}

TEST(CXMLArchive, NumbersAreTheSameUnderACommaLocale) {
  const std::locale before =
      std::locale::global(std::locale(std::locale::classic(), new CommaSeparator));
  Shelf shelf;
  shelf.scale = 12345.5;
  shelf.count = 1234567;
  const std::string text = XmlOf(shelf);
  const std::unique_ptr<Shelf> read = ReadBack(shelf);
  std::locale::global(before);
  EXPECT_EQ(text,
            "<SHELF><TITLE>before</TITLE><COUNT>1234567</COUNT><SCALE>12345.5</SCALE></SHELF>");
  EXPECT_EQ(ValuesOf(*read), "before|1234567|12345.500000");
}

TEST(CXMLArchive, NastyTextsAreReadBackExactly) {
  for (const std::string text :
       {"", "  x  ", "a\r\nb\rc\nd\te", "\n", "]]>", "<&>\"'", "\xE2\x82\xAC", "&#13;", "%s|%d"}) {
    Shelf shelf;
    shelf.title = text;
    shelf.Add(text, text);
    const std::unique_ptr<Shelf> read = ReadBack(shelf);
    EXPECT_EQ(read->title, text);
    ASSERT_EQ(read->items.size(), 1u);
    EXPECT_EQ(read->items[0]->kind, text);
    EXPECT_EQ(read->items[0]->text, text);
  }
}

// --- Out of memory

/// Lets every allocation of the work on a new Shelf fail in turn, alone and with all behind it. The
/// status must be the expected one, or tell that memory ran out: in its own way or by the reason
/// `unread`. `check` is called in any case.
template <class Work, class Check>
void ExpectSurvivesFailures(int expected, Work work, Check check, const std::string& unread = {}) {
  for (const MemoryFails fails : {MemoryFails::Once, MemoryFails::FromThenOn}) {
    int told = 0;
    ForEveryAllocation([&](std::int64_t granted) {
      Shelf shelf;
      shelf.Add("kind", "an item that is too long to be kept without memory");
      int status = kXmlOk;
      const bool failed = FailsAfter(
          granted, [&] { status = work(shelf); }, fails);
      if (status == kXmlOutOfMemory) {
        ++told;
        EXPECT_TRUE(failed);
        EXPECT_EQ(shelf.LastError(), XmlStatusText(kXmlOutOfMemory));
      } else if (status != expected) {
        EXPECT_EQ(shelf.LastError(), unread) << granted;
      }
      check(shelf, status);
      return failed;
    });
    EXPECT_GT(told, 0);
  }
}

/// After any failure the archive can be used as before.
void ExpectUsable(Shelf& shelf, int) {
  EXPECT_EQ(shelf.Load("<SHELF><TITLE>t</TITLE><COUNT>1</COUNT><SCALE>2</SCALE></SHELF>"), kXmlOk);
  EXPECT_EQ(shelf.LastError(), "");
  EXPECT_EQ(ValuesOf(shelf), "t|1|2.000000");
}

constexpr char kDocument[] =
    "<SHELF><TITLE>a title that is too long to be kept without memory</TITLE>\n"
    "<ITEM KIND='a kind that is too long to be kept'/></SHELF>";

TEST(CXMLArchiveWithoutMemory, LoadGivesItsStatusOrSaysSo) {
  const auto load = [](std::string_view text) {
    return [text](Shelf& shelf) { return shelf.Load(text); };
  };
  ExpectSurvivesFailures(kXmlOk, load(kDocument), [](Shelf& shelf, int status) {
    if (status == kXmlOk) {
      EXPECT_EQ(shelf.title, "a title that is too long to be kept without memory");
      EXPECT_EQ(shelf.items.size(), 2u);
    }
    ExpectUsable(shelf, status);
  });
  for (const char* text :
       {"<SHELF>\n<TITLE></SHELF>", "<SHELF><TITLE>a text with an &entity;</TITLE></SHELF>",
        "<!DOCTYPE SHELF [<!ELEMENT SHELF EMPTY>]><SHELF>a text that must not be here</SHELF>"}) {
    ExpectSurvivesFailures(kXmlNotWellFormed, load(text), ExpectUsable);
  }
}

TEST(CXMLArchiveWithoutMemory, LoadFileGivesItsStatusOrSaysSo) {
  const auto path = std::filesystem::temp_directory_path() /
                    ("bomparser_archive_" + std::to_string(std::random_device()()) + ".xml");
  std::ofstream(path, std::ios::binary) << kDocument;
  const std::string name = path.string();
  const auto load = [&name](Shelf& shelf) { return shelf.LoadFile(name); };
  const std::string unread = SystemReason("cannot read", name, ENOMEM);
  ExpectSurvivesFailures(kXmlOk, load, ExpectUsable, unread);
  std::filesystem::remove(path);
  ExpectSurvivesFailures(kXmlNotWellFormed, load, ExpectUsable);
}

TEST(CXMLArchiveWithoutMemory, GetXmlGivesTheTextOrSaysSo) {
  Shelf undisturbed;
  undisturbed.Add("kind", "an item that is too long to be kept without memory");
  const std::string whole = XmlOf(undisturbed);
  std::string text;
  ExpectSurvivesFailures(
      kXmlOk,
      [&text](Shelf& shelf) {
        text = "unchanged";
        return shelf.GetXml(text);
      },
      [&](Shelf& shelf, int status) {
        EXPECT_EQ(text, status == kXmlOk ? whole : "unchanged");
        EXPECT_EQ(XmlOf(shelf), whole);
      });
}

TEST(CXMLArchiveWithoutMemory, GetXmlOfWhatCannotBeWrittenGivesItsStatusOrSaysSo) {
  ExpectSurvivesFailures(
      kXmlGeneralFailure,
      [](Shelf& shelf) {
        std::string text;
        shelf.title = "\x01";
        return shelf.GetXml(text);
      },
      ExpectUsable);
}

// --- Copies

TEST(CXMLArchive, CopyStartsWithoutADocument) {
  Item item;
  item.kind = "k";
  ASSERT_EQ(item.Load("<ITEM KIND='loaded'/>"), kXmlOk);
  Item copy(item);
  EXPECT_EQ(copy.kind, "loaded");
  copy.kind = "unchanged";
  EXPECT_EQ(copy.WalkDocument(), kXmlOk);
  EXPECT_EQ(copy.kind, "unchanged");
}

TEST(CXMLArchive, AssigningLeavesTheOwnDocumentAlone) {
  Item item;
  ASSERT_EQ(item.Load("<ITEM KIND='own'/>"), kXmlOk);
  item = Item();
  EXPECT_EQ(item.kind, "");
  EXPECT_EQ(item.WalkDocument(), kXmlOk);
  EXPECT_EQ(item.kind, "own");
}

// --- Statuses

TEST(XmlStatusText, EveryStatusHasItsStandardText) {
  EXPECT_EQ(XmlStatusText(kXmlOk), "The operation completed successfully.");
  EXPECT_EQ(XmlStatusText(-1), "The document is not well-formed XML");
  EXPECT_EQ(XmlStatusText(static_cast<int>(0x80004003)), "Invalid pointer");
  EXPECT_EQ(XmlStatusText(static_cast<int>(0x80004005)), "Unspecified error");
  EXPECT_EQ(XmlStatusText(static_cast<int>(0x8007000E)),
            "Not enough memory resources are available to complete this operation.");
  EXPECT_EQ(XmlStatusText(12345), "Unspecified error");
}

}  // namespace
}  // namespace bomparser
