#pragma once

#include "ui/controls/EntityListModel.h"
#include "ui/controls/EntityListText.h"

#include <QString>
#include <QWidget>
#include <cstddef>
#include <string>

class QPlainTextEdit;
class QStackedLayout;
class QTableView;

namespace bomparser {

class FindLine;
class MarkupHighlighter;

/// Shows the entity list in a file: laid out and highlighted in a text view or, where it is too
/// large for one, as a list with an entity a row. Any other file is shown as it is.
///
/// Keys: Ctrl+F opens the line for finding, F3 and Shift+F3 find again, Ctrl+C copies.
class CTNWebBrowser2 : public QWidget {
  Q_OBJECT

 public:
  /// Files and lines up to here, in bytes and in characters, are shown in the text view.
  static constexpr std::size_t kLargestText = 2 * 1024 * 1024;
  static constexpr qsizetype kLongestLine = 20'000;

  explicit CTNWebBrowser2(QWidget* parent = nullptr);
  ~CTNWebBrowser2() override;

  /// Shows the file as it is now. When it was the one shown before, what of it is in sight stays
  /// so; what was selected does not. False when it cannot be read; the reason is shown in its
  /// place.
  bool Navigate(const std::string& path);
  /// Shows nothing.
  void Clear();
  /// Shows nothing but the reason why there is nothing to show.
  void ShowFailure(const QString& reason);

  void Find(SearchDirection direction);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void SetUpTextView();
  void SetUpRowView();
  void AddKeys();
  void Show(ViewedFile file);
  void ShowText(EntityListText text);
  void ShowRows(ViewedFile file);
  void OpenFindLine();
  bool FindInText(const QString& text, SearchDirection direction);
  bool FindInRows(const QString& text, SearchDirection direction);
  void SelectRow(int row);
  void CopyRows();

  QStackedLayout* m_views;
  QPlainTextEdit* m_text;
  MarkupHighlighter* m_highlighter;
  QTableView* m_rows;
  EntityListModel* m_model;
  FindLine* m_findLine;
  std::string m_path;  // Of the file that is shown; empty when none is.
};

}  // namespace bomparser
