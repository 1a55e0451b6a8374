#pragma once

namespace bomparser {

// How the program and the module of the dialog, which it loads when it is asked for, call each
// other.

constexpr const char* kDesktopModule = "bomparser_desktop";
constexpr const char* kDesktopEntryPoint = "BomParserDesktopMain";

/// Tells the user why the dialog cannot be opened.
using RefuseDesktop = void (*)(const char* reason);

/// What the module exports under the name kDesktopEntryPoint: opens the dialog, runs it to its end,
/// and returns the exit status: 0, or that of an interruption. The arguments are those of a main
/// function: "--template" FILE and
/// "--input" FILE say what is preloaded. Where windows turn out not to be possible, it calls
/// `refuse` and returns, or ends the process, with the status 1.
using DesktopEntryPoint = int (*)(int argc, char** argv, RefuseDesktop refuse);

}  // namespace bomparser
