// A new file that gets its name when it is finished.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <filesystem>
#include <string>

namespace pelmora::sqlite {

// Lies beside `path` under a name of its own, and goes away unless it has been moved to its place.
class UnfinishedFile {
 public:
  // Errors: Error 58 if there is a file at `path`, 75 if its folder is missing.
  explicit UnfinishedFile(const std::string& path);
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  [[nodiscard]] std::string path() const;
  // Error 75 that names the file and says why.
  [[nodiscard]] Error cannotCreate(const std::string& why) const;
  // Never overwrites. Errors: Error 58 if there is a file by now, 75.
  void moveToItsPlace() const;

 private:
  std::string name_;
  std::filesystem::path finished_, unfinished_;
};

}  // namespace pelmora::sqlite
