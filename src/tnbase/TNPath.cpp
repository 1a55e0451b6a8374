#include "tnbase/TNPath.h"

#include <cstddef>
#include <filesystem>
#include <system_error>

namespace bomparser {

namespace {

#ifdef _WIN32
constexpr std::string_view kSeparators = "/\\";
constexpr bool kHasDrives = true;
#else
constexpr std::string_view kSeparators = "/";
constexpr bool kHasDrives = false;
#endif

/// Length of the root that the path starts with, its separators included; 0 when it is relative.
/// "C:" without a separator counts as a root, since what follows it is no name of that folder's
/// parent.
std::size_t RootLength(std::string_view path) {
  std::size_t start = 0;
  if (kHasDrives && path.size() >= 2 && path[1] == ':') {
    start = 2;
  }
  const std::size_t firstName = path.find_first_not_of(kSeparators, start);
  return firstName == std::string_view::npos ? path.size() : firstName;
}

/// Where the file name starts.
std::size_t NameStart(std::string_view path) {
  const std::size_t last = path.find_last_of(kSeparators);
  const std::size_t afterSeparator = last == std::string_view::npos ? 0 : last + 1;
  const std::size_t root = RootLength(path);
  return afterSeparator > root ? afterSeparator : root;
}

std::filesystem::file_status StatusOf(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::status(path, ignored);
}

}  // namespace

std::string TNGetPathFromPathNFName(std::string_view path) {
  const std::size_t root = RootLength(path);
  std::size_t end = NameStart(path);
  while (end > root && kSeparators.find(path[end - 1]) != std::string_view::npos) {
    --end;
  }
  return std::string(path.substr(0, end));
}

std::string TNGetFNameFromPath(std::string_view path) {
  return std::string(path.substr(NameStart(path)));
}

bool IsDirectory(const std::string& path) { return std::filesystem::is_directory(StatusOf(path)); }

bool FileExists(const std::string& path) { return std::filesystem::exists(StatusOf(path)); }

bool IsRegularFile(const std::string& path) {
  return std::filesystem::is_regular_file(StatusOf(path));
}

}  // namespace bomparser
