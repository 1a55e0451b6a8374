// bench_minimal TEMPLATE INPUT OUTPUT: parses the template with the XML library and copies the
// input. What is left of a small file's run when nothing is done with it; linked like the product.

#include <array>
#include <cstddef>
#include <cstdio>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <memory>

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

bool Parse(const char* path) {
  xmlDoc* const doc = xmlReadFile(path, nullptr, 0);
  xmlFreeDoc(doc);
  return doc != nullptr;
}

bool Copy(const char* from, const char* to) {
  const File input(std::fopen(from, "rb"));
  const File output(std::fopen(to, "wb"));
  if (!input || !output) return false;
  std::array<char, 64 * 1024> piece;
  while (const std::size_t got = std::fread(piece.data(), 1, piece.size(), input.get())) {
    if (std::fwrite(piece.data(), 1, got, output.get()) != got) return false;
  }
  return std::ferror(input.get()) == 0 && std::fflush(output.get()) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: bench_minimal TEMPLATE INPUT OUTPUT\n", stderr);
    return 2;
  }
  return Parse(argv[1]) && Copy(argv[2], argv[3]) ? 0 : 1;
}
