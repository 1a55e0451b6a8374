#include "ui/views/CTNTemplRecPropSheet.h"

#include "entry/CTNFileParserEngine.h"
#include "tests/ui/support/UiTest.h"
#include "ui/controls/Icons.h"
#include "ui/views/CTNTemplRecPropPage.h"
#include "ui/views/CTNTemplRecordListCtrl.h"

#include <QImage>
#include <QPushButton>
#include <QTabBar>
#include <string>

namespace bomparser::test {
namespace {

class CTNTemplRecPropSheetTest : public testing::Test {
 protected:
  CTNTemplRecPropSheetTest() {
    for (CTNPropPage* page : {sheet.GetPage(0), sheet.GetPage(1)}) {
      QObject::connect(page, &CTNPropPage::Activated, [this, page] {
        log += page == sheet.GetPage(0) ? "entity " : "auxiliary ";
      });
    }
    sheet.resize(600, 300);
    sheet.show();
  }
  QTabBar& Tabs() const { return *sheet.findChild<QTabBar*>(); }
  QImage TabImage(int tab) const {
    return Tabs().tabIcon(tab).pixmap(QSize(14, 14), 1.0).toImage();
  }

  std::string log;
  CTNFileParserEngine engine;
  CTNTemplRecordListCtrl* entityRecords =
      new CTNTemplRecordListCtrl(engine, RecordPage::Entity, QStringLiteral("BOM Parser"));
  CTNTemplRecordListCtrl* auxiliaryRecords =
      new CTNTemplRecordListCtrl(engine, RecordPage::Auxiliary, QStringLiteral("BOM Parser"));
  CTNTemplRecPropSheet sheet{entityRecords, auxiliaryRecords};
};

TEST_F(CTNTemplRecPropSheetTest, HasTheEntityRecordsAndTheAuxiliaryRecordsInThisOrder) {
  ASSERT_EQ(sheet.GetPageCount(), 2);
  EXPECT_EQ(&sheet.GetEntityPage().GetList(), entityRecords);
  EXPECT_EQ(&sheet.GetAuxiliaryPage().GetList(), auxiliaryRecords);
  EXPECT_TRUE(sheet.GetPage(0)->isAncestorOf(entityRecords));
  EXPECT_TRUE(sheet.GetPage(1)->isAncestorOf(auxiliaryRecords));
  EXPECT_EQ(Tabs().tabText(0), QStringLiteral("Entity Records"));
  EXPECT_EQ(Tabs().tabText(1), QStringLiteral("Auxiliary Records"));
}

TEST_F(CTNTemplRecPropSheetTest, TabsHaveTheirPictures) {
  EXPECT_EQ(Tabs().iconSize(), QSize(14, 14));
  EXPECT_EQ(TabImage(0), Icon(IconId::EntityRecords).pixmap(QSize(14, 14), 1.0).toImage());
  EXPECT_EQ(TabImage(1), Icon(IconId::AuxiliaryRecords).pixmap(QSize(14, 14), 1.0).toImage());
}

TEST_F(CTNTemplRecPropSheetTest, CarriesItsNumberAndHasNoButtons) {
  EXPECT_EQ(GetControlId(sheet), Ctrl::RecordSheet);
  EXPECT_TRUE(sheet.findChildren<QPushButton*>().empty());
}

TEST_F(CTNTemplRecPropSheetTest, BothPagesWereActiveBeforeTheFirstIsShown) {
  EXPECT_EQ(log, "entity auxiliary entity ");
  EXPECT_TRUE(entityRecords->isVisible());
  EXPECT_FALSE(auxiliaryRecords->isVisible());
}

TEST_F(CTNTemplRecPropSheetTest, APageGivesTheFocusToItsList) {
  sheet.GetPage(0)->setFocus();
  EXPECT_EQ(sheet.focusWidget(), entityRecords);
}

TEST_F(CTNTemplRecPropSheetTest, PictureOfTheSheet) {
  engine.GetTemplate()->AddRecord(RecordKind::Part, "Placement line");
  engine.GetTemplate()->AddRecord(RecordKind::Drill, "Tool");
  entityRecords->ShowRecords();
  EXPECT_TRUE(Screenshot(sheet, "record-sheet"));
}

}  // namespace
}  // namespace bomparser::test
