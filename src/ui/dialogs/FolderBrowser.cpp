#include "ui/dialogs/FolderBrowser.h"

#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/DisplayText.h"
#include "ui/controls/FileDialogLayout.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

namespace bomparser {

FolderBrowser::FolderBrowser(const QString& prompt, const QString& folder, QWidget* parent)
    : QFileDialog(parent, prompt) {
  // The platform's own browsers check paths themselves.
  setOption(DontUseNativeDialog);
  setOption(ShowDirsOnly);
  setFileMode(Directory);
  setDirectory(QFileInfo(folder).isDir() ? folder : QDir::currentPath());
  LayOutFileDialog(*this);
}

QString FolderBrowser::GetFolder() const {
  const QStringList chosen = selectedFiles();
  return chosen.isEmpty() ? QString() : QDir::toNativeSeparators(chosen.front());
}

void FolderBrowser::accept() {
  if (QFileInfo(GetFolder()).isDir()) {
    QFileDialog::accept();
    return;
  }
  UserDialogs().Ask(
      this, {MessageText(Msg::ErrorCaption), MessageText(Msg::InvalidPath), BoxIcon::Error});
}

}  // namespace bomparser
