#include "input/MessageTexts.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <fmt/args.h>
#include <fmt/printf.h>
#include <memory>
#include <optional>

namespace bomparser {

namespace {

struct TableEntry {
  std::uint32_t number;
  std::string_view text;
};

constexpr TableEntry kTable[] = {
#define MESSAGE(name, number, text) {number, text},
#include "res/messages.def"
#undef MESSAGE
};
constexpr std::size_t kTableSize = std::size(kTable);

constexpr bool IsTableSorted() {
  for (std::size_t i = 1; i < kTableSize; ++i) {
    if (kTable[i].number <= kTable[i - 1].number) {
      return false;
    }
  }
  return true;
}
static_assert(IsTableSorted(), "messages.def is searched by number: sorted, each number once");

// Filled on demand and never destroyed, so that a text can be asked for while other static objects
// are made or destroyed. What the pointers lead to stays reachable and ends with the process,
// unless it is freed before.
constinit std::array<std::atomic<const std::string*>, kTableSize> g_texts{};

const std::string& EmptyText() {
  static const std::string* const s_empty = new std::string();
  return *s_empty;
}

/// Two threads may make the same text at the same time; the first one stays, for both.
const std::string& Remember(std::size_t index) {
  auto made = std::make_unique<const std::string>(kTable[index].text);
  const std::string* stored = nullptr;
  if (g_texts[index].compare_exchange_strong(stored, made.get(), std::memory_order_acq_rel)) {
    return *made.release();
  }
  return *stored;
}

using FormatArguments = fmt::dynamic_format_arg_store<fmt::printf_context>;

/// Nothing when the format and the arguments do not fit together.
std::optional<std::string> FormatPrintf(std::string_view format,
                                        std::initializer_list<MessageArgument> arguments) {
  FormatArguments store;
  for (const MessageArgument& argument : arguments) {
    std::visit([&store](const auto& value) { store.push_back(value); }, argument.Get());
  }
  try {
    return fmt::vsprintf(fmt::string_view(format.data(), format.size()),
                         fmt::basic_format_args<fmt::printf_context>(store));
  } catch (const fmt::format_error&) {
    return std::nullopt;
  }
}

bool IsDecimalDigit(char c) { return c >= '0' && c <= '9'; }

/// A numbered placeholder as it stands in a text: "%2!d!" has the number 2, the format "d" and the
/// length 5.
struct NumberedInsert {
  std::size_t number = 0;
  std::string_view format = "s";
  std::size_t length = 0;
};

/// `text` starts with a percent sign and a digit from 1 to 9.
NumberedInsert ReadInsert(std::string_view text) {
  NumberedInsert insert;
  insert.number = static_cast<std::size_t>(text[1] - '0');
  insert.length = 2;
  if (text.size() > 2 && IsDecimalDigit(text[2])) {
    insert.number = insert.number * 10 + static_cast<std::size_t>(text[2] - '0');
    insert.length = 3;
  }
  if (insert.length == text.size() || text[insert.length] != '!') {
    return insert;
  }
  const std::size_t begin = insert.length + 1;
  const std::size_t end = text.find('!', begin);
  if (end != std::string_view::npos) {
    insert.format = text.substr(begin, end - begin);
    insert.length = end + 1;
  }
  return insert;
}

void AppendInsert(std::string& out, std::string_view written, const NumberedInsert& insert,
                  std::initializer_list<MessageArgument> arguments) {
  std::optional<std::string> filled;
  if (insert.number <= arguments.size()) {
    const MessageArgument& argument = *(arguments.begin() + insert.number - 1);
    const bool isNumber = std::holds_alternative<std::int64_t>(argument.Get());
    const bool asText = insert.format == "s";
    filled = FormatPrintf(isNumber && asText ? "%d" : "%" + std::string(insert.format), {argument});
  }
  out += filled ? std::string_view(*filled) : written;
}

/// What a percent sign and the character behind it stand for, where they are no placeholder.
char EscapedCharacter(char c) {
  switch (c) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    default:
      return c;
  }
}

}  // namespace

const std::string& GetMessageText(std::uint32_t id) {
  const TableEntry* const entry =
      std::lower_bound(std::begin(kTable), std::end(kTable), id,
                       [](const TableEntry& e, std::uint32_t number) { return e.number < number; });
  if (entry == std::end(kTable) || entry->number != id) {
    return EmptyText();
  }
  const auto index = static_cast<std::size_t>(entry - std::begin(kTable));
  const std::string* const stored = g_texts[index].load(std::memory_order_acquire);
  return stored != nullptr ? *stored : Remember(index);
}

const std::string& GetMessageText(Msg id) { return GetMessageText(static_cast<std::uint32_t>(id)); }

void EmptyMessageTexts() {
  for (std::atomic<const std::string*>& text : g_texts) {
    const std::unique_ptr<const std::string> freed(
        text.exchange(nullptr, std::memory_order_acq_rel));
  }
}

std::string FormatMessageText(Msg id, std::initializer_list<MessageArgument> arguments) {
  const std::string& text = GetMessageText(id);
  return FormatPrintf(text, arguments).value_or(text);
}

std::string FormatNumberedMessage(Msg id, std::initializer_list<MessageArgument> arguments) {
  return FormatNumberedText(GetMessageText(id), arguments);
}

std::string FormatNumberedText(std::string_view text,
                               std::initializer_list<MessageArgument> arguments) {
  std::string out;
  std::size_t i = 0;
  while (i < text.size()) {
    if (text[i] != '%' || i + 1 == text.size()) {
      out += text[i++];
      continue;
    }
    const char next = text[i + 1];
    if (next == '0') {
      break;
    }
    if (IsDecimalDigit(next)) {
      const NumberedInsert insert = ReadInsert(text.substr(i));
      AppendInsert(out, text.substr(i, insert.length), insert, arguments);
      i += insert.length;
    } else {
      out += EscapedCharacter(next);
      i += 2;
    }
  }
  return out;
}

}  // namespace bomparser
