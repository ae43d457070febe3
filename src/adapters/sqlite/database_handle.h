// One open SQLite database.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/lock_wait.h"
#include "adapters/sqlite/schema_guard.h"
#include "base/plain_reading.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

struct sqlite3;

namespace pelmora::sqlite {

enum class OpenMode { existing, create, memory };

class DatabaseHandle {
 public:
  // `file` is an absolute path, unused for OpenMode::memory. Errors: Error.
  DatabaseHandle(const std::string& file, OpenMode mode, const Patience& patience = {});

  [[nodiscard]] sqlite3* get() const { return database_.get(); }
  void setLockPatience(std::chrono::milliseconds limit) const { lockWait_->setLimit(limit); }
  // Runs statements in SQLite's own SQL. Errors: Error.
  void run(const char* statements) const;

  // Closes the file while nothing is done with it, and forgets its pages. False where it cannot be
  // done: within a transaction, with a write-ahead log.
  [[nodiscard]] bool rest();
  // After rest(), before anything else. False where the file cannot be opened as it was: then it
  // must be opened by a new handle.
  [[nodiscard]] bool wake(const Patience& patience);

 private:
  struct Close {
    void operator()(sqlite3* database) const noexcept;
  };
  std::optional<DatabaseInUse> file_;  // while it is open; outlives database_
  std::unique_ptr<LockWait> lockWait_;
  std::unique_ptr<SchemaGuard> guard_;
  std::unique_ptr<sqlite3, Close> database_;
};

}  // namespace pelmora::sqlite
