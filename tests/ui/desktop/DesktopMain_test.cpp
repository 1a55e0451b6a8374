#include "tests/ui/desktop/DesktopTest.h"

#include <QLineEdit>
#include <QProcess>
#include <QTextBrowser>
#include <algorithm>
#include <filesystem>

namespace bomparser::test {
namespace {

using DesktopMainTest = DesktopTest;

TEST_F(DesktopMainTest, OpensTheDialogAndEndsWithZero) {
  EXPECT_EQ(Open({},
                 [](QDialog& dialog) {
                   EXPECT_EQ(dialog.windowTitle(), "BOM Parser");
                   EXPECT_EQ(QApplication::applicationName(), "bomparser");
                   EXPECT_EQ(QGuiApplication::desktopFileName(), "bomparser");
                   EXPECT_FALSE(QApplication::windowIcon().isNull());
                 }),
            0);
  EXPECT_TRUE(refusals.empty());
  EXPECT_EQ(Names(), std::vector<std::string>()) << "the close box stores nothing";
}

TEST_F(DesktopMainTest, ExitStoresTheSettingsInTheConfigurationFolder) {
  EXPECT_EQ(Open({}, [](QDialog& dialog) { DialogUser::Press(dialog, Ctrl::Exit); }), 0);
  const std::string settings = BytesOf("bomparser/bomparser.ini");
  EXPECT_TRUE(settings.starts_with("[BOM Parser]\n")) << settings;
  EXPECT_NE(settings.find("\nTAB_STOP=8\n"), std::string::npos) << settings;
  EXPECT_EQ(settings.find("[Start]"), std::string::npos) << settings;
}

TEST_F(DesktopMainTest, PreloadsTheFilesThatAreNamed) {
  const std::filesystem::path examples = BOMPARSER_SOURCE_DIR "/examples/placement";
  std::filesystem::copy(examples, PathOf("placement"));
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(Folder());
  EXPECT_EQ(Open({"--template", "placement/template.xml", "--input", "placement/input.txt"},
                 [this](QDialog& dialog) {
                   const auto text = [&dialog](Ctrl number) {
                     return FindControl<QLineEdit>(dialog, number)->text().toStdString();
                   };
                   EXPECT_EQ(text(Ctrl::TemplateFile), PathOf("placement/template.xml"));
                   EXPECT_EQ(text(Ctrl::InputFile), PathOf("placement/input.txt"));
                 }),
            0);
  std::filesystem::current_path(before);
}

TEST_F(DesktopMainTest, TheHelpButtonOpensTheManual) {
  Open({}, [](QDialog& dialog) {
    DialogUser::Press(dialog, Ctrl::Help);
    Settle();
    const QWidgetList windows = QApplication::topLevelWidgets();
    EXPECT_TRUE(std::ranges::any_of(windows, [](const QWidget* window) {
      return window->isVisible() && FindControl<QTextBrowser>(*window, Ctrl::ManualText) != nullptr;
    }));
  });
}

/// The program itself, without anything that the tests' environment has.
class DesktopProgramTest : public TestFolder {
 protected:
  struct Outcome {
    int status;
    std::string output;
    std::string errors;
  };
  Outcome Run(const std::string& program, const QStringList& variables) const {
    QProcessEnvironment environment;
    environment.insert("HOME", QString::fromStdString(Folder()));
    environment.insert("PATH", qEnvironmentVariable("PATH"));
    for (const QString& variable : variables)
      environment.insert(variable.section('=', 0, 0), variable.section('=', 1));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QString::fromStdString(program), QStringList());
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
  }
  static std::string Refusal(const std::string& reason) {
    return "bomparser: the dialog cannot be opened: " + reason +
           "; these commands do without it: apply, find, show, check, learn (see bomparser "
           "--help)\n";
  }
};

TEST_F(DesktopProgramTest, WithoutADisplayOneLineSaysSo) {
  const Outcome outcome = Run(BOMPARSER_PROGRAM, {});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors, Refusal("there is no display"));
}

TEST_F(DesktopProgramTest, ADisplayThatCannotBeOpenedIsNamedInOneLine) {
  const Outcome outcome = Run(BOMPARSER_PROGRAM, {"DISPLAY=:64999", "QT_QPA_PLATFORM=xcb"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors, Refusal("could not connect to display :64999"));
}

TEST_F(DesktopProgramTest, AWindowSystemThatIsNotInstalledIsNamedInOneLine) {
  const Outcome outcome = Run(BOMPARSER_PROGRAM, {"QT_QPA_PLATFORM=nosuch"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, Refusal("Could not find the Qt platform plugin \"nosuch\" in \"\""));
}

TEST_F(DesktopProgramTest, WhereAModuleIsMissingOneLineNamesIt) {
  std::filesystem::copy_file(BOMPARSER_PROGRAM, PathOf("bomparser"));
  EXPECT_EQ(Run(PathOf("bomparser"), {"QT_QPA_PLATFORM=offscreen"}).errors,
            Refusal("libbomparser_desktop.so is not there"));
  std::filesystem::create_directories(PathOf("lib/bomparser"));
  std::filesystem::create_directories(PathOf("bin"));
  std::filesystem::rename(PathOf("bomparser"), PathOf("bin/bomparser"));
  std::filesystem::copy_file(BOMPARSER_DESKTOP, PathOf("lib/bomparser/libbomparser_desktop.so"));
  const Outcome outcome = Run(PathOf("bin/bomparser"), {"QT_QPA_PLATFORM=offscreen"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, Refusal("libbomparser_component.so is not there"));
}

}  // namespace
}  // namespace bomparser::test
