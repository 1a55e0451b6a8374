#include "template/RecordTypes.h"

#include "tnbase/CTNFormulaCustom.h"
#include "tnbase/CTNTool.h"
#include "tnbase/CharClass.h"

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
using TagList = std::initializer_list<OutputTag>;

TagSet SetOf(TagList tags) {
  TagSet set;
  for (const OutputTag tag : tags)
    set.Add(tag);
  return set;
}

constexpr int kFirstCustomShape = 15;
constexpr int kLastStandardShape = 13;
constexpr int kLastCustomShape = 21;

/// The name of a shape; 14 is in neither part of the library.
std::string_view GetShapeName(int shape) {
  if (shape <= kLastStandardShape) return CTNTool::GetStrFromShape(shape, true);
  return CTNFormulaCustom::GetShapeName(shape, true);
}

TagList TagsOfShape(int shape) {
  static constexpr TagList kRound = {Tag::Diameter};
  static constexpr TagList kSquare = {Tag::Width};
  static constexpr TagList kRectangle = {Tag::Width, Tag::Height};
  static constexpr TagList kRing = {Tag::InnerDiameter, Tag::OuterDiameter};
  static constexpr TagList kCross = {Tag::Stroke, Tag::Size};
  static constexpr TagList kMagnified = {Tag::Magnitude};
  static constexpr TagList kOval = {Tag::Width, Tag::Height, Tag::Rotation};
  static constexpr TagList kThermal = {Tag::InnerDiameter, Tag::OuterDiameter, Tag::NumGaps,
                                       Tag::FirstGapAngle, Tag::GapWidth,      Tag::EndGeometry,
                                       Tag::Rotation};
  static constexpr TagList kChamfered = {Tag::Width,
                                         Tag::Height,
                                         Tag::Chamfer,
                                         Tag::RightTopCorner,
                                         Tag::RightBottomCorner,
                                         Tag::LeftTopCorner,
                                         Tag::LeftBottomCorner,
                                         Tag::Rotation};
  static constexpr TagList kRounded = {Tag::Width,
                                       Tag::Height,
                                       Tag::Radius,
                                       Tag::RightTopCorner,
                                       Tag::RightBottomCorner,
                                       Tag::LeftTopCorner,
                                       Tag::LeftBottomCorner,
                                       Tag::Rotation};
  static constexpr TagList kBullet = {Tag::Width, Tag::Length, Tag::Direction, Tag::Rotation};
  static constexpr TagList kText = {Tag::Text,        Tag::Font,   Tag::LineHeight, Tag::LineWidth,
                                    Tag::StrokeWidth, Tag::Mirror, Tag::Drill,      Tag::Rotation};
  static constexpr TagList kNoTags = {};
  static constexpr std::array<const TagList*, kLastCustomShape + 1> kByShape = {
      &kRound,   &kRound,   &kSquare,    &kRound,   &kRectangle, &kRectangle, &kRing,   &kRing,
      &kCross,   &kNoTags,  &kMagnified, &kNoTags,  &kRound,     &kNoTags,    &kNoTags, &kOval,
      &kThermal, &kThermal, &kChamfered, &kRounded, &kBullet,    &kText};
  return shape >= 0 && shape <= kLastCustomShape ? *kByShape[static_cast<std::size_t>(shape)]
                                                 : kNoTags;
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

TagSet GetTagsRequiredByType(RecordKind kind) {
  switch (kind) {
    case RecordKind::Aperture:
      return SetOf({Tag::DCode, Tag::Shape, Tag::Scale, Tag::Units});
    case RecordKind::Drill:
      return SetOf({Tag::TCode, Tag::Diameter, Tag::Scale, Tag::Units});
    case RecordKind::Part:
      return SetOf({Tag::RefDesignator, Tag::PartNumber});
    default:
      return {};
  }
}

TagSet GetTagsRequiredByShape(int shape) { return SetOf(TagsOfShape(shape)); }

}  // namespace bomparser
