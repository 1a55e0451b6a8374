#pragma once

#include <string>
#include <vector>

namespace bomparser {

/// Starts a program that goes on by itself: nothing waits for it, and it outlives this one. The
/// arguments are handed over byte for byte, no shell between; the first is the program's absolute
/// path. One that cannot be started is not told of: it is up to the user to see that none comes.
void StartDetached(const std::vector<std::string>& arguments);

}  // namespace bomparser
