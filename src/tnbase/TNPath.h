#pragma once

#include <string>
#include <string_view>

namespace bomparser {

// Paths are bytes as the system gives them. On Windows both '/' and '\' separate names; elsewhere
// '\' is an ordinary character of a name.

/// The directory part of a path, without the separator that ends it, except where the directory is
/// a root: "/a/b" gives
/// "/a", "/a" gives "/", "a" gives "". The path need not exist.
std::string TNGetPathFromPathNFName(std::string_view path);

/// The file-name part of a path: what follows the last separator, empty when the path ends with
/// one.
std::string TNGetFNameFromPath(std::string_view path);

/// True when the path names a folder; links are followed. False for what cannot be asked about.
bool IsDirectory(const std::string& path);

/// True when the path names anything that exists, a folder or a device included; links are
/// followed.
bool FileExists(const std::string& path);

/// True when the path names an ordinary file, no folder, pipe or device; links are followed.
bool IsRegularFile(const std::string& path);

}  // namespace bomparser
