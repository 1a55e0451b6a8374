#pragma once

#include <QIcon>

namespace bomparser {

/// The pictures of the program.
enum class IconId {
  Program,           // The program itself.
  Valid,             // An element of the template is in order.
  Note,              // It has a remark.
  Invalid,           // It cannot be used as it is.
  EntityRecords,     // The list of records that become entities.
  AuxiliaryRecords,  // The list of all others.
};

/// The picture, sharp at every size and scale. The GUI application must exist.
QIcon Icon(IconId id);

}  // namespace bomparser
