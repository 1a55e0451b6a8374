#pragma once

#include <cstdint>
#include <vector>

namespace bomparser {

/// A growing set of line numbers that are added in ascending order: one bit for every line up to
/// the last.
class LineSet {
 public:
  /// Adds a line behind all others.
  void Add(std::uint32_t line);

  std::uint32_t GetCount() const { return m_count; }
  /// The line at a place, from 0; there is one.
  std::uint32_t GetLine(std::uint32_t place) const;
  /// How many lines of the set are below `line`: its place, if it is one of them.
  std::uint32_t CountBelow(std::uint32_t line) const;

 private:
  std::vector<std::uint64_t> m_bits;
  std::vector<std::uint32_t> m_before;  // How many lines stand before every eighth word.
  std::uint32_t m_count = 0;
};

}  // namespace bomparser
