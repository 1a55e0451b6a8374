#pragma once

#include "ui/controls/EntityListModel.h"

#include <QString>
#include <QWidget>

class QLabel;
class QLineEdit;

namespace bomparser {

/// The line below a view in which a text to find is typed. Enter and Shift+Enter find the next and
/// the previous place, Escape closes the line. What finding means is the listener's affair.
class FindLine final : public QWidget {
  Q_OBJECT

 public:
  explicit FindLine(QWidget* parent = nullptr);

  /// Shows the line, its text selected, the focus in it.
  void Open();
  QString GetText() const;
  void ShowOutcome(bool found);

 signals:
  void Searched(bomparser::SearchDirection direction);
  /// The line was closed; the focus belongs to the view again.
  void Closed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void OnEnter(bool shift);
  void Close();

  QLineEdit* m_what;
  QLabel* m_outcome;
};

}  // namespace bomparser
