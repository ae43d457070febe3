// Checks of points and of curves against their points.
// SPDX-License-Identifier: MIT
#include "doctor/checks.h"
#include "doctor/places.h"
#include "doctor/series_blocks.h"
#include "history/row_access.h"
#include "store/curve_schema.h"

#include <bit>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace pelmora::doctor {
namespace {

using history::idsOf;
using history::read;
using history::wholeOf;

constexpr const char* largestNumber = "1.7976931348623157E308";

// Null, infinite, or a text: texts stand above all numbers.
std::string unusable(const std::string& column) {
  return "[" + column + "] IS NULL OR [" + column + "]>" + largestNumber + " OR [" + column +
         "]<-" + largestNumber;
}

// A point as a key; points that a merge has taken over are equal to the last bit.
using PointKey = std::uint64_t;

// Columns: series, x, y.
std::optional<PointKey> keyOf(const Recordset& rows, std::int64_t series) {
  const auto* x = std::get_if<double>(&rows.value(1));
  const auto* y = std::get_if<double>(&rows.value(2));
  if (x == nullptr || y == nullptr) return std::nullopt;
  constexpr PointKey odd = 0x9E3779B97F4A7C15U;  // spreads the bits
  PointKey key = static_cast<PointKey>(series) * odd;
  for (const double number : {*x, *y})
    key = (std::rotl(key, 23) ^ std::bit_cast<PointKey>(number)) * odd;
  return key;
}

using PointKeys = std::unordered_set<PointKey>;

// What the raw parts of some series hold against what their merged points hold.
class CurveAges {
 public:
  CurveAges(const ConnectionPtr& curves, std::string series)
      : curves_(curves), series_(std::move(series)) {
    for (const std::int64_t id :
         idsOf(curves, "Select DISTINCT seriesID from curve where " + series_))
      withCurve_.insert(id);
    if (withCurve_.empty()) return;
    std::vector<std::pair<std::int64_t, PointKey>> merged;
    forEachPoint("merge", [&](std::int64_t id, PointKey key) { merged.emplace_back(id, key); });
    for (const auto& [id, key] : merged) merged_.insert(key);
    for (const char* table : rawTables) addRawPart(table);
    for (const auto& [id, key] : merged) {
      if (!raw_.contains(key)) outdated_.insert(id);
    }
  }
  [[nodiscard]] const std::set<std::int64_t>& outdated() const { return outdated_; }

 private:
  template <class Use>
  void forEachPoint(const std::string& table, Use&& use) const {
    for (const auto rows = read(curves_, "Select seriesID, Roshko, Strouhal from [" + table +
                                             "] where " + series_ + " ORDER BY seriesID");
         !rows->atEnd(); rows->moveNext()) {
      const std::int64_t id = wholeOf(rows->value(0));
      if (!withCurve_.contains(id)) continue;
      if (const auto key = keyOf(*rows, id)) use(id, *key);
    }
  }

  // A part of two points or more gives the merge at least one, unless it came later.
  void addRawPart(const std::string& table) {
    struct Part {
      std::size_t points = 0, merged = 0;
    };
    std::unordered_map<std::int64_t, Part> parts;
    forEachPoint(table, [&](std::int64_t id, PointKey key) {
      raw_.insert(key);
      ++parts[id].points;
      if (merged_.contains(key)) ++parts[id].merged;
    });
    for (const auto& [id, part] : parts) {
      if (part.points > 1 && part.merged == 0) outdated_.insert(id);
    }
  }

  ConnectionPtr curves_;
  std::string series_;  // a condition
  std::unordered_set<std::int64_t> withCurve_;
  std::set<std::int64_t> outdated_;
  PointKeys merged_, raw_;
};

}  // namespace

void checkNumbers(const ConnectionPtr& curves, Findings& findings) {
  std::size_t count = 0;
  std::string example;
  for (const char* table : pointTables) {
    const auto rows =
        read(curves, "Select COUNT(*) AS n, MIN(seriesID) AS first from [" + std::string(table) +
                         "] where " + unusable("Roshko") + " OR " + unusable("Strouhal"));
    const std::int64_t found = wholeOf(rows->value(0));
    if (found > 0 && example.empty()) {
      example = "table " + std::string(table) + ", " + seriesPlace(curves, wholeOf(rows->value(1)));
    }
    count += static_cast<std::size_t>(found);
  }
  if (count == 0) return;
  findings.push_back({"unusable-numbers", Severity::error, count,
                      "Points that are empty or not finite numbers", example, false,
                      "store the raw points again or import the run again, then fit"});
}

void checkCurveAges(const ConnectionPtr& curves, Findings& findings) {
  std::size_t count = 0;
  std::int64_t first = 0;
  for (SeriesBlocks block(curves); block.next();) {
    const CurveAges ages(curves, block.condition());
    if (count == 0 && !ages.outdated().empty()) first = *ages.outdated().begin();
    count += ages.outdated().size();
  }
  if (count == 0) return;
  findings.push_back({"outdated-curves", Severity::warning, count,
                      "Curves whose raw points have changed since they were fitted",
                      seriesPlace(curves, first), false, "fit them again with 'pelmora fit'"});
}

}  // namespace pelmora::doctor
