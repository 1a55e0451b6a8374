#include "tnbase/InputSource.h"

#include "tests/support/TestFolder.h"

#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace bomparser {
namespace {

constexpr std::uint64_t kLimit = 1000;
constexpr std::size_t kSlack = 8;

/// The bytes, or the error in angle brackets.
std::string Read(InputSource& source, std::uint64_t limit = kLimit) {
  GrowArray<char> bytes;
  std::string error;
  if (!source.ReadAll(bytes, limit, kSlack, "too long", error)) return "<" + error + ">";
  EXPECT_GE(bytes.Capacity(), bytes.Size() + kSlack);
  return {bytes.begin(), bytes.end()};
}

class InputSourceTest : public TestFolder {
 protected:
  /// The error text; "" for success.
  std::string Open(const std::string& path) {
    std::string error;
    const bool opened = source.Open(path, error);
    EXPECT_EQ(opened, error.empty());
    EXPECT_EQ(opened, source.IsOpen());
    return error;
  }
  /// A named pipe into which the bytes are written as soon as somebody reads it.
  std::string OpenPipe(const std::string& bytes) {
    const std::string path = PathOf("pipe");
    EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&] { WriteFile("pipe", bytes); });
    const std::string error = Open(path);
    std::string all = error + Read(source);
    writer.join();
    return all;
  }

  InputSource source;
};

TEST_F(InputSourceTest, ReadsTheWholeFileAgainAndAgain) {
  WriteFile("in", "some text");
  EXPECT_EQ(Open(PathOf("in")), "");
  EXPECT_EQ(source.GetPath(), PathOf("in"));
  EXPECT_EQ(source.GetLength(), 9u);
  EXPECT_TRUE(source.CanReadAgain());
  EXPECT_EQ(Read(source), "some text");
  EXPECT_EQ(Read(source), "some text");
}

TEST_F(InputSourceTest, AnEmptyFileIsAnEmptyText) {
  WriteFile("in", "");
  EXPECT_EQ(Open(PathOf("in")), "");
  EXPECT_EQ(Read(source), "");
}

TEST_F(InputSourceTest, SeesWhatWasWrittenIntoTheFileMeanwhile) {
  WriteFile("in", "old");
  Open(PathOf("in"));
  WriteFile("in", "new and longer");
  EXPECT_EQ(Read(source), "new and longer");
  WriteFile("in", "cut");
  EXPECT_EQ(Read(source), "cut");
}

TEST_F(InputSourceTest, SeesTheFileThatWasPutInThePlaceOfTheOldOne) {
  WriteFile("in", "old");
  Open(PathOf("in"));
  WriteFile("fresh", "fresh");
  std::filesystem::rename(PathOf("fresh"), PathOf("in"));
  EXPECT_EQ(Read(source), "fresh");
  EXPECT_EQ(source.GetLength(), 5u);
}

TEST_F(InputSourceTest, GoesOnReadingTheOldFileWhenItIsNoLongerThere) {
  WriteFile("in", "old");
  Open(PathOf("in"));
  std::filesystem::remove(PathOf("in"));
  EXPECT_EQ(Read(source), "old");
  MakeFolder("in");
  EXPECT_EQ(Read(source), "old");
}

TEST_F(InputSourceTest, APipeInThePlaceOfTheFileIsNotWaitedFor) {
  WriteFile("in", "old");
  Open(PathOf("in"));
  std::filesystem::remove(PathOf("in"));
  ASSERT_EQ(::mkfifo(PathOf("in").c_str(), 0600), 0);
  EXPECT_EQ(Read(source), "old");
}

TEST_F(InputSourceTest, WhatCannotBeReadIsToldWithItsReason) {
  EXPECT_EQ(Open(PathOf("none")), "cannot read " + PathOf("none") + ": No such file or directory");
  EXPECT_EQ(Open(Folder()), "cannot read " + Folder() + ": Is a directory");
  EXPECT_EQ(Open(""), "cannot read : No such file or directory");
  EXPECT_FALSE(source.CanReadAgain());
  EXPECT_EQ(source.GetLength(), 0u);
}

TEST_F(InputSourceTest, OpeningAnotherFileClosesTheFirst) {
  WriteFile("in", "one");
  WriteFile("other", "two");
  Open(PathOf("in"));
  EXPECT_EQ(Open(PathOf("other")), "");
  EXPECT_EQ(Read(source), "two");
  source.Close();
  EXPECT_FALSE(source.IsOpen());
  source.Close();
}

TEST_F(InputSourceTest, AFileOfTheLimitIsReadAndOneByteMoreIsTooLong) {
  WriteFile("in", std::string(20, 'x'));
  Open(PathOf("in"));
  EXPECT_EQ(Read(source, 20), std::string(20, 'x'));
  EXPECT_EQ(Read(source, 19), "<too long>");
  EXPECT_EQ(Read(source, 20), std::string(20, 'x'));
}

TEST_F(InputSourceTest, APipeIsReadToItsEndAndOnceOnly) {
  const std::string bytes(200 * 1000, 'p');
  ASSERT_EQ(::mkfifo(PathOf("pipe").c_str(), 0600), 0);
  std::thread writer([&] { WriteFile("pipe", bytes); });
  EXPECT_EQ(Open(PathOf("pipe")), "");
  EXPECT_FALSE(source.CanReadAgain());
  EXPECT_EQ(source.GetLength(), 0u);
  EXPECT_TRUE(Read(source, bytes.size()) == bytes);
  writer.join();
  EXPECT_EQ(Read(source, bytes.size()), "<cannot read " + PathOf("pipe") + ": Illegal seek>");
}

TEST_F(InputSourceTest, TheRestOfATooLongPipeIsNotTakenForTheWhole) {
  EXPECT_EQ(OpenPipe(std::string(2 * kLimit, 'p')), "<too long>");
  EXPECT_EQ(Read(source), "<cannot read " + PathOf("pipe") + ": Illegal seek>");
}

TEST_F(InputSourceTest, APipeCanBeOpenedAnew) {
  EXPECT_EQ(OpenPipe("first"), "first");
  std::filesystem::remove(PathOf("pipe"));
  EXPECT_EQ(OpenPipe("second"), "second");
}

TEST_F(InputSourceTest, AFileThatTellsNoLengthIsReadToItsEnd) {
  EXPECT_EQ(Open("/proc/self/stat"), "");
  EXPECT_TRUE(Read(source).starts_with(std::to_string(::getpid())));
}

/// Has standard input come from a file or pipe while it lives.
class StandardInput {
 public:
  explicit StandardInput(int handle) : m_before(::dup(STDIN_FILENO)) {
    ::dup2(handle, STDIN_FILENO);
    ::close(handle);
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;
  ~StandardInput() {
    ::dup2(m_before, STDIN_FILENO);
    ::close(m_before);
  }

 private:
  int m_before;
};

TEST_F(InputSourceTest, ADashIsStandardInputFromAFileAsOftenAsAsked) {
  WriteFile("in", "standard input");
  const StandardInput input(::open(PathOf("in").c_str(), O_RDONLY));
  EXPECT_EQ(Open("-"), "");
  EXPECT_TRUE(source.CanReadAgain());
  EXPECT_EQ(Read(source), "standard input");
  EXPECT_EQ(Read(source), "standard input");
}

TEST_F(InputSourceTest, ADashIsStandardInputFromAPipeOnce) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const StandardInput input(ends[0]);
  ASSERT_EQ(::write(ends[1], "piped", 5), 5);
  ::close(ends[1]);
  EXPECT_EQ(Open("-"), "");
  EXPECT_EQ(Read(source), "piped");
  EXPECT_EQ(Read(source), "<cannot read -: Illegal seek>");
}

TEST_F(InputSourceTest, ClosingTheSourceLeavesStandardInputOpen) {
  WriteFile("in", "text");
  const StandardInput input(::open(PathOf("in").c_str(), O_RDONLY));
  Open("-");
  source.Close();
  EXPECT_EQ(Open("-"), "");
  EXPECT_EQ(Read(source), "text");
}

}  // namespace
}  // namespace bomparser
