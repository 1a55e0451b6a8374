#pragma once

#include "tnbase/PrivateFolder.h"

#include <string>
#include <string_view>

namespace bomparser::bench {

/// A folder for the files that one benchmark reads; gone with the object.
class TemporaryFiles {
 public:
  /// Writes a file of that name. Its path, or the empty text when it cannot be written.
  std::string Write(const std::string& name, std::string_view bytes);
  /// The folder's path, or the empty text when it cannot be made.
  std::string GetFolder();

 private:
  PrivateFolder m_folder;
};

}  // namespace bomparser::bench
