// SPDX-License-Identifier: MIT
#include "tests/support/journal.h"
#include "tests/support/recording_platform.h"

#include <pelmora/types.h>

#include <gtest/gtest.h>
#include <pthread.h>

#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>

namespace pelmora {
namespace {

using Row = std::vector<double>;

// The steps of the sort as a recursion over rows, and how often it pumps.
class SortModel {
 public:
  SortModel(std::vector<Row> unsorted, std::size_t column, std::size_t lastColumn, bool ascending)
      : rows(std::move(unsorted)),
        column_(column),
        lastColumn_(lastColumn),
        ascending_(ascending) {}

  void sort(int low, int high) {
    int i = low;
    int j = high;
    const double pivot = key(halfToEven(low + high));
    while (i <= j) {
      ++pumps;
      while (isBefore(key(i), pivot) && i < high) ++i;
      while (isBefore(pivot, key(j)) && j > low) --j;
      if (i <= j) {
        for (std::size_t c = 0; c <= lastColumn_; ++c) std::swap(at(i)[c], at(j)[c]);
        ++i;
        --j;
      }
    }
    if (low < j) sort(low, j);
    if (i < high) sort(i, high);
  }

  std::vector<Row> rows;
  int pumps = 0;

 private:
  // Half of a sum of indices; a half left over goes to the even neighbour.
  static int halfToEven(int sum) {
    const int down = sum / 2;
    return sum % 2 == 0 || down % 2 == 0 ? down : down + 1;
  }
  bool isBefore(double a, double b) const { return ascending_ ? a < b : b < a; }
  Row& at(int row) { return rows.at(static_cast<std::size_t>(row)); }
  double key(int row) { return at(row)[column_]; }

  std::size_t column_, lastColumn_;
  bool ascending_;
};

std::vector<Row> rowsOf(const PointArray& points) {
  std::vector<Row> rows(points.size(), Row(points.columns()));
  for (std::size_t i = 0; i < points.size(); ++i) {
    for (std::size_t c = 0; c < points.columns(); ++c) rows[i][c] = points(i, c);
  }
  return rows;
}

class quick_sort : public testing::Test {
 protected:
  test::Journal journal_;
  test::RecordingPlatform platform_{journal_};
};

std::int16_t s16(std::size_t value) { return static_cast<std::int16_t>(value); }

TEST_F(quick_sort, follows_its_steps_on_random_arrays_with_ties) {
  std::mt19937 random(20260714);
  const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  for (int round = 0; round < 6000; ++round) {
    const std::size_t n = 1 + below(40);
    const std::size_t columns = 2 + below(3);
    const std::size_t lastColumn = 1 + below(columns - 1);
    const std::size_t column = below(lastColumn + 1);
    const bool ascending = below(2) == 0;
    const std::size_t distinct = 1 + below(12);  // few values, many ties
    PointArray points(n, columns);
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t c = 0; c < columns; ++c) points(i, c) = static_cast<double>(100 * i + c);
      points(i, column) = static_cast<double>(below(distinct)) - 3;
      if (round % 5 == 0 && below(6) == 0) points(i, column) = std::nan("");
    }
    const std::size_t low = round % 3 == 0 ? below(n) : 0;
    const std::size_t high = round % 3 == 0 ? low + below(n - low) : n - 1;

    SortModel model(rowsOf(points), column, lastColumn, ascending);
    model.sort(static_cast<int>(low), static_cast<int>(high));
    platform_.pumps = 0;
    quickSortPoints(points, s16(column), s16(lastColumn), s16(low), s16(high), ascending);

    const auto rows = rowsOf(points);
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t c = 0; c < columns; ++c) {
        const bool bothNaN = std::isnan(rows[i][c]) && std::isnan(model.rows[i][c]);
        ASSERT_TRUE(bothNaN || rows[i][c] == model.rows[i][c]) << "round " << round << " row " << i;
      }
    }
    ASSERT_EQ(platform_.pumps, model.pumps) << "round " << round;
  }
  EXPECT_EQ(journal_, test::Journal());
}

TEST_F(quick_sort, two_rows_with_equal_keys_change_places) {
  PointArray points{{5, 1}, {5, 2}};
  quickSortPoints(points, 0, 1, 0, 1, true);
  EXPECT_EQ(points, (PointArray{{5, 2}, {5, 1}}));
  EXPECT_EQ(platform_.pumps, 1);
}

TEST_F(quick_sort, one_row_stays) {
  PointArray points{{5, 1}, {4, 2}};
  quickSortPoints(points, 0, 1, 0, 0, true);
  EXPECT_EQ(points, (PointArray{{5, 1}, {4, 2}}));
}

TEST_F(quick_sort, values_of_a_row_stay_together) {
  PointArray points{{1, 30}, {2, 10}, {3, 20}};
  quickSortPoints(points, 1, 1, 0, 2, true);
  EXPECT_EQ(points, (PointArray{{2, 10}, {3, 20}, {1, 30}}));
}

TEST_F(quick_sort, falls_when_not_ascending) {
  PointArray points{{1, 30}, {2, 10}, {3, 20}};
  quickSortPoints(points, 1, 1, 0, 2, false);
  EXPECT_EQ(points, (PointArray{{1, 30}, {3, 20}, {2, 10}}));
}

TEST_F(quick_sort, columns_past_the_last_one_stay_where_they_are) {
  PointArray points(2, 3);
  points(0, 0) = 2;
  points(0, 1) = 20;
  points(0, 2) = 200;
  points(1, 0) = 1;
  points(1, 1) = 10;
  points(1, 2) = 100;
  quickSortPoints(points, 0, 1, 0, 1, true);
  EXPECT_EQ(rowsOf(points), (std::vector<Row>{{1, 10, 200}, {2, 20, 100}}));
}

TEST_F(quick_sort, every_column_before_the_sort_column_moves) {
  PointArray points(2, 4);
  for (std::size_t c = 0; c < 4; ++c) {
    points(0, c) = 20 + static_cast<double>(c);
    points(1, c) = 10 + static_cast<double>(c);
  }
  quickSortPoints(points, 3, 1, 0, 1, true);
  EXPECT_EQ(rowsOf(points), (std::vector<Row>{{10, 11, 12, 13}, {20, 21, 22, 23}}));
}

TEST_F(quick_sort, infinities_are_ordered) {
  const double inf = std::numeric_limits<double>::infinity();
  PointArray points{{inf, 1}, {0, 2}, {-inf, 3}};
  quickSortPoints(points, 0, 1, 0, 2, true);
  EXPECT_EQ(points, (PointArray{{-inf, 3}, {0, 2}, {inf, 1}}));
}

// Rows whose pivot is always the largest: each range is one row shorter than the one before.
PointArray worstCase(std::size_t n) {
  std::vector<std::size_t> place(n);
  for (std::size_t i = 0; i < n; ++i) place[i] = i;
  PointArray points(n);
  for (std::size_t high = n; high-- > 0;) {
    const auto pivot = static_cast<std::size_t>(std::nearbyint(static_cast<double>(high) / 2));
    points(place[pivot], 0) = static_cast<double>(high);
    std::swap(place[pivot], place[high]);
  }
  return points;
}

TEST_F(quick_sort, one_range_per_row_fits_a_small_stack) {
  constexpr std::int16_t n = 4000;
  constexpr std::size_t smallStack = 128 * 1024;  // 32 bytes for each range
  PointArray points = worstCase(n);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, smallStack), 0);
  const auto sort = [](void* array) -> void* {
    quickSortPoints(*static_cast<PointArray*>(array), 0, 1, 0, n - 1, true);
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, sort, &points), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  for (std::size_t i = 0; i < n; ++i) ASSERT_EQ(points(i, 0), static_cast<double>(i));
}

TEST_F(quick_sort, as_many_rows_as_16_bits_count_are_sorted) {
  constexpr std::int16_t n = 32767;
  PointArray points(n);
  for (std::size_t i = 0; i < n; ++i) points(i, 0) = static_cast<double>(i * 7919 % n);
  quickSortPoints(points, 0, 1, 0, n - 1, true);
  for (std::size_t i = 0; i < n; ++i) ASSERT_EQ(points(i, 0), static_cast<double>(i));
}

}  // namespace
}  // namespace pelmora
