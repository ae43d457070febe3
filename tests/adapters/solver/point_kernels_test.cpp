// SPDX-License-Identifier: MIT
#include "adapters/solver/column_kernels.h"
#include "bench/catalogue_workload.h"

#include <gtest/gtest.h>

#include <quadmath.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace pelmora::solver {
namespace {

// Bits of all that one instruction set makes of n points.
std::vector<double> everythingOf(const PointKernels& kernels, std::size_t n, const LogTable& table) {
  const auto points = bench::workload(n + 2, 0.4);  // two at least for its spacing
  std::vector<double> found;
  const auto keep = [&found](DoubleDouble value) { found.insert(found.end(), {value.hi, value.lo}); };
  Column u(n);
  kernels.logarithms(points.x.data(), {u.hi.data(), u.lo.data()}, n, table);
  const ConstPair pair{u.hi.data(), u.lo.data()};
  found.insert(found.end(), u.hi.begin(), u.hi.end());
  found.insert(found.end(), u.lo.begin(), u.lo.end());
  keep(kernels.sum(points.y.data(), n));
  keep(kernels.squaresAbout(points.y.data(), DoubleDouble(1300), n));
  keep(kernels.dot(pair, pair, n));
  const Range range = kernels.range(pair, n);
  found.insert(found.end(), {range.low, range.high});
  for (const int lowest : {0, -4, 2}) {
    const std::vector<double> ones(8, 1);
    MomentTask task;
    task.u = pair, task.y = points.y.data(), task.ones = ones.data();
    task.lowest = lowest, task.middle = 4, task.stretch = 0.25, task.degree = 10, task.n = n;
    std::vector<DoubleDouble> squares(21), products(11);
    kernels.moments(task, squares.data(), products.data());
    for (const DoubleDouble value : squares) keep(value);
    for (const DoubleDouble value : products) keep(value);
  }
  Column a = u;
  kernels.scale({a.hi.data(), a.lo.data()}, DoubleDouble(1) / DoubleDouble(3), n);
  kernels.subtractMultiple({a.hi.data(), a.lo.data()}, DoubleDouble(1) / DoubleDouble(7), pair, n);
  found.insert(found.end(), a.hi.begin(), a.hi.end());
  found.insert(found.end(), a.lo.begin(), a.lo.end());
  return found;
}

TEST(point_kernels, every_instruction_set_finds_the_same_digits) {
  const auto runnable = runnablePointKernels();
  ASSERT_FALSE(runnable.empty());
  for (const std::size_t n : {1U, 7U, 8U, 9U, 31U, 32U, 33U, 127U, 128U, 500U}) {
    const auto plain = everythingOf(*runnable.front(), n, logTable());
    for (const PointKernels* kernels : runnable) {
      const auto found = everythingOf(*kernels, n, logTable());
      ASSERT_EQ(found.size(), plain.size());
      EXPECT_EQ(std::memcmp(found.data(), plain.data(), plain.size() * sizeof(double)), 0) << n;
    }
  }
}

TEST(point_kernels, logarithms_have_30_digits_of_their_size_or_of_1) {
  std::vector<double> x{1, 2, 0.5, 10, 1.0078125, 0.999999999, 1.000000001, 1e-300, 1e300, 5e-324, 1e-310};
  for (int k = 1; k < 2000; ++k) x.push_back(0.0031 * k);
  const Column found = logarithms(x);
  for (std::size_t k = 0; k < x.size(); ++k) {
    const __float128 exact = logq(x[k]), value = static_cast<__float128>(found.hi[k]) + found.lo[k];
    const auto error = static_cast<double>(fabsq(value - exact));
    EXPECT_LE(error, 1e-30 * std::max(1.0, std::fabs(found.hi[k]))) << x[k];
  }
  EXPECT_EQ(found.hi[0], 0);
  EXPECT_EQ(found.lo[0], 0);
}

TEST(point_kernels, logarithms_outside_the_domain_are_not_finite) {
  const double infinite = std::numeric_limits<double>::infinity();
  const Column found = logarithms(std::vector<double>{0, -0.0, -1, infinite, std::nan("")});
  EXPECT_EQ(found.hi[0], -infinite);
  EXPECT_EQ(found.hi[1], -infinite);
  EXPECT_TRUE(std::isnan(found.hi[2]));
  EXPECT_EQ(found.hi[3], infinite);
  EXPECT_TRUE(std::isnan(found.hi[4]));
}

TEST(point_kernels, moments_are_those_of_quadruple_precision) {
  const auto points = bench::workload(301, 0.4);
  const Column u = logarithms(points.x);
  for (const int lowest : {0, -4, 3}) {
    const Moments found = moments(u, points.y, lowest, 4, 0.25, 5);
    std::vector<__float128> squares(11), products(6), sizes(11);
    for (std::size_t k = 0; k < points.x.size(); ++k) {
      const __float128 exactU = static_cast<__float128>(u.hi[k]) + u.lo[k], t = (exactU - 4) * 0.25;
      const __float128 w = powq(exactU, lowest);
      __float128 now = 1, before = t;
      for (std::size_t m = 0; m < 11; ++m) {
        squares[m] += w * w * now;
        sizes[m] += w * w * (fabsq(now) + 1) * (1 + fabsq(points.y[k]));
        if (m < 6) products[m] += w * points.y[k] * now;
        const __float128 after = 2 * t * now - before;
        before = now, now = after;
      }
    }
    for (std::size_t m = 0; m < 11; ++m) {
      const auto error = [&](DoubleDouble value, __float128 exact) {
        return static_cast<double>(fabsq(static_cast<__float128>(value.hi) + value.lo - exact) / sizes[m]);
      };
      EXPECT_LE(error(found.squares[m], squares[m]), 1e-28) << lowest << " " << m;
      if (m < 6) {
        EXPECT_LE(error(found.products[m], products[m]), 1e-28) << lowest << " " << m;
      }
    }
  }
}

TEST(point_kernels, a_value_that_is_not_finite_is_seen_wherever_it_stands) {
  for (std::size_t place = 0; place < 19; ++place) {
    Column a(19);
    EXPECT_TRUE(range(a).isFinite);
    a.hi[place] = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(range(a).isFinite);
    a.hi[place] = std::nan("");
    EXPECT_FALSE(range(a).isFinite);
  }
}

}  // namespace
}  // namespace pelmora::solver
