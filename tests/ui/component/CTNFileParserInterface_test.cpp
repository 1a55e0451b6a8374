#include "entry/component/CTNFileParserInterface.h"

#include "tests/ui/component/ComponentTest.h"

#include <QCoreApplication>
#include <QHelpEvent>
#include <QImage>
#include <QLineEdit>
#include <clocale>
#include <type_traits>

namespace bomparser::test {
namespace {

constexpr const char* kFixedPath = "D:\\TNHOME\\TN-VELLOC.HLP";

// A class without data of which no host can make or destroy an object.
static_assert(std::is_polymorphic_v<CTNFileParserInterface>);
static_assert(sizeof(CTNFileParserInterface) == sizeof(void*));
static_assert(std::has_virtual_destructor_v<CTNFileParserInterface>);
static_assert(!std::is_destructible_v<CTNFileParserInterface>);
static_assert(!std::is_default_constructible_v<CTNFileParserInterface>);
static_assert(std::is_copy_assignable_v<CTNFileParserInterface>);

class CTNFileParserInterfaceTest : public ComponentTest {
 protected:
  void LeaveNoDisplay() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
      environment.Unset(name);
  }
};

TEST_F(CTNFileParserInterfaceTest, ACallThatTheUserCancelsAtOnceReturnsOneAndKeepsTheText) {
  MakeApplication();
  EXPECT_EQ(Display([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }), 1);
  EXPECT_EQ(text, "kept");
  EXPECT_TRUE(host.written.empty());
}

TEST_F(CTNFileParserInterfaceTest, ACallThatEndsByExitReturnsOneAndKeepsTheText) {
  MakeApplication();
  EXPECT_EQ(Display([](QDialog& dialog) { DialogUser::Press(dialog, Ctrl::Exit); }), 1);
  EXPECT_EQ(text, "kept");
  EXPECT_FALSE(host.written.empty());
}

TEST_F(CTNFileParserInterfaceTest, TheDialogIsCaptionedBomParser) {
  MakeApplication();
  Display([](QDialog& dialog) { EXPECT_EQ(dialog.windowTitle(), "BOM Parser"); });
}

TEST_F(CTNFileParserInterfaceTest, AfterTheCallTheHelpPathIsExactlyWhatItWasBefore) {
  MakeApplication();
  for (const std::string& path :
       {std::string("C:\\HOST\\HOST.HLP"), std::string("/usr/share/host/index.html"),
        std::string("\xFF no text \0 at all", 16), std::string()}) {
    host.helpFilePath = path;
    Display();
    EXPECT_EQ(host.helpFilePath, path);
    Display([](QDialog& dialog) { DialogUser::Press(dialog, Ctrl::Exit); });
    EXPECT_EQ(host.helpFilePath, path);
  }
}

TEST_F(CTNFileParserInterfaceTest, AHelpPathThatChangesMeanwhileIsPutBackAllTheSame) {
  MakeApplication();
  host.helpFilePath = "before";
  Display([this](QDialog&) { host.helpFilePath = "meanwhile"; });
  EXPECT_EQ(host.helpFilePath, "before");
}

TEST_F(CTNFileParserInterfaceTest, WhileTheDialogIsOpenTheHelpPathIsTheFixedOne) {
  MakeApplication();
  std::string whileOpen;
  Display([&](QDialog& dialog) {
    whileOpen = host.helpFilePath;
    auto* const open = FindControl<QAbstractButton>(dialog, Ctrl::OpenInput);
    const QPoint point = open->mapToGlobal(open->rect().center());
    QHelpEvent pointedAt(QEvent::WhatsThis, dialog.mapFromGlobal(point), point);
    QApplication::sendEvent(&dialog, &pointedAt);
  });
  EXPECT_EQ(whileOpen, kFixedPath);
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].topicFile, std::string(kFixedPath) + "::/context.txt");
  EXPECT_EQ(host.help[0].pairs.front(), HelpPair(3005, 65536 + 3005));
}

TEST_F(CTNFileParserInterfaceTest, TheHelpButtonAsksTheHostForTheManual) {
  MakeApplication();
  Display([](QDialog& dialog) { DialogUser::Press(dialog, Ctrl::Help); });
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].command, HelpCommand::Contents);
}

TEST_F(CTNFileParserInterfaceTest, ACallWhileTheDialogIsOpenReturnsOneAtOnce) {
  MakeApplication();
  int returned = 0;
  std::string helpPath;
  Display([&](QDialog& dialog) {
    std::string other = "other";
    returned = display(other);
    EXPECT_EQ(other, "other");
    helpPath = host.helpFilePath;
    EXPECT_TRUE(dialog.isVisible());
  });
  EXPECT_EQ(returned, 1);
  EXPECT_EQ(helpPath, kFixedPath);
  EXPECT_EQ(host.helpFilePath, "manual.hlp");
  EXPECT_EQ(Display(), 1) << "the dialog can be opened again";
}

TEST_F(CTNFileParserInterfaceTest, WhatTheHostNamesIsLoadedAndForgottenByTheNextCall) {
  MakeApplication();
  const auto titleShown = [this] {
    QString title;
    Display([&title](QDialog& dialog) {
      title = FindControl<QLineEdit>(dialog, Ctrl::TemplateTitle)->text();
    });
    return title;
  };
  const QString empty = titleShown();
  host.profile["Start/TEMPLATE_FILE"] = BOMPARSER_SOURCE_DIR "/examples/placement/template.xml";
  const QString loaded = titleShown();
  EXPECT_NE(loaded, empty);
  host.profile.erase("Start/TEMPLATE_FILE");
  EXPECT_EQ(titleShown(), empty);
}

TEST_F(CTNFileParserInterfaceTest, ItsPicturesAreFound) {
  MakeApplication();
  Display([](QDialog& dialog) {
    const QImage icon = dialog.windowIcon().pixmap(QSize(16, 16), 1.0).toImage();
    ASSERT_FALSE(icon.isNull());
    EXPECT_NE(icon.pixel(8, 8), 0U);
  });
}

TEST_F(CTNFileParserInterfaceTest, AHostWithoutApplicationObjectCanCallTwiceInARow) {
  for (int call = 0; call < 2; ++call) {
    EXPECT_EQ(Display([](QDialog& dialog) { EXPECT_EQ(dialog.windowTitle(), "BOM Parser"); }), 1);
    EXPECT_EQ(QCoreApplication::instance(), nullptr);
    EXPECT_EQ(host.helpFilePath, "manual.hlp");
  }
}

TEST_F(CTNFileParserInterfaceTest, AHostWithoutApplicationObjectKeepsItsLocale) {
  environment.Set("LC_ALL", "C.UTF-8");
  ASSERT_STREQ(std::setlocale(LC_ALL, "C"), "C");
  Display();
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

TEST_F(CTNFileParserInterfaceTest, AnApplicationObjectThatShowsNoWindowsEndsTheCall) {
  int count = 1;
  char name[] = "host";
  char* arguments[] = {name, nullptr};
  const QCoreApplication withoutWindows(count, arguments);
  EXPECT_EQ(display(text), 1);
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(host.helpFilePath, "manual.hlp");
}

TEST_F(CTNFileParserInterfaceTest, WithoutADisplayTheCallEnds) {
  LeaveNoDisplay();
  EXPECT_EQ(display(text), 1);
  EXPECT_EQ(QCoreApplication::instance(), nullptr);
}

TEST_F(CTNFileParserInterfaceTest, ADisplayThatCannotBeOpenedEndsTheCallAndNotTheProcess) {
  LeaveNoDisplay();
  environment.Set("DISPLAY", ":64999");
  EXPECT_EQ(display(text), 1);
  environment.Set("QT_QPA_PLATFORM", "no-such-platform");
  EXPECT_EQ(display(text), 1);
  environment.Set("QT_QPA_PLATFORM", "offscreen");
  EXPECT_EQ(Display(), 1) << "a display that comes later serves";
}

}  // namespace
}  // namespace bomparser::test
