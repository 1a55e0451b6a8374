#pragma once

#include <string_view>

namespace bomparser {

/// When an entry of the error log reaches the user: at once through the front end, or later,
/// when somebody shows the log.
enum class ErrorShown { Later, AtOnce };

/// What every element may ask of the engine that it works for. Played by CTNFileParserEngine.
class CTNParserContext {
 public:
  /// True while the shown results do not reflect the current template.
  virtual bool AreResultsStale() const = 0;
  /// Columns a tab stands for when text is shown; 0 leaves tabs as they are.
  virtual int GetTabStop() const = 0;
  /// Adds one entry to the template's error log. False when memory ran out.
  virtual bool ReportError(std::string_view text, ErrorShown shown) = 0;
  /// The template differs from what was last applied: its results are stale from now on.
  virtual void OnTemplateModified() = 0;

 protected:
  ~CTNParserContext() = default;
};

}  // namespace bomparser
