#pragma once

#include <QDialog>
#include <QString>

class QTableView;

namespace bomparser {

class CTNParserErrorLog;

/// Shows all lines of an error log as a list, one row a line.
class CTNDlgErrorLog final : public QDialog {
  Q_OBJECT

 public:
  /// The log is read once, here; it may be null. The caption is the main dialog's title.
  CTNDlgErrorLog(const CTNParserErrorLog* log, const QString& mainTitle, QWidget* parent = nullptr);

  QSize sizeHint() const override;

 private:
  QTableView* BuildList(const CTNParserErrorLog* log);
};

}  // namespace bomparser
