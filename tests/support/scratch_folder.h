// A fresh folder for one test, removed with everything in it.
// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

namespace pelmora::test {

class ScratchFolder {
 public:
  ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "pelmora-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::filesystem::filesystem_error("mkdtemp", {});
    path_ = pattern;
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace pelmora::test
