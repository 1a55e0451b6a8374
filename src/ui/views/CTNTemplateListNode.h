#pragma once

#include "entry/CTNFileParserEngine.h"
#include "template/CTNTemplateArrayElement.h"
#include "ui/controls/CTNParserListNode.h"

#include <QColor>
#include <QString>
#include <cstdint>
#include <string>

namespace bomparser {

/// How the row of an element is marked.
enum class ElementState { Valid, Note, Invalid };

/// The colours of a cell, both or none; none are those of the desktop's theme.
struct CellColours {
  QColor background;
  QColor text;
};

/// The text colour of what cannot be edited.
inline constexpr QColor kGreyText(0xC0, 0xC0, 0xC0);

/// Grey text on what the theme draws texts on: white, or dark, where grey is as easy to read.
CellColours GreyOnOrdinary();

/// True while the results of the latest application are those of the template as it is now.
bool HasCurrentResults(const CTNFileParserEngine& engine);

/// A row of a template list. It refers to an element of the template that somebody else owns, and
/// notices when that is gone: nothing is read of an element that is no longer there.
class CTNTemplateListNode : public CTNParserListNode {
 public:
  /// The element that is shown; null once it is gone.
  virtual CTNTemplateArrayElement* GetElement() const = 0;
  /// Tells this row's element from others as long as its record lives; null afterwards. Compared
  /// only.
  virtual const void* GetKey() const = 0;
  /// What the cell shows; the columns are the list's.
  virtual QString GetText(int column) const = 0;
  virtual CellColours GetColours(int column) const = 0;
  /// Whether the cell can be edited in place.
  virtual bool IsEditable(int column) const = 0;

  /// The element's status; an element that is gone is invalid.
  virtual std::int32_t IsValid() const;
  /// What validation left to say of the element; empty when it is gone.
  virtual std::string GetStatusText() const;
  /// What the row's colours say beyond the status, in words; empty where they say nothing.
  virtual QString GetRemark() const { return {}; }
  ElementState GetState() const;

 protected:
  /// The engine is not owned and lives longer.
  explicit CTNTemplateListNode(const CTNFileParserEngine& engine) : m_engine(engine) {}
  const CTNFileParserEngine& Engine() const { return m_engine; }

 private:
  const CTNFileParserEngine& m_engine;
};

}  // namespace bomparser
