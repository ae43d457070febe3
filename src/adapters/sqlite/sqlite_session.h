// An open database as connections and their record sets share it.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_engine/row_source.h"
#include "adapters/sqlite/open_database.h"
#include "store/row_visits.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace pelmora::sqlite {

class PreparedStatement;

class SqliteSession : public sql::RowSource {
 public:
  // resting: where the database rests before and afterwards; may be null.
  // Errors: those of checkedSqliteFile; Error genericFailure if the database is locked.
  SqliteSession(const std::string& path, const Patience& patience,
                std::shared_ptr<RestingDatabases> resting = {});
  // A database of its own in memory.
  SqliteSession();

  void close();
  // Errors: Error connectionClosed after close().
  [[nodiscard]] const DatabaseHandle& handle() const { return open().handle; }
  [[nodiscard]] sqlite3* database() const { return handle().get(); }
  // Errors: Error connectionClosed after close().
  [[nodiscard]] const SqliteCatalogue& catalogue() const { return open().catalogue; }
  // Errors: Error connectionClosed after close().
  [[nodiscard]] StatementPool& pool() { return open().pool; }
  [[nodiscard]] sql::StatementTranslations& translations() { return open().translations; }
  // Ready to run. `statement` must outlive the use. Errors: those of translate(); those of SQLite.
  [[nodiscard]] StatementPool::Use prepare(sql::DialectStatement& statement);
  // An absolute path; empty for a database in memory.
  [[nodiscard]] std::string file() const;

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
  // Errors: Error connectionClosed after close().
  [[nodiscard]] OpenDatabase& open() const;
  void forgetSchema() noexcept;

  std::shared_ptr<RestingDatabases> resting_;
  std::unique_ptr<OpenDatabase> open_;
  std::optional<std::string> whyFrozen_;
  bool inTransaction_ = false;
};

}  // namespace pelmora::sqlite
