#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"

namespace bomparser {

ExitStatus RunFind(const Options& options);

}  // namespace bomparser
