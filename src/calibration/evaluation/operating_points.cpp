// SPDX-License-Identifier: MIT
#include "calibration/evaluation/operating_points.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

namespace pelmora::calibration {
namespace {

using uncertainty::OperatingPoint;
using units::Measure;

// The point of a part, sorted by Roshko, that is nearest to a place in ln Roshko.
const PointReading& nearestTo(double roshko, const std::vector<PointReading>& part) {
  const auto behind = std::ranges::lower_bound(part, roshko, {}, &PointReading::roshko);
  if (behind == part.begin()) return part.front();
  if (behind == part.end()) return part.back();
  const auto before = behind - 1;
  return roshko / before->roshko < behind->roshko / roshko ? *before : *behind;
}

double distance(double roshko, const PointReading& point) {
  return std::abs(std::log(point.roshko / roshko));
}

void takeLower(std::optional<Measure>& to, const std::optional<Measure>& other) {
  if (other && (!to || other->value < to->value)) to = other;
}

std::optional<Measure> measured(const std::optional<double>& value, const units::Unit* unit,
                                double share) {
  if (!value || unit == nullptr || !(*value > 0)) return std::nullopt;
  return Measure{*value * share, unit};
}

const units::Unit* unitOrNone(const std::string& symbol) {
  return symbol.empty() ? nullptr : &units::unitOf(symbol);
}

}  // namespace

std::string flowUnitOf(const std::string& strouhalUnit) {
  const auto slash = strouhalUnit.find('/');
  return slash == std::string::npos ? "" : strouhalUnit.substr(slash + 1) + "/s";
}

// Stand data has times in seconds and viscosities in cSt (docs/file_formats.md); only the unit of
// its volumes is open.
OperatingPoints::OperatingPoints(const CurveOrigin& origin)
    : frequency_(&units::unitOf(origin.frequencyUnit.empty() ? "Hz" : origin.frequencyUnit)),
      viscosity_(&units::unitOf(origin.viscosityUnit.empty() ? "cSt" : origin.viscosityUnit)),
      flow_(
          unitOrNone(origin.flowUnit.empty() ? flowUnitOf(origin.strouhalUnit) : origin.flowUnit)) {
  std::map<int, std::vector<PointReading>> parts;
  for (const PointReading& point : origin.readings) {
    if (point.roshko > 0 && std::isfinite(point.roshko)) parts[point.part].push_back(point);
  }
  for (auto& [number, part] : parts) {
    std::ranges::sort(part, {}, &PointReading::roshko);
    parts_.push_back(std::move(part));
  }
}

// share: of the point's Roshko number; in one fluid, frequency and flow are proportional to it.
OperatingPoint OperatingPoints::operatingPoint(const StandReading& reading, double share) const {
  return {measured(reading.flow, flow_, share), measured(reading.viscosity, viscosity_, 1),
          measured(reading.frequency, frequency_, share)};
}

OperatingPoint OperatingPoints::at(double roshko) const {
  const auto covers = [&](const std::vector<PointReading>& part) {
    return roshko >= part.front().roshko && roshko <= part.back().roshko;
  };
  const bool isCovered = std::ranges::any_of(parts_, covers);
  double shortest = std::numeric_limits<double>::infinity();
  for (const auto& part : parts_)
    shortest = std::min(shortest, distance(roshko, nearestTo(roshko, part)));
  OperatingPoint found;
  for (const auto& part : parts_) {
    const PointReading& point = nearestTo(roshko, part);
    if (isCovered ? !covers(part) : distance(roshko, point) > shortest) continue;
    const OperatingPoint here = operatingPoint(point.reading, roshko / point.roshko);
    takeLower(found.flow, here.flow);
    takeLower(found.viscosity, here.viscosity);
    takeLower(found.frequency, here.frequency);
  }
  return found;
}

OperatingPoint OperatingPoints::of(double roshko, double strouhal) const {
  for (const auto& part : parts_) {
    auto point = std::ranges::lower_bound(part, roshko, {}, &PointReading::roshko);
    for (; point != part.end() && point->roshko == roshko; ++point) {
      if (point->strouhal == strouhal) return operatingPoint(point->reading, 1);
    }
  }
  return at(roshko);
}

}  // namespace pelmora::calibration
