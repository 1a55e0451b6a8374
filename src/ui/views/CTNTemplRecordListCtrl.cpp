#include "ui/views/CTNTemplRecordListCtrl.h"

#include "tnbase/CharClass.h"
#include "ui/controls/CTNInPlaceComboBoxes.h"
#include "ui/controls/CTNInPlaceEdit.h"
#include "ui/controls/DisplayText.h"

#include <QMenu>
#include <algorithm>
#include <utility>

namespace bomparser {
namespace {

RecordColumn RecordColumnOf(const QModelIndex& cell) {
  return static_cast<RecordColumn>(cell.column());
}

}  // namespace

CTNTemplRecordListCtrl::CTNTemplRecordListCtrl(CTNFileParserEngine& engine, RecordPage page,
                                               QString caption, QWidget* parent)
    : CTNTemplateListCtrl(
          engine, std::move(caption),
          page == RecordPage::Entity
              ? Kind{CTNTemplRecordListNode::GetTitles(), static_cast<int>(RecordColumn::Type),
                     Msg::EntityRecordListKey, Ctrl::EntityRecords, Msg::EntityRecords}
              : Kind{CTNTemplRecordListNode::GetTitles(), static_cast<int>(RecordColumn::Type),
                     Msg::OtherRecordListKey, Ctrl::AuxiliaryRecords, Msg::AuxiliaryRecords},
          parent),
      m_page(page) {
  // Rows of the input file that are dropped here become a record.
  setProperty(kAcceptsInputRows, true);
  connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &CTNTemplRecordListCtrl::ReportSelection);
}

void CTNTemplRecordListCtrl::ShowRecords() {
  CTNTemplateListModel::Nodes nodes;
  if (const CTNParserTemplate* const document = Engine().GetTemplate()) {
    const auto& records = m_page == RecordPage::Entity ? document->GetEntityRecords()
                                                       : document->GetAuxiliaryRecords();
    nodes.reserve(records.size());
    for (const auto& record : records)
      nodes.push_back(std::make_shared<CTNTemplRecordListNode>(Engine(), *record));
  }
  ShowNodes(std::move(nodes));
}

std::vector<CTNTemplateRecord*> CTNTemplRecordListCtrl::GetSelectedRecords() const {
  std::vector<CTNTemplateRecord*> records;
  for (const auto& node : SelectedNodes<CTNTemplRecordListNode>()) {
    if (CTNTemplateRecord* record = node->GetRecord()) records.push_back(record);
  }
  return records;
}

CTNTemplateRecord* CTNTemplRecordListCtrl::SelectedLast(const QItemSelection& selected) const {
  const auto current = NodeAt<CTNTemplRecordListNode>(currentIndex().row());
  if (current && selected.contains(currentIndex())) return current->GetRecord();
  // Nothing new, or the keyboard makes it the current row later on: the last one stays as long as
  // it is selected.
  const std::vector<CTNTemplateRecord*> records = GetSelectedRecords();
  const CTNTemplateRecord* const last = m_reported;
  if (std::find(records.begin(), records.end(), last) != records.end()) return m_reported;
  if (current && IsRowSelected(currentIndex().row())) return current->GetRecord();
  return records.empty() ? nullptr : records.front();
}

void CTNTemplRecordListCtrl::ReportSelection(const QItemSelection& selected) {
  if (IsRefilling()) return;
  CTNTemplateRecord* const last = SelectedLast(selected);
  if (last == m_reported) return;
  m_reported = last;
  if (last != nullptr) emit CurrentRecordChanged(last);
}

// Editing.

QWidget* CTNTemplRecordListCtrl::MakeEditor(const QModelIndex& cell, QWidget* parent) {
  const CTNTemplateRecord& record = *NodeAt<CTNTemplRecordListNode>(cell.row())->GetRecord();
  if (RecordColumnOf(cell) == RecordColumn::Type) {
    return new CTNInPlaceRecTypeComboBox(parent, cell, record.GetType());
  }
  const QString description = ToDisplayText(record.GetDescription());
  if (record.GetType() == RecordKind::Aperture) {
    return new CTNInPlaceAperRecDescComboBox(parent, cell, description);
  }
  return new CTNInPlaceEdit(parent, cell, description);
}

bool CTNTemplRecordListCtrl::OnEndEdit(const QModelIndex& cell, const EditedValue& value) {
  const auto set = RecordColumnOf(cell) == RecordColumn::Type
                       ? &CTNTemplRecordListCtrl::SetType
                       : &CTNTemplRecordListCtrl::SetDescription;
  const Nodes nodes = NodesToEdit<CTNTemplRecordListNode>(cell);
  bool changed = false;
  for (const auto& node : nodes)
    changed = set(*node->GetRecord(), value) || changed;
  if (!changed) return true;
  const QPointer<CTNTemplRecordListCtrl> alive(this);  // Whoever is told may close the window.
  TellEdited(kRecordsModified);
  if (!alive.isNull()) emit RepaintWanted();
  if (!alive.isNull()) WantFieldsOfOne(nodes);
  return true;
}

bool CTNTemplRecordListCtrl::SetType(CTNTemplateRecord& record, const EditedValue& value) {
  const auto kind = static_cast<RecordKind>(value.data.toInt());
  if (record.GetType() == kind) return false;
  record.SetType(kind);
  record.CreateRequiredOutputSet();
  record.Validate();
  return true;
}

bool CTNTemplRecordListCtrl::SetDescription(CTNTemplateRecord& record, const EditedValue& value) {
  const std::string shown = ToBytes(ToDisplayText(record.GetDescription()));
  const std::string entered = ToBytes(value.text);
  if (EqualsNoCase(shown, entered)) return false;
  record.SetDescription(entered);
  // The shape decides what else is required.
  if (record.GetType() == RecordKind::Aperture) record.CreateRequiredOutputSet();
  record.Validate();
  return true;
}

void CTNTemplRecordListCtrl::WantFieldsOfOne(const Nodes& nodes) {
  if (nodes.size() != 1) return;
  // Whoever was told of the edit may have done anything meanwhile.
  if (CTNTemplateRecord* record = nodes.front()->GetRecord()) emit ShowFieldsWanted(record);
}

// Commands.

void CTNTemplRecordListCtrl::AdaptMenu(QMenu& menu) {
  RemoveItem(menu, Cmd::CopyToAllOthers);
  FindItem(menu, Cmd::CopyToThis)->setText(LabelText(Msg::ThisTemplate));
}

void CTNTemplRecordListCtrl::OnCommand(Cmd command) {
  if (command == Cmd::CreateRequiredOutputSet) {
    CreateRequiredOutputSets();
  } else {
    CTNTemplateListCtrl::OnCommand(command);
  }
}

void CTNTemplRecordListCtrl::CreateRequiredOutputSets() {
  const Nodes nodes = SelectedNodes<CTNTemplRecordListNode>();
  if (nodes.empty()) return;
  for (const auto& node : nodes) {
    if (CTNTemplateRecord* record = node->GetRecord()) record->CreateRequiredOutputSet();
  }
  const QPointer<CTNTemplRecordListCtrl> alive(this);
  TellEdited(kOutputElementsAdded);
  if (!alive.isNull()) WantFieldsOfOne(nodes);
}

void CTNTemplRecordListCtrl::AskToMoveBefore(const CTNTemplateListNode* before) {
  const auto* const node = static_cast<const CTNTemplRecordListNode*>(before);
  emit MoveRequested(node != nullptr ? node->GetRecord() : nullptr);
}

}  // namespace bomparser
