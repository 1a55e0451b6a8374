#include "tnbase/FileStamp.h"

#include "tests/support/TestFolder.h"

#include <chrono>

namespace bomparser {
namespace {

class FileStampTest : public TestFolder {};

TEST_F(FileStampTest, AFileThatNobodyTouchesKeepsItsStamp) {
  WriteFile("a", "text");
  EXPECT_TRUE(StampOf(PathOf("a")).has_value());
  EXPECT_EQ(StampOf(PathOf("a")), StampOf(PathOf("a")));
}

TEST_F(FileStampTest, AnotherLengthOrTimeIsAnotherStamp) {
  WriteFile("a", "text");
  const auto before = StampOf(PathOf("a"));
  const auto written = std::filesystem::last_write_time(PathOf("a"));
  WriteFile("a", "longer text");
  std::filesystem::last_write_time(PathOf("a"), written);
  EXPECT_NE(StampOf(PathOf("a")), before);
  WriteFile("a", "text");
  std::filesystem::last_write_time(PathOf("a"), written + std::chrono::seconds(1));
  EXPECT_NE(StampOf(PathOf("a")), before);
}

TEST_F(FileStampTest, WhereThereIsNoFileThereIsNoStamp) {
  EXPECT_FALSE(StampOf(PathOf("nowhere")).has_value());
  EXPECT_FALSE(StampOf(Folder()).has_value());
}

TEST_F(FileStampTest, TwoPathsToOneFileAreTheSameFile) {
  WriteFile("a", "text");
  WriteFile("b", "text");
  MakeLink("link", PathOf("a"));
  EXPECT_TRUE(AreSameFile(PathOf("a"), PathOf("link")));
  EXPECT_FALSE(AreSameFile(PathOf("a"), PathOf("b")));
  EXPECT_FALSE(AreSameFile(PathOf("nowhere"), PathOf("nowhere")));
}

}  // namespace
}  // namespace bomparser
