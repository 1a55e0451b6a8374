#pragma once

#include "ui/controls/DisplayText.h"

namespace bomparser {

/// A message as the text of a button or label, where Alt and the letter lead to it: the letter's
/// first place in the text is marked. A text without it stays unmarked.
inline QString WithMnemonic(Msg id, char letter) {
  QString text = LabelText(id);
  const qsizetype place = text.indexOf(QLatin1Char(letter), 0, Qt::CaseInsensitive);
  if (place >= 0) text.insert(place, u'&');
  return text;
}

}  // namespace bomparser
