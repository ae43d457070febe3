// An open database as connections and their record sets share it.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_engine/row_source.h"
#include "adapters/sql_engine/statement_translations.h"
#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/dialect_functions.h"
#include "adapters/sqlite/sqlite_catalogue.h"
#include "adapters/sqlite/statement_pool.h"
#include "store/row_visits.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>

namespace pelmora::sqlite {

class PreparedStatement;

class SqliteSession : public sql::RowSource {
 public:
  // `file`: absolute path. memory: may be null.
  // Errors: Error, genericFailure if the database is locked.
  SqliteSession(const std::string& file, const Patience& patience,
                const std::shared_ptr<SchemaMemory>& memory = {})
      : SqliteSession(file, OpenMode::existing, patience, memory) {}
  // A database of its own in memory.
  SqliteSession() : SqliteSession({}, OpenMode::memory, {}, {}) {}

  void close();
  // Errors: Error connectionClosed after close().
  [[nodiscard]] const DatabaseHandle& handle() const;
  [[nodiscard]] sqlite3* database() const { return handle().get(); }
  // Errors: Error connectionClosed after close().
  [[nodiscard]] const SqliteCatalogue& catalogue() const;
  // Errors: Error connectionClosed after close().
  [[nodiscard]] StatementPool& pool();
  [[nodiscard]] sql::StatementTranslations& translations();
  // Ready to run. `statement` must outlive the use. Errors: those of translate(); those of SQLite.
  [[nodiscard]] StatementPool::Use prepare(sql::DialectStatement& statement);
  // Empty for a database in memory.
  [[nodiscard]] const std::string& file() const { return file_; }

  // From now on the database's own tables can only be read. `why` ends the error of a statement
  // that would change them.
  void freeze(const std::string& why) { whyFrozen_ = why; }
  [[nodiscard]] bool isFrozen() const { return whyFrozen_.has_value(); }
  // Errors: Error updateRefused if the tables may only be read, or if the engine has undone the
  //         transaction that is open: what follows must not be stored alone.
  void requireWritable() const;

  // One transaction around many statements; those that the statements make are parts of it.
  void begin();
  void beginReading();
  [[nodiscard]] bool hasTransaction() const noexcept { return inTransaction_; }
  void commit();
  void rollback() noexcept;

  // Makes a table or index where it is missing; `statement` does nothing the second time.
  // Errors: Error; updateRefused as above.
  void design(const std::string& statement);

  [[nodiscard]] sql::SelectedRows select(const std::string& statement) override;
  // Row by row, none of which is kept.
  void visitRows(const std::string& statement, const RowVisitor& visit);
  // The same as the first for a statement that has been read, without its translation.
  [[nodiscard]] sql::SelectedRows select(const sql::SelectStatement& statement);
  [[nodiscard]] sql::TableShape tableToChange(const std::string& name) override;
  void store(const sql::TableShape& table, std::span<const sql::RowBatch> batches) override;
  [[nodiscard]] std::optional<sql::RowStore> storeAndRead(const sql::TableShape& table,
                                                          const sql::RowBatch& row,
                                                          const sql::Translation& select,
                                                          const sql::RowInTheWay* unless) override;

  // The next row. Errors: those of PreparedStatement::step and of the dialect's functions.
  bool step(PreparedStatement& statement);

 private:
  [[nodiscard]] sql::SelectedRows rowsOf(PreparedStatement& query);
  SqliteSession(const std::string& file, OpenMode mode, const Patience& patience,
                const std::shared_ptr<SchemaMemory>& memory);
  void forgetSchema() noexcept;

  std::string file_;
  StatementFault fault_;
  std::optional<DatabaseHandle> handle_;
  // Each after those that it uses.
  std::optional<SqliteCatalogue> catalogue_;
  std::optional<StatementPool> pool_;
  std::optional<sql::StatementTranslations> translations_;
  // Design statements that are known to have nothing to do, for as long as this version holds.
  std::set<std::string> designed_;
  std::int64_t designedVersion_ = -1;
  std::optional<std::string> whyFrozen_;
  bool inTransaction_ = false;
};

}  // namespace pelmora::sqlite
