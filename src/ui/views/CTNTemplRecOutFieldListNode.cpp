#include "ui/views/CTNTemplRecOutFieldListNode.h"

#include "input/MessageTexts.h"
#include "template/Identifiers.h"
#include "ui/controls/DisplayText.h"
#include "ui/views/ListedElement.h"

namespace bomparser {
namespace {

const QColor kRequired(200, 255, 200);
const QColor kNotAllowed(255, 202, 228);

}  // namespace

CTNTemplRecOutFieldListNode::CTNTemplRecOutFieldListNode(const CTNFileParserEngine& engine,
                                                         CTNTemplateRecord& record,
                                                         std::size_t position)
    : CTNTemplateListNode(engine),
      m_element(record.GetOutputFields()[position].get()),
      m_position(position) {
  m_record = &record;
}

std::vector<Msg> CTNTemplRecOutFieldListNode::GetTitles() {
  return {Msg::ColumnId, Msg::ColumnElementTag, Msg::ColumnValueExpression,
          Msg::ColumnCurrentValue};
}

CTNTemplRecOutField* CTNTemplRecOutFieldListNode::GetOutField() const {
  return m_record != nullptr ? FindListed(m_record->GetOutputFields(), m_element, m_position)
                             : nullptr;
}

QString CTNTemplRecOutFieldListNode::GetText(int column) const {
  const CTNTemplRecOutField* const element = GetOutField();
  if (element == nullptr) return {};
  switch (static_cast<ElementColumn>(column)) {
    case ElementColumn::Id:
      return ToDisplayText(MakeIdentifier(Msg::OutputElementIdPrefix, m_position));
    case ElementColumn::Tag:
      return ToDisplayText(element->GetTagText());
    case ElementColumn::Expression:
      return ToDisplayText(element->GetExpressionText());
    case ElementColumn::CurrentValue:
      return HasCurrentResults(Engine()) ? ToDisplayText(element->GetCurrentValue()) : QString();
  }
  return {};
}

CellColours CTNTemplRecOutFieldListNode::GetColours(int column) const {
  const CTNTemplRecOutField* const element = GetOutField();
  if (element == nullptr) return {};
  const bool grey = static_cast<ElementColumn>(column) == ElementColumn::CurrentValue;
  const QColor text = grey ? kGreyText : QColor(Qt::black);
  if (m_record->IsRequiredTag(element->GetTag())) return {kRequired, text};
  if (!CTNTemplateRecord::IsAllowedTag(element->GetTag())) return {kNotAllowed, text};
  return grey ? GreyOnOrdinary() : CellColours();
}

bool CTNTemplRecOutFieldListNode::IsEditable(int column) const {
  const auto which = static_cast<ElementColumn>(column);
  return GetOutField() != nullptr &&
         (which == ElementColumn::Tag || which == ElementColumn::Expression);
}

QString CTNTemplRecOutFieldListNode::GetRemark() const {
  const CTNTemplRecOutField* const element = GetOutField();
  if (element == nullptr) return {};
  const auto remark = [this, element](Msg text) {
    return ToDisplayText(FormatMessageText(text, element->GetTagText(), m_record->GetTypeName()));
  };
  if (m_record->IsRequiredTag(element->GetTag())) return remark(Msg::TagIsRequired);
  if (!CTNTemplateRecord::IsAllowedTag(element->GetTag())) return remark(Msg::TagIsNotAllowed);
  return {};
}

}  // namespace bomparser
