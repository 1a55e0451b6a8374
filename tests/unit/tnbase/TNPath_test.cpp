#include "tnbase/TNPath.h"

#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace bomparser {
namespace {

using Split = std::pair<std::string, std::string>;

Split SplitPath(const std::string& path) {
  return {TNGetPathFromPathNFName(path), TNGetFNameFromPath(path)};
}

TEST(TNPath, SplitsAtTheLastSeparator) {
  EXPECT_EQ(SplitPath("/a/b/c.txt"), Split("/a/b", "c.txt"));
  EXPECT_EQ(SplitPath("a/b"), Split("a", "b"));
  EXPECT_EQ(SplitPath("../b"), Split("..", "b"));
}

TEST(TNPath, AnAloneNameHasNoDirectory) {
  EXPECT_EQ(SplitPath("c.txt"), Split("", "c.txt"));
  EXPECT_EQ(SplitPath(""), Split("", ""));
}

TEST(TNPath, ARootKeepsItsSeparator) {
  EXPECT_EQ(SplitPath("/c"), Split("/", "c"));
  EXPECT_EQ(SplitPath("/"), Split("/", ""));
  EXPECT_EQ(SplitPath("//c"), Split("//", "c"));
}

TEST(TNPath, APathThatEndsWithASeparatorHasNoName) {
  EXPECT_EQ(SplitPath("/a/b/"), Split("/a/b", ""));
  EXPECT_EQ(SplitPath("a/"), Split("a", ""));
}

TEST(TNPath, RepeatedSeparatorsCountAsOne) { EXPECT_EQ(SplitPath("/a//b"), Split("/a", "b")); }

#ifdef _WIN32
TEST(TNPath, ABackslashSeparatesOnWindows) {
  EXPECT_EQ(SplitPath("C:\\x\\y"), Split("C:\\x", "y"));
  EXPECT_EQ(SplitPath("C:\\y"), Split("C:\\", "y"));
  EXPECT_EQ(SplitPath("C:y"), Split("C:", "y"));
}
#else
TEST(TNPath, ABackslashIsAnOrdinaryCharacter) {
  EXPECT_EQ(SplitPath("C:\\x\\y"), Split("", "C:\\x\\y"));
  EXPECT_EQ(SplitPath("a/x\\y"), Split("a", "x\\y"));
}
#endif

class TNPathKinds : public TestFolder {
 protected:
  /// "directory exists regular", those that hold.
  static std::string KindsOf(const std::string& path) {
    std::string kinds;
    kinds += IsDirectory(path) ? "directory " : "";
    kinds += FileExists(path) ? "exists " : "";
    kinds += IsRegularFile(path) ? "regular " : "";
    return kinds;
  }
};

TEST_F(TNPathKinds, TellsFoldersFilesAndDevicesApart) {
  WriteFile("file", "text");
  EXPECT_EQ(KindsOf(Folder()), "directory exists ");
  EXPECT_EQ(KindsOf(PathOf("file")), "exists regular ");
  EXPECT_EQ(KindsOf("/dev/null"), "exists ");
  EXPECT_EQ(KindsOf(PathOf("missing")), "");
  EXPECT_EQ(KindsOf(PathOf("file") + "/below"), "");
  EXPECT_EQ(KindsOf(""), "");
}

TEST_F(TNPathKinds, FollowsLinks) {
  WriteFile("file", "text");
  MakeLink("to_file", "file");
  MakeLink("to_folder", ".");
  MakeLink("to_nothing", "missing");
  EXPECT_EQ(KindsOf(PathOf("to_file")), "exists regular ");
  EXPECT_EQ(KindsOf(PathOf("to_folder")), "directory exists ");
  EXPECT_EQ(KindsOf(PathOf("to_nothing")), "");
}

}  // namespace
}  // namespace bomparser
