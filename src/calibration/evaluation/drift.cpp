// Shifts between calibrations, and what follows from them.
// SPDX-License-Identifier: MIT
#include "base/readable_number.h"
#include "calibration/evaluation/fitted_curve_body.h"
#include "drift/interval_advice.h"

#include <pelmora/calibration/drift.h>
#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace pelmora::calibration {
namespace {

constexpr int usualPlaces = 5, lastMonth = 12;

std::optional<CurveShift> shiftBetween(const uncertainty::Budget& earlier,
                                       const uncertainty::Budget& now, double roshko) {
  const bool isKnown = earlier.value != 0 &&
                       (drift::independentPart(earlier) > 0 || drift::independentPart(now) > 0);
  if (!isKnown || earlier.probability != now.probability) return std::nullopt;
  const drift::Shift shift = drift::shiftBetween(earlier, now);
  return CurveShift{roshko, shift.percent, shift.uncertaintyPercent, shift.coverageFactor,
                    shift.en};
}

RoshkoRange commonRange(const std::vector<DatedCurve>& calibrations) {
  RoshkoRange range{calibrations.front().curve.lowestRoshko(),
                    calibrations.front().curve.highestRoshko()};
  for (const DatedCurve& each : calibrations) {
    range.min = std::max(range.min, each.curve.lowestRoshko());
    range.max = std::min(range.max, each.curve.highestRoshko());
  }
  if (!(range.min < range.max)) {
    throw BadData({"the curves of the calibrations have no range in common", "",
                   "leave out the calibration that covers another range"});
  }
  return range;
}

std::vector<double> placesOf(const std::vector<DatedCurve>& calibrations,
                             const DriftOptions& options) {
  const RoshkoRange range = commonRange(calibrations);
  for (const double x : options.roshko) {
    if (x >= range.min && x <= range.max) continue;
    throw BadData({"Roshko " + significantText(x, 6) + " is not on every curve", "",
                   "choose numbers from " + significantText(range.min, 6) + " to " +
                       significantText(range.max, 6)});
  }
  if (!options.roshko.empty()) return options.roshko;
  std::vector<double> places{range.min};
  for (int i = 1; i < usualPlaces - 1; ++i) {
    // With three digits, as a person would write them.
    const double x = range.min * std::pow(range.max / range.min, i / (usualPlaces - 1.0));
    const double unit = std::pow(10, std::floor(std::log10(x)) - 2);
    places.push_back(std::round(x / unit) * unit);
  }
  places.push_back(range.max);
  return places;
}

void addChart(DriftPlace& place, const std::vector<std::optional<uncertainty::Budget>>& budgets) {
  std::vector<double> percents;
  double independent = 0;
  const double first = std::abs(place.values.front().strouhal);
  for (std::size_t i = 0; i < place.values.size(); ++i) {
    percents.push_back(place.values[i].percent);
    if (budgets[i])
      independent = std::max(independent, 100 * drift::independentPart(*budgets[i]) / first);
  }
  const drift::ControlLimits limits = drift::controlLimits(percents, independent);
  place.chart =
      ControlChart{limits.centre, limits.low, limits.high, limits.sigma, limits.isFromUncertainty};
  if (!(limits.sigma > 0)) {
    place.chart.reset();
    return;
  }
  for (DriftValue& value : place.values)
    value.isBeyondLimits = value.percent < limits.low || value.percent > limits.high;
}

void addInterval(DriftPlace& place, const std::vector<DatedCurve>& calibrations,
                 const std::vector<std::optional<uncertainty::Budget>>& budgets,
                 double limitPercent) {
  std::vector<drift::Calibrated> history;
  for (std::size_t i = 0; i < budgets.size(); ++i)
    history.push_back({*calibrations[i].years, *budgets[i]});
  const drift::IntervalAdvice advice = drift::adviseInterval(history, limitPercent);
  place.interval =
      IntervalAdvice{advice.years,           advice.isCapped,          advice.ratePercentPerYear,
                     advice.rateUncertainty, advice.dispersionPercent, advice.coverageFactor,
                     advice.longestSoFar};
}

// Why no interval can be recommended; empty if one can.
std::string obstacleToInterval(const std::vector<DatedCurve>& calibrations,
                               const DriftOptions& options) {
  if (!options.limitPercent) return "no limit of the drift was given";
  if (calibrations.size() < 3) return "three calibrations are needed";
  for (std::size_t i = 0; i < calibrations.size(); ++i) {
    const std::string name = "calibration " + std::to_string(calibrations[i].calibration);
    const std::string& date = calibrations[i].date;
    if (!calibrations[i].years) {
      return "the date of " + name +
             (date.empty() ? " is not known"
                           : ", '" + date + "', is not clear; record it as year-month-day");
    }
    if (i > 0 && !(*calibrations[i].years > *calibrations[i - 1].years))
      return name + " is not later than the one before it";
  }
  return {};
}

// Whole numbers between separators; -1 where there is none.
std::array<int, 3> numbersOf(const std::string& date, char separator) {
  std::array<int, 3> numbers{-1, -1, -1};
  const char* at = date.data();
  const char* end = at + date.size();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const auto [stop, trouble] = std::from_chars(at, end, numbers[i]);
    if (trouble != std::errc()) return {-1, -1, -1};
    at = stop;
    if (i < 2) {
      if (at == end || *at != separator) return {-1, -1, -1};
      ++at;
    }
  }
  return numbers;
}

}  // namespace

std::optional<double> yearsOf(const std::string& date) {
  int year = -1, month = -1, day = -1;
  if (const auto iso = numbersOf(date, '-'); iso[2] >= 0) {
    year = iso[0], month = iso[1], day = iso[2];
  } else if (const auto slashed = numbersOf(date, '/'); slashed[2] >= 0) {
    // Some write the day first, others the month: 03/04/2026 may be either.
    const bool isDayFirst = slashed[0] > lastMonth;
    if (!isDayFirst && slashed[1] <= lastMonth && slashed[0] != slashed[1]) return std::nullopt;
    day = slashed[isDayFirst ? 0 : 1], month = slashed[isDayFirst ? 1 : 0], year = slashed[2];
  } else if (const auto european = numbersOf(date, '.'); european[2] >= 0) {
    day = european[0], month = european[1], year = european[2];
  }
  if (year < 1000 || month < 1 || month > lastMonth || day < 1 || day > 31) return std::nullopt;
  constexpr std::array<int, 12> before{0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  return year + (before[static_cast<std::size_t>(month - 1)] + day - 1) / 365.25;
}

std::optional<CurveShift> shiftOf(const FittedCurve& earlier, const FittedCurve& now, double roshko,
                                  const EvaluateOptions& options) {
  const auto a = earlier.body().budgetAt(roshko, options), b = now.body().budgetAt(roshko, options);
  if (!a || !b) return std::nullopt;
  return shiftBetween(*a, *b, roshko);
}

std::string Drift::assumptions() const {
  return "Advice by the method of control charts (ILAC-G24): it assumes that the drift is linear "
         "in "
         "time and that the meter keeps changing as it has, and holds the drift and the "
         "scatter of a calibration within the limit with a probability of 95.45 %; at most twice "
         "the longest interval so far.";
}

Drift driftOf(std::vector<DatedCurve> calibrations, const DriftOptions& options) {
  if (calibrations.size() < 2) {
    throw BadData({"a drift needs at least two calibrations with a curve of the series", "",
                   "calibrate the meter again, or fit the series of its other calibrations"});
  }
  Drift drift;
  drift.whyNoInterval = obstacleToInterval(calibrations, options);
  for (const double roshko : placesOf(calibrations, options)) {
    DriftPlace place{roshko, {}, {}, {}};
    std::vector<std::optional<uncertainty::Budget>> budgets;
    for (const DatedCurve& each : calibrations) {
      const CurveEstimate estimate = each.curve.at(roshko, options.evaluate);
      budgets.push_back(each.curve.body().budgetAt(roshko, options.evaluate));
      DriftValue value{estimate.strouhal, 0, estimate.budget, {}, {}, false};
      const double first = place.values.empty() ? estimate.strouhal : place.values.front().strouhal;
      if (first == 0) {
        throw BadData({"the first curve is zero at Roshko " + significantText(roshko, 6), "",
                       "choose another Roshko number"});
      }
      value.percent = 100 * (estimate.strouhal - first) / std::abs(first);
      if (!place.values.empty() && budgets.back()) {
        if (budgets.front())
          value.sinceFirst = shiftBetween(*budgets.front(), *budgets.back(), roshko);
        if (const auto& previous = budgets[budgets.size() - 2])
          value.sincePrevious = shiftBetween(*previous, *budgets.back(), roshko);
      }
      place.values.push_back(std::move(value));
    }
    addChart(place, budgets);
    const bool areKnown = std::ranges::all_of(budgets, [](const auto& b) { return b.has_value(); });
    if (drift.whyNoInterval.empty() && !areKnown)
      drift.whyNoInterval = "the uncertainty of a curve is not known";
    if (drift.whyNoInterval.empty()) {
      addInterval(place, calibrations, budgets, *options.limitPercent);
      const double years = place.interval->years;
      drift.intervalYears = std::min(drift.intervalYears.value_or(years), years);
    }
    drift.places.push_back(std::move(place));
  }
  drift.calibrations = std::move(calibrations);
  return drift;
}

}  // namespace pelmora::calibration
