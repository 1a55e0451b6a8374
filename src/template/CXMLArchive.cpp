#include "template/CXMLArchive.h"

#include "input/MessageTexts.h"
#include "tnbase/NumberText.h"

#include <cassert>
#include <cmath>
#include <new>
#include <optional>

namespace bomparser {

namespace {

struct StatusText {
  int status;
  Msg text;
};

constexpr StatusText kStatusTexts[] = {
    {kXmlOk, Msg::XmlSuccess},
    {kXmlNotWellFormed, Msg::XmlNotWellFormed},
    {kXmlInvalidPointer, Msg::XmlInvalidPointer},
    {kXmlGeneralFailure, Msg::XmlGeneralFailure},
    {kXmlOutOfMemory, Msg::XmlOutOfMemory},
};

/// A value as it is written. Nothing for a number that could not be read back.
struct ValueWriter {
  std::optional<std::string> operator()(std::monostate) const { return ""; }
  std::optional<std::string> operator()(std::int32_t value) const { return FormatInt(value); }
  std::optional<std::string> operator()(const std::string& value) const { return value; }
  std::optional<std::string> operator()(double value) const {
    return std::isfinite(value) ? std::optional(FormatShortest(value)) : std::nullopt;
  }
};

/// Stores a value that was read; one that does not convert leaves the destination as it was.
struct ValueReader {
  const std::string& text;

  void operator()(std::int32_t* destination) const { ParseInt32(text, *destination); }
  void operator()(double* destination) const { ParseDouble(text, *destination); }
  void operator()(std::string* destination) const { *destination = text; }
};

/// The node to go on with when all below `node` is done: the next one to the right or above it,
/// within `top`; null at the end.
XmlNode NextBeside(XmlNode node, XmlNode top) {
  while (node != top) {
    const XmlNode next = node.NextSibling();
    if (!next.IsNull()) {
      return next;
    }
    node = node.Parent();
  }
  return {};
}

}  // namespace

const std::string& XmlStatusText(int status) {
  for (const StatusText& known : kStatusTexts) {
    if (known.status == status) {
      return GetMessageText(known.text);
    }
  }
  return GetMessageText(Msg::XmlGeneralFailure);
}

// --- XmlBindingTable

void XmlBindingTable::Add(std::string_view name, XmlBinding::Destination destination) {
  assert(m_count < kCapacity);
  if (m_count < kCapacity) {
    m_bindings[m_count++] = {name, destination};
  }
}

const XmlBinding* XmlBindingTable::Find(std::string_view name) const {
  for (std::size_t i = 0; i < m_count; ++i) {
    if (m_bindings[i].name == name) {
      return &m_bindings[i];
    }
  }
  return nullptr;
}

// --- CXMLArchive

/// What only an archive with a document of its own needs.
struct CXMLArchive::Own {
  XmlDocument document;
  XmlParseFailure parseFailure;
  std::string error;
};

CXMLArchive::CXMLArchive() = default;
CXMLArchive::~CXMLArchive() = default;
CXMLArchive::CXMLArchive(const CXMLArchive&) {}
CXMLArchive& CXMLArchive::operator=(const CXMLArchive&) { return *this; }

CXMLArchive::Own& CXMLArchive::Use() {
  if (m_own == nullptr) {
    m_own = std::make_unique<Own>();
  }
  return *m_own;
}

int CXMLArchive::OnBeginNode(XmlNode, bool& handled) {
  handled = false;
  return kXmlOk;
}

bool CXMLArchive::OnNode(XmlNode node, const XmlBindingTable& bindings) {
  return ReadBoundValue(node, bindings);
}

bool CXMLArchive::ReadBoundValue(XmlNode node, const XmlBindingTable& bindings) {
  const XmlBinding* const binding = bindings.Find(node.Name());
  if (binding == nullptr) {
    return false;
  }
  std::visit(ValueReader{node.Value()}, binding->destination);
  return true;
}

int CXMLArchive::Walk(XmlNode top) {
  XmlBindingTable bindings;
  RegisterBindings(bindings);
  XmlNode node = top;
  while (!node.IsNull()) {
    bool handled = false;
    const int status = OnBeginNode(node, handled);
    if (handled && node == top) {
      return status;
    }
    bool consumed = handled;
    if (!handled) {
      for (XmlNode a = node.FirstAttribute(); !a.IsNull(); a = a.NextSibling()) {
        OnNode(a, bindings);
      }
      consumed = OnNode(node, bindings);
    }
    const XmlNode child = consumed ? XmlNode() : node.FirstChild();
    node = child.IsNull() ? NextBeside(node, top) : child;
  }
  return kXmlOk;
}

int CXMLArchive::WalkDocument() {
  if (m_own == nullptr) {
    return kXmlOk;
  }
  XmlNode node = m_own->document.AsNode().FirstChild();
  int status = kXmlOk;
  for (; status == kXmlOk && !node.IsNull(); node = node.NextSibling()) {
    status = Walk(node);
  }
  return status;
}

/// Runs what may need much memory; nothing thrown leaves the archive.
template <class Work>
int CXMLArchive::Guard(Work work) {
  m_outOfMemory = false;
  try {
    return work(Use());
  } catch (const std::bad_alloc&) {
    m_outOfMemory = true;
    return kXmlOutOfMemory;
  }
}

int CXMLArchive::Load(std::string_view xmlText) {
  return Guard([this, xmlText](Own& own) {
    return FinishLoad(own.document.ParseText(xmlText, own.parseFailure));
  });
}

int CXMLArchive::LoadFile(const std::string& path) {
  return Guard([this, &path](Own& own) {
    return FinishLoad(own.document.ParseFile(path, own.parseFailure));
  });
}

int CXMLArchive::FinishLoad(bool parsed) {
  const int status = parsed ? WalkDocument() : kXmlNotWellFormed;
  if (!parsed) {
    m_own->error = m_own->parseFailure.reason;
  } else {
    m_own->error = status == kXmlOk ? std::string() : XmlStatusText(status);
  }
  return status;
}

int CXMLArchive::GetXml(std::string& text) {
  return Guard([this, &text](Own& own) {
    int status = Serialize(own.document.AsNode());
    const std::string& refusal = own.document.Refusal();
    // An owner may go on after an owned object that could not be written; the text would lack it.
    if (status == kXmlOk && !refusal.empty()) {
      status = kXmlGeneralFailure;
    }
    own.error.clear();
    if (status == kXmlOk) {
      text = SerializeNode(own.document.AsNode());
    } else {
      own.error = refusal.empty() ? XmlStatusText(status) : refusal;
    }
    return status;
  });
}

const XmlParseFailure& CXMLArchive::LastParseFailure() const {
  static const XmlParseFailure s_none;
  return m_own != nullptr ? m_own->parseFailure : s_none;
}

const std::string& CXMLArchive::LastError() const {
  static const std::string s_none;
  if (m_outOfMemory) return XmlStatusText(kXmlOutOfMemory);
  return m_own != nullptr ? m_own->error : s_none;
}

void CXMLArchive::ClearDocument() {
  m_writeStatus = kXmlOk;
  if (m_own != nullptr) {
    m_own->document.Clear();
  }
}

XmlNode CXMLArchive::WriteNode(const XmlNodeOp& op, XmlNode current) {
  if (m_writeStatus != kXmlOk) {
    return current;
  }
  const XmlNode at = current.IsNull() ? Use().document.AsNode() : current;
  switch (op.kind) {
    case XmlNodeKind::BeginElement:
      return MoveTo(AppendElement(at, op.name), kXmlGeneralFailure, at);
    case XmlNodeKind::EndElement:
      return MoveTo(at.Parent(), kXmlInvalidPointer, at);
    case XmlNodeKind::Text:
    case XmlNodeKind::Attribute:
      WriteValue(op, at);
      return at;
    case XmlNodeKind::Done:
      return at;
  }
  return at;
}

/// The new current node, or the old one, with the status noted, when there is no new one.
XmlNode CXMLArchive::MoveTo(XmlNode target, int statusIfNull, XmlNode current) {
  if (!target.IsNull()) {
    return target;
  }
  m_writeStatus = statusIfNull;
  return current;
}

void CXMLArchive::WriteValue(const XmlNodeOp& op, XmlNode at) {
  const std::optional<std::string> value = std::visit(ValueWriter(), op.value);
  XmlNode written;
  if (value && op.kind == XmlNodeKind::Text) {
    written = AppendText(at, *value);
  } else if (value) {
    written = SetAttribute(at, op.name, *value);
  }
  if (written.IsNull()) {
    m_writeStatus = kXmlGeneralFailure;
  }
}

}  // namespace bomparser
