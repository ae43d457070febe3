// SPDX-License-Identifier: MIT
#include "calibration/steps/whole_part.h"

#include "base/number_text.h"
#include "points/point_fingerprint.h"
#include "store/field_value.h"
#include "store/reading.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

namespace pelmora::calibration::steps {
namespace {

std::string rawTable(int part) { return "raw" + std::to_string(part); }

bool isNumber(const Value& value) {
  return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value);
}

// To the last bit: -0 is not 0. Engines may deliver a whole number either way.
bool isSame(const Value& a, const Value& b) {
  if (!isNumber(a) || !isNumber(b)) return a == b;
  return std::bit_cast<std::uint64_t>(numberOrNan(a)) ==
         std::bit_cast<std::uint64_t>(numberOrNan(b));
}

std::vector<WholePoint> readRawRows(Connection& curves, int part, std::int32_t SeriesID) {
  std::vector<WholePoint> points;
  const auto rows = readRows(curves, "Select roshko, strouhal from " + rawTable(part) +
                                         " where seriesID = " + numberText(SeriesID));
  points.reserve(static_cast<std::size_t>(rows->recordCount()));
  for (; !rows->atEnd(); rows->moveNext())
    points.push_back({rows->value("roshko"), rows->value("strouhal"), std::nullopt});
  return points;
}

std::string fingerprintOfRest(const std::vector<WholePoint>& points) {
  const auto count = static_cast<std::size_t>(
      std::ranges::count_if(points, [](const WholePoint& point) { return !point.Exclusion; }));
  PointArray rest(count);
  std::size_t i = 0;
  for (const WholePoint& point : points) {
    if (point.Exclusion) continue;
    rest(i, 0) = numberOrNan(point.Roshko);
    rest(i, 1) = numberOrNan(point.Strouhal);
    ++i;
  }
  return fingerprintOf({&rest, 1});
}

}  // namespace

bool belongTo(const std::vector<ExcludedRow>& excluded, const PointArray& rest) {
  return excluded.empty() || areInForce(excluded, rest.size(), fingerprintOf({&rest, 1}));
}

WholePart readRawPart(Connection& curves, int part, std::int32_t SeriesID) {
  return {part, readRawRows(curves, part, SeriesID), {}};
}

WholePart readWholePart(Connection& curves, int part, std::int32_t SeriesID) {
  WholePart whole = readRawPart(curves, part, SeriesID);
  auto excluded = readExcludedPoints(curves, part, SeriesID);
  if (excluded.empty()) return whole;
  if (!areInForce(excluded, whole.Points.size(), fingerprintOfRest(whole.Points))) {
    whole.Adrift = std::move(excluded);
    return whole;
  }
  std::vector<WholePoint> rest = std::exchange(whole.Points, {});
  whole.Points.reserve(rest.size() + excluded.size());
  auto next = std::make_move_iterator(rest.begin());
  const auto end = std::make_move_iterator(rest.end());
  for (ExcludedRow& row : excluded) {  // by rising number
    const std::ptrdiff_t between = row.Number - 1 - std::ssize(whole.Points);
    const auto before = next + std::clamp<std::ptrdiff_t>(between, 0, end - next);
    whole.Points.insert(whole.Points.end(), next, before);
    next = before;
    WholePoint point{row.Roshko, row.Strouhal, std::nullopt};
    point.Exclusion = std::move(row);
    whole.Points.push_back(std::move(point));
  }
  whole.Points.insert(whole.Points.end(), next, end);
  return whole;
}

void writeWholePart(Connection& curves, std::int32_t SeriesID, const WholePart& part) {
  const std::string where = " where seriesID = " + numberText(SeriesID);
  curves.execute("DELETE from " + rawTable(part.Part) + where);
  const auto raw = openForBatch(curves, "Select * from " + rawTable(part.Part) + where);
  const std::string rest = fingerprintOfRest(part.Points);
  constexpr std::array<std::string_view, 3> fields{"seriesID", "Roshko", "Strouhal"};
  std::vector<ExcludedRow> excluded;
  for (std::size_t i = 0; i < part.Points.size(); ++i) {
    const WholePoint& point = part.Points[i];
    if (point.Exclusion) {
      ExcludedRow row = *point.Exclusion;
      row.Number = static_cast<std::int32_t>(i + 1);
      row.Roshko = point.Roshko;
      row.Strouhal = point.Strouhal;
      row.Rest = rest;
      excluded.push_back(std::move(row));
    } else {
      const std::array<Value, 3> values{std::int64_t{SeriesID}, point.Roshko, point.Strouhal};
      raw->addRow(fields, values);
    }
  }
  raw->updateBatch();
  replaceExcludedPoints(curves, part.Part, SeriesID, excluded);
}

bool holds(const WholePart& part, const ExcludedRow& exclusion) {
  const auto number = static_cast<std::size_t>(exclusion.Number);
  if (exclusion.Number < 1 || number > part.Points.size()) return false;
  const WholePoint& point = part.Points[number - 1];
  return isSame(point.Roshko, exclusion.Roshko) && isSame(point.Strouhal, exclusion.Strouhal);
}

}  // namespace pelmora::calibration::steps
