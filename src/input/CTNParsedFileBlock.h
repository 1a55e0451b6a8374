#pragma once

#include "input/CTNParsedFileBlockElement.h"
#include "input/CTNParsedFileRow.h"
#include "input/CTNParserArrayElement.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

class CTNMatchedField;

/// A colour as 0x00BBGGRR.
using Colour = std::uint32_t;

/// How blocks of a kind are shown as long as the results are not stale.
Colour BackColourOf(BlockKind kind);
Colour TextColourOf(BlockKind kind);

/// The run of input text that one record took. Either a light view of a block inside a result,
/// which it keeps alive, or a block on its own, which the plain matcher fills.
class CTNParsedFileBlock final : public CTNParserArrayElement {
 public:
  /// An empty block on its own. The engine may be null.
  explicit CTNParsedFileBlock(CTNParserContext* context);
  /// A view of the block at `place`.
  CTNParsedFileBlock(CTNParserContext* context, std::shared_ptr<const CTNParsedResult> result,
                     const ParsedBlockPlace& place);

  // Filling a block on its own.

  /// Appends what `field` consumed. A SUBRECORD field comes with the block that its record filled,
  /// once for each instance; a NEWLINE field with an empty text or its line feed. The fields of a
  /// record come in the record's order, as matching meets them; those left out did not match.
  /// False when the field is refused: it belongs to no record or to another one than the fields
  /// before it, comes out of order, or is a SUBRECORD field without a filled block.
  bool AddFieldText(std::string_view text, const CTNMatchedField& field,
                    const CTNParsedFileBlock* nested = nullptr);
  /// Marks the block as matched by the record.
  void SetRecord(const CTNMatchedRecord* record);
  /// Empties the block for the next candidate record.
  void Reset();

  // Reading.

  /// The record that matched; false while results are stale or when there is none.
  bool GetRecord(const CTNMatchedRecord*& record) const;
  /// The same without asking whether results are stale: for evaluating a block while the results
  /// that it belongs to are still being made.
  const CTNMatchedRecord* GetMatchedRecord() const;
  BlockKind GetKind() const;
  std::size_t GetRowCount() const;
  /// The rows from `first` on, at most `count`. One pass over the block's elements.
  std::vector<CTNParsedFileRow> GetRows(std::size_t first = 0, std::size_t count = SIZE_MAX) const;
  /// Replaces `out` by the text of one row, tabs expanded; empty when there is no such row.
  void GetRowText(std::string& out, std::size_t row, Markup markup, Newlines newlines) const;
  /// What the view shows as the matching record: "Name (E1)", "Unmatched", "Ignored", an empty
  /// text for a blank line that no record took, "??" while results are stale.
  std::string GetMatchText() const;
  Colour GetBackColour() const;
  Colour GetTextColour() const;

  /// The instances that a SUBRECORD field of this block's record matched, in order.
  std::vector<CTNParsedFileBlockSubRecElement> GetSubRecords(const CTNMatchedField& wanted) const;
  /// Appends everything that `field` matched in this block, joined with nothing between: texts,
  /// or for a SUBRECORD field the entity texts of its instances. Nested blocks are not searched.
  void AppendFieldValue(std::string& out, const CTNMatchedField& field, Tags tags) const;

  const std::shared_ptr<const CTNParsedResult>& GetResult() const;
  ParsedBlockPlace GetPlace() const;
  /// For tests and messages: "E1{F1=R12|F2= |F3=10}", sub-records in braces of their own.
  std::string ToReadableText() const;

 private:
  struct Filling;

  const CTNParsedResult& Result() const { return *GetResult(); }
  CTNParsedFileBlock Nested(const ParsedBlockPlace& place) const {
    return CTNParsedFileBlock(GetContext(), GetResult(), place);
  }
  /// Calls `visit` with the block of every instance that the SUBRECORD field matched, in order.
  template <class Visit>
  void ForEachInstance(const CTNMatchedField& wanted, Visit visit) const;
  bool IsStale() const { return GetContext() != nullptr && GetContext()->AreResultsStale(); }
  int TabStop() const { return GetContext() != nullptr ? GetContext()->GetTabStop() : 8; }
  bool IsBlankLine() const;
  void AppendReadable(std::string& out) const;

  std::shared_ptr<const CTNParsedResult> m_result;  // Of a view.
  ParsedBlockPlace m_place;
  std::shared_ptr<Filling> m_filling;  // Of a block on its own; its copies are the same block.
};

}  // namespace bomparser
