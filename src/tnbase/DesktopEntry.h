#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

// The files by which desktops other than Windows know their applications: "[Group]" lines and
// "key=value" lines, as the Desktop Entry Specification of freedesktop.org has them.

/// The value of a key of a group, as it is written; of several the first. Empty when there is none.
std::string GetDesktopEntryValue(std::string_view text, std::string_view group,
                                 std::string_view key);

/// A value that is a text, its escapes resolved: "\s" a blank, "\n", "\t", "\r", "\\".
std::string UnescapeDesktopEntryText(std::string_view value);

/// A value that is a list: the pieces between semicolons, empty ones left out.
std::vector<std::string> SplitDesktopEntryList(std::string_view value);

/// An application's file.
struct DesktopEntry {
  std::string file;  // Its path.
  std::string text;  // What it holds.

  /// A value of the group that describes the application, escapes resolved.
  std::string Get(std::string_view key) const;
  bool IsTrue(std::string_view key) const { return Get(key) == "true"; }
};

/// The arguments, the program's name first, by which the application opens the file at `path`. The
/// path is in one argument as it is, whatever characters it has; an application that does not say
/// where it wants it gets it last. Empty when the application names no program or its command
/// breaks the rules.
std::vector<std::string> MakeOpenArguments(const DesktopEntry& application,
                                           const std::string& path);

}  // namespace bomparser
