#include "host/DesktopHost.h"

#include "tests/ui/host/ManualFolder.h"
#include "tests/ui/support/UiTest.h"
#include "ui/controls/CTNDlg.h"

#include <QDialog>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTimer>
#include <QVBoxLayout>
#include <QWhatsThis>
#include <QWindow>
#include <functional>

namespace bomparser::test {
namespace {

class DesktopHostTest : public ManualFolder {
 protected:
  QString SettingsFile() const { return QString::fromStdString(PathOf("settings/bomparser.ini")); }

  /// The window of the manual; null when it is not open.
  static QWidget* HelpWindowShown() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->isVisible() && FindControl<QTextBrowser>(*window, Ctrl::ManualText) != nullptr)
        return window;
    }
    return nullptr;
  }
  static QTextBrowser& Text() {
    return *FindControl<QTextBrowser>(*HelpWindowShown(), Ctrl::ManualText);
  }
  static std::string ShownUrl() {
    return HelpWindowShown() == nullptr ? "(closed)" : Text().source().toString().toStdString();
  }
  static void Press(Ctrl number) { FindControl<QPushButton>(*HelpWindowShown(), number)->click(); }
  /// The open bubble's text; empty for none.
  static bool BubbleIsOpen() {
    Settle();
    for (const QWidget* window : QApplication::topLevelWidgets()) {
      if (window->isVisible() && window->inherits("QWhatsThat")) return true;
    }
    return false;
  }
  static void CloseBubble() {
    QWhatsThis::hideText();
    Settle();
  }

  DesktopHost host{SettingsFile(), ManualPath(), {"/files/a.xml", "/files/b \xFF.txt"}};
};

TEST_F(DesktopHostTest, TheCommandLineAnswersWhatIsOpenedAtTheStart) {
  EXPECT_EQ(host.GetProfileString("Start", "TEMPLATE_FILE", "x"), "/files/a.xml");
  EXPECT_EQ(host.GetProfileString("Start", "INPUT_FILE", "x"), "/files/b \xFF.txt");
  EXPECT_EQ(host.GetProfileString("Start", "OTHER", "x"), "x");
  EXPECT_EQ(host.GetProfileString("BOM Parser", "TEMPLATE_FILE", "x"), "x");
}

TEST_F(DesktopHostTest, WhatIsOpenedAtTheStartIsNeverStored) {
  EXPECT_FALSE(host.WriteProfileString("Start", "TEMPLATE_FILE", "/files/c.xml"));
  EXPECT_FALSE(host.WriteProfileInt("Start", "INPUT_FILE", 1));
  EXPECT_EQ(host.GetProfileString("Start", "TEMPLATE_FILE", "x"), "/files/a.xml");
  EXPECT_EQ(BytesOf("settings/bomparser.ini"), "(none)");
}

TEST_F(DesktopHostTest, WhatTheSettingsFileSaysAboutTheStartIsNotAsked) {
  MakeFolder("settings");
  WriteFile("settings/bomparser.ini", "[Start]\nTEMPLATE_FILE=/stored.xml\n");
  const DesktopHost bare(SettingsFile(), ManualPath(), {});
  EXPECT_EQ(bare.GetProfileString("Start", "TEMPLATE_FILE", ""), "");
}

TEST_F(DesktopHostTest, SettingsAreKeptInTheFile) {
  EXPECT_TRUE(host.WriteProfileInt("BOM Parser", "TAB_STOP", 4));
  EXPECT_TRUE(host.WriteProfileString("BOM Parser", "INPUT_FILE_PATH", "/in"));
  EXPECT_EQ(BytesOf("settings/bomparser.ini"), "[BOM Parser]\nINPUT_FILE_PATH=/in\nTAB_STOP=4\n");
  const DesktopHost next(SettingsFile(), ManualPath(), {});
  EXPECT_EQ(next.GetProfileInt("BOM Parser", "TAB_STOP", 8), 4);
}

TEST_F(DesktopHostTest, TheHelpPathIsTheManualsIndexUntilItIsSet) {
  EXPECT_EQ(host.GetHelpFilePath(), PathOf("index.html"));
  host.SetHelpFilePath("D:\\X.HLP");
  EXPECT_EQ(host.GetHelpFilePath(), "D:\\X.HLP");
  EXPECT_EQ(BytesOf("settings/bomparser.ini"), "(none)");
}

/// Help as a dialog asks for it, while it is open and holds up all other windows.
class HelpFromDialogTest : public DesktopHostTest {
 protected:
  /// Opens the dialog for this work, and waits until it is closed.
  void WhileOpen(const std::function<void()>& work) {
    layout->addWidget(load);
    layout->addWidget(close);
    layout->addWidget(unknown);
    SetControlId(*load, Ctrl::LoadFromFile);
    SetControlId(*close, Ctrl::Help);
    SetControlId(*unknown, Ctrl::CreateNew);
    QTimer::singleShot(0, &dialog, [&] {
      Settle();
      work();
      dialog.reject();
    });
    dialog.exec();
    Settle();
  }
  void PointAt(const QWidget& control) {
    const QPoint point = control.mapToGlobal(control.rect().center());
    QHelpEvent event(QEvent::WhatsThis, dialog.mapFromGlobal(point), point);
    QApplication::sendEvent(&dialog, &event);
  }
  void PressF1In(QWidget& control) {
    control.setFocus();
    QTest::keyClick(&control, Qt::Key_F1);
    Settle();
  }
  void AskForContents(QWidget* control) {
    HelpRequest request;
    request.control = control;
    host.ShowHelp(request);
    Settle();
  }

  CTNDlg dialog{host, DialogId::Main};
  QVBoxLayout* layout = new QVBoxLayout(&dialog);
  QPushButton* load = new QPushButton("Load");
  QPushButton* close = new QPushButton("Help");
  QPushButton* unknown = new QPushButton("New");
};

TEST_F(HelpFromDialogTest, ContentsOpenThePageOfTheWindow) {
  WhileOpen([this] {
    AskForContents(load);
    EXPECT_EQ(ShownUrl(), PageUrl("window-702.html"));
    AskForContents(nullptr);
    EXPECT_EQ(ShownUrl(), PageUrl("index.html"));
  });
}

TEST_F(HelpFromDialogTest, TheHelpPathDoesNotMatter) {
  host.SetHelpFilePath("D:\\TNHOME\\TN-VELLOC.HLP");
  WhileOpen([this] {
    AskForContents(&dialog);
    EXPECT_EQ(ShownUrl(), PageUrl("window-702.html"));
  });
}

TEST_F(HelpFromDialogTest, APointedAtControlGetsABubble) {
  WhileOpen([this] {
    for (QWidget* control : {load, close}) {
      PointAt(*control);
      EXPECT_TRUE(BubbleIsOpen());
      CloseBubble();
      EXPECT_FALSE(BubbleIsOpen());
    }
    EXPECT_EQ(ShownUrl(), "(closed)");
  });
}

TEST_F(HelpFromDialogTest, ARightClickedControlGetsABubble) {
  WhileOpen([this] {
    RightClick(dialog, load->geometry().center());
    EXPECT_TRUE(BubbleIsOpen());
    CloseBubble();
    EXPECT_EQ(ShownUrl(), "(closed)");
  });
}

TEST_F(HelpFromDialogTest, F1OpensTheManualAtTheControl) {
  WhileOpen([this] {
    PressF1In(*load);
    EXPECT_EQ(ShownUrl(), PageUrl("window-702.html") + "#control-3006");
    EXPECT_FALSE(BubbleIsOpen());
    PressF1In(*close);
    EXPECT_EQ(ShownUrl(), PageUrl("window-702.html") + "#control-9");
  });
}

TEST_F(HelpFromDialogTest, AControlThatTheManualDoesNotKnowOpensTheWindowsPage) {
  WhileOpen([this] {
    PointAt(*unknown);
    Settle();
    EXPECT_FALSE(BubbleIsOpen());
    EXPECT_EQ(ShownUrl(), PageUrl("window-702.html"));
    AskForContents(nullptr);
    PressF1In(*unknown);
    EXPECT_EQ(ShownUrl(), PageUrl("window-702.html"));
  });
}

/// A click as the window system reports it: a window that is held up does not get it.
void ClickInWindow(QWidget& control) {
  QWidget* const window = control.window();
  QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                    control.mapTo(window, control.rect().center()));
  Settle();
}

TEST_F(HelpFromDialogTest, TheManualCanBeUsedWhileTheDialogIsOpen) {
  WhileOpen([this] {
    AskForContents(load);
    ClickInWindow(*FindControl<QPushButton>(*HelpWindowShown(), Ctrl::ManualContents));
    EXPECT_EQ(ShownUrl(), PageUrl("index.html"));
    EXPECT_TRUE(dialog.isVisible());
  });
}

TEST_F(HelpFromDialogTest, TheManualCanBeUsedWhileDialogsAboveComeAndGo) {
  WhileOpen([this] {
    AskForContents(load);
    QWidget* const contents = FindControl<QPushButton>(*HelpWindowShown(), Ctrl::ManualContents);
    {
      QDialog above(&dialog);
      QTimer::singleShot(0, &above, [&] {
        Settle();
        ClickInWindow(*contents);
        EXPECT_EQ(ShownUrl(), PageUrl("index.html"));
        AskForContents(load);
        above.reject();
      });
      above.exec();
    }
    Settle();
    ASSERT_EQ(ShownUrl(), PageUrl("window-702.html")) << "it stays open";
    ClickInWindow(*contents);
    EXPECT_EQ(ShownUrl(), PageUrl("index.html"));
  });
}

TEST_F(HelpFromDialogTest, AHeldUpWindowGetsNoClicks) {
  // The tests above can fail only if this is so.
  QPushButton other("other");
  other.show();
  bool clicked = false;
  QObject::connect(&other, &QPushButton::clicked, [&clicked] { clicked = true; });
  WhileOpen([&] { ClickInWindow(other); });
  EXPECT_FALSE(clicked);
  ClickInWindow(other);
  EXPECT_TRUE(clicked);
}

class HelpWindowTest : public DesktopHostTest {
 protected:
  HelpWindowTest() {
    host.ShowHelp({});
    // Keys of a window work once it is the active one.
    EXPECT_TRUE(QTest::qWaitForWindowActive(HelpWindowShown()));
  }
  void Open(const std::string& page) const {
    Text().setSource(QUrl(QString::fromStdString(PageUrl(page))));
  }
  static QLineEdit& FindWhat() {
    return *FindControl<QLineEdit>(*HelpWindowShown(), Ctrl::FindWhat);
  }
};

TEST_F(HelpWindowTest, BackAndForwardFollowTheVisitedPages) {
  Open("window-702.html");
  Press(Ctrl::ManualBack);
  EXPECT_EQ(ShownUrl(), PageUrl("index.html"));
  Press(Ctrl::ManualForward);
  EXPECT_EQ(ShownUrl(), PageUrl("window-702.html"));
  QTest::keyClick(&Text(), Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(ShownUrl(), PageUrl("index.html"));
  QTest::keyClick(&Text(), Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(ShownUrl(), PageUrl("window-702.html"));
  QTest::keyClick(&Text(), Qt::Key_Home, Qt::AltModifier);
  EXPECT_EQ(ShownUrl(), PageUrl("index.html"));
}

TEST_F(HelpWindowTest, ButtonsAreOnWhereTheyLeadSomewhere) {
  const auto isOn = [](Ctrl number) {
    return FindControl<QPushButton>(*HelpWindowShown(), number)->isEnabled();
  };
  EXPECT_FALSE(isOn(Ctrl::ManualBack));
  EXPECT_FALSE(isOn(Ctrl::ManualForward));
  Open("window-702.html");
  EXPECT_TRUE(isOn(Ctrl::ManualBack));
  Press(Ctrl::ManualBack);
  EXPECT_FALSE(isOn(Ctrl::ManualBack));
  EXPECT_TRUE(isOn(Ctrl::ManualForward));
}

TEST_F(HelpWindowTest, AnAnchorIsScrolledTo) {
  QWidget main;
  SetDialogId(main, DialogId::Main);
  HelpRequest request;
  request.command = HelpCommand::HelpKey;
  request.pairs = {{3006, 0}};
  request.control = &main;
  request.byKey = true;
  host.ShowHelp(request);
  Settle();
  EXPECT_EQ(ShownUrl(), PageUrl("window-702.html") + "#control-3006");
  EXPECT_GT(Text().verticalScrollBar()->value(), 0);
}

TEST_F(HelpWindowTest, FindGoesThroughAllPlacesAndOnAtTheOtherEnd) {
  Open("window-744.html");
  Press(Ctrl::ManualFind);
  ASSERT_TRUE(FindWhat().isVisible());
  FindWhat().setText("lines");
  const auto find = [](Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(&FindWhat(), Qt::Key_Return, modifiers);
    return Text().textCursor().selectionStart();
  };
  const int first = find();
  const int second = find();
  EXPECT_GT(second, first);
  EXPECT_EQ(find(), first);
  EXPECT_EQ(find(Qt::ShiftModifier), second);
  FindWhat().setText("nowhere");
  EXPECT_EQ(find(), second);
  EXPECT_EQ(FindControl<QLabel>(*HelpWindowShown(), Ctrl::FindOutcome)->text(), "Not found");
}

TEST_F(HelpWindowTest, EscapeClosesTheLineForFindingFirstAndThenTheWindow) {
  QTest::keyClick(&Text(), Qt::Key_F, Qt::ControlModifier);
  ASSERT_TRUE(FindWhat().isVisible());
  QTest::keyClick(&FindWhat(), Qt::Key_Escape);
  ASSERT_NE(HelpWindowShown(), nullptr);
  EXPECT_FALSE(FindWhat().isVisible());
  QTest::keyClick(&Text(), Qt::Key_Escape);
  EXPECT_EQ(HelpWindowShown(), nullptr);
}

TEST_F(HelpWindowTest, TheSizeIsKeptWhetherTheWindowIsClosedOrTheProgramEnds) {
  HelpWindowShown()->resize(500, 400);
  HelpWindowShown()->close();
  EXPECT_EQ(host.GetProfileInt("Help Window", "WIDTH", 0), 500);
  {
    DesktopHost next(SettingsFile(), ManualPath(), {});
    next.ShowHelp({});
    EXPECT_EQ(HelpWindowShown()->size(), QSize(500, 400));
    HelpWindowShown()->resize(510, 410);
  }
  EXPECT_EQ(host.GetProfileInt("Help Window", "WIDTH", 0), 510);
  EXPECT_EQ(host.GetProfileInt("Help Window", "HEIGHT", 0), 410);
}

TEST_F(HelpWindowTest, AnUnusableSizeIsNotTaken) {
  HelpWindowShown()->close();
  host.WriteProfileInt("Help Window", "WIDTH", -5);
  host.WriteProfileInt("Help Window", "HEIGHT", 1'000'000);
  DesktopHost next(SettingsFile(), ManualPath(), {});
  next.ShowHelp({});
  EXPECT_GE(HelpWindowShown()->width(), 200);
  EXPECT_LE(HelpWindowShown()->height(), HelpWindowShown()->screen()->availableSize().height());
}

TEST_F(HelpWindowTest, APageThatIsNotThereIsTold) {
  DesktopHost bare(SettingsFile(), ManualPath() + "/missing", {});
  HelpWindowShown()->close();
  bare.ShowHelp({});
  EXPECT_EQ(Text().toPlainText().toStdString(),
            "The manual is not installed: there is no page " + PathOf("missing/index.html") + ".");
}

TEST_F(HelpWindowTest, LinksCanBeReadOnDarkPaperToo) {
  const auto linkLightness = [] {
    // The first page begins with a row of links.
    const QTextBlock first = Text().document()->begin();
    for (auto part = first.begin(); !part.atEnd(); ++part) {
      if (part.fragment().charFormat().isAnchor())
        return part.fragment().charFormat().foreground().color().lightness();
    }
    return -1;
  };
  const QString pages = QStringLiteral(BOMPARSER_SOURCE_DIR "/docs/manual/");
  Text().setSource(QUrl::fromLocalFile(pages + QStringLiteral("index.html")));
  const int onWhite = linkLightness();
  EXPECT_GE(onWhite, 0);
  EXPECT_LE(onWhite, 160);
  QPalette dark = QApplication::palette();
  dark.setColor(QPalette::Base, Qt::black);
  dark.setColor(QPalette::Text, Qt::white);
  HelpWindowShown()->setPalette(dark);
  Settle();
  EXPECT_GT(linkLightness(), 160);
}

TEST_F(HelpWindowTest, PictureOfTheShippedManual) {
  const QString pages = QStringLiteral(BOMPARSER_SOURCE_DIR "/docs/manual/");
  FakeHostApp profile;
  HelpWindow manual(profile, QUrl::fromLocalFile(pages + QStringLiteral("index.html")));
  for (const char* page : {"index", "tutorial", "window-702", "fields", "troubleshooting"}) {
    manual.ShowPage(QUrl::fromLocalFile(pages + QLatin1String(page) + QStringLiteral(".html")));
    manual.resize(900, 700);
    const auto* const text = manual.findChild<QTextBrowser*>();
    EXPECT_EQ(text->horizontalScrollBar()->maximum(), 0) << page;
    EXPECT_TRUE(Screenshot(manual, std::string("shipped-manual-") + page));
  }
}

TEST_F(HelpWindowTest, PictureOfTheManual) {
  Open("window-744.html");
  Press(Ctrl::ManualFind);
  EXPECT_TRUE(Screenshot(*HelpWindowShown(), "manual"));
}

}  // namespace
}  // namespace bomparser::test
