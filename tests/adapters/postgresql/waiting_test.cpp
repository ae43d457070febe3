// Waiting for one's turn to write.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/client.h"
#include "adapters/postgresql/postgres_session.h"
#include "base/run_time_error.h"
#include "tests/adapters/postgresql/server_test.h"

#include <pelmora/own_tables.h>
#include <pelmora/patience.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace pelmora {
namespace {

using namespace std::chrono_literals;
using test::failureOf;
using test::ServerCurves;

class waiting : public test::ServerTest {
 protected:
  static ConnectionPtr patient(const ServerCurves& curves, Patience patience) {
    ConnectionPtr connection = postgresConnection(curves.path, patience);
    connection->open();
    return connection;
  }
};

TEST_F(waiting, ends_with_the_error_that_means_a_lock) {
  const ServerCurves curves;
  const ConnectionPtr other = patient(curves, {.limit = 50ms, .goesOn = {}});
  const Transaction transaction(curves.connection);
  const auto failure = failureOf([&] { other->execute("Delete from raw1"); });
  EXPECT_EQ(failure.number, genericFailure);
  EXPECT_NE(failure.description.find("locked by another user"), std::string::npos);
}

TEST_F(waiting, ends_when_the_one_who_waits_says_so) {
  const ServerCurves curves;
  int asked = 0;
  const ConnectionPtr other = patient(
      curves, {.limit = 1h, .goesOn = [&](std::chrono::milliseconds) { return ++asked < 2; }});
  const Transaction transaction(curves.connection);
  EXPECT_EQ(failureOf([&] { other->execute("Delete from raw1"); }).number, genericFailure);
  EXPECT_EQ(asked, 2);
}

TEST_F(waiting, goes_on_to_the_change_when_the_turn_comes) {
  const ServerCurves curves;
  const ConnectionPtr other = patient(curves, {.limit = 1h, .goesOn = {}});
  std::thread waiter;
  {
    Transaction transaction(curves.connection);
    curves.execute("Insert into Fluids (Name) VALUES ('first')");
    waiter = std::thread([&] { other->execute("Insert into Fluids (Name) VALUES ('second')"); });
    transaction.commit();
  }
  waiter.join();
  EXPECT_EQ(curves.count("Fluids"), 2);
}

TEST_F(waiting, also_for_rows_that_another_program_has_locked) {
  const ServerCurves curves;
  curves.execute("Insert into Fluids (Name) VALUES ('Water')");
  postgres::Client otherProgram(curves.path);
  otherProgram.run("BEGIN; SELECT * FROM \"Fluids\" FOR UPDATE");
  EXPECT_EQ(failureOf([&] { curves.execute("Update Fluids set Name = 'x'"); }).number,
            genericFailure);
  otherProgram.run("ROLLBACK");
  curves.execute("Update Fluids set Name = 'x'");
}

// As of a table that its owner alters.
TEST_F(waiting, also_of_a_reader_for_a_table_that_another_program_has_locked) {
  const ServerCurves curves;
  int asked = 0;
  const ConnectionPtr reader = patient(
      curves, {.limit = 1h, .goesOn = [&](std::chrono::milliseconds) { return ++asked < 2; }});
  const ConnectionPtr hurried = patient(curves, {.limit = 50ms, .goesOn = {}});
  postgres::Client otherProgram(curves.path);
  otherProgram.run("BEGIN; LOCK TABLE \"Fluids\", pelmora_migration");
  EXPECT_EQ(failureOf([&] { (void)curves.count("Fluids"); }).number, genericFailure);
  EXPECT_EQ(failureOf([&] { (void)postgresConnection(curves.path)->open(); }).number,
            genericFailure);
  EXPECT_EQ(failureOf([&] { reader->execute("Select * from Fluids"); }).number, genericFailure);
  EXPECT_EQ(asked, 2);
  {
    const ReadView snapshot(hurried);
    EXPECT_EQ(failureOf([&] { hurried->execute("Select * from Fluids"); }).number, genericFailure);
  }
  otherProgram.run("ROLLBACK");
  EXPECT_EQ(failureOf([&] { reader->execute("Select * from Fluids"); }).number, 0);
}

// As another program's locks bring them about.
TEST_F(waiting, also_means_a_deadlock_and_a_refused_serialization) {
  const ServerCurves curves;
  postgres::PostgresSession session(curves.path, {});
  for (const char* state : {"40001", "40P01", "55P03"}) {
    const auto failure = failureOf([&] {
      (void)session.read("DO $f$ BEGIN RAISE EXCEPTION 'refused' USING ERRCODE = '" +
                         std::string(state) + "'; END $f$");
    });
    EXPECT_EQ(failure.number, genericFailure) << state;
    EXPECT_NE(failure.description.find(state), std::string::npos) << failure.description;
  }
}

TEST_F(waiting, loses_no_change_of_many_writers) {
  const ServerCurves curves;
  curves.execute("Insert into meter (SerialNumber, ReCalID) VALUES ('M', 0)");
  constexpr int writers = 8, changes = 20;
  std::atomic<int> refused{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < writers; ++i) {
    threads.emplace_back([&] {
      const ConnectionPtr own = patient(curves, {.limit = 1h, .goesOn = {}});
      for (int change = 0; change < changes; ++change) {
        try {
          Transaction transaction(own);
          const auto rows = own->openRecordset("Select ReCalID from meter", CursorType::forwardOnly,
                                               LockType::optimistic);
          const auto count = std::get<std::int64_t>(rows->value(0));
          own->execute("Update meter set ReCalID = " + std::to_string(count + 1));
          transaction.commit();
        } catch (const Error&) {
          ++refused;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(refused, 0);
  EXPECT_EQ(curves.select("Select ReCalID from meter")->value(0),
            Value(std::int64_t{writers * changes}));
}

}  // namespace
}  // namespace pelmora
