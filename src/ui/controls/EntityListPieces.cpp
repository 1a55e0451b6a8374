#include "ui/controls/EntityListPieces.h"

#include <string>

namespace bomparser {

bool entity_list::IsFramed(std::string_view text) {
  return text.size() >= kOpening.size() + kClosing.size() && text.starts_with(kOpening) &&
         text.ends_with(kClosing);
}

bool EntityListPieces::Next(ListPiece& piece) {
  if (m_state == State::AtValue) {
    m_state = State::AtCloseTag;
    if (m_element.valueSize > 0) {
      Take(PieceKind::Value, m_element.valueSize, piece);
      return true;
    }
  }
  if (m_state == State::AtCloseTag) {
    m_state = State::Outside;
    Take(PieceKind::CloseTag, m_element.closeSize, piece);
    return true;
  }
  if (m_rest.empty()) return false;

  Markup markup;
  std::size_t at = m_rest.find('<');
  while (at != std::string_view::npos && !FindMarkup(m_rest.substr(at), markup)) {
    at = m_rest.find('<', at + 1);
  }
  if (at != 0) {
    Take(PieceKind::Text, at, piece);
    return true;
  }
  if (markup.kind == PieceKind::OpenTag) {
    m_element = markup;
    m_state = State::AtValue;
  }
  Take(markup.kind, markup.size, piece);
  return true;
}

bool EntityListPieces::FindMarkup(std::string_view text, Markup& markup) {
  using entity_list::kCloseEntity;
  using entity_list::kOpenEntity;
  if (text.starts_with(kOpenEntity)) {
    markup = {PieceKind::OpenEntity, kOpenEntity.size()};
    return true;
  }
  if (text.starts_with(kCloseEntity)) {
    markup = {PieceKind::CloseEntity, kCloseEntity.size()};
    return true;
  }
  return FindElement(text, markup);
}

bool EntityListPieces::FindElement(std::string_view text, Markup& markup) {
  constexpr std::size_t kLongestName = 32;
  const std::size_t end = text.substr(0, kLongestName).find('>');
  if (end == std::string_view::npos || end < 2) return false;
  const std::string_view name = text.substr(1, end - 1);
  OutputTag tag = OutputTag::Undefined;
  if (!FindTag(name, tag) || GetTagName(tag) != name) return false;

  const auto code = static_cast<std::size_t>(tag);
  if (m_neverClosed[code]) return false;
  const std::string closing = "</" + std::string(name) + ">";
  const std::size_t close = text.find(closing, end + 1);
  if (close == std::string_view::npos) {
    m_neverClosed.set(code);
    return false;
  }
  markup = {PieceKind::OpenTag, end + 1, close - end - 1, closing.size()};
  return true;
}

void EntityListPieces::Take(PieceKind kind, std::size_t size, ListPiece& piece) {
  piece = {kind, m_rest.substr(0, size)};
  m_rest.remove_prefix(piece.bytes.size());
}

}  // namespace bomparser
