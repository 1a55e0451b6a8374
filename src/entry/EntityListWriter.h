#pragma once

#include "input/CTNParsedBlockPtrArray.h"
#include "template/OutputProgram.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace bomparser {

/// Writes the entity list of a result: one line of XML-like text, nothing escaped, one entity per
/// block that an entity record matched. While results are stale each block stands as "??".
///
/// All that the template adds is put together by the constructor: what is done to the template
/// later does not show in the list.
class EntityListWriter {
 public:
  /// Takes the text in pieces; answers false to stop.
  using Sink = std::function<bool(std::string_view)>;

  /// Without a result the list is empty. Throws std::bad_alloc.
  EntityListWriter(std::shared_ptr<const CTNParsedResult> result, bool stale);

  /// False when the sink stopped it, or when the text was not intact all the time. So many threads
  /// may work on it.
  bool Write(const Sink& sink, unsigned threads = 1) const;

 private:
  bool WriteStale(const Sink& sink) const;

  std::shared_ptr<const CTNParsedResult> m_result;
  std::optional<OutputProgram> m_program;  // Of results that are not stale.
};

/// The entity text of one block: what the list holds of it. Empty for a block that is no entity,
/// "??" while results are stale.
std::string GetEntityText(const CTNParsedFileBlock& block);

}  // namespace bomparser
