// SPDX-License-Identifier: MIT
#include "bindings/python/module/records.h"

#include <pelmora/calibration/words.h>

namespace pelmora::python {

namespace cal = pelmora::calibration;
using py::literals::operator""_a;

namespace {

const char* kindKey(cal::RefitResultKind kind) {
  switch (kind) {
    case cal::RefitResultKind::changed: return "changed";
    case cal::RefitResultKind::kept: return "kept";
    case cal::RefitResultKind::added: return "added";
    case cal::RefitResultKind::notFitted: return "not fitted";
    case cal::RefitResultKind::unusable: return "unusable";
    case cal::RefitResultKind::unreadable: return "unreadable";
    case cal::RefitResultKind::gone: return "gone";
  }
  return "";
}

py::list numbersOf(const std::vector<cal::HistoryEntryId>& entries) {
  py::list list;
  for (const cal::HistoryEntryId entry : entries) list.append(entry);
  return list;
}

py::list parametersOf(const std::vector<FitParameter>& parameters) {
  py::list list;
  for (const FitParameter& parameter : parameters)
    list.append(py::make_tuple(textOf(parameter.Name), parameter.Value, parameter.StandardError));
  return list;
}

py::array covarianceOf(const EquationOutcome& equation) {
  const auto size = static_cast<py::ssize_t>(equation.Parameters.size());
  if (equation.Covariance.empty()) return py::array_t<double>(std::vector<py::ssize_t>{0, 0});
  return py::array_t<double>({size, size}, equation.Covariance.data());
}

const char* useKey(cal::PointUse use) {
  switch (use) {
    case cal::PointUse::used: return "used";
    case cal::PointUse::distrusted: return "distrusted";
    case cal::PointUse::outside: return "outside";
  }
  return "";
}

}  // namespace

py::dict recordOf(const cal::ChangedPoint& point) {
  return py::dict("series"_a = textOf(point.series), "part"_a = point.part,
                  "number"_a = point.number, "roshko"_a = point.roshko,
                  "strouhal"_a = point.strouhal);
}

py::dict recordOf(const cal::DroppedExclusion& dropped) {
  py::dict record = recordOf(dropped.point);
  record["job"] = textOf(dropped.job);
  record["reason"] = textOf(dropped.reason);
  record["why"] = textOf(dropped.why);
  return record;
}

py::dict recordOf(const cal::JudgedPoint& point) {
  return py::dict("part"_a = point.part, "number"_a = point.number, "roshko"_a = point.roshko,
                  "strouhal"_a = point.strouhal, "use"_a = useKey(point.use),
                  "residual"_a = point.residual, "loo_residual"_a = point.leaveOneOut,
                  "loo_sigma"_a = point.sigmas());
}

py::dict recordOf(const cal::Run& run) {
  return py::dict("id"_a = run.id, "stand_number"_a = run.stand, "position"_a = run.position,
                  "operator"_a = textOf(run.operatorName), "fluid"_a = textOf(run.fluid),
                  "date"_a = textOf(run.date), "jobs"_a = textsOf(run.jobs),
                  "points"_a = run.points);
}

py::dict recordOf(const cal::Imported& imported) {
  py::dict series;
  for (const cal::DerivedSeries& derived : imported.series) {
    const auto& points = derived.points;
    series[textOf(derived.name)] = py::make_tuple(points[0], points[1], points[2], points[3]);
  }
  py::list keptEntries, doubts;
  for (const cal::KeptEntry& entry : imported.keptEntries) {
    keptEntries.append(py::make_tuple(textOf(entry.fluid), textOf(entry.what), textOf(entry.kept),
                                      textOf(entry.given)));
  }
  for (const std::string& doubt : imported.doubts) doubts.append(textOf(doubt));
  return py::dict(
      "meter"_a = imported.meter, "is_new_calibration"_a = imported.isNewCalibration,
      "runs"_a = recordsOf(imported.runs), "series"_a = series,
      "excluded_again"_a = imported.excludedAgain, "dropped"_a = recordsOf(imported.dropped),
      "job_without_rotor_b"_a = textOf(imported.jobWithoutRotorB), "kept_entries"_a = keptEntries,
      "doubts"_a = doubts, "kept"_a = numbersOf(imported.kept));
}

py::dict recordOf(const cal::StoredPoints& stored) {
  py::list far;
  for (const cal::FarPoint& point : stored.farPoints)
    far.append(py::make_tuple(point.index, point.factor));
  return py::dict("series_id"_a = stored.seriesID, "is_new_series"_a = stored.isNewSeries,
                  "kept"_a = stored.kept, "excluded"_a = stored.excluded,
                  "dropped"_a = recordsOf(stored.dropped), "far_factor"_a = stored.farFactor,
                  "far_points"_a = far);
}

namespace {

py::object readingOf(const cal::RawPoint& point) {
  if (!point.reading) return py::none();
  const cal::StandReading& reading = *point.reading;
  return py::dict("part"_a = point.part, "number"_a = point.number,
                  "frequency"_a = orNone(reading.frequency), "flow"_a = orNone(reading.flow),
                  "viscosity"_a = orNone(reading.viscosity),
                  "temperature"_a = orNone(reading.temperature),
                  "nominal_flow"_a = orNone(reading.nominalFlow));
}

}  // namespace

py::dict recordOf(const cal::RawPoint& point) {
  const cal::Exclusion exclusion = point.exclusion.value_or(cal::Exclusion{});
  return py::dict("part"_a = point.part, "number"_a = point.number, "job"_a = textOf(point.job),
                  "fluid"_a = textOf(point.fluid), "roshko"_a = point.roshko,
                  "strouhal"_a = point.strouhal, "residual"_a = orNone(point.residualPercent),
                  "loo_sigma"_a = orNone(point.sigmas), "distrusted"_a = point.isDistrusted,
                  "state"_a = cal::pointStateKey(point.state),
                  "cut_percent"_a = orNone(point.cutPercent), "reason"_a = textOf(exclusion.reason),
                  "user"_a = textOf(exclusion.userName),
                  "excluded_at"_a = textOf(exclusion.excludedAt), "reading"_a = readingOf(point));
}

py::dict recordOf(const cal::ExclusionChange& change) {
  return py::dict("points"_a = recordsOf(change.points),
                  "same_readings"_a = textsOf(change.sameReadings),
                  "dropped"_a = recordsOf(change.dropped), "kept"_a = numbersOf(change.kept));
}

py::dict recordOf(const cal::Trust& trust) {
  return py::dict("is_relative"_a = trust.isRelative, "points"_a = trust.points,
                  "flows"_a = trust.flows, "length_decades"_a = trust.lengthDecades,
                  "noise_high"_a = trust.noiseHigh, "noise_low"_a = trust.noiseLow,
                  "judged"_a = recordsOf(trust.judged));
}

py::dict recordOf(const cal::HistoryEntry& entry) {
  py::dict rows;
  for (const auto& [table, count] : entry.rows) rows[textOf(table)] = count;
  return py::dict("id"_a = entry.id, "command"_a = textOf(entry.command),
                  "changed_at"_a = textOf(entry.changedAt), "user"_a = textOf(entry.userName),
                  "version"_a = textOf(entry.version), "serial"_a = textOf(entry.serial),
                  "calibration"_a = entry.calibration, "series"_a = textOf(entry.series),
                  "rows"_a = rows);
}

py::dict recordOf(const cal::Restored& restored) {
  py::dict tables;
  for (const cal::RestoredTable& table : restored.tables)
    tables[textOf(table.name)] = py::make_tuple(table.rowsBefore, table.rowsNow);
  return py::dict("entry"_a = recordOf(restored.entry), "kept_as"_a = restored.keptAs,
                  "tables"_a = tables);
}

py::dict recordOf(const cal::RefitResult& result) {
  return py::dict("serial"_a = textOf(result.task.meter.serial),
                  "calibration"_a = result.task.meter.calibration,
                  "series"_a = textOf(result.task.series), "result"_a = kindKey(result.kind),
                  "equation"_a = textOf(result.equation), "shift_percent"_a = result.shiftPercent,
                  "shift_roshko"_a = result.shiftRoshko, "reason"_a = textOf(result.reason),
                  "is_stored"_a = result.isStored, "changed_meanwhile"_a = result.changedMeanwhile);
}

py::dict recordOf(const cal::RankedEquation& ranked) {
  const EquationOutcome& equation = ranked.outcome;
  const FitStatistics& statistics = equation.Statistics;
  return py::dict(
      "rank"_a = ranked.rank, "name"_a = textOf(equation.Name),
      "expression"_a = textOf(equation.Expression), "verdict"_a = cal::verdictKey(equation.Verdict),
      "reason"_a = textOf(equation.Reason), "r2"_a = statistics.RSquared,
      "adjusted_r2"_a = statistics.AdjustedRSquared, "aicc"_a = orNone(equation.Aicc),
      "bic"_a = orNone(equation.Bic), "worst_percent"_a = equation.WorstResidualRatio * 100,
      "worst_roshko"_a = equation.WorstResidualX,
      "residual_standard_error"_a = statistics.ResidualStandardError,
      "residual_sum_of_squares"_a = statistics.ResidualSumOfSquares,
      "observations"_a = statistics.Observations, "iterations"_a = statistics.Iterations,
      "linear"_a = equation.Linear, "has_solution"_a = cal::hasSolution(equation),
      "parameters"_a = parametersOf(equation.Parameters), "covar"_a = covarianceOf(equation));
}

py::dict recordOf(const CurveWarning& warning) {
  return py::dict("kind"_a = cal::warningKey(warning.Kind), "from_roshko"_a = warning.FromX,
                  "to_roshko"_a = warning.ToX, "percent"_a = warning.Percent,
                  "text"_a = textOf(warning.Text));
}

py::dict recordOf(const CurveSettings& settings) {
  return py::dict(
      "band"_a = settings.BandPercent, "points"_a = settings.Points, "min"_a = orNone(settings.Min),
      "max"_a = orNone(settings.Max), "ratio"_a = settings.RatioCurve,
      "inverted"_a = settings.Inverted, "ignore_residuals"_a = settings.IgnoreResiduals,
      "choose"_a = settings.Choice.empty() ? "adjusted-r2" : settings.Choice,
      "fit_min"_a = orNone(settings.FitMin), "fit_max"_a = orNone(settings.FitMax),
      "only"_a = textsOf(settings.Only), "without"_a = textsOf(settings.Without),
      "max_order"_a = orNone(settings.MaxOrder), "merge_band"_a = orNone(settings.MergeBandPercent),
      "cut_overlap"_a = !settings.KeepsOverlap,
      "spacing"_a = settings.Spacing.empty() ? "usual" : settings.Spacing,
      "software_version"_a = textOf(settings.SoftwareVersion),
      "fitted_at"_a = textOf(settings.FittedAt));
}

}  // namespace pelmora::python
