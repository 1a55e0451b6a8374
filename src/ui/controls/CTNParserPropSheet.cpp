#include "ui/controls/CTNParserPropSheet.h"

#include <QTabWidget>

namespace bomparser {

CTNParserPropSheet::CTNParserPropSheet(PagesToActivate atOpening, QWidget* parent)
    : CTNPropSheet({.activateAllPages = atOpening == PagesToActivate::All, .embedded = true},
                   parent) {}

void CTNParserPropSheet::SetTabText(int index, const QString& text) {
  GetTabControl().setTabText(index, text);
  if (CTNPropPage* const page = GetPage(index)) page->setAccessibleName(text);
}

}  // namespace bomparser
