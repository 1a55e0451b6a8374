#include "ui/controls/CTNParserListCtrl.h"

#include "input/MessageTexts.h"
#include "tests/ui/support/UiTest.h"
#include "ui/controls/CTNInPlaceComboBoxes.h"
#include "ui/controls/CTNInPlaceEdit.h"

#include <QClipboard>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QVBoxLayout>
#include <algorithm>

namespace bomparser::test {
namespace {

constexpr int kFixedColumn = 0;
constexpr int kTextColumn = 1;
constexpr int kComboColumn = 2;

class WordBox : public CTNParserComboBox {
 public:
  WordBox(QWidget* parent, QString current, int more)
      : CTNParserComboBox(parent), m_current(std::move(current)), m_more(more) {}
  void Fill() override {
    Restart();
    for (const char* word : {"one", "two", "three"})
      AddEntry(word, QString::fromLatin1(word).toUpper());
    for (int entry = 3; entry < m_more; ++entry)
      AddEntry(QString::number(entry), entry);
    SelectCode(m_current.toUpper());
  }

 private:
  QString m_current;
  int m_more;
};

struct RowNode final : CTNParserListNode {
  explicit RowNode(int r) : row(r) {}
  int row;
};

/// A list of words with a text column and a combo column. It accepts its own rows and those of a
/// list that is named as friend.
class WordList final : public CTNParserListCtrl {
 public:
  WordList() : CTNParserListCtrl("Words") {
    setModel(&words);
    words.setHorizontalHeaderLabels({"ID", "TEXT", "CHOICE"});
    for (int row = 0; row < 20; ++row) {
      words.appendRow({new QStandardItem(QString::number(row)), new QStandardItem("word"),
                       new QStandardItem("two")});
    }
    SetKeepsSelectionOnClick(true);
  }
  bool CanDropOn(const QWidget* target) const override { return target == accepts; }
  void OnDrop(QWidget* target, const QPoint& place) override {
    drops.push_back(static_cast<CTNParserListCtrl*>(target)->RowAt(place));
  }
  QWidget* MakeEditor(const QModelIndex& cell, QWidget* parent) override {
    const QString text = cell.data().toString();
    if (cell.column() == kTextColumn) return new CTNInPlaceEdit(parent, cell, text);
    return new CTNInPlaceComboBox<WordBox>(parent, cell, text, entries);
  }
  bool HasEditor(const QModelIndex& cell) const override { return cell.column() != kFixedColumn; }
  bool OnEndEdit(const QModelIndex& cell, const EditedValue& value) override {
    reports.push_back(std::to_string(cell.row()) + "," + std::to_string(cell.column()) + "=" +
                      value.text.toStdString() + "/" + value.data.toString().toStdString());
    if (value.text != "bad") return true;
    UserDialogs().Ask(this, {GetCaption(), "bad word", BoxIcon::Warning});
    return false;
  }
  void OnClickCell(const QModelIndex& cell) override { clicks.push_back(cell.row()); }
  void OnDoubleClickCell(const QModelIndex& cell, bool edited) override {
    doubleClicks.emplace_back(cell.row(), edited);
  }
  QMenu* MakeContextMenu(int row) override {
    QMenu* menu = MakeMenu(MenuId::TemplateElements);
    if (row < 0) FindCommand(*menu, Cmd::DeleteSelected)->setEnabled(false);
    return menu;
  }
  std::shared_ptr<CTNParserListNode> MakeNode(int row) const override {
    if (row == outOfMemoryAt) throw std::bad_alloc();
    return std::make_shared<RowNode>(row);
  }

  QStandardItemModel words;
  const QWidget* accepts = nullptr;
  int outOfMemoryAt = -1;
  int entries = 3;
  std::vector<std::string> reports;
  std::vector<int> clicks;
  std::vector<int> drops;
  std::vector<std::pair<int, bool>> doubleClicks;
};

class CTNParserListCtrlTest : public testing::Test {
 protected:
  CTNParserListCtrlTest() {
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(list);
    layout->addWidget(other);
    window.resize(500, 300);
    window.setFocusPolicy(Qt::ClickFocus);
    window.show();
    QApplication::setActiveWindow(&window);
    list->setFocus();
    Settle();
  }
  QPoint At(int row, int column) const {
    return list->visualRect(list->words.index(row, column)).center();
  }
  void Click(int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mouseClick(list->viewport(), Qt::LeftButton, modifiers, At(row, column));
    Settle();
  }
  /// Press, release, press of a double click, release: as a mouse does it.
  void DoubleClick(int row, int column) {
    Click(row, column);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, At(row, column));
    QTest::mouseRelease(list->viewport(), Qt::LeftButton, Qt::NoModifier, At(row, column));
  }
  CTNInPlaceEdit* OpenText(int row) {
    Click(row, kTextColumn);
    return dynamic_cast<CTNInPlaceEdit*>(list->GetEditor());
  }
  QComboBox* OpenCombo(int row) {
    Click(row, kComboColumn);
    return qobject_cast<QComboBox*>(list->GetEditor());
  }
  std::vector<int> GatheredRows() const {
    std::vector<int> rows;
    for (const auto& node : list->GetGathered())
      rows.push_back(static_cast<const RowNode&>(*node).row);
    return rows;
  }
  bool Drop(CTNParserListCtrl& source, CTNParserListCtrl& target, const QPoint& point) {
    DraggedRows rows(source);
    QDragEnterEvent enter(point, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(target.viewport(), &enter);
    if (!enter.isAccepted()) return false;
    QDragMoveEvent move(point, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
    move.ignore();
    QApplication::sendEvent(target.viewport(), &move);
    if (!move.isAccepted()) return false;
    QDropEvent drop(point, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
    drop.ignore();
    QApplication::sendEvent(target.viewport(), &drop);
    Settle();
    return drop.isAccepted();
  }

  FakeUserDialogs dialogs;
  FakeHostApp host;
  QWidget window;
  WordList* list = new WordList;
  QLineEdit* other = new QLineEdit;
};

using Reports = std::vector<std::string>;

TEST_F(CTNParserListCtrlTest, AClickOpensATextEditorWithTheFocusTheListsFontAndAllTextSelected) {
  QFont font = list->font();
  font.setPointSize(font.pointSize() + 3);
  list->setFont(font);
  CTNInPlaceEdit* edit = OpenText(2);
  ASSERT_NE(edit, nullptr);
  EXPECT_TRUE(edit->hasFocus());
  EXPECT_EQ(edit->selectedText(), "word");
  EXPECT_EQ(edit->font().pointSize(), font.pointSize());
  EXPECT_EQ(std::pair(edit->GetItem(), edit->GetSubItem()), std::pair(2, kTextColumn));
}

TEST_F(CTNParserListCtrlTest, EnterReportsTheTextOnceAndGivesTheFocusBack) {
  CTNInPlaceEdit* edit = OpenText(2);
  QTest::keyClicks(edit, " new ");
  QTest::keyClick(edit, Qt::Key_Return);
  Settle();
  EXPECT_EQ(list->reports, Reports{"2,1= new /"});
  EXPECT_FALSE(list->IsEditing());
  EXPECT_TRUE(list->hasFocus());
}

TEST_F(CTNParserListCtrlTest, TabReportsTheText) {
  CTNInPlaceEdit* edit = OpenText(0);
  QTest::keyClicks(edit, "x");
  QTest::keyClick(edit, Qt::Key_Tab);
  EXPECT_EQ(list->reports, Reports{"0,1=x/"});
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNParserListCtrlTest, EscapeReportsNothingAndGivesTheFocusBack) {
  CTNInPlaceEdit* edit = OpenText(2);
  QTest::keyClicks(edit, "new");
  QTest::keyClick(edit, Qt::Key_Escape);
  Settle();
  EXPECT_TRUE(list->reports.empty());
  EXPECT_FALSE(list->IsEditing());
  EXPECT_TRUE(list->hasFocus());
}

TEST_F(CTNParserListCtrlTest, FocusToAnotherControlReportsTheText) {
  CTNInPlaceEdit* edit = OpenText(2);
  QTest::keyClicks(edit, "new");
  other->setFocus();
  Settle();
  EXPECT_EQ(list->reports, Reports{"2,1=new/"});
  EXPECT_FALSE(list->IsEditing());
  EXPECT_TRUE(other->hasFocus());
}

TEST_F(CTNParserListCtrlTest, FocusToAnotherWindowReportsTheText) {
  CTNInPlaceEdit* edit = OpenText(2);
  QTest::keyClicks(edit, "new");
  QWidget elsewhere;
  elsewhere.show();
  QApplication::setActiveWindow(&elsewhere);
  Settle();
  EXPECT_EQ(list->reports, Reports{"2,1=new/"});
}

TEST_F(CTNParserListCtrlTest, FocusToTheDialogItselfDropsTheEdit) {
  CTNInPlaceEdit* edit = OpenText(2);
  QTest::keyClicks(edit, "new");
  window.setFocus();
  Settle();
  EXPECT_TRUE(list->reports.empty());
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNParserListCtrlTest, ARefusedValueKeepsTheEditorOpenWithItsTextSelected) {
  CTNInPlaceEdit* edit = OpenText(2);
  QTest::keyClicks(edit, "bad");
  QTest::keyClick(edit, Qt::Key_Return);
  Settle();
  EXPECT_EQ(dialogs.boxes, Reports{"warning|Words|bad word|Ok"});
  ASSERT_EQ(list->GetEditor(), edit);
  EXPECT_EQ(edit->selectedText(), "bad");
  EXPECT_TRUE(edit->hasFocus());
  QTest::keyClicks(edit, "good");
  QTest::keyClick(edit, Qt::Key_Return);
  EXPECT_EQ(list->reports, (Reports{"2,1=bad/", "2,1=good/"}));
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNParserListCtrlTest, ARefusedValueTakesTheFocusBackThatWentElsewhere) {
  CTNInPlaceEdit* edit = OpenText(2);
  QTest::keyClicks(edit, "bad");
  other->setFocus();
  Settle();
  EXPECT_EQ(list->GetEditor(), edit);
  EXPECT_TRUE(edit->hasFocus());
  EXPECT_EQ(edit->selectedText(), "bad");
}

TEST_F(CTNParserListCtrlTest, TheBoxOfARefusalTakesTheFocusWithoutEndingTheEditAgain) {
  CTNInPlaceEdit* edit = OpenText(2);
  dialogs.whileAsking = [this] { other->setFocus(); };
  QTest::keyClicks(edit, "bad");
  QTest::keyClick(edit, Qt::Key_Return);
  Settle();
  EXPECT_EQ(list->reports.size(), 1U);
  EXPECT_TRUE(edit->hasFocus());
}

TEST_F(CTNParserListCtrlTest, EscapeLeavesAnEditorWhoseValueWasRefused) {
  CTNInPlaceEdit* edit = OpenText(2);
  QTest::keyClicks(edit, "bad");
  QTest::keyClick(edit, Qt::Key_Return);
  Settle();
  QTest::keyClick(edit, Qt::Key_Escape);
  EXPECT_FALSE(list->IsEditing());
  EXPECT_EQ(list->reports.size(), 1U);
}

TEST_F(CTNParserListCtrlTest, KeysThatTheDialogWouldTakeGoToTheEditor) {
  CTNInPlaceEdit* edit = OpenText(2);
  for (const int key :
       {Qt::Key_Return, Qt::Key_Delete, Qt::Key_Escape, Qt::Key_Tab, Qt::Key_Up, Qt::Key_Down}) {
    QKeyEvent event(QEvent::ShortcutOverride, key, Qt::NoModifier);
    event.ignore();
    QApplication::sendEvent(edit, &event);
    EXPECT_TRUE(event.isAccepted()) << key;
  }
  QKeyEvent withControl(QEvent::ShortcutOverride, Qt::Key_S, Qt::ControlModifier);
  withControl.ignore();
  QApplication::sendEvent(edit, &withControl);
  EXPECT_TRUE(withControl.isAccepted());
  QKeyEvent function(QEvent::ShortcutOverride, Qt::Key_F8, Qt::NoModifier);
  function.ignore();
  QApplication::sendEvent(edit, &function);
  EXPECT_FALSE(function.isAccepted());
}

TEST_F(CTNParserListCtrlTest, AComboOpensItsListAtOnceOverTheCellAndShowsTheCurrentValue) {
  QComboBox* box = OpenCombo(3);
  ASSERT_NE(box, nullptr);
  EXPECT_TRUE(box->view()->isVisible());
  EXPECT_EQ(box->currentText(), "two");
  EXPECT_EQ(GetControlId(*box), Ctrl::InPlaceCombo);
  const QRect cell = list->visualRect(list->words.index(3, kComboColumn));
  EXPECT_EQ(box->geometry().top(), cell.top() - 2);
  EXPECT_EQ(box->geometry().right(), std::min(cell.right() + 2, list->viewport()->width() - 1));
}

TEST_F(CTNParserListCtrlTest, TheDropDownIsWideEnoughAndLosesItsProbeEntry) {
  list->setColumnWidth(kComboColumn, 20);
  QComboBox* box = OpenCombo(3);
  EXPECT_EQ(box->count(), 3);
  EXPECT_GE(box->view()->minimumWidth(),
            box->fontMetrics().horizontalAdvance("ZZZZZZZZZZZZZZZ") + 8);
  EXPECT_EQ(box->itemData(1, Qt::SizeHintRole).toSize().height(),
            list->visualRect(list->words.index(3, kComboColumn)).height());
}

TEST_F(CTNParserListCtrlTest, ALongDropDownShowsNoMoreThanTwentyTwoRowsWithItsBox) {
  list->entries = 60;
  QComboBox* box = OpenCombo(3);
  EXPECT_EQ(box->maxVisibleItems(), 21);
  const int rows = box->view()->height() / list->visualRect(list->words.index(3, 0)).height();
  EXPECT_LE(rows, 22);
  EXPECT_GE(rows, 20);
}

TEST_F(CTNParserListCtrlTest, KeysBringTheRowThatTheyReachIntoView) {
  list->SelectRowAlone(0);
  for (int row = 0; row < 19; ++row)
    QTest::keyClick(list, Qt::Key_Down);
  EXPECT_EQ(list->currentIndex().row(), 19);
  EXPECT_TRUE(list->viewport()->rect().contains(At(19, 0)));
}

TEST_F(CTNParserListCtrlTest, AnEntryThatIsChosenIsReportedWithItsData) {
  QComboBox* box = OpenCombo(3);
  QTest::mouseClick(box->view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                    box->view()->visualRect(box->model()->index(2, 0)).center());
  Settle();
  EXPECT_EQ(list->reports, Reports{"3,2=three/THREE"});
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNParserListCtrlTest, EscapeClosesTheDropDownThenTheBox) {
  QComboBox* box = OpenCombo(3);
  QTest::keyClick(box->view(), Qt::Key_Escape);
  Settle();
  ASSERT_EQ(list->GetEditor(), box);
  EXPECT_FALSE(box->view()->isVisible());
  QTest::keyClick(box, Qt::Key_Escape);
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_TRUE(list->reports.empty());
  EXPECT_TRUE(list->hasFocus());
}

TEST_F(CTNParserListCtrlTest, ADropDownClosedWithoutAChoiceReportsTheCurrentValue) {
  QComboBox* box = OpenCombo(3);
  box->hidePopup();
  Settle();
  EXPECT_EQ(list->reports, Reports{"3,2=two/TWO"});
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNParserListCtrlTest, ABoxWithoutCurrentValueShowsItsFirstEntryAndLeftAloneReportsNothing) {
  list->words.item(3, kComboColumn)->setText("seven");
  QComboBox* box = OpenCombo(3);
  EXPECT_EQ(box->currentText(), "one");
  box->hidePopup();
  Settle();
  EXPECT_TRUE(list->reports.empty());
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNParserListCtrlTest, EnterTakesTheFirstEntryOfABoxWithoutCurrentValue) {
  list->words.item(3, kComboColumn)->setText("seven");
  QComboBox* box = OpenCombo(3);
  QTest::keyClick(box->view(), Qt::Key_Escape);
  QTest::keyClick(box, Qt::Key_Return);
  Settle();
  EXPECT_EQ(list->reports, Reports{"3,2=one/ONE"});
}

TEST_F(CTNParserListCtrlTest, OtherKeysOnAClosedBoxOpenItsListAgainAndChooseNothing) {
  QComboBox* box = OpenCombo(3);
  QTest::keyClick(box->view(), Qt::Key_Escape);
  QTest::keyClick(box, Qt::Key_Down);
  Settle();
  EXPECT_TRUE(box->view()->isVisible());
  EXPECT_EQ(box->currentText(), "two");
  EXPECT_TRUE(list->reports.empty());
}

TEST_F(CTNParserListCtrlTest, F2AndEnterOpenTheEditorOfTheCurrentCell) {
  for (const auto key : {Qt::Key_F2, Qt::Key_Return}) {
    list->setCurrentIndex(list->words.index(4, kTextColumn));
    QTest::keyClick(list, key);
    Settle();
    ASSERT_TRUE(list->IsEditing()) << key;
    list->DropEdit();
    EXPECT_FALSE(list->IsEditing());
  }
  EXPECT_TRUE(list->reports.empty());
}

TEST_F(CTNParserListCtrlTest, AnUnmodifiedClickKeepsASelectionThatHoldsTheRow) {
  list->SetSelectedRows({1, 2, 5});
  Click(2, kFixedColumn);
  EXPECT_EQ(list->GetSelectedRows(), std::vector<int>({1, 2, 5}));
  EXPECT_NE(OpenText(5), nullptr);
  EXPECT_EQ(list->GetSelectedRows(), std::vector<int>({1, 2, 5}));
}

TEST_F(CTNParserListCtrlTest, AClickOutsideTheSelectionSelectsTheRowAloneAndOpensTheEditor) {
  list->SetSelectedRows({1, 2});
  EXPECT_NE(OpenText(4), nullptr);
  EXPECT_EQ(list->GetSelectedRows(), std::vector<int>({4}));
}

TEST_F(CTNParserListCtrlTest, ControlAndShiftClicksOnlySelect) {
  Click(1, kFixedColumn);
  Click(3, kTextColumn, Qt::ControlModifier);
  EXPECT_EQ(list->GetSelectedRows(), std::vector<int>({1, 3}));
  EXPECT_FALSE(list->IsEditing());
  Click(2, kFixedColumn);
  Click(5, kTextColumn, Qt::ShiftModifier);
  EXPECT_EQ(list->GetSelectedRows(), std::vector<int>({2, 3, 4, 5}));
  EXPECT_FALSE(list->IsEditing());
  EXPECT_EQ(list->clicks, std::vector<int>({1, 2}));
}

TEST_F(CTNParserListCtrlTest, ADoubleClickSaysWhetherAnEditorIsOpenThere) {
  DoubleClick(1, kFixedColumn);
  DoubleClick(2, kTextColumn);
  EXPECT_EQ(list->doubleClicks, (std::vector<std::pair<int, bool>>{{1, false}, {2, true}}));
  EXPECT_EQ(list->clicks, std::vector<int>({1})) << "the second click of two is no click";
}

TEST_F(CTNParserListCtrlTest, AnEditorWhoseRowGoesReportsNothing) {
  CTNInPlaceEdit* edit = OpenText(2);
  QTest::keyClicks(edit, "new");
  list->words.removeRow(2);
  Settle();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_TRUE(list->reports.empty());
}

TEST_F(CTNParserListCtrlTest, AModelThatStartsAfreshDropsTheEditor) {
  OpenText(2);
  list->words.clear();
  Settle();
  list->EndEdit();
  EXPECT_FALSE(list->IsEditing());
  EXPECT_TRUE(list->reports.empty());
}

TEST_F(CTNParserListCtrlTest, EndEditAppliesAsALossOfTheFocusDoes) {
  QTest::keyClicks(OpenText(2), "new");
  list->EndEdit();
  EXPECT_EQ(list->reports, Reports{"2,1=new/"});
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNParserListCtrlTest, TextsOfAnyLengthAreEditedWhole) {
  const QString text(100000, u'x');
  list->words.item(2, kTextColumn)->setText(text);
  QTest::keyClick(OpenText(2), Qt::Key_Return);
  EXPECT_EQ(list->reports, Reports{"2,1=" + text.toStdString() + "/"});
}

TEST_F(CTNParserListCtrlTest, TheSelectionIsGatheredInListOrder) {
  list->SetSelectedRows({7, 3, 5});
  list->selectionModel()->setCurrentIndex(list->words.index(5, 0), QItemSelectionModel::NoUpdate);
  ASSERT_TRUE(list->GatherSelection(GatherOrder::AsListed));
  EXPECT_EQ(GatheredRows(), std::vector<int>({3, 5, 7}));
  ASSERT_TRUE(list->GatherSelection(GatherOrder::FocusedFirst));
  EXPECT_EQ(GatheredRows(), std::vector<int>({5, 3, 7}));
}

TEST_F(CTNParserListCtrlTest, WhereMemoryEndsGatheringSaysSoAndKeepsWhatItHad) {
  list->SetSelectedRows({1});
  ASSERT_TRUE(list->GatherSelection(GatherOrder::AsListed));
  list->SetSelectedRows({2, 3});
  list->outOfMemoryAt = 3;
  EXPECT_FALSE(list->GatherSelection(GatherOrder::AsListed));
  EXPECT_EQ(dialogs.boxes, Reports{"error|Words|" + GetMessageText(Msg::XmlOutOfMemory) + "|Ok"});
  EXPECT_EQ(GatheredRows(), std::vector<int>({1}));
}

TEST_F(CTNParserListCtrlTest, ARightClickSelectsTheRowAndOpensTheMenuAtTheMouse) {
  list->SetSelectedRows({1, 2});
  RightClick(*list->viewport(), At(4, 1));
  EXPECT_EQ(list->GetSelectedRows(), std::vector<int>({4}));
  QMenu* menu = OpenMenu();
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(MenuText(*menu),
            "Append New\nInsert New Above Selected\nDelete Selected\nChange Type\n"
            "Create Required Output Element Set\nAppend Copy To ...\n  This Record\n"
            "  All Other Records\n");
  EXPECT_EQ(menu->pos(), list->viewport()->mapToGlobal(At(4, 1)));
  menu->close();
}

TEST_F(CTNParserListCtrlTest, ARightClickOnASelectedRowKeepsTheSelection) {
  list->SetSelectedRows({1, 4});
  RightClick(*list->viewport(), At(4, 1));
  EXPECT_EQ(list->GetSelectedRows(), std::vector<int>({1, 4}));
  OpenMenu()->close();
}

TEST_F(CTNParserListCtrlTest, WhereNoRowIsHitTheMenuOfTheEmptyAreaOpens) {
  list->words.removeRows(2, 18);
  RightClick(*list->viewport(), QPoint(10, list->viewport()->height() - 3));
  QMenu* menu = OpenMenu();
  ASSERT_NE(menu, nullptr);
  EXPECT_FALSE(FindCommand(*menu, Cmd::DeleteSelected)->isEnabled());
  menu->close();
}

TEST_F(CTNParserListCtrlTest, TheMenuKeyOpensTheMenuOfTheCurrentRow) {
  list->SelectRowAlone(3);
  QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(0, 0), list->mapToGlobal(QPoint()));
  QApplication::sendEvent(list, &event);
  QMenu* menu = OpenMenu();
  ASSERT_NE(menu, nullptr);
  EXPECT_TRUE(FindCommand(*menu, Cmd::DeleteSelected)->isEnabled());
  menu->close();
}

TEST_F(CTNParserListCtrlTest, ACommandOfTheMenuIsToldWithItsNumber) {
  std::vector<Cmd> commands;
  QObject::connect(list, &CTNParserListCtrl::CommandChosen,
                   [&commands](Cmd command) { commands.push_back(command); });
  RightClick(*list->viewport(), At(4, 1));
  FindCommand(*OpenMenu(), Cmd::CopyToThis)->trigger();
  EXPECT_EQ(commands, std::vector<Cmd>({Cmd::CopyToThis}));
  OpenMenu()->close();
}

TEST_F(CTNParserListCtrlTest, CopyPutsTheSelectedRowsOnTheClipboard) {
  list->SetSelectedRows({1, 3});
  QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "1\tword\ttwo\n3\tword\ttwo\n");
}

TEST_F(CTNParserListCtrlTest, RowsAreDroppedWhereTheirListSaysSo) {
  WordList target;
  target.resize(400, 300);
  target.show();
  Settle();
  list->SetSelectedRows({1});
  EXPECT_FALSE(Drop(*list, target, QPoint(5, 5)));
  list->accepts = &target;
  EXPECT_TRUE(Drop(*list, target, target.visualRect(target.words.index(2, 0)).center()));
  EXPECT_EQ(list->drops, std::vector<int>({2}));
  EXPECT_TRUE(target.drops.empty());
}

TEST_F(CTNParserListCtrlTest, ADropBelowTheLastRowHitsNone) {
  list->words.removeRows(2, 18);
  list->accepts = list;
  EXPECT_TRUE(Drop(*list, *list, QPoint(5, list->viewport()->height() - 2)));
  EXPECT_EQ(list->drops, std::vector<int>({-1}));
}

TEST_F(CTNParserListCtrlTest, WhatIsNoRowOfAListIsNotTaken) {
  QMimeData text;
  text.setText("words");
  QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
  enter.ignore();
  QApplication::sendEvent(list->viewport(), &enter);
  EXPECT_FALSE(enter.isAccepted());
}

TEST_F(CTNParserListCtrlTest, DraggingOverTheFirstOrLastVisibleRowScrollsByOneRow) {
  list->accepts = list;
  DraggedRows rows(*list);
  QDragEnterEvent enter(QPoint(5, 50), Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(list->viewport(), &enter);
  const auto hover = [&](int y) {
    QDragMoveEvent move(QPoint(5, y), Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(list->viewport(), &move);
    return list->rowAt(0);
  };
  const int bottom = list->viewport()->height() - 1;
  EXPECT_EQ(hover(bottom), 1);
  EXPECT_EQ(hover(bottom), 2);
  EXPECT_EQ(hover(1), 1);
  EXPECT_EQ(hover(1), 0);
  EXPECT_EQ(hover(1), 0);
}

TEST_F(CTNParserListCtrlTest, ALineShowsWhereADropWouldInsert) {
  list->accepts = list;
  const auto pixels = [this] { return list->viewport()->grab().toImage(); };
  const QImage before = pixels();
  DraggedRows rows(*list);
  const QRect second = list->visualRect(list->words.index(1, 0));
  QDragEnterEvent enter(second.center(), Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(list->viewport(), &enter);
  QDragMoveEvent move(second.center(), Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(list->viewport(), &move);
  const QColor line = list->palette().color(QPalette::Highlight);
  const QPoint end(list->viewport()->width() - 3, second.top());
  EXPECT_EQ(pixels().pixelColor(end), line);
  EXPECT_NE(before.pixelColor(end), line);
  QDragLeaveEvent leave;
  QApplication::sendEvent(list->viewport(), &leave);
  EXPECT_EQ(pixels(), before);
}

TEST_F(CTNParserListCtrlTest, ADropOfAListThatIsGoneIsRefused) {
  auto gone = std::make_unique<WordList>();
  DraggedRows rows(*gone);
  gone.reset();
  list->accepts = list;
  QDragEnterEvent enter(QPoint(5, 5), Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
  enter.ignore();
  QApplication::sendEvent(list->viewport(), &enter);
  EXPECT_FALSE(enter.isAccepted());
}

TEST_F(CTNParserListCtrlTest, TheLineShowsWhereADropWouldInsertAlsoAfterScrolling) {
  list->accepts = list;
  DraggedRows rows(*list);
  const QPoint bottom(5, list->viewport()->height() - 1);
  QDragEnterEvent enter({5, 50}, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(list->viewport(), &enter);
  QDragMoveEvent move(bottom, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(list->viewport(), &move);
  const QRect hit = list->visualRect(list->words.index(list->rowAt(bottom.y()), 0));
  const QImage image = list->viewport()->grab().toImage();
  EXPECT_EQ(image.pixelColor(list->viewport()->width() - 3, hit.top()),
            list->palette().color(QPalette::Highlight));
}

TEST_F(CTNParserListCtrlTest, AClickOnAnotherCellLeavesARefusedEditorOpen) {
  FakeUserDialogs boxes;
  boxes.answers = {BoxAnswer::Ok, BoxAnswer::Ok, BoxAnswer::Ok};
  CTNInPlaceEdit* const edit = OpenText(1);
  QTest::keyClicks(edit, "bad");
  EXPECT_FALSE(list->BeginEdit(list->words.index(2, kTextColumn)));
  EXPECT_EQ(list->GetEditor(), edit);
  EXPECT_EQ(boxes.boxes.size(), 1U);
}

TEST_F(CTNParserListCtrlTest, ACellThatIsHiddenOpensNoEditor) {
  list->setColumnHidden(kTextColumn, true);
  EXPECT_FALSE(list->BeginEdit(list->words.index(1, kTextColumn)));
  EXPECT_FALSE(list->IsEditing());
}

TEST_F(CTNParserListCtrlTest, ModifiersAndTheHelpKeyOpenNoList) {
  QComboBox* const box = OpenCombo(1);
  ASSERT_NE(box, nullptr);
  QTest::keyClick(box->view(), Qt::Key_Escape);
  Settle();
  ASSERT_EQ(list->GetEditor(), box);
  for (const Qt::Key key : {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_F1}) {
    QTest::keyClick(box, key);
    Settle();
    EXPECT_FALSE(box->view()->isVisible()) << key;
  }
}

TEST_F(CTNParserListCtrlTest, TheMenuKeyIsAboutTheSelectedRowsWhereNoneIsCurrent) {
  list->SetSelectedRows({17, 18});
  list->selectionModel()->setCurrentIndex({}, QItemSelectionModel::NoUpdate);
  QContextMenuEvent event(QContextMenuEvent::Keyboard, {1, 1}, list->mapToGlobal(QPoint(1, 1)));
  QApplication::sendEvent(list, &event);
  QMenu* const menu = OpenMenu();
  ASSERT_NE(menu, nullptr);
  EXPECT_TRUE(FindCommand(*menu, Cmd::DeleteSelected)->isEnabled());
  menu->close();
  EXPECT_EQ(list->GetSelectedRows(), std::vector<int>({17, 18}));
}

TEST_F(CTNParserListCtrlTest, ColumnWidthsAreStoredAsNumbersSeparatedByCommas) {
  list->setColumnWidth(0, 61);
  list->setColumnWidth(1, 122);
  list->setColumnWidth(2, 83);
  EXPECT_TRUE(list->StoreColumnWidths(host, "INPUT_FIELD_LIST"));
  EXPECT_EQ(host.profile["BOM Parser/INPUT_FIELD_LIST"], "61,122,83");
  list->setColumnWidth(1, 40);
  EXPECT_TRUE(list->RestoreColumnWidths(host, "INPUT_FIELD_LIST").empty());
  EXPECT_EQ(list->columnWidth(1), 122);
}

TEST_F(CTNParserListCtrlTest, ColumnsWithoutAUsableStoredWidthAreTold) {
  EXPECT_EQ(list->RestoreColumnWidths(host, "K"), std::vector<int>({0, 1, 2}));
  host.profile["BOM Parser/K"] = "61,x";
  EXPECT_EQ(list->RestoreColumnWidths(host, "K"), std::vector<int>({1, 2}));
  host.profile["BOM Parser/K"] = "10001,-5,10000";
  EXPECT_EQ(list->RestoreColumnWidths(host, "K"), std::vector<int>({0, 1}));
  host.profile["BOM Parser/K"] = "0,-5,999999999999";
  EXPECT_EQ(list->RestoreColumnWidths(host, "K"), std::vector<int>({0, 1, 2}));
}

TEST_F(CTNParserListCtrlTest, PictureOfTheOpenEditors) {
  list->SetSelectedRows({1, 2});
  OpenText(2);
  EXPECT_TRUE(Screenshot(window, "list-text-editor"));
  list->DropEdit();
  QComboBox* box = OpenCombo(3);
  EXPECT_TRUE(Screenshot(window, "list-combo-box"));
  EXPECT_TRUE(Screenshot(*box->view()->window(), "list-drop-down"));
}

}  // namespace
}  // namespace bomparser::test
