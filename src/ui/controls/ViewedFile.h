#pragma once

#include "tnbase/GrowArray.h"
#include "tnbase/MappedFile.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace bomparser {

/// The bytes of a file that is looked at: a large one stays on the disk as far as nobody looks.
/// They are those that the file had when it was opened, whoever deletes or replaces it since.
class ViewedFile {
 public:
  /// False with `error` when it cannot be read; there are no bytes then.
  bool Open(const std::string& path, std::string& error);
  std::string_view GetBytes() const;

 private:
  bool Read(const std::string& path, std::string& error);

  MappedFile m_mapped;
  std::size_t m_mappedSize = 0;
  GrowArray<char> m_read;  // Of a file that is not mapped.
};

}  // namespace bomparser
