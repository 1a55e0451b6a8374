#include "ui/views/CTNTransSummaryPropPage.h"

#include "tests/support/EngineTest.h"
#include "tests/support/FailingMemory.h"
#include "tests/ui/support/UiTest.h"
#include "ui/controls/CTNPropSheet.h"
#include "ui/controls/CTNWebBrowser2.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTableView>
#include <filesystem>
#include <memory>
#include <new>

namespace bomparser::test {
namespace {

constexpr Ctrl kCounters[] = {Ctrl::TotalLines,     Ctrl::ParseableLines, Ctrl::MatchedLines,
                              Ctrl::UnmatchedLines, Ctrl::TotalBlocks,    Ctrl::EntityBlocks,
                              Ctrl::AuxiliaryBlocks};
constexpr auto kZeros = "0 0 0 0 0 0 0";
// Of ApplyTo: six lines, the first one ignored, two entities, one auxiliary block, two unmatched.
constexpr auto kCounts = "6 5 3 2 4 2 2";

class CTNTransSummaryPropPageTest : public EngineTestIn<TestFolder> {
 protected:
  /// The page as the second one of a sheet, which is shown with its first page.
  void MakePage(CTNFileParserEngine* ofEngine) {
    MakePage(std::make_unique<CTNTransSummaryPropPage>(ofEngine));
  }
  void MakePage(std::unique_ptr<CTNTransSummaryPropPage> made) {
    page = made.get();
    sheet = std::make_unique<CTNPropSheet>(SheetOptions{.embedded = true});
    sheet->AddPage(new CTNPropPage, QStringLiteral("Other"));
    sheet->AddPage(made.release(), QStringLiteral("Results"));
    sheet->resize(700, 500);
    sheet->show();
  }
  void Visit() {
    sheet->SetActivePage(1);
    Settle();
  }
  void Leave() { sheet->SetActivePage(0); }

  void ApplyTo(const std::string& text) {
    CTNParserTemplate document(nullptr);
    document.SetBeginRow(2);
    AddRecord(document, RecordKind::Part, "entity", {String("one|two"), Newline()},
              {Designator("F1"), PartNumber()});
    AddRecord(document, RecordKind::MultipleMatch, "aside", {String("aside"), Newline()});
    Load(XmlText(document));
    Open(text);
    ASSERT_EQ(Apply(), "ok");
  }
  void ApplyToSixLines() { ApplyTo("title\none\naside\nnothing\ntwo\nnothing more\n"); }
  /// An edit of the template that applies nothing.
  void MakeStale() {
    engine.SetAutoApplicationFlags(0);
    engine.OnTemplateModified();
    ASSERT_TRUE(InFile().IsStale());
  }

  std::string Counters() const {
    std::string texts;
    for (const Ctrl number : kCounters) {
      const auto* edit = FindControl<QLineEdit>(*page, number);
      texts += (texts.empty() ? "" : " ") + edit->text().toStdString();
    }
    return texts;
  }
  CTNWebBrowser2* Viewer() const { return FindControl<CTNWebBrowser2>(*page, Ctrl::ResultViewer); }
  std::string ViewerText() const {
    return FindControl<QPlainTextEdit>(*page, Ctrl::ViewerText)->toPlainText().toStdString();
  }
  bool ShowsEntity(const std::string& word) const {
    return ViewerText().find("<REF_DESIGNATOR>" + word + "</REF_DESIGNATOR>") != std::string::npos;
  }

  FakeUserDialogs dialogs;
  std::unique_ptr<CTNPropSheet> sheet;
  CTNTransSummaryPropPage* page = nullptr;
};

TEST_F(CTNTransSummaryPropPageTest, ShowsTheCountsAndTheListOfTheLatestApplication) {
  ApplyToSixLines();
  MakePage(&engine);
  Visit();
  EXPECT_EQ(Counters(), kCounts);
  EXPECT_TRUE(ShowsEntity("one"));
  EXPECT_TRUE(ShowsEntity("two"));
  EXPECT_EQ(GetDialogId(*page), DialogId::ResultsPage);
}

TEST_F(CTNTransSummaryPropPageTest, CountsAreThoseOfTheStatistics) {
  ApplyToSixLines();
  MakePage(&engine);
  Visit();
  const ApplicationStats stats = engine.GetStats();
  std::string expected;
  for (const std::uint64_t count :
       {stats.totalLines, stats.ParseableLines(), stats.MatchedLines(), stats.unmatchedLines,
        std::uint64_t{stats.MatchedBlocks()}, std::uint64_t{stats.entityBlocks},
        std::uint64_t{stats.AuxiliaryBlocks()}}) {
    expected += (expected.empty() ? "" : " ") + std::to_string(count);
  }
  EXPECT_EQ(Counters(), expected);
}

TEST_F(CTNTransSummaryPropPageTest, LabelsStandAsWorded) {
  MakePage(&engine);
  std::string labels;
  for (const Ctrl number : kCounters) {
    const auto* edit = FindControl<QLineEdit>(*page, number);
    EXPECT_TRUE(edit->isReadOnly());
    for (const auto* label : page->findChildren<QLabel*>()) {
      if (label->buddy() != edit) continue;
      EXPECT_EQ(label->text().count(u'&'), 1);
      labels += label->text().remove(u'&').toStdString() + "\n";
    }
  }
  EXPECT_EQ(labels,
            "Total Lines In File:\n"
            "Parseable (Not Ignored) Lines:\n"
            "Successfully Matched Lines\n"
            "Net UnMatched Lines:\n"
            "Total Parsed Blocks:\n"
            "Entity Blocks:\n"
            "Auxiliary Blocks:\n");
  EXPECT_EQ(page->findChild<QGroupBox*>()->title(), QStringLiteral("Output"));
}

TEST_F(CTNTransSummaryPropPageTest, TheViewerIsInTheOutputGroup) {
  MakePage(&engine);
  EXPECT_EQ(Viewer(), nullptr);
  Visit();
  ASSERT_NE(Viewer(), nullptr);
  EXPECT_TRUE(page->findChild<QGroupBox*>()->isAncestorOf(Viewer()));
  EXPECT_TRUE(Viewer()->isVisible());
}

TEST_F(CTNTransSummaryPropPageTest, WithAChangedTemplateThereAreZerosAndNoListAndNoCopyOfIt) {
  ApplyToSixLines();
  MakePage(&engine);
  Visit();
  const std::string copy = SideCopyPath();
  ASSERT_TRUE(std::filesystem::exists(copy));
  MakeStale();
  page->Refresh();
  EXPECT_EQ(Counters(), kZeros);
  EXPECT_EQ(ViewerText(), "");
  EXPECT_FALSE(std::filesystem::exists(copy));
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(CTNTransSummaryPropPageTest, ACopyThatIsGoneAlreadyIsNoError) {
  ApplyToSixLines();
  MakePage(&engine);
  MakeStale();
  Visit();
  page->Refresh();
  EXPECT_TRUE(dialogs.boxes.empty());
  EXPECT_EQ(Counters(), kZeros);
}

TEST_F(CTNTransSummaryPropPageTest, ACopyThatCannotBeDeletedIsReportedAndTheRestIsDone) {
  ApplyToSixLines();
  MakePage(&engine);
  Visit();
  const std::string copy = SideCopyPath();
  std::filesystem::remove(copy);
  std::filesystem::create_directories(copy + "/inside");
  MakeStale();
  page->Refresh();
  EXPECT_EQ(dialogs.boxes, std::vector<std::string>{"warning|BOM Parser|cannot delete " + copy +
                                                    ": Directory not empty|Ok"});
  EXPECT_EQ(Counters(), kZeros);
  EXPECT_EQ(ViewerText(), "");
}

TEST_F(CTNTransSummaryPropPageTest, AppliedAgainTheResultsAreBack) {
  ApplyToSixLines();
  MakePage(&engine);
  Visit();
  MakeStale();
  page->Refresh();
  ASSERT_EQ(Apply(), "ok");
  page->Refresh();
  EXPECT_EQ(Counters(), kCounts);
  EXPECT_TRUE(ShowsEntity("one"));
}

TEST_F(CTNTransSummaryPropPageTest, WithNothingAppliedCountsStayAndTheViewerIsEmptied) {
  ApplyToSixLines();
  MakePage(&engine);
  Visit();
  Leave();
  engine.ForgetResults();
  ASSERT_FALSE(InFile().IsApplied());
  Visit();
  EXPECT_EQ(Counters(), kCounts);
  EXPECT_EQ(ViewerText(), "");
}

TEST_F(CTNTransSummaryPropPageTest, OpenedWithNothingAppliedItShowsZerosAndAnEmptyViewer) {
  MakePage(&engine);
  Visit();
  EXPECT_EQ(Counters(), kZeros);
  EXPECT_EQ(ViewerText(), "");
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(CTNTransSummaryPropPageTest, WithoutAnEngineItShowsNothing) {
  MakePage(nullptr);
  Visit();
  page->Refresh();
  EXPECT_EQ(Counters(), kZeros);
  EXPECT_EQ(ViewerText(), "");
}

TEST_F(CTNTransSummaryPropPageTest, AnEngineThatCouldNotBeMadeShowsNothing) {
  std::unique_ptr<CTNFileParserEngine> broken;
  for (std::int64_t granted = 1; !broken || broken->IsValid(); ++granted) {
    const FailingMemory memory(granted);
    try {
      broken = std::make_unique<CTNFileParserEngine>();
    } catch (const std::bad_alloc&) {
      continue;
    }
    ASSERT_TRUE(memory.HasFailed());
  }
  MakePage(broken.get());
  Visit();
  EXPECT_EQ(Counters(), kZeros);
  EXPECT_EQ(ViewerText(), "");
}

TEST_F(CTNTransSummaryPropPageTest, WithoutAViewerItSaysSoOnceAndCarriesOn) {
  ApplyToSixLines();
  const auto makeNone = [](QWidget*) -> CTNWebBrowser2* { return nullptr; };
  MakePage(std::make_unique<CTNTransSummaryPropPage>(&engine, makeNone));
  EXPECT_TRUE(dialogs.boxes.empty());
  Visit();
  Leave();
  Visit();
  EXPECT_EQ(dialogs.boxes,
            std::vector<std::string>{
                "plain|BOM Parser|Internal error: Unable to create browser control!|Ok"});
  EXPECT_EQ(Counters(), kCounts);
  MakeStale();
  page->Refresh();
  EXPECT_EQ(Counters(), kZeros);
  ASSERT_EQ(Apply(), "ok");
  engine.ForgetResults();
  page->Refresh();
  EXPECT_EQ(Counters(), kZeros);
}

TEST_F(CTNTransSummaryPropPageTest, BecomingActiveShowsWhatCameMeanwhile) {
  MakePage(&engine);
  Visit();
  Leave();
  ApplyToSixLines();
  EXPECT_EQ(Counters(), kZeros);
  Visit();
  EXPECT_EQ(Counters(), kCounts);
  EXPECT_TRUE(ShowsEntity("two"));
}

TEST_F(CTNTransSummaryPropPageTest, TellsThatItIsActiveAfterItsFieldsAreRenewed) {
  ApplyToSixLines();
  MakePage(&engine);
  std::vector<std::string> told;
  QObject::connect(page, &CTNPropPage::Activated, [&] { told.push_back("on " + Counters()); });
  QObject::connect(page, &CTNPropPage::Deactivated, [&] { told.push_back("off"); });
  Visit();
  EXPECT_TRUE(page->IsActive());
  Leave();
  EXPECT_FALSE(page->IsActive());
  EXPECT_EQ(told, (std::vector<std::string>{std::string("on ") + kCounts, "off"}));
}

TEST_F(CTNTransSummaryPropPageTest, ACopyThatCannotBeWrittenShowsWhyThereIsNoList) {
  ApplyToSixLines();
  engine.SetSideCopy(SideCopy::No);
  ASSERT_EQ(Apply(), "ok");
  const std::string copy = SideCopyPath();
  std::filesystem::remove(copy);
  MakePage(&engine);
  Visit();
  EXPECT_EQ(Counters(), kCounts);
  EXPECT_EQ(FindControl<QPlainTextEdit>(*page, Ctrl::ViewerText)->placeholderText().toStdString(),
            "cannot read " + copy + ": No such file or directory");
}

TEST_F(CTNTransSummaryPropPageTest, BytesThatAreNoUtf8AreShown) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::Part, "any", {NotWhtSpace(), Newline()},
            {Designator("F1"), PartNumber()});
  Load(XmlText(document));
  Open("\xB5\x46<&>\n");
  ASSERT_EQ(Apply(), "ok");
  MakePage(&engine);
  Visit();
  EXPECT_TRUE(ShowsEntity("\u00b5F<&>")) << ViewerText();
}

TEST_F(CTNTransSummaryPropPageTest, PictureOfASmallList) {
  ApplyToSixLines();
  MakePage(&engine);
  Visit();
  EXPECT_TRUE(Screenshot(*sheet, "results-small"));
}

TEST_F(CTNTransSummaryPropPageTest, PictureOfALargeList) {
  std::string text;
  for (int i = 0; i < 40'000; ++i)
    text += "one\naside\n";
  ApplyTo(text);
  MakePage(&engine);
  Visit();
  EXPECT_TRUE(FindControl<QTableView>(*page, Ctrl::ViewerRows)->isVisible());
  EXPECT_TRUE(Screenshot(*sheet, "results-large"));
}

TEST_F(CTNTransSummaryPropPageTest, PictureOfStaleResults) {
  ApplyToSixLines();
  MakePage(&engine);
  MakeStale();
  Visit();
  EXPECT_TRUE(Screenshot(*sheet, "results-stale"));
}

TEST_F(CTNTransSummaryPropPageTest, PictureOfNothingApplied) {
  ApplyToSixLines();
  MakePage(&engine);
  Visit();
  engine.ForgetResults();
  page->Refresh();
  EXPECT_TRUE(Screenshot(*sheet, "results-not-applied"));
}

}  // namespace
}  // namespace bomparser::test
