#include "ui/views/CTNInFilePropSheet.h"

#include "tests/ui/support/UiTest.h"
#include "ui/controls/CTNWebBrowser2.h"
#include "ui/views/CTNInFilePropPage.h"
#include "ui/views/CTNTransSummaryPropPage.h"

#include <QTabBar>

namespace bomparser::test {
namespace {

class CTNInFilePropSheetTest : public testing::Test {
 protected:
  CTNInFilePropSheetTest() {
    sheet.resize(600, 400);
    sheet.show();
  }
  QTabBar& Tabs() const { return *sheet.findChild<QTabBar*>(); }

  CTNInFilePropPage* inputPage = new CTNInFilePropPage;
  CTNTransSummaryPropPage* resultsPage = new CTNTransSummaryPropPage(nullptr);
  CTNInFilePropSheet sheet{inputPage, resultsPage};
};

TEST_F(CTNInFilePropSheetTest, HasTheInputFileAndTheResultsInThisOrder) {
  ASSERT_EQ(sheet.GetPageCount(), 2);
  EXPECT_EQ(sheet.GetPage(0), inputPage);
  EXPECT_EQ(sheet.GetPage(1), resultsPage);
  EXPECT_EQ(Tabs().tabText(0), QStringLiteral("Input File"));
  EXPECT_EQ(Tabs().tabText(1), QStringLiteral("Template Application Results"));
  EXPECT_EQ(&sheet.GetInputPage(), inputPage);
  EXPECT_EQ(&sheet.GetResultsPage(), resultsPage);
}

TEST_F(CTNInFilePropSheetTest, CarriesItsNumberAndHasNoButtons) {
  EXPECT_EQ(GetControlId(sheet), Ctrl::InputSheet);
  for (const SheetButton button : {SheetButton::Ok, SheetButton::Cancel, SheetButton::Help,
                                   SheetButton::Apply, SheetButton::Extra}) {
    EXPECT_EQ(sheet.GetButton(button), nullptr);
  }
}

TEST_F(CTNInFilePropSheetTest, OpensWithTheInputFileAndMakesNoViewerForNothing) {
  EXPECT_TRUE(inputPage->IsActive());
  EXPECT_FALSE(resultsPage->IsActive());
  EXPECT_EQ(sheet.findChild<CTNWebBrowser2*>(), nullptr);
}

TEST_F(CTNInFilePropSheetTest, AClickOnTheSecondTabShowsTheResults) {
  QTest::mouseClick(&Tabs(), Qt::LeftButton, {}, Tabs().tabRect(1).center());
  EXPECT_TRUE(resultsPage->isVisible());
  EXPECT_TRUE(resultsPage->IsActive());
  EXPECT_FALSE(inputPage->IsActive());
}

TEST_F(CTNInFilePropSheetTest, PictureOfTheSheet) { EXPECT_TRUE(Screenshot(sheet, "input-sheet")); }

}  // namespace
}  // namespace bomparser::test
