#pragma once

#include "entry/component/CTNFileParserInterface.h"
#include "entry/component/FileParserComponent.h"

#include <optional>
#include <string>

namespace bomparser {

/// The two entry points of the loaded component.
struct Component {
  ComponentInit init;
  ComponentDisplay display;
};

/// Loads the component, for good. Nothing, with `error`, when it is not there or is another one.
std::optional<Component> LoadComponent(std::string& error);

}  // namespace bomparser
