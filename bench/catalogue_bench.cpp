// How long the catalogue of six equations takes: parameters, standard errors, statistics and 40
// predicted points of each, reading the equations included.
// SPDX-License-Identifier: MIT
#include "solver/equations/expression_parser.h"
#include "solver/solver.h"
#include "bench/catalogue_workload.h"

#include <benchmark/benchmark.h>

#include <cstdlib>

namespace pelmora::bench {
namespace {

void fitCatalogue(benchmark::State& state) {
  const Workload points = workload(static_cast<std::size_t>(state.range(0)));
  const auto data = std::make_shared<FitData>();
  data->Symbols = {"X", "Y"};
  data->Columns = {points.x, points.y};
  const Workload grid = workload(40);
  for (auto _ : state) {
    const auto engine = createSolver();  // a new one: nothing is left over from the round before
    for (auto equation = catalogue().rbegin(); equation != catalogue().rend(); ++equation) {
      const auto model = engine->createModel();
      model->Definition = {equation->first, equation->second};
      model->attach(data);
      if (!model->solutionFound()) std::abort();
      benchmark::DoNotOptimize(model->parameters());
      benchmark::DoNotOptimize(model->statistics());
      benchmark::DoNotOptimize(model->evaluate(grid.x));
    }
  }
}
// The share of it that goes into reading the texts.
void parseCatalogue(benchmark::State& state) {
  for (auto _ : state) {
    for (const auto& [name, expression] : catalogue()) {
      benchmark::DoNotOptimize(solver::parseExpression(expression));
    }
  }
}
BENCHMARK(parseCatalogue)->Unit(benchmark::kMicrosecond);
BENCHMARK(fitCatalogue)->Arg(50)->Arg(500)->Arg(5000)->Arg(32000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace pelmora::bench

BENCHMARK_MAIN();
