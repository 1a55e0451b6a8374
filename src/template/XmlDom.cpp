#include "template/XmlDom.h"

#include "input/MessageTexts.h"
#include "tnbase/FileBytes.h"
#include "tnbase/TextEncoding.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/valid.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlsave.h>
#include <new>
#include <utility>

namespace bomparser {

/// The document, and why something was refused in it. The library's document points back here.
struct XmlDocument::Data {
  xmlDoc* doc = nullptr;
  std::string refusal;

  Data() = default;
  Data(const Data&) = delete;
  Data& operator=(const Data&) = delete;
  ~Data() { xmlFreeDoc(doc); }

  void Take(xmlDoc* newDoc) {
    xmlFreeDoc(doc);
    doc = newDoc;
    doc->_private = this;
    refusal.clear();
  }
};

/// Handles as the library's nodes and back.
struct XmlLibrary {
  using Data = XmlDocument::Data;

  static xmlNode* Of(XmlNode node) { return node.m_node; }
  static XmlNode Handle(xmlNode* node) { return XmlNode(node); }
  static XmlNode Handle(xmlAttr* attribute) {
    return XmlNode(reinterpret_cast<xmlNode*>(attribute));
  }
  static XmlNode Handle(xmlDoc* doc) { return XmlNode(reinterpret_cast<xmlNode*>(doc)); }

  /// Notes why something was refused in the node's document; the first reason stays. Always null.
  static XmlNode Refuse(const xmlNode* node, const std::string& reason) {
    auto* const data = static_cast<Data*>(node->doc->_private);
    if (data != nullptr && data->refusal.empty()) {
      data->refusal = reason;
    }
    return {};
  }
};

namespace {

/// Compact: a short text stands in its node, which saves an allocation for most texts there are.
constexpr int kParseOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                              XML_PARSE_BIG_LINES | XML_PARSE_COMPACT;

/// The library counts what it is given in an int.
constexpr std::size_t kMaxDocumentBytes = INT_MAX;

const xmlChar* ToXml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }
const xmlChar* ToXml(const std::string& text) { return ToXml(text.c_str()); }
const char* FromXml(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

struct ParserDeleter {
  void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};
using ParserPtr = std::unique_ptr<xmlParserCtxt, ParserDeleter>;

struct DocDeleter {
  void operator()(xmlDoc* doc) const { xmlFreeDoc(doc); }
};
using DocPtr = std::unique_ptr<xmlDoc, DocDeleter>;

/// Takes all messages of the library on this thread while it lives, and keeps the one that counts:
/// the first fatal error, else the first error.
class ErrorListener {
 public:
  ErrorListener()
      : m_handlerBefore(xmlStructuredError), m_contextBefore(xmlStructuredErrorContext) {
    xmlSetStructuredErrorFunc(this, &ErrorListener::Hear);
  }
  ErrorListener(const ErrorListener&) = delete;
  ErrorListener& operator=(const ErrorListener&) = delete;
  ~ErrorListener() { xmlSetStructuredErrorFunc(m_contextBefore, m_handlerBefore); }

  bool HeardFatal() const { return m_level == XML_ERR_FATAL; }
  bool IsOutOfMemory() const { return m_outOfMemory; }
  int Line() const { return m_line; }
  const std::string& Reason() const { return m_reason; }

  bool HeardNothing() const { return m_level == XML_ERR_NONE && !m_outOfMemory; }
  void KeepOutOfMemory() { m_outOfMemory = true; }

  /// Keeps an error that this side of the door found.
  void KeepFatal(int line, const std::string& reason) {
    m_level = XML_ERR_FATAL;
    m_line = line;
    m_reason = reason;
  }

 private:
  static void Hear(void* listener, xmlError* error) {
    try {
      static_cast<ErrorListener*>(listener)->Keep(*error);
    } catch (const std::bad_alloc&) {
      static_cast<ErrorListener*>(listener)->KeepOutOfMemory();
    }
  }

  void Keep(const xmlError& error) {
    if (error.code == XML_ERR_NO_MEMORY) m_outOfMemory = true;
    if (error.level < XML_ERR_ERROR || error.level <= m_level) {
      return;
    }
    m_level = error.level;
    m_line = error.line;
    if (IsTooDeep(error)) {
      m_reason = FormatMessageText(Msg::XmlDocumentTooDeep, kXmlMaxDepth);
      return;
    }
    m_reason = error.message != nullptr ? error.message : "";
    m_reason.erase(m_reason.find_last_not_of("\r\n") + 1);
  }

  /// The library's own text for this tells programmers which switch to use.
  static bool IsTooDeep(const xmlError& error) {
    if (error.domain != XML_FROM_PARSER || error.ctxt == nullptr) return false;
    return static_cast<const xmlParserCtxt*>(error.ctxt)->nodeNr > kXmlMaxDepth;
  }

  xmlStructuredErrorFunc m_handlerBefore;
  void* m_contextBefore;
  xmlErrorLevel m_level = XML_ERR_NONE;
  bool m_outOfMemory = false;
  int m_line = 0;
  std::string m_reason;
};

/// The node behind `node` in document order, within `top`; null at the end. What hangs below an
/// entity reference is the entity's declaration, not a part of the document.
xmlNode* NextInDocument(xmlNode* node, const xmlNode* top) {
  const bool hasChildren = node->type == XML_ELEMENT_NODE || node->type == XML_DOCUMENT_NODE ||
                           node->type == XML_ATTRIBUTE_NODE;
  if (hasChildren && node->children != nullptr) {
    return node->children;
  }
  while (node != top && node->next == nullptr) {
    node = node->parent;
  }
  return node == top ? nullptr : node->next;
}

bool IsText(const xmlNode* node) {
  return node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
}

bool HasPrefix(const xmlNode* node) { return node->ns != nullptr && node->ns->prefix != nullptr; }

std::string QualifiedName(const xmlNode* node) {
  return HasPrefix(node) ? std::string(FromXml(node->ns->prefix)) + ':' + FromXml(node->name)
                         : FromXml(node->name);
}

std::string DescendantTexts(xmlNode* top) {
  std::string text;
  for (xmlNode* node = top; node != nullptr; node = NextInDocument(node, top)) {
    if (IsText(node) && node->content != nullptr) {
      text += FromXml(node->content);
    }
  }
  return text;
}

xmlNode* SkipDocumentType(xmlNode* node) {
  while (node != nullptr && node->type == XML_DTD_NODE) {
    node = node->next;
  }
  return node;
}

// --- Parsing

/// Keeps a parser away from entities. Declarations go nowhere, so that there is nothing that could
/// be expanded or read from elsewhere, and the first reference makes the document a failed one.
/// Looking for references in the finished document would be too late: the library reads what an
/// entity stands for when it meets the first reference, and nested parameter entities keep it busy
/// for ever.
class EntityGuard {
 public:
  EntityGuard(xmlParserCtxt& parser, ErrorListener& listener) : m_listener(listener) {
    parser._private = this;
    parser.sax->entityDecl = &EntityGuard::OnDeclared;
    parser.sax->getEntity = &EntityGuard::OnWanted;
    parser.sax->getParameterEntity = &EntityGuard::OnParameterWanted;
  }
  EntityGuard(const EntityGuard&) = delete;
  EntityGuard& operator=(const EntityGuard&) = delete;

 private:
  static EntityGuard& Of(const xmlParserCtxt& parser) {
    return *static_cast<EntityGuard*>(parser._private);
  }

  static void OnDeclared(void* parser, const xmlChar* name, int kind, const xmlChar*,
                         const xmlChar*, xmlChar*) {
    const bool hasText =
        kind == XML_INTERNAL_GENERAL_ENTITY || kind == XML_INTERNAL_PARAMETER_ENTITY;
    Of(*static_cast<xmlParserCtxt*>(parser)).m_justDeclared = hasText ? name : nullptr;
  }

  static xmlEntity* OnWanted(void* parser, const xmlChar* name) {
    return Refuse(*static_cast<xmlParserCtxt*>(parser), name, Msg::XmlEntityReference);
  }

  static xmlEntity* OnParameterWanted(void* parser, const xmlChar* name) {
    return Refuse(*static_cast<xmlParserCtxt*>(parser), name, Msg::XmlParameterEntityReference);
  }

  static xmlEntity* Refuse(const xmlParserCtxt& parser, const xmlChar* name, Msg reason) {
    EntityGuard& guard = Of(parser);
    // At the end of a declaration with a text the parser looks the entity up that it declared;
    // names are kept once, so the same name is the same pointer.
    if (std::exchange(guard.m_justDeclared, nullptr) == name || guard.m_listener.HeardFatal()) {
      return nullptr;
    }
    try {
      guard.m_listener.KeepFatal(parser.input->line, FormatMessageText(reason, FromXml(name)));
    } catch (const std::bad_alloc&) {
      guard.m_listener.KeepOutOfMemory();
    }
    return nullptr;
  }

  ErrorListener& m_listener;
  const xmlChar* m_justDeclared = nullptr;
};

/// Cuts a UTF-8 text that is too long for a message, between two characters.
std::string CutForReading(std::string text) {
  if (text.size() <= kXmlMaxLineText) return text;
  std::size_t end = kXmlMaxLineText;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
    --end;
  return text.replace(end, std::string::npos, " ...");
}

/// The 1-based line of a source as UTF-8. Sources with two bytes a character are left out: their
/// lines cannot be cut at bytes.
std::string SourceLine(std::string_view bytes, int line) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (line < 1 || bytes.substr(0, 4).find('\0') != std::string_view::npos) {
    return {};
  }
  if (bytes.starts_with(kByteOrderMark)) {
    bytes.remove_prefix(kByteOrderMark.size());
  }
  for (int i = 1; i < line; ++i) {
    const std::size_t lineEnd = bytes.find('\n');
    if (lineEnd == std::string_view::npos) {
      return {};
    }
    bytes.remove_prefix(lineEnd + 1);
  }
  std::string_view text = bytes.substr(0, bytes.find('\n'));
  if (text.ends_with('\r')) {
    text.remove_suffix(1);
  }
  return CutForReading(IsUtf8(text) ? std::string(text) : Windows1252ToUtf8(text));
}

/// A document type that stands in the document itself is kept to. One that stands elsewhere is not
/// read, so nothing can be said about it.
bool DeclaresItsElements(const xmlDoc& doc) {
  const xmlDtd* const type = doc.intSubset;
  return type != nullptr && type->elements != nullptr && type->SystemID == nullptr &&
         type->ExternalID == nullptr;
}

struct ValidityDeleter {
  void operator()(xmlValidCtxt* context) const { xmlFreeValidCtxt(context); }
};

bool IsAsDeclared(xmlDoc& doc) {
  if (!DeclaresItsElements(doc)) return true;
  const std::unique_ptr<xmlValidCtxt, ValidityDeleter> context(xmlNewValidCtxt());
  if (context == nullptr) throw std::bad_alloc();
  return xmlValidateDocument(context.get(), &doc) == 1;
}

/// Null when the bytes are not well-formed, or not what their document type declares.
DocPtr ParseBytes(std::string_view bytes, ErrorListener& listener) {
  const ParserPtr parser(xmlNewParserCtxt());
  if (parser == nullptr) throw std::bad_alloc();
  const EntityGuard guard(*parser, listener);
  DocPtr doc(xmlCtxtReadMemory(parser.get(), bytes.empty() ? "" : bytes.data(),
                               static_cast<int>(bytes.size()), nullptr, nullptr, kParseOptions));
  // The parser takes a NUL behind the root element for the end and drops what follows.
  const xmlParserInput* const rest = parser->input;
  if (!listener.HeardFatal() && rest != nullptr && rest->cur < rest->end) {
    listener.KeepFatal(rest->line, GetMessageText(Msg::XmlNulCharacter));
  }
  if (listener.HeardFatal() || doc == nullptr) return nullptr;
  return IsAsDeclared(*doc) ? std::move(doc) : nullptr;
}

/// Parses into `doc`, or leaves it empty and tells why. Throws std::bad_alloc.
bool ParseInto(DocPtr& doc, std::string_view bytes, XmlParseFailure& failure) {
  if (bytes.size() > kMaxDocumentBytes) {
    failure = {0, "", FormatMessageText(Msg::XmlTooLarge, kMaxDocumentBytes)};
    return false;
  }
  ErrorListener listener;
  doc = ParseBytes(bytes, listener);
  // Where the memory ends the library may take what it has read for all there is, or blame a line.
  const bool failedSilently = doc == nullptr && listener.HeardNothing();
  if (listener.IsOutOfMemory() || failedSilently) throw std::bad_alloc();
  failure = {};
  if (doc == nullptr) {
    failure = {listener.Line(), SourceLine(bytes, listener.Line()),
               CutForReading(listener.Reason())};
  }
  return doc != nullptr;
}

// --- Appending

enum class TextProblem { None, TooLong, Unstorable };

struct TextCheck {
  TextProblem problem = TextProblem::None;
  std::string character =
      {};  ///< As shown to users: "U+0007", or "0x80" for a byte that is no UTF-8.
  std::size_t position = 0;  ///< In characters, from 1.
};

/// XML 1.0 has no way to write these, not even as a character reference.
bool IsForbiddenControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

bool StartsWithNoncharacter(std::string_view text) {
  return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
}

/// Length of the first character by its first byte; a byte that starts none counts as one.
std::size_t CharacterLength(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text[0]);
  const std::size_t length = byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
  return std::min(length, text.size());
}

std::string Hexadecimal(char c, std::size_t digits) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text(digits, '0');
  auto value = static_cast<unsigned char>(c);
  for (std::size_t i = digits; i-- > 0; value = static_cast<unsigned char>(value >> 4)) {
    text[i] = kDigits[value & 0xF];
  }
  return text;
}

/// Walks the text character by character: only for texts that are known to have a problem.
TextCheck FindProblem(std::string_view text) {
  std::size_t position = 1;
  for (; !text.empty(); ++position) {
    const std::size_t length = CharacterLength(text);
    if (IsForbiddenControl(text[0])) {
      return {TextProblem::Unstorable, "U+" + Hexadecimal(text[0], 4), position};
    }
    if (StartsWithNoncharacter(text)) {
      return {TextProblem::Unstorable, text[2] == '\xBE' ? "U+FFFE" : "U+FFFF", position};
    }
    if (!IsUtf8(text.substr(0, length))) {
      return {TextProblem::Unstorable, "0x" + Hexadecimal(text[0], 2), position};
    }
    text.remove_prefix(length);
  }
  return {};
}

TextCheck CheckText(std::string_view text, std::size_t limit) {
  if (text.size() > limit) {
    return {TextProblem::TooLong};
  }
  const bool storable = IsUtf8(text) &&
                        std::none_of(text.begin(), text.end(), IsForbiddenControl) &&
                        text.find("\xEF\xBF\xBE") == std::string_view::npos &&
                        text.find("\xEF\xBF\xBF") == std::string_view::npos;
  return storable ? TextCheck() : FindProblem(text);
}

std::string TextRefusal(const TextCheck& check, const std::string& element) {
  return check.problem == TextProblem::TooLong
             ? FormatMessageText(Msg::XmlTextTooLong, element, kXmlMaxTextBytes)
             : FormatMessageText(Msg::XmlUnstorableText, element, check.character, check.position);
}

std::string AttributeRefusal(const TextCheck& check, const std::string& name,
                             const std::string& element) {
  return check.problem == TextProblem::TooLong
             ? FormatMessageText(Msg::XmlAttributeTooLong, name, element, kXmlMaxAttributeBytes)
             : FormatMessageText(Msg::XmlUnstorableAttribute, name, element, check.character,
                                 check.position);
}

bool IsQualifiedName(const std::string& name) {
  return IsUtf8(name) && name.find('\0') == std::string::npos &&
         xmlValidateQName(ToXml(name), 0) == 0;
}

/// Would be read as the declaration of a namespace, not as an attribute.
bool IsNamespaceDeclaration(std::string_view name) {
  return name == "xmlns" || name.starts_with("xmlns:");
}

/// How many elements an element lies deep; 0 for a document.
int DepthOf(const xmlNode* node) {
  int depth = 0;
  for (; node != nullptr && node->type == XML_ELEMENT_NODE; node = node->parent) {
    ++depth;
  }
  return depth;
}

/// Why `parent` cannot hold an element of that name; empty when it can.
std::string ElementRefusal(xmlNode* parent, const std::string& name) {
  const bool isDocument = parent->type == XML_DOCUMENT_NODE;
  if (!IsQualifiedName(name)) {
    return FormatMessageText(Msg::XmlInvalidName, name);
  }
  if (!isDocument && parent->type != XML_ELEMENT_NODE) {
    return GetMessageText(Msg::XmlNoPlaceForNode);
  }
  if (isDocument && xmlDocGetRootElement(parent->doc) != nullptr) {
    return FormatMessageText(Msg::XmlSecondRoot, name);
  }
  if (DepthOf(parent) >= kXmlMaxDepth) {
    return FormatMessageText(Msg::XmlNestingTooDeep, name, kXmlMaxDepth);
  }
  return {};
}

/// Puts a fresh node behind the last child. Null, with the memory named as the reason, when there
/// is no fresh node to put there.
XmlNode Append(xmlNode* parent, xmlNode* fresh) {
  xmlNode* const added = fresh != nullptr ? xmlAddChild(parent, fresh) : nullptr;
  if (added == nullptr) {
    xmlFreeNode(fresh);
    return XmlLibrary::Refuse(parent, GetMessageText(Msg::XmlOutOfMemory));
  }
  return XmlLibrary::Handle(added);
}

// --- Writing

int AppendBytes(void* text, const char* bytes, int count) {
  try {
    static_cast<std::string*>(text)->append(bytes, static_cast<std::size_t>(count));
    return count;
  } catch (const std::bad_alloc&) {
    return -1;
  }
}

/// Appends the node's XML. False when there was no memory for it.
bool AppendXml(xmlNode* node, std::string& text) {
  xmlOutputBuffer* const out = xmlOutputBufferCreateIO(&AppendBytes, nullptr, &text, nullptr);
  if (out == nullptr) {
    return false;
  }
  xmlNodeDumpOutput(out, node->doc, node, 0, 0, "UTF-8");
  return xmlOutputBufferClose(out) >= 0;
}

/// While it lives the document counts as one in UTF-8, whatever its source was: otherwise
/// characters of attributes beyond ASCII would be written as numbers.
class AsUtf8 {
 public:
  explicit AsUtf8(xmlDoc* doc) : m_doc(doc), m_encodingBefore(doc->encoding) {
    m_doc->encoding = ToXml("UTF-8");
  }
  AsUtf8(const AsUtf8&) = delete;
  AsUtf8& operator=(const AsUtf8&) = delete;
  ~AsUtf8() { m_doc->encoding = m_encodingBefore; }

 private:
  xmlDoc* m_doc;
  const xmlChar* m_encodingBefore;
};

}  // namespace

// --- XmlNode

bool XmlNode::IsDocument() const { return m_node != nullptr && m_node->type == XML_DOCUMENT_NODE; }

bool XmlNode::IsElement() const { return m_node != nullptr && m_node->type == XML_ELEMENT_NODE; }

bool XmlNode::IsAttribute() const {
  return m_node != nullptr && m_node->type == XML_ATTRIBUTE_NODE;
}

std::string XmlNode::Name() const {
  if (m_node == nullptr) {
    return {};
  }
  switch (m_node->type) {
    case XML_ELEMENT_NODE:
    case XML_ATTRIBUTE_NODE:
      return QualifiedName(m_node);
    case XML_PI_NODE:
      return FromXml(m_node->name);
    case XML_TEXT_NODE:
      return "#text";
    case XML_CDATA_SECTION_NODE:
      return "#cdata-section";
    case XML_COMMENT_NODE:
      return "#comment";
    case XML_DOCUMENT_NODE:
      return "#document";
    default:
      return {};
  }
}

bool XmlNode::HasName(std::string_view name) const {
  const bool plain = (IsElement() || IsAttribute()) && !HasPrefix(m_node);
  return plain ? name == FromXml(m_node->name) : name == Name();
}

std::string XmlNode::Value() const {
  if (m_node == nullptr) {
    return {};
  }
  const bool hasOwnText = m_node->type == XML_COMMENT_NODE || m_node->type == XML_PI_NODE;
  if (hasOwnText) {
    return m_node->content != nullptr ? FromXml(m_node->content) : "";
  }
  return DescendantTexts(m_node);
}

XmlNode XmlNode::Parent() const { return XmlNode(m_node != nullptr ? m_node->parent : nullptr); }

XmlNode XmlNode::FirstChild() const {
  return IsElement() || IsDocument() ? XmlNode(SkipDocumentType(m_node->children)) : XmlNode();
}

XmlNode XmlNode::NextSibling() const {
  const bool hasSiblings = m_node != nullptr && !IsDocument();
  return hasSiblings ? XmlNode(SkipDocumentType(m_node->next)) : XmlNode();
}

XmlNode XmlNode::FirstAttribute() const {
  return IsElement() ? XmlLibrary::Handle(m_node->properties) : XmlNode();
}

int XmlNode::Line() const {
  const long line = m_node != nullptr ? xmlGetLineNo(m_node) : 0;
  return static_cast<int>(std::max(line, 0L));
}

// --- XmlDocument

XmlDocument::XmlDocument() = default;
XmlDocument::~XmlDocument() = default;
XmlDocument::XmlDocument(XmlDocument&&) noexcept = default;
XmlDocument& XmlDocument::operator=(XmlDocument&&) noexcept = default;

XmlDocument::Data& XmlDocument::Use() {
  if (m_data == nullptr) {
    auto data = std::make_unique<Data>();
    DocPtr doc(xmlNewDoc(ToXml("1.0")));
    if (doc == nullptr) {
      throw std::bad_alloc();
    }
    data->Take(doc.release());
    m_data = std::move(data);
  }
  return *m_data;
}

void XmlDocument::Clear() {
  if (m_data == nullptr) {
    return;
  }
  m_data->refusal.clear();
  while (xmlNode* const child = m_data->doc->children) {
    xmlUnlinkNode(child);
    xmlFreeNode(child);
  }
}

XmlNode XmlDocument::AsNode() { return XmlLibrary::Handle(Use().doc); }

XmlNode XmlDocument::Root() const {
  return m_data != nullptr ? XmlLibrary::Handle(xmlDocGetRootElement(m_data->doc)) : XmlNode();
}

bool XmlDocument::ParseText(std::string_view bytes, XmlParseFailure& failure) {
  Clear();
  DocPtr doc;
  if (!ParseInto(doc, bytes, failure)) {
    return false;
  }
  Use().Take(doc.release());
  return true;
}

bool XmlDocument::ParseFile(const std::string& path, XmlParseFailure& failure) {
  std::string bytes;
  std::string error;
  if (!ReadFileBytes(path, bytes, error, kMaxDocumentBytes)) {
    Clear();
    failure = {0, "", error};
    return false;
  }
  return ParseText(bytes, failure);
}

const std::string& XmlDocument::Refusal() const {
  static const std::string s_none;
  return m_data != nullptr ? m_data->refusal : s_none;
}

// --- Appending and writing

XmlNode AppendElement(XmlNode parent, std::string_view name) {
  if (parent.IsNull()) {
    return {};
  }
  const ErrorListener quiet;
  xmlNode* const node = XmlLibrary::Of(parent);
  const std::string elementName(name);
  const std::string refusal = ElementRefusal(node, elementName);
  if (!refusal.empty()) {
    return XmlLibrary::Refuse(node, refusal);
  }
  return Append(node, xmlNewDocNode(node->doc, nullptr, ToXml(elementName), nullptr));
}

XmlNode AppendText(XmlNode parent, std::string_view text) {
  if (parent.IsNull()) {
    return {};
  }
  const ErrorListener quiet;
  xmlNode* const node = XmlLibrary::Of(parent);
  if (!parent.IsElement()) {
    return XmlLibrary::Refuse(node, GetMessageText(Msg::XmlNoPlaceForNode));
  }
  const TextCheck check = CheckText(text, kXmlMaxTextBytes);
  if (check.problem != TextProblem::None) {
    return XmlLibrary::Refuse(node, TextRefusal(check, parent.Name()));
  }
  const std::string content(text);
  return Append(node, xmlNewDocText(node->doc, ToXml(content)));
}

XmlNode SetAttribute(XmlNode element, std::string_view name, std::string_view value) {
  if (element.IsNull()) {
    return {};
  }
  const ErrorListener quiet;
  xmlNode* const node = XmlLibrary::Of(element);
  const std::string attributeName(name);
  if (!IsQualifiedName(attributeName) || IsNamespaceDeclaration(name)) {
    return XmlLibrary::Refuse(node, FormatMessageText(Msg::XmlInvalidName, name));
  }
  if (!element.IsElement()) {
    return XmlLibrary::Refuse(node, GetMessageText(Msg::XmlNoPlaceForNode));
  }
  const TextCheck check = CheckText(value, kXmlMaxAttributeBytes);
  if (check.problem != TextProblem::None) {
    return XmlLibrary::Refuse(node, AttributeRefusal(check, attributeName, element.Name()));
  }
  const std::string content(value);
  xmlAttr* const attribute = xmlSetProp(node, ToXml(attributeName), ToXml(content));
  return attribute != nullptr ? XmlLibrary::Handle(attribute)
                              : XmlLibrary::Refuse(node, GetMessageText(Msg::XmlOutOfMemory));
}

std::string SerializeNode(XmlNode node) {
  if (node.IsNull()) {
    return {};
  }
  const ErrorListener quiet;
  const AsUtf8 utf8(XmlLibrary::Of(node)->doc);
  std::string text;
  bool written = true;
  if (node.IsDocument()) {
    // Child by child: the library would put a line end behind each.
    for (XmlNode child = node.FirstChild(); !child.IsNull(); child = child.NextSibling()) {
      written = written && AppendXml(XmlLibrary::Of(child), text);
    }
  } else {
    written = AppendXml(XmlLibrary::Of(node), text);
  }
  if (!written) {
    throw std::bad_alloc();
  }
  return text;
}

}  // namespace bomparser
