#include "template/CTNTemplateRecord.h"
#include "template/RecordTypes.h"

#include <array>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {
namespace {

RecordKind KindOf(int code) { return static_cast<RecordKind>(code); }

using TagNames = std::set<std::string_view>;

/// All tags from -1 to 81 that the record asks for, by name.
TagNames RequiredTags(const CTNTemplateRecord& record) {
  TagNames names;
  for (int code = -1; code <= kLastTriedTag + 1; ++code) {
    const auto tag = static_cast<OutputTag>(code);
    if (!record.IsRequiredTag(tag)) continue;
    EXPECT_TRUE(names.insert(GetTagName(tag)).second);
  }
  return names;
}

TagNames RequiredTags(RecordKind kind, std::string_view description) {
  CTNTemplateRecord record(nullptr);
  record.SetType(kind);
  record.SetDescription(description);
  return RequiredTags(record);
}

struct Shape {
  int index;
  std::string_view name;
  TagNames tags;
};

/// The shapes as apertures know them, and what each needs beside what every aperture needs.
const std::vector<Shape>& Shapes() {
  static const std::vector<Shape> s_shapes = {
      {0, "Round", {"DIAMETER"}},
      {1, "Octagon", {"DIAMETER"}},
      {2, "Square", {"WIDTH"}},
      {3, "Hexagon", {"DIAMETER"}},
      {4, "Rectangle", {"WIDTH", "HEIGHT"}},
      {5, "Oblong", {"WIDTH", "HEIGHT"}},
      {6, "Thermal", {"INNER_DIAMETER", "OUTER_DIAMETER"}},
      {7, "Donut", {"INNER_DIAMETER", "OUTER_DIAMETER"}},
      {8, "Cross", {"STROKE", "SIZE"}},
      {9, "Complex", {}},
      {10, "Magnified", {"MAGNITUDE"}},
      {11, "None", {}},
      {12, "Diamond", {"DIAMETER"}},
      {13, "Polygon", {}},
      {15, "Oval", {"WIDTH", "HEIGHT", "ROTATION"}},
      {16,
       "Round Thermal",
       {"INNER_DIAMETER", "OUTER_DIAMETER", "NUM_GAPS", "FIRST_GAP_ANGLE", "GAP_WIDTH",
        "END_GEOMETRY", "ROTATION"}},
      {17,
       "Square Thermal",
       {"INNER_DIAMETER", "OUTER_DIAMETER", "NUM_GAPS", "FIRST_GAP_ANGLE", "GAP_WIDTH",
        "END_GEOMETRY", "ROTATION"}},
      {18,
       "Chamfered Rectangle",
       {"WIDTH", "HEIGHT", "CHAMFER", "RIGHT_TOP_CORNER", "RIGHT_BOTTOM_CORNER", "LEFT_TOP_CORNER",
        "LEFT_BOTTOM_CORNER", "ROTATION"}},
      {19,
       "Rounded Rectangle",
       {"WIDTH", "HEIGHT", "RADIUS", "RIGHT_TOP_CORNER", "RIGHT_BOTTOM_CORNER", "LEFT_TOP_CORNER",
        "LEFT_BOTTOM_CORNER", "ROTATION"}},
      {20, "Bullet", {"WIDTH", "LENGTH", "DIRECTION", "ROTATION"}},
      {21,
       "Text",
       {"TEXT", "FONT", "LINE_HEIGHT", "LINE_WIDTH", "STROKE_WIDTH", "MIRROR", "DRILL",
        "ROTATION"}},
  };
  return s_shapes;
}

// ------------------------------------------------------------------------------- types

TEST(RecordTypes, EveryCodeHasItsDisplayName) {
  const std::map<int, std::string_view> named = {
      {1, "Aperture"},       {2, "Drill"},      {3, "Part"}, {6, "Single Match"},
      {7, "Multiple Match"}, {8, "Sub-Record"}, {11, ""}};
  for (int code = -3; code <= 20; ++code) {
    const auto row = named.find(code);
    const std::string_view expected = row != named.end() ? row->second : "Undefined";
    EXPECT_EQ(CTNTemplateRecord::GetTypeName(KindOf(code)), expected) << code;
  }
}

TEST(RecordTypes, CodesBelowFiveAreEntityTypesAndAllOthersAuxiliary) {
  for (int code = -1; code <= 15; ++code) {
    CTNTemplateRecord record(nullptr);
    record.SetType(KindOf(code));
    EXPECT_EQ(CTNTemplateRecord::IsEntityType(KindOf(code)), code < 5) << code;
    EXPECT_EQ(record.IsAuxiliary(), code > 4) << code;
    EXPECT_EQ(CTNTemplateRecord::IsSingleMatchType(KindOf(code)), code == 6) << code;
    EXPECT_EQ(record.IsSingleMatch(), code == 6) << code;
  }
}

TEST(RecordTypes, TheTypesOfTheBuiltInRecordsAreAllowedAndCodesWithoutUseAreNot) {
  const std::set<int> allowed = {1, 2, 3, 6, 7, 8, 11, 13};
  for (int code = -1; code <= 15; ++code)
    EXPECT_EQ(IsAllowedRecordType(KindOf(code)), allowed.count(code) == 1) << code;
}

TEST(RecordTypes, NamesAreFoundInAnyCase) {
  const std::map<std::string_view, int> codes = {{"Aperture", 1},       {"DRILL", 2},
                                                 {"part", 3},           {"single match", 6},
                                                 {"MULTIPLE MATCH", 7}, {"sub-RECORD", 8}};
  for (const auto& [name, code] : codes) {
    RecordKind kind = RecordKind::Invalid;
    EXPECT_TRUE(FindRecordType(name, kind)) << name;
    EXPECT_EQ(kind, KindOf(code)) << name;
  }
}

TEST(RecordTypes, UndefinedReadsBackAsCodeZero) {
  RecordKind kind = RecordKind::FreshEntity;
  EXPECT_TRUE(FindRecordType("undefined", kind));
  EXPECT_EQ(kind, RecordKind::Undefined);
}

TEST(RecordTypes, TheEmptyNameIsThatOfTheIgnoredLinesRecord) {
  RecordKind kind = RecordKind::Part;
  EXPECT_TRUE(FindRecordType("", kind));
  EXPECT_EQ(kind, RecordKind::IgnoredLines);
}

TEST(RecordTypes, AnUnknownNameLeavesTheCodeUnchanged) {
  for (const std::string_view name : {"Parts", "Sub Record", "Single Match*", " Part"}) {
    RecordKind kind = RecordKind::Drill;
    EXPECT_FALSE(FindRecordType(name, kind)) << name;
    EXPECT_EQ(kind, RecordKind::Drill) << name;
  }
}

// ------------------------------------------------------------------------------- shapes

TEST(RecordTypes, ShapesAreFoundByNameInAnyCase) {
  for (const Shape& shape : Shapes()) {
    std::string shouted(shape.name);
    for (char& c : shouted) {
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    EXPECT_EQ(FindApertureShape(shape.name), shape.index) << shape.name;
    EXPECT_EQ(FindApertureShape(shouted), shape.index) << shouted;
  }
}

TEST(RecordTypes, ADescriptionThatIsNoShapeNameGivesNoShape) {
  for (const std::string_view name : {"", "Circle", "Round ", "Roun", "14"})
    EXPECT_EQ(FindApertureShape(name), kNoShape) << name;
}

// ------------------------------------------------------------------------------- required tags

TEST(RecordTypes, AnApertureNeedsItsOwnTagsAndThoseOfItsShape) {
  for (const Shape& shape : Shapes()) {
    TagNames expected = {"DCODE", "SHAPE", "SCALE", "UNITS"};
    expected.insert(shape.tags.begin(), shape.tags.end());
    EXPECT_EQ(RequiredTags(RecordKind::Aperture, shape.name), expected) << shape.name;
  }
}

TEST(RecordTypes, AnApertureWithoutAShapeNeedsItsOwnTagsOnly) {
  const TagNames expected = {"DCODE", "SHAPE", "SCALE", "UNITS"};
  EXPECT_EQ(RequiredTags(RecordKind::Aperture, ""), expected);
  EXPECT_EQ(RequiredTags(RecordKind::Aperture, "widget"), expected);
}

TEST(RecordTypes, DrillsAndPartsNeedTheirTagsWhateverTheirDescription) {
  const TagNames drill = {"TCODE", "DIAMETER", "SCALE", "UNITS"};
  const TagNames part = {"REF_DESIGNATOR", "PART_NUMBER"};
  for (const std::string_view description : {"", "Text", "Round"}) {
    EXPECT_EQ(RequiredTags(RecordKind::Drill, description), drill);
    EXPECT_EQ(RequiredTags(RecordKind::Part, description), part);
  }
}

TEST(RecordTypes, NoOtherTypeNeedsAnyTag) {
  for (int code = -1; code <= 15; ++code) {
    if (code >= 1 && code <= 3) continue;
    EXPECT_EQ(RequiredTags(KindOf(code), "Rectangle"), TagNames()) << code;
  }
}

TEST(RecordTypes, NoShapeOutsideTheTableNeedsATag) {
  for (const int shape : {kNoShape, -2, 9, 11, 13, 14, 22, 1000}) {
    for (int code = -1; code <= kLastTriedTag; ++code) {
      EXPECT_FALSE(GetTagsRequiredByShape(shape).Has(static_cast<OutputTag>(code)))
          << shape << code;
    }
  }
}

TEST(RecordTypes, EveryTagIsAllowedForEveryType) {
  for (int code = -1; code <= 80; ++code)
    EXPECT_TRUE(CTNTemplateRecord::IsAllowedTag(static_cast<OutputTag>(code))) << code;
}

}  // namespace
}  // namespace bomparser
