// The databases that take part in the contract of connections.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/memory_table.h"
#include "adapters/sqlite/sqlite_database.h"
#include "tests/contract/connection_contract.h"
#include "tests/contract/server_curves.h"
#include "tests/support/plain_sqlite.h"
#include "tests/support/scratch_folder.h"

#if defined(PELMORA_TEST_POSTGRESQL)
#include "adapters/postgresql/postgres_database.h"

#include <pelmora/own_tables.h>
#endif

#include <array>
#include <string>

namespace pelmora::test {

struct SqliteSample {
  static constexpr bool isWritable = true;

  ConnectionPtr connection() {
    const std::string path = folder.file("sample.db");
    PlainSqlite(path).run(
        "CREATE TABLE Sample (ID INTEGER PRIMARY KEY, Label TEXT, Amount REAL);"
        "INSERT INTO Sample VALUES (1, 'one', 1.5), (2, 'TWO', NULL), (3, 'drei', -3)");
    return sqliteConnection(path);
  }

  ScratchFolder folder;
};

// The database behind a stand's export.
struct MemorySample {
  static constexpr bool isWritable = false;

  static ConnectionPtr connection() {
    return memoryConnection(
        {[](MemoryTables& tables) {
           using enum OwnColumnType;
           tables.beginTable({"Sample", {{"ID", real}, {"Label", text}, {"Amount", real}}});
           tables.addRow(std::array{Value(std::int64_t{1}), Value("one"), Value(1.5)});
           tables.addRow(std::array{Value(std::int64_t{2}), Value("TWO"), Value()});
           tables.addRow(std::array{Value(std::int64_t{3}), Value("drei"), Value(-3.0)});
         },
         "Sample can only be read."});
  }
};

#if defined(PELMORA_TEST_POSTGRESQL)

struct ServerSample {
  static constexpr bool isWritable = true;

  // Null without a server.
  static ConnectionPtr connection() {
    if (!ServerCurves::lack().empty()) return nullptr;
    const ServerCurves curves;
    using enum OwnColumnType;
    createTable(curves.connection, {"Sample", {{"ID", key}, {"Label", text}, {"Amount", real}}});
    for (const char* row : {"(1, 'one', 1.5)", "(2, 'TWO', NULL)", "(3, 'drei', -3)"})
      curves.execute("Insert into Sample (ID, Label, Amount) VALUES " + std::string(row));
    return postgresConnection(curves.path);
  }
};

using Databases = ::testing::Types<SqliteSample, MemorySample, ServerSample>;
#else
using Databases = ::testing::Types<SqliteSample, MemorySample>;
#endif
INSTANTIATE_TYPED_TEST_SUITE_P(databases, ConnectionContract, Databases);

}  // namespace pelmora::test
