#include "ui/controls/CTNDlg.h"

#include "tests/ui/support/UiTest.h"

#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QWhatsThis>

namespace bomparser::test {
namespace {

class CTNDlgTest : public testing::Test {
 protected:
  CTNDlgTest() {
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(label);
    layout->addWidget(edit);
    layout->addWidget(button);
    SetControlId(*edit, Ctrl::TabStop);
    SetControlId(*button, Ctrl::Ok);
    dialog.show();
    Settle();
  }
  void HelpButtonAt(const QWidget& control) {
    const QPoint point = control.mapToGlobal(control.rect().center());
    QHelpEvent event(QEvent::WhatsThis, dialog.mapFromGlobal(point), point);
    QApplication::sendEvent(&dialog, &event);
  }

  FakeHostApp host;
  CTNDlg dialog{host, DialogId::AppSettings};
  QLabel* label = new QLabel("Tab Stop:");
  QLineEdit* edit = new QLineEdit;
  QPushButton* button = new QPushButton("OK");
};

TEST_F(CTNDlgTest, CarriesItsNumberAndTheHelpButton) {
  EXPECT_EQ(GetDialogId(dialog), DialogId::AppSettings);
  EXPECT_TRUE(dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
}

TEST_F(CTNDlgTest, RightClickShowsTheHelpOfTheControlUnderThePoint) {
  edit->setContextMenuPolicy(Qt::NoContextMenu);
  RightClick(dialog, edit->geometry().center());
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].command, HelpCommand::ContextMenu);
  EXPECT_EQ(host.help[0].topicFile, "manual.hlp::/context.txt");
  EXPECT_EQ(host.help[0].pairs, std::vector<HelpPair>({{3045, 65536 + 3045}}));
  EXPECT_EQ(host.help[0].control, edit);
}

TEST_F(CTNDlgTest, AControlWithoutNumberStandsForTheNextInTabOrder) {
  RightClick(dialog, label->geometry().center());
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].pairs, std::vector<HelpPair>({{3045, 65536 + 3045}}));
}

TEST_F(CTNDlgTest, NumbersOfNoControlCountAsNone) {
  label->setProperty(id_property::kControl, 65535);
  RightClick(dialog, label->geometry().center());
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].control, edit);
}

TEST_F(CTNDlgTest, AControlWithoutHelpShowsNothing) {
  edit->setProperty(id_property::kHelp, 0);
  RightClick(dialog, label->geometry().center());
  EXPECT_TRUE(host.help.empty());
}

TEST_F(CTNDlgTest, WhereThereIsNoControlNothingIsShown) {
  RightClick(dialog, QPoint(1, 1));
  EXPECT_TRUE(host.help.empty());
}

TEST_F(CTNDlgTest, TheHelpButtonPassesTheControlAndTheFixedPairs) {
  HelpButtonAt(*edit);
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].command, HelpCommand::HelpKey);
  EXPECT_EQ(host.help[0].pairs,
            std::vector<HelpPair>(
                {{3045, 68581}, {12323, 77859}, {12324, 77860}, {12325, 77861}, {0, 0}}));
}

TEST_F(CTNDlgTest, ButtonsThatEveryDialogHasAreAskedForAsMinusTwo) {
  HelpButtonAt(*button);
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].pairs.front(), HelpPair(-2, -2));
}

TEST_F(CTNDlgTest, ShiftF1AsksForOneControlAndAClickEndsThat) {
  QTest::keyClick(edit, Qt::Key_F1, Qt::ShiftModifier);
  EXPECT_TRUE(QWhatsThis::inWhatsThisMode());
  EXPECT_TRUE(host.help.empty());
  HelpButtonAt(*edit);
  EXPECT_FALSE(QWhatsThis::inWhatsThisMode());
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].control, edit);
}

TEST_F(CTNDlgTest, EveryPlaceOfTheDialogHasHelp) {
  QHelpEvent asks(QEvent::QueryWhatsThis, QPoint(1, 1), dialog.mapToGlobal(QPoint(1, 1)));
  asks.ignore();
  QApplication::sendEvent(&dialog, &asks);
  EXPECT_TRUE(asks.isAccepted());
}

TEST_F(CTNDlgTest, TheHelpKeyIsAboutTheControlThatHasTheFocus) {
  edit->setFocus();
  QTest::keyClick(edit, Qt::Key_F1);
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].command, HelpCommand::HelpKey);
  EXPECT_EQ(host.help[0].control, edit);
  EXPECT_TRUE(host.help[0].byKey);
}

TEST_F(CTNDlgTest, WhoPointsAtAControlHasNotAskedByKey) {
  HelpButtonAt(*edit);
  RightClick(dialog, label->geometry().center());
  ASSERT_EQ(host.help.size(), 2U);
  EXPECT_FALSE(host.help[0].byKey);
  EXPECT_FALSE(host.help[1].byKey);
}

TEST_F(CTNDlgTest, TheSixButtonsOfEveryDialogHaveHelpOfTheirOwnForTheHelpKeyOnly) {
  for (const int number : {1, 2, 9, 12323, 12324, 12325}) {
    SetControlId(*edit, static_cast<Ctrl>(number));
    edit->setContextMenuPolicy(Qt::NoContextMenu);
    host.help.clear();
    HelpButtonAt(*edit);
    RightClick(dialog, edit->geometry().center());
    ASSERT_EQ(host.help.size(), 2U);
    EXPECT_EQ(host.help[0].pairs.front(), HelpPair(-2, -2)) << number;
    EXPECT_EQ(host.help[1].pairs.front(), HelpPair(number, 65536 + number));
  }
}

TEST_F(CTNDlgTest, TheHelpKeyAsksAlsoForAControlWithoutHelp) {
  edit->setProperty(id_property::kHelp, 0);
  HelpButtonAt(*edit);
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].pairs.front(), HelpPair(3045, 0));
}

TEST_F(CTNDlgTest, AControlThatIsAboutToAppearIsWaitedForOnce) {
  edit->hide();
  QTimer::singleShot(0, edit, &QWidget::show);
  RightClick(dialog, edit->geometry().center());
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].control, edit);
}

}  // namespace
}  // namespace bomparser::test
