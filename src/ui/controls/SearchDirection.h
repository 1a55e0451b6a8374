#pragma once

namespace bomparser {

/// Which way a search goes from where the user is.
enum class SearchDirection { Down, Up };

}  // namespace bomparser
