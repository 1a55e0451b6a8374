#include "ui/controls/CTNUserDialogs.h"

#include <QDialog>
#include <QMessageBox>

namespace bomparser {
namespace {

QMessageBox::Icon IconOf(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::Information:
      return QMessageBox::Information;
    case BoxIcon::Warning:
      return QMessageBox::Warning;
    case BoxIcon::Error:
      return QMessageBox::Critical;
    case BoxIcon::Question:
      return QMessageBox::Question;
    case BoxIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ButtonsOf(BoxButtons buttons) {
  switch (buttons) {
    case BoxButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case BoxButtons::YesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case BoxButtons::Ok:
      break;
  }
  return QMessageBox::Ok;
}

BoxAnswer AnswerOf(int button) {
  switch (button) {
    case QMessageBox::Yes:
      return BoxAnswer::Yes;
    case QMessageBox::No:
      return BoxAnswer::No;
    case QMessageBox::Cancel:
      return BoxAnswer::Cancel;
    default:
      return BoxAnswer::Ok;
  }
}

QMessageBox::StandardButton EscapeOf(BoxButtons buttons) {
  switch (buttons) {
    case BoxButtons::YesNo:
      return QMessageBox::No;
    case BoxButtons::YesNoCancel:
      return QMessageBox::Cancel;
    case BoxButtons::Ok:
      break;
  }
  return QMessageBox::Ok;
}

/// A box has to fit the screen: what is longer ends in dots.
QString FittingText(const QString& text) {
  constexpr qsizetype kMostLines = 25;
  constexpr qsizetype kMostCharacters = 2000;
  const QString shown = text.section(u'\n', 0, kMostLines - 1).left(kMostCharacters);
  return shown.size() < text.size() ? shown + u'\u2026' : shown;
}

class QtUserDialogs final : public CTNUserDialogs {
 public:
  BoxAnswer Ask(QWidget* parent, const BoxSpec& box) override {
    QMessageBox window(IconOf(box.icon), box.caption, FittingText(box.text), ButtonsOf(box.buttons),
                       parent != nullptr ? parent->window() : nullptr);
    // Texts of files and templates stand in messages: none of them is markup.
    window.setTextFormat(Qt::PlainText);
    window.setInformativeText(FittingText(box.reason));
    window.setEscapeButton(EscapeOf(box.buttons));
    return AnswerOf(window.exec());
  }
  bool Run(QDialog& dialog) override { return dialog.exec() == QDialog::Accepted; }
};

QtUserDialogs g_qtDialogs;
CTNUserDialogs* g_current = &g_qtDialogs;

}  // namespace

CTNUserDialogs& UserDialogs() { return *g_current; }

UserDialogsOverride::UserDialogsOverride(CTNUserDialogs& dialogs) : m_before(g_current) {
  g_current = &dialogs;
}

UserDialogsOverride::~UserDialogsOverride() { g_current = m_before; }

}  // namespace bomparser
