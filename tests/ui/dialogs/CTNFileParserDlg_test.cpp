#include "ui/dialogs/CTNFileParserDlg.h"

#include "tests/support/FailingMemory.h"
#include "tests/ui/dialogs/MainDialogTest.h"
#include "ui/dialogs/CTNDlgParserAppSettings.h"

#include <QCheckBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QSplitter>
#include <QToolButton>
#include <QUrl>
#include <filesystem>
#include <set>

namespace bomparser::test {
namespace {

class MainDialogTestOfItself : public MainDialogTest {
 protected:
  QToolButton& RecentButton(Ctrl number) { return *FindControl<QToolButton>(Dialog(), number); }
  /// The menu of the recently used files as it would open now.
  Texts RecentMenu(Ctrl number) {
    QMenu& menu = *RecentButton(number).findChild<QMenu*>();
    emit menu.aboutToShow();
    Texts items;
    for (const QAction* item : menu.actions()) {
      const std::string text = item->text().toStdString();
      items.push_back(item->isEnabled() ? text : "[" + text + "]");
    }
    return items;
  }
  void ChooseRecent(Ctrl number, int item) {
    QMenu& menu = *RecentButton(number).findChild<QMenu*>();
    emit menu.aboutToShow();
    menu.actions().at(item)->trigger();
    Settle();
  }
  /// Drops files on the window; false when it does not want them.
  bool DropFiles(const std::vector<std::string>& names) {
    QMimeData data;
    QList<QUrl> urls;
    for (const std::string& name : names)
      urls.append(QUrl::fromLocalFile(QString::fromStdString(PathOf(name))));
    data.setUrls(urls);
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(&Dialog(), &enter);
    QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    drop.ignore();
    QApplication::sendEvent(&Dialog(), &drop);
    Settle();
    return enter.isAccepted();
  }
};

// Opening.

TEST_F(MainDialogTestOfItself, TheWindowIsTitledAndHasEveryControlOfItsList) {
  EXPECT_EQ(Dialog().windowTitle(), "BOM Parser");
  EXPECT_EQ(GetDialogId(Dialog()), DialogId::Main);
  EXPECT_FALSE(Dialog().windowIcon().isNull());
  EXPECT_TRUE(Dialog().windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
  const std::vector<std::pair<Ctrl, const char*>> buttons = {
      {Ctrl::LoadFromFile, "Load From File ..."},
      {Ctrl::CreateNew, "Create New"},
      {Ctrl::SaveToFile, "Save To File ..."},
      {Ctrl::EditParams, "Edit Params ..."},
      {Ctrl::OpenInput, "Open ..."},
      {Ctrl::CloseInput, "Close"},
      {Ctrl::FindTemplate, "Find Template"},
      {Ctrl::ApplyTemplate, "Apply Template"},
      {Ctrl::OutputEntityList, "Output ..."},
      {Ctrl::EditInput, "Edit ..."},
      {Ctrl::Help, "Help"},
      {Ctrl::Settings, "Settings"},
      {Ctrl::Exit, "Exit"}};
  for (const auto& [number, text] : buttons) {
    auto* const button = FindControl<QPushButton>(Dialog(), number);
    ASSERT_NE(button, nullptr) << text;
    EXPECT_EQ(button->text().remove(u'&'), text);
  }
  EXPECT_EQ(FindControl<QGroupBox>(Dialog(), Ctrl::TemplateActions)->title(), "Template Actions");
  EXPECT_EQ(FindControl<QGroupBox>(Dialog(), Ctrl::InputFileActions)->title(),
            "Input File Actions");
  for (const Ctrl list :
       {Ctrl::InputFields, Ctrl::OutputElements, Ctrl::EntityRecords, Ctrl::AuxiliaryRecords,
        Ctrl::InputRows, Ctrl::RecordSheet, Ctrl::InputSheet}) {
    EXPECT_NE(FindControl<QWidget>(Dialog(), list), nullptr) << static_cast<int>(list);
  }
  Texts labels;
  for (const QLabel* label : Dialog().findChildren<QLabel*>())
    labels.push_back(label->text().remove(u'&').toStdString());
  for (const char* text :
       {"Template File", "Title", "Input File", "Input Data Field Pattern For Selected Record",
        "Output Element Values For Selected Record"}) {
    EXPECT_NE(std::find(labels.begin(), labels.end(), text), labels.end()) << text;
  }
}

TEST_F(MainDialogTestOfItself, FileTitleAndInputAreReadOnly) {
  for (const Ctrl edit : {Ctrl::TemplateFile, Ctrl::TemplateTitle, Ctrl::InputFile})
    EXPECT_TRUE(FindControl<QLineEdit>(Dialog(), edit)->isReadOnly());
  EXPECT_EQ(TextOf(Ctrl::TemplateFile), "unsaved");
  EXPECT_EQ(TextOf(Ctrl::TemplateTitle), "untitled");
  EXPECT_EQ(TextOf(Ctrl::InputFile), "");
}

TEST_F(MainDialogTestOfItself, AtTheStartOnlyOpenOfTheInputFileButtonsIsOn) {
  Dialog();
  EXPECT_EQ(Buttons(), "O.....");
  EXPECT_EQ(Rows().accessibleDescription(), "Open an input file, or drop one here");
}

TEST_F(MainDialogTestOfItself, WithoutAnEngineItSaysSoAndEndsAsByEscape) {
  CTNFileParserDlg dialog(host, [](CTNFrontEnd* frontEnd) {
    std::unique_ptr<CTNFileParserEngine> engine;
    for (std::int64_t granted = 1; !engine || engine->IsValid(); ++granted) {
      const FailingMemory memory(granted);
      try {
        engine = std::make_unique<CTNFileParserEngine>(frontEnd);
      } catch (const std::bad_alloc&) {
      }
    }
    return engine;
  });
  EXPECT_EQ(dialog.exec(), QDialog::Rejected);
  EXPECT_EQ(dialogs.boxes,
            Boxes{"plain|BOM Parser|Fatal error: Failed to initialize parser engine.\nContact your "
                  "Tandrel support representative.|Ok"});
  EXPECT_TRUE(host.written.empty());
}

TEST_F(MainDialogTestOfItself, TitleAndSectionAreThoseThatWereSet) {
  CTNFileParserDlg dialog(host);
  dialog.SetTitle("Another Title");
  dialog.SetProfileSection("Another Section");
  host.profile["Another Section/TAB_STOP"] = "3";
  ASSERT_TRUE(dialog.Initialise());
  EXPECT_EQ(dialog.windowTitle(), "Another Title");
  EXPECT_EQ(dialog.GetEngine().GetTabStop(), 3);
  EXPECT_EQ(dialog.GetEngine().GetProfileSection(), "Another Section");
}

// What a host asks to be opened.

TEST_F(MainDialogTestOfItself, WhatTheHostNamesIsOpenedAtTheStart) {
  WriteFile("mine.xml", TemplateFor("a"));
  WriteFile("list.txt", "a\n");
  host.profile["Start/TEMPLATE_FILE"] = PathOf("mine.xml");
  host.profile["Start/INPUT_FILE"] = PathOf("list.txt");
  Dialog();
  EXPECT_EQ(TextOf(Ctrl::TemplateFile), PathOf("mine.xml"));
  EXPECT_EQ(TextOf(Ctrl::InputFile), PathOf("list.txt"));
  EXPECT_EQ(Column(Rows(), 1), (Texts{"line (E1)"}));
  EXPECT_EQ(Buttons(), "OCFAUE");
}

TEST_F(MainDialogTestOfItself, WhatCannotBeOpenedAtTheStartIsToldOf) {
  host.profile["Start/INPUT_FILE"] = PathOf("nowhere.txt");
  Dialog();
  EXPECT_EQ(dialogs.boxes, Boxes{"error|BOM Parser|cannot read " + PathOf("nowhere.txt") +
                                 ": No such file or directory|Ok"});
}

// Settings.

TEST_F(MainDialogTestOfItself, OkOfTheSettingsShowsTabsAsWideAsTheyAreNow) {
  OpenText("a\tb\n");
  EXPECT_EQ(Cell(Rows(), 0, 2), "a       b");
  dialogs.runs.emplace_back([](QDialog& shown) {
    EXPECT_EQ(shown.windowTitle(), "BOM Parser Settings");
    auto& settings = dynamic_cast<CTNDlgParserAppSettings&>(shown);
    FindControl<QLineEdit>(settings, Ctrl::TabStop)->setText("4");
    settings.accept();
    return true;
  });
  Press(Ctrl::Settings);
  EXPECT_EQ(Cell(Rows(), 0, 2), "a   b");
}

TEST_F(MainDialogTestOfItself, CancelOfTheSettingsChangesNothing) {
  LoadAndOpen();
  const std::string before = State();
  WillCancel();
  Press(Ctrl::Settings);
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTestOfItself, UnselectAllFollowedByOkMeansThatNoEditAppliesTheTemplate) {
  LoadAndOpen();
  dialogs.runs.emplace_back([](QDialog& shown) {
    auto& settings = dynamic_cast<CTNDlgParserAppSettings&>(shown);
    QTest::mouseClick(FindControl<QPushButton>(settings, Ctrl::UnselectAllTriggers),
                      Qt::LeftButton);
    settings.accept();
    return true;
  });
  Press(Ctrl::Settings);
  Choose(Records(), Cmd::AppendNew);
  EXPECT_EQ(Flags(), "applied stale");
  WillAnswer(BoxAnswer::No);  // The list.
  WillAnswer(BoxAnswer::No);  // The template.
  Press(Ctrl::Exit);
  EXPECT_EQ(host.profile["BOM Parser/AUTO_TRANS_FLAGS"], "0");
}

// Help.

TEST_F(MainDialogTestOfItself, HelpAsksTheHostForItsContents) {
  Press(Ctrl::Help);
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].command, HelpCommand::Contents);
  EXPECT_EQ(host.help[0].control->window(), &Dialog());
}

TEST_F(MainDialogTestOfItself, ARightClickOnAButtonAsksForHelpAboutIt) {
  auto* const button = FindControl<QPushButton>(Dialog(), Ctrl::SaveToFile);
  RightClick(*button, button->rect().center());
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].command, HelpCommand::ContextMenu);
  EXPECT_EQ(host.help[0].topicFile, "manual.hlp::/context.txt");
  ASSERT_EQ(host.help[0].pairs.size(), 1U);
  EXPECT_EQ(host.help[0].pairs[0].first, 3010);
}

TEST_F(MainDialogTestOfItself, HelpOnTheColourLegendIsAboutTheLegend) {
  for (QLabel* const label : Dialog().findChildren<QLabel*>()) {
    if (GetControlId(*label) != Ctrl::ColourLegend) continue;
    RightClick(*label, label->rect().center());
    ASSERT_FALSE(host.help.empty());
    EXPECT_EQ(host.help.back().pairs[0].first, static_cast<int>(Ctrl::ColourLegend));
  }
  EXPECT_EQ(host.help.size(), 4U);
}

// Exit.

TEST_F(MainDialogTestOfItself, ExitWithNothingToLoseEndsInOrderAndWritesSixKeysInTheirOrder) {
  Press(Ctrl::Exit);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(Dialog().result(), QDialog::Accepted);
  Texts six;
  const std::set<std::string> keys = {"AUTO_TRANS_FLAGS",      "TAB_STOP",
                                      "TEMPLATE_SEARCH_PATH",  "INPUT_FILE_PATH",
                                      "OUTPUT_FILE_PATH_NAME", "TEMPLATE_FILE_PATH"};
  for (const std::string& key : host.written) {
    if (keys.contains(key)) six.push_back(key);
  }
  EXPECT_EQ(six, (Texts{"AUTO_TRANS_FLAGS", "TAB_STOP", "TEMPLATE_SEARCH_PATH", "INPUT_FILE_PATH",
                        "OUTPUT_FILE_PATH_NAME", "TEMPLATE_FILE_PATH"}));
  EXPECT_EQ(host.profile["BOM Parser/OUTPUT_FILE_PATH_NAME"], "") << "nothing was output";
}

TEST_F(MainDialogTestOfItself, TheListsStoreTheirWidthsBeforeTheSettingsAreWritten) {
  Press(Ctrl::Exit);
  const auto place = [this](const std::string& key) {
    return std::find(host.written.begin(), host.written.end(), key) - host.written.begin();
  };
  for (const char* key :
       {"INPUT_FIELD_LIST", "OUTPUT_FIELD_LIST", "ENTITY_RECORD_LIST", "OTHER_RECORD_LIST"}) {
    EXPECT_LT(place(key), place("AUTO_TRANS_FLAGS")) << key;
  }
}

TEST_F(MainDialogTestOfItself, ExitAsksForTheListFirstAndThenForTheTemplate) {
  LoadAndOpen();
  AddStaleRecord();
  WillAnswer(BoxAnswer::No);
  WillAnswer(BoxAnswer::No);
  Press(Ctrl::Exit);
  EXPECT_EQ(dialogs.boxes, (Boxes{kAskOutput, kAskSave}));
  EXPECT_FALSE(IsOpen());
}

TEST_F(MainDialogTestOfItself, ExitWithAModifiedTemplateOffersSavingAndCancelKeepsTheDialogOpen) {
  Dialog();
  Choose(Records(), Cmd::AppendNew);
  const std::string before = State();
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::Exit);
  EXPECT_EQ(dialogs.boxes, Boxes{kAskSave});
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(State(), before);
  EXPECT_TRUE(host.written.empty());
}

TEST_F(MainDialogTestOfItself, CancelInTheSecondPromptOfExitLeavesTheInputFileOpenToo) {
  LoadAndOpen();
  AddStaleRecord();
  const std::string before = State();
  WillAnswer(BoxAnswer::No);
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::Exit);
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTestOfItself, ExitStopsWhenTheOutputThatWasAskedForIsCancelled) {
  LoadAndOpen();
  const std::string before = State();
  WillAnswer(BoxAnswer::Yes);
  WillCancel();
  Press(Ctrl::Exit);
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTestOfItself, ExitStopsWhenTheSavingThatWasAskedForIsCancelled) {
  LoadAndOpen();
  AddStaleRecord();
  const std::string before = State();
  WillAnswer(BoxAnswer::No);
  WillAnswer(BoxAnswer::Yes);
  WillCancel();
  Press(Ctrl::Exit);
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTestOfItself, ExitSavesTheTemplateWhenTheUserWantsThat) {
  Dialog();
  Choose(Records(), Cmd::AppendNew);
  WillAnswer(BoxAnswer::Yes);
  WillChoose("saved.xml");
  Press(Ctrl::Exit);
  EXPECT_FALSE(IsOpen());
  EXPECT_NE(BytesOf("saved.xml").find("New Record"), std::string::npos);
}

TEST_F(MainDialogTestOfItself, TheCloseBoxAsksNothingAndWritesNothing) {
  LoadAndOpen();
  AddStaleRecord();
  host.written.clear();
  Dialog().close();
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(Dialog().result(), QDialog::Rejected);
  EXPECT_TRUE(dialogs.boxes.empty());
  EXPECT_TRUE(host.written.empty());
}

TEST_F(MainDialogTestOfItself, EscapeAsksNothingAndWritesNothing) {
  LoadAndOpen();
  AddStaleRecord();
  host.written.clear();
  QTest::keyClick(&Dialog(), Qt::Key_Escape);
  EXPECT_FALSE(IsOpen());
  EXPECT_TRUE(dialogs.boxes.empty());
  EXPECT_TRUE(host.written.empty());
}

TEST_F(MainDialogTestOfItself, AnEscapeThatIsHeldDownDoesNotEndTheDialog) {
  Dialog();
  QKeyEvent held(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier, QString(), true);
  QApplication::sendEvent(&Dialog(), &held);
  EXPECT_TRUE(IsOpen());
}

TEST_F(MainDialogTestOfItself, TheCloseBoxGivesUpWhatIsBeingTyped) {
  LoadAndOpen();
  ASSERT_TRUE(Records().BeginEdit(Records().model()->index(0, 2)));
  dynamic_cast<CTNInPlaceEdit*>(Records().GetEditor())->setText("another name");
  Dialog().close();
  Settle();
  EXPECT_FALSE(IsOpen());
  EXPECT_FALSE(Engine().IsTemplateModified());
}

TEST_F(MainDialogTestOfItself, EscapeEndsAnOpenEditorBeforeItEndsTheDialog) {
  LoadAndOpen();
  ASSERT_TRUE(Records().BeginEdit(Records().model()->index(0, 2)));
  QTest::keyClick(Records().GetEditor(), Qt::Key_Escape);
  Settle();
  EXPECT_TRUE(IsOpen());
  EXPECT_FALSE(Records().IsEditing());
}

TEST_F(MainDialogTestOfItself, EnterNeverEndsTheDialogAndStartsNoWorkflow) {
  LoadAndOpen();
  const std::string before = State();
  for (QWidget* const widget : Dialog().findChildren<QWidget*>()) {
    if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible() || !widget->isEnabled())
      continue;
    if (qobject_cast<CTNParserListCtrl*>(widget) != nullptr) continue;  // There it edits.
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
      widget->setFocus();
      QTest::keyClick(widget, key);
      ASSERT_TRUE(IsOpen()) << widget->metaObject()->className();
    }
  }
  EXPECT_EQ(State(), before);
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(MainDialogTestOfItself, TheDialogCannotBeEndedWhileAWorkflowIsUnderWay) {
  LoadAndOpen();
  dialogs.whileAsking = [this] { Dialog().close(); };
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::OpenInput);
  EXPECT_TRUE(IsOpen());
}

TEST_F(MainDialogTestOfItself, SettingsThatTheHostCannotStoreAreToldOf) {
  class FullHost final : public CTNHostApp {
   public:
    std::string GetProfileString(std::string_view, std::string_view,
                                 std::string_view fallback) const override {
      return std::string(fallback);
    }
    int GetProfileInt(std::string_view, std::string_view, int fallback) const override {
      return fallback;
    }
    bool WriteProfileString(std::string_view, std::string_view, std::string_view) override {
      return false;
    }
    bool WriteProfileInt(std::string_view, std::string_view, int) override { return false; }
    std::string GetHelpFilePath() const override { return {}; }
    void SetHelpFilePath(const std::string&) override {}
    void ShowHelp(const HelpRequest&) override {}
  } full;
  CTNFileParserDlg dialog(full);
  ASSERT_TRUE(dialog.Initialise());
  dialog.show();
  Settle();
  QTest::mouseClick(FindControl<QPushButton>(dialog, Ctrl::Exit), Qt::LeftButton);
  EXPECT_EQ(dialogs.boxes, Boxes{"error|BOM Parser|The settings could not be stored|Ok"});
  EXPECT_FALSE(dialog.isVisible());
}

// Recently used files.

TEST_F(MainDialogTestOfItself, FilesThatWereUsedAreOfferedAgainTheLatestFirst) {
  EXPECT_EQ(RecentMenu(Ctrl::RecentInputs), (Texts{"[No recent files]"}));
  OpenText("a\n", "one.txt");
  WillAnswer(BoxAnswer::No);
  OpenText("b\n", "two.txt");
  EXPECT_EQ(RecentMenu(Ctrl::RecentInputs), (Texts{PathOf("two.txt"), PathOf("one.txt")}));
  WillAnswer(BoxAnswer::No);
  ChooseRecent(Ctrl::RecentInputs, 1);
  EXPECT_EQ(TextOf(Ctrl::InputFile), PathOf("one.txt"));
  EXPECT_EQ(RecentMenu(Ctrl::RecentInputs), (Texts{PathOf("one.txt"), PathOf("two.txt")}));
}

TEST_F(MainDialogTestOfItself, TheMenuOfRecentFilesOpensByMouseAndKeys) {
  OpenText("a\n", "one.txt");
  QTest::mouseClick(&RecentButton(Ctrl::RecentInputs), Qt::LeftButton);
  EXPECT_EQ(OpenMenu()->actions().size(), 1);
  OpenMenu()->close();
  QTest::keyClick(&RecentButton(Ctrl::RecentTemplates), Qt::Key_Space);
  EXPECT_EQ(MenuText(*OpenMenu()), "[No recent files]\n");
  OpenMenu()->close();
}

TEST_F(MainDialogTestOfItself, ARecentFileAsksAsOpenAndLoadDo) {
  LoadAndOpen();
  Choose(Records(), Cmd::AppendNew);
  const std::string before = State();
  WillAnswer(BoxAnswer::Cancel);
  ChooseRecent(Ctrl::RecentInputs, 0);
  WillAnswer(BoxAnswer::Cancel);
  ChooseRecent(Ctrl::RecentTemplates, 0);
  EXPECT_EQ(dialogs.boxes, (Boxes{kAskOutput, kAskSave}));
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTestOfItself, RecentFilesAreStoredByExitOnly) {
  OpenText("a\n", "one.txt");
  Load(TemplateFor("a"));
  Dialog().close();
  EXPECT_FALSE(host.profile.contains("BOM Parser/RECENT_INPUT_1"));
  CloseDialog();
  OpenText("a\n", "one.txt");
  Load(TemplateFor("a"));
  WillAnswer(BoxAnswer::No);
  Press(Ctrl::Exit);
  EXPECT_EQ(host.profile["BOM Parser/RECENT_INPUT_1"], PathOf("one.txt"));
  EXPECT_EQ(host.profile["BOM Parser/RECENT_TEMPLATE_1"], PathOf("template.xml"));
  CloseDialog();
  EXPECT_EQ(RecentMenu(Ctrl::RecentInputs), (Texts{PathOf("one.txt")}));
}

TEST_F(MainDialogTestOfItself, ARecentFileThatIsNoLongerThereCannotBeChosen) {
  OpenText("a\n", "one.txt");
  std::filesystem::remove(PathOf("one.txt"));
  EXPECT_EQ(RecentMenu(Ctrl::RecentInputs), (Texts{"[" + PathOf("one.txt") + "]"}));
}

TEST_F(MainDialogTestOfItself, RecentInputFilesAreOffWhileTheResultsPageIsShown) {
  LoadAndOpen();
  ShowResults(true);
  EXPECT_FALSE(RecentButton(Ctrl::RecentInputs).isEnabled());
  EXPECT_TRUE(RecentButton(Ctrl::RecentTemplates).isEnabled());
}

// Files that are dropped on the window.

TEST_F(MainDialogTestOfItself, AFileThatIsDroppedOnTheWindowIsOpened) {
  WriteFile("list.txt", "a\n");
  EXPECT_TRUE(DropFiles({"list.txt"}));
  EXPECT_EQ(TextOf(Ctrl::InputFile), PathOf("list.txt"));
}

TEST_F(MainDialogTestOfItself, ATemplateThatIsDroppedOnTheWindowIsLoaded) {
  WriteFile("mine.XML", TemplateFor("a"));
  EXPECT_TRUE(DropFiles({"mine.XML"}));
  EXPECT_EQ(TextOf(Ctrl::TemplateFile), PathOf("mine.XML"));
}

TEST_F(MainDialogTestOfItself, ADroppedFileAsksAsOpenDoes) {
  LoadAndOpen();
  WriteFile("list.txt", "a\n");
  const std::string before = State();
  WillAnswer(BoxAnswer::Cancel);
  EXPECT_TRUE(DropFiles({"list.txt"}));
  EXPECT_EQ(dialogs.boxes, Boxes{kAskOutput});
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTestOfItself, AnInputFileIsNotWelcomeWhileTheResultsPageIsShown) {
  LoadAndOpen();
  WriteFile("mine.xml", TemplateFor("a"));
  ShowResults(true);
  EXPECT_FALSE(DropFiles({"input.txt"}));
  EXPECT_TRUE(DropFiles({"mine.xml"}));
  EXPECT_EQ(TextOf(Ctrl::TemplateFile), PathOf("mine.xml"));
}

TEST_F(MainDialogTestOfItself, SeveralFilesAndFoldersAreNotWelcome) {
  WriteFile("one.txt", "a\n");
  WriteFile("two.txt", "a\n");
  MakeFolder("folder");
  EXPECT_FALSE(DropFiles({"one.txt", "two.txt"}));
  EXPECT_FALSE(DropFiles({"folder"}));
  EXPECT_FALSE(DropFiles({"nowhere.txt"}));
}

// The window.

TEST_F(MainDialogTestOfItself, TheWindowComesBackAsExitLeftIt) {
  Dialog().resize(1010, 700);
  Settle();
  Press(Ctrl::Exit);
  CloseDialog();
  EXPECT_EQ(Dialog().size(), QSize(1010, 700));
}

TEST_F(MainDialogTestOfItself, TheWindowFitsASmallScreen) {
  constexpr QSize kSmall(1024, 600);
  Dialog().resize(1, 1);
  Settle();
  EXPECT_LE(Dialog().width(), kSmall.width());
  EXPECT_LE(Dialog().height(), kSmall.height());
}

TEST_F(MainDialogTestOfItself, EverythingIsReachedWithTheTabulator) {
  LoadAndOpen();
  std::set<const QWidget*> reached;
  QWidget* widget = &Dialog();
  do {
    widget = widget->nextInFocusChain();
    if ((widget->focusPolicy() & Qt::TabFocus) != 0) reached.insert(widget);
  } while (widget != &Dialog());
  for (const Ctrl number : {Ctrl::LoadFromFile,     Ctrl::RecentTemplates,
                            Ctrl::CreateNew,        Ctrl::SaveToFile,
                            Ctrl::EditParams,       Ctrl::TemplateFile,
                            Ctrl::TemplateTitle,    Ctrl::OpenInput,
                            Ctrl::RecentInputs,     Ctrl::CloseInput,
                            Ctrl::FindTemplate,     Ctrl::ApplyTemplate,
                            Ctrl::OutputEntityList, Ctrl::EditInput,
                            Ctrl::InputFile,        Ctrl::EntityRecords,
                            Ctrl::InputFields,      Ctrl::OutputElements,
                            Ctrl::InputRows,        Ctrl::Help,
                            Ctrl::Settings,         Ctrl::Exit}) {
    EXPECT_TRUE(reached.contains(FindControl<QWidget>(Dialog(), number)))
        << static_cast<int>(number);
  }
}

TEST_F(MainDialogTestOfItself, EveryButtonHasAMnemonicOfItsOwn) {
  std::multiset<QString> letters;
  const auto letter = [](const QString& text) {
    const qsizetype mark = text.indexOf(u'&');
    return mark < 0 ? QString() : text.mid(mark + 1, 1).toUpper();
  };
  for (const QAbstractButton* button : Dialog().findChildren<QAbstractButton*>()) {
    if (!letter(button->text()).isEmpty()) letters.insert(letter(button->text()));
  }
  for (const QLabel* label : Dialog().findChildren<QLabel*>()) {
    if (!label->isVisible()) continue;
    if (!letter(label->text()).isEmpty()) letters.insert(letter(label->text()));
  }
  for (const auto* button : Dialog().findChildren<QPushButton*>()) {
    ASSERT_FALSE(letter(button->text()).isEmpty()) << button->text().toStdString();
    EXPECT_EQ(letters.count(letter(button->text())), 1U) << button->text().toStdString();
  }
}

TEST_F(MainDialogTestOfItself, PictureOfTheMainDialog) {
  const std::string folder = std::string(BOMPARSER_SOURCE_DIR) + "/examples/placement/";
  host.profile["Start/TEMPLATE_FILE"] = folder + "template.xml";
  host.profile["Start/INPUT_FILE"] = folder + "input.txt";
  Dialog().resize(1280, 800);
  EXPECT_TRUE(Screenshot(Dialog(), "main-dialog"));
  ShowResults(true);
  EXPECT_TRUE(Screenshot(Dialog(), "main-dialog-results"));
  ShowResults(false);
  AddStaleRecord();
  EXPECT_TRUE(Screenshot(Dialog(), "main-dialog-stale"));
  Dialog().resize(1, 1);
  EXPECT_TRUE(Screenshot(Dialog(), "main-dialog-smallest"));
}

TEST_F(MainDialogTestOfItself, PictureOfTheMainDialogWithARealFile) {
  const std::string input =
      qgetenv("BOMPARSER_SAMPLES").toStdString() + "/placement/eagle_partlist_position_inch.txt";
  if (!IsRegularFile(input)) {
    GTEST_SKIP() << "BOMPARSER_SAMPLES names no folder of sample files";
  }
  host.profile["Start/TEMPLATE_FILE"] =
      std::string(BOMPARSER_SOURCE_DIR) + "/tests/samples/eagle_partlist_position_inch.xml";
  host.profile["Start/INPUT_FILE"] = input;
  Dialog().resize(1280, 800);
  EXPECT_GT(Engine().GetStats().entityBlocks, 0U);
  EXPECT_EQ(static_cast<std::uint64_t>(Rows().model()->rowCount()), Engine().GetStats().totalLines);
  EXPECT_TRUE(Screenshot(Dialog(), "main-dialog-sample"));
}

TEST_F(MainDialogTestOfItself, PictureOfTheMainDialogAtItsStart) {
  Dialog().resize(1280, 800);
  EXPECT_TRUE(Screenshot(Dialog(), "main-dialog-empty"));
}

}  // namespace
}  // namespace bomparser::test
