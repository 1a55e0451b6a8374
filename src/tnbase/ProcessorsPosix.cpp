#include "tnbase/Processors.h"

#include <algorithm>
#include <sched.h>
#include <thread>

namespace bomparser {

unsigned CountUsableProcessors() {
#if defined(__linux__)
  // The processors of the machine are not the answer: a process may be bound to some of them.
  cpu_set_t usable;
  if (sched_getaffinity(0, sizeof usable, &usable) == 0) {
    return static_cast<unsigned>(std::max(CPU_COUNT(&usable), 1));
  }
#endif
  return std::max(std::thread::hardware_concurrency(), 1U);
}

}  // namespace bomparser
