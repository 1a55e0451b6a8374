#include "tnbase/TextEncoding.h"

#include <array>
#include <cstddef>

namespace bomparser {

namespace {

/// What may follow a lead byte: how many bytes, and the range of the first of them. The narrowed
/// ranges keep out overlong forms, surrogates and what lies beyond U+10FFFF.
struct LeadByte {
  unsigned char first;
  unsigned char last;
  int following;
  unsigned char secondMin;
  unsigned char secondMax;
};

constexpr std::array<LeadByte, 9> kLeadBytes = {{
    {0x00, 0x7F, 0, 0x00, 0x00},
    {0xC2, 0xDF, 1, 0x80, 0xBF},
    {0xE0, 0xE0, 2, 0xA0, 0xBF},
    {0xE1, 0xEC, 2, 0x80, 0xBF},
    {0xED, 0xED, 2, 0x80, 0x9F},
    {0xEE, 0xEF, 2, 0x80, 0xBF},
    {0xF0, 0xF0, 3, 0x90, 0xBF},
    {0xF1, 0xF3, 3, 0x80, 0xBF},
    {0xF4, 0xF4, 3, 0x80, 0x8F},
}};

unsigned char ByteAt(std::string_view bytes, std::size_t position) {
  return static_cast<unsigned char>(bytes[position]);
}

const LeadByte* FindLeadByte(unsigned char byte) {
  for (const LeadByte& lead : kLeadBytes) {
    if (byte >= lead.first && byte <= lead.last) {
      return &lead;
    }
  }
  return nullptr;
}

/// Length of the character at `start`, 0 when there is no well-formed one.
std::size_t CharacterLength(std::string_view bytes, std::size_t start) {
  const LeadByte* const lead = FindLeadByte(ByteAt(bytes, start));
  if (lead == nullptr) {
    return 0;
  }
  const std::size_t length = 1 + static_cast<std::size_t>(lead->following);
  if (bytes.size() - start < length) {
    return 0;
  }
  unsigned char min = lead->secondMin;
  unsigned char max = lead->secondMax;
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned char byte = ByteAt(bytes, start + i);
    if (byte < min || byte > max) {
      return 0;
    }
    min = 0x80;
    max = 0xBF;
  }
  return length;
}

/// Characters of the bytes 80 to 9F; the others are those of their number.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char16_t CharacterOf(unsigned char byte) {
  const bool remapped = byte >= 0x80 && byte <= 0x9F;
  return remapped ? kWindows1252[byte - 0x80U] : char16_t{byte};
}

void AppendUtf8(std::string& text, char16_t character) {
  const unsigned code = character;
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0 | (code >> 6));
    text += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    text += static_cast<char>(0xE0 | (code >> 12));
    text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (code & 0x3F));
  }
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
  std::size_t position = 0;
  while (position < bytes.size()) {
    const std::size_t length = CharacterLength(bytes, position);
    if (length == 0) {
      return false;
    }
    position += length;
  }
  return true;
}

std::string Windows1252ToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    AppendUtf8(text, CharacterOf(static_cast<unsigned char>(byte)));
  }
  return text;
}

}  // namespace bomparser
