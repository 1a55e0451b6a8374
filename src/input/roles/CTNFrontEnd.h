#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace bomparser {

/// Somebody who watches a long operation and may cancel it. Played by the progress window, by
/// the terminal, or by tests.
class CTNProgress {
 public:
  virtual ~CTNProgress() = default;
  virtual void SetText(std::string_view text) = 0;
  /// False when nobody looks at the position: the caller then need not find out the range.
  virtual bool ShowsPosition() const = 0;
  /// Range and step in pieces of the input text.
  virtual void SetRange(std::int32_t lower, std::int32_t upper, std::int32_t step) = 0;
  /// Moves on by `steps` steps and lets the interface breathe. True when the user has cancelled.
  virtual bool StepAndPoll(std::uint32_t steps) = 0;
  virtual bool IsCancelled() const = 0;
};

/// The user's side of the engine. Played by the main dialog and by the terminal; the engine works
/// without one as well.
class CTNFrontEnd {
 public:
  /// Shows progress under the caption until the returned object goes. May return null.
  virtual std::unique_ptr<CTNProgress> BeginProgress(const std::string& caption) = 0;
  /// Shows one error at once.
  virtual void ShowError(std::string_view text) = 0;

 protected:
  ~CTNFrontEnd() = default;
};

}  // namespace bomparser
