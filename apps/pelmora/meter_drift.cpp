// SPDX-License-Identifier: MIT
#include "apps/pelmora/meter_drift.h"

namespace pelmora::cli {
namespace {

// Of the measurements, if it is recorded for the certificate; else of the import.
std::string dateOf(const calibration::Database& lab, const calibration::Meter& meter) {
  const calibration::Details details = lab.details(meter);
  if (const auto recorded = details.find("date"); recorded != details.end())
    return recorded->second;
  for (const calibration::Run& run : lab.runs(meter)) {
    if (!run.date.empty()) return run.date;
  }
  return {};
}

}  // namespace

MeterDrift meterDrift(Session& session, const std::string& meter, const std::string& series,
                      const calibration::DriftOptions& options) {
  const calibration::Database& lab = session.database();
  MeterDrift result;
  std::vector<calibration::DatedCurve> curves;
  for (const calibration::Meter& each : lab.calibrations(meter)) {
    try {
      const auto stored = lab.series(each, series);
      if (const std::string warning = stored.ageWarning(); !warning.empty())
        result.notes.push_back("note: " + warning);
      const std::string date = dateOf(lab, each);
      curves.push_back({each.calibration, date, calibration::yearsOf(date),
                        lab.fittedCurve(stored, session.observer())});
    } catch (const calibration::NotFound& failure) {
      result.notes.push_back("calibration " + std::to_string(each.calibration) +
                             " is left out: " + failure.what());
    }
  }
  result.drift = calibration::driftOf(std::move(curves), options);
  return result;
}

}  // namespace pelmora::cli
