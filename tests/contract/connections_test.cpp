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
    MemoryTable table{"Sample", {{"ID", true}, {"Label", false}, {"Amount", true}}, {}};
    table.read = [](const MemoryTable::AddRow& addRow) {
      addRow(std::array{Value(std::int64_t{1}), Value("one"), Value(1.5)});
      addRow(std::array{Value(std::int64_t{2}), Value("TWO"), Value()});
      addRow(std::array{Value(std::int64_t{3}), Value("drei"), Value(-3.0)});
    };
    return memoryTableConnection(table);
  }
};

using Databases = ::testing::Types<SqliteSample, MemorySample>;
INSTANTIATE_TYPED_TEST_SUITE_P(databases, ConnectionContract, Databases);

}  // namespace pelmora::test
