// How the text of a value expression becomes its items.

#include "input/CTNStringCharBuffIter.h"
#include "input/MessageTexts.h"
#include "template/CTNParserTemplate.h"
#include "template/CTNTemplRecOutField.h"
#include "template/CTNTemplateRecord.h"
#include "template/Identifiers.h"
#include "template/ValueTokens.h"

#include <algorithm>
#include <new>
#include <utility>

namespace bomparser {

namespace {

constexpr std::string_view kOperators = "*/+-()><!";

/// True when a field of this type takes the whole word.
bool ReadsAs(FieldKind kind, const std::string& word) {
  CTNTemplRecInField field(nullptr);
  field.SetType(kind);
  CTNStringCharBuffIter cursor(word);
  std::string value;
  return field.Match(cursor, nullptr, value, nullptr, KeepValues::No) && value == word;
}

class ExpressionParser {
 public:
  ExpressionParser(const CTNTemplRecOutField& owner, std::vector<CTNOutFieldValueElement>& items)
      : m_owner(owner),
        m_record(*owner.GetParentRecord()),
        m_document(owner.GetTemplate()),
        m_items(items),
        m_tokens(CutIntoTokens(owner.GetExpression())) {}

  /// The error text; empty when all tokens became items.
  std::string Parse() {
    if (m_tokens.empty()) return GetMessageText(Msg::NoValueExpression);
    while (m_at < m_tokens.size()) {
      std::string error = ParseToken(m_tokens[m_at++]);
      if (!error.empty()) return error;
    }
    return {};
  }

 private:
  CTNOutFieldValueElement Make(ValueItemKind kind, std::string text) const {
    CTNOutFieldValueElement item(m_owner);
    item.kind = kind;
    item.text = std::move(text);
    return item;
  }
  void Add(CTNOutFieldValueElement item) { m_items.push_back(std::move(item)); }

  std::string ParseToken(const std::string& token) {
    if (token.front() == '"') {
      CTNOutFieldValueElement item =
          Make(ValueItemKind::StringLiteral, token.substr(1, token.size() - 2));
      item.quoted = true;
      Add(std::move(item));
    } else if (kOperators.find(token.front()) != std::string_view::npos) {
      Add(Make(ValueItemKind::Operator, token));
    } else if (token.front() == ' ') {
      Add(Make(ValueItemKind::Blank, token));
    } else {
      return ParseOperand(token);
    }
    return {};
  }

  std::string ParseOperand(const std::string& token) {
    if (CTNTemplateRecord::IsAttributeName(token)) {
      Add(Attribute(m_record, token));
      return {};
    }
    CTNTemplateRecord::FoundField found;
    if (m_record.FindFieldByID(token, found)) {
      CTNOutFieldValueElement item = Make(ValueItemKind::InputField, token);
      std::string error = LinkOwnField(found, item);
      if (error.empty()) Add(std::move(item));
      return error;
    }
    if (CTNParserTemplate::IsTemplateAttributeName(token)) {
      Add(Make(ValueItemKind::TemplateAttribute, token));
      return {};
    }
    const CTNTemplateRecord* record =
        m_document != nullptr ? m_document->FindRecordByID(token) : nullptr;
    if (record != nullptr) return ParseRecord(*record, token);
    Add(Make(LiteralKind(token), token));
    return {};
  }

  static ValueItemKind LiteralKind(const std::string& token) {
    if (ReadsAs(FieldKind::WholeNum, token)) return ValueItemKind::WholeNumber;
    if (ReadsAs(FieldKind::DecimalNum, token)) return ValueItemKind::DecimalNumber;
    return ValueItemKind::StringLiteral;
  }

  CTNOutFieldValueElement Attribute(const CTNTemplateRecord& record,
                                    const std::string& token) const {
    CTNOutFieldValueElement item = Make(ValueItemKind::RecordAttribute, token);
    item.record = &record;
    return item;
  }

  /// Links the item to a field of the own record; the error text when it cannot be used.
  std::string LinkOwnField(const CTNTemplateRecord::FoundField& found,
                           CTNOutFieldValueElement& item) const {
    return Link(
        m_record, found, item,
        [](Msg inputInvalid, const std::string& id) { return FormatMessageText(inputInvalid, id); },
        Msg::InputFieldInvalid, Msg::OutputSymbolInvalid);
  }

  template <class Format>
  std::string Link(const CTNTemplateRecord& record, const CTNTemplateRecord::FoundField& found,
                   CTNOutFieldValueElement& item, Format format, Msg inputInvalid,
                   Msg outputInvalid) const {
    std::string id;
    if (found.input != nullptr) {
      item.kind = ValueItemKind::InputField;
      item.inputField = found.input;
      if (found.input->IsValid() != 0) return {};
      record.GetFieldID(found.input, id);
      return format(inputInvalid, id);
    }
    if (found.output == &m_owner) return GetMessageText(Msg::ElementUsesItself);
    item.kind = ValueItemKind::OutputSymbol;
    item.outputElement = found.output;
    if (found.output->IsValid() != 0) return {};
    record.GetFieldID(found.output, id);
    return format(outputInvalid, id);
  }

  std::string ParseRecord(const CTNTemplateRecord& record, const std::string& token) {
    CTNOutFieldValueElement item = Make(ValueItemKind::Record, token);
    item.record = &record;
    std::string error;
    if (m_at < m_tokens.size() && m_tokens[m_at] == ".") {
      ++m_at;
      error = ParseDotted(record, item);
    } else {
      error = CheckBareRecord(record);
    }
    if (error.empty()) Add(std::move(item));
    return error;
  }

  std::string CheckBareRecord(const CTNTemplateRecord& record) const {
    if (!record.IsSingleMatch()) return GetMessageText(Msg::OnlySingleMatchRecord);
    if (&record == &m_record) return GetMessageText(Msg::ElementUsesParentRecord);
    if (record.IsValid() == 0) return FormatMessageText(Msg::RecordInvalid, record.GetRecordId());
    return {};
  }

  /// Reads the token behind the dot and chains it to the record's item.
  std::string ParseDotted(const CTNTemplateRecord& record, CTNOutFieldValueElement& item) {
    const std::string token = m_at < m_tokens.size() ? m_tokens[m_at++] : std::string();
    auto target = std::make_unique<CTNOutFieldValueElement>(Make(ValueItemKind::InputField, token));
    std::string error;
    CTNTemplateRecord::FoundField found;
    if (CTNTemplateRecord::IsAttributeName(token)) {
      *target = Attribute(record, token);
    } else if (!record.FindFieldByID(token, found)) {
      return GetMessageText(Msg::DotOperandInvalid);
    } else if (!record.IsSingleMatch() && &record != &m_record) {
      return GetMessageText(Msg::DotRecordNotUsable);
    } else {
      error = Link(
          record, found, *target,
          [&record](Msg invalid, const std::string& id) {
            return FormatNumberedMessage(invalid, {id, record.GetRecordId()});
          },
          Msg::InputFieldOfRecordInvalid, Msg::OutputSymbolOfRecordInvalid);
    }
    item.next = std::make_unique<CTNOutFieldValueElement>(Make(ValueItemKind::Dot, "."));
    item.next->next = std::move(target);
    return error;
  }

  const CTNTemplRecOutField& m_owner;
  const CTNTemplateRecord& m_record;
  const CTNParserTemplate* m_document;
  std::vector<CTNOutFieldValueElement>& m_items;
  std::vector<std::string> m_tokens;
  std::size_t m_at = 0;
};

/// Whether a word is an identifier of nothing that there is now.
bool HasWordsThatNameNothing(const std::vector<CTNOutFieldValueElement>& items) {
  return std::any_of(items.begin(), items.end(), [](const CTNOutFieldValueElement& item) {
    return item.kind == ValueItemKind::StringLiteral && !item.quoted && IsIdentifier(item.text);
  });
}

/// Without memory for these words either there are none. Nothing may be thrown: the edits that have
/// expressions parsed again could not be undone any more.
void TellNoMemory(std::string& error) {
  try {
    error = GetMessageText(Msg::NoMemoryForValueText);
  } catch (const std::bad_alloc&) {
    error.clear();
  }
}

}  // namespace

bool CTNTemplRecOutField::ParseExpression(std::string& error) {
  error.clear();
  m_items.clear();
  m_mayMeanMore = !m_expression.empty();
  if (GetParentRecord() == nullptr) return false;
  try {
    error = ExpressionParser(*this, m_items).Parse();
    m_mayMeanMore = !m_expression.empty() && (!error.empty() || HasWordsThatNameNothing(m_items));
    if (m_mayMeanMore && GetTemplate() != nullptr)
      GetTemplate()->NoteMayMeanMore(*GetParentRecord());
    return error.empty();
  } catch (const std::bad_alloc&) {
    TellNoMemory(error);
    return false;
  }
}

}  // namespace bomparser
