#include "ui/dialogs/CTNDlgErrorLog.h"

#include "input/CTNParserErrorLog.h"
#include "tests/ui/support/UiTest.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTextDocument>
#include <memory>
#include <string>
#include <vector>

namespace bomparser::test {
namespace {

class CTNDlgErrorLogTest : public testing::Test {
 protected:
  void Open(const CTNParserErrorLog* shown) {
    dialog = std::make_unique<CTNDlgErrorLog>(shown, "BOM Parser");
    dialog->show();
    Settle();
  }
  QTableView& List() { return *FindControl<QTableView>(*dialog, Ctrl::ErrorLines); }
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    const QAbstractItemModel& model = *List().model();
    for (int row = 0; row < model.rowCount(); ++row)
      rows.push_back(model.index(row, 0).data().toString().toStdString());
    return rows;
  }

  CTNTemplateErrorLog log;
  std::unique_ptr<CTNDlgErrorLog> dialog;
};

TEST_F(CTNDlgErrorLogTest, CarriesTheTitleItsNumberAndOneCloseButton) {
  Open(&log);
  EXPECT_EQ(dialog->windowTitle(), "BOM Parser");
  EXPECT_EQ(GetDialogId(*dialog), DialogId::ErrorLog);
  const auto buttons = dialog->findChildren<QPushButton*>();
  ASSERT_EQ(buttons.size(), 1);
  EXPECT_EQ(buttons.front()->text().remove(u'&'), "Close");
}

TEST_F(CTNDlgErrorLogTest, AnEmptyLogIsAnEmptyListWithOneEmptyHeadedColumn) {
  Open(&log);
  EXPECT_EQ(List().model()->rowCount(), 0);
  EXPECT_EQ(List().model()->columnCount(), 1);
  EXPECT_EQ(List().model()->headerData(0, Qt::Horizontal).toString(), "");
  EXPECT_TRUE(List().horizontalHeader()->isVisible());
}

TEST_F(CTNDlgErrorLogTest, NoLogIsAnEmptyList) {
  Open(nullptr);
  EXPECT_EQ(List().model()->rowCount(), 0);
}

TEST_F(CTNDlgErrorLogTest, AnErrorOfTwoLinesIsTwoRows) {
  CTNParserError error;
  error.AddLine("Error detected at line 3 while loading parts.xml");
  error.AddLine("Line Text: <RECORD");
  log.AddError(error);
  log.AddMessage("Error: Invalid field type");
  Open(&log);
  EXPECT_EQ(Rows(), std::vector<std::string>({"Error detected at line 3 while loading parts.xml",
                                              "Line Text: <RECORD", "Error: Invalid field type"}));
}

TEST_F(CTNDlgErrorLogTest, AMessageWithALineFeedIsOneRowAsHighAsAnyOther) {
  log.AddMessage("Error: A record must end\n unless it is a sub-record.");
  log.AddMessage("Error: Invalid field type");
  Open(&log);
  EXPECT_EQ(Rows().front(), "Error: A record must end\n unless it is a sub-record.");
  EXPECT_EQ(List().rowHeight(0), List().rowHeight(1));
  const auto* delegate = qobject_cast<QStyledItemDelegate*>(List().itemDelegate());
  const QModelIndex first = List().model()->index(0, 0);
  EXPECT_EQ(delegate->displayText(first.data(), QLocale()),
            "Error: A record must end  unless it is a sub-record.");
  EXPECT_EQ(first.data(Qt::ToolTipRole), first.data());
}

TEST_F(CTNDlgErrorLogTest, ATipIsNoMarkupIsWrappedAndEndsSomewhere) {
  log.AddMessage("Error: <b>bold</b> & such");
  log.AddMessage(std::string(50, 'x') + "  " + std::string(50, 'x'));
  log.AddMessage(std::string(100'000, 'y'));
  log.AddMessage("one line feed\n" + std::string(100, 'z'));
  Open(&log);
  const auto tip = [this](int row) {
    return List().model()->index(row, 0).data(Qt::ToolTipRole).toString();
  };
  const auto shown = [](const QString& markup) {
    QTextDocument document;
    document.setHtml(markup);
    return document.toPlainText().toStdString();
  };
  EXPECT_EQ(shown(tip(0)), "Error: <b>bold</b> & such");
  EXPECT_TRUE(Qt::mightBeRichText(tip(1))) << "only markup is wrapped";
  EXPECT_EQ(shown(tip(1)), std::string(50, 'x') + "  " + std::string(50, 'x'));
  EXPECT_EQ(shown(tip(2)), std::string(1000, 'y') + "\u2026");
  EXPECT_FALSE(Qt::mightBeRichText(tip(3))) << "its lines are short enough";
}

TEST_F(CTNDlgErrorLogTest, TheColumnFitsTheWidestLineWhereverItIs) {
  for (int line = 0; line < 2000; ++line)
    log.AddMessage("short");
  const std::string wide(200, 'W');
  log.AddMessage(wide);
  Open(&log);
  EXPECT_GE(List().columnWidth(0),
            List().fontMetrics().horizontalAdvance(QString::fromStdString(wide)));
}

TEST_F(CTNDlgErrorLogTest, OfLinesOfNearlyTheSameLengthTheWidestCounts) {
  log.AddMessage(std::string(41, 'i'));
  log.AddMessage(std::string(40, 'W'));
  Open(&log);
  EXPECT_GE(List().columnWidth(0), List().fontMetrics().horizontalAdvance(QString(40, u'W')));
}

TEST_F(CTNDlgErrorLogTest, ManyLongerLinesThatAreNarrowerDoNotHideTheWidest) {
  for (int line = 0; line < 200; ++line)
    log.AddMessage(std::string(41, 'i'));
  log.AddMessage(std::string(40, 'W'));
  Open(&log);
  EXPECT_GE(List().columnWidth(0), List().fontMetrics().horizontalAdvance(QString(40, u'W')));
}

TEST_F(CTNDlgErrorLogTest, TakesAHundredThousandLines) {
  constexpr int kLines = 100000;
  for (int line = 0; line < kLines; ++line)
    log.AddMessage("Error: Input field F" + std::to_string(line) + " is in an invalid state");
  Open(&log);
  EXPECT_EQ(List().model()->rowCount(), kLines);
  QTest::keyClick(&List(), Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(List().currentIndex().row(), kLines - 1);
}

TEST_F(CTNDlgErrorLogTest, TakesALineOfAHundredThousandCharacters) {
  log.AddMessage(std::string(100000, 'x'));
  Open(&log);
  EXPECT_EQ(Rows().front().size(), 100000U);
}

TEST_F(CTNDlgErrorLogTest, BytesThatAreNoUtf8AreShown) {
  log.AddMessage(
      "Line Text: m\xFC"
      "ll");
  Open(&log);
  EXPECT_EQ(Rows().front(), "Line Text: müll");
}

TEST_F(CTNDlgErrorLogTest, WhatTheLogLosesLaterIsStillShown) {
  log.AddMessage("Error: Invalid field type");
  Open(&log);
  log.ClearLog();
  EXPECT_EQ(Rows(), std::vector<std::string>({"Error: Invalid field type"}));
}

TEST_F(CTNDlgErrorLogTest, IsARealModel) {
  log.AddMessage("Error: Invalid field type");
  Open(&log);
  const QAbstractItemModelTester tester(List().model(),
                                        QAbstractItemModelTester::FailureReportingMode::Fatal);
  EXPECT_FALSE(List().model()->flags(List().model()->index(0, 0)).testFlag(Qt::ItemIsEditable));
}

TEST_F(CTNDlgErrorLogTest, TheSelectedLineIsCopied) {
  log.AddMessage("Error: Invalid field type");
  Open(&log);
  QTest::keyClick(&List(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "Error: Invalid field type");
}

TEST_F(CTNDlgErrorLogTest, AllSelectedLinesAreCopiedInTheirOrder) {
  for (const char* text : {"first", "second", "third", "fourth"})
    log.AddMessage(text);
  Open(&log);
  QTest::keyClick(&List(), Qt::Key_A, Qt::ControlModifier);
  List().selectionModel()->select(List().model()->index(1, 0), QItemSelectionModel::Deselect);
  QTest::keyClick(&List(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "first\nthird\nfourth");
  ASSERT_EQ(List().actions().size(), 1);
  EXPECT_EQ(List().actions().front()->text(), "Copy");
}

TEST_F(CTNDlgErrorLogTest, ShortLinesAreAsWideAsTheList) {
  log.AddMessage("short");
  Open(&log);
  EXPECT_EQ(List().columnWidth(0), List().viewport()->width());
}

TEST_F(CTNDlgErrorLogTest, ButtonEnterAndEscapeCloseIt) {
  log.AddMessage("Error: Invalid field type");
  Open(&log);
  QTest::mouseClick(dialog->findChild<QPushButton*>(), Qt::LeftButton);
  EXPECT_FALSE(dialog->isVisible());
  for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
    Open(&log);
    EXPECT_TRUE(List().currentIndex().isValid());
    QTest::keyClick(&List(), key);
    EXPECT_FALSE(dialog->isVisible()) << key;
  }
}

TEST_F(CTNDlgErrorLogTest, PictureOfALogOfSomeLines) {
  log.AddMessage("Error detected at line 3 while loading /home/me/templates/parts.xml");
  log.AddMessage("Line Text: <RECORD");
  log.AddMessage(
      "Error: A record must end with a required newline input field\n unless designated as a "
      "sub-record.");
  Open(&log);
  EXPECT_TRUE(Screenshot(*dialog, "error-log"));
}

TEST_F(CTNDlgErrorLogTest, PictureOfAnEmptyLog) {
  Open(&log);
  EXPECT_TRUE(Screenshot(*dialog, "error-log-empty"));
}

}  // namespace
}  // namespace bomparser::test
