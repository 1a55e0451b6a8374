#include "ui/views/CTNTemplRecOutFieldListCtrl.h"

#include "input/MessageTexts.h"
#include "tests/ui/views/TemplateListTest.h"
#include "ui/controls/CTNInPlaceComboBoxes.h"
#include "ui/views/CTNTemplRecFieldListCtrl.h"

namespace bomparser::test {
namespace {

OutputSpec Element(OutputTag tag, std::string_view expression = "F1") {
  return {tag, std::string(expression)};
}

class CTNTemplRecOutFieldListCtrlTest : public TemplateListTest {
 protected:
  using Col = ElementColumn;

  /// Shows these elements, as those of a record of the type with two input fields.
  void Fill(RecordKind kind, const std::vector<OutputSpec>& elements,
            const std::string& description = "things") {
    record = &AddRecord(Document(), kind, description, {Alnum(), Newline()}, elements);
    list = new CTNTemplRecOutFieldListCtrl(engine, kCaption);
    list->RestoreWidths(host);
    QObject::connect(list, &CTNTemplRecOutFieldListCtrl::MoveRequested, list,
                     [this](CTNTemplRecOutField* before) { Tell("move " + NameOf(before)); });
    list->ShowElements(record);
    Show(*list);
  }
  std::string NameOf(const CTNTemplRecOutField* element) const {
    if (element == nullptr) return "to the end";
    std::string id;
    record->GetFieldID(element, id);
    return id;
  }
  CTNTemplRecOutField& ElementAt(std::size_t place) const {
    return *record->GetOutputFields()[place];
  }
  Lines Tags() const {
    Lines tags;
    for (const auto& element : record->GetOutputFields())
      tags.emplace_back(element->GetTagText());
    return tags;
  }
  Lines Expressions() const {
    Lines texts;
    for (const auto& element : record->GetOutputFields())
      texts.push_back(element->GetExpression());
    return texts;
  }
  static std::string Question(const std::string& tag) {
    return "question|BOM Parser|Output element with tag " + tag +
           " is required for this record.\nAre you sure you want to delete this element?|YesNo";
  }

  CTNTemplateRecord* record = nullptr;
  CTNTemplRecOutFieldListCtrl* list = nullptr;
};

// What is shown.

TEST_F(CTNTemplRecOutFieldListCtrlTest, HasItsFourColumnsWithTitlesInCapitals) {
  Fill(RecordKind::Part, {});
  EXPECT_EQ(Titles(), (Lines{"    ID", "ELEMENT TAG", "VALUE EXPRESSION", "CURRENT VALUE"}));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ShowsTheExpressionAsItWasUnderstood) {
  Fill(RecordKind::Part,
       {Designator("f1"), PartNumber("\"P\" f1"), Element(OutputTag::None, "zz")});
  EXPECT_EQ(RowTexts(), (Lines{"V1|REF_DESIGNATOR|" + ElementAt(0).GetExpressionText() + "|",
                               "V2|PART_NUMBER|" + ElementAt(1).GetExpressionText() + "|",
                               "V3|NONE|" + ElementAt(2).GetExpressionText() + "|"}));
  EXPECT_EQ(Text(0, Col::Expression), "F1");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, CurrentValuesAreShownFromAnApplicationToTheNextEdit) {
  Fill(RecordKind::Part, {Designator("F1"), PartNumber()});
  ElementAt(0).SetCurrentValue("old");
  EXPECT_EQ(Text(0, Col::CurrentValue), "");
  Open("R1\n");
  ASSERT_EQ(Apply(), "ok");
  ASSERT_TRUE(record->SetValuesFromBlock(InFile().GetBlocks().GetAt(0)));
  EXPECT_EQ(Text(0, Col::CurrentValue), "R1");
  Document().SetModified(ChangeKind::Modified);
  EXPECT_EQ(Text(0, Col::CurrentValue), "");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ScaleIsGreenInAnApertureRecordAndWhiteInAPart) {
  Fill(RecordKind::Aperture, {Element(OutputTag::Scale)}, "Round");
  EXPECT_EQ(Colours(0, Col::Id), "#000000 on #c8ffc8");
  EXPECT_EQ(Colours(0, Col::Tag), "#000000 on #c8ffc8");
  EXPECT_EQ(Colours(0, Col::Expression), "#000000 on #c8ffc8");
  EXPECT_EQ(Colours(0, Col::CurrentValue), "#c0c0c0 on #c8ffc8");
  record->SetType(RecordKind::Part);
  EXPECT_EQ(Colours(0, Col::Tag), "theme");
  EXPECT_EQ(Colours(0, Col::CurrentValue), "#c0c0c0 on #ffffff");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, WhatAShapeRequiresIsGreenToo) {
  Fill(RecordKind::Aperture, {Element(OutputTag::Width)}, "Rectangle");
  EXPECT_EQ(Colours(0, Col::Tag), "#000000 on #c8ffc8");
  record->SetDescription("Round");
  EXPECT_EQ(Colours(0, Col::Tag), "theme");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, GreenIsAlsoSaidInWords) {
  Fill(RecordKind::Part, {Designator("F1"), Element(OutputTag::Rotation)});
  EXPECT_EQ(ToolTip(0), "Output element tag REF_DESIGNATOR is required for record type Part");
  EXPECT_EQ(Cell(0, Col::Tag).data(Qt::AccessibleDescriptionRole),
            "Output element tag REF_DESIGNATOR is required for record type Part");
  EXPECT_EQ(ToolTip(1), "Note: Output element ROTATION is not required for record type Part");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, EveryTagIsAllowedSoNoRowIsPink) {
  Fill(RecordKind::Part, {Element(OutputTag::DCode), Element(OutputTag::TCode)});
  EXPECT_EQ(Colours(0, Col::Tag), "theme");
  EXPECT_EQ(Colours(1, Col::Tag), "theme");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ThePictureTellsTheStateAndAClickShowsTheStatusOnce) {
  Fill(RecordKind::Part, {Designator("F1"), PartNumber(), Element(OutputTag::Undefined)});
  ElementAt(1).SetDefaultExpression();
  EXPECT_EQ(StateOf(0), "valid");
  EXPECT_EQ(StateOf(1), "note");
  EXPECT_EQ(StateOf(2), "invalid");
  DoubleClick(0, Col::Id);
  EXPECT_TRUE(dialogs.boxes.empty());
  DoubleClick(1, Col::Id);
  DoubleClick(2, Col::Id);
  DoubleClick(2, Col::CurrentValue);
  DoubleClick(2, Col::Expression);
  EXPECT_EQ(dialogs.boxes,
            (Lines{"information|BOM Parser|Note: Default used for value expression|Ok",
                   "error|BOM Parser|Error: Undefined output element tag|Ok",
                   "error|BOM Parser|Error: Undefined output element tag|Ok"}));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, TheRowOfAnElementThatIsGoneIsEmpty) {
  Fill(RecordKind::Part, {Designator("F1"), PartNumber()});
  record->RemoveField(&ElementAt(0));
  EXPECT_EQ(RowTexts()[0], "|||");
  EXPECT_EQ(StateOf(0), "invalid");
  EXPECT_EQ(Text(1, Col::Tag), "PART_NUMBER");
  Click(0, Col::Expression);
  EXPECT_FALSE(list->IsEditing());
  engine.NewTemplate();
  EXPECT_EQ(RowTexts(), (Lines{"|||", "|||"}));
  EXPECT_EQ(list->GetRecord(), nullptr);
}

// Editing.

TEST_F(CTNTemplRecOutFieldListCtrlTest, ATagIsChosenAmongThoseThatSuitTheRecord) {
  Fill(RecordKind::Drill, {Element(OutputTag::TCode)});
  CTNParserComboBox* const box = OpenCombo(0, Col::Tag);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->currentText(), "TCODE");
  EXPECT_EQ(box->findText("DCODE"), -1);
  ChooseIn(box, "DIAMETER");
  EXPECT_EQ(ElementAt(0).GetTag(), OutputTag::Diameter);
  EXPECT_EQ(told, (Lines{"edited 256", "repaint"}));
  EXPECT_TRUE(Document().IsModified());
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ScaleBringsItsDefaultExpressionWhereThereIsNone) {
  Fill(RecordKind::Drill, {Element(OutputTag::TCode, "")});
  Choose(0, Col::Tag, "SCALE");
  EXPECT_EQ(ElementAt(0).GetExpression(), "TEMPL_SCALE");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ANewElementsTagBoxLeftWithoutAChoiceChangesNothing) {
  Fill(RecordKind::Part, {Element(OutputTag::Undefined)});
  CTNParserComboBox* const box = OpenCombo(0, Col::Tag);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->currentText(), "REF_DESIGNATOR");
  neighbour->setFocus();
  Settle();
  EXPECT_EQ(ElementAt(0).GetTag(), OutputTag::Undefined);
  EXPECT_TRUE(told.empty());
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, TheSameTagChangesNothing) {
  Fill(RecordKind::Part, {Designator("F1")});
  Choose(0, Col::Tag, "REF_DESIGNATOR");
  EXPECT_TRUE(told.empty());
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ATagGoesToAllSelectedFromTheFirstThatDiffersOn) {
  Fill(RecordKind::Drill, {Element(OutputTag::Scale, ""), Element(OutputTag::TCode, ""),
                           Element(OutputTag::Scale, ""), Element(OutputTag::Radius)});
  ElementAt(0).SetExpression("");
  ElementAt(2).SetExpression("");
  ClickRows({0, 1, 2});
  Choose(0, Col::Tag, "SCALE");
  // Giving SCALE again brings its default expression, which shows who was given it.
  EXPECT_EQ(Expressions(), (Lines{"", "TEMPL_SCALE", "TEMPL_SCALE", "F1"}));
  EXPECT_EQ(Tags(), (Lines{"SCALE", "SCALE", "SCALE", "RADIUS"}));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, TheExpressionEditorOpensWithTheTextAsTheUserWroteIt) {
  Fill(RecordKind::Part, {Designator("f1")});
  EXPECT_EQ(Text(0, Col::Expression), "F1");
  CTNInPlaceEdit* const edit = OpenText(0, Col::Expression);
  ASSERT_NE(edit, nullptr);
  EXPECT_EQ(edit->text(), "f1");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, AnExpressionIsStoredAsTypedAndValidated) {
  Fill(RecordKind::Part, {Designator("F1")});
  Type(0, Col::Expression, " \"R\" F1 ");
  EXPECT_EQ(ElementAt(0).GetExpression(), " \"R\" F1 ");
  EXPECT_EQ(ElementAt(0).IsValid(), 1);
  EXPECT_EQ(told, (Lines{"edited 256", "repaint"}));
  Type(0, Col::Expression, "V1");
  EXPECT_EQ(ElementAt(0).IsValid(), 0);
  EXPECT_EQ(StateOf(0), "invalid");
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, AChangeOfCaseAloneDoesNothing) {
  Fill(RecordKind::Part, {Designator("F1")});
  Type(0, Col::Expression, "f1");
  EXPECT_EQ(ElementAt(0).GetExpression(), "F1");
  EXPECT_TRUE(told.empty());
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, FromTheFirstThatDiffersOnEveryElementGetsTheExpression) {
  Fill(RecordKind::Part, {Designator("f1"), PartNumber("F2"), Element(OutputTag::Rotation, "f1"),
                          Element(OutputTag::Scale, "F2")});
  ClickRows({0, 1, 2});
  Type(1, Col::Expression, "F1");
  EXPECT_EQ(Expressions(), (Lines{"f1", "F1", "F1", "F2"}));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, AnExpressionLeftAsItIsKeepsItsBytes) {
  const std::string bytes = "\"\xB5m\"";
  Fill(RecordKind::Part, {Designator("F1"), PartNumber(bytes)});
  CTNInPlaceEdit* const edit = OpenText(1, Col::Expression);
  EXPECT_EQ(edit->text(), "\"µm\"");
  QTest::keyClick(edit, Qt::Key_Return);
  Settle();
  EXPECT_EQ(ElementAt(1).GetExpression(), bytes);
  EXPECT_TRUE(told.empty());
  ClickRows({0, 1});
  Paste(0, Col::Expression, "\"µm\"");
  EXPECT_EQ(Expressions(), (Lines{"\"µm\"", bytes}));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, EscapeAndTheFocusGoingToTheDialogDropAnEdit) {
  Fill(RecordKind::Part, {Designator("F1")});
  QTest::keyClicks(OpenText(0, Col::Expression), "F2");
  QTest::keyClick(list->GetEditor(), Qt::Key_Escape);
  Settle();
  QTest::keyClicks(OpenText(0, Col::Expression), "F2");
  window.setFocus();
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_EQ(ElementAt(0).GetExpression(), "F1");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, IdentifiersAndCurrentValuesAreNotEdited) {
  Fill(RecordKind::Part, {Designator("F1")});
  Click(0, Col::Id);
  EXPECT_FALSE(list->IsEditing());
  Click(0, Col::CurrentValue);
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, AnElementThatGoesUnderAnOpenEditorIsNotEdited) {
  Fill(RecordKind::Part, {Designator("F1"), PartNumber()});
  QTest::keyClicks(OpenText(1, Col::Expression), "F2");
  record->RemoveField(&ElementAt(1));
  QTest::keyClick(list->GetEditor(), Qt::Key_Return);
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_TRUE(told.empty());
}

// Deleting.

TEST_F(CTNTemplRecOutFieldListCtrlTest, DeletingTheOnlyRequiredElementOfItsTagAsksFirst) {
  Fill(RecordKind::Aperture, {Element(OutputTag::DCode), Element(OutputTag::Radius)}, "Round");
  list->SelectRowAlone(0);
  dialogs.answers = {BoxAnswer::No};
  EXPECT_EQ(list->DeleteSelected(), 0U);
  EXPECT_EQ(dialogs.boxes, Lines{Question("DCODE")});
  EXPECT_EQ(Tags(), (Lines{"DCODE", "RADIUS"}));
  dialogs.answers = {BoxAnswer::Yes};
  EXPECT_EQ(list->DeleteSelected(), 1U);
  EXPECT_EQ(Tags(), Lines{"RADIUS"});
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, DeletingOneOfTwoOfARequiredTagDoesNotAsk) {
  Fill(RecordKind::Aperture, {Element(OutputTag::DCode), Element(OutputTag::DCode, "F2")}, "Round");
  list->SelectRowAlone(0);
  EXPECT_EQ(list->DeleteSelected(), 1U);
  EXPECT_TRUE(dialogs.boxes.empty());
  EXPECT_EQ(Expressions(), Lines{"F2"});
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, DeletingBothOfARequiredTagAsksForTheLastThatIsLeft) {
  Fill(RecordKind::Aperture, {Element(OutputTag::DCode), Element(OutputTag::DCode, "F2")}, "Round");
  Key(Qt::Key_A, Qt::ControlModifier);
  dialogs.answers = {BoxAnswer::No};
  EXPECT_EQ(list->DeleteSelected(), 1U);
  EXPECT_EQ(dialogs.boxes, Lines{Question("DCODE")});
  EXPECT_EQ(Expressions(), Lines{"F1"});
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ElementsAreDeletedFromTheLastToTheFirst) {
  Fill(RecordKind::Part, {Designator("F1"), Element(OutputTag::Rotation), PartNumber()});
  Key(Qt::Key_A, Qt::ControlModifier);
  dialogs.answers = {BoxAnswer::Yes, BoxAnswer::No};
  EXPECT_EQ(list->DeleteSelected(), 2U);
  EXPECT_EQ(dialogs.boxes, (Lines{Question("PART_NUMBER"), Question("REF_DESIGNATOR")}));
  EXPECT_EQ(Tags(), Lines{"REF_DESIGNATOR"});
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, WhatTheTypeDoesNotRequireIsDeletedWithoutAQuestion) {
  Fill(RecordKind::Part, {Element(OutputTag::DCode)});
  list->SelectRowAlone(0);
  EXPECT_EQ(list->DeleteSelected(), 1U);
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, WhatCannotBeDeletedIsNamedByItsPlaceInTheSelection) {
  Fill(RecordKind::Part, {Element(OutputTag::Rotation), Element(OutputTag::Scale),
                          Element(OutputTag::Units), Element(OutputTag::DimX)});
  ClickRows({1, 2, 3});
  record->RemoveField(&ElementAt(2));
  EXPECT_EQ(list->DeleteSelected(), 2U);
  EXPECT_EQ(dialogs.boxes, Lines{"error|BOM Parser|Error deleting Outfield #2 in selection|Ok"});
  EXPECT_EQ(Tags(), Lines{"ROTATION"});
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, AnElementThatGoesDuringTheQuestionIsToldAsNotDeleted) {
  Fill(RecordKind::Part, {Designator("F1")});
  list->SelectRowAlone(0);
  dialogs.answers = {BoxAnswer::Yes};
  dialogs.whileAsking = [this] { engine.NewTemplate(); };
  EXPECT_EQ(list->DeleteSelected(), 0U);
  EXPECT_EQ(dialogs.boxes, (Lines{Question("REF_DESIGNATOR"),
                                  "error|BOM Parser|Error deleting Outfield #1 in selection|Ok"}));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, WithoutASelectionNothingIsDeleted) {
  Fill(RecordKind::Part, {Designator("F1")});
  EXPECT_EQ(list->DeleteSelected(), 0U);
  EXPECT_EQ(Tags().size(), 1U);
}

// Commands.

TEST_F(CTNTemplRecOutFieldListCtrlTest, TheMenuSaysChangeTagAndLacksTheRequiredOutputElements) {
  Fill(RecordKind::Part, {Designator("F1")});
  EXPECT_EQ(MenuAt(0),
            "Append New\n"
            "Insert New Above Selected\n"
            "Delete Selected\n"
            "Change Tag\n"
            "Append Copy To ...\n"
            "  This Record\n"
            "  All Other Records\n");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, BelowTheLastRowOnlyAppendNewIsOffered) {
  Fill(RecordKind::Part, {Designator("F1")});
  const std::string menu = MenuAt(-1);
  EXPECT_EQ(menu.substr(0, menu.find("  ")),
            "Append New\n"
            "[Insert New Above Selected]\n"
            "[Delete Selected]\n"
            "[Change Tag]\n"
            "[Append Copy To ...]\n");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, CommandsThatTheDialogDoesAreTold) {
  Fill(RecordKind::Part, {Designator("F1")});
  for (const Cmd command : {Cmd::AppendNew, Cmd::InsertNewAbove, Cmd::DeleteSelected,
                            Cmd::CopyToThis, Cmd::CopyToAllOthers}) {
    Command(0, command);
  }
  EXPECT_EQ(told, (Lines{"command 45000", "command 45004", "command 45001", "command 45003",
                         "command 45007"}));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ChangeTagOpensOnTheFirstSelectedRowAndGoesToAllSelected) {
  Fill(RecordKind::Part, {Designator("F1"), PartNumber(), Element(OutputTag::Rotation)});
  ClickRows({2, 1});
  Command(2, Cmd::ChangeType);
  auto* const box = dynamic_cast<CTNInPlaceOutFieldKeyComboBox*>(list->GetEditor());
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->GetItem(), 1);
  ChooseIn(box, "SCALE");
  EXPECT_EQ(Tags(), (Lines{"REF_DESIGNATOR", "SCALE", "SCALE"}));
}

// Moving and refilling.

TEST_F(CTNTemplRecOutFieldListCtrlTest, DroppedElementsGoBeforeTheRowHitAndStaySelected) {
  Fill(RecordKind::Part, {Designator("F1"), PartNumber(), Element(OutputTag::Rotation)});
  QObject::connect(list, &CTNTemplRecOutFieldListCtrl::MoveRequested, list,
                   [this](CTNTemplRecOutField* before) {
                     for (CTNTemplRecOutField* element : list->GetSelectedElements())
                       EXPECT_TRUE(record->MoveField(element, before));
                     list->ShowElements(record);
                   });
  ClickRows({1, 2});
  const std::vector<CTNTemplRecOutField*> moved = list->GetSelectedElements();
  EXPECT_TRUE(DropOnRow(0));
  EXPECT_EQ(told, Lines{"move V1"});
  EXPECT_EQ(Tags(), (Lines{"PART_NUMBER", "ROTATION", "REF_DESIGNATOR"}));
  EXPECT_EQ(list->GetSelectedRows(), (Rows{0, 1}));
  EXPECT_EQ(list->GetSelectedElements(), moved);
  Key(Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(told.back(), "move to the end");
  EXPECT_EQ(Tags(), (Lines{"REF_DESIGNATOR", "PART_NUMBER", "ROTATION"}));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ElementsAreDroppedOnTheirOwnAndTheFieldListOnly) {
  Fill(RecordKind::Part, {Designator("F1")});
  const CTNTemplRecFieldListCtrl fields(engine, kCaption);
  const CTNTemplRecOutFieldListCtrl other(engine, kCaption);
  EXPECT_TRUE(list->CanDropOn(list));
  EXPECT_TRUE(list->CanDropOn(&fields));
  EXPECT_FALSE(list->CanDropOn(&other));
  EXPECT_FALSE(list->CanDropOn(neighbour));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ARefillKeepsTheSelectionByElement) {
  Fill(RecordKind::Part, {Designator("F1"), PartNumber()});
  list->SelectRowAlone(1);
  record->InsertField(std::make_unique<CTNTemplRecOutField>(record), &ElementAt(0));
  list->ShowElements(record);
  EXPECT_EQ(list->GetSelectedRows(), Rows{2});
  EXPECT_EQ(Text(0, Col::Tag), "UNDEFINED");
  list->ShowElements(nullptr);
  EXPECT_EQ(list->model()->rowCount(), 0);
}

// Widths and names.

TEST_F(CTNTemplRecOutFieldListCtrlTest, WidthsAreKeptUnderTheListsName) {
  host.profile["BOM Parser/OUTPUT_FIELD_LIST"] = "51,102,203";
  Fill(RecordKind::Part, {});
  EXPECT_EQ(list->columnWidth(2), 203);
  EXPECT_GE(list->columnWidth(3), list->fontMetrics().horizontalAdvance("CURRENT VALUE"));
  list->setColumnWidth(3, 99);
  EXPECT_TRUE(list->StoreWidths(host));
  EXPECT_EQ(host.profile["BOM Parser/OUTPUT_FIELD_LIST"], "51,102,203,99");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, CurrentValueIsAsWideAsItsTitleWhateverItShows) {
  record = &AddRecord(Document(), RecordKind::Part, "parts", {Alnum(), Newline()},
                      {Designator("F1"), PartNumber()});
  Open("R1\n");
  ASSERT_EQ(Apply(), "ok");
  record->GetOutputFields()[0]->SetCurrentValue("a value that is longer than the title");
  CTNTemplRecOutFieldListCtrl elements(engine, kCaption);
  elements.RestoreWidths(host);
  elements.ShowElements(record);
  EXPECT_EQ(elements.columnWidth(3), elements.horizontalHeader()->sectionSizeHint(3));
  EXPECT_GE(elements.columnWidth(1), elements.fontMetrics().horizontalAdvance("REF_DESIGNATOR"));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, TheListIsNamedAndNumbered) {
  Fill(RecordKind::Part, {});
  EXPECT_EQ(list->accessibleName(), "Output Element Values For Selected Record");
  EXPECT_EQ(GetControlId(*list), Ctrl::OutputElements);
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, AThousandElementsAreShownAndDeletedTogether) {
  Fill(RecordKind::Part, std::vector<OutputSpec>(1000, Element(OutputTag::Rotation)));
  EXPECT_EQ(Text(999, Col::Id), "V1000");
  Key(Qt::Key_A, Qt::ControlModifier);
  Choose(0, Col::Tag, "SCALE");
  EXPECT_EQ(ElementAt(999).GetTag(), OutputTag::Scale);
  EXPECT_EQ(list->DeleteSelected(), 1000U);
  list->ShowElements(record);
  EXPECT_EQ(list->model()->rowCount(), 0);
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, PictureOfEveryState) {
  host.profile["BOM Parser/OUTPUT_FIELD_LIST"] = "90,190,260,180";
  Fill(RecordKind::Part, {Designator("F1"), PartNumber("\"P\" F1"),
                          Element(OutputTag::Rotation, "V4"), Element(OutputTag::Undefined, "")});
  CTNTemplRecOutField& noted = AddOutput(*record, Element(OutputTag::DimX));
  noted.SetDefaultExpression();
  Open("R1\n");
  ASSERT_EQ(Apply(), "ok");
  ElementAt(0).SetCurrentValue("R1");
  ElementAt(1).SetCurrentValue("PR1");
  list->ShowElements(record);
  list->SelectRowAlone(2);
  EXPECT_TRUE(Screenshot(window, "elements"));
  OpenCombo(1, Col::Tag);
  EXPECT_TRUE(Screenshot(window, "elements-tag"));
  EXPECT_TRUE(Screenshot(*list->GetEditor()->findChild<QAbstractItemView*>()->window(),
                         "elements-tag-list"));
  list->DropEdit();
  OpenText(1, Col::Expression);
  EXPECT_TRUE(Screenshot(window, "elements-expression"));
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, TabInTheOpenListOfABoxWithoutCurrentValueChangesNothing) {
  Fill(RecordKind::Part, {{OutputTag::Undefined, "F1"}});
  CTNParserComboBox* const box = OpenCombo(0, Col::Tag);
  ASSERT_NE(box, nullptr);
  QTest::keyClick(box->view(), Qt::Key_Tab);
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_EQ(ElementAt(0).GetTag(), OutputTag::Undefined);
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, TabInTheOpenListTakesTheEntryThatTheUserWentTo) {
  Fill(RecordKind::Part, {{OutputTag::Undefined, "F1"}});
  CTNParserComboBox* const box = OpenCombo(0, Col::Tag);
  ASSERT_NE(box, nullptr);
  QTest::keyClick(box->view(), Qt::Key_Down);
  const std::string entry = box->view()->currentIndex().data().toString().toStdString();
  QTest::keyClick(box->view(), Qt::Key_Tab);
  Settle();
  EXPECT_EQ(Tags(), Lines{entry});
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, ARowOutsideTheSelectionIsEditedAlone) {
  Fill(RecordKind::Part, {Designator("F1"), PartNumber(), None("F1")});
  ClickRows({0, 1});
  Type(2, Col::Expression, "9");
  EXPECT_EQ(Expressions().back(), "9");
  EXPECT_EQ(Expressions().front(), "F1");
}

TEST_F(CTNTemplRecOutFieldListCtrlTest, TabAndTheFocusGoingElsewhereApplyAnEdit) {
  Fill(RecordKind::Part, {Designator("F1"), PartNumber()});
  ASSERT_NE(OpenText(0, Col::Expression), nullptr);
  QTest::keyClicks(list->GetEditor(), "7");
  QTest::keyClick(list->GetEditor(), Qt::Key_Tab);
  Settle();
  EXPECT_EQ(Expressions()[0], "7");
  ASSERT_NE(OpenText(1, Col::Expression), nullptr);
  QTest::keyClicks(list->GetEditor(), "8");
  neighbour->setFocus();
  Settle();
  EXPECT_EQ(Expressions()[1], "8");
}

}  // namespace
}  // namespace bomparser::test
