// Files that somebody has dropped on the page, until they are imported.
// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <filesystem>
#include <string>

namespace pelmora::cli::workbench {

struct Upload {
  std::string id;    // for requests
  std::string name;  // as the user's file is called; never used as a path
  std::filesystem::path path;
};

// In a folder of its own that only this user can read. The last few stay; all go with the object.
class Uploads {
 public:
  Uploads();
  ~Uploads();
  Uploads(const Uploads&) = delete;
  Uploads& operator=(const Uploads&) = delete;

  // Errors: Unusable if the disk has no room.
  const Upload& add(const std::string& name, const std::string& bytes);
  // Errors: NotFound.
  [[nodiscard]] const Upload& get(const std::string& id) const;
  // The text with names of files in place of paths of ours.
  [[nodiscard]] std::string withNames(std::string text) const;

 private:
  std::filesystem::path folder_;
  std::deque<Upload> uploads_;
  std::size_t count_ = 0;
};

}  // namespace pelmora::cli::workbench
