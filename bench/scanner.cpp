// Writes the entity lists of the two layouts of Inputs without any template: what a program costs
// that knows its layout. Written as one would for daily use, not tuned to the last.

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t kPieceSize = 256 * 1024;

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsWord(char c) { return !IsBlank(c); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsLetterOrDigit(char c) { return IsLetter(c) || IsDigit(c); }

/// What is left of one line. Each operation takes something off its front.
class Line {
 public:
  explicit Line(std::string_view text) : m_left(text) {}

  template <class Predicate>
  std::string_view Run(Predicate belongs) {
    std::size_t length = 0;
    while (length < m_left.size() && belongs(m_left[length]))
      ++length;
    return Take(length);
  }
  bool Skip(char c) {
    if (m_left.empty() || m_left.front() != c) return false;
    m_left.remove_prefix(1);
    return true;
  }
  bool SkipBlanks() { return !Run(IsBlank).empty(); }
  std::string_view WholeNumber() {
    const std::string_view from = m_left;
    SkipSign();
    const bool digits = !Run(IsDigit).empty();
    return From(from, digits);
  }
  std::string_view DecimalNumber() {
    const std::string_view from = m_left;
    SkipSign();
    const std::size_t before = Run(IsDigit).size();
    const bool separated = Skip('.') || Skip(',');
    const std::size_t behind = Run(IsDigit).size();
    return From(from, separated && before + behind > 0);
  }
  /// Up to the character, which is taken too; false when it does not come.
  bool UpTo(char c, std::string_view& text) {
    const std::size_t at = m_left.find(c);
    if (at == std::string_view::npos) return false;
    text = Take(at);
    return Skip(c);
  }
  std::string_view Rest() { return Take(m_left.size()); }
  bool IsAtEnd() const { return m_left.empty(); }

 private:
  void SkipSign() {
    if (!Skip('-')) Skip('+');
  }
  std::string_view Take(std::size_t length) {
    const std::string_view text = m_left.substr(0, length);
    m_left.remove_prefix(length);
    return text;
  }
  std::string_view From(std::string_view from, bool good) const {
    return good ? from.substr(0, from.size() - m_left.size()) : std::string_view();
  }

  std::string_view m_left;
};

/// Literals and values in turn.
template <class... Texts>
void Append(std::string& out, const Texts&... texts) {
  (out.append(std::string_view(texts)), ...);
}

/// Both readers append the entity of a line to the list; a line that is none may leave a part of it
/// behind and answers false.
class PlacementReader {
 public:
  bool Read(std::string_view text, std::string& out) {
    if (m_units.empty() && text.starts_with("Units")) return ReadUnits(Line(text.substr(5)));
    Line line(text);
    line.SkipBlanks();
    const std::string_view designator = line.Run(IsLetterOrDigit);
    if (designator.empty() || !line.SkipBlanks()) return false;
    const std::string_view side = line.Run(IsLetter);
    if ((side != "TOP" && side != "BOTTOM") || !line.SkipBlanks()) return false;
    const std::string_view x = line.DecimalNumber();
    if (x.empty() || !line.SkipBlanks()) return false;
    const std::string_view y = line.DecimalNumber();
    if (y.empty() || !line.SkipBlanks()) return false;
    const std::string_view angle = line.WholeNumber();
    if (angle.empty() || !line.SkipBlanks()) return false;
    const std::string_view package = line.Run(IsWord);
    if (package.empty() || !line.SkipBlanks()) return false;
    const std::string_view article = line.Run(IsWord);
    if (article.empty() || !line.SkipBlanks()) return false;
    const std::string_view value = line.Run(IsWord);
    line.SkipBlanks();
    if (value.empty() || !line.IsAtEnd()) return false;
    Append(out, "<REF_DESIGNATOR>", designator, "</REF_DESIGNATOR><SIDEDNESS>", side,
           "</SIDEDNESS><X_LOCATION>", x, "</X_LOCATION><Y_LOCATION>", y, "</Y_LOCATION><ROTATION>",
           angle, "</ROTATION><PACKAGE>", package, "</PACKAGE><PART_NUMBER>", article,
           "</PART_NUMBER><VALUE>", value, "</VALUE><UNITS>", m_units, "</UNITS>");
    return true;
  }

 private:
  /// The units stand on top, before all placements. They are no entity.
  bool ReadUnits(Line line) {
    line.SkipBlanks();
    if (!line.Skip('=')) return false;
    line.SkipBlanks();
    m_units = line.Rest();
    return false;
  }

  std::string m_units;
};

class BomReader {
 public:
  bool Read(std::string_view text, std::string& out) const {
    Line line(text);
    const std::string_view item = line.WholeNumber();
    if (item.empty() || !line.Skip(';')) return false;
    if (line.WholeNumber().empty() || !line.Skip(';')) return false;
    if (!ReadDesignators(line, out) || !line.Skip(';')) return false;
    std::string_view article;
    std::string_view maker;
    std::string_view package;
    std::string_view value;
    if (!line.UpTo(';', article) || !line.UpTo(';', maker) || !line.UpTo(';', package) ||
        !line.UpTo(';', value)) {
      return false;
    }
    Append(out, "<PART_NUMBER>", article, "</PART_NUMBER><PART_ID>item ", item,
           "</PART_ID><PART_TYPE>", maker, "</PART_TYPE><PACKAGE>", package, "</PACKAGE><VALUE>",
           value, "</VALUE><DESCRIPTION>", line.Rest(), "</DESCRIPTION>");
    return true;
  }

 private:
  static bool ReadDesignators(Line& line, std::string& out) {
    bool any = false;
    for (;;) {
      const std::string_view designator = line.Run(IsLetterOrDigit);
      if (designator.empty()) return any;
      Append(out, "<REF_DESIGNATOR>", designator, "</REF_DESIGNATOR>");
      line.Skip(',');
      line.SkipBlanks();
      any = true;
    }
  }
};

template <class Reader>
void WriteList(std::string_view text, Reader reader, std::ofstream& file) {
  std::string out = "<TN_FILEPARSER_ENTITIES>";
  out.reserve(kPieceSize + 64 * 1024);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::size_t mark = out.size();
    out += "<ENTITY>Part";
    if (reader.Read(text.substr(0, end), out)) {
      out += "</ENTITY>";
    } else {
      out.resize(mark);
    }
    text.remove_prefix(std::min(end + 1, text.size()));
    if (out.size() < kPieceSize) continue;
    file.write(out.data(), static_cast<std::streamsize>(out.size()));
    out.clear();
  }
  file << out << "</TN_FILEPARSER_ENTITIES>";
}

bool ReadFile(const char* path, std::string& text) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) return false;
  text.resize(static_cast<std::size_t>(file.tellg()));
  file.seekg(0);
  return static_cast<bool>(file.read(text.data(), static_cast<std::streamsize>(text.size())));
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view kind = argc == 4 ? argv[1] : "";
  if (kind != "placement" && kind != "bom") {
    std::fputs("usage: bench_scanner placement|bom INPUT OUTPUT\n", stderr);
    return 2;
  }
  std::string text;
  std::ofstream file;
  const bool read = ReadFile(argv[2], text);
  if (read) file.open(argv[3], std::ios::binary);
  if (kind == "placement" && file) WriteList(text, PlacementReader(), file);
  if (kind == "bom" && file) WriteList(text, BomReader(), file);
  file.close();
  if (read && file) return 0;
  std::fprintf(stderr, "bench_scanner: cannot %s\n", read ? "write the output" : "read the input");
  return 1;
}
