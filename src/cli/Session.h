#pragma once

#include "cli/ExitStatus.h"
#include "cli/TerminalFrontEnd.h"
#include "entry/CTNFileParserEngine.h"

#include <cstdint>
#include <string>

namespace bomparser {

/// The engine as the headless commands use it: with the terminal as its front end, nothing kept
/// for views that do not exist, and every failure told on standard error.
class Session {
 public:
  explicit Session(SideCopy sideCopy = SideCopy::No);

  CTNFileParserEngine& GetEngine() { return m_engine; }
  /// Maps inputs into memory and lets so many threads work; 0 for as many as there are processors.
  void WorkAtFullSpeed(std::int32_t threads);
  /// Whether errors that are to be shown at once are. Usually commands tell them when they fail.
  void TellAtOnce(bool tell) { m_frontEnd.TellAtOnce(tell); }
  /// False when the template does not load; the error log is printed then.
  bool LoadTemplate(const std::string& path);
  /// Opens the input, "-" for standard input, and applies the current template to it; writes the
  /// side copy.
  ExitStatus Apply(const std::string& input);
  /// Writes the side copy if one is owed, up to an interruption.
  void WriteSideCopy();
  /// Writes the entity list of the current results, "-" for standard output.
  ExitStatus WriteEntityList(const std::string& input, const std::string& path);

 private:
  TerminalFrontEnd m_frontEnd;
  CTNFileParserEngine m_engine;
};

/// Prints what went wrong with the input, and is the status of a failure; unless it only went wrong
/// because the user has interrupted it.
ExitStatus TellFailure(const std::string& input, const std::string& error);

}  // namespace bomparser
