#pragma once

#include <QString>
#include <QUrl>
#include <vector>

class QWidget;

namespace bomparser {

/// The manual as it lies on the disk: pages of HTML, among them one for each window, in which every
/// control has its heading and a paragraph:
///
///   window-702.html
///     <h3><a name="control-3006"></a>Load From File ...</h3><p>Opens a template ...</p>
class Manual {
 public:
  /// The folder need not exist.
  explicit Manual(QString folder);

  /// manual/ beside the running program, or ../share/bomparser/manual.
  static QString FindFolder();

  QUrl GetIndex() const;
  /// The page of the innermost window around the control that has one; the index where none has.
  /// Null is no control.
  QUrl GetPageOf(const QWidget* control) const;

  /// What a page says about one control.
  struct Entry {
    QUrl place;    // Where it stands.
    QString text;  // Heading and paragraph, as markup; empty when no page knows the control.
  };
  /// Looked up in the pages of the windows around the control, the innermost first.
  Entry GetEntry(const QWidget* control, int number) const;

 private:
  QString GetPath(const QString& page) const;
  std::vector<QString> PagesAround(const QWidget* control) const;

  QString m_folder;
};

}  // namespace bomparser
