#include "ui/views/CTNTemplRecFieldListCtrl.h"

#include "tnbase/NumberText.h"
#include "ui/controls/CTNInPlaceComboBoxes.h"
#include "ui/controls/CTNInPlaceEdit.h"
#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/DisplayText.h"

#include <QMenu>
#include <array>
#include <utility>

namespace bomparser {
namespace {

using Field = CTNTemplRecInField;

FieldColumn FieldColumnOf(const QModelIndex& cell) {
  return static_cast<FieldColumn>(cell.column());
}

bool Flag(const EditedValue& value) { return value.data.toInt() != 0; }

FieldKind KindIn(const EditedValue& value) { return static_cast<FieldKind>(value.data.toInt()); }

// Entries of sub-records are an identifier and what describes the record.
QString MatchValueFor(const Field& field, const EditedValue& value) {
  return Field::IsSubRecordType(field.GetType()) ? value.text.section(u' ', 0, 0) : value.text;
}

bool HasMatchValue(const Field& field, const EditedValue& value) {
  return ToDisplayText(field.GetMatchValueText()) == MatchValueFor(field, value);
}

void SetMatchValue(Field& field, const EditedValue& value) {
  // Bytes that are no UTF-8 stay what they are as long as their text is not changed.
  const bool unchanged = HasMatchValue(field, value);
  // The same text may name another sub-record now, or one at last.
  if (unchanged && !Field::IsSubRecordType(field.GetType())) return;
  field.SetMatchValueText(ToBytes(MatchValueFor(field, value)));
}

int LengthIn(const EditedValue& value) { return Atoi(ToBytes(value.text)); }

// A length of 0 cannot be entered as "0": that is what an accidental key leaves. Texts that only
// count as 0 are taken.
bool IsIgnoredLength(const EditedValue& value) { return value.text == QStringLiteral("0"); }

bool HasLength(const Field& field, const EditedValue& value) {
  return IsIgnoredLength(value) || field.GetMatchLength() == LengthIn(value);
}

/// How a column's edit is applied to a field.
struct Edit {
  bool (*has)(const Field& field, const EditedValue& value);
  void (*set)(Field& field, const EditedValue& value);
};

constexpr Edit kNoEdit = {nullptr, nullptr};

/// By column.
constexpr std::array<Edit, 8> kEdits = {{
    kNoEdit,
    {[](const Field& field, const EditedValue& value) { return field.GetType() == KindIn(value); },
     [](Field& field, const EditedValue& value) { field.SetType(KindIn(value)); }},
    {[](const Field& field, const EditedValue& value) { return field.IsRequired() == Flag(value); },
     [](Field& field, const EditedValue& value) { field.SetRequired(Flag(value)); }},
    kNoEdit,
    {HasMatchValue, SetMatchValue},
    {[](const Field& field, const EditedValue& value) {
       return field.IsCaseSensitive() == Flag(value);
     },
     [](Field& field, const EditedValue& value) { field.SetCaseSensitive(Flag(value)); }},
    {[](const Field& field, const EditedValue& value) {
       return field.IsRepeatable() == Flag(value);
     },
     [](Field& field, const EditedValue& value) { field.SetRepeatable(Flag(value)); }},
    {HasLength,
     [](Field& field, const EditedValue& value) { field.SetMatchLength(LengthIn(value)); }},
}};

}  // namespace

CTNTemplRecFieldListCtrl::CTNTemplRecFieldListCtrl(CTNFileParserEngine& engine, QString caption,
                                                   QWidget* parent)
    : CTNTemplateListCtrl(
          engine, std::move(caption),
          {CTNTemplRecFieldListNode::GetTitles(), static_cast<int>(FieldColumn::Type),
           Msg::InputFieldListKey, Ctrl::InputFields, Msg::InputFieldListLabel},
          parent) {}

void CTNTemplRecFieldListCtrl::ShowFields(CTNTemplateRecord* record) {
  m_record = record;
  CTNTemplateListModel::Nodes nodes;
  const std::size_t count = record != nullptr ? record->GetInputFields().size() : 0;
  nodes.reserve(count);
  for (std::size_t position = 0; position < count; ++position)
    nodes.push_back(std::make_shared<CTNTemplRecFieldListNode>(Engine(), *record, position));
  ShowNodes(std::move(nodes));
}

std::vector<CTNTemplRecInField*> CTNTemplRecFieldListCtrl::GetSelectedFields() const {
  std::vector<CTNTemplRecInField*> fields;
  for (const auto& node : SelectedNodes<CTNTemplRecFieldListNode>()) {
    if (Field* field = node->GetField()) fields.push_back(field);
  }
  return fields;
}

// Editing.

bool CTNTemplRecFieldListCtrl::LacksSubRecords(const QModelIndex& cell) const {
  if (FieldColumnOf(cell) != FieldColumn::MatchValue || !HasEditor(cell)) return false;
  const Field& field = *NodeAt<CTNTemplRecFieldListNode>(cell.row())->GetField();
  const CTNParserTemplate* const document = field.GetTemplate();
  return Field::IsSubRecordType(field.GetType()) &&
         (document == nullptr || document->GetAuxiliaryRecords().empty());
}

bool CTNTemplRecFieldListCtrl::BeginEdit(const QModelIndex& cell) {
  if (!LacksSubRecords(cell)) return CTNTemplateListCtrl::BeginEdit(cell);
  UserDialogs().Ask(this, {GetCaption(), MessageText(Msg::NoAuxiliaryRecords), BoxIcon::Warning});
  return false;
}

QWidget* CTNTemplRecFieldListCtrl::MakeEditor(const QModelIndex& cell, QWidget* parent) {
  const Field& field = *NodeAt<CTNTemplRecFieldListNode>(cell.row())->GetField();
  switch (FieldColumnOf(cell)) {
    case FieldColumn::Type:
      return new CTNInPlaceFieldTypeComboBox(parent, cell, field.GetType());
    case FieldColumn::Required:
      return new CTNInPlaceTrueFalseComboBox(parent, cell, field.IsRequired());
    case FieldColumn::MatchValue:
      return MakeMatchValueEditor(field, cell, parent);
    case FieldColumn::MatchCase:
      return new CTNInPlaceTrueFalseComboBox(parent, cell, field.IsCaseSensitive());
    case FieldColumn::Repeatable:
      return new CTNInPlaceTrueFalseComboBox(parent, cell, field.IsRepeatable());
    case FieldColumn::MatchLength:
      return new CTNInPlaceEdit(parent, cell, cell.data().toString());
    default:
      return nullptr;
  }
}

QWidget* CTNTemplRecFieldListCtrl::MakeMatchValueEditor(const CTNTemplRecInField& field,
                                                        const QModelIndex& cell,
                                                        QWidget* parent) const {
  if (!Field::IsSubRecordType(field.GetType())) {
    return new CTNInPlaceEdit(parent, cell, ToDisplayText(field.GetMatchValueText()));
  }
  const CTNParserTemplate* const document = field.GetTemplate();
  if (document == nullptr) return nullptr;
  return new CTNInPlaceSubRecMatchValueComboBox(parent, cell, *document, field.GetSubRecord());
}

bool CTNTemplRecFieldListCtrl::OnEndEdit(const QModelIndex& cell, const EditedValue& value) {
  const Edit& edit = kEdits.at(static_cast<std::size_t>(cell.column()));
  bool changed = false;
  for (const auto& node : NodesToEdit<CTNTemplRecFieldListNode>(cell)) {
    Field& field = *node->GetField();
    changed = changed || !edit.has(field, value);
    if (changed) edit.set(field, value);
  }
  const QPointer<CTNTemplRecFieldListCtrl> alive(this);  // Whoever is told may close the window.
  if (changed) TellEdited(kInputFieldsModified);
  if (!alive.isNull()) emit RepaintWanted();
  return true;
}

void CTNTemplRecFieldListCtrl::OnLeftWithoutValue() { emit RepaintWanted(); }

// Commands.

void CTNTemplRecFieldListCtrl::AdaptMenu(QMenu& menu) {
  RemoveItem(menu, Cmd::CreateRequiredOutputSet);
}

void CTNTemplRecFieldListCtrl::AskToMoveBefore(const CTNTemplateListNode* before) {
  const auto* const node = static_cast<const CTNTemplRecFieldListNode*>(before);
  emit MoveRequested(node != nullptr ? node->GetField() : nullptr);
}

void CTNTemplRecFieldListCtrl::TakeOutputElements() {
  if (GatherSelection(GatherOrder::AsListed)) emit SelectionHandedOn();
}

}  // namespace bomparser
