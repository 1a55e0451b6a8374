#include "input/CTNParserErrorLog.h"

#include <new>

namespace bomparser {

bool CTNParserError::AddLine(std::string_view text) {
  try {
    m_lines.emplace_back(text);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool CTNParserError::Clear() {
  m_lines.clear();
  return true;
}

void CTNParserErrorLog::ClearLog() {
  m_errors.clear();
  m_logName.clear();
}

std::int32_t CTNParserErrorLog::AddError(const CTNParserError& error) {
  try {
    m_errors.push_back(error);
    return static_cast<std::int32_t>(m_errors.size()) - 1;
  } catch (const std::bad_alloc&) {
    return -1;
  }
}

bool CTNParserErrorLog::AddMessage(std::string_view text) {
  CTNParserError error;
  return error.AddLine(text) && AddError(error) >= 0;
}

std::vector<std::string> CTNParserErrorLog::GetAllLines() const {
  std::vector<std::string> lines;
  try {
    for (const CTNParserError& error : m_errors)
      lines.insert(lines.end(), error.GetLines().begin(), error.GetLines().end());
  } catch (const std::bad_alloc&) {
    lines.clear();  // A part of the log would pass for all of it.
  }
  return lines;
}

}  // namespace bomparser
