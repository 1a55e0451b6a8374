#include "ui/views/CTNTemplRecPropPage.h"

#include "ui/views/CTNTemplRecordListCtrl.h"

#include <QVBoxLayout>

namespace bomparser {

CTNTemplRecPropPage::CTNTemplRecPropPage(CTNTemplRecordListCtrl* list, QWidget* parent)
    : CTNPropPage(parent), m_list(list) {
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(list);
  setFocusProxy(list);
}

}  // namespace bomparser
