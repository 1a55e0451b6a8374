#include "tnbase/MappedFile.h"

#include "tests/support/TestFolder.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace bomparser {
namespace {

constexpr std::size_t kSlack = 65;

class MappedFileTest : public TestFolder {
 protected:
  bool Map(MappedFile& file, std::size_t size) {
    const int handle = ::open(PathOf("in").c_str(), O_RDONLY | O_CLOEXEC);
    const bool mapped = file.Map(handle, size, kSlack);
    ::close(handle);
    return mapped;
  }
  static std::string_view Bytes(const MappedFile& file, std::size_t size) {
    return {file.Data(), size};
  }
};

TEST_F(MappedFileTest, HoldsTheFileAndRoomBehindItWhateverItsSize) {
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  for (const std::size_t size : {std::size_t{1}, page - kSlack, page - 1, page, page + 1}) {
    const std::string text(size, 'x');
    WriteFile("in", text);
    MappedFile file;
    ASSERT_TRUE(Map(file, size));
    EXPECT_EQ(Bytes(file, size), text);
    for (std::size_t i = 0; i < kSlack; ++i)
      file.Data()[size + i] = '!';
    EXPECT_EQ(Bytes(file, size + kSlack), text + std::string(kSlack, '!'));
    EXPECT_FALSE(file.IsDamaged());
  }
}

TEST_F(MappedFileTest, WhatIsWrittenStaysInMemory) {
  WriteFile("in", "abc");
  MappedFile file;
  ASSERT_TRUE(Map(file, 3));
  file.Data()[1] = '-';
  EXPECT_EQ(Bytes(file, 3), "a-c");
  EXPECT_EQ(BytesOf("in"), "abc");
}

TEST_F(MappedFileTest, WhereBytesAreGoneStandLineFeedsAndItIsDamaged) {
  constexpr std::size_t kSize = 100'000;
  WriteFile("in", std::string(kSize, 'x'));
  MappedFile file;
  ASSERT_TRUE(Map(file, kSize));
  std::filesystem::resize_file(PathOf("in"), 0);
  EXPECT_EQ(file.Data()[0], '\n');
  EXPECT_EQ(file.Data()[kSize - 1], '\n');
  EXPECT_TRUE(file.IsDamaged());
}

TEST_F(MappedFileTest, OnlyTheFileThatWasCutIsDamaged) {
  constexpr std::size_t kSize = 10'000;
  WriteFile("in", std::string(kSize, 'x'));
  MappedFile cut;
  ASSERT_TRUE(Map(cut, kSize));
  std::filesystem::rename(PathOf("in"), PathOf("cut"));
  WriteFile("in", std::string(kSize, 'y'));
  MappedFile whole;
  ASSERT_TRUE(Map(whole, kSize));
  std::filesystem::resize_file(PathOf("cut"), 0);
  EXPECT_EQ(cut.Data()[kSize - 1], '\n');
  EXPECT_EQ(whole.Data()[kSize - 1], 'y');
  EXPECT_TRUE(cut.IsDamaged());
  EXPECT_FALSE(whole.IsDamaged());
}

TEST_F(MappedFileTest, MovesAndTakesAnotherFileOver) {
  WriteFile("in", "abc");
  MappedFile file;
  ASSERT_TRUE(Map(file, 3));
  MappedFile moved(std::move(file));
  EXPECT_EQ(Bytes(moved, 3), "abc");
  WriteFile("in", "de");
  ASSERT_TRUE(Map(moved, 2));
  EXPECT_EQ(Bytes(moved, 2), "de");
}

TEST_F(MappedFileTest, NothingAndWhatIsNoFileCannotBeMapped) {
  WriteFile("in", "");
  MappedFile file;
  EXPECT_FALSE(Map(file, 0));
  EXPECT_FALSE(file.Map(-1, 10, kSlack));
  EXPECT_FALSE(file.IsMapped());
}

TEST_F(MappedFileTest, MoreThanItCanWatchAreRefusedAndNoneIsLost) {
  WriteFile("in", "abc");
  std::vector<MappedFile> files(100);
  std::size_t mapped = 0;
  for (MappedFile& file : files)
    mapped += Map(file, 3) ? 1 : 0;
  EXPECT_GE(mapped, 8u);
  EXPECT_LT(mapped, files.size());
  files.clear();
  MappedFile file;
  EXPECT_TRUE(Map(file, 3));
}

}  // namespace
}  // namespace bomparser
