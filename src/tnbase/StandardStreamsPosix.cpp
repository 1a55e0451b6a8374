#include "tnbase/StandardStreams.h"

#include "tnbase/Interrupts.h"
#include "tnbase/SystemReason.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace bomparser {

namespace {

int FileOf(StandardStream stream) {
  return stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

/// Whether the write that just failed is to be tried once more. A stream that somebody else has set
/// to refuse rather than to wait is waited for here.
bool MayTryAgain(int file) {
  if (errno == EINTR) return !IsInterrupted();
  if (errno != EAGAIN) return false;
  pollfd waiting{file, POLLOUT, 0};
  return poll(&waiting, 1, -1) >= 0 || !IsInterrupted();
}

}  // namespace

void ReserveStandardStreams() {
  for (int file = STDIN_FILENO; file <= STDERR_FILENO; ++file) {
    if (fcntl(file, F_GETFD) >= 0 || errno != EBADF) continue;
    // The lowest free number is taken, which is this one. Reading fails on a stream that can only
    // be written, and the other way round.
    const int mode = file == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (open("/dev/null", mode) < 0) return;
  }
}

bool IsTerminal(StandardStream stream) { return isatty(FileOf(stream)) == 1; }

std::size_t TerminalColumns() {
  constexpr std::size_t kUsual = 80;
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

bool WriteTo(StandardStream stream, std::string_view bytes, std::string& error) {
  const int file = FileOf(stream);
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (const int failure = errno; !MayTryAgain(file)) {
      const bool output = stream == StandardStream::Output;
      error = SystemReason("cannot write", output ? "standard output" : "standard error", failure);
      return false;
    }
  }
  return true;
}

}  // namespace bomparser
