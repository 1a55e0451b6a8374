#include "entry/component/FileParserComponent.h"

#include "entry/component/HostRole.h"
#include "input/MessageTexts.h"

#include <cstdlib>

using bomparser::Msg;

namespace {

/// Hosts tell components apart by it, so it never changes.
constexpr std::uint32_t kComponentCode = 0x544E4650;

void EmptyTextsAtShutdown() {
  // The module is never unloaded, so that its end is the end of the process.
  [[maybe_unused]] static const bool s_registered = std::atexit(bomparser::EmptyMessageTexts) == 0;
}

}  // namespace

void FileParser_component_init(appinfo_struct* info, int /*number*/) {
  if (info == nullptr) return;
  info->name = bomparser::GetMessageText(Msg::ComponentName);
  info->version = bomparser::GetMessageText(Msg::ComponentVersion);
  info->code = kComponentCode;
  bomparser::SetHost(info->host);
  EmptyTextsAtShutdown();
}
