#pragma once

#include <cstdint>
#include <string_view>

namespace bomparser {

/// What an output value means to the host. The numbers are the tag codes; those without a name
/// here carry no tag and are named by the empty text.
enum class OutputTag : std::int32_t {
  Undefined = -1,
  DCode = 0,
  Shape = 1,
  InnerDiameter = 2,
  OuterDiameter = 3,
  Width = 4,
  Height = 5,
  NumGaps = 6,
  FirstGapAngle = 7,
  GapWidth = 8,
  Stroke = 10,
  Size = 11,
  Magnitude = 12,
  EndGeometry = 13,
  RightTopCorner = 14,
  RightBottomCorner = 15,
  LeftTopCorner = 16,
  LeftBottomCorner = 17,
  Chamfer = 18,
  Direction = 19,
  Text = 20,
  Font = 21,
  LineHeight = 22,
  LineWidth = 23,
  StrokeWidth = 24,
  Mirror = 25,
  Drill = 26,
  Length = 27,
  TCode = 30,
  Diameter = 36,
  Radius = 37,
  RefDesignator = 40,
  PartNumber = 45,
  XLocation = 70,
  Rotation = 74,
  Scale = 75,
  Units = 76,
  DimX = 77,
  None = 79,
};

/// Tags are tried from 0 to this code, the last one without a name.
constexpr std::int32_t kLastTriedTag = 80;

/// The tag's name; empty for a code that carries none.
std::string_view GetTagName(OutputTag tag);
/// True for tags whose value is a number: their default expression is "0".
bool IsNumericTag(OutputTag tag);
/// Finds the first tag from 0 to 80 with this name, compared without case: an empty name finds the
/// first code without one. False, and `tag` unchanged, when there is none.
bool FindTag(std::string_view name, OutputTag& tag);

}  // namespace bomparser
