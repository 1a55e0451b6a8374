#pragma once

#include <QFileDialog>
#include <QString>

namespace bomparser {

/// Asks for a folder, chosen in the list or typed. A typed path that leads to none is told of, and
/// the browser stays.
class FolderBrowser final : public QFileDialog {
  Q_OBJECT

 public:
  /// Starts in the folder, or in the current one when there is no such folder.
  FolderBrowser(const QString& prompt, const QString& folder, QWidget* parent = nullptr);

  /// The chosen folder, once the browser was accepted.
  QString GetFolder() const;

 protected:
  void accept() override;
};

}  // namespace bomparser
