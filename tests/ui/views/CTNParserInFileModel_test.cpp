#include "ui/views/CTNParserInFileModel.h"

#include "tests/ui/views/InputViewTest.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QSignalSpy>

namespace bomparser::test {
namespace {

using Strings = std::vector<std::string>;

class CTNParserInFileModelTest : public InputViewTest {
 protected:
  void Show(const std::string& text) {
    ApplyTo(text);
    Fill();
  }
  void Fill() { model.Fill(InFile().GetBlocks(), options); }
  std::string State(int row, int role = Qt::AccessibleDescriptionRole) {
    return model.index(row, 0).data(role).toString().toStdString();
  }

  CTNParserInFileModel model;
  CTNParserInFileModel::Options options;
  QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(CTNParserInFileModelTest, WithoutAResultThereAreThreeColumnsAndNoRow) {
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_EQ(model.columnCount(), 3);
  EXPECT_EQ(model.GetLineCount(), 0U);
}

TEST_F(CTNParserInFileModelTest, TheTitlesAreUpperCase) {
  const auto title = [this](int column) {
    return model.headerData(column, Qt::Horizontal).toString().toStdString();
  };
  EXPECT_EQ(title(0), "LINE NO.");
  EXPECT_EQ(title(1), "MATCHING REC");
  EXPECT_EQ(title(2), "FILE TEXT");
}

TEST_F(CTNParserInFileModelTest, EveryRowOfEveryBlockIsARow) {
  Show(kText);
  EXPECT_EQ(Rows(model), (Strings{"1|Ignored|made by a tool", "2|resistor (E1)|R1      10k",
                                  "3|resistor (E1)|R2 22k", "4|title (A1)|Title of board",
                                  "5|module (E2)|Module", "6|   ^| two", "7|   ^| x",
                                  "8|Unmatched|junk", "9||", "10|resistor (E1)|R3 47k"}));
}

TEST_F(CTNParserInFileModelTest, ABlockOfThreeRowsShowsItsRecordInTheFirstAndACaretInTheOthers) {
  Show(kText);
  EXPECT_EQ(model.index(4, 1).data().toString(), QStringLiteral("module (E2)"));
  EXPECT_EQ(model.index(5, 1).data().toString(), QStringLiteral("   ^"));
  EXPECT_EQ(model.index(6, 1).data().toString(), QStringLiteral("   ^"));
}

TEST_F(CTNParserInFileModelTest, WithoutIgnoredLinesTheLineNumbersStillCountThem) {
  options.kinds = kShowAllKinds & ~static_cast<std::uint32_t>(kShowIgnored);
  Show(kText);
  EXPECT_EQ(Numbers(model), (LineNumbers{2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST_F(CTNParserInFileModelTest, EveryKindIsShownByItsOwnFlag) {
  Show(kText);
  const auto shown = [this](std::uint32_t kinds) {
    options.kinds = kinds;
    Fill();
    return Numbers(model);
  };
  EXPECT_EQ(shown(1), (LineNumbers{2, 3, 5, 6, 7, 10}));
  EXPECT_EQ(shown(2), (LineNumbers{4}));
  EXPECT_EQ(shown(4), (LineNumbers{8, 9}));
  EXPECT_EQ(shown(8), (LineNumbers{1}));
  EXPECT_EQ(shown(0), LineNumbers());
  EXPECT_EQ(shown(6), (LineNumbers{4, 8, 9}));
  EXPECT_EQ(shown(15).size(), 10U);
}

TEST_F(CTNParserInFileModelTest, OfAVeryLongFileTheRestOfTheRowsComesABitLater) {
  constexpr int kRows = 100'000;
  Show(std::string(3 * kRows, '\n'));
  EXPECT_EQ(model.rowCount(), kRows);
  EXPECT_EQ(model.FindRow(2 * kRows), kRows);
  EXPECT_TRUE(model.HasLateRows());
  ASSERT_TRUE(WaitForScan(model));
  EXPECT_EQ(model.rowCount(), 3 * kRows);
  EXPECT_EQ(model.FindRow(2 * kRows), 2 * kRows);
  Fill();
  EXPECT_EQ(model.rowCount(), 3 * kRows);
}

TEST_F(CTNParserInFileModelTest, RowsThatWereToComeDoNotWhenTheModelWasClearedOrFilledAgain) {
  const auto wait = [] { QTest::qWait(100); };  // Longer than they would take.
  Show(std::string(200'000, '\n'));
  model.Clear();
  wait();
  EXPECT_EQ(model.rowCount(), 0);
  Fill();
  options.kinds = kShowIgnored;
  Fill();
  wait();
  EXPECT_EQ(model.rowCount(), 1);
}

// Text columns.

TEST_F(CTNParserInFileModelTest, ARowOf300CharactersFillsTwoColumnsAndNoMore) {
  Show("ignored\n" + std::string(255, 'a') + std::string(45, 'b') + "\n");
  EXPECT_EQ(model.columnCount(), 4);
  EXPECT_EQ(model.index(1, 2).data().toString(), QString(255, u'a'));
  EXPECT_EQ(model.index(1, 3).data().toString(), QString(45, u'b'));
  EXPECT_EQ(model.index(0, 3).data().toString(), QString());
  EXPECT_EQ(model.headerData(3, Qt::Horizontal).toString(), QString());
}

TEST_F(CTNParserInFileModelTest, AColumnExistsFromTheFirstCharacterThatNeedsIt) {
  const auto columns = [this](std::size_t length) {
    Show("\n" + std::string(length, 'x') + "\n");
    return model.columnCount();
  };
  EXPECT_EQ(columns(255), 3);
  EXPECT_EQ(columns(256), 4);
  EXPECT_EQ(columns(510), 4);
  EXPECT_EQ(columns(511), 5);
  EXPECT_EQ(columns(766), 6);
  EXPECT_EQ(columns(1), 3);
}

TEST_F(CTNParserInFileModelTest, TextBeyond1020CharactersIsNotShown) {
  Show("\n" + std::string(1020, 'x') + "yyy\n");
  EXPECT_EQ(model.columnCount(), 6);
  QString shown;
  for (int column = 2; column < 6; ++column)
    shown += model.index(1, column).data().toString();
  EXPECT_EQ(shown, QString(1020, u'x'));
}

TEST_F(CTNParserInFileModelTest, AColumnThatOnlyHiddenRowsNeedDoesNotExist) {
  Show("\nR1\n" + std::string(300, 'x') + "\n");
  ASSERT_EQ(model.columnCount(), 4);
  options.kinds = kShowEntities;
  Fill();
  EXPECT_EQ(model.columnCount(), 3);
  options.kinds = kShowUnmatched;
  Fill();
  EXPECT_EQ(model.columnCount(), 4);
}

TEST_F(CTNParserInFileModelTest, SlicesAreOfTheTextWithTabsExpanded) {
  Show("\n" + std::string(250, 'a') + "\tb\n");
  EXPECT_EQ(model.index(1, 2).data().toString(), QString(250, u'a') + QString(5, u' '));
  EXPECT_EQ(model.index(1, 3).data().toString(), QStringLiteral(" b"));
}

TEST_F(CTNParserInFileModelTest, CharactersOfMoreThanOneByteCountOnce) {
  std::string text = "\n";
  for (int i = 0; i < 256; ++i)
    text += "\xC3\xA4";  // a with two dots.
  Show(text + "\n");
  EXPECT_EQ(model.index(1, 2).data().toString(), QString(255, QChar(0xE4)));
  EXPECT_EQ(model.index(1, 3).data().toString(), QString(QChar(0xE4)));
}

TEST_F(CTNParserInFileModelTest, APairOfSurrogatesIsNotDivided) {
  const std::string smile = "\xF0\x9F\x98\x80";
  Show("\n" + std::string(254, 'a') + smile + "b\n");
  EXPECT_EQ(model.index(1, 2).data().toString(), QString(254, u'a'));
  EXPECT_EQ(model.index(1, 3).data().toString(), QString::fromStdString(smile + "b"));
}

TEST_F(CTNParserInFileModelTest, BytesThatAreNoUtf8AreShownAndStayWhatTheyAre) {
  Show("\nR1 10\xB5\xB1\n");
  EXPECT_EQ(model.index(1, 2).data().toString(), QStringLiteral(u"R1 10\u00B5\u00B1"));
  std::string bytes;
  model.GetBlock(1).GetRowText(bytes, 0, Markup::Off, Newlines::Hidden);
  EXPECT_EQ(bytes, "R1 10\xB5\xB1");
}

TEST_F(CTNParserInFileModelTest, ALineOf100000CharactersShowsItsFirst1020) {
  std::string text;
  for (int i = 0; i < 50'000; ++i)
    text += "\xC3\xA4";
  Show("\n" + text + "\nR1\n");
  EXPECT_EQ(model.rowCount(), 3);
  EXPECT_EQ(model.columnCount(), 6);
  for (int column = 2; column < 6; ++column)
    EXPECT_EQ(model.index(1, column).data().toString(), QString(255, QChar(0xE4)));
  EXPECT_EQ(model.index(2, 2).data().toString(), QStringLiteral("R1"));
}

TEST_F(CTNParserInFileModelTest, MarkupAndNewlinesAreShownWhenAsked) {
  options.newlines = Newlines::Shown;
  Show("\nR1\njunk\n");
  EXPECT_EQ(model.index(1, 2).data().toString(), QStringLiteral("R1<NEWLINE>"));
  options.markup = Markup::On;
  Fill();
  EXPECT_EQ(model.index(1, 2).data().toString(),
            QStringLiteral("<E1.F1,STRING>R</E1.F1><E1.F2,SCAN_TO_NEXT>1</E1.F2><E1.F3,NEWLINE>"));
  EXPECT_EQ(model.index(2, 2).data().toString(), QStringLiteral("junk<NEWLINE>"));
}

TEST_F(CTNParserInFileModelTest, AnotherTabStopCountsFromTheNextFillOn) {
  Show("\nR\tx\n");
  EXPECT_EQ(model.index(1, 2).data().toString(), QStringLiteral("R       x"));
  engine.SetTabStop(4);
  Fill();
  EXPECT_EQ(model.index(1, 2).data().toString(), QStringLiteral("R   x"));
  engine.SetTabStop(0);
  Fill();
  EXPECT_EQ(model.index(1, 2).data().toString(), QStringLiteral("R\tx"));
}

// States.

TEST_F(CTNParserInFileModelTest, TextColumnsHaveTheColoursOfTheirKind) {
  Show(kText);
  const auto colours = [this](int row, int column = 2) {
    return ColourOf(model, row, column, Qt::BackgroundRole) + " " +
           ColourOf(model, row, column, Qt::ForegroundRole);
  };
  EXPECT_EQ(colours(0), "#ffffff #c0c0c0");
  EXPECT_EQ(colours(1), "#c8ffc8 #000000");
  EXPECT_EQ(colours(3), "#b0ffff #000000");
  EXPECT_EQ(colours(5), "#c8ffc8 #000000");
  EXPECT_EQ(colours(7), "#ffcae4 #000000");
  EXPECT_EQ(colours(1, 0), "none none");
  EXPECT_EQ(colours(1, 1), "none none");
  options.colourRows = false;
  Fill();
  EXPECT_EQ(colours(1), "none none");
}

TEST_F(CTNParserInFileModelTest, EveryTextColumnIsColoured) {
  Show("\nR" + std::string(1000, 'x') + "\n");
  for (int column = 2; column < 6; ++column)
    EXPECT_EQ(ColourOf(model, 1, column, Qt::BackgroundRole), "#c8ffc8");
}

TEST_F(CTNParserInFileModelTest, TheStateIsToldInWordsToo) {
  Show(kText);
  EXPECT_EQ(State(0), "Ignored");
  EXPECT_EQ(State(1), "Entity");
  EXPECT_EQ(State(3), "Auxiliary");
  EXPECT_EQ(State(8), "Unmatched");
  EXPECT_EQ(State(3, Qt::ToolTipRole), "Line 4: Auxiliary");
}

TEST_F(CTNParserInFileModelTest, StaleRowsStayWithUnknownRecordsAndNeutralColours) {
  Show(kText);
  InFile().SetStale(true);
  EXPECT_EQ(Rows(model)[1], "2|\?\?|R1      10k");
  EXPECT_EQ(Rows(model)[4], "5|\?\?|Module");
  EXPECT_EQ(Rows(model)[5], "6|   ^| two");
  EXPECT_EQ(ColourOf(model, 1, 2, Qt::BackgroundRole), "#ffffff");
  EXPECT_EQ(ColourOf(model, 1, 2, Qt::ForegroundRole), "#000000");
  EXPECT_EQ(ColourOf(model, 0, 2, Qt::ForegroundRole), "#000000");
  EXPECT_EQ(State(3), "Auxiliary (before the latest changes of the template)");
  options.kinds = kShowUnmatched;
  Fill();
  EXPECT_EQ(Rows(model), (Strings{"8|\?\?|junk", "9|\?\?|"}));
}

TEST_F(CTNParserInFileModelTest, RowsOutliveTheTemplateAndTheResultOfTheInputFile) {
  Show(kText);
  engine.NewTemplate();
  engine.ForgetResults();
  EXPECT_EQ(model.rowCount(), 10);
  EXPECT_EQ(Rows(model)[3], "4|\?\?|Title of board");
}

TEST_F(CTNParserInFileModelTest, ClearedItIsAsAtFirst) {
  Show("\n" + std::string(300, 'x') + "\n");
  model.Clear();
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_EQ(model.columnCount(), 3);
  EXPECT_EQ(model.GetWidest()[0].width, 0);
}

// Widths.

TEST_F(CTNParserInFileModelTest, TheWidestShownRowOfEveryColumnIsKnown) {
  Show("\nR1\n" + std::string(300, 'x') + "\nR1234\n");
  EXPECT_EQ(model.GetWidest()[0].width, 255);
  EXPECT_EQ(model.GetWidest()[0].line, 2U);
  EXPECT_EQ(model.GetWidest()[1].width, 45);
  options.kinds = kShowEntities;
  Fill();
  EXPECT_EQ(model.GetWidest()[0].width, 5);
  EXPECT_EQ(model.GetWidest()[0].line, 3U);
  EXPECT_EQ(model.GetWidest()[1].width, 0);
}

TEST_F(CTNParserInFileModelTest, LettersOfDoubleWidthCountTwice) {
  Show("\n\xE9\x9B\xBB\xE9\x98\xBB\xE5\x99\xA8\nabcde\n");
  EXPECT_EQ(model.GetWidest()[0].width, 6);
  EXPECT_EQ(model.GetWidest()[0].line, 1U);
}

TEST_F(CTNParserInFileModelTest, OfALargeFileTheWidestRowIsFoundBehindTheFirstOnes) {
  std::string text = ManyLines(20'000, 1000);
  text += "R" + std::string(600, 'w') + "\n";
  text += "R short\n";
  QSignalSpy ended(&model, &CTNParserInFileModel::ScanEnded);
  Show(text);
  ASSERT_TRUE(WaitForScan(model));
  EXPECT_EQ(ended.count(), 1);
  EXPECT_EQ(model.columnCount(), 5);
  EXPECT_EQ(model.GetWidest()[2].width, 601 - 510);
  EXPECT_EQ(model.GetWidest()[2].line, 20'000U);
}

TEST_F(CTNParserInFileModelTest, TheSameWidestRowsAreFoundWithAndWithoutShortcuts) {
  // Rows whose texts are much shorter than their bytes, and much longer.
  std::string text = "\n";
  for (int i = 1; i < 9000; ++i) {
    text += "R" + std::string(static_cast<std::size_t>(i % 37), '\t') + std::to_string(i);
    if (i % 11 == 0) text += "\xC2\xB5\xE9\x9B\xBB";
    text += "\n";
  }
  Show(text);
  ASSERT_TRUE(WaitForScan(model));
  const WidestTexts quick = model.GetWidest();
  options.filter = RowFilter(QStringLiteral("R"), RowFilter::Kind::Text);  // Looks at every row.
  Fill();
  ASSERT_TRUE(WaitForScan(model));
  EXPECT_EQ(model.rowCount(), 9000);
  for (std::size_t i = 0; i < quick.size(); ++i)
    EXPECT_EQ(quick[i].width, model.GetWidest()[i].width);
}

TEST_F(CTNParserInFileModelTest, AShortRowMayBeTheWidestWithItsMarkup) {
  const std::string shorter(50, 'u');
  options.markup = Markup::On;
  Show("\n" + shorter + "\nR1\n");
  EXPECT_EQ(model.GetWidest()[0].line, 2U);
  EXPECT_GT(model.GetWidest()[0].width, 50);
}

TEST_F(CTNParserInFileModelTest, ARefillOfALargeFileKeepsItsColumnsUntilAllIsKnown) {
  ApplyTo(ManyLines(20'000, 1000) + "R" + std::string(300, 'w') + "\n");
  Fill();
  ASSERT_TRUE(WaitForScan(model));
  ASSERT_EQ(model.columnCount(), 4);
  QSignalSpy removed(&model, &QAbstractItemModel::columnsRemoved);
  Fill();
  EXPECT_EQ(model.columnCount(), 4);
  ASSERT_TRUE(WaitForScan(model));
  EXPECT_EQ(model.columnCount(), 4);
  EXPECT_EQ(removed.count(), 0);
  ApplyTo(ManyLines(20'000, 1000));
  Fill();
  ASSERT_TRUE(WaitForScan(model));
  EXPECT_EQ(model.columnCount(), 3);
}

// Filters.

TEST_F(CTNParserInFileModelTest, AFilterLeavesTheRowsThatHaveTheText) {
  options.filter = RowFilter(QStringLiteral("2K"), RowFilter::Kind::Text);
  Show(kText);
  EXPECT_EQ(Numbers(model), (LineNumbers{3}));
}

TEST_F(CTNParserInFileModelTest, AFilterReadsAVeryLongLineUpToACharacter) {
  constexpr int kLetters = 600'000;  // Of two bytes: more than is searched.
  std::string text = "\nx";
  for (int i = 0; i < kLetters; ++i)
    text += "\xC3\xA9";
  options.filter = RowFilter(QStringLiteral("\u00E9"), RowFilter::Kind::Text);
  Show(text + "\n");
  EXPECT_EQ(Numbers(model), (LineNumbers{2}));
}

TEST_F(CTNParserInFileModelTest, AFilterLooksAtTheMatchingRecordOfAllRowsOfABlock) {
  options.filter = RowFilter(QStringLiteral("(e2)"), RowFilter::Kind::Text);
  Show(kText);
  EXPECT_EQ(Numbers(model), (LineNumbers{5, 6, 7}));
  options.filter = RowFilter(QStringLiteral("unmatched"), RowFilter::Kind::Text);
  Fill();
  EXPECT_EQ(Numbers(model), (LineNumbers{8}));  // What is shown of the blank line is nothing.
}

TEST_F(CTNParserInFileModelTest, AFilterLooksAtTheTextAsItIsDisplayed) {
  options.filter = RowFilter(QStringLiteral("R1      10k"), RowFilter::Kind::Text);
  Show(kText);
  EXPECT_EQ(Numbers(model), (LineNumbers{2}));
  options.filter = RowFilter(QStringLiteral("<NEWLINE>"), RowFilter::Kind::Text);
  Fill();
  EXPECT_EQ(model.rowCount(), 0);
  options.newlines = Newlines::Shown;
  Fill();
  EXPECT_EQ(model.rowCount(), 10);
}

TEST_F(CTNParserInFileModelTest, AnExpressionMatchesAnywhereUnlessItIsAnchored) {
  options.filter = RowFilter(QStringLiteral("[12]\\s"), RowFilter::Kind::Expression);
  Show(kText);
  EXPECT_EQ(Numbers(model), (LineNumbers{2, 3}));
  options.filter = RowFilter(QStringLiteral("^r[0-9] "), RowFilter::Kind::Expression);
  Fill();
  EXPECT_EQ(Numbers(model), (LineNumbers{2, 3, 10}));
}

TEST_F(CTNParserInFileModelTest, AFilterAndTheKindsWorkTogether) {
  options.filter = RowFilter(QStringLiteral("o"), RowFilter::Kind::Text);
  options.kinds = kShowAuxiliary | kShowIgnored;
  Show(kText);
  EXPECT_EQ(Numbers(model), (LineNumbers{1, 4}));
}

TEST_F(CTNParserInFileModelTest, OfALargeFileTheFilteredRowsComeOneAfterTheOther) {
  options.filter = RowFilter(QStringLiteral("junk"), RowFilter::Kind::Text);
  QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
  Show(ManyLines(50'000, 100));
  ASSERT_TRUE(WaitForScan(model));
  EXPECT_GE(inserted.count(), 2);
  ASSERT_EQ(model.rowCount(), 500);
  for (int row = 0; row < 500; ++row)
    ASSERT_EQ(model.index(row, 0).data().toInt(), row * 100 + 2);
}

TEST_F(CTNParserInFileModelTest, ANewFilterEndsTheSearchOfTheOneBefore) {
  Show(ManyLines(50'000, 100));
  options.filter = RowFilter(QStringLiteral("value"), RowFilter::Kind::Text);
  Fill();
  options.filter = RowFilter(QStringLiteral("junk 1 "), RowFilter::Kind::Text);
  Fill();
  ASSERT_TRUE(WaitForScan(model));
  Settle();
  EXPECT_EQ(Numbers(model), (LineNumbers{2}));
}

TEST_F(CTNParserInFileModelTest, ClearingEndsASearch) {
  options.filter = RowFilter(QStringLiteral("value"), RowFilter::Kind::Text);
  Show(ManyLines(50'000, 100));
  model.Clear();
  EXPECT_FALSE(model.IsScanning());
  Settle();
  EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(CTNParserInFileModelTest, AModelMayGoWhileItsSearchIsUnderWay) {
  options.filter = RowFilter(QStringLiteral("value"), RowFilter::Kind::Text);
  ApplyTo(ManyLines(50'000, 100));
  for (int i = 0; i < 5; ++i) {
    CTNParserInFileModel shortLived;
    shortLived.Fill(InFile().GetBlocks(), options);
    EXPECT_TRUE(shortLived.IsScanning());
  }
  Settle();
}

TEST_F(CTNParserInFileModelTest, TheFilterFindsWhatStandsBehindTheTextShown) {
  options.filter = RowFilter(QStringLiteral("needle"), RowFilter::Kind::Text);
  Show("\n" + std::string(5000, 'x') + "needle\n");
  EXPECT_EQ(Numbers(model), (LineNumbers{2}));
}

// Lines and rows.

TEST_F(CTNParserInFileModelTest, RowsAreFoundByTheirLine) {
  options.kinds = kShowEntities;
  Show(kText);  // Lines 1 2 4 5 6 9, from 0.
  EXPECT_EQ(model.FindRow(0), 0);
  EXPECT_EQ(model.FindRow(2), 1);
  EXPECT_EQ(model.FindRow(3), 2);
  EXPECT_EQ(model.FindRow(9), 5);
  EXPECT_EQ(model.FindRow(10), 6);
  EXPECT_EQ(model.GetLine(5), 9U);
}

TEST_F(CTNParserInFileModelTest, UnmatchedRowsAreFoundInBothDirections) {
  Show(kText);  // Unmatched are the lines 7 and 8, from 0.
  EXPECT_EQ(model.FindUnmatched(0, 100), 7);
  EXPECT_EQ(model.FindUnmatched(8, 100), 8);
  EXPECT_EQ(model.FindUnmatched(9, 100), -1);
  EXPECT_EQ(model.FindUnmatched(0, 7), -1);
  EXPECT_EQ(model.FindLastUnmatched(0, 100), 8);
  EXPECT_EQ(model.FindLastUnmatched(0, 8), 7);
  EXPECT_EQ(model.FindLastUnmatched(0, 7), -1);
}

TEST_F(CTNParserInFileModelTest, UnmatchedRowsThatAreHiddenAreNotFound) {
  options.filter = RowFilter(QStringLiteral("^$|R"), RowFilter::Kind::Expression);
  Show("\nR1\njunk\nR2\n\n");
  EXPECT_EQ(Numbers(model), (LineNumbers{1, 2, 4, 5}));
  EXPECT_EQ(model.FindUnmatched(0, 100), 3);
  EXPECT_EQ(model.FindLastUnmatched(0, 100), 3);
  EXPECT_EQ(model.FindLastUnmatched(0, 4), -1);
}

TEST_F(CTNParserInFileModelTest, FarUnmatchedRowsAreFoundFromBothEnds) {
  std::string text = "\njunk\n";
  for (int i = 0; i < 30'000; ++i)
    text += "R\n";
  Show(text + "junk\n");
  EXPECT_EQ(model.FindUnmatched(2, 0xFFFFFFFF), 30'002);
  EXPECT_EQ(model.FindLastUnmatched(0, 30'002), 1);
}

TEST_F(CTNParserInFileModelTest, ARowKnowsItsBlockAndItsPlaceThere) {
  options.kinds = kShowEntities;
  Show(kText);
  EXPECT_EQ(model.GetBlock(4).ToReadableText(), model.GetBlock(2).ToReadableText());
  EXPECT_EQ(model.GetRowInBlock(2), 0U);
  EXPECT_EQ(model.GetRowInBlock(4), 2U);
}

// The filter itself.

TEST(RowFilter, AnEmptyPatternLetsEveryRowPass) {
  for (const RowFilter::Kind kind : {RowFilter::Kind::Text, RowFilter::Kind::Expression}) {
    const RowFilter filter(QString(), kind);
    EXPECT_FALSE(filter.IsActive());
    EXPECT_TRUE(filter.Accepts(QStringLiteral("x")));
    EXPECT_EQ(filter.GetError(), QString());
  }
}

TEST(RowFilter, AsTextTheSignsOfAnExpressionAreLetters) {
  const RowFilter filter(QStringLiteral("a.(["), RowFilter::Kind::Text);
  EXPECT_EQ(filter.GetError(), QString());
  EXPECT_TRUE(filter.Accepts(QStringLiteral("xA.([x")));
  EXPECT_FALSE(filter.Accepts(QStringLiteral("ab([")));
}

TEST(RowFilter, WhatIsNoExpressionSaysWhereAndWhy) {
  const RowFilter filter(QStringLiteral("ab(c"), RowFilter::Kind::Expression);
  EXPECT_EQ(filter.GetError(),
            QStringLiteral("Not a regular expression: missing closing parenthesis at character 5"));
}

}  // namespace
}  // namespace bomparser::test
