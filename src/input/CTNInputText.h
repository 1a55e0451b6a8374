#pragma once

#include "tnbase/GrowArray.h"
#include "tnbase/MappedFile.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace bomparser {

/// The text that blocks refer to: bytes that never change, shared by everybody who looks at them.
/// Behind the last byte stands a line feed and more readable bytes (kSlack in all), so that a run
/// of characters needs no end test and short values can be copied in one go.
class CTNInputText {
 public:
  static constexpr std::uint32_t kSlack = 64;
  /// Positions are 32-bit numbers with a sign.
  static constexpr std::uint32_t kMaxSize = 0x7FFFFFFF;
  /// Whoever makes a text of bytes has this room behind them: a line feed may be added to it.
  static constexpr std::size_t kRoomBehind = std::size_t{kSlack} + 1;

  /// A copy of `text`. Throws std::bad_alloc when it is too long or there is no room for it.
  static std::shared_ptr<const CTNInputText> Copy(std::string_view text);
  /// Takes the bytes over; adds the slack. Throws std::bad_alloc when there is no room for it.
  static std::shared_ptr<const CTNInputText> Adopt(GrowArray<char> bytes);
  /// Takes the first `size` bytes of the file over, which has kRoomBehind behind them.
  static std::shared_ptr<const CTNInputText> Adopt(MappedFile file, std::size_t size);
  /// The same text with a line feed behind it; the bytes are shared. Throws std::bad_alloc when it
  /// is too long.
  static std::shared_ptr<const CTNInputText> WithLineFeed(
      const std::shared_ptr<const CTNInputText>& text);

  const char* Data() const { return m_data; }
  std::uint32_t Size() const { return m_size; }
  std::string_view View() const { return {Data(), m_size}; }
  /// False once a mapped file has been cut short: the text is not what it was, and nothing that was
  /// made of it counts.
  bool IsIntact() const;

 private:
  struct Storage;
  CTNInputText(std::shared_ptr<const Storage> storage, std::uint32_t size);
  static std::shared_ptr<const CTNInputText> Make(std::shared_ptr<const Storage> storage,
                                                  std::uint32_t size) {
    return std::shared_ptr<const CTNInputText>(new CTNInputText(std::move(storage), size));
  }

  std::shared_ptr<const Storage> m_storage;
  const char* m_data;
  std::uint32_t m_size;
};

}  // namespace bomparser
