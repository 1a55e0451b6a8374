#pragma once

#include "template/OutputTags.h"

#include <bitset>
#include <cstddef>
#include <string_view>

namespace bomparser {

/// How an entity list begins and ends.
namespace entity_list {
inline constexpr std::string_view kOpening = "<TN_FILEPARSER_ENTITIES>";
inline constexpr std::string_view kClosing = "</TN_FILEPARSER_ENTITIES>";
inline constexpr std::string_view kOpenEntity = "<ENTITY>";
inline constexpr std::string_view kCloseEntity = "</ENTITY>";

/// True for a text that begins and ends as a list does.
bool IsFramed(std::string_view text);
}  // namespace entity_list

enum class PieceKind {
  OpenEntity,
  CloseEntity,
  OpenTag,
  Value,  // Between an opening tag and its closing tag; a value of no text is no piece.
  CloseTag,
  Text,  // Everything else.
};

struct ListPiece {
  PieceKind kind = PieceKind::Text;
  std::string_view bytes;
};

/// Takes a part of an entity list to pieces. All pieces, one behind the other, are the part.
///
/// Values are not escaped and may hold anything, tags too. So a tag counts only where the list
/// could have one: with the name of an output tag, outside of values, and with its closing tag
/// behind it. The first closing tag ends the value. Whatever is not understood is text.
class EntityListPieces {
 public:
  /// The part outlives this and the pieces.
  explicit EntityListPieces(std::string_view part) : m_rest(part) {}

  /// False behind the last piece.
  bool Next(ListPiece& piece);

 private:
  enum class State { Outside, AtValue, AtCloseTag };
  struct Markup {
    PieceKind kind = PieceKind::Text;
    std::size_t size = 0;
    std::size_t valueSize = 0;  // Of an opening tag what follows it.
    std::size_t closeSize = 0;
  };

  bool FindMarkup(std::string_view text, Markup& markup);
  bool FindElement(std::string_view text, Markup& markup);
  void Take(PieceKind kind, std::size_t size, ListPiece& piece);

  std::string_view m_rest;
  State m_state = State::Outside;
  Markup m_element;
  // By tag code: no closing tag comes any more. Without that, text full of opening tags would be
  // searched to its end for each.
  std::bitset<kLastTriedTag + 1> m_neverClosed;
};

}  // namespace bomparser
