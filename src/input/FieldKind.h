#pragma once

#include <cstdint>

namespace bomparser {

/// What an input field consumes. The numbers are the type codes of the field table and the order
/// in which type names are looked up; names and rules stand in template/FieldTypes.h.
enum class FieldKind : std::int32_t {
  Undefined = -1,
  String = 0,
  Column = 1,
  Alphanumeric = 2,
  Alpha = 3,
  WholeNum = 4,
  DecimalNum = 5,
  Space = 6,
  Tab = 7,
  WhtSpace = 8,
  NotWhtSpace = 9,
  Newline = 10,
  ScanToNext = 11,
  SubRecord = 12,
};

}  // namespace bomparser
