// SPDX-License-Identifier: MIT
#include "adapters/sqlite/memory_table.h"

#include "adapters/sqlite/sqlite_expression.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_connection.h"
#include "adapters/sqlite/sqlite_design.h"
#include "adapters/sqlite/sqlite_session.h"
#include "adapters/sqlite/transaction.h"

#include <optional>
#include <utility>

namespace pelmora {

namespace {

class SessionTables : public MemoryTables {
 public:
  explicit SessionTables(sqlite::SqliteSession& session) : session_(session) {}

  void beginTable(const OwnTable& table) override {
    session_.handle().run(sqlite::createTableStatement(table).c_str());
    std::string parameters;
    for (std::size_t i = 0; i < table.Columns.size(); ++i) parameters += i == 0 ? "?" : ", ?";
    insert_.emplace(session_.database(), "INSERT INTO " + sqlite::quotedName(table.Name) +
                                             " VALUES (" + parameters + ")");
  }
  void addRow(std::span<const Value> values) override {
    for (std::size_t i = 0; i < values.size(); ++i)
      insert_->bind(static_cast<int>(i) + 1, values[i]);
    insert_->step();
    insert_->reset();
  }

 private:
  sqlite::SqliteSession& session_;
  std::optional<sqlite::PreparedStatement> insert_;
};

std::shared_ptr<sqlite::SqliteSession> readTables(const MemoryDatabase& database) {
  auto session = std::make_shared<sqlite::SqliteSession>();
  sqlite::Transaction transaction(session->handle());
  SessionTables tables(*session);
  database.read(tables);
  transaction.commit();
  session->freeze(database.whyReadOnly);
  return session;
}

}  // namespace

ConnectionPtr memoryConnection(MemoryDatabase database) {
  return std::make_shared<sqlite::SqliteConnection>(
      [database = std::move(database)](const Patience&) { return readTables(database); });
}

}  // namespace pelmora
