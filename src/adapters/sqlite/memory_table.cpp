// SPDX-License-Identifier: MIT
#include "adapters/sqlite/memory_table.h"

#include "adapters/sqlite/sqlite_expression.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_connection.h"
#include "adapters/sqlite/sqlite_session.h"
#include "adapters/sqlite/transaction.h"

#include <utility>

namespace pelmora {

namespace {

std::shared_ptr<sqlite::SqliteSession> readTable(const MemoryTable& table) {
  auto session = std::make_shared<sqlite::SqliteSession>();
  std::string columns;
  std::string parameters;
  for (const MemoryTable::Column& column : table.columns) {
    columns += (columns.empty() ? "" : ", ") + sqlite::quotedName(column.name) +
               (column.isNumber ? " REAL" : "");
    parameters += parameters.empty() ? "?" : ", ?";
  }
  const std::string name = sqlite::quotedName(table.name);
  session->handle().run(("CREATE TABLE " + name + " (" + columns + ")").c_str());
  sqlite::Transaction transaction(session->handle());
  sqlite::PreparedStatement insert(session->database(),
                                   "INSERT INTO " + name + " VALUES (" + parameters + ")");
  table.read([&](std::span<const Value> values) {
    for (std::size_t i = 0; i < values.size(); ++i) insert.bind(static_cast<int>(i) + 1, values[i]);
    insert.step();
    insert.reset();
  });
  transaction.commit();
  session->freeze();
  return session;
}

}  // namespace

ConnectionPtr memoryTableConnection(MemoryTable table) {
  return std::make_shared<sqlite::SqliteConnection>(
      [table = std::move(table)](const Patience&) { return readTable(table); });
}

}  // namespace pelmora
