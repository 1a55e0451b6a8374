#include "host/Component.h"

#include "tnbase/LoadedModule.h"

#include <memory>

namespace bomparser {

std::optional<Component> LoadComponent(std::string& error) {
  const std::string name = "bomparser_component";
  const std::unique_ptr<LoadedModule> module = LoadedModule::Load(name, error);
  if (!module) return std::nullopt;
  const Component component = {
      reinterpret_cast<ComponentInit>(module->Find(kComponentInitSymbol)),
      reinterpret_cast<ComponentDisplay>(module->Find(kComponentDisplaySymbol))};
  if (component.init != nullptr && component.display != nullptr) return component;
  error = name + " is of another version";
  return std::nullopt;
}

}  // namespace bomparser
