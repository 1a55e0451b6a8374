#include "host/Manual.h"

#include "tests/ui/host/ManualFolder.h"
#include "tests/ui/support/UiTest.h"

namespace bomparser::test {
namespace {

class ManualTest : public ManualFolder {
 protected:
  ManualTest() {
    SetDialogId(main, DialogId::Main);
    SetDialogId(*page, DialogId::InputFilePage);
    SetDialogId(*strange, DialogId::TemplateParams);
  }
  std::string PageOf(const QWidget* control) const {
    return manual.GetPageOf(control).toString().toStdString();
  }

  Manual manual{ManualPath()};
  QWidget main;
  QWidget* page = new QWidget(&main);
  QWidget* strange = new QWidget(page);  // A window about which there is no page.
};

TEST_F(ManualTest, ThePageOfAControlIsThatOfTheInnermostWindowThatHasOne) {
  EXPECT_EQ(PageOf(&main), PageUrl("window-702.html"));
  EXPECT_EQ(PageOf(MakeChild(main, Ctrl::LoadFromFile)), PageUrl("window-702.html"));
  EXPECT_EQ(PageOf(MakeChild(*page, Ctrl::InputRows)), PageUrl("window-744.html"));
  EXPECT_EQ(PageOf(MakeChild(*strange, Ctrl::ParamScale)), PageUrl("window-744.html"));
}

TEST_F(ManualTest, WhereNoWindowHasAPageItIsTheIndex) {
  const QWidget elsewhere;
  EXPECT_EQ(PageOf(&elsewhere), PageUrl("index.html"));
  EXPECT_EQ(PageOf(nullptr), PageUrl("index.html"));
}

TEST_F(ManualTest, AnEntryIsHeadingAndParagraphWithoutLinks) {
  const Manual::Entry entry = manual.GetEntry(MakeChild(main, Ctrl::LoadFromFile), 3006);
  EXPECT_EQ(entry.text,
            "<p><b>Load From File ...</b></p><p>Opens a <b>template</b>, see there.</p>");
  EXPECT_EQ(entry.place.toString().toStdString(), PageUrl("window-702.html") + "#control-3006");
}

TEST_F(ManualTest, AnEntryIsLookedUpInTheInnermostPageFirst) {
  const QWidget* const rows = MakeChild(*page, Ctrl::InputRows);
  EXPECT_EQ(manual.GetEntry(rows, 3003).text, "<p><b>Lines</b></p><p>All lines of the file.</p>");
  EXPECT_EQ(manual.GetEntry(&main, 3003).text,
            "<p><b>Lines</b></p><p>As the main window has it.</p>");
  EXPECT_EQ(manual.GetEntry(rows, 9).place.toString().toStdString(),
            PageUrl("window-702.html") + "#control-9");
}

TEST_F(ManualTest, ANumberThatNoPageKnowsHasNoEntry) {
  EXPECT_EQ(manual.GetEntry(&main, 300).text, "");
  EXPECT_EQ(manual.GetEntry(&main, 30060).text, "");
  EXPECT_EQ(manual.GetEntry(nullptr, 3006).text, "");
}

TEST_F(ManualTest, AManualThatIsNotThereHasNothing) {
  const Manual missing(ManualPath() + "/missing");
  EXPECT_EQ(missing.GetEntry(&main, 3006).text, "");
  EXPECT_EQ(missing.GetPageOf(&main).toString().toStdString(), PageUrl("missing/index.html"));
}

}  // namespace
}  // namespace bomparser::test
