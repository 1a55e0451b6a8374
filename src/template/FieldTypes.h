#pragma once

#include "input/FieldKind.h"

#include <array>
#include <string_view>

namespace bomparser {

/// One row of the field table: the name of a field type and what its attributes may be.
struct FieldType {
  FieldKind kind;
  std::string_view name;
  bool matchValues;    // The match value text may hold values.
  bool caseSensitive;  // Values may be compared with case.
  bool matchLength;    // A match length of 0 or more may be stored.
};

/// Text-to-type look-ups take the first row that fits, in this order.
inline constexpr std::array<FieldType, 13> kFieldTypes = {{
    {FieldKind::String, "STRING", true, true, false},
    {FieldKind::Column, "COLUMN", false, false, true},
    {FieldKind::Alphanumeric, "ALPHANUMERIC", true, true, true},
    {FieldKind::Alpha, "ALPHA", true, true, true},
    {FieldKind::WholeNum, "WHOLE_NUM", true, false, true},
    {FieldKind::DecimalNum, "DECIMAL_NUM", true, false, true},
    {FieldKind::Space, "SPACE", false, false, false},
    {FieldKind::Tab, "TAB", false, false, false},
    {FieldKind::WhtSpace, "WHTSPACE", false, false, true},
    {FieldKind::NotWhtSpace, "NOT_WHTSPACE", false, false, true},
    {FieldKind::Newline, "NEWLINE", false, false, false},
    {FieldKind::ScanToNext, "SCAN_TO_NEXT", false, false, true},
    {FieldKind::SubRecord, "SUBRECORD", true, false, false},
}};

/// The row of a type; for any other code a row named "UNDEFINED" that allows match values only.
const FieldType& GetFieldType(FieldKind kind);
/// The type with this name, compared without case; null when there is none.
const FieldType* FindFieldType(std::string_view name);

}  // namespace bomparser
