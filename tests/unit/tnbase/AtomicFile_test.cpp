#include "tnbase/AtomicFile.h"

#include "tests/support/FileSizeLimit.h"
#include "tests/support/TestFolder.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace bomparser {
namespace {

using Durability = AtomicFile::Durability;
using NameList = std::vector<std::string>;

class AtomicFileTest : public TestFolder {
 protected:
  /// Writes a file in one go. Returns the error, empty when all went well.
  static std::string WriteTo(const std::string& path, const std::string& bytes,
                             Durability durability = Durability::Renamed) {
    AtomicFile file;
    std::string error;
    const bool done =
        file.Open(path, durability, error) && file.Write(bytes, error) && file.Commit(error);
    EXPECT_EQ(done, error.empty());
    return error;
  }

  mode_t ModeOf(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(lstat(PathOf(name).c_str(), &status), 0);
    return status.st_mode & 07777U;
  }

  void SetMode(const std::string& name, mode_t mode) const {
    EXPECT_EQ(chmod(PathOf(name).c_str(), mode), 0);
  }

  bool IsLink(const std::string& name) const { return std::filesystem::is_symlink(PathOf(name)); }
};

TEST_F(AtomicFileTest, WritesANewFile) {
  EXPECT_EQ(WriteTo(PathOf("list.xml"), std::string("a\0\n", 3)), "");
  EXPECT_EQ(BytesOf("list.xml"), std::string("a\0\n", 3));
  EXPECT_EQ(Names(), NameList{"list.xml"});
}

TEST_F(AtomicFileTest, WritesAFileThatIsFlushedToDisk) {
  EXPECT_EQ(WriteTo(PathOf("list.xml"), "new", Durability::FlushedToDisk), "");
  EXPECT_EQ(BytesOf("list.xml"), "new");
  EXPECT_EQ(Names(), NameList{"list.xml"});
}

TEST_F(AtomicFileTest, WritesAnEmptyFile) {
  EXPECT_EQ(WriteTo(PathOf("list.xml"), ""), "");
  EXPECT_EQ(BytesOf("list.xml"), "");
}

TEST_F(AtomicFileTest, WritesPiecesOneBehindTheOther) {
  AtomicFile file;
  std::string error;
  ASSERT_TRUE(file.Open(PathOf("list.xml"), Durability::Renamed, error)) << error;
  EXPECT_TRUE(file.Write("one ", error));
  EXPECT_TRUE(file.Write("", error));
  EXPECT_TRUE(file.Write("two", error));
  EXPECT_TRUE(file.Commit(error)) << error;
  EXPECT_EQ(BytesOf("list.xml"), "one two");
}

TEST_F(AtomicFileTest, TheTargetIsAsItWasUntilTheCommit) {
  WriteFile("list.xml", "old");
  AtomicFile file;
  std::string error;
  ASSERT_TRUE(file.Open(PathOf("list.xml"), Durability::Renamed, error)) << error;
  ASSERT_TRUE(file.Write("new", error)) << error;
  EXPECT_EQ(BytesOf("list.xml"), "old");
  ASSERT_TRUE(file.Commit(error)) << error;
  EXPECT_EQ(BytesOf("list.xml"), "new");
}

TEST_F(AtomicFileTest, WhatIsNotCommittedLeavesNoTrace) {
  WriteFile("list.xml", "old");
  {
    AtomicFile file;
    std::string error;
    ASSERT_TRUE(file.Open(PathOf("list.xml"), Durability::Renamed, error)) << error;
    ASSERT_TRUE(file.Write("new", error)) << error;
    EXPECT_EQ(Names().size(), 2U);
  }
  EXPECT_EQ(Names(), NameList{"list.xml"});
  EXPECT_EQ(BytesOf("list.xml"), "old");
}

TEST_F(AtomicFileTest, AMovedFileGoesOn) {
  AtomicFile first;
  std::string error;
  ASSERT_TRUE(first.Open(PathOf("list.xml"), Durability::Renamed, error)) << error;
  AtomicFile second(std::move(first));
  EXPECT_TRUE(second.Write("new", error)) << error;
  EXPECT_TRUE(second.Commit(error)) << error;
  EXPECT_EQ(BytesOf("list.xml"), "new");
}

TEST_F(AtomicFileTest, KeepsTheModeOfTheFileThatItReplaces) {
  for (const mode_t mode : {0640U, 0604U, 0755U}) {
    WriteFile("list.xml", "old");
    SetMode("list.xml", mode);
    EXPECT_EQ(WriteTo(PathOf("list.xml"), "new"), "");
    EXPECT_EQ(ModeOf("list.xml"), mode);
  }
}

TEST_F(AtomicFileTest, ANewFileHasTheModeThatTheMaskLeaves) {
  const mode_t before = umask(027);
  EXPECT_EQ(WriteTo(PathOf("list.xml"), "new"), "");
  umask(before);
  EXPECT_EQ(ModeOf("list.xml"), 0640U);
}

TEST_F(AtomicFileTest, ALinkStaysAndItsTargetIsReplaced) {
  MakeFolder("deep");
  WriteFile("deep/list.xml", "old");
  MakeLink("deep/second", "list.xml");
  MakeLink("first", "deep/second");
  EXPECT_EQ(WriteTo(PathOf("first"), "new"), "");
  EXPECT_TRUE(IsLink("first"));
  EXPECT_TRUE(IsLink("deep/second"));
  EXPECT_FALSE(IsLink("deep/list.xml"));
  EXPECT_EQ(BytesOf("deep/list.xml"), "new");
}

TEST_F(AtomicFileTest, ALinkToNothingGetsItsTarget) {
  MakeLink("link", PathOf("list.xml"));
  EXPECT_EQ(WriteTo(PathOf("link"), "new"), "");
  EXPECT_TRUE(IsLink("link"));
  EXPECT_EQ(BytesOf("list.xml"), "new");
}

TEST_F(AtomicFileTest, ACircleOfLinksIsRefused) {
  MakeLink("a", "b");
  MakeLink("b", "a");
  EXPECT_EQ(WriteTo(PathOf("a"), "new"),
            "cannot write " + PathOf("a") + ": Too many levels of symbolic links");
}

TEST_F(AtomicFileTest, AFileWithoutAnyRightToBeWrittenIsRefused) {
  WriteFile("list.xml", "old");
  SetMode("list.xml", 0444);
  EXPECT_EQ(WriteTo(PathOf("list.xml"), "new"),
            "cannot write " + PathOf("list.xml") + ": Permission denied");
  EXPECT_EQ(BytesOf("list.xml"), "old");
  EXPECT_EQ(Names(), NameList{"list.xml"});
}

/// While it lives, the superuser's rights are those of a user without any.
class AsNobody {
 public:
  AsNobody() : m_before(geteuid()) {
    if (m_before == 0) {
      EXPECT_EQ(seteuid(kNobody), 0);
    }
  }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;
  ~AsNobody() { EXPECT_EQ(seteuid(m_before), 0); }

  static constexpr uid_t kNobody = 65534;

 private:
  uid_t m_before;
};

TEST_F(AtomicFileTest, AFileThatThisUserMayNotWriteIsRefusedThoughItCouldBeReplaced) {
  WriteFile("list.xml", "old");
  SetMode("list.xml", 0466);  // Everybody may write it but its owner.
  if (geteuid() == 0) {
    ASSERT_EQ(chown(PathOf("list.xml").c_str(), AsNobody::kNobody, 0), 0);
    ASSERT_EQ(chown(Folder().c_str(), AsNobody::kNobody, 0), 0);
  }
  std::string error;
  {
    const AsNobody rights;
    error = WriteTo(PathOf("list.xml"), "new");
  }
  EXPECT_EQ(error, "cannot write " + PathOf("list.xml") + ": Permission denied");
  EXPECT_EQ(BytesOf("list.xml"), "old");
}

TEST_F(AtomicFileTest, AFolderIsRefused) {
  MakeFolder("folder");
  const std::string reason = ": Is a directory";
  EXPECT_EQ(WriteTo(PathOf("folder"), "new"), "cannot write " + PathOf("folder") + reason);
  EXPECT_EQ(WriteTo(PathOf("folder/"), "new"), "cannot write " + PathOf("folder/") + reason);
  EXPECT_EQ(WriteTo(PathOf("missing/"), "new"), "cannot write " + PathOf("missing/") + reason);
}

TEST_F(AtomicFileTest, AMissingFolderIsRefused) {
  EXPECT_EQ(WriteTo(PathOf("missing/list.xml"), "new"),
            "cannot write " + PathOf("missing/list.xml") + ": No such file or directory");
  EXPECT_EQ(WriteTo("", "new"), "cannot write : No such file or directory");
}

TEST_F(AtomicFileTest, AFileInPlaceOfAFolderIsRefused) {
  WriteFile("file", "");
  EXPECT_EQ(WriteTo(PathOf("file/list.xml"), "new"),
            "cannot write " + PathOf("file/list.xml") + ": Not a directory");
}

TEST_F(AtomicFileTest, ARefusedCommitLeavesNoTrace) {
  AtomicFile file;
  std::string error;
  ASSERT_TRUE(file.Open(PathOf("list.xml"), Durability::Renamed, error)) << error;
  MakeFolder("list.xml");
  EXPECT_FALSE(file.Commit(error));
  EXPECT_EQ(error, "cannot write " + PathOf("list.xml") + ": Is a directory");
  EXPECT_EQ(Names(), NameList{"list.xml"});
}

TEST_F(AtomicFileTest, ADeviceIsWrittenStraight) {
  EXPECT_EQ(WriteTo("/dev/null", "new"), "");
  EXPECT_EQ(WriteTo("/dev/full", "new"), "cannot write /dev/full: No space left on device");
  EXPECT_EQ(WriteTo("/dev/full", ""), "");
  struct stat status {};
  ASSERT_EQ(stat("/dev/full", &status), 0);
  EXPECT_TRUE(S_ISCHR(status.st_mode));
}

TEST_F(AtomicFileTest, APipeIsWrittenStraightHoweverMuchItIs) {
  ASSERT_EQ(mkfifo(PathOf("pipe").c_str(), 0600), 0);
  const std::string bytes(1 << 20, 'x');  // More than a pipe holds at once.
  std::string got;
  std::thread reader([this, &got] { got = BytesOf("pipe"); });
  const std::string error = WriteTo(PathOf("pipe"), bytes);
  reader.join();
  EXPECT_EQ(error, "");
  EXPECT_TRUE(got == bytes) << got.size() << " bytes arrived";
  EXPECT_EQ(Names(), NameList{"pipe"});
}

TEST_F(AtomicFileTest, ASignalDoesNotCutAWriteShort) {
  ASSERT_EQ(mkfifo(PathOf("pipe").c_str(), 0600), 0);
  struct sigaction interrupt {};  // Without SA_RESTART: system calls end early.
  interrupt.sa_handler = [](int) {};
  struct sigaction before {};
  ASSERT_EQ(sigaction(SIGUSR1, &interrupt, &before), 0);
  const pthread_t writer = pthread_self();
  std::size_t arrived = 0;
  std::thread reader([this, writer, &arrived] {
    std::ifstream pipe(PathOf("pipe"), std::ios::binary);
    // While nothing is read: the first signal finds a write done in part, the others one not begun.
    for (int i = 0; i < 10; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      pthread_kill(writer, SIGUSR1);
    }
    std::array<char, 16384> piece;
    while (pipe.read(piece.data(), piece.size()) || pipe.gcount() > 0) {
      arrived += static_cast<std::size_t>(pipe.gcount());
      pthread_kill(writer, SIGUSR1);
    }
  });
  const std::string error = WriteTo(PathOf("pipe"), std::string(1 << 20, 'x'));
  reader.join();
  EXPECT_EQ(sigaction(SIGUSR1, &before, nullptr), 0);
  EXPECT_EQ(error, "");
  EXPECT_EQ(arrived, 1U << 20);
}

TEST_F(AtomicFileTest, AnOpenFileIsWrittenBehindWhatItHolds) {
  WriteFile("log", "before ");
  const int file = open(PathOf("log").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  ASSERT_GE(file, 0);
  EXPECT_EQ(WriteTo("/dev/fd/" + std::to_string(file), "after"), "");
  close(file);
  EXPECT_EQ(BytesOf("log"), "before after");
  EXPECT_EQ(Names(), NameList{"log"});
}

TEST_F(AtomicFileTest, AnUnnamedPipeIsWrittenStraight) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  EXPECT_EQ(WriteTo("/proc/self/fd/" + std::to_string(ends[1]), "bytes"), "");
  close(ends[1]);
  std::array<char, 16> got{};
  EXPECT_EQ(read(ends[0], got.data(), got.size()), 5);
  close(ends[0]);
  EXPECT_EQ(std::string(got.data()), "bytes");
}

TEST_F(AtomicFileTest, AFullDiskLeavesTheOldFile) {
  WriteFile("list.xml", "old");
  std::string error;
  {
    const FileSizeLimit limit(5000);
    error = WriteTo(PathOf("list.xml"), std::string(10000, 'x'));
  }
  EXPECT_EQ(error, "cannot write " + PathOf("list.xml") + ": File too large");
  EXPECT_EQ(BytesOf("list.xml"), "old");
  EXPECT_EQ(Names(), NameList{"list.xml"});
}

TEST_F(AtomicFileTest, NothingIsWrittenAfterAFailure) {
  AtomicFile file;
  std::string error;
  ASSERT_TRUE(file.Open("/dev/full", Durability::Renamed, error)) << error;
  EXPECT_FALSE(file.Write("a", error));
  EXPECT_FALSE(file.Write("", error));
  EXPECT_FALSE(file.Commit(error));
}

}  // namespace
}  // namespace bomparser
