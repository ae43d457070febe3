// A trusted fit keeps its reference curve for whoever evaluates it; a fit that was put together
// from numbers has none. SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

#include <cmath>
#include <numbers>

namespace pelmora::calibration::test {
namespace {

// A wave that no equation of the catalogue follows, so that the reference curve is stored; without
// one, the line that an equation gives. One reading is off by 2 %, one flow is left out.
Fit fitOf(double wave) {
  PointArray points = smoothPoints(40);
  for (std::size_t i = 0; i < points.size(); ++i)
    points(i, 1) *= 1 + wave * std::sin(2 * std::numbers::pi * static_cast<double>(i) / 9) +
                    (i % 2 == 0 ? 2e-4 : -2e-4);
  points(17, 1) *= 1.02;
  return calibration::fit(std::vector{points}, {.fitMin = 11, .choice = Choice::trusted});
}

void expectSameFigures(const FittedCurve& curve, const FittedCurve& other) {
  ASSERT_EQ(curve.source(), other.source());
  std::vector<double> places;
  for (double x = curve.lowestRoshko(); x < curve.highestRoshko(); x *= 1.07) places.push_back(x);
  ASSERT_GT(places.size(), 20U);
  const auto here = curve.at(places), there = other.at(places);
  for (std::size_t i = 0; i < places.size(); ++i) {
    EXPECT_EQ(here[i].strouhal, there[i].strouhal);
    EXPECT_EQ(here[i].slope, there[i].slope);
    ASSERT_TRUE(here[i].budget && there[i].budget);
    EXPECT_EQ(here[i].budget->expanded, there[i].budget->expanded);
  }
}

TEST(KeptReferences, change_no_figure) {
  for (const double wave : {0.0, 0.01}) {
    const Fit fit = fitOf(wave);
    ASSERT_TRUE(fit.accepted() && fit.trust && fit.trust->reference);
    Fit fromNumbers = fit;
    fromNumbers.trust->reference.reset();
    const FittedCurve curve(fit), again(fromNumbers);
    EXPECT_EQ(curve.source(), wave == 0 ? CurveSource::equation : CurveSource::reference);
    expectSameFigures(curve, again);
  }
}

}  // namespace
}  // namespace pelmora::calibration::test
