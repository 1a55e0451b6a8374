#include "input/CTNStringCharBuffIter.h"

#include <stdexcept>
#include <utility>

namespace bomparser {

CTNStringCharBuffIter::CTNStringCharBuffIter(std::string_view text)
    : CTNStringCharBuffIter(CTNInputText::Copy(text)) {}

CTNStringCharBuffIter::CTNStringCharBuffIter(std::shared_ptr<const CTNInputText> text) {
  SetText(std::move(text));
}

void CTNStringCharBuffIter::SetText(std::shared_ptr<const CTNInputText> text) {
  m_text = std::move(text);
  m_position = 0;
  m_end = m_text->Size();
}

bool CTNStringCharBuffIter::GetNext(char& c) {
  if (m_position < 0) throw std::invalid_argument("read before the first character");
  const std::int64_t at = m_position++;
  if (at >= m_text->Size()) {
    c = static_cast<char>(0xFF);
    return false;
  }
  c = m_text->Data()[at];
  return true;
}

void CTNStringCharBuffIter::PutBack(const char& c) {
  --m_position;
  if (m_position < 0) throw std::invalid_argument("put back before the first character");
  if (m_position >= m_text->Size() || m_text->Data()[m_position] == c) return;
  std::string changed(m_text->View());
  changed[static_cast<std::size_t>(m_position)] = c;
  m_text = CTNInputText::Copy(changed);
}

bool CTNStringCharBuffIter::ReadLine(std::string& line) {
  line.clear();
  for (char c = 0; GetNext(c);) {
    line.push_back(c);
    if (c == '\n') break;
  }
  return !line.empty();
}

}  // namespace bomparser
