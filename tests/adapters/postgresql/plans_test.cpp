// Look-ups stay as quick as they are when a database grows: they find their rows by indexes.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/postgres_renderer.h"
#include "adapters/postgresql/postgres_session.h"
#include "adapters/sql_dialect/parser.h"
#include "tests/adapters/postgresql/server_test.h"
#include "tests/support/look_up_statements.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace pelmora {
namespace {

std::size_t occurrences(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

class plans : public test::ServerTest {
 protected:
  // As the server plans where reading a whole table would cost more than anything else.
  static std::string planOf(postgres::PostgresSession& session, const std::string& statement) {
    const postgres::PostgresWriter writer;
    const std::string sql =
        writer.write(sql::parseStatement(statement), session.catalogue(), nullptr);
    session.read(
        "SET enable_seqscan TO off; SET enable_hashjoin TO off; SET enable_mergejoin TO off; "
        "SET enable_material TO off");
    const postgres::ServerRows rows = session.read("EXPLAIN " + sql);
    std::string plan;
    Value line;
    for (std::size_t row = 0; row < rows.rows.rows(); ++row) {
      rows.rows.read(row, 0, line);
      plan += std::get<std::string>(line) + '\n';
    }
    return plan;
  }
};

TEST_F(plans, of_every_look_up_and_deletion_use_an_index) {
  const test::ServerCurves curves;
  postgres::PostgresSession session(curves.path, {});
  for (const std::string& statement : test::lookUpStatements()) {
    const std::string plan = planOf(session, statement);
    EXPECT_EQ(plan.find("Seq Scan"), std::string::npos) << statement << '\n' << plan;
    // An index that is read from one end to the other has no condition.
    EXPECT_EQ(occurrences(plan, "Index Scan using") + occurrences(plan, "Index Only Scan using") +
                  occurrences(plan, "Bitmap Index Scan"),
              occurrences(plan, "Index Cond"))
        << statement << '\n'
        << plan;
  }
}

TEST_F(plans, of_rows_of_many_series_have_one_condition) {
  const test::ServerCurves curves;
  postgres::PostgresSession session(curves.path, {});
  const std::string plan =
      planOf(session, "Delete from merge where seriesID in (1, 2, 3, 5, 8, 13, 21)");
  EXPECT_EQ(occurrences(plan, "Index Cond"), 1U) << plan;
}

TEST_F(plans, are_not_compiled) {
  const test::ServerCurves curves;
  postgres::PostgresSession session(curves.path, {});
  Value setting;
  session.read("SHOW jit").rows.read(0, 0, setting);
  EXPECT_EQ(std::get<std::string>(setting), "off");
}

TEST_F(plans, of_series_in_blocks_need_no_sort) {
  const test::ServerCurves curves;
  postgres::PostgresSession session(curves.path, {});
  session.read("SET enable_sort TO off");  // it would sort the few rows that it believes in
  for (const char* statement :
       {"Select ID from series where ID>7 ORDER BY ID", "Select TOP 5 * from series where ID>7"}) {
    const std::string plan = planOf(session, statement);
    EXPECT_EQ(plan.find("Sort"), std::string::npos) << statement << '\n' << plan;
  }
}

}  // namespace
}  // namespace pelmora
