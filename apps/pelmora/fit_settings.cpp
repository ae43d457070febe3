// SPDX-License-Identifier: MIT
#include "apps/pelmora/fit_settings.h"

#include "apps/pelmora/equation_folder.h"
#include "apps/pelmora/options/strict_number.h"

#include <algorithm>
#include <cmath>

namespace pelmora::cli {
namespace {

// The band as the stored report tells it; nothing where it does not.
std::optional<double> reportedBand(const std::string& text) {
  constexpr std::string_view label = "\nBand Percentage = ";
  const std::size_t at = text.find(label);
  if (at == std::string::npos) return std::nullopt;
  const std::size_t begin = at + label.size();
  std::string number = text.substr(begin, text.find('%', begin) - begin);
  std::replace(number.begin(), number.end(), ',', '.');  // a locale's decimal separator
  const auto band = strictNumber(number);
  return band && *band >= 0 ? band : std::nullopt;
}

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

CurveSettings assumedSettings(const SeriesInfo& stored, const UnkeptSettings& unkept) {
  CurveSettings settings;
  settings.BandPercent = unkept.band.value_or(reportedBand(stored.Summary).value_or(defaultBand));
  settings.RatioCurve = stored.SeriesName == "Ratio";
  const bool hasCurve = stored.Fitted.size() > 1;
  settings.Points = FitOptions().points;
  if (hasCurve) settings.Points = static_cast<std::int32_t>(stored.Fitted.size());
  if (unkept.points) settings.Points = *unkept.points;
  if (hasCurve && !stored.Merged.empty() && !isSameRange(stored.Fitted, stored.Merged)) {
    settings.Min = stored.Fitted(0, 0);
    settings.Max = stored.Fitted(stored.Fitted.size() - 1, 0);
  }
  if (!unkept.equations.empty())
    settings.Equations = equationsOf(unkept.equations, settings.RatioCurve);
  return settings;
}

FitOptions optionsOf(const CurveSettings& settings) {
  FitOptions options;
  options.min = settings.Min;
  options.max = settings.Max;
  options.points = static_cast<std::int16_t>(settings.Points);
  options.band = settings.BandPercent;
  options.ratio = settings.RatioCurve;
  options.inverted = settings.Inverted;
  options.ignoreResiduals = settings.IgnoreResiduals;
  options.onRange = RangeAnswer::ignore;  // a stored curve may reach beyond its raw points
  options.keptEquations = settings.Equations;
  return options;
}

}  // namespace

StoredSettings settingsOfStored(CurveSession& session, const SeriesInfo& stored,
                                const UnkeptSettings& unkept) {
  std::optional<CurveSettings> kept;
  try {
    kept = keptCurveSettings(session.connection(), stored.SeriesID);
  } catch (const Error& error) {
    throw Trouble(ExitCode::badInput,
                  "the fit settings of series '" + stored.SeriesName + "' in '" + session.path() +
                      "' cannot be read: " + error.what(),
                  lookForCause);
  }
  if (kept && !stored.Fitted.empty()) return {*kept, true};
  return {assumedSettings(stored, unkept), false};
}

SeriesFit fitWith(CurveSession& session, const MeterInfo& meter, const SeriesInfo& stored,
                  const CurveSettings& settings) {
  return tryStored(session, meter, stored, optionsOf(settings));
}

}  // namespace pelmora::cli
