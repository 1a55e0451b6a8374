#include "input/CTNInputText.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace bomparser {

/// Where the bytes are: the one or the other.
struct CTNInputText::Storage {
  explicit Storage(GrowArray<char> read) : bytes(std::move(read)) {}
  explicit Storage(MappedFile mapped) : file(std::move(mapped)) {}

  GrowArray<char> bytes;
  MappedFile file;
};

CTNInputText::CTNInputText(std::shared_ptr<const Storage> storage, std::uint32_t size)
    : m_storage(std::move(storage)),
      m_data(m_storage->file.IsMapped() ? m_storage->file.Data() : m_storage->bytes.Data()),
      m_size(size) {}

bool CTNInputText::IsIntact() const { return !m_storage->file.IsCutShort(); }

std::shared_ptr<const CTNInputText> CTNInputText::Adopt(GrowArray<char> bytes) {
  std::memset(bytes.MakeRoom(kRoomBehind), '\n', kRoomBehind);
  const auto size = static_cast<std::uint32_t>(bytes.Size());
  return Make(std::make_shared<const Storage>(std::move(bytes)), size);
}

std::shared_ptr<const CTNInputText> CTNInputText::Adopt(MappedFile file, std::size_t size) {
  std::memset(file.Data() + size, '\n', kRoomBehind);
  return Make(std::make_shared<const Storage>(std::move(file)), static_cast<std::uint32_t>(size));
}

std::shared_ptr<const CTNInputText> CTNInputText::Copy(std::string_view text) {
  if (text.size() > kMaxSize) throw std::bad_alloc();
  GrowArray<char> bytes;
  std::copy(text.begin(), text.end(), bytes.MakeRoom(text.size() + kRoomBehind));
  bytes.Advance(text.size());
  return Adopt(std::move(bytes));
}

std::shared_ptr<const CTNInputText> CTNInputText::WithLineFeed(
    const std::shared_ptr<const CTNInputText>& text) {
  if (text->Size() >= kMaxSize) throw std::bad_alloc();
  // What stands behind the text begins with a line feed already: it only has to be one longer.
  return Make(text->m_storage, text->Size() + 1);
}

}  // namespace bomparser
