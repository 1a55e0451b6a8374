#include "ui/views/RowFilter.h"

#include "ui/controls/DisplayText.h"

namespace bomparser {

RowFilter::RowFilter(const QString& pattern, Kind kind) : m_pattern(pattern), m_kind(kind) {
  if (kind == Kind::Expression) {
    m_expression = QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption);
    m_expression.optimize();
  }
}

QString RowFilter::GetError() const {
  if (m_expression.isValid()) return {};
  return ToDisplayText(FormatMessageText(Msg::InvalidExpression,
                                         m_expression.errorString().toStdString(),
                                         m_expression.patternErrorOffset() + 1));
}

bool RowFilter::Accepts(const QString& text) const {
  if (!IsActive()) return true;
  if (m_kind == Kind::Text) return text.contains(m_pattern, Qt::CaseInsensitive);
  return m_expression.match(text).hasMatch();
}

}  // namespace bomparser
