#pragma once

#include <cstdint>
#include <string>

namespace bomparser {

/// The cursor through which the matchers and the expression parser read text: the whole input
/// file, one line, a selection, or a value typed into a list.
///
/// Every GetNext, failed or not, is undone by one PutBack: a failed read advances as well.
class CTNParserCharBuffIter {
 public:
  virtual ~CTNParserCharBuffIter() = default;
  /// Reads one character. At the end of the text `c` becomes 0xFF and the result is false.
  virtual bool GetNext(char& c) = 0;
  /// Steps back one character and makes `c` the one that is read next. Stepping back before the
  /// first character throws std::invalid_argument: callers put back what they read, no more.
  virtual void PutBack(const char& c) = 0;
  virtual std::uint32_t GetPosition() const = 0;
  /// No bounds are checked.
  virtual void SetPosition(std::uint32_t position) = 0;
  /// Called by nobody; keeps its place among the operations for cursors over other sources.
  virtual void OnTextMoved() = 0;
  /// The end limit. Advisory: whoever drives a scan compares the position with it; reads stop at
  /// the end of the text only.
  virtual std::uint32_t GetEnd() const = 0;
  /// Reads up to and including the next line feed. False when nothing is left.
  virtual bool ReadLine(std::string& line) = 0;
};

}  // namespace bomparser
