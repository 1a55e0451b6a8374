#include "ui/controls/ViewedFile.h"

#include "input/MessageTexts.h"
#include "tnbase/InputSource.h"

#include <cstdint>
#include <limits>
#include <new>

namespace bomparser {

bool ViewedFile::Open(const std::string& path, std::string& error) {
  *this = ViewedFile();
  try {
    return Read(path, error);
  } catch (const std::bad_alloc&) {
    *this = ViewedFile();
    error = GetMessageText(Msg::XmlOutOfMemory);
    return false;
  }
}

bool ViewedFile::Read(const std::string& path, std::string& error) {
  constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();
  InputSource source;
  if (!source.Open(path, error)) return false;
  if (source.Map(m_mapped, m_mappedSize, kNoLimit, 0)) return true;
  return source.ReadAll(m_read, kNoLimit, 0, {}, error);
}

std::string_view ViewedFile::GetBytes() const {
  if (m_mapped.IsMapped()) return {m_mapped.Data(), m_mappedSize};
  return {m_read.Data(), m_read.Size()};
}

}  // namespace bomparser
