#include "ui/views/CTNInFilePropPage.h"

#include "tests/ui/views/InputViewTest.h"
#include "ui/controls/DisplayText.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>

namespace bomparser::test {
namespace {

class CTNInFilePropPageTest : public InputViewTest {
 protected:
  CTNInFilePropPageTest() {
    page.resize(900, 400);
    page.GetList().SetInputFile(&InFile());
    QObject::connect(&page, &CTNInFilePropPage::DisplayOptionsChanged, &page, [this] {
      ++changes;
      if (appliesChanges) page.ApplyDisplayOptions();
    });
  }
  void Show(const std::string& text) {
    ApplyTo(text);
    page.GetList().Fill();
    page.show();
    page.activateWindow();
    page.GetList().setFocus();
    Settle();
  }
  const CTNParserInFileModel& Model() { return page.GetList().GetModel(); }
  QCheckBox& Box(Ctrl number) { return *FindControl<QCheckBox>(page, number); }
  QLineEdit& Filter() { return *FindControl<QLineEdit>(page, Ctrl::FilterText); }
  std::string Status() {
    return FindControl<QLabel>(page, Ctrl::FilterStatus)->text().toStdString();
  }
  void Click(QWidget& control) {
    QTest::mouseClick(&control, Qt::LeftButton, Qt::NoModifier, {8, control.height() / 2});
    Settle();
  }
  void Type(const QString& text) {
    Filter().setFocus();
    Filter().selectAll();
    QTest::keyClicks(&Filter(), text);
    Settle();
  }
  LineNumbers Selected() {
    LineNumbers lines;
    for (const int row : page.GetList().GetSelectedRows())
      lines.push_back(static_cast<int>(Model().GetLine(row)) + 1);
    return lines;
  }

  CTNInFilePropPage page;
  bool appliesChanges = true;
  int changes = 0;
};

TEST_F(CTNInFilePropPageTest, CarriesItsNumberAndHoldsTheList) {
  EXPECT_EQ(GetDialogId(page), DialogId::InputFilePage);
  EXPECT_EQ(FindControl<CTNParserInFileListCtrl>(page, Ctrl::InputRows), &page.GetList());
}

TEST_F(CTNInFilePropPageTest, TheSixCheckBoxesHaveTheirTextsAndStates) {
  const auto describe = [this](Ctrl number) {
    return Box(number).text().remove(u'&').toStdString() +
           (Box(number).isChecked() ? " on" : " off");
  };
  EXPECT_EQ(describe(Ctrl::ShowEntityBlocks), "Entity Blocks on");
  EXPECT_EQ(describe(Ctrl::ShowAuxiliaryBlocks), "Aux. Blocks on");
  EXPECT_EQ(describe(Ctrl::ShowUnmatched), "Unmatched on");
  EXPECT_EQ(describe(Ctrl::ShowIgnored), "Ignored on");
  EXPECT_EQ(describe(Ctrl::ShowNewlines), "Newlines off");
  EXPECT_EQ(describe(Ctrl::ShowDataFieldInfo), "Data Field Info off");
}

TEST_F(CTNInFilePropPageTest, EveryControlHasAnAccessibleNameAndAMnemonic) {
  QStringList mnemonics;
  for (const QAbstractButton* button : page.findChildren<QAbstractButton*>()) {
    if (GetControlId(*button) == Ctrl::None) continue;
    EXPECT_FALSE(button->accessibleName().isEmpty()) << button->text().toStdString();
    const qsizetype mark = button->text().indexOf(u'&');
    ASSERT_GE(mark, 0) << button->text().toStdString();
    mnemonics.append(button->text().mid(mark + 1, 1).toUpper());
  }
  EXPECT_EQ(mnemonics.size(), 9);
  // The buttons of the main dialog need most letters, so two of the switches share one.
  EXPECT_EQ(mnemonics.count(QStringLiteral("I")), 2);
  EXPECT_EQ(mnemonics.removeDuplicates(), 1);
  EXPECT_FALSE(Filter().accessibleName().isEmpty());
}

TEST_F(CTNInFilePropPageTest, AClickTellsAndChangesNothingByItself) {
  appliesChanges = false;
  Show(kText);
  Click(Box(Ctrl::ShowIgnored));
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(Model().rowCount(), 10);
  page.ApplyDisplayOptions();
  EXPECT_EQ(Numbers(Model()), (LineNumbers{2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST_F(CTNInFilePropPageTest, EveryCheckBoxSetsItsOwnSwitch) {
  Show(kText);
  CTNParserInFileListCtrl& list = page.GetList();
  const auto flagsAfter = [&](Ctrl number) {
    Click(Box(number));
    const std::uint32_t flags = list.GetShowFlags();
    Click(Box(number));
    return flags;
  };
  EXPECT_EQ(flagsAfter(Ctrl::ShowEntityBlocks), 14U);
  EXPECT_EQ(flagsAfter(Ctrl::ShowAuxiliaryBlocks), 13U);
  EXPECT_EQ(flagsAfter(Ctrl::ShowUnmatched), 11U);
  EXPECT_EQ(flagsAfter(Ctrl::ShowIgnored), 7U);
  EXPECT_EQ(list.GetShowFlags(), 15U);
  Click(Box(Ctrl::ShowNewlines));
  EXPECT_TRUE(list.ShowsNewlines());
  EXPECT_FALSE(list.ShowsMarkup());
  Click(Box(Ctrl::ShowNewlines));
  Click(Box(Ctrl::ShowDataFieldInfo));
  EXPECT_FALSE(list.ShowsNewlines());
  EXPECT_TRUE(list.ShowsMarkup());
  EXPECT_EQ(changes, 11);
}

TEST_F(CTNInFilePropPageTest, TheSpaceBarClicksACheckBox) {
  Show(kText);
  Box(Ctrl::ShowUnmatched).setFocus();
  QTest::keyClick(&Box(Ctrl::ShowUnmatched), Qt::Key_Space);
  Settle();
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(Model().rowCount(), 8);
}

TEST_F(CTNInFilePropPageTest, TheSelectionStaysWhenABoxIsClicked) {
  Show(kText);
  page.GetList().SetSelectedRows({3, 9});
  Click(Box(Ctrl::ShowIgnored));
  EXPECT_EQ(Selected(), (LineNumbers{4, 10}));
}

// The filter.

TEST_F(CTNInFilePropPageTest, TypingFiltersAndTheLineNumbersStay) {
  Show(kText);
  Type(QStringLiteral("k"));
  EXPECT_EQ(Numbers(Model()), (LineNumbers{2, 3, 8, 10}));
  EXPECT_EQ(Status(), "4 of 10 lines shown");
  Type(QStringLiteral("(E1)"));
  EXPECT_EQ(Numbers(Model()), (LineNumbers{2, 3, 10}));
}

TEST_F(CTNInFilePropPageTest, EscapeEmptiesTheFilterBeforeItMeansAnythingElse) {
  Show(kText);
  Type(QStringLiteral("junk"));
  QTest::keyClick(&Filter(), Qt::Key_Escape);
  EXPECT_EQ(Filter().text(), QString());
  EXPECT_EQ(Model().rowCount(), 10);
  QKeyEvent again(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(&Filter(), &again);
  EXPECT_FALSE(again.isAccepted());
}

TEST_F(CTNInFilePropPageTest, ReturnGoesOnToTheList) {
  Show(kText);
  Type(QStringLiteral("junk"));
  QTest::keyClick(&Filter(), Qt::Key_Return);
  EXPECT_TRUE(page.GetList().hasFocus());
}

TEST_F(CTNInFilePropPageTest, TheFindKeyLeadsToTheFilter) {
  Show(kText);
  Type(QStringLiteral("junk"));
  page.GetList().setFocus();
  QTest::keySequence(&page.GetList(), QKeySequence::Find);
  EXPECT_TRUE(Filter().hasFocus());
  EXPECT_EQ(Filter().selectedText(), QStringLiteral("junk"));
}

TEST_F(CTNInFilePropPageTest, AsAnExpressionTheSameTextMeansSomethingElse) {
  Show(kText);
  Type(QStringLiteral("^R[23]"));
  EXPECT_EQ(Model().rowCount(), 0);
  Click(Box(Ctrl::FilterIsExpression));
  EXPECT_EQ(Numbers(Model()), (LineNumbers{3, 10}));
}

TEST_F(CTNInFilePropPageTest, AnExpressionThatIsNoneIsMarkedAndTheListStays) {
  Show(kText);
  Click(Box(Ctrl::FilterIsExpression));
  Type(QStringLiteral("R[23"));
  EXPECT_EQ(Numbers(Model()), (LineNumbers{1, 2, 3, 4, 10}));  // What "R" had left.
  const std::string wanted =
      "Not a regular expression: missing terminating ] for character class at character 5";
  EXPECT_EQ(Filter().toolTip().toStdString(), wanted);
  EXPECT_EQ(Filter().accessibleDescription().toStdString(), wanted);
  EXPECT_EQ(Status(), wanted);
  EXPECT_EQ(Filter().palette().color(QPalette::Base).name(), QStringLiteral("#ffd6d6"));
  EXPECT_EQ(Filter().palette().color(QPalette::Text).name(), QStringLiteral("#000000"));
  page.GetList().Fill();
  Settle();
  EXPECT_EQ(Status(), wanted) << "it is still wrong";
  QTest::keyClicks(&Filter(), QStringLiteral("]"));
  EXPECT_EQ(Numbers(Model()), (LineNumbers{3, 10}));
  EXPECT_EQ(Filter().toolTip(), QString());
  EXPECT_EQ(Filter().palette().color(QPalette::Base), page.palette().color(QPalette::Base));
  EXPECT_EQ(Status(), "2 of 10 lines shown");
}

TEST_F(CTNInFilePropPageTest, WhatIsTypedIsNeverMarkup) {
  Show(kText);
  EXPECT_EQ(FindControl<QLabel>(page, Ctrl::FilterStatus)->textFormat(), Qt::PlainText);
}

TEST_F(CTNInFilePropPageTest, TheFilterStaysWhenTheFileIsAppliedAgain) {
  Show(kText);
  Type(QStringLiteral("junk"));
  ApplyTo("\njunk 1\nR1\njunk 2\n");
  page.GetList().Fill();
  EXPECT_EQ(Numbers(Model()), (LineNumbers{2, 4}));
}

TEST_F(CTNInFilePropPageTest, TheStatusTellsOfASearchThatIsUnderWay) {
  Show(ManyLines(200'000, 10));
  Type(QStringLiteral("junk"));
  Filter().setText(QStringLiteral("value"));
  EXPECT_TRUE(Model().IsScanning());
  EXPECT_NE(Status().find("searching"), std::string::npos);
  ASSERT_TRUE(WaitForScan(Model()));
  EXPECT_EQ(Status(), "199999 of 200000 lines shown");
}

// Unmatched lines.

TEST_F(CTNInFilePropPageTest, KeysAndButtonsGoFromOneUnmatchedLineToTheNext) {
  Show(kText);
  QTest::keyClick(&page.GetList(), Qt::Key_F8);
  EXPECT_EQ(Selected(), (LineNumbers{8}));
  Filter().setFocus();
  QTest::keyClick(&Filter(), Qt::Key_F8);
  EXPECT_EQ(Selected(), (LineNumbers{9}));
  QTest::keyClick(&Filter(), Qt::Key_F8, Qt::ShiftModifier);
  EXPECT_EQ(Selected(), (LineNumbers{8}));
  Click(*FindControl<QPushButton>(page, Ctrl::NextUnmatched));
  EXPECT_EQ(Selected(), (LineNumbers{9}));
  Click(*FindControl<QPushButton>(page, Ctrl::PreviousUnmatched));
  EXPECT_EQ(Selected(), (LineNumbers{8}));
  EXPECT_EQ(Status(), "10 of 10 lines shown");
}

TEST_F(CTNInFilePropPageTest, TheStatusSaysWhenASearchWentRoundOrFoundNothing) {
  Show(kText);
  QTest::keyClick(&page.GetList(), Qt::Key_F8, Qt::ShiftModifier);
  QTest::keyClick(&page.GetList(), Qt::Key_F8);
  EXPECT_EQ(Status(), "Went on at the first line");
  QTest::keyClick(&page.GetList(), Qt::Key_F8, Qt::ShiftModifier);
  EXPECT_EQ(Status(), "Went on at the last line");
  Click(Box(Ctrl::ShowUnmatched));
  QTest::keyClick(&page.GetList(), Qt::Key_F8);
  EXPECT_EQ(Status(), "No unmatched line is shown");
}

// The legend.

TEST_F(CTNInFilePropPageTest, TheLegendShowsTheFourKindsInTheirColours) {
  QWidget* const legend = FindControl<QWidget>(page, Ctrl::ColourLegend);
  ASSERT_NE(legend, nullptr);
  std::vector<std::string> samples;
  for (const QLabel* label : legend->findChildren<QLabel*>()) {
    samples.push_back(label->text().toStdString() + " " +
                      label->palette().color(QPalette::Window).name().toStdString() + " " +
                      label->palette().color(QPalette::WindowText).name().toStdString());
  }
  EXPECT_EQ(samples,
            (std::vector<std::string>{"Entity #c8ffc8 #000000", "Auxiliary #b0ffff #000000",
                                      "Unmatched #ffcae4 #000000", "Ignored #ffffff #c0c0c0"}));
}

// Real files, and pictures.

class CTNInFilePropPageSampleTest : public CTNInFilePropPageTest {
 protected:
  static constexpr const char* kNoSamples = "BOMPARSER_SAMPLES names no folder of sample files";

  static std::string ReadSample(const std::string& name) {
    const QByteArray folder = qgetenv("BOMPARSER_SAMPLES");
    return folder.isEmpty() ? "(none)" : BytesAt(folder.toStdString() + "/" + name);
  }
  /// Shows a sample with its template; false when the samples are not there.
  bool ShowSample(const std::string& name, const std::string& templateName) {
    const std::string bytes = ReadSample(name);
    if (bytes == "(none)") return false;
    EXPECT_TRUE(engine.LoadTemplate(std::string(BOMPARSER_SOURCE_DIR) + "/tests/samples/" +
                                    templateName + ".xml"))
        << LogText();
    Show(bytes);
    return true;
  }
  bool Picture(const std::string& name) { return Screenshot(page, "input-page-" + name); }
};

TEST_F(CTNInFilePropPageSampleTest, AllLinesOfARealFileAreShown) {
  if (!ShowSample("placement/altium_mid_ref_pad_mm.txt", "altium_mid_ref_pad_mm"))
    GTEST_SKIP() << kNoSamples;
  const std::string bytes = ReadSample("placement/altium_mid_ref_pad_mm.txt");
  EXPECT_EQ(Model().rowCount(), std::count(bytes.begin(), bytes.end(), '\n'));
  EXPECT_EQ(Model().GetLineCount(), engine.GetStats().totalLines);
}

TEST_F(CTNInFilePropPageSampleTest, PictureApplied) {
  if (!ShowSample("placement/altium_banner_quoted_description.txt",
                  "altium_banner_quoted_description"))
    GTEST_SKIP() << kNoSamples;
  page.GetList().SetSelectedRows({3});
  EXPECT_TRUE(Picture("applied"));
}

TEST_F(CTNInFilePropPageSampleTest, PictureStale) {
  if (!ShowSample("placement/altium_banner_quoted_description.txt",
                  "altium_banner_quoted_description"))
    GTEST_SKIP() << kNoSamples;
  InFile().SetStale(true);
  page.GetList().ShowState();
  EXPECT_TRUE(Picture("stale"));
}

TEST_F(CTNInFilePropPageSampleTest, PictureExtraColumnsOfAWideFile) {
  if (!ShowSample("bom/ulx3s_1click_wide.tsv", "ulx3s_1click_wide")) GTEST_SKIP() << kNoSamples;
  ASSERT_GT(Model().columnCount(), 3);
  const int end = page.GetList().columnViewportPosition(3);
  page.GetList().horizontalScrollBar()->setValue(end - 400);
  EXPECT_TRUE(Picture("extra-columns"));
}

TEST_F(CTNInFilePropPageSampleTest, PictureBytesThatAreNoUtf8) {
  if (!ShowSample("bom/odrive_quoted_latin1.csv", "odrive_quoted_latin1"))
    GTEST_SKIP() << kNoSamples;
  EXPECT_TRUE(Picture("latin1"));
}

TEST_F(CTNInFilePropPageSampleTest, PictureChineseLetters) {
  if (!ShowSample("bom/bbai_multiline_cell.csv", "bbai_multiline_cell")) GTEST_SKIP() << kNoSamples;
  EXPECT_TRUE(Picture("multiline-utf8"));
}

TEST_F(CTNInFilePropPageTest, PictureAllKinds) {
  Show(kText);
  page.GetList().SetSelectedRows({2});
  EXPECT_TRUE(Screenshot(page, "input-page-kinds"));
}

TEST_F(CTNInFilePropPageTest, PictureMarkupAndNewlines) {
  Show(kText);
  Click(Box(Ctrl::ShowNewlines));
  Click(Box(Ctrl::ShowDataFieldInfo));
  EXPECT_TRUE(Screenshot(page, "input-page-markup"));
}

TEST_F(CTNInFilePropPageTest, PictureFilter) {
  Show(kText);
  Type(QStringLiteral("k"));
  EXPECT_TRUE(Screenshot(page, "input-page-filter"));
}

TEST_F(CTNInFilePropPageTest, PictureInvalidExpression) {
  Show(kText);
  Click(Box(Ctrl::FilterIsExpression));
  Type(QStringLiteral("R[12"));
  EXPECT_TRUE(Screenshot(page, "input-page-invalid-expression"));
}

TEST_F(CTNInFilePropPageTest, PictureNarrow) {
  Show(kText);
  page.resize(page.minimumSizeHint());
  EXPECT_LE(page.minimumSizeHint().width(), 640);
  EXPECT_TRUE(Screenshot(page, "input-page-narrow"));
}

TEST_F(CTNInFilePropPageTest, PictureEmpty) {
  page.show();
  EXPECT_TRUE(Screenshot(page, "input-page-empty"));
}

}  // namespace
}  // namespace bomparser::test
