#include "ui/dialogs/CTNDlgParserAppSettings.h"

#include "entry/CTNFileParserEngine.h"
#include "tests/support/TestFolder.h"
#include "tests/ui/support/UiTest.h"
#include "ui/dialogs/FolderBrowser.h"

#include <QCheckBox>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace bomparser::test {
namespace {

class CTNDlgParserAppSettingsTest : public TestFolder {
 protected:
  void Open() {
    dialog = std::make_unique<CTNDlgParserAppSettings>(host, &engine, "BOM Parser");
    dialog->show();
    Settle();
  }
  QLineEdit& Edit(Ctrl number) { return *FindControl<QLineEdit>(*dialog, number); }
  QCheckBox& Box(int number) { return *FindControl<QCheckBox>(*dialog, static_cast<Ctrl>(number)); }
  void Press(Ctrl number) {
    QTest::mouseClick(FindControl<QPushButton>(*dialog, number), Qt::LeftButton);
    Settle();
  }
  void Type(Ctrl number, const QString& text) {
    Edit(number).setFocus();
    Edit(number).selectAll();
    QTest::keyClicks(&Edit(number), text);
  }
  /// Presses OK; true when the dialog closed.
  bool Ok() {
    Press(Ctrl::Ok);
    return !dialog->isVisible();
  }
  /// Answers the folder browser: types the path and presses Enter; Escape where it stayed.
  static bool TypeFolder(QDialog& browser, const QString& path) {
    auto* edit = browser.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    edit->setText(path);
    QTest::keyClick(edit, Qt::Key_Return);
    Settle();
    if (browser.isVisible()) QTest::keyClick(&browser, Qt::Key_Escape);
    return browser.result() == QDialog::Accepted;
  }

  FakeHostApp host;
  FakeUserDialogs boxes;
  CTNFileParserEngine engine;
  std::unique_ptr<CTNDlgParserAppSettings> dialog;
};

/// Each trigger's control number and bit.
const std::vector<std::pair<int, std::uint32_t>> kBoxes = {
    {3090, 1},  {3091, 2},  {3092, 4},   {3093, 8},   {3094, 16},
    {3095, 32}, {3096, 64}, {3097, 128}, {3098, 256}, {3101, 512}};

TEST_F(CTNDlgParserAppSettingsTest, CarriesTheTitleAndItsNumber) {
  Open();
  EXPECT_EQ(dialog->windowTitle(), "BOM Parser Settings");
  EXPECT_EQ(GetDialogId(*dialog), DialogId::AppSettings);
}

TEST_F(CTNDlgParserAppSettingsTest, WithoutAnEngineItDoesNotOpen) {
  CTNDlgParserAppSettings orphan(host, nullptr, "BOM Parser");
  EXPECT_EQ(orphan.exec(), QDialog::Rejected);
  orphan.show();
  EXPECT_FALSE(orphan.isVisible());
}

TEST_F(CTNDlgParserAppSettingsTest, ItsTextsAreWhatUsersKnow) {
  Open();
  const std::string note =
      "Selected actions will cause current template to be immediately re-applied to currently open "
      "input file (if any) :";
  std::set<std::string> texts;
  for (const QLabel* label : dialog->findChildren<QLabel*>())
    texts.insert(label->text().remove(u'&').toStdString());
  EXPECT_EQ(texts,
            std::set<std::string>({"Tab Stop:", "Spaces", "Add", "Delete", "Modify", "Record(s)",
                                   "Input Field(s)", "Output Element(s)", "Parameters", note}));
  std::set<std::string> groups;
  for (const QGroupBox* group : dialog->findChildren<QGroupBox*>())
    groups.insert(group->title().remove(u'&').toStdString());
  EXPECT_EQ(groups, std::set<std::string>({"Input File View Settings", "Template Search Path",
                                           "Template Application Triggers"}));
  std::set<std::string> buttons;
  for (const QPushButton* button : dialog->findChildren<QPushButton*>())
    buttons.insert(button->text().remove(u'&').toStdString());
  EXPECT_EQ(buttons, std::set<std::string>(
                         {"Browse ...", "Select All", "Unselect All", "OK", "Cancel", "Help"}));
}

TEST_F(CTNDlgParserAppSettingsTest, OpensWithTheEnginesSettings) {
  engine.SetTabStop(4);
  engine.SetTemplateSearchPath("/srv/templates");
  engine.SetAutoApplicationFlags(kRecordsDeleted | kParametersChanged);
  Open();
  EXPECT_EQ(Edit(Ctrl::TabStop).text(), "4");
  EXPECT_EQ(Edit(Ctrl::SearchPath).text(), "/srv/templates");
  for (const auto& [number, bit] : kBoxes)
    EXPECT_EQ(Box(number).isChecked(), bit == 2 || bit == 512) << number;
}

TEST_F(CTNDlgParserAppSettingsTest, EveryBoxIsItsOwnBit) {
  for (const auto& [number, bit] : kBoxes) {
    engine.SetAutoApplicationFlags(0);
    Open();
    QTest::keyClick(&Box(number), Qt::Key_Space);
    EXPECT_TRUE(Ok());
    EXPECT_EQ(engine.GetAutoApplicationFlags(), bit) << number;
  }
}

TEST_F(CTNDlgParserAppSettingsTest, OkStoresEverything) {
  Open();
  Type(Ctrl::TabStop, "12");
  Type(Ctrl::SearchPath, "/srv/more");
  QTest::keyClick(&Box(3095), Qt::Key_Space);
  EXPECT_TRUE(Ok());
  EXPECT_EQ(dialog->result(), QDialog::Accepted);
  EXPECT_EQ(engine.GetTabStop(), 12);
  EXPECT_EQ(engine.GetTemplateSearchPath(), "/srv/more");
  EXPECT_EQ(engine.GetAutoApplicationFlags(), 1023U - 32U);
}

TEST_F(CTNDlgParserAppSettingsTest, UnselectAllThenOkLetsNoEditApply) {
  Open();
  Press(Ctrl::UnselectAllTriggers);
  EXPECT_TRUE(Ok());
  EXPECT_EQ(engine.GetAutoApplicationFlags(), 0U);
  WriteFile("input.txt", "a\n");
  std::string error;
  bool cancelled = false;
  ASSERT_TRUE(engine.OpenInputFile(PathOf("input.txt"), error)) << error;
  ASSERT_TRUE(engine.ApplyTemplate(error, cancelled, ShowProgress::No)) << error;
  constexpr std::uint32_t kEveryKindOfEdit = 1023;
  engine.GetInputFile()->SetStale(true);  // As an edit leaves it that is not applied.
  engine.OnTemplateChanged(ChangeKind::Modified, kEveryKindOfEdit);
  EXPECT_TRUE(engine.GetInputFile()->IsStale());
  engine.SetAutoApplicationFlags(1);
  engine.OnTemplateChanged(ChangeKind::Modified, kEveryKindOfEdit);
  EXPECT_FALSE(engine.GetInputFile()->IsStale());
}

TEST_F(CTNDlgParserAppSettingsTest, SelectAllSetsAllTen) {
  engine.SetAutoApplicationFlags(0);
  Open();
  Press(Ctrl::SelectAllTriggers);
  EXPECT_TRUE(Ok());
  EXPECT_EQ(engine.GetAutoApplicationFlags(), 1023U);
}

TEST_F(CTNDlgParserAppSettingsTest, BitsThatHaveNoBoxAreDropped) {
  engine.SetAutoApplicationFlags(0xFFFFFFFFU);
  Open();
  EXPECT_TRUE(Ok());
  EXPECT_EQ(engine.GetAutoApplicationFlags(), 1023U);
}

TEST_F(CTNDlgParserAppSettingsTest, TabStopsFromZeroToFiftyAreTaken) {
  for (const int tabStop : {0, 50}) {
    Open();
    Type(Ctrl::TabStop, QString::number(tabStop));
    EXPECT_TRUE(Ok());
    EXPECT_EQ(engine.GetTabStop(), tabStop);
  }
}

TEST_F(CTNDlgParserAppSettingsTest, OtherTabStopsAreRefusedAndNothingIsStored) {
  for (const char* text : {"51", "-1"}) {
    Open();
    Type(Ctrl::SearchPath, "/srv/more");
    Type(Ctrl::TabStop, text);
    EXPECT_FALSE(Ok()) << text;
    EXPECT_TRUE(Edit(Ctrl::TabStop).hasFocus());
    EXPECT_EQ(Edit(Ctrl::TabStop).selectedText(), text);
  }
  EXPECT_EQ(boxes.boxes, std::vector<std::string>(
                             2, "warning|BOM Parser|Enter an integer between 0 and 50.|Ok"));
  EXPECT_EQ(engine.GetTabStop(), 8);
  EXPECT_EQ(engine.GetTemplateSearchPath(), "");
}

TEST_F(CTNDlgParserAppSettingsTest, ATabStopThatIsNoIntegerIsRefused) {
  Open();
  Type(Ctrl::TabStop, "eight");
  EXPECT_FALSE(Ok());
  EXPECT_EQ(boxes.boxes, std::vector<std::string>({"warning|BOM Parser|Enter an integer.|Ok"}));
}

TEST_F(CTNDlgParserAppSettingsTest, TheSearchPathIsNotChecked) {
  engine.SetTemplateSearchPath("/srv/templates");
  Open();
  Type(Ctrl::SearchPath, "/nowhere/at all");
  EXPECT_TRUE(Ok());
  EXPECT_EQ(engine.GetTemplateSearchPath(), "/nowhere/at all");
  Open();
  Edit(Ctrl::SearchPath).clear();
  EXPECT_TRUE(Ok());
  EXPECT_EQ(engine.GetTemplateSearchPath(), "");
  std::string error;
  bool cancelled = false;
  EXPECT_FALSE(engine.FindTemplate(error, cancelled, ShowProgress::No));
  EXPECT_EQ(error, "No template search path currently specified");
}

TEST_F(CTNDlgParserAppSettingsTest, APathThatIsNoUtf8StaysWhatItIs) {
  engine.SetTemplateSearchPath(
      "/srv/m\xFC"
      "ll");
  Open();
  EXPECT_EQ(Edit(Ctrl::SearchPath).text(), QString::fromUtf8("/srv/müll"));
  EXPECT_TRUE(Ok());
  EXPECT_EQ(engine.GetTemplateSearchPath(),
            "/srv/m\xFC"
            "ll");
}

TEST_F(CTNDlgParserAppSettingsTest, CancelAndEscapeChangeNothing) {
  for (const bool escape : {true, false}) {
    Open();
    Type(Ctrl::TabStop, "12");
    Type(Ctrl::SearchPath, "/srv/more");
    Press(Ctrl::UnselectAllTriggers);
    if (escape) {
      QTest::keyClick(dialog.get(), Qt::Key_Escape);
    } else {
      Press(Ctrl::Cancel);
    }
    EXPECT_FALSE(dialog->isVisible());
  }
  EXPECT_EQ(engine.GetTabStop(), 8);
  EXPECT_EQ(engine.GetTemplateSearchPath(), "");
  EXPECT_EQ(engine.GetAutoApplicationFlags(), 1023U);
}

TEST_F(CTNDlgParserAppSettingsTest, EnterInAnEditIsOk) {
  Open();
  Type(Ctrl::TabStop, "3");
  QTest::keyClick(&Edit(Ctrl::TabStop), Qt::Key_Return);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(engine.GetTabStop(), 3);
}

TEST_F(CTNDlgParserAppSettingsTest, HelpOpensTheHostsContents) {
  Open();
  Press(Ctrl::Help);
  ASSERT_EQ(host.help.size(), 1U);
  EXPECT_EQ(host.help[0].command, HelpCommand::Contents);
  EXPECT_TRUE(dialog->isVisible());
}

TEST_F(CTNDlgParserAppSettingsTest, BrowseStartsAtThePathAndTakesTheChosenFolder) {
  MakeFolder("library");
  engine.SetTemplateSearchPath(Folder());
  Open();
  boxes.runs.push_back([this](QDialog& browser) {
    EXPECT_EQ(browser.windowTitle(), "Select New Template Search Path:");
    EXPECT_EQ(dynamic_cast<QFileDialog&>(browser).directory().path().toStdString(), Folder());
    return TypeFolder(browser, "library");
  });
  Press(Ctrl::BrowseSearchPath);
  EXPECT_EQ(Edit(Ctrl::SearchPath).text().toStdString(), PathOf("library"));
  EXPECT_EQ(engine.GetTemplateSearchPath(), Folder());
}

TEST_F(CTNDlgParserAppSettingsTest, ABrowserThatIsCancelledChangesNothing) {
  Open();
  Type(Ctrl::SearchPath, "/srv/more");
  boxes.runs.push_back([](QDialog& browser) {
    QTest::keyClick(&browser, Qt::Key_Escape);
    return browser.result() == QDialog::Accepted;
  });
  Press(Ctrl::BrowseSearchPath);
  EXPECT_EQ(Edit(Ctrl::SearchPath).text(), "/srv/more");
}

TEST_F(CTNDlgParserAppSettingsTest, ATypedPathThatLeadsNowhereIsToldOfAndTheBrowserStays) {
  WriteFile("file", "");
  engine.SetTemplateSearchPath(Folder());
  for (const char* path : {"gone", "/nowhere/at all", "file"}) {
    Open();
    boxes.boxes.clear();
    boxes.runs.push_back([path](QDialog& browser) {
      auto* edit = browser.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
      edit->setText(path);
      QTest::keyClick(edit, Qt::Key_Return);
      EXPECT_TRUE(browser.isVisible());
      return browser.result() == QDialog::Accepted;
    });
    Press(Ctrl::BrowseSearchPath);
    EXPECT_EQ(boxes.boxes, std::vector<std::string>(
                               {"error|Error|Invalid path. Choose again or press Cancel|Ok"}));
    EXPECT_EQ(Edit(Ctrl::SearchPath).text().toStdString(), Folder());
  }
}

TEST_F(CTNDlgParserAppSettingsTest, ABrowserLeftAsItOpenedGivesItsStartingFolder) {
  FolderBrowser browser("Folder:", QString::fromStdString(Folder()));
  browser.show();
  Settle();
  EXPECT_TRUE(TypeFolder(browser, ""));
  EXPECT_EQ(browser.GetFolder().toStdString(), Folder());
}

TEST_F(CTNDlgParserAppSettingsTest, ABrowserOfAFolderThatIsGoneStartsInTheCurrentOne) {
  const FolderBrowser browser("Folder:", QString::fromStdString(PathOf("gone")));
  EXPECT_EQ(browser.directory().path(), QDir::currentPath());
}

TEST_F(CTNDlgParserAppSettingsTest, LettersLeadToTheControls) {
  Open();
  const std::vector<std::pair<Qt::Key, int>> letters = {{Qt::Key_T, 3045}, {Qt::Key_P, 3065}};
  for (const auto& [key, control] : letters) {
    QTest::keyClick(dialog.get(), key, Qt::AltModifier);
    EXPECT_EQ(static_cast<int>(GetControlId(*dialog->focusWidget())), control);
  }
  QTest::keyClick(dialog.get(), Qt::Key_U, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([this] { return !Box(3101).isChecked(); }));
  QTest::keyClick(dialog.get(), Qt::Key_A, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([this] { return Box(3101).isChecked(); }));
}

TEST_F(CTNDlgParserAppSettingsTest, TabGoesThroughTheControlsInReadingOrder) {
  Open();
  Edit(Ctrl::TabStop).setFocus();
  std::vector<int> order;
  for (int i = 0; i < 18; ++i) {
    order.push_back(static_cast<int>(GetControlId(*dialog->focusWidget())));
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(order, std::vector<int>({3045, 3065, 3066, 3090, 3091, 3092, 3093, 3094, 3095, 3096,
                                     3097, 3098, 3101, 3120, 3121, 1, 2, 9}));
}

TEST_F(CTNDlgParserAppSettingsTest, EveryBoxHasANameForAssistiveTools) {
  Open();
  EXPECT_EQ(Box(3090).accessibleName(), "Record(s) Add");
  EXPECT_EQ(Box(3098).accessibleName(), "Output Element(s) Modify");
}

TEST_F(CTNDlgParserAppSettingsTest, Picture) {
  engine.SetTemplateSearchPath("/home/me/templates");
  Open();
  EXPECT_TRUE(Screenshot(*dialog, "settings"));
}

TEST_F(CTNDlgParserAppSettingsTest, PictureOfTheFolderBrowser) {
  MakeFolder("library");
  FolderBrowser browser("Select New Template Search Path:", QString::fromStdString(Folder()));
  browser.show();
  Settle();
  EXPECT_TRUE(Screenshot(browser, "folder-browser"));
}

TEST_F(CTNDlgParserAppSettingsTest, HelpOnALabelIsAboutTheFirstBoxOfItsRow) {
  Open();
  std::vector<int> controls;
  for (const QLabel* label : dialog->findChildren<QLabel*>()) {
    if (qobject_cast<QCheckBox*>(label->buddy()) == nullptr) continue;
    RightClick(*dialog, label->mapTo(dialog.get(), label->rect().center()));
    controls.push_back(host.help.back().pairs.front().first);
  }
  EXPECT_EQ(controls, (std::vector<int>{3090, 3093, 3096, 3101}));
}

TEST_F(CTNDlgParserAppSettingsTest, AnEmptySearchPathIsTakenAndFindTemplateTellsOfIt) {
  engine.SetTemplateSearchPath(Folder());
  WriteFile("input.txt", "a\n");
  std::string error;
  bool cancelled = false;
  ASSERT_TRUE(engine.OpenInputFile(PathOf("input.txt"), error)) << error;
  Open();
  Edit(Ctrl::SearchPath).clear();
  EXPECT_TRUE(Ok());
  EXPECT_FALSE(engine.FindTemplate(error, cancelled, ShowProgress::No));
  EXPECT_EQ(error, "No template search path currently specified");
}

TEST_F(CTNDlgParserAppSettingsTest, APathOfAHundredThousandLettersStaysWhole) {
  engine.SetTemplateSearchPath(std::string(100'000, 'p'));
  Open();
  EXPECT_TRUE(Ok());
  EXPECT_EQ(engine.GetTemplateSearchPath().size(), 100'000U);
}

}  // namespace
}  // namespace bomparser::test
