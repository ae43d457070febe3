// The databases that take part in the contract of connections.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/memory_table.h"
#include "adapters/sqlite/sqlite_database.h"
#include "tests/contract/connection_contract.h"
#include "tests/support/plain_sqlite.h"
#include "tests/support/scratch_folder.h"

#include <array>

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

using Databases = ::testing::Types<SqliteSample, MemorySample>;
INSTANTIATE_TYPED_TEST_SUITE_P(databases, ConnectionContract, Databases);

}  // namespace pelmora::test
