#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"

#include <array>
#include <string>
#include <vector>

namespace bomparser {

/// One headless command: a row of the table of commands.
struct Command {
  const char* name;
  const char* help;
  void (*addOptions)(CLI::App& app, Options& options);
  std::string (*findFault)(const Options& options);  // Null where the options say it all.
  ExitStatus (*run)(const Options& options);
};

constexpr std::size_t kCommandCount = 5;
const std::array<Command, kCommandCount>& GetCommands();

/// Gives `app` the commands with all their options; `options` receives what is parsed.
void DescribeCommandLine(CLI::App& app, Options& options);

/// A command line, understood or not.
struct ParsedCommandLine {
  const Command* command = nullptr;  // Null for the dialog, or when there is nothing to run.
  Options options;
  bool run = false;
  ExitStatus status = ExitStatus::Done;  // When there is nothing to run.
  std::string output;                    // For standard output: help or version.
  std::string message;                   // For standard error: what is wrong.
};

/// `arguments` without the program's name.
ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments);

/// Runs a command line, from the arguments to the exit status of the process.
int RunCommandLine(const std::vector<std::string>& arguments);

}  // namespace bomparser
