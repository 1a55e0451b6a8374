#include "ui/views/TextEditorLauncher.h"

#include "input/MessageTexts.h"
#include "ui/controls/DisplayText.h"

#include <QSettings>
#include <QString>
#include <QVariant>
#include <string>
#include <windows.h>

namespace bomparser {

namespace {

/// The default value of the registry key, its variables not replaced.
std::optional<std::string> RegistryCommand() {
  const QSettings key(
      QStringLiteral("HKEY_CLASSES_ROOT\\") + MessageText(Msg::TextFileOpenCommandKey),
      QSettings::NativeFormat);
  const QVariant command = key.value(QStringLiteral("."));
  if (!command.isValid()) return std::nullopt;
  return ToBytes(command.toString());
}

std::string SystemRoot() {
  return ToBytes(qEnvironmentVariable(GetMessageText(Msg::SystemRootVariable).c_str()));
}

void Start(const std::string& commandLine) {
  std::wstring line = QString::fromStdString(commandLine).toStdWString();
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESHOWWINDOW | STARTF_FORCEONFEEDBACK;
  start.wShowWindow = SW_SHOWNORMAL;
  PROCESS_INFORMATION process = {};
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS, nullptr,
                     nullptr, &start, &process) == 0) {
    return;
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

}  // namespace

bool OpenInTextEditor(const std::string& path, std::string& /*error*/) {
  Start(MakeEditorCommandLine(RegistryCommand(), path, SystemRoot()));
  return true;
}

}  // namespace bomparser
