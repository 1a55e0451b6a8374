#pragma once

#include <QWidget>

namespace bomparser {

/// One page of a CTNPropSheet. The sheet tells it when it becomes the active page and when it
/// ceases to be; it may have the controls that it can do without until then made at that time.
class CTNPropPage : public QWidget {
  Q_OBJECT

 public:
  explicit CTNPropPage(QWidget* parent = nullptr);

  bool IsActive() const { return m_active; }

 signals:
  /// The page is the active one now, and shows what it has to.
  void Activated();
  /// The page is no longer the active one.
  void Deactivated();

 protected:
  /// Called once, before the page becomes active for the first time.
  virtual void OnInitDialog() {}
  virtual void OnSetActive() {}
  virtual void OnKillActive() {}

 private:
  friend class CTNPropSheet;

  void SetActive();
  void KillActive();

  bool m_initialised = false;
  bool m_active = false;
};

}  // namespace bomparser
