#pragma once

#include "input/CTNParserError.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

using CTNParserErrorArray = std::vector<CTNParserError>;

/// Problems in the order in which they were found. Nothing writes a log to a file: the log name is
/// the name that it is known by.
class CTNParserErrorLog {
 public:
  virtual ~CTNParserErrorLog() = default;
  /// Removes all errors and empties the log name.
  virtual void ClearLog();
  virtual CTNParserErrorArray& GetErrors() { return m_errors; }
  virtual const CTNParserErrorArray& GetErrors() const { return m_errors; }
  /// Appends a copy; returns its index, or -1 when memory ran out: the log keeps what it had.
  virtual std::int32_t AddError(const CTNParserError& error);

  /// Appends an error of one line. False when memory ran out.
  bool AddMessage(std::string_view text);
  /// All lines of all errors, in order: what a dialog or a terminal shows. None when memory runs
  /// out.
  std::vector<std::string> GetAllLines() const;
  void SetLogName(std::string_view name) { m_logName = name; }
  const std::string& GetLogName() const { return m_logName; }

 private:
  CTNParserErrorArray m_errors;
  std::string m_logName;
};

/// The log of an input file. A class of its own so that its owner shows in the type.
class CTNInFileErrorLog final : public CTNParserErrorLog {};

/// The log of a template; named "templerrs.log" whenever the template is reset.
class CTNTemplateErrorLog final : public CTNParserErrorLog {};

}  // namespace bomparser
