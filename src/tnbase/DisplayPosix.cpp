#include "tnbase/Display.h"

#include <cstdlib>
#include <initializer_list>

namespace bomparser {

bool HasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    const char* const value = std::getenv(name);
    if (value != nullptr && *value != '\0') return true;
  }
  return false;
}

}  // namespace bomparser
