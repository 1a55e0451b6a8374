#include "input/CTNRowCursor.h"

namespace bomparser {

CTNRowCursor::CTNRowCursor(const CTNParsedResult& result) : m_result(&result) { FindRow(); }

/// Goes to the first row of the current block or, where it has none, of a later one.
void CTNRowCursor::FindRow() {
  m_row = 0;
  for (; !IsAtEnd(); ++m_block) {
    m_rows.reset();
    if (m_result->HasOneRow(m_block)) return;
    m_rows.emplace(*m_result, m_result->GetPlace(m_block));
    if (m_rows->HasRow()) return;
  }
  m_rows.reset();
}

void CTNRowCursor::EnterNextBlock() {
  ++m_block;
  FindRow();
}

/// Counts a row that has been passed.
void CTNRowCursor::PassRow() {
  ++m_line;
  ++m_row;
  if (!m_rows || !m_rows->HasRow()) EnterNextBlock();
}

void CTNRowCursor::MoveBy(std::uint32_t rows) {
  for (; rows > 0 && !IsAtEnd(); --rows) {
    if (m_rows) m_rows->SkipRow();
    PassRow();
  }
}

void CTNRowCursor::MoveToNextBlock() {
  if (IsAtEnd()) return;
  for (const std::uint32_t block = m_block; m_block == block;)
    MoveBy(1);
}

void CTNRowCursor::TakeText(std::string& out, const RowTextForm& form) {
  if (IsAtEnd()) return;
  if (m_rows) {
    m_rows->TakeRow(out, form);
  } else {
    CTNRowElements(*m_result, m_result->GetPlace(m_block)).TakeRow(out, form);
  }
  PassRow();
}

}  // namespace bomparser
