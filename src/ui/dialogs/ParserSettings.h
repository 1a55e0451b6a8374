#pragma once

#include "entry/CTNFileParserEngine.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace bomparser {

class CTNHostApp;

/// What the main dialog keeps in the host's profile from one run to the next.
struct ParserSettings {
  /// The tab stops that are taken, both ends included.
  static constexpr int kLeastTabStop = 0;
  static constexpr int kMostTabStop = 50;

  int tabStop = CTNFileParserEngine::kDefaultTabStop;
  std::string templateSearchPath;
  std::string inputFolder;  // Also that of entity lists.
  std::string outputPath;   // Of the entity list written last; hosts read it.
  std::string templateFolder;
  std::uint32_t autoApplicationFlags = kAllEdits;  // Bits of EditKind.
};

/// Reads the settings of a section. What is not stored has its default, which is the current folder
/// for folders; so has a tab stop out of range. The output path is never read: it says what this
/// run has written.
ParserSettings ReadSettings(const CTNHostApp& host, std::string_view section);

/// Stores all of them, in an order that hosts know. False when the host could not store one.
bool WriteSettings(CTNHostApp& host, std::string_view section, const ParserSettings& settings);

}  // namespace bomparser
