#include "cli/StatsLine.h"

#include "cli/Options.h"
#include "tnbase/NumberText.h"
#include "tnbase/StandardStreams.h"
#include "tnbase/TNPath.h"
#include "tnbase/TextEncoding.h"

#include <cstdint>
#include <fmt/format.h>

namespace bomparser {

namespace {

constexpr int kPercentDecimals = 2;
constexpr unsigned char kFirstPrintable = 0x20;
constexpr unsigned char kFirstBeyondAscii = 0x80;

/// The length of the UTF-8 character that the text starts with, 0 when it starts with none.
std::size_t CharacterLength(std::string_view text) {
  constexpr std::size_t kLongest = 4;
  for (std::size_t length = 1; length <= kLongest && length <= text.size(); ++length) {
    if (IsUtf8(text.substr(0, length))) return length;
  }
  return 0;
}

void AppendJsonText(std::string& out, std::string_view text) {
  out += '"';
  while (!text.empty()) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < kFirstBeyondAscii ? 1 : CharacterLength(text);
    if (length == 0 || first < kFirstPrintable) {
      out += fmt::format("\\u{:04x}", unsigned{first});
      text.remove_prefix(1);
      continue;
    }
    if (first == '"' || first == '\\') out += '\\';
    out += text.substr(0, length);
    text.remove_prefix(length);
  }
  out += '"';
}

}  // namespace

std::string StatsLine(std::string_view input, const ApplicationStats& stats) {
  struct Count {
    const char* key;
    std::uint64_t count;
  };
  const Count counts[] = {
      {"total_lines", stats.totalLines},           {"parseable_lines", stats.ParseableLines()},
      {"matched_lines", stats.MatchedLines()},     {"unmatched_lines", stats.unmatchedLines},
      {"total_blocks", stats.totalBlocks},         {"ignored_blocks", stats.ignoredBlocks},
      {"unmatched_blocks", stats.unmatchedBlocks}, {"matched_blocks", stats.MatchedBlocks()},
      {"entity_blocks", stats.entityBlocks},       {"auxiliary_blocks", stats.AuxiliaryBlocks()},
  };
  std::string line = "{\"input\":";
  AppendJsonText(line, input);
  for (const Count& count : counts)
    line += fmt::format(",\"{}\":{}", count.key, count.count);
  line += ",\"match_percent\":" + FormatFixed(stats.MatchPercent(), kPercentDecimals) + "}\n";
  return line;
}

void StatsReport::Add(std::string_view input, const ApplicationStats& stats) {
  if (!m_path) return;
  const std::string line = StatsLine(input, stats);
  if (*m_path == kStandardStreamPath) {
    std::string nobodyToTell;
    WriteTo(StandardStream::Error, line, nobodyToTell);
  } else {
    m_lines += line;
  }
}

bool StatsReport::OpenPipe(std::string& error) {
  if (!m_path || *m_path == kStandardStreamPath) return true;
  if (!FileExists(*m_path) || IsRegularFile(*m_path)) return true;
  m_file.emplace();
  return m_file->Open(*m_path, error);
}

bool StatsReport::Finish(std::string& error) {
  if (m_lines.empty()) return true;
  if (!m_file) {
    m_file.emplace();
    if (!m_file->Open(*m_path, error)) return false;
  }
  return m_file->Write(m_lines, error) && m_file->Commit(error);
}

}  // namespace bomparser
