#include "ui/views/CTNTemplRecordListCtrl.h"

#include "input/MessageTexts.h"
#include "tests/ui/views/TemplateListTest.h"
#include "ui/controls/CTNInPlaceComboBoxes.h"

#include <QEventLoop>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>

namespace bomparser::test {
namespace {

class CTNTemplRecordListCtrlTest : public TemplateListTest {
 protected:
  using Col = RecordColumn;

  /// Shows the records of the page.
  void Fill(RecordPage page = RecordPage::Entity) {
    list = new CTNTemplRecordListCtrl(engine, page, kCaption);
    list->RestoreWidths(host);
    QObject::connect(list, &CTNTemplRecordListCtrl::CurrentRecordChanged, list,
                     [this](CTNTemplateRecord* record) { Tell("current " + NameOf(record)); });
    QObject::connect(list, &CTNTemplRecordListCtrl::ShowFieldsWanted, list,
                     [this](CTNTemplateRecord* record) { Tell("fields " + NameOf(record)); });
    QObject::connect(list, &CTNTemplRecordListCtrl::MoveRequested, list,
                     [this](CTNTemplateRecord* before) { Tell("move " + NameOf(before)); });
    list->ShowRecords();
    Show(*list);
  }
  static std::string NameOf(const CTNTemplateRecord* record) {
    return record != nullptr ? record->GetRecordId() : "to the end";
  }
  CTNTemplateRecord& Add(RecordKind kind, const std::string& description,
                         const std::vector<FieldSpec>& fields = {},
                         const std::vector<OutputSpec>& outputs = {}) {
    return AddRecord(Document(), kind, description, fields, outputs);
  }
  /// Five entity records, none valid.
  void AddFive() {
    for (const char* name : {"one", "two", "three", "four", "five"})
      Add(RecordKind::Drill, name);
  }
  /// Puts the selected records where the list asks for, as the dialog does.
  void MoveAsAsked() {
    QObject::connect(list, &CTNTemplRecordListCtrl::MoveRequested, list,
                     [this](CTNTemplateRecord* before) {
                       for (CTNTemplateRecord* record : list->GetSelectedRecords())
                         EXPECT_TRUE(Document().MoveRecord(record, before));
                       list->ShowRecords();
                     });
  }
  Lines Descriptions() const {
    Lines texts;
    for (int row = 0; row < list->model()->rowCount(); ++row)
      texts.push_back(Text(row, Col::Description));
    return texts;
  }
  CTNTemplateRecord& Entity(std::size_t place) { return *Document().GetEntityRecords()[place]; }
  static Lines TagsOf(const CTNTemplateRecord& record) {
    Lines tags;
    for (const auto& element : record.GetOutputFields())
      tags.emplace_back(element->GetTagText());
    return tags;
  }
  /// A template with a valid part, one with a note, an invalid one and an aperture.
  void AddOneOfEachState() {
    Add(RecordKind::Part, "valid", {Alnum(), Newline()}, {Designator("F1"), PartNumber()});
    CTNTemplateRecord& noted = Add(RecordKind::Part, "with a note", {Alnum(), Newline()},
                                   {Designator("F1"), PartNumber()});
    noted.SetStatusText("Note: looked at");
    Add(RecordKind::Drill, "no elements");
    Add(RecordKind::Aperture, "Rectangle");
  }

  CTNTemplRecordListCtrl* list = nullptr;
};

// What is shown.

TEST_F(CTNTemplRecordListCtrlTest, HasItsFourColumnsWithTitlesInCapitals) {
  Fill();
  EXPECT_EQ(Titles(), (Lines{"    ID", "TYPE", "DESCRIPTION", "MATCH COUNT"}));
}

TEST_F(CTNTemplRecordListCtrlTest, EachPageShowsTheRecordsOfItsKindWithTheirIdentifiers) {
  Add(RecordKind::Part, "parts");
  Add(RecordKind::SingleMatch, "header");
  Add(RecordKind::Drill, "holes");
  Add(RecordKind::SubRecord, "pins");
  Fill();
  EXPECT_EQ(RowTexts(), (Lines{"E1|Part|parts|", "E2|Drill|holes|"}));
  CTNTemplRecordListCtrl other(engine, RecordPage::Auxiliary, kCaption);
  other.ShowRecords();
  EXPECT_EQ(other.model()->rowCount(), 2);
  EXPECT_EQ(other.model()->index(1, 0).data(), "A2");
}

TEST_F(CTNTemplRecordListCtrlTest, SingleMatchHasAnAsteriskBehindIt) {
  Add(RecordKind::SingleMatch, "header");
  Add(RecordKind::MultipleMatch, "comment");
  Fill(RecordPage::Auxiliary);
  EXPECT_EQ(RowTexts(), (Lines{"A1|Single Match*|header|", "A2|Multiple Match|comment|"}));
}

TEST_F(CTNTemplRecordListCtrlTest, AnEmptyTemplateShowsNoRows) {
  Fill();
  EXPECT_EQ(list->model()->rowCount(), 0);
  Key(Qt::Key_Delete);
  Key(Qt::Key_F2);
  Key(Qt::Key_Up, Qt::AltModifier);
  EXPECT_TRUE(told.empty());
}

TEST_F(CTNTemplRecordListCtrlTest, DescriptionsOfEightBitBytesAreShownAsWindows1252) {
  Add(RecordKind::Part,
      "Gr\xF6\xDF"
      "e");
  Fill();
  EXPECT_EQ(Text(0, Col::Description), "Größe");
}

TEST_F(CTNTemplRecordListCtrlTest, TheMatchCountIsShownOnlyWhileResultsAreThoseOfTheTemplate) {
  Add(RecordKind::Part, "words", {String("a"), Newline()}, {Designator("F1"), PartNumber()});
  Add(RecordKind::Part, "none", {String("zzz"), Newline()}, {Designator("F1"), PartNumber()});
  Fill();
  EXPECT_EQ(Text(0, Col::MatchCount), "");
  Open("a\nb\na\n");
  EXPECT_EQ(Text(0, Col::MatchCount), "");
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(Text(0, Col::MatchCount), "2");
  EXPECT_EQ(Text(1, Col::MatchCount), "0");
  Document().SetModified(ChangeKind::Modified);
  EXPECT_EQ(Text(0, Col::MatchCount), "");
}

TEST_F(CTNTemplRecordListCtrlTest, TheMatchCountIncludesMatchesAsSubRecord) {
  Add(RecordKind::SubRecord, "letter", {Alpha()});
  Add(RecordKind::Part, "line", {SubRecord("A1"), Newline()}, {Designator("F1"), PartNumber()});
  Relink(Document());
  Fill(RecordPage::Auxiliary);
  Open("a\nb\n");
  ASSERT_EQ(Apply(), "ok");
  EXPECT_EQ(Text(0, Col::MatchCount), "2");
}

TEST_F(CTNTemplRecordListCtrlTest, OnlyTheMatchCountIsGrey) {
  Add(RecordKind::Part, "parts");
  Fill();
  EXPECT_EQ(Colours(0, Col::MatchCount), "#c0c0c0 on #ffffff");
  for (const Col column : {Col::Id, Col::Type, Col::Description})
    EXPECT_EQ(Colours(0, column), "theme");
}

TEST_F(CTNTemplRecordListCtrlTest, UnderADarkThemeGreyTextStandsOnDark) {
  Add(RecordKind::Part, "parts");
  Fill();
  const QPalette light = QApplication::palette();
  QPalette dark = light;
  dark.setColor(QPalette::Base, QColor(30, 30, 30));
  QApplication::setPalette(dark);
  EXPECT_EQ(Colours(0, Col::MatchCount), "#c0c0c0 on #1e1e1e");
  QApplication::setPalette(light);
}

TEST_F(CTNTemplRecordListCtrlTest, ThePictureInTheFirstColumnTellsTheStateAndWordsDoToo) {
  AddOneOfEachState();
  Fill();
  EXPECT_EQ(StateOf(0), "valid");
  EXPECT_EQ(StateOf(1), "note");
  EXPECT_EQ(StateOf(2), "invalid");
  EXPECT_EQ(Cell(0, Col::Id).data(Qt::AccessibleTextRole), "E1, valid");
  EXPECT_EQ(Cell(1, Col::Id).data(Qt::AccessibleTextRole), "E2, valid, with a note");
  EXPECT_EQ(Cell(2, Col::Id).data(Qt::AccessibleTextRole), "E3, invalid");
  EXPECT_EQ(ToolTip(0), "");
  EXPECT_EQ(ToolTip(1), "Note: looked at");
  EXPECT_EQ(ToolTip(2), Entity(2).GetStatusText());
  EXPECT_EQ(Cell(2, Col::Type).data(Qt::AccessibleDescriptionRole).toString().toStdString(),
            Entity(2).GetStatusText());
  EXPECT_FALSE(Cell(0, Col::Type).data(Qt::DecorationRole).isValid());
}

TEST_F(CTNTemplRecordListCtrlTest, MarkupInATextIsNoMarkupInItsToolTip) {
  Add(RecordKind::Part, "x").SetStatusText("not <b>bold</b>");
  Fill();
  EXPECT_NE(ToolTip(0).find("&lt;b&gt;"), std::string::npos);
}

TEST_F(CTNTemplRecordListCtrlTest, TheRowOfARecordThatIsGoneIsEmptyInvalidAndCannotBeEdited) {
  AddFive();
  Fill();
  Document().DeleteRecord(&Entity(1));
  EXPECT_EQ(RowText(1), "|||");
  EXPECT_EQ(StateOf(1), "invalid");
  EXPECT_EQ(RowText(2), "E2|Drill|three|");
  Click(1, Col::Type);
  EXPECT_FALSE(list->IsEditing());
  Click(1, Col::Id);
  EXPECT_TRUE(dialogs.boxes.empty());
  ClickRows({0, 1, 2});
  EXPECT_EQ(list->GetSelectedRecords().size(), 2U);
  Choose(0, Col::Type, "Part");
  EXPECT_EQ(Entity(0).GetType(), RecordKind::Part);
  EXPECT_EQ(Entity(1).GetType(), RecordKind::Part);
  EXPECT_EQ(Entity(2).GetType(), RecordKind::Drill);
}

TEST_F(CTNTemplRecordListCtrlTest, ATemplateThatIsReplacedLeavesEmptyRowsUntilTheListIsFilled) {
  AddFive();
  Fill();
  list->SelectRowAlone(2);
  engine.NewTemplate();
  EXPECT_EQ(RowText(4), "|||");
  list->ShowRecords();
  EXPECT_EQ(list->model()->rowCount(), 0);
}

// Status boxes.

TEST_F(CTNTemplRecordListCtrlTest, AClickOnTheFirstColumnShowsTheStatusInOneBox) {
  AddOneOfEachState();
  Fill();
  Click(0, Col::Id);
  EXPECT_TRUE(dialogs.boxes.empty());
  Click(1, Col::Id);
  EXPECT_EQ(dialogs.boxes, Lines{"information|BOM Parser|Note: looked at|Ok"});
  Click(2, Col::Id);
  ASSERT_EQ(dialogs.boxes.size(), 2U);
  EXPECT_EQ(dialogs.boxes[1], "error|BOM Parser|" + Entity(2).GetStatusText() + "|Ok");
}

TEST_F(CTNTemplRecordListCtrlTest, ADoubleClickOnTheFirstColumnAddsNoSecondBox) {
  AddOneOfEachState();
  Fill();
  DoubleClick(1, Col::Id);
  EXPECT_EQ(dialogs.boxes.size(), 1U);
}

TEST_F(CTNTemplRecordListCtrlTest, ADoubleClickElsewhereShowsTheStatusWhereNoEditorOpens) {
  AddOneOfEachState();
  Fill();
  DoubleClick(1, Col::MatchCount);
  EXPECT_EQ(dialogs.boxes, Lines{"information|BOM Parser|Note: looked at|Ok"});
  DoubleClick(1, Col::Description);
  EXPECT_EQ(dialogs.boxes.size(), 1U);
}

// Editing.

TEST_F(CTNTemplRecordListCtrlTest, ChoosingATypeAddsTheOutputElementsThatItRequires) {
  Add(RecordKind::FreshEntity, "new");
  Fill();
  Choose(0, Col::Type, "Drill");
  EXPECT_EQ(Entity(0).GetType(), RecordKind::Drill);
  EXPECT_EQ(TagsOf(Entity(0)), (Lines{"TCODE", "DIAMETER", "SCALE", "UNITS"}));
  EXPECT_EQ(told, (Lines{"current E1", "edited 4", "repaint", "fields E1"}));
  EXPECT_TRUE(Document().IsModified());
  EXPECT_FALSE(Document().IsEmptyTemplate());
}

TEST_F(CTNTemplRecordListCtrlTest, ThreeSelectedDrillsBecomeAperturesThatLackAShape) {
  AddFive();
  Fill();
  ClickRows({0, 1, 3});
  told.clear();
  Choose(1, Col::Type, "Aperture");
  for (const std::size_t place : {0U, 1U, 3U}) {
    const CTNTemplateRecord& record = Entity(place);
    EXPECT_EQ(record.GetType(), RecordKind::Aperture);
    EXPECT_EQ(TagsOf(record), (Lines{"DCODE", "SHAPE", "SCALE", "UNITS"}));
    EXPECT_EQ(record.IsValid(), 0);
    EXPECT_NE(record.GetStatusText().find(GetMessageText(Msg::InvalidApertureDescription)),
              std::string::npos);
  }
  EXPECT_EQ(Entity(2).GetType(), RecordKind::Drill);
  EXPECT_EQ(told, (Lines{"edited 4", "repaint"}));
  EXPECT_EQ(list->GetSelectedRows(), (Rows{0, 1, 3}));

  Choose(0, Col::Description, "OVAL");
  EXPECT_EQ(Entity(0).GetStatusText().find(GetMessageText(Msg::InvalidApertureDescription)),
            std::string::npos);
}

TEST_F(CTNTemplRecordListCtrlTest, ARowOutsideTheSelectionIsEditedAlone) {
  AddFive();
  Fill();
  ClickRows({0, 1});
  Choose(4, Col::Type, "Part");
  EXPECT_EQ(Entity(4).GetType(), RecordKind::Part);
  EXPECT_EQ(Entity(0).GetType(), RecordKind::Drill);
}

TEST_F(CTNTemplRecordListCtrlTest, RecordsThatHaveTheTypeAlreadyAreLeftAlone) {
  AddFive();
  Entity(1).SetType(RecordKind::Part);
  Fill();
  ClickRows({0, 1, 2});
  Choose(0, Col::Type, "Part");
  EXPECT_EQ(TagsOf(Entity(0)), (Lines{"REF_DESIGNATOR", "PART_NUMBER"}));
  EXPECT_TRUE(Entity(1).GetOutputFields().empty());
  EXPECT_EQ(TagsOf(Entity(2)), (Lines{"REF_DESIGNATOR", "PART_NUMBER"}));
}

TEST_F(CTNTemplRecordListCtrlTest, TheTypeThatARecordHasChangesNothing) {
  AddFive();
  Fill();
  told.clear();
  Choose(0, Col::Type, "Drill");
  EXPECT_EQ(told, Lines{"current E1"});
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(CTNTemplRecordListCtrlTest, ABoxLeftWithoutAChoiceGivesARecordNoType) {
  Add(RecordKind::FreshEntity, "new");
  Fill();
  CTNParserComboBox* const box = OpenCombo(0, Col::Type);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->currentText(), "Aperture");
  box->hidePopup();
  neighbour->setFocus();
  Settle();
  EXPECT_EQ(Entity(0).GetType(), RecordKind::FreshEntity);
  EXPECT_EQ(told, Lines{"current E1"});
}

TEST_F(CTNTemplRecordListCtrlTest, AuxiliaryRecordsAreOfferedAuxiliaryTypes) {
  Add(RecordKind::FreshAuxiliary, "new");
  Fill(RecordPage::Auxiliary);
  Choose(0, Col::Type, "Single Match*");
  EXPECT_EQ(Document().GetAuxiliaryRecords()[0]->GetType(), RecordKind::SingleMatch);
  EXPECT_EQ(Text(0, Col::Type), "Single Match*");
}

TEST_F(CTNTemplRecordListCtrlTest, ADescriptionIsTypedInAndStoredAsItIs) {
  AddFive();
  Fill();
  told.clear();
  Type(1, Col::Description, "  two words ");
  EXPECT_EQ(Entity(1).GetDescription(), "  two words ");
  EXPECT_EQ(told, (Lines{"current E2", "edited 4", "repaint", "fields E2"}));
}

TEST_F(CTNTemplRecordListCtrlTest, ADescriptionGoesToAllSelectedRecords) {
  AddFive();
  Fill();
  ClickRows({1, 2, 4});
  Type(2, Col::Description, "same");
  EXPECT_EQ(Descriptions(), (Lines{"one", "same", "same", "four", "same"}));
}

TEST_F(CTNTemplRecordListCtrlTest, AChangeOfCaseAloneDoesNothing) {
  AddFive();
  Fill();
  told.clear();
  Type(1, Col::Description, "TWO");
  EXPECT_EQ(Entity(1).GetDescription(), "two");
  EXPECT_EQ(told, Lines{"current E2"});
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(CTNTemplRecordListCtrlTest, AmongSelectedRecordsOneThatDiffersInCaseAloneIsLeftAlone) {
  AddFive();
  Entity(2).SetDescription("SAME");
  Fill();
  ClickRows({1, 2, 3});
  Type(1, Col::Description, "same");
  EXPECT_EQ(Descriptions(), (Lines{"one", "same", "SAME", "same", "five"}));
}

TEST_F(CTNTemplRecordListCtrlTest, ADescriptionLeftAsItIsKeepsItsBytes) {
  const std::string bytes =
      "Gr\xF6\xDF"
      "e";
  Add(RecordKind::Part, bytes);
  Add(RecordKind::Part, "other");
  Fill();
  CTNInPlaceEdit* edit = OpenText(0, Col::Description);
  EXPECT_EQ(edit->text(), "Größe");
  QTest::keyClick(edit, Qt::Key_Return);
  EXPECT_EQ(Entity(0).GetDescription(), bytes);
  EXPECT_FALSE(Document().IsModified());
  ClickRows({0, 1});
  Paste(1, Col::Description, "Größe");
  EXPECT_EQ(Entity(0).GetDescription(), bytes);
  EXPECT_EQ(Entity(1).GetDescription(), "Größe");
}

TEST_F(CTNTemplRecordListCtrlTest,
       AnAperturesDescriptionIsChosenAmongShapesAndBringsTheirElements) {
  Add(RecordKind::Aperture, "pad").CreateRequiredOutputSet();
  Fill();
  Choose(0, Col::Description, "RECTANGLE");
  EXPECT_EQ(Entity(0).GetDescription(), "RECTANGLE");
  EXPECT_EQ(TagsOf(Entity(0)), (Lines{"DCODE", "SHAPE", "SCALE", "UNITS", "WIDTH", "HEIGHT"}));
  EXPECT_EQ(told, (Lines{"current E1", "edited 4", "repaint", "fields E1"}));
}

TEST_F(CTNTemplRecordListCtrlTest, OblongAlsoBringsWidthAndHeight) {
  Add(RecordKind::Aperture, "pad").CreateRequiredOutputSet();
  Fill();
  Choose(0, Col::Description, "OBLONG");
  EXPECT_EQ(TagsOf(Entity(0)), (Lines{"DCODE", "SHAPE", "SCALE", "UNITS", "WIDTH", "HEIGHT"}));
}

TEST_F(CTNTemplRecordListCtrlTest, AShapeBoxLeftWithoutAChoiceKeepsADescriptionThatNamesNone) {
  Add(RecordKind::Aperture, "pad");
  Fill();
  CTNParserComboBox* const box = OpenCombo(0, Col::Description);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->currentText(), "UNDEFINED");
  neighbour->setFocus();
  Settle();
  EXPECT_EQ(Entity(0).GetDescription(), "pad");
}

TEST_F(CTNTemplRecordListCtrlTest, ATypedDescriptionBringsTheElementsOfASelectedApertureToo) {
  Add(RecordKind::Part, "parts");
  Add(RecordKind::Aperture, "pad");
  Fill();
  ClickRows({0, 1});
  Type(0, Col::Description, "cross");
  EXPECT_TRUE(Entity(0).GetOutputFields().empty());
  EXPECT_EQ(TagsOf(Entity(1)), (Lines{"DCODE", "SHAPE", "STROKE", "SIZE", "SCALE", "UNITS"}));
}

TEST_F(CTNTemplRecordListCtrlTest, EscapeAndTheFocusGoingToTheDialogDropAnEdit) {
  AddFive();
  Fill();
  CTNInPlaceEdit* edit = OpenText(0, Col::Description);
  QTest::keyClicks(edit, "new");
  QTest::keyClick(edit, Qt::Key_Escape);
  Settle();
  edit = OpenText(0, Col::Description);
  QTest::keyClicks(edit, "new");
  window.setFocus();
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_EQ(Entity(0).GetDescription(), "one");
}

TEST_F(CTNTemplRecordListCtrlTest, TabAndTheFocusGoingElsewhereApplyAnEdit) {
  AddFive();
  Fill();
  QTest::keyClicks(OpenText(0, Col::Description), "first");
  QTest::keyClick(list->GetEditor(), Qt::Key_Tab);
  Settle();
  QTest::keyClicks(OpenText(1, Col::Description), "second");
  neighbour->setFocus();
  Settle();
  EXPECT_EQ(Descriptions(), (Lines{"first", "second", "three", "four", "five"}));
}

TEST_F(CTNTemplRecordListCtrlTest, F2AndEnterEditTheCurrentCell) {
  AddFive();
  Fill();
  for (const auto key : {Qt::Key_F2, Qt::Key_Return}) {
    list->setCurrentIndex(Cell(1, Col::Description));
    Key(key);
    EXPECT_TRUE(list->IsEditing()) << key;
    list->DropEdit();
  }
}

TEST_F(CTNTemplRecordListCtrlTest, IdentifiersAndMatchCountsAreNotEdited) {
  AddFive();
  Fill();
  Click(0, Col::Id);
  EXPECT_FALSE(list->IsEditing());
  Click(0, Col::MatchCount);
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNTemplRecordListCtrlTest, ARecordDeletedUnderAnOpenEditorIsNotEdited) {
  AddFive();
  Fill();
  CTNInPlaceEdit* const edit = OpenText(1, Col::Description);
  QTest::keyClicks(edit, "new");
  Document().DeleteRecord(&Entity(1));
  told.clear();
  QTest::keyClick(edit, Qt::Key_Return);
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_TRUE(told.empty());
  list->ShowRecords();
  EXPECT_EQ(Descriptions(), (Lines{"one", "three", "four", "five"}));
}

TEST_F(CTNTemplRecordListCtrlTest, ARecordThatGoesWhileItsEditIsToldIsNotShownAgain) {
  AddFive();
  Fill();
  Click(2, Col::MatchCount);
  QObject::connect(list, &CTNTemplateListCtrl::TemplateEdited, list, [this] {
    engine.NewTemplate();
    list->ShowRecords();
  });
  told.clear();
  Choose(2, Col::Type, "Part");
  EXPECT_EQ(told, (Lines{"edited 4", "repaint"}));
  EXPECT_EQ(list->model()->rowCount(), 0);
  EXPECT_FALSE(list->IsEditing());
}

// Selection.

TEST_F(CTNTemplRecordListCtrlTest, ASelectionIsToldOnceForTheRowThatTheUserChose) {
  AddFive();
  Fill();
  Click(1, Col::MatchCount);
  EXPECT_EQ(told, Lines{"current E2"});
  Click(3, Col::MatchCount, Qt::ShiftModifier);
  EXPECT_EQ(told, (Lines{"current E2", "current E4"}));
  Click(4, Col::MatchCount, Qt::ControlModifier);
  EXPECT_EQ(told, (Lines{"current E2", "current E4", "current E5"}));
}

TEST_F(CTNTemplRecordListCtrlTest, ArrowKeysTellTheRowThatTheyReach) {
  AddFive();
  Fill();
  Click(1, Col::MatchCount);
  told.clear();
  Key(Qt::Key_Down);
  Key(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(told, (Lines{"current E3", "current E4"}));
}

TEST_F(CTNTemplRecordListCtrlTest, UnselectingARowTellsNothingAsLongAsTheLastOneIsSelected) {
  AddFive();
  Fill();
  ClickRows({1, 2});
  told.clear();
  Click(1, Col::MatchCount, Qt::ControlModifier);
  EXPECT_TRUE(told.empty());
  Click(2, Col::MatchCount, Qt::ControlModifier);
  EXPECT_TRUE(told.empty()) << "no row is left";
}

TEST_F(CTNTemplRecordListCtrlTest, WhenTheLastSelectedRowIsUnselectedOneThatIsLeftIsTold) {
  AddFive();
  Fill();
  ClickRows({1, 2});
  told.clear();
  Click(2, Col::MatchCount, Qt::ControlModifier);
  EXPECT_EQ(told, Lines{"current E2"});
  EXPECT_EQ(list->GetSelectedRows(), Rows{1});
}

TEST_F(CTNTemplRecordListCtrlTest, ASelectionThatShrinksByKeysTellsTheRowThatIsLeft) {
  AddFive();
  Fill();
  Click(0, Col::MatchCount);
  Key(Qt::Key_Down, Qt::ShiftModifier);
  Key(Qt::Key_Down, Qt::ShiftModifier);
  told.clear();
  Key(Qt::Key_Up, Qt::ShiftModifier);
  Key(Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(list->GetSelectedRows(), Rows{0});
  ASSERT_FALSE(told.empty());
  EXPECT_EQ(told.back(), "current E1");
}

TEST_F(CTNTemplRecordListCtrlTest, ARightClickThatSelectsTellsIt) {
  AddFive();
  Fill();
  MenuAt(2);
  EXPECT_EQ(told, Lines{"current E3"});
  MenuAt(2);
  EXPECT_EQ(told.size(), 1U);
}

TEST_F(CTNTemplRecordListCtrlTest, ASelectionByProgramIsToldAtOnce) {
  AddFive();
  Fill();
  EXPECT_TRUE(list->SelectElementAlone(&Entity(3)));
  EXPECT_EQ(told, Lines{"current E4"});
  EXPECT_EQ(list->currentIndex().row(), 3);
  EXPECT_FALSE(list->SelectElementAlone(nullptr));
  const CTNTemplateRecord stranger(&Document());
  EXPECT_FALSE(list->SelectElementAlone(&stranger));
}

TEST_F(CTNTemplRecordListCtrlTest, AClickOnASelectedRowKeepsTheOthersSelected) {
  AddFive();
  Fill();
  ClickRows({0, 2, 3});
  told.clear();
  Click(2, Col::MatchCount);
  EXPECT_EQ(list->GetSelectedRows(), (Rows{0, 2, 3}));
  EXPECT_TRUE(told.empty());
}

// Refilling.

TEST_F(CTNTemplRecordListCtrlTest, ARefillKeepsTheSelectionByRecordAndTellsNothing) {
  AddFive();
  Fill();
  ClickRows({1, 3});
  told.clear();
  Document().AddRecord(RecordKind::Part, "new", &Entity(0));
  Document().DeleteRecord(&Entity(2));
  list->ShowRecords();
  EXPECT_EQ(Descriptions(), (Lines{"new", "one", "three", "four", "five"}));
  EXPECT_EQ(list->GetSelectedRows(), Rows{3});
  EXPECT_EQ(list->currentIndex().row(), 3);
  EXPECT_TRUE(told.empty());
}

TEST_F(CTNTemplRecordListCtrlTest, ARefillKeepsTheScrollPosition) {
  for (int i = 0; i < 200; ++i)
    Add(RecordKind::Part, std::to_string(i));
  Fill();
  list->verticalScrollBar()->setValue(60);
  Document().AddRecord(RecordKind::Part, "new");
  list->ShowRecords();
  EXPECT_EQ(list->verticalScrollBar()->value(), 60);
}

TEST_F(CTNTemplRecordListCtrlTest, AnOpenEditorSurvivesARefillWithTheSameRecords) {
  AddFive();
  Fill();
  CTNInPlaceEdit* const edit = OpenText(1, Col::Description);
  QTest::keyClicks(edit, "new");
  list->ShowRecords();
  Settle();
  ASSERT_EQ(list->GetEditor(), edit);
  EXPECT_EQ(edit->text(), "new");
  QTest::keyClick(edit, Qt::Key_Return);
  EXPECT_EQ(Entity(1).GetDescription(), "new");
}

TEST_F(CTNTemplRecordListCtrlTest, ARefillWithTheSameRecordsSaysThatEveryCellMayHaveChanged) {
  AddFive();
  Fill();
  const QSignalSpy changes(list->model(), &QAbstractItemModel::dataChanged);
  const QSignalSpy resets(list->model(), &QAbstractItemModel::modelReset);
  list->ShowRecords();
  ASSERT_EQ(changes.count(), 1);
  EXPECT_EQ(changes[0][0].toModelIndex(), Cell(0, Col::Id));
  EXPECT_EQ(changes[0][1].toModelIndex(), Cell(4, Col::MatchCount));
  EXPECT_EQ(resets.count(), 0);
}

TEST_F(CTNTemplRecordListCtrlTest, AnOpenEditorIsDroppedWhereTheRecordsAreOthers) {
  AddFive();
  Fill();
  QTest::keyClicks(OpenText(1, Col::Description), "new");
  Document().MoveRecord(&Entity(0), nullptr);
  list->ShowRecords();
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_EQ(Descriptions(), (Lines{"two", "three", "four", "five", "one"}));
}

// Commands.

TEST_F(CTNTemplRecordListCtrlTest, TheMenuSaysThisTemplateAndHasNoOtherRecordsToCopyTo) {
  AddFive();
  Fill();
  EXPECT_EQ(MenuAt(1),
            "Append New\n"
            "Insert New Above Selected\n"
            "Delete Selected\n"
            "Change Type\n"
            "Create Required Output Element Set\n"
            "Append Copy To ...\n"
            "  This Template\n");
}

TEST_F(CTNTemplRecordListCtrlTest, BelowTheLastRowOnlyAppendNewIsOffered) {
  AddFive();
  Fill();
  const std::string menu = MenuAt(-1);
  EXPECT_EQ(menu.substr(0, menu.find("  ")),
            "Append New\n"
            "[Insert New Above Selected]\n"
            "[Delete Selected]\n"
            "[Change Type]\n"
            "[Create Required Output Element Set]\n"
            "[Append Copy To ...]\n");
}

TEST_F(CTNTemplRecordListCtrlTest, CommandsThatTheDialogDoesAreTold) {
  AddFive();
  Fill();
  Command(1, Cmd::AppendNew);
  Command(1, Cmd::InsertNewAbove);
  Command(1, Cmd::DeleteSelected);
  Command(1, Cmd::CopyToThis);
  EXPECT_EQ(told, (Lines{"current E2", "command 45000", "command 45004", "command 45001",
                         "command 45003"}));
}

TEST_F(CTNTemplRecordListCtrlTest, DeleteAndInsertAreKeysOfTheirCommands) {
  AddFive();
  Fill();
  Key(Qt::Key_Delete);
  Key(Qt::Key_Insert);
  EXPECT_TRUE(told.empty());
  list->SelectRowAlone(2);
  told.clear();
  Key(Qt::Key_Delete);
  Key(Qt::Key_Insert);
  EXPECT_EQ(told, (Lines{"command 45001", "command 45004"}));
}

TEST_F(CTNTemplRecordListCtrlTest, TheDeleteKeyOfAnOpenEditorDeletesText) {
  AddFive();
  Fill();
  CTNInPlaceEdit* const edit = OpenText(0, Col::Description);
  told.clear();
  QTest::keyClick(edit, Qt::Key_Delete);
  EXPECT_EQ(edit->text(), "");
  EXPECT_TRUE(told.empty());
}

TEST_F(CTNTemplRecordListCtrlTest, ChangeTypeOpensOnTheFirstSelectedRowAndGoesToAllSelected) {
  AddFive();
  Fill();
  ClickRows({3, 1});
  Command(3, Cmd::ChangeType);
  auto* const box = qobject_cast<CTNParserComboBox*>(list->GetEditor());
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(dynamic_cast<CTNInPlaceRecTypeComboBox&>(*box).GetItem(), 1);
  ChooseIn(box, "Part");
  EXPECT_EQ(Entity(1).GetType(), RecordKind::Part);
  EXPECT_EQ(Entity(3).GetType(), RecordKind::Part);
  EXPECT_EQ(Entity(0).GetType(), RecordKind::Drill);
}

TEST_F(CTNTemplRecordListCtrlTest, RequiredElementsAreCreatedForAllSelectedAndAlwaysTold) {
  AddFive();
  Fill();
  ClickRows({0, 2});
  told.clear();
  Command(0, Cmd::CreateRequiredOutputSet);
  EXPECT_EQ(TagsOf(Entity(0)), (Lines{"TCODE", "DIAMETER", "SCALE", "UNITS"}));
  EXPECT_TRUE(TagsOf(Entity(1)).empty());
  EXPECT_EQ(TagsOf(Entity(2)).size(), 4U);
  EXPECT_EQ(told, Lines{"edited 64"});
  EXPECT_TRUE(Document().IsModified());
  Command(0, Cmd::CreateRequiredOutputSet);
  EXPECT_EQ(TagsOf(Entity(0)).size(), 4U);
  EXPECT_EQ(told, (Lines{"edited 64", "edited 64"}));
}

TEST_F(CTNTemplRecordListCtrlTest, TheFieldsOfTheOnlySelectedRecordAreAskedForWithItsElements) {
  AddFive();
  Fill();
  list->SelectRowAlone(3);
  told.clear();
  Command(3, Cmd::CreateRequiredOutputSet);
  EXPECT_EQ(told, (Lines{"edited 64", "fields E4"}));
}

// Moving.

TEST_F(CTNTemplRecordListCtrlTest, ADropAsksForTheSelectedRecordsToGoBeforeTheRowHit) {
  AddFive();
  Fill();
  MoveAsAsked();
  ClickRows({0, 2});
  told.clear();
  const std::vector<CTNTemplateRecord*> moved = list->GetSelectedRecords();
  EXPECT_TRUE(DropOnRow(4));
  EXPECT_EQ(told, Lines{"move E5"});
  EXPECT_EQ(Descriptions(), (Lines{"two", "four", "one", "three", "five"}));
  EXPECT_EQ(list->GetSelectedRows(), (Rows{2, 3}));
  EXPECT_EQ(list->GetSelectedRecords(), moved);
}

TEST_F(CTNTemplRecordListCtrlTest, ADropBelowTheLastRowMovesToTheEnd) {
  AddFive();
  Fill();
  MoveAsAsked();
  ClickRows({1});
  EXPECT_TRUE(DropBelowLastRow());
  EXPECT_EQ(told.back(), "move to the end");
  EXPECT_EQ(Descriptions(), (Lines{"one", "three", "four", "five", "two"}));
  EXPECT_EQ(list->GetSelectedRows(), Rows{4});
}

TEST_F(CTNTemplRecordListCtrlTest, ADropWhereNothingWouldMoveAsksForNothing) {
  AddFive();
  Fill();
  ClickRows({1, 2});
  told.clear();
  EXPECT_TRUE(DropOnRow(1));
  EXPECT_TRUE(DropOnRow(2));
  EXPECT_TRUE(DropOnRow(3));
  EXPECT_TRUE(told.empty());
  ClickRows({4});
  told.clear();
  EXPECT_TRUE(DropBelowLastRow());
  EXPECT_TRUE(told.empty());
}

TEST_F(CTNTemplRecordListCtrlTest, ScatteredRecordsDroppedBehindTheirLastComeTogetherThere) {
  AddFive();
  Fill();
  MoveAsAsked();
  ClickRows({0, 2});
  EXPECT_TRUE(DropOnRow(3));
  EXPECT_EQ(Descriptions(), (Lines{"two", "one", "three", "four", "five"}));
  EXPECT_EQ(list->GetSelectedRows(), (Rows{1, 2}));
}

TEST_F(CTNTemplRecordListCtrlTest, AltWithAnArrowMovesTheSelectedRecordsByOneRow) {
  AddFive();
  Fill();
  MoveAsAsked();
  ClickRows({2, 3});
  Key(Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(Descriptions(), (Lines{"one", "three", "four", "two", "five"}));
  EXPECT_EQ(list->GetSelectedRows(), (Rows{1, 2}));
  Key(Qt::Key_Down, Qt::AltModifier);
  Key(Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(Descriptions(), (Lines{"one", "two", "five", "three", "four"}));
  told.clear();
  Key(Qt::Key_Down, Qt::AltModifier);
  EXPECT_TRUE(told.empty());
  ClickRows({0});
  told.clear();
  Key(Qt::Key_Up, Qt::AltModifier);
  EXPECT_TRUE(told.empty());
}

TEST_F(CTNTemplRecordListCtrlTest, RecordsAreDroppedOnTheirOwnListOnly) {
  AddFive();
  Fill();
  CTNTemplRecordListCtrl other(engine, RecordPage::Auxiliary, kCaption);
  other.show();
  list->SelectRowAlone(0);
  EXPECT_FALSE(Drop(*list, other, QPoint(5, 5)));
  EXPECT_FALSE(list->CanDropOn(neighbour));
  EXPECT_TRUE(list->CanDropOn(list));
}

TEST_F(CTNTemplRecordListCtrlTest, ADropOnARowWhoseRecordIsGoneAsksForNothing) {
  AddFive();
  Fill();
  ClickRows({0});
  Document().DeleteRecord(&Entity(3));
  told.clear();
  EXPECT_TRUE(DropOnRow(3));
  EXPECT_TRUE(told.empty());
}

TEST_F(CTNTemplRecordListCtrlTest, RowsOfTheInputFileAreWelcome) {
  Fill();
  EXPECT_TRUE(list->property("acceptsInputRows").toBool());
}

// Widths, names, sizes.

TEST_F(CTNTemplRecordListCtrlTest, EachPageKeepsItsWidthsUnderItsOwnName) {
  host.profile["BOM Parser/ENTITY_RECORD_LIST"] = "51,102,203,64";
  host.profile["BOM Parser/OTHER_RECORD_LIST"] = "52,103";
  CTNTemplRecordListCtrl entities(engine, RecordPage::Entity, kCaption);
  CTNTemplRecordListCtrl others(engine, RecordPage::Auxiliary, kCaption);
  entities.RestoreWidths(host);
  others.RestoreWidths(host);
  EXPECT_EQ(entities.columnWidth(2), 203);
  EXPECT_EQ(others.columnWidth(1), 103);
  entities.setColumnWidth(0, 77);
  EXPECT_TRUE(entities.StoreWidths(host));
  EXPECT_EQ(host.profile["BOM Parser/ENTITY_RECORD_LIST"], "77,102,203,64");
  EXPECT_EQ(host.profile["BOM Parser/OTHER_RECORD_LIST"], "52,103");
}

TEST_F(CTNTemplRecordListCtrlTest, AColumnWithoutStoredWidthIsAsWideAsItsTitleNeeds) {
  host.profile["BOM Parser/ENTITY_RECORD_LIST"] = "51,102";
  Fill();
  EXPECT_EQ(list->columnWidth(1), 102);
  for (const int column : {2, 3}) {
    EXPECT_EQ(list->columnWidth(column), list->horizontalHeader()->sectionSizeHint(column));
    EXPECT_GE(list->columnWidth(column), list->fontMetrics().horizontalAdvance(Title(column)));
  }
}

TEST_F(CTNTemplRecordListCtrlTest, SuchAColumnGrowsOnceForWhatTheListShowsFirst) {
  host.profile["BOM Parser/OTHER_RECORD_LIST"] = "40";
  Add(RecordKind::SingleMatch, "a description that is longer than its title");
  Fill(RecordPage::Auxiliary);
  const auto needs = [this](const char* text) {
    return list->fontMetrics().horizontalAdvance(text);
  };
  EXPECT_EQ(list->columnWidth(0), 40);
  EXPECT_GE(list->columnWidth(1), needs("Single Match*"));
  EXPECT_GE(list->columnWidth(2), needs("a description that is longer than its title"));
  const int before = list->columnWidth(2);
  Add(RecordKind::SingleMatch,
      "a description that is even longer, but comes when widths are given");
  list->ShowRecords();
  EXPECT_EQ(list->columnWidth(2), before);
}

TEST_F(CTNTemplRecordListCtrlTest, TheListsAreNamedAndNumbered) {
  const CTNTemplRecordListCtrl entities(engine, RecordPage::Entity, kCaption);
  const CTNTemplRecordListCtrl others(engine, RecordPage::Auxiliary, kCaption);
  EXPECT_EQ(entities.accessibleName(), "Entity Records");
  EXPECT_EQ(others.accessibleName(), "Auxiliary Records");
  EXPECT_EQ(GetControlId(entities), Ctrl::EntityRecords);
  EXPECT_EQ(GetControlId(others), Ctrl::AuxiliaryRecords);
  EXPECT_TRUE(entities.showGrid());
}

TEST_F(CTNTemplRecordListCtrlTest, ArrowKeysScrollToTheRowThatTheyReach) {
  for (int i = 0; i < 100; ++i)
    Add(RecordKind::Part, std::to_string(i));
  Fill();
  list->SelectRowAlone(0);
  for (int i = 0; i < 50; ++i)
    Key(Qt::Key_Down);
  EXPECT_EQ(list->currentIndex().row(), 50);
  EXPECT_TRUE(list->viewport()->rect().contains(list->visualRect(list->currentIndex())));
}

TEST_F(CTNTemplRecordListCtrlTest, AThousandRecordsAreShownEditedAndMovedTogether) {
  for (int i = 0; i < 1000; ++i)
    Add(RecordKind::Drill, std::to_string(i));
  Fill();
  EXPECT_EQ(Text(999, Col::Id), "E1000");
  Key(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(list->GetSelectedRecords().size(), 1000U);
  Choose(0, Col::Type, "Part");
  EXPECT_EQ(Entity(999).GetType(), RecordKind::Part);
  EXPECT_EQ(Entity(999).GetOutputFields().size(), 2U);
  told.clear();
  list->SelectElementAlone(&Entity(999));
  MoveAsAsked();
  Key(Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(list->GetSelectedRows(), Rows{998});
  EXPECT_EQ(Text(998, Col::Description), "999");
}

TEST_F(CTNTemplRecordListCtrlTest, AnEngineWithoutTemplateShowsNothing) {
  list = new CTNTemplRecordListCtrl(engine, RecordPage::Entity, kCaption);
  Show(*list);
  EXPECT_EQ(list->model()->rowCount(), 0);
  EXPECT_FALSE(list->BeginEdit(QModelIndex()));
}

TEST_F(CTNTemplRecordListCtrlTest, PictureOfEveryState) {
  AddOneOfEachState();
  Add(RecordKind::FreshEntity, "New Record");
  Open("R1\nR2\n");
  ASSERT_EQ(Apply(), "ok");
  host.profile["BOM Parser/ENTITY_RECORD_LIST"] = "90,140,260,130";
  Fill();
  list->SelectRowAlone(1);
  EXPECT_TRUE(Screenshot(window, "records"));
  OpenCombo(2, Col::Type);
  EXPECT_TRUE(Screenshot(window, "records-type"));
  EXPECT_TRUE(Screenshot(*list->GetEditor()->findChild<QAbstractItemView*>()->window(),
                         "records-type-list"));
  list->DropEdit();
  OpenText(0, Col::Description);
  EXPECT_TRUE(Screenshot(window, "records-description"));
}

TEST_F(CTNTemplRecordListCtrlTest, PictureWithoutStoredWidths) {
  Add(RecordKind::SingleMatch, "header of the file");
  Fill(RecordPage::Auxiliary);
  EXPECT_TRUE(Screenshot(window, "records-without-widths"));
}

class RecordListListenerTest : public CTNTemplRecordListCtrlTest {
 protected:
  RecordListListenerTest() {
    AddFive();
    Fill();
  }
  void PressMoveRelease(int row, Col column, QPoint by) {
    const QPoint p = At(row, column);
    QWidget* v = list->viewport();
    QTest::mousePress(v, Qt::LeftButton, Qt::NoModifier, p);
    QMouseEvent move(QEvent::MouseMove, p + by, v->mapToGlobal(p + by), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(v, &move);
    QTest::mouseRelease(v, Qt::LeftButton, Qt::NoModifier, p + by);
    Settle();
  }
  /// Replaces the description of the second record by "X" in its editor, and presses the key.
  void TypeX(Qt::Key key, Qt::KeyboardModifiers keys = Qt::NoModifier) {
    TypeX();
    QTest::keyClick(list->GetEditor(), key, keys);
    Settle();
  }
  void TypeX() {
    ASSERT_NE(OpenText(1, Col::Description), nullptr);
    QTest::keyClicks(list->GetEditor(), "X");
  }
  /// Whoever is told of an edit runs events, in which other rows come to be shown.
  void ReplaceTemplateWhileTold() {
    QObject::connect(list, &CTNTemplateListCtrl::TemplateEdited, list, [this] {
      QEventLoop loop;
      QTimer::singleShot(0, &loop, [this, &loop] {
        engine.NewTemplate();
        list->ShowRecords();
        loop.quit();
      });
      loop.exec();
    });
  }
};

TEST_F(RecordListListenerTest, AClickThatJittersOpensTheEditor) {
  PressMoveRelease(1, Col::Description, {1, 0});
  EXPECT_TRUE(list->IsEditing());
}

TEST_F(RecordListListenerTest, DownInATextEditorLeavesTheListAlone) {
  ClickRows({0, 1, 2});
  TypeX(Qt::Key_Down);
  EXPECT_TRUE(list->IsEditing());
  EXPECT_EQ(Descriptions(), (Lines{"one", "two", "three", "four", "five"}));
  EXPECT_EQ(list->GetSelectedRows().size(), 3U);
}

TEST_F(RecordListListenerTest, PageDownInATextEditorLeavesTheListAlone) {
  TypeX(Qt::Key_PageDown);
  EXPECT_TRUE(list->IsEditing());
}

TEST_F(RecordListListenerTest, ABoxLeftByEscapeChangesNothingLater) {
  Entity(1).SetType(RecordKind::Part);
  Fill();
  ClickRows({0, 1, 2});
  CTNParserComboBox* box = OpenCombo(1, Col::Type);
  ASSERT_NE(box, nullptr);
  QTest::keyClick(box->view(), Qt::Key_Escape);
  Settle();
  EXPECT_TRUE(list->IsEditing());
  neighbour->setFocus();
  Settle();
  EXPECT_EQ(Entity(0).GetType(), RecordKind::Drill);
  EXPECT_EQ(Entity(2).GetType(), RecordKind::Drill);
}

TEST_F(RecordListListenerTest, ADoubleClickWithControlOpensNothing) {
  QWidget* v = list->viewport();
  Click(1, Col::Description, Qt::ControlModifier);
  EXPECT_FALSE(list->IsEditing());
  QTest::mouseDClick(v, Qt::LeftButton, Qt::ControlModifier, At(1, Col::Description));
  QTest::mouseRelease(v, Qt::LeftButton, Qt::ControlModifier, At(1, Col::Description));
  Settle();
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(RecordListListenerTest, EnterGivesTheFocusBackAlsoWhenOtherRowsAreShown) {
  QObject::connect(list, &CTNTemplateListCtrl::TemplateEdited, list, [this] {
    Document().DeleteRecord(&Entity(4));
    list->ShowRecords();
  });
  Type(1, Col::Description, "new");
  EXPECT_FALSE(list->IsEditing());
  EXPECT_TRUE(list->hasFocus());
  Click(0, Col::Description);
  EXPECT_TRUE(list->IsEditing());
}

TEST_F(RecordListListenerTest, AListMayBeDeletedByWhoeverIsToldOfAnEdit) {
  QObject::connect(list, &CTNTemplateListCtrl::TemplateEdited, &window, [this] { delete list; });
  TypeX(Qt::Key_Return);
  EXPECT_EQ(Entity(1).GetDescription(), "X");
}

TEST_F(RecordListListenerTest, AListMayBeDeletedByWhoeverIsAskedToRepaint) {
  QObject::connect(list, &CTNTemplateListCtrl::RepaintWanted, &window, [this] { delete list; });
  TypeX(Qt::Key_Return);
  EXPECT_EQ(Entity(1).GetDescription(), "X");
}

TEST_F(RecordListListenerTest, AListMayBeDeletedWithATextEditorOpen) {
  TypeX();
  delete list;
  Settle();
  EXPECT_EQ(Entity(1).GetDescription(), "two");
}

TEST_F(RecordListListenerTest, AListMayBeDeletedWithABoxOpen) {
  ASSERT_NE(OpenCombo(1, Col::Type), nullptr);
  delete list;
  Settle();
  EXPECT_EQ(Entity(1).GetType(), RecordKind::Drill);
}

TEST_F(RecordListListenerTest, AListThatIsHiddenAppliesItsOpenEdit) {
  TypeX();
  list->hide();
  Settle();
  EXPECT_EQ(Entity(1).GetDescription(), "X");
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(RecordListListenerTest, AnEditorOutlivesTheReportThatReplacesItsRow) {
  ReplaceTemplateWhileTold();
  Choose(1, Col::Type, "Part");
  EXPECT_EQ(list->model()->rowCount(), 0);
}

TEST_F(RecordListListenerTest, WhoeverIsToldMayRunEventsAfterEnter) {
  ReplaceTemplateWhileTold();
  TypeX(Qt::Key_Return);
  EXPECT_EQ(list->model()->rowCount(), 0);
}

TEST_F(RecordListListenerTest, WhoeverIsToldMayRunEventsAfterALossOfTheFocus) {
  ReplaceTemplateWhileTold();
  TypeX();
  neighbour->setFocus();
  Settle();
  EXPECT_EQ(list->model()->rowCount(), 0);
}

TEST_F(RecordListListenerTest, KeysWithControlStayInTheEditor) {
  TypeX(Qt::Key_Down, Qt::ControlModifier);
  EXPECT_TRUE(list->IsEditing());
}

TEST_F(RecordListListenerTest, F2InATextEditorEndsNothing) {
  TypeX(Qt::Key_F2);
  EXPECT_EQ(Entity(1).GetDescription(), "two");
}

TEST_F(RecordListListenerTest, TabInADropDownEndsTheEdit) {
  ClickRows({0, 1});
  CTNParserComboBox* box = OpenCombo(1, Col::Type);
  ASSERT_NE(box, nullptr);
  QTest::keyClick(box->view(), Qt::Key_Tab);
  Settle();
  EXPECT_FALSE(list->IsEditing());
}
}  // namespace
}  // namespace bomparser::test
