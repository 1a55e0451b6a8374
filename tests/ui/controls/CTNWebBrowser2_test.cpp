#include "ui/controls/CTNWebBrowser2.h"

#include "tests/support/TestFolder.h"
#include "tests/ui/controls/EntityLists.h"
#include "tests/ui/support/UiTest.h"

#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QTextBlock>
#include <QTextLayout>
#include <string>

namespace bomparser::test {
namespace {

class CTNWebBrowser2Test : public TestFolder {
 protected:
  CTNWebBrowser2Test() {
    viewer.resize(700, 400);
    viewer.show();
  }
  bool Show(const std::string& bytes) {
    WriteFile("list.xml", bytes);
    const bool shown = viewer.Navigate(PathOf("list.xml"));
    Settle();
    return shown;
  }
  /// A list that is too large for the text view.
  static std::string LargeList(int entities = 60'000) {
    std::string text;
    for (int i = 0; i < entities; ++i)
      text += Entity("value number " + std::to_string(i));
    return List(text);
  }
  QPlainTextEdit& Text() const { return *FindControl<QPlainTextEdit>(viewer, Ctrl::ViewerText); }
  QTableView& Rows() const { return *FindControl<QTableView>(viewer, Ctrl::ViewerRows); }
  QString RowText(int row) const { return Rows().model()->index(row, 0).data().toString(); }
  QLineEdit& What() const { return *FindControl<QLineEdit>(viewer, Ctrl::FindWhat); }
  QString Outcome() const { return FindControl<QLabel>(viewer, Ctrl::FindOutcome)->text(); }
  QWidget& Focused() { return *viewer.focusWidget(); }
  void Press(QWidget& widget, const QKeySequence& keys) {
    QTest::keySequence(&widget, keys);
    Settle();
  }

  CTNWebBrowser2 viewer;
};

TEST_F(CTNWebBrowser2Test, ASmallListIsATextWithALineForEveryValue) {
  ASSERT_TRUE(Show(List(Entity("10k"))));
  EXPECT_TRUE(Text().isVisible());
  EXPECT_FALSE(Rows().isVisible());
  EXPECT_EQ(Text().toPlainText(),
            QStringLiteral("<TN_FILEPARSER_ENTITIES>\n  <ENTITY>Part\n    <VALUE>10k</VALUE>\n"
                           "  </ENTITY>\n</TN_FILEPARSER_ENTITIES>"));
}

TEST_F(CTNWebBrowser2Test, MarkupIsColouredAndWhatLooksLikeItInAValueIsNot) {
  ASSERT_TRUE(Show(List(Entity("<SIZE>1</SIZE>"))));
  const QTextBlock line = Text().document()->findBlockByNumber(2);
  std::string coloured;
  for (const QTextLayout::FormatRange& range : line.layout()->formats())
    coloured += line.text().mid(range.start, range.length).toStdString();
  EXPECT_EQ(coloured, "<VALUE></VALUE>");
}

TEST_F(CTNWebBrowser2Test, TheTextCannotBeEdited) {
  ASSERT_TRUE(Show(List(Entity("10k"))));
  const QString before = Text().toPlainText();
  Text().setFocus();
  QTest::keyClicks(&Text(), QStringLiteral("abc"));
  EXPECT_EQ(Text().toPlainText(), before);
}

TEST_F(CTNWebBrowser2Test, ALargeListHasARowForEveryEntity) {
  ASSERT_TRUE(Show(LargeList()));
  EXPECT_FALSE(Text().isVisible());
  EXPECT_TRUE(Rows().isVisible());
  EXPECT_EQ(Rows().model()->rowCount(), 60'002);
  EXPECT_EQ(RowText(60'000).toStdString(), Entity("value number 59999"));
}

TEST_F(CTNWebBrowser2Test, TheWidestRowCanBeSeenToItsEnd) {
  std::string list = LargeList();
  list.insert(list.size() / 2, std::string(1500, 'W'));
  ASSERT_TRUE(Show(list));
  EXPECT_GE(Rows().columnWidth(0), Rows().fontMetrics().horizontalAdvance(u'W') * 1500);
}

TEST_F(CTNWebBrowser2Test, ShortRowsAreAsWideAsTheView) {
  ASSERT_TRUE(Show(LargeList()));
  EXPECT_EQ(Rows().columnWidth(0), Rows().viewport()->width());
  viewer.resize(900, 400);
  Settle();
  EXPECT_EQ(Rows().columnWidth(0), Rows().viewport()->width());
}

TEST_F(CTNWebBrowser2Test, AListWithVeryLongLinesIsShownInRows) {
  ASSERT_TRUE(Show(List(Entity(std::string(100'000, 'x')))));
  EXPECT_TRUE(Rows().isVisible());
  EXPECT_GT(Rows().model()->rowCount(), 50);
}

TEST_F(CTNWebBrowser2Test, WhatIsNoListIsShownAsItIs) {
  ASSERT_TRUE(Show("plain <text>\nof two lines"));
  EXPECT_EQ(Text().toPlainText(), QStringLiteral("plain <text>\nof two lines"));
}

TEST_F(CTNWebBrowser2Test, AnEmptyFileShowsNothing) {
  ASSERT_TRUE(Show(List(Entity("10k"))));
  ASSERT_TRUE(Show(""));
  EXPECT_EQ(Text().toPlainText(), QString());
}

TEST_F(CTNWebBrowser2Test, AFileThatCannotBeReadShowsWhy) {
  ASSERT_TRUE(Show(List(Entity("10k"))));
  EXPECT_FALSE(viewer.Navigate(PathOf("none.xml")));
  EXPECT_EQ(Text().toPlainText(), QString());
  EXPECT_EQ(Text().placeholderText().toStdString(),
            "cannot read " + PathOf("none.xml") + ": No such file or directory");
  EXPECT_FALSE(viewer.Navigate(Folder()));
}

TEST_F(CTNWebBrowser2Test, ClearedItIsEmptyAndGivesNoReason) {
  EXPECT_FALSE(viewer.Navigate(PathOf("none.xml")));
  viewer.Clear();
  EXPECT_EQ(Text().placeholderText(), QString());
  ASSERT_TRUE(Show(LargeList()));
  viewer.Clear();
  EXPECT_TRUE(Text().isVisible());
  EXPECT_EQ(Text().toPlainText(), QString());
  EXPECT_EQ(Rows().model()->rowCount(), 0);
}

TEST_F(CTNWebBrowser2Test, ALargeListGivesWayToASmallOne) {
  ASSERT_TRUE(Show(LargeList()));
  ASSERT_TRUE(Show(List("")));
  EXPECT_TRUE(Text().isVisible());
  EXPECT_EQ(Rows().model()->rowCount(), 0);
}

TEST_F(CTNWebBrowser2Test, ShownAgainAFileStaysWhereItWasScrolledTo) {
  std::string entities;
  for (int i = 0; i < 200; ++i)
    entities += Entity(std::to_string(i));
  ASSERT_TRUE(Show(List(entities)));
  Text().verticalScrollBar()->setValue(300);
  ASSERT_TRUE(Show(List(entities)));
  EXPECT_EQ(Text().verticalScrollBar()->value(), 300);

  ASSERT_TRUE(Show(LargeList()));
  Rows().scrollTo(Rows().model()->index(30'000, 0), QAbstractItemView::PositionAtTop);
  ASSERT_TRUE(Show(LargeList()));
  EXPECT_EQ(Rows().rowAt(0), 30'000);
}

TEST_F(CTNWebBrowser2Test, AnotherFileIsShownFromItsBeginning) {
  std::string entities;
  for (int i = 0; i < 200; ++i)
    entities += Entity(std::to_string(i));
  ASSERT_TRUE(Show(List(entities)));
  Text().verticalScrollBar()->setValue(300);
  WriteFile("other.xml", List(entities));
  ASSERT_TRUE(viewer.Navigate(PathOf("other.xml")));
  EXPECT_EQ(Text().verticalScrollBar()->value(), 0);
}

TEST_F(CTNWebBrowser2Test, TextIsFoundWithTheKeyboardRoundAndRound) {
  ASSERT_TRUE(Show(List(Entity("one") + Entity("two") + Entity("ONE"))));
  Text().setFocus();
  Press(Text(), QKeySequence::Find);
  EXPECT_TRUE(What().isVisible());
  EXPECT_EQ(&Focused(), &What());
  QTest::keyClicks(&What(), QStringLiteral("one"));
  QTest::keyClick(&What(), Qt::Key_Return);
  const int first = Text().textCursor().blockNumber();
  EXPECT_EQ(Text().textCursor().selectedText(), QStringLiteral("one"));
  Press(What(), QKeySequence(Qt::Key_F3));
  EXPECT_EQ(Text().textCursor().selectedText(), QStringLiteral("ONE"));
  Press(What(), QKeySequence(Qt::Key_F3));
  EXPECT_EQ(Text().textCursor().blockNumber(), first);
  QTest::keyClick(&What(), Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(Text().textCursor().selectedText(), QStringLiteral("ONE"));
}

TEST_F(CTNWebBrowser2Test, BothViewsOfferFindingInTheirMenus) {
  const auto commands = [](const QMenu& menu) {
    std::string texts;
    for (const QAction* action : menu.actions())
      texts += action->isSeparator() ? "" : action->text().remove(u'&').toStdString() + "|";
    return texts;
  };
  ASSERT_TRUE(Show(List(Entity("one") + Entity("two"))));
  RightClick(*Text().viewport(), {20, 10});
  QMenu* menu = OpenMenu();
  ASSERT_NE(menu, nullptr);
  EXPECT_NE(commands(*menu).find("Find ...|Find Next|Find Previous|"), std::string::npos)
      << commands(*menu);
  EXPECT_NE(commands(*menu).find("Copy"), std::string::npos) << commands(*menu);
  for (QAction* action : menu->actions()) {
    if (action->text().remove(u'&') == QStringLiteral("Find ...")) action->trigger();
  }
  menu->close();
  Settle();
  EXPECT_TRUE(What().hasFocus());
  ASSERT_TRUE(Show(LargeList()));
  std::string offered;
  for (const QAction* action : Rows().actions())
    offered += action->text().remove(u'&').toStdString() + "|";
  EXPECT_EQ(offered, "Copy|Find ...|Find Next|Find Previous|");
  EXPECT_EQ(Rows().contextMenuPolicy(), Qt::ActionsContextMenu);
}

TEST_F(CTNWebBrowser2Test, EscapeClosesTheFindLineAndGivesTheFocusBack) {
  ASSERT_TRUE(Show(List(Entity("one"))));
  Text().setFocus();
  Press(Text(), QKeySequence::Find);
  QTest::keyClick(&What(), Qt::Key_Escape);
  EXPECT_FALSE(What().isVisible());
  EXPECT_EQ(&Focused(), &Text());
  EXPECT_TRUE(viewer.isVisible());
}

TEST_F(CTNWebBrowser2Test, FindingNothingSaysSoAndChangesNothing) {
  ASSERT_TRUE(Show(List(Entity("one"))));
  Press(Text(), QKeySequence::Find);
  QTest::keyClicks(&What(), QStringLiteral("three"));
  const int position = Text().textCursor().position();
  QTest::mouseClick(FindControl<QPushButton>(viewer, Ctrl::FindNext), Qt::LeftButton);
  EXPECT_EQ(Outcome(), QStringLiteral("Not found"));
  EXPECT_EQ(Text().textCursor().position(), position);
  QTest::keyClicks(&What(), QStringLiteral("x"));
  EXPECT_EQ(Outcome(), QString());
}

TEST_F(CTNWebBrowser2Test, EnterOnAButtonOfTheFindLinePressesIt) {
  ASSERT_TRUE(Show(List(Entity("one") + Entity("one"))));
  Press(Text(), QKeySequence::Find);
  QTest::keyClicks(&What(), QStringLiteral("one"));
  auto* const previous = FindControl<QPushButton>(viewer, Ctrl::FindPrevious);
  previous->setFocus();
  QTest::keyClick(previous, Qt::Key_Return);
  EXPECT_EQ(Text().textCursor().blockNumber(), 5);
  auto* const close = FindControl<QPushButton>(viewer, Ctrl::FindClose);
  close->setFocus();
  QTest::keyClick(close, Qt::Key_Return);
  EXPECT_FALSE(close->isVisible());
}

TEST_F(CTNWebBrowser2Test, FindingAgainWithoutATextAsksForOne) {
  ASSERT_TRUE(Show(List(Entity("one"))));
  Press(Text(), QKeySequence(Qt::Key_F3));
  EXPECT_TRUE(What().isVisible());
}

TEST_F(CTNWebBrowser2Test, RowsAreFoundWithTheKeyboard) {
  ASSERT_TRUE(Show(LargeList()));
  Rows().setFocus();
  Press(Rows(), QKeySequence::Find);
  QTest::keyClicks(&What(), QStringLiteral("NUMBER 4321<"));
  QTest::keyClick(&What(), Qt::Key_Return);
  EXPECT_EQ(Rows().currentIndex().row(), 4322);
  EXPECT_TRUE(Rows().selectionModel()->isRowSelected(4322));
  EXPECT_EQ(Outcome(), QString());
}

TEST_F(CTNWebBrowser2Test, ARowThatIsFoundIsSelectedAlone) {
  ASSERT_TRUE(Show(LargeList()));
  Press(Rows(), QKeySequence::Find);
  QTest::keyClicks(&What(), QStringLiteral("7777<"));
  Press(What(), QKeySequence(Qt::Key_F3));
  EXPECT_EQ(Rows().currentIndex().row(), 7778);
  Press(What(), QKeySequence(Qt::SHIFT | Qt::Key_F3));
  EXPECT_EQ(Rows().currentIndex().row(), 57'778);
  EXPECT_EQ(Rows().selectionModel()->selectedRows().size(), 1);
}

TEST_F(CTNWebBrowser2Test, SelectedRowsAreCopiedInTheirOrder) {
  ASSERT_TRUE(Show(LargeList()));
  QItemSelectionModel& selection = *Rows().selectionModel();
  selection.select(Rows().model()->index(3, 0), QItemSelectionModel::ClearAndSelect);
  selection.select(Rows().model()->index(1, 0), QItemSelectionModel::Select);
  Rows().setFocus();
  Press(Rows(), QKeySequence::Copy);
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
            Entity("value number 0") + "\n" + Entity("value number 2"));
}

TEST_F(CTNWebBrowser2Test, SelectedTextIsCopied) {
  ASSERT_TRUE(Show(List(Entity("one"))));
  Text().setFocus();
  Press(Text(), QKeySequence::SelectAll);
  Press(Text(), QKeySequence::Copy);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), Text().toPlainText());
}

TEST_F(CTNWebBrowser2Test, TheTabKeyLeavesTheViews) {
  ASSERT_TRUE(Show(List(Entity("one"))));
  EXPECT_TRUE(Text().tabChangesFocus());
  EXPECT_FALSE(Rows().tabKeyNavigation());
}

TEST_F(CTNWebBrowser2Test, PictureOfASmallList) {
  ASSERT_TRUE(Show(List(
      "<ENTITY>Part<REF_DESIGNATOR>R1</REF_DESIGNATOR><REF_DESIGNATOR>R2</REF_DESIGNATOR>"
      "<PART_NUMBER>RES-10K-0603</PART_NUMBER><VALUE>10k</VALUE></ENTITY><ENTITY>Part"
      "<REF_DESIGNATOR>C1</REF_DESIGNATOR><PART_NUMBER><&>\xB5\x46\r</PART_NUMBER></ENTITY>")));
  Press(Text(), QKeySequence::Find);
  QTest::keyClicks(&What(), QStringLiteral("missing"));
  QTest::keyClick(&What(), Qt::Key_Return);
  EXPECT_TRUE(Screenshot(viewer, "viewer-small"));
}

TEST_F(CTNWebBrowser2Test, PictureOfALargeList) {
  ASSERT_TRUE(Show(LargeList()));
  EXPECT_TRUE(Screenshot(viewer, "viewer-large"));
}

TEST_F(CTNWebBrowser2Test, PictureOfAFileThatCannotBeRead) {
  EXPECT_FALSE(viewer.Navigate("/nowhere/list.xml"));
  EXPECT_TRUE(Screenshot(viewer, "viewer-failure"));
}

}  // namespace
}  // namespace bomparser::test
