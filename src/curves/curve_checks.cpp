// SPDX-License-Identifier: MIT
#include "curves/curve_checks.h"

#include "base/number_text.h"
#include "base/run_time_error.h"
#include "curves/table_size.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace pelmora {
namespace {

// How finely the curve is looked at between two neighbouring points. A pole of the
// reciprocal-logarithm equation that was fitted to points a tenth of a decade apart is many times
// wider than a sixteenth of that.
constexpr std::size_t samplesPerGap = 16;
// The curve may turn within this many residual standard errors between two points, as noise would
// make it.
constexpr double noiseErrors = 3;
// Beyond both it is a wild swing: in residual standard errors, and in per cent of the curve.
constexpr double swingErrors = 20;
constexpr double swingPercent = 1;
// The table may miss its own curve by this part of the band, or by this where there is no band.
constexpr double tableShareOfBand = 0.25;
constexpr double tablePercent = 0.05;

std::vector<double> sampled(const FitModel& model, std::span<const double> x) {
  std::vector<double> y = model.sampleCurve(x);
  if (y.size() != x.size()) throw makeError(RunTimeError::outOfRange);
  return y;
}

bool allPositive(std::span<const double> x) {
  return std::all_of(x.begin(), x.end(), [](double value) { return value > 0; });
}

// Evenly spaced values between two x, both ends included; in ln x where that exists.
std::vector<double> between(double from, double to, std::size_t intervals) {
  std::vector<double> x(intervals + 1);
  const bool logarithmic = from > 0 && to > 0;
  const double ratio = logarithmic ? std::pow(to / from, 1 / static_cast<double>(intervals)) : 1;
  for (std::size_t k = 1; k < intervals; ++k) {
    const double t = static_cast<double>(k) / static_cast<double>(intervals);
    x[k] = logarithmic ? (k == 1 ? from : x[k - 1]) * ratio : from + (to - from) * t;
  }
  x.front() = from;
  x.back() = to;
  return x;
}

// How far a curve leaves the range of its values at the ends of a gap, and the sample where it is
// furthest.
struct Excursion {
  double distance = 0;  // infinite where the curve is not finite
  std::size_t sample = 0;
};

Excursion largestExcursion(std::span<const double> y, double low, double high) {
  Excursion largest;
  for (std::size_t k = 0; k < y.size(); ++k) {
    const double distance = std::isfinite(y[k]) ? std::max(low - y[k], y[k] - high)
                                                : std::numeric_limits<double>::infinity();
    if (distance > largest.distance) largest = {distance, k};
  }
  return largest;
}

// The height of an excursion: looks closer and closer around its furthest sample, until it grows no
// more or, at a pole, without end.
double excursionHeight(const FitModel& model, std::vector<double> x, Excursion found, double low,
                       double high) {
  constexpr int mostZooms = 12;
  constexpr double settled = 1.01;
  for (int zoom = 0; zoom < mostZooms && std::isfinite(found.distance); ++zoom) {
    const std::size_t before = found.sample > 0 ? found.sample - 1 : 0;
    const std::size_t behind = std::min(found.sample + 1, x.size() - 1);
    x = between(x[before], x[behind], samplesPerGap);
    const Excursion closer = largestExcursion(sampled(model, x), low, high);
    const bool ended = closer.distance < settled * found.distance;
    if (closer.distance > found.distance) found = closer;
    if (ended) break;
  }
  return found.distance;
}

std::string percentText(double percent) {
  if (!std::isfinite(percent)) return "without limit";
  const double scale = std::pow(10.0, 2 - std::floor(std::log10(std::max(percent, 1e-12))));
  return "by " + numberText(std::round(percent * scale) / scale) + " %";
}

std::string whereText(double from, double to) {
  return "between x = " + numberText(from) + " and " + numberText(to);
}

std::vector<double> sorted(std::span<const double> x) {
  std::vector<double> values(x.begin(), x.end());
  if (!std::is_sorted(values.begin(), values.end())) std::sort(values.begin(), values.end());
  return values;
}

// The gaps between neighbouring x inside the predicted range. Points that lie much closer than the
// range needs are passed over, so that the work does not grow with the number of points.
std::vector<double> gapEnds(std::span<const double> sortedX, double from, double to) {
  constexpr double mostGaps = 400;
  const bool logarithmic = from > 0 && to > 0;
  const auto position = [&](double x) { return logarithmic ? std::log(x) : x; };
  const double nearest = (position(to) - position(from)) / mostGaps;
  std::vector<double> ends;
  double last = 0;  // position of the last end
  for (const double x : sortedX) {
    if (!(x >= from && x <= to)) continue;
    const double here = position(x);
    if (!ends.empty() && !(here - last > nearest)) continue;
    ends.push_back(x);
    last = here;
  }
  if (ends.empty() || ends.front() > from) ends.insert(ends.begin(), from);
  if (ends.back() < to) ends.push_back(to);
  return ends;
}

// A polynomial has none.
bool mayHavePole(const FitModel& model) {
  return model.Definition.Expression.find('/') != std::string::npos ||
         model.Definition.Expression.find("^-") != std::string::npos ||
         model.Definition.Expression.find("^(-") != std::string::npos;
}

// x, y: the samples of the gap.
std::optional<CurveWarning> checkGap(const CheckedCurve& curve, std::span<const double> x,
                                     std::span<const double> y) {
  const double from = x.front(), to = x.back();
  const double low = std::min(y.front(), y.back());
  const double high = std::max(y.front(), y.back());
  const Excursion found = largestExcursion(y, low, high);
  const double s = curve.statistics.ResidualStandardError;
  const double scale = (std::abs(low) + std::abs(high)) / 2;
  // Rounding of the curve itself is not a turn.
  if (!(found.distance > std::max(noiseErrors * s, 1e-9 * scale))) return std::nullopt;
  const double beyond = excursionHeight(curve.model, {x.begin(), x.end()}, found, low, high);
  const double percent = scale > 0 ? 100 * beyond / scale : std::numeric_limits<double>::infinity();
  if (beyond > swingErrors * s && percent > swingPercent) {
    return CurveWarning{CurveWarningKind::pole, from, to, percent,
                        "The curve swings " + percentText(percent) + " " + whereText(from, to) +
                            ", between points that it fits" +
                            (mayHavePole(curve.model) ? ": a pole of the equation?" : "")};
  }
  return CurveWarning{CurveWarningKind::oscillation, from, to, percent,
                      "The curve turns " + whereText(from, to) + " " + percentText(percent) +
                          ", more than the noise of the points explains"};
}

void checkGaps(const CheckedCurve& curve, std::span<const double> sortedX,
               std::vector<CurveWarning>& warnings) {
  const std::vector<double> ends =
      gapEnds(sortedX, curve.predictedX.front(), curve.predictedX.back());
  std::vector<double> x;  // of all gaps, so that the curve is asked once
  x.reserve((samplesPerGap + 1) * ends.size());
  for (std::size_t i = 1; i < ends.size(); ++i) {
    const std::vector<double> gap = between(ends[i - 1], ends[i], samplesPerGap);
    x.insert(x.end(), gap.begin(), gap.end());
  }
  const std::vector<double> y = sampled(curve.model, x);
  for (std::size_t at = 0; at < x.size(); at += samplesPerGap + 1) {
    const auto gapOf = [at](std::span<const double> all) {
      return all.subspan(at, samplesPerGap + 1);
    };
    if (auto warning = checkGap(curve, gapOf(x), gapOf(y))) warnings.push_back(std::move(*warning));
  }
  std::stable_sort(warnings.begin(), warnings.end(),
                   [](const auto& a, const auto& b) { return a.Kind < b.Kind; });
}

void checkLevels(const CheckedCurve& curve, std::span<const double> sortedX,
                 std::vector<CurveWarning>& warnings) {
  const std::size_t levels = distinctLevels(sortedX);
  if (curve.parameters < levels) return;
  warnings.push_back({CurveWarningKind::fewLevels, sortedX.front(), sortedX.back(), 0,
                      numberText(curve.parameters) + " parameters were fitted to " +
                          numberText(levels) +
                          " distinct x levels: between them no points support the curve"});
}

void checkExtrapolation(const CheckedCurve& curve, std::span<const double> sortedX,
                        std::vector<CurveWarning>& warnings) {
  const double from = curve.predictedX.front();
  const double to = curve.predictedX.back();
  // The ends of a log-spaced table equal the range asked for up to rounding.
  const double rounding = 1e-12;
  // How far the curve runs away from its value at the outermost point, in per cent.
  const auto change = [&](double a, double b) {
    if (curve.model.sampleCurve(curve.predictedX.first(1)).empty()) return 0.0;
    const bool isBelow = a < sortedX.front();
    const std::vector<double> y = sampled(curve.model, between(a, b, samplesPerGap));
    const double at = isBelow ? y.back() : y.front();
    double most = 0;
    for (const double value : y) {
      const double off = 100 * std::abs(value / at - 1);
      if (!(off <= most)) most = off;
    }
    return most;
  };
  const auto add = [&](double a, double b) {
    const double percent = change(a, b);
    std::string text = "The curve is predicted " + whereText(a, b) + ", where there are no points";
    if (!(percent <= swingPercent)) text += ", and changes there " + percentText(percent);
    warnings.push_back({CurveWarningKind::extrapolation, a, b, percent, text});
  };
  if (from < sortedX.front() - rounding * std::abs(sortedX.front())) add(from, sortedX.front());
  if (to > sortedX.back() + rounding * std::abs(sortedX.back())) add(sortedX.back(), to);
}

void checkTable(const CheckedCurve& curve, std::vector<CurveWarning>& warnings) {
  const std::size_t m = curve.predictedX.size();
  std::vector<double> middles(m - 1);
  for (std::size_t i = 0; i + 1 < m; ++i) {
    middles[i] = (curve.predictedX[i] + curve.predictedX[i + 1]) / 2;
  }
  const std::vector<double> exact = sampled(curve.model, middles);
  double worst = 0;
  std::size_t at = 0;
  for (std::size_t i = 0; i + 1 < m; ++i) {
    const double read = (curve.predictedY[i] + curve.predictedY[i + 1]) / 2;
    const double error = 100 * std::abs(read - exact[i]) / std::abs(exact[i]);
    if (error > worst) {
      worst = error;
      at = i;
    }
  }
  const double limit = curve.bandPercent > 0 ? tableShareOfBand * curve.bandPercent : tablePercent;
  if (!(worst > limit)) return;
  const auto samples = [&](std::span<const double> x) { return sampled(curve.model, x); };
  const std::int32_t points =
      tablePointsFor(samples, curve.predictedX.front(), curve.predictedX.back(),
                     static_cast<std::int32_t>(m), limit, TableSpacing::even);
  warnings.push_back(
      {CurveWarningKind::tableReading, curve.predictedX[at], curve.predictedX[at + 1], worst,
       "The predicted table read linearly misses its own curve " + percentText(worst) + " " +
           whereText(curve.predictedX[at], curve.predictedX[at + 1]) +
           (points > 0 ? ": " + numberText(points) + " fitted points would do" : "")});
  warnings.back().Points = points;
}

}  // namespace

std::vector<Level> levelsOf(std::span<const double> x) {
  constexpr double shareOfMeanSpacing = 0.2;
  if (x.empty()) return {};
  const bool logarithmic = allPositive(x);
  const auto position = [&](double value) { return logarithmic ? std::log(value) : value; };
  const double mean =
      (position(x.back()) - position(x.front())) / static_cast<double>(x.size() - 1);
  std::vector<Level> levels{{x[0], x[0], 1}};
  for (std::size_t i = 1; i < x.size(); ++i) {
    if (position(x[i]) - position(x[i - 1]) > shareOfMeanSpacing * mean)
      levels.push_back({x[i], x[i], 0});
    levels.back().to = x[i];
    ++levels.back().count;
  }
  return levels;
}

std::size_t distinctLevels(std::span<const double> x) { return levelsOf(x).size(); }

std::vector<CurveWarning> checkCurve(const CheckedCurve& curve) {
  std::vector<CurveWarning> warnings;
  if (curve.rawX.empty() || curve.predictedX.size() < 2) return warnings;
  const bool allFinite = std::all_of(curve.rawX.begin(), curve.rawX.end(),
                                     [](double value) { return std::isfinite(value); });
  if (!allFinite) return warnings;
  const std::vector<double> sortedX = sorted(curve.rawX);
  const bool canSample = !curve.model.sampleCurve(curve.predictedX.first(1)).empty();
  if (canSample) checkGaps(curve, sortedX, warnings);
  checkLevels(curve, sortedX, warnings);
  checkExtrapolation(curve, sortedX, warnings);
  if (canSample) checkTable(curve, warnings);
  return warnings;
}

}  // namespace pelmora
