#include "ui/views/TextEditorLauncher.h"

#include "input/MessageTexts.h"
#include "tnbase/DesktopApplications.h"
#include "tnbase/DetachedProgram.h"

#include <filesystem>
#include <system_error>
#include <vector>

namespace bomparser {

namespace {

std::vector<std::string> EditorCommand(const std::string& path) {
  const DesktopFolders folders = DesktopFolders::OfEnvironment();
  std::vector<std::string> command = FindOpenCommand(folders, "text/plain", path);
  if (!command.empty()) return command;
  // It knows desktops that keep no such files.
  const std::string opener = FindProgram(folders.programs, "xdg-open");
  if (opener.empty()) return {};
  return {opener, path};
}

}  // namespace

bool OpenInTextEditor(const std::string& path, std::string& error) {
  std::error_code unknown;
  const std::string absolute = std::filesystem::absolute(path, unknown).string();
  const std::vector<std::string> command = EditorCommand(unknown ? path : absolute);
  if (command.empty()) {
    error = GetMessageText(Msg::NoTextEditor);
    return false;
  }
  StartDetached(command);
  return true;
}

}  // namespace bomparser
