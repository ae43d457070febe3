// One whole fit of a series as determineFittedCurve runs it, database reads excluded: the
// catalogue, residual and band tests, the report, and the outcome with its bands and warnings.
// SPDX-License-Identifier: MIT
#include "band/band.h"
#include "solver/solver.h"
#include "component/clsDataFit.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace pelmora {
namespace {

// A rotor's curve over two decades with noise that no equation fits to R2 >= 0.9999, so that all
// six are fitted, tested and reported.
PointArray noisySeries(std::size_t count) {
  PointArray points(count);
  std::mt19937 random(7);
  std::normal_distribution<double> noise(0, 0.0006);
  for (std::size_t i = 0; i < count; ++i) {
    const double t = static_cast<double>(i) / static_cast<double>(count - 1);
    const double x = 10 * std::pow(150.0, t);
    points(i, 0) = x;
    points(i, 1) = 1300 * (1 - 0.6 / x - 0.01 * std::exp(-std::pow(std::log(x / 90), 2))) *
                   (1 + noise(random));
  }
  return points;
}

void wholeFit(benchmark::State& state) {
  Platform platform;
  platform.createFitEngine = createSolver;
  platform.createBandTester = createBandTester;
  platform.componentFolder = "no equation file here";
  const PointArray points = noisySeries(static_cast<std::size_t>(state.range(0)));
  std::size_t fitted = 0;
  for (auto _ : state) {
    clsDataFit fit(platform);
    fit.BandPercent = 1;
    fit.NumberOfFittedPoints = 40;
    fit.MeterSerialNumber = "4711";
    fit.SeriesName = "Rotor A";
    bool ArrayIsEmpty = true;
    const PointArray curve = fit.fitCurve(points, ArrayIsEmpty, points(0, 0),
                                          points(points.size() - 1, 0), "Roshko", "Strouhal");
    const FitOutcome outcome = fit.outcome();
    benchmark::DoNotOptimize(fit.ResultDetails().size());
    if (!ArrayIsEmpty) ++fitted;
    fitted += outcome.Equations.size() - 6;
  }
  if (fitted != static_cast<std::size_t>(state.iterations()))
    state.SkipWithError("a fit found no curve");
}
BENCHMARK(wholeFit)->Arg(60)->Arg(500)->Arg(5000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelmora

BENCHMARK_MAIN();
