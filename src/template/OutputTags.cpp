#include "template/OutputTags.h"

#include "tnbase/CharClass.h"

#include <array>
#include <cstddef>

namespace bomparser {

namespace {

enum class Value { Text, Number };

struct TagRow {
  std::string_view name;
  Value value;
};

/// By code. VALUE_FARRADS and the mixed case of the small units are how hosts know them; mega and
/// milli share their letter.
constexpr std::array<TagRow, kLastTriedTag + 1> kTags = {{
    {"DCODE", Value::Number},  // 0
    {"SHAPE", Value::Text},
    {"INNER_DIAMETER", Value::Number},
    {"OUTER_DIAMETER", Value::Number},
    {"WIDTH", Value::Number},
    {"HEIGHT", Value::Number},
    {"NUM_GAPS", Value::Number},
    {"FIRST_GAP_ANGLE", Value::Number},
    {"GAP_WIDTH", Value::Number},
    {"CORNER_RADIUS", Value::Number},
    {"STROKE", Value::Number},  // 10
    {"SIZE", Value::Number},
    {"MAGNITUDE", Value::Number},
    {"END_GEOMETRY", Value::Text},
    {"RIGHT_TOP_CORNER", Value::Number},
    {"RIGHT_BOTTOM_CORNER", Value::Number},
    {"LEFT_TOP_CORNER", Value::Number},
    {"LEFT_BOTTOM_CORNER", Value::Number},
    {"CHAMFER", Value::Number},
    {"DIRECTION", Value::Text},
    {"TEXT", Value::Text},  // 20
    {"FONT", Value::Text},
    {"LINE_HEIGHT", Value::Number},
    {"LINE_WIDTH", Value::Number},
    {"STROKE_WIDTH", Value::Number},
    {"MIRROR", Value::Text},
    {"DRILL", Value::Text},
    {"LENGTH", Value::Number},
    {"", Value::Text},         // 28
    {"", Value::Text},         // 29
    {"TCODE", Value::Number},  // 30
    {"PLATED", Value::Text},
    {"DRILL_SPEED", Value::Number},
    {"FEED_RATE", Value::Number},
    {"", Value::Text},  // 34
    {"", Value::Text},  // 35
    {"DIAMETER", Value::Number},
    {"RADIUS", Value::Number},
    {"", Value::Text},                // 38
    {"", Value::Text},                // 39
    {"REF_DESIGNATOR", Value::Text},  // 40
    {"PACKAGE", Value::Text},
    {"DESCRIPTION", Value::Text},
    {"PART_TYPE", Value::Text},
    {"PART_ID", Value::Text},
    {"PART_NUMBER", Value::Text},
    {"ALT_PART_1", Value::Text},
    {"ALT_PART_2", Value::Text},
    {"FEEDER", Value::Text},
    {"POS_TOLERANCE", Value::Number},
    {"NEG_TOLERANCE", Value::Number},  // 50
    {"VALUE", Value::Number},
    {"VALUE_M_MEGA", Value::Number},
    {"VALUE_K_KILO", Value::Number},
    {"VALUE_M_MILLI", Value::Number},
    {"VALUE_u_MICRO", Value::Number},
    {"VALUE_n_NANO", Value::Number},
    {"VALUE_p_PICO", Value::Number},
    {"VALUE_OHMS", Value::Number},
    {"VALUE_FARRADS", Value::Number},
    {"VALUE_HENRIES", Value::Number},  // 60
    {"VALUE_VOLTS", Value::Number},
    {"VALUE_AMPS", Value::Number},
    {"VALUE_WATTS", Value::Number},
    {"VALUE_HERTZ", Value::Number},
    {"PIN_SIDES", Value::Number},
    {"LEAD_TYPE", Value::Text},
    {"LEAD_PITCH", Value::Number},
    {"LEAD_HEIGHT", Value::Number},
    {"SIDEDNESS", Value::Text},
    {"X_LOCATION", Value::Number},  // 70
    {"Y_LOCATION", Value::Number},
    {"", Value::Text},  // 72
    {"", Value::Text},  // 73
    {"ROTATION", Value::Number},
    {"SCALE", Value::Number},
    {"UNITS", Value::Text},
    {"DIM_X", Value::Number},
    {"DIM_Y", Value::Number},
    {"NONE", Value::Text},
    {"", Value::Text},  // 80
}};

const TagRow* RowOf(OutputTag tag) {
  const auto index = static_cast<std::size_t>(tag);
  return index < kTags.size() ? &kTags[index] : nullptr;
}

}  // namespace

std::string_view GetTagName(OutputTag tag) {
  if (tag == OutputTag::Undefined) return "UNDEFINED";
  const TagRow* row = RowOf(tag);
  return row != nullptr ? row->name : std::string_view();
}

bool IsNumericTag(OutputTag tag) {
  const TagRow* row = RowOf(tag);
  return row != nullptr && row->value == Value::Number;
}

bool FindTag(std::string_view name, OutputTag& tag) {
  for (std::size_t code = 0; code < kTags.size(); ++code) {
    if (!EqualsNoCase(kTags[code].name, name)) continue;
    tag = static_cast<OutputTag>(code);
    return true;
  }
  return false;
}

}  // namespace bomparser
