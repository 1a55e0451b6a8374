#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"

namespace bomparser {

/// What the module of the dialog exports under the name kDesktopEntryPoint: opens the dialog, runs
/// it to its end, and returns the exit status. The arguments are those of a main function:
/// "--template" FILE and "--input" FILE say what is preloaded.
using DesktopEntryPoint = int (*)(int argc, char** argv);
constexpr const char* kDesktopModule = "bomparser_desktop";
constexpr const char* kDesktopEntryPoint = "BomParserDesktopMain";

/// Opens the dialog. Where it is not installed, or there is no display, one line says so and names
/// the commands that need none.
ExitStatus LaunchDesktop(const Options& options);

}  // namespace bomparser
