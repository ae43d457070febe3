// The values of the public interface: points, curves, series, meters, database values.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>
#include <pelmora/export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace pelmora {

// n points x c columns of double, stored column-major: column 0 is Roshko, column 1 Strouhal.
//
// A default-constructed array has no bounds: no points and no columns. Functions that have no
// points to return give back such an array.
class PointArray {
 public:
  PointArray() = default;
  // Filled with zeros. Errors: Error 6 (overflow) for more values than memory can ever hold.
  explicit PointArray(std::size_t points, std::size_t columns = 2)
      : points_(points), columns_(columns), values_(valueCount(points, columns)) {}
  // PointArray{{x, y}, {x, y}}
  PointArray(std::initializer_list<std::array<double, 2>> points) : PointArray(points.size()) {
    std::size_t i = 0;
    for (const auto& point : points) {
      (*this)(i, 0) = point[0];
      (*this)(i, 1) = point[1];
      ++i;
    }
  }

  [[nodiscard]] std::size_t size() const noexcept { return points_; }
  [[nodiscard]] std::size_t columns() const noexcept { return columns_; }
  [[nodiscard]] bool empty() const noexcept { return points_ == 0; }

  // Unchecked: point < size(), column < columns().
  double& operator()(std::size_t point, std::size_t column) {
    return values_[column * points_ + point];
  }
  double operator()(std::size_t point, std::size_t column) const {
    return values_[column * points_ + point];
  }

  // One column; no values if the array has no bounds.
  // Errors: Error 9 if there is no column c.
  [[nodiscard]] std::span<double> column(std::size_t c) {
    return std::span<double>(values_).subspan(startOf(c), points_);
  }
  [[nodiscard]] std::span<const double> column(std::size_t c) const {
    return std::span<const double>(values_).subspan(startOf(c), points_);
  }

  bool operator==(const PointArray&) const = default;

 private:
  static std::size_t valueCount(std::size_t points, std::size_t columns) {
    if (columns != 0 && points > std::vector<double>().max_size() / columns) {
      throw Error(6, "Pelmora",
                  "Overflow: an array of " + std::to_string(points) + " points and " +
                      std::to_string(columns) + " columns is larger than any memory");
    }
    return points * columns;
  }
  [[nodiscard]] std::size_t startOf(std::size_t c) const {
    if (points_ == 0 && columns_ == 0) return 0;
    if (c < columns_) return c * points_;
    throw Error(9, "Pelmora",
                "Subscript out of range: column " + std::to_string(c) + " of an array of " +
                    std::to_string(columns_) + " columns");
  }

  std::size_t points_ = 0;
  std::size_t columns_ = 0;
  std::vector<double> values_;
};

// The compact form of a curve: at most 40 points in single precision; unused slots are 0.
struct FixedCurve40 {
  std::array<float, 40> first{}, second{};
  bool operator==(const FixedCurve40&) const = default;
};

// One raw part of a series.
struct RawSlot {
  PointArray Points;
  bool operator==(const RawSlot&) const = default;
};

// One named series of a meter calibration, with whatever was read or fitted for it.
struct SeriesInfo {
  std::string SeriesName;
  std::int32_t SeriesID = 0;
  std::array<RawSlot, 4> Raw;
  PointArray Merged, Fitted;
  FixedCurve40 RoshkoFirst, StrouhalFirst;
  std::string Summary;
  bool operator==(const SeriesInfo&) const = default;
};

// What a look-up found. Source: 1 table meter, 2 table masterMeterList, -1 nowhere, 0 not stated.
struct MeterInfo {
  std::int32_t Source = 0, MeterID = 0;
  std::int16_t ReCalID = 0;
  std::string SerialNumber, SerialNumberAdjusted;
  std::vector<SeriesInfo> Series;
  bool operator==(const MeterInfo&) const = default;
};

// A database location, split into parts. Folder ends with its last backslash, Drive with its colon;
// Extension starts with its dot.
struct DatabaseLocation {
  std::string FullPath, Folder, FileName, Drive, Extension;
  bool operator==(const DatabaseLocation&) const = default;
};

// One database value; monostate is null.
using Value = std::variant<std::monostate, std::int64_t, double, std::string>;

// A two-dimensional table of database values, addressed by (column, row).
class ValueTable {
 public:
  ValueTable() = default;
  ValueTable(std::size_t columns, std::size_t rows)
      : columns_(columns), rows_(rows), values_(columns * rows) {}

  [[nodiscard]] std::size_t columns() const noexcept { return columns_; }
  [[nodiscard]] std::size_t rows() const noexcept { return rows_; }
  [[nodiscard]] bool empty() const noexcept { return values_.empty(); }
  const Value& operator()(std::size_t column, std::size_t row) const {
    return values_[row * columns_ + column];
  }
  Value& operator()(std::size_t column, std::size_t row) {
    return values_[row * columns_ + column];
  }

 private:
  std::size_t columns_ = 0;
  std::size_t rows_ = 0;
  std::vector<Value> values_;
};

// The upper bound of the point index, size - 1; -1 if there are no points. Never fails.
[[nodiscard]] PELMORA_API std::int16_t pointUpperBound(const PointArray& points);

// Sorts rows low..high in place by one column; columns 0..lastColumn of a row move together.
//
// Recursive Hoare partition around the middle row, rounded half to even. It is not stable: the
// steps decide where ties land. Host messages are pumped once per pass (platform().pumpMessages).
// Errors: shown to the operator, never thrown; the rows are then partly sorted. Indices are 16-bit.
PELMORA_API void quickSortPoints(PointArray& points, std::int16_t sortColumn,
                                 std::int16_t lastColumn, std::int16_t low, std::int16_t high,
                                 bool ascending);

}  // namespace pelmora
