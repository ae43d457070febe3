// SPDX-License-Identifier: MIT
#include "calibration/roshko_size.h"

#include "base/readable_number.h"
#include "calibration/session.h"
#include "calibration/steps/derivation.h"
#include "calibration/steps/raw_points.h"
#include "calibration/steps/set_up.h"
#include "store/field_value.h"
#include "store/name_text.h"
#include "store/reading.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <set>
#include <utility>

namespace pelmora::calibration {
namespace {

constexpr double farApart = 1e4;
// Between neighbours of one run, whose flows are never so far apart.
constexpr double gapInRun = 1e3;

// Whether a wrong unit may be the reason; larger factors have other reasons.
bool isOfUnits(double factor, double least) {
  constexpr double most = 1e9;
  const double apart = std::max(factor, 1 / factor);
  return apart >= least && apart <= most;
}

std::string rawTable(int part) { return "Raw" + std::to_string(part); }

double middleOf(std::vector<double> values) {
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Of each series in the rows; of none whose Roshko numbers cannot all be read.
std::map<std::int32_t, std::vector<double>> positiveRoshkos(Recordset& rows) {
  std::map<std::int32_t, std::vector<double>> found;
  std::set<std::int32_t> unreadable;
  for (; !rows.atEnd(); rows.moveNext()) {
    const std::int32_t id = toInt32(rows.value(0));
    try {
      const double roshko = toDouble(rows.value(1));
      if (roshko > 0) found[id].push_back(roshko);
    } catch (const Error&) {
      unreadable.insert(id);
    }
  }
  for (const std::int32_t id : unreadable) found.erase(id);
  return found;
}

}  // namespace

double typicalRoshko(const PointArray& points) {
  std::vector<double> values;
  if (points.empty()) return 0;
  for (const double value : points.column(0)) {
    if (value > 0) values.push_back(value);
  }
  return middleOf(std::move(values));
}

double farFactor(double roshko, std::span<const double> others) {
  double nearest = 0;
  for (const double other : others) {
    if (other <= 0 || roshko <= 0) continue;
    const double factor = roshko / other;
    if (nearest == 0 || std::fabs(std::log(factor)) < std::fabs(std::log(nearest)))
      nearest = factor;
  }
  if (nearest == 0) return 1;
  return isOfUnits(nearest, farApart) ? nearest : 1;
}

std::vector<double> otherRoshkos(Session& session, const Meter& meter, const std::string& series,
                                 std::int32_t exceptSeries, int exceptPart) {
  std::vector<double> found;
  const std::string ofSeries =
      series.empty() ? "" : " and series.Name = " + NameText::quoted(series).literal();
  for (int part = 1; part <= steps::rawPartCount; ++part) {
    const std::string table = rawTable(part);
    auto rows =
        readRows(session.connection(),
                 "Select series.ID, " + table +
                     ".Roshko from (meter INNER JOIN series ON meter.ID = series.MeterID) "
                     "INNER JOIN " +
                     table + " ON series.ID = " + table + ".seriesID where meter.SerialNumber = " +
                     NameText::quoted(meter.serial).literal() + ofSeries);
    auto parts = positiveRoshkos(*rows);
    if (part == exceptPart) parts.erase(exceptSeries);
    for (auto& [id, values] : parts) found.push_back(middleOf(std::move(values)));
  }
  return found;
}

std::vector<FarPoint> farPoints(const PointArray& points) {
  std::vector<std::size_t> order(points.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::sort(order, {}, [&](std::size_t i) { return points(i, 0); });
  // Groups of points with gaps between them, as first and end in `order`.
  std::vector<std::pair<std::size_t, std::size_t>> groups;
  for (std::size_t k = 0; k < order.size(); ++k) {
    const double roshko = points(order[k], 0);
    if (!(roshko > 0)) continue;
    if (groups.empty() || roshko / points(order[k - 1], 0) >= gapInRun) groups.emplace_back(k, k);
    groups.back().second = k + 1;
  }
  const auto sizeOf = [](const auto& group) { return group.second - group.first; };
  const auto main = std::ranges::max_element(groups, {}, sizeOf);
  if (main == groups.end() || std::ranges::count(groups, sizeOf(*main), sizeOf) > 1) return {};
  const double median = points(order[main->first + sizeOf(*main) / 2], 0);
  std::vector<FarPoint> far;
  for (std::size_t k = groups.front().first; k < order.size(); ++k) {
    const double factor = points(order[k], 0) / median;
    const bool isOutside = k < main->first || k >= main->second;
    if (isOutside && isOfUnits(factor, gapInRun)) far.push_back({order[k], factor});
  }
  std::ranges::sort(far, {}, &FarPoint::index);
  return far;
}

namespace {

// The runs of one import.
class Doubts {
 public:
  Doubts(Session& session, const Imported& imported, const Stand& stand)
      : session_(session), imported_(imported), stand_(stand) {}

  // part: the raw part of the run.
  void look(const StandRun& run, int part, bool isOnlyJob) {
    const DerivedSeries& rotorA = imported_.series.front();
    const PointArray points = steps::readPoints(session_.connection(), rawTable(part), rotorA.id);
    const double factor =
        farFactor(typicalRoshko(points),
                  otherRoshkos(session_, imported_.meter, rotorA.name, rotorA.id, part));
    const std::string place = "job " + run.job + " (" + run.fluid + ")";
    if (factor != 1) {
      const std::size_t line = stand_.lineOf(run.job, 0);
      say(place + " has Roshko numbers " + significantText(factor, 2) +
          " times those of the meter's other runs" +
          (line == 0 ? "" : ", from line " + std::to_string(line)));
    }
    if (!isOnlyJob) return;  // otherwise a point's number in the part is not its number in the job
    for (const FarPoint& far : farPoints(points)) {
      const std::size_t line = stand_.lineOf(run.job, far.index);
      say(place + ", point " + std::to_string(far.index + 1) +
          (line == 0 ? "" : " (line " + std::to_string(line) + ")") + " has a Roshko number " +
          significantText(far.factor, 2) + " times the median of the run's other points");
    }
  }
  [[nodiscard]] std::vector<std::string> sentences() && { return std::move(sentences_); }

 private:
  void say(const std::string& what) {
    sentences_.push_back(what + "; check the unit of V5 (viscosity): it must be cSt");
  }

  Session& session_;
  const Imported& imported_;
  const Stand& stand_;
  std::vector<std::string> sentences_;
};

}  // namespace

std::vector<std::string> doubtsAbout(Session& session, const Imported& imported, const Stand& stand,
                                     const std::vector<StandRun>& runs) {
  if (imported.series.empty()) return {};
  Doubts doubts(session, imported, stand);
  const auto setUps = steps::setUpsOf(session.connection(), imported.meter.id);
  for (std::size_t k = 0; k < setUps.size() && k < steps::rawPartCount; ++k) {
    std::vector<std::string> jobs;
    if (!steps::jobsOf(session.connection(), setUps[k], jobs)) continue;
    for (const StandRun& run : runs) {
      if (std::ranges::find(jobs, run.job) != jobs.end())
        doubts.look(run, static_cast<int>(k) + 1, jobs.size() == 1);
    }
  }
  return std::move(doubts).sentences();
}

}  // namespace pelmora::calibration
