#pragma once

#include "input/CTNInputText.h"
#include "input/CTNParserCharBuffIter.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace bomparser {

/// The cursor over a text of its own. The bytes are shared until a different character is put
/// back; only then are they copied.
class CTNStringCharBuffIter final : public CTNParserCharBuffIter {
 public:
  CTNStringCharBuffIter() : CTNStringCharBuffIter(std::string_view{}) {}
  /// Copies the text; position 0, end limit at its length.
  explicit CTNStringCharBuffIter(std::string_view text);
  explicit CTNStringCharBuffIter(std::shared_ptr<const CTNInputText> text);

  bool GetNext(char& c) override;
  void PutBack(const char& c) override;
  std::uint32_t GetPosition() const override { return static_cast<std::uint32_t>(m_position); }
  void SetPosition(std::uint32_t position) override { m_position = position; }
  void OnTextMoved() override {}
  std::uint32_t GetEnd() const override { return m_end; }
  bool ReadLine(std::string& line) override;

  /// Replaces the text; position 0, end limit at its length.
  void SetText(std::shared_ptr<const CTNInputText> text);
  void SetEnd(std::uint32_t end) { m_end = end; }
  const std::shared_ptr<const CTNInputText>& GetText() const { return m_text; }

 private:
  std::shared_ptr<const CTNInputText> m_text;
  // Wide enough for reads behind the end of the longest text; below 0 after a put back too many.
  std::int64_t m_position = 0;
  std::uint32_t m_end = 0;
};

}  // namespace bomparser
