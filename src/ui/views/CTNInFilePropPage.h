#pragma once

#include "ui/controls/CTNPropPage.h"
#include "ui/views/CTNParserInFileListCtrl.h"

class QCheckBox;
class QLabel;
class QLineEdit;

namespace bomparser {

/// The page of the input file: the view with its display switches, a filter, and the way from one
/// unmatched line to the next.
class CTNInFilePropPage : public CTNPropPage {
  Q_OBJECT

 public:
  explicit CTNInFilePropPage(QWidget* parent = nullptr);

  CTNParserInFileListCtrl& GetList() { return *m_list; }
  const CTNParserInFileListCtrl& GetList() const { return *m_list; }

 public slots:
  /// Gives the view what the check boxes say and fills it anew.
  void ApplyDisplayOptions();

 signals:
  /// A check box was clicked: whoever owns the page has the view filled by ApplyDisplayOptions.
  void DisplayOptionsChanged();

 private:
  QWidget* MakeFilterRow();
  QWidget* MakeSwitchRow();
  QWidget* MakeStateRow();
  QCheckBox* MakeKindSwitch(Ctrl number, Msg text, char letter, std::uint32_t kind);
  QCheckBox* MakeSwitch(Ctrl number, Msg text, char letter, bool& state);
  void AddKeys();
  void OnFilterChanged();
  void ShowFilterError(const QString& error);
  void ShowCounts();
  void ShowSearch(UnmatchedFound found, SearchDirection direction);

  CTNParserInFileListCtrl* m_list;
  QLineEdit* m_filter = nullptr;
  QCheckBox* m_isExpression = nullptr;
  QAction* m_errorMark = nullptr;
  QLabel* m_status = nullptr;
  std::uint32_t m_kinds = kShowAllKinds;
  bool m_newlines = false;
  bool m_markup = false;
};

}  // namespace bomparser
