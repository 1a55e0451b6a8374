#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct _xmlNode;

namespace bomparser {

// The one door to the XML library: no other file includes its headers. Names, values and texts are
// UTF-8 on this side of the door, whatever the encoding of the file was. The library never prints,
// never reads a file and never opens a connection. Where the memory ends, std::bad_alloc is thrown.

/// A light handle on one node of an XmlDocument: the document itself, an element, an attribute, a
/// text, a comment and so on. Owns nothing, is copied freely, and is valid while its node is in the
/// document. The null handle is a valid object that reads as empty.
class XmlNode {
 public:
  XmlNode() = default;

  bool IsNull() const { return m_node == nullptr; }
  bool IsDocument() const;
  bool IsElement() const;
  bool IsAttribute() const;

  /// The name as written, prefix included ("prefix:name"). A processing instruction has its target
  /// as name; nodes without a name have the reserved ones "#document", "#text", "#cdata-section"
  /// and "#comment", which no element can have.
  std::string Name() const;
  /// Whether Name() is this name, without making a text of it.
  bool HasName(std::string_view name) const;

  /// An attribute's value. Of any other node the texts of all its descendants joined, CDATA
  /// sections included, comments left out; of a text or comment its own text.
  std::string Value() const;

  /// The element around a node, the owner of an attribute, the document around the root.
  XmlNode Parent() const;

  /// Walks in document order; null at the end. Only documents and elements have children. A
  /// document type declaration is never shown.
  XmlNode FirstChild() const;
  /// The next child after a child, the next attribute after an attribute.
  XmlNode NextSibling() const;
  XmlNode FirstAttribute() const;

  /// Line of the source, from 1; 0 where it is not known.
  int Line() const;

  bool operator==(const XmlNode&) const = default;

 private:
  friend struct XmlLibrary;  // This side of the door: the functions of XmlDom.cpp.

  explicit XmlNode(_xmlNode* node) : m_node(node) {}

  _xmlNode* m_node = nullptr;
};

/// Templates are often one line; nobody reads megabytes of it in a message.
inline constexpr std::size_t kXmlMaxLineText = 1000;

/// Why a text could not be parsed.
struct XmlParseFailure {
  int line = 0;  ///< Line of the first error, from 1; 0 when the file could not be read.
  /// That line without its line end, UTF-8; may be empty (UTF-16 sources). Of a long one the first
  /// kXmlMaxLineText bytes or so, and " ...".
  std::string lineText;
  std::string reason;  ///< One or more lines without a trailing line break, cut in the same way.

  bool operator==(const XmlParseFailure&) const = default;
};

/// Owns one document. Costs one pointer until it is first used.
class XmlDocument {
 public:
  XmlDocument();
  ~XmlDocument();
  XmlDocument(XmlDocument&&) noexcept;
  XmlDocument& operator=(XmlDocument&&) noexcept;

  /// Removes every top-level node and forgets the refusal. Handles on removed nodes become invalid;
  /// the handle that AsNode gives stays.
  void Clear();

  /// The document as a node, to append to and to walk. Valid until the next parse.
  XmlNode AsNode();

  /// The root element, or null.
  XmlNode Root() const;

  /// Replaces the content by what `bytes` say, white space preserved. The encoding is the one that
  /// the text declares (or its byte order mark shows), UTF-8 without any.
  ///
  /// False, with the first error in `failure` and the document empty, when the text is not
  /// well-formed, not what a document type inside it declares, too large, nested deeper than
  /// kXmlMaxDepth, or refers to an entity other than the five that XML itself has: expanding those
  /// is the way to read foreign files and to fill the memory, and no template needs them.
  bool ParseText(std::string_view bytes, XmlParseFailure& failure);

  /// The same from a file. A file that cannot be read (missing, a folder, no permission) fails with
  /// line 0 and the system's reason.
  bool ParseFile(const std::string& path, XmlParseFailure& failure);

  /// Why one of the appending functions below refused something in this document, the first time
  /// since it was cleared or parsed; empty when all was taken. A document with a refusal does not
  /// hold what was meant to be in it.
  const std::string& Refusal() const;

 private:
  friend struct XmlLibrary;

  struct Data;
  Data& Use();

  std::unique_ptr<Data> m_data;
};

// What is larger than this is not written: these are the limits that the library keeps to when it
// reads, as a protection, and beyond them reading back is not certain.

inline constexpr int kXmlMaxDepth = 256;                         ///< Elements within elements.
inline constexpr std::size_t kXmlMaxTextBytes = 10'000'000;      ///< Of one text.
inline constexpr std::size_t kXmlMaxAttributeBytes = 1'000'000;  ///< Of one attribute's value.

// The appending functions work in the document that the given node belongs to. They return the new
// node, or null when they refuse, with the reason in that document's Refusal(): a name that is
// none; a text that XML cannot hold (control characters but TAB, LF and CR, U+FFFE, U+FFFF, bytes
// that are no UTF-8, too long); a place that cannot hold the node (a second root, a text outside
// the root, an attribute of something else than an element). What they take is read back exactly.

/// Appends an element after the last child of a document or an element.
XmlNode AppendElement(XmlNode parent, std::string_view name);

/// Appends a text; a text behind a text becomes part of it.
XmlNode AppendText(XmlNode parent, std::string_view text);

/// Sets an attribute, in the place of one of the same name or behind the last.
XmlNode SetAttribute(XmlNode element, std::string_view name, std::string_view value);

/// The node and what it holds as XML text: UTF-8, no declaration, no white space that is not in the
/// node, no line end behind it. Parsing the text gives the same names and values. Empty for null.
std::string SerializeNode(XmlNode node);

}  // namespace bomparser
