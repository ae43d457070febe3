// Who asks for an end of a long reading gets it.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/postgres_session.h"
#include "base/run_time_error.h"
#include "tests/adapters/postgresql/server_test.h"

#include <gtest/gtest.h>

#include <chrono>

namespace pelmora {
namespace {

using namespace std::chrono_literals;
using test::failureOf;

class stopped_reading : public test::ServerTest {
 protected:
  // Far longer than any test may take.
  static constexpr const char* endless = "SELECT pg_sleep(3600)";
};

TEST_F(stopped_reading, ends_with_an_error_of_its_own) {
  const test::ServerCurves curves;
  constexpr int never = -1000000;
  int asked = never;
  postgres::PostgresSession session(
      curves.path, {.limit = 250ms, .goesOn = {}, .stopRequested = [&] { return ++asked >= 3; }});
  asked = 0;  // connecting asks as often as it takes
  EXPECT_EQ(failureOf([&] { session.read(endless); }).number, operationStopped);
  asked = never;
  EXPECT_EQ(session.read("SELECT 1").rows.rows(), 1U);
}

TEST_F(stopped_reading, leaves_a_transaction_as_it_was) {
  const test::ServerCurves curves;
  bool isStopped = false;
  postgres::PostgresSession session(
      curves.path, {.limit = 250ms, .goesOn = {}, .stopRequested = [&] { return isStopped; }});
  session.begin();
  session.write("INSERT INTO \"Fluids\" (\"Name\") VALUES ('Water')");
  isStopped = true;
  EXPECT_EQ(failureOf([&] { session.read(endless); }).number, operationStopped);
  isStopped = false;
  session.commit();
  EXPECT_EQ(curves.count("Fluids"), 1);
}

}  // namespace
}  // namespace pelmora
