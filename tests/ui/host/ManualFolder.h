#pragma once

#include "tests/support/TestFolder.h"
#include "ui/controls/Ids.h"

#include <QString>
#include <QWidget>
#include <string>

namespace bomparser::test {

/// A small manual: an index, the pages of the main dialog (702) and of its input file page (744).
class ManualFolder : public TestFolder {
 protected:
  ManualFolder() {
    WriteFile(
        "index.html",
        "<html><body><h1>Contents</h1><p><a href=\"window-702.html\">main</a></p></body></html>");
    WriteFile("window-702.html",
              "<html><body><h1>The main window</h1>\n<p>" + std::string(8000, 'x') + "</p>\n" +
                  Entry(3006, "Load From File ...",
                        "Opens a <b>template</b>, see <a href=\"index.html\">there</a>.") +
                  Entry(9, "Help", "Opens this manual.") +
                  Entry(3003, "Lines", "As the main window has it.") + "</body></html>");
    WriteFile("window-744.html", "<html><body><h1>The input file page</h1>" +
                                     Entry(3003, "Lines", "All lines of the file.") +
                                     "</body></html>");
  }
  static std::string Entry(int number, const std::string& name, const std::string& text) {
    return "<h3><a name=\"control-" + std::to_string(number) + "\"></a>" + name + "</h3>\n<p>" +
           text + "</p>\n";
  }
  QString ManualPath() const { return QString::fromStdString(Folder()); }
  std::string PageUrl(const std::string& page) const { return "file://" + PathOf(page); }

  static QWidget* MakeChild(QWidget& parent, Ctrl number) {
    auto* const child = new QWidget(&parent);
    SetControlId(*child, number);
    return child;
  }
};

}  // namespace bomparser::test
