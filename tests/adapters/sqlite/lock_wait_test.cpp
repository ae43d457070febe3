// Waiting for others who use the database.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/lock_wait.h"

#include "base/run_time_error.h"
#include "store/lock_patience.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

namespace pelmora {
namespace {

using namespace std::chrono_literals;
using test::failureOf;

// In another connection of this process, which waits for us as another process does.
class lock_wait : public testing::Test {
 protected:
  [[nodiscard]] ConnectionPtr patient(std::chrono::milliseconds limit,
                                      std::function<bool(std::chrono::milliseconds)> goesOn = {}) {
    ConnectionPtr connection = sqliteConnection(file_.path, {limit, std::move(goesOn)});
    connection->open();
    return connection;
  }
  const test::CurveFile file_;
};

TEST_F(lock_wait, lasts_until_the_other_has_finished) {
  auto other = std::make_unique<Transaction>(file_.connection);
  int looks = 0;
  const ConnectionPtr waiting = patient(1h, [&](std::chrono::milliseconds) {
    if (++looks == 5) other.reset();
    return true;
  });
  waiting->execute("Insert into Fluids (Name) VALUES ('a')");
  EXPECT_EQ(file_.count("Fluids"), 1);
  EXPECT_GE(looks, 5);
}

TEST_F(lock_wait, can_be_shortened_on_an_open_connection) {
  const Transaction other(file_.connection);
  const ConnectionPtr waiting = patient(24h);
  auto& patience = dynamic_cast<LockPatience&>(*waiting);
  patience.setLockPatience(20ms);
  EXPECT_EQ(patience.lockPatience(), 20ms);
  EXPECT_EQ(failureOf([&] { waiting->execute("Delete * from meter"); }).number, genericFailure);
  waiting->close();
  waiting->open();
  EXPECT_EQ(failureOf([&] { waiting->execute("Delete * from meter"); }).number, genericFailure);
}

TEST_F(lock_wait, lasts_for_one_who_reads_as_well) {
  test::PlainSqlite other(file_.path);
  int looks = 0;
  const ConnectionPtr waiting = patient(1h, [&](std::chrono::milliseconds) {
    if (++looks == 5) other.run("ROLLBACK");
    return true;
  });
  other.run("BEGIN EXCLUSIVE");
  EXPECT_EQ(
      waiting->openRecordset("Select * from meter", CursorType::forwardOnly, LockType::optimistic)
          ->recordCount(),
      0);
  EXPECT_EQ(looks, 5);
}

TEST_F(lock_wait, lasts_for_the_end_of_a_transaction_as_well) {
  test::PlainSqlite reader(file_.path);
  int looks = 0;
  const ConnectionPtr waiting = patient(1h, [&](std::chrono::milliseconds) {
    if (++looks == 5) reader.run("ROLLBACK");
    return true;
  });
  Transaction transaction(waiting);
  waiting->execute("Insert into Fluids (Name) VALUES ('a')");
  reader.run("BEGIN; SELECT * FROM meter");
  transaction.commit();
  EXPECT_EQ(file_.count("Fluids"), 1);
}

TEST_F(lock_wait, ends_with_its_limit) {
  const Transaction other(file_.connection);
  const auto start = std::chrono::steady_clock::now();
  const ConnectionPtr waiting = patient(400ms);
  EXPECT_EQ(failureOf([&] { waiting->execute("Delete from meter"); }).number, genericFailure);
  EXPECT_GE(std::chrono::steady_clock::now() - start, 400ms);
}

TEST_F(lock_wait, ends_when_it_is_told_to) {
  const Transaction other(file_.connection);
  int looks = 0;
  const ConnectionPtr waiting = patient(1h, [&](std::chrono::milliseconds) { return ++looks < 3; });
  EXPECT_EQ(failureOf([&] { waiting->execute("Delete from meter"); }).number, genericFailure);
  EXPECT_EQ(looks, 3);
}

TEST_F(lock_wait, can_be_left_out) {
  const Transaction other(file_.connection);
  int looks = 0;
  const ConnectionPtr waiting =
      patient(0ms, [&](std::chrono::milliseconds) { return ++looks > 0; });
  EXPECT_EQ(failureOf([&] { waiting->execute("Delete from meter"); }).number, genericFailure);
  EXPECT_EQ(looks, 0);
}

TEST(lock_wait_pause, is_shorter_for_those_who_have_waited_longer) {
  auto before = sqlite::pauseAfter(0us, 30s);
  for (auto waited = 0s; waited < 30s; waited += 1s) {
    const auto pause = sqlite::pauseAfter(waited, 30s);
    EXPECT_LE(pause, before);
    EXPECT_GE(pause, 1ms);
    before = pause;
  }
  EXPECT_LE(5 * before, sqlite::pauseAfter(0us, 30s));
}

TEST(lock_wait_pause, is_shorter_for_those_who_would_be_refused_next) {
  EXPECT_LT(sqlite::pauseAfter(0ms, 250ms), sqlite::pauseAfter(0ms, 30s));
  EXPECT_LT(sqlite::pauseAfter(200ms, 250ms), sqlite::pauseAfter(0ms, 250ms));
}

// As its owner may have decided: the file then has a log and a shared memory beside it.
TEST_F(lock_wait, is_not_needed_for_readers_of_a_database_with_a_write_ahead_log) {
  file_.connection->close();
  test::PlainSqlite(file_.path).run("PRAGMA journal_mode = WAL");
  file_.connection->open();
  const ConnectionPtr writer = patient(0ms);
  const ReadView view(file_.connection);
  EXPECT_EQ(file_.count("Fluids"), 0);
  {
    Transaction transaction(writer);
    writer->execute("Insert into Fluids (Name) VALUES ('a')");
    EXPECT_EQ(file_.count("Fluids"), 0);
    transaction.commit();
  }
  EXPECT_EQ(file_.count("Fluids"), 0);
}

TEST_F(lock_wait, begins_a_change_of_a_database_with_a_log_on_its_latest_state) {
  file_.connection->close();
  test::PlainSqlite(file_.path).run("PRAGMA journal_mode = WAL");
  file_.connection->open();
  const ConnectionPtr other = patient(0ms);
  const auto rows = file_.select("Select * from Fluids");  // read, and its moment is over
  other->execute("Insert into Fluids (Name) VALUES ('a')");
  file_.execute("Insert into Fluids (Name) SELECT Name from Fluids");
  Transaction transaction(file_.connection);
  EXPECT_EQ(file_.count("Fluids"), 2);
  file_.execute("Delete from Fluids");
  transaction.commit();
  EXPECT_EQ(file_.count("Fluids"), 0);
}

}  // namespace
}  // namespace pelmora
