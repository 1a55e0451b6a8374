#pragma once

#include <QComboBox>
#include <QVariant>

namespace bomparser {

/// Base of the combo boxes that know their entries. Every entry keeps its code as item data.
class CTNParserComboBox : public QComboBox {
  Q_OBJECT

 public:
  explicit CTNParserComboBox(QWidget* parent = nullptr);

  /// Fills the box anew and selects the current value's entry, or what the box shows without one.
  virtual void Fill() = 0;
  /// The width of the longest entry, in pixels of the box's font.
  virtual int GetLongestEntryWidth() const;
  /// True when the box was filled with a value that one of its entries stands for.
  bool HasCurrentValue() const { return m_hasCurrentValue; }

 protected:
  /// Empties the box, to be filled.
  void Restart();
  void AddEntry(const QString& text, const QVariant& code);
  /// Selects the entry with this code; the first one, as a mere display, when there is none.
  void SelectCode(const QVariant& code);
  void SelectNothing();

 private:
  bool m_hasCurrentValue = false;
};

}  // namespace bomparser
