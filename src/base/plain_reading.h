// Which files this process has open as databases, so that nothing else opens them.
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <shared_mutex>

namespace pelmora {

// On POSIX systems closing any descriptor of a file ends all locks that the process holds on it: a
// database that is read like an ordinary file, even for a moment, loses the locks of every
// connection, and another process writes into the middle of a transaction. The two classes below
// keep the two ways of opening a file apart, in all threads. Links to one file count as that file.

// A file that is open as a database while the object lives.
class DatabaseInUse {
 public:
  // Waits for readers of ordinary files.
  explicit DatabaseInUse(std::filesystem::path file);
  ~DatabaseInUse();
  DatabaseInUse(const DatabaseInUse&) = delete;
  DatabaseInUse& operator=(const DatabaseInUse&) = delete;

 private:
  std::filesystem::path file_;
};

// The right to open `file` as an ordinary one; no database is opened while the object lives.
class PlainReading {
 public:
  // Errors: Error 70 if the process has the file open as a database.
  explicit PlainReading(const std::filesystem::path& file);

 private:
  std::shared_lock<std::shared_mutex> lock_;
};

// Whether the process has the file open as a database.
[[nodiscard]] bool isDatabaseInUse(const std::filesystem::path& file);

}  // namespace pelmora
