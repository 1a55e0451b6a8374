#include "ui/controls/Ids.h"

namespace bomparser {

int GetHelpId(const QObject& control) {
  constexpr int kFirstHelpId = 0x10000;
  const QVariant own = control.property(id_property::kHelp);
  if (own.isValid()) return own.toInt();
  const Ctrl number = GetControlId(control);
  return number == Ctrl::None ? 0 : kFirstHelpId + static_cast<int>(number);
}

}  // namespace bomparser
