// How one input field is matched: through the cursor, character by character. This is the matcher
// that defines what matching means; applications use a compiled form that does the same
// (MatchProgram.h).

#include "template/CTNTemplRecInField.h"

#include "input/CTNParsedFileBlock.h"
#include "input/CTNParserCharBuffIter.h"
#include "input/MessageTexts.h"
#include "template/CTNTemplateRecord.h"
#include "template/NestingLimits.h"
#include "tnbase/CharClass.h"

namespace bomparser {

namespace {

bool IsBlankOrTab(char c) { return c == ' ' || c == '\t'; }
bool IsWordCharacter(char c) { return !IsBlankOrTab(c) && c != '\n'; }
bool IsSign(char c) { return c == '-' || c == '+'; }

bool IsDecimalSeparator(char c) {
  return GetMessageText(Msg::DecimalSeparators).find(c) != std::string::npos;
}

/// Appends characters while they belong. The character that ends the run, the end of the text
/// included, is put back.
template <class Belongs>
void ReadRun(CTNParserCharBuffIter& text, std::string& value, Belongs belongs) {
  char c = 0;
  while (text.GetNext(c) && belongs(c))
    value += c;
  text.PutBack(c);
}

void ReadSign(CTNParserCharBuffIter& text, std::string& value) {
  char c = 0;
  if (text.GetNext(c) && IsSign(c)) {
    value += c;
  } else {
    text.PutBack(c);
  }
}

bool ReadOne(CTNParserCharBuffIter& text, char wanted) {
  char c = 0;
  return text.GetNext(c) && c == wanted;
}

}  // namespace

bool CTNTemplRecInField::Match(CTNParserCharBuffIter& text, CTNParsedFileBlock* block,
                               std::string& value, CTNTemplRecInField* next, KeepValues keep) {
  NestingState nesting(GetParentRecord());
  return Match(text, block, value, next, keep, nesting);
}

bool CTNTemplRecInField::Match(CTNParserCharBuffIter& text, CTNParsedFileBlock* block,
                               std::string& value, CTNTemplRecInField* next, KeepValues keep,
                               NestingState& nesting) {
  const std::uint32_t start = text.GetPosition();
  std::string matched;
  const bool matches = MatchByType(text, block, matched, next, keep, nesting);
  nesting.Spend(text.GetPosition() - start);
  if (!matches) {
    text.SetPosition(start);
    return false;
  }
  value = matched;
  SetCurrentValue(matched);
  // A sub-record's element comes with its nested block and was added with it.
  if (block == nullptr || IsSubRecordType(m_kind)) return true;
  if (block->AddFieldText(matched, *this)) return true;
  text.SetPosition(start);
  return false;
}

bool CTNTemplRecInField::MatchByType(CTNParserCharBuffIter& text, CTNParsedFileBlock* block,
                                     std::string& value, CTNTemplRecInField* next, KeepValues keep,
                                     NestingState& nesting) {
  const auto matchesValues = [this, &value] {
    return !value.empty() && (!HasMatchValues() || IsMatchValue(value));
  };
  switch (m_kind) {
    case FieldKind::String:
      return MatchString(text, value);
    case FieldKind::Column:
      return MatchColumn(text, value);
    case FieldKind::Alphanumeric:
      ReadRun(text, value, IsAlnum);
      return matchesValues();
    case FieldKind::Alpha:
      ReadRun(text, value, IsAlpha);
      return matchesValues();
    case FieldKind::WholeNum:
      return MatchWholeNumber(text, value);
    case FieldKind::DecimalNum:
      return MatchDecimalNumber(text, value);
    case FieldKind::Space:
      value = " ";
      return ReadOne(text, ' ');
    case FieldKind::Tab:
      value = "\t";
      return ReadOne(text, '\t');
    case FieldKind::WhtSpace:
      ReadRun(text, value, IsBlankOrTab);
      return !value.empty();
    case FieldKind::NotWhtSpace:
      ReadRun(text, value, IsWordCharacter);
      return matchesValues();
    case FieldKind::Newline:
      return ReadOne(text, '\n');
    case FieldKind::ScanToNext:
      return MatchScan(text, value, next, keep, nesting);
    case FieldKind::SubRecord:
      return MatchSubRecord(text, block, keep, nesting);
    case FieldKind::Undefined:
      break;
  }
  return false;
}

bool CTNTemplRecInField::MatchString(CTNParserCharBuffIter& text, std::string& value) const {
  const std::uint32_t start = text.GetPosition();
  for (const std::string& wanted : GetMatchValues()) {
    value.clear();
    for (const char w : wanted) {
      char c = 0;
      if (!text.GetNext(c) || (m_caseSensitive ? c != w : ToLower(c) != ToLower(w))) break;
      value += c;
    }
    if (value.size() == wanted.size()) return true;
    text.SetPosition(start);
  }
  return false;
}

bool CTNTemplRecInField::MatchColumn(CTNParserCharBuffIter& text, std::string& value) const {
  if (m_matchLength < 0) return false;
  for (std::int32_t i = 0; i < m_matchLength; ++i) {
    char c = 0;
    // A line feed inside the column, like the end of the text, makes it too short.
    if (!text.GetNext(c) || c == '\n') return false;
    value += c;
  }
  return true;
}

bool CTNTemplRecInField::IsNumberMatchValue(std::string_view text) const {
  if (!HasMatchValues() || IsMatchValue(text)) return true;
  return text.front() == '+' && IsMatchValue(text.substr(1));
}

bool CTNTemplRecInField::MatchWholeNumber(CTNParserCharBuffIter& text, std::string& value) const {
  ReadSign(text, value);
  const std::size_t sign = value.size();
  ReadRun(text, value, IsDigit);
  return value.size() > sign && IsNumberMatchValue(value);
}

bool CTNTemplRecInField::MatchDecimalNumber(CTNParserCharBuffIter& text, std::string& value) const {
  ReadSign(text, value);
  const std::size_t sign = value.size();
  bool separated = false;
  ReadRun(text, value, [&separated](char c) {
    if (IsDigit(c)) return true;
    if (separated || !IsDecimalSeparator(c)) return false;
    separated = true;
    return true;
  });
  return separated && value.size() > sign + 1 && IsNumberMatchValue(value);
}

bool CTNTemplRecInField::MatchScan(CTNParserCharBuffIter& text, std::string& value,
                                   CTNTemplRecInField* next, KeepValues keep,
                                   NestingState& nesting) {
  // Nothing would tell such a scan where to stop.
  if (next == nullptr || next->m_kind == FieldKind::ScanToNext) return false;
  const auto nextMatchesHere = [&] {
    const std::uint32_t here = text.GetPosition();
    std::string tried;
    const bool matched = next->Match(text, nullptr, tried, nullptr, keep, nesting);
    text.SetPosition(here);
    return matched;
  };
  if (nextMatchesHere()) return true;
  const std::int32_t limit = m_matchLength;
  // Tested before each read, so one character more than the limit can be skipped. Existing
  // templates count on it.
  while (limit < 1 || value.size() <= static_cast<std::size_t>(limit)) {
    char c = 0;
    if (!nesting.MayScanOn() || !text.GetNext(c)) return false;
    value += c;
    if (nextMatchesHere()) return true;
  }
  return false;
}

bool CTNTemplRecInField::MatchSubRecord(CTNParserCharBuffIter& text, CTNParsedFileBlock* block,
                                        KeepValues keep, NestingState& nesting) {
  if (m_subRecord == nullptr || !nesting.Enter()) return false;
  CTNParsedFileBlock nested(GetContext());
  std::string ignored;
  const bool matched = m_subRecord->Match(text, &nested, ignored, keep, nesting);
  nesting.Leave();
  if (!matched) return false;
  return block == nullptr || block->AddFieldText({}, *this, &nested);
}

}  // namespace bomparser
