#pragma once

#include "input/RecordKind.h"
#include "template/OutputTags.h"

#include <bitset>
#include <cstddef>
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

/// A set of tags that have a code.
class TagSet {
 public:
  bool Has(OutputTag tag) const {
    const auto code = static_cast<std::size_t>(tag);
    return code < m_tags.size() && m_tags[code];
  }
  void Add(OutputTag tag) { m_tags.set(static_cast<std::size_t>(tag)); }
  void Add(const TagSet& others) { m_tags |= others.m_tags; }

 private:
  std::bitset<kLastTriedTag + 1> m_tags;
};

/// The tags that records of this type need an output element for whatever their shape.
TagSet GetTagsRequiredByType(RecordKind kind);
/// The tags that apertures of this shape need an output element for on top of that.
TagSet GetTagsRequiredByShape(int shape);

}  // namespace bomparser
