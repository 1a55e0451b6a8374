#include "ui/views/LineSet.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstddef>

namespace bomparser {
namespace {

constexpr std::uint32_t kWordBits = 64;
constexpr std::size_t kGroup = 8;  // Words.

std::uint32_t Ones(std::uint64_t word) { return static_cast<std::uint32_t>(std::popcount(word)); }

}  // namespace

void LineSet::Add(std::uint32_t line) {
  const std::size_t word = line / kWordBits;
  while (m_bits.size() <= word) {
    if (m_bits.size() % kGroup == 0) m_before.push_back(m_count);
    m_bits.push_back(0);
  }
  m_bits[word] |= std::uint64_t{1} << line % kWordBits;
  ++m_count;
}

std::uint32_t LineSet::GetLine(std::uint32_t place) const {
  assert(place < m_count);
  const auto behind = std::upper_bound(m_before.begin(), m_before.end(), place);
  std::uint32_t rest = place - *(behind - 1);
  std::size_t word = static_cast<std::size_t>(behind - 1 - m_before.begin()) * kGroup;
  for (; Ones(m_bits[word]) <= rest; ++word)
    rest -= Ones(m_bits[word]);
  std::uint64_t bits = m_bits[word];
  for (; rest > 0; --rest)
    bits &= bits - 1;  // Without its lowest one.
  return static_cast<std::uint32_t>(word) * kWordBits +
         static_cast<std::uint32_t>(std::countr_zero(bits));
}

std::uint32_t LineSet::CountBelow(std::uint32_t line) const {
  const std::size_t word = line / kWordBits;
  if (word >= m_bits.size()) return m_count;
  std::uint32_t count = m_before[word / kGroup];
  for (std::size_t i = word / kGroup * kGroup; i < word; ++i)
    count += Ones(m_bits[i]);
  return count + Ones(m_bits[word] & ((std::uint64_t{1} << line % kWordBits) - 1));
}

}  // namespace bomparser
