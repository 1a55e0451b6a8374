#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"

namespace bomparser {

ExitStatus RunShow(const Options& options);

}  // namespace bomparser
