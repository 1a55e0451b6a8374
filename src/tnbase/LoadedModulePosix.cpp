#include "tnbase/LoadedModule.h"

#include <dlfcn.h>
#include <filesystem>
#include <system_error>

namespace bomparser {

namespace {

std::filesystem::path ProgramFolder() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown).parent_path();
}

}  // namespace

std::unique_ptr<LoadedModule> LoadedModule::Load(const std::string& name, std::string& error) {
  const std::filesystem::path folder = ProgramFolder();
  const std::string file = "lib" + name + ".so";
  error = file + " is not there";
  for (const auto& path : {folder / file, folder / "../lib/bomparser" / file}) {
    std::error_code unknown;
    if (folder.empty() || !std::filesystem::exists(path, unknown)) continue;
    if (void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) {
      return std::unique_ptr<LoadedModule>(new LoadedModule(handle));
    }
    error = dlerror();
    return nullptr;
  }
  return nullptr;
}

void* LoadedModule::Find(const char* symbol) const { return dlsym(m_handle, symbol); }

}  // namespace bomparser
