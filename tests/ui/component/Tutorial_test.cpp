#include "tests/support/EngineTest.h"
#include "tests/ui/component/ComponentTest.h"
#include "tests/ui/support/ModalUser.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTableView>
#include <array>
#include <filesystem>

namespace bomparser::test {
namespace {

using Texts = std::vector<std::string>;

// The columns of the lists.
constexpr int kId = 0;
constexpr int kType = 1;
constexpr int kDescription = 2;
constexpr int kMatchCount = 3;
constexpr int kRequired = 2;
constexpr int kCurrentValue = 3;
constexpr int kMatchValue = 4;
constexpr int kTag = 1;
constexpr int kExpression = 2;
constexpr int kMatchingRecord = 1;
constexpr int kFileText = 2;

/// Does what the manual's tutorial says, as it is written there, in a dialog that a host has
/// opened.
class TutorialTest : public ComponentTest {
 protected:
  static constexpr const char* kExample = BOMPARSER_SOURCE_DIR "/examples/tutorial/";

  void RunTutorial() {
    std::filesystem::copy_file(std::string(kExample) + "input.txt", PathOf("input.txt"));
    std::filesystem::copy_file(std::string(kExample) + "second.txt", PathOf("second.txt"));
    for (const char* key : {"TEMPLATE_SEARCH_PATH", "INPUT_FILE_PATH", "TEMPLATE_FILE_PATH"})
      host.profile[std::string("BOM Parser/") + key] = Folder();
    MakeApplication();
    EXPECT_EQ(Display([this](QDialog& dialog) {
                m_dialog = &dialog;
                dialog.resize(1280, 800);
                Settle();
                AllSteps();
              }),
              1);
  }
  void AllSteps() {
    for (const auto step :
         {&TutorialTest::OpenTheFile, &TutorialTest::LookAtTheLines, &TutorialTest::MakeARecord,
          &TutorialTest::ChooseItsType, &TutorialTest::ChooseTheFieldTypes,
          &TutorialTest::SayWhatIsWritten, &TutorialTest::TakeTheUnits, &TutorialTest::TakeTheRest,
          &TutorialTest::SaveTheTemplate, &TutorialTest::Output, &TutorialTest::FindItAgain}) {
      (this->*step)();
      EXPECT_TRUE(modal.IsDone());
      if (HasFailure()) return;
    }
  }
  void Picture(const std::string& number) {
    EXPECT_TRUE(Screenshot(*m_dialog, "tutorial-" + number));
  }

  // The ten steps.

  void OpenTheFile() {
    modal.WillChooseFile(PathOf("input.txt"));
    Press(Ctrl::OpenInput);
    EXPECT_EQ(Rows(Ctrl::InputRows), 22);
    EXPECT_EQ(Kinds(), "E0 A0 U22");
    EXPECT_EQ(LabelOf(Ctrl::FilterStatus), "22 of 22 lines shown");
    EXPECT_TRUE(Button(Ctrl::ApplyTemplate).isEnabled());
    EXPECT_EQ(EditOf(Ctrl::InputFile).text().toStdString(), PathOf("input.txt"));
    Picture("01");
  }
  void LookAtTheLines() {
    QLineEdit& filter = EditOf(Ctrl::FilterText);
    filter.setFocus();
    QTest::keyClicks(&filter, "0603");
    Settle();
    EXPECT_EQ(Column(Ctrl::InputRows, kId), (Texts{"9", "10"}));
    EXPECT_EQ(LabelOf(Ctrl::FilterStatus), "2 of 22 lines shown");
    Picture("02");
    QTest::keyClick(&filter, Qt::Key_Escape);
    Settle();
    EXPECT_EQ(Rows(Ctrl::InputRows), 22);
    QTest::keyClick(&filter, Qt::Key_F8);
    Settle();
    EXPECT_EQ(Table(Ctrl::InputRows).currentIndex().row(), 0);
  }
  void MakeARecord() {
    ClickLine(9);
    ChooseAt(Ctrl::InputRows, 8, Cmd::CreateRecordFromSelected);
    EXPECT_EQ(RowText(Ctrl::EntityRecords, 0), "E1|Undefined|Auto-Created From Text Block|0");
    EXPECT_EQ(
        Column(Ctrl::InputFields, kType),
        (Texts{"ALPHANUMERIC", "WHTSPACE", "ALPHANUMERIC", "WHTSPACE", "DECIMAL_NUM", "WHTSPACE",
               "DECIMAL_NUM", "WHTSPACE", "WHOLE_NUM", "WHTSPACE", "ALPHA", "NEWLINE"}));
    EXPECT_EQ(Rows(Ctrl::OutputElements), 0);
    EXPECT_EQ(Kinds(), "E0 A0 U22");
    modal.WillAnswer("Invalid Record Type", QMessageBox::Ok);
    Click(Ctrl::EntityRecords, 0, kId);
    Picture("03");
  }
  void ChooseItsType() {
    Set(Ctrl::EntityRecords, 0, kType, "Part");
    EXPECT_EQ(Column(Ctrl::OutputElements, kTag), (Texts{"REF_DESIGNATOR", "PART_NUMBER"}));
    EXPECT_EQ(Column(Ctrl::OutputElements, kExpression), (Texts{"Default", "Default"}));
    EXPECT_EQ(MatchCount(), "4");
    Set(Ctrl::EntityRecords, 0, kDescription, "Placement");
    EXPECT_EQ(Cell(Ctrl::InputRows, 8, kMatchingRecord), "Placement (E1)");
    EXPECT_EQ(Kinds(), "E4 A0 U18");
    Picture("04");
  }
  void ChooseTheFieldTypes() {
    Click(Ctrl::InputFields, 2, kId);
    Click(Ctrl::InputFields, 8, kId, Qt::ControlModifier);
    Set(Ctrl::InputFields, 2, kType, "NOT_WHTSPACE");
    EXPECT_EQ(Cell(Ctrl::InputFields, 8, kType), "NOT_WHTSPACE");
    EXPECT_EQ(MatchCount(), "10");
    Set(Ctrl::InputFields, 10, kType, "STRING");
    EXPECT_EQ(Cell(Ctrl::InputFields, 10, kMatchValue), "Top");
    EXPECT_EQ(MatchCount(), "6");
    Set(Ctrl::InputFields, 10, kMatchValue, "Top|Bottom");
    EXPECT_EQ(MatchCount(), "10");
    Click(Ctrl::InputFields, 11, kId);
    ChooseAt(Ctrl::InputFields, 11, Cmd::InsertNewAbove);
    EXPECT_EQ(Rows(Ctrl::InputFields), 13);
    EXPECT_EQ(MatchCount(), "0");
    Set(Ctrl::InputFields, 11, kType, "WHTSPACE");
    EXPECT_EQ(MatchCount(), "2");
    Set(Ctrl::InputFields, 11, kRequired, "FALSE");
    EXPECT_EQ(MatchCount(), "12");
    EXPECT_EQ(Kinds(), "E12 A0 U10");
    Picture("05");
  }
  void SayWhatIsWritten() {
    Set(Ctrl::OutputElements, 0, kExpression, "F1");
    EXPECT_EQ(Cell(Ctrl::OutputElements, 0, kCurrentValue), "R1");
    Set(Ctrl::OutputElements, 1, kExpression, "F3");
    EXPECT_EQ(Cell(Ctrl::OutputElements, 1, kCurrentValue), "RC0603");
    const std::vector<std::array<const char*, 3>> elements = {{"X_LOCATION", "F5", "12.700"},
                                                              {"Y_LOCATION", "F7", "25.400"},
                                                              {"ROTATION", "F9", "90"},
                                                              {"SIDEDNESS", "F11", "Top"}};
    for (int row = 2; const auto& [tag, expression, value] : elements) {
      AddElement();
      EXPECT_EQ(Cell(Ctrl::OutputElements, row, kTag), "UNDEFINED");
      Set(Ctrl::OutputElements, row, kTag, tag);
      Set(Ctrl::OutputElements, row, kExpression, expression);
      EXPECT_EQ(Cell(Ctrl::OutputElements, row, kCurrentValue), value);
      EXPECT_EQ(MatchCount(), "12");
      ++row;
    }
    modal.WillAnswer("Note: Output element X_LOCATION is not required for record type Part",
                     QMessageBox::Ok);
    Click(Ctrl::OutputElements, 2, kId);
    Picture("06");
  }
  void TakeTheUnits() {
    ShowTab(Ctrl::RecordSheet, 1);
    EXPECT_EQ(Rows(Ctrl::AuxiliaryRecords), 0);
    EXPECT_EQ(Rows(Ctrl::InputFields), 0);
    ClickLine(5);
    ChooseAt(Ctrl::InputRows, 4, Cmd::CreateRecordFromSelected);
    EXPECT_EQ(Column(Ctrl::InputFields, kType),
              (Texts{"NOT_WHTSPACE", "WHTSPACE", "ALPHA", "NEWLINE"}));
    Set(Ctrl::AuxiliaryRecords, 0, kType, "Single Match*");
    EXPECT_EQ(Cell(Ctrl::AuxiliaryRecords, 0, kMatchCount), "1");
    Set(Ctrl::AuxiliaryRecords, 0, kDescription, "Units line");
    EXPECT_EQ(Cell(Ctrl::InputRows, 4, kMatchingRecord), "Units line (A1)");
    Set(Ctrl::InputFields, 0, kType, "STRING");
    EXPECT_EQ(Cell(Ctrl::InputFields, 0, kMatchValue), "Units:");
    EXPECT_EQ(Cell(Ctrl::AuxiliaryRecords, 0, kMatchCount), "1");
    ShowTab(Ctrl::RecordSheet, 0);
    EXPECT_EQ(Rows(Ctrl::InputFields), 13);
    AddElement();
    Set(Ctrl::OutputElements, 6, kTag, "UNITS");
    EXPECT_EQ(Cell(Ctrl::OutputElements, 6, kExpression), "TEMPL_UNITS");
    Set(Ctrl::OutputElements, 6, kExpression, "A1.F3");
    ClickLine(9);
    EXPECT_EQ(Cell(Ctrl::OutputElements, 6, kCurrentValue), "MM");
    EXPECT_EQ(Kinds(), "E12 A1 U9");
    Picture("07");
  }
  void TakeTheRest() {
    ShowTab(Ctrl::RecordSheet, 1);
    ClickLine(7);
    ChooseAt(Ctrl::InputRows, 6, Cmd::CreateRecordFromSelected);
    EXPECT_EQ(Rows(Ctrl::InputFields), 12);
    Set(Ctrl::AuxiliaryRecords, 1, kType, "Multiple Match");
    Set(Ctrl::AuxiliaryRecords, 1, kDescription, "Headings");
    Set(Ctrl::InputFields, 0, kType, "STRING");
    EXPECT_EQ(Cell(Ctrl::InputFields, 0, kMatchValue), "Ref");
    Set(Ctrl::InputFields, 0, kMatchValue, "Ref|---|DEMO|Board:|Written|Total:");
    Set(Ctrl::InputFields, 1, kType, "SCAN_TO_NEXT");
    EXPECT_EQ(Cell(Ctrl::AuxiliaryRecords, 1, kMatchCount), "1");
    Click(Ctrl::InputFields, 2, kId);
    Click(Ctrl::InputFields, 10, kId, Qt::ShiftModifier);
    ChooseAt(Ctrl::InputFields, 5, Cmd::DeleteSelected);
    EXPECT_EQ(Column(Ctrl::InputFields, kType), (Texts{"STRING", "SCAN_TO_NEXT", "NEWLINE"}));
    EXPECT_EQ(Cell(Ctrl::AuxiliaryRecords, 1, kMatchCount), "6");
    EXPECT_EQ(Kinds(), "E12 A7 U3");
    ChooseBelow(Ctrl::AuxiliaryRecords, Cmd::AppendNew);
    Set(Ctrl::AuxiliaryRecords, 2, kType, "Multiple Match");
    Set(Ctrl::AuxiliaryRecords, 2, kDescription, "Blank line");
    Set(Ctrl::InputFields, 0, kType, "WHTSPACE");
    Set(Ctrl::InputFields, 0, kRequired, "FALSE");
    EXPECT_EQ(Cell(Ctrl::AuxiliaryRecords, 2, kMatchCount), "3");
    EXPECT_EQ(Kinds(), "E12 A10 U0");
    Table(Ctrl::InputRows).setFocus();
    QTest::keyClick(&Table(Ctrl::InputRows), Qt::Key_F8);
    Settle();
    EXPECT_EQ(LabelOf(Ctrl::FilterStatus), "No unmatched line is shown");
    Picture("08");
  }
  void SaveTheTemplate() {
    modal.WillUse([](QDialog& shown) {
      FindControl<QLineEdit>(shown, Ctrl::ParamTitle)->setText("Tutorial placement list");
      EXPECT_TRUE(Screenshot(shown, "tutorial-09"));
      FindControl<QPushButton>(shown, Ctrl::Ok)->click();
    });
    Press(Ctrl::EditParams);
    EXPECT_EQ(EditOf(Ctrl::TemplateTitle).text(), "Tutorial placement list");
    modal.WillChooseFile(PathOf("tutorial.xml"));
    Press(Ctrl::SaveToFile);
    EXPECT_EQ(EditOf(Ctrl::TemplateFile).text().toStdString(), PathOf("tutorial.xml"));
    EXPECT_EQ(BytesOf("tutorial.xml"), BytesAt(std::string(kExample) + "template.xml"));
  }
  void Output() {
    ShowTab(Ctrl::InputSheet, 1);
    const std::vector<std::pair<Ctrl, const char*>> counters = {
        {Ctrl::TotalLines, "22"},     {Ctrl::ParseableLines, "22"}, {Ctrl::MatchedLines, "22"},
        {Ctrl::UnmatchedLines, "0"},  {Ctrl::TotalBlocks, "22"},    {Ctrl::EntityBlocks, "12"},
        {Ctrl::AuxiliaryBlocks, "10"}};
    for (const auto& [counter, value] : counters)
      EXPECT_EQ(EditOf(counter).text(), value) << static_cast<int>(counter);
    EXPECT_EQ(
        FindControl<QPlainTextEdit>(*m_dialog, Ctrl::ViewerText)->toPlainText().count("<ENTITY>"),
        12);
    EXPECT_FALSE(Button(Ctrl::OutputEntityList).isEnabled());
    Picture("10");
    ShowTab(Ctrl::InputSheet, 0);
    modal.WillUse([](QDialog& shown) {
      auto* const edit = shown.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
      EXPECT_EQ(edit->text(), "input");  // The ending is added.
      QTest::keyClick(edit, Qt::Key_Return);
    });
    Press(Ctrl::OutputEntityList);
    EXPECT_EQ(BytesOf("input.xml"), BytesAt(std::string(kExample) + "expected.xml"));
  }
  void FindItAgain() {
    modal.WillUse([this](QDialog& shown) {
      FindControl<QLineEdit>(shown, Ctrl::SearchPath)->setText(QString::fromStdString(Folder()));
      FindControl<QPushButton>(shown, Ctrl::Ok)->click();
    });
    Press(Ctrl::Settings);
    Press(Ctrl::CreateNew);
    EXPECT_EQ(Kinds(), "E0 A0 U22");
    modal.WillChooseFile(PathOf("second.txt"));
    Press(Ctrl::OpenInput);
    modal.WillAnswer(
        "Template file tutorial.xml (Tutorial placement list) matched 16 of 16 "
        "parseable blocks in file (100.00%).",
        QMessageBox::Ok);
    Press(Ctrl::FindTemplate);
    EXPECT_EQ(EditOf(Ctrl::TemplateFile).text().toStdString(), PathOf("tutorial.xml"));
    EXPECT_EQ(Kinds(), "E6 A10 U0");
    modal.WillChooseFile(PathOf("second.xml"));
    Press(Ctrl::OutputEntityList);
    const std::string list = BytesOf("second.xml");
    EXPECT_NE(list.find("<ENTITY>Part<REF_DESIGNATOR>R10</REF_DESIGNATOR>"), std::string::npos);
    EXPECT_NE(list.find("<UNITS>Inch</UNITS>"), std::string::npos);
    Press(Ctrl::Exit);
    EXPECT_FALSE(m_dialog->isVisible());
  }

  // What the user does.

  QAbstractButton& Button(Ctrl number) { return *FindControl<QAbstractButton>(*m_dialog, number); }
  void Press(Ctrl number) {
    ASSERT_TRUE(Button(number).isEnabled()) << static_cast<int>(number);
    QTest::mouseClick(&Button(number), Qt::LeftButton);
    Settle();
  }
  QTableView& Table(Ctrl number) { return *FindControl<QTableView>(*m_dialog, number); }
  QPoint Place(Ctrl number, int row, int column) {
    const QModelIndex cell = Table(number).model()->index(row, column);
    Table(number).scrollTo(cell);
    return Table(number).visualRect(cell).center();
  }
  void Click(Ctrl number, int row, int column, Qt::KeyboardModifiers keys = Qt::NoModifier) {
    QTest::mouseClick(Table(number).viewport(), Qt::LeftButton, keys, Place(number, row, column));
    Settle();
  }
  void ClickLine(int line) { Click(Ctrl::InputRows, line - 1, kFileText); }
  void ChooseAt(Ctrl number, int row, Cmd command) {
    QTest::mouseClick(Table(number).viewport(), Qt::RightButton, {}, Place(number, row, kId));
    RightClick(*Table(number).viewport(), Place(number, row, kId));
    ChooseCommand(command);
    Settle();
  }
  void ChooseBelow(Ctrl number, Cmd command) {
    constexpr int kEdge = 3;
    RightClick(*Table(number).viewport(), {kEdge, Table(number).viewport()->height() - kEdge});
    ChooseCommand(command);
    Settle();
  }
  void AddElement() {
    Click(Ctrl::OutputElements, 0, kCurrentValue);
    ChooseAt(Ctrl::OutputElements, 0, Cmd::AppendNew);
  }
  /// Clicks the cell, and chooses the text from its box or types it.
  void Set(Ctrl number, int row, int column, const QString& value) {
    Click(number, row, column);
    QWidget& list = *Table(number).viewport();
    if (auto* const combo = list.findChild<QComboBox*>()) {
      const int entry = combo->findText(value);
      ASSERT_GE(entry, 0) << value.toStdString();
      QTest::keyClick(combo->view(), Qt::Key_Home);
      for (int i = 0; i < entry; ++i)
        QTest::keyClick(combo->view(), Qt::Key_Down);
      QTest::keyClick(combo->view(), Qt::Key_Return);
    } else {
      auto* const edit = list.findChild<QLineEdit*>();
      ASSERT_NE(edit, nullptr) << "no editor in row " << row << ", column " << column;
      edit->selectAll();
      QTest::keyClicks(edit, value);
      QTest::keyClick(edit, Qt::Key_Return);
    }
    Settle();
  }
  void ShowTab(Ctrl sheet, int page) {
    FindControl<QWidget>(*m_dialog, sheet)->findChild<QTabWidget*>()->setCurrentIndex(page);
    Settle();
  }

  // What the user sees.

  QLineEdit& EditOf(Ctrl number) { return *FindControl<QLineEdit>(*m_dialog, number); }
  std::string LabelOf(Ctrl number) {
    return FindControl<QLabel>(*m_dialog, number)->text().toStdString();
  }
  int Rows(Ctrl number) { return Table(number).model()->rowCount(); }
  std::string Cell(Ctrl number, int row, int column) {
    return Table(number).model()->index(row, column).data().toString().trimmed().toStdString();
  }
  Texts Column(Ctrl number, int column) {
    Texts texts;
    for (int row = 0; row < Rows(number); ++row)
      texts.push_back(Cell(number, row, column));
    return texts;
  }
  std::string RowText(Ctrl number, int row) {
    std::string line = Cell(number, row, 0);
    for (int column = 1; column < Table(number).model()->columnCount(); ++column)
      line += "|" + Cell(number, row, column);
    return line;
  }
  std::string MatchCount() { return Cell(Ctrl::EntityRecords, 0, kMatchCount); }
  /// How many lines of each kind there are, by their colours: "E12 A7 U3".
  std::string Kinds() {
    int entities = 0;
    int auxiliary = 0;
    int unmatched = 0;
    for (int row = 0; row < Rows(Ctrl::InputRows); ++row) {
      const QVariant back =
          Table(Ctrl::InputRows).model()->index(row, kFileText).data(Qt::BackgroundRole);
      const QString colour = back.value<QBrush>().color().name();
      entities += colour == "#c8ffc8" ? 1 : 0;
      auxiliary += colour == "#b0ffff" ? 1 : 0;
      unmatched += colour == "#ffcae4" ? 1 : 0;
    }
    return "E" + std::to_string(entities) + " A" + std::to_string(auxiliary) + " U" +
           std::to_string(unmatched);
  }

  ModalUser modal;

 private:
  QDialog* m_dialog = nullptr;
};

TEST_F(TutorialTest, PictureOfEveryStepWhichGoesAsTheManualSays) { RunTutorial(); }

}  // namespace
}  // namespace bomparser::test
