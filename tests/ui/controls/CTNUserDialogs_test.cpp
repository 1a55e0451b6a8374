#include "ui/controls/CTNUserDialogs.h"

#include "tests/ui/support/UiTest.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QScreen>
#include <QTimer>
#include <functional>

namespace bomparser::test {
namespace {

/// Asks with the real box and does `act` with it once it is shown.
BoxAnswer Answer(const BoxSpec& box, const std::function<void(QMessageBox&)>& act) {
  QTimer::singleShot(0, [act] {
    auto* shown = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(shown, nullptr);
    act(*shown);
    if (shown->isVisible()) shown->reject();  // So that a test that only looks ends.
  });
  return UserDialogs().Ask(nullptr, box);
}

std::function<void(QMessageBox&)> Press(QMessageBox::StandardButton button) {
  return [button](QMessageBox& box) { QTest::mouseClick(box.button(button), Qt::LeftButton); };
}

void PressEscape(QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }

TEST(UserDialogsTest, ABoxShowsCaptionTextAndIcon) {
  const std::pair<BoxIcon, QMessageBox::Icon> icons[] = {
      {BoxIcon::None, QMessageBox::NoIcon},       {BoxIcon::Information, QMessageBox::Information},
      {BoxIcon::Warning, QMessageBox::Warning},   {BoxIcon::Error, QMessageBox::Critical},
      {BoxIcon::Question, QMessageBox::Question},
  };
  for (const auto& [icon, expected] : icons) {
    Answer({"Caption", "Some text", icon}, [expected = expected](QMessageBox& box) {
      EXPECT_EQ(box.windowTitle(), "Caption");
      EXPECT_EQ(box.text(), "Some text");
      EXPECT_EQ(box.icon(), expected);
    });
  }
}

TEST(UserDialogsTest, EveryButtonIsItsAnswer) {
  const BoxSpec box{"Caption", "Save?", BoxIcon::Question, BoxButtons::YesNoCancel};
  EXPECT_EQ(Answer(box, Press(QMessageBox::Yes)), BoxAnswer::Yes);
  EXPECT_EQ(Answer(box, Press(QMessageBox::No)), BoxAnswer::No);
  EXPECT_EQ(Answer(box, Press(QMessageBox::Cancel)), BoxAnswer::Cancel);
  EXPECT_EQ(Answer({"Caption", "Done"}, Press(QMessageBox::Ok)), BoxAnswer::Ok);
}

TEST(UserDialogsTest, EscapeIsTheAnswerThatChangesLeast) {
  EXPECT_EQ(Answer({"C", "T", BoxIcon::Question, BoxButtons::YesNoCancel}, PressEscape),
            BoxAnswer::Cancel);
  EXPECT_EQ(Answer({"C", "T", BoxIcon::Question, BoxButtons::YesNo}, PressEscape), BoxAnswer::No);
  EXPECT_EQ(Answer({"C", "T"}, PressEscape), BoxAnswer::Ok);
}

TEST(UserDialogsTest, ATextIsNeverMarkup) {
  Answer({"C", "<b>bold</b>"}, [](QMessageBox& box) {
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.text(), "<b>bold</b>");
  });
}

TEST(UserDialogsTest, ABoxWithALongTextFitsTheScreen) {
  const QString lines = QStringLiteral("line\n").repeated(400);
  const QString words = QStringLiteral("word ").repeated(20000);
  for (const QString& text : {lines, words}) {
    Answer({"C", text}, [](QMessageBox& box) {
      EXPECT_LE(box.height(), box.screen()->availableSize().height());
      EXPECT_TRUE(box.text().endsWith(u'\u2026'));
    });
  }
}

}  // namespace
}  // namespace bomparser::test
