#pragma once

#include "template/CTNParserTemplate.h"

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace bomparser::test {

/// Where random decisions come from: a generator with a seed, or the bytes of a fuzzer.
class Chooser {
 public:
  virtual ~Chooser() = default;
  /// A number from 0 to count - 1; `count` is at least 1.
  virtual std::uint32_t Below(std::uint32_t count) = 0;
  bool OneIn(std::uint32_t count) { return Below(count) == 0; }
};

class SeededChooser final : public Chooser {
 public:
  explicit SeededChooser(std::uint32_t seed) : m_engine(seed) {}
  std::uint32_t Below(std::uint32_t count) override {
    return static_cast<std::uint32_t>(m_engine() % count);
  }

 private:
  std::mt19937 m_engine;
};

/// Takes the bytes one after the other; when they are used up every answer is 0.
class ByteChooser final : public Chooser {
 public:
  explicit ByteChooser(std::string_view bytes) : m_bytes(bytes) {}
  std::uint32_t Below(std::uint32_t count) override {
    if (m_bytes.empty()) return 0;
    const auto byte = static_cast<unsigned char>(m_bytes.front());
    m_bytes.remove_prefix(1);
    return byte % count;
  }

 private:
  std::string_view m_bytes;
};

/// Whether records of a random template may contain each other.
enum class Circles { No, Some };

/// Fills an empty template with a few small records of all kinds: every field type, match values,
/// limits, optional fields, sub-records inside sub-records, entity records as sub-records, output
/// elements with tags, NONE, references and chains.
void MakeRandomTemplate(Chooser& choose, CTNParserTemplate& document, Circles circles);
/// A text over the characters that matching tells apart; most texts hold what records of the
/// template may take.
std::string MakeRandomText(Chooser& choose, const CTNParserTemplate& document,
                           std::uint32_t maxSize);

/// Applies the template to the text with the compiled matcher and with the plain one. Tells in
/// what the blocks, the entity list, the counts, the single-match blocks or the values that fields
/// and elements show differ; an empty text when in nothing.
std::string FindDifference(CTNParserTemplate& document, std::string_view text);

/// The template in lines for people, the text with its unusual characters as escapes.
std::string Describe(const CTNParserTemplate& document);
std::string Escaped(std::string_view text);
/// FindDifference, with a text cut down as far as it still differs, ready to be printed.
std::string ExplainDifference(CTNParserTemplate& document, std::string text);

}  // namespace bomparser::test
