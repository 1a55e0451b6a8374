#include "tnbase/FileStamp.h"

#include <new>
#include <system_error>

namespace bomparser {

std::optional<FileStamp> StampOf(const std::string& path) try {
  std::error_code failure;
  FileStamp stamp;
  stamp.size = std::filesystem::file_size(path, failure);
  if (failure) return std::nullopt;
  stamp.written = std::filesystem::last_write_time(path, failure);
  if (failure) return std::nullopt;
  return stamp;
} catch (const std::bad_alloc&) {
  return std::nullopt;
}

bool AreSameFile(const std::string& one, const std::string& other) try {
  std::error_code failure;
  return std::filesystem::equivalent(one, other, failure) && !failure;
} catch (const std::bad_alloc&) {
  return false;
}

}  // namespace bomparser
