// Reading many meters and many series at once.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"
#include "tests/support/plain_sqlite.h"

namespace pelmora::calibration::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class Overviews : public ServiceTest {
 protected:
  static std::vector<MeterOverview> overviewOf(const Database& lab) {
    std::vector<MeterOverview> list;
    lab.overview([&](const MeterOverview& overview) { list.push_back(overview); });
    return list;
  }
  void sql(const std::string& statements) const {
    pelmora::test::PlainSqlite(path()).run(statements);
  }
};

TEST_F(Overviews, of_an_empty_database_are_empty) { EXPECT_TRUE(overviewOf(lab()).empty()); }

TEST_F(Overviews, list_calibrations_with_their_series_in_order) {
  Database db = lab();
  const Meter second = db.registerMeter("O'Neil");
  const Meter first = db.registerMeter("m1");
  const Meter again = db.registerMeter("m1", true);
  for (const char* name : {"Rotor B", "Ratio", "rotor A"})
    db.storeRaw(again, name, 1, smoothPoints(3));
  EXPECT_EQ(overviewOf(db),
            (std::vector<MeterOverview>{
                {again, {"Ratio", "rotor A", "Rotor B"}}, {first, {}}, {second, {}}}));
  EXPECT_EQ(db.serials(), (std::vector<std::string>{"m1", "O'Neil"}));
}

// More than one portion of a reading, and one serial number with many calibrations.
TEST_F(Overviews, lose_no_meter_between_two_portions) {
  (void)lab();
  sql("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 10000) "
      "INSERT INTO meter (SerialNumber, SerialNumberAdjusted, ReCalID) "
      "SELECT CASE WHEN i % 3 = 0 THEN 'one' ELSE printf('M%06d', (i * 7919) % 10007) END, '', i "
      "FROM n; INSERT INTO series (name, meterid) SELECT 'S', ID FROM meter");
  const auto list = overviewOf(lab());
  ASSERT_EQ(list.size(), 10000U);
  for (std::size_t i = 1; i < list.size(); ++i) {
    const Meter &a = list[i - 1].meter, &b = list[i].meter;
    EXPECT_LT(std::pair(a.serial, -a.calibration), std::pair(b.serial, -b.calibration));
  }
  for (const MeterOverview& overview : list)
    EXPECT_EQ(overview.series, std::vector<std::string>{"S"});
}

TEST_F(Overviews, name_the_meter_of_what_cannot_be_read) {
  Database db = lab();
  db.storeRaw(db.registerMeter("M1"), "S", 1, smoothPoints(3));
  sql("UPDATE series SET name = NULL");
  EXPECT_THAT(failureOf<BadData>([&] { (void)overviewOf(lab()); }).what(),
              AllOf(HasSubstr("'M1'"), HasSubstr("no name")));
  sql("UPDATE series SET name = 'S'; UPDATE meter SET ReCalID = 'first'");
  EXPECT_THAT(failureOf<BadData>([&] { (void)overviewOf(lab()); }).what(), HasSubstr("'M1'"));
}

TEST_F(Overviews, of_a_calibration_name_every_series_that_cannot_be_read) {
  Database db = lab();
  const Meter meter = db.registerMeter("M1");
  for (const char* name : {"A", "B", "C"}) db.storeRaw(meter, name, 1, smoothPoints(3));
  EXPECT_EQ(db.everySeries(meter).size(), 3U);
  EXPECT_EQ(db.everySeries(meter, {"C", "A"})[0].name, "C");
  sql("UPDATE raw1 SET Roshko = 'far' WHERE seriesID <> 2");
  EXPECT_THAT(failureOf<BadData>([&] { (void)lab().everySeries(meter); }).what(),
              AllOf(HasSubstr("series 'A'"), HasSubstr("nor can 'C'")));
  (void)failureOf<NotFound>([&] { (void)lab().everySeries(meter, {"B", "D"}); });
}

TEST_F(Overviews, without_a_curve_there_is_nothing_to_evaluate) {
  Database db = lab();
  const Meter meter = db.registerMeter("M1");
  db.storeRaw(meter, "A", 1, smoothPoints(3));
  EXPECT_THAT(failureOf<NoCurve>([&] { (void)db.curve(meter, "A"); }).what(),
              HasSubstr("series 'A' of meter 'M1'"));
}

}  // namespace
}  // namespace pelmora::calibration::test
