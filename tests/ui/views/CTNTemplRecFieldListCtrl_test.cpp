#include "ui/views/CTNTemplRecFieldListCtrl.h"

#include "input/MessageTexts.h"
#include "tests/ui/views/TemplateListTest.h"
#include "ui/controls/CTNInPlaceComboBoxes.h"
#include "ui/views/CTNTemplRecOutFieldListCtrl.h"

#include <QScrollBar>

namespace bomparser::test {
namespace {

constexpr const char* kLatin1 = "Gr\xF6\xDF";
constexpr const char* kShown = "Größ";

class CTNTemplRecFieldListCtrlTest : public TemplateListTest {
 protected:
  using Col = FieldColumn;

  /// Shows these fields, as those of the template's first entity record.
  void Fill(const std::vector<FieldSpec>& fields) {
    record = &AddRecord(Document(), RecordKind::Part, "parts", fields);
    list = new CTNTemplRecFieldListCtrl(engine, kCaption);
    list->RestoreWidths(host);
    QObject::connect(list, &CTNTemplRecFieldListCtrl::MoveRequested, list,
                     [this](CTNTemplRecInField* before) { Tell("move " + NameOf(before)); });
    QObject::connect(list, &CTNTemplRecFieldListCtrl::SelectionHandedOn, list,
                     [this] { Tell("handed on " + std::to_string(list->GetGathered().size())); });
    list->ShowFields(record);
    Show(*list);
  }
  std::string NameOf(const CTNTemplRecInField* field) const {
    if (field == nullptr) return "to the end";
    std::string id;
    record->GetFieldID(field, id);
    return id;
  }
  CTNTemplRecInField& FieldAt(std::size_t place) const { return *record->GetInputFields()[place]; }
  CTNTemplateRecord& AddPins() {
    return AddRecord(Document(), RecordKind::SubRecord, "pins of a part", {Alpha()});
  }
  /// Puts the selected fields where the list asks for, as the dialog does.
  void MoveAsAsked() {
    QObject::connect(list, &CTNTemplRecFieldListCtrl::MoveRequested, list,
                     [this](CTNTemplRecInField* before) {
                       for (CTNTemplRecInField* field : list->GetSelectedFields())
                         EXPECT_TRUE(record->MoveField(field, before));
                       list->ShowFields(record);
                     });
  }
  template <class Column>
  Lines ColumnTexts(Column column) const {
    Lines texts;
    for (int row = 0; row < list->model()->rowCount(); ++row)
      texts.push_back(Text(row, column));
    return texts;
  }

  CTNTemplateRecord* record = nullptr;
  CTNTemplRecFieldListCtrl* list = nullptr;
};

// What is shown.

TEST_F(CTNTemplRecFieldListCtrlTest, HasItsEightColumnsWithTitlesInCapitals) {
  Fill({});
  EXPECT_EQ(Titles(), (Lines{"    ID", "TYPE", "REQUIRED?", "CURRENT VALUE", "MATCH VALUE",
                             "MATCH CASE?", "REPEATABLE?", "MATCH LENGTH"}));
}

TEST_F(CTNTemplRecFieldListCtrlTest, EveryTypeShowsWhatAppliesToItAndNotApplicableElsewhere) {
  AddPins();
  Fill({CaseSensitive(String("A|B")), Column(7), Alnum("x"), Alpha(), WholeNum("1"), DecimalNum(),
        Space(), Tab(), WhtSpace(), NotWhtSpace(), Optional(Newline()), Scan(3), SubRecord("A1"),
        Field(FieldKind::Undefined)});
  EXPECT_EQ(RowTexts(), (Lines{
                            "F1|STRING|TRUE||A|B|TRUE|N/A|N/A",
                            "F2|COLUMN|TRUE|||N/A|N/A|7",
                            "F3|ALPHANUMERIC|TRUE||x|FALSE|N/A|0",
                            "F4|ALPHA|TRUE|||FALSE|N/A|0",
                            "F5|WHOLE_NUM|TRUE||1|N/A|N/A|0",
                            "F6|DECIMAL_NUM|TRUE|||N/A|N/A|0",
                            "F7|SPACE|TRUE|||N/A|N/A|N/A",
                            "F8|TAB|TRUE|||N/A|N/A|N/A",
                            "F9|WHTSPACE|TRUE|||N/A|N/A|0",
                            "F10|NOT_WHTSPACE|TRUE|||N/A|N/A|0",
                            "F11|NEWLINE|FALSE|||N/A|N/A|N/A",
                            "F12|SCAN_TO_NEXT|TRUE|||N/A|N/A|3",
                            "F13|SUBRECORD|TRUE||A1|N/A|TRUE|N/A",
                            "F14|UNDEFINED|TRUE|||N/A|N/A|N/A",
                        }));
}

TEST_F(CTNTemplRecFieldListCtrlTest, WhatIsNotApplicableIsGreyAndTheCurrentValueAlways) {
  AddPins();
  Fill({String("A"), Column(2), SubRecord("A1")});
  const std::string grey = "#c0c0c0 on #ffffff";
  for (int row = 0; row < 3; ++row) {
    EXPECT_EQ(Colours(row, Col::CurrentValue), grey);
    for (const Col column : {Col::Id, Col::Type, Col::Required, Col::MatchValue})
      EXPECT_EQ(Colours(row, column), "theme");
  }
  const auto colours = [this](Col column) {
    return Lines{Colours(0, column), Colours(1, column), Colours(2, column)};
  };
  EXPECT_EQ(colours(Col::MatchCase), (Lines{"theme", grey, grey}));
  EXPECT_EQ(colours(Col::Repeatable), (Lines{grey, grey, "theme"}));
  EXPECT_EQ(colours(Col::MatchLength), (Lines{grey, "theme", grey}));
  FieldAt(1).SetMatchLength(-4);
  EXPECT_EQ(Text(1, Col::MatchLength), "-4");
  EXPECT_EQ(colours(Col::MatchLength), (Lines{grey, grey, grey}));
}

TEST_F(CTNTemplRecFieldListCtrlTest, CurrentValuesAreShownOnlyWhileResultsAreThoseOfTheTemplate) {
  Fill({Alnum(), Newline()});
  FieldAt(0).SetCurrentValue("old");
  EXPECT_EQ(Text(0, Col::CurrentValue), "");
  Open("R1\n");
  ASSERT_EQ(Apply(), "ok");
  FieldAt(0).SetCurrentValue("R1");
  EXPECT_EQ(Text(0, Col::CurrentValue), "R1");
  Document().SetModified(ChangeKind::Modified);
  EXPECT_EQ(Text(0, Col::CurrentValue), "");
}

TEST_F(CTNTemplRecFieldListCtrlTest, AValueOfAHundredThousandCharactersIsShownWhole) {
  Fill({Alnum(), Newline()});
  Open("a\n");
  ASSERT_EQ(Apply(), "ok");
  FieldAt(0).SetCurrentValue(std::string(100000, 'x'));
  Settle();
  EXPECT_EQ(Text(0, Col::CurrentValue).size(), 100000U);
}

TEST_F(CTNTemplRecFieldListCtrlTest, ThePictureTellsTheStateAndAClickShowsTheStatusOnce) {
  Fill({Alpha(), String(""), Newline()});
  FieldAt(2).SetStatusText("Note: looked at");
  list->ShowFields(record);
  EXPECT_EQ(StateOf(0), "valid");
  EXPECT_EQ(StateOf(1), "invalid");
  EXPECT_EQ(StateOf(2), "note");
  Click(0, Col::Id);
  EXPECT_TRUE(dialogs.boxes.empty());
  DoubleClick(1, Col::Id);
  DoubleClick(2, Col::Id);
  EXPECT_EQ(dialogs.boxes,
            (Lines{"error|BOM Parser|Error: Field type STRING requires at least one match value|Ok",
                   "information|BOM Parser|Note: looked at|Ok"}));
}

TEST_F(CTNTemplRecFieldListCtrlTest, ADoubleClickShowsTheStatusWhereTheColumnDoesNotApply) {
  Fill({String(""), Newline()});
  DoubleClick(0, Col::MatchLength);
  EXPECT_EQ(dialogs.boxes.size(), 1U);
  DoubleClick(0, Col::MatchValue);
  EXPECT_EQ(dialogs.boxes.size(), 1U);
}

TEST_F(CTNTemplRecFieldListCtrlTest, ARowWhoseFieldIsGoneSaysSo) {
  Fill({Alpha(), Space(), Newline()});
  const std::string gone = "Error: Input field ptr not available to list control";
  record->RemoveField(&FieldAt(1));
  EXPECT_EQ(Text(1, Col::Type), gone);
  EXPECT_EQ(StateOf(1), "invalid");
  EXPECT_EQ(ToolTip(1), gone);
  EXPECT_EQ(Text(0, Col::Type), "ALPHA");
  EXPECT_EQ(Text(2, Col::Type), "NEWLINE");
  Click(1, Col::Type);
  EXPECT_FALSE(list->IsEditing());
  Click(1, Col::Id);
  EXPECT_EQ(dialogs.boxes, Lines{"error|BOM Parser|" + gone + "|Ok"});
}

TEST_F(CTNTemplRecFieldListCtrlTest, ARowWhoseRecordIsGoneSaysThatItsFieldIs) {
  Fill({Alpha(), Newline()});
  engine.NewTemplate();
  EXPECT_EQ(Text(0, Col::MatchValue), "Error: Input field ptr not available to list control");
  EXPECT_EQ(list->GetRecord(), nullptr);
  EXPECT_TRUE(list->GetSelectedFields().empty());
  list->ShowFields(list->GetRecord());
  EXPECT_EQ(list->model()->rowCount(), 0);
}

TEST_F(CTNTemplRecFieldListCtrlTest, ARowWhoseFieldHasNoParentRecordSaysSo) {
  Fill({Alpha(), Newline()});
  FieldAt(0).SetParentRecord(nullptr);
  const std::string message = "Error: Input field parent record not available";
  EXPECT_EQ(Text(0, Col::Type), message);
  Click(0, Col::Id);
  EXPECT_EQ(dialogs.boxes, Lines{"error|BOM Parser|" + message + "|Ok"});
  FieldAt(0).SetParentRecord(record);
}

// Editing.

TEST_F(CTNTemplRecFieldListCtrlTest, ATypeIsChosenWithAllItsConsequences) {
  Fill({CaseSensitive(Alpha("a")), Newline()});
  Choose(0, Col::Type, "COLUMN");
  EXPECT_EQ(RowText(0), "F1|COLUMN|TRUE|||N/A|N/A|0");
  EXPECT_EQ(told, (Lines{"edited 32", "repaint"}));
  EXPECT_TRUE(Document().IsModified());
}

TEST_F(CTNTemplRecFieldListCtrlTest, AStringMadeOfAFieldWithAValueTakesThatValue) {
  Fill({Alpha(), Newline()});
  FieldAt(0).SetCurrentValue("TOP");
  Choose(0, Col::Type, "STRING");
  EXPECT_EQ(Text(0, Col::MatchValue), "TOP");
}

TEST_F(CTNTemplRecFieldListCtrlTest, RequiredSetToFalseOnOneOfThreeSelectedRowsChangesAllThree) {
  Fill({Alpha(), Space(), WholeNum(), Newline()});
  ClickRows({0, 1, 2});
  Choose(1, Col::Required, "FALSE");
  EXPECT_EQ(ColumnTexts(Col::Required), (Lines{"FALSE", "FALSE", "FALSE", "TRUE"}));
  EXPECT_EQ(told, (Lines{"edited 32", "repaint"}));
  EXPECT_EQ(list->GetSelectedRows(), (Rows{0, 1, 2}));
}

TEST_F(CTNTemplRecFieldListCtrlTest, ARowOutsideTheSelectionIsEditedAlone) {
  Fill({Alpha(), Space(), Newline()});
  ClickRows({0, 1});
  Choose(2, Col::Required, "FALSE");
  EXPECT_EQ(ColumnTexts(Col::Required), (Lines{"TRUE", "TRUE", "FALSE"}));
}

TEST_F(CTNTemplRecFieldListCtrlTest, AValueThatNoRowDiffersFromIsNoEditButARepaintIsAskedFor) {
  Fill({Alpha(), Newline()});
  Choose(0, Col::Required, "TRUE");
  EXPECT_EQ(told, Lines{"repaint"});
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(CTNTemplRecFieldListCtrlTest, RowsWhereTheColumnDoesNotApplyAreSkipped) {
  Fill({Alpha(), Space(), Alnum(), Newline()});
  ClickRows({0, 1, 2, 3});
  Choose(0, Col::MatchCase, "TRUE");
  EXPECT_EQ(ColumnTexts(Col::MatchCase), (Lines{"TRUE", "N/A", "TRUE", "N/A"}));
  EXPECT_FALSE(FieldAt(1).IsCaseSensitive());
  Type(0, Col::MatchLength, "5");
  EXPECT_EQ(ColumnTexts(Col::MatchLength), (Lines{"5", "N/A", "5", "N/A"}));
  EXPECT_EQ(FieldAt(1).GetMatchLength(), -1);
}

TEST_F(CTNTemplRecFieldListCtrlTest, FromTheFirstRowThatDiffersOnEveryRowGetsTheType) {
  Fill({String("A"), Alpha("B"), String("C"), Newline()});
  FieldAt(2).SetMatchValueText("");
  FieldAt(2).SetCurrentValue("sample");
  FieldAt(0).SetMatchValueText("");
  FieldAt(0).SetCurrentValue("sample");
  ClickRows({0, 1, 2});
  Choose(0, Col::Type, "STRING");
  // Giving STRING to a STRING again lets it take its current value, which shows who was given it.
  EXPECT_EQ(ColumnTexts(Col::MatchValue), (Lines{"", "B", "sample", ""}));
  EXPECT_EQ(FieldAt(1).GetType(), FieldKind::String);
}

TEST_F(CTNTemplRecFieldListCtrlTest, AMatchLengthIsTypedIn) {
  Fill({Column(3), Newline()});
  Type(0, Col::MatchLength, "12");
  EXPECT_EQ(FieldAt(0).GetMatchLength(), 12);
  Type(0, Col::MatchLength, " 7 lines");
  EXPECT_EQ(FieldAt(0).GetMatchLength(), 7);
  Type(0, Col::MatchLength, "-2");
  EXPECT_EQ(FieldAt(0).GetMatchLength(), -2);
  EXPECT_EQ(told, (Lines{"edited 32", "repaint", "edited 32", "repaint", "edited 32", "repaint"}));
}

TEST_F(CTNTemplRecFieldListCtrlTest, ZeroAsMatchLengthIsIgnored) {
  Fill({Column(3), Column(4), Newline()});
  ClickRows({0, 1});
  Type(0, Col::MatchLength, "0");
  EXPECT_EQ(ColumnTexts(Col::MatchLength), (Lines{"3", "4", "N/A"}));
  EXPECT_EQ(told, Lines{"repaint"});
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(CTNTemplRecFieldListCtrlTest, TextsThatCountAsZeroSetALengthThatWasAnother) {
  Fill({Column(3), Column(4), Newline()});
  Type(0, Col::MatchLength, "abc");
  EXPECT_EQ(FieldAt(0).GetMatchLength(), 0);
  Type(1, Col::MatchLength, "00");
  EXPECT_EQ(FieldAt(1).GetMatchLength(), 0);
  told.clear();
  Type(0, Col::MatchLength, "abc");
  EXPECT_EQ(told, Lines{"repaint"});
}

TEST_F(CTNTemplRecFieldListCtrlTest, AMatchLengthThatDoesNotApplyOpensNoEditor) {
  Fill({String("A"), Newline()});
  Click(0, Col::MatchLength);
  EXPECT_FALSE(list->IsEditing());
  EXPECT_EQ(list->GetSelectedRows(), Rows{0});
  list->setCurrentIndex(Cell(0, Col::MatchLength));
  Key(Qt::Key_F2);
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNTemplRecFieldListCtrlTest, ColumnsThatDoNotApplyOpenNoEditor) {
  Fill({Alpha(), Space(), Newline()});
  for (const Col column : {Col::Id, Col::CurrentValue, Col::Repeatable}) {
    Click(0, column);
    EXPECT_FALSE(list->IsEditing());
  }
  for (const Col column : {Col::MatchValue, Col::MatchCase, Col::Repeatable}) {
    Click(1, column);
    EXPECT_FALSE(list->IsEditing());
  }
}

TEST_F(CTNTemplRecFieldListCtrlTest, AMatchValueIsStoredAsTypedAndComparedExactly) {
  Fill({Alpha("a"), Newline()});
  Type(0, Col::MatchValue, "A");
  EXPECT_EQ(FieldAt(0).GetMatchValueText(), "A");
  Type(0, Col::MatchValue, " R|C ");
  EXPECT_EQ(FieldAt(0).GetMatchValueText(), " R|C ");
}

TEST_F(CTNTemplRecFieldListCtrlTest, AnInvalidValueIsTakenAndLeftToValidation) {
  Fill({WholeNum("1"), Newline()});
  Type(0, Col::MatchValue, "seven");
  EXPECT_EQ(FieldAt(0).GetMatchValueText(), "seven");
  EXPECT_TRUE(dialogs.boxes.empty());
  Document().Validate();
  list->ShowFields(record);
  EXPECT_EQ(StateOf(0), "invalid");
}

TEST_F(CTNTemplRecFieldListCtrlTest, AMatchValueLeftAsItIsKeepsItsBytes) {
  Fill({String(kLatin1), Newline()});
  CTNInPlaceEdit* const edit = OpenText(0, Col::MatchValue);
  EXPECT_EQ(edit->text(), kShown);
  QTest::keyClick(edit, Qt::Key_Return);
  Settle();
  EXPECT_EQ(FieldAt(0).GetMatchValueText(), kLatin1);
  EXPECT_EQ(told, Lines{"repaint"});
}

TEST_F(CTNTemplRecFieldListCtrlTest, BytesStayAlsoWhereAnotherSelectedRowGetsTheirText) {
  Fill({String("x"), String(kLatin1), Newline()});
  ClickRows({0, 1});
  Paste(0, Col::MatchValue, kShown);
  EXPECT_EQ(FieldAt(0).GetMatchValueText(), kShown);
  EXPECT_EQ(FieldAt(1).GetMatchValueText(), kLatin1);
}

TEST_F(CTNTemplRecFieldListCtrlTest, ASubRecordIsChosenAndItsIdentifierStored) {
  AddPins();
  CTNTemplateRecord& second = AddRecord(Document(), RecordKind::SubRecord, "second", {Alpha()});
  Fill({SubRecord("A1"), Newline()});
  CTNParserComboBox* const box = OpenCombo(0, Col::MatchValue);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->currentText(), "A1 - pins of a part");
  ChooseIn(box, "A2 - second");
  EXPECT_EQ(Text(0, Col::MatchValue), "A2");
  EXPECT_EQ(FieldAt(0).GetSubRecord(), &second);
  EXPECT_EQ(told, (Lines{"edited 32", "repaint"}));
}

TEST_F(CTNTemplRecFieldListCtrlTest, TheSubRecordThatAFieldHasChangesNothing) {
  AddPins();
  Fill({SubRecord("A1"), Newline()});
  Choose(0, Col::MatchValue, "A1 - pins of a part");
  EXPECT_EQ(told, Lines{"repaint"});
}

TEST_F(CTNTemplRecFieldListCtrlTest, OnlySubRecordRowsCutTheTextAtItsFirstBlank) {
  AddPins();
  Fill({SubRecord("A1"), String("x"), Newline()});
  FieldAt(0).ForgetSubRecord();
  ClickRows({0, 1});
  Type(1, Col::MatchValue, "A1 or more");
  EXPECT_EQ(Text(0, Col::MatchValue), "A1");
  EXPECT_EQ(Text(1, Col::MatchValue), "A1 or more");
}

TEST_F(CTNTemplRecFieldListCtrlTest, WithoutAuxiliaryRecordsTheMatchValueOfASubRecordSaysSo) {
  Fill({Field(FieldKind::SubRecord), Newline()});
  const Lines box = {"warning|BOM Parser|No Auxiliary records currently defined|Ok"};
  Click(0, Col::MatchValue);
  EXPECT_EQ(dialogs.boxes, box);
  EXPECT_FALSE(list->IsEditing());
  list->setCurrentIndex(Cell(0, Col::MatchValue));
  Key(Qt::Key_F2);
  EXPECT_EQ(dialogs.boxes.size(), 2U);
}

TEST_F(CTNTemplRecFieldListCtrlTest, WithSingleMatchRecordsAloneTheBoxIsEmptyAndChangesNothing) {
  AddRecord(Document(), RecordKind::SingleMatch, "header", {Newline()});
  Fill({Field(FieldKind::SubRecord), Newline()});
  CTNParserComboBox* const box = OpenCombo(0, Col::MatchValue);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->count(), 0);
  neighbour->setFocus();
  Settle();
  EXPECT_TRUE(dialogs.boxes.empty());
  EXPECT_EQ(Text(0, Col::MatchValue), "");
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(CTNTemplRecFieldListCtrlTest, ASubRecordFieldMayBeSetToNotRepeatable) {
  AddPins();
  Fill({SubRecord("A1"), Newline()});
  Choose(0, Col::Repeatable, "FALSE");
  EXPECT_FALSE(FieldAt(0).IsRepeatable());
  EXPECT_EQ(Text(0, Col::Repeatable), "FALSE");
}

TEST_F(CTNTemplRecFieldListCtrlTest, ASubRecordWhoseRecordWasDeletedIsUnresolvedAndStaysSo) {
  CTNTemplateRecord& pins = AddPins();
  Fill({SubRecord("A1"), Newline()});
  Document().DeleteRecord(&pins);
  Document().Validate();
  list->ShowFields(record);
  EXPECT_EQ(Text(0, Col::MatchValue), "??");
  EXPECT_EQ(StateOf(0), "invalid");
  AddPins();
  EXPECT_EQ(Text(0, Col::MatchValue), "??");
}

TEST_F(CTNTemplRecFieldListCtrlTest, EscapeAndTheFocusGoingToTheDialogDropAnEdit) {
  Fill({Alpha("a"), Newline()});
  QTest::keyClicks(OpenText(0, Col::MatchValue), "b");
  QTest::keyClick(list->GetEditor(), Qt::Key_Escape);
  Settle();
  QTest::keyClicks(OpenText(0, Col::MatchValue), "b");
  window.setFocus();
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_EQ(FieldAt(0).GetMatchValueText(), "a");
  EXPECT_TRUE(told.empty());
}

TEST_F(CTNTemplRecFieldListCtrlTest, TheFocusGoingElsewhereAppliesAnEdit) {
  Fill({Alpha("a"), Newline()});
  QTest::keyClicks(OpenText(0, Col::MatchValue), "b");
  neighbour->setFocus();
  Settle();
  EXPECT_EQ(FieldAt(0).GetMatchValueText(), "b");
}

TEST_F(CTNTemplRecFieldListCtrlTest, AFieldThatGoesUnderAnOpenEditorIsNotEdited) {
  Fill({Alpha("a"), Alpha("b"), Newline()});
  QTest::keyClicks(OpenText(1, Col::MatchValue), "c");
  record->RemoveField(&FieldAt(1));
  QTest::keyClick(list->GetEditor(), Qt::Key_Return);
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_FALSE(Document().IsModified());
  list->ShowFields(record);
  EXPECT_EQ(ColumnTexts(Col::MatchValue), (Lines{"a", ""}));
}

TEST_F(CTNTemplRecFieldListCtrlTest, ATypeThatChangesUnderAnOpenEditorMayLeaveNothingToEdit) {
  Fill({Column(3), Newline()});
  QTest::keyClicks(OpenText(0, Col::MatchLength), "9");
  FieldAt(0).SetType(FieldKind::Tab);
  QTest::keyClick(list->GetEditor(), Qt::Key_Return);
  Settle();
  EXPECT_EQ(FieldAt(0).GetMatchLength(), -1);
  EXPECT_FALSE(Document().IsModified());
}

// Refilling.

TEST_F(CTNTemplRecFieldListCtrlTest, ARefillKeepsTheSelectionByFieldAndAnotherRecordDropsIt) {
  Fill({Alpha(), Space(), Newline()});
  list->SelectRowAlone(1);
  record->AddInputField(FieldKind::Tab, true, &FieldAt(0));
  list->ShowFields(record);
  EXPECT_EQ(list->GetSelectedRows(), Rows{2});
  EXPECT_EQ(Text(2, Col::Type), "SPACE");
  list->ShowFields(&AddRecord(Document(), RecordKind::Part, "other", {Space(), Newline()}));
  EXPECT_TRUE(list->GetSelectedRows().empty());
  EXPECT_EQ(list->model()->rowCount(), 2);
  list->ShowFields(nullptr);
  EXPECT_EQ(list->model()->rowCount(), 0);
}

TEST_F(CTNTemplRecFieldListCtrlTest, AnOpenEditorSurvivesARefillWithTheSameFieldsOnly) {
  Fill({Alpha("a"), Newline()});
  QTest::keyClicks(OpenText(0, Col::MatchValue), "b");
  list->ShowFields(record);
  Settle();
  ASSERT_TRUE(list->IsEditing());
  record->AddInputField(FieldKind::Tab, true);
  list->ShowFields(record);
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_EQ(FieldAt(0).GetMatchValueText(), "a");
}

// Commands.

TEST_F(CTNTemplRecFieldListCtrlTest, TheMenuLacksTheRequiredOutputElements) {
  Fill({Alpha(), Newline()});
  EXPECT_EQ(MenuAt(0),
            "Append New\n"
            "Insert New Above Selected\n"
            "Delete Selected\n"
            "Change Type\n"
            "Append Copy To ...\n"
            "  This Record\n"
            "  All Other Records\n");
}

TEST_F(CTNTemplRecFieldListCtrlTest, BelowTheLastRowOnlyAppendNewIsOffered) {
  Fill({Alpha(), Newline()});
  const std::string menu = MenuAt(-1);
  EXPECT_EQ(menu.substr(0, menu.find("  ")),
            "Append New\n"
            "[Insert New Above Selected]\n"
            "[Delete Selected]\n"
            "[Change Type]\n"
            "[Append Copy To ...]\n");
}

TEST_F(CTNTemplRecFieldListCtrlTest, CommandsThatTheDialogDoesAreTold) {
  Fill({Alpha(), Newline()});
  for (const Cmd command : {Cmd::AppendNew, Cmd::InsertNewAbove, Cmd::DeleteSelected,
                            Cmd::CopyToThis, Cmd::CopyToAllOthers}) {
    Command(0, command);
  }
  EXPECT_EQ(told, (Lines{"command 45000", "command 45004", "command 45001", "command 45003",
                         "command 45007"}));
}

TEST_F(CTNTemplRecFieldListCtrlTest, ChangeTypeOpensOnTheFirstSelectedRowAndGoesToAllSelected) {
  Fill({Alpha(), Space(), Tab(), Newline()});
  ClickRows({2, 1});
  Command(2, Cmd::ChangeType);
  auto* const box = dynamic_cast<CTNInPlaceFieldTypeComboBox*>(list->GetEditor());
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->GetItem(), 1);
  ChooseIn(box, "WHTSPACE");
  EXPECT_EQ(ColumnTexts(Col::Type), (Lines{"ALPHA", "WHTSPACE", "WHTSPACE", "NEWLINE"}));
}

// Moving.

TEST_F(CTNTemplRecFieldListCtrlTest, DroppedFieldsGoBeforeTheRowHitInTheirOrderAndStaySelected) {
  Fill({Alpha("a"), Alpha("b"), Alpha("c"), Alpha("d")});
  MoveAsAsked();
  ClickRows({2, 3});
  const std::vector<CTNTemplRecInField*> moved = list->GetSelectedFields();
  EXPECT_TRUE(DropOnRow(0));
  EXPECT_EQ(told, Lines{"move F1"});
  EXPECT_EQ(ColumnTexts(Col::MatchValue), (Lines{"c", "d", "a", "b"}));
  EXPECT_EQ(ColumnTexts(Col::Id), (Lines{"F1", "F2", "F3", "F4"}));
  EXPECT_EQ(list->GetSelectedRows(), (Rows{0, 1}));
  EXPECT_EQ(list->GetSelectedFields(), moved);
  EXPECT_TRUE(DropBelowLastRow());
  EXPECT_EQ(ColumnTexts(Col::MatchValue), (Lines{"a", "b", "c", "d"}));
}

TEST_F(CTNTemplRecFieldListCtrlTest, AltWithAnArrowMovesFieldsByOneRow) {
  Fill({Alpha("a"), Alpha("b"), Alpha("c")});
  MoveAsAsked();
  ClickRows({0});
  Key(Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(ColumnTexts(Col::MatchValue), (Lines{"b", "a", "c"}));
  Key(Qt::Key_Down, Qt::AltModifier);
  Key(Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(ColumnTexts(Col::MatchValue), (Lines{"b", "c", "a"}));
  Key(Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(ColumnTexts(Col::MatchValue), (Lines{"b", "a", "c"}));
  EXPECT_EQ(list->GetSelectedRows(), Rows{1});
}

TEST_F(CTNTemplRecFieldListCtrlTest, OutputElementsAreAcceptedAndChangeNothing) {
  Fill({Alpha("a"), Newline()});
  AddOutput(*record, Designator("F1"));
  CTNTemplRecOutFieldListCtrl elements(engine, kCaption);
  elements.ShowElements(record);
  elements.show();
  elements.SelectRowAlone(0);
  ClickRows({0, 1});
  EXPECT_TRUE(Drop(elements, *list, At(1, Col::Id)));
  EXPECT_EQ(told, Lines{"handed on 2"});
  EXPECT_EQ(ColumnTexts(Col::Type), (Lines{"ALPHA", "NEWLINE"}));
  EXPECT_EQ(record->GetOutputFields().size(), 1U);
  EXPECT_FALSE(Document().IsModified());
  EXPECT_FALSE(Drop(*list, elements, QPoint(5, 5)));
}

// Widths, names, sizes.

TEST_F(CTNTemplRecFieldListCtrlTest, WidthsAreKeptUnderTheListsName) {
  host.profile["BOM Parser/INPUT_FIELD_LIST"] = "51,102,53";
  Fill({});
  EXPECT_EQ(list->columnWidth(1), 102);
  for (int column = 3; column < 8; ++column)
    EXPECT_GE(list->columnWidth(column), list->fontMetrics().horizontalAdvance(Title(column)));
  for (int column = 0; column < 8; ++column)
    list->setColumnWidth(column, 60 + column);
  EXPECT_TRUE(list->StoreWidths(host));
  EXPECT_EQ(host.profile["BOM Parser/INPUT_FIELD_LIST"], "60,61,62,63,64,65,66,67");
}

TEST_F(CTNTemplRecFieldListCtrlTest, TheListIsNamedAndNumbered) {
  Fill({});
  EXPECT_EQ(list->accessibleName(), "Input Data Field Pattern For Selected Record");
  EXPECT_EQ(GetControlId(*list), Ctrl::InputFields);
}

TEST_F(CTNTemplRecFieldListCtrlTest, AThousandFieldsAreShownEditedAndKeptInOrder) {
  Fill(std::vector<FieldSpec>(1000, Alpha()));
  EXPECT_EQ(Text(999, Col::Id), "F1000");
  list->verticalScrollBar()->setValue(700);
  Key(Qt::Key_A, Qt::ControlModifier);
  Choose(990, Col::Required, "FALSE");
  EXPECT_FALSE(FieldAt(0).IsRequired());
  EXPECT_FALSE(FieldAt(999).IsRequired());
  list->ShowFields(record);
  EXPECT_EQ(list->GetSelectedRows().size(), 1000U);
}

TEST_F(CTNTemplRecFieldListCtrlTest, PictureOfEveryState) {
  AddPins();
  host.profile["BOM Parser/INPUT_FIELD_LIST"] = "80,140,90,130,130,110,110,110";
  Fill({CaseSensitive(String("R|C")), Alnum(), Column(7), Optional(Space()), SubRecord("A1"),
        String(""), Newline()});
  FieldAt(1).SetStatusText("Note: looked at");
  record->AddInputField(FieldKind::Tab, true);
  Open("R1\n");
  ASSERT_EQ(Apply(), "ok");
  FieldAt(0).SetCurrentValue("R");
  FieldAt(1).SetCurrentValue("1");
  list->ShowFields(record);
  record->RemoveField(&FieldAt(7));
  list->SelectRowAlone(2);
  EXPECT_TRUE(Screenshot(window, "fields"));
  OpenCombo(4, Col::MatchValue);
  EXPECT_TRUE(Screenshot(window, "fields-sub-record"));
  list->DropEdit();
  OpenCombo(1, Col::Type);
  EXPECT_TRUE(Screenshot(*list->GetEditor()->findChild<QAbstractItemView*>()->window(),
                         "fields-type-list"));
  list->DropEdit();
  OpenText(2, Col::MatchLength);
  EXPECT_TRUE(Screenshot(window, "fields-match-length"));
}

TEST_F(CTNTemplRecFieldListCtrlTest, TabAppliesAnEdit) {
  Fill({Alpha(), Newline()});
  ASSERT_NE(OpenText(0, Col::MatchValue), nullptr);
  QTest::keyClicks(list->GetEditor(), "x");
  QTest::keyClick(list->GetEditor(), Qt::Key_Tab);
  Settle();
  EXPECT_EQ(Text(0, Col::MatchValue), "x");
}

TEST_F(CTNTemplRecFieldListCtrlTest, ABoxThatIsLeftWithoutAValueAsksForARepaintToo) {
  AddRecord(Document(), RecordKind::SingleMatch, "header", {Newline()});
  Fill({Field(FieldKind::SubRecord), Newline()});
  ASSERT_NE(OpenCombo(0, Col::MatchValue), nullptr);
  neighbour->setFocus();
  Settle();
  EXPECT_EQ(told, Lines{"repaint"});
}

TEST_F(CTNTemplRecFieldListCtrlTest, WhoeverIsAskedForThatRepaintMayShowOtherRows) {
  AddRecord(Document(), RecordKind::SingleMatch, "header", {Newline()});
  Fill({Field(FieldKind::SubRecord), Newline()});
  QObject::connect(list, &CTNTemplateListCtrl::RepaintWanted, list,
                   [this] { list->ShowFields(nullptr); });
  ASSERT_NE(OpenCombo(0, Col::MatchValue), nullptr);
  neighbour->setFocus();
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_EQ(list->model()->rowCount(), 0);
}

TEST_F(CTNTemplRecFieldListCtrlTest, WhoeverIsAskedForThatRepaintMayDeleteTheList) {
  AddRecord(Document(), RecordKind::SingleMatch, "header", {Newline()});
  Fill({Field(FieldKind::SubRecord), Newline()});
  const QPointer<QWidget> alive(list);
  QObject::connect(list, &CTNTemplateListCtrl::RepaintWanted, neighbour, [this] { delete list; });
  CTNParserComboBox* const box = OpenCombo(0, Col::MatchValue);
  ASSERT_NE(box, nullptr);
  QTest::keyClick(box->view(), Qt::Key_Tab);
  Settle();
  EXPECT_TRUE(alive.isNull());
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(CTNTemplRecFieldListCtrlTest, ASubRecordOfTheSameTextIsLookedForAgain) {
  Fill({SubRecord("A2"), SubRecord("A1"), Newline()});
  AddPins();
  list->ShowFields(list->GetRecord());
  const auto& fields = list->GetRecord()->GetInputFields();
  ASSERT_EQ(fields[1]->GetSubRecord(), nullptr);
  list->SetSelectedRows({0, 1});
  CTNParserComboBox* const box = OpenCombo(0, Col::MatchValue);
  ASSERT_NE(box, nullptr);
  ChooseIn(box, box->itemText(0));
  EXPECT_NE(fields[0]->GetSubRecord(), nullptr);
  EXPECT_EQ(fields[1]->GetSubRecord(), fields[0]->GetSubRecord());
}

}  // namespace
}  // namespace bomparser::test
