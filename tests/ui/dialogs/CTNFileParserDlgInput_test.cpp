#include "tests/ui/dialogs/MainDialogTest.h"
#include "ui/controls/CProgressWnd.h"
#include "ui/controls/LateProgress.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <thread>

namespace bomparser::test {
namespace {

class MainDialogInputTest : public MainDialogTest {};

// Open.

TEST_F(MainDialogInputTest, OpeningAnInputFileAppliesTheCurrentTemplateAtOnceEvenAnEmptyOne) {
  OpenText("a\nb\n");
  EXPECT_EQ(Flags(), "applied");
  EXPECT_EQ(Column(Rows(), 1), (Texts{"Unmatched", "Unmatched"}));
  EXPECT_EQ(TextOf(Ctrl::InputFile), PathOf("input.txt"));
  EXPECT_EQ(Buttons(), "OCFAUE");
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(MainDialogInputTest, OpenOffersTextFilesOfTheInputFolder) {
  MakeFolder("inputs");
  host.profile["BOM Parser/INPUT_FILE_PATH"] = PathOf("inputs");
  dialogs.runs.emplace_back([this](QDialog& shown) {
    auto& files = dynamic_cast<CTNInFileOpenSaveDialog&>(shown);
    EXPECT_EQ(files.acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_EQ(files.fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(files.directory().absolutePath().toStdString(), PathOf("inputs"));
    EXPECT_EQ(files.nameFilters().size(), 3);
    return false;
  });
  Press(Ctrl::OpenInput);
}

TEST_F(MainDialogInputTest, OpenWithAListThatWasAppliedButNotOutputAsksFirstAndNoDiscardsIt) {
  LoadAndOpen();
  WillAnswer(BoxAnswer::No);
  OpenText("b\n", "other.txt");
  EXPECT_EQ(dialogs.boxes, Boxes{kAskOutput});
  EXPECT_EQ(TextOf(Ctrl::InputFile), PathOf("other.txt"));
  EXPECT_EQ(Column(Rows(), 1), (Texts{"line (E1)"}));
}

TEST_F(MainDialogInputTest, OpenWithAnEmptyTemplateAsksForTheListAsWell) {
  OpenText("a\n");
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::OpenInput);
  EXPECT_EQ(dialogs.boxes, Boxes{kAskOutput});
}

TEST_F(MainDialogInputTest, OpenAfterOutputAsksNothing) {
  LoadAndOpen();
  WillChoose("list.xml");
  Press(Ctrl::OutputEntityList);
  OpenText("b\n", "other.txt");
  EXPECT_TRUE(dialogs.boxes.empty());
  EXPECT_EQ(Flags(), "applied") << "the other file's list is not output";
}

TEST_F(MainDialogInputTest, YesToOutputAtOpenWritesTheListFirst) {
  LoadAndOpen();
  WillAnswer(BoxAnswer::Yes);
  WillChoose("list.xml");
  OpenText("b\n", "other.txt");
  EXPECT_EQ(BytesOf("list.xml"), ListOfWords({"a", "b"}));
  EXPECT_EQ(TextOf(Ctrl::InputFile), PathOf("other.txt"));
}

TEST_F(MainDialogInputTest, OpenStopsWhenTheOutputThatWasAskedForIsCancelled) {
  LoadAndOpen();
  WillAnswer(BoxAnswer::Yes);
  WillCancel();
  Dialog();
  const std::string before = State();
  Press(Ctrl::OpenInput);
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogInputTest, CancelInThePromptOfOpenLeavesEverythingAsItWas) {
  LoadAndOpen();
  const std::string before = State();
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::OpenInput);
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogInputTest, CancelInTheFileDialogOfOpenLeavesEverythingAsItWas) {
  LoadAndOpen();
  const std::string before = State();
  WillAnswer(BoxAnswer::No);
  WillCancel();
  Press(Ctrl::OpenInput);
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogInputTest, AFileThatCannotBeOpenedIsToldOfAndLeavesTheButtonsOff) {
  LoadAndOpen();
  WillAnswer(BoxAnswer::No);
  WillChoose("nowhere.txt");
  Press(Ctrl::OpenInput);
  ASSERT_EQ(dialogs.boxes.size(), 2U);
  EXPECT_EQ(dialogs.boxes[1], "error|BOM Parser|cannot read " + PathOf("nowhere.txt") +
                                  ": No such file or directory|Ok");
  EXPECT_EQ(Buttons(), "O.....");
  EXPECT_EQ(Rows().model()->rowCount(), 0);
  EXPECT_EQ(TextOf(Ctrl::InputFile), "");
}

TEST_F(MainDialogInputTest, TheFoldersOfWhatWasOpenedAndWrittenAreRemembered) {
  MakeFolder("inputs");
  MakeFolder("lists");
  Load(TemplateFor("a"));
  OpenText("a\n", "inputs/a.txt");
  WillChoose("lists/a.xml");
  Press(Ctrl::OutputEntityList);
  Press(Ctrl::Exit);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(host.profile["BOM Parser/INPUT_FILE_PATH"], PathOf("lists"));
  EXPECT_EQ(host.profile["BOM Parser/OUTPUT_FILE_PATH_NAME"], PathOf("lists/a.xml"));
  EXPECT_EQ(host.profile["BOM Parser/TEMPLATE_FILE_PATH"], Folder());
}

TEST_F(MainDialogInputTest, AFailedOpenRemembersNoFolder) {
  MakeFolder("inputs");
  WillChoose("inputs/nowhere.txt");
  Press(Ctrl::OpenInput);
  Press(Ctrl::Exit);
  EXPECT_EQ(host.profile["BOM Parser/INPUT_FILE_PATH"], Folder());
}

/// Does something whenever a progress window appears.
class ProgressWatch : public QObject {
 public:
  explicit ProgressWatch(std::function<void(CProgressWnd&)> act) : m_act(std::move(act)) {
    QApplication::instance()->installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    auto* const window = qobject_cast<CProgressWnd*>(watched);
    if (window != nullptr && event->type() == QEvent::Show) m_act(*window);
    return false;
  }

 private:
  std::function<void(CProgressWnd&)> m_act;
};

/// Cancels the progress window that appears, as its button does.
class CancelledProgress {
 public:
  int seen = 0;

 private:
  ProgressWatch m_watch{[this](CProgressWnd& window) {
    ++seen;
    QMetaObject::invokeMethod(
        &window, [&window] { window.Cancel(); }, Qt::QueuedConnection);
  }};
};

TEST_F(MainDialogInputTest, AnOpenThatIsCancelledIsAnErrorBoxAndLeavesTheButtonsOff) {
  Load(TemplateFor("a"));
  const CancelledProgress cancel;
  OpenText("a\n");
  EXPECT_EQ(cancel.seen, 1);
  EXPECT_EQ(dialogs.boxes, Boxes{"error|BOM Parser|Operation cancelled|Ok"});
  EXPECT_EQ(Buttons(), "O.....");
  EXPECT_EQ(Flags(), "stale");
  EXPECT_EQ(TextOf(Ctrl::InputFile), "");
  EXPECT_EQ(Rows().accessibleDescription(), "Open an input file, or drop one here");
}

// Close.

TEST_F(MainDialogInputTest, CloseAbandonsTheFileAndTurnsFiveButtonsOff) {
  LoadAndOpen();
  WillAnswer(BoxAnswer::No);
  Press(Ctrl::CloseInput);
  EXPECT_EQ(dialogs.boxes, Boxes{kAskOutput});
  EXPECT_EQ(Buttons(), "O.....");
  EXPECT_EQ(Flags(), "stale");
  EXPECT_EQ(Rows().model()->rowCount(), 0);
  EXPECT_EQ(TextOf(Ctrl::InputFile), "");
}

TEST_F(MainDialogInputTest, CloseWithAnEmptyTemplateAsksNothing) {
  OpenText("a\n");
  Press(Ctrl::CloseInput);
  EXPECT_TRUE(dialogs.boxes.empty());
  EXPECT_EQ(Buttons(), "O.....");
}

TEST_F(MainDialogInputTest, CloseAsksAgainWhenTheListThatWasOutputIsStale) {
  LoadAndOpen();
  WillChoose("list.xml");
  Press(Ctrl::OutputEntityList);
  AddStaleRecord();
  WillAnswer(BoxAnswer::Cancel);
  const std::string before = State();
  Press(Ctrl::CloseInput);
  EXPECT_EQ(dialogs.boxes, Boxes{kAskOutput});
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogInputTest, CloseStopsWhenTheOutputThatWasAskedForIsCancelled) {
  LoadAndOpen();
  const std::string before = State();
  WillAnswer(BoxAnswer::Yes);
  WillCancel();
  Press(Ctrl::CloseInput);
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogInputTest, CloseAfterOutputAsksNothing) {
  LoadAndOpen();
  WillChoose("list.xml");
  Press(Ctrl::OutputEntityList);
  Press(Ctrl::CloseInput);
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(MainDialogInputTest, YesToOutputAtCloseWritesTheListAndCloses) {
  LoadAndOpen();
  WillAnswer(BoxAnswer::Yes);
  WillChoose("list.xml");
  Press(Ctrl::CloseInput);
  EXPECT_EQ(BytesOf("list.xml"), ListOfWords({"a", "b"}));
  EXPECT_EQ(Buttons(), "O.....");
}

// Apply.

TEST_F(MainDialogInputTest, ApplyReadsTheFileAfreshFromTheDisk) {
  LoadAndOpen();
  WriteFile("input.txt", "b\n");
  Press(Ctrl::ApplyTemplate);
  EXPECT_EQ(Column(Rows(), 2), (Texts{"b"}));
  EXPECT_EQ(Flags(), "applied");
}

TEST_F(MainDialogInputTest, ApplyTakesAFileThatWasPutInTheOldOnesPlace) {
  LoadAndOpen();
  WriteFile("new.txt", "x\n");
  std::filesystem::rename(PathOf("new.txt"), PathOf("input.txt"));
  Press(Ctrl::ApplyTemplate);
  EXPECT_EQ(Column(Rows(), 2), (Texts{"x"}));
}

TEST_F(MainDialogInputTest, ApplyOnAVanishedFileSaysItWasNotOpenedAndKeepsThePath) {
  LoadAndOpen();
  std::filesystem::remove(PathOf("input.txt"));
  Press(Ctrl::ApplyTemplate);
  ASSERT_EQ(dialogs.boxes.size(), 1U);
  EXPECT_EQ(dialogs.boxes[0], "error|BOM Parser|Input file not opened for read|Ok|cannot read " +
                                  PathOf("input.txt") + ": No such file or directory");
  EXPECT_EQ(TextOf(Ctrl::InputFile), PathOf("input.txt"));
  EXPECT_EQ(Buttons(), "OCFAUE") << "who puts the file back can apply again";
  WriteFile("input.txt", "b\n");
  Press(Ctrl::ApplyTemplate);
  EXPECT_EQ(Flags(), "applied");
}

TEST_F(MainDialogInputTest, ApplyKeepsWhatWasOutputAsDone) {
  LoadAndOpen();
  WillChoose("list.xml");
  Press(Ctrl::OutputEntityList);
  Press(Ctrl::ApplyTemplate);
  EXPECT_EQ(Flags(), "applied done");
}

TEST_F(MainDialogInputTest, AnApplicationThatIsCancelledLeavesTheOldRows) {
  LoadAndOpen();
  const auto rows = Column(Rows(), 1);
  const CancelledProgress cancel;
  Press(Ctrl::ApplyTemplate);
  EXPECT_EQ(cancel.seen, 1);
  EXPECT_EQ(dialogs.boxes, Boxes{"error|BOM Parser|Operation cancelled|Ok"});
  EXPECT_EQ(Column(Rows(), 1), rows);
  EXPECT_EQ(Flags(), "applied");
  EXPECT_TRUE(IsOpen());
}

TEST_F(MainDialogInputTest, TheViewTakesNoInputWhileTheTemplateIsApplied) {
  LoadAndOpen();
  Rows().setFocus();
  bool enabled = true;
  const ProgressWatch watch([&](CProgressWnd&) { enabled = Rows().isEnabled(); });
  Press(Ctrl::ApplyTemplate);
  EXPECT_FALSE(enabled);
  EXPECT_TRUE(Rows().isEnabled());
}

// Find.

TEST_F(MainDialogInputTest, FindLoadsTheBestTemplateAndTellsHowManyBlocksMatched) {
  MakeFolder("library");
  Engine().SetTemplateSearchPath(PathOf("library"));
  WriteFile("library/one.xml", TemplateFor("a"));
  WriteFile("library/two.xml", TemplateFor("a|b"));
  OpenText("a\nx\nb\n");
  Press(Ctrl::FindTemplate);
  EXPECT_EQ(dialogs.boxes,
            Boxes{"information|BOM Parser|Template file two.xml (untitled) matched 2 of 3 "
                  "parseable blocks in file (66.67%).|Ok"});
  EXPECT_EQ(TextOf(Ctrl::TemplateFile), PathOf("library/two.xml"));
  EXPECT_EQ(Column(Rows(), 1), (Texts{"line (E1)", "Unmatched", "line (E1)"}));
  EXPECT_TRUE(Records().IsRowSelected(0)) << "the first record is selected";
  EXPECT_EQ(Fields().model()->rowCount(), 2);
}

TEST_F(MainDialogInputTest, ATemplateThatWasFoundAndIsChangedOnDiskIsNotOverwrittenUnasked) {
  WriteFile("one.xml", TemplateFor("a"));
  OpenText("a\n");
  Press(Ctrl::FindTemplate);
  WriteFile("one.xml", TemplateFor("somebody else's"));
  dialogs.boxes.clear();
  WillChoose("one.xml");
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::SaveToFile);
  ASSERT_EQ(dialogs.boxes.size(), 1U);
  EXPECT_EQ(dialogs.boxes[0].rfind("question|BOM Parser|Template file ", 0), 0U);
}

TEST_F(MainDialogInputTest, ASearchThatFindsNothingReadsTheTemplateAgainAndSavingItAsksNothing) {
  MakeFolder("empty");
  LoadAndOpen();
  Engine().SetTemplateSearchPath(PathOf("empty"));
  WriteFile("template.xml", TemplateFor("a|b|somebody else's"));
  Press(Ctrl::FindTemplate);
  EXPECT_EQ(dialogs.boxes,
            Boxes{"error|BOM Parser|No useable template found in current search path|Ok"});
  dialogs.boxes.clear();
  WillChoose("template.xml");
  Press(Ctrl::SaveToFile);
  EXPECT_TRUE(dialogs.boxes.empty());
  EXPECT_EQ(Records().GetSelectedRows(), std::vector<int>{0});
}

TEST_F(MainDialogInputTest, ASearchThatStopsAtOnceLeavesTheSelectionOfTheRecords) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  Engine().SetTemplateSearchPath("");
  WillAnswer(BoxAnswer::No);
  Press(Ctrl::FindTemplate);
  EXPECT_EQ(Records().GetSelectedRows(), std::vector<int>{1});
  EXPECT_TRUE(Engine().IsTemplateModified()) << "No to saving goes on without it";
}

TEST_F(MainDialogInputTest, WhatEndedASearchThatFoundSomethingStandsBelowTheReport) {
  MakeFolder("library");
  Engine().SetTemplateSearchPath(PathOf("library"));
  // Templates are tried in the folder's own order, and the failure is to come second.
  WriteFile("library/one.xml", "");
  WriteFile("library/two.xml", "");
  Texts order;
  for (const auto& entry : std::filesystem::directory_iterator(PathOf("library")))
    order.push_back(entry.path().filename().string());
  CTNParserTemplate failing(nullptr);
  AddRecord(failing, RecordKind::SingleMatch, "takes nothing", {});
  WriteFile("library/" + order[0], TemplateFor("a"));
  WriteFile("library/" + order[1], XmlText(failing));
  OpenText("a\nx\n");
  Press(Ctrl::FindTemplate);
  ASSERT_EQ(dialogs.boxes.size(), 1U);
  const std::string report = "information|BOM Parser|Template file " + order[0] +
                             " (untitled) matched 1 of 2 parseable blocks in file (50.00%).|Ok|";
  EXPECT_EQ(dialogs.boxes[0].substr(0, report.size()), report);
  EXPECT_GT(dialogs.boxes[0].size(), report.size());
}

TEST_F(MainDialogInputTest, TheFourViewsTakeNoInputWhileATemplateIsSearched) {
  WriteFile("one.xml", TemplateFor("a"));
  OpenText("a\n");
  std::string enabled = "not seen";
  const ProgressWatch watch([this, &enabled](CProgressWnd&) {
    enabled.clear();
    for (const QWidget* view :
         {static_cast<QWidget*>(&Rows()), static_cast<QWidget*>(&Records()),
          static_cast<QWidget*>(&Fields()), static_cast<QWidget*>(&Elements())}) {
      enabled += view->isEnabled() ? '1' : '0';
    }
  });
  Press(Ctrl::FindTemplate);
  EXPECT_EQ(enabled, "0000");
  EXPECT_TRUE(Rows().isEnabled());
  EXPECT_TRUE(Elements().isEnabled());
}

TEST_F(MainDialogInputTest, FindWithoutASearchPathSaysSo) {
  OpenText("a\n");
  Engine().SetTemplateSearchPath("");
  Press(Ctrl::FindTemplate);
  EXPECT_EQ(dialogs.boxes,
            Boxes{"error|BOM Parser|No template search path currently specified|Ok"});
}

TEST_F(MainDialogInputTest, FindWithAWrongSearchPathNamesIt) {
  OpenText("a\n");
  Engine().SetTemplateSearchPath(PathOf("nowhere"));
  Press(Ctrl::FindTemplate);
  EXPECT_EQ(dialogs.boxes, Boxes{"error|BOM Parser|Template search path " + PathOf("nowhere") +
                                 " is not valid|Ok"});
}

TEST_F(MainDialogInputTest, FindWithAModifiedTemplateOffersToSaveItAndCancelStops) {
  LoadAndOpen();
  AddStaleRecord();
  const std::string before = State();
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::FindTemplate);
  EXPECT_EQ(dialogs.boxes, Boxes{"question|BOM Parser|Would you like to save currently loaded "
                                 "template?|YesNoCancel"});
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogInputTest, FindStopsWhenTheSavingThatWasAskedForFails) {
  LoadAndOpen();
  AddStaleRecord();
  const std::string before = State();
  WillAnswer(BoxAnswer::Yes);
  WillCancel();
  Press(Ctrl::FindTemplate);
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogInputTest, FindSavesTheModifiedTemplateWhenTheUserWantsThat) {
  LoadAndOpen();
  AddStaleRecord();
  WillAnswer(BoxAnswer::Yes);
  WillChoose("saved.xml");
  Press(Ctrl::FindTemplate);
  EXPECT_NE(BytesOf("saved.xml").find("New Record"), std::string::npos);
  EXPECT_FALSE(Engine().IsTemplateModified());
}

TEST_F(MainDialogInputTest, ASearchThatIsCancelledIsAnErrorBox) {
  WriteFile("one.xml", TemplateFor("a"));
  OpenText("a\n");
  const CancelledProgress cancel;
  Press(Ctrl::FindTemplate);
  EXPECT_GE(cancel.seen, 1);
  EXPECT_EQ(dialogs.boxes, Boxes{"error|BOM Parser|Operation cancelled|Ok"});
  EXPECT_TRUE(Records().isEnabled());
  EXPECT_TRUE(Fields().isEnabled());
}

// While something is under way.

TEST_F(MainDialogInputTest, NothingElseBeginsWhileTheTemplateIsApplied) {
  LoadAndOpen();
  WriteFile("other.txt", "b\n");
  Choose(Records(), Cmd::AppendNew);
  int seen = 0;
  const ProgressWatch watch([this, &seen](CProgressWnd&) {
    ++seen;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(PathOf("other.txt")))});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(&Dialog(), &enter);
    EXPECT_FALSE(enter.isAccepted());
    Dialog().close();
    Rows().SelectRowAlone(0);  // Is told of later, in the middle of the application.
    emit FindControl<QPushButton>(Dialog(), Ctrl::CreateNew)->clicked();
  });
  Press(Ctrl::ApplyTemplate);
  EXPECT_EQ(seen, 1);
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(TextOf(Ctrl::InputFile), PathOf("input.txt"));
  EXPECT_EQ(Records().model()->rowCount(), 2);
  EXPECT_EQ(Flags(), "applied");
}

TEST_F(MainDialogInputTest, TheFocusComesBackAfterAnApplication) {
  LoadAndOpen();
  Rows().setFocus();
  FindControl<QPushButton>(Dialog(), Ctrl::ApplyTemplate)->click();
  Settle();
  EXPECT_TRUE(Rows().hasFocus());
}

TEST_F(MainDialogInputTest, ALoadWhoseApplicationIsCancelledHasLoadedAndLeavesTheRowsStale) {
  LoadAndOpen();
  const CancelledProgress cancel;
  Load(TemplateFor("x"), "other.xml");
  EXPECT_EQ(dialogs.boxes, Boxes{"error|BOM Parser|Operation cancelled|Ok"});
  EXPECT_EQ(TextOf(Ctrl::TemplateFile), PathOf("other.xml"));
  EXPECT_EQ(Flags(), "applied stale");
  EXPECT_EQ(Buttons(), "OCFAUE");
  EXPECT_EQ(Column(Rows(), 1), (Texts{"??", "??", "??"}));
}

TEST_F(MainDialogInputTest, AnOutputWhoseApplicationIsCancelledWritesNothing) {
  LoadAndOpen();
  AddStaleRecord();
  WillAnswer(BoxAnswer::Yes);
  const CancelledProgress cancel;
  const auto names = Names();
  Press(Ctrl::OutputEntityList);
  EXPECT_EQ(dialogs.boxes, (Boxes{kAskReapply, "error|BOM Parser|Operation cancelled|Ok"}));
  EXPECT_EQ(Names(), names);
  EXPECT_EQ(Flags(), "applied stale");
}

// Output.

TEST_F(MainDialogInputTest, OutputWritesTheListAndRemembersIt) {
  LoadAndOpen();
  WillChoose("list.xml");
  Press(Ctrl::OutputEntityList);
  EXPECT_EQ(BytesOf("list.xml"), ListOfWords({"a", "b"}));
  EXPECT_EQ(Flags(), "applied done");
  EXPECT_EQ(InFile().GetOutputPath(), PathOf("list.xml"));
}

TEST_F(MainDialogInputTest, OutputProposesTheInputFilesTitleUpToItsFirstPeriod) {
  OpenText("a\n", "board.rev.2.txt");
  dialogs.runs.emplace_back([this](QDialog& shown) {
    auto& files = dynamic_cast<CTNInFileOpenSaveDialog&>(shown);
    EXPECT_EQ(files.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(files.GetPathName(), PathOf("board.xml"));
    EXPECT_FALSE(files.testOption(QFileDialog::DontConfirmOverwrite));
    return false;
  });
  Press(Ctrl::OutputEntityList);
  EXPECT_EQ(Flags(), "applied");
}

TEST_F(MainDialogInputTest, OutputWithAStaleTemplateOffersToApplyAgainAndNoNeverWritesAFile) {
  LoadAndOpen();
  AddStaleRecord();
  const std::string before = State();
  WillAnswer(BoxAnswer::No);
  Press(Ctrl::OutputEntityList);
  EXPECT_EQ(dialogs.boxes, (Boxes{kAskReapply, kApplyFirst}));
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogInputTest, YesToApplyingAgainOutputsTheNewList) {
  LoadAndOpen();
  AddStaleRecord();
  WillAnswer(BoxAnswer::Yes);
  WillChoose("list.xml");
  Press(Ctrl::OutputEntityList);
  EXPECT_EQ(dialogs.boxes, Boxes{kAskReapply});
  EXPECT_EQ(BytesOf("list.xml"), ListOfWords({"a", "b"}));
  EXPECT_EQ(Flags(), "applied done");
}

TEST_F(MainDialogInputTest, CancelToApplyingAgainStops) {
  LoadAndOpen();
  AddStaleRecord();
  const std::string before = State();
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::OutputEntityList);
  EXPECT_EQ(dialogs.boxes, Boxes{kAskReapply});
  EXPECT_EQ(State(), before);
}

class MainDialogUnappliedTest : public MainDialogTest {
 protected:
  /// The file is away, so that the latest application failed.
  void LoseInput() {
    LoadAndOpen();
    std::filesystem::rename(PathOf("input.txt"), PathOf("away.txt"));
    Press(Ctrl::ApplyTemplate);
    dialogs.boxes.clear();
    ASSERT_FALSE(InFile().IsApplied());
  }
};

TEST_F(MainDialogUnappliedTest, OutputOffersToApplyAndNoSaysThatItMustBe) {
  LoseInput();
  WillAnswer(BoxAnswer::No);
  Press(Ctrl::OutputEntityList);
  EXPECT_EQ(dialogs.boxes, (Boxes{kAskApply, kApplyFirst}));
}

TEST_F(MainDialogUnappliedTest, CancelLeavesItThere) {
  LoseInput();
  const std::string before = State();
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::OutputEntityList);
  EXPECT_EQ(dialogs.boxes, Boxes{kAskApply});
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogUnappliedTest, YesAppliesAndOutputs) {
  LoseInput();
  std::filesystem::rename(PathOf("away.txt"), PathOf("input.txt"));
  WillAnswer(BoxAnswer::Yes);
  WillChoose("list.xml");
  Press(Ctrl::OutputEntityList);
  EXPECT_EQ(dialogs.boxes, Boxes{kAskApply});
  EXPECT_EQ(BytesOf("list.xml"), ListOfWords({"a", "b"}));
}

TEST_F(MainDialogUnappliedTest, YesStopsWhenItStillCannotBeApplied) {
  LoseInput();
  WillAnswer(BoxAnswer::Yes);
  Press(Ctrl::OutputEntityList);
  ASSERT_EQ(dialogs.boxes.size(), 2U);
  EXPECT_EQ(dialogs.boxes[1].substr(0, 51), "error|BOM Parser|Input file not opened for read|Ok|");
}

TEST_F(MainDialogUnappliedTest, EditDoesNothing) {
  LoseInput();
  Press(Ctrl::EditInput);
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(MainDialogInputTest, AFailedOutputSaysWhyAndKeepsTheFlagsAsTheyWere) {
  LoadAndOpen();
  MakeFolder("folder.xml");
  const std::string flags = Flags();
  WillChoose("folder.xml");
  Press(Ctrl::OutputEntityList);
  ASSERT_EQ(dialogs.boxes.size(), 1U);
  EXPECT_EQ(dialogs.boxes[0].rfind("error|BOM Parser|Error outputting file|Ok|", 0), 0U)
      << dialogs.boxes[0];
  EXPECT_NE(dialogs.boxes[0].find(PathOf("folder.xml")), std::string::npos);
  EXPECT_EQ(Flags(), flags);
  EXPECT_EQ(InFile().GetOutputPath(), "");
}

TEST_F(MainDialogInputTest, AnOutputThatTakesLongCanBeCancelledAndLeavesTheFlagsAsTheyWere) {
  // More than a pipe takes at once; whoever reads it takes its time.
  Load(TemplateFor("a"));
  std::string text;
  for (int i = 0; i < 40'000; ++i)
    text += "a\n";
  OpenText(text);
  const std::string flags = Flags();
  ASSERT_EQ(mkfifo(PathOf("slow.xml").c_str(), 0600), 0);
  std::thread reader([path = PathOf("slow.xml")] {
    std::ifstream pipe(path, std::ios::binary);
    std::this_thread::sleep_for(2 * LateProgress::kMoment);
    std::string piece(1 << 16, '\0');
    while (pipe.read(piece.data(), static_cast<std::streamsize>(piece.size()))) {
    }
  });
  const CancelledProgress cancel;
  WillChoose("slow.xml");
  Press(Ctrl::OutputEntityList);
  reader.join();
  EXPECT_EQ(cancel.seen, 1);
  EXPECT_EQ(dialogs.boxes, Boxes{"error|BOM Parser|Error outputting file|Ok|Operation cancelled"});
  EXPECT_EQ(Flags(), flags);
}

TEST_F(MainDialogInputTest, CancelInTheFileDialogOfOutputLeavesEverythingAsItWas) {
  LoadAndOpen();
  const std::string before = State();
  WillCancel();
  Press(Ctrl::OutputEntityList);
  EXPECT_EQ(State(), before);
}

// The results page.

TEST_F(MainDialogInputTest, NoInputFileCommandRunsWhileTheResultsPageIsShown) {
  LoadAndOpen();
  ShowResults(true);
  EXPECT_EQ(Buttons(), "......");
  ShowResults(false);
  EXPECT_EQ(Buttons(), "OCFAUE");
}

TEST_F(MainDialogInputTest, TheResultsPageWithoutAFileGivesBackTheButtonsThatWereOn) {
  Dialog();
  ShowResults(true);
  EXPECT_EQ(Buttons(), "......");
  ShowResults(false);
  EXPECT_EQ(Buttons(), "O.....");
}

TEST_F(MainDialogInputTest, AWorkflowChangesTheButtonsThatComeBackAfterTheResultsPage) {
  OpenText("a\n");
  WillAnswer(BoxAnswer::No);
  WillChoose("nowhere.txt");
  Press(Ctrl::OpenInput);
  ASSERT_EQ(Buttons(), "O.....");
  OpenText("a\n");
  ShowResults(true);
  Load(TemplateFor("a"), "other.xml");
  EXPECT_EQ(Buttons(), "......") << "loading applies, and leaves them off here";
  ShowResults(false);
  EXPECT_EQ(Buttons(), "OCFAUE");
}

TEST_F(MainDialogInputTest, TheResultsPageFollowsAnAutomaticApplication) {
  LoadAndOpen();
  ShowResults(true);
  auto* const unmatched = FindControl<QLineEdit>(Dialog(), Ctrl::UnmatchedLines);
  EXPECT_EQ(unmatched->text(), "1");
  constexpr int kMatchValue = 4;
  Type(Fields(), 0, kMatchValue, "a");
  EXPECT_EQ(unmatched->text(), "2");
}

TEST_F(MainDialogInputTest, AfterAChangeThatIsNotAppliedTheResultsPageShowsSevenZerosAndNoList) {
  LoadAndOpen();
  std::string copy;
  std::string error;
  ASSERT_TRUE(Engine().GetSideCopyPath(copy, error)) << error;
  ASSERT_TRUE(std::filesystem::exists(copy));
  AddStaleRecord();
  ShowResults(true);
  for (const Ctrl counter :
       {Ctrl::TotalLines, Ctrl::ParseableLines, Ctrl::MatchedLines, Ctrl::UnmatchedLines,
        Ctrl::TotalBlocks, Ctrl::EntityBlocks, Ctrl::AuxiliaryBlocks}) {
    EXPECT_EQ(TextOf(counter), "0");
  }
  EXPECT_FALSE(std::filesystem::exists(copy));
}

TEST_F(MainDialogInputTest, WithNoFileAppliedTheResultsPageLeavesCountersAndListAsTheyWere) {
  LoadAndOpen();
  ShowResults(true);
  ShowResults(false);
  WillAnswer(BoxAnswer::No);
  Press(Ctrl::CloseInput);
  ShowResults(true);
  EXPECT_EQ(TextOf(Ctrl::TotalLines), "3");
}

TEST_F(MainDialogInputTest, TheCopyOfTheListIsWrittenWhenTheProgramIsIdle) {
  LoadAndOpen();
  std::string copy;
  std::string error;
  // Asking for the path writes it too, so another file is used to find out where it will be.
  ASSERT_TRUE(Engine().GetSideCopyPath(copy, error)) << error;
  std::filesystem::remove(copy);
  Press(Ctrl::ApplyTemplate);
  EXPECT_TRUE(QTest::qWaitFor([&copy] { return std::filesystem::exists(copy); }, 20'000));
}

}  // namespace
}  // namespace bomparser::test
