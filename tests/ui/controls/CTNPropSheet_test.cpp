#include "ui/controls/CTNPropSheet.h"

#include "tests/ui/support/UiTest.h"
#include "ui/controls/CTNParserPropSheet.h"

#include <QLabel>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <map>
#include <memory>
#include <utility>

namespace bomparser::test {
namespace {

/// A page that writes down what it is told.
class Page final : public CTNPropPage {
 public:
  Page(std::string name, std::string& log) : m_name(std::move(name)), m_log(log) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QString::fromStdString(m_name)));
    connect(this, &CTNPropPage::Activated, this, [this] { Note(" shown"); });
    connect(this, &CTNPropPage::Deactivated, this, [this] { Note(" hidden"); });
  }

 protected:
  void OnInitDialog() override { Note(" made"); }
  void OnSetActive() override { Note(" on"); }
  void OnKillActive() override { Note(" off"); }

 private:
  void Note(const char* what) { m_log += (m_log.empty() ? "" : ", ") + m_name + what; }

  std::string m_name;
  std::string& m_log;
};

class CTNPropSheetTest : public testing::Test {
 protected:
  void Make(const SheetOptions& options, int pages = 3) {
    Fill(std::make_unique<CTNPropSheet>(options), pages);
  }
  void Fill(std::unique_ptr<CTNPropSheet> made, int pages) {
    sheet = std::move(made);
    for (int i = 0; i < pages; ++i) {
      const std::string name(1, static_cast<char>('a' + i));
      sheet->AddPage(new Page(name, log), QString::fromStdString(name));
    }
  }
  void ShowWide() {
    sheet->resize(900, 300);
    sheet->show();
    Settle();
  }
  QTabBar& Tabs() const { return *sheet->findChild<QTabBar*>(); }
  /// The texts of the visible buttons from left to right.
  std::string Buttons() const {
    std::map<int, std::string> byPlace;
    for (const auto* button : sheet->findChildren<QPushButton*>())
      byPlace[button->x()] = button->text().remove(u'&').toStdString();
    std::string texts;
    for (const auto& [x, text] : byPlace)
      texts += (texts.empty() ? "" : " ") + text;
    return texts;
  }
  /// The free widths left of the buttons, between them and right of them.
  std::vector<int> Gaps() const {
    std::map<int, int> ends;
    for (const auto* button : sheet->findChildren<QPushButton*>())
      ends[button->x()] = button->x() + button->width();
    std::vector<int> gaps;
    int from = 0;
    for (const auto& [start, end] : ends) {
      gaps.push_back(start - from);
      from = end;
    }
    gaps.push_back(sheet->width() - from);
    return gaps;
  }

  std::string log;
  std::unique_ptr<CTNPropSheet> sheet;
};

TEST_F(CTNPropSheetTest, NoPageIsActiveBeforeTheSheetOpens) {
  Make({});
  EXPECT_EQ(sheet->GetActiveIndex(), -1);
  sheet->SetActivePage(1);
  EXPECT_EQ(log, "");
}

TEST_F(CTNPropSheetTest, TheFirstPageIsActiveWhenTheSheetOpens) {
  Make({});
  sheet->show();
  EXPECT_EQ(log, "a made, a on, a shown");
  EXPECT_EQ(sheet->GetActiveIndex(), 0);
}

TEST_F(CTNPropSheetTest, AskedToItActivatesThePagesFromTheSecondToTheLastAndTheFirstAgain) {
  Make({.activateAllPages = true});
  sheet->Initialise();
  EXPECT_EQ(log,
            "a made, a on, a shown, a off, a hidden, b made, b on, b shown, b off, b hidden, "
            "c made, c on, c shown, c off, c hidden, a on, a shown");
  EXPECT_EQ(sheet->GetActiveIndex(), 0);
}

TEST_F(CTNPropSheetTest, ASinglePageIsNotActivatedTwice) {
  Make({.activateAllPages = true}, 1);
  sheet->Initialise();
  EXPECT_EQ(log, "a made, a on, a shown");
}

TEST_F(CTNPropSheetTest, PagesAreActivatedAtTheFirstOpeningOnly) {
  Make({.activateAllPages = true});
  sheet->Initialise();
  log.clear();
  sheet->show();
  sheet->hide();
  sheet->show();
  EXPECT_EQ(log, "");
}

TEST_F(CTNPropSheetTest, AClickOnATabTellsBothPages) {
  Make({});
  sheet->show();
  log.clear();
  QTest::mouseClick(&Tabs(), Qt::LeftButton, {}, Tabs().tabRect(1).center());
  EXPECT_EQ(log, "a off, a hidden, b made, b on, b shown");
  EXPECT_FALSE(sheet->GetPage(0)->IsActive());
  EXPECT_TRUE(sheet->GetPage(1)->IsActive());
}

TEST_F(CTNPropSheetTest, AClickOnTheActiveTabTellsNobody) {
  Make({});
  sheet->show();
  log.clear();
  QTest::mouseClick(&Tabs(), Qt::LeftButton, {}, Tabs().tabRect(0).center());
  EXPECT_EQ(log, "");
}

TEST_F(CTNPropSheetTest, TheKeyboardChangesPages) {
  Make({});
  sheet->show();
  Tabs().setFocus();
  QTest::keyClick(&Tabs(), Qt::Key_Right);
  EXPECT_EQ(sheet->GetActiveIndex(), 1);
}

TEST_F(CTNPropSheetTest, APageIsMadeOnce) {
  Make({});
  sheet->show();
  sheet->SetActivePage(1);
  sheet->SetActivePage(0);
  log.clear();
  sheet->SetActivePage(1);
  EXPECT_EQ(log, "a off, a hidden, b on, b shown");
}

TEST_F(CTNPropSheetTest, WhereThereIsNoSuchPageThereIsNone) {
  Make({}, 0);
  sheet->show();
  EXPECT_EQ(sheet->GetActiveIndex(), -1);
  EXPECT_EQ(sheet->GetPage(0), nullptr);
  sheet->SetActivePage(7);
  EXPECT_EQ(sheet->GetActiveIndex(), -1);
}

TEST_F(CTNPropSheetTest, APageThatIsDeletedIsNoLongerTold) {
  Make({});
  sheet->show();
  log.clear();
  delete sheet->GetPage(0);
  EXPECT_EQ(log, "b made, b on, b shown");
  EXPECT_EQ(sheet->GetPageCount(), 2);
}

TEST_F(CTNPropSheetTest, ASheetThatGoesTellsNobody) {
  Make({});
  sheet->show();
  log.clear();
  sheet.reset();
  EXPECT_EQ(log, "");
}

TEST_F(CTNPropSheetTest, TheStandardButtonsStandAtTheRight) {
  Make({});
  ShowWide();
  EXPECT_EQ(Buttons(), "OK Cancel Help Apply");
  const std::vector<int> gaps = Gaps();
  EXPECT_GT(gaps.front(), 300);
  EXPECT_LT(gaps.back(), 30);
}

TEST_F(CTNPropSheetTest, WithoutApplyTheOthersAreEvenlySpaced) {
  Make({.hideApply = true});
  ShowWide();
  EXPECT_EQ(Buttons(), "OK Cancel Help");
  const std::vector<int> gaps = Gaps();
  EXPECT_GT(gaps[1], 50);
  EXPECT_NEAR(gaps[1], gaps[2], 2);
  EXPECT_NEAR(gaps[0], gaps[3], 2);
}

TEST_F(CTNPropSheetTest, WithAnExtraButtonAllAreEvenlySpaced) {
  Make({.extraButton = QStringLiteral("Preview")});
  ShowWide();
  EXPECT_EQ(Buttons(), "OK Cancel Help Apply Preview");
  const std::vector<int> gaps = Gaps();
  EXPECT_GT(gaps[1], 20);
  for (std::size_t i = 2; i + 1 < gaps.size(); ++i) {
    EXPECT_NEAR(gaps[1], gaps[i], 2);
  }
}

TEST_F(CTNPropSheetTest, ButtonsKeepTheirSizeWhenTheyAreSpaced) {
  Make({});
  ShowWide();
  const QSize size = sheet->GetButton(SheetButton::Cancel)->size();
  Make({.hideApply = true});
  ShowWide();
  EXPECT_EQ(sheet->GetButton(SheetButton::Cancel)->size(), size);
}

TEST_F(CTNPropSheetTest, EveryButtonTellsWhichItIs) {
  Make({.extraButton = QStringLiteral("Preview")});
  sheet->show();
  std::vector<SheetButton> clicked;
  QObject::connect(sheet.get(), &CTNPropSheet::ButtonClicked,
                   [&clicked](SheetButton button) { clicked.push_back(button); });
  const std::vector<SheetButton> all = {SheetButton::Ok, SheetButton::Cancel, SheetButton::Help,
                                        SheetButton::Apply, SheetButton::Extra};
  for (const SheetButton button : all)
    QTest::mouseClick(sheet->GetButton(button), Qt::LeftButton);
  EXPECT_EQ(clicked, all);
}

TEST_F(CTNPropSheetTest, ButtonsCarryTheirNumbers) {
  Make({.extraButton = QStringLiteral("Preview")});
  for (const Ctrl number : {Ctrl::Ok, Ctrl::Cancel, Ctrl::Help, Ctrl::Apply, Ctrl::SheetExtra}) {
    EXPECT_NE(FindControl<QPushButton>(*sheet, number), nullptr) << static_cast<int>(number);
  }
}

TEST_F(CTNPropSheetTest, AnEmbeddedSheetHasNoButtons) {
  Make({.embedded = true});
  sheet->show();
  EXPECT_EQ(Buttons(), "");
  EXPECT_EQ(sheet->GetButton(SheetButton::Ok), nullptr);
}

TEST_F(CTNPropSheetTest, ASheetOfItsOwnHasTheHelpButton) {
  Make({});
  EXPECT_TRUE(sheet->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
}

TEST_F(CTNPropSheetTest, ASheetOfTheMainDialogSetsTheTextOfATab) {
  Fill(std::make_unique<CTNParserPropSheet>(PagesToActivate::FirstOnly), 2);
  auto& parserSheet = static_cast<CTNParserPropSheet&>(*sheet);
  parserSheet.SetTabText(1, QStringLiteral("Second"));
  parserSheet.SetTabText(2, QStringLiteral("Nothing"));
  EXPECT_EQ(Tabs().tabText(0), QStringLiteral("a"));
  EXPECT_EQ(Tabs().tabText(1), QStringLiteral("Second"));
  EXPECT_EQ(sheet->GetPage(1)->accessibleName(), QStringLiteral("Second"));
}

TEST_F(CTNPropSheetTest, ASheetOfTheMainDialogActivatesItsPagesAsAsked) {
  Fill(std::make_unique<CTNParserPropSheet>(PagesToActivate::All), 2);
  sheet->Initialise();
  EXPECT_EQ(log,
            "a made, a on, a shown, a off, a hidden, b made, b on, b shown, b off, b hidden, "
            "a on, a shown");
  EXPECT_EQ(Buttons(), "");
}

TEST_F(CTNPropSheetTest, PictureOfTheButtonRows) {
  Make({});
  sheet->resize(600, 200);
  sheet->show();
  EXPECT_TRUE(Screenshot(*sheet, "prop-sheet-standard"));
  Make({.hideApply = true, .extraButton = QStringLiteral("Preview")});
  sheet->resize(600, 200);
  sheet->show();
  EXPECT_TRUE(Screenshot(*sheet, "prop-sheet-spaced"));
}

}  // namespace
}  // namespace bomparser::test
