#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

namespace bomparser {

/// Every message by name; the value is its number. Generated from res/messages.def, where the texts
/// stand as well.
enum class Msg : std::uint32_t {
#define MESSAGE(name, number, text) name = number,
#include "res/messages.def"
#undef MESSAGE
};

/// One argument of a message. A text is referred to, not copied: it lives at least as long as the
/// call that formats it.
class MessageArgument {
 public:
  using Value = std::variant<std::int64_t, double, std::string_view>;

  MessageArgument(std::integral auto number) : m_value(static_cast<std::int64_t>(number)) {}
  MessageArgument(std::floating_point auto number) : m_value(static_cast<double>(number)) {}
  MessageArgument(const char* text) : m_value(std::string_view(text)) {}
  MessageArgument(const std::string& text) : m_value(std::string_view(text)) {}
  MessageArgument(std::string_view text) : m_value(text) {}

  const Value& Get() const { return m_value; }

 private:
  Value m_value;
};

/// The text with the number `id`, as it stands in the table. A number that the table does not hold
/// gives an empty text. Every call with the same number returns the same object, which never
/// changes and lives as long as the process, or until EmptyMessageTexts.
///
/// May be called before main() and after it, and from any thread.
const std::string& GetMessageText(std::uint32_t id);
const std::string& GetMessageText(Msg id);

/// Frees all texts that GetMessageText has returned, for a module that ends: nobody may hold one
/// any more. A text that is asked for afterwards is made anew, so it does not matter what else ends
/// later.
void EmptyMessageTexts();

/// The text of `id` with its printf-style placeholders ("%s", "%d", "%i", "%lf", "%.2f", "%%")
/// filled from the arguments in order. Numbers are written the same under every locale. A number
/// that the table does not hold gives an empty text, and nothing is stored for it. Arguments that
/// the placeholders have no use for are ignored; when one is missing or of the wrong kind, which is
/// a mistake of the caller, the text comes back as it stands in the table.
std::string FormatMessageText(Msg id, std::initializer_list<MessageArgument> arguments);

template <class... Arguments>
std::string FormatMessageText(Msg id, const Arguments&... arguments) {
  return FormatMessageText(id, std::initializer_list<MessageArgument>{arguments...});
}

/// `text` with its numbered placeholders filled: "%1!s!" and "%1" stand for the first argument,
/// "%2!d!" for the second, the part between the exclamation marks being a printf-style format
/// without its percent sign. "%%" is a percent sign, "%n" a line break, "%r" a carriage return,
/// "%0" ends the text, and any other character after a percent sign stands for itself. A
/// placeholder without an argument, or whose format does not suit it, stays as it is written.
std::string FormatNumberedText(std::string_view text,
                               std::initializer_list<MessageArgument> arguments);

/// The same with the text of `id`.
std::string FormatNumberedMessage(Msg id, std::initializer_list<MessageArgument> arguments);

}  // namespace bomparser
