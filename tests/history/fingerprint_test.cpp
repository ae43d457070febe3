// Telling whether rows are still what they were.
// SPDX-License-Identifier: MIT
#include "history/fingerprint.h"
#include "tests/history/history_fixture.h"

#include <pelmora/curve_settings.h>

#include <set>

namespace pelmora::test {
namespace {

class fingerprint : public HistoryTest {
 protected:
  [[nodiscard]] std::uint64_t ofPoints() const {
    return history::fingerprint(curves.connection, history::fittedPoints(1, 1));
  }
  [[nodiscard]] std::uint64_t ofAll() const {
    return history::fingerprint(curves.connection, history::fittedPointsAndCurve(1, 1));
  }
};

TEST_F(fingerprint, stays_the_same_while_nothing_changes) {
  const auto before = ofAll();
  curves.execute("Update raw1 set Roshko=77 where seriesID=2");  // another series
  EXPECT_EQ(ofAll(), before);
}

TEST_F(fingerprint, tells_every_change_from_every_other) {
  std::set<std::uint64_t> seen{ofPoints()};
  const std::vector<std::string> changes{
      "Update raw2 set Roshko=3 where seriesID=1 and Roshko>2",  // by its last bit
      "Update raw1 set Strouhal=-Strouhal, Roshko=-Roshko where seriesID=1",
      "Update raw1 set Strouhal=NULL where seriesID=1 and Strouhal=-7",
      "Update raw1 set Strouhal='seven' where seriesID=1 and Strouhal IS NULL",
      "Insert into raw4 (seriesID, Roshko, Strouhal) VALUES (1, 1, 1)",
      "Update raw4 set Strouhal=NULL where seriesID=1",
      "Insert into raw3 (seriesID, Roshko, Strouhal) VALUES (1, 1, 1)",
      "Update series set name='Rotor C' where ID=1",
      "Update meter set ReCalID=7 where ID=1",
      "Update meter set SerialNumber='M2' where ID=1",
      "Delete from series where ID=1"};
  for (const std::string& change : changes) {
    PlainSqlite(curves.path).run(change);
    EXPECT_TRUE(seen.insert(ofPoints()).second) << change;
  }
}

TEST_F(fingerprint, tells_two_points_in_another_order) {
  const auto before = ofPoints();
  PlainSqlite sqlite(curves.path);
  sqlite.run("Delete from raw1 where seriesID=1 and Strouhal=7");
  sqlite.run("Insert into raw1 (seriesID, Roshko, Strouhal) VALUES (1, 2, 7)");
  const auto asBefore = ofPoints();
  EXPECT_EQ(asBefore, before);  // the last point again as the last
  sqlite.run("Update raw1 set Strouhal=8 where seriesID=1 and Strouhal=7");
  sqlite.run("Update raw1 set Strouhal=7 where seriesID=1 and Strouhal<0");
  sqlite.run("Update raw1 set Strouhal=-5e-324 where seriesID=1 and Strouhal=8");
  EXPECT_NE(ofPoints(), before);
}

TEST_F(fingerprint, tells_curve_and_settings_only_where_they_are_asked_for) {
  const auto points = ofPoints();
  const auto all = ofAll();
  curves.execute("Update curve set Strouhal=1 where seriesID=1");
  EXPECT_EQ(ofPoints(), points);
  EXPECT_NE(ofAll(), all);
}

TEST_F(fingerprint, takes_a_table_that_may_be_missing_for_one_without_rows) {
  const auto before = ofAll();
  keepCurveSettings(curves.connection, 2, {});
  EXPECT_EQ(ofAll(), before);
  keepCurveSettings(curves.connection, 1, {});
  EXPECT_NE(ofAll(), before);
}

}  // namespace
}  // namespace pelmora::test
