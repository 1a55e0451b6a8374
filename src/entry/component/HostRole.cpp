#include "entry/component/HostRole.h"

#include "ui/controls/ProfileFile.h"

namespace bomparser {
namespace {

CTNHostApp* g_host = nullptr;

}  // namespace

void SetHost(CTNHostApp* host) { g_host = host; }

CTNHostApp& Host() {
  if (g_host != nullptr) return *g_host;
  static ProfileFile s_settings(ProfileFile::UsersFile());
  return s_settings;
}

}  // namespace bomparser
