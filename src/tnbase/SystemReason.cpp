#include "tnbase/SystemReason.h"

#include <system_error>

namespace bomparser {

std::string SystemReason(std::string_view deed, std::string_view path, int errorNumber) {
  std::string text(deed);
  text.append(" ").append(path).append(": ").append(std::generic_category().message(errorNumber));
  return text;
}

}  // namespace bomparser
