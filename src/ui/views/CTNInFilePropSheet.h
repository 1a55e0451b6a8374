#pragma once

#include "ui/controls/CTNParserPropSheet.h"

namespace bomparser {

class CTNInFilePropPage;
class CTNTransSummaryPropPage;

/// The input file sheet of the main dialog: the input file view on its first page, the results of
/// the template's application on its second.
class CTNInFilePropSheet final : public CTNParserPropSheet {
  Q_OBJECT

 public:
  /// The sheet owns the pages.
  CTNInFilePropSheet(CTNInFilePropPage* inputPage, CTNTransSummaryPropPage* resultsPage,
                     QWidget* parent = nullptr);

  CTNInFilePropPage& GetInputPage() const { return *m_inputPage; }
  CTNTransSummaryPropPage& GetResultsPage() const { return *m_resultsPage; }

 protected:
  void OnInitDialog() override;

 private:
  CTNInFilePropPage* m_inputPage;
  CTNTransSummaryPropPage* m_resultsPage;
};

}  // namespace bomparser
