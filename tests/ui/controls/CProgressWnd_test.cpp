#include "ui/controls/CProgressWnd.h"

#include "tests/ui/support/UiTest.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>
#include <memory>

namespace bomparser::test {
namespace {

class CProgressWndTest : public testing::Test {
 protected:
  CProgressWndTest() {
    auto* layout = new QVBoxLayout(&parent);
    layout->addWidget(edit);
    layout->addWidget(list);
    list->setEnabled(false);
    parent.setGeometry(200, 150, 500, 400);
    parent.show();
    parent.activateWindow();
    edit->setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&parent));
  }
  void CreateWindow(const QString& title = "Scanning parts.txt -- Progress: ",
                    BarLook look = BarLook::Smooth) {
    window->Create(&parent, title, look);
  }
  void ShowModal() {
    CreateWindow();
    window->GoModal();
    window->SetPos(0);
    window->PeekAndPump(EscapeKey::Cancels);
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
  }
  QProgressBar& Bar() { return *window->findChild<QProgressBar*>(); }
  QPushButton& CancelButton() { return *FindControl<QPushButton>(*window, Ctrl::Cancel); }
  QLabel& TextLine() { return *FindControl<QLabel>(*window, Ctrl::ProgressText); }
  /// Pumps with something that happens meanwhile.
  void PumpWhile(const std::function<void()>& happens, EscapeKey escape = EscapeKey::Cancels) {
    bool happened = false;
    QTimer::singleShot(0, &parent, [&] {
      happens();
      happened = true;
    });
    window->PeekAndPump(escape);
    EXPECT_TRUE(happened);
  }

  FakeHostApp host;
  QWidget parent;
  QLineEdit* edit = new QLineEdit;
  QLineEdit* list = new QLineEdit;
  std::unique_ptr<CProgressWnd> window = std::make_unique<CProgressWnd>(host);
};

TEST_F(CProgressWndTest, IsNamedProgressUntilItIsGivenATitle) {
  EXPECT_EQ(window->windowTitle(), "Progress");
  CreateWindow("Searching");
  EXPECT_EQ(window->windowTitle(), "Searching");
}

TEST_F(CProgressWndTest, StaysOnTopOfItsParentAndIsNotSeenUntilItHasAPosition) {
  CreateWindow();
  EXPECT_TRUE(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  EXPECT_EQ(window->parentWidget(), &parent);
  EXPECT_FALSE(window->isVisible());
  window->SetPos(0);
  EXPECT_TRUE(window->isVisible());
}

TEST_F(CProgressWndTest, WithoutAParentTheActiveWindowOwnsIt) {
  window->Create(nullptr, "Searching", BarLook::Smooth);
  EXPECT_EQ(window->parentWidget(), &parent);
}

TEST_F(CProgressWndTest, TheCancelButtonKeepsItsBlanks) {
  EXPECT_EQ(CancelButton().text().remove(u'&'), " Cancel ");
}

TEST_F(CProgressWndTest, TheTextIsShownAsItIs) {
  CreateWindow();
  window->SetText("Applying <b>R&D</b> ...");
  EXPECT_EQ(TextLine().text(), "Applying <b>R&D</b> ...");
  EXPECT_EQ(TextLine().textFormat(), Qt::PlainText);
  EXPECT_FALSE(TextLine().wordWrap());
}

TEST_F(CProgressWndTest, AssistiveToolsAreToldTheText) {
  CreateWindow();
  window->SetText("Applying parts.xml ...");
  const QAccessibleInterface* line = QAccessible::queryAccessibleInterface(&TextLine());
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->text(QAccessible::Name), "Applying parts.xml ...");
  EXPECT_EQ(line->role(), QAccessible::StaticText);
}

TEST_F(CProgressWndTest, TheTitleTellsTheShareOfTheRange) {
  CreateWindow("Scanning");
  window->SetRange(0, 300, 1);
  window->SetPos(100);
  EXPECT_EQ(window->windowTitle(), "Scanning [33%]");
  EXPECT_EQ(Bar().value(), 100);
}

TEST_F(CProgressWndTest, TheTitleChangesOnlyWithThePercentage) {
  CreateWindow("Scanning");
  window->SetRange(0, 1000, 1);
  window->SetPos(10);
  window->setWindowTitle("seen");
  window->SetPos(19);
  EXPECT_EQ(window->windowTitle(), "seen");
  window->SetPos(20);
  EXPECT_EQ(window->windowTitle(), "Scanning [2%]");
}

TEST_F(CProgressWndTest, TheLowerBoundIsNotTakenOffThePosition) {
  CreateWindow("Scanning");
  window->SetRange(100, 200, 1);
  window->SetPos(150);
  EXPECT_EQ(window->windowTitle(), "Scanning [150%]");
  EXPECT_EQ(Bar().value(), 150);
}

TEST_F(CProgressWndTest, ARangeOfNothingNeverChangesTheTitle) {
  CreateWindow("Scanning");
  window->SetRange(0, 0, 1);
  window->SetPos(0);
  window->SetPos(7);
  EXPECT_EQ(window->windowTitle(), "Scanning");
  EXPECT_LT(Bar().minimum(), Bar().maximum()) << "or it would move without end";
}

TEST_F(CProgressWndTest, AShareOfTwoThousandMillionIsTold) {
  CreateWindow("Scanning");
  window->SetRange(0, 2000000000, 1);
  window->SetPos(1500000000);
  EXPECT_EQ(window->windowTitle(), "Scanning [75%]");
}

TEST_F(CProgressWndTest, PositionsAndStepsReturnThePositionBefore) {
  CreateWindow();
  window->SetRange(0, 100, 5);
  EXPECT_EQ(window->SetPos(40), 0);
  EXPECT_EQ(window->Step(), 40);
  EXPECT_EQ(window->Step(), 45);
  EXPECT_EQ(Bar().value(), 50);
}

TEST_F(CProgressWndTest, APositionBehindTheRangeFillsTheBar) {
  CreateWindow();
  window->SetRange(0, 10, 1);
  window->SetPos(12);
  EXPECT_EQ(Bar().value(), 10);
}

TEST_F(CProgressWndTest, ABarOfBlocksGrowsByTwentiethsOfTheRange) {
  CreateWindow("Scanning", BarLook::Blocks);
  window->SetRange(0, 200, 1);
  window->SetPos(19);
  EXPECT_EQ(Bar().value(), 10);
  window->SetPos(20);
  EXPECT_EQ(Bar().value(), 20);
}

TEST_F(CProgressWndTest, ClearEmptiesTheTextAndTakesTheCancelBack) {
  CreateWindow();
  window->SetText("Reading File...");
  window->SetPos(50);
  window->Cancel();
  window->Clear();
  EXPECT_EQ(TextLine().text(), "");
  EXPECT_EQ(Bar().value(), 0);
  EXPECT_FALSE(window->Cancelled());
  EXPECT_EQ(window->SetPos(1), 0);
  EXPECT_TRUE(window->isVisible());
}

TEST_F(CProgressWndTest, AModalWindowDisablesItsParentUntilItGoes) {
  ShowModal();
  EXPECT_FALSE(parent.isEnabled());
  EXPECT_TRUE(window->isEnabled());
  EXPECT_TRUE(CancelButton().isEnabled());
  window.reset();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&parent));
  EXPECT_TRUE(parent.isEnabled());
  EXPECT_TRUE(edit->isEnabled());
  EXPECT_TRUE(edit->hasFocus());
}

TEST_F(CProgressWndTest, WhatWasDisabledBeforeStaysDisabled) {
  ShowModal();
  window.reset();
  EXPECT_FALSE(list->isEnabled());
  parent.setEnabled(false);
  window = std::make_unique<CProgressWnd>(host);
  ShowModal();
  window.reset();
  EXPECT_FALSE(parent.isEnabled());
}

TEST_F(CProgressWndTest, AModalWindowTakesTheFocusAndItsButtonDoesNot) {
  ShowModal();
  EXPECT_TRUE(window->isActiveWindow());
  EXPECT_EQ(QApplication::focusWidget(), window.get());
  QTest::keyClick(window.get(), Qt::Key_Tab);
  QTest::keyClick(window.get(), Qt::Key_Space);
  EXPECT_EQ(QApplication::focusWidget(), window.get());
  EXPECT_FALSE(window->Cancelled());
}

TEST_F(CProgressWndTest, AClickOnTheButtonCancels) {
  ShowModal();
  PumpWhile([this] { QTest::mouseClick(&CancelButton(), Qt::LeftButton); });
  EXPECT_TRUE(window->Cancelled());
  EXPECT_FALSE(window->isVisible());
  EXPECT_TRUE(parent.isEnabled());
}

TEST_F(CProgressWndTest, TheButtonsLetterCancels) {
  ShowModal();
  PumpWhile([this] { QTest::keyClick(window.get(), Qt::Key_C, Qt::AltModifier); });
  EXPECT_TRUE(QTest::qWaitFor([this] { return window->Cancelled(); }));
}

TEST_F(CProgressWndTest, EscapeCancels) {
  ShowModal();
  PumpWhile([this] { QTest::keyClick(window.get(), Qt::Key_Escape); });
  EXPECT_TRUE(window->Cancelled());
  EXPECT_TRUE(parent.isEnabled());
}

TEST_F(CProgressWndTest, EscapeCancelsOnlyWhenTheCallerSaysSo) {
  ShowModal();
  PumpWhile([this] { QTest::keyClick(window.get(), Qt::Key_Escape); }, EscapeKey::Ignored);
  EXPECT_FALSE(window->Cancelled());
  EXPECT_TRUE(window->isVisible());
}

TEST_F(CProgressWndTest, EscapeInTheParentCancelsAWindowThatIsNotModal) {
  CreateWindow();
  window->SetPos(0);
  PumpWhile([this] { QTest::keyClick(edit, Qt::Key_Escape); });
  EXPECT_TRUE(window->Cancelled());
}

TEST_F(CProgressWndTest, TheCloseBoxCancels) {
  ShowModal();
  PumpWhile([this] { window->windowHandle()->close(); });
  EXPECT_TRUE(window->Cancelled());
  EXPECT_FALSE(window->isVisible());
  EXPECT_TRUE(parent.isEnabled());
}

TEST_F(CProgressWndTest, AModalWindowKeepsWindowManagersFromTheParent) {
  ShowModal();
  EXPECT_EQ(window->windowModality(), Qt::WindowModal);
  EXPECT_EQ(QApplication::activeModalWidget(), window.get());
}

TEST_F(CProgressWndTest, NothingReachesTheParentBeforeTheWorkStops) {
  ShowModal();
  bool enabledMeanwhile = true;
  PumpWhile([&] {
    QTest::mouseClick(&CancelButton(), Qt::LeftButton);
    enabledMeanwhile = parent.isEnabled();
  });
  EXPECT_FALSE(enabledMeanwhile);
  EXPECT_TRUE(parent.isEnabled());
}

TEST_F(CProgressWndTest, ACancelledWindowPumpsNothingAndStaysAway) {
  ShowModal();
  window->Cancel();
  bool happened = false;
  QTimer::singleShot(0, &parent, [&] { happened = true; });
  window->PeekAndPump(EscapeKey::Cancels);
  EXPECT_FALSE(happened);
  window->Step();
  EXPECT_FALSE(window->isVisible());
}

TEST_F(CProgressWndTest, PumpingEndsWithTheRoundThatCancels) {
  CreateWindow();
  bool later = false;
  QTimer::singleShot(0, window.get(), [this, &later] {
    QTest::mouseClick(&CancelButton(), Qt::LeftButton);
    QTimer::singleShot(0, window.get(), [&later] { later = true; });
  });
  window->PeekAndPump(EscapeKey::Cancels);
  EXPECT_TRUE(window->Cancelled());
  EXPECT_FALSE(later);
}

TEST_F(CProgressWndTest, CancelBringsTheParentToTheFront) {
  ShowModal();
  EXPECT_FALSE(parent.isActiveWindow());
  window->Cancel();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&parent));
}

TEST_F(CProgressWndTest, QuittingWhilePumpingEndsTheApplicationsLoop) {
  ShowModal();
  QTimer::singleShot(0, &parent, [this] {
    PumpWhile([] { QCoreApplication::exit(7); });
    window->PeekAndPump(EscapeKey::Cancels);
  });
  EXPECT_EQ(QApplication::exec(), 7);
}

TEST_F(CProgressWndTest, ItsPositionIsStoredUnderNamesOfNoSection) {
  CreateWindow();
  window->SetPos(0);
  window->move(30, 40);
  window.reset();
  EXPECT_EQ(host.written, std::vector<std::string>({"PROGRESS_X", "PROGRESS_Y"}));
  EXPECT_EQ(host.GetProfileInt("", "PROGRESS_X", -1), 30);
  EXPECT_EQ(host.GetProfileInt("", "PROGRESS_Y", -1), 40);
}

TEST_F(CProgressWndTest, ItsPositionIsStoredOnceAlsoWhenCancelled) {
  ShowModal();
  window->move(30, 40);
  window->Cancel();
  window.reset();
  EXPECT_EQ(host.written.size(), 2U);
  EXPECT_EQ(host.GetProfileInt("", "PROGRESS_X", -1), 30);
}

TEST_F(CProgressWndTest, ItsPositionIsNotStoredWhenNobodyWantsIt) {
  CreateWindow();
  window->SetSavePosition(false);
  window.reset();
  EXPECT_TRUE(host.written.empty());
}

TEST_F(CProgressWndTest, AWindowThatWasNeverMadeStoresNothing) {
  window.reset();
  EXPECT_TRUE(host.written.empty());
}

TEST_F(CProgressWndTest, AStoredPositionIsTakenUpWithoutChangingTheSize) {
  CreateWindow();
  const QSize size = window->size();
  host.WriteProfileInt("", "PROGRESS_X", 0);
  host.WriteProfileInt("", "PROGRESS_Y", 77);
  CProgressWnd second(host);
  second.Create(&parent, "Scanning", BarLook::Smooth);
  EXPECT_EQ(second.pos(), QPoint(0, 77));
  EXPECT_EQ(second.size(), size);
}

TEST_F(CProgressWndTest, APositionOffTheScreenCentresTheWindow) {
  const QSize screen = QGuiApplication::primaryScreen()->geometry().size();
  for (const QPoint& stored :
       {QPoint(-1, -1), QPoint(screen.width(), 10), QPoint(10, -1), QPoint(10, screen.height())}) {
    host.WriteProfileInt("", "PROGRESS_X", stored.x());
    host.WriteProfileInt("", "PROGRESS_Y", stored.y());
    CProgressWnd centred(host);
    centred.Create(&parent, "Scanning", BarLook::Smooth);
    EXPECT_EQ(centred.geometry().center(), parent.frameGeometry().center());
  }
}

TEST_F(CProgressWndTest, TakesLongTextsWithoutGrowing) {
  CreateWindow();
  window->SetPos(0);
  const QSize size = window->size();
  window->SetText(QString(100000, u'x'));
  Settle();
  EXPECT_EQ(window->size(), size);
}

TEST_F(CProgressWndTest, Picture) {
  CreateWindow("Scanning placement.txt -- Progress: ");
  window->SetText("Applying Template File placement.xml...");
  window->SetRange(0, 1000, 1);
  window->SetPos(640);
  EXPECT_TRUE(Screenshot(*window, "progress"));
}

TEST_F(CProgressWndTest, PictureOfALongTextEndsInDots) {
  CreateWindow();
  window->SetText("Applying Template File " + QString(200, u'n') + ".xml...");
  window->SetPos(0);
  EXPECT_TRUE(Screenshot(*window, "progress-long-text"));
}

}  // namespace
}  // namespace bomparser::test
