#pragma once

#include <cstddef>

namespace bomparser {

/// The bytes of a file in memory without being copied there: pages come in as they are read, and
/// what is written to them stays here. Others may write to the file meanwhile; what is seen of that
/// is open. When it is cut short, line feeds stand where bytes are gone (IsDamaged).
class MappedFile {
 public:
  MappedFile() = default;
  MappedFile(MappedFile&& other) noexcept { Swap(other); }
  MappedFile& operator=(MappedFile&& other) noexcept {
    MappedFile taken(static_cast<MappedFile&&>(other));
    Swap(taken);
    return *this;
  }
  ~MappedFile() { Release(); }

  /// Maps the first `size` bytes of an open file, with room to write `slack` more behind them,
  /// which is less than a page. False where that cannot be done: then the file is to be read.
  bool Map(int handle, std::size_t size, std::size_t slack);
  bool IsMapped() const { return m_bytes != nullptr; }
  char* Data() const { return m_bytes; }
  /// True once bytes were asked for that the file does not have any more.
  bool IsDamaged() const;

 private:
  void Release();
  void Swap(MappedFile& other) noexcept;

  char* m_bytes = nullptr;
  std::size_t m_mapped = 0;  // Bytes in all, slack included.
  std::size_t m_place = 0;   // Among the mapped files of the process.
};

}  // namespace bomparser
