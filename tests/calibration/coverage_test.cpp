// SPDX-License-Identifier: MIT
#include <pelmora/calibration/coverage.h>
#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <limits>

namespace pelmora::calibration {
namespace {

// Printed tables of Student's t.
TEST(coverage_factor, matches_printed_tables) {
  constexpr double printed = 5e-4;
  EXPECT_NEAR(coverageFactor(0.95, 1), 12.706, printed);
  EXPECT_NEAR(coverageFactor(0.95, 10), 2.228, printed);
  EXPECT_NEAR(coverageFactor(0.99, 5), 4.032, printed);
}

TEST(coverage_factor, is_refused_without_degrees_of_freedom_or_a_probability) {
  EXPECT_THROW(static_cast<void>(coverageFactor(0.95, 0)), BadData);
  EXPECT_THROW(static_cast<void>(coverageFactor(0.95, -1)), BadData);
  EXPECT_THROW(static_cast<void>(coverageFactor(1, 5)), BadData);
  EXPECT_THROW(static_cast<void>(coverageFactor(0, 5)), BadData);
  EXPECT_THROW(static_cast<void>(coverageFactor(std::numeric_limits<double>::quiet_NaN(), 5)),
               BadData);
}

}  // namespace
}  // namespace pelmora::calibration
