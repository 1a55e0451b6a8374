#include "tests/support/FailingMemory.h"

#include "tests/support/LiveMemory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

using bomparser::test::LiveMemory;

constexpr std::int64_t kNever = -1;
thread_local std::int64_t s_granted = kNever;
thread_local bool s_failsOn = false;
thread_local bool s_failed = false;

void* Allocate(std::size_t size) noexcept {
  if (s_granted == 0) {
    s_failed = true;
    if (!s_failsOn) s_granted = kNever;
    return nullptr;
  }
  if (s_granted > 0) --s_granted;
  void* const memory = std::malloc(size != 0 ? size : 1);
  LiveMemory::NoteTaken(memory, size);
  return memory;
}

void Free(void* memory) noexcept {
  LiveMemory::NoteGivenBack(memory);
  std::free(memory);
}

void* AllocateOrThrow(std::size_t size) {
  void* const memory = Allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* memory) noexcept { Free(memory); }
void operator delete[](void* memory) noexcept { Free(memory); }
void operator delete(void* memory, std::size_t) noexcept { Free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { Free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { Free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { Free(memory); }

namespace bomparser::test {

FailingMemory::FailingMemory(std::int64_t granted, MemoryFails fails) {
  s_failsOn = fails == MemoryFails::FromThenOn;
  s_failed = false;
  s_granted = granted;
}
FailingMemory::~FailingMemory() { s_granted = kNever; }
bool FailingMemory::HasFailed() const { return s_failed; }

}  // namespace bomparser::test
