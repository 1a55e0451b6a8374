#include "ui/dialogs/ParserSettings.h"

#include "input/MessageTexts.h"
#include "ui/controls/CTNHostApp.h"

#include <cstddef>
#include <filesystem>
#include <limits>
#include <system_error>

namespace bomparser {
namespace {

// A search path comes from a buffer of this size in every version of the settings.
constexpr std::size_t kLongestSearchPath = 260;

/// The current folder; none where that is longer, as half a path leads nowhere.
std::string CurrentFolder(std::size_t most = std::numeric_limits<std::size_t>::max()) {
  std::error_code unknown;
  std::string folder = std::filesystem::current_path(unknown).string();
  return folder.size() <= most ? folder : std::string();
}

std::string ReadFolder(const CTNHostApp& host, std::string_view section, Msg key) {
  const std::string stored = host.GetProfileString(section, GetMessageText(key), {});
  return stored.empty() ? CurrentFolder() : stored;
}

int ReadTabStop(const CTNHostApp& host, std::string_view section) {
  constexpr int kDefault = CTNFileParserEngine::kDefaultTabStop;
  const int stored = host.GetProfileInt(section, GetMessageText(Msg::TabStopKey), kDefault);
  const bool taken =
      ParserSettings::kLeastTabStop <= stored && stored <= ParserSettings::kMostTabStop;
  return taken ? stored : kDefault;
}

}  // namespace

ParserSettings ReadSettings(const CTNHostApp& host, std::string_view section) {
  ParserSettings settings;
  settings.tabStop = ReadTabStop(host, section);
  settings.templateSearchPath =
      host.GetProfileString(section, GetMessageText(Msg::TemplateSearchPathKey), {});
  if (settings.templateSearchPath.empty()) {
    settings.templateSearchPath = CurrentFolder(kLongestSearchPath);
  }
  settings.inputFolder = ReadFolder(host, section, Msg::InputFilePathKey);
  settings.templateFolder = ReadFolder(host, section, Msg::TemplateFilePathKey);
  settings.autoApplicationFlags = static_cast<std::uint32_t>(
      host.GetProfileInt(section, GetMessageText(Msg::AutoTransFlagsKey), kAllEdits));
  return settings;
}

bool WriteSettings(CTNHostApp& host, std::string_view section, const ParserSettings& settings) {
  bool stored = host.WriteProfileInt(section, GetMessageText(Msg::AutoTransFlagsKey),
                                     static_cast<int>(settings.autoApplicationFlags));
  stored &= host.WriteProfileInt(section, GetMessageText(Msg::TabStopKey), settings.tabStop);
  const auto write = [&](Msg key, const std::string& text) {
    stored &= host.WriteProfileString(section, GetMessageText(key), text);
  };
  write(Msg::TemplateSearchPathKey, settings.templateSearchPath);
  write(Msg::InputFilePathKey, settings.inputFolder);
  write(Msg::OutputFilePathNameKey, settings.outputPath);
  write(Msg::TemplateFilePathKey, settings.templateFolder);
  return stored;
}

}  // namespace bomparser
