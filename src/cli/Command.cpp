#include "cli/Command.h"

#include "cli/ApplyCommand.h"
#include "cli/CheckCommand.h"
#include "cli/DesktopLauncher.h"
#include "cli/FindCommand.h"
#include "cli/LearnCommand.h"
#include "cli/Messages.h"
#include "cli/ShowCommand.h"
#include "tnbase/Interrupts.h"
#include "tnbase/StandardStreams.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <new>

namespace bomparser {

namespace {

constexpr std::array<Command, kCommandCount> kCommands = {{
    {"apply", "Apply a template to input files and write their entity lists", AddApplyOptions,
     FindApplyFault, RunApply},
    {"find", "Find the template of a folder that fits an input file best", AddFindOptions,
     FindFindFault, RunFind},
    {"show", "Show which record each line of an input file belongs to", AddShowOptions, nullptr,
     RunShow},
    {"check", "Check templates and print the state of their elements", AddCheckOptions, nullptr,
     RunCheck},
    {"learn", "Add a record that is made from sample lines to a template", AddLearnOptions, nullptr,
     RunLearn},
}};

/// The command that the arguments name; null for none.
const Command* UsedCommand(const CLI::App& app) {
  const auto* const found =
      std::find_if(kCommands.begin(), kCommands.end(),
                   [&app](const Command& command) { return app.got_subcommand(command.name); });
  return found == kCommands.end() ? nullptr : found;
}

std::string FindFault(const ParsedCommandLine& parsed) {
  if (parsed.command == nullptr) return {};
  if (parsed.options.dialogTemplate || parsed.options.dialogInput) {
    return "--template and --input are for the dialog, which opens without a command";
  }
  return parsed.command->findFault != nullptr ? parsed.command->findFault(parsed.options)
                                              : std::string();
}

std::string HelpHint(const Command* command) {
  const std::string name = command != nullptr ? std::string(" ") + command->name : std::string();
  return " (see bomparser" + name + " --help)";
}

ParsedCommandLine RefuseUsage(ParsedCommandLine parsed, const std::string& fault) {
  parsed.run = false;
  parsed.status = ExitStatus::WrongUsage;
  parsed.message = fault + HelpHint(parsed.command);
  return parsed;
}

/// What is wrong with the command line, told so that the user finds it: an argument that no command
/// knows is often why another one is missing.
std::string UsageFault(const CLI::App& app, const CLI::ParseError& error) {
  const auto code = static_cast<CLI::ExitCodes>(error.get_exit_code());
  std::vector<std::string> unknown = app.remaining(true);
  if (code != CLI::ExitCodes::RequiredError && code != CLI::ExitCodes::ExtrasError) unknown.clear();
  if (unknown.empty()) return error.what();
  for (std::string& argument : unknown)
    argument = UnguardArgument(argument);
  std::reverse(unknown.begin(), unknown.end());  // The error names them from the back.
  return CLI::ExtrasError(std::move(unknown)).what();
}

/// Help and version are answered, everything else that stops the parser is wrong usage.
ParsedCommandLine AnswerParseError(ParsedCommandLine parsed, const CLI::App& app,
                                   const CLI::ParseError& error) {
  if (error.get_exit_code() != 0) return RefuseUsage(std::move(parsed), UsageFault(app, error));
  const bool version = error.get_name() == "CallForVersion";
  parsed.output = version ? std::string(error.what()) + '\n' : app.help();
  return parsed;
}

ExitStatus Run(const ParsedCommandLine& parsed) {
  std::string error;
  if (!parsed.run) {
    if (!parsed.message.empty()) PrintMessage(parsed.message);
    if (WriteTo(StandardStream::Output, parsed.output, error)) return parsed.status;
    PrintMessage(error);
    return ExitStatus::Failed;
  }
  if (parsed.command == nullptr) return LaunchDesktop(parsed.options);
  CatchInterrupts();
  return parsed.command->run(parsed.options);
}

/// Gives `app` the commands, with the options of those that `wanted(command)` is true for.
template <class Wanted>
void Describe(CLI::App& app, Options& options, Wanted wanted) {
  app.name("bomparser");
  app.description(
      "Reads parts, placement, drill and aperture lists through parser templates.\n"
      "Without a command it opens the BOM Parser dialog.");
  app.set_version_flag("--version", "bomparser " BOMPARSER_VERSION, "print the version");
  AddDialogOptions(app, options);
  for (const Command& command : kCommands) {
    CLI::App& added = *app.add_subcommand(command.name, command.help);
    if (wanted(command)) command.addOptions(added, options);
  }
  app.require_subcommand(0, 1);
}

/// Gives `app` what these arguments can need. Making the options of all commands takes longer than
/// everything else about the command line, and one command at most is used: one whose name is among
/// the arguments.
void DescribeForArguments(CLI::App& app, Options& options,
                          const std::vector<std::string>& arguments) {
  Describe(app, options, [&arguments](const Command& command) {
    return std::find(arguments.begin(), arguments.end(), command.name) != arguments.end();
  });
}

}  // namespace

const std::array<Command, kCommandCount>& GetCommands() { return kCommands; }

void DescribeCommandLine(CLI::App& app, Options& options) {
  Describe(app, options, [](const Command&) { return true; });
}

ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  ParsedCommandLine parsed;
  CLI::App app;
  DescribeForArguments(app, parsed.options, arguments);
  try {
    std::vector<std::string> guarded = GuardArguments(arguments);
    std::reverse(guarded.begin(), guarded.end());  // The parser takes them from the back.
    app.parse(std::move(guarded));
    parsed.run = true;
  } catch (const CLI::ParseError& error) {
    parsed.command = UsedCommand(app);
    return AnswerParseError(std::move(parsed), app, error);
  }
  parsed.command = UsedCommand(app);
  const std::string fault = FindFault(parsed);
  return fault.empty() ? parsed : RefuseUsage(std::move(parsed), fault);
}

int RunCommandLine(const std::vector<std::string>& arguments) {
  ReserveStandardStreams();
  try {
    const ExitStatus status = Run(ParseCommandLine(arguments));
    return status == ExitStatus::Interrupted ? InterruptStatus() : static_cast<int>(status);
  } catch (const std::bad_alloc&) {
    PrintMessage("there is not enough memory");
    return static_cast<int>(ExitStatus::Failed);
  }
}

}  // namespace bomparser
