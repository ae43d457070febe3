// A place for the files that a report passes to libraries and programs of others.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::report {

// A temporary folder that only its owner can read; the destructor removes it.
class ScratchFolder {
 public:
  // Errors: Unusable.
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }
  // Writes a file and returns its path. Errors: Unusable.
  [[nodiscard]] std::string write(const std::string& name, const std::string& content) const;
  // The bytes of a file; empty if there is none.
  [[nodiscard]] std::string read(const std::string& name) const;

 private:
  std::string path_;
};

}  // namespace pelmora::report
