// The readings of the stand, listed with each point.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

namespace pelmora::calibration::test {
namespace {

using testing::DoubleEq;
using testing::Optional;

class Readings : public ServiceTest {
 protected:
  Readings() : db_(lab()), meter_(db_.registerMeter("M1")) {
    db_.importRuns(meter_, Stand(exampleData("stand-dual-rotor.csv")), {{"1001", "Spirit", "Ada"}});
  }
  [[nodiscard]] StandReading first(const std::string& series) const {
    const auto points = db_.points(meter_, series);
    return points.at(0).reading.value();
  }

  Database db_;
  Meter meter_;
};

// The first row of job 1001 in the file: V1 to V5, V12, V14, V20, V21.
TEST_F(Readings, are_those_of_the_first_row_of_the_stand) {
  const StandReading reading = first("Rotor A");
  EXPECT_THAT(reading.frequency, Optional(DoubleEq(588 / 48.998168)));
  EXPECT_THAT(reading.flow, Optional(DoubleEq(0.5 / 50.043396)));
  EXPECT_THAT(reading.viscosity, Optional(DoubleEq(1.18631)));
  EXPECT_THAT(reading.temperature, Optional(DoubleEq(71.034)));
  EXPECT_FALSE(reading.nominalFlow.has_value());
}

TEST_F(Readings, have_the_frequency_of_their_rotor_or_of_both) {
  EXPECT_THAT(first("Rotor B").frequency, Optional(DoubleEq(622 / 49.030761)));
  for (const char* series : {"Rotor Sum", "Ratio"})
    EXPECT_THAT(first(series).frequency, Optional(DoubleEq(588 / 48.998168 + 622 / 49.030761)));
}

TEST_F(Readings, have_the_nominal_flow_of_the_laboratory_s_column) {
  db_.setLaboratory({{"nominal-flow-column", "V14"}});
  EXPECT_THAT(first("Rotor A").nominalFlow, Optional(DoubleEq(0.6)));
}

TEST_F(Readings, stay_with_their_points_when_one_is_excluded) {
  const auto before = db_.points(meter_, "Rotor A");
  db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {1}}, "air");
  const auto now = db_.points(meter_, "Rotor A");
  ASSERT_EQ(before.size(), 24U);  // as many as the job has
  ASSERT_EQ(now.size(), before.size());
  for (std::size_t i = 0; i < now.size(); ++i) {
    ASSERT_TRUE(before[i].reading && now[i].reading) << i;
    ASSERT_TRUE(before[i].reading->flow) << i;
    EXPECT_EQ(now[i].reading->flow, before[i].reading->flow) << i;
  }
}

TEST_F(Readings, are_absent_for_points_that_did_not_come_from_a_stand) {
  db_.storeRaw(meter_, "K", 1, smoothPoints(5));
  EXPECT_FALSE(db_.points(meter_, "K")[0].reading.has_value());
}

}  // namespace
}  // namespace pelmora::calibration::test
