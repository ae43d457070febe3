// An open database as connections and their record sets share it.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/dialect_functions.h"
#include "adapters/sqlite/sqlite_catalogue.h"

#include <optional>
#include <string>

namespace pelmora::sqlite {

class PreparedStatement;

class SqliteSession {
 public:
  // `file`: absolute path. Errors: Error, genericFailure where the database is locked.
  explicit SqliteSession(const std::string& file) : SqliteSession(file, OpenMode::existing) {}
  // A database of its own in memory.
  SqliteSession() : SqliteSession({}, OpenMode::memory) {}

  void close();
  // Errors: Error connectionClosed after close().
  [[nodiscard]] const DatabaseHandle& handle() const;
  [[nodiscard]] sqlite3* database() const { return handle().get(); }
  // Errors: Error connectionClosed after close().
  [[nodiscard]] const SqliteCatalogue& catalogue() const;
  // Empty for a database in memory.
  [[nodiscard]] const std::string& file() const { return file_; }

  // From now on the database's own tables may only be read.
  void freeze() { isFrozen_ = true; }
  // Errors: Error updateRefused where the tables may only be read, or where the engine has undone the
  //         transaction that is open: what follows must not be stored alone.
  void requireWritable() const;

  // One transaction around many statements; those that the statements make are parts of it.
  void begin();
  void beginReading();
  void commit();
  void rollback() noexcept;

  // The next row. Errors: those of PreparedStatement::step and of the dialect's functions.
  bool step(PreparedStatement& statement);

 private:
  SqliteSession(const std::string& file, OpenMode mode);

  std::string file_;
  StatementFault fault_;
  std::optional<DatabaseHandle> handle_;
  std::optional<SqliteCatalogue> catalogue_;  // after the handle that it uses
  bool isFrozen_ = false;
  bool inTransaction_ = false;
};

}  // namespace pelmora::sqlite
