#include "tests/ui/dialogs/DemoHost.h"

#include "tests/support/EngineTest.h"
#include "tests/ui/support/UiTest.h"
#include "ui/controls/CTNInPlaceEdit.h"

#include <QComboBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <filesystem>

namespace bomparser::test {
namespace {

/// The views together, on the files of an example or of a real sample.
class DemoHostTest : public EngineTestIn<TestFolder> {
 protected:
  void ShowFiles(const std::string& templatePath, const std::string& inputPath) {
    ASSERT_TRUE(engine.LoadTemplate(templatePath)) << LogText();
    std::string error;
    ASSERT_TRUE(engine.OpenInputFile(inputPath, error)) << error;
    ASSERT_EQ(Apply(), "ok");
    host.resize(1300, 800);
    host.show();
    host.ShowAll();
    host.entityRecords->SelectRowAlone(0);
    Settle();
  }
  void ShowExample() {
    const std::string folder = std::string(BOMPARSER_SOURCE_DIR) + "/examples/placement/";
    ShowFiles(folder + "template.xml", folder + "input.txt");
  }
  QAbstractItemModel& Rows() { return *host.inputPage->GetList().model(); }
  static QString Cell(const QTableView& list, int row, int column) {
    return list.model()->index(row, column).data().toString();
  }
  static void Click(QTableView& list, int row, int column) {
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier,
                      list.visualRect(list.model()->index(row, column)).center());
    Settle();
  }
  static bool Drop(CTNParserListCtrl& source, QWidget& target, const QPoint& place) {
    DraggedRows rows(source);
    QDragEnterEvent enter(place, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(&target, &enter);
    QDropEvent drop(place, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
    drop.ignore();
    QApplication::sendEvent(&target, &drop);
    Settle();
    return drop.isAccepted();
  }

  FakeUserDialogs dialogs;
  DemoHost host{engine};
};

TEST_F(DemoHostTest, EveryViewIsFilled) {
  ShowExample();
  EXPECT_GT(host.entityRecords->model()->rowCount(), 0);
  EXPECT_GT(host.fields->model()->rowCount(), 0);
  EXPECT_GT(host.elements->model()->rowCount(), 0);
  EXPECT_EQ(static_cast<std::uint64_t>(Rows().rowCount()), engine.GetStats().totalLines);
}

TEST_F(DemoHostTest, ALineThatIsSelectedSelectsItsRecord) {
  ShowExample();
  int line = 0;
  while (line < Rows().rowCount() && Cell(host.inputPage->GetList(), line, 1) == "Unmatched")
    ++line;
  host.entityRecords->clearSelection();
  Click(host.inputPage->GetList(), line, 2);
  CTNTemplRecPropPage& page = host.recordSheet->GetActiveIndex() == 0
                                  ? host.recordSheet->GetEntityPage()
                                  : host.recordSheet->GetAuxiliaryPage();
  const auto selected = page.GetList().GetSelectedRecords();
  ASSERT_EQ(selected.size(), 1U);
  const std::string shown = Cell(host.inputPage->GetList(), line, 1).toStdString();
  EXPECT_EQ(shown, selected[0]->GetDescription() + " (" + selected[0]->GetRecordId() + ")");
}

TEST_F(DemoHostTest, AnEditIsAppliedAgainAndEveryViewFollows) {
  ShowExample();
  const std::uint32_t before = engine.GetStats().entityBlocks;
  ASSERT_GT(before, 0U);
  // The first field no longer allows what stands in the file.
  Document().GetEntityRecords()[0]->GetInputFields()[0]->SetType(FieldKind::String);
  host.fields->ShowFields(host.fields->GetRecord());
  constexpr int kMatchValue = 4;
  Click(*host.fields, 0, kMatchValue);
  auto* edit = dynamic_cast<CTNInPlaceEdit*>(host.fields->GetEditor());
  ASSERT_NE(edit, nullptr);
  edit->setText("nowhere in the file");
  QTest::keyClick(edit, Qt::Key_Return);
  Settle();
  EXPECT_EQ(InFile().IsStale(), false);
  EXPECT_EQ(engine.GetStats().entityBlocks, 0U);
  constexpr int kMatchCount = 3;
  EXPECT_EQ(Cell(*host.entityRecords, 0, kMatchCount), "0");
  EXPECT_TRUE(host.entityRecords->IsRowSelected(0)) << "filling again keeps the selection";
}

TEST_F(DemoHostTest, WithoutAutomaticApplicationAnEditLeavesEveryViewStale) {
  ShowExample();
  engine.SetAutoApplicationFlags(0);
  Click(*host.entityRecords, 0, 2);
  auto* edit = dynamic_cast<CTNInPlaceEdit*>(host.entityRecords->GetEditor());
  ASSERT_NE(edit, nullptr);
  edit->setText("another name");
  QTest::keyClick(edit, Qt::Key_Return);
  Settle();
  EXPECT_TRUE(InFile().IsStale());
  EXPECT_EQ(Cell(*host.entityRecords, 0, 3), "");
  EXPECT_EQ(Cell(host.inputPage->GetList(), 0, 1), "??");
}

TEST_F(DemoHostTest, LinesDroppedOnTheRecordListBecomeARecord) {
  ShowExample();
  const std::size_t before = Document().GetEntityRecords().size();
  host.inputPage->GetList().SelectRowAlone(2);
  EXPECT_TRUE(Drop(host.inputPage->GetList(), *host.entityRecords->viewport(), QPoint(5, 5)));
  ASSERT_EQ(Document().GetEntityRecords().size(), before + 1);
  EXPECT_EQ(Document().GetEntityRecords().back()->GetDescription(), "Auto-Created From Text Block");
  EXPECT_FALSE(Document().GetEntityRecords().back()->GetInputFields().empty());
  EXPECT_FALSE(Drop(host.inputPage->GetList(), *host.fields->viewport(), QPoint(5, 5)));
}

TEST_F(DemoHostTest, ARecordThatIsDeletedUnderAnOpenEditorLeavesNoTrace) {
  ShowExample();
  Click(*host.fields, 0, 1);
  ASSERT_TRUE(host.fields->IsEditing());
  ASSERT_TRUE(Document().DeleteRecord(host.fields->GetRecord()));
  host.ShowAll();
  Settle();
  EXPECT_FALSE(host.fields->IsEditing());
  EXPECT_EQ(host.fields->model()->rowCount(), 0);
  EXPECT_EQ(host.elements->model()->rowCount(), 0);
}

TEST_F(DemoHostTest, ATemplateThatIsReplacedUnderAnOpenEditorIsShown) {
  ShowExample();
  Click(*host.elements, 0, 2);
  ASSERT_TRUE(host.elements->IsEditing());
  engine.NewTemplate();
  host.ShowAll();
  Settle();
  EXPECT_FALSE(host.elements->IsEditing());
  EXPECT_EQ(host.entityRecords->model()->rowCount(), 0);
  EXPECT_EQ(host.fields->model()->rowCount(), 0);
}

TEST_F(DemoHostTest, TheResultsPageShowsTheListOfTheLatestApplication) {
  ShowExample();
  host.inputSheet->SetActivePage(1);
  Settle();
  auto* counter = FindControl<QLineEdit>(host, Ctrl::EntityBlocks);
  ASSERT_NE(counter, nullptr);
  EXPECT_EQ(counter->text().toUInt(), engine.GetStats().entityBlocks);
  EXPECT_TRUE(host.resultsPage->findChild<QPlainTextEdit*>()->toPlainText().contains("<ENTITY>"));
}

TEST_F(DemoHostTest, PictureOfAllViews) {
  ShowExample();
  EXPECT_TRUE(Screenshot(host, "all-views-example"));
  host.inputSheet->SetActivePage(1);
  EXPECT_TRUE(Screenshot(host, "all-views-results"));
}

class DemoHostSampleTest : public DemoHostTest {};

TEST_F(DemoHostSampleTest, PictureOfAllViewsOnARealFile) {
  const QByteArray samples = qgetenv("BOMPARSER_SAMPLES");
  const std::string input = samples.toStdString() + "/placement/eagle_partlist_position_inch.txt";
  if (samples.isEmpty() || !std::filesystem::exists(input)) {
    GTEST_SKIP() << "BOMPARSER_SAMPLES names no folder of sample files";
  }
  const std::string folder = std::string(BOMPARSER_SOURCE_DIR) + "/tests/samples/";
  ShowFiles(folder + "eagle_partlist_position_inch.xml", input);
  EXPECT_GT(engine.GetStats().entityBlocks, 0U);
  EXPECT_EQ(static_cast<std::uint64_t>(Rows().rowCount()), engine.GetStats().totalLines);
  EXPECT_TRUE(Screenshot(host, "all-views-sample"));
}

}  // namespace
}  // namespace bomparser::test
