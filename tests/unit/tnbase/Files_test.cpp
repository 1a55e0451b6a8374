#include "tests/support/FailingMemory.h"
#include "tests/support/TestFolder.h"
#include "tnbase/FileBytes.h"
#include "tnbase/FolderListing.h"
#include "tnbase/PrivateFolder.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace bomparser {
namespace {

constexpr std::uint64_t kPlenty = 1U << 20;

class FileBytesTest : public TestFolder {
 protected:
  /// The file's bytes, or "error: " and the text.
  static std::string Read(const std::string& path, std::uint64_t limit = kPlenty) {
    std::string bytes = "as before";
    std::string error;
    if (ReadFileBytes(path, bytes, error, limit)) {
      return bytes;
    }
    EXPECT_EQ(bytes, "as before");
    return "error: " + error;
  }
};

TEST_F(FileBytesTest, GivesEveryByte) {
  const std::string bytes = std::string("a\r\n\0\x1A\xFF", 6) + std::string(200000, 'x');
  WriteFile("file", bytes);
  EXPECT_EQ(Read(PathOf("file")), bytes);
}

TEST_F(FileBytesTest, AnEmptyFileIsNoFailure) {
  WriteFile("file", "");
  EXPECT_EQ(Read(PathOf("file")), "");
  EXPECT_EQ(Read(PathOf("file"), 0), "");
}

TEST_F(FileBytesTest, ReadsUpToTheLimit) {
  WriteFile("file", "12345");
  EXPECT_EQ(Read(PathOf("file"), 5), "12345");
  EXPECT_EQ(Read(PathOf("file"), 4), "error: cannot read " + PathOf("file") + ": File too large");
  EXPECT_EQ(Read("/dev/zero", 100000), "error: cannot read /dev/zero: File too large");
}

TEST_F(FileBytesTest, SaysWhatIsWrong) {
  EXPECT_EQ(Read(PathOf("missing")),
            "error: cannot read " + PathOf("missing") + ": No such file or directory");
  EXPECT_EQ(Read(Folder()), "error: cannot read " + Folder() + ": Is a directory");
  EXPECT_EQ(Read(""), "error: cannot read : No such file or directory");
}

class FolderListingTest : public TestFolder {
 protected:
  static std::vector<std::string> SortedNames(const std::string& folder) {
    std::vector<std::string> names;
    std::string error;
    EXPECT_TRUE(ListFolder(folder, names, error)) << error;
    std::sort(names.begin(), names.end());
    return names;
  }
};

TEST_F(FolderListingTest, GivesOrdinaryFilesAndLinksToThem) {
  WriteFile("b.xml", "");
  WriteFile(".hidden", "");
  MakeFolder("folder");
  ASSERT_EQ(mkfifo(PathOf("pipe.xml").c_str(), 0600), 0);
  MakeLink("to_file", "b.xml");
  MakeLink("to_folder", "folder");
  MakeLink("to_nothing", "missing");
  MakeLink("to_pipe", "pipe.xml");
  EXPECT_EQ(SortedNames(Folder()), (std::vector<std::string>{".hidden", "b.xml", "to_file"}));
}

TEST_F(FolderListingTest, KeepsTheOrderOfTheSystem) {
  std::vector<std::string> order;
  for (int i = 0; i < 20; ++i) {
    WriteFile(std::to_string(i * 7919 % 1000), "");
  }
  for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
    order.push_back(entry.path().filename().string());
  }
  std::vector<std::string> names;
  std::string error;
  ASSERT_TRUE(ListFolder(Folder(), names, error));
  EXPECT_EQ(names, order);
}

TEST_F(FolderListingTest, SaysWhatIsWrongAndLeavesTheNames) {
  WriteFile("file", "");
  std::vector<std::string> names = {"as before"};
  std::string error;
  EXPECT_FALSE(ListFolder(PathOf("missing"), names, error));
  EXPECT_EQ(error, "cannot list " + PathOf("missing") + ": No such file or directory");
  EXPECT_FALSE(ListFolder(PathOf("file"), names, error));
  EXPECT_EQ(error, "cannot list " + PathOf("file") + ": Not a directory");
  EXPECT_EQ(names, std::vector<std::string>{"as before"});
}

/// With the test's own folder as the temporary folder.
class PrivateFolderTest : public TestFolder {
 protected:
  PrivateFolderTest() {
    const char* const before = std::getenv("TMPDIR");
    m_hadFolder = before != nullptr;
    m_before = m_hadFolder ? before : "";
    setenv("TMPDIR", Folder().c_str(), 1);
  }

  ~PrivateFolderTest() override {
    if (m_hadFolder) {
      setenv("TMPDIR", m_before.c_str(), 1);
    } else {
      unsetenv("TMPDIR");
    }
  }

  static std::string PathIn(PrivateFolder& folder) {
    std::string path;
    std::string error;
    return folder.GetPath(path, error) ? path : "error: " + error;
  }

 private:
  bool m_hadFolder = false;
  std::string m_before;
};

TEST_F(PrivateFolderTest, IsMadeAtTheFirstRequestOnly) {
  PrivateFolder folder;
  EXPECT_EQ(Names().size(), 0U);
  const std::string path = PathIn(folder);
  EXPECT_TRUE(std::filesystem::is_directory(path));
  EXPECT_EQ(PathIn(folder), path);
  EXPECT_EQ(Names().size(), 1U);
}

TEST_F(PrivateFolderTest, BelongsToThisUserAndProcessAlone) {
  PrivateFolder folder;
  const std::string path = PathIn(folder);
  struct stat status {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0700U);
  EXPECT_EQ(status.st_uid, geteuid());
  const std::string start =
      PathOf("bomparser-" + std::to_string(geteuid()) + "-" + std::to_string(getpid()) + "-");
  EXPECT_EQ(path.substr(0, start.size()), start);
}

TEST_F(PrivateFolderTest, TwoOfOneProcessAreTwo) {
  PrivateFolder one;
  PrivateFolder other;
  EXPECT_NE(PathIn(one), PathIn(other));
}

TEST_F(PrivateFolderTest, GoesWithItsContentsButNotWithWhatLinksName) {
  WriteFile("outside", "stays");
  {
    PrivateFolder folder;
    const std::string path = PathIn(folder);
    std::filesystem::create_directories(path + "/deep/er");
    std::filesystem::create_symlink(Folder(), path + "/link");
    EXPECT_EQ(Names().size(), 2U);
  }
  EXPECT_EQ(Names(), std::vector<std::string>{"outside"});
  EXPECT_EQ(BytesOf("outside"), "stays");
}

TEST_F(PrivateFolderTest, SaysWhatIsWrongAndTriesAgain) {
  setenv("TMPDIR", PathOf("later").c_str(), 1);
  PrivateFolder folder;
  EXPECT_EQ(PathIn(folder),
            "error: cannot create a folder in " + PathOf("later") + ": No such file or directory");
  MakeFolder("later");
  EXPECT_TRUE(std::filesystem::is_directory(PathIn(folder)));
}

TEST_F(PrivateFolderTest, WithoutMemoryForItsPathNoFolderStays) {
  setenv("TMPDIR", PathOf("temporary").c_str(), 1);
  const std::int64_t failures = test::ForEveryAllocation([this](std::int64_t granted) {
    SCOPED_TRACE(granted);
    bool failed = false;
    MakeFolder("temporary");
    {
      PrivateFolder folder;
      std::string path;
      std::string error;
      const test::FailingMemory memory(granted);
      try {
        EXPECT_TRUE(folder.GetPath(path, error));
      } catch (const std::bad_alloc&) {
        EXPECT_TRUE(memory.HasFailed());
      }
      failed = memory.HasFailed();
    }
    EXPECT_TRUE(std::filesystem::is_empty(PathOf("temporary")));
    std::filesystem::remove_all(PathOf("temporary"));
    return failed;
  });
  EXPECT_GT(failures, 0);
}

}  // namespace
}  // namespace bomparser
