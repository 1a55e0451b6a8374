#pragma once

#include "entry/CTNFileParserEngine.h"
#include "tests/ui/support/UiTest.h"
#include "ui/views/CTNInFilePropPage.h"
#include "ui/views/CTNInFilePropSheet.h"
#include "ui/views/CTNTemplRecFieldListCtrl.h"
#include "ui/views/CTNTemplRecOutFieldListCtrl.h"
#include "ui/views/CTNTemplRecPropPage.h"
#include "ui/views/CTNTemplRecPropSheet.h"
#include "ui/views/CTNTemplRecordListCtrl.h"
#include "ui/views/CTNTransSummaryPropPage.h"

#include <QSplitter>
#include <QVBoxLayout>
#include <QWidget>
#include <cstdint>

namespace bomparser::test {

/// All views in one window over one engine, wired as simply as they can be: an edit is applied
/// again at once and everything is shown anew. It stands for the dialog in tests of the views.
class DemoHost : public QWidget {
 public:
  explicit DemoHost(CTNFileParserEngine& parserEngine) : engine(parserEngine) {
    auto* lists = new QSplitter(Qt::Vertical);
    for (QWidget* list : {static_cast<QWidget*>(recordSheet), static_cast<QWidget*>(fields),
                          static_cast<QWidget*>(elements)}) {
      lists->addWidget(list);
    }
    auto* sides = new QSplitter(Qt::Horizontal);
    sides->addWidget(lists);
    sides->addWidget(inputSheet);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(sides);
    inputPage->GetList().SetInputFile(engine.GetInputFile());
    for (CTNTemplRecordListCtrl* list : {entityRecords, auxiliaryRecords})
      Wire(*list);
    Wire(static_cast<CTNTemplateListCtrl&>(*fields));
    Wire(static_cast<CTNTemplateListCtrl&>(*elements));
    connect(fields, &CTNTemplRecFieldListCtrl::MoveRequested, this,
            [this](CTNTemplRecInField* before) {
              for (const CTNTemplRecInField* field : fields->GetSelectedFields())
                fields->GetRecord()->MoveField(field, before);
              OnEdited(kInputFieldsModified);
            });
    connect(inputPage, &CTNInFilePropPage::DisplayOptionsChanged, inputPage,
            &CTNInFilePropPage::ApplyDisplayOptions);
    connect(&inputPage->GetList(), &CTNParserInFileListCtrl::MatchedBlockSelected, this,
            &DemoHost::SelectRecordOf);
    connect(&inputPage->GetList(), &CTNParserInFileListCtrl::CreateRecordRequested, this,
            &DemoHost::CreateRecord);
  }

  void ShowAll() {
    entityRecords->ShowRecords();
    auxiliaryRecords->ShowRecords();
    fields->ShowFields(fields->GetRecord());
    elements->ShowElements(elements->GetRecord());
    inputPage->ApplyDisplayOptions();
    if (resultsPage->IsActive()) resultsPage->Refresh();
  }

  CTNFileParserEngine& engine;
  FakeHostApp profile;
  const QString title = QStringLiteral("BOM Parser");
  CTNTemplRecordListCtrl* entityRecords =
      new CTNTemplRecordListCtrl(engine, RecordPage::Entity, title);
  CTNTemplRecordListCtrl* auxiliaryRecords =
      new CTNTemplRecordListCtrl(engine, RecordPage::Auxiliary, title);
  CTNTemplRecPropSheet* recordSheet = new CTNTemplRecPropSheet(entityRecords, auxiliaryRecords);
  CTNTemplRecFieldListCtrl* fields = new CTNTemplRecFieldListCtrl(engine, title);
  CTNTemplRecOutFieldListCtrl* elements = new CTNTemplRecOutFieldListCtrl(engine, title);
  CTNInFilePropPage* inputPage = new CTNInFilePropPage;
  CTNTransSummaryPropPage* resultsPage = new CTNTransSummaryPropPage(&engine);
  CTNInFilePropSheet* inputSheet = new CTNInFilePropSheet(inputPage, resultsPage);

 private:
  void Wire(CTNTemplateListCtrl& list) {
    list.RestoreWidths(profile);
    connect(&list, &CTNTemplateListCtrl::TemplateEdited, this, &DemoHost::OnEdited);
    connect(&list, &CTNTemplateListCtrl::RepaintWanted, this, &DemoHost::ShowAll);
  }
  void Wire(CTNTemplRecordListCtrl& list) {
    Wire(static_cast<CTNTemplateListCtrl&>(list));
    connect(&list, &CTNTemplRecordListCtrl::CurrentRecordChanged, this, &DemoHost::ShowRecord);
    connect(&list, &CTNTemplRecordListCtrl::ShowFieldsWanted, this, &DemoHost::ShowRecord);
    connect(&list, &CTNTemplRecordListCtrl::MoveRequested, this,
            [this, &list](CTNTemplateRecord* before) {
              for (const CTNTemplateRecord* record : list.GetSelectedRecords())
                engine.GetTemplate()->MoveRecord(record, before);
              OnEdited(kRecordsModified);
            });
  }
  void ShowRecord(CTNTemplateRecord* record) {
    fields->ShowFields(record);
    elements->ShowElements(record);
  }
  void OnEdited(std::uint32_t editKinds) {
    engine.GetTemplate()->Validate();
    engine.OnTemplateChanged(ChangeKind::Modified, editKinds);
    ShowAll();
  }
  void SelectRecordOf(const CTNParsedFileBlock& block) {
    const CTNMatchedRecord* matched = nullptr;
    if (!block.GetRecord(matched)) return;
    const auto* const record = static_cast<const CTNTemplateRecord*>(matched);
    if (!engine.GetTemplate()->Lists(record)) return;  // One that is built in.
    recordSheet->SetActivePage(record->IsAuxiliary() ? 1 : 0);
    (record->IsAuxiliary() ? auxiliaryRecords : entityRecords)->SelectElementAlone(record);
  }
  void CreateRecord() {
    CTNTemplateRecord* const record = engine.GetTemplate()->AddRecord(
        RecordKind::FreshEntity, GetMessageText(Msg::AutoCreatedDescription));
    const std::string text = inputPage->GetList().GetGatheredText(Tabs::Expanded);
    CTNStringCharBuffIter cursor(text);
    record->CreateFieldsFromText(cursor);
    OnEdited(kRecordsAdded);
    entityRecords->SelectElementAlone(record);
  }
};

}  // namespace bomparser::test
