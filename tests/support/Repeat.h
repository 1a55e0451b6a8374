#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bomparser::test {

inline std::string Repeat(std::string_view text, std::size_t count) {
  std::string all;
  all.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i)
    all += text;
  return all;
}

}  // namespace bomparser::test
