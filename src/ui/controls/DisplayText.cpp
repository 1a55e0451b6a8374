#include "ui/controls/DisplayText.h"

#include "tnbase/TextEncoding.h"

namespace bomparser {

QString ToDisplayText(std::string_view bytes) {
  if (!IsUtf8(bytes)) return QString::fromStdString(Windows1252ToUtf8(bytes));
  return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

}  // namespace bomparser
