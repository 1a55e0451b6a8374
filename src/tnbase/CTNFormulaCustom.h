#pragma once

#include <string_view>

namespace bomparser {

/// The custom aperture shapes, whose indices follow those of the standard shapes with one gap: 14
/// is nobody's.
struct CTNFormulaCustom {
  /// The name of the custom shape `index`, 15 to 21; empty for any other index. Every shape has one
  /// name, which serves as the short and as the long one. The text lives as long as the program.
  static std::string_view GetShapeName(int index, bool longName);
};

}  // namespace bomparser
