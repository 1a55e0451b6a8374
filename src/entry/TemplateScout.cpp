#include "entry/TemplateScout.h"

#include "input/ApplicationStats.h"
#include "input/CTNParsedBlockPtrArray.h"
#include "input/CTNStringCharBuffIter.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <new>
#include <system_error>

namespace bomparser {

namespace {

// Below this size trials cost so little beside loading that looking ahead would not pay.
constexpr std::size_t kShortText = std::size_t{256} << 10;
// The sample is a small part of the text, so that looking costs little where it is of no use.
constexpr std::size_t kTextPerSample = 64;
constexpr std::size_t kLargestSample = std::size_t{64} << 10;
constexpr std::size_t kPieces = 8;
// Of template files; the templates take a few times as much memory.
constexpr std::uintmax_t kMostBytesKept = std::uintmax_t{4} << 20;

// A sample is a guess: of the whole text half as many blocks again may be unmatched, and of a few
// blocks not much follows at all.
constexpr double kMoreUnmatched = 1.5;
constexpr double kDoubtfulBlocks = 2.0;

double CautiousScore(const ApplicationStats& stats) {
  const double matched = stats.totalBlocks - kMoreUnmatched * stats.unmatchedBlocks;
  return std::max(matched / (stats.totalBlocks + kDoubtfulBlocks) * 100, 0.0);
}

/// Whole lines from `start` on, at most `size` characters of them.
std::string_view LinesBehind(std::string_view text, std::size_t start, std::size_t size) {
  const std::size_t lineEnd = text.find('\n', start);
  if (lineEnd == std::string_view::npos) return {};
  const std::string_view piece = text.substr(lineEnd + 1, size);
  return piece.substr(0, piece.rfind('\n') + 1);
}

std::uintmax_t FileSize(const std::string& path) {
  std::error_code failure;
  const std::uintmax_t size = std::filesystem::file_size(path, failure);
  return failure ? 0 : size;
}

}  // namespace

TemplateScout::TemplateScout(const std::vector<std::string>& paths) : m_paths(paths) {}

void TemplateScout::LookAhead(std::size_t from, std::string_view text) {
  if (from < m_next) return;
  try {
    if (!m_sample) MakeSample(text);
    m_kept.resize(m_paths.size());
    m_promise = 0.0;
    std::uintmax_t bytes = 0;
    bool good = false;
    m_next = m_sample->Size() == 0 ? m_paths.size() : from;
    for (; m_next < m_paths.size() && !good && bytes < kMostBytesKept; ++m_next) {
      good = Look(m_next);
      bytes += FileSize(m_paths[m_next]);
    }
  } catch (const std::bad_alloc&) {
    // Without the room to look ahead the search goes its usual way.
    m_next = m_paths.size();
    m_kept.clear();
    m_promise = 0.0;
  }
}

void TemplateScout::MakeSample(std::string_view text) {
  std::string sample;
  if (text.size() >= kShortText && text.back() == '\n') {
    const std::size_t size = std::min(text.size() / kTextPerSample, kLargestSample);
    // From the middle of equal parts: the heads and ends of files are unlike the rest.
    for (std::size_t piece = 0; piece < kPieces; ++piece) {
      const std::size_t start = text.size() / (2 * kPieces) * (2 * piece + 1);
      sample += LinesBehind(text, start, size / kPieces);
    }
  }
  m_sample = CTNInputText::Copy(sample);
}

/// True when the template at this place is good on the sample.
bool TemplateScout::Look(std::size_t place) {
  std::unique_ptr<CTNParserTemplate> document = Load(place);
  if (!document) return false;
  const ApplicationStats stats = TryOnSample(*document);
  if (CautiousScore(stats) > m_promise) {
    m_promise = CautiousScore(stats);
    m_seed = place;
  }
  m_kept[place] = std::move(document);
  return stats.MatchPercent() >= kGoodScore;
}

/// The counts on the sample; none for a template whose score on the text does not follow from them.
ApplicationStats TemplateScout::TryOnSample(CTNParserTemplate& document) const {
  if (document.GetLineLimits().ignoreAfter != 0) return {};
  if (document.HasRecordThatTakesNothing()) return {};
  CTNParsedBlockPtrArray blocks(nullptr);
  CTNStringCharBuffIter text(m_sample);
  std::string error;
  bool cancelled = false;
  document.BeginApplication(m_sample, blocks, ResultUse::Counted);
  const bool done = document.ParseFile(text, blocks, error, cancelled);
  document.EndApplication(blocks);  // Frees what is large.
  return done ? blocks.GetStats() : ApplicationStats();
}

std::unique_ptr<CTNParserTemplate> TemplateScout::Take(std::size_t place) {
  return place < m_kept.size() ? std::move(m_kept[place]) : nullptr;
}

std::unique_ptr<CTNParserTemplate> TemplateScout::Load(std::size_t place) {
  m_context.toldAtOnce = false;
  auto document = std::make_unique<CTNParserTemplate>(&m_context);
  if (document->LoadFromFile(m_paths[place]) != kXmlOk || m_context.toldAtOnce) return nullptr;
  document->SetFilePath(m_paths[place]);
  document->ClearModified();
  return document;
}

}  // namespace bomparser
