// SPDX-License-Identifier: MIT
#include "adapters/sqlite/database_handle.h"

#include "adapters/sqlite/careful_files.h"
#include "adapters/sqlite/sqlite_error.h"
#include "base/file_text.h"

#include <sqlite3.h>

namespace pelmora::sqlite {

namespace {

// An attached file is opened with the flags of the first one: a database in memory must not ask for
// more than an existing file does, or the attached one would be made, or be in memory too.
int openFlags(OpenMode mode) {
  return SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX |
         (mode == OpenMode::create ? SQLITE_OPEN_CREATE : 0);
}

}  // namespace

void DatabaseHandle::Close::operator()(sqlite3* database) const noexcept {
  sqlite3_close_v2(database);
}

DatabaseHandle::DatabaseHandle(const std::string& file, OpenMode mode, const Patience& patience)
    : lockWait_(std::make_unique<LockWait>(patience)),
      guard_(std::make_unique<SchemaGuard>(patience.stopRequested)) {
  if (mode != OpenMode::memory) file_.emplace(filePath(file));
  sqlite3* opened = nullptr;
  const char* name = mode == OpenMode::memory ? ":memory:" : file.c_str();
  const int code = sqlite3_open_v2(name, &opened, openFlags(mode), carefulFiles()->zName);
  database_.reset(opened);
  if (code != SQLITE_OK) throw sqliteError(code, opened);
  sqlite3_extended_result_codes(opened, 1);
  lockWait_->handle(opened);
  guard_->protect(opened);
  // In KiB. Changes of one transaction wait in memory up to the second size: where they spill into
  // the file, others cannot read it until the transaction ends. What was only read is kept up to
  // the first: enough for the upper levels of indexes, and the same for databases of any size.
  // A commit ends only when the journal's removal is on the disk too: after a power loss, a journal
  // that came back would undo what had been reported as stored.
  run("PRAGMA cache_size = -4096; PRAGMA cache_spill = -65536; PRAGMA cell_size_check = ON; "
      "PRAGMA mmap_size = 0; PRAGMA synchronous = EXTRA");
}

void DatabaseHandle::run(const char* statements) const {
  bool runsSchemaCode = false;
  const StatementRun running(guard_.get(), runsSchemaCode, true, false);
  const int code = sqlite3_exec(get(), statements, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) throw sqliteError(code, get());
}

bool DatabaseHandle::rest() {
  const bool isBusy =
      sqlite3_get_autocommit(get()) == 0 || sqlite3_txn_state(get(), nullptr) != SQLITE_TXN_NONE;
  if (isBusy || sqlite3_db_filename(get(), "output") != nullptr) return false;
  // Pages that are kept are compared with the file by a counter, which a copy of another file may
  // have, too.
  sqlite3_file_control(get(), "main", SQLITE_FCNTL_RESET_CACHE, nullptr);
  if (!closeFileForAWhile(get())) return false;
  file_.reset();
  // The callers' functions end with their connection.
  lockWait_->setPatience({});
  guard_->startAnew({});
  return true;
}

bool DatabaseHandle::wake(const Patience& patience) {
  lockWait_->setPatience(patience);
  guard_->startAnew(patience.stopRequested);
  // The name that it is opened by: a link that led to it may lead elsewhere now.
  file_.emplace(filePath(sqlite3_db_filename(get(), "main")));
  return reopenFile(get());
}

}  // namespace pelmora::sqlite
