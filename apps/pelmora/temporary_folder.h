// A private folder that is gone when its object is.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::cli {

// A lock on the folder says that its process lives: the system drops it when the process ends,
// however that happens.
class TemporaryFolder {
 public:
  // Errors: Trouble unexpected with the place and the reason where none can be made.
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  // Writes a file into it; returns its path. Errors: Trouble unexpected where that fails.
  std::string write(const std::string& name, const std::string& text) const;
  // Takes a file out of it; does nothing where there is none.
  void remove(const std::string& name) const;

 private:
  std::string path_;
  int lock_ = -1;
};

// Removes what killed runs of this user have left among the temporary files. Folders of living
// processes, of other users and behind symbolic links stay.
void removeAbandonedFolders() noexcept;

}  // namespace pelmora::cli
