#include "tests/ui/desktop/DesktopTest.h"

#include <QTabWidget>
#include <csignal>
#include <filesystem>

namespace bomparser::test {
namespace {

/// In a file of its own behind the others: a process that was asked to end stays asked.
class DesktopInterruptTest : public DesktopTest {
 protected:
  /// The temporary folders of the program; the libraries may have theirs.
  int CountOurs() const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(PathOf("temporary")))
      count += entry.path().filename().string().starts_with("bomparser") ? 1 : 0;
    return count;
  }
};

TEST_F(DesktopInterruptTest, ARequestToEndClosesTheDialogAndLeavesNoTemporaryFiles) {
  MakeFolder("temporary");
  environment.Set("TMPDIR", QByteArray::fromStdString(PathOf("temporary")));
  EXPECT_EQ(Open({"--input", BOMPARSER_SOURCE_DIR "/examples/placement/input.txt"},
                 [this](QDialog& dialog) {
                   // The results page has its copy of the list made.
                   FindControl<QWidget>(dialog, Ctrl::InputSheet)
                       ->findChild<QTabWidget*>()
                       ->setCurrentIndex(1);
                   Settle();
                   EXPECT_EQ(CountOurs(), 1);
                   ASSERT_EQ(std::raise(SIGTERM), 0);
                   EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.isVisible(); }, 20'000));
                 }),
            128 + SIGTERM);
  EXPECT_EQ(CountOurs(), 0);
}

}  // namespace
}  // namespace bomparser::test
