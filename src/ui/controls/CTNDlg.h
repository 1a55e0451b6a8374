#pragma once

#include "ui/controls/CTNHostApp.h"
#include "ui/controls/Ids.h"

#include <QDialog>

namespace bomparser {

/// Base of the system's dialogs: a number, and context help for every control through the title
/// bar's button, F1, Shift+F1 and a right-click.
class CTNDlg : public QDialog {
  Q_OBJECT

 public:
  /// The host is not owned and lives longer than the dialog.
  CTNDlg(CTNHostApp& host, DialogId number, QWidget* parent = nullptr);

 protected:
  CTNHostApp& Host() const { return m_host; }

  bool event(QEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* ControlAt(const QPoint& point);
  /// A label, say, has no number: the control that it stands before has.
  static QWidget* OrNextWithNumber(QWidget* control);
  /// Fills in the topic file and asks the host.
  void ShowPopUp(HelpRequest request);
  void ShowMenuHelp(QWidget* control, const QPoint& screenPoint);
  enum class AskedBy { Pointing, Key };
  void ShowKeyHelp(QWidget* control, const QPoint& screenPoint, AskedBy askedBy);

  CTNHostApp& m_host;
};

}  // namespace bomparser
