// Knots against the best placings that are known in closed form or by trying all of them.
// SPDX-License-Identifier: MIT
#include "tables/placed_table.h"

#include "tests/support/complaint.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace pelmora::tables {
namespace {

using test::complaint;

template <class Function>
Curve curveOf(Function function) {
  return [function](std::span<const double> x) {
    std::vector<double> y;
    for (const double each : x) y.push_back(function(each));
    return y;
  };
}

double bend(double x) {
  return 1300 * (1 - 0.9 / (x + 6) - 0.006 * std::exp(-std::pow(std::log(x / 60) / 0.9, 2)));
}

// The largest error between knots k - 1 and k, on a fine grid.
std::vector<double> segmentErrors(const PlacedTable& table, Reading reading,
                                  double (*curve)(double)) {
  const TableReader read(table.x, table.y, reading);
  std::vector<double> errors;
  for (std::size_t k = 1; k < table.x.size(); ++k) {
    double worst = 0;
    for (int i = 0; i <= 500; ++i) {
      const double x = table.x[k - 1] * std::pow(table.x[k] / table.x[k - 1], i / 500.0);
      worst = std::max(worst, std::abs(read(x) / curve(x) - 1) * 100);
    }
    errors.push_back(worst);
  }
  return errors;
}

// Bends one way in x and in ln x.
double drag(double x) { return 1300 * (1 - 0.5 * std::pow(x, -0.7)); }

TEST(placed_table, ends_when_it_is_asked_to) {
  struct Enough {};
  for (const std::size_t points : {40U, 1000U}) {
    int asked = 0;
    const auto goOn = [&asked] {
      if (++asked == 5000) throw Enough();  // in the middle of the search
    };
    EXPECT_THROW((void)placeTable(curveOf(bend), {8, 900}, points, Reading::linear, goOn), Enough);
    EXPECT_EQ(asked, 5000);
  }
}

TEST(placed_table, errs_equally_in_all_segments_of_a_curve_that_bends_one_way) {
  for (const Reading reading : {Reading::linear, Reading::logarithmic}) {
    for (const std::size_t points : {10U, 16U, 40U}) {
      const PlacedTable table = placeTable(curveOf(drag), {8, 900}, points, reading);
      ASSERT_EQ(table.x.size(), points);
      const std::vector<double> errors = segmentErrors(table, reading, drag);
      const auto [least, most] = std::minmax_element(errors.begin(), errors.end());
      EXPECT_GT(*least, 0.97 * *most) << readingName(reading) << " " << points;
      EXPECT_NEAR(table.error.percent, *most, 0.01 * *most);
    }
  }
}

// y = 1 + x^2 / c with x^2 small beside c: all pieces of equal length err by h^2 / 4 / c.
TEST(placed_table, spaces_a_parabola_evenly) {
  constexpr double c = 1e6;
  const PlacedTable table =
      placeTable(curveOf([](double x) { return 1 + x * x / c; }), {1, 10}, 10, Reading::linear);
  for (std::size_t k = 0; k < table.x.size(); ++k)
    EXPECT_NEAR(table.x[k], 1.0 + static_cast<double>(k), 0.002);
  EXPECT_NEAR(table.error.percent, 100 / (4 * c), 1e-3 * 100 / (4 * c));
  EXPECT_EQ(table.x.front(), 1);
  EXPECT_EQ(table.x.back(), 10);
}

TEST(placed_table, reads_straight_lines_without_an_error) {
  const PlacedTable linear =
      placeTable(curveOf([](double x) { return 3 + 2 * x; }), {1, 10}, 7, Reading::linear);
  EXPECT_EQ(linear.x.size(), 7U);
  EXPECT_LT(linear.error.percent, 1e-9);
  const PlacedTable logarithmic = placeTable(curveOf([](double x) { return 3 + 2 * std::log(x); }),
                                             {1, 10}, 7, Reading::logarithmic);
  EXPECT_LT(logarithmic.error.percent, 1e-9);
  const PlacedTable cubic = placeTable(
      curveOf([](double x) { return 30 + std::pow(std::log(x), 3); }), {1, 10}, 7, Reading::cubic);
  EXPECT_LT(cubic.error.percent, 1e-9);
}

// The smallest largest error of all choices of knots from a grid, by dynamic programming.
double bestOnGrid(double (*curve)(double), Range range, std::size_t points, std::size_t cells) {
  std::vector<double> x, y;
  for (std::size_t i = 0; i <= cells; ++i) {
    x.push_back(range.low * std::pow(range.high / range.low, double(i) / double(cells)));
    y.push_back(curve(x.back()));
  }
  const auto error = [&](std::size_t a, std::size_t b) {
    double worst = 0;
    for (std::size_t i = a + 1; i < b; ++i) {
      const double read = y[a] + (y[b] - y[a]) * (x[i] - x[a]) / (x[b] - x[a]);
      worst = std::max(worst, std::abs(read / y[i] - 1));
    }
    return 100 * worst;
  };
  std::vector<std::vector<double>> of(cells + 1, std::vector<double>(cells + 1));
  for (std::size_t a = 0; a <= cells; ++a)
    for (std::size_t b = a + 1; b <= cells; ++b) of[a][b] = error(a, b);
  std::vector<double> best(cells + 1, std::numeric_limits<double>::infinity());
  best[0] = 0;
  for (std::size_t piece = 1; piece < points; ++piece) {
    std::vector<double> next(cells + 1, std::numeric_limits<double>::infinity());
    for (std::size_t b = 1; b <= cells; ++b)
      for (std::size_t a = 0; a < b; ++a) next[b] = std::min(next[b], std::max(best[a], of[a][b]));
    best = next;
  }
  return best[cells];
}

double wavy(double x) { return 1000 + 30 * std::log(x) + 12 * std::sin(4 * std::log(x)); }

TEST(placed_table, is_no_worse_than_the_best_of_all_choices_on_a_grid) {
  for (const auto curve : {bend, wavy}) {
    const double grid = bestOnGrid(curve, {8, 900}, 12, 240);
    const PlacedTable table = placeTable(curveOf(curve), {8, 900}, 12, Reading::linear);
    EXPECT_LE(table.error.percent, 1.001 * grid);
    EXPECT_GT(table.error.percent, 0.8 * grid);  // the grid costs a little
  }
}

TEST(placed_table, moves_the_knots_of_a_cubic_where_the_curve_bends) {
  const PlacedTable even = evenTable(curveOf(bend), {2, 9000}, 16, Reading::cubic);
  const PlacedTable placed = placeTable(curveOf(bend), {2, 9000}, 16, Reading::cubic);
  EXPECT_LT(placed.error.percent, 0.5 * even.error.percent);
}

TEST(shortest_table, has_the_fewest_points_that_suffice) {
  for (const Reading reading : {Reading::linear, Reading::logarithmic, Reading::cubic}) {
    const PlacedTable table = shortestTable(curveOf(bend), {8, 900}, 0.02, reading);
    EXPECT_LE(table.error.percent, 0.02);
    const PlacedTable shorter = placeTable(curveOf(bend), {8, 900}, table.x.size() - 1, reading);
    EXPECT_GT(shorter.error.percent, 0.02) << readingName(reading);
  }
}

TEST(reading_error, finds_the_worst_place_of_any_table) {
  // 1 + (x - 1)^2 read as 1 + (x - 1) between 1 and 2: relative error largest where
  // (z - z^2) / (1 + z^2) is, z = sqrt 2 - 1.
  const std::vector<double> x{1, 2}, y{1, 2};
  const auto curve = curveOf([](double at) { return 1 + (at - 1) * (at - 1); });
  const ReadingError found = readingError(curve, x, y, Reading::linear);
  EXPECT_NEAR(found.at, std::sqrt(2.0), 1e-3);
  EXPECT_NEAR(found.percent, 100 * (std::sqrt(2.0) - 1) / 2, 1e-4);
}

TEST(placed_table, refuses_what_has_no_table) {
  const Curve flat = curveOf([](double) { return 1.0; });
  EXPECT_EQ(complaint([&] {
              (void)placeTable(flat, {1, 10}, 1, Reading::linear);
            }),
            "a table for linear reading cannot have 1 points; choose 2 to 5000");
  EXPECT_EQ(complaint([&] {
              (void)placeTable(flat, {1, 10}, 3, Reading::cubic);
            }),
            "a table for cubic reading cannot have 3 points; choose 4 to 5000");
  EXPECT_EQ(complaint([&] {
              (void)placeTable(flat, {10, 1}, 5, Reading::linear);
            }),
            "the range of a table starts above 0 and ends above its start; correct the range");
  EXPECT_EQ(complaint([&] {
              (void)shortestTable(flat, {1, 10}, 0, Reading::linear);
            }),
            "no table has a reading error of 0; choose an error above 0 %, such as 0.01 %");
  const Curve pole = curveOf([](double x) { return x > 5 ? std::nan("") : 1.0; });
  EXPECT_EQ(complaint([&] {
              (void)placeTable(pole, {1, 10}, 5, Reading::linear);
            }).substr(0, 34),
            "the curve has no value at x = 5.00");
  const Curve zero = curveOf([](double x) { return x - 5; });
  EXPECT_NE(complaint([&] {
              (void)placeTable(zero, {1, 10}, 5, Reading::linear);
            }).find("so that it has no relative error"),
            std::string::npos);
}

}  // namespace
}  // namespace pelmora::tables
