#pragma once

#include "input/CTNInputText.h"
#include "tnbase/InputSource.h"

#include <memory>
#include <string>

namespace bomparser {

/// A text file opened for shared reading. In its text every CR LF pair is one line feed; all other
/// bytes, a CR on its own and NUL among them, are as they are in the file.
class CTNTextFile {
 public:
  /// Files of this many bytes and more are refused.
  static constexpr std::uint64_t kTooLong = std::uint64_t{1} << 31;

  bool Open(const std::string& path, std::string& error);
  void Close();
  bool IsOpen() const { return m_source.IsOpen(); }
  void SetFilePath(const std::string& path) { m_path = path; }
  const std::string& GetFilePath() const { return m_path; }
  /// The file name without its folder.
  std::string GetFileTitle() const;
  std::uint64_t GetLength() const { return m_source.GetLength(); }

  /// The whole text as it is now. A pipe or device is read once and its text kept, so is any text
  /// between HoldText(true) and HoldText(false). Null with `error` when it cannot be read. Throws
  /// std::bad_alloc.
  std::shared_ptr<const CTNInputText> ReadAll(std::string& error);
  /// While on, the file is not read again: for trying many templates on one text.
  void HoldText(bool on);
  /// Whether long files are mapped into memory and not read, which is faster. What others write to
  /// the file meanwhile may show in the text then, and who uses the text asks
  /// CTNInputText::IsIntact before what was made of it counts.
  void SetMapping(bool on) { m_mapping = on; }

 protected:
  /// The error of a file that is refused for its length.
  std::string TooLongText() const;

 private:
  std::shared_ptr<const CTNInputText> MapAll();

  InputSource m_source;
  std::string m_path;
  bool m_hold = false;
  bool m_mapping = false;
  std::shared_ptr<const CTNInputText> m_kept;
};

}  // namespace bomparser
