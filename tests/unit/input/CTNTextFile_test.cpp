#include "input/CTNTextFile.h"

#include "tests/support/ParsedFakes.h"
#include "tests/support/TestFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <thread>

namespace bomparser {
namespace {

std::string Read(CTNTextFile& file) {
  std::string error;
  const auto text = file.ReadAll(error);
  return text ? std::string(text->View()) : "<" + error + ">";
}

class CTNTextFileTest : public TestFolder {
 protected:
  std::string TextOf(const std::string& bytes) {
    WriteFile("in", bytes);
    std::string error;
    EXPECT_TRUE(file.Open(PathOf("in"), error)) << error;
    return Read(file);
  }

  CTNTextFile file;
};

TEST_F(CTNTextFileTest, ACrLfPairIsOneLineFeed) {
  EXPECT_EQ(TextOf("a\r\nbc\r\n\r\nd"), "a\nbc\n\nd");
  EXPECT_EQ(TextOf("\r\n"), "\n");
}

TEST_F(CTNTextFileTest, ACrOnItsOwnIsAnOrdinaryCharacter) {
  EXPECT_EQ(TextOf("a\rb\r"), "a\rb\r");
  EXPECT_EQ(TextOf("\r\r\n\n\r"), "\r\n\n\r");
  EXPECT_EQ(TextOf("\r\r\r"), "\r\r\r");
}

TEST_F(CTNTextFileTest, NulControlZAndHighBytesAreKept) {
  const std::string bytes("a\0b\x1A\xFF\n\0", 7);
  EXPECT_EQ(TextOf(bytes), bytes);
}

TEST_F(CTNTextFileTest, ManyCrLfPairsAreFolded) {
  std::string bytes;
  std::string text;
  for (int i = 0; i < 5000; ++i) {
    bytes += std::string(static_cast<std::size_t>(i % 7), 'x') + "\r\n";
    text += std::string(static_cast<std::size_t>(i % 7), 'x') + "\n";
  }
  EXPECT_TRUE(TextOf(bytes) == text);
}

TEST_F(CTNTextFileTest, EveryReadingSeesTheFileAsItIsThen) {
  EXPECT_EQ(TextOf("old\n"), "old\n");
  WriteFile("in", "new and longer\n");
  EXPECT_EQ(Read(file), "new and longer\n");
  WriteFile("in", "cut");
  EXPECT_EQ(Read(file), "cut");
}

TEST_F(CTNTextFileTest, ATextThatIsHeldIsNotReadAgainUntilItIsLetGo) {
  TextOf("old");
  file.HoldText(true);
  EXPECT_EQ(Read(file), "old");
  WriteFile("in", "new");
  EXPECT_EQ(Read(file), "old");
  file.HoldText(false);
  EXPECT_EQ(Read(file), "new");
}

TEST_F(CTNTextFileTest, OpeningAnotherFileForgetsAHeldText) {
  file.HoldText(true);
  EXPECT_EQ(TextOf("old"), "old");
  EXPECT_EQ(TextOf("new"), "new");
}

TEST_F(CTNTextFileTest, ThePipesTextIsKept) {
  ASSERT_EQ(::mkfifo(PathOf("pipe").c_str(), 0600), 0);
  std::thread writer([&] { WriteFile("pipe", "a\r\nb"); });
  std::string error;
  EXPECT_TRUE(file.Open(PathOf("pipe"), error));
  EXPECT_EQ(Read(file), "a\nb");
  writer.join();
  file.HoldText(true);
  EXPECT_EQ(Read(file), "a\nb");
  file.HoldText(false);
  EXPECT_EQ(Read(file), "a\nb");
}

TEST_F(CTNTextFileTest, AFileOf2GiBIsRefusedWhenItIsOpened) {
  WriteFile("in", "");
  std::filesystem::resize_file(PathOf("in"), CTNTextFile::kTooLong);
  std::string error;
  EXPECT_FALSE(file.Open(PathOf("in"), error));
  EXPECT_EQ(error, PathOf("in") + " is too large: files of 2 GiB and more cannot be read");
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(CTNTextFileTest, AFileThatHasGrownTo2GiBIsRefusedWhenItIsRead) {
  TextOf("small");
  std::filesystem::resize_file(PathOf("in"), CTNTextFile::kTooLong + 1);
  EXPECT_EQ(Read(file),
            "<" + PathOf("in") + " is too large: files of 2 GiB and more cannot be read>");
  std::filesystem::resize_file(PathOf("in"), 5);
  EXPECT_EQ(Read(file), "small");
}

TEST_F(CTNTextFileTest, AFileOfOneByteLessIsOpened) {
  WriteFile("in", "");
  std::filesystem::resize_file(PathOf("in"), CTNTextFile::kTooLong - 1);
  std::string error;
  EXPECT_TRUE(file.Open(PathOf("in"), error));
  EXPECT_EQ(file.GetLength(), CTNTextFile::kTooLong - 1);
}

TEST_F(CTNTextFileTest, NoMemoryForTheTextIsBadAllocAndTheFileCanBeReadLater) {
  TextOf("text");
  std::string error;
  {
    const test::MemoryRunsOut memory(1);
    EXPECT_THROW(file.ReadAll(error), std::bad_alloc);
  }
  EXPECT_EQ(Read(file), "text");
}

TEST_F(CTNTextFileTest, AMissingFileIsToldAndNothingIsOpen) {
  std::string error;
  EXPECT_FALSE(file.Open(PathOf("none"), error));
  EXPECT_EQ(error, "cannot read " + PathOf("none") + ": No such file or directory");
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(CTNTextFileTest, TheTitleIsTheNameWithoutTheFolder) {
  TextOf("x");
  EXPECT_EQ(file.GetFileTitle(), "in");
  file.SetFilePath("/elsewhere/board.top.txt");
  EXPECT_EQ(file.GetFilePath(), "/elsewhere/board.top.txt");
  EXPECT_EQ(file.GetFileTitle(), "board.top.txt");
}

/// A text that is long enough for being mapped.
std::string LongText(const std::string& line) {
  std::string text;
  while (text.size() < std::size_t{1} << 20)
    text += line;
  return text;
}

class MappedCTNTextFileTest : public CTNTextFileTest {
 protected:
  MappedCTNTextFileTest() { file.SetMapping(true); }
};

TEST_F(MappedCTNTextFileTest, IsTheSameText) {
  const std::string text = LongText("R1 10k\n") + "open";
  EXPECT_TRUE(TextOf(text) == text);
  EXPECT_EQ(TextOf("short"), "short");
  EXPECT_EQ(TextOf(""), "");
}

TEST_F(MappedCTNTextFileTest, LineEndsAreFoldedAndTheFileStaysAsItIs) {
  const std::string bytes = LongText("R1 10k\r\n");
  std::string folded;
  for (const char c : bytes) {
    if (c != '\r') folded += c;
  }
  EXPECT_TRUE(TextOf(bytes) == folded);
  EXPECT_TRUE(BytesOf("in") == bytes);
}

TEST_F(MappedCTNTextFileTest, BehindItStandLineFeeds) {
  WriteFile("in", LongText("R1 10k\r\n"));
  std::string error;
  ASSERT_TRUE(file.Open(PathOf("in"), error));
  const auto text = file.ReadAll(error);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::string(text->Data() + text->Size(), CTNInputText::kSlack),
            std::string(CTNInputText::kSlack, '\n'));
  EXPECT_TRUE(text->IsIntact());
}

TEST_F(MappedCTNTextFileTest, EveryReadingSeesTheFileAsItIsThen) {
  const std::string first = LongText("first\n");
  EXPECT_TRUE(TextOf(first) == first);
  const std::string second = LongText("second\n");
  WriteFile("other", second);
  std::filesystem::rename(PathOf("other"), PathOf("in"));
  EXPECT_TRUE(Read(file) == second);
}

TEST_F(MappedCTNTextFileTest, AFileThatIsCutShortIsNotIntact) {
  WriteFile("in", LongText("R1 10k\n"));
  std::string error;
  ASSERT_TRUE(file.Open(PathOf("in"), error));
  const auto text = file.ReadAll(error);
  ASSERT_NE(text, nullptr);
  std::filesystem::resize_file(PathOf("in"), 10);
  EXPECT_FALSE(text->IsIntact());
}

}  // namespace
}  // namespace bomparser
