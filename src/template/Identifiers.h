#pragma once

#include "input/MessageTexts.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace bomparser {

/// The identifier of the element at `index` (from 0): the prefix and its position from 1.
std::string MakeIdentifier(Msg prefix, std::size_t index);
/// Reads an identifier with this prefix, in any case; `index` counts from 0. The number stands as
/// MakeIdentifier writes it: "F01" is no identifier.
bool ReadIdentifier(std::string_view id, Msg prefix, std::size_t& index);
/// Whether the word is the identifier of a record, an input field or an output element, be there
/// one or not.
bool IsIdentifier(std::string_view word);

}  // namespace bomparser
