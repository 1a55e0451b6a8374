#pragma once

#include "tnbase/CharClass.h"

#include <bit>
#include <cstddef>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace bomparser {

// Where runs of characters end. Nearly all runs are shorter than sixteen characters, and how long
// one is cannot be guessed: looking at sixteen at once spares the wrong guesses of a loop.

/// Behind every text that is searched for the end of a run stands a character that ends it, and
/// this many bytes can be read from there.
constexpr std::size_t kRunSlack = 16;

#if defined(__SSE2__)

namespace char_run {

inline __m128i Load(const char* at) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}
inline __m128i Is(__m128i chars, char wanted) {
  return _mm_cmpeq_epi8(chars, _mm_set1_epi8(wanted));
}
inline __m128i IsWithin(__m128i chars, char first, char last) {
  const __m128i offset = _mm_sub_epi8(chars, _mm_set1_epi8(first));
  const __m128i inside = _mm_min_epu8(offset, _mm_set1_epi8(static_cast<char>(last - first)));
  return _mm_cmpeq_epi8(offset, inside);
}
inline __m128i AreLetters(__m128i chars) {
  return IsWithin(_mm_or_si128(chars, _mm_set1_epi8('a' ^ 'A')), 'a', 'z');
}

/// `belong` tells of sixteen characters which belong to the run.
template <class Belong>
const char* EndOf(const char* at, Belong belong) {
  constexpr unsigned kAll = 0xFFFF;
  for (;; at += kRunSlack) {
    const unsigned others = static_cast<unsigned>(_mm_movemask_epi8(belong(Load(at)))) ^ kAll;
    if (others != 0) return at + std::countr_zero(others);
  }
}

}  // namespace char_run

inline const char* EndOfDigits(const char* at) {
  return char_run::EndOf(at, [](__m128i chars) { return char_run::IsWithin(chars, '0', '9'); });
}
inline const char* EndOfLetters(const char* at) {
  return char_run::EndOf(at, char_run::AreLetters);
}
inline const char* EndOfAlphanumerics(const char* at) {
  return char_run::EndOf(at, [](__m128i chars) {
    return _mm_or_si128(char_run::AreLetters(chars), char_run::IsWithin(chars, '0', '9'));
  });
}
inline const char* EndOfBlanks(const char* at) {
  return char_run::EndOf(at, [](__m128i chars) {
    return _mm_or_si128(char_run::Is(chars, ' '), char_run::Is(chars, '\t'));
  });
}
/// Of a word: everything but blanks, tabs and line feeds.
inline const char* EndOfWord(const char* at) {
  return char_run::EndOf(at, [](__m128i chars) {
    const __m128i blank = _mm_or_si128(char_run::Is(chars, ' '), char_run::Is(chars, '\t'));
    const __m128i end = _mm_or_si128(blank, char_run::Is(chars, '\n'));
    return _mm_cmpeq_epi8(end, _mm_setzero_si128());
  });
}

/// The first place from `from` on where `wanted` stands, `end` when there is none. What is searched
/// for is mostly near: a call of std::memchr costs more than the search then.
inline const char* FindChar(const char* from, const char* end, char wanted) {
  const unsigned near =
      static_cast<unsigned>(_mm_movemask_epi8(char_run::Is(char_run::Load(from), wanted)));
  if (near != 0) {
    const char* const found = from + std::countr_zero(near);
    return found < end ? found : end;
  }
  if (end - from <= static_cast<std::ptrdiff_t>(kRunSlack)) return end;
  from += kRunSlack;
  const void* const found = std::memchr(from, wanted, static_cast<std::size_t>(end - from));
  return found != nullptr ? static_cast<const char*>(found) : end;
}

#else

namespace char_run {

template <class Belongs>
const char* EndOf(const char* at, Belongs belongs) {
  while (belongs(*at))
    ++at;
  return at;
}

constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }

}  // namespace char_run

inline const char* EndOfDigits(const char* at) { return char_run::EndOf(at, IsDigit); }
inline const char* EndOfLetters(const char* at) { return char_run::EndOf(at, IsAlpha); }
inline const char* EndOfAlphanumerics(const char* at) { return char_run::EndOf(at, IsAlnum); }
inline const char* EndOfBlanks(const char* at) { return char_run::EndOf(at, char_run::IsBlank); }
/// Of a word: everything but blanks, tabs and line feeds.
inline const char* EndOfWord(const char* at) {
  return char_run::EndOf(at, [](char c) { return !char_run::IsBlank(c) && c != '\n'; });
}

/// The first place from `from` on where `wanted` stands, `end` when there is none.
inline const char* FindChar(const char* from, const char* end, char wanted) {
  const void* const found = std::memchr(from, wanted, static_cast<std::size_t>(end - from));
  return found != nullptr ? static_cast<const char*>(found) : end;
}

#endif

}  // namespace bomparser
