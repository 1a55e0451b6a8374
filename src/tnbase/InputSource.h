#pragma once

#include "tnbase/GrowArray.h"
#include "tnbase/MappedFile.h"

#include <cstdint>
#include <string>

namespace bomparser {

/// A file opened for reading that may be read again and again, and that others may change or
/// replace meanwhile: every reading starts at its beginning and sees what is at its path then.
/// The path "-" is standard input. Pipes and devices can be read once only (CanReadAgain).
class InputSource {
 public:
  InputSource() = default;
  InputSource(const InputSource&) = delete;
  InputSource& operator=(const InputSource&) = delete;
  ~InputSource() { Close(); }

  /// False with `error` "cannot read PATH: REASON" for what is missing, unreadable or a folder.
  bool Open(const std::string& path, std::string& error);
  void Close();
  bool IsOpen() const { return m_handle >= 0; }
  const std::string& GetPath() const { return m_path; }
  /// Bytes in the file; 0 for a pipe or device.
  std::uint64_t GetLength() const;
  bool CanReadAgain() const;

  /// Reads all of it to the end of `bytes`, with room for `slack` more behind. Fails like Open, or
  /// with `tooLong` as the error when there are more than `limit` bytes; what can be read once only
  /// also fails the second time. An interruption of the user ends the waiting for a pipe. Throws
  /// std::bad_alloc.
  bool ReadAll(GrowArray<char>& bytes, std::uint64_t limit, std::size_t slack,
               const std::string& tooLong, std::string& error);

  /// Maps it as it is now, with room for `slack` bytes behind; its length is `size` then. False for
  /// what cannot be mapped, or has more than `limit` bytes: ReadAll knows why, or reads it.
  bool Map(MappedFile& file, std::size_t& size, std::uint64_t limit, std::size_t slack);

 private:
  bool Fail(int reason, std::string& error) const;
  void FollowPath();

  int m_handle = -1;
  bool m_drained = false;  // A pipe or device that was read, be it in part.
  std::string m_path;
};

}  // namespace bomparser
