#include "tnbase/Interrupts.h"

#include <atomic>
#include <csignal>
#include <signal.h>
#include <unistd.h>

namespace bomparser {

namespace {

constexpr int kSignalBase = 128;  // What shells add to the number of the signal.

std::atomic<int> g_signal{0};
std::atomic<int> g_holds{0};
static_assert(std::atomic<int>::is_always_lock_free, "the signal handler may use nothing else");

void OnSignal(int signal) {
  g_signal.store(signal);
  if (g_holds.load() == 0) _exit(kSignalBase + signal);
}

}  // namespace

void CatchInterrupts() {
  struct sigaction action {};
  action.sa_handler = OnSignal;
  // Calls under way are not started again: one that waits for a pipe would never come back.
  action.sa_flags = 0;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  // A reader that leaves and a limit on the size of files are failures of a write, which say more.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

bool IsInterrupted() { return g_signal.load() != 0; }

int InterruptStatus() {
  const int signal = g_signal.load();
  return kSignalBase + (signal != 0 ? signal : SIGINT);
}

InterruptHold::InterruptHold() { ++g_holds; }

InterruptHold::~InterruptHold() { --g_holds; }

}  // namespace bomparser
