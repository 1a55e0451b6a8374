#include "ui/dialogs/CTNFileParserDlg.h"

#include "input/CTNStringCharBuffIter.h"
#include "input/MessageTexts.h"
#include "ui/controls/DisplayText.h"
#include "ui/controls/WaitCursor.h"
#include "ui/views/CTNInFilePropPage.h"
#include "ui/views/CTNTemplRecFieldListCtrl.h"
#include "ui/views/CTNTemplRecOutFieldListCtrl.h"

#include <algorithm>
#include <cstddef>

namespace bomparser {
namespace {

/// The first selected element, which new ones are put before.
template <class Element>
const Element* FirstOf(const std::vector<Element*>& selected) {
  return selected.empty() ? nullptr : selected.front();
}

std::vector<const CTNTemplRecOutField*> ElementsOf(const CTNTemplateRecord& record) {
  std::vector<const CTNTemplRecOutField*> elements;
  elements.reserve(record.GetOutputFields().size());
  for (const auto& element : record.GetOutputFields())
    elements.push_back(element.get());
  return elements;
}

template <class Element>
std::vector<const Element*> AsConst(const std::vector<Element*>& selected) {
  return {selected.begin(), selected.end()};
}

/// An edit of everything that is selected: with much of it in a large template it takes a while.
template <class Edit>
bool EditAll(Edit edit) {
  const WaitCursor wait;
  return edit();
}

int FirstRow(const CTNTemplateListCtrl& list) {
  const std::vector<int> rows = list.GetSelectedRows();
  return rows.empty() ? 0 : rows.front();
}

}  // namespace

// An edit goes like this: the template changes, which renames the identifiers in all expressions;
// each record that changed is validated, and then the template; the engine is told once, and
// applies the template again if the settings say so; everything is shown.

void CTNFileParserDlg::FinishEdit(std::uint32_t editKinds) {
  {
    const WaitCursor wait;
    m_engine->GetTemplate()->Validate();
    m_engine->OnTemplateChanged(ChangeKind::Modified, editKinds);
  }
  ShowEverything();
}

// Records.

void CTNFileParserDlg::DoRecordCommand(Cmd command) {
  switch (command) {
    case Cmd::AppendNew:
      AddNewRecord(nullptr);
      break;
    case Cmd::InsertNewAbove:
      AddNewRecord(FirstOf(RecordList(VisiblePage()).GetSelectedRecords()));
      break;
    case Cmd::DeleteSelected:
      DeleteRecords();
      break;
    case Cmd::CopyToThis:
      CopyRecords();
      break;
    default:
      break;
  }
}

void CTNFileParserDlg::AddNewRecord(const CTNTemplateRecord* before) {
  const RecordKind kind =
      VisiblePage() == RecordPage::Entity ? RecordKind::Undefined : RecordKind::UndefinedAuxiliary;
  CTNTemplateRecord* const record =
      m_engine->GetTemplate()->AddRecord(kind, GetMessageText(Msg::NewRecordDescription), before);
  const bool made = record != nullptr &&
                    record->AddInputField(FieldKind::Undefined, true) != nullptr &&
                    record->AddInputField(FieldKind::Newline, true) != nullptr;
  FinishAdding(record, made);
}

void CTNFileParserDlg::FinishAdding(CTNTemplateRecord* record, bool made) {
  if (!made) {
    if (record != nullptr) m_engine->GetTemplate()->DeleteRecord(record);
    ShowFailure(MessageText(Msg::ErrorAddingRecord));
    return;
  }
  record->Validate();
  FinishEdit(kRecordsAdded);
  if (!RecordList(VisiblePage()).SelectElementAlone(record)) {
    ShowFailure(MessageText(Msg::ErrorAddingRecord));
  }
}

void CTNFileParserDlg::DeleteRecords() {
  CTNTemplRecordListCtrl& list = RecordList(VisiblePage());
  const int row = FirstRow(list);
  const auto records = AsConst(list.GetSelectedRecords());
  if (!EditAll([&] { return m_engine->GetTemplate()->DeleteRecords(records); })) return;
  FinishEdit(kRecordsDeleted);
  SelectAfterDeleting(list, row);
}

void CTNFileParserDlg::SelectAfterDeleting(CTNTemplateListCtrl& list, int row) {
  const int last = list.model()->rowCount() - 1;
  if (last >= 0) list.SelectRowAlone(std::min(row, last));
}

template <class Element>
void CTNFileParserDlg::SelectElements(CTNTemplateListCtrl& list,
                                      const std::vector<Element*>& elements) {
  if (elements.empty()) return;
  // The first one alone, so that it is the current one and in sight, then the others with it.
  list.SelectElementAlone(elements.front());
  std::vector<int> rows;
  rows.reserve(elements.size());
  for (const Element* element : elements)
    rows.push_back(list.FindRow(element));
  list.SetSelectedRows(rows);
}

void CTNFileParserDlg::CopyRecords() {
  CTNTemplRecordListCtrl& list = RecordList(VisiblePage());
  std::vector<CTNTemplateRecord*> copies;
  for (const CTNTemplateRecord* record : list.GetSelectedRecords()) {
    CTNTemplateRecord* const copy = m_engine->GetTemplate()->AddRecordCopy(*record);
    if (copy == nullptr) {
      ShowFailure(MessageText(Msg::ErrorAddingRecord));
      break;
    }
    copy->Validate();
    copies.push_back(copy);
  }
  if (copies.empty()) return;
  FinishEdit(kRecordsAdded);
  SelectElements(list, copies);
}

void CTNFileParserDlg::MoveRecords(RecordPage page, const CTNTemplateRecord* before) {
  const auto records = AsConst(RecordList(page).GetSelectedRecords());
  if (!EditAll([&] { return m_engine->GetTemplate()->MoveRecords(records, before); })) return;
  FinishEdit(kRecordsModified);
}

// Input fields and output elements.

/// The one selected record of the visible page; otherwise says what to do and answers null.
CTNTemplateRecord* CTNFileParserDlg::OneSelectedRecord(Msg otherwise) {
  const auto records = RecordList(VisiblePage()).GetSelectedRecords();
  if (records.size() == 1) return records.front();
  ShowFailure(MessageText(otherwise));
  return nullptr;
}

std::vector<CTNTemplateRecord*> CTNFileParserDlg::AllOtherRecords() const {
  std::vector<CTNTemplateRecord*> records;
  const CTNParserTemplate& document = *m_engine->GetTemplate();
  for (const auto* list : {&document.GetEntityRecords(), &document.GetAuxiliaryRecords()}) {
    for (const auto& record : *list) {
      if (record.get() != m_fields->GetRecord()) records.push_back(record.get());
    }
  }
  return records;
}

template <class Field>
std::vector<Field*> CTNFileParserDlg::CopyFields(const std::vector<Field*>& fields,
                                                 const std::vector<CTNTemplateRecord*>& targets,
                                                 EditKind editKind) {
  std::vector<Field*> copies;
  for (CTNTemplateRecord* target : targets) {
    const std::size_t before = copies.size();
    for (const Field* field : fields) {
      if (Field* const copy = target->AppendCopyOfField(*field)) copies.push_back(copy);
    }
    if (copies.size() > before) target->Validate();
  }
  if (!copies.empty()) FinishEdit(editKind);
  return copies;
}

void CTNFileParserDlg::DoFieldCommand(Cmd command) {
  const std::vector<CTNTemplRecInField*> selected = m_fields->GetSelectedFields();
  switch (command) {
    case Cmd::AppendNew:
      AddNewField(nullptr);
      break;
    case Cmd::InsertNewAbove:
      AddNewField(FirstOf(selected));
      break;
    case Cmd::DeleteSelected:
      DeleteFields();
      break;
    case Cmd::CopyToThis:
      SelectElements(*m_fields, CopyFields(selected, {m_fields->GetRecord()}, kInputFieldsAdded));
      break;
    case Cmd::CopyToAllOthers:
      CopyFields(selected, AllOtherRecords(), kInputFieldsAdded);
      break;
    default:
      break;
  }
}

void CTNFileParserDlg::AddNewField(const CTNTemplRecInField* before) {
  CTNTemplateRecord* const record = OneSelectedRecord(Msg::SelectOneRecordForField);
  if (record == nullptr) return;
  CTNTemplRecInField* const field = record->AddInputField(FieldKind::Undefined, true, before);
  if (field == nullptr) {
    ShowFailure(MessageText(Msg::XmlOutOfMemory));
    return;
  }
  record->Validate();
  FinishEdit(kInputFieldsAdded);
  m_fields->SelectElementAlone(field);
}

void CTNFileParserDlg::DeleteFields() {
  CTNTemplateRecord* const record = m_fields->GetRecord();
  const auto fields = AsConst(m_fields->GetSelectedFields());
  if (record == nullptr) return;
  const int row = FirstRow(*m_fields);
  const bool all = EditAll([&] { return record->RemoveFields(fields); });
  if (!all && !DeleteSingly(*record, fields)) return;
  record->Validate();
  FinishEdit(kInputFieldsDeleted);
  SelectAfterDeleting(*m_fields, row);
}

/// Deletes the fields that can be deleted, from the last to the first, and names the others. True
/// when any are gone.
bool CTNFileParserDlg::DeleteSingly(CTNTemplateRecord& record,
                                    const std::vector<const CTNTemplRecInField*>& fields) {
  bool deleted = false;
  for (std::size_t place = fields.size(); place > 0; --place) {
    if (record.RemoveField(fields[place - 1]) != nullptr) {
      deleted = true;
    } else {
      ShowFailure(ToDisplayText(FormatMessageText(Msg::ErrorDeletingField, place)));
    }
  }
  return deleted;
}

void CTNFileParserDlg::MoveFields(const CTNTemplRecInField* before) {
  CTNTemplateRecord* const record = m_fields->GetRecord();
  const auto fields = AsConst(m_fields->GetSelectedFields());
  if (record == nullptr || !EditAll([&] { return record->MoveFields(fields, before); })) return;
  record->Validate();
  FinishEdit(kInputFieldsModified);
}

void CTNFileParserDlg::DoElementCommand(Cmd command) {
  const std::vector<CTNTemplRecOutField*> selected = m_elements->GetSelectedElements();
  switch (command) {
    case Cmd::AppendNew:
      AddNewElement(nullptr);
      break;
    case Cmd::InsertNewAbove:
      AddNewElement(FirstOf(selected));
      break;
    case Cmd::DeleteSelected:
      DeleteElements();
      break;
    case Cmd::CopyToThis:
      SelectElements(*m_elements,
                     CopyFields(selected, {m_elements->GetRecord()}, kOutputElementsAdded));
      break;
    case Cmd::CopyToAllOthers:
      CopyFields(selected, AllOtherRecords(), kOutputElementsAdded);
      break;
    default:
      break;
  }
}

void CTNFileParserDlg::AddNewElement(const CTNTemplRecOutField* before) {
  CTNTemplateRecord* const record = OneSelectedRecord(Msg::SelectOneRecordForField);
  if (record == nullptr) return;
  CTNTemplRecOutField* const element =
      record->InsertField(std::make_unique<CTNTemplRecOutField>(record), before);
  if (element == nullptr) {
    ShowFailure(MessageText(Msg::XmlOutOfMemory));
    return;
  }
  record->Validate();
  FinishEdit(kOutputElementsAdded);
  m_elements->SelectElementAlone(element);
}

void CTNFileParserDlg::DeleteElements() {
  CTNTemplateRecord* const record = m_elements->GetRecord();
  if (record == nullptr) return;
  const std::vector<const CTNTemplRecOutField*> before = ElementsOf(*record);
  if (m_elements->DeleteSelected() == 0) return;
  // The user may have kept some of those that were selected.
  const std::vector<const CTNTemplRecOutField*> left = ElementsOf(*record);
  const auto firstGone = std::mismatch(left.begin(), left.end(), before.begin()).first;
  const int row = static_cast<int>(firstGone - left.begin());
  record->Validate();
  FinishEdit(kOutputElementsDeleted);
  SelectAfterDeleting(*m_elements, row);
}

void CTNFileParserDlg::MoveElements(const CTNTemplRecOutField* before) {
  CTNTemplateRecord* const record = m_elements->GetRecord();
  const auto elements = AsConst(m_elements->GetSelectedElements());
  if (record == nullptr || !EditAll([&] { return record->MoveFields(elements, before); })) return;
  record->Validate();
  FinishEdit(kOutputElementsModified);
}

// Selected lines of the input file.

void CTNFileParserDlg::CreateRecordFromSelected() {
  const RecordKind kind =
      VisiblePage() == RecordPage::Entity ? RecordKind::FreshEntity : RecordKind::FreshAuxiliary;
  const std::string text = m_inputPage->GetList().GetGatheredText(Tabs::Expanded);
  CTNTemplateRecord* const record =
      m_engine->GetTemplate()->AddRecord(kind, GetMessageText(Msg::AutoCreatedDescription));
  CTNStringCharBuffIter cursor(text);
  FinishAdding(record, record != nullptr && record->CreateFieldsFromText(cursor));
}

void CTNFileParserDlg::TestSelected() {
  CTNTemplateRecord* const record = OneSelectedRecord(Msg::SelectOneRecordToApply);
  if (record == nullptr) return;
  // The plain characters: what the view shows in their place is not what a record meets.
  const std::string text = m_inputPage->GetList().GetGatheredText(Tabs::AsInFile);
  CTNStringCharBuffIter cursor(text);
  std::string error;
  const bool matched = record->Match(cursor, nullptr, error, KeepValues::Yes);
  // The fields show how far the attempt has come.
  m_fields->ShowFields(m_fields->GetRecord());
  m_elements->ShowElements(m_elements->GetRecord());
  if (matched) {
    Ask(BoxIcon::Information, MessageText(Msg::SelectionTestMatched), BoxButtons::Ok);
  } else {
    Ask(BoxIcon::Warning, MessageText(Msg::SelectionTestFailed) + ToDisplayText(error),
        BoxButtons::Ok);
  }
}

}  // namespace bomparser
