#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace bomparser {

/// Writes a file whole or not at all: what is written goes to a hidden file beside the target, and
/// Commit puts that in the target's place in one step. A file that is not committed leaves no
/// trace, and what was at the target stays.
///
/// - A target that is a link is followed: the file it names is replaced, the link stays.
/// - The new file has the access rights of the one it replaces, otherwise those that any new file
/// gets.
/// - A target that is no ordinary file (a pipe, a terminal, /dev/stdout, /dev/full) cannot be
/// replaced: it is written
///   straight, so that bytes written before a failure have left.
/// - A folder, and a file without any right to be written, are refused by Open, for the superuser
/// too.
///
/// Every failure is a text "cannot write PATH: REASON", and after it only destruction is left.
/// Bytes are not gathered here: callers hand over large pieces.
class AtomicFile {
 public:
  /// What Commit promises: that every later opening sees the new file, or that it outlives a power
  /// cut as well, which costs a wait for the disk.
  enum class Durability { Renamed, FlushedToDisk };

  AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;
  AtomicFile(AtomicFile&& other) noexcept;
  AtomicFile& operator=(AtomicFile&& other) noexcept;

  /// Discards what is not committed.
  ~AtomicFile();

  /// Starts to write the file `path`. To be called once.
  bool Open(const std::string& path, Durability durability, std::string& error);

  /// Adds bytes at the end. To be called between Open and Commit.
  bool Write(std::string_view bytes, std::string& error);

  /// Puts the file in its place. To be called once, after the last Write.
  bool Commit(std::string& error);

 private:
  struct Unfinished;

  /// Discards the file and tells why: `failure` is the system's error number.
  bool Fail(int failure, std::string& error);

  std::unique_ptr<Unfinished> m_unfinished;  // Null before Open, after Commit and after a failure.
};

}  // namespace bomparser
