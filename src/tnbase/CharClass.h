#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace bomparser {

// Character classes of single bytes as the C locale has them, whatever locale the program runs
// under: a byte above 127 is in no class and has no other case.

namespace char_class {

struct Table {
  std::array<bool, 256> alpha{};
  std::array<bool, 256> digit{};
  std::array<char, 256> lower{};
};

constexpr Table MakeTable() {
  Table table;
  for (std::size_t i = 0; i < 256; ++i) {
    const bool upper = i >= 'A' && i <= 'Z';
    table.alpha[i] = upper || (i >= 'a' && i <= 'z');
    table.digit[i] = i >= '0' && i <= '9';
    table.lower[i] = static_cast<char>(upper ? i - 'A' + 'a' : i);
  }
  return table;
}

inline constexpr Table kTable = MakeTable();

constexpr std::size_t Index(char c) { return static_cast<unsigned char>(c); }

}  // namespace char_class

constexpr bool IsAlpha(char c) { return char_class::kTable.alpha[char_class::Index(c)]; }

constexpr bool IsDigit(char c) { return char_class::kTable.digit[char_class::Index(c)]; }

constexpr bool IsAlnum(char c) { return IsAlpha(c) || IsDigit(c); }

constexpr char ToLower(char c) { return char_class::kTable.lower[char_class::Index(c)]; }

/// True when the texts differ at most in the case of ASCII letters.
constexpr bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) {
    return false;
  }
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (ToLower(a[i]) != ToLower(b[i])) {
      return false;
    }
  }
  return true;
}

}  // namespace bomparser
