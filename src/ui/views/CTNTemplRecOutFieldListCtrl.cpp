#include "ui/views/CTNTemplRecOutFieldListCtrl.h"

#include "tnbase/CharClass.h"
#include "ui/controls/CTNInPlaceComboBoxes.h"
#include "ui/controls/CTNInPlaceEdit.h"
#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/DisplayText.h"
#include "ui/views/CTNTemplRecFieldListCtrl.h"

#include <QMenu>
#include <algorithm>
#include <utility>

namespace bomparser {
namespace {

ElementColumn ElementColumnOf(const QModelIndex& cell) {
  return static_cast<ElementColumn>(cell.column());
}

OutputTag TagIn(const EditedValue& value) { return static_cast<OutputTag>(value.data.toInt()); }

bool HasTag(const CTNTemplRecOutField& element, const EditedValue& value) {
  return element.GetTag() == TagIn(value);
}

void SetTag(CTNTemplRecOutField& element, const EditedValue& value) {
  element.SetTag(TagIn(value));
}

bool HasExpression(const CTNTemplRecOutField& element, const EditedValue& value) {
  return EqualsNoCase(ToBytes(ToDisplayText(element.GetExpression())), ToBytes(value.text));
}

void SetExpression(CTNTemplRecOutField& element, const EditedValue& value) {
  // Bytes that are no UTF-8 stay what they are as long as their text is not changed.
  if (ToDisplayText(element.GetExpression()) != value.text) {
    element.SetExpression(ToBytes(value.text));
  }
  element.Validate();
}

bool IsOnlyOneWithItsTag(const CTNTemplateRecord& record, const CTNTemplRecOutField& element) {
  const auto& elements = record.GetOutputFields();
  return std::count_if(elements.begin(), elements.end(), [&element](const auto& entry) {
           return entry->GetTag() == element.GetTag();
         }) == 1;
}

}  // namespace

CTNTemplRecOutFieldListCtrl::CTNTemplRecOutFieldListCtrl(CTNFileParserEngine& engine,
                                                         QString caption, QWidget* parent)
    : CTNTemplateListCtrl(
          engine, std::move(caption),
          {CTNTemplRecOutFieldListNode::GetTitles(), static_cast<int>(ElementColumn::Tag),
           Msg::OutputFieldListKey, Ctrl::OutputElements, Msg::OutputElementListLabel},
          parent) {}

void CTNTemplRecOutFieldListCtrl::ShowElements(CTNTemplateRecord* record) {
  m_record = record;
  CTNTemplateListModel::Nodes nodes;
  const std::size_t count = record != nullptr ? record->GetOutputFields().size() : 0;
  nodes.reserve(count);
  for (std::size_t position = 0; position < count; ++position)
    nodes.push_back(std::make_shared<CTNTemplRecOutFieldListNode>(Engine(), *record, position));
  ShowNodes(std::move(nodes));
}

std::vector<CTNTemplRecOutField*> CTNTemplRecOutFieldListCtrl::GetSelectedElements() const {
  std::vector<CTNTemplRecOutField*> elements;
  for (const auto& node : SelectedNodes<CTNTemplRecOutFieldListNode>()) {
    if (CTNTemplRecOutField* element = node->GetOutField()) elements.push_back(element);
  }
  return elements;
}

// Editing.

QWidget* CTNTemplRecOutFieldListCtrl::MakeEditor(const QModelIndex& cell, QWidget* parent) {
  const auto node = NodeAt<CTNTemplRecOutFieldListNode>(cell.row());
  const CTNTemplRecOutField& element = *node->GetOutField();
  if (ElementColumnOf(cell) == ElementColumn::Tag) {
    return new CTNInPlaceOutFieldKeyComboBox(parent, cell, node->GetRecord()->GetType(),
                                             element.GetTag());
  }
  // As the user wrote it, which the cell need not show.
  return new CTNInPlaceEdit(parent, cell, ToDisplayText(element.GetExpression()));
}

bool CTNTemplRecOutFieldListCtrl::OnEndEdit(const QModelIndex& cell, const EditedValue& value) {
  const bool isTag = ElementColumnOf(cell) == ElementColumn::Tag;
  const auto has = isTag ? HasTag : HasExpression;
  const auto set = isTag ? SetTag : SetExpression;
  bool changed = false;
  for (const auto& node : NodesToEdit<CTNTemplRecOutFieldListNode>(cell)) {
    CTNTemplRecOutField& element = *node->GetOutField();
    changed = changed || !has(element, value);
    if (changed) set(element, value);
  }
  if (!changed) return true;
  const QPointer<CTNTemplRecOutFieldListCtrl> alive(this);  // Whoever is told may close the window.
  TellEdited(kOutputElementsModified);
  if (!alive.isNull()) emit RepaintWanted();
  return true;
}

// Commands.

void CTNTemplRecOutFieldListCtrl::AdaptMenu(QMenu& menu) {
  RemoveItem(menu, Cmd::CreateRequiredOutputSet);
  FindItem(menu, Cmd::ChangeType)->setText(LabelText(Msg::ChangeTag));
}

std::size_t CTNTemplRecOutFieldListCtrl::DeleteSelected() {
  std::size_t gone = 0;
  const auto nodes = SelectedNodes<CTNTemplRecOutFieldListNode>();
  for (std::size_t place = nodes.size(); place > 0; --place) {
    const CTNTemplRecOutFieldListNode& node = *nodes[place - 1];
    if (!MayDelete(node)) continue;
    if (Delete(node)) {
      ++gone;
      continue;
    }
    const QString failure =
        ToDisplayText(FormatMessageText(Msg::ErrorDeletingOutputElement, place));
    UserDialogs().Ask(this, {GetCaption(), failure, BoxIcon::Error});
  }
  return gone;
}

bool CTNTemplRecOutFieldListCtrl::MayDelete(const CTNTemplRecOutFieldListNode& node) {
  const CTNTemplRecOutField* const element = node.GetOutField();
  if (element == nullptr) return true;  // To be told that it cannot be deleted.
  const CTNTemplateRecord& record = *node.GetRecord();
  if (!record.IsRequiredTag(element->GetTag()) || !IsOnlyOneWithItsTag(record, *element)) {
    return true;
  }
  const QString question =
      ToDisplayText(FormatMessageText(Msg::AskDeleteRequiredElement, element->GetTagText()));
  return UserDialogs().Ask(this, {GetCaption(), question, BoxIcon::Question, BoxButtons::YesNo}) ==
         BoxAnswer::Yes;
}

bool CTNTemplRecOutFieldListCtrl::Delete(const CTNTemplRecOutFieldListNode& node) {
  // Once more, because the answer to a question took its time.
  const CTNTemplRecOutField* const element = node.GetOutField();
  return element != nullptr && node.GetRecord()->RemoveField(element) != nullptr;
}

// Moving.

bool CTNTemplRecOutFieldListCtrl::CanDropOn(const QWidget* target) const {
  return CTNTemplateListCtrl::CanDropOn(target) ||
         qobject_cast<const CTNTemplRecFieldListCtrl*>(target) != nullptr;
}

void CTNTemplRecOutFieldListCtrl::OnDrop(QWidget* target, const QPoint& screenPoint) {
  if (auto* const fields = qobject_cast<CTNTemplRecFieldListCtrl*>(target)) {
    fields->TakeOutputElements();
  } else {
    CTNTemplateListCtrl::OnDrop(target, screenPoint);
  }
}

void CTNTemplRecOutFieldListCtrl::AskToMoveBefore(const CTNTemplateListNode* before) {
  const auto* const node = static_cast<const CTNTemplRecOutFieldListNode*>(before);
  emit MoveRequested(node != nullptr ? node->GetOutField() : nullptr);
}

}  // namespace bomparser
