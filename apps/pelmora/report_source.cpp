// SPDX-License-Identifier: MIT
#include "apps/pelmora/report_source.h"

#include "apps/pelmora/time_text.h"
#include "base/version.h"

#include <pelmora/curve_database.h>

#include <algorithm>
#include <filesystem>

namespace pelmora::cli {
namespace {

report::Refit refitted(CurveSession& session, const MeterInfo& meter, const SeriesInfo& stored,
                       const CurveSettings& settings) {
  try {
    const SeriesFit fit = fitWith(session, meter, stored, settings);
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
  std::vector<std::int16_t> numbers = session.calibrations(meter.SerialNumber);
  std::reverse(numbers.begin(), numbers.end());
  std::vector<MeterInfo> list;
  for (const std::int16_t number : numbers) {
    if (number < meter.ReCalID) list.push_back(session.requireMeter(meter.SerialNumber, number));
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
    return report::PreviousSeries{meter.ReCalID, datesOf(session.setups(meter)), stored};
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
  input.setups = session.setups(meter);
  input.database = std::filesystem::path(session.path()).filename().string();
  input.softwareVersion = version;
  input.createdAt = timeText();
  const auto earlier = earlierCalibrations(session, meter);
  for (SeriesInfo& stored : session.requireAllSeries(meter, series)) {
    report::SeriesInput entry;
    entry.stored = std::move(stored);
    StoredSettings settings = settingsOfStored(session, entry.stored, unkept);
    entry.settingsAreKept = settings.areKept;
    entry.settings = std::move(settings.settings);
    entry.previous = previousOf(session, earlier, entry.stored.SeriesName);
    entry.refit = refitted(session, meter, entry.stored, entry.settings);
    input.series.push_back(std::move(entry));
  }
  // As an import derives them: the rotors before what is made of them.
  if (series.empty()) {
    std::sort(input.series.begin(), input.series.end(),
              [](const auto& a, const auto& b) { return a.stored.SeriesID < b.stored.SeriesID; });
  }
  return input;
}

}  // namespace pelmora::cli
