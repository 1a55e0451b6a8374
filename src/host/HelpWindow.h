#pragma once

#include "ui/controls/CTNHostApp.h"
#include "ui/controls/SearchDirection.h"

#include <QUrl>
#include <QWidget>

class QTextBrowser;

namespace bomparser {

class FindLine;

/// The window of the manual. It can be used while a dialog is open that holds up all other windows,
/// and stands above that. Its size is kept in the profile.
///
/// Keys: Alt+Left and Alt+Right go back and forward, Alt+Home to the contents, Ctrl+F finds, F3 and
/// Shift+F3 find again, Escape closes.
class HelpWindow final : public QWidget {
  Q_OBJECT

 public:
  /// The profile is not owned and lives longer.
  HelpWindow(CTNHostApp& profile, QUrl contents);
  ~HelpWindow() override;

  /// Shows a page, at the place that the address names, above whatever is open.
  void ShowPage(const QUrl& page);

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void BuildControls();
  void ColourLinks();
  void AddKeys();
  /// Makes this window belong to the dialog that holds up all others, so that it does not hold up
  /// this one.
  void StandAboveDialog();
  void GoTo(const QUrl& page);
  void Find(SearchDirection direction);
  void RestoreSize();
  void StoreSize();

  CTNHostApp& m_profile;
  QUrl m_contents;
  QTextBrowser* m_text;
  FindLine* m_findLine;
};

}  // namespace bomparser
