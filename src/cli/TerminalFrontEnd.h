#pragma once

#include "entry/CTNFileParserEngine.h"
#include "input/roles/CTNFrontEnd.h"
#include "tnbase/Interrupts.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace bomparser {

/// The terminal as the engine's front end: Ctrl-C cancels an application after the block under
/// way, and a bar on standard error shows how far it is, if that is a terminal.
///
/// From the first block on, interruptions are held until the application is over. With a side copy
/// they stay held from then on: its folder is removed by the engine, not by the system.
class TerminalFrontEnd final : public CTNFrontEnd {
 public:
  explicit TerminalFrontEnd(SideCopy sideCopy) : m_sideCopy(sideCopy) {}

  std::unique_ptr<CTNProgress> BeginProgress(const std::string& caption) override;
  /// Nothing unless TellAtOnce says so: what fails is returned to the commands or stands in the
  /// error log, which they print.
  void ShowError(std::string_view text) override;
  void TellAtOnce(bool tell) { m_tellAtOnce = tell; }

  void BeginHold();
  void EndHold();

 private:
  SideCopy m_sideCopy;
  bool m_tellAtOnce = false;
  std::optional<InterruptHold> m_hold;
};

/// The bar's text: caption, share in percent, and a bar of 40 places, or of what is left of the
/// terminal's `columns`; a text that needs more than one row could not be taken back. `part` is at
/// most `whole`.
std::string ProgressBarText(const std::string& caption, std::uint64_t part, std::uint64_t whole,
                            std::size_t columns);

}  // namespace bomparser
