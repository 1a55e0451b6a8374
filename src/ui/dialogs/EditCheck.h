#pragma once

#include <QString>
#include <string>
#include <utility>

class QLineEdit;

namespace bomparser {

/// The numbers that an edit takes, both ends included.
template <class Number>
struct NumberRange {
  Number lowest;
  Number highest;
};

/// Reads the edits of a dialog that is to end by OK. What an edit does not take is told of in one
/// box, and the edit gets the focus with its text selected: who asks stops there. Numbers are read
/// the same under every locale, blanks around them allowed.
class EditCheck {
 public:
  /// The caption is that of the box.
  explicit EditCheck(QString caption) : m_caption(std::move(caption)) {}

  /// True when the text has no more than so many characters.
  bool IsShortEnough(QLineEdit& edit, int mostCharacters) const;
  bool ReadInteger(QLineEdit& edit, NumberRange<int> range, int& value) const;
  bool ReadNumber(QLineEdit& edit, NumberRange<double> range, double& value) const;

 private:
  bool Refuse(QLineEdit& edit, const std::string& text) const;

  QString m_caption;
};

/// A number as an edit shows it: the shortest text that reads back as the same, without an exponent
/// where that is not unwieldy.
QString EditText(double value);

}  // namespace bomparser
