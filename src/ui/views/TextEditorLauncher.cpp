#include "ui/views/TextEditorLauncher.h"

#include "input/MessageTexts.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace bomparser {

namespace {

constexpr std::ptrdiff_t kLongestText = 260;  // In characters.

bool IsUsable(const std::string& text) {
  const auto startsCharacter = [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  };
  return !text.empty() && std::count_if(text.begin(), text.end(), startsCharacter) <= kLongestText;
}

bool Contains(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

/// Every `part` of the text, from left to right; what is put in is not looked at again.
std::string Replaced(std::string text, std::string_view part, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += by.size()) {
    text.replace(at, part.size(), by);
  }
  return text;
}

std::string InUpperCase(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

}  // namespace

std::string MakeEditorCommandLine(const std::optional<std::string>& registryCommand,
                                  const std::string& path, const std::string& systemRoot) {
  std::string fallback = FormatMessageText(Msg::FallbackEditorCommand, path);
  // With an empty command the line would be the path alone, and the file itself would be run.
  if (!registryCommand || !IsUsable(*registryCommand)) return fallback;

  const std::string& file = GetMessageText(Msg::CommandFilePlaceholder);
  const bool hasPlace = Contains(*registryCommand, file);
  std::string line = InUpperCase(hasPlace ? Replaced(*registryCommand, file, path)
                                          : *registryCommand + ' ' + path);

  const std::string& root = GetMessageText(Msg::SystemRootPlaceholder);
  if (!Contains(line, root)) return line;
  return IsUsable(systemRoot) ? Replaced(line, root, systemRoot) : fallback;
}

}  // namespace bomparser
