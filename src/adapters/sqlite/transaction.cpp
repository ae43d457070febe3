// SPDX-License-Identifier: MIT
#include "adapters/sqlite/transaction.h"

#include "adapters/sqlite/database_handle.h"

#include <sqlite3.h>

namespace pelmora::sqlite {

Transaction::Transaction(const DatabaseHandle& database)
    : database_(database), isPart_(sqlite3_get_autocommit(database.get()) == 0) {
  database_.run(isPart_ ? "SAVEPOINT part" : "BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
  // Some failures have made SQLite roll back already.
  if (!isOpen_ || sqlite3_get_autocommit(database_.get()) != 0) return;
  const char* undo = isPart_ ? "ROLLBACK TO part; RELEASE part" : "ROLLBACK";
  sqlite3_exec(database_.get(), undo, nullptr, nullptr, nullptr);
}

void Transaction::commit() {
  database_.run(isPart_ ? "RELEASE part" : "COMMIT");
  isOpen_ = false;  // last: a COMMIT that is refused still rolls back
}

}  // namespace pelmora::sqlite
