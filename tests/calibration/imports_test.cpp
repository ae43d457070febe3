// SPDX-License-Identifier: MIT
#include "calibration/steps/stand_rows.h"
#include "tests/calibration/service_fixture.h"
#include "tests/support/plain_sqlite.h"
#include "tests/support/stand_export.h"

#include <pelmora/stand.h>

#include <fstream>
#include <stop_token>

namespace pelmora::calibration::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Imports : public ServiceTest {
 protected:
  Imports() : db_(lab()), meter_(db_.registerMeter("M1")) {}

  Stand standOf(const std::vector<std::string>& lines) {
    const std::string file = scratchFile("stand.csv");
    std::ofstream text(file);
    text << pelmora::test::standHeader() << "\n";
    for (const std::string& line : lines) text << line << "\n";
    text.close();
    return Stand(file);
  }
  Database db_;
  Meter meter_;
};

TEST_F(Imports, derive_four_series_with_a_raw_part_for_each_fluid) {
  const Imported imported = db_.importRuns(
      meter_, Stand(exampleData("stand-dual-rotor.csv")),
      {{"1001", "Mineral spirit", "Ada"}, {"1002", "Glycol mix", "Ada"}}, {.stand = 3});
  EXPECT_EQ(imported.jobWithoutRotorB, "");
  ASSERT_EQ(imported.series.size(), 4U);
  EXPECT_THAT(db_.seriesOf(meter_), ElementsAre("Rotor A", "Rotor B", "Rotor Sum", "Ratio"));
  for (const DerivedSeries& series : imported.series)
    EXPECT_THAT(series.points, ElementsAre(24, 24, 0, 0)) << series.name;
  ASSERT_EQ(imported.runs.size(), 2U);
  EXPECT_EQ(imported.runs[0].fluid, "Mineral spirit");
  EXPECT_EQ(imported.runs[0].operatorName, "Ada");
  EXPECT_EQ(imported.runs[0].stand, 3);
  EXPECT_THAT(imported.runs[0].jobs, ElementsAre("1001"));
}

TEST_F(Imports, a_fluid_is_the_same_in_capitals_beyond_ascii_too) {
  const Stand stand(exampleData("stand-dual-rotor.csv"));
  const auto failure = failureOf<BadData>([&] {
    (void)db_.importRuns(meter_, stand, {{"1001", "Öl Ä", ""}, {"1002", "öl ä", ""}});
  });
  EXPECT_THAT(failure.what(), HasSubstr("twice"));
  (void)db_.importRuns(meter_, stand, {{"1001", "Öl Ä", ""}});
  (void)db_.importRuns(meter_, stand, {{"1002", "öl ä", ""}});
  EXPECT_EQ(db_.runs(meter_).size(), 1U);
}

TEST_F(Imports, fluids_and_operators_may_have_apostrophes) {
  (void)db_.importRuns(meter_, Stand(exampleData("stand-dual-rotor.csv")),
                       {{"1001", "Ada's oil", "O'Neil"}});
  EXPECT_EQ(db_.runs(meter_).front().fluid, "Ada's oil");
  EXPECT_EQ(db_.runs(meter_).front().operatorName, "O'Neil");
}

TEST_F(Imports, a_stand_without_a_column_is_named) {
  const std::string file = scratchFile("stand.db");
  {
    pelmora::test::PlainSqlite other(file);
    other.run("create table DataPoint (JobRecordID, V1); insert into DataPoint values (7, 1.5)");
  }
  const Stand stand(file);
  const auto failure = failureOf<pelmora::calibration::Unusable>([&] {
    (void)db_.importRuns(meter_, stand, {{"7", "oil", ""}});
  });
  EXPECT_THAT(failure.what(), HasSubstr("stand.db', job 7: its points cannot be read"));
  EXPECT_THAT(failure.what(), HasSubstr("'V2' is not a column of DataPoint"));
}

TEST_F(Imports, a_reading_that_cannot_be_used_stops_everything) {
  const std::string good = pelmora::test::exportLine("7");
  const auto importOf = [&](const std::string& line) {
    const Stand stand = standOf({good, line});
    return failureOf<BadData>([&] { (void)db_.importRuns(meter_, stand, {{"7", "oil", ""}}); });
  };
  EXPECT_THAT(importOf(pelmora::test::exportLine("7", {{5, "0"}})).what(),
              HasSubstr("job 7, point 2: V5 (viscosity) is 0"));
  EXPECT_THAT(importOf(pelmora::test::exportLine("7", {{4, ""}})).what(), HasSubstr("V4"));
  EXPECT_TRUE(db_.seriesOf(meter_).empty());
  EXPECT_TRUE(db_.runs(meter_).empty());
}

TEST_F(Imports, end_where_the_caller_asks_for_it_and_store_nothing) {
  const Stand stand(exampleData("stand-dual-rotor.csv"));
  for (const std::string step : {"Copying job 1001", "Copying job 1002", "Deriving Rotor B"}) {
    std::stop_source source;
    Observer observer;
    observer.stop = source.get_token();
    observer.status = [&](const std::string& text) {
      if (text == step) source.request_stop();
    };
    (void)failureOf<Cancelled>([&] {
      (void)db_.importRuns(meter_, stand, {{"1001", "oil", ""}, {"1002", "water", ""}}, {},
                           observer);
    });
    EXPECT_TRUE(db_.seriesOf(meter_).empty()) << step;
    EXPECT_TRUE(db_.runs(meter_).empty()) << step;
  }
}

TEST_F(Imports, look_for_a_stop_before_each_row) {
  struct Enough {};
  const Stand stand(exampleData("stand-dual-rotor.csv"));
  int rows = 0;
  const auto thirdIsEnough = [&rows] {
    if (++rows == 3) throw Enough();
  };
  EXPECT_THROW((void)standPoints(stand.connection(), "1001", thirdIsEnough), Enough);
  EXPECT_EQ(rows, 3);
  rows = 0;
  EXPECT_THROW(
      steps::copyStandRows(*stand.connection(), *db_.connection(), 1, "1001", thirdIsEnough),
      Enough);
  EXPECT_EQ(rows, 3);
}

TEST_F(Imports, a_stand_found_damaged_when_it_is_read_is_named) {
  const std::string file = scratchFile("stand");
  pelmora::test::PlainSqlite(file).run("CREATE TABLE DataPoint (" + pelmora::test::standHeader() +
                                       ");" + "INSERT INTO DataPoint VALUES (" +
                                       pelmora::test::exportLine("7") + ")");
  const Stand stand(file);
  std::fstream bytes(file, std::ios::in | std::ios::out | std::ios::binary);
  bytes.seekp(24) << "newer";  // the count of changes, so that every reader reads the file again
  bytes.seekp(4096) << "no page of a table";
  bytes.close();
  const auto failure = failureOf<Damaged>([&] {
    (void)db_.importRuns(meter_, stand, {{"7", "oil", ""}});
  });
  EXPECT_THAT(failure.what(), HasSubstr("stand '" + file + "', job 7: its points cannot be read"));
  EXPECT_EQ(failure.where(), file);
  EXPECT_TRUE(db_.runs(meter_).empty());
}

TEST_F(Imports, without_rotor_B_there_is_rotor_A_alone) {
  const Stand stand = standOf({pelmora::test::exportLine("7", {{20, "0"}, {21, "0"}}),
                               pelmora::test::exportLine("7", {{20, "0"}, {21, "0"}})});
  const Imported imported = db_.importRuns(meter_, stand, {{"7", "oil", ""}});
  EXPECT_EQ(imported.jobWithoutRotorB, "7");
  EXPECT_THAT(db_.seriesOf(meter_), ElementsAre("Rotor A"));
}

TEST_F(Imports, an_unknown_job_is_answered_with_those_there_are) {
  const auto failure = failureOf<NotFound>([&] {
    (void)db_.importRuns(meter_, Stand(exampleData("stand-dual-rotor.csv")), {{"4711", "oil", ""}});
  });
  EXPECT_THAT(failure.remedy(), HasSubstr("1001"));
}

TEST_F(Imports, a_fifth_fluid_is_refused) {
  const Stand stand(exampleData("stand-dual-rotor.csv"));
  for (const char* fluid : {"a", "b", "c", "d"})
    (void)db_.importRuns(meter_, stand, {{"1001", fluid, ""}});
  (void)failureOf<BadData>([&] { (void)db_.importRuns(meter_, stand, {{"1001", "e", ""}}); });
  const Imported elsewhere =
      db_.importRuns(meter_, stand, {{"1001", "e", ""}}, {.newCalibration = true});
  EXPECT_TRUE(elsewhere.isNewCalibration);
  EXPECT_EQ(elsewhere.meter.calibration, 1);
}

TEST_F(Imports, what_a_run_replaces_comes_back) {
  const Stand stand(exampleData("stand-dual-rotor.csv"));
  (void)db_.importRuns(meter_, stand, {{"1001", "oil", ""}});
  const StoredSeries before = db_.series(meter_, "Rotor A");
  const Imported again = db_.importRuns(meter_, stand, {{"1002", "oil", ""}});
  EXPECT_NE(db_.series(meter_, "Rotor A").raw, before.raw);
  ASSERT_EQ(again.kept.size(), 1U);
  (void)db_.restore(again.kept.front());
  EXPECT_EQ(db_.series(meter_, "Rotor A").raw, before.raw);
}

}  // namespace
}  // namespace pelmora::calibration::test
