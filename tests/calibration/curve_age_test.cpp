// Whether a stored curve still belongs to its raw points.
// SPDX-License-Identifier: MIT
#include "store/connection.h"
#include "tests/calibration/service_fixture.h"
#include "tests/support/earlier_settings.h"

#include <pelmora/curve_settings.h>

namespace pelmora::calibration::test {
namespace {

using testing::HasSubstr;

class CurveAges : public ServiceTest {
 protected:
  CurveAges() : db_(lab()), meter_(db_.registerMeter("M1")) {
    db_.storeRaw(meter_, "K", 1, smoothPoints(20));
  }
  [[nodiscard]] StoredSeries stored() const { return db_.series(meter_, "K"); }
  // As a host stores it, that keeps no settings.
  void forgetSettings() {
    CurveSettings settings = *stored().settings;
    settings.PointsFingerprint.clear();
    settings.CurveFingerprint.clear();
    keepCurveSettings(db_.connection(), stored().id, settings);
  }

  Database db_;
  Meter meter_;
};

TEST_F(CurveAges, a_series_without_a_curve_has_no_age) {
  EXPECT_EQ(stored().age, CurveAge::none);
  EXPECT_EQ(stored().ageWarning(), "");
}

TEST_F(CurveAges, a_curve_is_current_until_a_point_changes) {
  (void)db_.store(db_.fit(meter_, "K"));
  EXPECT_EQ(stored().age, CurveAge::current);
  EXPECT_EQ(stored().ageWarning(), "");
  PointArray points = smoothPoints(20);
  points(19, 1) = std::nextafter(points(19, 1), 0);
  db_.storeRaw(meter_, "K", 1, points);
  EXPECT_EQ(stored().age, CurveAge::outdated);
  EXPECT_THAT(stored().ageWarning(), HasSubstr("series 'K' of meter 'M1', calibration 0"));
}

TEST_F(CurveAges, points_that_come_back_make_the_curve_current_again) {
  (void)db_.store(db_.fit(meter_, "K"));
  const StoredPoints other = db_.storeRaw(meter_, "K", 1, smoothPoints(30));
  EXPECT_EQ(stored().age, CurveAge::outdated);
  (void)db_.restore(other.kept);
  EXPECT_EQ(stored().age, CurveAge::current);
}

TEST_F(CurveAges, a_part_that_came_later_makes_the_curve_outdated) {
  (void)db_.store(db_.fit(meter_, "K"));
  forgetSettings();
  db_.storeRaw(meter_, "K", 2, smoothPoints(5, 1001, 2000));
  EXPECT_EQ(stored().age, CurveAge::outdated);
}

TEST_F(CurveAges, without_a_fingerprint_the_merged_points_or_a_new_fit_tell) {
  (void)db_.store(db_.fit(meter_, "K"));
  forgetSettings();
  EXPECT_EQ(stored().age, CurveAge::unknown);
  EXPECT_EQ(db_.curveAge(stored()), CurveAge::current);
  db_.storeRaw(meter_, "K", 1, smoothPoints(21));
  EXPECT_EQ(stored().age, CurveAge::outdated);
}

TEST_F(CurveAges, the_settings_of_another_curve_say_nothing) {
  (void)db_.store(db_.fit(meter_, "K"));
  db_.connection()->execute("Update curve set Strouhal=Strouhal+1");
  EXPECT_EQ(stored().age, CurveAge::unknown);
  EXPECT_EQ(db_.curveAge(stored()), CurveAge::unknown);
}

TEST_F(CurveAges, the_settings_of_an_earlier_version_can_be_read) {
  pelmora::test::keepEarlierSettings(db_.connection(), stored().id, "0.5");
  ASSERT_TRUE(stored().settings);
  EXPECT_EQ(stored().settings->BandPercent, 0.5);
  EXPECT_FALSE(stored().settings->MergeBandPercent);
  (void)db_.store(db_.fit(meter_, "K"));
  EXPECT_EQ(stored().age, CurveAge::current);
}

}  // namespace
}  // namespace pelmora::calibration::test
