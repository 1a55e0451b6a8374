#include "ui/controls/FileDialogLayout.h"

#include <QFileDialog>
#include <QFontMetrics>
#include <QHeaderView>
#include <QListView>
#include <QTreeView>

namespace bomparser {

void LayOutFileDialog(QFileDialog& dialog) {
  constexpr int kColumns = 120;
  constexpr int kRows = 28;
  const QFontMetrics metrics = dialog.fontMetrics();
  dialog.resize(kColumns * metrics.averageCharWidth(), kRows * metrics.lineSpacing());
  if (auto* places = dialog.findChild<QListView*>(QStringLiteral("sidebar"))) {
    places->setMinimumWidth(places->sizeHintForColumn(0) + 2 * places->frameWidth());
  }
  if (const auto* files = dialog.findChild<QTreeView*>(QStringLiteral("treeView"))) {
    QHeaderView& header = *files->header();
    for (int column = 1; column < header.count(); ++column)
      header.setSectionResizeMode(column, QHeaderView::ResizeToContents);
  }
}

}  // namespace bomparser
