#include "ui/dialogs/CTNTemplateParamsDlg.h"

#include "template/CTNParserTemplate.h"
#include "tests/ui/support/UiTest.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QRadioButton>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace bomparser::test {
namespace {

class CTNTemplateParamsDlgTest : public testing::Test {
 protected:
  CTNTemplateParamsDlgTest() { document.Init(); }
  void Open() {
    dialog = std::make_unique<CTNTemplateParamsDlg>(host, document, "BOM Parser");
    dialog->show();
    Settle();
  }
  QLineEdit& Edit(Ctrl number) { return *FindControl<QLineEdit>(*dialog, number); }
  QComboBox& Units() { return *FindControl<QComboBox>(*dialog, Ctrl::ParamUnits); }
  QRadioButton& Radio(Ctrl number) { return *FindControl<QRadioButton>(*dialog, number); }
  void Type(Ctrl number, const QString& text) {
    Edit(number).setFocus();
    Edit(number).selectAll();
    QTest::keyClicks(&Edit(number), text);
  }
  void Choose(Ctrl number) { QTest::mouseClick(&Radio(number), Qt::LeftButton); }
  /// Presses OK; true when the dialog closed.
  bool Ok() {
    QTest::mouseClick(FindControl<QPushButton>(*dialog, Ctrl::Ok), Qt::LeftButton);
    return !dialog->isVisible();
  }
  /// Opens anew, types the limits and presses OK.
  bool OkWithLines(const QString& before, const QString& after, Ctrl from) {
    Open();
    Type(Ctrl::ParamIgnoreBefore, before);
    Type(Ctrl::ParamIgnoreAfter, after);
    Choose(from);
    return Ok();
  }
  bool OkWith(Ctrl number, const QString& text) {
    Open();
    Type(number, text);
    return Ok();
  }
  /// The parameters as the template has them: "title|units|scale|begin|end".
  std::string Stored() const {
    return document.GetTitle() + "|" + std::to_string(document.GetUnits()) + "|" +
           std::to_string(document.GetScaleFactor()) + "|" +
           std::to_string(document.GetBeginRow()) + "|" + std::to_string(document.GetEndAfterRow());
  }
  static std::string RangeBox(const std::string& text) {
    return "warning|BOM Parser|" + text + "|Ok";
  }

  FakeHostApp host;
  FakeUserDialogs boxes;
  CTNParserTemplate document{nullptr};
  std::unique_ptr<CTNTemplateParamsDlg> dialog;
};

TEST_F(CTNTemplateParamsDlgTest, CarriesItsCaptionAndNumber) {
  Open();
  EXPECT_EQ(dialog->windowTitle(), "Template Parameters And Variables");
  EXPECT_EQ(GetDialogId(*dialog), DialogId::TemplateParams);
}

TEST_F(CTNTemplateParamsDlgTest, ItsLabelsAreWhatUsersKnow) {
  Open();
  std::multiset<std::string> texts;
  for (const QLabel* label : dialog->findChildren<QLabel*>())
    texts.insert(label->text().remove(u'&').toStdString());
  EXPECT_EQ(texts, std::multiset<std::string>(
                       {"Ignore Lines After:", "Ignore Lines Before:", "TEMPL_SCALE", "TEMPL_UNITS",
                        "Template Title", "Value:", "Value:"}));
  EXPECT_EQ(dialog->findChild<QGroupBox*>()->title().remove(u'&'), "From:");
  EXPECT_EQ(Radio(Ctrl::ParamFromBottom).text().remove(u'&'), "Bottom");
  EXPECT_EQ(Radio(Ctrl::ParamFromTop).text().remove(u'&'), "Top");
}

TEST_F(CTNTemplateParamsDlgTest, TheUnitsAreInchMmAndMil) {
  Open();
  QString units;
  for (int i = 0; i < Units().count(); ++i)
    units += Units().itemText(i) + "=" + Units().itemData(i).toString() + " ";
  EXPECT_EQ(units, "Inch=0 MM=1 Mil=2 ");
}

TEST_F(CTNTemplateParamsDlgTest, OpensWithTheTemplatesValues) {
  document.SetTitle("Placement R&D");
  document.SetUnits(2);
  document.SetScaleFactor(0.0254);
  document.SetBeginRow(3);
  document.SetEndAfterRow(40);
  Open();
  EXPECT_EQ(Edit(Ctrl::ParamTitle).text(), "Placement R&D");
  EXPECT_EQ(Units().currentText(), "Mil");
  EXPECT_EQ(Edit(Ctrl::ParamScale).text(), "0.0254");
  EXPECT_EQ(Edit(Ctrl::ParamIgnoreBefore).text(), "3");
  EXPECT_EQ(Edit(Ctrl::ParamIgnoreAfter).text(), "40");
  EXPECT_TRUE(Radio(Ctrl::ParamFromTop).isChecked());
}

TEST_F(CTNTemplateParamsDlgTest, ALimitOfZeroOpensAsZeroFromTheBottom) {
  document.SetEndAfterRow(0);
  Open();
  EXPECT_TRUE(Radio(Ctrl::ParamFromBottom).isChecked());
  EXPECT_EQ(Edit(Ctrl::ParamIgnoreAfter).text(), "0");
}

TEST_F(CTNTemplateParamsDlgTest, ANegativeLimitOpensAsItsSizeFromTheBottom) {
  document.SetEndAfterRow(-7);
  Open();
  EXPECT_TRUE(Radio(Ctrl::ParamFromBottom).isChecked());
  EXPECT_EQ(Edit(Ctrl::ParamIgnoreAfter).text(), "7");
}

TEST_F(CTNTemplateParamsDlgTest, TheLowestLimitOpensAsItsSizeAndIsRefused) {
  document.SetEndAfterRow(std::numeric_limits<std::int32_t>::min());
  Open();
  EXPECT_EQ(Edit(Ctrl::ParamIgnoreAfter).text(), "2147483648");
  EXPECT_TRUE(Radio(Ctrl::ParamFromBottom).isChecked());
  EXPECT_FALSE(Ok());
}

TEST_F(CTNTemplateParamsDlgTest, ATitleOfAHundredThousandLettersIsShownWhole) {
  document.SetTitle(std::string(100'000, 't'));
  Open();
  EXPECT_EQ(Edit(Ctrl::ParamTitle).text().size(), 100'000);
}

TEST_F(CTNTemplateParamsDlgTest, AScaleThatNoNumberCanHoldIsOutOfRange) {
  for (const char* text : {"1e400", "1E-400", " -1e999 "})
    EXPECT_FALSE(OkWith(Ctrl::ParamScale, text)) << text;
  EXPECT_EQ(boxes.boxes,
            std::vector<std::string>(3, RangeBox("Enter a number between 0 and 1000000.")));
}

TEST_F(CTNTemplateParamsDlgTest, BetweenTheControlsThereIsNoHelp) {
  Open();
  const QWidget& title = Edit(Ctrl::ParamTitle);
  const QPoint below = title.mapTo(dialog.get(), QPoint(5, title.height() + 2));
  RightClick(*dialog, below);
  EXPECT_TRUE(host.help.empty());
}

TEST_F(CTNTemplateParamsDlgTest, OkStoresEverything) {
  Open();
  Type(Ctrl::ParamTitle, "Parts");
  Units().setCurrentIndex(1);
  Type(Ctrl::ParamScale, "2.5");
  Type(Ctrl::ParamIgnoreBefore, "4");
  Type(Ctrl::ParamIgnoreAfter, "12");
  Choose(Ctrl::ParamFromBottom);
  EXPECT_TRUE(Ok());
  EXPECT_EQ(dialog->result(), QDialog::Accepted);
  EXPECT_EQ(Stored(), "Parts|1|2.500000|4|-12");
  EXPECT_EQ(document.GetUnitsName(), "MM");
}

TEST_F(CTNTemplateParamsDlgTest, FromTheTopTheLimitIsStoredAsShown) {
  EXPECT_TRUE(OkWithLines("4", "12", Ctrl::ParamFromTop));
  EXPECT_EQ(document.GetEndAfterRow(), 12);
}

TEST_F(CTNTemplateParamsDlgTest, MinusFiveFromTheBottomReopensAsFiveFromTheTop) {
  EXPECT_TRUE(OkWithLines("1", "-5", Ctrl::ParamFromBottom));
  EXPECT_EQ(document.GetEndAfterRow(), 5);
  Open();
  EXPECT_TRUE(Radio(Ctrl::ParamFromTop).isChecked());
  EXPECT_EQ(Edit(Ctrl::ParamIgnoreAfter).text(), "5");
}

TEST_F(CTNTemplateParamsDlgTest, FromTheTopEqualLimitsPass) {
  EXPECT_TRUE(OkWithLines("5", "5", Ctrl::ParamFromTop));
  EXPECT_TRUE(boxes.boxes.empty());
}

TEST_F(CTNTemplateParamsDlgTest, FromTheTopALimitBeforeTheFirstLineIsRefused) {
  EXPECT_FALSE(OkWithLines("6", "5", Ctrl::ParamFromTop));
  EXPECT_EQ(boxes.boxes,
            std::vector<std::string>({"error|BOM Parser|'Ignore After' value must be greater than "
                                      "'Ignore Before' value when 'From Top' is specified|Ok"}));
  EXPECT_EQ(document.GetBeginRow(), 1);
}

TEST_F(CTNTemplateParamsDlgTest, FromTheBottomAnyOrderPasses) {
  EXPECT_TRUE(OkWithLines("6", "5", Ctrl::ParamFromBottom));
  EXPECT_TRUE(OkWithLines("10000", "0", Ctrl::ParamFromBottom));
  EXPECT_TRUE(OkWithLines("1", "10000", Ctrl::ParamFromBottom));
}

TEST_F(CTNTemplateParamsDlgTest, TheScaleGoesFromZeroToAMillion) {
  EXPECT_TRUE(OkWith(Ctrl::ParamScale, "1000000.0"));
  EXPECT_EQ(document.GetScaleFactor(), 1000000.0);
  EXPECT_TRUE(OkWith(Ctrl::ParamScale, "0"));
  EXPECT_FALSE(OkWith(Ctrl::ParamScale, "1000000.1"));
  EXPECT_FALSE(OkWith(Ctrl::ParamScale, "-0.1"));
  EXPECT_EQ(boxes.boxes,
            std::vector<std::string>(2, RangeBox("Enter a number between 0 and 1000000.")));
  EXPECT_EQ(document.GetScaleFactor(), 0.0);
}

TEST_F(CTNTemplateParamsDlgTest, AScaleThatIsNoNumberIsRefused) {
  for (const char* text : {"abc", "1,5", "inf", "nan", "1 2"}) {
    EXPECT_FALSE(OkWith(Ctrl::ParamScale, text)) << text;
  }
  EXPECT_EQ(boxes.boxes, std::vector<std::string>(5, RangeBox("Enter a number.")));
}

TEST_F(CTNTemplateParamsDlgTest, AMillionIsShownWithoutAnExponent) {
  document.SetScaleFactor(1000000.0);
  Open();
  EXPECT_EQ(Edit(Ctrl::ParamScale).text(), "1000000");
}

TEST_F(CTNTemplateParamsDlgTest, AScaleComesBackAsItWas) {
  for (const double scale : {0.1, 1.0 / 3.0, 1e-9, 123456.789}) {
    document.SetScaleFactor(scale);
    Open();
    EXPECT_TRUE(Ok());
    EXPECT_EQ(document.GetScaleFactor(), scale);
  }
}

TEST_F(CTNTemplateParamsDlgTest, OnlyScalesFarFromOneHaveAnExponent) {
  const std::vector<std::pair<double, std::string>> texts = {
      {0.000001, "0.000001"}, {1e-7, "1e-07"}, {1e14, "100000000000000"}, {1e16, "1e+16"}};
  for (const auto& [scale, text] : texts) {
    document.SetScaleFactor(scale);
    Open();
    EXPECT_EQ(Edit(Ctrl::ParamScale).text().toStdString(), text);
  }
}

TEST_F(CTNTemplateParamsDlgTest, NumbersAreReadWithoutTheLocale) {
  const QLocale before;
  QLocale::setDefault(QLocale(QLocale::German));
  EXPECT_TRUE(OkWith(Ctrl::ParamScale, "2.5"));
  EXPECT_EQ(document.GetScaleFactor(), 2.5);
  Open();
  EXPECT_EQ(Edit(Ctrl::ParamScale).text(), "2.5");
  QLocale::setDefault(before);
}

TEST_F(CTNTemplateParamsDlgTest, IgnoreBeforeGoesFromOneToTenThousand) {
  EXPECT_TRUE(OkWith(Ctrl::ParamIgnoreBefore, "1"));
  EXPECT_TRUE(OkWith(Ctrl::ParamIgnoreBefore, " 10000 "));
  EXPECT_EQ(document.GetBeginRow(), 10000);
  for (const char* text : {"0", "10001", "-1", "99999999999999999999"}) {
    EXPECT_FALSE(OkWith(Ctrl::ParamIgnoreBefore, text)) << text;
  }
  EXPECT_EQ(boxes.boxes,
            std::vector<std::string>(4, RangeBox("Enter an integer between 1 and 10000.")));
}

TEST_F(CTNTemplateParamsDlgTest, IgnoreAfterGoesToTenThousandBothWays) {
  EXPECT_TRUE(OkWith(Ctrl::ParamIgnoreAfter, "-10000"));
  EXPECT_TRUE(OkWith(Ctrl::ParamIgnoreAfter, "10000"));
  EXPECT_FALSE(OkWith(Ctrl::ParamIgnoreAfter, "10001"));
  EXPECT_FALSE(OkWith(Ctrl::ParamIgnoreAfter, "-10001"));
  EXPECT_EQ(boxes.boxes,
            std::vector<std::string>(2, RangeBox("Enter an integer between -10000 and 10000.")));
}

TEST_F(CTNTemplateParamsDlgTest, WhatIsNoIntegerIsRefused) {
  for (const char* text : {"abc", "1.5", "", "-", "1e3"}) {
    Open();
    Edit(Ctrl::ParamIgnoreBefore).setText(text);
    EXPECT_FALSE(Ok()) << text;
  }
  EXPECT_EQ(boxes.boxes, std::vector<std::string>(5, RangeBox("Enter an integer.")));
}

TEST_F(CTNTemplateParamsDlgTest, ATitleHas255CharactersAtMost) {
  Open();
  Edit(Ctrl::ParamTitle).setText(QString(255, u'\u00FC'));
  EXPECT_TRUE(Ok());
  Open();
  Edit(Ctrl::ParamTitle).setText(QString(256, u't'));
  EXPECT_FALSE(Ok());
  EXPECT_EQ(boxes.boxes,
            std::vector<std::string>({RangeBox("Enter no more than 255 characters.")}));
}

TEST_F(CTNTemplateParamsDlgTest, ATitleThatIsNoUtf8StaysWhatItIsUnlessItIsEdited) {
  const std::string title = "f\xFCr";
  document.SetTitle(title);
  Open();
  EXPECT_EQ(Edit(Ctrl::ParamTitle).text(), QStringLiteral("f\u00FCr"));
  EXPECT_TRUE(Ok());
  EXPECT_EQ(document.GetTitle(), title);
  Open();
  Edit(Ctrl::ParamTitle).setFocus();
  QTest::keyClick(&Edit(Ctrl::ParamTitle), Qt::Key_End);
  QTest::keyClicks(&Edit(Ctrl::ParamTitle), QStringLiteral("!"));
  EXPECT_TRUE(Ok());
  EXPECT_EQ(document.GetTitle(), "f\xC3\xBCr!");
}

TEST_F(CTNTemplateParamsDlgTest, AStoredTitleThatIsTooLongIsShownWhole) {
  document.SetTitle(std::string(300, 't'));
  Open();
  EXPECT_EQ(Edit(Ctrl::ParamTitle).text().size(), 300);
}

TEST_F(CTNTemplateParamsDlgTest, OneBoxTellsOfTheFirstFaultyEditAndLeadsThere) {
  Open();
  Type(Ctrl::ParamIgnoreAfter, "x");
  Type(Ctrl::ParamScale, "y");
  Type(Ctrl::ParamIgnoreBefore, "0");
  EXPECT_FALSE(Ok());
  EXPECT_EQ(boxes.boxes, std::vector<std::string>({RangeBox("Enter a number.")}));
  EXPECT_TRUE(Edit(Ctrl::ParamScale).hasFocus());
  EXPECT_EQ(Edit(Ctrl::ParamScale).selectedText(), "y");
  Type(Ctrl::ParamScale, "1");
  EXPECT_FALSE(Ok());
  EXPECT_TRUE(Edit(Ctrl::ParamIgnoreBefore).hasFocus());
  Type(Ctrl::ParamIgnoreBefore, "1");
  EXPECT_FALSE(Ok());
  EXPECT_TRUE(Edit(Ctrl::ParamIgnoreAfter).hasFocus());
  EXPECT_EQ(boxes.boxes.size(), 3U);
  EXPECT_EQ(Stored(), "untitled|0|1.000000|1|0");
}

TEST_F(CTNTemplateParamsDlgTest, UnknownUnitsSelectNothingAndStay) {
  document.SetUnits(7);
  Open();
  EXPECT_EQ(Units().currentIndex(), -1);
  EXPECT_TRUE(Ok());
  EXPECT_EQ(document.GetUnits(), 7);
}

TEST_F(CTNTemplateParamsDlgTest, CancelAndEscapeChangeNothing) {
  for (const bool escape : {true, false}) {
    Open();
    Type(Ctrl::ParamTitle, "other");
    Type(Ctrl::ParamIgnoreBefore, "bad");
    if (escape) {
      QTest::keyClick(dialog.get(), Qt::Key_Escape);
    } else {
      QTest::mouseClick(FindControl<QPushButton>(*dialog, Ctrl::Cancel), Qt::LeftButton);
    }
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
  }
  EXPECT_EQ(Stored(), "untitled|0|1.000000|1|0");
  EXPECT_TRUE(boxes.boxes.empty());
}

TEST_F(CTNTemplateParamsDlgTest, EnterInAnEditIsOk) {
  Open();
  Type(Ctrl::ParamTitle, "Parts");
  QTest::keyClick(&Edit(Ctrl::ParamTitle), Qt::Key_Return);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(document.GetTitle(), "Parts");
}

TEST_F(CTNTemplateParamsDlgTest, LettersLeadToTheControls) {
  Open();
  const std::vector<std::pair<Qt::Key, Ctrl>> letters = {{Qt::Key_T, Ctrl::ParamTitle},
                                                         {Qt::Key_V, Ctrl::ParamUnits},
                                                         {Qt::Key_L, Ctrl::ParamScale},
                                                         {Qt::Key_B, Ctrl::ParamIgnoreBefore},
                                                         {Qt::Key_A, Ctrl::ParamIgnoreAfter}};
  for (const auto& [key, control] : letters) {
    QTest::keyClick(dialog.get(), key, Qt::AltModifier);
    ASSERT_NE(dialog->focusWidget(), nullptr);
    EXPECT_EQ(GetControlId(*dialog->focusWidget()), control);
  }
  QTest::keyClick(dialog.get(), Qt::Key_P, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([this] { return Radio(Ctrl::ParamFromTop).isChecked(); }));
  QTest::keyClick(dialog.get(), Qt::Key_M, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([this] { return Radio(Ctrl::ParamFromBottom).isChecked(); }));
}

TEST_F(CTNTemplateParamsDlgTest, TabGoesThroughTheControlsInReadingOrder) {
  Open();
  Edit(Ctrl::ParamTitle).setFocus();
  std::vector<int> order;
  for (int i = 0; i < 8; ++i) {
    order.push_back(static_cast<int>(GetControlId(*dialog->focusWidget())));
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(order, std::vector<int>({3035, 3030, 3062, 3032, 3034, 3044, 1, 2}));
}

TEST_F(CTNTemplateParamsDlgTest, EveryControlHasANameForAssistiveTools) {
  Open();
  for (const QLineEdit* edit : dialog->findChildren<QLineEdit*>())
    EXPECT_FALSE(edit->accessibleName().isEmpty());
  EXPECT_EQ(Units().accessibleName(), "TEMPL_UNITS");
}

TEST_F(CTNTemplateParamsDlgTest, ARightClickOnALabelIsAboutTheControlBehindIt) {
  Open();
  for (const QLabel* label : dialog->findChildren<QLabel*>()) {
    if (label->text().remove(u'&') != "Ignore Lines Before:") continue;
    RightClick(*dialog, label->mapTo(dialog.get(), label->rect().center()));
  }
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].pairs.front().first, 3032);
}

TEST_F(CTNTemplateParamsDlgTest, Picture) {
  document.SetTitle("Placement list");
  document.SetEndAfterRow(-2);
  Open();
  EXPECT_TRUE(Screenshot(*dialog, "template-params"));
}

}  // namespace
}  // namespace bomparser::test
