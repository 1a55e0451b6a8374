#pragma once

#include <string>
#include <vector>

namespace bomparser {

/// Where a desktop other than Windows keeps what it knows of its applications. Every list is in the
/// order in which it is asked: the user's own folder first.
struct DesktopFolders {
  std::vector<std::string> config;    // Folders with lists of preferred applications.
  std::vector<std::string> data;      // Folders with a folder "applications".
  std::vector<std::string> desktops;  // Names of the desktop that runs, in lower case.
  std::vector<std::string> programs;  // Folders with programs.

  /// As the environment says (XDG_CONFIG_HOME and its kind, PATH), else the usual ones.
  static DesktopFolders OfEnvironment();
};

/// The arguments by which the desktop opens the file at `path` as one of a MIME type
/// ("text/plain"): the program's path first, then what it is given, the file's path in one argument
/// as it is. Empty when no application will do.
///
/// The rules are those of the freedesktop.org specification "Association between MIME types and
/// applications": the default application, else one that somebody has added for the type, else one
/// that is installed and says that it opens such files, text editors before others. What is not
/// runnable is passed over, and so is what wants a terminal where there is none.
std::vector<std::string> FindOpenCommand(const DesktopFolders& folders, const std::string& mimeType,
                                         const std::string& path);

/// The path of the program that a name stands for: the name itself when it is an absolute path,
/// else from one of the folders. Empty when there is none that may be run.
std::string FindProgram(const std::vector<std::string>& folders, const std::string& name);

}  // namespace bomparser
