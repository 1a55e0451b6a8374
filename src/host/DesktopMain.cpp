#include "host/Component.h"
#include "host/DesktopHost.h"
#include "host/InterruptWatch.h"
#include "tnbase/DesktopModule.h"
#include "ui/controls/Icons.h"

#include <QApplication>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

namespace bomparser {
namespace {

constexpr int kFailed = 1;

/// Whoever changes the current folder, the file stays the one that the user named.
std::string AbsolutePath(const std::string& path) {
  std::error_code unknown;
  const std::filesystem::path absolute = std::filesystem::absolute(path, unknown);
  return unknown ? path : absolute.string();
}

StartFiles ReadArguments(int argc, char** argv) {
  StartFiles start;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string_view option = argv[i];
    if (option == "--template") start.templateFile = AbsolutePath(argv[i + 1]);
    if (option == "--input") start.inputFile = AbsolutePath(argv[i + 1]);
  }
  return start;
}

/// The application object. Where it cannot open the display Qt says so in several lines and aborts
/// the process: here it becomes the one line that the user is told, and an ordinary end.
class DesktopApplication {
 public:
  DesktopApplication(int& argc, char** argv, RefuseDesktop refuse) {
    s_refuse = refuse;
    const QtMessageHandler before = qInstallMessageHandler(TakeMessage);
    m_application.emplace(argc, argv);
    qInstallMessageHandler(before);
    QApplication::setApplicationName(QStringLiteral("bomparser"));
    QGuiApplication::setDesktopFileName(QStringLiteral("bomparser"));
    QApplication::setWindowIcon(Icon(IconId::Program));
  }

 private:
  static void TakeMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
    // The first one names the display, the fatal one only what might be installed.
    if (s_reason.empty()) s_reason = text.section(u'\n', 0, 0).toStdString();
    if (type != QtFatalMsg) return;
    s_refuse(s_reason.c_str());
    std::_Exit(kFailed);
  }

  static inline RefuseDesktop s_refuse = nullptr;
  static inline std::string s_reason;
  std::optional<QApplication> m_application;
};

int RunDesktop(int argc, char** argv, RefuseDesktop refuse) {
  StartFiles start = ReadArguments(argc, argv);
  std::string error;
  const std::optional<Component> component = LoadComponent(error);
  if (!component) {
    refuse(error.c_str());
    return kFailed;
  }
  const DesktopApplication application(argc, argv, refuse);
  DesktopHost host(ProfileFile::UsersFile(), Manual::FindFolder(), std::move(start));
  appinfo_struct info;
  info.host = &host;
  component->init(&info, 0);
  const InterruptWatch watch;
  std::string result;
  component->display(result);
  return IsInterrupted() ? InterruptStatus() : EXIT_SUCCESS;
}

}  // namespace
}  // namespace bomparser

extern "C" [[gnu::visibility("default")]] int BomParserDesktopMain(
    int argc, char** argv, bomparser::RefuseDesktop refuse) {
  return bomparser::RunDesktop(argc, argv, refuse);
}

static_assert(std::is_same_v<decltype(&BomParserDesktopMain), bomparser::DesktopEntryPoint>);
