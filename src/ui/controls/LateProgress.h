#pragma once

#include "ui/controls/WindowProgress.h"

#include <chrono>
#include <memory>
#include <string>

namespace bomparser {

/// A progress window for work that mostly is done at once: it appears only when the work takes
/// longer than a moment. How far the work has come is not known.
class LateProgress {
 public:
  static constexpr std::chrono::milliseconds kMoment{500};

  /// Host and parent are not owned and live longer.
  LateProgress(CTNHostApp& host, QWidget& parent, std::string caption,
               std::chrono::milliseconds moment = kMoment)
      : m_host(host), m_parent(parent), m_caption(std::move(caption)), m_moment(moment) {}

  /// To be asked often. False once the user has cancelled.
  bool MayGoOn() {
    if (!m_window) {
      if (std::chrono::steady_clock::now() - m_begun < m_moment) return true;
      m_window = std::make_unique<WindowProgress>(m_host, &m_parent, m_caption);
    }
    return !m_window->StepAndPoll(1);
  }

 private:
  CTNHostApp& m_host;
  QWidget& m_parent;
  std::string m_caption;
  std::chrono::milliseconds m_moment;
  std::chrono::steady_clock::time_point m_begun = std::chrono::steady_clock::now();
  std::unique_ptr<WindowProgress> m_window;  // Null until it takes long.
};

}  // namespace bomparser
