#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

/// The name of an input's entity list in the output folder: the input's file name up to its first
/// ".", and ".xml".
std::string TargetName(std::string_view input);

/// Two inputs, by their places in the list, whose lists would have the same name; equal places when
/// there are no two.
struct TargetClash {
  std::size_t first = 0;
  std::size_t second = 0;
  explicit operator bool() const { return first != second; }
};
TargetClash FindTargetClash(const std::vector<std::string>& inputs);

}  // namespace bomparser
