#pragma once

#include <cstdint>
#include <string>

namespace bomparser {

/// Reads a whole file, binary, into `bytes`. Meant for small files such as templates: `limit` is
/// the most bytes that are taken, and a longer file is a failure. A pipe or device is read to its
/// end.
///
/// False with `error` "cannot read PATH: REASON" for a folder, a missing or unreadable file, one
/// beyond the limit, or when there is no memory for it; `bytes` is unchanged then.
bool ReadFileBytes(const std::string& path, std::string& bytes, std::string& error,
                   std::uint64_t limit);

}  // namespace bomparser
