#include "tnbase/InputSource.h"

#include "tnbase/Interrupts.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace bomparser {

namespace {

constexpr std::size_t kFirstPiece = std::size_t{1} << 16;
constexpr std::uint64_t kWorthMapping = std::uint64_t{1} << 18;

bool StatOf(int handle, struct stat& info) { return handle >= 0 && ::fstat(handle, &info) == 0; }

}  // namespace

bool InputSource::Fail(int reason, std::string& error) const {
  error = "cannot read " + m_path + ": " + std::generic_category().message(reason);
  return false;
}

bool InputSource::Open(const std::string& path, std::string& error) {
  Close();
  m_path = path;
  m_drained = false;
  m_handle = path == "-" ? ::dup(STDIN_FILENO) : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (m_handle < 0) return Fail(errno, error);
  struct stat info {};
  if (StatOf(m_handle, info) && S_ISDIR(info.st_mode)) {
    Close();
    return Fail(EISDIR, error);
  }
  return true;
}

void InputSource::Close() {
  if (m_handle >= 0) ::close(m_handle);
  m_handle = -1;
}

std::uint64_t InputSource::GetLength() const {
  struct stat info {};
  return StatOf(m_handle, info) && S_ISREG(info.st_mode) ? static_cast<std::uint64_t>(info.st_size)
                                                         : 0;
}

bool InputSource::CanReadAgain() const {
  struct stat info {};
  return StatOf(m_handle, info) && S_ISREG(info.st_mode);
}

void InputSource::FollowPath() {
  // Editors save by putting a new file in the old one's place: look at the path again. When nothing
  // can be opened there any more, the old file is still to be read.
  if (m_path == "-") return;
  const int fresh = ::open(m_path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat info {};
  if (StatOf(fresh, info) && S_ISREG(info.st_mode)) {
    ::close(m_handle);
    m_handle = fresh;
  } else if (fresh >= 0) {
    ::close(fresh);
  }
}

bool InputSource::Map(MappedFile& file, std::size_t& size, std::uint64_t limit, std::size_t slack) {
  if (!CanReadAgain()) return false;
  FollowPath();
  const std::uint64_t length = GetLength();
  // A short file is read faster than mapped.
  if (length < kWorthMapping || length > limit) return false;
  size = static_cast<std::size_t>(length);
  return file.Map(m_handle, size, slack);
}

bool InputSource::ReadAll(GrowArray<char>& bytes, std::uint64_t limit, std::size_t slack,
                          const std::string& tooLong, std::string& error) {
  const bool again = CanReadAgain();
  // After a reading that broke off the rest would pass for the whole.
  if (!again && std::exchange(m_drained, true)) return Fail(ESPIPE, error);
  if (again) FollowPath();
  if (again && GetLength() > limit) {
    error = tooLong;
    return false;
  }
  bytes.Reserve(bytes.Size() + static_cast<std::size_t>(GetLength()) + slack + 1);
  std::uint64_t taken = 0;
  for (;;) {
    std::size_t room = bytes.Capacity() - bytes.Size();
    if (room <= slack) {
      bytes.MakeRoom(slack + kFirstPiece);
      room = bytes.Capacity() - bytes.Size();
    }
    char* const to = bytes.MakeRoom(room);
    const ssize_t got = again ? ::pread(m_handle, to, room - slack, static_cast<off_t>(taken))
                              : ::read(m_handle, to, room - slack);
    if (got < 0 && errno == EINTR && !IsInterrupted()) continue;
    if (got < 0) return Fail(errno, error);
    if (got == 0) return true;
    bytes.Advance(static_cast<std::size_t>(got));
    taken += static_cast<std::uint64_t>(got);
    if (taken > limit) {
      error = tooLong;
      return false;
    }
  }
}

}  // namespace bomparser
