// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

#include <pelmora/own_tables.h>

#include <thread>

namespace pelmora::calibration::test {
namespace {

using testing::HasSubstr;
using Lookups = ServiceTest;

TEST_F(Lookups, a_missing_file_is_not_found_and_not_made) {
  const auto failure = failureOf<NotFound>([&] { (void)open(path()); });
  EXPECT_THAT(failure.what(), HasSubstr(path()));
  EXPECT_EQ(failure.where(), path());
  EXPECT_FALSE(failure.remedy().empty());
  (void)failureOf<NotFound>([&] { (void)open(path()); });
}

TEST_F(Lookups, a_database_is_created_once) {
  (void)create(path());
  (void)failureOf<Exists>([&] { (void)create(path()); });
}

TEST_F(Lookups, a_new_meter_has_calibration_0_and_the_next_one_follows) {
  Database db = lab();
  EXPECT_TRUE(db.meters().empty());
  const Meter first = db.registerMeter("M1");
  EXPECT_EQ(first.calibration, 0);
  EXPECT_EQ(db.registerMeter("M1"), first);
  const Meter second = db.registerMeter("M1", true);
  EXPECT_EQ(second.calibration, 1);
  EXPECT_NE(second.id, first.id);
  EXPECT_EQ(db.meter("M1"), second);
  EXPECT_EQ(db.meter("M1", 0), first);
  EXPECT_EQ(db.calibrations("M1"), (std::vector<Meter>{first, second}));
}

TEST_F(Lookups, blanks_around_a_name_are_no_part_of_it) {
  Database db = lab();
  EXPECT_EQ(db.registerMeter("  M1 "), db.registerMeter("M1"));
  EXPECT_EQ(db.meters().size(), 1U);
  EXPECT_TRUE(db.findMeter(" M1"));
}

TEST_F(Lookups, names_may_hold_apostrophes) {
  Database db = lab();
  const Meter meter = db.registerMeter("O'Neil \"77\"");
  db.storeRaw(meter, "Rotor 'A'", 1, smoothPoints(5));
  EXPECT_EQ(db.meter("O'Neil \"77\""), meter);
  EXPECT_EQ(db.seriesOf(meter), std::vector<std::string>{"Rotor 'A'"});
  EXPECT_EQ(db.series(meter, "Rotor 'A'").raw[0].size(), 5U);
}

TEST_F(Lookups, names_that_nobody_can_read_are_refused) {
  Database db = lab();
  for (const std::string name : {"", "   ", "M\n1", "M\xff",
                                 "M\xe2\x80\xae"
                                 "1"})
    (void)failureOf<BadData>([&] { (void)db.registerMeter(name); });
  EXPECT_TRUE(db.meters().empty());
}

TEST_F(Lookups, a_mistyped_name_is_answered_with_what_is_similar) {
  Database db = lab();
  EXPECT_THAT(failureOf<NotFound>([&] { (void)db.meter("TF-10021"); }).remedy(),
              HasSubstr("no meter is stored yet"));
  const Meter meter = db.registerMeter("TF-10021");
  db.storeRaw(meter, "Rotor A", 1, smoothPoints(5));
  const auto wrongMeter = failureOf<NotFound>([&] { (void)db.meter("TF-10012"); });
  EXPECT_THAT(wrongMeter.remedy(), HasSubstr("'TF-10021'"));
  const auto wrongNumber = failureOf<NotFound>([&] { (void)db.meter("TF-10021", 3); });
  EXPECT_THAT(wrongNumber.what(), HasSubstr("no calibration 3"));
  const auto wrongSeries = failureOf<NotFound>([&] { (void)db.series(meter, "Rotor a1"); });
  EXPECT_THAT(wrongSeries.remedy(), HasSubstr("'Rotor A'"));
}

TEST_F(Lookups, work_inside_a_read_view_and_a_transaction_of_the_host) {
  Database db = lab();
  const Meter meter = db.registerMeter("M1");
  db.storeRaw(meter, "A", 1, smoothPoints(5));
  {
    const ReadView view(db.connection());
    EXPECT_EQ(db.series(meter, "A").rawPoints(), 5U);
  }
  const Transaction transaction(db.connection());
  EXPECT_EQ(db.series(meter, "A").rawPoints(), 5U);
}

TEST_F(Lookups, several_databases_live_side_by_side_and_move_between_threads) {
  Database db = lab();
  Database other = create(scratchFile("other.db"));
  (void)db.registerMeter("here");
  std::thread([&, moved = std::move(other)]() mutable {
    (void)moved.registerMeter("there");
  }).join();
  EXPECT_EQ(db.meters().front().serial, "here");
  EXPECT_EQ(open(scratchFile("other.db")).meters().front().serial, "there");
}

}  // namespace
}  // namespace pelmora::calibration::test
