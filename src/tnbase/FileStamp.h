#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace bomparser {

/// What a file looks like from outside. Two stamps of one file differ once somebody else has
/// written it meanwhile.
struct FileStamp {
  std::uint64_t size = 0;
  std::filesystem::file_time_type written;

  bool operator==(const FileStamp&) const = default;
};

/// The stamp of the file at the path, links followed; none where there is no file, or no memory to
/// ask for it.
std::optional<FileStamp> StampOf(const std::string& path);

/// True when both paths lead to one file that exists.
bool AreSameFile(const std::string& one, const std::string& other);

}  // namespace bomparser
