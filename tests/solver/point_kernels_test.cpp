// SPDX-License-Identifier: MIT
#include "solver/linear/column_kernels.h"
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
std::vector<double> everythingOf(const PointKernels& kernels, std::size_t n,
                                 const LogTable& table) {
  const auto points = bench::workload(n + 2, 2);  // two at least for its spacing
  std::vector<double> found;
  const auto keep = [&found](DoubleDouble value) {
    found.insert(found.end(), {value.hi, value.lo});
  };
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
    task.lowest = lowest, task.middle = 4.75, task.stretch = 0.24, task.degree = 10, task.n = n;
    task.scale = lowest == -4 ? 0x1p-5 : lowest == 2 ? 0x1p-13 : 1;
    std::vector<DoubleDouble> squares(21), products(11);
    kernels.moments(task, squares.data(), products.data());
    for (const DoubleDouble value : squares) keep(value);
    for (const DoubleDouble value : products) keep(value);
    std::vector<double> values(n);
    kernels.curve({pair, products.data(), products.size(), n, lowest, task.middle, task.stretch,
                   values.data()});
    found.insert(found.end(), values.begin(), values.end());
  }
  Column a = u;
  kernels.scale({a.hi.data(), a.lo.data()}, DoubleDouble(1) / DoubleDouble(3), n);
  kernels.subtractMultiple({a.hi.data(), a.lo.data()}, DoubleDouble(1) / DoubleDouble(7), pair, n);
  found.insert(found.end(), a.hi.begin(), a.hi.end());
  found.insert(found.end(), a.lo.begin(), a.lo.end());
  return found;
}

// R, z, 1 / R(k, k), the powers of Chebyshev polynomials, n and its sums.
struct Triangles {
  std::vector<DoubleDouble> squares, products, r, z, inverse, m, n, sums, covariance;
  explicit Triangles(std::size_t p)
      : squares(2 * p - 1),
        products(p),
        r(p * p),
        z(p),
        inverse(p),
        m(p * p),
        n(p * p),
        sums(p * p),
        covariance(p * p) {}
  bool operator==(const Triangles&) const = default;
};

const DoubleDouble variance = DoubleDouble(2) / DoubleDouble(7);

// Of the integral of T(j) T(k) over -1 .. 1.
Triangles trianglesOf(const PointKernels& kernels, std::size_t p) {
  Triangles t(p);
  for (std::size_t m = 0; m < t.squares.size(); m += 2) {
    const auto order = static_cast<double>(m);
    t.squares[m] = DoubleDouble(2) / DoubleDouble(1 - order * order);
  }
  for (std::size_t k = 0; k < p; ++k)
    t.products[k] = DoubleDouble(1) / DoubleDouble(static_cast<double>(k + 3));
  const std::size_t rank = kernels.eliminate(
      {t.squares.data(), t.products.data(), p, 1e-6, t.r.data(), t.z.data(), t.inverse.data()});
  EXPECT_EQ(rank, p);
  kernels.chebyshevPowers(DoubleDouble(-1) / DoubleDouble(3), 0.3, p, p, t.m.data());
  kernels.nest({t.r.data(), t.z.data(), t.inverse.data(), t.m.data(), rank, p, p, t.n.data(),
                t.sums.data()});
  kernels.covariance({t.n.data(), p, p, variance, t.covariance.data()});
  return t;
}

TEST(point_kernels, every_instruction_set_does_the_same_algebra) {
  const auto runnable = runnablePointKernels();
  for (const std::size_t p : {1U, 2U, 7U, 8U, 9U, 16U, 25U}) {
    const auto plain = trianglesOf(*runnable.front(), p);
    for (const PointKernels* kernels : runnable)
      EXPECT_TRUE(trianglesOf(*kernels, p) == plain) << p;
  }
}

__float128 exactly(DoubleDouble value) { return static_cast<__float128>(value.hi) + value.lo; }

TEST(point_kernels, triangles_solve_what_they_are_made_of) {
  constexpr std::size_t p = 25;
  const Triangles t = trianglesOf(pointKernels(), p);
  for (std::size_t k = 0; k < p; ++k) {
    EXPECT_LE(static_cast<double>(fabsq(exactly(t.r[k * p + k]) * exactly(t.inverse[k]) - 1)),
              1e-30);
    __float128 product = 0;
    for (std::size_t i = 0; i <= k; ++i) product += exactly(t.r[i * p + k]) * exactly(t.z[i]);
    EXPECT_LE(static_cast<double>(fabsq(product - exactly(t.products[k]))), 1e-29) << k;
    for (std::size_t j = k; j < p; ++j) {
      __float128 square = 0, expansion = 0, sum = 0, size = 0;
      for (std::size_t i = 0; i <= k; ++i)
        square += exactly(t.r[i * p + k]) * exactly(t.r[i * p + j]);
      const __float128 wanted = (exactly(t.squares[j + k]) + exactly(t.squares[j - k])) / 2;
      EXPECT_LE(static_cast<double>(fabsq(square - wanted)), 1e-29) << k << " " << j;
      for (std::size_t i = k; i <= j; ++i) {  // n R = m, and the sums of n z
        expansion += exactly(t.n[k * p + i]) * exactly(t.r[i * p + j]);
        sum += exactly(t.n[k * p + i]) * exactly(t.z[i]);
        size += fabsq(exactly(t.n[k * p + i]));
      }
      EXPECT_LE(static_cast<double>(fabsq(expansion - exactly(t.m[k * p + j])) / size), 1e-28)
          << k << " " << j;
      EXPECT_LE(static_cast<double>(fabsq(sum - exactly(t.sums[k * p + j])) / size), 1e-28)
          << k << " " << j;
      __float128 covariance = 0, largest = 0;
      for (std::size_t i = j; i < p; ++i) {
        const __float128 part = exactly(t.n[k * p + i]) * exactly(t.n[j * p + i]);
        covariance += exactly(variance) * part;
        largest += fabsq(part);
      }
      EXPECT_LE(static_cast<double>(fabsq(covariance - exactly(t.covariance[k * p + j])) / largest),
                1e-28)
          << k << " " << j;
    }
  }
  // T(3) of t = -1/3 + 0.3 u is 4 t^3 - 3 t.
  const __float128 shift = exactly(DoubleDouble(-1) / DoubleDouble(3)),
                   slope = static_cast<__float128>(0.3);
  EXPECT_LE(static_cast<double>(fabsq(exactly(t.m[3]) - (4 * shift * shift * shift - 3 * shift))),
            1e-30);
  EXPECT_LE(static_cast<double>(fabsq(exactly(t.m[2 * p + 3]) - 12 * shift * slope * slope)),
            1e-30);
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
  std::vector<double> x{1,           2,      0.5,   10,     1.0078125, 0.999999999,
                        1.000000001, 1e-300, 1e300, 5e-324, 1e-310};
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
  const auto points = bench::workload(301, 2);
  const Column u = logarithms(points.x);
  for (const int lowest : {0, -4, 3}) {
    const double largest = std::pow(lowest < 0 ? u.hi.front() : u.hi.back(), 2 * lowest);
    const Moments found = moments(u, points.y, {lowest, 4.75, 0.24, largest}, 5);
    std::vector<__float128> squares(11), products(6);
    __float128 squareSize = 0, productSize = 0;
    for (std::size_t k = 0; k < points.x.size(); ++k) {
      const __float128 exactU = static_cast<__float128>(u.hi[k]) + u.lo[k],
                       t = (exactU - 4.75) * static_cast<__float128>(0.24);
      const __float128 w = powq(exactU, lowest);
      squareSize += largest;
      productSize += largest * fabsq(points.y[k] / w);
      __float128 now = 1, before = t;
      for (std::size_t m = 0; m < 11; ++m) {
        squares[m] += w * w * now;
        if (m < 6) products[m] += w * points.y[k] * now;
        const __float128 after = 2 * t * now - before;
        before = now, now = after;
      }
    }
    const auto error = [](DoubleDouble value, __float128 exact, __float128 size) {
      return static_cast<double>(fabsq(static_cast<__float128>(value.hi) + value.lo - exact) /
                                 size);
    };
    for (std::size_t m = 0; m < 11; ++m) {
      EXPECT_LE(error(found.squares[m], squares[m], squareSize), 1e-28) << lowest << " " << m;
      if (m < 6) {
        EXPECT_LE(error(found.products[m], products[m], productSize), 1e-28) << lowest << " " << m;
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
