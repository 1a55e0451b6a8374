#pragma once

#include "tests/ui/support/UiTest.h"

#include <QAbstractButton>
#include <QTimer>
#include <functional>
#include <utility>

namespace bomparser::test {

/// The user of a main dialog that somebody else opens: acts once it is shown, in this process or in
/// an application object that is made later, and closes it if it is still open then. One at a time.
class DialogUser {
 public:
  explicit DialogUser(std::function<void(QDialog&)> act) {
    s_act = std::move(act);
    s_acted = false;
    // Calls it now if there is an application object, and whenever one is made.
    qAddPreRoutine(Wait);
  }
  ~DialogUser() {
    s_act = nullptr;
    EXPECT_TRUE(s_acted) << "the dialog was not opened";
  }
  DialogUser(const DialogUser&) = delete;
  DialogUser& operator=(const DialogUser&) = delete;

  static void Press(QDialog& dialog, Ctrl number) {
    auto* const button = FindControl<QAbstractButton>(dialog, number);
    ASSERT_NE(button, nullptr);
    button->click();
  }

 private:
  static void Wait() {
    constexpr int kPauseMs = 5;
    if (s_act) QTimer::singleShot(kPauseMs, Look);
  }
  static void Look() {
    if (!s_act) return;
    auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr || GetDialogId(*dialog) != DialogId::Main || !dialog->isVisible()) {
      Wait();
      return;
    }
    const auto act = std::exchange(s_act, nullptr);
    s_acted = true;
    Settle();
    act(*dialog);
    if (dialog->isVisible()) dialog->reject();
  }

  static inline std::function<void(QDialog&)> s_act;
  static inline bool s_acted = false;
};

}  // namespace bomparser::test
