#include "tests/ui/support/UiTest.h"

#include <QContextMenuEvent>
#include <QDir>
#include <QPalette>
#include <QPixmap>
#include <charconv>

namespace bomparser::test {
namespace {

std::string ProfileKey(std::string_view section, std::string_view key) {
  return std::string(section) + "/" + std::string(key);
}

const char* NameOf(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::Information:
      return "information";
    case BoxIcon::Warning:
      return "warning";
    case BoxIcon::Error:
      return "error";
    case BoxIcon::Question:
      return "question";
    case BoxIcon::None:
      break;
  }
  return "plain";
}

const char* NameOf(BoxButtons buttons) {
  switch (buttons) {
    case BoxButtons::YesNo:
      return "YesNo";
    case BoxButtons::YesNoCancel:
      return "YesNoCancel";
    case BoxButtons::Ok:
      break;
  }
  return "Ok";
}

void AppendMenu(const QMenu& menu, const std::string& indent, std::string& text) {
  for (const QAction* item : menu.actions()) {
    if (item->isSeparator() || !item->isVisible()) continue;
    const std::string name = item->text().remove(u'&').toStdString();
    text += indent + (item->isEnabled() ? name : "[" + name + "]") + "\n";
    if (item->menu() != nullptr) AppendMenu(*item->menu(), indent + "  ", text);
  }
}

QPalette DarkPalette() {
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(45, 45, 48));
  palette.setColor(QPalette::WindowText, Qt::white);
  palette.setColor(QPalette::Base, QColor(30, 30, 30));
  palette.setColor(QPalette::AlternateBase, QColor(45, 45, 48));
  palette.setColor(QPalette::Text, Qt::white);
  palette.setColor(QPalette::Button, QColor(60, 60, 64));
  palette.setColor(QPalette::ButtonText, Qt::white);
  palette.setColor(QPalette::ToolTipBase, QColor(60, 60, 64));
  palette.setColor(QPalette::ToolTipText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, QColor(150, 150, 150));
  palette.setColor(QPalette::Highlight, QColor(38, 79, 120));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Disabled, QPalette::Text, QColor(120, 120, 120));
  palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(120, 120, 120));
  palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(120, 120, 120));
  return palette;
}

bool Save(QWidget& widget, const std::string& name) {
  Settle();
  const QString folder = QStringLiteral(BOMPARSER_SCREENSHOTS);
  QDir().mkpath(folder);
  const int percent = static_cast<int>(widget.devicePixelRatioF() * 100);
  const QString file =
      QStringLiteral("%1/%2-%3.png").arg(folder, QString::fromStdString(name)).arg(percent);
  return widget.grab().save(file);
}

}  // namespace

std::string FakeHostApp::GetProfileString(std::string_view section, std::string_view key,
                                          std::string_view fallback) const {
  const auto found = profile.find(ProfileKey(section, key));
  return found == profile.end() ? std::string(fallback) : found->second;
}

int FakeHostApp::GetProfileInt(std::string_view section, std::string_view key, int fallback) const {
  const auto found = profile.find(ProfileKey(section, key));
  if (found == profile.end()) return fallback;
  int value = fallback;
  const std::string& text = found->second;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

bool FakeHostApp::WriteProfileString(std::string_view section, std::string_view key,
                                     std::string_view value) {
  written.emplace_back(key);
  profile[ProfileKey(section, key)] = value;
  return true;
}

bool FakeHostApp::WriteProfileInt(std::string_view section, std::string_view key, int value) {
  return WriteProfileString(section, key, std::to_string(value));
}

BoxAnswer FakeUserDialogs::Ask(QWidget*, const BoxSpec& box) {
  boxes.push_back(std::string(NameOf(box.icon)) + "|" + box.caption.toStdString() + "|" +
                  box.text.toStdString() + "|" + NameOf(box.buttons));
  if (!box.reason.isEmpty()) boxes.back() += "|" + box.reason.toStdString();
  if (whileAsking) whileAsking();
  if (box.buttons == BoxButtons::Ok) return BoxAnswer::Ok;
  if (answers.empty()) {
    ADD_FAILURE() << "no answer for the box " << boxes.back();
    return BoxAnswer::Cancel;
  }
  const BoxAnswer answer = answers.front();
  answers.pop_front();
  return answer;
}

bool FakeUserDialogs::Run(QDialog& dialog) {
  if (runs.empty()) {
    ADD_FAILURE() << "nothing to do with the dialog " << dialog.windowTitle().toStdString();
    return false;
  }
  const auto run = runs.front();
  runs.pop_front();
  dialog.show();
  Settle();
  return run(dialog);
}

void Settle() {
  for (int round = 0; round < 5; ++round) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
  }
}

QMenu* OpenMenu() {
  Settle();
  auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  EXPECT_NE(menu, nullptr) << "no menu is open";
  return menu;
}

QAction* FindCommand(const QMenu& menu, Cmd command) {
  for (QAction* item : menu.actions()) {
    if (GetCommandId(*item) == command) return item;
    if (item->menu() == nullptr) continue;
    if (QAction* found = FindCommand(*item->menu(), command)) return found;
  }
  return nullptr;
}

void ChooseCommand(Cmd command) {
  QMenu* const menu = OpenMenu();
  ASSERT_NE(menu, nullptr);
  QAction* const item = FindCommand(*menu, command);
  ASSERT_NE(item, nullptr);
  item->trigger();
  menu->close();
  Settle();
}

std::string MenuText(const QMenu& menu) {
  std::string text;
  AppendMenu(menu, "", text);
  return text;
}

void RightClick(QWidget& widget, const QPoint& point) {
  QContextMenuEvent event(QContextMenuEvent::Mouse, point, widget.mapToGlobal(point));
  QApplication::sendEvent(&widget, &event);
  Settle();
}

bool Screenshot(QWidget& widget, const std::string& name) {
  const QPalette light = QApplication::palette();
  const bool lightSaved = Save(widget, name + "-light");
  QApplication::setPalette(DarkPalette());
  const bool darkSaved = Save(widget, name + "-dark");
  QApplication::setPalette(light);
  Settle();
  return lightSaved && darkSaved;
}

}  // namespace bomparser::test
