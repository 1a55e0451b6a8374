#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"

namespace bomparser {

/// Opens the dialog. Where it is not installed, or there is no display, one line says so and names
/// the commands that need none.
ExitStatus LaunchDesktop(const Options& options);

}  // namespace bomparser
