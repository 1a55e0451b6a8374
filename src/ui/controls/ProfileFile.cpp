#include "ui/controls/ProfileFile.h"

#include "tnbase/NumberText.h"
#include "tnbase/TextEncoding.h"

#include <QByteArray>
#include <QIODevice>
#include <QSettings>
#include <QStandardPaths>
#include <QVariant>
#include <optional>
#include <utility>

namespace bomparser {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

/// The byte that "%XX" at this place of the text stands for; nothing where no such thing stands.
std::optional<char> EscapedByteAt(std::string_view text, std::size_t place) {
  if (text[place] != '%' || place + 2 >= text.size()) return std::nullopt;
  const std::size_t high = kHexDigits.find(text[place + 1]);
  const std::size_t low = kHexDigits.find(text[place + 2]);
  if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
  return static_cast<char>(high * kHexDigits.size() + low);
}

/// The text so that it can stand on one line of the file, in valid UTF-8. Ordinary texts, per cent
/// signs and backslashes included, stay as they are.
std::string Escaped(std::string_view bytes, std::string_view alsoEscaped = {}) {
  const bool isUtf8 = IsUtf8(bytes);
  std::string line;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    constexpr unsigned char kFirstPrintable = 0x20;
    constexpr unsigned char kFirstNonAscii = 0x80;
    const auto byte = static_cast<unsigned char>(bytes[i]);
    const bool wouldBeTrimmed = byte == ' ' && (i == 0 || i + 1 == bytes.size());
    const bool stays = byte >= kFirstPrintable && (byte < kFirstNonAscii || isUtf8) &&
                       !wouldBeTrimmed && !EscapedByteAt(bytes, i) &&
                       alsoEscaped.find(bytes[i]) == std::string_view::npos;
    if (stays) {
      line += bytes[i];
    } else {
      line += {'%', kHexDigits[byte / kHexDigits.size()], kHexDigits[byte % kHexDigits.size()]};
    }
  }
  return line;
}

std::string Unescaped(std::string_view line) {
  std::string bytes;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const std::optional<char> escaped = EscapedByteAt(line, i);
    bytes += escaped.value_or(line[i]);
    if (escaped) i += 2;
  }
  return bytes;
}

// QSettings knows each value by one name, in which a slash parts section and key. Both are escaped
// there as they are in the file, and slashes besides.

std::string EscapedKey(std::string_view key) { return Escaped(key, "/=[;#"); }
std::string EscapedSection(std::string_view section) { return Escaped(section, "/]"); }

QString NameOfEscaped(std::string_view section, std::string_view key) {
  const std::string name =
      section.empty() ? std::string(key) : std::string(section) + '/' + std::string(key);
  return QString::fromStdString(name);
}

QString NameOf(std::string_view section, std::string_view key) {
  return NameOfEscaped(EscapedSection(section), EscapedKey(key));
}

void ReadLine(std::string_view line, std::string& section, QSettings::SettingsMap& values) {
  line = Trimmed(line);
  if (line.empty() || line.front() == ';' || line.front() == '#') return;
  if (line.front() == '[') {
    // Written anew, so that a name edited by hand is found as well.
    section = EscapedSection(Unescaped(Trimmed(line.substr(1, line.find(']') - 1))));
    return;
  }
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return;
  const std::string key = EscapedKey(Unescaped(Trimmed(line.substr(0, equals))));
  const std::string value = Unescaped(Trimmed(line.substr(equals + 1)));
  values.insert(NameOfEscaped(section, key), QByteArray::fromStdString(value));
}

/// Takes any text: what is no setting in it is passed over.
bool ReadSettings(QIODevice& device, QSettings::SettingsMap& values) {
  std::string section;
  // Some editors put a mark in front of what is UTF-8.
  const QByteArray mark = QByteArrayLiteral("\xEF\xBB\xBF");
  if (device.peek(mark.size()) == mark) device.skip(mark.size());
  while (!device.atEnd()) {
    QByteArray line = device.readLine();
    while (line.endsWith('\n') || line.endsWith('\r'))
      line.chop(1);
    ReadLine({line.constData(), static_cast<std::size_t>(line.size())}, section, values);
  }
  return true;
}

bool WriteSettings(QIODevice& device, const QSettings::SettingsMap& values) {
  QByteArray unnamed;
  QByteArray named;
  QString section;
  for (auto value = values.begin(); value != values.end(); ++value) {
    const qsizetype slash = value.key().indexOf(u'/');
    const QByteArray line = value.key().mid(slash + 1).toUtf8() + '=' +
                            QByteArray::fromStdString(Escaped(value->toByteArray().toStdString())) +
                            '\n';
    if (slash < 0) {
      unnamed += line;
      continue;
    }
    if (section != value.key().left(slash)) {
      section = value.key().left(slash);
      named += "\n[" + section.toUtf8() + "]\n";
    }
    named += line;
  }
  const QByteArray text = unnamed.isEmpty() ? named.mid(1) : unnamed + named;
  return device.write(text) == text.size();
}

/// Qt's own form of such files changes names with blanks and values with commas, and knows no
/// bytes.
QSettings::Format FileFormat() {
  static const QSettings::Format s_format = QSettings::registerFormat(
      QStringLiteral("ini"), ReadSettings, WriteSettings, Qt::CaseSensitive);
  return s_format;
}

}  // namespace

ProfileFile::ProfileFile(QString path) : m_path(std::move(path)) {}

QString ProfileFile::UsersFile() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QStringLiteral("/bomparser/bomparser.ini");
}

std::string ProfileFile::GetProfileString(std::string_view section, std::string_view key,
                                          std::string_view fallback) const {
  const QSettings settings(m_path, FileFormat());
  const QVariant value = settings.value(NameOf(section, key));
  return value.isValid() ? value.toByteArray().toStdString() : std::string(fallback);
}

int ProfileFile::GetProfileInt(std::string_view section, std::string_view key, int fallback) const {
  std::int32_t value = fallback;
  ParseInt32(GetProfileString(section, key, {}), value);
  return value;
}

bool ProfileFile::WriteProfileString(std::string_view section, std::string_view key,
                                     std::string_view value) {
  QSettings settings(m_path, FileFormat());
  settings.setValue(NameOf(section, key), QByteArray::fromStdString(std::string(value)));
  settings.sync();
  return settings.status() == QSettings::NoError;
}

bool ProfileFile::WriteProfileInt(std::string_view section, std::string_view key, int value) {
  return WriteProfileString(section, key, FormatInt(value));
}

void ProfileFile::ShowHelp(const HelpRequest&) {}

}  // namespace bomparser
