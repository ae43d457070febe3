// A connection that runs statements of the dialect on a PostgreSQL server.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/lock_patience.h"
#include "store/range_leases.h"
#include "store/row_visits.h"
#include "store/table_design.h"
#include "store/transactions.h"

#include <pelmora/patience.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>

namespace pelmora::postgres {

class PostgresSession;

// Record sets keep working on their rows after close(); storing rows is then Error 3709.
class PostgresConnection : public Connection,
                           public TableDesign,
                           public Transactions,
                           public LockPatience,
                           public RangeLeases,
                           public RowVisits {
 public:
  explicit PostgresConnection(std::string location, Patience patience = {})
      : location_(std::move(location)), patience_(std::move(patience)) {}
  ~PostgresConnection() override;
  PostgresConnection(const PostgresConnection&) = delete;
  PostgresConnection& operator=(const PostgresConnection&) = delete;

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
  [[nodiscard]] bool hasCurveTables() const override { return isOpen(); }
  [[nodiscard]] bool isReadOnly() const override { return false; }

  void begin() override;
  void beginReading() override;
  [[nodiscard]] bool hasTransaction() const noexcept override;
  void commit() override;
  void rollback() noexcept override;

  [[nodiscard]] std::chrono::milliseconds lockPatience() const override { return patience_.limit; }
  void setLockPatience(std::chrono::milliseconds limit) override;

  [[nodiscard]] std::optional<LeasedRange> leaseRange(std::int64_t job, const std::string& worker,
                                                      std::chrono::seconds time) override;
  [[nodiscard]] bool extendLease(const LeasedRange& range, std::chrono::seconds time) override;
  void limitTransaction(std::chrono::seconds time) override;
  [[nodiscard]] std::int64_t secondsSince1970() override;

 private:
  [[nodiscard]] PostgresSession& session() const;

  std::string location_;
  Patience patience_;
  std::shared_ptr<PostgresSession> session_;
};

}  // namespace pelmora::postgres
