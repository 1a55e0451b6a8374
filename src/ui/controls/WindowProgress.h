#pragma once

#include "input/roles/CTNFrontEnd.h"
#include "ui/controls/CProgressWnd.h"

#include <QPointer>
#include <chrono>
#include <cstdint>
#include <string_view>

namespace bomparser {

/// The progress window as an application under way sees it: shown at once over the parent, which
/// the user gets back when it is cancelled or goes. Cancelled by its button, its close box or
/// Escape.
///
/// Telling a step is cheap. The bar moves, and the interface breathes, once in a while only: doing
/// both at every block takes longer than the application itself.
class WindowProgress final : public CTNProgress {
 public:
  /// Often enough for a hand on the mouse not to notice.
  static constexpr std::chrono::milliseconds kBreatheAfter{30};

  /// Host and parent are not owned and live longer; the parent may be null.
  WindowProgress(CTNHostApp& host, QWidget* parent, std::string_view caption,
                 std::chrono::milliseconds breatheAfter = kBreatheAfter);

  ~WindowProgress() override;

  void SetText(std::string_view text) override;
  bool ShowsPosition() const override { return true; }
  void SetRange(std::int32_t lower, std::int32_t upper, std::int32_t step) override;
  bool StepAndPoll(std::uint32_t steps) override;
  /// True as well when the window has gone with its parent.
  bool IsCancelled() const override { return m_window.isNull() || m_window->Cancelled(); }

 private:
  using Clock = std::chrono::steady_clock;

  void LookAtClock();
  void Breathe();

  QPointer<CProgressWnd> m_window;  // Owned, unless the parent took it along.
  std::chrono::milliseconds m_breatheAfter;
  std::int64_t m_position = 0;
  std::int32_t m_step = 1;
  unsigned m_callsSinceLook = 0;
  unsigned m_callsPerLook = 1;
  Clock::time_point m_looked;
  Clock::time_point m_breathed;
};

}  // namespace bomparser
