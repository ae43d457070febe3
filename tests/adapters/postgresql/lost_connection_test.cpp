// What is and is not done when the server goes away.
// SPDX-License-Identifier: MIT
#include "adapters/sql_engine/engine_error.h"
#include "store/row_visits.h"
#include "tests/adapters/postgresql/server_test.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#ifdef PELMORA_SANITIZED
// The client library (libpqxx 6.4) loses the result of the statement in which its connection
// breaks.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libpqxx"; }
#endif

namespace pelmora {
namespace {

using test::failureOf;
using test::ServerCurves;

class lost_connection : public test::ServerTest {
 protected:
  // Ends every connection but the administrator's own, as a router or a restart does.
  static void endConnections() {
    server().run("postgres",
                 "SELECT pg_terminate_backend(pid, 5000) FROM pg_stat_activity WHERE pid <> "
                 "pg_backend_pid() AND backend_type = 'client backend'");
  }
};

TEST_F(lost_connection, does_not_stop_who_reads) {
  const ServerCurves curves;
  curves.execute("Insert into Fluids (Name) VALUES ('Water')");
  endConnections();
  EXPECT_EQ(curves.count("Fluids"), 1);
  server().crash();
  EXPECT_EQ(curves.count("Fluids"), 1);
}

TEST_F(lost_connection, between_the_rows_of_a_visit_ends_it) {
  const ServerCurves curves;
  const auto rows = curves.connection->openRecordset("Select * from Fluids", CursorType::dynamic,
                                                     LockType::batchOptimistic);
  constexpr std::array<std::string_view, 1> fields{"Name"};
  for (int i = 0; i < 5000; ++i) rows->addRow(fields, std::array<Value, 1>{std::to_string(i)});
  rows->updateBatch();
  int seen = 0;
  const auto failure = failureOf([&] {
    visitRows(*curves.connection, "Select Name from Fluids", [&](std::span<const Value>) {
      if (++seen == 1) endConnections();
    });
  });
  EXPECT_EQ(failure.number, sql::connectionLost);
  EXPECT_NE(failure.description.find("is not complete"), std::string::npos) << failure.description;
  EXPECT_LT(seen, 5000);
  curves.execute("Insert into Fluids (Name) VALUES ('Water')");
  EXPECT_EQ(curves.count("Fluids"), 5001);
}

TEST_F(lost_connection, of_a_write_says_that_its_outcome_is_not_known) {
  const ServerCurves curves;
  EXPECT_EQ(curves.count("Fluids"), 0);  // all tables are known now
  endConnections();
  const auto failure =
      failureOf([&] { curves.execute("Insert into Fluids (Name) VALUES ('Water')"); });
  EXPECT_EQ(failure.number, sql::connectionLost);
  EXPECT_NE(failure.description.find("is not known"), std::string::npos) << failure.description;
  // The next operation connects anew.
  curves.execute("Insert into Fluids (Name) VALUES ('Oil')");
  EXPECT_EQ(curves.count("Fluids"), 1);
}

TEST_F(lost_connection, of_a_transaction_stores_nothing_and_says_so) {
  const ServerCurves curves;
  {
    Transaction transaction(curves.connection);
    curves.execute("Insert into Fluids (Name) VALUES ('Water')");
    endConnections();
    const auto failure =
        failureOf([&] { curves.execute("Insert into Fluids (Name) VALUES ('Oil')"); });
    EXPECT_EQ(failure.number, sql::connectionLost);
    EXPECT_NE(failure.description.find("Nothing of the changes"), std::string::npos);
    EXPECT_EQ(failureOf([&] { curves.execute("Insert into Fluids (Name) VALUES ('x')"); }).number,
              sql::updateRefused);
    EXPECT_EQ(failureOf([&] { transaction.commit(); }).number, sql::updateRefused);
  }
  EXPECT_EQ(curves.count("Fluids"), 0);
  curves.execute("Insert into Fluids (Name) VALUES ('again')");
  EXPECT_EQ(curves.count("Fluids"), 1);
}

TEST_F(lost_connection, before_a_commit_is_found_out_by_asking_the_server) {
  const ServerCurves curves;
  {
    Transaction transaction(curves.connection);
    curves.execute("Insert into Fluids (Name) VALUES ('Water')");
    endConnections();
    const auto failure = failureOf([&] { transaction.commit(); });
    EXPECT_EQ(failure.number, sql::connectionLost);
    EXPECT_NE(failure.description.find("Nothing of the changes"), std::string::npos)
        << failure.description;
  }
  EXPECT_EQ(curves.count("Fluids"), 0);
}

TEST_F(lost_connection, of_a_batch_stores_all_of_it_or_nothing) {
  const ServerCurves curves;
  const auto rows = curves.connection->openRecordset("Select * from raw1", CursorType::dynamic,
                                                     LockType::batchOptimistic);
  constexpr std::array<std::string_view, 2> fields{"seriesID", "Roshko"};
  for (std::int64_t i = 0; i < 500; ++i)
    rows->addRow(fields, std::array<Value, 2>{std::int64_t{1}, static_cast<double>(i)});
  endConnections();
  EXPECT_EQ(failureOf([&] { rows->updateBatch(); }).number, sql::connectionLost);
  EXPECT_EQ(curves.count("raw1"), 0);
  rows->updateBatch();  // the rows are still kept
  EXPECT_EQ(curves.count("raw1"), 500);
}

}  // namespace
}  // namespace pelmora
