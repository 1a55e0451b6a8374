#include "input/CTNParsedFileBlock.h"

#include "input/roles/CTNMatchedField.h"

#include <algorithm>

namespace bomparser {

/// What a block on its own has been given so far, in the same form as a result keeps it.
struct CTNParsedFileBlock::Filling {
  const CTNMatchedRecord* record = nullptr;  // Set when the record has matched.
  std::shared_ptr<CTNParsedLayout> layout = std::make_shared<CTNParsedLayout>();
  std::string text;
  std::vector<std::uint8_t> elements;
  std::uint32_t nextField = 0;
  bool instancesOpen = false;  // The field before nextField is a SUBRECORD field, not closed yet.
  std::shared_ptr<const CTNParsedResult> built;  // What reading sees; null when out of date.

  void PutLength(std::size_t length) {
    std::uint8_t bytes[element_code::kMaxBytes];
    elements.insert(elements.end(), bytes,
                    element_code::PutLength(bytes, static_cast<std::uint32_t>(length)));
  }
  /// Enters the fields before `field` that did not match, and closes open instances.
  void SkipTo(std::uint32_t field) {
    if (instancesOpen) elements.push_back(element_code::kNoMore);
    instancesOpen = false;
    for (; nextField < field; ++nextField) {
      const bool sub = layout->Records()[0].fields[nextField].kind == FieldKind::SubRecord;
      elements.push_back(sub ? element_code::kNoMore : element_code::kAbsent);
    }
  }
  void SkipToEnd() {
    if (layout->Records().empty()) return;
    SkipTo(static_cast<std::uint32_t>(layout->Records()[0].fields.size()));
  }
  bool AddInstance(const Filling& nested) {
    Filling complete = nested;
    complete.SkipToEnd();
    elements.push_back(element_code::kInstance);
    elements.insert(elements.end(), complete.elements.begin(), complete.elements.end());
    text += complete.text;
    return true;
  }
  void Build() {
    auto result = std::make_shared<CTNParsedResult>(CTNInputText::Copy(text), layout);
    std::copy(elements.begin(), elements.end(), result->MakeElementRoom(elements.size()));
    result->AdvanceElements(elements.size());
    built = std::move(result);
  }
};

CTNParsedFileBlock::CTNParsedFileBlock(CTNParserContext* context)
    : CTNParserArrayElement(context), m_filling(std::make_shared<Filling>()) {}

CTNParsedFileBlock::CTNParsedFileBlock(CTNParserContext* context,
                                       std::shared_ptr<const CTNParsedResult> result,
                                       const ParsedBlockPlace& place)
    : CTNParserArrayElement(context), m_result(std::move(result)), m_place(place) {}

bool CTNParsedFileBlock::AddFieldText(std::string_view text, const CTNMatchedField& field,
                                      const CTNParsedFileBlock* nested) {
  const CTNMatchedRecord* record = field.GetMatchedRecord();
  if (!m_filling || record == nullptr) return false;
  Filling& filling = *m_filling;
  filling.layout->Describe(*record);
  if (filling.layout->IndexOf(record) != 0) return false;
  const std::uint32_t index = filling.layout->FieldIndexOf(0, &field);
  const bool sub = field.GetFieldKind() == FieldKind::SubRecord;
  const bool again = sub && filling.instancesOpen && index + 1 == filling.nextField;
  if (index == CTNParsedLayout::kNoRecord || (index < filling.nextField && !again)) return false;
  if (sub && (nested == nullptr || !nested->m_filling || field.GetMatchedSubRecord() == nullptr)) {
    return false;
  }
  const bool filled = sub && !nested->m_filling->layout->Records().empty();
  if (filled && nested->m_filling->layout->IndexOf(field.GetMatchedSubRecord()) != 0) return false;
  filling.built = nullptr;
  if (!again) {
    filling.SkipTo(index);
    filling.nextField = index + 1;
  }
  if (sub) {
    filling.instancesOpen = true;
    Filling empty;
    empty.layout->Describe(*field.GetMatchedSubRecord());
    return filling.AddInstance(filled ? *nested->m_filling : empty);
  }
  const bool lineEnd = field.GetFieldKind() == FieldKind::Newline;
  filling.PutLength(lineEnd ? 1 : text.size());
  filling.text += lineEnd ? std::string_view("\n") : text;
  return true;
}

void CTNParsedFileBlock::SetRecord(const CTNMatchedRecord* record) {
  if (!m_filling || record == nullptr) return;
  m_filling->record = record;
  m_filling->layout->Describe(*record);
  m_filling->built = nullptr;
}

void CTNParsedFileBlock::Reset() {
  if (m_filling) *m_filling = Filling();
}

const std::shared_ptr<const CTNParsedResult>& CTNParsedFileBlock::GetResult() const {
  if (!m_filling) return m_result;
  if (!m_filling->built) m_filling->Build();
  return m_filling->built;
}

ParsedBlockPlace CTNParsedFileBlock::GetPlace() const {
  if (!m_filling) return m_place;
  if (m_filling->layout->Records().empty()) return {};
  return {0, 0, 0, static_cast<std::uint32_t>(m_filling->elements.size())};
}

bool CTNParsedFileBlock::GetRecord(const CTNMatchedRecord*& record) const {
  record = IsStale() ? nullptr : GetMatchedRecord();
  return record != nullptr;
}

const CTNMatchedRecord* CTNParsedFileBlock::GetMatchedRecord() const {
  if (m_filling) return m_filling->record;
  if (m_place.record == CTNParsedLayout::kNoRecord) return nullptr;
  return m_result->GetLayout().Records()[m_place.record].record;
}

BlockKind CTNParsedFileBlock::GetKind() const { return Result().KindOf(GetPlace().record); }

std::size_t CTNParsedFileBlock::GetRowCount() const {
  CTNElementCursor cursor(Result(), GetPlace());
  std::size_t rows = 0;
  bool open = false;
  for (ShownElement element; cursor.Next(element);) {
    if (!open) ++rows;
    open = !element.EndsRow();
  }
  return rows;
}

std::vector<CTNParsedFileRow> CTNParsedFileBlock::GetRows(std::size_t first,
                                                          std::size_t count) const {
  std::vector<CTNParsedFileRow> rows;
  CTNElementCursor cursor(Result(), GetPlace());
  std::size_t row = 0;
  bool open = false;
  for (ShownElement element; cursor.Next(element);) {
    if (!open && row >= first) {
      if (rows.size() == count) break;
      rows.emplace_back();
    }
    if (row >= first) rows.back().AddElement({GetResult(), element});
    open = !element.EndsRow();
    if (!open) ++row;
  }
  return rows;
}

template <class Visit>
void CTNParsedFileBlock::ForEachInstance(const CTNMatchedField& wanted, Visit visit) const {
  const ParsedBlockPlace place = GetPlace();
  if (place.record == CTNParsedLayout::kNoRecord) return;
  const CTNParsedResult& result = Result();
  const std::uint8_t* from = result.ElementBytes() + place.elements;
  const std::uint8_t* const end = result.ElementBytes() + place.elementsEnd;
  std::uint32_t text = place.text;
  for (const ParsedFieldLayout& field : result.GetLayout().Records()[place.record].fields) {
    if (from >= end) break;
    if (field.kind != FieldKind::SubRecord) {
      text += element_code::TakeLength(from).value_or(0);
      continue;
    }
    while (from < end && *from++ == element_code::kInstance) {
      ParsedBlockPlace nested{field.subRecord, text,
                              static_cast<std::uint32_t>(from - result.ElementBytes()), 0};
      result.SkipElements(field.subRecord, from, text);
      nested.elementsEnd = static_cast<std::uint32_t>(from - result.ElementBytes());
      if (field.field == &wanted) visit(Nested(nested));
    }
  }
}

std::vector<CTNParsedFileBlockSubRecElement> CTNParsedFileBlock::GetSubRecords(
    const CTNMatchedField& wanted) const {
  std::vector<CTNParsedFileBlockSubRecElement> found;
  ForEachInstance(wanted, [&found](const CTNParsedFileBlock& block) {
    found.emplace_back(std::make_shared<CTNParsedFileBlock>(block));
  });
  return found;
}

void CTNParsedFileBlock::AppendFieldValue(std::string& out, const CTNMatchedField& field,
                                          Tags tags) const {
  if (field.GetFieldKind() == FieldKind::SubRecord) {
    ForEachInstance(field, [&out, tags](const CTNParsedFileBlock& block) {
      const CTNMatchedRecord* record = nullptr;
      if (block.GetRecord(record)) record->BuildEntityText(out, block, tags);
    });
    return;
  }
  const ParsedBlockPlace place = GetPlace();
  if (place.record == CTNParsedLayout::kNoRecord) return;
  const CTNParsedLayout& layout = Result().GetLayout();
  const std::uint32_t wanted = layout.FieldIndexOf(place.record, &field);
  if (wanted == CTNParsedLayout::kNoRecord) return;
  CTNElementCursor cursor(Result(), place);
  for (ShownElement element; cursor.Next(element);) {
    // A record may hold itself inside another one: only its own level counts.
    if (!cursor.IsInside() && element.field == wanted) out += element.text;
  }
}

void CTNParsedFileBlockSubRecElement::GetText(std::string& out, Markup markup,
                                              Newlines newlines) const {
  std::string row;
  m_block->GetRowText(row, 0, markup, newlines);
  out += row;
}

void CTNParsedFileBlockSubRecElement::GetValue(std::string& out, Tags tags) const {
  const CTNMatchedRecord* record = nullptr;
  if (m_block->GetRecord(record)) record->BuildEntityText(out, *m_block, tags);
}

}  // namespace bomparser
