// How the merge of raw parts can be set, and what it says about the points that it cut.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

namespace pelmora::calibration::test {
namespace {

using testing::DoubleNear;
using testing::Each;
using testing::Field;
using testing::HasSubstr;
using testing::Optional;

// Two parts on one smooth curve; the first three points of the part that reaches further lie
// `percent` above it, inside the range of the other part. The merge scans from the far end and
// tolerates the first of them that it meets.
std::vector<PointArray> overlappingParts(double percent) {
  PointArray upper = smoothPoints(12, 200, 2000);
  for (std::size_t i = 0; i < 3; ++i) upper(i, 1) *= 1 + percent / 100;
  return {smoothPoints(40, 10, 500), upper};
}

TEST(MergeSettings, cut_points_say_how_far_off_they_are) {
  const Fit fit = calibration::fit(overlappingParts(0.5));
  ASSERT_EQ(fit.cut.size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(fit.cut[i].part, 2);
    EXPECT_EQ(fit.cut[i].number, i + 1);
    // The line between two points of the other part is off the curve by less than 0.002 %.
    EXPECT_THAT(fit.cut[i].offPercent, Optional(DoubleNear(0.5, 0.002)));
  }
}

TEST(MergeSettings, a_wider_merge_band_keeps_what_lies_inside) {
  EXPECT_EQ(calibration::fit(overlappingParts(0.2)).cut.size(), 2U);
  EXPECT_TRUE(calibration::fit(overlappingParts(0.2), {.mergeBand = 0.25}).cut.empty());
  EXPECT_EQ(calibration::fit(overlappingParts(0.2), {.mergeBand = 0.15}).cut.size(), 2U);
}

TEST(MergeSettings, a_merge_that_cuts_nothing_keeps_every_point) {
  const Fit fit =
      calibration::fit(overlappingParts(0.5), {.cutsOverlap = false, .ignoreResiduals = true});
  EXPECT_TRUE(fit.cut.empty());
  EXPECT_EQ(fit.merged.size(), 52U);
}

TEST(MergeSettings, a_ratio_that_rises_loses_no_point_either) {
  PointArray ratio = smoothPoints(12);
  PointArray other = smoothPoints(2, 1200, 1300);
  other(1, 1) = other(0, 1) + 5;
  const std::vector<PointArray> parts{ratio, other};
  EXPECT_FALSE(calibration::fit(parts, {.ratio = true}).cut.empty());
  EXPECT_TRUE(calibration::fit(parts, {.ratio = true, .cutsOverlap = false}).cut.empty());
}

TEST(MergeSettings, a_merge_band_of_nothing_is_refused) {
  for (const double band : {0.0, -1.0, std::nan("")}) {
    const auto failure = failureOf<BadData>(
        [&] { (void)calibration::fit(overlappingParts(0), {.mergeBand = band}); });
    EXPECT_THAT(failure.what(), HasSubstr("merge band"));
  }
}

using KeptMergeSettings = ServiceTest;

TEST_F(KeptMergeSettings, a_repeated_fit_merges_as_the_stored_one_did) {
  Database db = lab();
  const Meter meter = db.registerMeter("M1");
  const auto parts = overlappingParts(0.2);
  db.storeRaw(meter, "K", 1, parts[0]);
  db.storeRaw(meter, "K", 2, parts[1]);
  (void)db.store(db.fit(meter, "K", {.mergeBand = 0.25}));
  Repeated repeated = db.repeat(db.series(meter, "K"));
  EXPECT_EQ(repeated.fit.settings.mergeBand, 0.25);
  EXPECT_TRUE(repeated.isStoredCurve());
  (void)db.store(db.fit(meter, "K", {.cutsOverlap = false}));
  repeated = db.repeat(db.series(meter, "K"));
  EXPECT_FALSE(repeated.fit.settings.cutsOverlap);
  EXPECT_TRUE(repeated.fit.cut.empty());
}

}  // namespace
}  // namespace pelmora::calibration::test
