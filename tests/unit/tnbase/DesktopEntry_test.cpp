#include "tnbase/DesktopEntry.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace bomparser {
namespace {

using Arguments = std::vector<std::string>;

Arguments Open(const std::string& exec, const std::string& path = "/tmp/a.txt") {
  const std::string text = "[Desktop Entry]\nName=My Editor\nIcon=pencil\nExec=" + exec + "\n";
  return MakeOpenArguments({"/apps/editor.desktop", text}, path);
}

TEST(DesktopEntryValueTest, IsThatOfTheKeyInItsGroup) {
  const std::string text =
      "# key=comment\n[One]\nkey=1\nother = b c \n[Two]\n key =2\r\nkey=3\n[Three]";
  EXPECT_EQ(GetDesktopEntryValue(text, "One", "key"), "1");
  EXPECT_EQ(GetDesktopEntryValue(text, "One", "other"), "b c");
  EXPECT_EQ(GetDesktopEntryValue(text, "Two", "key"), "2");
  EXPECT_EQ(GetDesktopEntryValue(text, "Two", "other"), "");
  EXPECT_EQ(GetDesktopEntryValue(text, "Three", "key"), "");
  EXPECT_EQ(GetDesktopEntryValue(text, "Four", "key"), "");
}

TEST(DesktopEntryValueTest, GoesToTheEndOfTheLine) {
  EXPECT_EQ(GetDesktopEntryValue("[G]\nExec=a=b #c [d]", "G", "Exec"), "a=b #c [d]");
}

TEST(DesktopEntryValueTest, OfWhatIsNoSuchFileIsEmpty) {
  for (const char* text : {"", "[", "[]", "key=1", "[G\nkey", "\n\n=\n", "\xFF\xFE[G]\nkey=1"}) {
    EXPECT_EQ(GetDesktopEntryValue(text, "H", "key"), "") << text;
  }
}

TEST(DesktopEntryTextTest, EscapesAreResolved) {
  EXPECT_EQ(UnescapeDesktopEntryText(R"(a\sb\tc\nd\re\\s\;\)"), "a b\tc\nd\re\\s;\\");
}

TEST(DesktopEntryListTest, SemicolonsSeparateAndMayEndIt) {
  EXPECT_EQ(SplitDesktopEntryList("a;b c; ;;d;"), (Arguments{"a", "b c", "d"}));
  EXPECT_EQ(SplitDesktopEntryList("a"), (Arguments{"a"}));
  EXPECT_EQ(SplitDesktopEntryList(""), Arguments());
}

TEST(OpenArgumentsTest, EveryCodeForAFileIsThePath) {
  for (const char* code : {"%f", "%F", "%u", "%U"}) {
    EXPECT_EQ(Open(std::string("editor -x ") + code), (Arguments{"editor", "-x", "/tmp/a.txt"}));
  }
  EXPECT_EQ(Open("editor --file=%f"), (Arguments{"editor", "--file=/tmp/a.txt"}));
}

TEST(OpenArgumentsTest, CommandWithoutAPlaceForTheFileGetsItLast) {
  EXPECT_EQ(Open("editor -x"), (Arguments{"editor", "-x", "/tmp/a.txt"}));
}

TEST(OpenArgumentsTest, PathStaysOneArgumentWhateverItHolds) {
  const std::string path = "/tmp/ a \"b\" 'c' $d `e` \\ %f \xC3\xA4 \xE4 \n;";
  EXPECT_EQ(Open("editor %f", path), (Arguments{"editor", path}));
}

TEST(OpenArgumentsTest, CodesForNameFileIconAndPercentAreFilled) {
  EXPECT_EQ(Open("editor %c %k %i 100%% %f"),
            (Arguments{"editor", "My Editor", "/apps/editor.desktop", "--icon", "pencil", "100%",
                       "/tmp/a.txt"}));
}

TEST(OpenArgumentsTest, IconThatThereIsNotIsNoArgument) {
  EXPECT_EQ(MakeOpenArguments({"", "[Desktop Entry]\nExec=editor %i %f\n"}, "a"),
            (Arguments{"editor", "a"}));
}

TEST(OpenArgumentsTest, CodesOfFormerTimesStandForNothing) {
  EXPECT_EQ(Open("editor %d %D %n %N %v %m %f"), (Arguments{"editor", "/tmp/a.txt"}));
}

TEST(OpenArgumentsTest, QuotedArgumentHoldsBlanksAndEscapes) {
  EXPECT_EQ(Open(R"("/opt/my editor" "" a"b c"d "q\\"r \\$s \\\\ \\`t" %f)"),
            (Arguments{"/opt/my editor", "", "ab cd", "q\"r $s \\ `t", "/tmp/a.txt"}));
}

TEST(OpenArgumentsTest, CommandThatBreaksTheRulesIsNone) {
  EXPECT_EQ(Open(R"(editor "open %f)"), Arguments());
  EXPECT_EQ(Open("editor %x %f"), Arguments());
  EXPECT_EQ(Open("editor %f %"), Arguments());
  EXPECT_EQ(Open(""), Arguments());
  EXPECT_EQ(MakeOpenArguments({"", "[Desktop Action New]\nExec=editor %f\n"}, "a"), Arguments());
}

}  // namespace
}  // namespace bomparser
