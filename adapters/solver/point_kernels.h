// The loops over all points in one form for each instruction set of the processor.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/solver/double_double.h"

#include <cstddef>
#include <vector>

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
struct MomentTask {
  static constexpr std::size_t highestDegree = 24;
  ConstPair u;
  const double *y = nullptr, *ones = nullptr;  // ones: eight of them
  int lowest = 0;
  double middle = 0, stretch = 1;
  std::size_t degree = 0, n = 0;
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
};

// The best for this processor.
[[nodiscard]] const PointKernels& pointKernels();
// All that this processor can run, from the plainest; every one finds the same digits.
[[nodiscard]] std::vector<const PointKernels*> runnablePointKernels();

[[nodiscard]] const PointKernels& plainPointKernels();
#if defined(__x86_64__) && defined(__GNUC__)
[[nodiscard]] const PointKernels& avx2PointKernels();
[[nodiscard]] const PointKernels& avx512PointKernels();
#endif

}  // namespace pelmora::solver
