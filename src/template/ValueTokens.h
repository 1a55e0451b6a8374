#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

/// Cuts an expression into its tokens: quoted texts with both quotes (a missing closing one is
/// added), each of ! ( ) * + - . / < > ^ | and each blank outside quotes on its own, and the words
/// between them. Joined, the tokens are the expression again.
std::vector<std::string> CutIntoTokens(std::string_view expression);

}  // namespace bomparser
