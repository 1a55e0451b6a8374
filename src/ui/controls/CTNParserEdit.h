#pragma once

#include <QLineEdit>

namespace bomparser {

/// A line edit for texts of any length, which are shown as they are.
class CTNParserEdit : public QLineEdit {
  Q_OBJECT

 public:
  explicit CTNParserEdit(QWidget* parent = nullptr);
};

}  // namespace bomparser
