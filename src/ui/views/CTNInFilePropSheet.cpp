#include "ui/views/CTNInFilePropSheet.h"

#include "ui/controls/DisplayText.h"
#include "ui/controls/Ids.h"
#include "ui/views/CTNInFilePropPage.h"
#include "ui/views/CTNTransSummaryPropPage.h"

namespace bomparser {
namespace {

constexpr int kInputPage = 0;
constexpr int kResultsPage = 1;

}  // namespace

// The results page is opened when somebody looks at it: its viewer is not made for nothing.
CTNInFilePropSheet::CTNInFilePropSheet(CTNInFilePropPage* inputPage,
                                       CTNTransSummaryPropPage* resultsPage, QWidget* parent)
    : CTNParserPropSheet(PagesToActivate::FirstOnly, parent),
      m_inputPage(inputPage),
      m_resultsPage(resultsPage) {
  SetControlId(*this, Ctrl::InputSheet);
  AddPage(inputPage, {});
  AddPage(resultsPage, {});
}

void CTNInFilePropSheet::OnInitDialog() {
  SetTabText(kInputPage, LabelText(Msg::InputFileLabel));
  SetTabText(kResultsPage, LabelText(Msg::TemplateApplicationResults));
}

}  // namespace bomparser
