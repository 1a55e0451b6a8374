#pragma once

#include "ui/controls/CTNDlg.h"

#include <QString>
#include <vector>

class QCheckBox;
class QGridLayout;
class QLineEdit;

namespace bomparser {

class CTNFileParserEngine;

/// Edits the settings that steer the engine: the tab stop, the folder that templates are searched
/// in, and which edits apply the template again at once. OK stores them in the engine only.
class CTNDlgParserAppSettings final : public CTNDlg {
  Q_OBJECT

 public:
  /// The caption begins with the main dialog's title. Host and engine are not owned and live
  /// longer. Without an engine the dialog does not open: it ends as if it had been cancelled.
  CTNDlgParserAppSettings(CTNHostApp& host, CTNFileParserEngine* engine, const QString& mainTitle,
                          QWidget* parent = nullptr);

  int exec() override;
  void setVisible(bool visible) override;
  void accept() override;

 private:
  void BuildControls();
  QWidget* BuildViewGroup();
  QWidget* BuildPathGroup();
  QWidget* BuildTriggerGroup();
  QWidget* BuildButtons();
  void AddTriggers(QGridLayout& grid, int firstRow);
  QWidget* BuildSelectButtons();
  void LoadValues();
  void StoreSearchPath();
  void CheckAll(bool checked);
  void OnBrowse();
  void OnHelp();

  CTNFileParserEngine* m_engine;
  QString m_mainTitle;
  QLineEdit* m_tabStop = nullptr;
  QLineEdit* m_searchPath = nullptr;
  std::vector<QCheckBox*> m_triggers;  // In the order of their table.
};

}  // namespace bomparser
