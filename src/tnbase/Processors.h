#pragma once

namespace bomparser {

/// How many processors this process may use; at least 1.
unsigned CountUsableProcessors();

}  // namespace bomparser
