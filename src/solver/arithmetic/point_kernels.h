// The loops over all points, and those of the triangles that they lead to, in one form for each
// instruction set of the processor. SPDX-License-Identifier: MIT
#pragma once

#include "solver/arithmetic/double_double.h"

#include <cstddef>
#include <vector>

// Clang has no pragma that sets the instruction set of a whole source.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(_WIN32)
#define PELMORA_HAS_WIDE_KERNELS
#endif

namespace pelmora::solver {

// n double-double values behind two pointers.
struct ConstPair {
  const double *hi = nullptr, *lo = nullptr;
};
struct Pair {
  double *hi = nullptr, *lo = nullptr;
};

struct Range {
  double low = 0, high = 0;
  bool isFinite = true;  // all values, both halves
};

// For the interval 1 + i/128 ... 1 + (i+1)/128 a number near its inverse, and minus its logarithm.
struct LogTable {
  static constexpr std::size_t size = 128;
  double inverse[size] = {}, high[size] = {}, low[size] = {};
  DoubleDouble ln2, series[4];  // of atanh: 1/7, 1/5, 1/3, 1
};

// Sums over w^2 T(m), m = 0 .. 2 degree, and w y T(j), j = 0 .. degree, of
// t = (u - middle) * stretch, with w = u^lowest.
// Needs: |t| <= 1 and scale w^2 <= 1, each but for rounding; scale a power of two.
struct MomentTask {
  static constexpr std::size_t highestDegree = 24;
  ConstPair u;
  const double *y = nullptr, *ones = nullptr;  // ones: eight of them
  int lowest = 0;
  double middle = 0, stretch = 1, scale = 1;
  std::size_t degree = 0, n = 0;
};

// values[k] = u^lowest * sum over j of parameters[j] T(j) at t = (u - middle) * stretch.
struct CurveTask {
  ConstPair u;
  const DoubleDouble* parameters = nullptr;
  std::size_t p = 0, n = 0;
  int lowest = 0;
  double middle = 0, stretch = 1;
  double* values = nullptr;
};

// The normal equations of Chebyshev columns: squares and products as of MomentTask with degree p
// - 1. Out: rows 0 .. rank - 1 of R (p x p, row-major), of z = R'^-1 products and of the inverse
// diagonal.
struct EliminationTask {
  const DoubleDouble *squares = nullptr, *products = nullptr;
  std::size_t p = 0;      // at most highestDegree + 1
  double leastPivot = 0;  // share of a diagonal cell that must be left
  DoubleDouble *r = nullptr, *z = nullptr, *inverse = nullptr;
};

// n = m R^-1 of p columns, and sums(k, i) = sum over j = k .. i of n(k, j) z(j). Row-major, upper
// halves; r and m have rows of rSize and mSize, n and sums of p.
struct NestTask {
  const DoubleDouble *r = nullptr, *z = nullptr, *inverse = nullptr, *m = nullptr;
  std::size_t p = 0, rSize = 0, mSize = 0;  // p at most highestDegree + 1
  DoubleDouble *n = nullptr, *sums = nullptr;
};

// cells(k, l) = variance * sum over i of n(k, i) n(l, i), l from k on; n as of NestTask with rows
// of nSize, cells with rows of p, row-major.
struct CovarianceTask {
  const DoubleDouble* n = nullptr;
  std::size_t p = 0, nSize = 0;  // p at most highestDegree + 1
  DoubleDouble variance;
  DoubleDouble* cells = nullptr;
};

struct PointKernels {
  DoubleDouble (*dot)(ConstPair a, ConstPair b, std::size_t n);
  void (*scale)(Pair a, DoubleDouble factor, std::size_t n);
  void (*subtractMultiple)(Pair a, DoubleDouble factor, ConstPair b, std::size_t n);
  DoubleDouble (*sum)(const double* y, std::size_t n);
  DoubleDouble (*squaresAbout)(const double* y, DoubleDouble middle, std::size_t n);
  Range (*range)(ConstPair a, std::size_t n);
  void (*logarithms)(const double* x, Pair to, std::size_t n, const LogTable& table);
  void (*moments)(const MomentTask& task, DoubleDouble* squares, DoubleDouble* products);
  void (*curve)(const CurveTask& task);
  std::size_t (*eliminate)(const EliminationTask& task);  // the rank
  void (*nest)(const NestTask& task);
  void (*covariance)(const CovarianceTask& task);
  // Column j of m: T(j) of shift + slope u in powers of u, j below count; rows of `size`.
  void (*chebyshevPowers)(DoubleDouble shift, double slope, std::size_t count, std::size_t size,
                          DoubleDouble* m);
};

// The best for this processor, or the one that was forced.
[[nodiscard]] const PointKernels& pointKernels();
// Every thread uses this one from now on; nullptr: the best again. For tests of the slower ones.
void forcePointKernels(const PointKernels* kernels);
// All that this processor can run, from the plainest; every one finds the same digits.
[[nodiscard]] std::vector<const PointKernels*> runnablePointKernels();

[[nodiscard]] const PointKernels& plainPointKernels();
#ifdef PELMORA_HAS_WIDE_KERNELS
[[nodiscard]] const PointKernels& avx2PointKernels();
[[nodiscard]] const PointKernels& avx512PointKernels();
#endif

}  // namespace pelmora::solver
