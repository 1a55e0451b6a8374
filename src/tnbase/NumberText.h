#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace bomparser {

// Numbers as text and back, the same under every locale: the decimal separator is a point, and
// digits are never grouped.

/// The shortest text that reads back as the same number: "1", "0.1", "1e+30"; "inf", "-inf" and
/// "nan" for what has no digits.
std::string FormatShortest(double value);

/// `value` with exactly `decimals` digits behind the point, and no point for 0 or fewer. The
/// nearest such number; a tie in the binary value goes to the even digit.
std::string FormatFixed(double value, int decimals);

std::string FormatInt(std::int64_t value);

/// Reads a whole text as a decimal number with an optional sign, XML blanks (blank, TAB, CR, LF)
/// around it allowed. False, and `value` unchanged, when anything else stands in the text, when it
/// is empty or out of range.
bool ParseInt32(std::string_view text, std::int32_t& value);

/// The same for a finite floating-point number, with or without an exponent. What is too small for
/// a double is out of range, as is what is too large.
bool ParseDouble(std::string_view text, double& value);

/// The number that a text starts with: blanks (also vertical TAB and form feed), an optional sign,
/// digits. What follows is not looked at; without digits the number is 0, beyond the range of int
/// it is the nearest int.
int Atoi(std::string_view text);

}  // namespace bomparser
