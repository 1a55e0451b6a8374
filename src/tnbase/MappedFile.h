#pragma once

#include <cstddef>

namespace bomparser {

/// The bytes of a file in memory without most of them being copied there: pages come in as they are
/// read, and what is written to them stays here. The last page and the bytes behind are memory of
/// its own: whatever becomes of the file, they stay as they are.
///
/// Others may write to the file meanwhile, and parts of that may be seen. When it is cut short,
/// line feeds or zeros stand where bytes are gone (IsCutShort).
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

  /// Maps the first `size` bytes of an open file, with room to write `slack` more behind them.
  /// False where that cannot be done: then the file is to be read.
  bool Map(int handle, std::size_t size, std::size_t slack);
  bool IsMapped() const { return m_bytes != nullptr; }
  char* Data() const { return m_bytes; }
  /// True once the file has become shorter than what is mapped of it.
  bool IsCutShort() const;

 private:
  void Release();
  void Swap(MappedFile& other) noexcept;

  char* m_bytes = nullptr;
  std::size_t m_size = 0;
  std::size_t m_mapped = 0;  // Bytes in all, slack included.
  std::size_t m_place = 0;   // Among the mapped files of the process.
  int m_handle = -1;         // A second one of the same open file.
};

}  // namespace bomparser
