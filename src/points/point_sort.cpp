// The sort whose exact steps are part of the behaviour: they decide where ties land.
// SPDX-License-Identifier: MIT
#include "points/point_sort.h"

#include "base/run_time_error.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace pelmora {
namespace {

struct Range {
  std::int16_t low, high;
};

class PointSort {
 public:
  PointSort(PointArray& points, std::int16_t sortColumn, std::int16_t lastColumn, bool ascending,
            const SortWatch& watch)
      : points_(points),
        sortColumn_(sortColumn),
        lastColumn_(lastColumn),
        ascending_(ascending),
        watch_(watch) {}

  // Ranges are taken from a stack, the lower part first: the order of the recursion without its
  // depth.
  void sort(Range whole) {
    std::vector<Range> open{whole};
    while (!open.empty()) {
      const Range range = open.back();
      open.pop_back();
      try {
        const auto [i, j] = partition(range);
        if (i < range.high) open.push_back({i, range.high});
        if (range.low < j) open.push_back({range.low, j});
      } catch (...) {  // ends this range alone; the ranges around it go on
        if (!watch_.failed) throw;
        watch_.failed(currentError());
      }
    }
  }

 private:
  struct Meeting {
    std::int16_t i, j;
  };

  Meeting partition(Range range) {
    std::int16_t i = range.low;
    std::int16_t j = range.high;
    const auto middle = std::nearbyint((range.low + range.high) / 2.0);  // half to even
    const double pivot = value(static_cast<std::int16_t>(middle));
    while (i <= j) {
      if (watch_.breathe) watch_.breathe();
      while (before(value(i), pivot) && i < range.high) i = next(i);
      while (before(pivot, value(j)) && j > range.low) j = previous(j);
      if (i <= j) {
        exchange(i, j);
        i = next(i);
        j = previous(j);
      }
    }
    return {i, j};
  }

  [[nodiscard]] bool before(double a, double b) const { return ascending_ ? a < b : a > b; }

  // Checked at every access: a host's message handler may change the array while it is sorted.
  double& at(std::int16_t row, std::int16_t column) {
    if (row < 0 || column < 0 || static_cast<std::size_t>(row) >= points_.size() ||
        static_cast<std::size_t>(column) >= points_.columns()) {
      throw makeError(RunTimeError::outOfRange);
    }
    return points_(static_cast<std::size_t>(row), static_cast<std::size_t>(column));
  }
  double value(std::int16_t row) { return at(row, sortColumn_); }

  void exchange(std::int16_t i, std::int16_t j) {
    std::swap(at(i, sortColumn_), at(j, sortColumn_));
    // All columns before the sort column move, even where lastColumn stops short of them.
    for (std::int16_t c = 0; c < sortColumn_ || c <= lastColumn_; c = next(c)) {
      if (c != sortColumn_) std::swap(at(i, c), at(j, c));
    }
  }

  static std::int16_t next(std::int16_t index) {
    if (index == std::numeric_limits<std::int16_t>::max()) throw makeError(RunTimeError::overflow);
    return static_cast<std::int16_t>(index + 1);
  }
  static std::int16_t previous(std::int16_t index) {
    if (index == std::numeric_limits<std::int16_t>::min()) throw makeError(RunTimeError::overflow);
    return static_cast<std::int16_t>(index - 1);
  }

  PointArray& points_;
  std::int16_t sortColumn_, lastColumn_;
  bool ascending_;
  const SortWatch& watch_;
};

}  // namespace

void sortPoints(PointArray& points, std::int16_t sortColumn, std::int16_t lastColumn,
                std::int16_t low, std::int16_t high, bool ascending, const SortWatch& watch) {
  PointSort(points, sortColumn, lastColumn, ascending, watch).sort({low, high});
}

void sortAllPoints(PointArray& points, std::int16_t column, const SortWatch& watch) {
  sortPoints(points, column, 1, 0, pointUpperBound(points), true, watch);
}

}  // namespace pelmora
