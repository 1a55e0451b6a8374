#pragma once

#include "tests/ui/support/UiTest.h"

#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <deque>
#include <functional>
#include <string>
#include <utility>

namespace bomparser::test {

/// The user of boxes and dialogs that come up over the main dialog, each once it is shown and in
/// the order in which they are announced. From the first announcement on, one that was not
/// announced fails the test and is closed.
class ModalUser {
 public:
  using Act = std::function<void(QDialog&)>;

  void WillUse(Act act) {
    m_acts.push_back(std::move(act));
    Wait();
  }
  void WillAnswer(const std::string& text, QMessageBox::StandardButton answer) {
    WillUse([text, answer](QDialog& shown) {
      auto* const box = qobject_cast<QMessageBox*>(&shown);
      ASSERT_NE(box, nullptr) << "a box is expected: " << text;
      EXPECT_EQ(box->text().toStdString(), text);
      ASSERT_NE(box->button(answer), nullptr);
      box->button(answer)->click();
    });
  }
  /// Types the path into the file dialog that comes, and ends it by Return.
  void WillChooseFile(const std::string& path) {
    WillUse([path](QDialog& shown) {
      auto* const files = qobject_cast<QFileDialog*>(&shown);
      ASSERT_NE(files, nullptr) << "a file dialog is expected for " << path;
      auto* const edit = files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
      edit->setFocus();
      edit->setText(QString::fromStdString(path));
      QTest::keyClick(edit, Qt::Key_Return);
    });
  }
  /// True when nothing that was announced is still to come.
  bool IsDone() const { return m_acts.empty(); }

 private:
  void Wait() {
    if (m_waiting) return;
    m_waiting = true;
    constexpr int kPauseMs = 5;
    QTimer::singleShot(kPauseMs, &m_context, [this] {
      m_waiting = false;
      Look();
    });
  }
  void Look() {
    auto* const shown = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    const bool isMain = shown == nullptr || GetDialogId(*shown) == DialogId::Main;
    if (!isMain && shown->isVisible()) Use(*shown);
    Wait();
  }
  void Use(QDialog& shown) {
    if (!m_acts.empty()) {
      const Act act = std::exchange(m_acts.front(), nullptr);
      m_acts.pop_front();
      Settle();
      act(shown);
    }
    if (!shown.isVisible()) return;
    const auto* const box = qobject_cast<QMessageBox*>(&shown);
    ADD_FAILURE() << "nothing to do with " << shown.windowTitle().toStdString() << ": "
                  << (box != nullptr ? box->text().toStdString() : "");
    shown.reject();
  }

  QObject m_context;
  std::deque<Act> m_acts;
  bool m_waiting = false;
};

}  // namespace bomparser::test
