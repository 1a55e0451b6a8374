#pragma once

#include "tnbase/AtomicFile.h"
#include "tnbase/Interrupts.h"

#include <optional>
#include <string>
#include <string_view>

namespace bomparser {

/// Where a command's data goes: standard output for the path "-", otherwise a file that is written
/// whole or not at all. Interruptions are held while a half-written file would stay behind; Write
/// and Commit then refuse to go on. Bytes are not gathered here.
class OutputFile {
 public:
  bool Open(const std::string& path, std::string& error);
  bool Write(std::string_view bytes, std::string& error);
  /// To be called after the last Write. Without it a file stays as it was.
  bool Commit(std::string& error);

 private:
  std::optional<InterruptHold> m_hold;
  std::optional<AtomicFile> m_file;  // None for standard output.
};

}  // namespace bomparser
