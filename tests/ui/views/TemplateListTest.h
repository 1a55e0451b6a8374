#pragma once

#include "tests/support/EngineTest.h"
#include "tests/ui/support/UiTest.h"
#include "ui/controls/CTNInPlaceEdit.h"
#include "ui/controls/CTNParserComboBox.h"
#include "ui/controls/Icons.h"
#include "ui/views/CTNTemplateListCtrl.h"

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QClipboard>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QVBoxLayout>
#include <string>
#include <vector>

namespace bomparser::test {

using Lines = std::vector<std::string>;
using Rows = std::vector<int>;

/// A template list in a window, an engine behind it, and hands that use mouse and keys.
class TemplateListTest : public EngineTestIn<TestFolder> {
 protected:
  static constexpr const char* kCaption = "BOM Parser";

  /// Takes the list into the window, shows that, and writes down what the list tells.
  void Show(CTNTemplateListCtrl& list) {
    m_list = &list;
    m_layout->addWidget(&list);
    m_layout->addWidget(neighbour);
    window.setFocusPolicy(Qt::ClickFocus);
    window.resize(900, 320);
    window.show();
    QApplication::setActiveWindow(&window);
    list.setFocus();
    m_tester = std::make_unique<QAbstractItemModelTester>(
        list.model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    QObject::connect(&list, &CTNTemplateListCtrl::TemplateEdited, &list,
                     [this](std::uint32_t kinds) { Tell("edited " + std::to_string(kinds)); });
    QObject::connect(&list, &CTNTemplateListCtrl::RepaintWanted, &list,
                     [this] { Tell("repaint"); });
    QObject::connect(&list, &CTNParserListCtrl::CommandChosen, &list, [this](Cmd command) {
      Tell("command " + std::to_string(static_cast<int>(command)));
    });
    Settle();
  }
  void Tell(const std::string& what) { told.push_back(what); }

  // What the list shows.

  template <class Column>
  QModelIndex Cell(int row, Column column) const {
    return m_list->model()->index(row, static_cast<int>(column));
  }
  template <class Column>
  std::string Text(int row, Column column) const {
    return Cell(row, column).data().toString().toStdString();
  }
  /// The texts of a row, separated by bars.
  std::string RowText(int row) const {
    std::string text;
    for (int column = 0; column < m_list->model()->columnCount(); ++column)
      text += (column > 0 ? "|" : "") + Text(row, column);
    return text;
  }
  Lines RowTexts() const {
    Lines rows;
    for (int row = 0; row < m_list->model()->rowCount(); ++row)
      rows.push_back(RowText(row));
    return rows;
  }
  Lines Titles() const {
    Lines titles;
    for (int column = 0; column < m_list->model()->columnCount(); ++column)
      titles.push_back(Title(column).toStdString());
    return titles;
  }
  QString Title(int column) const {
    return m_list->model()->headerData(column, Qt::Horizontal).toString();
  }
  /// "text on background" as hexadecimal numbers, or "theme".
  template <class Column>
  std::string Colours(int row, Column column) const {
    const QVariant text = Cell(row, column).data(Qt::ForegroundRole);
    const QVariant back = Cell(row, column).data(Qt::BackgroundRole);
    EXPECT_EQ(text.isValid(), back.isValid()) << "one colour without the other";
    if (!text.isValid()) return "theme";
    return (text.value<QColor>().name() + " on " + back.value<QColor>().name()).toStdString();
  }
  /// "valid", "note" or "invalid", as the picture of the row says.
  std::string StateOf(int row) const {
    const auto picture = [](const QIcon& icon) { return icon.pixmap(16, 16).toImage(); };
    const QImage shown = picture(Cell(row, 0).data(Qt::DecorationRole).value<QIcon>());
    if (shown == picture(Icon(IconId::Valid))) return "valid";
    if (shown == picture(Icon(IconId::Note))) return "note";
    return shown == picture(Icon(IconId::Invalid)) ? "invalid" : "no picture";
  }
  std::string ToolTip(int row) const {
    return Cell(row, 0).data(Qt::ToolTipRole).toString().toStdString();
  }

  // What the user does.

  template <class Column>
  QPoint At(int row, Column column) const {
    m_list->scrollTo(Cell(row, column));
    return m_list->visualRect(Cell(row, column)).center();
  }
  template <class Column>
  void Click(int row, Column column, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mouseClick(m_list->viewport(), Qt::LeftButton, modifiers, At(row, column));
    Settle();
  }
  template <class Column>
  void DoubleClick(int row, Column column) {
    Click(row, column);
    QTest::mouseDClick(m_list->viewport(), Qt::LeftButton, Qt::NoModifier, At(row, column));
    QTest::mouseRelease(m_list->viewport(), Qt::LeftButton, Qt::NoModifier, At(row, column));
    Settle();
  }
  /// Selects the rows by a click and clicks with Control, where no list has an editor.
  void ClickRows(const Rows& rows) {
    constexpr int kFixedColumn = 3;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    m_list->clearSelection();
    for (const int row : rows) {
      Click(row, kFixedColumn, modifiers);
      modifiers = Qt::ControlModifier;
    }
  }
  template <class Column>
  CTNInPlaceEdit* OpenText(int row, Column column) {
    Click(row, column);
    return dynamic_cast<CTNInPlaceEdit*>(m_list->GetEditor());
  }
  template <class Column>
  CTNParserComboBox* OpenCombo(int row, Column column) {
    Click(row, column);
    return qobject_cast<CTNParserComboBox*>(m_list->GetEditor());
  }
  /// Types the text in place of the one that the cell's editor opens with.
  template <class Column>
  void Type(int row, Column column, const QString& text) {
    CTNInPlaceEdit* const edit = OpenText(row, column);
    ASSERT_NE(edit, nullptr) << "no text editor opened";
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
    Settle();
  }
  /// The same for texts that test keys cannot type.
  template <class Column>
  void Paste(int row, Column column, const QString& text) {
    CTNInPlaceEdit* const edit = OpenText(row, column);
    ASSERT_NE(edit, nullptr) << "no text editor opened";
    QApplication::clipboard()->setText(text);
    QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Return);
    Settle();
  }
  /// Clicks the entry in the drop-down of the cell.
  template <class Column>
  void Choose(int row, Column column, const QString& entry) {
    ChooseIn(OpenCombo(row, column), entry);
  }
  static void ChooseIn(CTNParserComboBox* box, const QString& entry) {
    ASSERT_NE(box, nullptr) << "no combo box opened";
    const QModelIndex index = box->model()->index(box->findText(entry), 0);
    ASSERT_TRUE(index.isValid()) << "no entry " << entry.toStdString();
    box->view()->scrollTo(index);
    QTest::mouseClick(box->view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      box->view()->visualRect(index).center());
    Settle();
  }
  void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(m_list, static_cast<Qt::Key>(key), modifiers);
    Settle();
  }
  /// The menu that a right click on the row opens; -1 is the area without rows.
  std::string MenuAt(int row) {
    RightClickRow(row);
    QMenu* const menu = OpenMenu();
    if (menu == nullptr) return "no menu";
    std::string text = MenuText(*menu);
    menu->close();
    Settle();
    return text;
  }
  /// Has the command of the menu done that a right click on the row opens.
  void Command(int row, Cmd command) {
    RightClickRow(row);
    ChooseCommand(command);
  }
  void RightClickRow(int row) {
    QWidget& viewport = *m_list->viewport();
    const QPoint point = row >= 0 ? At(row, 0) : QPoint(5, viewport.height() - 3);
    // Keys and mouse meet the list; context menus of its viewport are handed on to it.
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, viewport.mapToGlobal(point));
    QApplication::sendEvent(&viewport, &event);
    Settle();
  }
  /// Drags the selected rows of a list to a point of a list and lets go. False where that is
  /// refused.
  static bool Drop(CTNParserListCtrl& source, CTNParserListCtrl& target, const QPoint& point) {
    DraggedRows rows(source);
    QDragEnterEvent enter(point, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(target.viewport(), &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent drop(point, Qt::MoveAction, &rows, Qt::LeftButton, Qt::NoModifier);
    drop.ignore();
    QApplication::sendEvent(target.viewport(), &drop);
    Settle();
    return drop.isAccepted();
  }
  bool DropOnRow(int row) { return Drop(*m_list, *m_list, At(row, 0)); }
  bool DropBelowLastRow() {
    return Drop(*m_list, *m_list, QPoint(5, m_list->viewport()->height() - 3));
  }

  FakeUserDialogs dialogs;
  FakeHostApp host;
  Lines told;  // What the list told, in order.
  QWidget window;
  QLineEdit* neighbour = new QLineEdit;

 private:
  QVBoxLayout* m_layout = new QVBoxLayout(&window);
  CTNTemplateListCtrl* m_list = nullptr;
  std::unique_ptr<QAbstractItemModelTester> m_tester;
};

}  // namespace bomparser::test
