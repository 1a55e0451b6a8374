#include "tnbase/Reallocate.h"

#include <cstdlib>

namespace bomparser {

namespace {

void* SystemReallocate(void* old, std::size_t bytes) {
  if (bytes == 0) {  // What std::realloc does then differs between systems.
    std::free(old);
    return nullptr;
  }
  return std::realloc(old, bytes);
}

ReallocateFunction g_reallocate = SystemReallocate;

}  // namespace

void* Reallocate(void* old, std::size_t bytes) { return g_reallocate(old, bytes); }

ReallocateFunction SetReallocateFunction(ReallocateFunction function) {
  const ReallocateFunction before = g_reallocate;
  g_reallocate = function != nullptr ? function : SystemReallocate;
  return before;
}

}  // namespace bomparser
