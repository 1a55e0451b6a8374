#include "input/CTNTextFile.h"

#include "input/MessageTexts.h"
#include "tnbase/TNPath.h"

#include <cstring>
#include <utility>

namespace bomparser {

namespace {

/// Turns every CR LF pair of [begin, end) into a line feed, in place. Returns the new end.
char* FoldLineEnds(char* begin, char* end) {
  const auto find = [end](char* from) {
    const auto left = static_cast<std::size_t>(end - from);
    auto* const found = left == 0 ? nullptr : static_cast<char*>(std::memchr(from, '\r', left));
    return found != nullptr ? found : end;
  };
  char* from = find(begin);
  char* to = from;
  while (from < end) {
    if (*from == '\r' && from + 1 < end && from[1] == '\n') ++from;
    *to++ = *from++;
    char* const next = find(from);
    std::memmove(to, from, static_cast<std::size_t>(next - from));
    to += next - from;
    from = next;
  }
  return to;
}

}  // namespace

std::string CTNTextFile::TooLongText() const {
  return FormatMessageText(Msg::InputFileTooLarge, m_path);
}

bool CTNTextFile::Open(const std::string& path, std::string& error) {
  Close();
  std::string opened = path;
  if (!m_source.Open(path, error)) return false;
  m_path = std::move(opened);
  if (m_source.GetLength() < kTooLong) return true;
  error = TooLongText();
  Close();
  return false;
}

void CTNTextFile::Close() {
  m_source.Close();
  m_kept = nullptr;
}

std::string CTNTextFile::GetFileTitle() const { return TNGetFNameFromPath(m_path); }

void CTNTextFile::HoldText(bool on) {
  m_hold = on;
  if (!on && m_source.CanReadAgain()) m_kept = nullptr;
}

std::shared_ptr<const CTNInputText> CTNTextFile::ReadAll(std::string& error) {
  if (m_kept) return m_kept;
  std::shared_ptr<const CTNInputText> text = m_mapping ? MapAll() : nullptr;
  if (!text) {
    GrowArray<char> bytes;
    if (!m_source.ReadAll(bytes, kTooLong - 1, CTNInputText::kRoomBehind, TooLongText(), error)) {
      return nullptr;
    }
    const char* const end = FoldLineEnds(bytes.begin(), bytes.end());
    bytes.Cut(static_cast<std::size_t>(end - bytes.begin()));
    text = CTNInputText::Adopt(std::move(bytes));
  }
  if (m_hold || !m_source.CanReadAgain()) m_kept = text;
  return text;
}

std::shared_ptr<const CTNInputText> CTNTextFile::MapAll() {
  MappedFile file;
  std::size_t size = 0;
  if (!m_source.Map(file, size, kTooLong - 1, CTNInputText::kRoomBehind)) return nullptr;
  // Folding would copy every page: such a file is read.
  if (std::memchr(file.Data(), '\r', size) != nullptr) return nullptr;
  return CTNInputText::Adopt(std::move(file), size);
}

}  // namespace bomparser
