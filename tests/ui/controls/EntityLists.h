#pragma once

#include <string>

namespace bomparser::test {

/// One entity of one value, and a whole list, as they are written.
inline std::string Entity(const std::string& value) {
  return "<ENTITY>Part<VALUE>" + value + "</VALUE></ENTITY>";
}
inline std::string List(const std::string& entities) {
  return "<TN_FILEPARSER_ENTITIES>" + entities + "</TN_FILEPARSER_ENTITIES>";
}

}  // namespace bomparser::test
