#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bomparser {

enum class StandardStream { Output, Error };

/// Gives every standard stream that the process was started without a place that refuses all use,
/// so that no file that is opened later is taken for it. To be called first.
void ReserveStandardStreams();

bool IsTerminal(StandardStream stream);
/// Columns of the terminal that standard error is; 80 when it does not say.
std::size_t TerminalColumns();

/// Writes all bytes at once, unbuffered. False with `error` "cannot write standard output: REASON"
/// when that fails or the user interrupts it; some of the bytes may have left by then.
bool WriteTo(StandardStream stream, std::string_view bytes, std::string& error);

}  // namespace bomparser
