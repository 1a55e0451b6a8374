#include "bench/TemporaryFiles.h"

#include <fstream>

namespace bomparser::bench {

std::string TemporaryFiles::GetFolder() {
  std::string path;
  std::string error;
  return m_folder.GetPath(path, error) ? path : std::string();
}

std::string TemporaryFiles::Write(const std::string& name, std::string_view bytes) {
  const std::string folder = GetFolder();
  if (folder.empty()) return {};
  const std::string path = folder + '/' + name;
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  return file ? path : std::string();
}

}  // namespace bomparser::bench
