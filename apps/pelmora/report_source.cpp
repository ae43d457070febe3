// SPDX-License-Identifier: MIT
#include "apps/pelmora/report_source.h"

#include "apps/pelmora/equation_folder.h"
#include "apps/pelmora/series_fit.h"
#include "apps/pelmora/strict_number.h"
#include "apps/pelmora/temporary_folder.h"
#include "apps/pelmora/time_text.h"
#include "apps/pelmora/version.h"

#include <pelmora/curve_database.h>

#include <algorithm>
#include <filesystem>

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
    settings.Equations = EquationFolder(unkept.equations, settings.RatioCurve).text();
  return settings;
}

FitOptions optionsOf(const CurveSettings& settings, const std::string& equationFile) {
  FitOptions options;
  options.min = settings.Min;
  options.max = settings.Max;
  options.points = static_cast<std::int16_t>(settings.Points);
  options.band = settings.BandPercent;
  options.ratio = settings.RatioCurve;
  options.inverted = settings.Inverted;
  options.ignoreResiduals = settings.IgnoreResiduals;
  options.onRange = RangeAnswer::ignore;  // a stored curve may reach beyond its raw points
  options.equations = equationFile;
  return options;
}

report::Refit refitted(CurveSession& session, const MeterInfo& meter, const std::string& series,
                       const CurveSettings& settings) {
  try {
    const TemporaryFolder folder;
    const std::string file = settings.Equations ? folder.write("kept.txt", *settings.Equations) : "";
    const SeriesFit fit = trySeries(session, meter, series, optionsOf(settings, file));
    return {fit.outcome, fit.merged, fit.curve, fit.trouble ? fit.trouble->what() : ""};
  } catch (const Trouble& trouble) {
    return {{}, {}, {}, trouble.what()};
  }
}

std::string datesOf(const std::vector<CalSetupInfo>& setups) {
  std::string text;
  for (const CalSetupInfo& setup : setups) {
    if (setup.DateTaken.empty() || text.find(setup.DateTaken) != std::string::npos) continue;
    text += (text.empty() ? "" : ", ") + setup.DateTaken;
  }
  return text;
}

// Earlier calibrations of the same serial number, the latest first.
std::vector<MeterInfo> earlierCalibrations(CurveSession& session, const MeterInfo& meter) {
  bool isEmpty = true;
  std::vector<std::int16_t> numbers;
  session.messages().forget();
  (void)session.data().MetersAdjusted(meter.SerialNumber, isEmpty, numbers);
  session.messages().throwIfAny(ExitCode::unexpected, "listing the calibrations of meter '" + meter.SerialNumber + "'", "");
  std::sort(numbers.rbegin(), numbers.rend());
  std::vector<MeterInfo> list;
  for (const std::int16_t number : numbers) {
    if (!isEmpty && number < meter.ReCalID) list.push_back(session.requireMeter(meter.SerialNumber, number));
  }
  return list;
}

std::optional<report::PreviousSeries> previousOf(CurveSession& session,
                                                 const std::vector<MeterInfo>& earlier,
                                                 const std::string& series) {
  for (const MeterInfo& meter : earlier) {
    const auto names = session.seriesNames(meter);
    if (std::find(names.begin(), names.end(), series) == names.end()) continue;
    const SeriesInfo stored = session.requireSeries(meter, series).Series.front();
    if (stored.Fitted.size() < 2) continue;
    return report::PreviousSeries{meter.ReCalID, datesOf(calSetups(session.connection(), meter.MeterID)),
                                  stored};
  }
  return std::nullopt;
}

}  // namespace

report::ReportInput reportInput(CurveSession& session, const MeterInfo& meter,
                                const std::vector<std::string>& series,
                                const UnkeptSettings& unkept) {
  report::ReportInput input;
  input.meter = meter;
  input.meter.Series.clear();
  input.setups = calSetups(session.connection(), meter.MeterID);
  input.database = std::filesystem::path(session.path()).filename().string();
  input.softwareVersion = version;
  input.createdAt = timeText();
  const auto earlier = earlierCalibrations(session, meter);
  for (const std::string& name : series.empty() ? session.seriesNames(meter) : series) {
    report::SeriesInput entry;
    entry.stored = session.requireSeries(meter, name).Series.front();
    const auto kept = keptCurveSettings(session.connection(), entry.stored.SeriesID);
    entry.settingsAreKept = kept && !entry.stored.Fitted.empty();
    entry.settings = entry.settingsAreKept ? *kept : assumedSettings(entry.stored, unkept);
    entry.previous = previousOf(session, earlier, name);
    entry.refit = refitted(session, meter, name, entry.settings);
    input.series.push_back(std::move(entry));
  }
  // As an import derives them: the rotors before what is made of them.
  if (series.empty()) {
    std::sort(input.series.begin(), input.series.end(), [](const auto& a, const auto& b) {
      return a.stored.SeriesID < b.stored.SeriesID;
    });
  }
  return input;
}

}  // namespace pelmora::cli
