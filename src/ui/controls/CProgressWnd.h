#pragma once

#include "ui/controls/CTNHostApp.h"

#include <QPointer>
#include <QString>
#include <QWidget>
#include <optional>

class QLabel;
class QProgressBar;
class QPushButton;

namespace bomparser {

/// Whether the bar follows every position or grows block by block.
enum class BarLook { Blocks, Smooth };

/// Whether the Escape key cancels while events are pumped.
enum class EscapeKey { Ignored, Cancels };

/// A small window that stays on top while a long operation works on the interface's own thread: a
/// line of text, a bar and a Cancel button. Whoever works moves the bar, lets the window pump
/// events often enough, and stops once it is cancelled.
///
/// The host keeps where the window was, under two names that belong to no section.
class CProgressWnd final : public QWidget {
  Q_OBJECT

 public:
  /// A window that nobody sees yet. The host is not owned and lives longer.
  explicit CProgressWnd(CTNHostApp& host);
  ~CProgressWnd() override;

  /// Makes the window over its parent, or over the active window where there is none; it appears
  /// with the first position or when it is shown. The parent is not owned; it outlives the window.
  void Create(QWidget* parent, const QString& title, BarLook look);
  /// Keeps the user from the parent until the window is cancelled or goes.
  void GoModal();
  /// Shows the text as it is: nothing in it is a mnemonic or markup.
  void SetText(const QString& text);
  void SetRange(int lower, int upper, int step);
  /// Shows the window, moves the bar, and has the share of the range in the title. The share is
  /// the position over the size of the range, wherever that begins. Returns the position before.
  int SetPos(int position);
  /// One step on; returns the position before.
  int Step();
  /// Back to the start: no text, position 0, not cancelled.
  void Clear();
  bool Cancelled() const { return m_cancelled; }
  /// Handles the events that wait, round by round, for some milliseconds at most; no more rounds
  /// once the window is cancelled. A modal window takes the focus first.
  void PeekAndPump(EscapeKey escape);
  /// Cancels and hides the window; a modal one gives the parent back to the user.
  void Cancel();
  /// Ends the window: stores its position and gives the parent back. Does nothing a second time.
  void Destroy();
  void SetSavePosition(bool save) { m_savePosition = save; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildControls();
  void RestorePosition();
  void StorePosition();
  void CentreOverOwner();
  void TakeFocus();
  void ReleaseParent();
  void ShowShare();
  int BarPosition() const;

  CTNHostApp& m_host;
  QString m_caption;
  QLabel* m_text = nullptr;
  QProgressBar* m_bar = nullptr;
  QPushButton* m_cancel = nullptr;
  BarLook m_look = BarLook::Smooth;
  int m_lower = 0;
  int m_upper = 100;
  int m_position = 0;
  int m_step = 1;
  std::optional<int> m_percentShown;
  bool m_created = false;
  bool m_cancelled = false;
  bool m_modal = false;
  bool m_pumping = false;
  bool m_savePosition = true;
  QPointer<QWidget> m_disabled;     // The parent, when this window disabled it.
  QPointer<QWidget> m_focusBefore;  // What had the parent's focus then.
};

}  // namespace bomparser
