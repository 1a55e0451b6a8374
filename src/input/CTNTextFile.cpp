#include "input/CTNTextFile.h"

#include "input/MessageTexts.h"
#include "tnbase/TNPath.h"

#include <cstring>
#include <utility>

namespace bomparser {

namespace {

/// Turns every CR LF pair into a line feed, in place.
void FoldLineEnds(GrowArray<char>& bytes) {
  char* const begin = bytes.Data();
  char* const end = begin + bytes.Size();
  if (bytes.Size() == 0) return;
  auto* from = static_cast<char*>(std::memchr(begin, '\r', bytes.Size()));
  if (from == nullptr) return;
  char* to = from;
  while (from < end) {
    if (*from == '\r' && from + 1 < end && from[1] == '\n') ++from;
    *to++ = *from++;
    auto* next = static_cast<char*>(std::memchr(from, '\r', static_cast<std::size_t>(end - from)));
    if (next == nullptr) next = end;
    std::memmove(to, from, static_cast<std::size_t>(next - from));
    to += next - from;
    from = next;
  }
  bytes.Cut(static_cast<std::size_t>(to - begin));
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
  GrowArray<char> bytes;
  if (!m_source.ReadAll(bytes, kTooLong - 1, CTNInputText::kSlack + 1, TooLongText(), error)) {
    return nullptr;
  }
  FoldLineEnds(bytes);
  auto text = CTNInputText::Adopt(std::move(bytes));
  if (m_hold || !m_source.CanReadAgain()) m_kept = text;
  return text;
}

}  // namespace bomparser
