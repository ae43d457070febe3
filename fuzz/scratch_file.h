// Files in memory, for targets that read files.
// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace pelmora::fuzz {

// A folder of this process under /dev/shm, removed when the process ends.
class ScratchFolder {
 public:
  ScratchFolder() : path_("/dev/shm/pelmora-fuzz-" + std::to_string(getpid())) {
    std::filesystem::create_directories(path_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] std::string file(std::string_view name) const {
    return path_ + "/" + std::string(name);
  }

 private:
  std::string path_;
};

inline void writeFile(const std::string& path, std::string_view content) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) std::abort();
  const bool isWritten = std::fwrite(content.data(), 1, content.size(), file) == content.size();
  if (std::fclose(file) != 0 || !isWritten) std::abort();
}

inline std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace pelmora::fuzz
