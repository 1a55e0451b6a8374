// Bytes become a template and a text; the matcher at speed and the plain one must give the same.

#include "tests/support/RandomMatch.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace bomparser;
  using namespace bomparser::test;
  // The first byte says how many of the others are the text as it stands.
  if (size == 0) return 0;
  const std::size_t raw = data[0] < size ? data[0] : size - 1;
  std::string bytes(data + 1, data + size);
  const std::string text = bytes.substr(bytes.size() - raw);
  bytes.resize(bytes.size() - raw);

  ByteChooser choose(bytes);
  CTNParserTemplate document(nullptr);
  const Circles circles = choose.OneIn(8) ? Circles::Some : Circles::No;
  MakeRandomTemplate(choose, document, circles);
  for (const std::string& tried : {text, MakeRandomText(choose, document, 40)}) {
    if (FindDifference(document, tried).empty()) continue;
    std::fputs(ExplainDifference(document, tried).c_str(), stderr);
    std::abort();
  }
  return 0;
}
