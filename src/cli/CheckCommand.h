#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"

#include <string>
#include <string_view>

namespace bomparser {

class CTNParserTemplate;

ExitStatus RunCheck(const Options& options);

/// The text on one line: a backslash as "\\", a line feed as "\n", a TAB as "\t".
std::string EscapeStatusText(std::string_view text);

/// Appends the state of all elements as it was found when the template was loaded, a line each.
/// True when all are valid.
bool AppendElementStates(std::string& out, const CTNParserTemplate& document);

}  // namespace bomparser
