#include "ui/dialogs/RecentFiles.h"

#include "tests/ui/support/UiTest.h"

namespace bomparser::test {
namespace {

using Paths = std::vector<std::string>;

class RecentFilesTest : public testing::Test {
 protected:
  FakeHostApp host;
  RecentFiles files{Msg::RecentInputKey};
};

TEST_F(RecentFilesTest, TheLatestComesFirstAndEachOnce) {
  for (const char* path : {"/a", "/b", "/a", ""})
    files.Add(path);
  EXPECT_EQ(files.GetPaths(), (Paths{"/a", "/b"}));
}

TEST_F(RecentFilesTest, TheOldestGoWhereThereAreTooMany) {
  for (int i = 0; i < 20; ++i)
    files.Add("/" + std::to_string(i));
  EXPECT_EQ(files.GetPaths().size(), RecentFiles::kMost);
  EXPECT_EQ(files.GetPaths().front(), "/19");
  EXPECT_EQ(files.GetPaths().back(), "/12");
}

TEST_F(RecentFilesTest, TheyComeBackFromTheProfileInTheirOrder) {
  files.Add("/a, with a comma");
  files.Add("/b");
  EXPECT_TRUE(files.Write(host, "Section"));
  RecentFiles read(Msg::RecentInputKey);
  read.Read(host, "Section");
  EXPECT_EQ(read.GetPaths(), (Paths{"/b", "/a, with a comma"}));
}

TEST_F(RecentFilesTest, FilesThatAreForgottenLeaveNothingInTheProfile) {
  files.Add("/a");
  files.Add("/b");
  files.Write(host, "Section");
  files.Remove("/a");
  files.Write(host, "Section");
  RecentFiles read(Msg::RecentInputKey);
  read.Read(host, "Section");
  EXPECT_EQ(read.GetPaths(), (Paths{"/b"}));
}

}  // namespace
}  // namespace bomparser::test
