#pragma once

#include <QApplication>
#include <memory>
#include <string>

namespace bomparser {

/// The application object that windows need: the process's own or, where it has none, one that
/// lives as long as this.
class WindowApplication {
 public:
  WindowApplication();
  ~WindowApplication();
  WindowApplication(const WindowApplication&) = delete;
  WindowApplication& operator=(const WindowApplication&) = delete;

  /// Whether windows can be shown.
  bool IsUsable() const;

 private:
  std::string m_localeBefore;
  std::unique_ptr<QApplication> m_own;
};

}  // namespace bomparser
