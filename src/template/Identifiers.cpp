#include "template/Identifiers.h"

#include "tnbase/CharClass.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace bomparser {

std::string MakeIdentifier(Msg prefix, std::size_t index) {
  return GetMessageText(prefix) + std::to_string(index + 1);
}

bool ReadIdentifier(std::string_view id, Msg prefix, std::size_t& index) {
  const std::string& letters = GetMessageText(prefix);
  if (!EqualsNoCase(id.substr(0, letters.size()), letters)) return false;
  const std::string_view digits = id.substr(letters.size());
  if (digits.empty() || !IsDigit(digits.front()) || digits.front() == '0') return false;
  std::size_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, failure] = std::from_chars(digits.data(), end, number);
  if (failure != std::errc() || stop != end) return false;
  index = number - 1;
  return true;
}

bool IsIdentifier(std::string_view word) {
  constexpr std::array kPrefixes = {Msg::EntityIdPrefix, Msg::AuxiliaryIdPrefix,
                                    Msg::InputFieldIdPrefix, Msg::OutputElementIdPrefix};
  std::size_t index = 0;
  return std::ranges::any_of(kPrefixes,
                             [&](Msg prefix) { return ReadIdentifier(word, prefix, index); });
}

}  // namespace bomparser
