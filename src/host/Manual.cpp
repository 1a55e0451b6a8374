#include "host/Manual.h"

#include "ui/controls/Ids.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QWidget>
#include <utility>

namespace bomparser {
namespace {

QString AnchorOf(int number) { return QStringLiteral("control-%1").arg(number); }

/// Heading and paragraph behind an anchor, links as plain text: nothing can be clicked in a bubble.
QString FindEntry(const QString& page, const QString& anchor) {
  static const QRegularExpression s_link(QStringLiteral("</?a\\b[^>]*>"),
                                         QRegularExpression::CaseInsensitiveOption);
  const QRegularExpression entry(
      QStringLiteral("<h3>\\s*<a name=\"%1\"></a>(.*?)</h3>\\s*(<p>.*?</p>)").arg(anchor),
      QRegularExpression::DotMatchesEverythingOption | QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch found = entry.match(page);
  if (!found.hasMatch()) return {};
  QString text = QStringLiteral("<p><b>") + found.captured(1).trimmed() +
                 QStringLiteral("</b></p>") + found.captured(2);
  return text.remove(s_link);
}

QString ReadPage(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

}  // namespace

Manual::Manual(QString folder) : m_folder(std::move(folder)) {}

QString Manual::FindFolder() {
  const QDir program(QCoreApplication::applicationDirPath());
  QString beside = program.filePath(QStringLiteral("manual"));
  if (QFileInfo(beside).isDir()) return beside;
  return QDir::cleanPath(program.filePath(QStringLiteral("../share/bomparser/manual")));
}

QString Manual::GetPath(const QString& page) const { return m_folder + u'/' + page; }

QUrl Manual::GetIndex() const { return QUrl::fromLocalFile(GetPath(QStringLiteral("index.html"))); }

std::vector<QString> Manual::PagesAround(const QWidget* control) const {
  std::vector<QString> pages;
  for (const QWidget* around = control; around != nullptr; around = around->parentWidget()) {
    const DialogId number = GetDialogId(*around);
    if (number == DialogId::None) continue;
    const QString page = GetPath(QStringLiteral("window-%1.html").arg(static_cast<int>(number)));
    if (QFileInfo::exists(page)) pages.push_back(page);
  }
  return pages;
}

QUrl Manual::GetPageOf(const QWidget* control) const {
  const std::vector<QString> pages = PagesAround(control);
  return pages.empty() ? GetIndex() : QUrl::fromLocalFile(pages.front());
}

Manual::Entry Manual::GetEntry(const QWidget* control, int number) const {
  for (const QString& page : PagesAround(control)) {
    const QString text = FindEntry(ReadPage(page), AnchorOf(number));
    if (text.isEmpty()) continue;
    QUrl place = QUrl::fromLocalFile(page);
    place.setFragment(AnchorOf(number));
    return {place, text};
  }
  return {};
}

}  // namespace bomparser
