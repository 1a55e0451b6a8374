#pragma once

#include "input/CTNParsedFileBlock.h"
#include "ui/controls/DisplayText.h"

#include <QColor>
#include <QString>
#include <cstdint>

namespace bomparser {

/// The kinds of block that the input file view lists, one bit a kind.
enum ShownKinds : std::uint32_t {
  kShowEntities = 1,
  kShowAuxiliary = 2,
  kShowUnmatched = 4,
  kShowIgnored = 8,
  kShowAllKinds = 15,
};

constexpr bool IsShown(BlockKind kind, std::uint32_t kinds) {
  return (kinds >> static_cast<unsigned>(kind) & 1U) != 0;
}

/// What a block of the kind is called beside its colour.
inline QString BlockKindText(BlockKind kind) {
  switch (kind) {
    case BlockKind::Entity:
      return MessageText(Msg::EntityBlock);
    case BlockKind::Auxiliary:
      return MessageText(Msg::AuxiliaryBlock);
    case BlockKind::Unmatched:
      return MessageText(Msg::UnmatchedBlock);
    case BlockKind::Ignored:
      break;
  }
  return MessageText(Msg::IgnoredBlock);
}

inline QColor ToQColor(Colour colour) {
  constexpr Colour kByte = 0xFF;
  return {static_cast<int>(colour & kByte), static_cast<int>(colour >> 8 & kByte),
          static_cast<int>(colour >> 16 & kByte)};
}

}  // namespace bomparser
