#include "host/HelpWindow.h"

#include "ui/controls/DisplayText.h"
#include "ui/controls/FindLine.h"
#include "ui/controls/Icons.h"
#include "ui/controls/Ids.h"
#include "ui/controls/Mnemonic.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QStyle>
#include <QTextBrowser>
#include <QTextCursor>
#include <QVBoxLayout>
#include <QWindow>
#include <utility>

namespace bomparser {
namespace {

QPushButton* MakeButton(Msg text, char mnemonic, Ctrl number, QStyle::StandardPixmap picture) {
  auto* const button = new QPushButton(WithMnemonic(text, mnemonic));
  button->setIcon(button->style()->standardIcon(picture));
  SetControlId(*button, number);
  return button;
}

}  // namespace

HelpWindow::HelpWindow(CTNHostApp& profile, QUrl contents)
    : m_profile(profile),
      m_contents(std::move(contents)),
      m_text(new QTextBrowser),
      m_findLine(new FindLine) {
  setWindowTitle(MessageText(Msg::ManualTitle));
  setWindowIcon(Icon(IconId::Program));
  // The program ends with its dialog.
  setAttribute(Qt::WA_QuitOnClose, false);
  BuildControls();
  ColourLinks();
  AddKeys();
  RestoreSize();
}

HelpWindow::~HelpWindow() {
  if (isVisible()) StoreSize();
}

void HelpWindow::BuildControls() {
  QPushButton* const back =
      MakeButton(Msg::ManualBack, 'B', Ctrl::ManualBack, QStyle::SP_ArrowBack);
  QPushButton* const forward =
      MakeButton(Msg::ManualForward, 'o', Ctrl::ManualForward, QStyle::SP_ArrowForward);
  QPushButton* const contents =
      MakeButton(Msg::ManualContents, 't', Ctrl::ManualContents, QStyle::SP_FileIcon);
  QPushButton* const find =
      MakeButton(Msg::FindCommand, 'i', Ctrl::ManualFind, QStyle::SP_FileDialogContentsView);
  auto* const buttons = new QHBoxLayout;
  for (QPushButton* button : {back, forward, contents, find})
    buttons->addWidget(button);
  buttons->addStretch();

  m_text->setOpenExternalLinks(true);
  m_text->setAccessibleName(MessageText(Msg::ManualTitle));
  SetControlId(*m_text, Ctrl::ManualText);
  m_findLine->hide();
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(buttons);
  layout->addWidget(m_text);
  layout->addWidget(m_findLine);

  back->setEnabled(false);
  forward->setEnabled(false);
  connect(m_text, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
  connect(m_text, &QTextBrowser::forwardAvailable, forward, &QPushButton::setEnabled);
  connect(back, &QPushButton::clicked, m_text, &QTextBrowser::backward);
  connect(forward, &QPushButton::clicked, m_text, &QTextBrowser::forward);
  connect(contents, &QPushButton::clicked, this, [this] { GoTo(m_contents); });
  connect(find, &QPushButton::clicked, m_findLine, &FindLine::Open);
  connect(m_findLine, &FindLine::Searched, this, &HelpWindow::Find);
  connect(m_findLine, &FindLine::Closed, m_text, [this] { m_text->setFocus(); });
}

/// Themes with dark windows may leave links dark blue, as if on paper.
void HelpWindow::ColourLinks() {
  constexpr int kMiddle = 128;
  constexpr QColor kLightBlue(0x6C, 0xB0, 0xFF);
  const QPalette colours = palette();
  QColor link = colours.color(QPalette::Link);
  if (colours.color(QPalette::Base).lightness() < kMiddle && link.lightness() <= kMiddle) {
    link = kLightBlue;
  }
  m_text->document()->setDefaultStyleSheet(QStringLiteral("a { color: %1; }").arg(link.name()));
}

void HelpWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::PaletteChange) return;
  const int place = m_text->verticalScrollBar()->value();
  ColourLinks();
  m_text->reload();
  m_text->verticalScrollBar()->setValue(place);
}

void HelpWindow::AddKeys() {
  const auto add = [this](const QKeySequence& keys, auto&& work) {
    connect(new QShortcut(keys, this), &QShortcut::activated, this, work);
  };
  add(QKeySequence(Qt::ALT | Qt::Key_Left), [this] { m_text->backward(); });
  add(QKeySequence(Qt::ALT | Qt::Key_Right), [this] { m_text->forward(); });
  add(QKeySequence(Qt::ALT | Qt::Key_Home), [this] { GoTo(m_contents); });
  add(QKeySequence::Find, [this] { m_findLine->Open(); });
  add(QKeySequence(Qt::Key_F3), [this] { Find(SearchDirection::Down); });
  add(QKeySequence(Qt::SHIFT | Qt::Key_F3), [this] { Find(SearchDirection::Up); });
}

void HelpWindow::ShowPage(const QUrl& page) {
  StandAboveDialog();
  if (isMinimized()) showNormal();
  show();
  // Once it is laid out: the place in the page is found by its height.
  GoTo(page);
  raise();
  activateWindow();
  m_text->setFocus();
}

void HelpWindow::GoTo(const QUrl& page) {
  if (QFileInfo::exists(page.toLocalFile())) {
    m_text->setSource(page);
  } else {
    const std::string path = page.toLocalFile().toStdString();
    m_text->setPlainText(ToDisplayText(FormatMessageText(Msg::ManualMissing, path)));
  }
}

void HelpWindow::StandAboveDialog() {
  winId();  // Makes the system's window.
  QWidget* const dialog = QApplication::activeModalWidget();
  QWindow* const above = dialog != nullptr ? dialog->windowHandle() : nullptr;
  if (windowHandle()->transientParent() == above) return;
  windowHandle()->setTransientParent(above);
  // When that dialog goes, the one below it holds up everything again.
  if (above != nullptr) {
    connect(above, &QObject::destroyed, this, &HelpWindow::StandAboveDialog, Qt::QueuedConnection);
  }
}

bool HelpWindow::event(QEvent* event) {
  if (event->type() == QEvent::WindowBlocked) StandAboveDialog();
  return QWidget::event(event);
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void HelpWindow::closeEvent(QCloseEvent* event) {
  StoreSize();
  QWidget::closeEvent(event);
}

void HelpWindow::Find(SearchDirection direction) {
  const QString what = m_findLine->GetText();
  if (what.isEmpty()) return;
  const bool up = direction == SearchDirection::Up;
  const auto flags = up ? QTextDocument::FindBackward : QTextDocument::FindFlags();
  bool found = m_text->find(what, flags);
  if (!found) {
    // Goes on at the other end.
    const QTextCursor before = m_text->textCursor();
    m_text->moveCursor(up ? QTextCursor::End : QTextCursor::Start);
    found = m_text->find(what, flags);
    if (!found) m_text->setTextCursor(before);
  }
  m_findLine->ShowOutcome(found);
}

void HelpWindow::RestoreSize() {
  constexpr QSize kFirstSize(760, 640);
  constexpr QSize kSmallest(200, 150);
  const auto stored = [this](Msg key, int fallback) {
    return m_profile.GetProfileInt(GetMessageText(Msg::HelpWindowSection), GetMessageText(key),
                                   fallback);
  };
  const QSize size(stored(Msg::HelpWidthKey, kFirstSize.width()),
                   stored(Msg::HelpHeightKey, kFirstSize.height()));
  resize(size.expandedTo(kSmallest).boundedTo(screen()->availableSize()));
}

void HelpWindow::StoreSize() {
  if (isMaximized() || isMinimized()) return;
  const std::string& section = GetMessageText(Msg::HelpWindowSection);
  m_profile.WriteProfileInt(section, GetMessageText(Msg::HelpWidthKey), width());
  m_profile.WriteProfileInt(section, GetMessageText(Msg::HelpHeightKey), height());
}

}  // namespace bomparser
