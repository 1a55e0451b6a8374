#pragma once

#include "input/CTNParsedBlockPtrArray.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace bomparser {

/// Writes the entity list of a result: one line of XML-like text, nothing escaped, one entity per
/// block that an entity record matched. While results are stale each block stands as "??".
class EntityListWriter {
 public:
  /// Takes the text in pieces; answers false to stop.
  using Sink = std::function<bool(std::string_view)>;

  EntityListWriter(std::shared_ptr<const CTNParsedResult> result, bool stale)
      : m_result(std::move(result)), m_stale(stale) {}

  /// False when the sink stopped it. Without a result the list is empty.
  bool Write(const Sink& sink) const;

 private:
  bool WriteStale(const Sink& sink) const;

  std::shared_ptr<const CTNParsedResult> m_result;
  bool m_stale;
};

/// The entity text of one block: what the list holds of it. Empty for a block that is no entity,
/// "??" while results are stale.
std::string GetEntityText(const CTNParsedFileBlock& block);

}  // namespace bomparser
