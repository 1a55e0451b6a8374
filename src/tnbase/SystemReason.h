#pragma once

#include <string>
#include <string_view>

namespace bomparser {

/// The text of a failed call: "DEED PATH: REASON", where the reason is the system's text for an
/// error number (errno).
std::string SystemReason(std::string_view deed, std::string_view path, int errorNumber);

}  // namespace bomparser
