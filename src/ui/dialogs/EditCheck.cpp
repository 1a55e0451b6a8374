#include "ui/dialogs/EditCheck.h"

#include "tnbase/NumberText.h"
#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/DisplayText.h"

#include <QLineEdit>
#include <QLocale>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>

namespace bomparser {
namespace {

/// True for an integer of any size.
bool IsWrittenAsInteger(const QString& text) {
  QString digits = text.trimmed();
  if (digits.startsWith(u'-') || digits.startsWith(u'+')) digits.remove(0, 1);
  const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
  return !digits.isEmpty() && std::all_of(digits.begin(), digits.end(), isDigit);
}

bool IsWrittenAsNumber(const QString& text) {
  static const QRegularExpression kNumber(
      QStringLiteral("^\\s*[+-]?(\\d+\\.?\\d*|\\.\\d+)(e[+-]?\\d+)?\\s*$"),
      QRegularExpression::CaseInsensitiveOption);
  return kNumber.match(text).hasMatch();
}

template <class Number>
bool IsWithin(NumberRange<Number> range, Number value) {
  return value >= range.lowest && value <= range.highest;
}

}  // namespace

bool EditCheck::Refuse(QLineEdit& edit, const std::string& text) const {
  UserDialogs().Ask(&edit, {m_caption, ToDisplayText(text), BoxIcon::Warning});
  edit.setFocus();
  edit.selectAll();
  return false;
}

bool EditCheck::IsShortEnough(QLineEdit& edit, int mostCharacters) const {
  if (edit.text().toUcs4().size() <= mostCharacters) return true;
  return Refuse(edit, FormatMessageText(Msg::EnterFewerCharacters, mostCharacters));
}

bool EditCheck::ReadInteger(QLineEdit& edit, NumberRange<int> range, int& value) const {
  if (!IsWrittenAsInteger(edit.text())) return Refuse(edit, GetMessageText(Msg::EnterInteger));
  int read = 0;
  if (!ParseInt32(ToBytes(edit.text()), read) || !IsWithin(range, read)) {
    return Refuse(edit, FormatMessageText(Msg::EnterIntegerBetween, range.lowest, range.highest));
  }
  value = read;
  return true;
}

bool EditCheck::ReadNumber(QLineEdit& edit, NumberRange<double> range, double& value) const {
  double read = 0;
  const bool parsed = ParseDouble(ToBytes(edit.text()), read);
  if (!parsed && !IsWrittenAsNumber(edit.text())) {
    return Refuse(edit, GetMessageText(Msg::EnterNumber));
  }
  if (!parsed || !IsWithin(range, read)) {
    return Refuse(edit, FormatMessageText(Msg::EnterNumberBetween, ToBytes(EditText(range.lowest)),
                                          ToBytes(EditText(range.highest))));
  }
  value = read;
  return true;
}

QString EditText(double value) {
  constexpr double kSmall = 1e-6;
  constexpr double kLarge = 1e15;
  const double size = std::abs(value);
  const bool plain = size == 0 || (size >= kSmall && size < kLarge);
  return QString::number(value, plain ? 'f' : 'g', QLocale::FloatingPointShortest);
}

}  // namespace bomparser
