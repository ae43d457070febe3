// Raw points, merged points and curves that do or do not fit together, by hand.
// SPDX-License-Identifier: MIT
#include "report/stored_agreement.h"

#include <gmock/gmock.h>

#include <cmath>
#include <optional>

namespace pelmora::report::test {
namespace {

using testing::DoubleNear;
using testing::Eq;
using testing::Optional;

constexpr double rounding = 1e-12;

TEST(stored_agreement, counts_merged_points_that_no_raw_part_has) {
  calibration::StoredSeries stored;
  stored.raw[0] = PointArray{{1, 10}, {2, 20}};
  stored.raw[2] = PointArray{{2, 20}, {3, 30}};
  stored.merged = PointArray{{1, 10}, {2, 20}, {2, 20}, {3, 30}};
  EXPECT_EQ(mergedPointsNotRaw(stored), 0U);
  // The third 2, and a Strouhal number that has changed.
  stored.merged = PointArray{{2, 20}, {2, 20}, {2, 20}, {3, 31}};
  EXPECT_EQ(mergedPointsNotRaw(stored), 2U);
}

TEST(stored_agreement, is_measured_by_the_largest_distance_of_two_curves) {
  const PointArray stored = PointArray{{10, 100}, {20, 200}, {30, 100}};
  EXPECT_THAT(largestDistancePercent(stored, stored), Optional(0.0));
  EXPECT_THAT(largestDistancePercent(stored, PointArray{{10, 100}, {20, 190}, {30, 101}}),
              Optional(DoubleNear(5, rounding)));
}

TEST(stored_agreement, of_curves_that_cannot_be_compared_is_not_known) {
  const PointArray stored = PointArray{{10, 100}, {20, 200}};
  EXPECT_THAT(largestDistancePercent({}, {}), Eq(std::nullopt));
  EXPECT_THAT(largestDistancePercent(stored, PointArray{{10, 100}}), Eq(std::nullopt));
  EXPECT_THAT(largestDistancePercent(stored, PointArray{{10, 100}, {20.1, 200}}), Eq(std::nullopt));
  // A number behind it does not hide it.
  EXPECT_THAT(largestDistancePercent(stored, PointArray{{10, std::nan("")}, {20, 200}}),
              Eq(std::nullopt));
}

}  // namespace
}  // namespace pelmora::report::test
