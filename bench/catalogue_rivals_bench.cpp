// The same catalogue by the tools that a laboratory could use instead: Eigen's column-pivoting QR
// and LAPACK's dgels, GSL's multifit where it is installed, with standard errors, statistics and 40
// predicted points. Built for the instruction set of the machine, for their best times. `digits`
// counts those of the worst parameter of order 10 against quadruple precision.
// SPDX-License-Identifier: MIT
#include "bench/catalogue_workload.h"
#include "bench/eigen_design.h"
#include "tests/solver/quad_reference.h"

#include <benchmark/benchmark.h>

#include <Eigen/Dense>
#ifdef PELMORA_HAS_GSL
#include <gsl/gsl_multifit.h>
#endif

#include <algorithm>
#include <cmath>
#include <vector>

extern "C" void dgels_(const char* trans, const int* m, const int* n, const int* nrhs, double* a,
                       const int* lda, double* b, const int* ldb, double* work, const int* lwork,
                       int* info);

namespace pelmora::bench {
namespace {

// What every fit owes beside its parameters.
Eigen::VectorXd finish(const Eigen::MatrixXd& columns, const Eigen::VectorXd& y,
                       const Eigen::VectorXd& parameters, const Eigen::MatrixXd& inverse,
                       const Eigen::MatrixXd& grid) {
  const Eigen::VectorXd residuals = y - columns * parameters;
  const double squares = residuals.squaredNorm();
  const double variance = squares / static_cast<double>(y.size() - parameters.size());
  benchmark::DoNotOptimize((inverse.rowwise().norm() * std::sqrt(variance)).eval());
  benchmark::DoNotOptimize(1 - squares / (y.array() - y.mean()).matrix().squaredNorm());
  benchmark::DoNotOptimize((grid * parameters).eval());
  return parameters;
}

template <class Solve>
void fitAll(benchmark::State& state, const Solve& solve) {
  const Workload points = workload(static_cast<std::size_t>(state.range(0)));
  const Eigen::VectorXd y = Eigen::Map<const Eigen::VectorXd>(points.y.data(), state.range(0));
  const Workload grid = workload(40);
  for (auto _ : state) {
    for (const int order : {0, 10, 9, 8, 7, 6}) {
      benchmark::DoNotOptimize(solve(design(points.x, order), y, design(grid.x, order)));
    }
  }
  const test::QuadReference reference(points.x, points.y, true, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  const auto exact = reference.fit(11).parameters;
  const Eigen::VectorXd found = solve(design(points.x, 10), y, design(grid.x, 10));
  double digits = 99;
  for (Eigen::Index k = 0; k < 11; ++k) {
    digits = std::min(digits, test::agreeingDigits(found[k], exact[static_cast<std::size_t>(k)]));
  }
  state.counters["digits"] = digits;
}

void eigenPivotingQr(benchmark::State& state) {
  fitAll(state,
         [](const Eigen::MatrixXd& columns, const Eigen::VectorXd& y, const Eigen::MatrixXd& grid) {
           const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(columns);
           const Eigen::VectorXd parameters = qr.solve(y);
           const Eigen::Index p = columns.cols();
           Eigen::MatrixXd inverse = Eigen::MatrixXd::Identity(p, p);
           qr.matrixR().topLeftCorner(p, p).triangularView<Eigen::Upper>().solveInPlace(inverse);
           return finish(columns, y, parameters, qr.colsPermutation() * inverse, grid);
         });
}

// All polynomials from one factorisation without pivoting, which is the fastest: their matrices are
// the first columns of one.
void eigenSharedQr(benchmark::State& state) {
  const Workload points = workload(static_cast<std::size_t>(state.range(0)));
  const Eigen::VectorXd y = Eigen::Map<const Eigen::VectorXd>(points.y.data(), state.range(0));
  const Workload grid = workload(40);
  for (auto _ : state) {
    for (const int order : {0, 10}) {
      const Eigen::MatrixXd columns = design(points.x, order), at = design(grid.x, order);
      const Eigen::HouseholderQR<Eigen::MatrixXd> qr(columns);
      const Eigen::Index all = columns.cols();
      const Eigen::VectorXd right = qr.householderQ().adjoint() * y;
      for (Eigen::Index p = order == 0 ? all : 7; p <= all; ++p) {
        const auto r = qr.matrixQR().topLeftCorner(p, p).triangularView<Eigen::Upper>();
        Eigen::MatrixXd inverse = Eigen::MatrixXd::Identity(p, p);
        r.solveInPlace(inverse);
        benchmark::DoNotOptimize(
            finish(columns.leftCols(p), y, r.solve(right.head(p)), inverse, at.leftCols(p)));
      }
    }
  }
}
BENCHMARK(eigenSharedQr)->Arg(50)->Arg(500)->Arg(5000)->Arg(32000)->Unit(benchmark::kMicrosecond);

void lapackDgels(benchmark::State& state) {
  fitAll(state, [](const Eigen::MatrixXd& columns, const Eigen::VectorXd& y,
                   const Eigen::MatrixXd& grid) {
    Eigen::MatrixXd factored = columns;
    Eigen::VectorXd right = y;
    const int n = static_cast<int>(columns.rows()), p = static_cast<int>(columns.cols()), one = 1;
    const int workSize = 64 * (n + p);
    std::vector<double> work(static_cast<std::size_t>(workSize));
    int info = 0;
    dgels_("N", &n, &p, &one, factored.data(), &n, right.data(), &n, work.data(), &workSize, &info);
    Eigen::MatrixXd inverse = Eigen::MatrixXd::Identity(p, p);
    factored.topLeftCorner(p, p).triangularView<Eigen::Upper>().solveInPlace(inverse);
    return finish(columns, y, right.head(p), inverse, grid);
  });
}

#ifdef PELMORA_HAS_GSL
// By singular values; its covariance comes with the fit.
void gslMultifit(benchmark::State& state) {
  using Rows = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
  fitAll(state, [](const Eigen::MatrixXd& columns, const Eigen::VectorXd& y,
                   const Eigen::MatrixXd& grid) {
    const Rows rows = columns;
    const auto n = static_cast<std::size_t>(columns.rows()),
               p = static_cast<std::size_t>(columns.cols());
    const auto x = gsl_matrix_const_view_array(rows.data(), n, p);
    const auto right = gsl_vector_const_view_array(y.data(), n);
    Eigen::VectorXd parameters(columns.cols());
    Rows covariance(columns.cols(), columns.cols());
    auto found = gsl_vector_view_array(parameters.data(), p);
    auto spread = gsl_matrix_view_array(covariance.data(), p, p);
    double squares = 0;
    gsl_multifit_linear_workspace* const work = gsl_multifit_linear_alloc(n, p);
    gsl_multifit_linear(&x.matrix, &right.vector, &found.vector, &spread.matrix, &squares, work);
    gsl_multifit_linear_free(work);
    benchmark::DoNotOptimize(covariance.diagonal().cwiseSqrt().eval());
    benchmark::DoNotOptimize(1 - squares / (y.array() - y.mean()).matrix().squaredNorm());
    benchmark::DoNotOptimize((grid * parameters).eval());
    return parameters;
  });
}
BENCHMARK(gslMultifit)->Arg(50)->Arg(500)->Arg(5000)->Arg(32000)->Unit(benchmark::kMicrosecond);
#endif

// The floor: one pass over both columns.
void onePassOverMemory(benchmark::State& state) {
  const Workload points = workload(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    double sum = 0;
    for (std::size_t k = 0; k < points.x.size(); ++k) sum += points.x[k] * points.y[k];
    benchmark::DoNotOptimize(sum);
  }
}

BENCHMARK(eigenPivotingQr)->Arg(50)->Arg(500)->Arg(5000)->Arg(32000)->Unit(benchmark::kMicrosecond);
BENCHMARK(lapackDgels)->Arg(50)->Arg(500)->Arg(5000)->Arg(32000)->Unit(benchmark::kMicrosecond);
BENCHMARK(onePassOverMemory)
    ->Arg(50)
    ->Arg(500)
    ->Arg(5000)
    ->Arg(32000)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace pelmora::bench

BENCHMARK_MAIN();
