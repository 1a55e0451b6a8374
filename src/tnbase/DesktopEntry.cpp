#include "tnbase/DesktopEntry.h"

#include <cstddef>
#include <optional>

namespace bomparser {

namespace {

constexpr std::string_view kApplicationGroup = "Desktop Entry";
constexpr std::string_view kBlanks = " \t\r";

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Takes the text before the next `separator` off `rest`, the separator with it.
std::string_view TakePiece(std::string_view& rest, char separator) {
  const std::size_t end = rest.find(separator);
  const std::string_view piece = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return piece;
}

char Unescaped(char c) {
  switch (c) {
    case 's':
      return ' ';
    case 'n':
      return '\n';
    case 't':
      return '\t';
    case 'r':
      return '\r';
    default:
      return c;
  }
}

/// Cuts a command into its arguments. Blanks separate them unless they stand in double quotes,
/// within which a backslash takes the next character for itself. None when a quote stays open.
std::optional<std::vector<std::string>> SplitCommand(std::string_view command) {
  std::vector<std::string> arguments;
  bool quoted = false, within = false;
  for (std::size_t i = 0; i < command.size(); ++i) {
    char c = command[i];
    if (!quoted && kBlanks.find(c) != std::string_view::npos) {
      within = false;
      continue;
    }
    if (!within) arguments.emplace_back();
    within = true;
    if (c == '"') {
      quoted = !quoted;
      continue;
    }
    if (quoted && c == '\\' && i + 1 < command.size()) c = command[++i];
    arguments.back() += c;
  }
  if (quoted) return std::nullopt;
  return arguments;
}

/// Puts in what the codes of an Exec line stand for.
class FieldCodes {
 public:
  FieldCodes(const DesktopEntry& application, const std::string& path)
      : m_application(application), m_path(path) {}

  /// Adds the argument with its codes filled to `arguments`; false for a code that does not exist.
  bool Add(const std::string& argument, std::vector<std::string>& arguments) {
    if (argument == "%i") {
      AddIcon(arguments);
      return true;
    }
    std::string filled;
    for (std::size_t i = 0; i < argument.size(); ++i) {
      if (argument[i] != '%') {
        filled += argument[i];
      } else if (++i == argument.size() || !Fill(argument[i], filled)) {
        return false;
      }
    }
    // An argument that is nothing but a code that stands for nothing is none.
    if (!filled.empty() || argument.empty()) arguments.push_back(filled);
    return true;
  }

  bool PathUsed() const { return m_pathUsed; }

 private:
  void AddIcon(std::vector<std::string>& arguments) const {
    const std::string icon = m_application.Get("Icon");
    if (!icon.empty()) arguments.insert(arguments.end(), {"--icon", icon});
  }

  bool Fill(char code, std::string& filled) {
    switch (code) {
      case 'f':
      case 'F':
      case 'u':  // A local file may be given by its path.
      case 'U':
        filled += m_path;
        m_pathUsed = true;
        return true;
      case '%':
        filled += '%';
        return true;
      case 'c':
        filled += m_application.Get("Name");
        return true;
      case 'k':
        filled += m_application.file;
        return true;
      default:
        // Codes of former times, which stand for nothing.
        return std::string_view("dDnNvmi").find(code) != std::string_view::npos;
    }
  }

  const DesktopEntry& m_application;
  const std::string& m_path;
  bool m_pathUsed = false;
};

}  // namespace

std::string GetDesktopEntryValue(std::string_view text, std::string_view group,
                                 std::string_view key) {
  bool inGroup = false;
  while (!text.empty()) {
    const std::string_view line = Trim(TakePiece(text, '\n'));
    if (line.starts_with('[')) {
      inGroup = line.substr(1, line.find(']') - 1) == group;
      continue;
    }
    const std::size_t equals = line.find('=');
    if (!inGroup || equals == std::string_view::npos) continue;
    if (Trim(line.substr(0, equals)) == key) return std::string(Trim(line.substr(equals + 1)));
  }
  return {};
}

std::string UnescapeDesktopEntryText(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const bool escape = value[i] == '\\' && i + 1 < value.size();
    text += escape ? Unescaped(value[++i]) : value[i];
  }
  return text;
}

std::vector<std::string> SplitDesktopEntryList(std::string_view value) {
  std::vector<std::string> pieces;
  while (!value.empty()) {
    const std::string_view piece = Trim(TakePiece(value, ';'));
    if (!piece.empty()) pieces.emplace_back(piece);
  }
  return pieces;
}

std::string DesktopEntry::Get(std::string_view key) const {
  return UnescapeDesktopEntryText(GetDesktopEntryValue(text, kApplicationGroup, key));
}

std::vector<std::string> MakeOpenArguments(const DesktopEntry& application,
                                           const std::string& path) {
  const std::optional<std::vector<std::string>> command = SplitCommand(application.Get("Exec"));
  if (!command) return {};
  FieldCodes codes(application, path);
  std::vector<std::string> arguments;
  for (const std::string& argument : *command) {
    if (!codes.Add(argument, arguments)) return {};
  }
  if (!arguments.empty() && !codes.PathUsed()) arguments.push_back(path);
  return arguments;
}

}  // namespace bomparser
