#include "ui/views/TextEditorLauncher.h"

#include "tests/support/ApplicationsFolder.h"
#include "tests/ui/support/UiTest.h"

#include <QTest>
#include <optional>
#include <string>
#include <unistd.h>

namespace bomparser::test {
namespace {

constexpr const char* kRoot = R"(C:\Windows)";
constexpr int kPatience = 20'000;  // Milliseconds; an editor that is started comes at once.

std::string Line(const std::optional<std::string>& command,
                 const std::string& path = R"(D:\a b.txt)", const std::string& systemRoot = kRoot) {
  return MakeEditorCommandLine(command, path, systemRoot);
}

TEST(EditorCommandLineTest, PathTakesThePlaceOfItsMark) {
  EXPECT_EQ(Line(R"(edit.exe "%1" /x)"), R"(EDIT.EXE "D:\A B.TXT" /X)");
}

TEST(EditorCommandLineTest, RegistryCommandWithoutMarkGetsThePathAppendedAfterABlank) {
  EXPECT_EQ(Line("edit.exe"), R"(EDIT.EXE D:\A B.TXT)");
}

TEST(EditorCommandLineTest, EveryMarkIsReplacedOnce) {
  EXPECT_EQ(Line("a %1 %1", "%1.txt"), "A %1.TXT %1.TXT");
}

TEST(EditorCommandLineTest, WholeLineIsInUpperCasePathIncluded) {
  EXPECT_EQ(Line("a %1", "straße-é.txt"), "A STRAßE-é.TXT");  // ASCII letters, in any locale.
}

TEST(EditorCommandLineTest, SystemRootIsFilledInAsItIsWritten) {
  EXPECT_EQ(Line(R"(%SystemRoot%\system32\notepad.exe %1)"),
            R"(C:\Windows\SYSTEM32\NOTEPAD.EXE D:\A B.TXT)");
  EXPECT_EQ(Line("%systemroot% %SYSTEMROOT% %1", "x", "%SYSTEMROOT%"),
            "%SYSTEMROOT% %SYSTEMROOT% X");
}

TEST(EditorCommandLineTest, SystemRootIsLookedForInThePathToo) {
  EXPECT_EQ(Line("a %1", "%SystemRoot%.txt"), R"(A C:\Windows.TXT)");
}

TEST(EditorCommandLineTest, WithoutSystemRootTheFallbackTakesThePathAsItIs) {
  EXPECT_EQ(Line(R"(%SystemRoot%\notepad.exe %1)", "a b.Txt", ""), "NOTEPAD.EXE a b.Txt");
  EXPECT_EQ(Line("edit.exe %1", "a b.Txt", ""), "EDIT.EXE A B.TXT");  // Nobody asks for it.
}

TEST(EditorCommandLineTest, CommandThatCannotBeReadIsTheFallback) {
  EXPECT_EQ(Line(std::nullopt, "a b.Txt"), "NOTEPAD.EXE a b.Txt");
  EXPECT_EQ(Line("", "a b.Txt"), "NOTEPAD.EXE a b.Txt");
}

TEST(EditorCommandLineTest, CommandAndVariableHaveAtMost260Characters) {
  const std::string longest(260, 'E');
  EXPECT_EQ(Line(longest, "a"), longest + " A");
  EXPECT_EQ(Line(longest + "E", "a"), "NOTEPAD.EXE a");
  EXPECT_EQ(Line("%SYSTEMROOT% %1", "a", longest), longest + " A");
  EXPECT_EQ(Line("%SYSTEMROOT% %1", "a", longest + "E"), "NOTEPAD.EXE a");
  std::string umlauts;
  for (int i = 0; i < 260; ++i)
    umlauts += "ä";
  EXPECT_EQ(Line(umlauts, "a"), umlauts + " A");
}

class OpenInTextEditorTest : public ApplicationsFolder {
 protected:
  /// An editor that writes down what it was given: the number of arguments, and each in brackets.
  void AddEditor(const std::string& exec) {
    AddProgram("my editor", "#!/bin/sh\n{ echo $#; printf '[%s]' \"$@\"; } >'" + PathOf("new") +
                                "'\n/bin/mv '" + PathOf("new") + "' '" + PathOf("given") + "'\n");
    WriteFile("data/applications/my.desktop",
              "[Desktop Entry]\nType=Application\nMimeType=text/plain;\nExec=" + exec + "\n");
  }

  std::string Given(const std::string& path) {
    std::filesystem::remove(PathOf("given"));
    std::string error;
    EXPECT_TRUE(OpenInTextEditor(path, error)) << error;
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return std::filesystem::exists(PathOf("given")); }, kPatience));
    return BytesOf("given");
  }
};

TEST_F(OpenInTextEditorTest, EditorGetsThePathAsItIsInOneArgument) {
  AddEditor("\"" + PathOf("bin/my editor") + "\" --wait %f");
  for (const char* name :
       {"plain.txt", "two  blanks.TXT", "\"quoted\" 'twice'", "für Größe.txt", "latin-\xFC.txt",
        "-x", "$(touch x) `y` \\ ; & | * ?", "%f %1", "line\nbreak"}) {
    const std::string path = PathOf(name);
    EXPECT_EQ(Given(path), "2\n[--wait][" + path + "]");
  }
}

TEST_F(OpenInTextEditorTest, RelativePathIsMadeAbsoluteSoThatNoNameIsAnOption) {
  AddEditor("my\\seditor %f");  // An escaped blank is a blank, which separates: no such program.
  std::string error;
  EXPECT_FALSE(OpenInTextEditor("-x.txt", error));
  AddEditor("\"my editor\" %U");
  const std::string here = std::filesystem::current_path().string();
  EXPECT_EQ(Given("-x.txt"), "1\n[" + here + "/-x.txt]");
}

TEST_F(OpenInTextEditorTest, EditorIsNobodysChildThatIsWaitedFor) {
  AddProgram("my editor", "#!/bin/sh\necho $PPID >'" + PathOf("new") + "'\n/bin/mv '" +
                              PathOf("new") + "' '" + PathOf("given") + "'\n");
  WriteFile("data/applications/my.desktop",
            "[Desktop Entry]\nType=Application\nMimeType=text/plain;\nExec=\"my editor\" %f\n");
  EXPECT_NE(Given("a.txt"), std::to_string(getpid()) + "\n");
}

TEST_F(OpenInTextEditorTest, DesktopsOpenerServesWhereNoApplicationIsKnown) {
  AddEditor("gone %f");
  std::filesystem::rename(PathOf("bin/my editor"), PathOf("bin/xdg-open"));
  EXPECT_EQ(Given("/x/a b.txt"), "1\n[/x/a b.txt]");
}

TEST_F(OpenInTextEditorTest, SystemWithoutAnyEditorIsToldOf) {
  std::string error;
  EXPECT_FALSE(OpenInTextEditor("/x/a.txt", error));
  EXPECT_EQ(error, "No program for text files is set up on this system.");
}

TEST_F(OpenInTextEditorTest, EditorThatFailsToStartSaysNothing) {
  AddApplication("broken");
  AddProgram("broken", "#!/nowhere/interpreter\n");
  std::string error;
  EXPECT_TRUE(OpenInTextEditor("/x/a.txt", error));
  EXPECT_EQ(error, "");
}

}  // namespace
}  // namespace bomparser::test
