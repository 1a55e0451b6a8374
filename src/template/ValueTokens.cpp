#include "template/ValueTokens.h"

namespace bomparser {

namespace {
constexpr std::string_view kTokensOfTheirOwn = "!()*+-./<>^|";
}

std::vector<std::string> CutIntoTokens(std::string_view expression) {
  std::vector<std::string> tokens;
  std::string token;
  bool quoted = false;
  const auto end = [&tokens, &token] {
    if (!token.empty()) tokens.push_back(std::move(token));
    token.clear();
  };
  for (const char c : expression) {
    if (c == '"') {
      if (!quoted) end();
      token += c;
      if (quoted) end();
      quoted = !quoted;
    } else if (!quoted && (c == ' ' || kTokensOfTheirOwn.find(c) != std::string_view::npos)) {
      end();
      tokens.emplace_back(1, c);
    } else {
      token += c;
    }
  }
  if (quoted) token += '"';
  end();
  return tokens;
}

}  // namespace bomparser
