#include "ui/controls/ProfileFile.h"

#include "tests/support/TestFolder.h"
#include "tests/ui/support/Environment.h"

#include <climits>
#include <string>
#include <utility>
#include <vector>

namespace bomparser::test {
namespace {

class ProfileFileTest : public TestFolder {
 protected:
  QString File() const { return QString::fromStdString(PathOf("bomparser.ini")); }
  /// The setting as another process reads it: nothing is left of this one but the file.
  std::string ReadAnew(std::string_view section, std::string_view key) const {
    const std::string copy = PathOf("copy.ini");
    std::filesystem::copy_file(PathOf("bomparser.ini"), copy,
                               std::filesystem::copy_options::overwrite_existing);
    return ProfileFile(QString::fromStdString(copy)).GetProfileString(section, key, "(none)");
  }

  ProfileFile profile{File()};
};

TEST_F(ProfileFileTest, SectionsAndKeysStandInTheFileAsTheyAreNamed) {
  EXPECT_TRUE(profile.WriteProfileInt("BOM Parser", "TAB_STOP", 8));
  EXPECT_TRUE(
      profile.WriteProfileString("BOM Parser", "TEMPLATE_SEARCH_PATH", "D:\\TN HOME\\100 %"));
  EXPECT_TRUE(profile.WriteProfileString("", "ENTITY_RECORD_LIST", "40,100,75"));
  EXPECT_TRUE(profile.WriteProfileInt("Help Window", "WIDTH", 760));
  EXPECT_EQ(BytesOf("bomparser.ini"),
            "ENTITY_RECORD_LIST=40,100,75\n"
            "\n"
            "[BOM Parser]\n"
            "TAB_STOP=8\n"
            "TEMPLATE_SEARCH_PATH=D:\\TN HOME\\100 %\n"
            "\n"
            "[Help Window]\n"
            "WIDTH=760\n");
}

TEST_F(ProfileFileTest, AFileOfOneSectionBeginsWithItsName) {
  EXPECT_TRUE(profile.WriteProfileInt("BOM Parser", "TAB_STOP", 8));
  EXPECT_EQ(BytesOf("bomparser.ini"), "[BOM Parser]\nTAB_STOP=8\n");
}

TEST_F(ProfileFileTest, EveryValueComesBackByteForByte) {
  std::string everyByte;
  for (int byte = 0; byte <= UCHAR_MAX; ++byte)
    everyByte += static_cast<char>(byte);
  const std::vector<std::string> values = {"",
                                           " ",
                                           "  leading and trailing  ",
                                           "\t",
                                           "a=b",
                                           "[x]",
                                           "; no comment",
                                           "# none",
                                           "100%",
                                           "%41",
                                           "%%41",
                                           "%4",
                                           "%2541",
                                           "%",
                                           "%0a",
                                           "%0A",
                                           "line\nfeed\r\n",
                                           "quote\"s\\n",
                                           "/home/m\xC3\xBCller/Stückliste",
                                           "/home/m\xFCller",
                                           "\xEF\xBB\xBF",
                                           "a,b;c",
                                           "@Invalid()",
                                           "@ByteArray(x)",
                                           everyByte};
  for (std::size_t i = 0; i < values.size(); ++i)
    ASSERT_TRUE(profile.WriteProfileString("BOM Parser", "KEY_" + std::to_string(i), values[i]));
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_EQ(ReadAnew("BOM Parser", "KEY_" + std::to_string(i)), values[i]) << i;
}

TEST_F(ProfileFileTest, OrdinaryTextStandsAsItIsAndBytesThatAreNoTextAreWritten) {
  profile.WriteProfileString("S", "TEXT", "/home/m\xC3\xBCller/100 % \\ \"x\" %zz");
  profile.WriteProfileString("S", "BYTES", "/home/m\xFCller\n");
  EXPECT_EQ(BytesOf("bomparser.ini"),
            "[S]\nBYTES=/home/m%FCller%0A\nTEXT=/home/m\xC3\xBCller/100 % \\ \"x\" %zz\n");
}

TEST_F(ProfileFileTest, OddNamesAreKeptApart) {
  const std::vector<std::pair<std::string, std::string>> names = {
      {"", "A"},    {"A", "A"},    {"a", "A"},     {"A", "a"},       {"A/B", "C"},
      {"A", "B/C"}, {"A]", "x=y"}, {" A ", " A "}, {"General", "A"}, {"\xFF", "\xFE"},
      {"", "[A]"},  {"", ";A"},    {"%41", "A"}};
  for (std::size_t i = 0; i < names.size(); ++i)
    ASSERT_TRUE(profile.WriteProfileInt(names[i].first, names[i].second, static_cast<int>(i)));
  for (std::size_t i = 0; i < names.size(); ++i)
    EXPECT_EQ(ReadAnew(names[i].first, names[i].second), std::to_string(i)) << i;
}

TEST_F(ProfileFileTest, WhatIsNotStoredGivesTheFallback) {
  EXPECT_EQ(profile.GetProfileString("BOM Parser", "TAB_STOP", "8"), "8");
  EXPECT_EQ(profile.GetProfileInt("BOM Parser", "TAB_STOP", 8), 8);
  profile.WriteProfileString("BOM Parser", "EMPTY", "");
  EXPECT_EQ(profile.GetProfileString("BOM Parser", "EMPTY", "fallback"), "");
  EXPECT_EQ(Names(), std::vector<std::string>({"bomparser.ini"}));
}

TEST_F(ProfileFileTest, IntegersAreReadFromTextThatIsOne) {
  for (const int value : {0, -1, 1023, INT_MAX, INT_MIN}) {
    EXPECT_TRUE(profile.WriteProfileInt("S", "N", value));
    EXPECT_EQ(profile.GetProfileInt("S", "N", 7), value);
    EXPECT_EQ(profile.GetProfileString("S", "N", ""), std::to_string(value));
  }
  for (const char* text : {"", "x", "8x", "99999999999"}) {
    profile.WriteProfileString("S", "N", text);
    EXPECT_EQ(profile.GetProfileInt("S", "N", 7), 7) << text;
  }
}

TEST_F(ProfileFileTest, AFileEditedByHandIsRead) {
  WriteFile("bomparser.ini",
            "\xEF\xBB\xBF; mine\r\n"
            "LOOSE = 1 \r\n"
            "nonsense\r\n"
            "[ BOM Parser ]\r\n"
            "# so that tabs are narrow\r\n"
            "  TAB_STOP\t=  4  \r\n"
            "[unclosed\r\n"
            "X=2");
  EXPECT_EQ(profile.GetProfileInt("BOM Parser", "TAB_STOP", 8), 4);
  EXPECT_EQ(profile.GetProfileString("", "LOOSE", ""), "1");
  EXPECT_EQ(profile.GetProfileString("unclosed", "X", ""), "2");
}

TEST_F(ProfileFileTest, WhatAnotherProcessHasWrittenMeanwhileStays) {
  profile.WriteProfileInt("S", "A", 1);
  WriteFile("bomparser.ini", "[S]\nA=1\nOTHERS=22222\n");
  profile.WriteProfileInt("S", "B", 2);
  EXPECT_EQ(BytesOf("bomparser.ini"), "[S]\nA=1\nB=2\nOTHERS=22222\n");
}

TEST_F(ProfileFileTest, AFileThatCannotBeWrittenIsReported) {
  WriteFile("file", "in the way");
  ProfileFile unwritable(QString::fromStdString(PathOf("file/bomparser.ini")));
  EXPECT_FALSE(unwritable.WriteProfileString("S", "A", "x"));
  EXPECT_FALSE(unwritable.WriteProfileInt("S", "A", 1));
  EXPECT_EQ(BytesOf("file"), "in the way");
  MakeFolder("folder.ini");
  EXPECT_FALSE(
      ProfileFile(QString::fromStdString(PathOf("folder.ini"))).WriteProfileInt("S", "A", 1));
}

TEST_F(ProfileFileTest, FoldersOnTheWayAreMade) {
  ProfileFile deep(QString::fromStdString(PathOf("new/config/bomparser.ini")));
  EXPECT_TRUE(deep.WriteProfileInt("S", "A", 1));
  EXPECT_EQ(BytesOf("new/config/bomparser.ini"), "[S]\nA=1\n");
}

TEST_F(ProfileFileTest, TheUsersFileLiesInTheConfigurationFolder) {
  Environment environment;
  environment.Set("XDG_CONFIG_HOME", QByteArray::fromStdString(Folder()));
  EXPECT_EQ(ProfileFile::UsersFile().toStdString(), PathOf("bomparser/bomparser.ini"));
}

TEST_F(ProfileFileTest, TheHelpPathIsKeptInMemory) {
  profile.SetHelpFilePath("\xFF.hlp");
  EXPECT_EQ(profile.GetHelpFilePath(), "\xFF.hlp");
  profile.ShowHelp({});
  EXPECT_TRUE(Names().empty());
}

}  // namespace
}  // namespace bomparser::test
