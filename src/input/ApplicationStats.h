#pragma once

#include <cstdint>

namespace bomparser {

/// The counts of one application. Lines are rows of blocks.
struct ApplicationStats {
  std::uint64_t totalLines = 0;
  std::uint64_t ignoredLines = 0;
  std::uint64_t unmatchedLines = 0;
  std::uint32_t totalBlocks = 0;
  std::uint32_t ignoredBlocks = 0;
  std::uint32_t unmatchedBlocks = 0;
  std::uint32_t entityBlocks = 0;

  std::uint64_t ParseableLines() const { return totalLines - ignoredLines; }
  std::uint64_t MatchedLines() const { return ParseableLines() - unmatchedLines; }
  std::uint32_t ParseableBlocks() const { return totalBlocks - ignoredBlocks; }
  /// All blocks but the unmatched ones: ignored blocks count as matched.
  std::uint32_t MatchedBlocks() const { return totalBlocks - unmatchedBlocks; }
  /// All blocks that are neither entities nor unmatched, so ignored blocks count here too.
  std::uint32_t AuxiliaryBlocks() const { return totalBlocks - entityBlocks - unmatchedBlocks; }

  /// Matched over parseable blocks in percent; 0 when nothing is parseable. Ignored blocks count
  /// on one side only, so the result may exceed 100. Find Template compares exactly this number.
  double MatchPercent() const {
    if (ParseableBlocks() == 0) return 0.0;
    return static_cast<double>(MatchedBlocks()) / ParseableBlocks() * 100;
  }
};

}  // namespace bomparser
