#include "ui/controls/CTNPropPage.h"

#include <utility>

namespace bomparser {

CTNPropPage::CTNPropPage(QWidget* parent) : QWidget(parent) {}

void CTNPropPage::SetActive() {
  m_active = true;
  if (!std::exchange(m_initialised, true)) OnInitDialog();
  OnSetActive();
  emit Activated();
}

void CTNPropPage::KillActive() {
  m_active = false;
  OnKillActive();
  emit Deactivated();
}

}  // namespace bomparser
