// A connection that runs statements of the dialect on SQLite.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/syntax_tree.h"
#include "store/connection.h"
#include "store/elsewhere.h"
#include "store/foreign_changes.h"
#include "store/integrity.h"
#include "store/lock_patience.h"
#include "store/row_visits.h"
#include "store/table_design.h"
#include "store/transactions.h"

#include <pelmora/patience.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace pelmora::sqlite {

class SqliteSession;

using OpenSession = std::function<std::shared_ptr<SqliteSession>(const Patience&)>;

// Record sets keep working on their rows after close(); storing rows is then Error 3709.
class SqliteConnection : public Connection,
                         public TableDesign,
                         public Transactions,
                         public LockPatience,
                         public ForeignChanges,
                         public IntegrityCheck,
                         public InsertsElsewhere,
                         public RowVisits {
 public:
  explicit SqliteConnection(OpenSession openSession, Patience patience = {})
      : openSession_(std::move(openSession)), patience_(std::move(patience)) {}
  ~SqliteConnection() override;
  SqliteConnection(const SqliteConnection&) = delete;
  SqliteConnection& operator=(const SqliteConnection&) = delete;

  // Errors: Error 3705 if it is open already.
  void open() override;
  [[nodiscard]] bool isOpen() const override { return session_ != nullptr; }
  // Nothing happens where it is closed already.
  void close() override;
  void execute(const std::string& statement) override;
  [[nodiscard]] std::unique_ptr<Recordset> openRecordset(const std::string& statement,
                                                         CursorType cursor, LockType lock) override;

  void visitRows(const std::string& statement, const RowVisitor& visit) override;

  [[nodiscard]] bool hasTable(std::string_view name) const override;
  void createTable(const OwnTable& table) override;
  [[nodiscard]] bool hasIndex(std::string_view table,
                              std::span<const std::string> columns) const override;
  void createIndex(const TableIndex& index) override;
  [[nodiscard]] bool hasCurveTables() const override;
  [[nodiscard]] bool isReadOnly() const override;

  void begin() override;
  void beginReading() override;
  [[nodiscard]] bool hasTransaction() const noexcept override;
  void commit() override;
  void rollback() noexcept override;

  [[nodiscard]] std::chrono::milliseconds lockPatience() const override { return patience_.limit; }
  void setLockPatience(std::chrono::milliseconds limit) override;

  [[nodiscard]] std::int64_t foreignChanges() override;

  [[nodiscard]] std::vector<IntegrityProblem> integrityProblems(std::size_t most) override;

  void setElsewhere(OpenElsewhere open) override { openElsewhere_ = std::move(open); }

 private:
  [[nodiscard]] SqliteSession& session() const;
  [[nodiscard]] bool isOwnFile(const std::string& file) const;
  void insertIntoFile(const sql::Statement& statement, const std::string& file);
  void insertOnServer(const sql::InsertStatement& insert, const std::string& address);

  OpenSession openSession_;
  Patience patience_;
  OpenElsewhere openElsewhere_;
  std::shared_ptr<SqliteSession> session_;
};

}  // namespace pelmora::sqlite
