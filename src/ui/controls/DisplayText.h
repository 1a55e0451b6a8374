#pragma once

#include "input/MessageTexts.h"

#include <QString>
#include <string>
#include <string_view>

namespace bomparser {

/// The text that bytes of an input file or a template are shown as: UTF-8, or windows-1252 where
/// they are no UTF-8. The bytes themselves stay what they are.
QString ToDisplayText(std::string_view bytes);

/// The text as a tool tip: none of it is markup, it is wrapped, and a very long one is cut.
QString AsToolTip(const QString& text);

/// What the user typed, as it is stored.
inline std::string ToBytes(const QString& text) { return text.toStdString(); }

/// A message of the table.
inline QString MessageText(Msg id) { return ToDisplayText(GetMessageText(id)); }

/// The same where an "&" must not become a mnemonic: button and label texts are made of it.
inline QString LabelText(Msg id) { return MessageText(id).replace(u'&', QStringLiteral("&&")); }

}  // namespace bomparser
