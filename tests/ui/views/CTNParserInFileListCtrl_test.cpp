#include "ui/views/CTNParserInFileListCtrl.h"

#include "tests/ui/views/InputViewTest.h"
#include "ui/views/CTNParserInFileListNode.h"

#include <QBrush>
#include <QClipboard>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFontInfo>
#include <QHeaderView>
#include <QScrollBar>

namespace bomparser::test {
namespace {

using Strings = std::vector<std::string>;

class CTNParserInFileListCtrlTest : public InputViewTest {
 protected:
  CTNParserInFileListCtrlTest() {
    list.resize(700, 300);
    list.SetInputFile(&InFile());
    QObject::connect(
        &list, &CTNParserInFileListCtrl::MatchedBlockSelected, &list,
        [this](const CTNParsedFileBlock& block) { selected.push_back(block.ToReadableText()); });
    QObject::connect(&list, &CTNParserInFileListCtrl::CreateRecordRequested, &list, [this] {
      requests.push_back("create " + list.GetGatheredText(Tabs::Expanded));
    });
    QObject::connect(&list, &CTNParserInFileListCtrl::TestSelectionRequested, &list, [this] {
      requests.push_back("test " + list.GetGatheredText(Tabs::AsInFile));
    });
    QObject::connect(&list, &CTNParserInFileListCtrl::EditFileRequested, &list,
                     [this] { requests.emplace_back("edit"); });
  }
  void Show(const std::string& text) {
    ApplyTo(text);
    list.Fill();
    list.show();
    list.setFocus();
    Settle();
  }
  const CTNParserInFileModel& Model() { return list.GetModel(); }
  QPoint PointOf(int row, int column = 2) {
    const QRect cell = list.visualRect(Model().index(row, column));
    return {cell.left() + 5, cell.center().y()};
  }
  void Click(int row, Qt::KeyboardModifiers keys = Qt::NoModifier) {
    QTest::mouseClick(list.viewport(), Qt::LeftButton, keys, PointOf(row));
    Settle();
  }
  void DoubleClick(int row) {
    Click(row);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, PointOf(row));
    Settle();
  }
  void Key(Qt::Key key, Qt::KeyboardModifiers keys = Qt::NoModifier) {
    QTest::keyClick(&list, key, keys);
    Settle();
  }
  /// Opens the menu of a row, or below the last one, and chooses the item.
  void Choose(const QPoint& point, Cmd command) {
    RightClick(*list.viewport(), point);
    ChooseCommand(command);
  }
  /// The items of the menu of a row, or of the area below the rows.
  std::string MenuAt(const QPoint& point) {
    RightClick(*list.viewport(), point);
    QMenu* const menu = OpenMenu();
    if (menu == nullptr) return "none";
    std::string text = MenuText(*menu);
    menu->close();
    Settle();
    return text;
  }
  QPoint BelowRows() { return {20, list.viewport()->height() - 3}; }
  /// The line numbers of the selected rows.
  LineNumbers Selected() {
    LineNumbers lines;
    for (const int row : list.GetSelectedRows())
      lines.push_back(static_cast<int>(Model().GetLine(row)) + 1);
    return lines;
  }
  int TopLine() { return static_cast<int>(Model().GetLine(list.rowAt(0))) + 1; }

  CTNParserInFileListCtrl list;
  std::vector<std::string> selected;
  std::vector<std::string> requests;
};

// Filling.

TEST_F(CTNParserInFileListCtrlTest, CarriesItsNumberAndAnAccessibleName) {
  EXPECT_EQ(GetControlId(list), Ctrl::InputRows);
  EXPECT_FALSE(list.accessibleName().isEmpty());
}

TEST_F(CTNParserInFileListCtrlTest, AtFirstAllKindsAreShownInColourWithoutMarkupAndNewlines) {
  EXPECT_EQ(list.GetShowFlags(), 15U);
  EXPECT_FALSE(list.ShowsMarkup());
  EXPECT_FALSE(list.ShowsNewlines());
  Show(kText);
  EXPECT_EQ(ColourOf(Model(), 1, 2, Qt::BackgroundRole), "#c8ffc8");
}

TEST_F(CTNParserInFileListCtrlTest, WithoutAFileThereIsNoRow) {
  Show(kText);
  ASSERT_EQ(Model().rowCount(), 10);
  list.SetInputFile(nullptr);
  list.Fill();
  EXPECT_EQ(Model().rowCount(), 0);
}

TEST_F(CTNParserInFileListCtrlTest, AfterAFailedApplicationThereIsNoRow) {
  Show(kText);
  engine.CloseInputFile();
  ASSERT_NE(Apply(), "ok");
  list.Fill();
  EXPECT_EQ(Model().rowCount(), 0);
  EXPECT_EQ(Model().columnCount(), 3);
}

TEST_F(CTNParserInFileListCtrlTest, AFileThatWasClosedHasNoRow) {
  Show(kText);
  engine.CloseInputFile();
  InFile().CloseAndReset();
  list.Fill();
  EXPECT_EQ(Model().rowCount(), 0);
}

TEST_F(CTNParserInFileListCtrlTest, StaleRowsStay) {
  Show(kText);
  InFile().SetStale(true);
  list.ShowState();
  EXPECT_EQ(RowText(Model(), 1), "2|\?\?|R1      10k");
  list.Fill();
  EXPECT_EQ(RowText(Model(), 1), "2|\?\?|R1      10k");
}

TEST_F(CTNParserInFileListCtrlTest, TheFlagsSayWhichKindsAreListed) {
  list.SetShowFlags(kShowUnmatched | kShowAuxiliary);
  Show(kText);
  EXPECT_EQ(Numbers(Model()), (LineNumbers{4, 8, 9}));
}

TEST_F(CTNParserInFileListCtrlTest, RowsAreOfOneHeightAndHigherThanTheirFont) {
  Show(kText);
  const int height = list.rowHeight(0);
  EXPECT_EQ(list.rowHeight(9), height);
  EXPECT_GE(height, QFontMetrics(Model().GetTextFont()).height());
}

TEST_F(CTNParserInFileListCtrlTest, TextColumnsHaveAFixedPitchAndTheOthersHaveNot) {
  Show(kText);
  const auto font = Model().index(0, 2).data(Qt::FontRole).value<QFont>();
  const QFontMetrics metrics(font);
  EXPECT_EQ(metrics.horizontalAdvance(u'i'), metrics.horizontalAdvance(u'W'));
  EXPECT_FALSE(Model().index(0, 1).data(Qt::FontRole).isValid());
}

TEST_F(CTNParserInFileListCtrlTest, AllRowsAreSelectedAlsoWhileSomeAreStillToCome) {
  ApplyTo(std::string(250'000, '\n'));
  list.Fill();
  ASSERT_TRUE(Model().HasLateRows());
  list.selectAll();
  EXPECT_EQ(list.GetSelectedRows().size(), 250'000U);
}

TEST_F(CTNParserInFileListCtrlTest, AnUnmatchedLineIsFoundAlsoWhileItIsStillToCome) {
  std::string text = "\n";
  for (int i = 0; i < 150'000; ++i)
    text += "R1\n";
  ApplyTo(text + "junk\n");
  list.Fill();
  ASSERT_TRUE(Model().HasLateRows());
  EXPECT_EQ(list.GoToUnmatched(SearchDirection::Down), UnmatchedFound::Ahead);
  EXPECT_EQ(list.GetSelectedRows(), std::vector<int>({150'001}));
}

TEST_F(CTNParserInFileListCtrlTest, TextsFollowTheSizeOfTheFont) {
  Show(kText);
  const int width = list.columnWidth(2);
  QFont large = list.font();
  large.setPointSizeF(2 * large.pointSizeF());
  list.setFont(large);
  EXPECT_EQ(Model().GetTextFont().pointSizeF(), large.pointSizeF());
  EXPECT_GT(list.columnWidth(2), width);
}

TEST_F(CTNParserInFileListCtrlTest, TheTextColumnIsAsWideAsItsWidestText) {
  Show("\nR1\nR" + std::string(99, '1') + "\n");
  const QFontMetrics metrics(Model().GetTextFont());
  const int text = metrics.horizontalAdvance(QString(100, u'1'));
  EXPECT_GT(list.columnWidth(2), text);
  EXPECT_LT(list.columnWidth(2), text + 20);
}

TEST_F(CTNParserInFileListCtrlTest, ExtraColumnsAreAsWideAsTheirTextsAndComeAndGo) {
  Show("\nR" + std::string(299, '1') + "\n");
  ASSERT_EQ(Model().columnCount(), 4);
  const QFontMetrics metrics(Model().GetTextFont());
  EXPECT_GT(list.columnWidth(3), metrics.horizontalAdvance(QString(45, u'1')));
  EXPECT_LT(list.columnWidth(3), metrics.horizontalAdvance(QString(50, u'1')));
  list.SetShowFlags(kShowIgnored);
  list.Fill();
  EXPECT_EQ(Model().columnCount(), 3);
}

TEST_F(CTNParserInFileListCtrlTest, TextOfDoubleWidthIsNotCut) {
  std::string text;
  for (int i = 0; i < 40; ++i)
    text += "\xE9\x9B\xBB";
  Show("\nR" + text + "\n");
  const QFontMetrics metrics(Model().GetTextFont());
  EXPECT_GT(list.columnWidth(2),
            metrics.horizontalAdvance(QStringLiteral("R") + QString(40, QChar(0x96FB))));
}

TEST_F(CTNParserInFileListCtrlTest, EveryLineNumberFitsItsColumn) {
  Show(ManyLines(20'000, 7));
  ASSERT_TRUE(WaitForScan(Model()));
  EXPECT_GT(list.columnWidth(0), list.fontMetrics().horizontalAdvance(QStringLiteral("20000")));
}

TEST_F(CTNParserInFileListCtrlTest, AWidthThatTheUserChoseForTheRecordsStays) {
  Show(kText);
  list.setColumnWidth(1, 55);
  list.Fill();
  EXPECT_EQ(list.columnWidth(1), 55);
}

// What a refill keeps.

TEST_F(CTNParserInFileListCtrlTest, ARefillKeepsTheSelectedLinesAndReportsNothing) {
  Show(kText);
  Click(2);
  Click(3, Qt::ControlModifier);
  Click(9, Qt::ControlModifier);
  selected.clear();
  list.SetShowFlags(kShowAllKinds & ~static_cast<std::uint32_t>(kShowIgnored));
  list.Fill();
  Settle();
  EXPECT_EQ(Selected(), (LineNumbers{3, 4, 10}));
  EXPECT_EQ(Model().GetLine(list.currentIndex().row()), 9U);
  EXPECT_EQ(selected, Strings());
  EXPECT_TRUE(list.selectionModel()->isSelected(Model().index(1, 2)));
}

TEST_F(CTNParserInFileListCtrlTest, ASelectedLineThatIsHiddenIsNotSelected) {
  Show(kText);
  Click(3);
  list.SetShowFlags(kShowEntities);
  list.Fill();
  EXPECT_EQ(Selected(), LineNumbers());
}

TEST_F(CTNParserInFileListCtrlTest, LinesBetweenSelectedOnesThatAppearAreNotSelected) {
  list.SetShowFlags(kShowEntities);
  Show(kText);
  Key(Qt::Key_A, Qt::ControlModifier);
  ASSERT_EQ(Selected(), (LineNumbers{2, 3, 5, 6, 7, 10}));
  list.SetShowFlags(kShowAllKinds);
  list.Fill();
  EXPECT_EQ(Selected(), (LineNumbers{2, 3, 5, 6, 7, 10}));
}

TEST_F(CTNParserInFileListCtrlTest, ARefillOfTheSameRowsKeepsASelectionOfAllAsOneRange) {
  list.SetShowFlags(kShowEntities);
  Show(kText);
  Key(Qt::Key_A, Qt::ControlModifier);
  list.Fill();
  EXPECT_EQ(Selected().size(), 6U);
  EXPECT_EQ(list.selectionModel()->selection().size(), 1);
}

TEST_F(CTNParserInFileListCtrlTest, ARefillKeepsTheLineAtTheTopInSight) {
  Show(ManyLines(20'000, 2));
  list.verticalScrollBar()->setValue(9001);
  ASSERT_EQ(TopLine(), 9002);
  list.Fill();
  EXPECT_EQ(TopLine(), 9002);
  list.SetShowFlags(kShowUnmatched);  // Every other line, 9002 among them.
  list.Fill();
  EXPECT_EQ(TopLine(), 9002);
  list.SetShowFlags(kShowEntities);
  list.Fill();
  EXPECT_EQ(TopLine(), 9003);
}

TEST_F(CTNParserInFileListCtrlTest, ARefillKeepsTheHorizontalPlace) {
  Show("\nR" + std::string(900, '1') + "\n");
  list.horizontalScrollBar()->setValue(1234);
  list.Fill();
  Settle();
  EXPECT_EQ(list.horizontalScrollBar()->value(), 1234);
}

TEST_F(CTNParserInFileListCtrlTest, FilteredRowsThatComeLateAreSelectedAgain) {
  Show(ManyLines(50'000, 10));
  list.SetSelectedRows({30'000, 30'001, 40'001});
  Settle();
  selected.clear();
  list.SetFilter(RowFilter(QStringLiteral("junk"), RowFilter::Kind::Text));
  list.Fill();
  ASSERT_TRUE(WaitForScan(Model()));
  Settle();
  EXPECT_EQ(Selected(), (LineNumbers{30'002, 40'002}));
  EXPECT_EQ(selected, Strings());
}

TEST_F(CTNParserInFileListCtrlTest, AFilterThatIsTakenBackBeforeItFoundAnythingLeavesTheSelection) {
  Show(ManyLines(200'000, 10));
  ASSERT_TRUE(WaitForScan(Model()));
  list.SetSelectedRows({20, 150'000});
  Settle();
  selected.clear();
  list.SetFilter(RowFilter(QStringLiteral("no such text"), RowFilter::Kind::Text));
  list.Fill();
  ASSERT_EQ(Model().rowCount(), 0);
  list.SetFilter(RowFilter());
  list.Fill();
  ASSERT_TRUE(WaitForScan(Model()));
  EXPECT_EQ(Selected(), (LineNumbers{21, 150'001}));
  Settle();
  EXPECT_EQ(selected, Strings());
}

TEST_F(CTNParserInFileListCtrlTest, RowsStaySelectedInColumnsThatComeLater) {
  const std::string text = ManyLines(20'000, 10) + "R" + std::string(400, 'w') + "\n";
  ApplyTo(text);
  list.Fill();
  ASSERT_EQ(Model().columnCount(), 3);
  list.SetSelectedRows({4, 5});
  Settle();
  selected.clear();
  ASSERT_TRUE(WaitForScan(Model()));
  ASSERT_EQ(Model().columnCount(), 4);
  EXPECT_TRUE(list.selectionModel()->isSelected(Model().index(5, 3)));
  EXPECT_EQ(list.selectionModel()->selectedRows().size(), 2);
  Settle();
  EXPECT_EQ(selected, Strings());
}

TEST_F(CTNParserInFileListCtrlTest, AnotherFileStartsAtTheTop) {
  Show(ManyLines(20'000, 2));
  list.verticalScrollBar()->setValue(9000);
  list.SetInputFile(nullptr);
  list.SetInputFile(&InFile());
  list.Fill();
  Settle();
  EXPECT_EQ(TopLine(), 1);
}

// Selecting.

TEST_F(CTNParserInFileListCtrlTest, AClickReportsTheBlockOfItsRowOnce) {
  Show(kText);
  Click(5);
  EXPECT_EQ(selected, (Strings{"E2{F1=Module|F2=|F3= two|F4=|F5= x|F6=}"}));
}

TEST_F(CTNParserInFileListCtrlTest, TheKeyboardReportsTheRowItCameTo) {
  Show(kText);
  Click(1);
  selected.clear();
  Key(Qt::Key_Down);
  Key(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(selected, (Strings{"E1{F1=R|F2=2 22k|F3=}", "A1{F1=Title|F2= of board|F3=}"}));
}

TEST_F(CTNParserInFileListCtrlTest, ARowThatWasSelectedAlreadyIsNotReported) {
  Show(kText);
  Click(1);
  selected.clear();
  Click(1);
  EXPECT_EQ(selected, Strings());
  Key(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(selected, Strings());
}

TEST_F(CTNParserInFileListCtrlTest, ARowThatIsTakenOutOfTheSelectionIsNotReported) {
  Show(kText);
  Click(1);
  Click(2, Qt::ControlModifier);
  selected.clear();
  Click(1, Qt::ControlModifier);
  EXPECT_EQ(selected, Strings());
}

TEST_F(CTNParserInFileListCtrlTest, ARightClickThatSelectsReportsAndOneOnASelectedRowDoesNot) {
  Show(kText);
  Click(1);
  selected.clear();
  MenuAt(PointOf(3));
  EXPECT_EQ(selected, (Strings{"A1{F1=Title|F2= of board|F3=}"}));
  MenuAt(PointOf(3));
  EXPECT_EQ(selected.size(), 1U);
}

TEST_F(CTNParserInFileListCtrlTest, StaleResultsAreNotReported) {
  Show(kText);
  InFile().SetStale(true);
  Click(1);
  EXPECT_EQ(selected, Strings());
  EXPECT_EQ(Selected(), (LineNumbers{2}));
}

TEST_F(CTNParserInFileListCtrlTest, AnArrowKeyBringsTheRowIntoSight) {
  Show(ManyLines(1000, 10));
  Click(0);
  for (int i = 0; i < 40; ++i)
    QTest::keyClick(&list, Qt::Key_Down);
  Settle();
  EXPECT_EQ(list.currentIndex().row(), 40);
  EXPECT_TRUE(list.viewport()->rect().contains(PointOf(40, 0)));
}

TEST_F(CTNParserInFileListCtrlTest, AllOfALargeFileAreSelected) {
  Show(ManyLines(50'000, 10));
  Key(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(Selected().size(), 50'000U);
  EXPECT_EQ(list.selectionModel()->selection().size(), 1);
}

TEST_F(CTNParserInFileListCtrlTest, TypingALetterSearchesNothing) {
  Show(kText);
  Click(1);
  Key(Qt::Key_7);
  EXPECT_EQ(Selected(), (LineNumbers{2}));
}

// Commands.

TEST_F(CTNParserInFileListCtrlTest, TheMenuOfARowOffersAllThree) {
  Show(kText);
  EXPECT_EQ(MenuAt(PointOf(1)),
            "Create New Record From Selected\n"
            "Test Selected For Match With Current Record\n"
            "Edit File ...\n");
}

TEST_F(CTNParserInFileListCtrlTest, BelowTheRowsOnlyTheFileCanBeEdited) {
  Show(kText);
  Click(1);
  EXPECT_EQ(MenuAt(BelowRows()),
            "[Create New Record From Selected]\n"
            "[Test Selected For Match With Current Record]\n"
            "Edit File ...\n");
  EXPECT_EQ(Selected(), (LineNumbers{2}));
}

TEST_F(CTNParserInFileListCtrlTest, WithoutAnApplicationEverythingIsGreyed) {
  list.show();
  EXPECT_EQ(MenuAt(BelowRows()),
            "[Create New Record From Selected]\n"
            "[Test Selected For Match With Current Record]\n"
            "[Edit File ...]\n");
}

TEST_F(CTNParserInFileListCtrlTest, TheMenuKeyOpensTheMenuOfTheCurrentRow) {
  Show(kText);
  Click(3);
  QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(0, 0), QPoint(0, 0));
  QApplication::sendEvent(list.viewport(), &event);
  QMenu* const menu = OpenMenu();
  ASSERT_NE(menu, nullptr);
  FindCommand(*menu, Cmd::CreateRecordFromSelected)->trigger();
  menu->close();
  Settle();
  EXPECT_EQ(requests, (Strings{"create Title of board\n"}));
}

TEST_F(CTNParserInFileListCtrlTest, SelectedRowsAreGatheredInListOrderWithTabsExpanded) {
  Show(kText);
  Click(5);
  Click(3, Qt::ControlModifier);
  Click(1, Qt::ControlModifier);
  Choose(PointOf(3), Cmd::CreateRecordFromSelected);
  EXPECT_EQ(requests, (Strings{"create R1      10k\nTitle of board\n two\n"}));
  EXPECT_EQ(list.GetGathered().size(), 3U);
  const auto& node = dynamic_cast<const CTNParserInFileListNode&>(*list.GetGathered()[2]);
  EXPECT_EQ(node.GetRow(), 1U);
  EXPECT_EQ(node.GetBlock().ToReadableText(), "E2{F1=Module|F2=|F3= two|F4=|F5= x|F6=}");
}

TEST_F(CTNParserInFileListCtrlTest, ATestOfTheSelectionGetsTheCharactersOfTheFile) {
  Show(kText);
  Click(1);
  Choose(PointOf(1), Cmd::TestSelected);
  EXPECT_EQ(requests, (Strings{"test R1\t10k\n"}));
}

TEST_F(CTNParserInFileListCtrlTest, GatheredTextIsWithoutMarkupAndMarks) {
  list.SetShowMarkup(true);
  list.SetShowNewlines(true);
  Show(kText);
  Click(1);
  Choose(PointOf(1), Cmd::TestSelected);
  Choose(PointOf(1), Cmd::CreateRecordFromSelected);
  EXPECT_EQ(requests, (Strings{"test R1\t10k\n", "create R1      10k\n"}));
}

TEST_F(CTNParserInFileListCtrlTest, GatheredTextIsAllOfTheRowAndItsBytesAreUnaltered) {
  const std::string text = "R\xB5" + std::string(100'000, 'x');
  Show("\n" + text + "\n");
  Click(1);
  Choose(PointOf(1), Cmd::TestSelected);
  EXPECT_EQ(requests, (Strings{"test " + text + "\n"}));
}

TEST_F(CTNParserInFileListCtrlTest, GatheredRowsStayWhenTheFileIsAppliedAgain) {
  Show(kText);
  Click(1);
  Choose(PointOf(1), Cmd::CreateRecordFromSelected);
  ApplyTo("\nother\n");
  list.Fill();
  EXPECT_EQ(list.GetGatheredText(Tabs::AsInFile), "R1\t10k\n");
}

TEST_F(CTNParserInFileListCtrlTest, ADoubleClickCreatesARecordFromItsRowAlone) {
  Show(kText);
  Click(1);
  Click(2, Qt::ControlModifier);
  DoubleClick(3);
  EXPECT_EQ(requests, (Strings{"create Title of board\n"}));
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, BelowRows());
  EXPECT_EQ(requests.size(), 1U);
}

TEST_F(CTNParserInFileListCtrlTest, EditingTheFileNeedsAnApplicationThatSucceeded) {
  Show(kText);
  Choose(BelowRows(), Cmd::EditFile);
  EXPECT_EQ(requests, (Strings{"edit"}));
  InFile().CloseAndReset();
  Choose(BelowRows(), Cmd::EditFile);
  EXPECT_EQ(requests, (Strings{"edit"}));
}

TEST_F(CTNParserInFileListCtrlTest, CopyTakesTheFilesTextOfTheSelectedRows) {
  list.SetShowMarkup(true);
  Show(kText);
  Click(1);
  Click(5, Qt::ShiftModifier);
  QTest::keySequence(&list, QKeySequence::Copy);
  EXPECT_EQ(QApplication::clipboard()->text(),
            QStringLiteral("R1\t10k\nR2 22k\nTitle of board\nModule\n two\n"));
}

TEST_F(CTNParserInFileListCtrlTest, EveryCopiedRowIsDecodedOnItsOwn) {
  Show("\nR\xB5\nR\xC2\xB5\n");
  Key(Qt::Key_A, Qt::ControlModifier);
  QTest::keySequence(&list, QKeySequence::Copy);
  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral(u"\nR\u00B5\nR\u00B5\n"));
}

// Dragging.

/// A list that counts the rows dropped on it.
class Target final : public CTNParserListCtrl {
 public:
  Target() : CTNParserListCtrl(QStringLiteral("Target")) {}
  bool OfferDrop(CTNParserListCtrl& source) {
    DraggedRows rows(source);
    QDragMoveEvent move(QPoint(5, 5), Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
    move.ignore();
    dragMoveEvent(&move);
    QDropEvent drop(QPointF(5, 5), Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
    drop.ignore();
    dropEvent(&drop);
    EXPECT_EQ(move.isAccepted(), drop.isAccepted());
    return drop.isAccepted();
  }
};

class CTNParserInFileListCtrlDragTest : public CTNParserInFileListCtrlTest {
 protected:
  CTNParserInFileListCtrlDragTest() { target.setModel(&rows); }

  CTNParserInFileModel rows;
  Target target;
};

TEST_F(CTNParserInFileListCtrlDragTest, ADropOnTheVisibleRecordListCreatesARecordAfterwards) {
  Show(kText);
  Click(1);
  target.setProperty(kAcceptsInputRows, true);
  target.show();
  EXPECT_TRUE(target.OfferDrop(list));
  EXPECT_EQ(requests, Strings());  // The drop has to return first.
  Settle();
  EXPECT_EQ(requests, (Strings{"create R1      10k\n"}));
}

TEST_F(CTNParserInFileListCtrlDragTest, AHiddenRecordListAcceptsNothing) {
  Show(kText);
  Click(1);
  target.setProperty(kAcceptsInputRows, true);
  EXPECT_FALSE(target.OfferDrop(list));
  Settle();
  EXPECT_EQ(requests, Strings());
}

TEST_F(CTNParserInFileListCtrlDragTest, OtherListsAndTheViewItselfAcceptNothing) {
  Show(kText);
  Click(1);
  target.show();
  EXPECT_FALSE(target.OfferDrop(list));
  EXPECT_FALSE(list.CanDropOn(&list));
  EXPECT_FALSE(list.CanDropOn(nullptr));
  Settle();
  EXPECT_EQ(requests, Strings());
}

TEST_F(CTNParserInFileListCtrlDragTest, RowsCanBeDragged) {
  Show(kText);
  EXPECT_TRUE(list.dragEnabled());
  EXPECT_TRUE(Model().flags(Model().index(1, 1)).testFlag(Qt::ItemIsDragEnabled));
}

// Unmatched lines.

TEST_F(CTNParserInFileListCtrlTest, F8GoesToTheNextUnmatchedLineAndOnFromTheTop) {
  Show(kText);
  Key(Qt::Key_F8);
  EXPECT_EQ(Selected(), (LineNumbers{8}));
  Key(Qt::Key_F8);
  EXPECT_EQ(Selected(), (LineNumbers{9}));
  EXPECT_EQ(list.GoToUnmatched(SearchDirection::Down), UnmatchedFound::WentRound);
  EXPECT_EQ(Selected(), (LineNumbers{8}));
}

TEST_F(CTNParserInFileListCtrlTest, ShiftF8GoesToThePreviousUnmatchedLineAndOnFromTheBottom) {
  Show(kText);
  Key(Qt::Key_F8, Qt::ShiftModifier);
  EXPECT_EQ(Selected(), (LineNumbers{9}));
  Key(Qt::Key_F8, Qt::ShiftModifier);
  EXPECT_EQ(Selected(), (LineNumbers{8}));
  EXPECT_EQ(list.GoToUnmatched(SearchDirection::Up), UnmatchedFound::WentRound);
  EXPECT_EQ(Selected(), (LineNumbers{9}));
}

TEST_F(CTNParserInFileListCtrlTest, TheOnlyUnmatchedLineIsFoundAgain) {
  Show("\njunk\nR1\n");
  Key(Qt::Key_F8);
  EXPECT_EQ(list.GoToUnmatched(SearchDirection::Down), UnmatchedFound::WentRound);
  EXPECT_EQ(list.GoToUnmatched(SearchDirection::Up), UnmatchedFound::WentRound);
  EXPECT_EQ(Selected(), (LineNumbers{2}));
}

TEST_F(CTNParserInFileListCtrlTest, WithoutAnUnmatchedLineTheSelectionStays) {
  Show("\nR1\nR2\n");
  Click(1);
  EXPECT_EQ(list.GoToUnmatched(SearchDirection::Down), UnmatchedFound::None);
  EXPECT_EQ(list.GoToUnmatched(SearchDirection::Up), UnmatchedFound::None);
  EXPECT_EQ(Selected(), (LineNumbers{2}));
}

TEST_F(CTNParserInFileListCtrlTest, HiddenUnmatchedLinesAreSkipped) {
  list.SetFilter(RowFilter(QStringLiteral("shown"), RowFilter::Kind::Text));
  Show("\njunk\njunk shown\nR shown\njunk\njunk shown\n");
  Key(Qt::Key_F8);
  EXPECT_EQ(Selected(), (LineNumbers{3}));
  Key(Qt::Key_F8);
  EXPECT_EQ(Selected(), (LineNumbers{6}));
  list.SetShowFlags(kShowEntities);
  list.Fill();
  EXPECT_EQ(list.GoToUnmatched(SearchDirection::Down), UnmatchedFound::None);
}

TEST_F(CTNParserInFileListCtrlTest, AFarUnmatchedLineComesIntoSightAndTheHorizontalPlaceStays) {
  std::string text = "\n";
  for (int i = 0; i < 5000; ++i)
    text += "R" + std::string(300, '1') + "\n";
  Show(text + "junk\n");
  ASSERT_TRUE(WaitForScan(Model()));
  list.horizontalScrollBar()->setValue(700);
  Key(Qt::Key_F8);
  EXPECT_EQ(Selected(), (LineNumbers{5002}));
  EXPECT_LT(list.rowViewportPosition(5001), list.viewport()->height());
  EXPECT_EQ(list.horizontalScrollBar()->value(), 700);
}

// Bad input.

TEST_F(CTNParserInFileListCtrlTest, RowsWhoseResultIsGoneFromTheFileStillWork) {
  Show(kText);
  Click(1);
  engine.NewTemplate();
  engine.ForgetResults();
  Choose(PointOf(1), Cmd::TestSelected);
  EXPECT_EQ(requests, (Strings{"test R1\t10k\n"}));
  Key(Qt::Key_F8);
  EXPECT_EQ(Selected(), (LineNumbers{8}));
  list.viewport()->repaint();
}

TEST_F(CTNParserInFileListCtrlTest, WithAnEmptyTemplateEveryLineIsUnmatched) {
  engine.NewTemplate();
  Show("a\nb\n");
  EXPECT_EQ(Rows(Model()), (Strings{"1|Unmatched|a", "2|Unmatched|b"}));
}

TEST_F(CTNParserInFileListCtrlTest, AnEmptyFileHasNoRow) {
  Show("");
  EXPECT_EQ(Model().rowCount(), 0);
  Key(Qt::Key_F8);
  Key(Qt::Key_Down);
  QTest::keySequence(&list, QKeySequence::Copy);
  EXPECT_EQ(list.GetGathered().size(), 0U);
}

TEST_F(CTNParserInFileListCtrlTest, ADoubleClickKeepsTheHorizontalPlace) {
  list.resize(300, 300);
  Show("R1 " + std::string(250, 'x') + "\nR2 " + std::string(250, 'y') + "\nR3 a\n");
  Click(1);
  list.horizontalScrollBar()->setValue(200);
  const int before = list.horizontalScrollBar()->value();
  ASSERT_GT(before, 0);
  const QPoint p(150, list.visualRect(Model().index(1, 2)).center().y());
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, p);
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, p);
  Settle();
  EXPECT_EQ(list.horizontalScrollBar()->value(), before);
}

TEST_F(CTNParserInFileListCtrlTest, ARightClickKeepsTheHorizontalPlace) {
  list.resize(300, 300);
  Show("R1 " + std::string(250, 'x') + "\nR2 " + std::string(250, 'y') + "\nR3 a\n");
  Click(1);
  list.horizontalScrollBar()->setValue(200);
  const QPoint p(150, list.visualRect(Model().index(2, 2)).center().y());
  QTest::mousePress(list.viewport(), Qt::RightButton, {}, p);
  EXPECT_EQ(list.horizontalScrollBar()->value(), 200);
}

TEST_F(CTNParserInFileListCtrlTest, ASelectionOfThousandsOfRangesIsKept) {
  Show(ManyLines(20000, 2));
  list.SetShowFlags(kShowUnmatched);
  list.Fill();
  list.selectAll();
  Settle();
  const auto n = list.GetSelectedRows().size();
  ASSERT_GT(n, 5000U);
  list.SetShowFlags(kShowAllKinds);
  list.Fill();
  Settle();
  EXPECT_EQ(list.GetSelectedRows().size(), n);
}

TEST_F(CTNParserInFileListCtrlTest, ADoubleClickWithControlRequestsNothing) {
  Show(kText);
  Click(1, Qt::ControlModifier);
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier, PointOf(1));
  Settle();
  EXPECT_TRUE(requests.empty());
}
}  // namespace
}  // namespace bomparser::test
