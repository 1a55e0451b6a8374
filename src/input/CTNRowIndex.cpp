#include "input/CTNRowIndex.h"

#include <algorithm>

namespace bomparser {

CTNRowIndex::CTNRowIndex(std::shared_ptr<const CTNParsedResult> result)
    : m_result(std::move(result)), m_places(1, CTNRowCursor(*m_result)), m_last(m_places[0]) {}

/// Remembers one place more; false when there is none.
bool CTNRowIndex::Extend() {
  CTNRowCursor place = m_places.back();
  place.MoveBy(kStep);
  if (place.IsAtEnd()) return false;
  m_places.push_back(std::move(place));
  return true;
}

const CTNRowCursor& CTNRowIndex::Find(std::uint32_t line) {
  const std::uint32_t from = m_last.GetLine();
  if (line < from || line - from >= kStep) {
    const std::size_t wanted = line / kStep;
    while (m_places.size() <= wanted && Extend()) {
    }
    m_last = m_places[std::min(wanted, m_places.size() - 1)];
  }
  m_last.MoveBy(line - m_last.GetLine());
  return m_last;
}

std::uint32_t CTNRowIndex::GetFirstLine(std::uint32_t block) {
  while (m_places.back().GetBlock() < block && Extend()) {
  }
  const auto isBefore = [](std::uint32_t wanted, const CTNRowCursor& place) {
    return wanted <= place.GetBlock();
  };
  const auto behind = std::upper_bound(m_places.begin() + 1, m_places.end(), block, isBefore);
  CTNRowCursor place = *(behind - 1);
  while (!place.IsAtEnd() && place.GetBlock() < block)
    place.MoveToNextBlock();
  return place.GetLine();
}

}  // namespace bomparser
