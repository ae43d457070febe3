// The reference curve: fit with averaging and robust pass, and its evaluation.
// SPDX-License-Identifier: MIT
#include "solver/reference/reference_curve.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace pelmora::solver::reference {
namespace {

struct Series {
  std::vector<double> x, y;
};

// One fluid over two decades, no repeats, so that every point is a step of the filter.
Series simulated(std::size_t count) {
  Series series;
  std::mt19937 random(7);
  std::normal_distribution<double> noise(0, 0.0006);
  for (std::size_t i = 0; i < count; ++i) {
    const double x = 10 * std::pow(150.0, static_cast<double>(i) / static_cast<double>(count - 1));
    series.x.push_back(x);
    series.y.push_back(1300 * (1 - 0.6 / x - 0.01 * std::exp(-std::pow(std::log(x / 90), 2))) *
                       (1 + noise(random)));
  }
  return series;
}

void fit(benchmark::State& state) {
  const Series series = simulated(static_cast<std::size_t>(state.range(0)));
  std::size_t nodes = 0;
  for (auto _ : state) nodes = fitReference({series.x, series.y}).nodes().size();
  state.counters["nodes"] = static_cast<double>(nodes);
}
BENCHMARK(fit)->Arg(12)->Arg(60)->Arg(500)->Arg(5000)->Arg(32000)->Unit(benchmark::kMillisecond);

// Every hundredth reading is bad.
void fitWithBadReadings(benchmark::State& state) {
  Series series = simulated(static_cast<std::size_t>(state.range(0)));
  for (std::size_t i = 50; i < series.y.size(); i += 100) series.y[i] *= 1.01;
  for (auto _ : state)
    benchmark::DoNotOptimize(fitReference({series.x, series.y}).distrusted().data());
}
BENCHMARK(fitWithBadReadings)->Arg(500)->Arg(5000)->Arg(32000)->Unit(benchmark::kMillisecond);

void evaluate(benchmark::State& state) {
  const Series series = simulated(60);
  const Series asked = simulated(static_cast<std::size_t>(state.range(0)));
  const ReferenceCurve curve = fitReference({series.x, series.y});
  for (auto _ : state) benchmark::DoNotOptimize(curve.evaluate(asked.x).data());
}
BENCHMARK(evaluate)->Arg(40)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelmora::solver::reference

BENCHMARK_MAIN();
