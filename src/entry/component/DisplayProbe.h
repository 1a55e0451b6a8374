#pragma once

namespace bomparser {

/// Whether an application object for windows can be made in this process, which has none. Qt ends
/// the process where it cannot, and with it the work of a host: so this is found out first.
bool CanOpenDisplay();

}  // namespace bomparser
