#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace bomparser {

class CTNInputText;
class CTNParsedBlockPtrArray;
struct ApplicationPurpose;
class CTNStringCharBuffIter;

/// Which lines of an input file a template translates.
struct LineLimits {
  std::int32_t ignoreBefore = 1;  // First line that is translated, from 1.
  std::int32_t ignoreAfter = 0;   // Above 0: pieces counted from the top; below: from the end.
};

/// A template as the input file sees it. Played by CTNParserTemplate.
///
/// Order of calls: BeginApplication, TakeIgnoredLine for each leading line, ParseFile,
/// TakeIgnoredLine for each trailing line, EndApplication. A cancelled application is not ended:
/// the template then still stands for the results of the one before.
class CTNTemplateToApply {
 public:
  virtual LineLimits GetLineLimits() const = 0;
  /// True for a template that holds nothing yet: applying it only reads the file.
  virtual bool IsEmptyTemplate() const = 0;
  virtual std::string GetTemplateFileName() const = 0;
  /// Starts a result over the text in `blocks`. Throws std::bad_alloc when memory runs out.
  virtual void BeginApplication(const std::shared_ptr<const CTNInputText>& text,
                                CTNParsedBlockPtrArray& blocks,
                                const ApplicationPurpose& purpose) = 0;
  /// Makes a block of the line [line, lineEnd), matched against the ignored-lines record, and adds
  /// it. Returns its position, or -1 when the user has cancelled. Throws std::bad_alloc.
  virtual std::ptrdiff_t TakeIgnoredLine(std::uint32_t line, std::uint32_t lineEnd,
                                         CTNParsedBlockPtrArray& blocks) = 0;
  /// Cuts the text from the cursor's position to its end limit into blocks. On failure `error`
  /// says why, or is left as it was; `cancelled` is set when the user has cancelled.
  virtual bool ParseFile(CTNStringCharBuffIter& text, CTNParsedBlockPtrArray& blocks,
                         std::string& error, bool& cancelled) = 0;
  /// The results are those of `blocks` from now on: single matches and current values follow.
  virtual void EndApplication(const CTNParsedBlockPtrArray& blocks) = 0;

 protected:
  ~CTNTemplateToApply() = default;
};

}  // namespace bomparser
