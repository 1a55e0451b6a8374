#include "cli/FileUses.h"

#include "cli/Options.h"
#include "tnbase/TNPath.h"

#include <filesystem>
#include <system_error>

namespace bomparser {

namespace {

/// One text for all paths that lead to the file, whether or not it exists yet. Empty for what takes
/// any number of readers and writers, and for what cannot be resolved: opening it will tell.
std::string PlaceOf(const std::string& path) {
  if (path.empty() || path == kStandardStreamPath) return {};
  if (FileExists(path) && !IsRegularFile(path)) return {};
  std::error_code unresolved;
  const auto place =
      std::filesystem::weakly_canonical(std::filesystem::absolute(path, unresolved), unresolved);
  return unresolved ? std::string() : place.string();
}

}  // namespace

void FileUses::AddRead(std::string_view what, const std::string& path) {
  const std::string place = PlaceOf(path);
  if (!place.empty()) m_uses.try_emplace(place, Use{what, false});
}

bool FileUses::AddWritten(std::string_view what, const std::string& path, std::string& error) {
  const std::string place = PlaceOf(path);
  if (place.empty()) return true;
  const auto [found, added] = m_uses.try_emplace(place, Use{what, true});
  if (added) return true;
  error = std::string(found->second.what);
  if (found->second.written) {
    error.append(" and ").append(what).append(" would both be written to ");
  } else {
    error = std::string(what).append(" would be written over ").append(error).append(" ");
  }
  error += path;
  return false;
}

}  // namespace bomparser
