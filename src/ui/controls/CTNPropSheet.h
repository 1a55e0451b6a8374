#pragma once

#include "ui/controls/CTNPropPage.h"

#include <QPointer>
#include <QString>
#include <QWidget>
#include <vector>

class QHBoxLayout;
class QPushButton;
class QTabWidget;

namespace bomparser {

/// What distinguishes one property sheet from another.
struct SheetOptions {
  /// Every page becomes active once before the user sees the sheet, so that all have their
  /// controls.
  bool activateAllPages = false;
  /// The sheet is part of a dialog, which has the buttons.
  bool embedded = false;
  bool hideApply = false;
  /// The text of one more button; empty for none.
  QString extraButton = {};
};

enum class SheetButton { Ok, Cancel, Help, Apply, Extra };

/// Pages under tabs, one of them active at a time, above a row of buttons.
class CTNPropSheet : public QWidget {
  Q_OBJECT

 public:
  explicit CTNPropSheet(const SheetOptions& options, QWidget* parent = nullptr);
  ~CTNPropSheet() override;

  /// Adds a page behind the others. The sheet owns it.
  void AddPage(CTNPropPage* page, const QString& text);
  int GetPageCount() const;
  /// Null where there is no such page.
  CTNPropPage* GetPage(int index) const;
  /// -1 as long as there is none.
  int GetActiveIndex() const;
  void SetActivePage(int index);
  /// Null for a button that the sheet does not have.
  QPushButton* GetButton(SheetButton button) const;

  /// Makes the current page active, which is the first one unless another was chosen; where the
  /// options say so, then the others in turn and the first once more. Done once, at the latest when
  /// the sheet is first shown. Until then no page is active.
  void Initialise();

 signals:
  void ButtonClicked(bomparser::SheetButton button);

 protected:
  /// Called by Initialise behind all else that it does.
  virtual void OnInitDialog() {}
  QTabWidget& GetTabControl() const { return *m_tabs; }

  void showEvent(QShowEvent* event) override;

 private:
  void AddButtons();
  void AddButton(SheetButton button, const QString& text);
  void LayOutButtons();
  void OnCurrentChanged();
  void ActivateAllPages();

  SheetOptions m_options;
  QTabWidget* m_tabs;
  QHBoxLayout* m_buttonRow;
  std::vector<QPushButton*> m_buttons;  // By SheetButton; null for those that are absent.
  QPointer<CTNPropPage> m_active;
  bool m_initialised = false;
};

}  // namespace bomparser
