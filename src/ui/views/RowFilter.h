#pragma once

#include <QRegularExpression>
#include <QString>

namespace bomparser {

/// Which rows of the input file are of interest: those with a text, or those that a regular
/// expression matches. Case does not count. A filter may be used from any thread.
class RowFilter {
 public:
  enum class Kind { Text, Expression };

  /// Lets every row pass.
  RowFilter() = default;
  /// An empty pattern lets every row pass.
  RowFilter(const QString& pattern, Kind kind);

  bool IsActive() const { return !m_pattern.isEmpty(); }
  /// Why the expression is none and where; empty when it is one.
  QString GetError() const;
  bool Accepts(const QString& text) const;

 private:
  QString m_pattern;
  Kind m_kind = Kind::Text;
  QRegularExpression m_expression;
};

}  // namespace bomparser
