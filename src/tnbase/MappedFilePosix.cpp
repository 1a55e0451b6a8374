#include "tnbase/MappedFile.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace bomparser {

namespace {

/// A mapped file, as far as the signal handler has to know it.
struct Watched {
  std::atomic<std::uintptr_t> begin{0};  // 0 for a free place.
  std::atomic<std::uintptr_t> end{0};
  std::atomic<bool> damaged{false};
};
static_assert(std::atomic<std::uintptr_t>::is_always_lock_free, "the handler may use nothing else");

// More files at a time are read instead.
std::array<Watched, 16> g_watched;
struct sigaction g_before {};

const std::size_t kPage = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));

std::size_t WholePages(std::size_t bytes) { return (bytes + kPage - 1) / kPage * kPage; }

/// Puts a page of line feeds where the file has none any more: a run of characters that is being
/// read ends there, as at the end of every text.
bool Patch(Watched& file, char* address) {
  char* const page = address - reinterpret_cast<std::uintptr_t>(address) % kPage;
  if (::mmap(page, kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) ==
      MAP_FAILED) {
    return false;
  }
  std::memset(page, '\n', kPage);
  file.damaged.store(true);
  return true;
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

/// A place among the watched files, or their number when all are taken.
std::size_t TakePlace(const char* begin, std::size_t size) {
  WatchBusErrors();
  const auto first = reinterpret_cast<std::uintptr_t>(begin);
  for (std::size_t i = 0; i < g_watched.size(); ++i) {
    std::uintptr_t free = 0;
    if (!g_watched[i].begin.compare_exchange_strong(free, first)) continue;
    g_watched[i].damaged.store(false);
    g_watched[i].end.store(first + size);
    return i;
  }
  return g_watched.size();
}

}  // namespace

bool MappedFile::Map(int handle, std::size_t size, std::size_t slack) {
  Release();
  if (size == 0) return false;
  // Memory for both at first: what the file does not cover of it is the slack.
  const std::size_t mapped = WholePages(size + slack);
  void* const memory =
      ::mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return false;
  m_bytes = static_cast<char*>(memory);
  m_mapped = mapped;
  m_place = TakePlace(m_bytes, mapped);
  const bool watched = m_place < g_watched.size();
  if (watched && ::mmap(memory, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_FIXED, handle, 0) !=
                     MAP_FAILED) {
    return true;
  }
  Release();
  return false;
}

bool MappedFile::IsDamaged() const { return IsMapped() && g_watched[m_place].damaged.load(); }

void MappedFile::Release() {
  if (!IsMapped()) return;
  ::munmap(m_bytes, m_mapped);
  if (m_place < g_watched.size()) {
    g_watched[m_place].end.store(0);
    g_watched[m_place].begin.store(0);
  }
  m_bytes = nullptr;
}

void MappedFile::Swap(MappedFile& other) noexcept {
  std::swap(m_bytes, other.m_bytes);
  std::swap(m_mapped, other.m_mapped);
  std::swap(m_place, other.m_place);
}

}  // namespace bomparser
