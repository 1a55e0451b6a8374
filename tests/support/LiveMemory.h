#pragma once

#include <cstddef>

namespace bomparser::test {

/// Counts the memory that this thread takes and gives back while it lives: through operator new,
/// which a test that names this class has replaced, and through Reallocate. One at a time.
class LiveMemory {
 public:
  LiveMemory();
  ~LiveMemory();
  LiveMemory(const LiveMemory&) = delete;
  LiveMemory& operator=(const LiveMemory&) = delete;

  /// Of what was taken since then and not given back: how many pieces, and the bytes asked for.
  struct Count {
    std::size_t pieces = 0;
    std::size_t bytes = 0;
    bool operator==(const Count& other) const = default;
  };
  Count GetCount() const;

  /// For operator new and delete: what was given out, and what came back.
  static void NoteTaken(void* memory, std::size_t size);
  static void NoteGivenBack(void* memory);
};

}  // namespace bomparser::test
