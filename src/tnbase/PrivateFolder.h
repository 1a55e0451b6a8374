#pragma once

#include <string>

namespace bomparser {

/// A folder for files that only this user and this process are meant to see: under the temporary
/// folder (TMPDIR, or the system's own), open to nobody else, with a name that nobody can foresee.
/// Made when its path is first asked for, and removed with all that is in it by the destructor.
class PrivateFolder {
 public:
  PrivateFolder() = default;
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  ~PrivateFolder();

  /// Gives the folder's path, without a separator at its end, and makes the folder at the first
  /// call. False with `error` "cannot create a folder in PATH: REASON" when it cannot be made; a
  /// later call tries again.
  ///
  /// The folder is always a new one: what somebody else has put at that name, a link above all, is
  /// never taken.
  bool GetPath(std::string& path, std::string& error);

 private:
  std::string m_path;  // Empty until the folder is made.
};

}  // namespace bomparser
