#pragma once

#include "ui/controls/CTNPropPage.h"

namespace bomparser {

class CTNParserListCtrl;

/// A page of the record sheet: one record list.
class CTNTemplRecPropPage final : public CTNPropPage {
  Q_OBJECT

 public:
  /// The page owns the list.
  explicit CTNTemplRecPropPage(CTNParserListCtrl* list, QWidget* parent = nullptr);

  CTNParserListCtrl& GetList() const { return *m_list; }

 private:
  CTNParserListCtrl* m_list;
};

}  // namespace bomparser
