// One fit of points in no database by the service, as a C++ program calls it: the rival of the
// Python package (bench/python_fits.py). Links the shared library, as Python does.
// SPDX-License-Identifier: MIT
#include <pelmora/calibration/fit.h>

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

namespace cal = pelmora::calibration;

// The points of bench/python_fits.py.
pelmora::PointArray rotorPoints(std::size_t count) {
  pelmora::PointArray points(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double t = static_cast<double>(i) / static_cast<double>(count - 1);
    const double x = 40 * std::pow(150.0, t), wave = static_cast<double>(i % 7) - 3;
    points(i, 0) = x;
    points(i, 1) = 2.5 * (1 - 4 / x) * (1 + 1e-4 * wave);
  }
  return points;
}

void serviceFit(benchmark::State& state, cal::Choice choice) {
  const std::vector<pelmora::PointArray> parts{rotorPoints(60)};
  cal::FitSettings settings;
  settings.choice = choice;
  for (auto _ : state) {
    const cal::Fit fit = cal::fit(parts, settings);
    if (!fit.accepted()) state.SkipWithError("the fit found no curve");
    benchmark::DoNotOptimize(fit.curve.size());
  }
}
BENCHMARK_CAPTURE(serviceFit, trusted, cal::Choice::trusted)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(serviceFit, adjusted_r2, cal::Choice::adjustedR2)->Unit(benchmark::kMicrosecond);

}  // namespace
