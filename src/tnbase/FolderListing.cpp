#include "tnbase/FolderListing.h"

#include "tnbase/SystemReason.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace bomparser {

bool ListFolder(const std::string& folder, std::vector<std::string>& names, std::string& error) {
  std::error_code failure;
  std::vector<std::string> listed;
  std::filesystem::directory_iterator entry(folder, failure);
  while (!failure && entry != std::filesystem::directory_iterator()) {
    std::error_code brokenLink;
    if (entry->is_regular_file(brokenLink)) {
      listed.push_back(entry->path().filename().string());
    }
    entry.increment(failure);
  }
  if (failure) {
    error = SystemReason("cannot list", folder, failure.value());
    return false;
  }
  names = std::move(listed);
  return true;
}

}  // namespace bomparser
