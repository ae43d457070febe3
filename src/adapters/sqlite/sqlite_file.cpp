// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_file.h"

#include "adapters/sqlite/careful_files.h"
#include "adapters/sqlite/sqlite_database.h"
#include "base/file_text.h"
#include "base/run_time_error.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace pelmora {

namespace sqlite {

namespace {

enum class Contents { unreadable, empty, access, other, sqlite };

// A file that SQLite's access to the operating system has opened for reading.
class OpenFile {
 public:
  explicit OpenFile(const std::string& path)
      : vfs_(carefulFiles()), name_(sqlite3_create_filename(path.c_str(), "", "", 0, nullptr)) {
    if (vfs_ == nullptr || name_ == nullptr) return;
    memory_.resize(static_cast<std::size_t>(vfs_->szOsFile) / sizeof(std::max_align_t) + 1);
    // Only a main database takes part in SQLite's account of locks.
    isOpen_ = vfs_->xOpen(vfs_, name_, file(), SQLITE_OPEN_READONLY | SQLITE_OPEN_MAIN_DB,
                          nullptr) == SQLITE_OK;
  }
  ~OpenFile() {
    if (!memory_.empty() && file()->pMethods != nullptr) file()->pMethods->xClose(file());
    sqlite3_free_filename(name_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  // Nothing where it cannot be read.
  [[nodiscard]] std::optional<std::string> start(std::size_t size) {
    sqlite3_int64 length = 0;
    if (!isOpen_ || file()->pMethods->xFileSize(file(), &length) != SQLITE_OK) return std::nullopt;
    std::string bytes(std::min(size, static_cast<std::size_t>(length)), '\0');
    const int count = static_cast<int>(bytes.size());
    if (file()->pMethods->xRead(file(), bytes.data(), count, 0) != SQLITE_OK) return std::nullopt;
    return bytes;
  }

 private:
  sqlite3_file* file() { return reinterpret_cast<sqlite3_file*>(memory_.data()); }

  sqlite3_vfs* vfs_;
  sqlite3_filename name_;
  std::vector<std::max_align_t> memory_;
  bool isOpen_ = false;
};

Contents contentsOf(const std::string& path) {
  constexpr std::string_view header("SQLite format 3\0", 16);
  const auto start = startOfFile(path, std::max(header.size(), accessStartSize));
  if (!start) return Contents::unreadable;
  if (start->empty()) return Contents::empty;
  if (start->starts_with(header)) return Contents::sqlite;
  return isAccessStart(*start) ? Contents::access : Contents::other;
}

}  // namespace

bool isAccessStart(std::string_view start) {
  constexpr std::size_t nameAt = 4;
  if (start.size() < nameAt) return false;
  const std::string_view name = start.substr(nameAt);
  return name.starts_with("Standard Jet DB") || name.starts_with("Standard ACE DB");
}

std::optional<std::string> startOfFile(const std::string& path, std::size_t size) {
  if (!isRegularFile(path)) return std::nullopt;
  std::error_code failure;
  // The engine itself follows no links here.
  const std::filesystem::path whole = std::filesystem::canonical(filePath(path), failure);
  return failure ? std::nullopt : OpenFile(utf8Text(whole)).start(size);
}

std::string checkedSqliteFile(const std::string& path) {
  const auto fail = [](RunTimeError number, const std::string& description) -> Error {
    return {static_cast<std::int32_t>(number), "Pelmora", description};
  };
  requireRegularFile(
      path, {.missing = "Check the folder and the name; opening a database never creates one.",
             .folder = "Name the database file inside it.",
             .other = "Name a database file."});
  switch (contentsOf(path)) {
    case Contents::sqlite: break;
    case Contents::unreadable:
      throw fail(RunTimeError::permissionDenied,
                 "Could not open file '" + path + "': it cannot be read. Check its permissions.");
    case Contents::empty:
      throw fail(
          RunTimeError::invalidFileFormat,
          "Unrecognized database format '" + path +
              "': the file is empty. Create a curve database there first, or name another file.");
    case Contents::access:
      throw fail(RunTimeError::invalidFileFormat,
                 "'" + path +
                     "' is an Access file, which cannot be changed here. Copy it into a new curve "
                     "database with 'pelmora import-access', and use that.");
    case Contents::other:
      throw fail(RunTimeError::invalidFileFormat,
                 "Unrecognized database format '" + path +
                     "': the file is not an SQLite database. Name another file.");
  }
  return utf8Text(std::filesystem::absolute(filePath(path)));
}

}  // namespace sqlite

bool isSqliteFile(const std::string& path) {
  return sqlite::contentsOf(path) == sqlite::Contents::sqlite;
}

}  // namespace pelmora
