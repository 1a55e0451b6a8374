#include "cli/TargetNames.h"

#include "input/MessageTexts.h"
#include "tnbase/TNPath.h"

#include <unordered_map>

namespace bomparser {

std::string TargetName(std::string_view input) {
  const std::string title = TNGetFNameFromPath(input);
  return title.substr(0, title.find('.')) + GetMessageText(Msg::XmlExtensionWithDot);
}

TargetClash FindTargetClash(const std::vector<std::string>& inputs) {
  std::unordered_map<std::string, std::size_t> places;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    const auto [known, added] = places.emplace(TargetName(inputs[i]), i);
    if (!added) return {known->second, i};
  }
  return {};
}

}  // namespace bomparser
