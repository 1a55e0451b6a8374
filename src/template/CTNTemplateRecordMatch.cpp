// How a record's pattern is matched, how its values are published, and how a pattern is made from
// sample text.

#include "template/CTNTemplateRecord.h"

#include "input/CTNParsedFileBlock.h"
#include "input/CTNStringCharBuffIter.h"
#include "input/MessageTexts.h"
#include "template/NestingLimits.h"
#include "tnbase/TextEncoding.h"

namespace bomparser {

bool CTNTemplateRecord::Match(CTNParserCharBuffIter& text, CTNParsedFileBlock* block,
                              std::string& error, KeepValues keep) {
  NestingState nesting(this);
  return Match(text, block, error, keep, nesting);
}

bool CTNTemplateRecord::Match(CTNParserCharBuffIter& text, CTNParsedFileBlock* block,
                              std::string& error, KeepValues keep, NestingState& nesting) {
  if (IsValid() == 0) {
    error = GetStatusText();
    return false;
  }
  if (IsSingleMatch() && m_singleMatchBlock && (block != nullptr || keep == KeepValues::No)) {
    error = GetMessageText(Msg::SingleMatchLogicFlaw);
    return false;
  }
  ClearValues();
  for (std::size_t i = 0; i < m_inputFields.size(); ++i) {
    CTNTemplRecInField& field = *m_inputFields[i];
    CTNTemplRecInField* next = i + 1 < m_inputFields.size() ? m_inputFields[i + 1].get() : nullptr;
    std::string value;
    std::uint32_t before = text.GetPosition();
    bool matched = field.Match(text, block, value, next, keep, nesting);
    if (!matched && field.IsRequired()) {
      std::string id;
      GetFieldID(&field, id);
      error = FormatMessageText(Msg::DataMismatch, id);
      if (keep == KeepValues::No) ClearValues();
      return false;
    }
    while (matched && field.IsRepeatable() && !EndsRepetition(before, text.GetPosition())) {
      before = text.GetPosition();
      matched = field.Match(text, block, value, next, keep, nesting);
    }
  }
  return FinishMatch(block);
}

bool CTNTemplateRecord::FinishMatch(CTNParsedFileBlock* block) {
  if (block == nullptr) return true;
  block->SetRecord(this);
  if (IsSingleMatch()) SetValuesFromBlock(*block);
  return true;
}

bool CTNTemplateRecord::SetValuesFromBlock(const CTNParsedFileBlock& block) {
  if (block.GetMatchedRecord() != this) return false;
  for (const auto& field : m_inputFields) {
    std::string value;
    if (field->GetType() == FieldKind::SubRecord) {
      for (const auto& instance : block.GetSubRecords(*field)) {
        instance.GetText(value, Markup::Off, Newlines::Hidden);
      }
    } else if (field->GetType() != FieldKind::Newline && field->GetType() != FieldKind::WhtSpace) {
      block.AppendFieldValue(value, *field, Tags::Off);
    }
    field->SetCurrentValue(value);
  }
  // While the values are being set, this block is the one that expressions see.
  std::shared_ptr<const CTNParsedFileBlock> before = m_singleMatchBlock;
  if (IsSingleMatch()) m_singleMatchBlock = std::make_shared<CTNParsedFileBlock>(block);
  for (const auto& element : m_outputFields) {
    std::string value;
    element->AppendValue(value, block, Tags::Off);
    element->SetCurrentValue(value);
  }
  m_singleMatchBlock = std::move(before);
  return true;
}

void CTNTemplateRecord::ClearValues() {
  for (const auto& field : m_inputFields)
    field->SetCurrentValue({});
  // Only the first element is emptied: the others go on showing what they last had.
  if (!m_outputFields.empty()) m_outputFields.front()->SetCurrentValue({});
}

namespace {

/// Gives the field the narrowest type that reads the whole word.
void Classify(CTNTemplRecInField& field, const std::string& word) {
  field.SetMatchValueText(word);
  field.SetCaseSensitive(false);
  for (const FieldKind kind :
       {FieldKind::WholeNum, FieldKind::DecimalNum, FieldKind::Alpha, FieldKind::Alphanumeric}) {
    CTNStringCharBuffIter cursor(word);
    std::string value;
    field.SetType(kind);
    if (field.Match(cursor, nullptr, value, nullptr, KeepValues::No) && value == word) {
      field.SetMatchValueText({});
      return;
    }
  }
  field.SetType(FieldKind::NotWhtSpace);
  field.SetMatchValueText({});
}

/// Matches the cursor's next run of one class into the field; the text of a word, else empty.
std::string TakeSample(CTNTemplRecInField& field, CTNParserCharBuffIter& text) {
  std::string value;
  for (const FieldKind kind : {FieldKind::NotWhtSpace, FieldKind::WhtSpace, FieldKind::Newline}) {
    field.SetType(kind);
    if (field.Match(text, nullptr, value, nullptr, KeepValues::No)) break;
  }
  return field.GetType() == FieldKind::NotWhtSpace ? value : std::string();
}

}  // namespace

bool CTNTemplateRecord::CreateFieldsFromText(CTNParserCharBuffIter& text) {
  while (text.GetPosition() < text.GetEnd()) {
    const std::uint32_t before = text.GetPosition();
    auto field = std::make_unique<CTNTemplRecInField>(this);
    std::string word = TakeSample(*field, text);
    if (!word.empty()) Classify(*field, word);
    // A template is stored as UTF-8, and the sample may become a match value one day.
    if (!IsUtf8(word)) word = Windows1252ToUtf8(word);
    field->SetCurrentValue(word);
    if (InsertField(std::move(field)) == nullptr) return false;
    if (text.GetPosition() == before) return false;
  }
  return true;
}

}  // namespace bomparser
