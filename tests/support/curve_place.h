// Where a test makes its curve database: a file, or, in a second run of the same tests, a database
// of its own on a server.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/postgres_server.h"
#include "tests/support/scratch_folder.h"

#include <cstdlib>
#include <string>
#include <utility>

namespace pelmora::test {

// As pelmora_on_server (cmake/PelmoraTests.cmake) sets it.
inline bool isRunOnServer() { return std::getenv("PELMORA_TEST_ON_SERVER") != nullptr; }

// Empty unless the run needs a server that is not there: its tests are then skipped.
inline std::string lackOfServer() {
  return isRunOnServer() ? PostgresServer::lack() : std::string();
}

// Whether a test has changed the tables of its database, not only rows.
inline bool& isCurvePlaceAltered() {
  static bool isAltered = false;
  return isAltered;
}

// Making a database on a server takes longer than most tests: all tests of a program have one,
// which is empty again for each, and a new one behind a test that has altered it. A program must
// not have two places at the same time.
inline std::string newCurvePlace(const ScratchFolder& folder) {
  if (!isRunOnServer() || !lackOfServer().empty()) return folder.file("curves.db");
  PostgresServer& server = PostgresServer::running();
  static std::string name;
  if (name.empty() || std::exchange(isCurvePlaceAltered(), false)) {
    name = server.newDatabase();
  } else {
    // Without a record of its migrations it takes the tables for new ones. TRUNCATE creates new
    // files for a table and its indexes, which takes longer than deleting a few rows. With
    // autovacuum off, rows keep the order in which they were added even where others were deleted.
    server.run(name,
               "DO $f$ DECLARE t text; isFull boolean; BEGIN "
               "FOR t IN SELECT tablename FROM pg_tables WHERE schemaname = 'public' LOOP "
               "EXECUTE format('SELECT EXISTS (SELECT FROM %I)', t) INTO isFull; "
               "IF pg_relation_size(quote_ident(t)) > 65536 THEN EXECUTE format('TRUNCATE %I', t); "
               "ELSIF isFull THEN EXECUTE format('DELETE FROM %I', t); END IF; END LOOP; "
               "FOR t IN SELECT sequencename FROM pg_sequences WHERE schemaname = 'public' AND "
               "last_value IS NOT NULL LOOP PERFORM setval(quote_ident(t), 1, false); "
               "END LOOP; END $f$");
  }
  return server.address(name);
}

}  // namespace pelmora::test
