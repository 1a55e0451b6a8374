#include "tests/support/LiveMemory.h"

#include "tests/support/FailingMemory.h"
#include "tnbase/Reallocate.h"

#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <unordered_map>
#include <utility>

namespace bomparser::test {

namespace {

/// Keeps the book out of what it counts.
template <class T>
struct UncountedMemory {
  using value_type = T;
  UncountedMemory() = default;
  template <class Other>
  UncountedMemory(const UncountedMemory<Other>&) {}
  T* allocate(std::size_t count) {
    constexpr std::size_t kSize = sizeof(T);  // NOLINT(bugprone-sizeof-expression): pointers too.
    void* const memory = std::malloc(count * kSize);
    if (memory == nullptr) throw std::bad_alloc();
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t) { std::free(memory); }
  bool operator==(const UncountedMemory&) const { return true; }
};

/// By piece, the bytes that were asked for.
using Book = std::unordered_map<void*, std::size_t, std::hash<void*>, std::equal_to<>,
                                UncountedMemory<std::pair<void* const, std::size_t>>>;

thread_local bool s_counting = false;
thread_local std::size_t s_bytes = 0;
ReallocateFunction s_real = nullptr;

Book& TheBook() {
  thread_local Book book;
  return book;
}

void* CountingReallocate(void* old, std::size_t bytes) {
  void* const memory = s_real(old, bytes);
  if (memory == nullptr && bytes > 0) return nullptr;
  LiveMemory::NoteGivenBack(old);
  LiveMemory::NoteTaken(memory, bytes);
  return memory;
}

}  // namespace

LiveMemory::LiveMemory() {
  // Names the file that replaces operator new, so that it is linked.
  const FailingMemory none(-1);
  TheBook().clear();
  s_bytes = 0;
  s_real = SetReallocateFunction(CountingReallocate);
  s_counting = true;
}

LiveMemory::~LiveMemory() {
  s_counting = false;
  SetReallocateFunction(s_real);
}

LiveMemory::Count LiveMemory::GetCount() const { return {TheBook().size(), s_bytes}; }

void LiveMemory::NoteTaken(void* memory, std::size_t size) {
  if (!s_counting || memory == nullptr) return;
  TheBook().emplace(memory, size);
  s_bytes += size;
}

void LiveMemory::NoteGivenBack(void* memory) {
  if (!s_counting || memory == nullptr) return;
  const auto known = TheBook().find(memory);
  if (known == TheBook().end()) return;  // Taken before the counting began.
  s_bytes -= known->second;
  TheBook().erase(known);
}

}  // namespace bomparser::test
