#include "tnbase/PrivateFolder.h"

#include "tnbase/SystemReason.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace bomparser {

namespace {

/// Absolute, so that the folder is found again when the current folder has changed.
std::string TemporaryFolder() {
  const char* const chosen = std::getenv("TMPDIR");
  const bool given = chosen != nullptr && *chosen != '\0';
  std::error_code ignored;
  const std::filesystem::path folder = std::filesystem::absolute(given ? chosen : "/tmp", ignored);
  return folder.string();
}

}  // namespace

PrivateFolder::~PrivateFolder() {
  if (!m_path.empty()) {
    std::error_code ignored;  // Nobody is left to be told.
    std::filesystem::remove_all(m_path, ignored);
  }
}

bool PrivateFolder::GetPath(std::string& path, std::string& error) {
  if (m_path.empty()) {
    const std::string folder = TemporaryFolder();
    std::string name = folder + "/bomparser-" + std::to_string(geteuid()) + '-' +
                       std::to_string(getpid()) + "-XXXXXX";
    if (mkdtemp(name.data()) ==
        nullptr) {  // Makes a new folder of mode 0700 or fails: takes over nothing.
      error = SystemReason("cannot create a folder in", folder, errno);
      return false;
    }
    m_path = std::move(name);
  }
  path = m_path;
  return true;
}

}  // namespace bomparser
