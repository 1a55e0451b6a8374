#include "ui/controls/CTNOpenSaveDialogs.h"

#include "tests/support/TestFolder.h"
#include "tests/ui/support/UiTest.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTimer>
#include <QTranslator>
#include <QTreeView>
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace bomparser::test {
namespace {

/// Qt's own words as another language has them.
class OtherLanguage final : public QTranslator {
 public:
  OtherLanguage(QString open, QString saveAs)
      : m_open(std::move(open)), m_saveAs(std::move(saveAs)) {
    QCoreApplication::installTranslator(this);
  }
  ~OtherLanguage() override { QCoreApplication::removeTranslator(this); }
  bool isEmpty() const override { return false; }
  QString translate(const char* context, const char* sourceText, const char*, int) const override {
    if (std::string(context) != "QFileDialog") return {};
    if (std::string(sourceText) == "Open") return m_open;
    if (std::string(sourceText) == "Save As") return m_saveAs;
    return {};
  }

 private:
  QString m_open;
  QString m_saveAs;
};

class CTNOpenSaveDialogsTest : public TestFolder {
 protected:
  CTNOpenSaveDialogsTest() {
    WriteFile("parts.xml", "<T/>");
    WriteFile("PLACE.XML", "<T/>");
    WriteFile("bare", "<T/>");
    WriteFile("list.txt", "R1\n");
    WriteFile("list.prn", "R1\n");
    MakeFolder("more");
  }
  static QLineEdit& NameEdit(const QFileDialog& dialog) {
    return *dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  }
  static void Open(QFileDialog& dialog) {
    dialog.show();
    Settle();
  }
  static void Type(QFileDialog& dialog, const QString& name) {
    NameEdit(dialog).setFocus();
    NameEdit(dialog).setText(name);
    QTest::keyClick(&NameEdit(dialog), Qt::Key_Return);
    Settle();
  }
  static QStringList FilterTexts(const QFileDialog& dialog) {
    const auto* combo = dialog.findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i)
      texts.append(combo->itemText(i));
    return texts;
  }
  /// The names that the list shows, sorted.
  static std::vector<std::string> Shown(const QFileDialog& dialog) {
    const auto* list = dialog.findChild<QListView*>(QStringLiteral("listView"));
    std::vector<std::string> names;
    for (int row = 0; row < list->model()->rowCount(list->rootIndex()); ++row) {
      const QModelIndex index = list->model()->index(row, 0, list->rootIndex());
      names.push_back(index.data().toString().toStdString());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  /// A thread reads the folder, so the names come in their own time.
  static void ExpectShown(const QFileDialog& dialog, const std::vector<std::string>& names) {
    EXPECT_TRUE(QTest::qWaitFor([&] { return Shown(dialog) == names; }));
    EXPECT_EQ(Shown(dialog), names);
  }
  static void ChooseFilter(QFileDialog& dialog, int index) {
    auto* combo = dialog.findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
    combo->setCurrentIndex(index);
    emit combo->activated(index);
    Settle();
  }
  /// Answers the box that comes up next, and keeps its text.
  void AnswerBox(QMessageBox::StandardButton button) {
    QTimer::singleShot(0, &m_context, [this, button] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(box, nullptr);
      boxText = box->text().toStdString();
      QTest::mouseClick(box->button(button), Qt::LeftButton);
    });
  }

  std::string boxText;

 private:
  QObject m_context;
};

TEST_F(CTNOpenSaveDialogsTest, LoadingATemplateReplacesTheStandardCaption) {
  const CTNTemplateOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  EXPECT_EQ(dialog.windowTitle(), "Template: Load");
}

TEST_F(CTNOpenSaveDialogsTest, SavingATemplateKeepsTheStandardCaption) {
  const CTNTemplateOpenSaveDialog dialog(FileDialogUse::Save, Folder());
  EXPECT_EQ(dialog.windowTitle(), "Template: Save As");
}

TEST_F(CTNOpenSaveDialogsTest, OpeningAnInputFileKeepsTheStandardCaption) {
  const CTNInFileOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  EXPECT_EQ(dialog.windowTitle(), "Input File: Open");
}

TEST_F(CTNOpenSaveDialogsTest, OutputReplacesTheStandardCaption) {
  const CTNInFileOpenSaveDialog dialog(FileDialogUse::Save, Folder());
  EXPECT_EQ(dialog.windowTitle(), "Input File: Output Entity List");
}

TEST_F(CTNOpenSaveDialogsTest, StandardCaptionsOfAnotherLanguageStayUnchanged) {
  const OtherLanguage german(QStringLiteral("Öffnen"), QStringLiteral("Speichern unter"));
  EXPECT_EQ(CTNTemplateOpenSaveDialog(FileDialogUse::Open, Folder()).windowTitle(),
            QString::fromUtf8("Template: Öffnen"));
  EXPECT_EQ(CTNTemplateOpenSaveDialog(FileDialogUse::Save, Folder()).windowTitle(),
            "Template: Speichern unter");
  EXPECT_EQ(CTNInFileOpenSaveDialog(FileDialogUse::Open, Folder()).windowTitle(),
            QString::fromUtf8("Input File: Öffnen"));
  EXPECT_EQ(CTNInFileOpenSaveDialog(FileDialogUse::Save, Folder()).windowTitle(),
            "Input File: Speichern unter");
}

TEST_F(CTNOpenSaveDialogsTest, StandardCaptionsAreKnownInAnyCase) {
  const OtherLanguage loud(QStringLiteral("OPEN"), QStringLiteral("Save as"));
  EXPECT_EQ(CTNTemplateOpenSaveDialog(FileDialogUse::Open, Folder()).windowTitle(),
            "Template: Load");
  EXPECT_EQ(CTNInFileOpenSaveDialog(FileDialogUse::Save, Folder()).windowTitle(),
            "Input File: Output Entity List");
}

TEST_F(CTNOpenSaveDialogsTest, TheCaptionStaysWhenTheDialogIsShown) {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  EXPECT_EQ(dialog.windowTitle(), "Template: Load");
}

TEST_F(CTNOpenSaveDialogsTest, TheFiltersAreShownToTheLetter) {
  EXPECT_EQ(FilterTexts(CTNTemplateOpenSaveDialog(FileDialogUse::Open, Folder())),
            QStringList({"XML Document (*.xml)", "All Files (*.*)"}));
  EXPECT_EQ(FilterTexts(CTNTemplateOpenSaveDialog(FileDialogUse::Save, Folder())),
            QStringList({"XML Document (*.xml)"}));
  EXPECT_EQ(FilterTexts(CTNInFileOpenSaveDialog(FileDialogUse::Open, Folder())),
            QStringList({"ASCII Text Files (*.txt)", "Print Files (*.prn)", "All Files (*.*)"}));
  EXPECT_EQ(FilterTexts(CTNInFileOpenSaveDialog(FileDialogUse::Save, Folder())),
            QStringList({"XML Document (*.xml)"}));
}

TEST_F(CTNOpenSaveDialogsTest, AFilterShowsItsFilesInAnyCase) {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  ExpectShown(dialog, {"PLACE.XML", "more", "parts.xml"});
}

TEST_F(CTNOpenSaveDialogsTest, AllFilesAreAlsoThoseWithoutAnExtension) {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  ChooseFilter(dialog, 1);
  ExpectShown(dialog, {"PLACE.XML", "bare", "list.prn", "list.txt", "more", "parts.xml"});
}

TEST_F(CTNOpenSaveDialogsTest, PrintFilesAreTheSecondKindOfInputFiles) {
  CTNInFileOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  ExpectShown(dialog, {"list.txt", "more"});
  ChooseFilter(dialog, 1);
  ExpectShown(dialog, {"list.prn", "more"});
}

TEST_F(CTNOpenSaveDialogsTest, ATypedNameIsThatOfAFileInTheStartingFolder) {
  CTNInFileOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  Type(dialog, "list.txt");
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(dialog.GetPathName(), PathOf("list.txt"));
  EXPECT_EQ(dialog.GetFolder(), Folder());
}

TEST_F(CTNOpenSaveDialogsTest, AFileInAnotherFolderIsOfThatFolder) {
  WriteFile("more/deep.txt", "");
  CTNInFileOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  Type(dialog, "more/deep.txt");
  EXPECT_EQ(dialog.GetPathName(), PathOf("more/deep.txt"));
  EXPECT_EQ(dialog.GetFolder(), PathOf("more"));
}

TEST_F(CTNOpenSaveDialogsTest, AFileToOpenMustExist) {
  CTNInFileOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  AnswerBox(QMessageBox::Ok);
  Type(dialog, "nowhere.txt");
  EXPECT_TRUE(boxText.starts_with("nowhere.txt\nFile not found")) << boxText;
  EXPECT_TRUE(dialog.isVisible());
}

TEST_F(CTNOpenSaveDialogsTest, ATemplateToLoadIsAnXmlFileUnlessItsNameSaysOtherwise) {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  Type(dialog, "parts");
  EXPECT_EQ(dialog.GetPathName(), PathOf("parts.xml"));
}

TEST_F(CTNOpenSaveDialogsTest, AnExistingTemplateWithoutExtensionIsMeantItself) {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  Type(dialog, "bare");
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(dialog.GetPathName(), PathOf("bare"));
}

TEST_F(CTNOpenSaveDialogsTest, AnInputFileGetsNoExtension) {
  CTNInFileOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  AnswerBox(QMessageBox::Ok);
  Type(dialog, "parts");
  EXPECT_TRUE(boxText.starts_with("parts\n")) << boxText;
}

TEST_F(CTNOpenSaveDialogsTest, WhatIsSavedGetsTheExtension) {
  CTNTemplateOpenSaveDialog save(FileDialogUse::Save, Folder());
  Open(save);
  Type(save, "new");
  EXPECT_EQ(save.GetPathName(), PathOf("new.xml"));
  CTNInFileOpenSaveDialog output(FileDialogUse::Save, Folder());
  Open(output);
  Type(output, "list.out");
  EXPECT_EQ(output.GetPathName(), PathOf("list.out"));
}

TEST_F(CTNOpenSaveDialogsTest, OverwritingIsAskedAbout) {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Save, Folder());
  Open(dialog);
  AnswerBox(QMessageBox::No);
  Type(dialog, "parts");
  EXPECT_TRUE(boxText.starts_with("parts.xml already exists.")) << boxText;
  EXPECT_TRUE(dialog.isVisible());
  AnswerBox(QMessageBox::Yes);
  Type(dialog, "parts");
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST_F(CTNOpenSaveDialogsTest, AFileWithoutExtensionIsNotWhatIsOverwritten) {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Save, Folder());
  Open(dialog);
  Type(dialog, "bare");
  EXPECT_EQ(dialog.GetPathName(), PathOf("bare.xml"));
}

TEST_F(CTNOpenSaveDialogsTest, TheInitialNameIsProposed) {
  CTNInFileOpenSaveDialog dialog(FileDialogUse::Save, Folder());
  dialog.SetInitialName("placement");
  Open(dialog);
  EXPECT_EQ(NameEdit(dialog).text(), "placement");
  QTest::keyClick(&NameEdit(dialog), Qt::Key_Return);
  EXPECT_EQ(dialog.GetPathName(), PathOf("placement.xml"));
}

TEST_F(CTNOpenSaveDialogsTest, AnInitialPathShowsItsFolder) {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Save, Folder());
  dialog.SetInitialName(PathOf("more/mine.xml"));
  Open(dialog);
  EXPECT_EQ(NameEdit(dialog).text(), "mine.xml");
  EXPECT_EQ(dialog.directory().path().toStdString(), PathOf("more"));
}

TEST_F(CTNOpenSaveDialogsTest, AFolderThatIsGoneLeadsToTheCurrentOne) {
  const CTNTemplateOpenSaveDialog dialog(FileDialogUse::Open, PathOf("gone"));
  EXPECT_EQ(dialog.directory().path(), QDir::currentPath());
}

TEST_F(CTNOpenSaveDialogsTest, NothingOfAFileIsCut) {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  Open(dialog);
  ExpectShown(dialog, {"PLACE.XML", "more", "parts.xml"});
  const auto* files = dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
  ASSERT_NE(files, nullptr);
  for (int column = 0; column < files->model()->columnCount(); ++column) {
    for (int row = 0; row < files->model()->rowCount(files->rootIndex()); ++row) {
      const QModelIndex cell = files->model()->index(row, column, files->rootIndex());
      EXPECT_GE(files->columnWidth(column), files->sizeHintForIndex(cell).width()) << column;
    }
  }
}

TEST_F(CTNOpenSaveDialogsTest, EscapeChoosesNothing) {
  CTNTemplateOpenSaveDialog dialog(FileDialogUse::Open, Folder());
  const QSignalSpy closed(&dialog, &QDialog::rejected);
  Open(dialog);
  QTest::keyClick(&dialog, Qt::Key_Escape);
  EXPECT_EQ(closed.count(), 1);
  EXPECT_FALSE(dialog.isVisible());
}

TEST_F(CTNOpenSaveDialogsTest, PictureOfEveryDialog) {
  CTNTemplateOpenSaveDialog load(FileDialogUse::Open, Folder());
  CTNInFileOpenSaveDialog output(FileDialogUse::Save, Folder());
  output.SetInitialName("placement");
  Open(load);
  Open(output);
  ExpectShown(load, {"PLACE.XML", "more", "parts.xml"});
  ExpectShown(output, {"PLACE.XML", "more", "parts.xml"});
  EXPECT_TRUE(Screenshot(load, "file-dialog-load"));
  EXPECT_TRUE(Screenshot(output, "file-dialog-output"));
}

}  // namespace
}  // namespace bomparser::test
