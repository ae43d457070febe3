// Changes that belong together, on each engine.
// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "tests/contract/engines.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <array>

namespace pelmora {
namespace {

using test::failureOf;

const OwnTable ownNotes{"own_notes", {{"ID", OwnColumnType::key}, {"Words", OwnColumnType::text}}};

void addBatch(const ConnectionPtr& connection, double roshko) {
  const auto rows = connection->openRecordset("Select * from raw1", CursorType::dynamic,
                                              LockType::batchOptimistic);
  constexpr std::array<std::string_view, 2> fields{"seriesID", "Roshko"};
  rows->addRow(fields, std::array<Value, 2>{std::int64_t{1}, roshko});
  rows->updateBatch();
}

// One point from the beginning.
template <class Curves>
struct OnePoint : Curves {
  OnePoint() { this->execute("Insert into raw1 (seriesID, Roshko) VALUES (1, 2)"); }
};

template <class Curves>
class changes_made_together : public test::CurveContract<Curves> {};
TYPED_TEST_SUITE(changes_made_together, test::Engines);

TYPED_TEST(changes_made_together, are_all_kept_after_commit) {
  const OnePoint<TypeParam> curves;
  {
    Transaction transaction(curves.connection);
    curves.execute("Delete * from raw1");
    addBatch(curves.connection, 3);
    addBatch(curves.connection, 4);
    createTable(curves.connection, ownNotes);
    transaction.commit();
  }
  EXPECT_EQ(curves.count("raw1"), 2);
  EXPECT_TRUE(hasTable(curves.connection, "own_notes"));
}

TYPED_TEST(changes_made_together, are_all_undone_without_commit) {
  const OnePoint<TypeParam> curves;
  {
    const Transaction transaction(curves.connection);
    curves.execute("Delete * from raw1");
    addBatch(curves.connection, 3);
    createTable(curves.connection, ownNotes);
  }
  EXPECT_EQ(curves.select("Select Roshko from raw1")->value(0), Value(2.0));
  EXPECT_FALSE(hasTable(curves.connection, "own_notes"));
  addBatch(curves.connection, 5);
  EXPECT_EQ(curves.count("raw1"), 2);
}

TYPED_TEST(changes_made_together, keep_others_from_writing_but_not_from_reading) {
  const OnePoint<TypeParam> curves;
  const ConnectionPtr other = curves.another();
  const Transaction transaction(curves.connection);
  curves.execute("Delete * from raw1");
  EXPECT_EQ(failureOf([&] { Transaction second(other); }).number, genericFailure);
  EXPECT_EQ(
      other->openRecordset("Select * from raw1", CursorType::forwardOnly, LockType::optimistic)
          ->recordCount(),
      1);
}

TYPED_TEST(changes_made_together, let_others_read_however_many_they_are) {
  const OnePoint<TypeParam> curves;
  const ConnectionPtr other = curves.another();
  const Transaction transaction(curves.connection);
  // Some 5 MB: twice what the engine keeps in memory by default.
  const std::string text(500000, 'x');
  for (int i = 0; i < 10; ++i) {
    curves.execute("INSERT INTO DataFitResults (seriesID, summary) VALUES (1, '" + text + "')");
  }
  EXPECT_EQ(
      other->openRecordset("Select * from raw1", CursorType::forwardOnly, LockType::optimistic)
          ->recordCount(),
      1);
}

TYPED_TEST(changes_made_together, are_not_nested) {
  const OnePoint<TypeParam> curves;
  const Transaction transaction(curves.connection);
  EXPECT_NE(failureOf([&] { Transaction second(curves.connection); }).number, 0);
}

TYPED_TEST(changes_made_together, go_on_behind_a_statement_that_has_failed) {
  const OnePoint<TypeParam> curves;
  {
    Transaction transaction(curves.connection);
    addBatch(curves.connection, 3);
    EXPECT_EQ(failureOf([&] {
                curves.execute(
                    "Insert into raw1 (seriesID, Roshko) Select 1 as seriesID, Roshko/0 as Roshko "
                    "from raw1");
              }).number,
              11);
    EXPECT_NE(failureOf([&] { (void)curves.select("Select * from nowhere"); }).number, 0);
    addBatch(curves.connection, 4);
    EXPECT_EQ(curves.count("raw1"), 3);
    transaction.commit();
  }
  EXPECT_EQ(curves.count("raw1"), 3);
}

TYPED_TEST(changes_made_together, wait_for_those_of_others) {
  const OnePoint<TypeParam> curves;
  const ConnectionPtr other = curves.another();
  {
    const Transaction transaction(curves.connection);
    for (const char* statement : {"Delete * from raw1", "Update raw1 set Roshko = 5",
                                  "Insert into merge (seriesID) VALUES (1)"})
      EXPECT_EQ(failureOf([&] { other->execute(statement); }).number, genericFailure) << statement;
    EXPECT_EQ(failureOf([&] { addBatch(other, 5); }).number, genericFailure);
  }
  addBatch(other, 5);
  EXPECT_EQ(curves.count("raw1"), 2);
}

TYPED_TEST(changes_made_together, are_not_seen_by_who_reads_a_view) {
  const OnePoint<TypeParam> curves;
  const ConnectionPtr other = curves.another();
  const auto count = [&] {
    return other->openRecordset("Select * from raw1", CursorType::forwardOnly, LockType::optimistic)
        ->recordCount();
  };
  {
    const ReadView view(other);
    EXPECT_EQ(count(), 1);
    // The engine may also refuse the change until the view has ended.
    (void)failureOf([&] { addBatch(curves.connection, 3); });
    EXPECT_EQ(count(), 1);
  }
  EXPECT_EQ(count(), curves.count("raw1"));
}

}  // namespace
}  // namespace pelmora
