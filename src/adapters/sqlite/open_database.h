// An open database with what has been learnt about it.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_engine/statement_translations.h"
#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/dialect_functions.h"
#include "adapters/sqlite/sqlite_catalogue.h"
#include "adapters/sqlite/statement_pool.h"

#include <pelmora/patience.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace pelmora::sqlite {

struct OpenDatabase {
  // mayRest: for connections that open it again later. Errors: Error, genericFailure if it is
  // locked.
  OpenDatabase(const std::string& file, OpenMode mode, const Patience& patience, bool mayRest);

  StatementFault fault;
  DatabaseHandle handle;
  // Each after those that it uses.
  SqliteCatalogue catalogue;
  StatementPool pool;
  sql::StatementTranslations translations;
  // Design statements that are known to have nothing to do, for as long as this version holds.
  std::set<std::string> designed;
  std::int64_t designedVersion = -1;
};

// Databases between two uses. A connection that lasts for one operation would spend most of its
// time on reading the schema, on asking for the columns of the same few tables, and on preparing
// the same few statements. What it has learnt is therefore kept, but no file: each is closed, may
// be changed, replaced or deleted, and is opened again by the next connection. That one learns
// everything anew, unless the file says the same about its tables, word by word. Any thread may
// call it.
class RestingDatabases {
 public:
  // The database at `path` (UTF-8), ready for use; null if none rests there, or if it was another
  // one: it must then be opened from scratch. Errors: Error genericFailure if it is locked.
  [[nodiscard]] std::unique_ptr<OpenDatabase> wake(const std::string& path,
                                                   const Patience& patience);
  // Nobody may use the database any more. Keeps those that were used last.
  void rest(std::unique_ptr<OpenDatabase> database) noexcept;

 private:
  static constexpr std::size_t most = 4;

  [[nodiscard]] std::unique_ptr<OpenDatabase> take(const std::string& file);

  std::mutex mutex_;
  std::vector<std::unique_ptr<OpenDatabase>> resting_;  // the one used last is the last
};

}  // namespace pelmora::sqlite
