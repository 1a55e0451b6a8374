#pragma once

#include "tnbase/GrowArray.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace bomparser {

/// The text that blocks refer to: bytes that never change, shared by everybody who looks at them.
/// Behind the last byte stands a line feed and more readable bytes (kSlack in all), so that a run
/// of characters needs no end test and short values can be copied in one go.
class CTNInputText {
 public:
  static constexpr std::uint32_t kSlack = 64;
  /// Positions are 32-bit numbers with a sign.
  static constexpr std::uint32_t kMaxSize = 0x7FFFFFFF;

  /// A copy of `text`. Throws std::bad_alloc when it is too long or there is no room for it.
  static std::shared_ptr<const CTNInputText> Copy(std::string_view text);
  /// Takes the bytes over; adds the slack. Throws std::bad_alloc when there is no room for it.
  static std::shared_ptr<const CTNInputText> Adopt(GrowArray<char> bytes);

  /// The same text with a line feed behind it. Throws std::bad_alloc as Copy does.
  static std::shared_ptr<const CTNInputText> WithLineFeed(
      const std::shared_ptr<const CTNInputText>& text);

  const char* Data() const { return m_bytes.Data(); }
  std::uint32_t Size() const { return m_size; }
  std::string_view View() const { return {Data(), m_size}; }

  explicit CTNInputText(GrowArray<char> bytes);

 private:
  GrowArray<char> m_bytes;
  std::uint32_t m_size;
};

}  // namespace bomparser
