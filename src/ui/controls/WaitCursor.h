#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace bomparser {

/// Shows the wait cursor as long as it lives.
class WaitCursor {
 public:
  WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

/// Shows no wait cursor as long as it lives: the user is asked something in the middle of the work.
class NoWaitCursor {
 public:
  NoWaitCursor() { QGuiApplication::setOverrideCursor(Qt::ArrowCursor); }
  ~NoWaitCursor() { QGuiApplication::restoreOverrideCursor(); }
  NoWaitCursor(const NoWaitCursor&) = delete;
  NoWaitCursor& operator=(const NoWaitCursor&) = delete;
};

}  // namespace bomparser
