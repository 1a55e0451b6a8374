#pragma once

#include "cli/Options.h"
#include "input/CTNParsedFileBlock.h"

#include <string>

namespace bomparser {

/// Whether rows on standard output are coloured. By itself: on a terminal that knows colours,
/// unless the environment has a NO_COLOR that is not empty.
bool UsesColour(ColourUse use);

/// The control sequence that switches to the colours; empty for the terminal's own, which a white
/// background and a black text stand for.
std::string ColourSequence(Colour background, Colour text);
/// The one that switches back to the terminal's own colours.
extern const char* const kColourReset;

}  // namespace bomparser
