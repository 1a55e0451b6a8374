#include "ui/views/CTNTemplRecPropSheet.h"

#include "ui/controls/DisplayText.h"
#include "ui/controls/Icons.h"
#include "ui/controls/Ids.h"
#include "ui/views/CTNTemplRecPropPage.h"

#include <QTabWidget>

namespace bomparser {
namespace {

constexpr int kEntityPage = 0;
constexpr int kAuxiliaryPage = 1;
constexpr int kTabIconSize = 14;

}  // namespace

CTNTemplRecPropSheet::CTNTemplRecPropSheet(CTNTemplRecordListCtrl* entityRecords,
                                           CTNTemplRecordListCtrl* auxiliaryRecords,
                                           QWidget* parent)
    : CTNParserPropSheet(PagesToActivate::All, parent),
      m_entityPage(new CTNTemplRecPropPage(entityRecords)),
      m_auxiliaryPage(new CTNTemplRecPropPage(auxiliaryRecords)) {
  SetControlId(*this, Ctrl::RecordSheet);
  AddPage(m_entityPage, {});
  AddPage(m_auxiliaryPage, {});
}

void CTNTemplRecPropSheet::OnInitDialog() {
  SetTabText(kEntityPage, LabelText(Msg::EntityRecords));
  SetTabText(kAuxiliaryPage, LabelText(Msg::AuxiliaryRecords));
  QTabWidget& tabs = GetTabControl();
  tabs.setIconSize(QSize(kTabIconSize, kTabIconSize));
  tabs.setTabIcon(kEntityPage, Icon(IconId::EntityRecords));
  tabs.setTabIcon(kAuxiliaryPage, Icon(IconId::AuxiliaryRecords));
}

}  // namespace bomparser
