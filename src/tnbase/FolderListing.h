#pragma once

#include <string>
#include <vector>

namespace bomparser {

/// The names of the ordinary files in a folder (links are followed; a pipe could be waited for
/// without end), without the folder's path, in the order in which the system lists them: unsorted,
/// and as it stands on the disk.
///
/// False with `error` "cannot list PATH: REASON" when the folder is missing, is none, or cannot be
/// read; `names` is unchanged then.
bool ListFolder(const std::string& folder, std::vector<std::string>& names, std::string& error);

}  // namespace bomparser
