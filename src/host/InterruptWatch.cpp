#include "host/InterruptWatch.h"

#include <QApplication>
#include <chrono>

namespace bomparser {

InterruptWatch::InterruptWatch() {
  CatchInterrupts();
  constexpr std::chrono::milliseconds kLookEvery{200};
  // Again and again: behind the box that is closed first there may be another one.
  QObject::connect(&m_timer, &QTimer::timeout, [] {
    if (IsInterrupted()) QApplication::closeAllWindows();
  });
  m_timer.start(kLookEvery);
}

}  // namespace bomparser
