#pragma once

namespace bomparser {

/// How a command ended, as the shell sees it.
enum class ExitStatus {
  Done = 0,
  Failed = 1,         // It could not be done; a message says why.
  WrongUsage = 2,     // The command line asks for nothing that can be done.
  Interrupted = 130,  // The user stopped it; nothing was written.
};

}  // namespace bomparser
