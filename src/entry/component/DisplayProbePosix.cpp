#include "entry/component/DisplayProbe.h"

#include "tnbase/Display.h"

#include <QGuiApplication>
#include <QString>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bomparser {
namespace {

void EndSilently(QtMsgType type, const QMessageLogContext&, const QString&) {
  if (type == QtFatalMsg) _exit(1);
}

/// Says so through the pipe if the display can be opened, and ends the process either way.
[[noreturn]] void TryDisplay(int pipe) {
  qInstallMessageHandler(EndSilently);
  int count = 1;
  char name[] = "bomparser";
  char* arguments[] = {name, nullptr};
  const QGuiApplication application(count, arguments);
  const bool told = write(pipe, name, 1) == 1;
  _exit(told ? 0 : 1);
}

bool HearsSomething(int pipe) {
  // What another thread of the host held when the child was made is held there for good: the child
  // may wait for it in vain.
  constexpr int kPatience = 10'000;  // Milliseconds.
  pollfd waiting = {.fd = pipe, .events = POLLIN, .revents = 0};
  if (poll(&waiting, 1, kPatience) <= 0) return false;
  char byte = 0;
  ssize_t count = 0;
  do {
    count = read(pipe, &byte, 1);
  } while (count < 0 && errno == EINTR);
  return count == 1;
}

}  // namespace

bool CanOpenDisplay() {
  if (!HasDisplay()) return false;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  const pid_t child = fork();
  if (child == 0) TryDisplay(ends[1]);
  close(ends[1]);
  // The exit status is no answer: a host may collect those of all its children itself.
  const bool opened = child > 0 && HearsSomething(ends[0]);
  close(ends[0]);
  if (child > 0) {
    if (!opened) kill(child, SIGKILL);
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  return opened;
}

}  // namespace bomparser
