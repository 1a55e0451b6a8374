#include "input/CTNInputText.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace bomparser {

CTNInputText::CTNInputText(GrowArray<char> bytes)
    : m_bytes(std::move(bytes)), m_size(static_cast<std::uint32_t>(m_bytes.Size())) {
  std::memset(m_bytes.MakeRoom(kSlack), '\n', kSlack);
}

std::shared_ptr<const CTNInputText> CTNInputText::Adopt(GrowArray<char> bytes) {
  return std::make_shared<const CTNInputText>(std::move(bytes));
}

std::shared_ptr<const CTNInputText> CTNInputText::Copy(std::string_view text) {
  if (text.size() > kMaxSize) throw std::bad_alloc();
  GrowArray<char> bytes;
  std::copy(text.begin(), text.end(), bytes.MakeRoom(text.size() + kSlack));
  bytes.Advance(text.size());
  return Adopt(std::move(bytes));
}

std::shared_ptr<const CTNInputText> CTNInputText::WithLineFeed(
    const std::shared_ptr<const CTNInputText>& text) {
  const std::size_t size = std::size_t{text->Size()} + 1;
  if (size > kMaxSize) throw std::bad_alloc();
  // The slack begins with a line feed already: the text only has to be one longer.
  GrowArray<char> bytes;
  std::memcpy(bytes.MakeRoom(size + kSlack), text->Data(), size);
  bytes.Advance(size);
  return Adopt(std::move(bytes));
}

}  // namespace bomparser
