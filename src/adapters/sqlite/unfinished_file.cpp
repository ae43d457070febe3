// SPDX-License-Identifier: MIT
#include "adapters/sqlite/unfinished_file.h"

#include "base/file_text.h"
#include "base/run_time_error.h"

#include <chrono>
#include <random>
#include <system_error>

namespace pelmora::sqlite {
namespace {

namespace fs = std::filesystem;

Error existsAlready(const std::string& path) {
  return {static_cast<std::int32_t>(RunTimeError::fileExists), "Pelmora",
          "'" + path + "' exists already; name a file that does not exist yet."};
}

// A hard link fails where the name is taken. A file system without links is asked first instead.
std::error_code renameUnlessTaken(const fs::path& from, const fs::path& to) {
  std::error_code code;
  fs::create_hard_link(from, to, code);
  if (!code || code == std::errc::file_exists) return code;
  if (fs::exists(fs::symlink_status(to, code))) return std::make_error_code(std::errc::file_exists);
  fs::rename(from, to, code);
  return code;
}

}  // namespace

UnfinishedFile::UnfinishedFile(const std::string& path) : name_(path) {
  if (path.empty() || path.find('\0') != std::string::npos)
    throw cannotCreate("it is not a file name. Name the file to create.");
  std::error_code code;
  finished_ = fs::absolute(filePath(path), code);
  if (fs::exists(fs::symlink_status(finished_, code))) throw existsAlready(path);
  if (!finished_.has_filename() || !fs::is_directory(finished_.parent_path(), code))
    throw cannotCreate("its folder does not exist. Create the folder first.");
  const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
  unfinished_ = finished_;
  unfinished_ += ".new-" + std::to_string(std::random_device()() ^ static_cast<unsigned>(ticks));
}

UnfinishedFile::~UnfinishedFile() {
  std::error_code ignored;
  fs::remove(unfinished_, ignored);
  fs::remove(unfinished_.native() + fs::path("-journal").native(), ignored);
}

std::string UnfinishedFile::path() const { return utf8Text(unfinished_); }

Error UnfinishedFile::cannotCreate(const std::string& why) const {
  return {static_cast<std::int32_t>(RunTimeError::pathAccess), "Pelmora",
          "Could not create '" + name_ + "': " + why};
}

void UnfinishedFile::moveToItsPlace() const {
  const std::error_code code = renameUnlessTaken(unfinished_, finished_);
  if (code == std::errc::file_exists) throw existsAlready(name_);
  if (code) throw cannotCreate(code.message() + ". Check the folder's permissions.");
}

}  // namespace pelmora::sqlite
