// SPDX-License-Identifier: MIT
#include "base/plain_reading.h"

#include "base/file_text.h"
#include "base/run_time_error.h"

#include <algorithm>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

namespace pelmora {
namespace {

namespace fs = std::filesystem;

struct Register {
  std::shared_mutex mutex;
  std::vector<fs::path> databases;  // one entry for each connection
};

// Never destroyed: connections may be closed while the process ends.
Register& theRegister() {
  static auto* const files = new Register();
  return *files;
}

bool isSameFile(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return a == b || fs::equivalent(a, b, ignored);
}

// SQLite locks bytes of this file, too, where the database has a write-ahead log.
fs::path sharedMemoryOf(fs::path database) { return database += "-shm"; }

bool holds(const Register& files, const fs::path& file) {
  return std::ranges::any_of(files.databases, [&](const fs::path& database) {
    return isSameFile(file, database) || isSameFile(file, sharedMemoryOf(database));
  });
}

}  // namespace

DatabaseInUse::DatabaseInUse(fs::path file) : file_(std::move(file)) {
  Register& files = theRegister();
  const std::unique_lock lock(files.mutex);
  files.databases.push_back(file_);
}

DatabaseInUse::~DatabaseInUse() {
  Register& files = theRegister();
  const std::unique_lock lock(files.mutex);
  files.databases.erase(std::ranges::find(files.databases, file_));
}

PlainReading::PlainReading(const fs::path& file) : lock_(theRegister().mutex) {
  if (!holds(theRegister(), file)) return;
  throw Error(
      static_cast<std::int32_t>(RunTimeError::permissionDenied), "Pelmora",
      "Could not open file '" + utf8Text(file) + "': it is open as a database. Name another file.");
}

bool isDatabaseInUse(const fs::path& file) {
  Register& files = theRegister();
  const std::shared_lock lock(files.mutex);
  return holds(files, file);
}

}  // namespace pelmora
