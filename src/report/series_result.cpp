// SPDX-License-Identifier: MIT
#include "report/series_result.h"

#include "report/report_model.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace pelmora::report {
namespace {

using calibration::PointState;

// Nominal flows are typed or computed: those that differ by no more than this share are the same.
constexpr double sameFlow = 1e-6;

class Range {
 public:
  void add(double value) {
    if (!std::isfinite(value)) return;
    low_ = low_ ? std::min(*low_, value) : value;
    high_ = high_ ? std::max(*high_, value) : value;
  }
  [[nodiscard]] const std::optional<double>& low() const { return low_; }
  [[nodiscard]] const std::optional<double>& high() const { return high_; }

 private:
  std::optional<double> low_, high_;
};

class Mean {
 public:
  void add(double value) {
    sum_ += value;
    ++count_;
  }
  [[nodiscard]] std::optional<double> value() const {
    if (count_ == 0) return std::nullopt;
    return sum_ / static_cast<double>(count_);
  }

 private:
  double sum_ = 0;
  std::size_t count_ = 0;
};

enum class Direction { unknown, rising, falling };

struct Group {
  double nominal = 0;
  Range deviations;
  Mean factor, rising, falling;
  std::size_t points = 0, withDeviation = 0;
};

bool isSame(double a, double b) { return std::fabs(a - b) <= sameFlow * std::fabs(b); }

// The direction of the flow at each point, in the order of measurement. The first flow has that of
// the step to the next one; a flow that is measured again at a turn belongs to the way back.
std::vector<Direction> directions(const std::vector<MeasuredPoint>& points) {
  std::vector<Direction> list(points.size(), Direction::unknown);
  std::optional<double> last;
  Direction now = Direction::unknown;
  std::vector<std::size_t> waiting;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const auto& reading = points[i].reading;
    if (!reading || !reading->nominalFlow) continue;
    const double flow = *reading->nominalFlow;
    if (last && !isSame(flow, *last)) {
      now = flow > *last ? Direction::rising : Direction::falling;
      for (const std::size_t before : waiting) list[before] = now;
      waiting.clear();
      list[i] = now;
    } else {
      // The first flow, or a repeated one: the next step decides. The first point at a turn is not
      // among these; it has its direction already.
      waiting.push_back(i);
    }
    last = flow;
  }
  for (const std::size_t left : waiting) list[left] = now;
  return list;
}

std::vector<FlowResult> flowsOf(const RawPart& part) {
  std::vector<Group> groups;
  const auto ways = directions(part.points);
  for (std::size_t i = 0; i < part.points.size(); ++i) {
    const MeasuredPoint& point = part.points[i];
    if (point.state != PointState::used || !point.reading || !point.reading->nominalFlow) continue;
    const double nominal = *point.reading->nominalFlow;
    auto group = std::ranges::find_if(
        groups, [&](const Group& each) { return isSame(nominal, each.nominal); });
    if (group == groups.end()) {
      groups.push_back({});
      group = groups.end() - 1;
      group->nominal = nominal;
    }
    ++group->points;
    group->factor.add(point.strouhal);
    if (!point.deviationPercent) continue;
    ++group->withDeviation;
    group->deviations.add(*point.deviationPercent);
    if (ways[i] == Direction::rising) group->rising.add(*point.deviationPercent);
    if (ways[i] == Direction::falling) group->falling.add(*point.deviationPercent);
  }
  std::ranges::sort(groups, {}, &Group::nominal);
  std::vector<FlowResult> flows;
  for (const Group& group : groups) {
    FlowResult flow{part.number, part.fluid, group.nominal, group.points, *group.factor.value()};
    if (group.withDeviation > 1)
      flow.repeatabilityPercent = *group.deviations.high() - *group.deviations.low();
    if (group.rising.value() && group.falling.value())
      flow.hysteresisPercent = *group.falling.value() - *group.rising.value();
    flows.push_back(flow);
  }
  return flows;
}

void takeWorst(SeriesResult& result, const MeasuredPoint& point) {
  const auto& off = point.deviationPercent;
  if (!off || (result.worstPercent && std::fabs(*off) <= std::fabs(*result.worstPercent))) return;
  result.worstPercent = off;
  result.worstRoshko = point.roshko;
  result.worstIsDistrusted = point.isSetAside();
}

void takeLargest(std::optional<double>& largest, const std::optional<double>& value) {
  if (value && (!largest || std::fabs(*value) > std::fabs(*largest))) largest = value;
}

}  // namespace

SeriesResult resultOf(const std::vector<RawPart>& parts, std::optional<double> limitPercent) {
  SeriesResult result;
  result.limitPercent = limitPercent;
  Range roshko, flow, factor;
  for (const RawPart& part : parts) {
    for (const MeasuredPoint& point : part.points) {
      switch (point.state) {
        case PointState::cut: ++result.cut; continue;
        case PointState::excluded: ++result.excluded; continue;
        case PointState::outsideRange: ++result.outside; continue;
        case PointState::distrusted:
          ++result.distrusted;
          takeWorst(result, point);
          continue;
        case PointState::used: break;
      }
      ++result.used;
      roshko.add(point.roshko);
      factor.add(point.strouhal);
      if (point.reading && point.reading->flow) flow.add(*point.reading->flow);
      takeWorst(result, point);
    }
    for (FlowResult& each : flowsOf(part)) {
      takeLargest(result.repeatabilityPercent, each.repeatabilityPercent);
      takeLargest(result.hysteresisPercent, each.hysteresisPercent);
      result.flows.push_back(std::move(each));
    }
  }
  result.lowestRoshko = roshko.low();
  result.highestRoshko = roshko.high();
  result.lowestFlow = flow.low();
  result.highestFlow = flow.high();
  const Range& turned = flow.low() ? flow : roshko;
  if (turned.low() && *turned.low() > 0) result.turndown = *turned.high() / *turned.low();
  if (factor.low() && *factor.low() + *factor.high() != 0) {
    result.meanFactor = (*factor.low() + *factor.high()) / 2;
    result.linearityPercent =
        (*factor.high() - *factor.low()) / std::fabs(*factor.high() + *factor.low()) * 100;
  }
  if (limitPercent && result.worstPercent)
    result.passes = std::fabs(*result.worstPercent) <= *limitPercent;
  return result;
}

}  // namespace pelmora::report
