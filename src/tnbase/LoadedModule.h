#pragma once

#include <memory>
#include <string>

namespace bomparser {

/// A part of the program that is loaded when it is needed. It stays loaded for good: what it has
/// registered with the system may outlive every use of it.
class LoadedModule {
 public:
  /// Loads the module with this name from the folder of the running program, or from
  /// ../lib/bomparser beside it. Null with `error` when it is in neither place or cannot be loaded.
  static std::unique_ptr<LoadedModule> Load(const std::string& name, std::string& error);

  /// The address of what the module exports under the name; null when it exports nothing such.
  void* Find(const char* symbol) const;

 private:
  explicit LoadedModule(void* handle) : m_handle(handle) {}

  void* m_handle;
};

}  // namespace bomparser
