#pragma once

#include "res/CommandIds.h"
#include "res/ControlIds.h"

#include <QAction>
#include <QObject>
#include <QString>
#include <QVariant>
#include <QWidget>

namespace bomparser {

/// The dynamic properties by which context help, assistive tools and tests find things.
namespace id_property {
constexpr const char* kControl = "controlId";
constexpr const char* kCommand = "commandId";
constexpr const char* kDialog = "dialogId";
constexpr const char* kHelp = "helpId";
}  // namespace id_property

inline void SetControlId(QObject& control, Ctrl number) {
  control.setProperty(id_property::kControl, static_cast<int>(number));
}
inline void SetCommandId(QAction& action, Cmd number) {
  action.setProperty(id_property::kCommand, static_cast<int>(number));
}
inline void SetDialogId(QWidget& dialog, DialogId number) {
  dialog.setProperty(id_property::kDialog, static_cast<int>(number));
}

/// The control's number; Ctrl::None for one without.
inline Ctrl GetControlId(const QObject& control) {
  const QVariant number = control.property(id_property::kControl);
  return number.isValid() ? static_cast<Ctrl>(number.toInt()) : Ctrl::None;
}
inline Cmd GetCommandId(const QAction& action) {
  const QVariant number = action.property(id_property::kCommand);
  return number.isValid() ? static_cast<Cmd>(number.toInt()) : Cmd::None;
}
inline DialogId GetDialogId(const QWidget& dialog) {
  return static_cast<DialogId>(dialog.property(id_property::kDialog).toInt());
}

/// The number under which the help knows a control: its own where it has one, else the control's
/// number moved up by 65536; 0 for a control without number.
int GetHelpId(const QObject& control);

/// The first control below `root` with the number and of the class; null when there is none.
template <class Widget>
Widget* FindControl(const QWidget& root, Ctrl number) {
  for (Widget* control : root.findChildren<Widget*>()) {
    if (GetControlId(*control) == number) return control;
  }
  return nullptr;
}

}  // namespace bomparser
