#pragma once

#include "input/RecordKind.h"
#include "template/OutputTags.h"

#include <cstdint>
#include <string_view>

namespace bomparser {

/// The display name of a record type: "Undefined" for codes that mean nothing, empty for the
/// built-in ignored-lines record.
std::string_view GetRecordTypeName(RecordKind kind);
/// Finds the first of the codes 0 to 14 with this name, compared without case: "Undefined" finds 0,
/// the empty text 11. False, and `kind` unchanged, when there is none.
bool FindRecordType(std::string_view name, RecordKind& kind);
/// False for the codes that a record must not keep. The built-in records' codes are allowed.
bool IsAllowedRecordType(RecordKind kind);

/// An aperture's shape as an index of the shape library; kNoShape when a text names none.
constexpr int kNoShape = -1;
/// The shape with this name, compared without case, among the indexes 0 to 13 and 15 to 21.
int FindApertureShape(std::string_view name);

/// Whether records of this type need an output element with the tag whatever their shape.
bool IsTagRequiredByType(RecordKind kind, OutputTag tag);
/// Whether apertures of this shape need an output element with the tag on top of that.
bool IsTagRequiredByShape(int shape, OutputTag tag);

}  // namespace bomparser
