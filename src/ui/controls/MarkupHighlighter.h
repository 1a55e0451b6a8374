#pragma once

#include "ui/controls/EntityListText.h"

#include <QSyntaxHighlighter>
#include <QTextCharFormat>
#include <utility>
#include <vector>

class QPalette;

namespace bomparser {

/// Colours the markup of an entity list. Which part of the text is markup is known from laying it
/// out: in the text itself a value may look the same.
class MarkupHighlighter final : public QSyntaxHighlighter {
  Q_OBJECT

 public:
  explicit MarkupHighlighter(QTextDocument* document);

  /// For the text that the document gets next.
  void SetMarkup(std::vector<MarkupRange> markup) { m_markup = std::move(markup); }
  /// Takes colours that can be read on the palette's background.
  void SetColours(const QPalette& palette);

 protected:
  void highlightBlock(const QString& text) override;

 private:
  std::vector<MarkupRange> m_markup;
  QTextCharFormat m_entityFormat;
  QTextCharFormat m_valueFormat;
};

}  // namespace bomparser
