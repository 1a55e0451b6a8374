// bench_run REPORT COMMAND [ARGUMENT...]: runs a command and writes to REPORT how many seconds it
// took, how many of them a processor worked for it, and how many bytes of memory it had at most.
// Ends as the command does.
//
// A program's peak begins with that of the program which starts it, and its time with what starting
// costs there. So it is started from one that is small.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// A command that never ends is ended.
constexpr rlim_t kSecondsOfWork = 120;

constexpr long kUnitOfPeak = 1024;

struct Outcome {
  double seconds = 0.0;
  double processorSeconds = 0.0;
  long peak = 0;
  int status = 0;  // As wait tells it.
};

double SecondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

bool Run(char** command, Outcome& outcome) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  pid_t process = 0;
  if (posix_spawnp(&process, command[0], nullptr, nullptr, command, environ) != 0) return false;
  rusage usage{};
  if (wait4(process, &outcome.status, 0, &usage) != process) return false;
  outcome.seconds = std::chrono::duration<double>(Clock::now() - start).count();
  outcome.processorSeconds = SecondsOf(usage.ru_utime) + SecondsOf(usage.ru_stime);
  outcome.peak = usage.ru_maxrss * kUnitOfPeak;
  return true;
}

bool Report(const char* path, const Outcome& outcome) {
  std::FILE* const file = std::fopen(path, "w");
  if (file == nullptr) return false;
  const bool written = std::fprintf(file, "%.6f %.6f %ld\n", outcome.seconds,
                                    outcome.processorSeconds, outcome.peak) > 0;
  return std::fclose(file) == 0 && written;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: bench_run REPORT COMMAND [ARGUMENT...]\n", stderr);
    return 2;
  }
  const rlimit limit{kSecondsOfWork, kSecondsOfWork};
  setrlimit(RLIMIT_CPU, &limit);
  Outcome outcome;
  if (!Run(argv + 2, outcome) || !Report(argv[1], outcome)) {
    std::fprintf(stderr, "bench_run: cannot run %s\n", argv[2]);
    return 127;
  }
  if (WIFSIGNALED(outcome.status)) std::raise(WTERMSIG(outcome.status));
  return WEXITSTATUS(outcome.status);
}
