#pragma once

#include "tnbase/CharClass.h"

#include <array>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace bomparser {

/// Kinds of runs of characters.
enum class RunKind : std::uint8_t {
  Letters,
  Digits,
  Alphanumerics,
  Blanks,  // Blanks and tabs.
  Word,    // Everything but blanks, tabs and line feeds.
  Line,    // Everything but line feeds.
};
constexpr std::size_t kRunKindCount = 6;

/// So many characters are looked at in one go.
constexpr std::size_t kCharsAtOnce = 16;

#if defined(__SSE2__)

namespace chars_at_once {

inline __m128i Load(const char* at) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}
inline __m128i Are(__m128i chars, char wanted) {
  return _mm_cmpeq_epi8(chars, _mm_set1_epi8(wanted));
}
inline __m128i AreWithin(__m128i chars, char first, char last) {
  const __m128i offset = _mm_sub_epi8(chars, _mm_set1_epi8(first));
  const __m128i inside = _mm_min_epu8(offset, _mm_set1_epi8(static_cast<char>(last - first)));
  return _mm_cmpeq_epi8(offset, inside);
}
inline __m128i AreLetters(__m128i chars) {
  return AreWithin(_mm_or_si128(chars, _mm_set1_epi8('a' ^ 'A')), 'a', 'z');
}
inline __m128i AreDigits(__m128i chars) { return AreWithin(chars, '0', '9'); }
inline __m128i AreBlanks(__m128i chars) { return _mm_or_si128(Are(chars, ' '), Are(chars, '\t')); }
inline unsigned Bits(__m128i chars) { return static_cast<unsigned>(_mm_movemask_epi8(chars)); }

}  // namespace chars_at_once

/// Which of the characters from `at` on end a run: one bit each, the first in the lowest bit.
template <RunKind kind>
inline unsigned EndsAmongNext(const char* at) {
  using namespace chars_at_once;
  constexpr unsigned kAll = 0xFFFF;
  const __m128i chars = Load(at);
  if constexpr (kind == RunKind::Letters) {
    return Bits(AreLetters(chars)) ^ kAll;
  } else if constexpr (kind == RunKind::Digits) {
    return Bits(AreDigits(chars)) ^ kAll;
  } else if constexpr (kind == RunKind::Alphanumerics) {
    return Bits(_mm_or_si128(AreLetters(chars), AreDigits(chars))) ^ kAll;
  } else if constexpr (kind == RunKind::Blanks) {
    return Bits(AreBlanks(chars)) ^ kAll;
  } else if constexpr (kind == RunKind::Word) {
    return Bits(_mm_or_si128(AreBlanks(chars), Are(chars, '\n')));
  } else {
    static_assert(kind == RunKind::Line);
    return Bits(Are(chars, '\n'));
  }
}

#else

template <RunKind kind>
inline unsigned EndsAmongNext(const char* at) {
  const auto belongs = [](char c) {
    const bool blank = c == ' ' || c == '\t';
    switch (kind) {
      case RunKind::Letters:
        return IsAlpha(c);
      case RunKind::Digits:
        return IsDigit(c);
      case RunKind::Alphanumerics:
        return IsAlnum(c);
      case RunKind::Blanks:
        return blank;
      case RunKind::Word:
        return !blank && c != '\n';
      case RunKind::Line:
        return c != '\n';
    }
    return false;
  };
  for (std::size_t i = 0; i < kCharsAtOnce; ++i) {
    if (!belongs(at[i])) return 1U << i;
  }
  return 0;
}

#endif

/// Finds where runs of characters end. Nearly all runs are short, and how long one is cannot be
/// guessed: each wrong guess of a loop would cost as much as a dozen characters, so several are
/// looked at in one go.
///
/// Behind the text stands a line feed, and from there kCharsAtOnce bytes can be read. The text does
/// not change as long as it is searched.
class RunFinder {
 public:
  /// The first place from `at` on whose character does not belong to the run: the end of the text
  /// at the latest, for it stands before a line feed.
  template <RunKind kind>
  const char* EndOf(const char* at) {
    const unsigned ends = EndsAmongNext<kind>(at);
    return ends != 0 ? at + std::countr_zero(ends) : EndOfLong<kind>(at);
  }

 private:
  /// The last long run that was found. Whoever tries one place of it after the other would
  /// otherwise read it to its end each time.
  struct LongRun {
    const char* begin = nullptr;
    const char* end = nullptr;
  };

  template <RunKind kind>
  const char* EndOfLong(const char* at) {
    LongRun& known = m_longRuns[static_cast<std::size_t>(kind)];
    if (at >= known.begin && at < known.end) return known.end;
    const char* next = at;
    unsigned ends = 0;
    while (ends == 0) {
      next += kCharsAtOnce;
      ends = EndsAmongNext<kind>(next);
    }
    known = {at, next + std::countr_zero(ends)};
    return known.end;
  }

  std::array<LongRun, kRunKindCount> m_longRuns{};
};

/// The first of the next kCharsAtOnce characters that is the wanted one, or null.
inline const char* FindNear(const char* from, char wanted) {
#if defined(__SSE2__)
  using namespace chars_at_once;
  const unsigned near = Bits(Are(Load(from), wanted));
  return near != 0 ? from + std::countr_zero(near) : nullptr;
#else
  return static_cast<const char*>(std::memchr(from, wanted, kCharsAtOnce));
#endif
}

/// The first place of [from, end) where `wanted` stands, or `end`; kCharsAtOnce bytes can be read
/// behind the end. What is searched for is mostly near: a call of std::memchr costs more than the
/// search then.
inline const char* FindChar(const char* from, const char* end, char wanted) {
  assert(from != nullptr);
  constexpr int kNear = 3;
  for (int i = 0; i < kNear; ++i) {
    const char* const near = FindNear(from, wanted);
    if (near != nullptr) return near < end ? near : end;
    if (end - from <= static_cast<std::ptrdiff_t>(kCharsAtOnce)) return end;
    from += kCharsAtOnce;
  }
  const void* const found = std::memchr(from, wanted, static_cast<std::size_t>(end - from));
  return found != nullptr ? static_cast<const char*>(found) : end;
}

}  // namespace bomparser
