#pragma once

namespace bomparser {

/// True when windows can be shown: there is a display, or something else that the user has named
/// to draw on.
bool HasDisplay();

}  // namespace bomparser
