// Reading many meters and many series at once.
// SPDX-License-Identifier: MIT
#include "store/connection.h"
#include "tests/calibration/service_fixture.h"
#include "tests/support/plain_sqlite.h"

#include <pelmora/curve_database.h>

#include <stdexcept>

namespace pelmora::calibration::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class Overviews : public ServiceTest {
 protected:
  static std::vector<MeterOverview> overviewOf(const Database& lab,
                                               OverviewOrder order = OverviewOrder::bySerial) {
    std::vector<MeterOverview> list;
    lab.overview([&](const MeterOverview& overview) { list.push_back(overview); }, order);
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

// One serial number has many calibrations.
TEST_F(Overviews, lose_no_meter_of_many) {
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

TEST_F(Overviews, sort_without_regard_to_case_and_begin_with_meters_without_a_serial_number) {
  (void)lab();
  const ConnectionPtr curves = openDatabase(path());
  for (const char* row : {"7,'b',0", "3,'B',1", "5,NULL,0", "9,'',0", "2,'\u00c41',0",
                          "8,'\u00e41',2", "1,'a',0", "6,'b',1", "4,NULL,3"})
    curves->execute("Insert into meter (ID,SerialNumber,ReCalID) VALUES(" + std::string(row) + ")");
  for (const char* row : {"4,'X',7", "2,'\u00dc',7", "3,'x',7", "1,'',7", "5,'only',1"})
    curves->execute("Insert into series (ID,name,meterid) VALUES(" + std::string(row) + ")");
  const std::vector<MeterOverview> expected{{{"", "", 3, 4}, {}},
                                            {{"", "", 0, 5}, {}},
                                            {{"", "", 0, 9}, {}},
                                            {{"a", "", 0, 1}, {"only"}},
                                            {{"B", "", 1, 3}, {}},
                                            {{"b", "", 1, 6}, {}},
                                            {{"b", "", 0, 7}, {"", "x", "X", "\u00dc"}},
                                            {{"\u00e41", "", 2, 8}, {}},
                                            {{"\u00c41", "", 0, 2}, {}}};
  EXPECT_EQ(overviewOf(lab()), expected);
  EXPECT_THAT(overviewOf(lab(), OverviewOrder::none), testing::UnorderedElementsAreArray(expected));
}

TEST_F(Overviews, read_more_about_a_meter_and_end_when_they_are_broken_off) {
  Database db = lab();
  for (const char* serial : {"M1", "M2", "M3"}) (void)db.registerMeter(serial);
  int seen = 0;
  const auto visit = [&](const MeterOverview& overview) {
    EXPECT_EQ(db.meter(overview.meter.serial), overview.meter);
    EXPECT_TRUE(db.history().empty());
    if (++seen == 2) throw std::runtime_error("enough");
  };
  EXPECT_THROW(db.overview(visit), std::runtime_error);
  (void)db.registerMeter("M4");
  EXPECT_EQ(overviewOf(db).size(), 4U);
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
