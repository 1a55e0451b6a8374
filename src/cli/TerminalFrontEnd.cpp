#include "cli/TerminalFrontEnd.h"

#include "cli/Messages.h"
#include "tnbase/StandardStreams.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fmt/format.h>

namespace bomparser {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kRedrawAfter{40};
constexpr unsigned kHundred = 100;
// Looking at the clock takes longer than many a block.
constexpr unsigned kBlocksPerLook = 64;

void Draw(const std::string& text) {
  std::string nobodyToTell;
  WriteTo(StandardStream::Error, "\r\x1B[K" + text, nobodyToTell);
}

class TerminalProgress final : public CTNProgress {
 public:
  TerminalProgress(TerminalFrontEnd& frontEnd, std::string caption)
      : m_frontEnd(frontEnd),
        m_caption(std::move(caption)),
        m_visible(IsTerminal(StandardStream::Error)),
        m_drawn(Clock::now()) {}

  ~TerminalProgress() override {
    if (m_onScreen) Draw({});
    m_frontEnd.EndHold();
  }

  void SetText(std::string_view) override {}
  bool ShowsPosition() const override { return m_visible; }

  void SetRange(std::int32_t lower, std::int32_t upper, std::int32_t step) override {
    m_position = 0;
    m_step = static_cast<std::uint64_t>(std::max(step, 0));
    m_range = static_cast<std::uint64_t>(std::max<std::int64_t>(std::int64_t{upper} - lower, 0));
  }

  bool StepAndPoll(std::uint32_t steps) override {
    if (m_blocks++ == 0) m_frontEnd.BeginHold();
    m_position += m_step * steps;
    if (m_visible && m_blocks % kBlocksPerLook == 0) Redraw();
    return IsInterrupted();
  }

  bool IsCancelled() const override { return IsInterrupted(); }

 private:
  void Redraw() {
    const Clock::time_point now = Clock::now();
    if (now - m_drawn < kRedrawAfter) return;
    m_drawn = now;
    m_onScreen = true;
    Draw(ProgressBarText(m_caption, std::min(m_position, m_range), m_range, TerminalColumns()));
  }

  TerminalFrontEnd& m_frontEnd;
  std::string m_caption;
  bool m_visible;
  bool m_onScreen = false;
  Clock::time_point m_drawn;
  std::uint64_t m_blocks = 0;
  std::uint64_t m_position = 0;
  std::uint64_t m_step = 1;
  std::uint64_t m_range = 0;
};

}  // namespace

std::unique_ptr<CTNProgress> TerminalFrontEnd::BeginProgress(const std::string& caption) {
  return std::make_unique<TerminalProgress>(*this, caption);
}

void TerminalFrontEnd::ShowError(std::string_view text) {
  if (m_tellAtOnce) PrintMessage(text);
}

void TerminalFrontEnd::BeginHold() {
  if (!m_hold) m_hold.emplace();
}

void TerminalFrontEnd::EndHold() {
  if (m_sideCopy == SideCopy::Yes) {
    BeginHold();
  } else {
    m_hold.reset();
  }
}

std::string ProgressBarText(const std::string& caption, std::uint64_t part, std::uint64_t whole,
                            std::size_t columns) {
  constexpr std::size_t kMostPlaces = 40;
  constexpr std::size_t kFewestPlaces = 10;
  constexpr std::size_t kBrackets = 3;  // And the blank in front of them.
  const double share = whole == 0 ? 1.0 : static_cast<double>(part) / static_cast<double>(whole);
  const std::string percent = fmt::format("{:3}%", static_cast<unsigned>(share * kHundred));
  // The last column stays free: some terminals begin a new row once it is written.
  const std::size_t room = columns > 0 ? columns - 1 : 0;
  const std::size_t taken = std::min(room, percent.size() + kBrackets);
  std::size_t places = room - taken;
  places = places > caption.size() ? std::min(places - caption.size(), kMostPlaces) : 0;
  if (places < kFewestPlaces) {
    const std::size_t left = room > percent.size() ? room - percent.size() : 0;
    return caption.substr(0, left) + percent;
  }
  const auto done = static_cast<std::size_t>(share * static_cast<double>(places));
  return fmt::format("{}{} [{:<{}}]", caption, percent, std::string(done, '#'), places);
}

}  // namespace bomparser
