#pragma once

#include "input/CTNParsedBlockPtrArray.h"
#include "input/CTNParserErrorLog.h"
#include "input/CTNStringCharBuffIter.h"
#include "input/CTNTextFile.h"
#include "input/roles/CTNTemplateToApply.h"

#include <cstdint>
#include <memory>
#include <string>

namespace bomparser {

/// Whether an application shows its progress and can be cancelled.
enum class ShowProgress { No, Yes };

/// The input text file that templates are applied to, with the results of the latest application.
/// Owned by the engine and reused for every file that it opens.
class CTNParserInFile final : public CTNTextFile, public CTNParserArrayElement {
 public:
  explicit CTNParserInFile(CTNParserContext* context)
      : CTNParserArrayElement(context), m_blocks(context) {}

  /// Opens the file for reading; others may write it meanwhile. The end limit becomes the file's
  /// length where the text now held is that long: the new text comes with the next application.
  bool Open(const std::string& path, std::string& error);

  /// Reads the whole file into the text cursor and sets its end limit from "Ignore After": above 0
  /// that many pieces from the top are translated, below 0 the last so many are left, 0 is no
  /// limit. Pieces are lines, or parts of 254 characters of longer ones. A last line without a
  /// line feed gets one, unless the pieces are a multiple of 256. False with `error` when the
  /// file cannot be read. Throws std::bad_alloc.
  bool ReadText(std::int32_t ignoreAfter, std::string& error);
  /// The number of line feeds in the text that was read. One pass over the text.
  std::uint32_t CountLines() const;
  /// The number of pieces of the text that was read. One pass over the text.
  std::uint32_t CountPieces() const;

  /// One application of the template. On failure `error` says why and the blocks made so far stay;
  /// a cancelled one leaves results, text and flags as they were before it.
  bool ApplyTemplate(CTNTemplateToApply* toApply, std::string& error, bool& cancelled,
                     ShowProgress show, CTNFrontEnd* frontEnd,
                     const ApplicationPurpose& purpose = {});

  /// False with `error` when the file was cut short while its text was used: nothing that was made
  /// of the text counts then.
  bool IsTextIntact(std::string& error) const;

  /// The file's title up to its first ".".
  std::string GetTitleNoExtension() const;
  /// Back to the state after construction, the file closed.
  void CloseAndReset();

  bool IsApplied() const { return m_applied; }
  bool IsOutputDone() const { return m_outputDone; }
  bool IsStale() const { return m_stale; }
  void SetStale(bool stale) { m_stale = stale; }
  void SetOutputDone(bool done) { m_outputDone = done; }
  void SetOutputPath(std::string path) { m_outputPath = std::move(path); }
  const std::string& GetOutputPath() const { return m_outputPath; }
  const CTNParsedBlockPtrArray& GetBlocks() const { return m_blocks; }
  CTNInFileErrorLog& GetErrorLog() { return m_errorLog; }
  const CTNStringCharBuffIter& GetText() const { return m_text; }

 private:
  struct Application;
  struct Before;

  bool ScanOrBringBack(Application& run, bool& done);
  bool Scan(Application& run);
  bool Translate(Application& run, const LineLimits& limits);
  bool TakeIgnoredLines(Application& run, std::uint32_t count);
  bool TakeTrailingLines(Application& run);
  std::unique_ptr<CTNProgress> ShowWindow(CTNFrontEnd* frontEnd) const;
  void DescribeWork(const CTNTemplateToApply& toApply, CTNProgress& progress) const;

  bool m_applied = false;
  bool m_outputDone = false;
  bool m_stale = true;
  std::uint32_t m_lengthRead = 0;  // Of the text without the line feed that was added to it.
  CTNParsedBlockPtrArray m_blocks;
  std::string m_outputPath;
  CTNInFileErrorLog m_errorLog;
  CTNStringCharBuffIter m_text;
};

}  // namespace bomparser
