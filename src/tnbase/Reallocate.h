#pragma once

#include <cstddef>

namespace bomparser {

/// Gives back memory of `bytes` bytes that starts with what `old` held, as std::realloc does: null
/// when there is none, and then `old` is untouched. `old` may be null. `bytes` 0 frees and returns
/// null.
///
/// Large arrays grow through this rather than through new: on Linux a large block is moved by
/// re-mapping its pages, not by copying them, so growing costs neither time nor a second copy of
/// the memory.
void* Reallocate(void* old, std::size_t bytes);

/// The form of Reallocate. It follows the rules above.
using ReallocateFunction = void* (*)(void* old, std::size_t bytes);

/// Has `function` do the work of Reallocate from now on, null the usual one; returns the one that
/// did it before. For tests that make memory run out. Memory of one function is handed to the next:
/// a replacement passes on to the one it replaced. Not to be called while other threads allocate.
ReallocateFunction SetReallocateFunction(ReallocateFunction function);

}  // namespace bomparser
