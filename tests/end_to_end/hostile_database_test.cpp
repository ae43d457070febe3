// Curve databases that somebody has prepared against whoever opens them.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_sqlite.h"

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class hostile_database : public CommandTest {
 protected:
  hostile_database() {
    init();
    done(raw());
  }
  void prepare(const std::string& statements) const { PlainSqlite(curves).run(statements); }
  [[nodiscard]] Arguments raw() const {
    return {"raw",      curves, write("p.csv", "1,2\n3,4\n"), "--meter", "P", "--register",
            "--series", "S"};
  }
};

constexpr const char* endless =
    "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) SELECT x";

TEST_F(hostile_database, whose_meters_are_a_recursive_view_is_refused) {
  prepare("DROP TABLE meter; CREATE VIEW meter AS " + std::string(endless) +
          " AS ID, 'P' AS SerialNumber, 'P' AS SerialNumberAdjusted, 0 AS ReCalID FROM c");
  for (const Arguments& command : std::vector<Arguments>{
           {"show", curves}, raw(), {"doctor", curves}, {"refit", curves, "--all"}})
    EXPECT_THAT(trouble(3, command),
                AllOf(HasSubstr("'meter'"), HasSubstr("is a view, not a table")))
        << command[0];
}

TEST_F(hostile_database, whose_trigger_does_not_end_is_refused_and_keeps_its_points) {
  prepare(
      "CREATE TABLE t (a); INSERT INTO t VALUES (1),(2),(3),(4),(5),(6),(7),(8),(9),(10);"
      "CREATE TRIGGER bomb AFTER INSERT ON raw1 BEGIN INSERT INTO t SELECT 1 FROM t t0, t t1, "
      "t t2, t t3, t t4, t t5, t t6, t t7, t t8, t t9, t t10, t t11, t t12; END");
  EXPECT_THAT(trouble(3, raw()), AllOf(HasSubstr("'bomb'"), HasSubstr("ran too long")));
  prepare("DROP TRIGGER bomb");
  EXPECT_EQ(
      done({"show", curves, "--meter", "P", "--series", "S", "--json"}).json()["raw"][0].size(),
      2U);
}

TEST_F(hostile_database, whose_trigger_recurses_is_refused) {
  prepare(
      "CREATE TABLE t (a); CREATE TRIGGER bomb AFTER DELETE ON raw1 BEGIN INSERT INTO t SELECT "
      "x FROM (" +
      std::string(endless) + " FROM c); END");
  EXPECT_THAT(trouble(3, raw()), HasSubstr("'bomb'"));
}

}  // namespace
}  // namespace pelmora::test
