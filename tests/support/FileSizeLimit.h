#pragma once

#include <csignal>
#include <sys/resource.h>

namespace bomparser {

/// While it lives, no file grows beyond a size: as on a full disk, a large write is done in part,
/// the next one fails.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limited = {bytes, m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
    m_handler = std::signal(SIGXFSZ, SIG_IGN);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
  }

 private:
  rlimit m_before{};
  void (*m_handler)(int) = SIG_DFL;
};

}  // namespace bomparser
