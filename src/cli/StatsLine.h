#pragma once

#include "cli/OutputFile.h"
#include "input/ApplicationStats.h"

#include <optional>
#include <string>
#include <string_view>

namespace bomparser {

/// The counts of one application as a JSON object on one line, its line end included. `input` is
/// the input as the user gave it; its bytes that are no UTF-8 are written as the characters of the
/// same number, so that the line is always well-formed.
std::string StatsLine(std::string_view input, const ApplicationStats& stats);

/// Where the lines of a run go: to standard error as they come, to a file all at once in the end,
/// or nowhere.
class StatsReport {
 public:
  /// Without a path nowhere; "-" is standard error.
  explicit StatsReport(const std::optional<std::string>& path) : m_path(path) {}

  /// Opens a pipe or device, which may have to be waited for: to be called before anything else is
  /// written, so that whoever breaks off the waiting finds nothing written. False with `error`.
  bool OpenPipe(std::string& error);
  void Add(std::string_view input, const ApplicationStats& stats);
  /// Writes the file, if there is one and there was anything to say. False with `error`.
  bool Finish(std::string& error);

 private:
  std::optional<std::string> m_path;
  std::optional<OutputFile> m_file;  // Once it is open.
  std::string m_lines;
};

}  // namespace bomparser
