#pragma once

#include <cstdint>

namespace bomparser {

/// The type code of a template record. Codes below 5 are entity records, all others auxiliary.
/// A loaded or edited record may carry any code; only the named ones mean something.
enum class RecordKind : std::int32_t {
  Invalid = -1,
  Undefined = 0,
  Aperture = 1,
  Drill = 2,
  Part = 3,
  FreshEntity = 4,  // What a new record is until somebody chooses.
  UndefinedAuxiliary = 5,
  SingleMatch = 6,
  MultipleMatch = 7,
  SubRecord = 8,
  IgnoredLines = 11,    // The template's built-in record for lines outside the line limits.
  FreshAuxiliary = 12,  // What a record created from sample text is until somebody chooses.
  UnmatchedLines = 13,  // The template's built-in catch-all record.
};

constexpr bool IsEntityKind(RecordKind kind) { return static_cast<std::int32_t>(kind) < 5; }

}  // namespace bomparser
