#pragma once

#include "ui/controls/CTNHostApp.h"
#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/Ids.h"

#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QTest>
#include <QWidget>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <ostream>
#include <string>
#include <vector>

// Texts of the interface in the messages of tests. Qt's own namespace is the global one.
inline void PrintTo(const QString& text, std::ostream* out) {
  *out << '"' << text.toStdString() << '"';
}

namespace bomparser::test {

/// A host that keeps its profile in memory and writes down what its help is asked for.
class FakeHostApp final : public CTNHostApp {
 public:
  std::string GetProfileString(std::string_view section, std::string_view key,
                               std::string_view fallback) const override;
  int GetProfileInt(std::string_view section, std::string_view key, int fallback) const override;
  bool WriteProfileString(std::string_view section, std::string_view key,
                          std::string_view value) override;
  bool WriteProfileInt(std::string_view section, std::string_view key, int value) override;
  std::string GetHelpFilePath() const override { return helpFilePath; }
  void SetHelpFilePath(const std::string& path) override { helpFilePath = path; }
  void ShowHelp(const HelpRequest& request) override { help.push_back(request); }

  std::map<std::string, std::string> profile;  // "section/key" to text.
  std::vector<std::string> written;            // Keys in the order in which they were written.
  std::string helpFilePath = "manual.hlp";
  std::vector<HelpRequest> help;
};

/// Answers message boxes and dialogs in the order of `answers` and `runs`, and writes down what was
/// asked. Without an answer left a box is cancelled and the test fails. In effect while it lives.
class FakeUserDialogs final : public CTNUserDialogs {
 public:
  FakeUserDialogs() : m_override(*this) {}
  BoxAnswer Ask(QWidget* parent, const BoxSpec& box) override;
  bool Run(QDialog& dialog) override;

  /// The boxes shown so far, each as "icon|caption|text|buttons": "error|BOM Parser|Broken|Ok".
  /// Where a box says more below its text, that follows behind another bar.
  std::vector<std::string> boxes;
  std::deque<BoxAnswer> answers;
  /// What becomes of the dialogs to come: each gets the shown dialog and says whether it ends as
  /// accepted.
  std::deque<std::function<bool(QDialog&)>> runs;
  std::function<void()> whileAsking;  // Called, if set, as the user would see the box.

 private:
  UserDialogsOverride m_override;
};

/// Lets everything happen that waits: posted events, timers of no delay, deferred deletion.
void Settle();

/// The menu that is open now; fails the test and returns null when there is none.
QMenu* OpenMenu();
/// The item of a menu, submenus included, that has the command; null when there is none.
QAction* FindCommand(const QMenu& menu, Cmd command);
/// Chooses the item of the open menu that has the command, and closes the menu; fails the test when
/// there is none.
void ChooseCommand(Cmd command);
/// The menu as lines of text: "Append New", greyed ones in brackets, items of submenus indented.
std::string MenuText(const QMenu& menu);
/// Asks for the context menu at a point of the widget, as the mouse does.
void RightClick(QWidget& widget, const QPoint& point);

/// Writes pictures of the widget, light and dark, to the build's folder screenshots/ for a person
/// to look at: NAME-light-100.png and so on, the number being the scale in percent. Returns whether
/// they were written.
bool Screenshot(QWidget& widget, const std::string& name);

}  // namespace bomparser::test
