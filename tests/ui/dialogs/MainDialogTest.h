#pragma once

#include "tests/support/EngineTest.h"
#include "tests/ui/support/UiTest.h"
#include "tnbase/TNPath.h"
#include "ui/controls/CTNInPlaceEdit.h"
#include "ui/controls/CTNOpenSaveDialogs.h"
#include "ui/controls/CTNParserComboBox.h"
#include "ui/dialogs/CTNFileParserDlg.h"
#include "ui/views/CTNInFilePropSheet.h"
#include "ui/views/CTNParserInFileListCtrl.h"
#include "ui/views/CTNTemplRecFieldListCtrl.h"
#include "ui/views/CTNTemplRecOutFieldListCtrl.h"
#include "ui/views/CTNTemplRecPropSheet.h"

#include <QLineEdit>
#include <QPushButton>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bomparser::test {

/// The main dialog as a user sees it, boxes and file dialogs being answered as a test says.
class MainDialogTest : public TestFolder {
 protected:
  using Boxes = std::vector<std::string>;
  using Texts = std::vector<std::string>;

  static constexpr const char* kAskOutput =
      "question|BOM Parser|Entity list from most recent template application has not been "
      "output.\n\nWant to output now?|YesNoCancel";
  static constexpr const char* kAskSave =
      "question|BOM Parser|The currently loaded template has been modified since it was last saved "
      "to disk.\n\nWant to save current template before continuing?|YesNoCancel";
  static constexpr const char* kAskReapply =
      "question|BOM Parser|Current template has been modified since it was last applied to input "
      "file.\n\nWant to re-apply template before outputting?|YesNoCancel";
  static constexpr const char* kAskApply =
      "question|BOM Parser|Current template has not been applied to input file.\n\n Want to apply "
      "current template now?\"|YesNoCancel";
  static constexpr const char* kApplyFirst =
      "error|BOM Parser|Current template must be applied before outputting entity list|Ok";

  MainDialogTest() {
    // What the settings do not say is the current folder: that of the tests must not get anything.
    host.profile["BOM Parser/TEMPLATE_SEARCH_PATH"] = Folder();
    host.profile["BOM Parser/INPUT_FILE_PATH"] = Folder();
    host.profile["BOM Parser/TEMPLATE_FILE_PATH"] = Folder();
  }

  /// The dialog; it opens when it is first asked for.
  CTNFileParserDlg& Dialog() {
    if (!m_dialog) {
      m_dialog = std::make_unique<CTNFileParserDlg>(host);
      EXPECT_TRUE(m_dialog->Initialise());
      m_dialog->show();
      QApplication::setActiveWindow(m_dialog.get());
      Settle();
    }
    return *m_dialog;
  }
  bool IsOpen() const { return m_dialog && m_dialog->isVisible(); }
  void CloseDialog() { m_dialog = nullptr; }

  CTNFileParserEngine& Engine() { return Dialog().GetEngine(); }
  CTNParserTemplate& Document() { return *Engine().GetTemplate(); }
  CTNParserInFile& InFile() { return *Engine().GetInputFile(); }

  // What the user does.

  void Press(Ctrl button) {
    auto* const found = FindControl<QPushButton>(Dialog(), button);
    ASSERT_NE(found, nullptr);
    ASSERT_TRUE(found->isEnabled()) << "button " << static_cast<int>(button);
    QTest::mouseClick(found, Qt::LeftButton);
    Settle();
  }
  /// The next file dialog ends with this file of the test's folder.
  void WillChoose(const std::string& name) {
    dialogs.runs.emplace_back([path = QString::fromStdString(PathOf(name))](QDialog& shown) {
      auto& files = dynamic_cast<CTNOpenSaveDialog&>(shown);
      // Whether a file is to be replaced is asked by a box of Qt's own.
      files.setOption(QFileDialog::DontConfirmOverwrite);
      auto* const edit = files.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
      edit->setFocus();
      edit->setText(path);
      files.hide();
      return true;
    });
  }
  /// The next dialog is cancelled.
  void WillCancel() {
    dialogs.runs.emplace_back([](QDialog&) { return false; });
  }
  void WillAnswer(BoxAnswer answer) { dialogs.answers.push_back(answer); }

  void Load(const std::string& xml, const std::string& name = "template.xml") {
    WriteFile(name, xml);
    WillChoose(name);
    Press(Ctrl::LoadFromFile);
  }
  void OpenText(const std::string& text, const std::string& name = "input.txt") {
    WriteFile(name, text);
    WillChoose(name);
    Press(Ctrl::OpenInput);
  }
  /// A template for lines "a" and "b", applied to a file that has one of each and another line.
  void LoadAndOpen() {
    Load(TemplateFor("a|b"));
    OpenText("a\nx\nb\n");
    ASSERT_EQ(Flags(), "applied");
    ASSERT_TRUE(dialogs.boxes.empty()) << dialogs.boxes.front();
  }
  /// Modifies the template by a new record; results are stale then.
  void AddStaleRecord() {
    const std::uint32_t flags = Engine().GetAutoApplicationFlags();
    Engine().SetAutoApplicationFlags(0);
    Choose(Records(), Cmd::AppendNew);
    Engine().SetAutoApplicationFlags(flags);
  }
  /// Has a command of the list's context menu done, asked for at the first selected row.
  void Choose(CTNParserListCtrl& list, Cmd command) {
    const std::vector<int> rows = list.GetSelectedRows();
    QPoint place = BelowRows(list);
    if (!rows.empty()) {
      const QModelIndex cell = list.model()->index(rows.front(), 0);
      list.scrollTo(cell);
      place = list.visualRect(cell).center();
    }
    RightClick(*list.viewport(), place);
    ChooseCommand(command);
    Settle();
  }
  static QPoint BelowRows(const QTableView& list) { return {5, list.viewport()->height() - 3}; }
  static void Click(QTableView& list, int row, int column,
                    Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    const QModelIndex cell = list.model()->index(row, column);
    list.scrollTo(cell);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, modifiers, list.visualRect(cell).center());
    Settle();
  }
  /// Edits the cell as with F2, and ends by Return.
  static void Type(CTNParserListCtrl& list, int row, int column, const QString& text) {
    ASSERT_TRUE(list.BeginEdit(list.model()->index(row, column)));
    auto* const edit = dynamic_cast<CTNInPlaceEdit*>(list.GetEditor());
    ASSERT_NE(edit, nullptr);
    edit->setText(text);
    QTest::keyClick(edit, Qt::Key_Return);
    Settle();
  }
  /// Chooses an entry of the cell's combo box by its text.
  static void Pick(CTNParserListCtrl& list, int row, int column, const QString& text) {
    ASSERT_TRUE(list.BeginEdit(list.model()->index(row, column)));
    Settle();
    auto* const combo = dynamic_cast<QComboBox*>(list.GetEditor());
    ASSERT_NE(combo, nullptr);
    const int entry = combo->findText(text);
    ASSERT_GE(entry, 0) << text.toStdString();
    QTest::keyClick(combo->view(), Qt::Key_Home);
    for (int i = 0; i < entry; ++i)
      QTest::keyClick(combo->view(), Qt::Key_Down);
    QTest::keyClick(combo->view(), Qt::Key_Return);
    Settle();
  }

  // What the user sees.

  template <class View>
  View& ViewOf() {
    return *Dialog().template findChild<View*>();
  }
  CTNTemplRecordListCtrl& Records() {
    return *FindControl<CTNTemplRecordListCtrl>(Dialog(), Ctrl::EntityRecords);
  }
  CTNTemplRecordListCtrl& Auxiliaries() {
    return *FindControl<CTNTemplRecordListCtrl>(Dialog(), Ctrl::AuxiliaryRecords);
  }
  CTNTemplRecFieldListCtrl& Fields() { return ViewOf<CTNTemplRecFieldListCtrl>(); }
  CTNTemplRecOutFieldListCtrl& Elements() { return ViewOf<CTNTemplRecOutFieldListCtrl>(); }
  CTNParserInFileListCtrl& Rows() { return ViewOf<CTNParserInFileListCtrl>(); }
  CTNTemplRecPropSheet& RecordSheet() { return ViewOf<CTNTemplRecPropSheet>(); }
  CTNInFilePropSheet& InputSheet() { return ViewOf<CTNInFilePropSheet>(); }
  void ShowResults(bool show) {
    InputSheet().SetActivePage(show ? 1 : 0);
    Settle();
  }
  void ShowPage(RecordPage page) {
    RecordSheet().SetActivePage(static_cast<int>(page));
    Settle();
  }

  static std::string Cell(const QTableView& list, int row, int column) {
    return list.model()->index(row, column).data().toString().toStdString();
  }
  /// A column of the list, from top to bottom.
  static Texts Column(const QTableView& list, int column) {
    Texts texts;
    for (int row = 0; row < list.model()->rowCount(); ++row)
      texts.push_back(Cell(list, row, column));
    return texts;
  }
  std::string TextOf(Ctrl edit) {
    return FindControl<QLineEdit>(Dialog(), edit)->text().toStdString();
  }
  bool IsEnabled(Ctrl button) { return FindControl<QPushButton>(Dialog(), button)->isEnabled(); }
  /// The six input file buttons that can be pressed, by their letters: "OCFAUE" in the order Open,
  /// Close, Find, Apply, oUtput, Edit; a dot for each that cannot.
  std::string Buttons() {
    std::string text;
    for (const auto& [number, letter] :
         {std::pair(Ctrl::OpenInput, 'O'), std::pair(Ctrl::CloseInput, 'C'),
          std::pair(Ctrl::FindTemplate, 'F'), std::pair(Ctrl::ApplyTemplate, 'A'),
          std::pair(Ctrl::OutputEntityList, 'U'), std::pair(Ctrl::EditInput, 'E')}) {
      text += IsEnabled(number) ? letter : '.';
    }
    return text;
  }
  std::string Flags() {
    std::string flags;
    for (const auto& [set, name] :
         {std::pair(InFile().IsApplied(), "applied"), std::pair(InFile().IsOutputDone(), "done"),
          std::pair(InFile().IsStale(), "stale")}) {
      if (set) flags += (flags.empty() ? "" : " ") + std::string(name);
    }
    return flags;
  }
  /// All that a cancelled workflow must leave as it was.
  std::string State() {
    std::string state = Flags() + (Engine().IsTemplateModified() ? " modified" : "") +
                        (Document().IsEmptyTemplate() ? " empty" : "") + '\n' + Buttons() + '\n' +
                        XmlText(Document()) + '\n' + Document().GetFilePath() + '\n' +
                        InFile().GetFilePath() + '\n' + InFile().GetOutputPath() + '\n';
    for (const Ctrl edit : {Ctrl::TemplateFile, Ctrl::TemplateTitle, Ctrl::InputFile})
      state += TextOf(edit) + '\n';
    for (const CTNParserListCtrl* list :
         {static_cast<CTNParserListCtrl*>(&Records()), static_cast<CTNParserListCtrl*>(&Fields()),
          static_cast<CTNParserListCtrl*>(&Elements()), static_cast<CTNParserListCtrl*>(&Rows())}) {
      for (int row = 0; row < list->model()->rowCount(); ++row) {
        for (int column = 0; column < list->model()->columnCount(); ++column)
          state += Cell(*list, row, column) + '|';
        state += list->IsRowSelected(row) ? "selected\n" : "\n";
      }
    }
    for (const std::string& name : Names())
      state += name + ": " + (IsDirectory(PathOf(name)) ? "folder" : BytesOf(name)) + '\n';
    for (const auto& [key, value] : host.profile)
      state += key + "=" + value + '\n';
    return state;
  }

  FakeHostApp host;
  FakeUserDialogs dialogs;

 private:
  std::unique_ptr<CTNFileParserDlg> m_dialog;
};

}  // namespace bomparser::test
