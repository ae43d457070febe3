// Prepared statements that go from use to use.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/statement_pool.h"

#include "adapters/sqlite/database_handle.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdint>
#include <string>

namespace pelmora::sqlite {
namespace {

class statement_pool : public testing::Test {
 protected:
  statement_pool() : database("", OpenMode::memory), pool(database.get()) {
    database.run("CREATE TABLE t (n INTEGER); INSERT INTO t VALUES (1), (2), (3)");
  }
  static std::int64_t number(StatementPool::Use& use) {
    return sqlite3_column_int64(use->get(), 0);
  }

  const std::string select = "SELECT n FROM t WHERE n >= ?1 ORDER BY n";
  DatabaseHandle database;
  StatementPool pool;
};

TEST_F(statement_pool, gives_the_same_statement_again_once_it_has_come_back) {
  const sqlite3_stmt* first = pool.take(select)->get();
  EXPECT_EQ(pool.take(select)->get(), first);
}

TEST_F(statement_pool, gives_two_users_of_one_text_a_statement_each) {
  StatementPool::Use outer = pool.take(select);
  outer->bind(1, std::int64_t{1});
  ASSERT_TRUE(outer->step());
  for (int i = 0; i < 2; ++i) {
    StatementPool::Use inner = pool.take(select);
    inner->bind(1, std::int64_t{3});
    ASSERT_TRUE(inner->step());
    EXPECT_EQ(number(inner), 3);
    EXPECT_FALSE(inner->step());
  }
  ASSERT_TRUE(outer->step());
  EXPECT_EQ(number(outer), 2);
}

TEST_F(statement_pool, gives_statements_that_know_nothing_of_the_use_before) {
  {
    StatementPool::Use use = pool.take(select);
    use->bind(1, std::int64_t{2});
    ASSERT_TRUE(use->step());  // more rows would come
  }
  StatementPool::Use use = pool.take(select);
  EXPECT_FALSE(use->step()) << "null compares with nothing";
}

TEST_F(statement_pool, ends_the_reading_of_a_use_that_failed) {
  database.run("CREATE UNIQUE INDEX once ON t (n)");
  try {
    StatementPool::Use use = pool.take("INSERT INTO t SELECT n + 1 FROM t ORDER BY n");
    use->step();
    ADD_FAILURE() << "2 is there already";
  } catch (const Error&) {
  }
  EXPECT_EQ(sqlite3_next_stmt(database.get(), nullptr) == nullptr, false);
  for (sqlite3_stmt* statement = sqlite3_next_stmt(database.get(), nullptr); statement != nullptr;
       statement = sqlite3_next_stmt(database.get(), statement)) {
    EXPECT_EQ(sqlite3_stmt_busy(statement), 0);
  }
  EXPECT_NO_THROW(database.run("DROP TABLE t"));
}

TEST_F(statement_pool, keeps_a_limited_number) {
  for (int i = 0; i < 1000; ++i) {
    StatementPool::Use use = pool.take("SELECT " + std::to_string(i));
    ASSERT_TRUE(use->step());
    ASSERT_EQ(number(use), i);
  }
  int kept = 0;
  for (sqlite3_stmt* statement = sqlite3_next_stmt(database.get(), nullptr); statement != nullptr;
       statement = sqlite3_next_stmt(database.get(), statement)) {
    ++kept;
  }
  EXPECT_LE(kept, 100);
}

TEST_F(statement_pool, keeps_nothing_that_cannot_be_prepared) {
  for (int i = 0; i < 2; ++i) EXPECT_THROW((void)pool.take("SELECT nothing FROM nowhere"), Error);
  EXPECT_EQ(sqlite3_next_stmt(database.get(), nullptr), nullptr);
}

}  // namespace
}  // namespace pelmora::sqlite
