#include "cli/Terminal.h"

#include "tnbase/StandardStreams.h"

#include <cstdlib>
#include <fmt/format.h>
#include <string_view>

namespace bomparser {

namespace {

constexpr Colour kWhite = 0xFFFFFF;
constexpr Colour kBlack = 0x000000;
constexpr int kBackground = 48;
constexpr int kText = 38;

std::string_view Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? std::string_view(value) : std::string_view();
}

std::string Sequence(int target, Colour colour) {
  return fmt::format("\x1B[{};2;{};{};{}m", target, colour & 0xFF, colour >> 8 & 0xFF,
                     colour >> 16 & 0xFF);
}

}  // namespace

const char* const kColourReset = "\x1B[0m";

bool UsesColour(ColourUse use) {
  if (use != ColourUse::Auto) return use == ColourUse::Always;
  return IsTerminal(StandardStream::Output) && Environment("NO_COLOR").empty() &&
         Environment("TERM") != "dumb";
}

std::string ColourSequence(Colour background, Colour text) {
  std::string sequence;
  if (background != kWhite) sequence += Sequence(kBackground, background);
  // Black is set as well where there is a background: the terminal's own text may be white.
  if (background != kWhite || text != kBlack) sequence += Sequence(kText, text);
  return sequence;
}

}  // namespace bomparser
