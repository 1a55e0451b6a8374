#include "ui/controls/Icons.h"

#include <QString>
#include <QtGlobal>

// The pictures are linked as part of a static library, of which the linker takes what something
// asks for. What is asked for here is a name outside every namespace, so this is one too.
static bool LoadResources() {
  Q_INIT_RESOURCE(bomparser);
  return true;
}

namespace bomparser {
namespace {

QString FileOf(IconId id) {
  switch (id) {
    case IconId::Program:
      return QStringLiteral(":/bomparser/icons/bomparser.svg");
    case IconId::Valid:
      return QStringLiteral(":/bomparser/icons/valid.svg");
    case IconId::Note:
      return QStringLiteral(":/bomparser/icons/note.svg");
    case IconId::Invalid:
      return QStringLiteral(":/bomparser/icons/invalid.svg");
    case IconId::EntityRecords:
      return QStringLiteral(":/bomparser/icons/entity-records.svg");
    case IconId::AuxiliaryRecords:
      return QStringLiteral(":/bomparser/icons/auxiliary-records.svg");
  }
  return {};
}

}  // namespace

QIcon Icon(IconId id) {
  [[maybe_unused]] static const bool loaded = LoadResources();
  return QIcon(FileOf(id));
}

}  // namespace bomparser
