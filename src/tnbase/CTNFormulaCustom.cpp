#include "tnbase/CTNFormulaCustom.h"

#include <array>
#include <cstddef>

namespace bomparser {

namespace {

constexpr int kFirst = 15;

constexpr std::array<std::string_view, 7> kFormulaNames = {
    "Oval",   "Round Thermal", "Square Thermal", "Chamfered Rectangle", "Rounded Rectangle",
    "Bullet", "Text",
};

}  // namespace

std::string_view CTNFormulaCustom::GetShapeName(int index, bool /*longName*/) {
  if (index < kFirst || static_cast<std::size_t>(index - kFirst) >= kFormulaNames.size()) {
    return {};
  }
  return kFormulaNames[static_cast<std::size_t>(index - kFirst)];
}

}  // namespace bomparser
