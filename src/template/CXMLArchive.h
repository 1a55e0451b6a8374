#pragma once

#include "template/XmlDom.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace bomparser {

// Status codes of the archive: 0 is success, everything below is a failure.
inline constexpr int kXmlOk = 0;
inline constexpr int kXmlNotWellFormed = -1;
inline constexpr int kXmlInvalidPointer = static_cast<int>(0x80004003);
inline constexpr int kXmlGeneralFailure = static_cast<int>(0x80004005);
inline constexpr int kXmlOutOfMemory = static_cast<int>(0x8007000E);

/// The standard text of a status. A status that is none of the above has that of
/// kXmlGeneralFailure.
const std::string& XmlStatusText(int status);

/// What one node operation does to the current node.
enum class XmlNodeKind : std::int32_t {
  BeginElement = 0,  ///< Appends an element, which becomes the current node.
  Text = 1,          ///< Appends a text.
  EndElement = 2,    ///< The parent becomes the current node.
  Attribute = 3,     ///< Sets an attribute, replacing one of the same name.
  Done = 4,          ///< Nothing; closes every writer's sequence.
};

using XmlValue = std::variant<std::monostate, std::int32_t, double, std::string>;

struct XmlNodeOp {
  XmlNodeKind kind = XmlNodeKind::Done;
  std::string_view name = {};  ///< Of an element or attribute, else empty.
  XmlValue value = {};         ///< Of a text or attribute, else empty.
};

/// Where the value of nodes with a certain name goes.
struct XmlBinding {
  using Destination = std::variant<std::int32_t*, double*, std::string*>;

  std::string_view name;  ///< Compared exactly, case included. Lives as long as the table.
  Destination destination;
};

/// The bindings of one object while it is read.
class XmlBindingTable {
 public:
  static constexpr std::size_t kCapacity = 7;

  /// Adds a binding behind the others; of two with the same name the first one counts. More than
  /// kCapacity are a mistake of the program, caught by an assertion and otherwise left out.
  void Add(std::string_view name, XmlBinding::Destination destination);

  /// The first binding of that name, or null.
  const XmlBinding* Find(std::string_view name) const;

  std::size_t Count() const { return m_count; }

 private:
  std::array<XmlBinding, kCapacity> m_bindings{};
  std::size_t m_count = 0;
};

/// Base of every object that is stored in a template file. Writing: the object issues node
/// operations against a moving current node. Reading: a walk offers every node to the object, which
/// stores the values of nodes that it has bound and may take over whole subtrees.
///
/// The object's own document is made when it is first used, so that an archive that is only part of
/// another one's document costs next to nothing. It belongs to this one object: a copy starts
/// without one, and assigning leaves it alone. Load, LoadFile and GetXml never throw: where the
/// memory ends they give kXmlOutOfMemory.
class CXMLArchive {
 public:
  virtual ~CXMLArchive();

  /// Offered every node before anything else. An override that takes the node over, subtree
  /// included, sets `handled` and returns its own status.
  virtual int OnBeginNode(XmlNode node, bool& handled);

  /// Offered each attribute of a node and then the node itself. True when it was consumed; the
  /// children of a consumed node are not walked. The default is ReadBoundValue.
  virtual bool OnNode(XmlNode node, const XmlBindingTable& bindings);

  /// Writes the object as a subtree under `parent`. Overrides start with ClearDocument() and return
  /// WriteStatus(), or the first failing status of an owned object.
  virtual int Serialize(XmlNode parent) = 0;

  /// Reads this object from the node `top`. In this order: OnBeginNode, whose status is returned at
  /// once when it took the node over; OnNode for each attribute; OnNode for the node, and when it
  /// consumed it, done; then the same for each child in document order, whose statuses count for
  /// nothing: what cannot be read is dropped by whoever took it over, and its siblings are still
  /// read.
  int Walk(XmlNode top);

  /// Parses `xmlText` into the own document and walks it. kXmlNotWellFormed, with the document
  /// empty, nothing bound touched and the details in LastParseFailure(), when it is not
  /// well-formed.
  int Load(std::string_view xmlText);

  /// The same from a file. One that cannot be read counts as not well-formed, at line 0.
  int LoadFile(const std::string& path);

  /// Walks each top-level node of the own document and returns the first status that is not 0.
  int WalkDocument();

  /// Writes the object into its own document and gives the document's text. On failure `text` is
  /// unchanged and LastError() tells why.
  int GetXml(std::string& text);

  /// Why the last Load or LoadFile of this object failed; empty after a success.
  const XmlParseFailure& LastParseFailure() const;

  /// Why the last GetXml, Load or LoadFile of this object failed; empty after a success.
  const std::string& LastError() const;

  /// Removes everything from the own document and begins a new sequence of node operations.
  void ClearDocument();

  /// Stores the node's value where the first binding of its name says. True when there is one, also
  /// when the value cannot be converted, which leaves the destination as it was.
  static bool ReadBoundValue(XmlNode node, const XmlBindingTable& bindings);

 protected:
  CXMLArchive();
  CXMLArchive(const CXMLArchive& other);
  CXMLArchive& operator=(const CXMLArchive& other);

  /// Adds what this object reads to the table. Called once for each walk.
  virtual void RegisterBindings(XmlBindingTable& bindings) = 0;

  /// Performs one node operation in the document of `current` (null: the own document) and returns
  /// the new current node, to be passed to the next call. Once an operation failed, the rest of the
  /// sequence does nothing and returns `current`, and WriteStatus() is not kXmlOk.
  XmlNode WriteNode(const XmlNodeOp& op, XmlNode current);

  /// kXmlOk, or the status of the first node operation that failed since ClearDocument().
  int WriteStatus() const { return m_writeStatus; }

 private:
  struct Own;
  Own& Use();
  template <class Work>
  int Guard(Work work);
  int FinishLoad(bool parsed);
  XmlNode MoveTo(XmlNode target, int statusIfNull, XmlNode current);
  void WriteValue(const XmlNodeOp& op, XmlNode at);

  std::unique_ptr<Own> m_own;
  int m_writeStatus = kXmlOk;
  bool m_outOfMemory = false;  // So ended the last Load, LoadFile or GetXml.
};

}  // namespace bomparser
