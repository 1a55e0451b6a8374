#pragma once

#include "ui/controls/CTNParserPropSheet.h"

namespace bomparser {

class CTNTemplRecPropPage;
class CTNTemplRecordListCtrl;

/// The record sheet of the main dialog: the entity records on its first page, the auxiliary records
/// on its second.
class CTNTemplRecPropSheet final : public CTNParserPropSheet {
  Q_OBJECT

 public:
  /// The pages own the lists.
  CTNTemplRecPropSheet(CTNTemplRecordListCtrl* entityRecords,
                       CTNTemplRecordListCtrl* auxiliaryRecords, QWidget* parent = nullptr);

  CTNTemplRecPropPage& GetEntityPage() const { return *m_entityPage; }
  CTNTemplRecPropPage& GetAuxiliaryPage() const { return *m_auxiliaryPage; }

 protected:
  void OnInitDialog() override;

 private:
  CTNTemplRecPropPage* m_entityPage;
  CTNTemplRecPropPage* m_auxiliaryPage;
};

}  // namespace bomparser
