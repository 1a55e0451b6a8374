#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"

namespace bomparser {

ExitStatus RunApply(const Options& options);

}  // namespace bomparser
