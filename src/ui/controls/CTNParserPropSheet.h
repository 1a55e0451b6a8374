#pragma once

#include "ui/controls/CTNPropSheet.h"

namespace bomparser {

enum class PagesToActivate { FirstOnly, All };

/// Base of the sheets that are part of the main dialog: they have no buttons of their own.
class CTNParserPropSheet : public CTNPropSheet {
  Q_OBJECT

 public:
  explicit CTNParserPropSheet(PagesToActivate atOpening, QWidget* parent = nullptr);

  /// Without effect where there is no such tab.
  void SetTabText(int index, const QString& text);
};

}  // namespace bomparser
