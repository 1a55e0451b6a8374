#include "tests/support/ApplicationsFolder.h"
#include "tests/ui/dialogs/MainDialogTest.h"

#include <filesystem>

namespace bomparser::test {
namespace {

constexpr int kPatience = 20'000;  // Milliseconds.

/// A desktop whose editor for texts writes down what it is given.
class Desktop : public ApplicationsFolder {
 public:
  void TestBody() override {}
  void AddEditor() const {
    AddApplication("editor");
    AddProgram("editor", "#!/bin/sh\nprintf '%s' \"$1\" > '" + PathOf("part") +
                             "'\nPATH=/usr/bin:/bin\nmv '" + PathOf("part") + "' '" +
                             PathOf("opened") + "'\n");
  }
  /// The path that the editor was started with.
  std::string Opened() const {
    EXPECT_TRUE(QTest::qWaitFor([this] { return BytesOf("opened") != "(none)"; }, kPatience));
    return BytesOf("opened");
  }
};

class MainDialogEditorTest : public MainDialogTest {
 protected:
  Desktop desktop;
};

TEST_F(MainDialogEditorTest, EditOpensTheInputFileInTheTextEditor) {
  desktop.AddEditor();
  OpenText("a\n", "parts List.txt");
  Press(Ctrl::EditInput);
  EXPECT_EQ(desktop.Opened(), PathOf("parts List.txt"));
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(MainDialogEditorTest, TheCommandOfTheViewOpensItAsWell) {
  desktop.AddEditor();
  OpenText("a\n");
  Rows().SelectRowAlone(0);
  Choose(Rows(), Cmd::EditFile);
  EXPECT_EQ(desktop.Opened(), PathOf("input.txt"));
}

TEST_F(MainDialogEditorTest, WithoutAnEditorTheUserIsTold) {
  OpenText("a\n");
  Press(Ctrl::EditInput);
  EXPECT_EQ(dialogs.boxes,
            Boxes{"error|BOM Parser|No program for text files is set up on this system.|Ok"});
}

}  // namespace
}  // namespace bomparser::test
