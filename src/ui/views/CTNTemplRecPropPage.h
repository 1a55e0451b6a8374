#pragma once

#include "ui/controls/CTNPropPage.h"

namespace bomparser {

class CTNTemplRecordListCtrl;

/// A page of the record sheet: one record list.
class CTNTemplRecPropPage final : public CTNPropPage {
  Q_OBJECT

 public:
  /// The page owns the list.
  explicit CTNTemplRecPropPage(CTNTemplRecordListCtrl* list, QWidget* parent = nullptr);

  CTNTemplRecordListCtrl& GetList() const { return *m_list; }

 private:
  CTNTemplRecordListCtrl* m_list;
};

}  // namespace bomparser
