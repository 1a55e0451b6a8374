#pragma once

#include "input/CTNParsedFileBlock.h"
#include "input/roles/CTNFrontEnd.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace bomparser {

/// What an application is for: a result that is shown and written, or its counts alone.
enum class ResultUse { Kept, Counted };

/// The purpose of an application.
struct ApplicationPurpose {
  static constexpr std::uint32_t kNoLimit = 0xFFFFFFFF;

  ApplicationPurpose(ResultUse resultUse = ResultUse::Kept, std::uint32_t most = kNoLimit,
                     unsigned threadCount = 1)
      : use(resultUse), mostUnmatched(most), threads(threadCount) {}

  ResultUse use;
  /// The application is given up, as done, once it has more unmatched blocks than this.
  std::uint32_t mostUnmatched;
  /// How many threads may work on it, 1 or more. The result is the same for any number.
  unsigned threads;
  /// Threads share the text in pieces of this many bytes, 1 or more; one of less than four is left
  /// to one thread.
  std::uint32_t pieceSize = 256U << 10;
};

/// The blocks of one application in file order. A copy shares them: keeping an old result while a
/// new one is made is keeping a copy of the array.
class CTNParsedBlockPtrArray {
 public:
  explicit CTNParsedBlockPtrArray(CTNParserContext* context) : m_context(context) {}

  /// The engine that the blocks belong to, or null. Not owned.
  CTNParserContext* GetContext() const { return m_context; }

  /// Starts over with an empty result over the text; the old one stays with whoever shares it.
  /// Of an application for its counts alone, blocks are counted and not kept.
  CTNParsedResult& Begin(std::shared_ptr<const CTNInputText> text,
                         std::shared_ptr<const CTNParsedLayout> layout,
                         const ApplicationPurpose& purpose = {});
  /// The result under construction; Begin comes first.
  CTNParsedResult& GetBuilding() { return *m_building; }
  /// Appends the block over [text, textEnd) with the element bytes from `elements` on, and tells
  /// the watching progress of its rows. Returns its position, or -1 when the user has cancelled:
  /// the block is not added then. Throws std::bad_alloc when memory runs out.
  std::ptrdiff_t Add(std::uint32_t text, std::uint32_t textEnd, std::uint32_t elements,
                     std::uint32_t record, std::uint32_t rows);

  std::size_t GetSize() const { return m_result ? m_result->GetBlockCount() : 0; }
  /// A view of one block. An index outside the array throws std::invalid_argument.
  CTNParsedFileBlock GetAt(std::size_t index) const;
  /// How many blocks the record matched, as sub-record of others included; 0 for a record that
  /// the results do not know.
  std::uint32_t GetBlockCount(const CTNMatchedRecord* record) const;
  /// The last block that the record matched by itself, or -1.
  std::ptrdiff_t FindLastBlock(const CTNMatchedRecord* record) const;
  ApplicationStats GetStats() const { return m_result ? m_result->GetStats() : ApplicationStats(); }
  std::shared_ptr<const CTNParsedResult> GetResult() const { return m_result; }

  /// True when the application has more unmatched blocks than its purpose allows.
  bool IsGivenUp() const {
    return m_result && m_result->GetStats().unmatchedBlocks > m_purpose.mostUnmatched;
  }

  void SetProgress(CTNProgress* progress) { m_progress = progress; }
  CTNProgress* GetProgress() const { return m_progress; }
  /// Forgets the progress and this array's share of the blocks.
  void DeleteAll();
  /// Forgets this array's share of the blocks only.
  void RemoveAll();

 private:
  CTNParserContext* m_context;
  CTNProgress* m_progress = nullptr;  // Not owned; only during an application.
  ApplicationPurpose m_purpose;
  std::shared_ptr<CTNParsedResult> m_building;
  std::shared_ptr<const CTNParsedResult> m_result;
};

}  // namespace bomparser
