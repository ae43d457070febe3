// The sources and documents that the tests of this folder read.
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace pelmora::test {

inline std::string textOf(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

// The C++ files of a folder and of the folders inside it, in alphabetical order.
inline std::vector<std::filesystem::path> sourcesIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".h" || extension == ".cpp") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace pelmora::test
