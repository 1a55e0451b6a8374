#pragma once

#include "tests/support/TestFolder.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace bomparser {

/// A test with a desktop of its own: the folders config/, data/ and bin/ of the test's folder, to
/// which the environment points while the test runs.
class ApplicationsFolder : public TestFolder {
 protected:
  ApplicationsFolder() {
    for (const char* folder : {"bin", "config", "data/applications"}) {
      std::filesystem::create_directories(PathOf(folder));
    }
    Set("HOME", PathOf("home"));
    Set("XDG_CONFIG_HOME", PathOf("config"));
    Set("XDG_CONFIG_DIRS", PathOf("etc"));
    Set("XDG_DATA_HOME", PathOf("data"));
    Set("XDG_DATA_DIRS", PathOf("share"));
    Set("XDG_CURRENT_DESKTOP", "");
    Set("PATH", PathOf("bin"));
  }

  ~ApplicationsFolder() override {
    for (const auto& [name, value] : m_before) {
      if (value) {
        setenv(name.c_str(), value->c_str(), 1);
      } else {
        unsetenv(name.c_str());
      }
    }
  }

  void Set(const std::string& name, const std::string& value) {
    const char* const before = std::getenv(name.c_str());
    m_before.emplace(name, before == nullptr ? std::nullopt : std::optional<std::string>(before));
    setenv(name.c_str(), value.c_str(), 1);
  }

  void WriteFileAndFolders(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories(std::filesystem::path(PathOf(name)).parent_path());
    WriteFile(name, text);
  }

  /// A program of the folder bin/.
  void AddProgram(const std::string& name, const std::string& text = "#!/bin/sh\n") const {
    WriteFile("bin/" + name, text);
    std::filesystem::permissions(PathOf("bin/" + name), std::filesystem::perms::owner_all);
  }

  /// An application for plain text that runs the program of its name, and that program.
  void AddApplication(const std::string& name, const std::string& more = "",
                      const std::string& folder = "data/applications/") const {
    AddProgram(name);
    WriteFileAndFolders(folder + name + ".desktop",
                        "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + name +
                            " %f\nMimeType=text/html;text/plain;\n" + more);
  }

 private:
  std::map<std::string, std::optional<std::string>> m_before;
};

}  // namespace bomparser
