#include "host/Manual.h"
#include "tests/ui/component/ComponentTest.h"
#include "tests/ui/support/ModalUser.h"

namespace bomparser::test {
namespace {

/// The manual's word on every control that the user can point at.
class ContextHelpTest : public ComponentTest {
 protected:
  static void ExpectHelpOnEveryControl(const QWidget& window) {
    const Manual manual(QStringLiteral(BOMPARSER_SOURCE_DIR "/docs/manual"));
    int controls = 0;
    for (const QWidget* control : window.findChildren<QWidget*>()) {
      const Ctrl number = GetControlId(*control);
      if (number == Ctrl::None) continue;
      ++controls;
      EXPECT_FALSE(manual.GetEntry(control, static_cast<int>(number)).text.isEmpty())
          << window.windowTitle().toStdString() << ": " << static_cast<int>(number);
    }
    EXPECT_GT(controls, 5);
    EXPECT_NE(manual.GetPageOf(&window), manual.GetIndex());
  }

  ModalUser modal;
};

TEST_F(ContextHelpTest, EveryControlOfTheDialogsIsInTheManual) {
  MakeApplication();
  Display([this](QDialog& dialog) {
    ExpectHelpOnEveryControl(dialog);
    for (const Ctrl button : {Ctrl::Settings, Ctrl::EditParams}) {
      modal.WillUse([](QDialog& shown) {
        ExpectHelpOnEveryControl(shown);
        shown.reject();
      });
      DialogUser::Press(dialog, button);
      EXPECT_TRUE(modal.IsDone());
    }
  });
}

}  // namespace
}  // namespace bomparser::test
