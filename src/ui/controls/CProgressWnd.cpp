#include "ui/controls/CProgressWnd.h"

#include "ui/controls/Ids.h"
#include "ui/controls/Mnemonic.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QCloseEvent>
#include <QDeadlineTimer>
#include <QFontMetrics>
#include <QGridLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <algorithm>
#include <cstdint>

namespace bomparser {
namespace {

constexpr int kHundred = 100;
constexpr int kWidth = 390;
constexpr int kWindowMargin = 10;
constexpr int kBarBlocks = 20;
// Something in the application may always have another event ready, as a timer without delay has.
constexpr int kLongestPumpMs = 10;

/// A line of text that ends in dots where there is no room for it.
class LineLabel final : public QLabel {
 public:
  using QLabel::QLabel;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const QString line = fontMetrics().elidedText(text(), Qt::ElideRight, width());
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, line);
  }
};

}  // namespace

CProgressWnd::CProgressWnd(CTNHostApp& host)
    : m_host(host), m_caption(MessageText(Msg::ProgressCaption)) {
  setWindowTitle(m_caption);
  BuildControls();
}

CProgressWnd::~CProgressWnd() { Destroy(); }

void CProgressWnd::BuildControls() {
  setFont(QApplication::font("QMessageBox"));
  setCursor(Qt::ArrowCursor);
  setFocusPolicy(Qt::StrongFocus);

  m_text = new LineLabel;
  m_text->setTextFormat(Qt::PlainText);
  m_text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  SetControlId(*m_text, Ctrl::ProgressText);

  m_bar = new QProgressBar;
  m_bar->setTextVisible(false);  // The title tells it.
  m_bar->setValue(0);
  m_bar->setAccessibleName(m_caption);
  SetControlId(*m_bar, Ctrl::ProgressBar);

  m_cancel = new QPushButton(WithMnemonic(Msg::ProgressCancel, 'C'));
  // The window keeps the focus: who types on while it appears must not cancel by a blank.
  m_cancel->setFocusPolicy(Qt::NoFocus);
  m_cancel->setAccessibleName(MessageText(Msg::ProgressCancel).trimmed());
  SetControlId(*m_cancel, Ctrl::Cancel);
  connect(m_cancel, &QPushButton::clicked, this, &CProgressWnd::Cancel);

  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(kWindowMargin, kWindowMargin, kWindowMargin, 2 * kWindowMargin);
  layout->setSpacing(kWindowMargin);
  layout->addWidget(m_text, 0, 0, 1, 2);
  layout->addWidget(m_bar, 1, 0);
  layout->addWidget(m_cancel, 1, 1);
  layout->setColumnStretch(0, 1);
}

void CProgressWnd::Create(QWidget* parent, const QString& title, BarLook look) {
  if (parent == nullptr) parent = QApplication::activeWindow();
  setParent(parent != nullptr ? parent->window() : nullptr,
            Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                Qt::WindowStaysOnTopHint);
  m_caption = title;
  m_percentShown.reset();
  m_look = look;
  m_created = true;
  setWindowTitle(m_caption);
  resize(kWidth, sizeHint().height());
  RestorePosition();
}

void CProgressWnd::RestorePosition() {
  const int x = m_host.GetProfileInt({}, GetMessageText(Msg::ProgressXKey), -1);
  const int y = m_host.GetProfileInt({}, GetMessageText(Msg::ProgressYKey), -1);
  const QSize screen = QGuiApplication::primaryScreen()->geometry().size();
  if (x >= 0 && x < screen.width() && y >= 0 && y < screen.height()) {
    move(x, y);
  } else {
    CentreOverOwner();
  }
}

void CProgressWnd::CentreOverOwner() {
  const QRect owner = parentWidget() != nullptr ? parentWidget()->frameGeometry()
                                                : QGuiApplication::primaryScreen()->geometry();
  QRect centred(QPoint(0, 0), size());
  centred.moveCenter(owner.center());
  move(centred.topLeft());
}

void CProgressWnd::StorePosition() {
  m_host.WriteProfileInt({}, GetMessageText(Msg::ProgressXKey), x());
  m_host.WriteProfileInt({}, GetMessageText(Msg::ProgressYKey), y());
}

void CProgressWnd::GoModal() {
  QWidget* const parent = parentWidget();
  m_modal = true;
  if (parent == nullptr) return;
  // Disabled alone, the parent could still be closed.
  setWindowModality(Qt::WindowModal);
  if (parent->isEnabled()) {
    m_disabled = parent;
    m_focusBefore = parent->focusWidget();
    parent->setEnabled(false);
  }
  setEnabled(true);
}

void CProgressWnd::SetText(const QString& text) { m_text->setText(text); }

void CProgressWnd::SetRange(int lower, int upper, int step) {
  m_lower = lower;
  m_upper = upper;
  m_step = step;
  // Without an extent the bar would say that nobody knows how long it takes.
  m_bar->setRange(lower, std::max(upper, lower + 1));
  m_bar->setValue(BarPosition());
}

int CProgressWnd::SetPos(int position) {
  if (m_created && isHidden()) show();
  const int before = m_position;
  m_position = position;
  ShowShare();
  m_bar->setValue(BarPosition());
  return before;
}

int CProgressWnd::Step() { return SetPos(m_position + m_step); }

void CProgressWnd::ShowShare() {
  if (m_upper <= m_lower) return;
  // The lower bound is not taken off the position; every caller begins at 0.
  const std::int64_t range = std::int64_t{m_upper} - m_lower;
  const int percent = static_cast<int>(std::int64_t{m_position} * kHundred / range);
  if (percent == m_percentShown) return;
  m_percentShown = percent;
  setWindowTitle(
      ToDisplayText(FormatMessageText(Msg::ProgressTitleFormat, m_caption.toStdString(), percent)));
}

int CProgressWnd::BarPosition() const {
  const int position = std::clamp(m_position, m_bar->minimum(), m_bar->maximum());
  if (m_look == BarLook::Smooth) return position;
  const int block = std::max(1, (m_bar->maximum() - m_bar->minimum()) / kBarBlocks);
  return position - (position - m_bar->minimum()) % block;
}

void CProgressWnd::Clear() {
  m_text->clear();
  m_position = 0;
  m_bar->setValue(BarPosition());
  m_cancelled = false;
  repaint();
}

void CProgressWnd::TakeFocus() {
  if (!m_modal || hasFocus()) return;
  // Another application that the user works in meanwhile keeps what it has.
  if (QGuiApplication::applicationState() == Qt::ApplicationActive) activateWindow();
  setFocus();
}

void CProgressWnd::PeekAndPump(EscapeKey escape) {
  TakeFocus();
  if (m_cancelled) return;
  m_pumping = true;
  if (escape == EscapeKey::Cancels) qApp->installEventFilter(this);
  const QPointer<CProgressWnd> alive(this);  // Its parent may be closed for good meanwhile.
  const QDeadlineTimer deadline(kLongestPumpMs);
  // A round at a time: what comes behind a cancel waits.
  while (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) {
    if (alive.isNull() || m_cancelled || deadline.hasExpired()) break;
  }
  if (alive.isNull()) return;
  qApp->removeEventFilter(this);
  m_pumping = false;
  if (m_cancelled && m_modal) Destroy();
}

bool CProgressWnd::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
    return QWidget::eventFilter(watched, event);
  Cancel();
  return true;
}

void CProgressWnd::closeEvent(QCloseEvent* event) {
  Cancel();
  event->accept();
}

void CProgressWnd::Cancel() {
  m_cancelled = true;
  hide();
  // While events are pumped the work has not stopped yet: the parent stays disabled until no other
  // waiting event can reach it.
  if (m_modal && !m_pumping) Destroy();
  if (QWidget* owner = parentWidget()) {
    owner->raise();
    owner->activateWindow();
  }
}

void CProgressWnd::Destroy() {
  if (!m_created) return;
  m_created = false;
  if (m_savePosition) StorePosition();
  if (m_modal) ReleaseParent();
  hide();
}

void CProgressWnd::ReleaseParent() {
  m_modal = false;
  if (!m_disabled) return;
  m_disabled->setEnabled(true);
  if (m_focusBefore) m_focusBefore->setFocus();
  if (isActiveWindow()) m_disabled->activateWindow();
}

}  // namespace bomparser
