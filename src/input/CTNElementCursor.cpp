#include "input/CTNElementCursor.h"

namespace bomparser {

CTNElementCursor::CTNElementCursor(const CTNParsedResult& result, const ParsedBlockPlace& place)
    : m_result(&result),
      m_text(place.text),
      m_elements(place.elements),
      m_elementsEnd(place.elementsEnd) {
  if (place.record != CTNParsedLayout::kNoRecord) m_frames.push_back({place.record, 0});
}

bool CTNElementCursor::Next(ShownElement& element) {
  if ((m_scanOpen || m_lineEndPending) && TakeScanPiece(element)) return true;
  if (!NextStored(element)) return false;
  if (element.kind != FieldKind::ScanToNext || element.text.find('\n') == std::string_view::npos) {
    return true;
  }
  m_scan = element;
  m_scanOpen = true;
  return TakeScanPiece(element);
}

bool CTNElementCursor::NextStored(ShownElement& element) {
  const auto& records = m_result->GetLayout().Records();
  while (!m_frames.empty() && m_elements < m_elementsEnd) {
    Frame& frame = m_frames.back();
    const ParsedRecordLayout& record = records[frame.record];
    if (frame.field == record.fields.size()) {
      m_frames.pop_back();
      continue;
    }
    const ParsedFieldLayout& field = record.fields[frame.field];
    const std::uint8_t* from = m_result->ElementBytes() + m_elements;
    if (field.kind == FieldKind::SubRecord) {
      ++m_elements;
      if (*from == element_code::kInstance) {
        m_frames.push_back({field.subRecord, 0});
      } else {
        ++frame.field;
      }
      continue;
    }
    const std::uint32_t index = frame.field++;
    const std::optional<std::uint32_t> length = element_code::TakeLength(from);
    m_elements = static_cast<std::uint32_t>(from - m_result->ElementBytes());
    if (!length) continue;
    const char* text = m_result->GetText()->Data() + m_text;
    m_text += *length;
    element = {&record, field.kind, index, {text, *length}};
    if (field.kind == FieldKind::Newline) element.text = {};
    return true;
  }
  return false;
}

bool CTNElementCursor::TakeScanPiece(ShownElement& element) {
  element = m_scan;
  if (m_lineEndPending) {
    m_lineEndPending = false;
    element.kind = FieldKind::Newline;
    element.field = ShownElement::kLineFeedField;
    element.text = {};
    return true;
  }
  const std::size_t end = m_scan.text.find('\n');
  if (end != std::string_view::npos) {
    element.text = m_scan.text.substr(0, end);
    m_scan.text.remove_prefix(end + 1);
    m_lineEndPending = true;
    return true;
  }
  m_scanOpen = false;
  // A single character behind the last line end is dropped; existing templates count on it.
  return m_scan.text.size() >= 2;
}

}  // namespace bomparser
