#include "ui/dialogs/RecentFiles.h"

#include "ui/controls/CTNHostApp.h"

#include <algorithm>

namespace bomparser {

std::string RecentFiles::KeyOf(std::size_t place) const {
  return FormatMessageText(m_key, place + 1);
}

void RecentFiles::Add(const std::string& path) {
  if (path.empty()) return;
  Remove(path);
  m_paths.insert(m_paths.begin(), path);
  m_paths.resize(std::min(m_paths.size(), kMost));
}

void RecentFiles::Remove(const std::string& path) { std::erase(m_paths, path); }

void RecentFiles::Read(const CTNHostApp& host, std::string_view section) {
  m_paths.clear();
  for (std::size_t place = 0; place < kMost; ++place) {
    const std::string path = host.GetProfileString(section, KeyOf(place), {});
    if (!path.empty()) m_paths.push_back(path);
  }
}

bool RecentFiles::Write(CTNHostApp& host, std::string_view section) const {
  bool stored = true;
  for (std::size_t place = 0; place < kMost; ++place) {
    // Places that are free now may have been taken before.
    const std::string path = place < m_paths.size() ? m_paths[place] : std::string();
    stored &= host.WriteProfileString(section, KeyOf(place), path);
  }
  return stored;
}

}  // namespace bomparser
