// Excluded points of a stand, and what happens to them when jobs are imported again.
// SPDX-License-Identifier: MIT
#include "tests/calibration/excluded_rows.h"
#include "tests/support/stand_export.h"

#include <fstream>

namespace pelmora::calibration::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ExclusionsOfAStand : public ServiceTest {
 protected:
  ExclusionsOfAStand() : db_(lab()), meter_(db_.registerMeter("M1")) { import(); }

  Imported import(const std::string& firstJob = "1001", const std::string& file = {}) {
    return db_.importRuns(meter_, Stand(file.empty() ? exampleData("stand-dual-rotor.csv") : file),
                          {{firstJob, "Mineral spirit", "Ada"}, {"1002", "Glycol mix", "Ada"}},
                          {.stand = 3});
  }
  [[nodiscard]] StoredSeries stored(const std::string& name) const {
    return db_.series(meter_, name);
  }
  Database db_;
  Meter meter_;
};

TEST_F(ExclusionsOfAStand, each_point_knows_its_job_and_fluid) {
  const auto listed = db_.points(meter_, "Ratio");
  ASSERT_THAT(listed, SizeIs(48));
  EXPECT_EQ(listed[0].job, "1001");
  EXPECT_EQ(listed[0].fluid, "Mineral spirit");
  EXPECT_EQ(listed[47].job, "1002");
  (void)db_.exclude(meter_, "Ratio", {.part = 2, .numbers = {24}}, "why");
  EXPECT_EQ(stored("Ratio").excluded[0].job, "1002");
  EXPECT_EQ(db_.points(meter_, "Ratio")[47].fluid, "Glycol mix");
}

TEST_F(ExclusionsOfAStand, are_of_the_named_series_and_the_others_are_named) {
  const ExclusionChange change =
      db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {4}}, "lost pulses");
  EXPECT_THAT(change.sameReadings, ElementsAre("Rotor Sum", "Ratio"));
  EXPECT_THAT(stored("Rotor Sum").excluded, IsEmpty());
  const ExclusionChange derived = db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {4, 5}},
                                              "lost pulses", {.inDerivedSeries = true});
  EXPECT_THAT(derived.points, SizeIs(5));
  EXPECT_THAT(derived.sameReadings, IsEmpty());
  EXPECT_THAT(excludedNumbers(stored("Ratio")), ElementsAre(4, 5));
  EXPECT_THAT(stored("Rotor B").excluded, IsEmpty());
  (void)db_.include(meter_, "Rotor A", {.part = 1, .numbers = {4}},
                    {.alsoIn = {"rotor sum", "Rotor A"}});
  EXPECT_THAT(excludedNumbers(stored("Rotor Sum")), ElementsAre(5));
  EXPECT_THAT(excludedNumbers(stored("Ratio")), ElementsAre(4, 5));
}

TEST_F(ExclusionsOfAStand, survive_the_import_of_the_same_jobs) {
  (void)db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {4, 24}}, "air");
  (void)db_.exclude(meter_, "Ratio", {.part = 2, .below = 100}, "low");
  const std::string before = everyRow(db_);
  const std::size_t low = stored("Ratio").excluded.size();
  const Imported again = import();
  EXPECT_EQ(again.excludedAgain, 2 + low);
  EXPECT_THAT(again.dropped, IsEmpty());
  EXPECT_EQ(again.series[0].points[0], 22U);
  EXPECT_EQ(everyRow(db_), before);
}

TEST_F(ExclusionsOfAStand, end_with_a_word_if_another_job_comes) {
  (void)db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {4}}, "air");
  (void)db_.exclude(meter_, "Rotor A", {.part = 2, .numbers = {7}}, "air");
  const Imported other = import("1007");
  ASSERT_THAT(other.dropped, SizeIs(1));
  EXPECT_EQ(other.dropped[0].point.part, 1);
  EXPECT_EQ(other.dropped[0].job, "1001");
  EXPECT_THAT(other.dropped[0].why, HasSubstr("job 1007"));
  EXPECT_EQ(stored("Rotor A").raw[0].size(), 24U);
  EXPECT_THAT(excludedNumbers(stored("Rotor A"), 2), ElementsAre(7));
}

TEST_F(ExclusionsOfAStand, end_with_a_word_if_the_point_has_other_values) {
  (void)db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {2, 3}}, "air");
  std::ifstream from(exampleData("stand-dual-rotor.csv"));
  const std::string file = scratchFile("stand.csv");
  std::ofstream to(file);
  std::string line;
  for (int number = 0; std::getline(from, line); ++number) {
    if (number == 2) line.replace(line.find(",617,"), 5, ",618,");  // V4 of the second point
    to << line << "\n";
  }
  to.close();
  const Imported changed = import("1001", file);
  ASSERT_THAT(changed.dropped, SizeIs(1));
  EXPECT_EQ(changed.dropped[0].point.number, 2U);
  EXPECT_THAT(changed.dropped[0].why, HasSubstr("other values"));
  EXPECT_EQ(changed.excludedAgain, 1U);
  EXPECT_THAT(excludedNumbers(stored("Rotor A")), ElementsAre(3));
}

TEST_F(ExclusionsOfAStand, follow_their_job_into_another_part) {
  (void)db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {4}}, "air");
  // A run on a stand of a lower number becomes the first part.
  (void)db_.importRuns(meter_, Stand(exampleData("stand-dual-rotor.csv")),
                       {{"1007", "Third", "Ada"}}, {.stand = 1});
  EXPECT_THAT(excludedNumbers(stored("Rotor A"), 1), IsEmpty());
  EXPECT_THAT(excludedNumbers(stored("Rotor A"), 2), ElementsAre(4));
  EXPECT_EQ(stored("Rotor A").excluded[0].job, "1001");
}

}  // namespace
}  // namespace pelmora::calibration::test
