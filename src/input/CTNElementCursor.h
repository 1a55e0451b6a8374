#pragma once

#include "input/CTNParsedResult.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace bomparser {

/// One element as it is shown: what a field matched, sub-records woven in, a scan over line ends
/// in its pieces.
struct ShownElement {
  static constexpr std::uint32_t kLineFeedField = 0xFFFFFFFF;

  const ParsedRecordLayout* record = nullptr;
  FieldKind kind = FieldKind::Undefined;
  std::uint32_t field = 0;  // Place in the record; kLineFeedField for a line end inside a scan.
  std::string_view text;    // Empty for line ends. Lives as long as the result.

  bool EndsRow() const { return kind == FieldKind::Newline; }
};

/// Walks the elements of one block in text order. A copy of the cursor goes on from the same
/// place, so a copy kept aside is a way back into a large block.
class CTNElementCursor {
 public:
  CTNElementCursor(const CTNParsedResult& result, const ParsedBlockPlace& place);
  /// The next element; false at the end.
  bool Next(ShownElement& element);
  /// True when the element that was given last belongs to a sub-record.
  bool IsInside() const { return m_frames.size() > 1; }
  /// How far the walk has got in the text and in the element bytes.
  std::uint32_t TextPosition() const { return m_text; }
  std::uint32_t ElementPosition() const { return m_elements; }

 private:
  struct Frame {
    std::uint32_t record;
    std::uint32_t field;
  };

  bool NextStored(ShownElement& element);
  bool TakeScanPiece(ShownElement& element);

  const CTNParsedResult* m_result;
  std::vector<Frame> m_frames;
  std::uint32_t m_text;
  std::uint32_t m_elements;
  std::uint32_t m_elementsEnd;
  ShownElement m_scan;            // The scan whose pieces are being given out.
  bool m_scanOpen = false;        // A piece of it is still to come,
  bool m_lineEndPending = false;  // or the line end behind its last piece.
};

}  // namespace bomparser
