// An open database as connections and their record sets share it.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/postgresql/client.h"
#include "adapters/postgresql/migrations.h"
#include "adapters/postgresql/postgres_catalogue.h"
#include "adapters/postgresql/writing_turn.h"
#include "adapters/sql_engine/row_source.h"
#include "adapters/sql_engine/statement_translations.h"
#include "store/row_visits.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace pelmora::postgres {

// A statement that fails inside a transaction undoes itself alone; the transaction stays open. When
// the connection is lost, a read outside a transaction is repeated over a new one; of everything
// else the error says what was and was not done, and the next operation connects anew.
class PostgresSession : public sql::RowSource {
 public:
  // Errors: Error as those of postgresConnection's open().
  PostgresSession(std::string location, Patience patience);

  void close();
  [[nodiscard]] const std::string& location() const { return location_; }
  [[nodiscard]] const ServerDatabase& database() const { return database_; }
  [[nodiscard]] const PostgresCatalogue& catalogue() const { return catalogue_; }
  [[nodiscard]] sql::StatementTranslations& translations() { return translations_; }
  void setLockPatience(std::chrono::milliseconds limit) { turn_.setLimit(limit); }

  // Errors of all below: Error.
  // Reads rows with a statement of the server's own SQL.
  ServerRows read(const std::string& sql);
  // Changes rows with one or more statements of the server's own SQL, together. The rows of the
  // last one.
  ServerRows write(const std::string& sql);
  // One statement on rows for which nobody takes a turn; outside of transactions.
  ServerRows writeWithoutTurn(const std::string& sql);
  // Changes tables, with the owner's rights.
  void design(const std::string& sql);

  // Errors: Error updateRefused if the server has undone the transaction that is open.
  void requireWritable() const;
  void begin();
  void beginReading();
  [[nodiscard]] bool hasTransaction() const noexcept { return transaction_ != Kind::none; }
  void commit();
  void rollback() noexcept;

  [[nodiscard]] sql::SelectedRows select(const std::string& statement) override;
  // Some thousand rows at a time. Outside a transaction it makes one, for reading alone.
  void visitRows(const std::string& statement, const RowVisitor& visit);
  [[nodiscard]] sql::TableShape tableToChange(const std::string& name) override;
  void store(const sql::TableShape& table, std::span<const sql::RowBatch> batches) override;
  [[nodiscard]] std::optional<sql::RowStore> storeAndRead(const sql::TableShape& table,
                                                          const sql::RowBatch& row,
                                                          const sql::Translation& select,
                                                          const sql::RowInTheWay* unless) override;

 private:
  enum class Kind { none, reading, writing };
  // A part of a transaction: the statements since the last savepoint.
  static constexpr const char* nextPart = "RELEASE SAVEPOINT part; SAVEPOINT part; ";

  void connect();
  void requireConnection();
  [[nodiscard]] sql::DialectStatement readSelect(const std::string& text);
  void visitPortions(const std::string& sql, const RowVisitor& visit);
  [[nodiscard]] Error failure(const ServerError& error) const;
  [[nodiscard]] Error lost(const ServerError& error, const std::string& outcome) const;
  ServerRows runInTransaction(const std::string& sql, const std::function<bool()>& stopRequested);
  // Undoes what the last part of the transaction did. Its error.
  [[nodiscard]] Error undonePart(const ServerError& error);
  [[nodiscard]] bool wasCommitted();
  void insertRows(const sql::TableShape& table, const sql::RowBatch& batch);
  void storeTogether(const sql::TableShape& table, std::span<const sql::RowBatch> batches);

  std::string location_, shown_;
  WritingTurn turn_;
  ServerDatabase database_;
  std::unique_ptr<Client> client_;
  std::chrono::steady_clock::time_point lastUse_{};
  PostgresCatalogue catalogue_;
  sql::StatementTranslations translations_;
  Kind transaction_ = Kind::none;
  bool isUndone_ = false;     // the open transaction, by the server
  bool hasDesigned_ = false;  // in the open transaction
  bool isClosed_ = false;
  std::string transactionId_;
  std::size_t cursors_ = 0;  // that have been opened
};

}  // namespace pelmora::postgres
