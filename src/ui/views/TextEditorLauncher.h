#pragma once

#include <optional>
#include <string>

namespace bomparser {

/// The command line by which Windows opens a text file, from what the registry holds under
/// Msg::TextFileOpenCommandKey (none: it could not be read) and the value of the variable
/// Msg::SystemRootVariable (empty: there is none). All texts are UTF-8.
///
/// The path takes the place of "%1", or follows the command behind a blank; then the line is put in
/// upper case, the path included, because names have no case there; then "%SYSTEMROOT%" gives way
/// to the variable. A command or variable of more than 260 characters, and an empty one that is
/// needed, cannot be used: the line is "NOTEPAD.EXE" and the path as it is.
std::string MakeEditorCommandLine(const std::optional<std::string>& registryCommand,
                                  const std::string& path, const std::string& systemRoot);

/// Opens a file in the system's editor for text files and does not wait for it: on Windows by the
/// command line above, elsewhere by the desktop's default application for plain text, which gets
/// the path as it is (an absolute one; what is relative is made absolute, so that no name is taken
/// for an option). False with `error` when the system has no such program; one that fails to start
/// says nothing.
bool OpenInTextEditor(const std::string& path, std::string& error);

}  // namespace bomparser
