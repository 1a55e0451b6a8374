#include "tnbase/DesktopApplications.h"

#include "tnbase/CharClass.h"
#include "tnbase/DesktopEntry.h"
#include "tnbase/FileBytes.h"
#include "tnbase/TNPath.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace bomparser {

namespace {

constexpr std::uint64_t kLargestFile = 1 << 20;
constexpr const char* kTerminal = "x-terminal-emulator";

std::string Variable(const char* name, const std::string& otherwise) {
  const char* const value = std::getenv(name);
  return value == nullptr || *value == '\0' ? otherwise : value;
}

std::vector<std::string> SplitAtColons(const std::string& text) {
  std::vector<std::string> pieces;
  for (std::size_t from = 0; from <= text.size();) {
    const std::size_t end = std::min(text.find(':', from), text.size());
    if (end > from) pieces.push_back(text.substr(from, end - from));
    from = end + 1;
  }
  return pieces;
}

/// Folders that are not absolute are none: what they would mean depends on where one stands.
std::vector<std::string> AbsoluteFolders(const std::string& text) {
  std::vector<std::string> folders = SplitAtColons(text);
  std::erase_if(folders, [](const std::string& folder) { return folder.front() != '/'; });
  return folders;
}

std::string TextOf(const std::string& file) {
  std::string text, unreadable;
  ReadFileBytes(file, text, unreadable, kLargestFile);
  return text;
}

/// Applications by the name of their file; one in a subfolder has that in its name, "-" between.
using Installed = std::map<std::string, std::string>;

void AddInstalled(const std::string& folder, Installed& installed) {
  std::error_code stop;
  std::filesystem::recursive_directory_iterator at(folder, stop), end;
  for (; !stop && at != end; at.increment(stop)) {
    if (at->path().extension() != ".desktop") continue;
    std::string id = at->path().lexically_relative(folder).string();
    std::replace(id.begin(), id.end(), '/', '-');
    installed.emplace(id, at->path().string());  // The first folder that has it wins.
  }
}

class OpenCommandSearch {
 public:
  OpenCommandSearch(const DesktopFolders& folders, const std::string& mimeType,
                    const std::string& path)
      : m_folders(folders), m_mimeType(mimeType), m_path(path) {
    for (const std::string& folder : folders.data) {
      AddInstalled(folder + "/applications", m_installed);
    }
    for (const std::string& file : PreferenceFiles()) {
      TakePreferences(TextOf(file));
    }
  }

  std::vector<std::string> Find() const {
    std::vector<std::string> command = FirstCommand(InstalledOf(m_defaults));
    if (command.empty()) command = FirstCommand(InstalledOf(m_added));
    if (command.empty()) command = FirstCommand(SayingSoThemselves());
    return command;
  }

 private:
  std::vector<std::string> PreferenceFiles() const {
    std::vector<std::string> folders = m_folders.config, files;
    for (const std::string& folder : m_folders.data) {
      folders.push_back(folder + "/applications");
    }
    for (const std::string& folder : folders) {
      for (const std::string& desktop : m_folders.desktops) {
        files.push_back(folder + '/' + desktop + "-mimeapps.list");
      }
      files.push_back(folder + "/mimeapps.list");
    }
    return files;
  }

  /// What a file removes concerns those that are asked after it, and the applications' own word.
  void TakePreferences(const std::string& text) {
    const auto listed = [&](std::string_view group) {
      return SplitDesktopEntryList(GetDesktopEntryValue(text, group, m_mimeType));
    };
    for (const std::string& id : listed("Default Applications")) {
      m_defaults.push_back(id);
    }
    for (const std::string& id : listed("Added Associations")) {
      if (!IsRemoved(id)) m_added.push_back(id);
    }
    for (const std::string& id : listed("Removed Associations")) {
      m_removed.push_back(id);
    }
  }

  bool IsRemoved(const std::string& id) const {
    return std::find(m_removed.begin(), m_removed.end(), id) != m_removed.end();
  }

  std::vector<DesktopEntry> InstalledOf(const std::vector<std::string>& ids) const {
    std::vector<DesktopEntry> applications;
    for (const std::string& id : ids) {
      const auto found = m_installed.find(id);
      if (found != m_installed.end()) {
        applications.push_back({found->second, TextOf(found->second)});
      }
    }
    return applications;
  }

  std::vector<DesktopEntry> SayingSoThemselves() const {
    std::vector<DesktopEntry> applications;
    for (const auto& [id, file] : m_installed) {
      if (IsRemoved(id)) continue;
      DesktopEntry application{file, TextOf(file)};
      if (Names(application, "MimeType", m_mimeType)) applications.push_back(application);
    }
    // Word processors and browsers open texts too, but nobody wants to edit a list with them.
    std::stable_partition(applications.begin(), applications.end(),
                          [](const DesktopEntry& application) {
                            return Names(application, "Categories", "TextEditor");
                          });
    return applications;
  }

  static bool Names(const DesktopEntry& application, std::string_view key, std::string_view name) {
    const std::vector<std::string> names = SplitDesktopEntryList(application.Get(key));
    return std::find(names.begin(), names.end(), name) != names.end();
  }

  std::vector<std::string> FirstCommand(const std::vector<DesktopEntry>& applications) const {
    for (const DesktopEntry& application : applications) {
      std::vector<std::string> command = CommandOf(application);
      if (!command.empty()) return command;
    }
    return {};
  }

  /// Empty when the application cannot be run here.
  std::vector<std::string> CommandOf(const DesktopEntry& application) const {
    if (application.Get("Type") != "Application" || application.IsTrue("Hidden")) return {};
    const std::string needed = application.Get("TryExec");
    if (!needed.empty() && FindProgram(m_folders.programs, needed).empty()) return {};
    std::vector<std::string> command = MakeOpenArguments(application, m_path);
    if (command.empty()) return {};
    command.front() = FindProgram(m_folders.programs, command.front());
    if (command.front().empty()) return {};
    if (!application.IsTrue("Terminal")) return command;
    const std::string terminal = FindProgram(m_folders.programs, kTerminal);
    if (terminal.empty()) return {};
    command.insert(command.begin(), {terminal, "-e"});
    return command;
  }

  const DesktopFolders& m_folders;
  const std::string& m_mimeType;
  const std::string& m_path;
  Installed m_installed;
  std::vector<std::string> m_defaults, m_added, m_removed;  // What the preferences name.
};

}  // namespace

DesktopFolders DesktopFolders::OfEnvironment() {
  const std::string home = Variable("HOME", "");
  DesktopFolders folders;
  folders.config = AbsoluteFolders(Variable("XDG_CONFIG_HOME", home + "/.config") + ':' +
                                   Variable("XDG_CONFIG_DIRS", "/etc/xdg"));
  folders.data = AbsoluteFolders(Variable("XDG_DATA_HOME", home + "/.local/share") + ':' +
                                 Variable("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
  std::string desktops = Variable("XDG_CURRENT_DESKTOP", "");
  std::transform(desktops.begin(), desktops.end(), desktops.begin(), ToLower);
  folders.desktops = SplitAtColons(desktops);
  folders.programs = AbsoluteFolders(Variable("PATH", "/usr/local/bin:/usr/bin:/bin"));
  return folders;
}

std::vector<std::string> FindOpenCommand(const DesktopFolders& folders, const std::string& mimeType,
                                         const std::string& path) {
  return OpenCommandSearch(folders, mimeType, path).Find();
}

std::string FindProgram(const std::vector<std::string>& folders, const std::string& name) {
  const auto runs = [](const std::string& file) {
    return IsRegularFile(file) && access(file.c_str(), X_OK) == 0;
  };
  if (name.find('/') != std::string::npos) {
    return name.front() == '/' && runs(name) ? name : std::string();
  }
  for (const std::string& folder : folders) {
    std::string file = folder + '/' + name;
    if (!name.empty() && runs(file)) return file;
  }
  return {};
}

}  // namespace bomparser
