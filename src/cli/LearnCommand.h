#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace bomparser {

ExitStatus RunLearn(const Options& options);

/// The lines of a text as a record is made from them: tabs expanded, each with a line end.
struct SampleLines {
  std::string text;
  std::uint64_t available = 0;  // How many lines the text has, up to the last one that is wanted.
};
SampleLines TakeSampleLines(std::string_view text, const LineRange& wanted);

}  // namespace bomparser
