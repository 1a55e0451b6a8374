#include "tnbase/FileBytes.h"

#include "tnbase/SystemReason.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <new>
#include <utility>

namespace bomparser {

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

/// The error number of what went wrong, 0 when `bytes` holds the whole file.
int ReadToEnd(std::FILE* file, std::uint64_t limit, std::string& bytes) {
  std::array<char, 64 * 1024> piece;
  for (;;) {
    errno = 0;
    const std::size_t got = std::fread(piece.data(), 1, piece.size(), file);
    if (got > limit - bytes.size()) {
      return EFBIG;
    }
    bytes.append(piece.data(), got);
    if (got < piece.size()) {
      return std::ferror(file) != 0 ? errno : 0;
    }
  }
}

int ReadFile(const std::string& path, std::uint64_t limit, std::string& bytes) {
  const OpenFile file(std::fopen(path.c_str(), "rb"));
  if (!file) {
    return errno;
  }
  try {
    return ReadToEnd(file.get(), limit, bytes);
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
}

}  // namespace

bool ReadFileBytes(const std::string& path, std::string& bytes, std::string& error,
                   std::uint64_t limit) {
  std::string read;
  if (const int failure = ReadFile(path, limit, read); failure != 0) {
    error = SystemReason("cannot read", path, failure);
    return false;
  }
  bytes = std::move(read);
  return true;
}

}  // namespace bomparser
