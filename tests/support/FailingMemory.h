#pragma once

#include <cstdint>

namespace bomparser::test {

/// Whether memory is there again after an allocation failed, or all further ones fail as well.
enum class MemoryFails { Once, FromThenOn };

/// While it lives, an allocation of this thread fails: the one after `granted` others. A test that
/// names this class has its program's operator new replaced.
class FailingMemory {
 public:
  explicit FailingMemory(std::int64_t granted, MemoryFails fails = MemoryFails::Once);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;
  /// True once the allocation has failed; false when there were too few.
  bool HasFailed() const;
};

/// Runs the work while an allocation fails, the one after `granted` others. True when it did.
template <class Work>
bool FailsAfter(std::int64_t granted, Work work, MemoryFails fails = MemoryFails::Once) {
  const FailingMemory memory(granted, fails);
  work();
  return memory.HasFailed();
}

/// Runs `attempt(granted)` for 0, 1, 2 ... until it answers false, which it does when no allocation
/// failed. Returns how many attempts met a failure.
template <class Attempt>
std::int64_t ForEveryAllocation(Attempt attempt) {
  std::int64_t granted = 0;
  while (attempt(granted))
    ++granted;
  return granted;
}

}  // namespace bomparser::test
