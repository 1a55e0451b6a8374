#include "tnbase/NumberText.h"

#include "tnbase/CharClass.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <system_error>

namespace bomparser {

namespace {

constexpr std::string_view kXmlBlanks = " \t\r\n";
constexpr std::string_view kCBlanks = " \t\r\n\v\f";

/// Room for the longest number in the fixed notation: 309 digits, sign and point; the decimals come
/// on top.
constexpr std::size_t kLongestFixed = 312;

std::string_view WithoutXmlBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kXmlBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kXmlBlanks) - first + 1);
}

/// std::from_chars knows no '+'. Takes one away, unless another sign follows, which makes the text
/// no number.
std::string_view WithoutPlus(std::string_view text) {
  const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  return plus ? text.substr(1) : text;
}

/// Converts the whole of `text` or leaves `value` unchanged.
template <class T>
bool ParseWhole(std::string_view text, T& value) {
  const std::string_view number = WithoutPlus(WithoutXmlBlanks(text));
  const char* const end = number.data() + number.size();
  T parsed{};
  const auto [stop, failure] = std::from_chars(number.data(), end, parsed);
  if (failure != std::errc() || stop != end) {
    return false;
  }
  value = parsed;
  return true;
}

}  // namespace

std::string FormatShortest(double value) {
  std::array<char, 32> room;
  const auto [end, failure] = std::to_chars(room.data(), room.data() + room.size(), value);
  return failure == std::errc() ? std::string(room.data(), end) : std::string();
}

std::string FormatFixed(double value, int decimals) {
  const int digits = decimals > 0 ? decimals : 0;
  std::string text(kLongestFixed + static_cast<std::size_t>(digits), '\0');
  const auto [end, failure] = std::to_chars(text.data(), text.data() + text.size(), value,
                                            std::chars_format::fixed, digits);
  text.resize(failure == std::errc() ? static_cast<std::size_t>(end - text.data()) : 0);
  return text;
}

std::string FormatInt(std::int64_t value) { return std::to_string(value); }

bool ParseInt32(std::string_view text, std::int32_t& value) { return ParseWhole(text, value); }

bool ParseDouble(std::string_view text, double& value) {
  double parsed = 0;
  if (!ParseWhole(text, parsed) || !std::isfinite(parsed)) {
    return false;
  }
  value = parsed;
  return true;
}

int Atoi(std::string_view text) {
  std::size_t i = text.find_first_not_of(kCBlanks);
  if (i == std::string_view::npos) {
    return 0;
  }
  const bool negative = text[i] == '-';
  if (negative || text[i] == '+') {
    ++i;
  }
  constexpr std::int64_t kMax = std::numeric_limits<int>::max();
  const std::int64_t limit = negative ? kMax + 1 : kMax;
  std::int64_t number = 0;
  for (; i < text.size() && IsDigit(text[i]) && number < limit; ++i) {
    number = number * 10 + (text[i] - '0');
  }
  number = number < limit ? number : limit;
  return static_cast<int>(negative ? -number : number);
}

}  // namespace bomparser
