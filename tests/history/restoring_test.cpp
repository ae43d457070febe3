// Bringing back what was replaced or removed.
// SPDX-License-Identifier: MIT
#include "tests/history/history_fixture.h"

namespace pelmora::test {
namespace {

using namespace history;
using testing::HasSubstr;

class restoring : public HistoryTest {
 protected:
  void expectInTheWay(std::int64_t id, const std::string& why) const {
    const auto before = everything();
    const auto failure = failureOf([&] { (void)restored(id); });
    EXPECT_EQ(failure.number, standsInTheWay);
    EXPECT_THAT(failure.description, HasSubstr(why));
    EXPECT_EQ(everything(), before);
  }
};

TEST_F(restoring, brings_every_bit_back_in_its_order) {
  const auto before = everything();
  const auto id = change(
      "raw", rawPart(1, 1, 1),
      {"Delete * from raw1 where seriesID=1", "Insert into raw1 (seriesID, Roshko) VALUES (1, 5)"});
  ASSERT_NE(everything(), before);
  const auto outcome = restored(id);
  ASSERT_EQ(outcome.Tables.size(), 1U);
  EXPECT_EQ(outcome.Tables[0].Name, "raw1");
  EXPECT_EQ(outcome.Tables[0].RowsBefore, 1U);
  EXPECT_EQ(outcome.Tables[0].RowsNow, 3U);
  EXPECT_EQ(everything(), before);
  EXPECT_EQ(rows("raw1 where seriesID=1"),
            (Rows{"i1|r0x1.8000000000001p+1|r0x1.7e43c8800759cp+996|",
                  "i1|r0x1p+1|r-0x0.0000000000001p-1022|", "i1|r0x1p+1|r0x1.cp+2|"}));
}

TEST_F(restoring, can_be_undone) {
  const auto id = change("fit", fittedCurve(1, 1),
                         {"Delete * from curve where seriesID=1",
                          "Insert into curve (seriesID, Roshko) VALUES (1, 5)"});
  const auto after = rows("curve where seriesID=1");
  const auto outcome = restored(id);
  EXPECT_GT(outcome.KeptAs, id);
  EXPECT_NE(rows("curve where seriesID=1"), after);
  (void)restored(outcome.KeptAs);
  EXPECT_EQ(rows("curve where seriesID=1"), after);
}

TEST_F(restoring, brings_a_deleted_series_back_with_its_id) {
  const auto series = rows("series where ID=1");
  const auto raw = rows("raw2 where seriesID=1");
  const auto report = rows("DataFitResults");
  const auto id = removed(wholeSeries(1, 1));
  EXPECT_TRUE(rows("series where ID=1").empty());
  EXPECT_TRUE(rows("raw2 where seriesID=1").empty());
  EXPECT_EQ(rows("raw2").size(), 2U);
  (void)restored(id);
  EXPECT_EQ(rows("series where ID=1"), series);
  EXPECT_EQ(rows("raw2 where seriesID=1"), raw);
  EXPECT_EQ(rows("DataFitResults"), report);
}

TEST_F(restoring, brings_a_deleted_calibration_back) {
  const auto before = everything();
  const auto id = removed(wholeCalibration(1));
  for (const char* table : {"CalSetup", "CalDataPoint", "DataFitResults"})
    EXPECT_TRUE(rows(table).empty()) << table;
  EXPECT_EQ(rows("meter").size(), 1U);
  EXPECT_EQ(rows("series").size(), 1U);
  EXPECT_EQ(rows("raw1").size(), 1U);
  (void)restored(id);
  EXPECT_EQ(everything(), before);
}

TEST_F(restoring, an_import_takes_its_new_series_and_set_ups_away_again) {
  const auto before = everything();
  const auto id = change("import", importedRuns(1),
                         {"Insert into series (name, meterid) VALUES ('Ratio', 1)",
                          "Insert into raw1 (seriesID, Roshko) VALUES (4, 1)",
                          "Insert into CalSetup (MeterID) VALUES (1)",
                          "Insert into CalDataPoint (CalSetupID) VALUES (2)",
                          "Delete * from CalDataPoint where CalSetupID=1"});
  (void)restored(id);
  EXPECT_EQ(everything(), before);
}

TEST_F(restoring, of_an_unknown_entry_is_an_error) {
  EXPECT_EQ(failureOf([&] { (void)restored(1); }).number, noSuchEntry);
  (void)change("fit", fittedCurve(1, 1), {});
  EXPECT_EQ(failureOf([&] { (void)restored(77); }).number, noSuchEntry);
}

TEST_F(restoring, needs_the_series_that_the_rows_belong_to) {
  const auto fit = change("fit", fittedCurve(1, 1), {"Delete * from curve where seriesID=1"});
  const auto series = removed(wholeSeries(1, 1));
  expectInTheWay(fit, "'Rotor A' of meter 'M1', calibration 0 has been deleted");
  const auto meter = removed(wholeCalibration(1));
  expectInTheWay(series, "meter 'M1', calibration 0 has been deleted");
  (void)restored(meter);
  (void)restored(series);
  (void)restored(fit);
  EXPECT_EQ(rows("curve where seriesID=1").size(), 3U);
}

TEST_F(restoring, is_refused_where_the_name_is_used_again) {
  const auto series = removed(wholeSeries(1, 1));
  curves.execute("Insert into series (name, meterid) VALUES ('rotor a', 1)");
  expectInTheWay(series, "'Rotor A' of meter 'M1', calibration 0 exists again");
  const auto meter = removed(wholeCalibration(1));
  curves.execute("Insert into meter (SerialNumber, ReCalID) VALUES ('M1', 0)");
  expectInTheWay(meter, "exists again");
}

TEST_F(restoring, is_refused_where_an_id_is_used_again) {
  const auto id = removed(wholeCalibration(1));
  curves.execute("Insert into series (ID, name, meterid) VALUES (2, 'Other', 2)");
  expectInTheWay(id, "another row of table series");
}

}  // namespace
}  // namespace pelmora::test
