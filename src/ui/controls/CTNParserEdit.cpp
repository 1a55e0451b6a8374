#include "ui/controls/CTNParserEdit.h"

#include <limits>

namespace bomparser {

CTNParserEdit::CTNParserEdit(QWidget* parent) : QLineEdit(parent) {
  // The usual limit would cut long match values.
  setMaxLength(std::numeric_limits<int>::max());
}

}  // namespace bomparser
