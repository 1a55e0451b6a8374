#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace bomparser {

/// The files of one command. What it writes must not take the place of anything that it reads or
/// writes besides. Standard streams, pipes and devices take any number of readers and writers.
class FileUses {
 public:
  /// `what` names the file's part in a message, as in "the template". All that is read is told
  /// before anything that is written.
  void AddRead(std::string_view what, const std::string& path);
  /// False, with the message in `error`, when another file of the command has that place.
  bool AddWritten(std::string_view what, const std::string& path, std::string& error);

 private:
  struct Use {
    std::string_view what;
    bool written;
  };

  std::unordered_map<std::string, Use> m_uses;  // By resolved path.
};

}  // namespace bomparser
