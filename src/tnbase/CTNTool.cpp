#include "tnbase/CTNTool.h"

#include <array>
#include <cstddef>

namespace bomparser {

namespace {

constexpr std::array<std::string_view, 14> kToolNames = {
    "Round", "Octagon", "Square",  "Hexagon",   "Rectangle", "Oblong",  "Thermal",
    "Donut", "Cross",   "Complex", "Magnified", "None",      "Diamond", "Polygon",
};

}  // namespace

std::string_view CTNTool::GetStrFromShape(int index, bool /*longName*/) {
  if (index < 0 || static_cast<std::size_t>(index) >= kToolNames.size()) {
    return {};
  }
  return kToolNames[static_cast<std::size_t>(index)];
}

}  // namespace bomparser
