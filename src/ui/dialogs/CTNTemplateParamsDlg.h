#pragma once

#include "ui/controls/CTNDlg.h"

#include <QString>
#include <optional>

class QComboBox;
class QLineEdit;
class QRadioButton;

namespace bomparser {

class CTNParserTemplate;

/// Edits what belongs to a template as a whole: its title, its units and scale, and which lines of
/// an input file it leaves alone. OK stores all of it, once everything is in order, and tells
/// nobody: that is up to whoever ran the dialog.
class CTNTemplateParamsDlg final : public CTNDlg {
  Q_OBJECT

 public:
  /// Boxes carry the main dialog's title. Host and template are not owned and live longer.
  CTNTemplateParamsDlg(CTNHostApp& host, CTNParserTemplate& document, const QString& mainTitle,
                       QWidget* parent = nullptr);

  void accept() override;

 private:
  struct Values;

  void BuildControls();
  QWidget* BuildValues();
  QWidget* BuildFrom();
  void FillUnits();
  void LoadValues();
  std::optional<Values> ReadValues() const;
  bool IsOrderRight(const Values& values) const;
  void StoreValues(const Values& values);

  CTNParserTemplate& m_template;
  QString m_mainTitle;
  QLineEdit* m_title = nullptr;
  QComboBox* m_units = nullptr;
  QLineEdit* m_scale = nullptr;
  QLineEdit* m_ignoreBefore = nullptr;
  QLineEdit* m_ignoreAfter = nullptr;
  QRadioButton* m_fromBottom = nullptr;
  QRadioButton* m_fromTop = nullptr;
};

}  // namespace bomparser
