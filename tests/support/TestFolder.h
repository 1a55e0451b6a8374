#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

namespace bomparser {

/// A test with a new empty folder of its own, removed afterwards.
class TestFolder : public testing::Test {
 protected:
  TestFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "bomparser-test-XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    m_folder = name;
  }

  ~TestFolder() override {
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }

  const std::string& Folder() const { return m_folder; }
  std::string PathOf(const std::string& name) const { return m_folder + '/' + name; }

  void WriteFile(const std::string& name, const std::string& bytes) const {
    std::ofstream(PathOf(name), std::ios::binary) << bytes;
  }

  void MakeFolder(const std::string& name) const {
    std::filesystem::create_directory(PathOf(name));
  }

  void MakeLink(const std::string& name, const std::string& target) const {
    std::filesystem::create_symlink(target, PathOf(name));
  }

  /// The file's bytes; "(none)" when there is no such file.
  std::string BytesOf(const std::string& name) const {
    std::ifstream file(PathOf(name), std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(none)";
  }

  /// The names of all that is in the folder, sorted.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  std::string m_folder;
};

}  // namespace bomparser
