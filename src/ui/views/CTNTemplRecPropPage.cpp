#include "ui/views/CTNTemplRecPropPage.h"

#include "ui/controls/CTNParserListCtrl.h"

#include <QVBoxLayout>

namespace bomparser {

CTNTemplRecPropPage::CTNTemplRecPropPage(CTNParserListCtrl* list, QWidget* parent)
    : CTNPropPage(parent), m_list(list) {
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(list);
  setFocusProxy(list);
}

}  // namespace bomparser
