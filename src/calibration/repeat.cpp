// SPDX-License-Identifier: MIT
#include "calibration/repeated_fit.h"
#include "calibration/session.h"
#include "calibration/steps/fit_report.h"

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {
namespace {

bool isSameRange(const PointArray& a, const PointArray& b) {
  constexpr double rounding = 1e-9;
  const auto range = [](const PointArray& points) {
    const auto x = points.column(0);
    return std::minmax_element(x.begin(), x.end());
  };
  const auto [lowA, highA] = range(a);
  const auto [lowB, highB] = range(b);
  return std::abs(*lowA - *lowB) <= rounding * std::abs(*lowB) &&
         std::abs(*highA - *highB) <= rounding * std::abs(*highB);
}

CurveSettings assumedSettings(const StoredSeries& stored, const UnkeptSettings& unkept) {
  const FitSettings defaults;
  CurveSettings settings;
  settings.BandPercent =
      unkept.band.value_or(steps::bandOfReport(stored.report).value_or(defaults.band));
  settings.RatioCurve = stored.name == "Ratio";
  // A curve that was stored without its rule was chosen by the only rule that there was.
  const bool isNew = stored.curve.empty();
  settings.Choice = choiceKey(isNew ? defaults.choice : Choice::adjustedR2);
  const bool hasCurve = stored.curve.size() > 1;
  settings.Points = defaults.points;
  if (hasCurve) settings.Points = static_cast<std::int32_t>(stored.curve.size());
  if (unkept.points) settings.Points = *unkept.points;
  if (hasCurve && !stored.merged.empty() && !isSameRange(stored.curve, stored.merged)) {
    settings.Min = stored.curve(0, 0);
    settings.Max = stored.curve(stored.curve.size() - 1, 0);
  }
  const bool hasOwn = settings.RatioCurve && unkept.ratioEquations;
  const auto& equations = hasOwn ? unkept.ratioEquations : unkept.equations;
  if (equations) settings.Equations = equations->text();
  return settings;
}

// The largest distance of two tables with equal Roshko columns in per cent of the first; nothing
// where their Roshko columns differ.
std::optional<double> largestDistance(const PointArray& stored, const PointArray& repeated) {
  constexpr double sameRoshkoPercent = 1e-4;
  if (stored.size() != repeated.size() || stored.empty()) return std::nullopt;
  double largest = 0;
  for (std::size_t i = 0; i < stored.size(); ++i) {
    const auto apart = [&](std::size_t c) {
      return std::fabs(repeated(i, c) - stored(i, c)) / std::fabs(stored(i, c)) * 100;
    };
    if (!(apart(0) <= sameRoshkoPercent)) return std::nullopt;
    const double distance = apart(1);
    if (!(distance <= largest)) largest = distance;
  }
  return largest;
}

}  // namespace

FitSettings settingsToRepeat(const CurveSettings& kept) {
  FitSettings settings;
  settings.min = kept.Min;
  settings.max = kept.Max;
  settings.points = static_cast<std::int16_t>(kept.Points);
  settings.band = kept.BandPercent;
  settings.ratio = kept.RatioCurve;
  settings.inverted = kept.Inverted;
  settings.ignoreResiduals = kept.IgnoreResiduals;
  settings.mergeBand = kept.MergeBandPercent;
  settings.cutsOverlap = !kept.KeepsOverlap;
  settings.outside = RangePolicy::extrapolate;
  settings.choice = choiceOf(kept.Choice).value_or(Choice::adjustedR2);
  settings.fitMin = kept.FitMin;
  settings.fitMax = kept.FitMax;
  settings.only = kept.Only;
  settings.without = kept.Without;
  settings.maxOrder = kept.MaxOrder;
  settings.spacing = spacingOf(kept.Spacing).value_or(PointSpacing::usual);
  if (kept.Equations) {
    settings.equations =
        EquationList::parse(*kept.Equations, "the text of the equations kept with the curve");
  }
  return settings;
}

FitSettings SettingsChange::appliedTo(FitSettings settings) const {
  settings.choice = choice.value_or(settings.choice);
  if (fitMin) settings.fitMin = fitMin;
  if (fitMax) settings.fitMax = fitMax;
  if (only) settings.only = *only;
  if (without) settings.without = *without;
  if (maxOrder) settings.maxOrder = maxOrder;
  if (mergeBand) settings.mergeBand = mergeBand;
  settings.cutsOverlap = cutsOverlap.value_or(settings.cutsOverlap);
  settings.spacing = spacing.value_or(settings.spacing);
  return settings;
}

bool SettingsChange::isInForceIn(const FitSettings& settings) const {
  return (!choice || settings.choice == *choice) && (!fitMin || settings.fitMin == fitMin) &&
         (!fitMax || settings.fitMax == fitMax) && (!only || settings.only == *only) &&
         (!without || settings.without == *without) &&
         (!maxOrder || settings.maxOrder == maxOrder) &&
         (!mergeBand || settings.mergeBand == mergeBand) &&
         (!cutsOverlap || settings.cutsOverlap == *cutsOverlap) &&
         (!spacing || settings.spacing == *spacing);
}

Repeated repeatWith(const Database& lab, const StoredSeries& series, const UnkeptSettings& unkept,
                    const SettingsChange& change, const Observer& observer) {
  Repeated repeated;
  repeated.settingsAreKept = series.settings && !series.curve.empty();
  repeated.settings = repeated.settingsAreKept ? *series.settings : assumedSettings(series, unkept);
  try {
    repeated.fit = lab.fit(series, change.appliedTo(settingsToRepeat(repeated.settings)), observer);
    repeated.trouble = repeated.fit.reason(observer.stop);
    repeated.distancePercent = largestDistance(series.curve, repeated.fit.curve);
  } catch (const BadData& failure) {
    repeated.trouble = failure.what();
  } catch (const OutOfRange& failure) {
    repeated.trouble = failure.what();
  } catch (const NoFit& failure) {
    repeated.trouble = failure.what();
  }
  return repeated;
}

Repeated Database::repeat(const StoredSeries& series, const UnkeptSettings& unkept,
                          const Observer& observer) const {
  return repeatWith(*this, series, unkept, {}, observer);
}

}  // namespace pelmora::calibration
