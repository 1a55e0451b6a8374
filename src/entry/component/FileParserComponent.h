#pragma once

#include <cstdint>
#include <string>

namespace bomparser {
class CTNHostApp;
}

/// What a host and the component tell each other when the host has loaded it. Owned by the host.
struct appinfo_struct {
  // Filled by the component.
  std::string name;
  std::string version;
  std::uint32_t code = 0;  // Says which component this is.

  /// Filled by the host: its profile, help path and help. Not owned; it lives as long as the
  /// component is used. Null: a settings file of the user serves instead.
  bomparser::CTNHostApp* host = nullptr;
};

/// Introduces the component and the host to each other. To be called before the component's dialog
/// is opened, once or again; the host named last serves. Null does nothing. The number has no
/// meaning.
extern "C" [[gnu::visibility("default")]] void FileParser_component_init(appinfo_struct* info,
                                                                         int number);

namespace bomparser {

/// The name under which a host finds FileParser_component_init in the loaded module, and what it is
/// there.
constexpr const char* kComponentInitSymbol = "FileParser_component_init";
using ComponentInit = void (*)(appinfo_struct* info, int number);

}  // namespace bomparser
