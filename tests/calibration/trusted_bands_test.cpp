// The stored band of a trusted curve: the reference curve's, wider where few readings decide.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

#include <cmath>

namespace pelmora::calibration::test {
namespace {

// Readings that are off by 0.1 %, up and down in turn, at 20 flows; the first and the last flow
// are measured `ends` times.
Fit fitOfEndsMeasured(int ends) {
  const PointArray flows = smoothPoints(20);
  std::vector<std::pair<double, double>> rows;
  const auto measure = [&](std::size_t i, int times) {
    for (int k = 0; k < times; ++k)
      rows.emplace_back(flows(i, 0) * (1 + 1e-5 * k),
                        flows(i, 1) * (1 + (rows.size() % 2 == 0 ? 0.001 : -0.001)));
  };
  for (std::size_t i = 0; i < flows.size(); ++i)
    measure(i, i == 0 || i + 1 == flows.size() ? ends : 1);
  PointArray points(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i)
    points(i, 0) = rows[i].first, points(i, 1) = rows[i].second;
  return calibration::fit(std::vector{points}, {.choice = Choice::trusted});
}

double bandAt(const Fit& fit, std::size_t row) { return fit.outcome.ConfidenceHalfWidth[row]; }
// The band of the reference curve if the readings of its first flow, `count` of them, were all
// that is known beside it.
double bandOfReadings(const ReferenceValue& at, int count) {
  const double reading = at.newPointSd * at.newPointSd - at.curveSd * at.curveSd;
  return 2 * std::sqrt(at.curveSd * at.curveSd + reading / count);
}

TEST(TrustedBands, are_those_of_a_new_reading_at_ends_that_were_measured_once) {
  const Fit fit = fitOfEndsMeasured(1);
  ASSERT_TRUE(fit.accepted()) << fit.reason();
  const auto& table = fit.trust->table;
  for (const std::size_t row : {std::size_t{0}, table.size() - 1}) {
    EXPECT_GE(bandAt(fit, row), 2 * table[row].newPointSd * (1 - 1e-12));
    EXPECT_LE(bandAt(fit, row), 2.2 * table[row].newPointSd);
  }
}

TEST(TrustedBands, are_narrower_at_ends_that_were_measured_again) {
  const Fit fit = fitOfEndsMeasured(4);
  ASSERT_TRUE(fit.accepted()) << fit.reason();
  const ReferenceValue& first = fit.trust->table.front();
  EXPECT_GE(bandAt(fit, 0), bandOfReadings(first, 4) * (1 - 1e-12));
  EXPECT_LT(bandAt(fit, 0), bandOfReadings(first, 2));
}

TEST(TrustedBands, are_those_of_the_reference_curve_between_the_ends) {
  const Fit fit = fitOfEndsMeasured(1);
  ASSERT_TRUE(fit.accepted()) << fit.reason();
  const auto& table = fit.trust->table;
  for (std::size_t row = 5; row + 5 < table.size(); ++row) {
    EXPECT_GE(bandAt(fit, row), 2 * table[row].curveSd * (1 - 1e-12));
    EXPECT_LT(bandAt(fit, row), 1.5 * table[row].newPointSd) << "row " << row;
  }
}

}  // namespace
}  // namespace pelmora::calibration::test
