#include "ui/dialogs/ParserSettings.h"

#include "tests/support/TestFolder.h"
#include "tests/ui/support/UiTest.h"

#include <filesystem>

namespace bomparser::test {
namespace {

constexpr const char* kSection = "BOM Parser";

class ParserSettingsTest : public TestFolder {
 protected:
  ParserSettingsTest() : m_before(std::filesystem::current_path()) {
    std::filesystem::current_path(Folder());
  }
  ~ParserSettingsTest() override { std::filesystem::current_path(m_before); }
  ParserSettings Read() const { return ReadSettings(host, kSection); }
  void Store(const std::string& key, const std::string& value) {
    host.profile[std::string(kSection) + "/" + key] = value;
  }

  FakeHostApp host;

 private:
  std::filesystem::path m_before;
};

TEST_F(ParserSettingsTest, WithoutStoredSettingsTheDefaultsAreRead) {
  const ParserSettings settings = Read();
  EXPECT_EQ(settings.tabStop, 8);
  EXPECT_EQ(settings.autoApplicationFlags, 1023U);
  EXPECT_EQ(settings.templateSearchPath, std::filesystem::current_path().string());
  EXPECT_EQ(settings.inputFolder, std::filesystem::current_path().string());
  EXPECT_EQ(settings.templateFolder, std::filesystem::current_path().string());
  EXPECT_EQ(settings.outputPath, "");
}

TEST_F(ParserSettingsTest, StoredSettingsAreRead) {
  Store("TAB_STOP", "4");
  Store("TEMPLATE_SEARCH_PATH", "/s");
  Store("INPUT_FILE_PATH", "/i");
  Store("TEMPLATE_FILE_PATH", "/t");
  Store("AUTO_TRANS_FLAGS", "5");
  const ParserSettings settings = Read();
  EXPECT_EQ(settings.tabStop, 4);
  EXPECT_EQ(settings.templateSearchPath, "/s");
  EXPECT_EQ(settings.inputFolder, "/i");
  EXPECT_EQ(settings.templateFolder, "/t");
  EXPECT_EQ(settings.autoApplicationFlags, 5U);
}

TEST_F(ParserSettingsTest, TheOutputPathIsNeverRead) {
  Store("OUTPUT_FILE_PATH_NAME", "/somewhere/list.xml");
  EXPECT_EQ(Read().outputPath, "");
}

TEST_F(ParserSettingsTest, AStoredTabStopOutOfRangeReadsAsEight) {
  for (const auto& [stored, expected] :
       {std::pair("51", 8), std::pair("-1", 8), std::pair("0", 0), std::pair("50", 50)}) {
    Store("TAB_STOP", stored);
    EXPECT_EQ(Read().tabStop, expected) << stored;
  }
}

TEST_F(ParserSettingsTest, ACurrentFolderWithALongPathIsNoSearchPath) {
  std::filesystem::path deep = std::filesystem::current_path();
  while (deep.string().size() <= 260)
    deep /= std::string(50, 'd');
  std::filesystem::create_directories(deep);
  std::filesystem::current_path(deep);
  const ParserSettings settings = Read();
  EXPECT_EQ(settings.templateSearchPath, "");
  EXPECT_EQ(settings.inputFolder, deep.string()) << "the others have no such limit";
}

TEST_F(ParserSettingsTest, AllSixAreWrittenInTheOrderThatHostsKnow) {
  ParserSettings settings;
  settings.tabStop = 3;
  settings.templateSearchPath = "/s";
  settings.inputFolder = "/i";
  settings.templateFolder = "/t";
  settings.autoApplicationFlags = 0;
  EXPECT_TRUE(WriteSettings(host, kSection, settings));
  EXPECT_EQ(host.written, (std::vector<std::string>{
                              "AUTO_TRANS_FLAGS", "TAB_STOP", "TEMPLATE_SEARCH_PATH",
                              "INPUT_FILE_PATH", "OUTPUT_FILE_PATH_NAME", "TEMPLATE_FILE_PATH"}));
  EXPECT_EQ(host.profile,
            (std::map<std::string, std::string>{{"BOM Parser/AUTO_TRANS_FLAGS", "0"},
                                                {"BOM Parser/TAB_STOP", "3"},
                                                {"BOM Parser/TEMPLATE_SEARCH_PATH", "/s"},
                                                {"BOM Parser/INPUT_FILE_PATH", "/i"},
                                                {"BOM Parser/OUTPUT_FILE_PATH_NAME", ""},
                                                {"BOM Parser/TEMPLATE_FILE_PATH", "/t"}}));
}

}  // namespace
}  // namespace bomparser::test
