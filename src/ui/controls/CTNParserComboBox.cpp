#include "ui/controls/CTNParserComboBox.h"

#include <QFontMetrics>
#include <algorithm>

namespace bomparser {

CTNParserComboBox::CTNParserComboBox(QWidget* parent) : QComboBox(parent) {}

int CTNParserComboBox::GetLongestEntryWidth() const {
  int width = 0;
  for (int entry = 0; entry < count(); ++entry)
    width = std::max(width, fontMetrics().horizontalAdvance(itemText(entry)));
  return width;
}

void CTNParserComboBox::Restart() {
  clear();
  m_hasCurrentValue = false;
}

void CTNParserComboBox::AddEntry(const QString& text, const QVariant& code) { addItem(text, code); }

void CTNParserComboBox::SelectCode(const QVariant& code) {
  const int entry = findData(code);
  m_hasCurrentValue = entry >= 0;
  setCurrentIndex(m_hasCurrentValue ? entry : 0);
}

void CTNParserComboBox::SelectNothing() {
  m_hasCurrentValue = false;
  setCurrentIndex(-1);
}

}  // namespace bomparser
