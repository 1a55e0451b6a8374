#include "ui/controls/MarkupHighlighter.h"

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QTextBlock>
#include <algorithm>

namespace bomparser {
namespace {

struct Colours {
  QColor entity;
  QColor value;
};

Colours ColoursOn(const QColor& background) {
  constexpr int kMiddle = 128;
  if (background.lightness() < kMiddle) return {QColor(0x8a, 0xb4, 0xf8), QColor(0x9c, 0xcc, 0x65)};
  return {QColor(0x20, 0x4a, 0x87), QColor(0x3d, 0x6b, 0x0b)};
}

}  // namespace

MarkupHighlighter::MarkupHighlighter(QTextDocument* document) : QSyntaxHighlighter(document) {
  m_entityFormat.setFontWeight(QFont::Bold);
}

void MarkupHighlighter::SetColours(const QPalette& palette) {
  const QColor background = palette.color(QPalette::Base);
  const Colours colours = ColoursOn(background);
  for (QTextCharFormat* const format : {&m_entityFormat, &m_valueFormat}) {
    format->setBackground(background);
  }
  m_entityFormat.setForeground(colours.entity);
  m_valueFormat.setForeground(colours.value);
  rehighlight();
}

void MarkupHighlighter::highlightBlock(const QString& text) {
  const qsizetype start = currentBlock().position();
  const qsizetype end = start + text.size();
  auto range = std::ranges::lower_bound(m_markup, start, {}, &MarkupRange::start);
  for (; range != m_markup.end() && range->start < end; ++range) {
    setFormat(static_cast<int>(range->start - start), static_cast<int>(range->length),
              range->kind == MarkupKind::Entity ? m_entityFormat : m_valueFormat);
  }
}

}  // namespace bomparser
