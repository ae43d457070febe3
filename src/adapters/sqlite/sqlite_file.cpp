// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_file.h"

#include "adapters/sqlite/sqlite_database.h"
#include "base/file_text.h"
#include "base/run_time_error.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace pelmora {

namespace sqlite {

namespace {

enum class Contents { unreadable, empty, other, sqlite };

Contents contentsOf(const std::filesystem::path& path) {
  constexpr std::string_view header("SQLite format 3\0", 16);
  std::ifstream file(path, std::ios::binary);
  if (!file) return Contents::unreadable;
  std::array<char, header.size()> start{};
  file.read(start.data(), start.size());
  if (file.bad()) return Contents::unreadable;
  if (file.gcount() == 0) return Contents::empty;
  const std::string_view found(start.data(), static_cast<std::size_t>(file.gcount()));
  return found == header ? Contents::sqlite : Contents::other;
}

}  // namespace

std::string checkedSqliteFile(const std::string& path) {
  const auto fail = [](RunTimeError number, const std::string& description) -> Error {
    return {static_cast<std::int32_t>(number), "Pelmora", description};
  };
  const std::filesystem::path file = filePath(path);
  std::error_code code;
  const auto status = std::filesystem::status(file, code);
  const bool isText = path.find('\0') == std::string::npos;
  if (path.empty() || !isText || status.type() == std::filesystem::file_type::not_found) {
    throw fail(RunTimeError::fileNotFound,
               "Could not find file '" + path +
                   "'. Check the folder and the name; opening a database never creates one.");
  }
  if (status.type() == std::filesystem::file_type::none) {
    const bool isRefused = code == std::errc::permission_denied;
    throw fail(isRefused ? RunTimeError::permissionDenied : RunTimeError::pathAccess,
               "Could not open file '" + path + "': " + code.message() +
                   ". Check the path and its permissions.");
  }
  if (std::filesystem::is_directory(status)) {
    throw fail(RunTimeError::pathAccess,
               "Could not open '" + path + "': it is a folder. Name the database file inside it.");
  }
  if (!std::filesystem::is_regular_file(status)) {
    throw fail(RunTimeError::pathAccess,
               "Could not open '" + path + "': it is no regular file. Name a database file.");
  }
  switch (contentsOf(file)) {
    case Contents::sqlite: break;
    case Contents::unreadable:
      throw fail(RunTimeError::permissionDenied,
                 "Could not open file '" + path + "': it cannot be read. Check its permissions.");
    case Contents::empty:
      throw fail(
          RunTimeError::invalidFileFormat,
          "Unrecognized database format '" + path +
              "': the file is empty. Create a curve database there first, or name another file.");
    case Contents::other:
      throw fail(RunTimeError::invalidFileFormat,
                 "Unrecognized database format '" + path +
                     "': the file is no SQLite database. Name another file.");
  }
  return utf8Text(std::filesystem::absolute(file));
}

}  // namespace sqlite

bool isSqliteFile(const std::string& path) {
  const std::filesystem::path file = filePath(path);
  std::error_code ignored;
  return path.find('\0') == std::string::npos && std::filesystem::is_regular_file(file, ignored) &&
         sqlite::contentsOf(file) == sqlite::Contents::sqlite;
}

}  // namespace pelmora
