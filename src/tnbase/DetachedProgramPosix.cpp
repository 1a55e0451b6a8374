#include "tnbase/DetachedProgram.h"

#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace bomparser {

namespace {

/// What this program does about signals is not the other's concern.
void ForgetSignalHandling() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXFSZ, SIGCHLD}) {
    std::signal(number, SIG_DFL);
  }
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace

void StartDetached(const std::vector<std::string>& arguments) {
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments)
    pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);

  // Two forks: the one in the middle ends at once and is waited for, which leaves the program to
  // the system. Only calls that are allowed beside other threads stand between fork and exec.
  const pid_t middle = fork();
  if (middle == 0) {
    setsid();
    if (fork() == 0) {
      ForgetSignalHandling();
      execv(pointers.front(), pointers.data());
    }
    _exit(0);
  }
  if (middle < 0) return;
  while (waitpid(middle, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace bomparser
