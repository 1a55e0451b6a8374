#pragma once

#include <QString>

class QDialog;
class QWidget;

namespace bomparser {

enum class BoxIcon { None, Information, Warning, Error, Question };
enum class BoxButtons { Ok, YesNo, YesNoCancel };
enum class BoxAnswer { Ok, Yes, No, Cancel };

/// A message box as a workflow names it.
struct BoxSpec {
  QString caption;
  QString text;
  BoxIcon icon = BoxIcon::None;
  BoxButtons buttons = BoxButtons::Ok;
  QString reason = {};  // What the text leaves open, shown below it in smaller letters.
};

/// The one way to everything that waits for the user's answer: message boxes, file dialogs and
/// other modal dialogs. Played by QtUserDialogs, and by tests, which answer themselves.
class CTNUserDialogs {
 public:
  /// Shows the box over the parent's window. Closing it otherwise than by a button is Cancel, No or
  /// Ok, whichever comes first among its buttons.
  virtual BoxAnswer Ask(QWidget* parent, const BoxSpec& box) = 0;
  /// Runs the dialog modally. True when it was accepted.
  virtual bool Run(QDialog& dialog) = 0;

 protected:
  ~CTNUserDialogs() = default;
};

/// Whoever answers now: QtUserDialogs unless a UserDialogsOverride says otherwise.
CTNUserDialogs& UserDialogs();

/// Lets somebody else answer for as long as it lives. They nest.
class UserDialogsOverride {
 public:
  explicit UserDialogsOverride(CTNUserDialogs& dialogs);
  ~UserDialogsOverride();
  UserDialogsOverride(const UserDialogsOverride&) = delete;
  UserDialogsOverride& operator=(const UserDialogsOverride&) = delete;

 private:
  CTNUserDialogs* m_before;
};

}  // namespace bomparser
