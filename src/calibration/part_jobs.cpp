// SPDX-License-Identifier: MIT
#include "calibration/part_jobs.h"

#include "base/text_case.h"
#include "calibration/steps/derivation.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/reading.h"

#include <pelmora/curve_database.h>

#include <algorithm>

namespace pelmora::calibration {
namespace {

constexpr std::size_t nominalField = 9;  // behind JobRecordID and eight values

std::optional<double> numberOrNothing(const Value& value) {
  if (const auto* real = std::get_if<double>(&value)) return *real;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  return std::nullopt;
}

std::optional<double> quotient(const std::optional<double>& a, const std::optional<double>& b) {
  if (!a || !b || *b == 0) return std::nullopt;
  return *a / *b;
}

bool isMeasuredValue(const std::string& column) {
  for (std::size_t k = 1; k <= measuredValues; ++k) {
    if (column == "V" + std::to_string(k)) return true;
  }
  return false;
}

}  // namespace

bool isDerivedName(const std::string& series) {
  return std::ranges::any_of(steps::derivedSeriesNames,
                             [&](const char* name) { return equalNames(name, series); });
}

RunJobs::RunJobs(Session& session, const Meter& meter) { read(session, meter, ""); }

RunJobs::RunJobs(Session& session, const Meter& meter, const std::string& nominalFlowColumn) {
  read(session, meter,
       ", V1, V2, V3, V4, V5, V12, V20, V21" +
           (isMeasuredValue(nominalFlowColumn) ? ", " + nominalFlowColumn + " AS nominal" : ""));
}

void RunJobs::read(Session& session, const Meter& meter, const std::string& columns) {
  for (const CalSetupInfo& setup : calSetups(session.curves(), meter.id)) {
    Run run{setup.Fluid, {}, {}, {}};
    const auto rows = readRows(session.connection(), "Select JobRecordID" + columns +
                                                         " from CalDataPoint where CalSetupID=" +
                                                         std::to_string(setup.ID));
    for (; !rows->atEnd(); rows->moveNext()) {
      run.jobs.push_back(toText(rows->value(0)));
      if (columns.empty()) continue;
      const auto number = [&](const char* column) { return numberOrNothing(rows->value(column)); };
      Row row;
      row.common.flow = quotient(number("V2"), number("V1"));
      row.common.viscosity = number("V5");
      row.common.temperature = number("V12");
      if (rows->fieldCount() > nominalField) row.common.nominalFlow = number("nominal");
      row.frequencyA = quotient(number("V4"), number("V3"));
      row.frequencyB = quotient(number("V21"), number("V20"));
      run.rows.push_back(row);
    }
    if (setup.JobRecordIDs.size() > 1) run.lastJob = setup.JobRecordIDs[1];
    runs_.push_back(std::move(run));
  }
}

void RunJobs::addReadings(const std::string& series, const Run& run, bool ofLastJob,
                          PartJobs& part) {
  for (std::size_t i = 0; i < run.rows.size(); ++i) {
    if (ofLastJob && run.jobs[i] != run.lastJob) continue;
    const Row& row = run.rows[i];
    part.readings.push_back(row.common);
    std::optional<double>& frequency = part.readings.back().frequency;
    if (equalNames(series, "Rotor A")) {
      frequency = row.frequencyA;
    } else if (equalNames(series, "Rotor B")) {
      // In a job of its own, rotor B was read as the stand's first one.
      frequency = ofLastJob ? row.frequencyA : row.frequencyB;
    } else if (row.frequencyA && row.frequencyB) {
      frequency = *row.frequencyA + *row.frequencyB;
    }
  }
}

PartJobs RunJobs::of(const std::string& series, int part, std::size_t points) const {
  const auto index = static_cast<std::size_t>(part - 1);
  if (index >= runs_.size() || !isDerivedName(series)) return {};
  const Run& run = runs_[index];
  PartJobs found{run.fluid, {}, {}};
  const auto ofLast = static_cast<std::size_t>(std::ranges::count(run.jobs, run.lastJob));
  if (run.jobs.size() == points) {
    found.jobs = run.jobs;
    addReadings(series, run, false, found);
  } else if (!run.lastJob.empty() && ofLast == points) {
    found.jobs.assign(points, run.lastJob);
    addReadings(series, run, true, found);
  } else {
    return {};
  }
  return found;
}

}  // namespace pelmora::calibration
