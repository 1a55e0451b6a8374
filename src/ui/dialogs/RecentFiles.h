#pragma once

#include "input/MessageTexts.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

class CTNHostApp;

/// The files that were used last, the latest first, each once.
class RecentFiles {
 public:
  static constexpr std::size_t kMost = 8;

  /// The key holds "%d" for the place in the list, from 1 on.
  explicit RecentFiles(Msg key) : m_key(key) {}

  const std::vector<std::string>& GetPaths() const { return m_paths; }
  /// Puts the path first; the oldest one goes where there are too many.
  void Add(const std::string& path);
  void Remove(const std::string& path);

  void Read(const CTNHostApp& host, std::string_view section);
  /// False when the host could not store them.
  bool Write(CTNHostApp& host, std::string_view section) const;

 private:
  std::string KeyOf(std::size_t place) const;

  Msg m_key;
  std::vector<std::string> m_paths;
};

}  // namespace bomparser
