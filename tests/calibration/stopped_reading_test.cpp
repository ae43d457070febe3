// What reads a curve fits it again, and ends where the caller asks for it.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

#include <cmath>
#include <stop_token>
#include <vector>

namespace pelmora::calibration::test {
namespace {

class StoppedReading : public ServiceTest {
 protected:
  void SetUp() override {
    ServiceTest::SetUp();
    if (IsSkipped()) return;
    source_.request_stop();
    observer_.stop = source_.get_token();
    Database db = lab();
    const Meter meter = db.registerMeter("M1");
    db.storeRaw(meter, "Rotor A", 1, smoothPoints(20));
    (void)db.store(db.fit(meter, "Rotor A", {.choice = Choice::trusted}));
    stored_ = db.series(meter, "Rotor A");
  }

  std::stop_source source_;
  Observer observer_;
  StoredSeries stored_;
};

TEST_F(StoppedReading, of_the_curve_behind_a_table_gives_none) {
  const Database db = lab();
  const Repeated repeated = db.repeat(stored_);
  ASSERT_TRUE(repeated.isStoredCurve());
  EXPECT_THAT(
      failureOf<Cancelled>([&] { (void)db.fittedCurve(stored_, repeated, observer_); }).what(),
      testing::HasSubstr("cancelled"));
  EXPECT_EQ(db.fittedCurve(stored_, repeated).source(), CurveSource::equation);
}

TEST_F(StoppedReading, of_points_lists_none) {
  const Database db = lab();
  EXPECT_THAT(failureOf<Cancelled>([&] { (void)db.points(stored_, observer_); }).what(),
              testing::HasSubstr("'Rotor A'"));
  EXPECT_EQ(db.points(stored_).size(), 20U);
}

TEST_F(StoppedReading, of_a_curve_at_many_places_gives_none) {
  const FittedCurve curve = lab().fittedCurve(stored_);
  const std::vector<double> x{20, 200}, y{1320, 1340};
  EvaluateOptions options;
  EXPECT_EQ(curve.at(x, options).size(), 2U);
  options.stop = source_.get_token();
  EXPECT_THROW((void)curve.at(x, options), Cancelled);
  EXPECT_THROW((void)curve.measured(x, y, options), Cancelled);
  EXPECT_THROW((void)curve.monteCarlo(200, options, 20000), Cancelled);
}

TEST_F(StoppedReading, of_many_places_gives_the_numbers_of_one_at_a_time) {
  const FittedCurve curve = lab().fittedCurve(stored_);
  std::vector<double> x;
  for (int i = 0; i < 3000; ++i) x.push_back(10 * std::pow(100.0, i / 2999.0));
  const std::vector<CurveEstimate> all = curve.at(x);
  ASSERT_EQ(all.size(), x.size());
  for (std::size_t i = 0; i < x.size(); i += 97) {
    EXPECT_EQ(all[i].roshko, x[i]);
    EXPECT_EQ(all[i].strouhal, curve.at(x[i]).strouhal) << i;
  }
}

TEST_F(StoppedReading, of_what_a_fit_lacks_ends_too) {
  PointArray zigzag = smoothPoints(20);
  for (std::size_t i = 0; i < zigzag.size(); i += 2) zigzag(i, 1) *= 1.05;
  const Fit refused = fit({&zigzag, 1}, {.choice = Choice::adjustedR2});
  ASSERT_FALSE(refused.accepted());
  const std::stop_token stop = source_.get_token();
  EXPECT_THROW((void)nearestEquation(refused, stop), Cancelled);
  EXPECT_THROW((void)passingBand(refused, *nearestEquation(refused), stop), Cancelled);
  EXPECT_THROW((void)refused.reason(stop), Cancelled);
  EXPECT_THAT(refused.reason(), testing::HasSubstr("nearest was"));
}

}  // namespace
}  // namespace pelmora::calibration::test
