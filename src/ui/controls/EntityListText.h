#pragma once

#include <QString>
#include <string_view>
#include <vector>

namespace bomparser {

enum class MarkupKind {
  Entity,  // A tag around entities.
  Value,   // A tag around a value.
};

/// A part of a text that is no value.
struct MarkupRange {
  qsizetype start = 0;
  qsizetype length = 0;
  MarkupKind kind = MarkupKind::Entity;
};

/// An entity list as it is read by people: a line for every value, indented.
struct EntityListText {
  QString text;
  std::vector<MarkupRange> markup;  // In order.
  qsizetype longestLine = 0;
};

/// Lays out the bytes of an entity list. None is left out and none changes its place; only line
/// breaks and indents are added; control characters are shown by their codes. What does not begin
/// and end as a list does stands as it is.
EntityListText LayOutEntityList(std::string_view list);

/// The bytes on one line, whatever they are: control characters are shown by their codes, "‹0D›".
QString OnOneLine(std::string_view bytes);

}  // namespace bomparser
