#include "tests/ui/dialogs/MainDialogTest.h"
#include "ui/dialogs/CTNDlgErrorLog.h"
#include "ui/dialogs/CTNTemplateParamsDlg.h"

#include <QCursor>
#include <QTableView>
#include <filesystem>

namespace bomparser::test {
namespace {

class MainDialogTemplateTest : public MainDialogTest {
 protected:
  /// The next dialog is the error log; its lines are written down.
  void WillReadErrorLog() {
    dialogs.runs.emplace_back([this](QDialog& shown) {
      auto& log = dynamic_cast<CTNDlgErrorLog&>(shown);
      logTitle = log.windowTitle().toStdString();
      logLines = Column(*log.findChild<QTableView*>(), 0);
      log.hide();
      return true;
    });
  }

  std::string logTitle;
  Texts logLines;
};

// Load.

TEST_F(MainDialogTemplateTest, LoadShowsTheTemplateAndSelectsItsFirstRecord) {
  Load(TemplateFor("a|b"));
  EXPECT_EQ(TextOf(Ctrl::TemplateFile), PathOf("template.xml"));
  EXPECT_EQ(TextOf(Ctrl::TemplateTitle), "untitled");
  EXPECT_EQ(Records().GetSelectedRows(), std::vector<int>{0});
  EXPECT_EQ(Fields().model()->rowCount(), 2);
  EXPECT_EQ(Elements().model()->rowCount(), 2);
  EXPECT_EQ(Buttons(), "O.....") << "nothing was open";
}

TEST_F(MainDialogTemplateTest, LoadOffersTemplatesOfTheTemplateFolder) {
  MakeFolder("templates");
  host.profile["BOM Parser/TEMPLATE_FILE_PATH"] = PathOf("templates");
  dialogs.runs.emplace_back([this](QDialog& shown) {
    auto& files = dynamic_cast<CTNTemplateOpenSaveDialog&>(shown);
    EXPECT_EQ(files.acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_EQ(files.fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(files.defaultSuffix(), "xml");
    EXPECT_EQ(files.directory().absolutePath().toStdString(), PathOf("templates"));
    EXPECT_EQ(files.nameFilters().size(), 2);
    return false;
  });
  Press(Ctrl::LoadFromFile);
}

TEST_F(MainDialogTemplateTest, LoadAppliesTheTemplateToAFileThatIsApplied) {
  OpenText("a\nx\n");
  Load(TemplateFor("a"));
  EXPECT_EQ(Column(Rows(), 1), (Texts{"line (E1)", "Unmatched"}));
  EXPECT_EQ(Flags(), "applied");
}

TEST_F(MainDialogTemplateTest, LoadAsksAboutAModifiedTemplateAfterTheFileDialog) {
  LoadAndOpen();
  AddStaleRecord();
  std::size_t boxesBefore = 99;
  dialogs.runs.emplace_back([this, &boxesBefore](QDialog&) {
    boxesBefore = dialogs.boxes.size();
    return true;
  });
  WillAnswer(BoxAnswer::Cancel);
  const std::string before = State();
  Press(Ctrl::LoadFromFile);
  EXPECT_EQ(boxesBefore, 0U);
  EXPECT_EQ(dialogs.boxes, Boxes{kAskSave});
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTemplateTest, CancelInTheFileDialogOfLoadLeavesEverythingAsItWas) {
  LoadAndOpen();
  AddStaleRecord();
  const std::string before = State();
  WillCancel();
  Press(Ctrl::LoadFromFile);
  EXPECT_EQ(State(), before);
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(MainDialogTemplateTest, LoadStopsWhenTheSavingThatWasAskedForIsCancelled) {
  LoadAndOpen();
  AddStaleRecord();
  WriteFile("other.xml", TemplateFor("x"));
  WillChoose("other.xml");
  WillAnswer(BoxAnswer::Yes);
  WillCancel();
  const std::string before = State();
  Press(Ctrl::LoadFromFile);
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTemplateTest, NoToSavingLoadsAndLosesTheChanges) {
  LoadAndOpen();
  AddStaleRecord();
  WillAnswer(BoxAnswer::No);
  Load(TemplateFor("x"), "other.xml");
  EXPECT_EQ(Records().model()->rowCount(), 1);
  EXPECT_FALSE(Engine().IsTemplateModified());
}

TEST_F(MainDialogTemplateTest, ATemplateThatDoesNotLoadShowsItsLogAndLeavesAnEmptyTemplate) {
  LoadAndOpen();
  WillReadErrorLog();
  // The log comes after the file dialog, so it is answered second.
  WriteFile("broken.xml", "<TEMPLATE>\n<oops\n");
  dialogs.runs.clear();
  WillChoose("broken.xml");
  WillReadErrorLog();
  Press(Ctrl::LoadFromFile);
  EXPECT_EQ(logTitle, "BOM Parser");
  ASSERT_GE(logLines.size(), 2U);
  EXPECT_EQ(logLines[0], "Error detected at line 3 while loading " + PathOf("broken.xml"));
  EXPECT_TRUE(Document().IsEmptyTemplate());
  EXPECT_EQ(TextOf(Ctrl::TemplateFile), "unsaved");
  EXPECT_EQ(Records().model()->rowCount(), 0);
  EXPECT_EQ(Flags(), "applied stale") << "nothing was applied";
  EXPECT_EQ(Column(Rows(), 1), (Texts{"??", "??", "??"}));
}

TEST_F(MainDialogTemplateTest, AFailedLoadRemembersNoFolder) {
  MakeFolder("broken");
  WriteFile("broken/broken.xml", "<oops");
  WillChoose("broken/broken.xml");
  WillReadErrorLog();
  Press(Ctrl::LoadFromFile);
  Press(Ctrl::Exit);
  EXPECT_EQ(host.profile["BOM Parser/TEMPLATE_FILE_PATH"], Folder());
}

// Create New.

TEST_F(MainDialogTemplateTest, CreateNewEmptiesTheTemplateAndAppliesItToTheFile) {
  LoadAndOpen();
  Press(Ctrl::CreateNew);
  EXPECT_TRUE(dialogs.boxes.empty());
  EXPECT_EQ(Records().model()->rowCount(), 0);
  EXPECT_EQ(Fields().model()->rowCount(), 0);
  EXPECT_EQ(Column(Rows(), 1), (Texts{"Unmatched", "Unmatched", "Unmatched"}));
  EXPECT_EQ(Flags(), "applied");
}

TEST_F(MainDialogTemplateTest, CreateNewWithAModifiedTemplateAsksAndCancelLeavesEverything) {
  LoadAndOpen();
  AddStaleRecord();
  const std::string before = State();
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::CreateNew);
  EXPECT_EQ(dialogs.boxes, Boxes{kAskSave});
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTemplateTest, CreateNewSavesFirstWhenTheUserWantsThat) {
  LoadAndOpen();
  AddStaleRecord();
  WillAnswer(BoxAnswer::Yes);
  WillChoose("saved.xml");
  Press(Ctrl::CreateNew);
  EXPECT_NE(BytesOf("saved.xml").find("New Record"), std::string::npos);
  EXPECT_EQ(Records().model()->rowCount(), 0);
}

TEST_F(MainDialogTemplateTest, CreateNewStopsWhenSavingFails) {
  LoadAndOpen();
  AddStaleRecord();
  MakeFolder("folder.xml");
  WillAnswer(BoxAnswer::Yes);
  WillChoose("folder.xml");
  Press(Ctrl::CreateNew);
  EXPECT_EQ(Records().model()->rowCount(), 2);
  EXPECT_TRUE(Engine().IsTemplateModified());
  ASSERT_EQ(dialogs.boxes.size(), 2U);
  EXPECT_NE(dialogs.boxes[1].find(PathOf("folder.xml")), std::string::npos);
}

// Save.

TEST_F(MainDialogTemplateTest, SaveWritesTheTemplateAndItIsNoLongerModified) {
  LoadAndOpen();
  AddStaleRecord();
  WillChoose("mine.xml");
  Press(Ctrl::SaveToFile);
  EXPECT_EQ(BytesOf("mine.xml"), XmlText(Document()));
  EXPECT_FALSE(Engine().IsTemplateModified());
  EXPECT_EQ(TextOf(Ctrl::TemplateFile), PathOf("mine.xml"));
  EXPECT_EQ(Flags(), "applied stale") << "saving applies nothing";
}

TEST_F(MainDialogTemplateTest, SaveProposesTheTemplatesOwnFile) {
  MakeFolder("templates");
  Load(TemplateFor("a"), "templates/mine.xml");
  dialogs.runs.emplace_back([this](QDialog& shown) {
    auto& files = dynamic_cast<CTNTemplateOpenSaveDialog&>(shown);
    EXPECT_EQ(files.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(files.GetPathName(), PathOf("templates/mine.xml"));
    EXPECT_EQ(files.nameFilters().size(), 1);
    EXPECT_FALSE(files.testOption(QFileDialog::DontConfirmOverwrite));
    return false;
  });
  Press(Ctrl::SaveToFile);
}

TEST_F(MainDialogTemplateTest, ANewTemplateIsProposedAsUnsavedInTheTemplateFolder) {
  Dialog();
  dialogs.runs.emplace_back([this](QDialog& shown) {
    EXPECT_EQ(dynamic_cast<CTNTemplateOpenSaveDialog&>(shown).GetPathName(), PathOf("unsaved.xml"));
    return false;
  });
  Press(Ctrl::SaveToFile);
}

TEST_F(MainDialogTemplateTest, ANameWithBytesThatNoTextCanHoldIsProposedAsItIs) {
  const std::string name = "b\xE4 board.xml";
  WriteFile(name, TemplateFor("a"));
  host.profile["Start/TEMPLATE_FILE"] = PathOf(name);
  Dialog();
  AddStaleRecord();
  dialogs.runs.emplace_back([](QDialog&) { return true; });  // Taken as it is proposed.
  Press(Ctrl::SaveToFile);
  EXPECT_EQ(BytesOf(name), XmlText(Document()));
  EXPECT_EQ(Names(), Texts{name}) << "no second file beside it";
  EXPECT_EQ(Document().GetFilePath(), PathOf(name));
}

TEST_F(MainDialogTemplateTest, TheBoxOfAFailedSaveDoesNotStandUnderAWaitCursor) {
  Dialog();
  MakeFolder("folder.xml");
  WillChoose("folder.xml");
  Qt::CursorShape shape = Qt::WaitCursor;
  dialogs.whileAsking = [&shape] {
    const QCursor* const cursor = QApplication::overrideCursor();
    shape = cursor != nullptr ? cursor->shape() : Qt::ArrowCursor;
  };
  Press(Ctrl::SaveToFile);
  EXPECT_EQ(dialogs.boxes.size(), 1U);
  EXPECT_EQ(shape, Qt::ArrowCursor);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(MainDialogTemplateTest, AFailedSaveKeepsTheModifiedFlagAndSaysWhy) {
  LoadAndOpen();
  AddStaleRecord();
  MakeFolder("folder.xml");
  const std::string before = State();
  WillChoose("folder.xml");
  Press(Ctrl::SaveToFile);
  ASSERT_EQ(dialogs.boxes.size(), 1U);
  EXPECT_EQ(dialogs.boxes[0].rfind("error|BOM Parser|", 0), 0U);
  EXPECT_NE(dialogs.boxes[0].find(PathOf("folder.xml")), std::string::npos);
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTemplateTest, CancelInTheFileDialogOfSaveLeavesEverythingAsItWas) {
  LoadAndOpen();
  AddStaleRecord();
  const std::string before = State();
  WillCancel();
  Press(Ctrl::SaveToFile);
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogTemplateTest, TheFolderOfASavedTemplateIsRemembered) {
  MakeFolder("templates");
  Dialog();
  WillChoose("templates/mine.xml");
  Press(Ctrl::SaveToFile);
  Press(Ctrl::Exit);
  EXPECT_EQ(host.profile["BOM Parser/TEMPLATE_FILE_PATH"], PathOf("templates"));
}

class MainDialogChangedOnDiskTest : public MainDialogTemplateTest {
 protected:
  std::string Question() const {
    return "question|BOM Parser|Template file " + PathOf("template.xml") +
           " was changed on disk since it was loaded or saved here.\n\nWant to overwrite it? (No "
           "saves to another file.)|YesNoCancel";
  }
  void ChangeOnDisk() {
    LoadAndOpen();
    AddStaleRecord();
    WriteFile("template.xml", TemplateFor("somebody else's"));
  }
};

TEST_F(MainDialogChangedOnDiskTest, CancelKeepsTheOthersWork) {
  ChangeOnDisk();
  const std::string before = State();
  WillChoose("template.xml");
  WillAnswer(BoxAnswer::Cancel);
  Press(Ctrl::SaveToFile);
  EXPECT_EQ(dialogs.boxes, Boxes{Question()});
  EXPECT_EQ(State(), before);
}

TEST_F(MainDialogChangedOnDiskTest, YesOverwrites) {
  ChangeOnDisk();
  WillChoose("template.xml");
  WillAnswer(BoxAnswer::Yes);
  Press(Ctrl::SaveToFile);
  EXPECT_EQ(BytesOf("template.xml"), XmlText(Document()));
}

TEST_F(MainDialogChangedOnDiskTest, NoSavesToAnotherFile) {
  ChangeOnDisk();
  WillChoose("template.xml");
  WillAnswer(BoxAnswer::No);
  WillChoose("mine.xml");
  Press(Ctrl::SaveToFile);
  EXPECT_EQ(dialogs.boxes, Boxes{Question()}) << "one question";
  EXPECT_EQ(BytesOf("template.xml"), TemplateFor("somebody else's"));
  EXPECT_EQ(BytesOf("mine.xml"), XmlText(Document()));
}

TEST_F(MainDialogChangedOnDiskTest, AnotherFileIsNotAskedAbout) {
  ChangeOnDisk();
  WillChoose("mine.xml");
  Press(Ctrl::SaveToFile);
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(MainDialogChangedOnDiskTest, WhatWasSavedHereIsNoChange) {
  LoadAndOpen();
  for (int i = 0; i < 2; ++i) {
    AddStaleRecord();
    WillChoose("template.xml");
    Press(Ctrl::SaveToFile);
  }
  EXPECT_TRUE(dialogs.boxes.empty());
}

// Parameters.

TEST_F(MainDialogTemplateTest, OkOfTheParametersShowsThemAndAppliesTheTemplateAgain) {
  LoadAndOpen();
  dialogs.runs.emplace_back([](QDialog& shown) {
    auto& params = dynamic_cast<CTNTemplateParamsDlg&>(shown);
    FindControl<QLineEdit>(params, Ctrl::ParamTitle)->setText("Boards");
    FindControl<QLineEdit>(params, Ctrl::ParamIgnoreBefore)->setText("2");
    params.accept();
    return true;
  });
  Press(Ctrl::EditParams);
  EXPECT_EQ(TextOf(Ctrl::TemplateTitle), "Boards");
  EXPECT_EQ(Column(Rows(), 1), (Texts{"Ignored", "Unmatched", "line (E1)"}));
  EXPECT_TRUE(Engine().IsTemplateModified());
}

TEST_F(MainDialogTemplateTest, OkOfTheParametersCountsAsAnEditEvenWhenNothingWasChanged) {
  LoadAndOpen();
  dialogs.runs.emplace_back([](QDialog& shown) {
    dynamic_cast<CTNTemplateParamsDlg&>(shown).accept();
    return true;
  });
  Press(Ctrl::EditParams);
  EXPECT_TRUE(Engine().IsTemplateModified());
}

TEST_F(MainDialogTemplateTest, CancelOfTheParametersChangesNothing) {
  LoadAndOpen();
  const std::string before = State();
  dialogs.runs.emplace_back([](QDialog& shown) {
    FindControl<QLineEdit>(shown, Ctrl::ParamTitle)->setText("Boards");
    return false;
  });
  Press(Ctrl::EditParams);
  EXPECT_EQ(State(), before);
}

}  // namespace
}  // namespace bomparser::test
