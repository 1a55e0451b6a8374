#include "ui/controls/WindowProgress.h"

#include "ui/controls/DisplayText.h"

#include <algorithm>
#include <limits>

namespace bomparser {
namespace {

// Looking at the clock takes as long as a short block.
constexpr unsigned kMostCallsPerLook = 16;

}  // namespace

WindowProgress::WindowProgress(CTNHostApp& host, QWidget* parent, std::string_view caption,
                               std::chrono::milliseconds breatheAfter)
    : m_window(new CProgressWnd(host)), m_breatheAfter(breatheAfter), m_looked(Clock::now()) {
  m_window->Create(parent, ToDisplayText(caption), BarLook::Smooth);
  m_window->GoModal();
  m_window->show();
  Breathe();
}

WindowProgress::~WindowProgress() { delete m_window; }

void WindowProgress::SetText(std::string_view text) {
  if (m_window.isNull()) return;
  m_window->SetText(ToDisplayText(text));
  // What comes now may take long before its first step.
  Breathe();
}

void WindowProgress::SetRange(std::int32_t lower, std::int32_t upper, std::int32_t step) {
  if (!m_window.isNull()) m_window->SetRange(lower, upper, step);
  m_position = 0;
  m_step = step;
}

bool WindowProgress::StepAndPoll(std::uint32_t steps) {
  m_position += std::int64_t{m_step} * steps;
  if (++m_callsSinceLook >= m_callsPerLook) LookAtClock();
  return IsCancelled();
}

void WindowProgress::LookAtClock() {
  const Clock::time_point now = Clock::now();
  // Where single blocks take long, every call has to look.
  const bool slow = now - m_looked > m_breatheAfter / kMostCallsPerLook;
  m_callsPerLook = slow ? 1 : kMostCallsPerLook;
  m_callsSinceLook = 0;
  m_looked = now;
  if (now - m_breathed < m_breatheAfter || IsCancelled()) return;
  constexpr std::int64_t kMostPosition = std::numeric_limits<int>::max();
  m_window->SetPos(static_cast<int>(std::min(m_position, kMostPosition)));
  Breathe();
}

void WindowProgress::Breathe() {
  if (!m_window.isNull()) m_window->PeekAndPump(EscapeKey::Cancels);
  m_breathed = Clock::now();
}

}  // namespace bomparser
