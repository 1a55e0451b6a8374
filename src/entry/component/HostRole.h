#pragma once

#include "ui/controls/CTNHostApp.h"

namespace bomparser {

/// Who offers profile and help from now on; null: a settings file of the user. Not owned.
void SetHost(CTNHostApp* host);
CTNHostApp& Host();

}  // namespace bomparser
