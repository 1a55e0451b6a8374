#include "tests/ui/dialogs/MainDialogTest.h"
#include "ui/controls/CTNUserDialogs.h"
#include "ui/dialogs/CTNTemplateParamsDlg.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <filesystem>

namespace bomparser::test {
namespace {

class MainDialogEditTest : public MainDialogTest {
 protected:
  /// The column whose title this is.
  static int Titled(const QTableView& list, const QString& title) {
    for (int column = 0; column < list.model()->columnCount(); ++column) {
      if (list.model()->headerData(column, Qt::Horizontal).toString().trimmed() == title)
        return column;
    }
    ADD_FAILURE() << "no column " << title.toStdString();
    return 0;
  }
  static Texts Under(const QTableView& list, const QString& title) {
    return Column(list, Titled(list, title));
  }
  Texts Descriptions() { return Under(Records(), "DESCRIPTION"); }
  Texts CurrentValues() { return Under(Fields(), "CURRENT VALUE"); }
  Texts Expressions() { return Under(Elements(), "VALUE EXPRESSION"); }
  static std::vector<int> Selected(const CTNParserListCtrl& list) { return list.GetSelectedRows(); }
  using Chosen = std::vector<int>;
};

// Records.

TEST_F(MainDialogEditTest, ANewRecordHasTwoFieldsIsSelectedAndAppliesTheTemplateAgain) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  EXPECT_EQ(Descriptions(), (Texts{"line", "New Record"}));
  EXPECT_EQ(Document().GetEntityRecords()[1]->GetType(), RecordKind::Undefined);
  EXPECT_EQ(Selected(Records()), Chosen{1});
  const auto& fields = Document().GetEntityRecords()[1]->GetInputFields();
  ASSERT_EQ(fields.size(), 2U);
  EXPECT_EQ(fields[0]->GetType(), FieldKind::Undefined);
  EXPECT_EQ(fields[1]->GetType(), FieldKind::Newline);
  EXPECT_EQ(Fields().model()->rowCount(), 2) << "the fields are those of the new record";
  EXPECT_EQ(Flags(), "applied");
  EXPECT_TRUE(Engine().IsTemplateModified());
}

TEST_F(MainDialogEditTest, ANewRecordOfTheAuxiliaryPageIsAnUndefinedAuxiliaryOne) {
  LoadAndOpen();
  ShowPage(RecordPage::Auxiliary);
  Choose(Auxiliaries(), Cmd::AppendNew);
  ASSERT_EQ(Document().GetAuxiliaryRecords().size(), 1U);
  EXPECT_EQ(Document().GetAuxiliaryRecords()[0]->GetType(), RecordKind::UndefinedAuxiliary);
  EXPECT_EQ(Document().GetAuxiliaryRecords()[0]->GetDescription(), "New Record");
  EXPECT_EQ(Selected(Auxiliaries()), Chosen{0});
}

TEST_F(MainDialogEditTest, ARecordThatIsInsertedStandsAboveTheSelectedOne) {
  LoadAndOpen();
  Records().SelectRowAlone(0);
  Choose(Records(), Cmd::InsertNewAbove);
  EXPECT_EQ(Descriptions(), (Texts{"New Record", "line"}));
  EXPECT_EQ(Selected(Records()), Chosen{0});
  EXPECT_EQ(Column(Rows(), 1), (Texts{"line (E2)", "Unmatched", "line (E2)"}));
}

TEST_F(MainDialogEditTest, AfterDeletingRecordsTheNextOneIsSelected) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  Choose(Records(), Cmd::AppendNew);
  Records().SelectRowAlone(1);
  Choose(Records(), Cmd::DeleteSelected);
  EXPECT_EQ(Descriptions(), (Texts{"line", "New Record"}));
  EXPECT_EQ(Selected(Records()), Chosen{1});
  Choose(Records(), Cmd::DeleteSelected);
  EXPECT_EQ(Selected(Records()), Chosen{0}) << "behind the last one there is none";
  Choose(Records(), Cmd::DeleteSelected);
  EXPECT_EQ(Records().model()->rowCount(), 0);
  EXPECT_EQ(Fields().model()->rowCount(), 0);
  EXPECT_EQ(Elements().model()->rowCount(), 0);
}

TEST_F(MainDialogEditTest, DeletingWithNothingSelectedChangesNothing) {
  LoadAndOpen();
  Records().clearSelection();
  QTest::keyClick(&Records(), Qt::Key_Delete);
  Settle();
  EXPECT_FALSE(Engine().IsTemplateModified());
}

TEST_F(MainDialogEditTest, CopiesOfRecordsAreAppendedToTheTemplateAndSelected) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  Records().SetSelectedRows({0, 1});
  Choose(Records(), Cmd::CopyToThis);
  EXPECT_EQ(Descriptions(), (Texts{"line", "New Record", "line", "New Record"}));
  EXPECT_EQ(Selected(Records()), (Chosen{2, 3}));
}

TEST_F(MainDialogEditTest, MovedRecordsKeepTheirOrder) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  Records().SelectRowAlone(1);
  Records().setFocus();
  QTest::keyClick(&Records(), Qt::Key_Up, Qt::AltModifier);
  Settle();
  EXPECT_EQ(Descriptions(), (Texts{"New Record", "line"}));
  EXPECT_EQ(Selected(Records()), Chosen{0}) << "it stays selected";
  EXPECT_EQ(Column(Rows(), 1), (Texts{"line (E2)", "Unmatched", "line (E2)"}));
}

TEST_F(MainDialogEditTest, MovingNothingDoesNotModifyTheTemplate) {
  LoadAndOpen();
  Records().setFocus();
  QTest::keyClick(&Records(), Qt::Key_Up, Qt::AltModifier);
  Settle();
  EXPECT_FALSE(Engine().IsTemplateModified());
}

TEST_F(MainDialogEditTest, ATypeThatRequiresElementsBringsThem) {
  Dialog();
  Choose(Records(), Cmd::AppendNew);
  EXPECT_EQ(Elements().model()->rowCount(), 0);
  Pick(Records(), 0, Titled(Records(), "TYPE"), "Part");
  EXPECT_GT(Elements().model()->rowCount(), 0);
  EXPECT_EQ(Document().GetEntityRecords()[0]->GetType(), RecordKind::Part);
}

TEST_F(MainDialogEditTest, TheRequiredElementSetIsCreatedForTheSelectedRecord) {
  Load(TemplateFor("a"));
  auto& record = *Document().GetEntityRecords()[0];
  const std::size_t required = record.GetOutputFields().size();
  Elements().SelectRowAlone(1);
  WillAnswer(BoxAnswer::Yes);
  Choose(Elements(), Cmd::DeleteSelected);
  ASSERT_EQ(record.GetOutputFields().size(), required - 1);
  Records().SelectRowAlone(0);
  Choose(Records(), Cmd::CreateRequiredOutputSet);
  EXPECT_GE(record.GetOutputFields().size(), required);
  EXPECT_EQ(static_cast<std::size_t>(Elements().model()->rowCount()),
            record.GetOutputFields().size());
}

// Several at once.

/// Records "r1" to "r6", the first of which is shown: it has six fields and six elements.
class MainDialogSeveralTest : public MainDialogEditTest {
 protected:
  static constexpr const char* kNames[] = {"r1", "r2", "r3", "r4", "r5", "r6"};

  void SetUp() override {
    CTNParserTemplate document(nullptr);
    std::vector<FieldSpec> fields;
    std::vector<OutputSpec> elements;
    for (int i = 1; i <= 6; ++i) {
      fields.push_back(String("f" + std::to_string(i)));
      elements.push_back({OutputTag::None, "F" + std::to_string(i)});
    }
    for (const char* name : kNames)
      AddRecord(document, RecordKind::Part, name, fields, elements);
    Load(XmlText(document));
    Dialog().resize(1200, 1000);  // So that there is room below the rows of every list.
    Records().SelectRowAlone(0);
    QApplication::setActiveWindow(&Dialog());  // Shortcuts work there.
    Settle();
  }
  Texts MatchValues() { return Under(Fields(), "MATCH VALUE"); }
  static void MoveRows(CTNParserListCtrl& list, const Chosen& rows, Qt::Key direction) {
    list.SetSelectedRows(rows);
    list.setFocus();
    QTest::keyClick(&list, direction, Qt::AltModifier);
    Settle();
  }
  static void DropBelowRows(CTNParserListCtrl& list, const Chosen& rows) {
    list.SetSelectedRows(rows);
    list.OnDrop(&list, list.viewport()->mapToGlobal(BelowRows(list)));
    Settle();
  }
  static void Delete(CTNParserListCtrl& list, const Chosen& rows) {
    list.SetSelectedRows(rows);
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Delete);
    Settle();
  }
};

TEST_F(MainDialogSeveralTest, RecordsMoveTogetherKeepTheirOrderAndStaySelected) {
  MoveRows(Records(), {2, 3}, Qt::Key_Up);
  EXPECT_EQ(Descriptions(), (Texts{"r1", "r3", "r4", "r2", "r5", "r6"}));
  EXPECT_EQ(Selected(Records()), (Chosen{1, 2}));
  MoveRows(Records(), {1, 2}, Qt::Key_Down);
  EXPECT_EQ(Descriptions(), (Texts{"r1", "r2", "r3", "r4", "r5", "r6"}));
  EXPECT_EQ(Selected(Records()), (Chosen{2, 3}));
  MoveRows(Records(), {1, 3, 5}, Qt::Key_Up);
  EXPECT_EQ(Descriptions(), (Texts{"r2", "r4", "r6", "r1", "r3", "r5"}));
  EXPECT_EQ(Selected(Records()), (Chosen{0, 1, 2}));
  MoveRows(Records(), {0, 2, 4}, Qt::Key_Down);
  EXPECT_EQ(Descriptions(), (Texts{"r4", "r1", "r5", "r2", "r6", "r3"}));
  EXPECT_EQ(Selected(Records()), (Chosen{3, 4, 5}));
  DropBelowRows(Records(), {0, 2});
  EXPECT_EQ(Descriptions(), (Texts{"r1", "r2", "r6", "r3", "r4", "r5"}));
  EXPECT_EQ(Selected(Records()), (Chosen{4, 5}));
}

TEST_F(MainDialogSeveralTest, FieldsMoveTogetherKeepTheirOrderAndAreFollowedByExpressions) {
  MoveRows(Fields(), {2, 3}, Qt::Key_Up);
  EXPECT_EQ(MatchValues(), (Texts{"f1", "f3", "f4", "f2", "f5", "f6"}));
  EXPECT_EQ(Selected(Fields()), (Chosen{1, 2}));
  EXPECT_EQ(Expressions(), (Texts{"F1", "F4", "F2", "F3", "F5", "F6"}));
  MoveRows(Fields(), {0, 2, 3}, Qt::Key_Down);
  EXPECT_EQ(MatchValues(), (Texts{"f3", "f5", "f1", "f4", "f2", "f6"}));
  EXPECT_EQ(Selected(Fields()), (Chosen{2, 3, 4}));
  DropBelowRows(Fields(), {0, 3});
  EXPECT_EQ(MatchValues(), (Texts{"f5", "f1", "f2", "f6", "f3", "f4"}));
  EXPECT_EQ(Selected(Fields()), (Chosen{4, 5}));
  EXPECT_EQ(Expressions(), (Texts{"F2", "F3", "F5", "F6", "F1", "F4"}));
}

TEST_F(MainDialogSeveralTest, ElementsMoveTogetherAndKeepTheirOrder) {
  MoveRows(Elements(), {2, 3}, Qt::Key_Up);
  EXPECT_EQ(Expressions(), (Texts{"F1", "F3", "F4", "F2", "F5", "F6"}));
  EXPECT_EQ(Selected(Elements()), (Chosen{1, 2}));
  MoveRows(Elements(), {0, 2, 3}, Qt::Key_Down);
  EXPECT_EQ(Expressions(), (Texts{"F3", "F5", "F1", "F4", "F2", "F6"}));
  EXPECT_EQ(Selected(Elements()), (Chosen{2, 3, 4}));
  DropBelowRows(Elements(), {0, 3});
  EXPECT_EQ(Expressions(), (Texts{"F5", "F1", "F2", "F6", "F3", "F4"}));
  EXPECT_EQ(Selected(Elements()), (Chosen{4, 5}));
}

TEST_F(MainDialogSeveralTest, AfterDeletingScatteredRecordsTheRowOfTheFirstIsSelected) {
  Delete(Records(), {1, 2, 4});
  EXPECT_EQ(Descriptions(), (Texts{"r1", "r4", "r6"}));
  EXPECT_EQ(Selected(Records()), Chosen{1});
  EXPECT_EQ(Fields().GetRecord(), Document().GetEntityRecords()[1].get());
  Delete(Records(), {0, 2});
  EXPECT_EQ(Descriptions(), Texts{"r4"});
  EXPECT_EQ(Selected(Records()), Chosen{0});
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(MainDialogSeveralTest, AfterDeletingScatteredFieldsTheRowOfTheFirstIsSelected) {
  Delete(Fields(), {1, 2, 4});
  EXPECT_EQ(MatchValues(), (Texts{"f1", "f4", "f6"}));
  EXPECT_EQ(Selected(Fields()), Chosen{1});
  EXPECT_EQ(Expressions(), (Texts{"F1", "??", "??", "F2", "??", "F3"}));
  Delete(Fields(), {1, 2});
  EXPECT_EQ(MatchValues(), Texts{"f1"});
  EXPECT_EQ(Selected(Fields()), Chosen{0}) << "behind the last one there is none";
  EXPECT_TRUE(dialogs.boxes.empty());
}

// Records from lines of the input file.

TEST_F(MainDialogEditTest, SelectedLinesBecomeAnEntityRecordOnTheEntityPage) {
  OpenText("R1 10\n");
  Rows().SelectRowAlone(0);
  Choose(Rows(), Cmd::CreateRecordFromSelected);
  ASSERT_EQ(Document().GetEntityRecords().size(), 1U);
  const CTNTemplateRecord& record = *Document().GetEntityRecords()[0];
  EXPECT_EQ(record.GetType(), RecordKind::FreshEntity);
  EXPECT_EQ(record.GetDescription(), "Auto-Created From Text Block");
  EXPECT_EQ(Selected(Records()), Chosen{0});
  EXPECT_EQ(Under(Fields(), "TYPE"), (Texts{"ALPHANUMERIC", "WHTSPACE", "WHOLE_NUM", "NEWLINE"}));
  EXPECT_TRUE(Engine().IsTemplateModified());
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(MainDialogEditTest, SelectedLinesBecomeAnAuxiliaryRecordOnTheAuxiliaryPage) {
  OpenText("Units: mm\n");
  ShowPage(RecordPage::Auxiliary);
  Rows().SelectRowAlone(0);
  Choose(Rows(), Cmd::CreateRecordFromSelected);
  ASSERT_EQ(Document().GetAuxiliaryRecords().size(), 1U);
  EXPECT_EQ(Document().GetAuxiliaryRecords()[0]->GetType(), RecordKind::FreshAuxiliary);
  EXPECT_EQ(Selected(Auxiliaries()), Chosen{0});
}

TEST_F(MainDialogEditTest, EverySelectedLineIsFollowedByALineFeed) {
  OpenText("a\nb\nc\n");
  Rows().SetSelectedRows({0, 2});
  Choose(Rows(), Cmd::CreateRecordFromSelected);
  EXPECT_EQ(Under(Fields(), "TYPE"), (Texts{"ALPHA", "NEWLINE", "ALPHA", "NEWLINE"}));
}

TEST_F(MainDialogEditTest, ARecordFromLinesSeesTabsAsTheViewShowsThem) {
  OpenText("a\tb\n");
  Rows().SelectRowAlone(0);
  Choose(Rows(), Cmd::CreateRecordFromSelected);
  const auto& fields = Document().GetEntityRecords()[0]->GetInputFields();
  EXPECT_EQ(Under(Fields(), "TYPE"), (Texts{"ALPHA", "WHTSPACE", "ALPHA", "NEWLINE"}));
  ASSERT_EQ(fields.size(), 4U);
}

TEST_F(MainDialogEditTest, ADoubleClickOnALineMakesARecordOfIt) {
  OpenText("a\nb\n");
  const QRect place = Rows().visualRect(Rows().model()->index(1, 2));
  QTest::mouseDClick(Rows().viewport(), Qt::LeftButton, Qt::NoModifier, place.center());
  Settle();
  EXPECT_EQ(Descriptions(), (Texts{"Auto-Created From Text Block"}));
}

TEST_F(MainDialogEditTest, LinesDroppedOnTheRecordsMakeARecord) {
  OpenText("a\nb\n");
  Rows().SelectRowAlone(1);
  DraggedRows rows(Rows());
  QWidget& target = *Records().viewport();
  QDragEnterEvent enter({5, 5}, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
  enter.ignore();
  QApplication::sendEvent(&target, &enter);
  QDropEvent drop({5, 5}, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
  drop.ignore();
  QApplication::sendEvent(&target, &drop);
  Settle();
  EXPECT_EQ(Descriptions(), (Texts{"Auto-Created From Text Block"}));
}

// Testing lines against a record.

class MainDialogSelectionTest : public MainDialogEditTest {
 protected:
  void TestLine(int line) {
    Rows().SelectRowAlone(line);
    Settle();
    Records().SelectRowAlone(0);
    dialogs.boxes.clear();
    Choose(Rows(), Cmd::TestSelected);
  }
};

TEST_F(MainDialogSelectionTest, LinesThatMatchAreToldOf) {
  LoadAndOpen();
  const std::string flags = Flags();
  TestLine(0);
  EXPECT_EQ(dialogs.boxes, Boxes{"information|BOM Parser|Selected block matched successfully to "
                                 "selected record|Ok"});
  EXPECT_EQ(Flags(), flags);
  EXPECT_FALSE(Engine().IsTemplateModified());
}

TEST_F(MainDialogSelectionTest, LinesThatDoNotMatchAreToldOfWithTheReason) {
  LoadAndOpen();
  TestLine(1);
  EXPECT_EQ(dialogs.boxes, Boxes{"warning|BOM Parser|Attempt failed with the following error: "
                                 "Data mismatch encountered at field F1|Ok"});
}

TEST_F(MainDialogSelectionTest, TextBehindTheMatchIsNoMatter) {
  LoadAndOpen();
  Rows().SetSelectedRows({0, 1});
  Records().SelectRowAlone(0);
  Choose(Rows(), Cmd::TestSelected);
  ASSERT_EQ(dialogs.boxes.size(), 1U);
  EXPECT_EQ(dialogs.boxes[0].rfind("information|", 0), 0U);
}

TEST_F(MainDialogSelectionTest, TheCharactersOfTheFileAreTestedNotTheBlanksThatTabsAreShownAs) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::Part, "tab", {Alpha(), Tab(), Alpha(), Newline()},
            {Designator("F1"), PartNumber()});
  Load(XmlText(document));
  OpenText("a\tb\n");
  TestLine(0);
  ASSERT_EQ(dialogs.boxes.size(), 1U);
  EXPECT_EQ(dialogs.boxes[0].rfind("information|", 0), 0U);
}

TEST_F(MainDialogSelectionTest, AFailedTestLeavesTheValuesOfTheFieldsThatMatched) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::Part, "two", {Alpha(), WholeNum(), Newline()},
            {Designator("F1"), PartNumber()});
  Load(XmlText(document));
  OpenText("abc\n");
  TestLine(0);
  EXPECT_EQ(CurrentValues(), (Texts{"abc", "", ""}));
}

TEST_F(MainDialogSelectionTest, WithoutOneSelectedRecordTheUserIsAskedToSelectOne) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  const Boxes complaint = {
      "error|BOM Parser|Please select one record to apply to selected text.|Ok"};
  Rows().SelectRowAlone(1);
  Settle();
  Records().SetSelectedRows({0, 1});
  Choose(Rows(), Cmd::TestSelected);
  EXPECT_EQ(dialogs.boxes, complaint);
  dialogs.boxes.clear();
  Records().clearSelection();
  Choose(Rows(), Cmd::TestSelected);
  EXPECT_EQ(dialogs.boxes, complaint);
}

// Input fields.

TEST_F(MainDialogEditTest, ANewFieldIsRequiredHasNoTypeYetAndIsSelected) {
  LoadAndOpen();
  Fields().clearSelection();
  RightClick(*Fields().viewport(), BelowRows(Fields()));
  ChooseCommand(Cmd::AppendNew);
  Settle();
  const auto& fields = Document().GetEntityRecords()[0]->GetInputFields();
  ASSERT_EQ(fields.size(), 3U);
  EXPECT_EQ(fields[2]->GetType(), FieldKind::Undefined);
  EXPECT_TRUE(fields[2]->IsRequired());
  EXPECT_EQ(Selected(Fields()), Chosen{2});
}

TEST_F(MainDialogEditTest, AFieldThatIsInsertedChangesTheIdentifiersInTheExpressions) {
  LoadAndOpen();
  Fields().SelectRowAlone(0);
  Choose(Fields(), Cmd::InsertNewAbove);
  EXPECT_EQ(Fields().model()->rowCount(), 3);
  EXPECT_EQ(Selected(Fields()), Chosen{0});
  EXPECT_EQ(Document().GetEntityRecords()[0]->GetOutputFields()[0]->GetExpression(), "F2");
}

TEST_F(MainDialogEditTest, ADeletedFieldLeavesQuestionMarksInExpressionsThatNamedIt) {
  LoadAndOpen();
  Fields().SelectRowAlone(0);
  Choose(Fields(), Cmd::DeleteSelected);
  EXPECT_EQ(Document().GetEntityRecords()[0]->GetOutputFields()[0]->GetExpression(), "??");
  EXPECT_EQ(Selected(Fields()), Chosen{0}) << "the one behind it";
}

TEST_F(MainDialogEditTest, AddingAFieldOrElementNeedsOneSelectedRecord) {
  LoadAndOpen();
  const std::string complaint =
      "error|BOM Parser|Please select one template record to which the new field should be "
      "added|Ok";
  Choose(Records(), Cmd::AppendNew);
  for (const Chosen& records : {Chosen{0, 1}, Chosen{}}) {
    Records().SetSelectedRows(records);
    for (CTNParserListCtrl* list : {static_cast<CTNParserListCtrl*>(&Fields()),
                                    static_cast<CTNParserListCtrl*>(&Elements())}) {
      dialogs.boxes.clear();
      RightClick(*list->viewport(), BelowRows(*list));
      ChooseCommand(Cmd::AppendNew);
      Settle();
      EXPECT_EQ(dialogs.boxes, Boxes{complaint});
    }
  }
}

TEST_F(MainDialogEditTest, CopiesOfFieldsAreAppendedToTheirRecordAndSelected) {
  LoadAndOpen();
  Fields().SetSelectedRows({0, 1});
  Choose(Fields(), Cmd::CopyToThis);
  EXPECT_EQ(Under(Fields(), "TYPE"), (Texts{"STRING", "NEWLINE", "STRING", "NEWLINE"}));
  EXPECT_EQ(Under(Fields(), "MATCH VALUE")[2], "a|b");
  EXPECT_EQ(Selected(Fields()), (Chosen{2, 3}));
}

TEST_F(MainDialogEditTest, CopiesForAllOtherRecordsGoToBothListsOfRecords) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  ShowPage(RecordPage::Auxiliary);
  Choose(Auxiliaries(), Cmd::AppendNew);
  ShowPage(RecordPage::Entity);
  Records().SelectRowAlone(0);
  Fields().SelectRowAlone(0);
  Choose(Fields(), Cmd::CopyToAllOthers);
  EXPECT_EQ(Document().GetEntityRecords()[0]->GetInputFields().size(), 2U);
  EXPECT_EQ(Document().GetEntityRecords()[1]->GetInputFields().size(), 3U);
  EXPECT_EQ(Document().GetAuxiliaryRecords()[0]->GetInputFields().size(), 3U);
  EXPECT_EQ(Document().GetAuxiliaryRecords()[0]->GetInputFields()[2]->GetType(), FieldKind::String);
}

TEST_F(MainDialogEditTest, MovedFieldsChangeWhatIsMatched) {
  LoadAndOpen();
  Fields().SelectRowAlone(1);
  Fields().setFocus();
  QTest::keyClick(&Fields(), Qt::Key_Up, Qt::AltModifier);
  Settle();
  EXPECT_EQ(Under(Fields(), "TYPE"), (Texts{"NEWLINE", "STRING"}));
  EXPECT_EQ(Document().GetEntityRecords()[0]->GetOutputFields()[0]->GetExpression(), "F2");
}

TEST_F(MainDialogEditTest, AFieldOfASubRecordThatIsDeletedShowsItsComplaintAndNeverMeansAnother) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::SubRecord, "sub", {Alpha()});
  AddRecord(document, RecordKind::Part, "line", {SubRecord("A1"), Newline()},
            {Designator("F1"), PartNumber()});
  Relink(document);
  Load(XmlText(document));
  ShowPage(RecordPage::Auxiliary);
  Choose(Auxiliaries(), Cmd::DeleteSelected);
  Choose(Auxiliaries(), Cmd::AppendNew);
  ShowPage(RecordPage::Entity);
  EXPECT_EQ(Under(Fields(), "MATCH VALUE")[0], "??");
  EXPECT_EQ(Document().GetEntityRecords()[0]->GetInputFields()[0]->GetStatusText(),
            "Error: Field type SUBRECORD requires valid record number in match value column");
}

// Output elements.

TEST_F(MainDialogEditTest, ANewElementHasNoTagYetAndIsSelected) {
  LoadAndOpen();
  RightClick(*Elements().viewport(), BelowRows(Elements()));
  ChooseCommand(Cmd::AppendNew);
  Settle();
  const auto& elements = Document().GetEntityRecords()[0]->GetOutputFields();
  ASSERT_EQ(elements.size(), 3U);
  EXPECT_EQ(static_cast<int>(elements[2]->GetTag()), -1);
  EXPECT_EQ(Selected(Elements()), Chosen{2});
}

TEST_F(MainDialogEditTest, AnElementThatIsInsertedStandsAboveTheSelectedOne) {
  LoadAndOpen();
  Elements().SelectRowAlone(1);
  Choose(Elements(), Cmd::InsertNewAbove);
  EXPECT_EQ(Elements().model()->rowCount(), 3);
  EXPECT_EQ(Selected(Elements()), Chosen{1});
}

TEST_F(MainDialogEditTest, DeletingARequiredElementAsksFirst) {
  LoadAndOpen();
  const std::string before = State();
  Elements().SelectRowAlone(0);
  Settle();
  WillAnswer(BoxAnswer::No);
  Choose(Elements(), Cmd::DeleteSelected);
  EXPECT_EQ(dialogs.boxes, Boxes{"question|BOM Parser|Output element with tag REF_DESIGNATOR is "
                                 "required for this record.\nAre you sure you want to delete this "
                                 "element?|YesNo"});
  EXPECT_EQ(Elements().model()->rowCount(), 2);
  EXPECT_FALSE(Engine().IsTemplateModified());
  WillAnswer(BoxAnswer::Yes);
  Choose(Elements(), Cmd::DeleteSelected);
  EXPECT_EQ(Elements().model()->rowCount(), 1);
  EXPECT_EQ(Selected(Elements()), Chosen{0});
}

TEST_F(MainDialogEditTest, TheElementBehindADeletedOneIsSelectedAlsoWhenAnotherOneWasKept) {
  LoadAndOpen();
  Elements().SetSelectedRows({0, 1});
  WillAnswer(BoxAnswer::Yes);  // From the last to the first.
  WillAnswer(BoxAnswer::No);
  RightClick(*Elements().viewport(),
             Elements().visualRect(Elements().model()->index(0, 0)).center());
  ChooseCommand(Cmd::DeleteSelected);
  EXPECT_EQ(Under(Elements(), "ELEMENT TAG"), (Texts{"REF_DESIGNATOR"}));
  EXPECT_EQ(Selected(Elements()), Chosen{0});
}

TEST_F(MainDialogEditTest, CopiesOfElementsGoToTheirRecordAndToAllOthers) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  Records().SelectRowAlone(0);
  Elements().SelectRowAlone(0);
  Choose(Elements(), Cmd::CopyToThis);
  EXPECT_EQ(Elements().model()->rowCount(), 3);
  EXPECT_EQ(Selected(Elements()), Chosen{2});
  Elements().SelectRowAlone(1);
  Choose(Elements(), Cmd::CopyToAllOthers);
  EXPECT_EQ(Document().GetEntityRecords()[0]->GetOutputFields().size(), 3U);
  EXPECT_EQ(Document().GetEntityRecords()[1]->GetOutputFields().size(), 1U);
}

TEST_F(MainDialogEditTest, MovedElementsStandElsewhereInTheList) {
  LoadAndOpen();
  Elements().SelectRowAlone(1);
  Elements().setFocus();
  QTest::keyClick(&Elements(), Qt::Key_Up, Qt::AltModifier);
  Settle();
  EXPECT_EQ(Under(Elements(), "ELEMENT TAG"), (Texts{"PART_NUMBER", "REF_DESIGNATOR"}));
}

// What is shown of a record.

TEST_F(MainDialogEditTest, CurrentValuesAreThoseOfTheRecordsLastBlock) {
  LoadAndOpen();
  EXPECT_EQ(CurrentValues(), (Texts{"b", ""}));
}

TEST_F(MainDialogEditTest, CurrentValuesFollowTheLineThatIsSelected) {
  LoadAndOpen();
  Click(Rows(), 0, 2);
  EXPECT_EQ(CurrentValues(), (Texts{"a", ""}));
  Click(Rows(), 2, 2);
  EXPECT_EQ(CurrentValues(), (Texts{"b", ""}));
}

TEST_F(MainDialogEditTest, TheSelectedLineStaysTheSourceOfCurrentValuesAfterAnApplication) {
  LoadAndOpen();
  Click(Rows(), 0, 2);
  Press(Ctrl::ApplyTemplate);
  EXPECT_EQ(CurrentValues(), (Texts{"a", ""}));
}

TEST_F(MainDialogEditTest, ALineOfAnotherRecordLeavesTheLastBlockAsSourceOfCurrentValues) {
  LoadAndOpen();
  Click(Rows(), 0, 2);
  Choose(Records(), Cmd::AppendNew);
  Click(Rows(), 1, 2);  // Unmatched.
  Records().SelectRowAlone(0);
  EXPECT_EQ(CurrentValues(), (Texts{"b", ""}));
}

TEST_F(MainDialogEditTest, ALineTurnsThePageSelectsItsRecordAloneAndKeepsTheFocus) {
  LoadAndOpen();
  ShowPage(RecordPage::Auxiliary);
  Rows().setFocus();
  Click(Rows(), 0, 2);
  EXPECT_EQ(RecordSheet().GetActiveIndex(), 0);
  EXPECT_EQ(Selected(Records()), Chosen{0});
  EXPECT_TRUE(Rows().hasFocus());
}

TEST_F(MainDialogEditTest, AnUnmatchedLineLeavesTheSelectionOfTheRecordsAlone) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  Click(Rows(), 1, 2);
  EXPECT_EQ(Selected(Records()), Chosen{1});
}

TEST_F(MainDialogEditTest, WithStaleResultsALineSelectsNoRecord) {
  LoadAndOpen();
  AddStaleRecord();
  Click(Rows(), 0, 2);
  EXPECT_EQ(Selected(Records()), Chosen{1});
}

TEST_F(MainDialogEditTest, EachPageShowsTheRecordThatWasSelectedOnItLast) {
  LoadAndOpen();
  ShowPage(RecordPage::Auxiliary);
  EXPECT_EQ(Fields().model()->rowCount(), 0) << "no auxiliary record yet";
  Choose(Auxiliaries(), Cmd::AppendNew);
  EXPECT_EQ(Under(Fields(), "TYPE")[1], "NEWLINE");
  ShowPage(RecordPage::Entity);
  EXPECT_EQ(Under(Fields(), "TYPE")[0], "STRING");
  ShowPage(RecordPage::Auxiliary);
  EXPECT_EQ(Fields().GetRecord(), Document().GetAuxiliaryRecords()[0].get());
}

TEST_F(MainDialogEditTest, OnAPageWithoutSelectionTheFirstRecordIsSelected) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::Part, "line", {Alpha(), Newline()},
            {Designator("F1"), PartNumber()});
  AddRecord(document, RecordKind::MultipleMatch, "other", {Newline()});
  Load(XmlText(document));
  Auxiliaries().clearSelection();
  ShowPage(RecordPage::Auxiliary);
  EXPECT_EQ(Selected(Auxiliaries()), Chosen{0});
  EXPECT_EQ(Fields().GetRecord(), Document().GetAuxiliaryRecords()[0].get());
}

TEST_F(MainDialogEditTest, TheShownRecordIsAlwaysOneThatIsSelected) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  Records().SelectRowAlone(0);
  Records().setFocus();
  QTest::keyClick(&Records(), Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(&Records(), Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(Fields().GetRecord(), Document().GetEntityRecords()[0].get());
  Click(Records(), 1, 0, Qt::ControlModifier);
  EXPECT_EQ(Fields().GetRecord(), Document().GetEntityRecords()[1].get());
  Click(Rows(), 0, 2);
  EXPECT_EQ(Selected(Records()), Chosen{0});
  EXPECT_EQ(Fields().GetRecord(), Document().GetEntityRecords()[0].get());
}

TEST_F(MainDialogEditTest, CurrentValuesFollowALineWhoseRowAFilterBringsLater) {
  Load(TemplateFor("line a|line b"));
  std::string text = "line a\n";
  for (int i = 0; i < 40'000; ++i)
    text += "line\n";
  OpenText(text + "line b\n");
  auto* const filter = FindControl<QLineEdit>(Dialog(), Ctrl::FilterText);
  filter->setText("line");
  ASSERT_TRUE(QTest::qWaitFor([this] { return !Rows().GetModel().IsScanning(); }, 60'000));
  Click(Rows(), 0, 2);
  ASSERT_EQ(CurrentValues(), (Texts{"line a", ""}));
  Type(Records(), 0, Titled(Records(), "DESCRIPTION"), "another name");
  EXPECT_EQ(CurrentValues(), (Texts{"line a", ""}));
}

TEST_F(MainDialogEditTest, AnIgnoredLineLeavesTheSelectionOfTheRecordsAlone) {
  Load(TemplateFor("a", RecordKind::Part, 2));
  OpenText("head\na\n");
  Choose(Records(), Cmd::AppendNew);
  Click(Rows(), 0, 2);
  EXPECT_EQ(Selected(Records()), Chosen{1});
}

TEST_F(MainDialogEditTest, ALineOfAnAuxiliaryRecordTurnsToItsPage) {
  Load(TemplateFor("a", RecordKind::MultipleMatch));
  OpenText("a\n");
  ASSERT_EQ(RecordSheet().GetActiveIndex(), 0);
  Click(Rows(), 0, 2);
  EXPECT_EQ(RecordSheet().GetActiveIndex(), 1);
  EXPECT_EQ(Selected(Auxiliaries()), Chosen{0});
}

// Editors and commands.

TEST_F(MainDialogEditTest, ACommandFirstEndsAnOpenEditorAndTakesItsValue) {
  LoadAndOpen();
  ASSERT_TRUE(Records().BeginEdit(Records().model()->index(0, Titled(Records(), "DESCRIPTION"))));
  dynamic_cast<CTNInPlaceEdit*>(Records().GetEditor())->setText("Resistors");
  WillChoose("mine.xml");
  // As its mnemonic does: the focus stays in the editor.
  FindControl<QPushButton>(Dialog(), Ctrl::SaveToFile)->click();
  Settle();
  EXPECT_NE(BytesOf("mine.xml").find("Resistors"), std::string::npos);
  EXPECT_FALSE(Records().IsEditing());
}

TEST_F(MainDialogEditTest, AnAutomaticApplicationThatFailsShowsNoBoxAndAnEmptyListWithAHint) {
  LoadAndOpen();
  // A file of 2 GiB cannot be read; it has no blocks on the disk.
  std::filesystem::resize_file(PathOf("input.txt"), CTNTextFile::kTooLong);
  Choose(Records(), Cmd::AppendNew);
  EXPECT_TRUE(dialogs.boxes.empty());
  EXPECT_EQ(Rows().model()->rowCount(), 0);
  EXPECT_EQ(Rows().accessibleDescription(),
            "The template could not be applied to the input file. \"Apply Template\" tells why.");
  EXPECT_EQ(Buttons(), "OCFAUE");
}

TEST_F(MainDialogEditTest, AfterAFailedAutomaticApplicationNoEditAppliesUntilTheUserDoes) {
  LoadAndOpen();
  std::filesystem::resize_file(PathOf("input.txt"), CTNTextFile::kTooLong);
  Choose(Records(), Cmd::AppendNew);
  WriteFile("input.txt", "a\n");
  Choose(Records(), Cmd::AppendNew);
  EXPECT_FALSE(InFile().IsApplied());
  Press(Ctrl::ApplyTemplate);
  EXPECT_EQ(Flags(), "applied");
}

TEST_F(MainDialogEditTest, ATestOfLinesFirstEndsAnOpenEditorAndTakesItsValue) {
  LoadAndOpen();
  Rows().SelectRowAlone(1);
  ASSERT_TRUE(Rows().GatherSelection(GatherOrder::AsListed));
  Records().SelectRowAlone(0);
  ASSERT_TRUE(Fields().BeginEdit(Fields().model()->index(0, Titled(Fields(), "MATCH VALUE"))));
  dynamic_cast<CTNInPlaceEdit*>(Fields().GetEditor())->setText("x");
  emit Rows().TestSelectionRequested();
  EXPECT_EQ(dialogs.boxes, Boxes{"information|BOM Parser|Selected block matched successfully to "
                                 "selected record|Ok"});
}

TEST_F(MainDialogEditTest, AnAutomaticApplicationFallsBackToTheFileThatIsOpen) {
  LoadAndOpen();
  std::filesystem::remove(PathOf("input.txt"));
  Choose(Records(), Cmd::AppendNew);
  EXPECT_EQ(Flags(), "applied");
  EXPECT_EQ(Rows().model()->rowCount(), 3);
}

TEST_F(MainDialogEditTest, AnAutomaticApplicationReadsAFileThatWasPutInTheOldOnesPlace) {
  LoadAndOpen();
  WriteFile("new.txt", "x\n");
  std::filesystem::rename(PathOf("new.txt"), PathOf("input.txt"));
  Choose(Records(), Cmd::AppendNew);
  EXPECT_EQ(Column(Rows(), 2), (Texts{"x"}));
}

// Which edits apply the template again at once.

/// Does one edit of each kind by hand.
class MainDialogTriggerTest : public MainDialogEditTest {
 protected:
  void Edit(EditKind kind) {
    switch (kind) {
      case kRecordsAdded:
        Choose(Records(), Cmd::AppendNew);
        break;
      case kRecordsDeleted:
        Choose(Records(), Cmd::DeleteSelected);
        break;
      case kRecordsModified:
        Type(Records(), 0, Titled(Records(), "DESCRIPTION"), "another name");
        break;
      case kInputFieldsAdded:
        Fields().SelectRowAlone(0);
        Choose(Fields(), Cmd::InsertNewAbove);
        break;
      case kInputFieldsDeleted:
        Fields().SelectRowAlone(0);
        Choose(Fields(), Cmd::DeleteSelected);
        break;
      case kInputFieldsModified:
        Type(Fields(), 0, Titled(Fields(), "MATCH VALUE"), "x");
        break;
      case kOutputElementsAdded:
        Elements().SelectRowAlone(0);
        Choose(Elements(), Cmd::InsertNewAbove);
        break;
      case kOutputElementsDeleted:
        Elements().SelectRowAlone(0);
        WillAnswer(BoxAnswer::Yes);
        Choose(Elements(), Cmd::DeleteSelected);
        break;
      case kOutputElementsModified:
        Type(Elements(), 1, Titled(Elements(), "VALUE EXPRESSION"), "\"Q\"");
        break;
      default:
        dialogs.runs.emplace_back([](QDialog& shown) {
          dynamic_cast<CTNTemplateParamsDlg&>(shown).accept();
          return true;
        });
        Press(Ctrl::EditParams);
    }
    ASSERT_TRUE(Engine().IsTemplateModified());
  }
};

class MainDialogTriggerBitTest : public MainDialogTriggerTest,
                                 public testing::WithParamInterface<EditKind> {};

TEST_P(MainDialogTriggerBitTest, AnEditWhoseBitIsOnAppliesTheTemplateAgain) {
  LoadAndOpen();
  Engine().SetAutoApplicationFlags(GetParam());
  Edit(GetParam());
  EXPECT_EQ(Flags(), "applied");
}

TEST_P(MainDialogTriggerBitTest, AnEditWhoseBitAloneIsOffLeavesTheResultsStale) {
  LoadAndOpen();
  Engine().SetAutoApplicationFlags(kAllEdits & ~static_cast<std::uint32_t>(GetParam()));
  Edit(GetParam());
  EXPECT_EQ(Flags(), "applied stale");
  EXPECT_EQ(Cell(Rows(), 0, 1), "??");
}

INSTANTIATE_TEST_SUITE_P(EveryBit, MainDialogTriggerBitTest,
                         testing::Values(kRecordsAdded, kRecordsDeleted, kRecordsModified,
                                         kInputFieldsAdded, kInputFieldsDeleted,
                                         kInputFieldsModified, kOutputElementsAdded,
                                         kOutputElementsDeleted, kOutputElementsModified,
                                         kParametersChanged));

/// Bits of edits that are not what their name says at first sight.
class MainDialogOddTriggerTest : public MainDialogTriggerTest {
 protected:
  /// With only these bits on the edit applies the template again, and with all others it does not.
  template <class Work>
  void ExpectBit(EditKind bit, Work edit) {
    LoadAndOpen();
    Choose(Records(), Cmd::AppendNew);
    Records().SelectRowAlone(0);
    Fields().SelectRowAlone(0);
    Elements().SelectRowAlone(0);
    Engine().SetAutoApplicationFlags(kAllEdits & ~static_cast<std::uint32_t>(bit));
    edit();
    EXPECT_EQ(Flags(), "applied stale");
    Press(Ctrl::ApplyTemplate);
    Records().SelectRowAlone(1);
    Records().SelectRowAlone(0);
    Fields().SelectRowAlone(0);
    Elements().SelectRowAlone(0);
    Engine().SetAutoApplicationFlags(bit);
    edit();
    EXPECT_EQ(Flags(), "applied");
  }
  void PressMoveDown(CTNParserListCtrl& list) {
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Down, Qt::AltModifier);
    Settle();
  }
};

TEST_F(MainDialogOddTriggerTest, MovedRecordsAreModifiedOnes) {
  ExpectBit(kRecordsModified, [this] { PressMoveDown(Records()); });
}

TEST_F(MainDialogOddTriggerTest, MovedFieldsAreModifiedOnes) {
  ExpectBit(kInputFieldsModified, [this] { PressMoveDown(Fields()); });
}

TEST_F(MainDialogOddTriggerTest, MovedElementsAreModifiedOnes) {
  ExpectBit(kOutputElementsModified, [this] { PressMoveDown(Elements()); });
}

TEST_F(MainDialogOddTriggerTest, CopiedRecordsAreAddedOnes) {
  ExpectBit(kRecordsAdded, [this] { Choose(Records(), Cmd::CopyToThis); });
}

TEST_F(MainDialogOddTriggerTest, CopiedFieldsAreAddedOnes) {
  ExpectBit(kInputFieldsAdded, [this] { Choose(Fields(), Cmd::CopyToThis); });
}

TEST_F(MainDialogOddTriggerTest, CopiedElementsAreAddedOnes) {
  ExpectBit(kOutputElementsAdded, [this] { Choose(Elements(), Cmd::CopyToThis); });
}

TEST_F(MainDialogOddTriggerTest, FieldsCopiedToAllOtherRecordsAreAddedOnes) {
  ExpectBit(kInputFieldsAdded, [this] { Choose(Fields(), Cmd::CopyToAllOthers); });
}

TEST_F(MainDialogOddTriggerTest, TheRequiredElementSetCountsAsAddedElementsEvenWhenNothingLacks) {
  ExpectBit(kOutputElementsAdded, [this] { Choose(Records(), Cmd::CreateRequiredOutputSet); });
}

TEST_F(MainDialogOddTriggerTest, ARecordFromLinesIsAnAddedOne) {
  ExpectBit(kRecordsAdded, [this] {
    Rows().SelectRowAlone(1);
    Choose(Rows(), Cmd::CreateRecordFromSelected);
  });
}

TEST_F(MainDialogOddTriggerTest, ATypeThatCreatesElementsIsAModifiedRecord) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  Engine().SetAutoApplicationFlags(kRecordsModified);
  Pick(Records(), 1, Titled(Records(), "TYPE"), "Part");
  EXPECT_GT(Elements().model()->rowCount(), 0);
  EXPECT_EQ(Flags(), "applied");
}

TEST_F(MainDialogOddTriggerTest, WithNoBitNoEditAppliesTheTemplate) {
  LoadAndOpen();
  Engine().SetAutoApplicationFlags(0);
  for (const EditKind kind : {kRecordsModified, kInputFieldsModified, kOutputElementsModified,
                              kOutputElementsAdded, kInputFieldsAdded, kRecordsAdded}) {
    Edit(kind);
    EXPECT_EQ(Flags(), "applied stale");
  }
}

}  // namespace
}  // namespace bomparser::test
