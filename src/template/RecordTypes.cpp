#include "template/RecordTypes.h"

#include "tnbase/CTNFormulaCustom.h"
#include "tnbase/CTNTool.h"
#include "tnbase/CharClass.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace bomparser {

namespace {

struct RecordType {
  std::string_view name;
  bool allowed;
};

/// By code. The built-in records' types (11 and 13) are allowed although users cannot choose them.
constexpr std::array<RecordType, 15> kRecordTypes = {{
    {"Undefined", false},
    {"Aperture", true},
    {"Drill", true},
    {"Part", true},
    {"Undefined", false},
    {"Undefined", false},
    {"Single Match", true},
    {"Multiple Match", true},
    {"Sub-Record", true},
    {"Undefined", false},
    {"Undefined", false},
    {"", true},
    {"Undefined", false},
    {"Undefined", true},
    {"Undefined", false},
}};

const RecordType* RowOf(RecordKind kind) {
  const auto index = static_cast<std::size_t>(kind);
  return index < kRecordTypes.size() ? &kRecordTypes[index] : nullptr;
}

using Tag = OutputTag;
using TagSet = std::initializer_list<OutputTag>;

bool Contains(TagSet tags, OutputTag tag) {
  return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

constexpr int kFirstCustomShape = 15;
constexpr int kLastStandardShape = 13;
constexpr int kLastCustomShape = 21;

/// The name of a shape; 14 is in neither part of the library.
std::string_view GetShapeName(int shape) {
  if (shape <= kLastStandardShape) return CTNTool::GetStrFromShape(shape, true);
  return CTNFormulaCustom::GetShapeName(shape, true);
}

TagSet TagsOfShape(int shape) {
  static constexpr TagSet kRound = {Tag::Diameter};
  static constexpr TagSet kSquare = {Tag::Width};
  static constexpr TagSet kRectangle = {Tag::Width, Tag::Height};
  static constexpr TagSet kRing = {Tag::InnerDiameter, Tag::OuterDiameter};
  static constexpr TagSet kCross = {Tag::Stroke, Tag::Size};
  static constexpr TagSet kMagnified = {Tag::Magnitude};
  static constexpr TagSet kOval = {Tag::Width, Tag::Height, Tag::Rotation};
  static constexpr TagSet kThermal = {Tag::InnerDiameter, Tag::OuterDiameter, Tag::NumGaps,
                                      Tag::FirstGapAngle, Tag::GapWidth,      Tag::EndGeometry,
                                      Tag::Rotation};
  static constexpr TagSet kChamfered = {Tag::Width,
                                        Tag::Height,
                                        Tag::Chamfer,
                                        Tag::RightTopCorner,
                                        Tag::RightBottomCorner,
                                        Tag::LeftTopCorner,
                                        Tag::LeftBottomCorner,
                                        Tag::Rotation};
  static constexpr TagSet kRounded = {Tag::Width,
                                      Tag::Height,
                                      Tag::Radius,
                                      Tag::RightTopCorner,
                                      Tag::RightBottomCorner,
                                      Tag::LeftTopCorner,
                                      Tag::LeftBottomCorner,
                                      Tag::Rotation};
  static constexpr TagSet kBullet = {Tag::Width, Tag::Length, Tag::Direction, Tag::Rotation};
  static constexpr TagSet kText = {Tag::Text,        Tag::Font,   Tag::LineHeight, Tag::LineWidth,
                                   Tag::StrokeWidth, Tag::Mirror, Tag::Drill,      Tag::Rotation};
  static constexpr TagSet kNone = {};
  static constexpr std::array<const TagSet*, kLastCustomShape + 1> kByShape = {
      &kRound,   &kRound,   &kSquare,    &kRound,   &kRectangle, &kRectangle, &kRing, &kRing,
      &kCross,   &kNone,    &kMagnified, &kNone,    &kRound,     &kNone,      &kNone, &kOval,
      &kThermal, &kThermal, &kChamfered, &kRounded, &kBullet,    &kText};
  return shape >= 0 && shape <= kLastCustomShape ? *kByShape[static_cast<std::size_t>(shape)]
                                                 : kNone;
}

}  // namespace

std::string_view GetRecordTypeName(RecordKind kind) {
  const RecordType* row = RowOf(kind);
  return row != nullptr ? row->name : kRecordTypes[0].name;
}

bool FindRecordType(std::string_view name, RecordKind& kind) {
  for (std::size_t code = 0; code < kRecordTypes.size(); ++code) {
    if (!EqualsNoCase(kRecordTypes[code].name, name)) continue;
    kind = static_cast<RecordKind>(code);
    return true;
  }
  return false;
}

bool IsAllowedRecordType(RecordKind kind) {
  const RecordType* row = RowOf(kind);
  return row != nullptr && row->allowed;
}

int FindApertureShape(std::string_view name) {
  if (name.empty()) return kNoShape;
  for (int shape = 0; shape <= kLastCustomShape; ++shape) {
    const bool inLibrary = shape <= kLastStandardShape || shape >= kFirstCustomShape;
    if (inLibrary && EqualsNoCase(GetShapeName(shape), name)) return shape;
  }
  return kNoShape;
}

bool IsTagRequiredByType(RecordKind kind, OutputTag tag) {
  switch (kind) {
    case RecordKind::Aperture:
      return Contains({Tag::DCode, Tag::Shape, Tag::Scale, Tag::Units}, tag);
    case RecordKind::Drill:
      return Contains({Tag::TCode, Tag::Diameter, Tag::Scale, Tag::Units}, tag);
    case RecordKind::Part:
      return Contains({Tag::RefDesignator, Tag::PartNumber}, tag);
    default:
      return false;
  }
}

bool IsTagRequiredByShape(int shape, OutputTag tag) { return Contains(TagsOfShape(shape), tag); }

}  // namespace bomparser
