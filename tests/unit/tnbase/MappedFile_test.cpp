#include "tnbase/MappedFile.h"

#include "tests/support/TestFolder.h"

#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace bomparser {
namespace {

constexpr std::size_t kSlackOfPage = 65;

class MappedFileTest : public TestFolder {
 protected:
  bool Map(MappedFile& file, std::size_t size) {
    const int handle = ::open(PathOf("in").c_str(), O_RDONLY | O_CLOEXEC);
    const bool mapped = file.Map(handle, size, kSlackOfPage);
    ::close(handle);
    return mapped;
  }
  static std::string_view Bytes(const MappedFile& file, std::size_t size) {
    return {file.Data(), size};
  }
};

const auto kPage = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));

TEST_F(MappedFileTest, HoldsTheFileAndRoomBehindItWhateverItsSize) {
  for (const std::size_t size : {kPage + 1, 2 * kPage - kSlackOfPage, 2 * kPage - 1, 2 * kPage,
                                 2 * kPage + 1, 100 * kPage - 7}) {
    const std::string text(size, 'x');
    WriteFile("in", text);
    MappedFile file;
    ASSERT_TRUE(Map(file, size));
    EXPECT_EQ(Bytes(file, size), text);
    for (std::size_t i = 0; i < kSlackOfPage; ++i)
      file.Data()[size + i] = '!';
    EXPECT_EQ(Bytes(file, size + kSlackOfPage), text + std::string(kSlackOfPage, '!'));
    EXPECT_FALSE(file.IsCutShort());
  }
}

TEST_F(MappedFileTest, WhatIsWrittenStaysInMemory) {
  const std::string text(3 * kPage, 'x');
  WriteFile("in", text);
  MappedFile file;
  ASSERT_TRUE(Map(file, text.size()));
  file.Data()[1] = '-';
  file.Data()[text.size() - 1] = '-';
  EXPECT_EQ(Bytes(file, 3), "x-x");
  EXPECT_TRUE(BytesOf("in") == text);
}

TEST_F(MappedFileTest, WhereBytesAreGoneStandLineFeedsAndItIsCutShort) {
  constexpr std::size_t kSize = 100'000;
  WriteFile("in", std::string(kSize, 'x'));
  MappedFile file;
  ASSERT_TRUE(Map(file, kSize));
  std::filesystem::resize_file(PathOf("in"), 0);
  EXPECT_EQ(file.Data()[0], '\n');
  EXPECT_EQ(file.Data()[kPage * 10], '\n');
  EXPECT_TRUE(file.IsCutShort());
}

TEST_F(MappedFileTest, IsCutShortAlsoWhenNobodyReadsThere) {
  WriteFile("in", std::string(10 * kPage, 'x'));
  MappedFile file;
  ASSERT_TRUE(Map(file, 10 * kPage));
  std::filesystem::resize_file(PathOf("in"), 10 * kPage - 1);
  EXPECT_TRUE(file.IsCutShort());
}

TEST_F(MappedFileTest, ItsEndIsItsOwnWhateverBecomesOfTheFile) {
  for (const std::size_t size : {10 * kPage, 10 * kPage + 1, 11 * kPage - 1}) {
    WriteFile("in", std::string(size, 'x'));
    MappedFile file;
    ASSERT_TRUE(Map(file, size));
    file.Data()[size] = '!';
    std::filesystem::resize_file(PathOf("in"), 0);
    WriteFile("in", std::string(20 * kPage, 'y'));
    EXPECT_EQ(file.Data()[size - 1], 'x');
    EXPECT_EQ(file.Data()[size], '!');
  }
}

TEST_F(MappedFileTest, ThreadsThatReadWhereBytesAreGoneSeeLineFeeds) {
  constexpr int kRounds = 50;
  for (int round = 0; round < kRounds; ++round) {
    WriteFile("in", std::string(20 * kPage, 'x'));
    MappedFile file;
    ASSERT_TRUE(Map(file, 20 * kPage));
    std::filesystem::resize_file(PathOf("in"), 0);
    std::atomic<int> others{0};
    const auto read = [&] {
      for (std::size_t at = kPage / 2; at < 19 * kPage; at += kPage)
        others += file.Data()[at] == '\n' ? 0 : 1;
    };
    std::thread first(read);
    std::thread second(read);
    first.join();
    second.join();
    EXPECT_EQ(others.load(), 0);
  }
}

TEST_F(MappedFileTest, OnlyTheFileThatWasCutIsCutShort) {
  constexpr std::size_t kSize = 10'000;
  WriteFile("in", std::string(kSize, 'x'));
  MappedFile cut;
  ASSERT_TRUE(Map(cut, kSize));
  std::filesystem::rename(PathOf("in"), PathOf("cut"));
  WriteFile("in", std::string(kSize, 'y'));
  MappedFile whole;
  ASSERT_TRUE(Map(whole, kSize));
  std::filesystem::resize_file(PathOf("cut"), 0);
  EXPECT_EQ(cut.Data()[0], '\n');
  EXPECT_EQ(whole.Data()[0], 'y');
  EXPECT_TRUE(cut.IsCutShort());
  EXPECT_FALSE(whole.IsCutShort());
}

TEST_F(MappedFileTest, MovesAndTakesAnotherFileOver) {
  WriteFile("in", std::string(2 * kPage, 'x'));
  MappedFile file;
  ASSERT_TRUE(Map(file, 2 * kPage));
  MappedFile moved(std::move(file));
  EXPECT_EQ(Bytes(moved, 3), "xxx");
  WriteFile("in", std::string(2 * kPage, 'y'));
  ASSERT_TRUE(Map(moved, 2 * kPage));
  EXPECT_EQ(Bytes(moved, 3), "yyy");
}

TEST_F(MappedFileTest, AShortFileAndWhatIsNoFileAreNotMapped) {
  WriteFile("in", std::string(kPage, 'x'));
  MappedFile file;
  EXPECT_FALSE(Map(file, 0));
  EXPECT_FALSE(Map(file, kPage));
  EXPECT_FALSE(Map(file, 10 * kPage));
  EXPECT_FALSE(file.Map(-1, 10 * kPage, kSlackOfPage));
  EXPECT_FALSE(file.IsMapped());
}

TEST_F(MappedFileTest, MoreThanItCanWatchAreRefusedAndNoneIsLost) {
  WriteFile("in", std::string(2 * kPage, 'x'));
  std::vector<MappedFile> files(100);
  std::size_t mapped = 0;
  for (MappedFile& file : files)
    mapped += Map(file, 2 * kPage) ? 1 : 0;
  EXPECT_GE(mapped, 8u);
  EXPECT_LT(mapped, files.size());
  files.clear();
  MappedFile file;
  EXPECT_TRUE(Map(file, 2 * kPage));
}

}  // namespace
}  // namespace bomparser
