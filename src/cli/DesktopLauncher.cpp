#include "cli/DesktopLauncher.h"

#include "cli/Command.h"
#include "cli/Messages.h"
#include "tnbase/DesktopModule.h"
#include "tnbase/Display.h"
#include "tnbase/LoadedModule.h"

#include <memory>
#include <string>
#include <vector>

namespace bomparser {

namespace {

std::string CommandNames() {
  std::string names;
  for (const Command& command : GetCommands()) {
    if (!names.empty()) names += ", ";
    names += command.name;
  }
  return names;
}

ExitStatus Refuse(const std::string& reason) {
  PrintMessage("the dialog cannot be opened: " + reason +
               "; these commands do without it: " + CommandNames() + " (see bomparser --help)");
  return ExitStatus::Failed;
}

void RefuseFromModule(const char* reason) { Refuse(reason); }

std::vector<std::string> DesktopArguments(const Options& options) {
  std::vector<std::string> arguments = {"bomparser"};
  if (options.dialogTemplate)
    arguments.insert(arguments.end(), {"--template", *options.dialogTemplate});
  if (options.dialogInput) arguments.insert(arguments.end(), {"--input", *options.dialogInput});
  return arguments;
}

}  // namespace

ExitStatus LaunchDesktop(const Options& options) {
  if (!HasDisplay()) return Refuse("there is no display");
  std::string error;
  const std::unique_ptr<LoadedModule> desktop = LoadedModule::Load(kDesktopModule, error);
  if (!desktop) return Refuse(error);
  const auto open = reinterpret_cast<DesktopEntryPoint>(desktop->Find(kDesktopEntryPoint));
  if (open == nullptr) return Refuse(std::string(kDesktopModule) + " is of another version");
  std::vector<std::string> arguments = DesktopArguments(options);
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments)
    pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  return static_cast<ExitStatus>(
      open(static_cast<int>(arguments.size()), pointers.data(), RefuseFromModule));
}

}  // namespace bomparser
