#include "tnbase/FileStamp.h"

#include <system_error>

namespace bomparser {

std::optional<FileStamp> StampOf(const std::string& path) {
  std::error_code failure;
  FileStamp stamp;
  stamp.size = std::filesystem::file_size(path, failure);
  if (failure) return std::nullopt;
  stamp.written = std::filesystem::last_write_time(path, failure);
  if (failure) return std::nullopt;
  return stamp;
}

bool AreSameFile(const std::string& one, const std::string& other) {
  std::error_code failure;
  return std::filesystem::equivalent(one, other, failure) && !failure;
}

}  // namespace bomparser
