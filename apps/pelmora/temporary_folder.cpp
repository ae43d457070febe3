// SPDX-License-Identifier: MIT
#include "apps/pelmora/temporary_folder.h"

#include "apps/pelmora/trouble.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace pelmora::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* namePrefix = "pelmora-work-";
constexpr int mostTries = 100;

// As the standard library does; where TMPDIR names no folder, the error shall name it all the same.
fs::path parentFolder() {
  for (const char* variable : {"TMPDIR", "TMP", "TEMP", "TEMPDIR"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return value;
  }
  return "/tmp";
}

// An open folder with its lock; -1 where it is not ours, held by another process, or gone.
int lockedFolder(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor < 0) return -1;
  struct stat opened {
  }, found{};
  const bool isOurs = fstat(descriptor, &opened) == 0 && opened.st_uid == geteuid() &&
                      flock(descriptor, LOCK_EX | LOCK_NB) == 0 &&
                      // Who held the lock before may have removed it.
                      lstat(path.c_str(), &found) == 0 && found.st_dev == opened.st_dev &&
                      found.st_ino == opened.st_ino;
  if (isOurs) return descriptor;
  close(descriptor);
  return -1;
}

// Never throws, also where memory is short: what stays is removed by a later run.
void removeTree(const fs::path& path) noexcept {
  try {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  } catch (...) {
  }
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  const fs::path parent = parentFolder();
  int reason = 0;
  // Another run may take a folder without a lock for abandoned and remove it.
  for (int i = 0; i < mostTries && lock_ < 0; ++i) {
    path_ = (parent / (std::string(namePrefix) + "XXXXXX")).string();
    if (mkdtemp(path_.data()) == nullptr) {
      reason = errno;
      break;
    }
    lock_ = lockedFolder(path_);
  }
  if (lock_ >= 0) return;
  throw Trouble(ExitCode::unexpected,
                "no temporary folder can be made in '" + parent.string() +
                    "': " + std::generic_category().message(reason == 0 ? ENOLCK : reason),
                "set TMPDIR to a folder that you may write to; nothing was stored");
}

TemporaryFolder::~TemporaryFolder() {
  removeTree(path_);
  close(lock_);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& text) const {
  const std::string file = (fs::path(path_) / name).string();
  std::ofstream stream(file, std::ios::binary);
  stream << text << std::flush;
  if (stream) return file;
  throw Trouble(ExitCode::unexpected, "file '" + file + "' cannot be written",
                "check TMPDIR and the room on that disk");
}

void TemporaryFolder::remove(const std::string& name) const {
  std::error_code ignored;
  fs::remove(fs::path(path_) / name, ignored);
}

void removeAbandonedFolders() noexcept {
  try {
    std::error_code code;
    for (fs::directory_iterator entry(parentFolder(), code), end; !code && entry != end;
         entry.increment(code)) {
      const fs::path& path = entry->path();
      if (!path.filename().string().starts_with(namePrefix)) continue;
      const int lock = lockedFolder(path.string());
      if (lock < 0) continue;
      removeTree(path);
      close(lock);
    }
  } catch (...) {
  }
}

}  // namespace pelmora::cli
