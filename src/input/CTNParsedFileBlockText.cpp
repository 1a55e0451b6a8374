// How blocks, rows and elements are shown.

#include "input/CTNParsedFileBlock.h"

#include "input/MessageTexts.h"

#include <algorithm>

namespace bomparser {

namespace {

constexpr Colour kWhite = 0xFFFFFF;
constexpr Colour kBlack = 0x000000;

struct BlockColours {
  Colour back;
  Colour text;
};

/// In the order of BlockKind.
constexpr BlockColours kColours[kBlockKindCount] = {
    {0xC8FFC8, kBlack}, {0xFFFFB0, kBlack}, {0xE4CAFF, kBlack}, {0xFFFFFF, 0xC0C0C0}};

void AppendFieldId(std::string& out, const ShownElement& element) {
  if (element.field == ShownElement::kLineFeedField) {
    out += GetMessageText(Msg::UnknownId);
    return;
  }
  out += GetMessageText(Msg::InputFieldIdPrefix);
  out += std::to_string(element.field + 1);
}

std::string_view TypeName(const ShownElement& element) {
  // A line end inside a scan is shown like a NEWLINE field although it is none of the pattern.
  if (element.field == ShownElement::kLineFeedField) return "NEWLINE";
  return element.record->fields[element.field].typeName;
}

bool IsBuiltIn(RecordKind kind) {
  return kind == RecordKind::IgnoredLines || kind == RecordKind::UnmatchedLines;
}

/// Hands the element's text to `put` in pieces.
template <class Put>
void PutElement(Put put, const ShownElement& element, Markup markup, Newlines newlines) {
  const bool named = markup == Markup::On && !IsBuiltIn(element.record->kind);
  std::string name;
  if (named) {
    name = element.record->id + '.';
    AppendFieldId(name, element);
    put("<");
    put(name);
    put(",");
    put(TypeName(element));
    put(">");
  } else if (newlines == Newlines::Shown && element.kind == FieldKind::Newline) {
    put("<NEWLINE>");
  }
  put(element.text);
  if (named && !element.text.empty()) {
    put("</");
    put(name);
    put(">");
  }
}

/// Takes the pieces of one row up to the limit of its form.
class RowTextWriter {
 public:
  RowTextWriter(std::string& out, const RowTextForm& form)
      : m_out(out), m_start(out.size()), m_most(form.most), m_tabs(form.tabStop) {}

  bool IsFull() const { return m_out.size() - m_start >= m_most; }
  void Put(std::string_view piece) {
    // Bit by bit: only the expanded text tells when there is enough of it.
    constexpr std::size_t kBit = 4096;
    while (!piece.empty() && !IsFull()) {
      m_tabs.Append(m_out, piece.substr(0, kBit));
      piece.remove_prefix(std::min(piece.size(), kBit));
    }
  }

 private:
  std::string& m_out;
  std::size_t m_start;
  std::size_t m_most;
  TabExpander m_tabs;
};

}  // namespace

std::string CTNParsedFileBlockElement::GetFieldId() const {
  std::string id;
  AppendFieldId(id, m_element);
  return id;
}

void CTNParsedFileBlockElement::AppendText(std::string& out, const ShownElement& element,
                                           Markup markup, Newlines newlines) {
  PutElement([&out](std::string_view piece) { out += piece; }, element, markup, newlines);
}

void CTNParsedFileBlockElement::GetText(std::string& out, Markup markup, Newlines newlines) const {
  AppendText(out, m_element, markup, newlines);
}

void TabExpander::Append(std::string& out, std::string_view piece) {
  while (!piece.empty()) {
    const std::size_t tab = m_stop == 0 ? std::string_view::npos : piece.find('\t');
    const std::string_view plain = piece.substr(0, tab);
    out += plain;
    m_column += plain.size();
    if (tab == std::string_view::npos) return;
    const std::size_t target =
        m_column <= m_stop ? m_stop : (m_column + m_stop - 1) / m_stop * m_stop;
    out.append(target - m_column, ' ');
    m_column = target;
    piece.remove_prefix(tab + 1);
  }
}

void ExpandTabs(std::string& text, int tabStop) {
  if (text.find('\t') == std::string::npos) return;
  std::string expanded;
  TabExpander(tabStop).Append(expanded, text);
  text = std::move(expanded);
}

template <class Visit>
void CTNRowElements::ForEachElement(Visit visit) {
  for (bool ends = false; m_hasRow && !ends; m_hasRow = m_elements.Next(m_first)) {
    visit(m_first);
    ends = m_first.EndsRow();
  }
}

void CTNRowElements::SkipRow() {
  ForEachElement([](const ShownElement&) {});
}

void CTNRowElements::TakeRow(std::string& out, const RowTextForm& form) {
  RowTextWriter writer(out, form);
  const auto put = [&writer](std::string_view piece) { writer.Put(piece); };
  ForEachElement([&](const ShownElement& element) {
    if (!writer.IsFull()) PutElement(put, element, form.markup, form.newlines);
  });
}

void CTNParsedFileBlock::GetRowText(std::string& out, std::size_t row, Markup markup,
                                    Newlines newlines) const {
  out.clear();
  CTNRowElements rows(Result(), GetPlace());
  for (; row > 0 && rows.HasRow(); --row)
    rows.SkipRow();
  rows.TakeRow(out, {markup, newlines, TabStop(), RowTextForm::kNoLimit});
}

bool CTNParsedFileBlock::IsBlankLine() const {
  // The catch-all record's scan matches the empty text before the line end of a blank line, so
  // there are two elements; what the user sees is a line with nothing in it.
  CTNElementCursor cursor(Result(), GetPlace());
  for (ShownElement element; cursor.Next(element);) {
    if (element.EndsRow()) return true;
    if (!element.text.empty()) return false;
  }
  return false;
}

std::string CTNParsedFileBlock::GetMatchText() const {
  const std::string& unknown = GetMessageText(Msg::UnknownId);
  if (IsStale() || GetPlace().record == CTNParsedLayout::kNoRecord) return unknown;
  const ParsedRecordLayout& record = Result().GetLayout().Records()[GetPlace().record];
  switch (GetKind()) {
    case BlockKind::Unmatched:
      return IsBlankLine() ? std::string() : GetMessageText(Msg::UnmatchedBlock);
    case BlockKind::Ignored:
      return GetMessageText(Msg::IgnoredBlock);
    case BlockKind::Entity:
    case BlockKind::Auxiliary:
      break;
  }
  return FormatMessageText(Msg::MatchingRecordFormat, record.name, record.id);
}

Colour BackColourOf(BlockKind kind) { return kColours[static_cast<int>(kind)].back; }
Colour TextColourOf(BlockKind kind) { return kColours[static_cast<int>(kind)].text; }

Colour CTNParsedFileBlock::GetBackColour() const {
  return IsStale() ? kWhite : BackColourOf(GetKind());
}

Colour CTNParsedFileBlock::GetTextColour() const {
  return IsStale() ? kBlack : TextColourOf(GetKind());
}

void CTNParsedFileBlock::AppendReadable(std::string& out) const {
  const ParsedBlockPlace place = GetPlace();
  if (place.record == CTNParsedLayout::kNoRecord) {
    out += "{}";
    return;
  }
  const CTNParsedResult& result = Result();
  const ParsedRecordLayout& record = result.GetLayout().Records()[place.record];
  const std::uint8_t* from = result.ElementBytes() + place.elements;
  const std::uint8_t* const end = result.ElementBytes() + place.elementsEnd;
  std::uint32_t text = place.text;
  const char* separator = "{";
  out += record.id;
  for (std::size_t i = 0; i < record.fields.size() && from < end; ++i) {
    const ParsedFieldLayout& field = record.fields[i];
    if (field.kind == FieldKind::SubRecord) {
      while (from < end && *from++ == element_code::kInstance) {
        ParsedBlockPlace nested{field.subRecord, text,
                                static_cast<std::uint32_t>(from - result.ElementBytes()), 0};
        result.SkipElements(field.subRecord, from, text);
        nested.elementsEnd = static_cast<std::uint32_t>(from - result.ElementBytes());
        out += separator + ("F" + std::to_string(i + 1)) + '=';
        Nested(nested).AppendReadable(out);
        separator = "|";
      }
      continue;
    }
    const auto length = element_code::TakeLength(from);
    if (!length) continue;
    out += separator + ("F" + std::to_string(i + 1)) + '=';
    separator = "|";
    if (field.kind != FieldKind::Newline) out.append(result.GetText()->Data() + text, *length);
    text += *length;
  }
  out += *separator == '{' ? "{}" : "}";
}

std::string CTNParsedFileBlock::ToReadableText() const {
  std::string text;
  AppendReadable(text);
  return text;
}

}  // namespace bomparser
