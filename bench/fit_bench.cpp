// One whole fit of a series as determineFittedCurve runs it, database reads excluded: the
// catalogue, residual and band tests, the report, and the outcome with its bands and warnings.
// SPDX-License-Identifier: MIT
#include "band/band.h"
#include "bench/noisy_points.h"
#include "solver/solver.h"
#include "component/clsDataFit.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace pelmora {
namespace {

void wholeFit(benchmark::State& state) {
  Platform platform;
  platform.createFitEngine = createSolver;
  platform.createBandTester = createBandTester;
  platform.componentFolder = "no equation file here";
  const PointArray points = bench::noisyPoints(static_cast<std::size_t>(state.range(0)));
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
