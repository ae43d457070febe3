// Tables of a host's own, and changes that belong together.
// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <array>

namespace pelmora {
namespace {

using test::CurveFile;
using test::failureOf;

class own_tables : public testing::Test {
 protected:
  CurveFile curves;
};

TEST_F(own_tables, need_a_database_that_can_be_designed) {
  EXPECT_EQ(failureOf([] { (void)hasTable({}, "x"); }).number, 91);
  EXPECT_EQ(failureOf([] { Transaction none{ConnectionPtr()}; }).number, 91);
}

class changes_made_together : public own_tables {
 protected:
  changes_made_together() { curves.execute("Insert into raw1 (seriesID, Roshko) VALUES (1, 2)"); }
  void addBatch(double roshko) const {
    const auto rows = curves.connection->openRecordset("Select * from raw1", CursorType::dynamic,
                                                       LockType::batchOptimistic);
    constexpr std::array<std::string_view, 2> fields{"seriesID", "Roshko"};
    rows->addRow(fields, std::array<Value, 2>{std::int64_t{1}, roshko});
    rows->updateBatch();
  }
};

TEST_F(changes_made_together, are_not_seen_in_a_view_that_began_before) {
  const ConnectionPtr other = sqliteConnection(curves.path);
  other->open();
  const auto count = [&] {
    return other->openRecordset("Select * from raw1", CursorType::forwardOnly, LockType::optimistic)
        ->recordCount();
  };
  {
    const ReadView view(other);
    EXPECT_EQ(count(), 1);
    Transaction transaction(curves.connection);
    addBatch(3);
    EXPECT_EQ(failureOf([&] { transaction.commit(); }).number, genericFailure);
    EXPECT_EQ(count(), 1);
  }
  addBatch(4);
  EXPECT_EQ(count(), 2);
}

TEST_F(changes_made_together, store_nothing_more_once_the_engine_has_undone_them) {
  // A rule of the database that ends the whole transaction, as a full disk does.
  test::PlainSqlite(curves.path)
      .run(
          "CREATE TRIGGER fails BEFORE INSERT ON curve BEGIN SELECT RAISE(ROLLBACK, 'no room'); "
          "END");
  {
    Transaction transaction(curves.connection);
    curves.execute("Delete * from raw1");
    EXPECT_NE(failureOf([&] { curves.execute("Insert into curve (seriesID) VALUES (1)"); }).number,
              0);
    EXPECT_NE(failureOf([&] { curves.execute("Insert into merge (seriesID) VALUES (1)"); }).number,
              0);
    EXPECT_NE(failureOf([&] { addBatch(9); }).number, 0);
    EXPECT_NE(failureOf([&] { transaction.commit(); }).number, 0);
  }
  EXPECT_EQ(curves.count("raw1"), 1);
  EXPECT_EQ(curves.count("merge"), 0);
  curves.execute("Insert into merge (seriesID) VALUES (1)");
  EXPECT_EQ(curves.count("merge"), 1);
}

}  // namespace
}  // namespace pelmora
