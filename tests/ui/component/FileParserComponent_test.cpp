#include "entry/component/FileParserComponent.h"

#include "tests/ui/component/ComponentTest.h"

#include <climits>
#include <cstdlib>

namespace bomparser::test {
namespace {

using FileParserComponentTest = ComponentTest;

TEST_F(FileParserComponentTest, EverySecondArgumentGivesTheSameThreeValuesEveryTime) {
  for (const int number : {0, 1, 1, -1, 4711, INT_MAX, INT_MIN}) {
    appinfo_struct info{.name = "before", .version = "before", .code = 1, .host = &host};
    init(&info, number);
    EXPECT_EQ(info.name, "TN File Parser") << number;
    EXPECT_EQ(info.version, "17.1.8") << number;
    EXPECT_EQ(info.code, 0x544E4650U) << number;
    EXPECT_EQ(info.host, &host) << number;
  }
}

TEST_F(FileParserComponentTest, NoRecordIsNoMistakeAndKeepsTheHost) {
  MakeApplication();
  init(nullptr, 0);
  Display([](QDialog& dialog) { DialogUser::Press(dialog, Ctrl::Exit); });
  EXPECT_EQ(host.profile.at("BOM Parser/TAB_STOP"), "8");
}

TEST_F(FileParserComponentTest, TheHostNamedLastServes) {
  MakeApplication();
  FakeHostApp other;
  Introduce(&other);
  Display([](QDialog& dialog) { DialogUser::Press(dialog, Ctrl::Exit); });
  EXPECT_TRUE(host.profile.empty());
  EXPECT_EQ(other.profile.at("BOM Parser/TAB_STOP"), "8");
}

TEST_F(FileParserComponentTest, WithoutAHostsProfileASettingsFileServes) {
  MakeApplication();
  Introduce(nullptr);
  Display([](QDialog& dialog) { DialogUser::Press(dialog, Ctrl::Exit); });
  const std::string settings = BytesOf("bomparser/bomparser.ini");
  EXPECT_NE(settings.find("[BOM Parser]\n"), std::string::npos) << settings;
  EXPECT_NE(settings.find("\nTAB_STOP=8\n"), std::string::npos) << settings;
  EXPECT_TRUE(host.profile.empty());
}

TEST_F(FileParserComponentTest, WithoutAHostHelpDoesNothing) {
  MakeApplication();
  Introduce(nullptr);
  EXPECT_EQ(Display([](QDialog& dialog) {
              DialogUser::Press(dialog, Ctrl::Help);
              QTest::keyClick(&dialog, Qt::Key_F1);
              EXPECT_EQ(QApplication::activeModalWidget(), &dialog);
            }),
            1);
}

TEST_F(FileParserComponentTest, AProcessThatHasLoadedItEndsInOrder) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // In a process that starts anew.
  EXPECT_EXIT(
      {
        MakeApplication();
        Display();
        Introduce(&host);
        application.reset();
        std::exit(7);
      },
      testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace bomparser::test
