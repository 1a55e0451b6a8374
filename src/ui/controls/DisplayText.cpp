#include "ui/controls/DisplayText.h"

#include "tnbase/TextEncoding.h"

#include <QStringList>
#include <QTextDocument>
#include <algorithm>

namespace bomparser {
namespace {

bool HasLongLine(const QString& text) {
  constexpr qsizetype kWrappedFrom = 100;
  return std::ranges::any_of(text.split(u'\n'),
                             [](const QString& line) { return line.size() > kWrappedFrom; });
}

}  // namespace

QString ToDisplayText(std::string_view bytes) {
  if (!IsUtf8(bytes)) return QString::fromStdString(Windows1252ToUtf8(bytes));
  return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

QString AsToolTip(const QString& text) {
  constexpr qsizetype kMost = 1000;
  QString tip = text.left(kMost);
  if (tip.size() < text.size()) {
    if (tip.back().isHighSurrogate()) tip.chop(1);
    tip += u'\u2026';
  }
  // Only markup is wrapped.
  if (!Qt::mightBeRichText(tip) && !HasLongLine(tip)) return tip;
  return QStringLiteral("<p style='white-space: pre-wrap'>%1</p>").arg(tip.toHtmlEscaped());
}

}  // namespace bomparser
