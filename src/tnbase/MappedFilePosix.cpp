#include "tnbase/MappedFile.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace bomparser {

namespace {

/// A mapped file, as far as the signal handler has to know it.
struct Watched {
  std::atomic<std::uintptr_t> begin{0};  // 0 for a free place.
  std::atomic<std::uintptr_t> end{0};
  std::atomic<bool> cutShort{false};
};
static_assert(std::atomic<std::uintptr_t>::is_always_lock_free, "the handler may use nothing else");

// More files at a time are read instead.
std::array<Watched, 16> g_watched;
struct sigaction g_before {};

const std::size_t kPage = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));

std::size_t WholePages(std::size_t bytes) { return (bytes + kPage - 1) / kPage * kPage; }

/// Puts a page of line feeds where the file has none any more: a run of characters that is being
/// read ends there, as at the end of every text. The page comes as a whole, for several threads may
/// be reading.
bool Patch(Watched& file, char* address) {
  file.cutShort.store(true);
  void* const made =
      ::mmap(nullptr, kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (made == MAP_FAILED) return false;
  std::memset(made, '\n', kPage);
  char* const page = address - reinterpret_cast<std::uintptr_t>(address) % kPage;
  return ::mremap(made, kPage, kPage, MREMAP_MAYMOVE | MREMAP_FIXED, page) != MAP_FAILED;
}

void OnBusError(int, siginfo_t* info, void*) {
  auto* const address = static_cast<char*>(info->si_addr);
  const auto place = reinterpret_cast<std::uintptr_t>(address);
  for (Watched& file : g_watched) {
    if (place >= file.begin.load() && place < file.end.load() && Patch(file, address)) return;
  }
  // Not ours: it happens once more, to whoever was asked before.
  ::sigaction(SIGBUS, &g_before, nullptr);
}

void WatchBusErrors() {
  static std::once_flag once;
  std::call_once(once, [] {
    struct sigaction action {};
    action.sa_sigaction = OnBusError;
    action.sa_flags = SA_SIGINFO;
    sigemptyset(&action.sa_mask);
    ::sigaction(SIGBUS, &action, &g_before);
  });
}

/// Reads so many bytes from this place of the file on.
bool ReadAt(int handle, char* to, std::size_t size, std::size_t from) {
  while (size > 0) {
    const ssize_t got = ::pread(handle, to, size, static_cast<off_t>(from));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    to += got;
    from += static_cast<std::size_t>(got);
    size -= static_cast<std::size_t>(got);
  }
  return true;
}

/// A place among the watched files, or their number when all are taken.
std::size_t TakePlace(const char* begin, std::size_t size) {
  WatchBusErrors();
  const auto first = reinterpret_cast<std::uintptr_t>(begin);
  for (std::size_t i = 0; i < g_watched.size(); ++i) {
    std::uintptr_t free = 0;
    if (!g_watched[i].begin.compare_exchange_strong(free, first)) continue;
    g_watched[i].cutShort.store(false);
    g_watched[i].end.store(first + size);
    return i;
  }
  return g_watched.size();
}

}  // namespace

bool MappedFile::Map(int handle, std::size_t size, std::size_t slack) {
  Release();
  // Of the last page at least a byte is read: the end of the text is never the file's.
  const std::size_t shared = size == 0 ? 0 : (size - 1) / kPage * kPage;
  if (shared == 0) return false;
  const std::size_t mapped = WholePages(size + slack);
  void* const memory =
      ::mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return false;
  m_bytes = static_cast<char*>(memory);
  m_size = size;
  m_mapped = mapped;
  m_handle = ::fcntl(handle, F_DUPFD_CLOEXEC, 0);
  m_place = TakePlace(m_bytes, mapped);
  if (m_handle >= 0 && m_place < g_watched.size() &&
      ReadAt(m_handle, m_bytes + shared, size - shared, shared) &&
      ::mmap(memory, shared, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_FIXED, m_handle, 0) !=
          MAP_FAILED) {
    return true;
  }
  Release();
  return false;
}

bool MappedFile::IsCutShort() const {
  if (!IsMapped()) return false;
  struct stat now {};
  return g_watched[m_place].cutShort.load() || ::fstat(m_handle, &now) != 0 ||
         static_cast<std::size_t>(now.st_size) < m_size;
}

void MappedFile::Release() {
  if (!IsMapped()) return;
  ::munmap(m_bytes, m_mapped);
  if (m_place < g_watched.size()) {
    g_watched[m_place].end.store(0);
    g_watched[m_place].begin.store(0);
  }
  if (m_handle >= 0) ::close(m_handle);
  m_bytes = nullptr;
}

void MappedFile::Swap(MappedFile& other) noexcept {
  std::swap(m_bytes, other.m_bytes);
  std::swap(m_size, other.m_size);
  std::swap(m_mapped, other.m_mapped);
  std::swap(m_place, other.m_place);
  std::swap(m_handle, other.m_handle);
}

}  // namespace bomparser
