#pragma once

#include <string>
#include <string_view>

namespace bomparser {

/// True when the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing beyond
/// U+10FFFF, nothing cut short. Empty text is well-formed.
bool IsUtf8(std::string_view bytes);

/// The text that the bytes mean in windows-1252, as UTF-8. The five bytes without a meaning there
/// (81, 8D, 8F, 90, 9D) become the control characters of the same number, so that every byte has a
/// character of its own.
std::string Windows1252ToUtf8(std::string_view bytes);

}  // namespace bomparser
