#pragma once

namespace bomparser {

/// What a list's row stands for. Nodes refer to the engine's objects and own none of them.
class CTNParserListNode {
 public:
  virtual ~CTNParserListNode() = default;
};

}  // namespace bomparser
