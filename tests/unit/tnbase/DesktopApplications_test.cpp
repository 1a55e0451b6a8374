#include "tnbase/DesktopApplications.h"

#include "tests/support/ApplicationsFolder.h"

#include <string>
#include <vector>

namespace bomparser {
namespace {

class DesktopApplicationsTest : public ApplicationsFolder {
 protected:
  /// What a text file a.txt is opened with: the names of its program and of what it is given.
  std::string Opens() const {
    std::string line;
    const DesktopFolders folders = DesktopFolders::OfEnvironment();
    for (const std::string& argument : FindOpenCommand(folders, "text/plain", "a.txt")) {
      line += (line.empty() ? "" : " ") + argument.substr(argument.rfind('/') + 1);
    }
    return line;
  }

  static std::string Preferring(const std::string& group, const std::string& ids) {
    return "[" + group + "]\ntext/html=other.desktop\ntext/plain=" + ids + "\n";
  }
};

TEST_F(DesktopApplicationsTest, WithoutApplicationsThereIsNoCommand) { EXPECT_EQ(Opens(), ""); }

TEST_F(DesktopApplicationsTest, CommandStartsWithTheProgramsPath) {
  AddApplication("ed");
  EXPECT_EQ(FindOpenCommand(DesktopFolders::OfEnvironment(), "text/plain", "/x/a.txt"),
            (std::vector<std::string>{PathOf("bin/ed"), "/x/a.txt"}));
}

TEST_F(DesktopApplicationsTest, DefaultWinsOverWhatIsAddedOrInstalled) {
  for (const char* name : {"a", "b", "c"})
    AddApplication(name);
  EXPECT_EQ(Opens(), "a a.txt");
  WriteFile("config/mimeapps.list", Preferring("Added Associations", "b.desktop;"));
  EXPECT_EQ(Opens(), "b a.txt");
  WriteFileAndFolders("share/applications/mimeapps.list",
                      Preferring("Default Applications", "c.desktop"));
  EXPECT_EQ(Opens(), "c a.txt");
}

TEST_F(DesktopApplicationsTest, ListsAreAskedFromTheUsersToTheSystems) {
  Set("XDG_CURRENT_DESKTOP", "First:Second");
  const std::vector<std::string> files = {
      "share/applications/mimeapps.list",
      "share/applications/second-mimeapps.list",
      "share/applications/first-mimeapps.list",
      "data/applications/mimeapps.list",
      "data/applications/first-mimeapps.list",
      "etc/mimeapps.list",
      "etc/first-mimeapps.list",
      "config/mimeapps.list",
      "config/second-mimeapps.list",
      "config/first-mimeapps.list",
  };
  // Each is asked before those that were written before it.
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::string name = "editor" + std::to_string(i);
    AddApplication(name);
    WriteFileAndFolders(files[i], Preferring("Default Applications", name + ".desktop;"));
    EXPECT_EQ(Opens(), name + " a.txt") << files[i];
  }
}

TEST_F(DesktopApplicationsTest, ListOfAnotherDesktopIsNotAsked) {
  AddApplication("a");
  AddApplication("b");
  WriteFile("config/other-mimeapps.list", Preferring("Default Applications", "b.desktop"));
  EXPECT_EQ(Opens(), "a a.txt");
}

TEST_F(DesktopApplicationsTest, DefaultThatIsNotInstalledGivesWayToTheNext) {
  AddApplication("b");
  WriteFile("config/mimeapps.list", Preferring("Default Applications", "gone.desktop;b.desktop"));
  AddApplication("a");
  EXPECT_EQ(Opens(), "b a.txt");
}

TEST_F(DesktopApplicationsTest, RemovedAssociationIsNotFollowed) {
  AddApplication("a");
  AddApplication("b");
  WriteFile("config/mimeapps.list", Preferring("Removed Associations", "a.desktop"));
  WriteFile("data/applications/mimeapps.list", Preferring("Added Associations", "a.desktop"));
  EXPECT_EQ(Opens(), "b a.txt");
}

TEST_F(DesktopApplicationsTest, UsersFileOfAnApplicationHidesTheSystems) {
  AddApplication("a", "", "share/applications/");
  EXPECT_EQ(Opens(), "a a.txt");
  AddApplication("a", "Hidden=true\n");
  EXPECT_EQ(Opens(), "");
}

TEST_F(DesktopApplicationsTest, TextEditorComesBeforeOtherApplicationsForTexts) {
  AddApplication("browser");
  AddApplication("writer", "Categories=Utility;TextEditor;\n");
  EXPECT_EQ(Opens(), "writer a.txt");
}

TEST_F(DesktopApplicationsTest, ApplicationForOtherFilesIsNoneForTexts) {
  AddProgram("a");
  WriteFile("data/applications/a.desktop",
            "[Desktop Entry]\nType=Application\nExec=a\nMimeType=text/plainer;text/html;\n");
  EXPECT_EQ(Opens(), "");
}

TEST_F(DesktopApplicationsTest, ApplicationInASubfolderHasItInItsName) {
  AddApplication("a");
  AddApplication("ed", "", "share/applications/kde/x/");
  WriteFile("config/mimeapps.list", Preferring("Default Applications", "kde-x-ed.desktop"));
  EXPECT_EQ(Opens(), "ed a.txt");
}

TEST_F(DesktopApplicationsTest, ApplicationThatCannotBeRunIsPassedOver) {
  AddApplication("gone");
  std::filesystem::remove(PathOf("bin/gone"));
  AddApplication("halfgone", "TryExec=gone\n");
  AddApplication("locked");
  std::filesystem::permissions(PathOf("bin/locked"), std::filesystem::perms::owner_read);
  AddApplication("folder");
  std::filesystem::remove(PathOf("bin/folder"));
  MakeFolder("bin/folder");
  WriteFile("data/applications/link.desktop",
            "[Desktop Entry]\nType=Link\nExec=halfgone\nMimeType=text/plain\n");
  EXPECT_EQ(Opens(), "");
  AddApplication("runs", "TryExec=runs\n");
  EXPECT_EQ(Opens(), "runs a.txt");
}

TEST_F(DesktopApplicationsTest, ApplicationForATerminalNeedsOne) {
  AddApplication("ed", "Terminal=true\n");
  EXPECT_EQ(Opens(), "");
  AddProgram("x-terminal-emulator");
  EXPECT_EQ(Opens(), "x-terminal-emulator -e ed a.txt");
}

TEST_F(DesktopApplicationsTest, FoldersThatAreNotAbsoluteAreNone) {
  Set("XDG_DATA_HOME", "data");
  Set("XDG_DATA_DIRS", "::share:" + PathOf("share"));
  Set("PATH", ".:" + PathOf("bin"));
  const DesktopFolders folders = DesktopFolders::OfEnvironment();
  EXPECT_EQ(folders.data, (std::vector<std::string>{PathOf("share")}));
  EXPECT_EQ(folders.programs, (std::vector<std::string>{PathOf("bin")}));
}

TEST_F(DesktopApplicationsTest, EmptyVariablesMeanTheUsualFolders) {
  for (const char* name : {"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "XDG_DATA_HOME", "XDG_DATA_DIRS"})
    Set(name, "");
  const DesktopFolders folders = DesktopFolders::OfEnvironment();
  EXPECT_EQ(folders.config, (std::vector<std::string>{PathOf("home/.config"), "/etc/xdg"}));
  EXPECT_EQ(folders.data, (std::vector<std::string>{PathOf("home/.local/share"), "/usr/local/share",
                                                    "/usr/share"}));
}

}  // namespace
}  // namespace bomparser
