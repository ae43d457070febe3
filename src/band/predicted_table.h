// A predicted curve as a table that is read linearly.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pelmora::band {

struct TablePoint {
  double x = 0, y = 0;
};

// The values that the table allows at one x: equal but at a jump.
struct TableReading {
  double lowest = 0, highest = 0;
};

class PredictedTable {
 public:
  // Keeps the points in order of x; points of equal x keep their order.
  PredictedTable(std::span<const double> x, std::span<const double> y);

  // Why the table cannot be read, in words; empty if it can.
  [[nodiscard]] const std::string& defect() const { return defect_; }
  [[nodiscard]] const std::vector<TablePoint>& points() const { return points_; }
  // Empty outside the table's range of x; an x beyond an end by no more than rounding is at that
  // end.
  [[nodiscard]] std::optional<TableReading> at(double x) const;

  // Reads one x after the other; fast where the next one lies near the one before.
  class Reader {
   public:
    // The table must outlive it.
    explicit Reader(const PredictedTable& table) : points_(table.points_) {}
    [[nodiscard]] std::optional<TableReading> at(double x);

   private:
    void moveTo(double x);

    const std::vector<TablePoint>& points_;
    std::size_t first_ = 0;  // point that is not below the last x
  };

 private:
  std::vector<TablePoint> points_;
  std::string defect_;
};

// Straight line from a to b at x, a.x <= x <= b.x, a.x < b.x; exactly a.y and b.y at the ends.
[[nodiscard]] double between(const TablePoint& a, const TablePoint& b, double x);

}  // namespace pelmora::band
