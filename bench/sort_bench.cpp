// Sorting a raw series: quickSortPoints against std::sort on pairs and on an index.
// SPDX-License-Identifier: MIT
#include <pelmora/types.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

namespace {

using pelmora::PointArray;

enum Order : int { shuffled, rising, falling };

PointArray points(std::int64_t count, std::int64_t order) {
  PointArray result(static_cast<std::size_t>(count));
  std::vector<double> roshko(result.size());
  std::iota(roshko.begin(), roshko.end(), 1.0);
  std::mt19937_64 random(1);
  if (order == shuffled) std::shuffle(roshko.begin(), roshko.end(), random);
  if (order == falling) std::reverse(roshko.begin(), roshko.end());
  for (std::size_t i = 0; i < result.size(); ++i) {
    result(i, 0) = roshko[i];
    result(i, 1) = 1 / roshko[i];
  }
  return result;
}

void quickSortPoints(benchmark::State& state) {
  const PointArray unsorted = points(state.range(0), state.range(1));
  for (auto _ : state) {
    PointArray sorted = unsorted;
    pelmora::quickSortPoints(sorted, 0, 1, 0, pelmora::pointUpperBound(sorted), true);
    benchmark::DoNotOptimize(sorted.column(0).data());
  }
}

void std_sort_of_pairs(benchmark::State& state) {
  const PointArray unsorted = points(state.range(0), state.range(1));
  for (auto _ : state) {
    std::vector<std::pair<double, double>> pairs(unsorted.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {unsorted(i, 0), unsorted(i, 1)};
    std::sort(pairs.begin(), pairs.end());
    PointArray sorted(pairs.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      sorted(i, 0) = pairs[i].first;
      sorted(i, 1) = pairs[i].second;
    }
    benchmark::DoNotOptimize(sorted.column(0).data());
  }
}

void std_sort_of_an_index(benchmark::State& state) {
  const PointArray unsorted = points(state.range(0), state.range(1));
  for (auto _ : state) {
    std::vector<std::size_t> index(unsorted.size());
    std::iota(index.begin(), index.end(), std::size_t{0});
    std::sort(index.begin(), index.end(),
              [&](std::size_t a, std::size_t b) { return unsorted(a, 0) < unsorted(b, 0); });
    PointArray sorted(unsorted.size());
    for (std::size_t i = 0; i < index.size(); ++i) {
      sorted(i, 0) = unsorted(index[i], 0);
      sorted(i, 1) = unsorted(index[i], 1);
    }
    benchmark::DoNotOptimize(sorted.column(0).data());
  }
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"points", "order"})->Unit(benchmark::kMicrosecond);
  for (const int order : {shuffled, rising, falling}) benchmark->Args({32000, order});
  benchmark->Args({48, shuffled});
}

BENCHMARK(quickSortPoints)->Apply(sizes);
BENCHMARK(std_sort_of_pairs)->Apply(sizes);
BENCHMARK(std_sort_of_an_index)->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
