#pragma once

#include <string_view>

namespace bomparser {

/// The standard aperture shapes.
struct CTNTool {
  /// The name of the standard shape `index`, 0 to 13; empty for any other index. Every shape has
  /// one name, which serves as the short and as the long one. The text lives as long as the
  /// program.
  static std::string_view GetStrFromShape(int index, bool longName);
};

}  // namespace bomparser
