#pragma once

#include "tests/support/EngineTest.h"
#include "tests/ui/support/UiTest.h"
#include "ui/views/CTNParserInFileModel.h"

#include <QAbstractItemModel>
#include <string>
#include <vector>

namespace bomparser::test {

/// Numbers as users see them, from 1.
using LineNumbers = std::vector<int>;

/// An engine with a small file that has rows of every kind, for views of it.
class InputViewTest : public EngineTestIn<TestFolder> {
 protected:
  static constexpr const char* kText =
      "made by a tool\n"    // Ignored.
      "R1\t10k\n"           // E1
      "R2 22k\n"            // E1
      "Title of board\n"    // A1
      "Module\n two\n x\n"  // E2, three rows.
      "junk\n"              // Unmatched.
      "\n"                  // A blank line is unmatched as well.
      "R3 47k\n";           // E1

  InputViewTest() {
    engine.SetSideCopy(SideCopy::No);
    MakeTemplate();
  }

  void MakeTemplate() {
    Document().SetBeginRow(2);
    AddRecord(Document(), RecordKind::Part, "resistor", {String("R"), Scan(), Newline()},
              {Designator("F2"), PartNumber()});
    AddRecord(Document(), RecordKind::Part, "module",
              {String("Module"), Newline(), Scan(), Newline(), Scan(), Newline()},
              {Designator("F3"), PartNumber()});
    AddRecord(Document(), RecordKind::MultipleMatch, "title", {String("Title"), Scan(), Newline()});
    Relink(Document());
  }
  void ApplyTo(const std::string& text) {
    Open(text);
    ASSERT_EQ(Apply(), "ok");
  }

  /// One row as "1|resistor (E1)|R1      10k".
  static std::string RowText(const QAbstractItemModel& model, int row) {
    std::string text;
    for (int column = 0; column < model.columnCount(); ++column) {
      if (column > 0) text += '|';
      text += model.index(row, column).data().toString().toStdString();
    }
    return text;
  }
  static std::vector<std::string> Rows(const QAbstractItemModel& model) {
    std::vector<std::string> rows;
    for (int row = 0; row < model.rowCount(); ++row)
      rows.push_back(RowText(model, row));
    return rows;
  }
  /// The line numbers shown.
  static std::vector<int> Numbers(const QAbstractItemModel& model) {
    std::vector<int> numbers;
    for (int row = 0; row < model.rowCount(); ++row)
      numbers.push_back(model.index(row, 0).data().toInt());
    return numbers;
  }
  static std::string ColourOf(const QAbstractItemModel& model, int row, int column, int role) {
    const QVariant colour = model.index(row, column).data(role);
    return colour.isValid() ? colour.value<QBrush>().color().name().toStdString() : "none";
  }
  /// Until everything is there that comes later.
  static bool WaitForScan(const CTNParserInFileModel& model) {
    return QTest::qWaitFor([&model] { return !model.IsScanning() && !model.HasLateRows(); },
                           60'000);
  }
};

/// Many lines "R<number> value" with an unmatched line every `every` lines, from the first on.
inline std::string ManyLines(int count, int every) {
  std::string text = "ignored\n";
  for (int i = 1; i < count; ++i) {
    text += (i % every == 1 ? "junk " : "R") + std::to_string(i) + " value\n";
  }
  return text;
}

}  // namespace bomparser::test
